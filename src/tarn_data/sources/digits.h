// SPDX-License-Identifier: Apache-2.0
//
// Numbers whose digits a value does not hold: a real has 15 to 17 of them, and numbers of accounts and of
// machines have more. The text of a number is compared with the texts of the value that it would become: that of
// as few digits as are enough, and that of all.
#pragma once

#include "kernel/values/values.h"

#include <string_view>

namespace tarn::datatool {

// Whether a value of this kind (enum, integer, fixed or real) gives every digit of the number back. What is
// no number in a real or fixed is told when it is read; nothing, and NULL, are held by all.
bool numberHolds(Kind kind, std::string_view cell);

}  // namespace tarn::datatool
