// SPDX-License-Identifier: Apache-2.0
//
// How what newcomers bring is recognised, for the sources parser_foreign*.cpp. Each habit is told once, where it
// stands, with what is written here; then the parser goes on as if that stood there, so that one cause gives one message.
//
// Words of the tables are free as names: they are told only where no statement of this language could stand.
#pragma once

#include "os/text/ascii.h"
#include "toolchain/language/parser_internal.h"

#include <cstddef>
#include <string_view>

namespace tarn::toolchain {

// So many tokens are looked at ahead: a hostile text costs no more than its length.
inline constexpr std::size_t Reach = 200;

// The entry of a word, or null.
template <class Table, class Key>
auto entryOf(const Table& table, Key key, std::string_view text) -> decltype(&table[0]) {
    for (const auto& entry : table)
        if (ascii::equal(entry.*key, text)) return &entry;
    return nullptr;
}

// Words that end a block elsewhere, or one of its parts.
struct ForeignEnd {
    std::string_view word;
    Word closes;
};

bool isFunctionWord(std::string_view text);  // a word in the place of `function`

inline bool isSymbolToken(const Token& token, std::string_view text) {
    return token.kind == TokenKind::Symbol && token.text == text;
}

// A statement of this language goes on so behind a name.
inline bool goesOn(const Token& token) {
    return isSymbolToken(token, ":=") || isSymbolToken(token, ".") || isSymbolToken(token, "[") ||
           isSymbolToken(token, "(");
}

inline bool isTypeWord(Word word) {
    return word == Word::Integer || word == Word::Boolean || word == Word::Fixed || word == Word::Real ||
           word == Word::String;
}

}  // namespace tarn::toolchain
