// SPDX-License-Identifier: GPL-3.0-or-later
//
// The open program: which file is compiled, which window a Save means, and the commands that create things.
#pragma once

#include <string>

namespace tarn {

std::string PROJECTGETMAINFILE();   // the Program Window's main file; empty if no program is open
std::string COMPILERGETMAINFILE();  // that, or the file in the Code window
std::string GETSAVEWINDOW();        // lower-case name of the window that a Save means; may be empty
void SAVEALL();                     // the Code window, if its text is changed
void PROJECTNEWTEXTFILE();

}  // namespace tarn
