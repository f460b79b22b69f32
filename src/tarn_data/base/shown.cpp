// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/shown.h"

#include "os/text/utf8.h"

namespace tarn::datatool {

namespace {

// The controls of ASCII, and those from 80 to 9F, which UTF-8 writes as two bytes.
bool isControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return first < ' ' || first == 0x7F;
    return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

void appendEscaped(std::string& text, std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text.append("\\x").append(1, digits[byte / 16]).append(1, digits[byte % 16]);
    }
}

}  // namespace

std::string counted(std::int64_t n, std::string_view one, std::string_view many) {
    const std::string number = std::to_string(n) + " ";
    if (n == 1) return number + std::string(one);
    return many.empty() ? number + std::string(one) + "s" : number + std::string(many);
}

std::string shown(std::string_view text) {
    std::string made;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8::lengthOfFirst(text.substr(i));
        const std::string_view character = text.substr(i, length == 0 ? 1 : length);
        if (length == 0 || isControl(character))
            appendEscaped(made, character);
        else
            made.append(character);
        i += character.size();
    }
    return made;
}

std::string shownCell(std::string_view text) {
    constexpr std::size_t most = 60;
    if (text.size() <= most) return shown(text);
    std::size_t end = 0;
    for (std::size_t length = 1; end < most; end += length) {
        length = utf8::lengthOfFirst(text.substr(end));
        if (length == 0) length = 1;
        if (end + length > most) break;
    }
    return shown(text.substr(0, end)) + "...";
}

}  // namespace tarn::datatool
