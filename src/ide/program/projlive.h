// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Program Window follows the files: when the user comes to it and a file of the program has changed since it was
// read, the list is made again, behind the click or key that brought the user. What is open stays open, and the row that
// was selected is found again by what it stands for. A dependency list that fails leaves the window as it is, without a
// word, until a file changes again.
//
// Cost: coming to the window asks the disk for the time of each file, some 2 us each.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// The window shows the program as these files, one a line, now stand on the disk.
void NOTEPROJECTFILES(const Object& window, const std::string& files);
void NOTEPROJECTFILES(const Object& window);  // the files that were noted last
// The user has come to the window: whether it will be read again.
bool PROJECTCAMEFORWARD(const Object& window);
// The timer that PROJECTCAMEFORWARD has set has come.
void PROJECTFOLLOWFILES(const Object& window);

}  // namespace tarn
