// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/classname.h"

#include "ide/program/members/messages.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("projedit")

namespace tarn {
namespace {

constexpr const char* Rule =
    "A name has the letters A to Z, digits and underscores, and begins with a letter.";

bool mayStand(char c) {
    return ascii::isLetter(c) || ascii::isDigit(c) || c == '_';
}

// The first character that no name has, as it is read; empty if there is none.
std::string strangeCharacter(const std::string& stem) {
    const auto found = std::find_if_not(stem.begin(), stem.end(), mayStand);
    if (found == stem.end()) return {};
    constexpr unsigned char FirstPrinted = ' ', Delete = 0x7F;
    const auto byte = static_cast<unsigned char>(*found);
    if (byte == ' ') return "a space";
    if (byte < FirstPrinted || byte == Delete) return "a control character";
    auto end = found + 1;
    while (byte >= 0xC0 && end != stem.end() && (static_cast<unsigned char>(*end) & 0xC0U) == 0x80) ++end;
    return "'" + std::string(found, end) + "'";
}

}  // namespace

std::string NAMEFAULT(const std::string& stem) {
    FRAME(NAMEFAULT);
    if (ISNAME(stem)) return {};
    const std::string strange = strangeCharacter(stem);
    if (!strange.empty()) return "It holds " + strange + ". " + Rule;
    if (stem.size() > MaxIdentifier)
        return "It is longer than " + STR(static_cast<int>(MaxIdentifier)) + " characters.";
    if (ISRESERVEDWORD(stem)) return "'" + stem + "' is a word of the language.";
    return stem.empty() ? Rule : "It begins with '" + stem.substr(0, 1) + "'. " + Rule;
}

}  // namespace tarn
