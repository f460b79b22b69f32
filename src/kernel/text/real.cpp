// SPDX-License-Identifier: Apache-2.0
//
// Real numbers and their texts. The form of a text is checked here; the digits are turned into a number, and
// back, by the standard conversions that know no locale.
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/padding.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace tarn {

namespace {

constexpr std::size_t exponentDigits = 4;

std::string textOf(double x, std::int32_t decimals) {
    if (std::isnan(x)) return "+NAN";
    std::string text(1, std::signbit(x) ? '-' : '+');
    if (std::isinf(x)) return text + "INF";

    char raw[40];  // a digit, point, decimals, "e", sign, two or three digits
    decimals = std::clamp(decimals, 0, MaxRealDecimals);
    const auto end =
        std::to_chars(raw, raw + sizeof raw, std::fabs(x), std::chars_format::scientific, decimals);
    const std::string_view all(raw, static_cast<std::size_t>(end.ptr - raw));
    const std::size_t mark = all.find('e');
    const std::string_view exponent = all.substr(mark + 2);
    text.append(all.substr(0, mark));
    if (decimals == 0) text += '.';
    text += 'E';
    text += all[mark + 1];
    text.append(exponentDigits - exponent.size(), '0');
    return text.append(exponent);
}

// What RealToText writes for what is no number. Only with their signs: "nan" and "inf" are also words.
bool readWord(std::string_view text, double& x) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr struct {
        std::string_view word;
        double value;
    } words[] = {{"+INF", infinity}, {"-INF", -infinity}, {"+NAN", std::numeric_limits<double>::quiet_NaN()}};
    for (const auto& entry : words) {
        if (!ascii::equal(entry.word, text)) continue;
        x = entry.value;
        return true;
    }
    return false;
}

// The parts of the text of a number.
struct Parts {
    bool negative = false;
    std::string_view whole, fraction;
    std::int64_t exponent = 0;
};

bool readSign(std::string_view& rest) {
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    return negative;
}

std::string_view readDigits(std::string_view& rest) {
    const std::string_view digits = rest.substr(0, rest.find_first_not_of("0123456789"));
    rest.remove_prefix(digits.size());
    return digits;
}

// No digits are no exponent. One that is beyond all reals, however many digits the number has, stays there.
bool readExponent(std::string_view& rest, std::int64_t& exponent) {
    constexpr std::int64_t beyond = 1'000'000'000'000;
    const bool negative = readSign(rest);
    const std::string_view digits = readDigits(rest);
    for (const char c : digits) exponent = std::min(exponent * 10 + (c - '0'), beyond);
    if (negative) exponent = -exponent;
    return !digits.empty();
}

bool readParts(std::string_view rest, Parts& parts) {
    parts.negative = readSign(rest);
    parts.whole = readDigits(rest);
    if (rest.starts_with('.')) {
        rest.remove_prefix(1);
        parts.fraction = readDigits(rest);
    }
    if (parts.whole.empty() && parts.fraction.empty()) return false;
    if (rest.starts_with('E') || rest.starts_with('e')) {
        rest.remove_prefix(1);
        if (!readExponent(rest, parts.exponent)) return false;
    }
    return rest.empty();
}

// Of a number that no real can be: whether it is too large, not too small.
bool isLarge(const Parts& parts) {
    const std::size_t inWhole = parts.whole.find_first_not_of('0');
    if (inWhole != std::string_view::npos)
        return static_cast<std::int64_t>(parts.whole.size() - inWhole) + parts.exponent > 0;
    const std::size_t inFraction = parts.fraction.find_first_not_of('0');
    return inFraction != std::string_view::npos && parts.exponent - static_cast<std::int64_t>(inFraction) > 0;
}

}  // namespace

double RealDiv(double a, double b) {
    if (b == 0) {
        SetError(ERR_DIVISION_BY_ZERO);
        return 0;
    }
    return a / b;
}

std::string RealToText(double x, std::int32_t decimals) {
    return textOf(x, decimals);
}

void RealToText(double x, std::int32_t decimals, char* buffer, std::int32_t size) {
    PutText(textOf(x, decimals), buffer, size);
}

std::string RealToFormat(double x, Fixed format) {
    const NumberFormat form = SplitFormat(format);
    return Padded(textOf(x, form.decimals), form.width);
}

void RealFromText(std::string_view text, double& x, bool& ok) {
    text = Unpadded(text);
    Parts parts;
    ok = readWord(text, x);
    if (ok || !readParts(text, parts)) return;

    if (text[0] == '+') text.remove_prefix(1);
    double value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isReal = end.ec == std::errc() && std::isfinite(value);
    ok = isReal || !isLarge(parts);
    if (!ok) return;
    x = isReal ? value : parts.negative ? -0.0 : 0.0;
}

}  // namespace tarn
