// SPDX-License-Identifier: Apache-2.0
//
// The number family of the system library. Functions of one name are told apart by the kind of their
// arguments. Nothing traps: what a result cannot hold is told beside each function, and the value is then 0.
// Cost: some nanoseconds.
#pragma once

#include "kernel/text/fixed.h"

#include <compare>
#include <cstdint>
#include <limits>

namespace tarn {

// A fixed number, so that it is never taken for a whole one: its word is the number times 10000.
struct FixedValue {
    Fixed word = 0;
    constexpr FixedValue() = default;
    explicit constexpr FixedValue(Fixed its) : word(its) {}
    friend constexpr auto operator<=>(const FixedValue&, const FixedValue&) = default;
};

// The least number of a kind is its own negative, as there is no other for it.
constexpr std::int32_t NEG(std::int32_t n) {
    return static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(n));
}
constexpr FixedValue NEG(FixedValue n) {
    return FixedValue(FixedNeg(n.word));
}
constexpr double NEG(double n) {
    return -n;
}
constexpr std::int32_t ABS(std::int32_t n) {
    return n < 0 ? NEG(n) : n;
}
constexpr FixedValue ABS(FixedValue n) {
    return FixedValue(FixedAbs(n.word));
}
constexpr double ABS(double n) {
    return n < 0 || (n == 0 && 1 / n < 0) ? -n : n;
}

// The square root: of a fixed number truncated to four decimals, of a real to the nearest. 684 for a negative
// number.
FixedValue SQR(FixedValue n);
double SQR(double n);
// `base` to the power of `exponent`; 1 for an exponent of 0. 643 for 0 to a negative power, 684 for a negative
// base with an exponent that is not whole, 641 for what is too large.
double PWR(double base, double exponent);

// A whole number from 0 to `count` - 1, each as likely as the others; 0 when `count` is below 1. The row of
// numbers is another one at each start of the program. Not for secrets.
std::int32_t RANDOM(std::int32_t count);

constexpr std::int32_t MAXVAL(std::int32_t a, std::int32_t b) {
    return a > b ? a : b;
}
constexpr std::int32_t MINVAL(std::int32_t a, std::int32_t b) {
    return a < b ? a : b;
}
// Both ends included.
constexpr bool ISBETWEEN(std::int32_t n, std::int32_t lower, std::int32_t upper) {
    return n >= lower && n <= upper;
}
constexpr bool ISBETWEEN(FixedValue n, FixedValue lower, FixedValue upper) {
    return n >= lower && n <= upper;
}

constexpr std::int32_t LOBYTE(std::int32_t n) {
    return n & 255;
}
constexpr std::int32_t HIBYTE(std::int32_t n) {  // of the lower sixteen bits
    return n >> 8 & 255;
}
// A colour: of each part the low byte counts.
constexpr std::int32_t RGB(std::int32_t red, std::int32_t green, std::int32_t blue) {
    return LOBYTE(red) | LOBYTE(green) << 8 | LOBYTE(blue) << 16;
}
constexpr std::int32_t GETRVALUE(std::int32_t colour) {
    return colour & 255;
}
constexpr std::int32_t GETGVALUE(std::int32_t colour) {
    return colour >> 8 & 255;
}
constexpr std::int32_t GETBVALUE(std::int32_t colour) {
    return colour >> 16 & 255;
}
// Whether a result code of another program's call tells success: it is not negative.
constexpr bool SUCCEEDED(std::int32_t code) {
    return code >= 0;
}

}  // namespace tarn
