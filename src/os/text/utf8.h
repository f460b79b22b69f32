// SPDX-License-Identifier: Apache-2.0
//
// UTF-8: its characters in bytes, and numbers as characters; and bytes as text that people see, where what is no UTF-8 is
// shown as Latin-1, line by line. Linear.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::utf8 {

// Whether a byte stands in a character of several bytes behind its first.
inline bool isFollowing(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

// Whether the place is in the middle of a character of several bytes.
inline bool isInside(std::string_view text, std::size_t at) {
    return at < text.size() && isFollowing(text[at]);
}

// What stands at the beginning of a text: a character; bytes that are none, which are those that could have begun one;
// or (`Cut`, all that there is) the beginning of a character whose other bytes are to come.
struct First {
    enum class Kind : unsigned char { Character, Broken, Cut };
    std::size_t bytes;
    Kind kind;
};

// No character is a byte too many or too few, a longer form than is needed, a surrogate, or a number above 0x10FFFF.
inline First first(std::string_view bytes) {
    if (bytes.empty()) return {0, First::Kind::Cut};
    const unsigned lead = static_cast<unsigned char>(bytes[0]);
    if (lead < 0x80) return {1, First::Kind::Character};
    if (lead < 0xC2 || lead > 0xF4) return {1, First::Kind::Broken};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (bytes.size() == 1) return {1, First::Kind::Cut};
    const unsigned second = static_cast<unsigned char>(bytes[1]);
    const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (second < lowest || second > highest) return {1, First::Kind::Broken};
    for (std::size_t i = 2; i < length; ++i) {
        if (i == bytes.size()) return {i, First::Kind::Cut};
        if (!isFollowing(bytes[i])) return {i, First::Kind::Broken};
    }
    return {length, First::Kind::Character};
}

// The bytes of the character at the beginning, 0 where none stands.
inline std::size_t lengthOfFirst(std::string_view bytes) {
    const First found = first(bytes);
    return found.kind == First::Kind::Character ? found.bytes : 0;
}

// The number of a character, which is all of the text.
inline char32_t codeOf(std::string_view character) {
    const auto lead = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return lead;
    char32_t code = lead & (0xFFU >> (character.size() + 1));
    for (std::size_t i = 1; i < character.size(); ++i)
        code = code << 6U | (static_cast<unsigned char>(character[i]) & 0x3FU);
    return code;
}

// Writes the character of a number, of any below 0x200000, to room for four bytes; the result is how many it takes.
inline std::size_t put(char32_t code, char* bytes) {
    constexpr char32_t heads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    const std::size_t length = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
    for (std::size_t i = length; i-- > 1; code >>= 6U) bytes[i] = static_cast<char>(0x80U | (code & 0x3FU));
    bytes[0] = static_cast<char>(heads[length] | code);
    return length;
}

inline void append(std::string& text, char32_t code) {
    char bytes[4];
    text.append(bytes, put(code, bytes));
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
    for (const char c : bytes) append(text, static_cast<unsigned char>(c));
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
