// SPDX-License-Identifier: GPL-3.0-or-later
//
// Follows the programs that were started here and run under the debugger (kernel/debug/stopnotice.h): at each stop the Code
// window shows and marks the line, without coming forward and without a question, and the status line of the main window
// tells where the program stands. A text that has changes stays in the window; then the status line alone tells.
//
// Of several programs the one that stopped last is shown, and when that has ended the one that stopped last of the others.
// Cost: a look is one small file read for each program.
#pragma once

#include <string>

namespace tarn {

// Looks at a program that runs; `name` is what the user knows it by.
void FOLLOWPROGRAM(int process, const std::string& name);
// Whether it was seen under the debugger, since it was followed.
bool ISDEBUGGED(int process);
// It has ended: what it has left in the settings is shown, and another program that is stopped.
void FORGETPROGRAM(int process);
// Stops the program under the debugger that was started last of those that run; beeps if there is none.
void BREAKDEBUGGED();

}  // namespace tarn
