// SPDX-License-Identifier: Apache-2.0
//
// Letter case and character classes of ASCII, whatever the locale; bytes from 128 up are no letters and never
// change. These helpers neither fail nor call out, so they have no frame.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::ascii {

constexpr bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
constexpr bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
constexpr bool isLetter(char c) {
    return isUpper(c) || isLower(c);
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isSymbol(char c) {
    return isLetter(c) || isDigit(c) || c == '_';
}
constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
constexpr bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
constexpr char upper(char c) {
    return isLower(c) ? static_cast<char>(c - 32) : c;
}
constexpr char lower(char c) {
    return isUpper(c) ? static_cast<char>(c + 32) : c;
}

inline std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = lower(c);
    return result;
}
inline std::string uppered(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = upper(c);
    return result;
}

// Without regard to case.
constexpr bool equal(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (upper(a[i]) != upper(b[i])) return false;
    return true;
}

// Whether the whole name is what the pattern says, without regard to case: `*` stands for any characters, `?` for one.
// Cost: the product of the lengths at worst.
constexpr bool matches(std::string_view name, std::string_view pattern) {
    std::size_t at = 0, in = 0, star = std::string_view::npos, retry = 0;
    while (at < name.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = in++;
            retry = at;
        } else if (in < pattern.size() && (pattern[in] == '?' || upper(pattern[in]) == upper(name[at]))) {
            ++in;
            ++at;
        } else if (star != std::string_view::npos) {
            in = star + 1;
            at = ++retry;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

// The value of a hexadecimal digit, -1 for any other character.
constexpr int hexDigit(char c) {
    if (isDigit(c)) return c - '0';
    const char u = upper(c);
    return u >= 'A' && u <= 'F' ? u - 'A' + 10 : -1;
}

// `text` less the CR and LF characters at its end.
constexpr std::string_view withoutLineEnd(std::string_view text) {
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.remove_suffix(1);
    return text;
}

// Takes the next line off `rest`, with its line end; empty at the end of the text.
constexpr std::string_view takeLine(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    const std::size_t size = end == std::string_view::npos ? rest.size() : end + 1;
    const std::string_view line = rest.substr(0, size);
    rest.remove_prefix(size);
    return line;
}

}  // namespace tarn::ascii
