// SPDX-License-Identifier: Apache-2.0
//
// Numbers of few digits on their way from a text to a value: the quick way of the readers of delimited and of
// Xbase fields, which each know their own forms of numbers. What does not fit goes to the readers of numbers;
// both give the same results. Only the modules of data files include this.
#pragma once

#include "kernel/text/fixed.h"
#include "kernel/values/values.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace tarn {

// As many digits as a real holds exactly, whatever they are.
inline constexpr std::int32_t MostShortDigits = 15;

inline constexpr auto PowersOfTen = [] {
    std::array<std::int64_t, MostShortDigits + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
}();
inline constexpr std::int32_t FixedDecimals = 4;

// A number as a whole number of at most MostShortDigits digits, and how many of them are decimals.
struct ShortNumber {
    std::int64_t digits = 0;
    std::int32_t decimals = 0;
    bool negative = false;
};

// False for more decimals than a fixed has, and for a number beyond the fixed ones.
inline bool FixedOfShort(const ShortNumber& number, Fixed& value) {
    if (number.decimals > FixedDecimals) return false;
    const std::int64_t scale = PowersOfTen[static_cast<std::size_t>(FixedDecimals - number.decimals)];
    if (number.digits > INT64_MAX / scale) return false;
    value = number.negative ? -number.digits * scale : number.digits * scale;
    return true;
}

// The quotient of two whole numbers that a real holds exactly is rounded once, as the reader of reals does.
inline double RealOfShort(const ShortNumber& number) {
    const auto scale = static_cast<double>(PowersOfTen[static_cast<std::size_t>(number.decimals)]);
    const double value = static_cast<double>(number.digits) / scale;
    return number.negative ? -value : value;
}

// A field whose text was read the quick way, or else goes to the readers of numbers. False for no number.
inline bool FixedFieldFrom(bool quick, const ShortNumber& number, std::string_view text, char* at) {
    Fixed value = 0;
    bool ok = quick && FixedOfShort(number, value);
    if (!ok) FixedFromText(text, value, ok);
    if (ok) WriteAt(at, value);
    return ok;
}
inline bool RealFieldFrom(bool quick, const ShortNumber& number, std::string_view text, char* at) {
    double value = quick ? RealOfShort(number) : 0;
    bool ok = quick;
    if (!ok) RealFromText(text, value, ok);
    if (ok) WriteAt(at, value);
    return ok;
}

}  // namespace tarn
