// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/sources/digits.h"

#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "os/text/ascii.h"
#include "tarn_data/sources/cells.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <utility>

namespace tarn::datatool {

namespace {

// ---- one number ----

std::string_view takeDigits(std::string_view& rest) {
    const std::string_view digits = rest.substr(0, rest.find_first_not_of("0123456789"));
    rest.remove_prefix(digits.size());
    return digits;
}

bool takeSign(std::string_view& rest) {
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    return negative;
}

// What two texts of the same number have in common: sign, digits without the zeros around them, and where the
// point stands. No digits: zero, or no number.
struct Digits {
    bool negative = false;
    std::string digits;
    std::int64_t point = 0;
    bool operator==(const Digits&) const = default;
};

// False for what is no number.
bool readDigits(std::string_view text, Digits& number) {
    constexpr std::int64_t beyond = 1'000'000;
    number = {};
    const bool negative = takeSign(text);
    const std::string_view whole = takeDigits(text);
    std::string_view fraction;
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        fraction = takeDigits(text);
    }
    if (whole.empty() && fraction.empty()) return false;
    std::int64_t exponent = 0;
    if (text.starts_with('e') || text.starts_with('E')) {
        text.remove_prefix(1);
        const bool down = takeSign(text);
        const std::string_view digits = takeDigits(text);
        if (digits.empty()) return false;
        for (const char c : digits) exponent = std::min(exponent * 10 + (c - '0'), beyond);
        if (down) exponent = -exponent;
    }
    std::string digits = std::string(whole).append(fraction);
    digits.resize(digits.find_last_not_of('0') + 1);
    const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
    digits.erase(0, zeros);
    if (!digits.empty())
        number = {negative, std::move(digits),
                  static_cast<std::int64_t>(whole.size()) - static_cast<std::int64_t>(zeros) + exponent};
    return text.empty();
}

bool isNumber(std::string_view text, const Digits& number) {
    Digits other;
    return readDigits(text, other) && other == number;
}

// All digits of a real: those of the smallest are the most.
bool isExactly(double value, const Digits& number) {
    constexpr int mostDigits = 767, around = 16;  // sign, point and exponent
    if (number.digits.size() > mostDigits) return false;
    char exact[mostDigits + around];
    const auto end =
        std::to_chars(exact, exact + sizeof exact, value, std::chars_format::scientific, mostDigits - 1);
    return isNumber({exact, static_cast<std::size_t>(end.ptr - exact)}, number);
}

// The shortest text that is read as the same real, the one with the digits that any real may need to be told from
// others, or the one with all digits that it has.
bool realHolds(std::string_view cell, const Digits& number) {
    constexpr std::size_t anyDigits = 15;  // that many are held, whatever they are
    constexpr std::int64_t anyPoint = 300;
    if (number.digits.size() <= anyDigits && std::abs(number.point) <= anyPoint) return true;
    double value = 0;
    bool ok = false;
    RealFromText(cell, value, ok);
    if (!ok) return true;
    char shortest[40];
    const auto end =
        std::to_chars(shortest, shortest + sizeof shortest, value, std::chars_format::scientific);
    const auto size = static_cast<std::size_t>(end.ptr - shortest);
    return isNumber({shortest, size}, number) || isNumber(RealToText(value, RealTextDecimals), number) ||
           isExactly(value, number);
}

bool fixedHolds(std::string_view cell, const Digits& number) {
    Fixed value = 0;
    bool ok = false;
    FixedFromText(cell, value, ok);
    return !ok || isNumber(FixedToText(value), number);
}

bool integerHolds(std::string_view cell, const Digits& number, std::int32_t least, std::int32_t most) {
    std::int32_t value = 0;
    std::size_t end = 0;
    IntegerFromText(cell, value, end);
    return end > 0 && value >= least && value <= most && isNumber(std::to_string(value), number);
}

}  // namespace

bool numberHolds(Kind kind, std::string_view cell) {
    cell = withoutBlanks(cell);
    Digits number;
    if (isNothing(cell)) return true;
    const bool is = readDigits(cell, number);
    switch (kind) {
    case KindReal: return !is || realHolds(cell, number);
    case KindFixed: return !is || fixedHolds(cell, number);
    case KindInteger: return is && integerHolds(cell, number, INT32_MIN, INT32_MAX);
    case KindEnum: return is && integerHolds(cell, number, 0, UINT8_MAX);
    default: return true;
    }
}

}  // namespace tarn::datatool
