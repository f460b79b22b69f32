// SPDX-License-Identifier: Apache-2.0
//
// The C names of a class's items. The length of the class's name stands in them, so that no two items of
// different classes share one.
#pragma once

#include "toolchain/language/tree.h"

#include <string>
#include <string_view>

namespace tarn::toolchain {

std::string classSymbol(const std::string& className,
                        std::string_view what);   // "setup", "start", "finish", "program"
std::string itemSymbol(const Declaration& item);  // a function or a class variable
std::string cString(std::string_view bytes);      // a C string literal

}  // namespace tarn::toolchain
