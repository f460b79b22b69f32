// SPDX-License-Identifier: GPL-3.0-or-later
//
// Programs that were started, and the output window, which shows what they write and takes their input.
//
// Nobody can tell of a program whether it has windows until it shows one, so each is started with pipes. The window
// comes up when a program writes something, or ends with an error; a program that does neither runs by itself, and only
// a window that is open anyway tells of it. What the window shows belongs to the program that was started last of those
// that wrote. Programs are read a little at a time, so that one that writes without end neither holds up the windows nor
// fills the memory: it waits for its reader, and the last lines are kept (outputtext.h).
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

inline const Object OutputDlg("OutputDlg");

// Starts the program in the folder and does not wait for it; a timer of the window reads what it writes. While one runs
// that the window shows, the user is asked first, under `title`. Codes as EXEC (library/system/programs.h).
void RUNPROGRAM(const std::string& title, const std::string& exe, const std::string& arguments,
                const std::string& folder);

bool OUTPUTDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
