// SPDX-License-Identifier: Apache-2.0
//
// What is written here in place of a value of another kind, or of the methods that other languages have: the end of a
// message. Empty where nothing stands for it. Costs a look into a short table.
#pragma once

#include "toolchain/language/tree.h"
#include "toolchain/language/types.h"

#include <string>
#include <string_view>

namespace tarn::toolchain {

// ": write CVTI(...)"
[[nodiscard]] std::string conversionHint(const Type* from, const Type* to);
// For an operator between two values that do not go together.
[[nodiscard]] std::string operandHint(Operator op, const Expression& left, const Expression& right);
// "LISTADD(rows, ...)" for `rows.add(...)` where `rows` is a list; empty for any other name.
[[nodiscard]] std::string methodHint(std::string_view method, const std::string& object, Kind kind);

}  // namespace tarn::toolchain
