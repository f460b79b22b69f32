// SPDX-License-Identifier: Apache-2.0
//
// What the value of a property may be, and what it is at first.
//
// An options text is one line of which the first word, in any case, names the kind:
//
//   BOOLEAN                       True, False, Yes, No, T, F, Y or N, in any case
//   CHAR("abc")                   one letter of the string
//   COLOUR, COLOR                 a colour number, decimal or "0x" and hexadecimal digits (0xBBGGRR)
//   COLOUR(0:15), COLOR(0:15)     one of the 16 basic colours
//   CONST                         shown, not editable
//   ENUM(a,b,c)                   one of the names, as its number from 0
//   FILENAME(ext,ext)             a file
//   FOLDER                        a folder
//   INTEGER, INTEGER(a:b)         a decimal number; either bound may be left out
//   INTEGER(1-"One",2-"Two")      one of the numbers
//   INTEGER{1-"One",2-"Two"}      any combination of the bits
//   INTEGER[a:b]                  b - a + 1 numbers, separated by blanks (at most 1000)
//   NAME, NAME(a:b)               a symbol or nothing; a symbol of a to b characters
//   STRING, STRING(n)             any text of at most n characters
//   STRING("a","b")               one of the strings, in any case
//   HIDDEN                        anything; the sheet does not show it
//
// A value that is one of a list may have its label behind its number ("1-One"); the number counts. An unknown
// kind allows anything.
//
// These operations compute on their arguments (FOLDER looks at the disk) and never set the error cell. Cost:
// linear in the texts.
#pragma once

#include "library/source/bmptotxt.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// ---- values ----

struct ValueCheck {
    std::string message;   // empty: the value is fine
    std::string fallback;  // what stands for a value that is not
};
ValueCheck CHECKVALUE(std::string_view options, std::string_view value);
// The line of the options string that the value selects, moved by `step` (+1 or -1, around the ends); 0 gives
// the value in the form in which the list has it. The line that is the value is selected, else the first that
// has its number or, of strings, begins with it. A value that selects none, and one of a kind without a
// list, comes back as it was. An empty value selects the first line.
std::string GETNEXTVALUE(std::string_view options, std::string_view value, int step);
// What the user chooses from, one a line: "0-Left" of an ENUM, "1-One" of numbers, bare strings. Empty for
// kinds and forms without a list.
std::string MAKEOPTIONSSTRING(std::string_view options);

struct LengthLimits {
    int minimum = 0, maximum = 0;
    bool found = false;
};
LengthLimits GETMINMAX(std::string_view options);  // of NAME(a:b), with both bounds

// The values of the standard colours, by their numbers.
inline constexpr auto BasicColours = [] {
    std::array<std::uint32_t, STANDARDCOLOURS.size()> values{};
    for (std::size_t i = 0; i < values.size(); i++)
        values[i] = static_cast<std::uint32_t>(STANDARDCOLOURS[i].value);
    return values;
}();
std::string COLORSTOHEX();  // the basic colours as a text of two lines, eight in each
std::string GETFILEDESCRIPTION(std::string_view extension);

// ---- new objects ----

// The property list of a new object of a type; empty for what is no type. Controls of a dialog begin with
// black and white as colours, all else with what CHECKVALUE gives for nothing.
std::string GETOBJECTDEFAULTS(const std::string& type);
// `base` and the number after the highest that one of `names` (one a line) has behind those letters, in any
// case; 1 if none has. Gaps are not used.
std::string GETNEXTNAME(std::string_view names, std::string_view base);

// ---- characters ----

bool ISALPHA(char c);  // A to Z, a to z
bool ISALNUM(char c);
bool ISSYMBOL(char c);  // letters, digits and "_"
bool ISDIGIT(char c);
bool ISFILENAME(char c);  // may stand in a file name
bool ISSPACE(char c);     // blank, tab, CR, LF
// Whole texts; none holds for the empty one.
bool ISALPHASTR(std::string_view text);
bool ISALNUMSTR(std::string_view text);
bool ISSYMBOLSTR(std::string_view text);  // begins with a letter
bool ISDIGITSTR(std::string_view text);   // an optional sign, then digits
// An optional "0x", then at least one hexadecimal digit; more than one character in all.
bool ISHEXSTR(std::string_view text);
bool ISFILENAMESTR(std::string_view text);
bool ISWEBSITESTR(std::string_view text);  // begins with "http://www", in any case
bool ISMAILTOSTR(std::string_view text);   // begins with "mailto:", in any case, and holds "@"

}  // namespace tarn
