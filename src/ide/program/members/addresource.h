// SPDX-License-Identifier: GPL-3.0-or-later
//
// A resource file that exists is added to the open program: a class is made beside it, with a window function for each of
// its dialogs, and named in the Uses clause of the main class. Where the file lies in no folder of the program the user
// chooses between a longer list of folders and a copy. What cannot be added is told; no file is ever written over.
//
// All files are changed together (programchanges.h). Cost: the test of each dialog (designer/files/dlgtest.h).
#pragma once

#include <string>

namespace tarn {

// Beeps unless the main file of the program is a class.
void PROJECTADDRESOURCE(const std::string& title);

}  // namespace tarn
