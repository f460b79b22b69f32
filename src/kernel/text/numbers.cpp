// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/numbers.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/fixed.h"
#include "kernel/text/padding.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <array>

namespace tarn {

namespace {

std::string hexDigits(std::uint32_t value) {
    std::string text;
    do text.insert(text.begin(), "0123456789ABCDEF"[value & 15U]);
    while ((value >>= 4U) != 0);
    return text;
}

constexpr auto crcTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t sum = i;
        for (int bit = 0; bit < 8; ++bit) sum = (sum & 1U) != 0 ? 0xEDB88320U ^ (sum >> 1U) : sum >> 1U;
        table[i] = sum;
    }
    return table;
}();

constexpr std::string_view base64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Splits a Base64 text into its digits and the number of "=" behind them; false for anything that is neither.
bool base64Digits(std::string_view text, std::string& digits, std::size_t& padding) {
    padding = 0;
    for (const char c : text) {
        if (c == '\n' || c == '\r' || c == '\t' || c == ' ') continue;
        if (c == '=') {
            ++padding;
            continue;
        }
        const std::size_t digit = base64Alphabet.find(c);
        if (digit == std::string_view::npos || padding > 0) return false;
        digits += static_cast<char>(digit);
    }
    return padding <= 2 && (digits.size() + padding) % 4 == 0;
}

}  // namespace

std::int32_t IntegerDiv(std::int32_t a, std::int32_t b) {
    if (b == 0) {
        SetError(ERR_DIVISION_BY_ZERO);
        return 0;
    }
    const std::int64_t quotient = std::int64_t{a} / b;
    const bool roundDown = a % std::int64_t{b} != 0 && (a < 0) != (b < 0);
    return static_cast<std::int32_t>(quotient - (roundDown ? 1 : 0));
}

std::int32_t IntegerMod(std::int32_t a, std::int32_t b) {
    if (b == 0) {
        SetError(ERR_DIVISION_BY_ZERO);
        return 0;
    }
    const std::int64_t rest = a % std::int64_t{b};
    return static_cast<std::int32_t>(rest != 0 && (rest < 0) != (b < 0) ? rest + b : rest);
}

std::string IntegerToText(std::int32_t value, std::int32_t width, std::int32_t base) {
    return Padded(base == 16 ? hexDigits(static_cast<std::uint32_t>(value)) : std::to_string(value), width);
}

void IntegerToText(std::int32_t value, std::int32_t width, char* buffer, std::int32_t size,
                   std::int32_t base) {
    PutText(IntegerToText(value, width, base), buffer, size);
}

void IntegerFromText(std::string_view text, std::int32_t& value, std::size_t& end) {
    end = 0;
    const bool sign = !text.empty() && (text[0] == '+' || text[0] == '-'), negative = sign && text[0] == '-';
    const std::int64_t limit = negative ? -std::int64_t{INT32_MIN} : INT32_MAX;
    std::size_t at = sign ? 1 : 0;
    const std::size_t firstDigit = at;
    std::int64_t magnitude = 0;
    for (; at < text.size() && ascii::isDigit(text[at]); ++at) {
        magnitude = magnitude * 10 + (text[at] - '0');
        if (magnitude > limit) return;
    }
    if (at == firstDigit) return;
    value = static_cast<std::int32_t>(negative ? -magnitude : magnitude);
    end = at;
}

void IntegerFromWholeText(std::string_view text, std::int32_t& value, bool& ok) {
    text = Unpadded(text);
    std::int32_t read = 0;
    std::size_t end = 0;
    if (text != "NULL") IntegerFromText(text, read, end);
    ok = text == "NULL" || (end != 0 && end == text.size());
    if (ok) value = read;
}

std::string BooleanToText(bool value, std::int64_t format) {
    return Padded(value ? "True" : "False", SplitFormat(format).width);
}

void BooleanFromText(std::string_view text, bool& value, bool& ok) {
    constexpr struct {
        std::string_view word;
        bool value;
    } words[] = {{"True", true}, {"Yes", true}, {"False", false}, {"No", false}};
    const auto* const found = std::find_if(std::begin(words), std::end(words),
                                           [&](const auto& entry) { return ascii::equal(entry.word, text); });
    ok = found != std::end(words);
    if (ok) value = found->value;
}

std::uint32_t Crc32(const void* buffer, std::size_t size, std::uint32_t before) {
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    std::uint32_t sum = ~before;
    for (std::size_t i = 0; i < size; ++i) sum = crcTable[(sum ^ bytes[i]) & 255U] ^ (sum >> 8U);
    return ~sum;
}

std::string Base64Encode(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8U | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= count ? base64Alphabet[group >> (18U - 6U * k) & 63U] : '=';
    }
    return text;
}

void Base64Decode(std::string_view text, std::string& bytes, bool& ok) {
    std::string digits, result;
    std::size_t padding = 0;
    ok = base64Digits(text, digits, padding);
    if (!ok) return;
    std::uint32_t bits = 0, held = 0;
    for (const char digit : digits) {
        bits = bits << 6U | static_cast<unsigned char>(digit);
        held += 6;
        if (held < 8) continue;
        held -= 8;
        result += static_cast<char>(bits >> held & 255U);
    }
    ok = (bits & ((1U << held) - 1)) == 0;
    if (ok) bytes = std::move(result);
}

}  // namespace tarn
