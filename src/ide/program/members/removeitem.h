// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a row of the Program Window stands for is removed from the program, when the user has confirmed it: a dialog, a
// version block or a file from its resource file, a class from the Uses clauses of all classes. Files are deleted only
// where the user has ticked that.
//
// All files are changed together (programchanges.h). What was done is told at the end, and what cannot be done instead.
// Cost: reads the classes of the program for one of them; refreshes the Program Window.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

// Beeps if nothing is selected.
void PROJECTITEMDELETE(const Object& window);

}  // namespace tarn
