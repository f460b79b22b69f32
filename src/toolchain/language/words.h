// SPDX-License-Identifier: Apache-2.0
//
// The words of the language: those that the grammar knows, and those that are kept for later.
//
// Cost: one binary search a look-up.
#pragma once

#include <string>
#include <string_view>

namespace tarn::toolchain {

enum class Word : unsigned char {
    None,   // no reserved word: a name
    Later,  // reserved, and no part of the grammar yet
    And,
    Boolean,
    By,
    Case,
    Class,
    Const,
    Div,
    Downto,
    Else,
    Elseif,
    End,
    Exit,
    False,
    For,
    From,
    Function,
    If,
    In,
    Inout,
    Integer,
    Iterate,
    Loop,
    Mod,
    Not,
    Onerror,
    Or,
    Out,
    Postcond,
    Precond,
    Private,
    Public,
    Return,
    Select,
    String,
    Then,
    To,
    True,
    Type,
    Uses,
    Var,
    When,
    While,
};

// What a run of letters, digits and `_` means; without regard to case.
Word wordOf(std::string_view text);
std::string_view spelling(Word word);  // in lower case; empty for None and Later

inline constexpr std::size_t MaxNameLength = 40;

}  // namespace tarn::toolchain
