// SPDX-License-Identifier: Apache-2.0
//
// Fixed-point and real numbers. A fixed number is a signed 64-bit word that holds the number times 10000:
// from -922337203685477.5808 to 922337203685477.5807. A real is an IEEE double. No operation traps.
//
// A format is itself a fixed number: its integer part is the field width, -100 to 100, negative for
// left-justified, 0 for as wide as needed; its decimals, read as digits without trailing zeros, are the
// number of decimals, 0 to 20 (1.4 is width 1 and 4 decimals, 8.12 width 8 and 12). Parts beyond the limits
// are brought to them. Texts are padded with blanks and never cut.
//
// Cost: arithmetic some nanoseconds, texts tens of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

using Fixed = std::int64_t;
inline constexpr Fixed FixedOne = 10000;
inline constexpr Fixed LargestFixed = INT64_MAX, SmallestFixed = INT64_MIN;

// ---- formats ----

struct NumberFormat {
    std::int32_t width = 0, decimals = 0;
};
NumberFormat SplitFormat(Fixed format);
inline constexpr Fixed DefaultFixedFormat = 14000;  // 1.4

// ---- fixed ----

// 641 and 0 for what no fixed number can hold, and for NaN. An absolute value below 0.0001 is 0. Otherwise x
// times 10000, to the nearest, halves away from 0.
void FixedFromReal(double x, Fixed& f);
double FixedToReal(Fixed f);
constexpr void FixedFromInteger(std::int32_t i, Fixed& f) {
    f = Fixed{i} * FixedOne;
}
// Towards 0; what lies outside the integers keeps its low 32 bits.
constexpr std::int32_t FixedToInteger(Fixed f) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(f / FixedOne));
}

// Sums and differences wrap.
constexpr void FixedAdd(Fixed a, Fixed b, Fixed& r) {
    r = static_cast<Fixed>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
constexpr void FixedSub(Fixed a, Fixed b, Fixed& r) {
    r = static_cast<Fixed>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
// Truncated towards 0; beyond the range the largest or the smallest number, without an error.
inline void FixedMul(Fixed a, Fixed b, Fixed& r);
// The same; 643 and 0 for b = 0.
inline void FixedDiv(Fixed a, Fixed b, Fixed& r);
constexpr Fixed FixedNeg(Fixed f) {  // the smallest number wraps to itself
    return static_cast<Fixed>(0 - static_cast<std::uint64_t>(f));
}
constexpr Fixed FixedAbs(Fixed f) {
    return f < 0 ? FixedNeg(f) : f;
}
constexpr std::int32_t FixedSign(Fixed f) {
    return (f > 0) - (f < 0);
}
// `op`: EQ, NE, GT, LT, GE or LE, in any case, read from its first two characters; false for any other.
bool FixedCompare(std::string_view op, Fixed a, Fixed b);

// Leading and trailing blanks, an optional sign, digits with an optional point, a digit on one side of it at
// least. Digits behind the fourth decimal are dropped. For anything else, and a number out of range, `ok` is
// false and `f` as it was.
void FixedFromText(std::string_view text, Fixed& f, bool& ok);
// With the decimals of the format, at most 20: fewer than four round half away from 0, more are zeros. A
// minus sign, no plus sign.
std::string FixedToText(Fixed f, Fixed format = DefaultFixedFormat);

// ---- real ----

double RealDiv(double a, double b);  // 643 and 0 for b = 0

inline constexpr std::int32_t MaxRealDecimals = 20,
                              RealTextDecimals = 16;  // the second: to read the same number back
// The exponent form: the sign, always; a digit; "."; `decimals` digits (0 to MaxRealDecimals; a number beyond
// that is brought to it); "E"; the exponent's sign and four digits: "+1.25E-0001". "+INF", "-INF" and "+NAN"
// for what is no number. The second form writes at most `size` bytes with the NUL; a text that does not fit
// is left out (`buffer` is then empty). The third pads to a format's width.
std::string RealToText(double x, std::int32_t decimals);
void RealToText(double x, std::int32_t decimals, char* buffer, std::int32_t size);
std::string RealToFormat(double x, Fixed format);
// Blanks around it do not matter: an optional sign, digits with an optional point, an optional "E" or "e"
// with an optional sign and digits; also what RealToText writes for INF and NAN, in any case. Too small for a
// double is 0. For anything else, and what is too large for a double, `ok` is false and `x` as it was; no
// error is set.
void RealFromText(std::string_view text, double& x, bool& ok);

// ---- the fast paths ----

// What does not fit one word, and the division by 0.
void FixedMulWide(Fixed a, Fixed b, Fixed& r);
void FixedDivWide(Fixed a, Fixed b, Fixed& r);

inline void FixedMul(Fixed a, Fixed b, Fixed& r) {
    Fixed product = 0;
    if (__builtin_mul_overflow(a, b, &product)) [[unlikely]]
        FixedMulWide(a, b, r);
    else
        r = product / FixedOne;
}

inline void FixedDiv(Fixed a, Fixed b, Fixed& r) {
    Fixed dividend = 0;  // never the smallest number, which -1 could not divide
    if (b == 0 || __builtin_mul_overflow(a, FixedOne, &dividend)) [[unlikely]]
        FixedDivWide(a, b, r);
    else
        r = dividend / b;
}

}  // namespace tarn
