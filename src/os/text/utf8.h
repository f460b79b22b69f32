// SPDX-License-Identifier: Apache-2.0
//
// Bytes as UTF-8, for texts that people see: what is none is shown as Latin-1, line by line. Linear.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::utf8 {

// The bytes of the character at the beginning, 0 where none stands: one byte too many or too few, a longer form than
// is needed, a surrogate, or a number above 0x10FFFF.
inline std::size_t lengthOfFirst(std::string_view bytes) {
    const auto at = [bytes](std::size_t i) {
        return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
    };
    const unsigned first = at(0);
    if (first < 0x80) return bytes.empty() ? 0 : 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4) return 0;
    const unsigned second = at(1);
    const unsigned lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (second < lowest || second > highest) return 0;
    for (std::size_t i = 2; i < length; ++i)
        if ((at(i) & 0xC0U) != 0x80) return 0;
    return length;
}

inline bool isValid(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = lengthOfFirst(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

inline std::string ofLatin1(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0U | code >> 6U);
            text += static_cast<char>(0x80U | (code & 0x3FU));
        }
    }
    return text;
}

// Each line as it is, or as Latin-1 where it is no UTF-8. It has as many lines as the bytes.
inline std::string shown(std::string_view bytes) {
    if (isValid(bytes)) return std::string(bytes);
    std::string text;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view line = bytes.substr(0, end == std::string_view::npos ? end : end + 1);
        text += isValid(line) ? std::string(line) : ofLatin1(line);
        bytes.remove_prefix(line.size());
    }
    return text;
}

}  // namespace tarn::utf8
