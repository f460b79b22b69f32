// SPDX-License-Identifier: Apache-2.0
//
// Profile strings: settings files of sections and key=value lines, words and tokens, and the controls of a
// dialog kept in such a file. Every call reads the whole file, and a write saves the whole file; nothing
// stays open. A missing file reads as empty; one that is there and cannot be read reads as empty and is not
// written. An empty file name or section makes a write do nothing, and so does a key that could never be found
// again: one that holds "=" or another character than 33 to 126, or begins with another character than a letter, a
// digit or "_". A failed write leaves the old file whole.
//
// A file that cannot be read or written is told in a box (651 to 654, 657), once for a file and a code until that works
// again, a change that is lost once for each thing that the user does; the program goes on, and LastError has the code
// then. A write that would change nothing is none.
//
// Cost: one pass over the file per call.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

// The value of a key, empty if absent. With an empty key all values of the section, a newline behind each.
std::string PROFILESTRGET(const std::string& file, std::string_view section, std::string_view key);
int PROFILESTRGETINT(const std::string& file, std::string_view section,
                     std::string_view key);                                     // 0 if no number
std::string PROFILESTRKEYS(const std::string& file, std::string_view section);  // one per line
std::string PROFILESTRSECTIONS(const std::string& file);                        // one per line, in file order
// With an empty key the section's entries become the numbered lines of `value`.
void PROFILESTRPUT(const std::string& file, std::string_view section, std::string_view key,
                   std::string_view value);
void PROFILESTRDEL(const std::string& file, std::string_view section, std::string_view key);

// What a write begins with when it finds `file` missing or empty; the text is asked for then. Null: nothing.
using ProfileOrigin = std::string (*)();
void PROFILESTRORIGIN(const std::string& file, ProfileOrigin origin);

// The values of a window's check boxes, radio buttons, edits and combo boxes, in the section of the window's
// name. Saving writes the file once, and not at all if nothing has changed; a file that cannot be read
// changes no control.
void LOADINIFILE(const std::string& file, const Object& window, bool withPosition = false,
                 bool withFont = false);
void SAVEINIFILE(const std::string& file, const Object& window, bool withPosition = false,
                 bool withFont = false);

// A word is a run of the characters 33 to 126; a token that starts with a double quote runs to the next one.
// Numbers and positions count from 1; a missing one gives 0 or the empty text.
int STRWORDCOUNT(std::string_view text);
std::string STRWORD(std::string_view text, int n);
int STRWORDPOS(std::string_view text, int n);
int STRTOKENCOUNT(std::string_view text);
std::string STRTOKEN(std::string_view text, int n);
int STRTOKENPOS(std::string_view text, int n);
void ADDWORD(std::string_view word, std::string_view separator, std::string& text);

int TOUPPER(int character);
int TOLOWER(int character);
std::string CREATEAUTOSENTENCE();
std::string CREATEAUTOTEXT(int length, std::string_view separator);
// "a" before a vowel becomes "an", "an" before anything else "a".
std::string FIXINDEFINITEPART(std::string_view sentence);
// What the sample text draws from: a number from 0 to bound - 1. Null restores the system's; gives the one
// before.
using RandomSource = unsigned (*)(unsigned bound);
RandomSource useRandomSource(RandomSource source);

std::string PROFILESTROSDIR();  // the variable WINDIR with a separator at its end; empty if it is not set

}  // namespace tarn
