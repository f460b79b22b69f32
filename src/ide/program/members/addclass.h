// SPDX-License-Identifier: GPL-3.0-or-later
//
// A class that exists is added to the open program: its name goes into the Uses clause of the main class, and where it lies
// in no folder of the program the user chooses between a longer list of folders and a copy. What cannot be added is told.
//
// All files are changed together (programchanges.h). Cost: reads the class, refreshes the Program Window.
#pragma once

#include <string>

namespace tarn {

// Beeps unless the main file of the program is a class.
void PROJECTADDCLASS(const std::string& title);

}  // namespace tarn
