// SPDX-License-Identifier: Apache-2.0
//
// The names of the fields in the variables of the program, and how many names its enums have, which the values themselves
// do not know. Compiled code of debug level 2 tells them for each variable that may hold any, behind its registration
// (kernel/run/runtime.h); watch expressions find fields by them, and a value that the user types is checked by them.
//
//     names = "" | "(" name names { "," name names } ")" | "[" names "]" | "#" highest .
//
// Round brackets hold the fields of a record or union in their order, square ones what each element of an array or list,
// or each row of a table, has. The number is the highest ordinal of an enum; one that may have any says nothing. A list of
// records with the fields `who` and `size` is "[(who,size)]", and "[(who,size#2)]" if `size` is one of three names.
//
// Nothing is copied: names are program text. Cost: telling them is constant; looking in them is linear in their text.
#pragma once

#include "kernel/run/state.h"

#include <cstdint>
#include <string_view>

namespace tarn {

// Of the variable that was registered last; nothing if that one stands elsewhere, because the table was full.
void NameFields(const void* address, const char* names);
// Empty if there are none.
std::string_view FieldNames(const VariableEntry& entry);

struct FieldPlace {
    std::int32_t number = 0;  // from 1; 0: there is no such field
    std::string_view names;   // those in its value
};
// The field of a record by its name, without regard to case.
FieldPlace FindField(std::string_view names, std::string_view field);
// Those in the value of a field, by its number from 1; empty if there is none.
std::string_view FieldNamesAt(std::string_view names, std::int32_t number);
std::string_view ElementNames(std::string_view names);  // of what an array, list or table holds
std::int32_t HighestOrdinal(std::string_view names);    // of an enum; 255 where nothing is said

}  // namespace tarn
