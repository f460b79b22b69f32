// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tools-Options-Paths: where classes, help, tools, examples and resources lie. The compiler's command line has two of
// them in it and follows. The first and the fifth are lists separated by ";".
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

bool PATHSOPTIONSDLG(const Object& window, int event, const Object& control, int parameter);
void PATHSOPTIONSDIALOG();
// Asks about paths, one a line, that are too long or lead to no folder; true if they may be stored.
bool CHECKPATHS(const std::string& title, const std::string& paths);
// The paths of a list with `drive` in front of those that have none. A path that begins with "/" needs none.
std::string ADDDRIVELETTERS(std::string_view drive, std::string_view paths);
// Puts the folder of a class on the inherited path, if it is not there; with `ask` only if the user says so.
void UPDATEINHERITPATHS(const std::string& title, const std::string& file, bool ask = true);

}  // namespace tarn
