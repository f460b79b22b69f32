// SPDX-License-Identifier: Apache-2.0
//
// The words of the language: those that the grammar knows, and those that are kept for later.
//
// Cost: one binary search a look-up.
#pragma once

#include "library/system/product.h"

#include <string>
#include <string_view>

namespace tarn::toolchain {

enum class Word : unsigned char {
    None,   // no reserved word: a name
    Later,  // reserved, and no part of the grammar yet
    Adt,
    And,
    Array,
    Boolean,
    By,
    Callback,
    Case,
    Class,
    Const,
    Desc,
    Div,
    Downto,
    Each,
    Else,
    Elseif,
    End,
    Enum,
    Exit,
    External,
    False,
    Fixed,
    For,
    From,
    Function,
    If,
    In,
    Index,
    Inout,
    Integer,
    Iterate,
    List,
    Loop,
    Me,
    Mod,
    Not,
    Of,
    Onerror,
    Or,
    Out,
    Postcond,
    Precond,
    Private,
    Public,
    Real,
    Record,
    Return,
    Select,
    Set,
    String,
    Table,
    Then,
    Through,
    To,
    True,
    Type,
    Union,
    Uses,
    Var,
    When,
    Where,
    While,
};

// What a run of letters, digits and `_` means; without regard to case.
Word wordOf(std::string_view text);
std::string_view spelling(Word word);  // in lower case; empty for None and Later

inline constexpr std::size_t MaxNameLength = MaxIdentifier;

}  // namespace tarn::toolchain
