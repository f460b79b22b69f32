// SPDX-License-Identifier: Apache-2.0
//
// The tokens of one line of a resource file: blanks, comments, strings with their escapes; and what a line can begin.
// Cost: linear in the line.
#pragma once

#include "platform/resources/rctext.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

enum class TokenKind { Word, String, Other };

struct Token {
    TokenKind kind = TokenKind::Other;
    std::string text;  // a string's value
    Span span;
};

struct Tokens {
    std::vector<Token> list;
    bool unterminated = false;
    [[nodiscard]] bool word(std::size_t i, std::string_view text) const {
        return i < list.size() && list[i].kind == TokenKind::Word && sameText(list[i].text, text);
    }
};

// Strings of a statement are paths, where only the doubled backslash and the quote are escapes. `lineBegin` is where the
// line begins in its file, for the spans.
Tokens tokenize(std::string_view line, std::size_t lineBegin);

// A string that begins at `at`, which is moved behind it; its value goes to `into`. False if it does not end on this line.
bool readString(std::string_view line, std::size_t& at, bool path, std::string& into);

bool isWordByte(char c);
std::size_t skipBlanks(std::string_view line, std::size_t at);
bool atComment(std::string_view line, std::size_t at);
bool isNumberOrSymbol(std::string_view word);
bool isWindowKind(std::string_view word);

// Whether a statement begins with two words, its name and its kind.
bool isNamed(const Tokens& tokens);
// The head of a window or of a menu: a name and its type. A number stands there as the name that other resource files have;
// it is a fault.
bool isBlockHead(const Tokens& tokens);
// name VERSIONINFO, where the name may be a number.
bool isVersionHead(const Tokens& tokens);
// Whether the line begins a statement wherever it stands, so that a block above it is over.
bool opensStatement(const Tokens& tokens);

}  // namespace tarn::platform
