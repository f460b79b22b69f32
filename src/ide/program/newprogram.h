// SPDX-License-Identifier: GPL-3.0-or-later
//
// New classes and new programs. The files of each are written together or not at all (changes.h): a class with its name in
// the Uses clause of the main class, a main class with its resource file.
//
// Cost: some files written, and the Program Window made anew.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// A class of the program that is open, else one in the current folder; it is shown in the Code window. `label` gets the
// name of the file that is shown there.
void PROJECTNEWNONMAIN(const Object& label, const std::string& title);

// Closes what is open, unless the user declines, and makes a program in the current folder, or, with `ask`, where the user
// wants it: its class in the Code window, its window in the dialog editor, its list in the Program Window. Without asking,
// a program that is still as this command has made it serves once more.
void PROJECTNEWMAIN(const Object& programWindow, const Object& label, const std::string& title, bool ask);

}  // namespace tarn
