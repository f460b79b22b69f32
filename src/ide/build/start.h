// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the program of a class comes to run, alone or under the debugger: what must be built before, and with what debug
// information. The truth is in the files: the make tool and the symbol files are asked each time.
#pragma once

#include <string>

namespace tarn {

// Builds what is out of date, then starts the program. With `debug` all its classes need full debug information: what
// lacks it is compiled with it, all classes only if the user agrees; the program then stops at its first line.
void RUN_START(const std::string& title, bool debug, const std::string& file);
// The same under the debugger, but the program runs to that line of the class and stops there.
void RUN_TO_LINE(const std::string& title, const std::string& file, const std::string& className, int line);

}  // namespace tarn
