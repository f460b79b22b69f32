// SPDX-License-Identifier: GPL-3.0-or-later
//
// Starts a built program, which then runs by itself; see output.h.
#pragma once

#include <string>

namespace tarn {

// Notes the debug settings for the program, adds the arguments of Run-Arguments and starts it without
// waiting. `title` is that of its questions. `runTo`, a class and a line, is where a program under the debugger stops first.
void RUNEXEFILE(const std::string& title, const std::string& exe, int trace, bool singleStep,
                const std::string& runTo = {});

}  // namespace tarn
