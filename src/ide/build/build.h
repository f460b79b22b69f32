// SPDX-License-Identifier: GPL-3.0-or-later
//
// Builds: what may be built, and whether a program is current. The truth is in the files: the make tool is asked each time.
// How a program comes to run is told in start.h.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Builds the program of `file`, which a save may give a name, and shows the errors; `ok`: there were none.
void RUN_BUILD(const std::string& title, const std::string& makeOptions, std::string& file, bool& ok);
// Compiles the class in the Code window, and tells the outcome.
void RUN_COMPILE(const Object& window);
bool ISUPTODATE(const std::string& file);
// Shows the compiler's messages, or clears the error window when there are none: true.
bool UPDATEERRORWINDOW(const std::string& compilerDir);
void SHOWNOCLASSERROR(const std::string& title, const std::string& file);

}  // namespace tarn
