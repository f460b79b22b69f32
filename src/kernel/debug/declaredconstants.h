// SPDX-License-Identifier: Apache-2.0
//
// The integer and enum constants of the program's classes, as their symbol files tell them (docs/formats/sym.md): values
// show enums as ordinals, and expressions may name them.
//
// Cost: the first question about a class reads its symbol file; what was read is kept.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarn {

// The constant of the class, else of the first registered class that has one of this name, in any case.
std::optional<std::int32_t> FindDeclaredConstant(std::string_view className, std::string_view name);

void ForgetDeclaredConstants();  // symbol files are read anew from now on

}  // namespace tarn
