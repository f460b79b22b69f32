// SPDX-License-Identifier: Apache-2.0
//
// The integer and enum constants of the program's classes, as their symbol files tell them (docs/formats/sym.md): values
// show enums as ordinals, and expressions may name them. Also where the functions of a class begin, so that a name in its
// source can be told to be of another function.
//
// Cost: the first question about a class reads its symbol file; what was read is kept.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

struct DeclaredConstant {
    std::int32_t value = 0;
    std::string typeName;  // "integer"; of an enum "enum", or the name of its type
};

// The constant of the class, else of the first registered class that has one of this name, in any case; null: there is
// none. It stands until ForgetDeclaredConstants.
const DeclaredConstant* FindDeclaredConstant(std::string_view className, std::string_view name);

// The line where the body of the function begins in which the line stands; 0: in none, or the file does not tell.
std::int32_t FunctionStart(std::string_view className, std::int32_t line);

void ForgetDeclaredConstants();  // symbol files are read anew from now on

}  // namespace tarn
