// SPDX-License-Identifier: Apache-2.0
//
// The string family of the system library. Texts are bytes, positions are 1-based byte positions, and letter
// case is that of ASCII. These functions compute on their arguments alone and cannot fail, but for what is
// told beside one. Cost: linear in the texts, whatever stands in them.
#pragma once

#include "kernel/values/values.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// The place of `what`, 0 if it is not there, or is empty. A start below 1 is 1.
int STRFIND(std::string_view what, std::string_view text, int from = 1, bool ignoreCase = true);
std::string STRLEFT(std::string_view text, int count);
std::string STRRIGHT(std::string_view text, int count);

// Without the blanks, tabs, CR and LF at the ends that the name tells.
std::string STRTRIM(std::string_view text);
std::string STRLTRIM(std::string_view text);
std::string STRRTRIM(std::string_view text);
// The same, but only CR and LF.
std::string STRLTRIMCRLF(std::string_view text);
std::string STRRTRIMCRLF(std::string_view text);

std::string STRLOWER(std::string_view text);
std::string STRUPPER(std::string_view text);
std::string STRNAMECASE(std::string_view text);         // each word with a capital
bool STREQUAL(std::string_view a, std::string_view b);  // without regard to case

int STRLINES(std::string_view text);                // the number of newlines
std::string STRLINE(std::string_view text, int n);  // line n without its line end; empty outside
// More than 40 lines are cut to 39 and "...(more)...".
// (`most` other than 40: as many lines, one less and the mark.)
std::string LIMITLINES(std::string_view text, int most = 40);
std::string STRNL2CRNL(std::string_view text);  // CR before each LF that has none

std::string STRADDQUOTES(std::string_view text);     // in double quotes
std::string STRREMOVEQUOTES(std::string_view text);  // without the pair of them around it

// Replaces `what` from `from` on, at most `most` times (0: always), and goes on behind what it has put in.
std::string STRREPLACE(std::string_view text, std::string_view what, std::string_view with,
                       bool ignoreCase = true, int from = 1, int most = 0);
std::string STRMAKE(int count, int character);
bool ISDIGITS(std::string_view text);  // digits alone, at least one

// ---- splitting ----

struct StringPair {
    std::string left, right;
};
// At the first run of blanks and tabs: what stands before it and behind it. Those around the text do not
// count.
StringPair STRSPLIT(std::string_view text);
// At the first separator; without one, or with an empty one, everything is left.
StringPair STRSPLIT(std::string_view text, std::string_view separator);
// All parts, or the first `most` - 1 and the rest as the last. The empty text has no parts; others have one
// more than separators.
std::vector<std::string> STRSPLIT(std::string_view text, std::string_view separator, int most);
// The parts as the strings of a list, which is emptied first. 761 for what is no list of strings; errors as
// ListAppend, with the parts before the one that did not fit.
void STRSPLIT(std::string_view text, std::string_view separator, int most, ListDescriptor* parts);

// ---- arguments of programs ----

// An argument line split as the tools read it: blanks separate, double quotes enclose, and inside of quotes
// two quotes stand for one.
std::vector<std::string> SPLITARGUMENTS(std::string_view line);
// The argument as it must stand in such a line.
std::string QUOTEARGUMENT(std::string_view argument);

// ---- keys ----

std::string KEYSTR(int keyCode);  // "Ctrl+A", "F1", "Del"; empty for a key without a name

}  // namespace tarn
