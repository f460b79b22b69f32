// SPDX-License-Identifier: Apache-2.0
//
// Whether a number keeps what a text says. The conversions of the language cut and round without a word, as programs want
// it; who types a value is told.
//
// Cost: linear in the text.
#pragma once

#include <string_view>

namespace tarn {

// The text is one that FixedFromText takes: true unless it has other decimals than 0 behind the fourth.
bool KeptByFixed(std::string_view text);
// The text is one that RealFromText takes, and `number` what it gave: true if the number, written with as many digits as the
// text has, is the text's again.
bool KeptByReal(std::string_view text, double number);

}  // namespace tarn
