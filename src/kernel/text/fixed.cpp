// SPDX-License-Identifier: Apache-2.0
//
// Signs are taken off before any work: the magnitude of every fixed number, also of the smallest one, is an
// unsigned word. Products and dividends of two words stay exact in 128 bits.
#include "kernel/text/fixed.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/padding.h"
#include "kernel/text/relations.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarn {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t one = FixedOne;
constexpr std::int32_t ownDecimals = 4, mostDecimals = 20;

constexpr std::uint64_t magnitudeOf(Fixed f) {
    return f < 0 ? 0 - static_cast<std::uint64_t>(f) : static_cast<std::uint64_t>(f);
}

// The greatest magnitude of a number with this sign.
constexpr std::uint64_t limitOf(bool negative) {
    return static_cast<std::uint64_t>(LargestFixed) + (negative ? 1 : 0);
}

constexpr Fixed withSign(std::uint64_t magnitude, bool negative) {
    return static_cast<Fixed>(negative ? 0 - magnitude : magnitude);
}

Fixed saturated(std::uint64_t magnitude, bool negative) {
    return withSign(std::min(magnitude, limitOf(negative)), negative);
}

// magnitude := magnitude * 10 + digit; false when that is above the limit.
bool append(std::uint64_t& magnitude, std::uint64_t digit, std::uint64_t limit) {
    if (magnitude > (limit - digit) / 10) return false;
    magnitude = magnitude * 10 + digit;
    return true;
}

// Digits with an optional point, as a magnitude times 10000.
bool readMagnitude(std::string_view text, std::uint64_t limit, std::uint64_t& magnitude) {
    bool point = false, digits = false;
    std::int32_t decimals = 0;
    magnitude = 0;
    for (const char c : text) {
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (!ascii::isDigit(c)) return false;
        digits = true;
        if (decimals == ownDecimals) continue;
        if (!append(magnitude, static_cast<std::uint64_t>(c - '0'), limit)) return false;
        decimals += point ? 1 : 0;
    }
    for (; decimals < ownDecimals; ++decimals) {
        if (!append(magnitude, 0, limit)) return false;
    }
    return digits;
}

}  // namespace

NumberFormat SplitFormat(Fixed format) {
    auto decimals = static_cast<std::int32_t>(std::abs(format % FixedOne));
    while (decimals != 0 && decimals % 10 == 0) decimals /= 10;
    const Fixed width = std::clamp<Fixed>(format / FixedOne, -WidestField, WidestField);
    return {static_cast<std::int32_t>(width), std::min(decimals, mostDecimals)};
}

// ---- arithmetic ----

void FixedFromReal(double x, Fixed& f) {
    constexpr double largest = 922337203685477.5;  // the next real is .625, which is too large
    f = 0;
    if (!(std::fabs(x) <= largest)) {
        SetError(ERR_NUMBER_TOO_LARGE);
        return;
    }
    if (std::fabs(x) < 0.0001) return;
    // The product must be exact, or a number just below a half would be rounded twice.
    static_assert(std::numeric_limits<long double>::digits >= std::numeric_limits<double>::digits + 10);
    f = std::llround(static_cast<long double>(x) * FixedOne);
}

double FixedToReal(Fixed f) {
    constexpr std::uint64_t exactReal = std::uint64_t{1} << 53U;
    const std::uint64_t magnitude = magnitudeOf(f);
    if (magnitude <= exactReal) return static_cast<double>(f) / static_cast<double>(FixedOne);
    // More bits than a real has, and a last one that stands for all behind them: rounded only once.
    constexpr int moreBits = 20;
    const Wide dividend = Wide{magnitude} << static_cast<unsigned>(moreBits);
    const Wide quotient = dividend / one | (dividend % one != 0 ? 1U : 0U);
    const double result = std::ldexp(static_cast<double>(quotient), -moreBits);
    return f < 0 ? -result : result;
}

void FixedMulWide(Fixed a, Fixed b, Fixed& r) {
    const bool negative = (a < 0) != (b < 0);
    const Wide product = Wide{magnitudeOf(a)} * magnitudeOf(b);
    auto high = static_cast<std::uint64_t>(product >> 64U), low = static_cast<std::uint64_t>(product);
    if (high >= one / 2) {
        r = negative ? SmallestFixed : LargestFixed;
        return;
    }
    // Each unit of the high word is `whole` times 10000 and `rest` more. That is several times faster than a
    // division of 128 bits.
    constexpr std::uint64_t whole = UINT64_MAX / one, rest = UINT64_MAX % one + 1;
    static_assert(rest < one);
    if (__builtin_add_overflow(low, high * rest, &low)) {
        ++high;
        low += rest;
    }
    r = saturated(high * whole + low / one, negative);
}

void FixedDivWide(Fixed a, Fixed b, Fixed& r) {
    if (b == 0) {
        SetError(ERR_DIVISION_BY_ZERO);
        r = 0;
        return;
    }
    const Wide dividend = Wide{magnitudeOf(a)} * one;
    const std::uint64_t divisor = magnitudeOf(b);
    const bool fits = static_cast<std::uint64_t>(dividend >> 64U) < divisor;  // in one word
    r = saturated(fits ? static_cast<std::uint64_t>(dividend / divisor) : UINT64_MAX, (a < 0) != (b < 0));
}

bool FixedCompare(std::string_view op, Fixed a, Fixed b) {
    return RelationHolds(RelationOf(op), (a > b) - (a < b));
}

// ---- texts ----

void FixedFromText(std::string_view text, Fixed& f, bool& ok) {
    text = Unpadded(text);
    const bool sign = !text.empty() && (text[0] == '+' || text[0] == '-'), negative = sign && text[0] == '-';
    std::uint64_t magnitude = 0;
    ok = readMagnitude(text.substr(sign ? 1 : 0), limitOf(negative), magnitude);
    if (ok) f = withSign(magnitude, negative);
}

std::string FixedToText(Fixed f, Fixed format) {
    const NumberFormat form = SplitFormat(format);
    const std::int32_t shown = std::min(form.decimals, ownDecimals);
    std::uint64_t unit = 1;
    for (std::int32_t i = shown; i < ownDecimals; ++i) unit *= 10;
    std::uint64_t rest = (magnitudeOf(f) + unit / 2) / unit;

    char text[1 + 15 + 1 + mostDecimals];  // written from the end: sign, digits, point, decimals
    char* const end = text + sizeof text;
    char* at = end;
    const auto putDigit = [&] {
        *--at = static_cast<char>('0' + rest % 10);
        rest /= 10;
    };
    for (std::int32_t i = shown; i < form.decimals; ++i) *--at = '0';
    for (std::int32_t i = 0; i < shown; ++i) putDigit();
    if (form.decimals > 0) *--at = '.';
    do putDigit();
    while (rest != 0);
    if (f < 0) *--at = '-';
    return Padded(std::string(at, end), form.width);
}

}  // namespace tarn
