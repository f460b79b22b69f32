// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/exactnumbers.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace tarn {
namespace {

constexpr std::size_t FixedDecimals = 4;
// A real number has no more digits that count, written as a whole.
constexpr std::size_t MostDigits = 767;
constexpr std::int64_t FarExponent = 1'000'000'000;

// A number as its digits, without zeros at either end, and the power of ten of the first.
struct Decimal {
    std::string digits;
    std::int64_t exponent = 0;
    friend bool operator==(const Decimal&, const Decimal&) = default;
};

std::int64_t exponentOf(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    std::int64_t exponent = 0;
    for (const char c : text) exponent = std::min(FarExponent, exponent * 10 + (c - '0'));
    return negative ? -exponent : exponent;
}

// The sign does not matter.
Decimal decimalOf(std::string_view text) {
    const std::size_t e = std::min(text.find_first_of("eE"), text.size());
    Decimal number;
    bool behindPoint = false;
    for (const char c : text.substr(0, e)) {
        behindPoint = behindPoint || c == '.';
        if (!ascii::isDigit(c)) continue;
        const bool counts = c != '0' || !number.digits.empty();
        if (counts) number.digits += c;
        // Digits ahead of the point raise the power, zeros behind it that do not count lower it.
        if (behindPoint ? !counts : counts) number.exponent += behindPoint ? -1 : 1;
    }
    while (number.digits.ends_with('0')) number.digits.pop_back();
    if (number.digits.empty()) return {};
    number.exponent += e < text.size() ? exponentOf(text.substr(e + 1)) : 0;
    return number;
}

}  // namespace

bool KeptByFixed(std::string_view text) {
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string_view decimals = text.substr(std::min(point + 1 + FixedDecimals, text.size()));
    return std::none_of(decimals.begin(), decimals.end(), [](char c) { return c >= '1' && c <= '9'; });
}

bool KeptByReal(std::string_view text, double number) {
    if (!std::isfinite(number)) return true;  // a word, since no text of digits gives that
    const Decimal told = decimalOf(text);
    if (told.digits.empty()) return number == 0;
    if (told.digits.size() > MostDigits) return false;
    char written[MostDigits + 16];
    const auto end = std::to_chars(written, written + sizeof written, number, std::chars_format::scientific,
                                   static_cast<int>(told.digits.size()) - 1);
    return decimalOf({written, end.ptr}) == told;
}

}  // namespace tarn
