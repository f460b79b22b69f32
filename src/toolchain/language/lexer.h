// SPDX-License-Identifier: Apache-2.0
//
// Source text to tokens. Blanks, tabs, line ends and comments (`//` to the end of the line) separate tokens
// and have no other meaning. What newcomers bring from other languages (`!=`, `&&`, quotes of other kinds) is
// told with its right form, and read as that.
//
// Cost: linear; a token is a view into the source, which must outlive it.
#pragma once

#include "toolchain/language/words.h"
#include "toolchain/output/messages.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

enum class TokenKind : unsigned char { End, Name, Word, Integer, Fixed, Real, String, Symbol, Bad };

struct Token {
    TokenKind kind = TokenKind::End;
    Word word = Word::None;
    bool firstOnLine = false;
    bool told = false;  // in the place of a sign of another language, with a message
    int line = 1;
    std::string_view text;    // as written; a string with its quotes
    std::int64_t number = 0;  // of an integer, at most 2^32; of a fixed number 10000 times as much
    double real = 0;
};

// All tokens of `source`, the last of kind End. What is no token is reported and comes as Bad.
std::vector<Token> scan(std::string_view source, const std::string& file, Messages& messages);

// The characters of a String token.
std::string stringValue(std::string_view text);

}  // namespace tarn::toolchain
