// SPDX-License-Identifier: Apache-2.0
#include "platform/text.h"

#include <algorithm>
#include <charconv>

namespace tarn::platform {

std::string upper(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = upper(c);
    return result;
}

bool sameText(std::string_view a, std::string_view b) {
    return ascii::equal(a, b);
}

bool lessText(std::string_view a, std::string_view b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return upper(x) < upper(y); });
}

std::string_view trim(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

bool isIdentifier(std::string_view text) {
    const auto letter = [](char c) { return (upper(c) >= 'A' && upper(c) <= 'Z') || c == '_'; };
    if (text.empty() || !letter(text.front())) return false;
    return std::all_of(text.begin(), text.end(), [&](char c) { return letter(c) || (c >= '0' && c <= '9'); });
}

std::optional<int> wholeNumber(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool hexadecimal = text.size() > 2 && text[0] == '0' && upper(text[1]) == 'X';
    if (hexadecimal) text.remove_prefix(2);
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, value, hexadecimal ? 16 : 10);
    if (text.empty() || fault != std::errc() || stop != end || text.front() == '-') return {};
    if (negative) value = -value;
    if (value < INT32_MIN || value > INT32_MAX) return {};
    return static_cast<int>(value);
}

int leadingNumber(std::string_view text) {
    text = trim(text);
    std::size_t length = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
    const bool hexadecimal =
        text.size() > length + 2 && text[length] == '0' && upper(text[length + 1]) == 'X';
    if (hexadecimal) length += 2;
    const auto digit = [&](char c) {
        return (c >= '0' && c <= '9') || (hexadecimal && upper(c) >= 'A' && upper(c) <= 'F');
    };
    while (length < text.size() && digit(text[length])) ++length;
    return wholeNumber(text.substr(0, length)).value_or(0);
}

}  // namespace tarn::platform
