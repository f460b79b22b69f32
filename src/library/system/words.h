// SPDX-License-Identifier: Apache-2.0
//
// The words of the language, the token reader of the text-form parsers, and names made into identifiers.
// Positions are 1-based byte positions. Cost: linear in what is read.
#pragma once

#include "kernel/text/words.h"
#include "kernel/values/values.h"

#include <string>
#include <string_view>

namespace tarn {

// In any case.
bool ISRESERVEDWORD(std::string_view word);
bool ISFUTURERESERVEDWORD(std::string_view word);

// The token reader that all text-form parsers share; `position` is 1-based and ends behind the token. Empty
// at the end of the text, and where no token stands: `position` then stays at that character.
std::string NextWord(std::string_view text, std::size_t& position);

// ---- names for identifiers ----
// At most `maxLength` letters and digits; see TypeInfoIdentifier. Letters are kept, and digits behind the
// first character; all else becomes `replacement`, '_' too. A first character that is no letter becomes
// `replacement` if that begins with a letter, else "n".
std::string STRTOIDENTIFIER(std::string_view text, int maxLength, std::string_view replacement);
// Keeps '_' and the length. A first character that is neither a letter nor one of `firstSet` gets the first
// of `replacement` put ahead of it; that stands for each other character that cannot be in an identifier,
// which is left out when `replacement` is empty.
std::string STRTOIDENTIFIER(std::string_view text, std::string_view firstSet, std::string_view replacement);
// Makes the names of a type information text identifiers of the language: by the first form above with "_",
// and "_1" behind words that are reserved, now or for later; an empty name becomes "n". A name stands in
// double quotes or brackets, or ends where the line's reader ends it, or, with blanks in it, at " : ", or
// else at the first blank. Closing lines stay as they are, in any case. With `dropDeleteFlag` lines
// "delete_flag : Tchar" are left out. A CR at the end of a line goes.
std::string TYPEINFOFIXIDENTIFIERS(std::string_view text, int maxLength, bool dropDeleteFlag = false);
// By the second form above without a first set, and "_1" behind words that are reserved now. Lines without
// " : " behind the name, and "delete_flag : Tchar", stay as they are.
std::string TYPEINFOFIXIDENTIFIERS(std::string_view text, std::string_view replacement);
// In place: a text that cannot hold the repaired one stays as it was, with the error (804, 802); one of fixed
// length is cut with 615. 756 for what is no string.
void TYPEINFOFIXIDENTIFIERS(StringDescriptor* text, int maxLength, bool dropDeleteFlag = false);
// The lines are the strings of a list (761), which likewise stays as it was (618, 804, 802), except for the
// cut of single strings. One that is held in a file must be open.
void TYPEINFOFIXIDENTIFIERS(ListDescriptor* lines, int maxLength, bool dropDeleteFlag = false);

}  // namespace tarn
