// SPDX-License-Identifier: GPL-3.0-or-later
//
// The root of the environment: the main window, the order of start and stop, and the commands.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <vector>

namespace tarn {

// Runs the environment; returns when the main window has gone, and then ends the process.
void RUNIDE();

// The top-level error function: a second instance hands its file over; some errors may be continued.
void IDE_ONERROR(std::int32_t code);

bool MAIN(const Object& window, int event, const Object& control, int parameter);
void DO_LOAD();
void DO_UNLOAD();
// Menus, hidden labels and enabled states; nothing unless Main is loaded.
void UPDATEMAINWINDOW();
// Moves the focus back to the window named in `lbllastactive`.
void REACTIVATELASTWINDOW();
const std::vector<Object>& SDIWINDOWS();               // those in which the user works
bool ISSDIWINDOW(const Object& window);                // one of them, which is visible
std::string CHECKINIFILE(const std::string& iniFile);  // missing sections, one per line

}  // namespace tarn
