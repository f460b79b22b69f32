// SPDX-License-Identifier: Apache-2.0
//
// The names of the fields of records. Values do not know them: compiled code may tell them (fieldnames.h), or the symbol
// file of a class (docs/formats/sym.md) tells what its variables are declared as, and what its types are made of.
//
// A type that another class declares is looked for in the symbols of all registered classes. What is declared in a way
// that no symbol tells (a local variable of a record type without a name, a declaration of more than 657 characters) is
// not known.
//
// Cost: the first question about a class reads its symbol file; a question that has been asked before is a comparison of
// two names.
#pragma once

#include "kernel/run/state.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// What is known of a declared type; it lives until ForgetDeclaredTypes.
struct DeclaredType {
    std::vector<std::string> fields;                // of a record or union, in order
    std::vector<const DeclaredType*> fieldTypes{};  // null where nothing is known
    const DeclaredType* element = nullptr;          // of an array, list or table
};
// From 1; 0 for none.
std::int32_t FieldNumber(const DeclaredType& type, std::string_view name);

// Keeps what was found for a variable, as long as the function is the same.
struct DeclaredTypeOfVariable {
    std::string className{}, functionName{};
    const DeclaredType* type = nullptr;
};
// Null if nothing is known.
const DeclaredType* FindDeclaredType(const FrameRecord& frame, std::string_view variable,
                                     DeclaredTypeOfVariable& kept);

// The same of a registered variable: by the names that its code has told (fieldnames.h), else by the symbols.
const DeclaredType* FindTypeOfVariable(const FrameRecord& frame, const VariableEntry& entry,
                                       DeclaredTypeOfVariable& kept);

// The value of an integer, boolean or enum constant of the class of the frame, or of any other class; false if there is
// none.
bool FindDeclaredConstant(const FrameRecord& frame, std::string_view name, std::int32_t& value);

// Symbol files are read anew from now on. What was found before must not be used any more.
void ForgetDeclaredTypes();

}  // namespace tarn
