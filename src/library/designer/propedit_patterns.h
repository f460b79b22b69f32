// SPDX-License-Identifier: Apache-2.0
//
// Patterns: regular expressions and LIKE patterns are compiled to one form, which one matcher reads.
//
// A compiled pattern is a string of items:
//
//   code  size       matches
//   L     2          the character behind it
//   .     1          any one character
//   ^     1          nothing, at position 1 of the text
//   $     1          nothing, behind the last character
//   [     count + 2  one of `count` characters; the first character behind the code is the count
//   !     count + 2  one character that is none of them
//   *     1          the next item, as often as it fits, then less often
//   ?     1          the next item, once if it fits, then not at all
//
// In a regular expression "." is any character, "[...]" a set and "[^...]" all but a set, "*", "+" and "?"
// repeat the item before them, "^" at its first and "$" at its last position are the ends of the text. In a
// LIKE pattern "?" is any character, "*" any text, "#" a digit, "[...]" and "[!...]" sets, and the pattern
// covers the whole text. In both "\n" is LF, "\t" TAB, and any other character behind "\" itself; "-" between
// two letters or digits of a set is a range.
//
// Positions are 1-based; an end is the position behind the last character.
//
// A pattern that cannot be compiled, and a compiled text that is none, is a mistake of the program: 687 with
// a text of its own. Matching calls nothing again and again: it keeps its way back in memory and never tries
// a place twice, so its cost is at most the length of the text times that of the pattern. A match that needs
// more steps than PatternSteps and 100 for each character of the text is given up with 803, as no match; only
// patterns of thousands of items can come to that. Each call of ISMATCH, GETMATCHPOS and ISLIKE compiles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int64_t PatternSteps = 100'000'000;

struct CompiledPattern {
    std::string items;
    bool failed = false;  // `items` is empty then
};
CompiledPattern COMPILEREGEXPATTERN(std::string_view pattern);
CompiledPattern COMPILELIKEPATTERN(std::string_view pattern);

struct MatchPlace {
    std::size_t start = 0;  // 0: there is none
    std::size_t end = 0;
    friend bool operator==(const MatchPlace&, const MatchPlace&) = default;
};
// The first place of the text where the items match.
MatchPlace REGEXMATCH(std::string_view text, std::string_view compiled);
MatchPlace GETMATCHPOS(std::string_view text, std::string_view pattern);  // of a regular expression
bool ISMATCH(std::string_view text, std::string_view pattern);            // it matches anywhere
bool ISLIKE(std::string_view text, std::string_view pattern);             // a LIKE pattern covers the text

// ---- the steps of it ----

// The character at the position; behind `escape` the one that is meant, with the position moved on to it. NUL
// behind the end of the pattern.
char COMPILEESCAPECHAR(char escape, std::string_view pattern, std::size_t& position);
// Adds the characters of a set to `set` up to `end` or the end of the pattern, where the position then is. A
// range that runs downward takes back all that was added.
void COMPILERANGE(char end, std::string_view pattern, std::size_t& position, std::string& set);
// Adds the item of the set that begins at the position, and moves to its "]". The result is the number of
// characters; more than 255 do not fit into the item.
std::size_t COMPILECHARCLASS(char negator, std::string_view pattern, std::size_t& position,
                             std::string& compiled);
// Repeats the item at `last` as "*", "+" or "?" says.
void COMPILECLOSURE(char character, std::string& compiled, std::size_t last);
// Whether the set of which the count stands at `position` holds the character.
bool LOCATE(char character, std::string_view compiled, std::size_t position);
// How many characters the item at p eats at position i of the text; -1 for no match.
int CHARMATCH(std::string_view text, std::size_t i, std::string_view compiled, std::size_t p);
std::size_t PATTERNSIZE(std::string_view compiled, std::size_t p);
// The position behind the match of all items from p on at i; 0 for no match.
std::size_t TRYMATCH(std::string_view text, std::size_t i, std::string_view compiled, std::size_t p);

}  // namespace tarn
