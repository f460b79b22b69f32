// SPDX-License-Identifier: GPL-3.0-or-later
//
// Builds and starts: what may be built, whether a program is current, and how it comes to run. The truth is in the files:
// the make tool is asked each time.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Builds the program of `file`, which a save may give a name, and shows the errors; `ok`: there were none.
void RUN_BUILD(const std::string& title, const std::string& makeOptions, std::string& file, bool& ok);
// Compiles the class in the Code window, and tells the outcome.
void RUN_COMPILE(const Object& window);
// Builds what is out of date, then starts the program.
void RUN_START(const std::string& title, const std::string& file);
bool ISUPTODATE(const std::string& file);
// Shows the compiler's messages, or clears the error window when there are none: true.
bool UPDATEERRORWINDOW(const std::string& compilerDir);
void SHOWNOCLASSERROR(const std::string& title, const std::string& file);

}  // namespace tarn
