// SPDX-License-Identifier: Apache-2.0
//
// The classes of bytes that the scanner tells apart. A byte may be in several.
#pragma once

#include <array>
#include <cstdint>

namespace tarn {

enum ByteClass : std::uint8_t {
    ByteIdStart = 1,
    ByteIdPart = 2,
    ByteXmlStart = 4,
    ByteXmlPart = 8,
    ByteDigit = 16,
    ByteHexDigit = 32,
    ByteBlank = 64,     // tab and blank
    ByteControl = 128,  // below 32, or 127; here without the tab, which is read as a blank everywhere
};

inline constexpr unsigned char LineEnd = 10, EndOfFileMark = 26;

constexpr std::uint8_t classesOf(int c) {
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    const bool digit = c >= '0' && c <= '9';
    const bool hexLetter = (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
    int classes = 0;
    if (letter) classes |= ByteIdStart;
    if (letter || digit) classes |= ByteIdPart;
    if (letter || c == ':') classes |= ByteXmlStart;
    if (letter || digit || c == ':' || c == '-' || c == '.') classes |= ByteXmlPart;
    if (digit) classes |= ByteDigit;
    if (digit || hexLetter) classes |= ByteHexDigit;
    if (c == '\t' || c == ' ') classes |= ByteBlank;
    if ((c < 32 && c != '\t') || c == 127) classes |= ByteControl;
    return static_cast<std::uint8_t>(classes);
}

inline constexpr std::array<std::uint8_t, 256> ByteClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    for (int c = 0; c < 256; ++c) classes[static_cast<std::size_t>(c)] = classesOf(c);
    return classes;
}();

inline bool isByte(unsigned char c, ByteClass wanted) {
    return (ByteClasses[c] & wanted) != 0;
}

}  // namespace tarn
