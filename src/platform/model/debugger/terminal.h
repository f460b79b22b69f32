// SPDX-License-Identifier: Apache-2.0
//
// The debugger where there is no screen: what the window would show goes to the standard error, what the user wants is
// read from the standard input, a line at a time, so that the program's own reading goes on behind the lines that were
// meant for the debugger.
//
//   stop run into step break ...   the commands, by their words or any beginning that only one of them has
//   12, line 12                    selects a line
//   list, list 40                  twenty lines from there on, or the next twenty
//   open                           what a double click does: expand, go there, toggle
//   edit                           the value, or the rule of the breakpoint, of the selected line
//   ?                              the words
//
// The interrupt key breaks into the program; pressed again before the program has come to a statement it ends it.
#pragma once

#include "platform/model/debugger/debugwindow.h"

#include <functional>
#include <string>

namespace tarn::platform {

// Returns when `until` is true or nobody can be asked: the standard input is no terminal, pipe or file, or is at its end.
void debugAtTerminal(DebugWindow& window, const std::function<bool()>& until);
// Whether the interrupt key breaks into the program, if somebody can be asked; else it is what it was before.
void hearInterrupt(bool on);
bool isAtTerminal();  // inside of debugAtTerminal
std::string
askAtTerminal(const Question& question);  // the answer; empty for one that fits nothing, and at the end

}  // namespace tarn::platform
