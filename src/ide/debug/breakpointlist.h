// SPDX-License-Identifier: GPL-3.0-or-later
//
// The breakpoints that stand in the settings, for the programs that are started under the debugger: the value of
// `breakpoints` in the section "debug", words separated by blanks: a class, its lines, the next class. A program that
// runs has a copy of its own, and writes it back at its end if the user has changed it there.
//
// Names of classes compare without regard to case. Cost: the settings file, where one is read or written.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct Breakpoint {
    std::string className;
    int line = 0;  // from 1
    bool operator==(const Breakpoint&) const = default;
};

// A word that is no whole number is the class of the numbers behind it; numbers without a class, and those below 1, are
// left out.
std::vector<Breakpoint> PARSEBREAKPOINTS(std::string_view value);
// In their order; a class stands where it differs from that of the one before.
std::string FORMATBREAKPOINTS(const std::vector<Breakpoint>& breakpoints);

std::vector<Breakpoint> STOREDBREAKPOINTS();
void STOREBREAKPOINTS(const std::vector<Breakpoint>& breakpoints);
// Which of them a program would not get, in words: it takes 200, from 1024 characters. Empty if it gets all.
std::string BREAKPOINTSFAULT(const std::vector<Breakpoint>& breakpoints);

bool ISCLASSNAME(std::string_view word);  // whether a class can have that name

}  // namespace tarn
