// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/symboltext.h"

#include "os/text/ascii.h"

#include <utility>

namespace tarn {
namespace {

// The byte of a sequence behind a backslash, which `rest` begins with, and how many characters tell it; 0 for none.
std::size_t escaped(std::string_view rest, char& byte) {
    static constexpr std::pair<char, char> Letters[] = {{'\\', '\\'}, {'t', '\t'}, {'n', '\n'}, {'r', '\r'}};
    if (rest.empty()) return 0;
    for (const auto& [letter, meant] : Letters) {
        if (rest[0] != letter) continue;
        byte = meant;
        return 1;
    }
    if (rest.size() < 3 || rest[0] != 'x') return 0;
    const int high = ascii::hexDigit(rest[1]), low = ascii::hexDigit(rest[2]);
    if (high < 0 || low < 0) return 0;
    byte = static_cast<char>(high * 16 + low);
    return 3;
}

}  // namespace

std::string SymbolText(std::string_view cell, std::size_t most) {
    std::string text;
    for (std::size_t i = 0; i < cell.size() && text.size() < most; ++i) {
        char byte = cell[i];
        if (byte == '\\') i += escaped(cell.substr(i + 1), byte);
        text += byte;
    }
    return text;
}

}  // namespace tarn
