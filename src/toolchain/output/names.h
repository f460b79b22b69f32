// SPDX-License-Identifier: Apache-2.0
//
// The C names of a class's items. The length of the class's name stands in them, so that no two items of
// different classes share one; behind a function's name stand the kinds of its parameters, so that its other
// forms have other names.
#pragma once

#include "toolchain/language/tree.h"

#include <string>
#include <string_view>

namespace tarn::toolchain {

std::string classSymbol(const std::string& className,
                        std::string_view what);   // "setup", "start", "finish", "program"
std::string itemSymbol(const Declaration& item);  // a function, a class variable or a stored constant
std::string localSymbol(const Declaration& item);
std::string cString(std::string_view bytes);  // a C string literal
std::string cType(Kind kind);                 // of a variable; "void" for none
std::string cPlace(Kind kind);                // of a value at any address
std::string cKind(Kind kind);                 // its number, as the run-time counts
std::string cNumber(const Value& value);      // a boolean, enum, integer, fixed or real constant

}  // namespace tarn::toolchain
