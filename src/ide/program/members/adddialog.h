// SPDX-License-Identifier: GPL-3.0-or-later
//
// A dialog of any resource file is copied into the program: its text, with its menu, goes to the end of the resource file
// that is meant (GETCURRENTRESOURCE), and the class beside that gets its window function. A name that cannot be, or that is
// there already, is asked about until it is free.
//
// Both files are changed together (programchanges.h). A class in the Code window is changed there alone. Cost: the test of
// the dialog (designer/files/dlgtest.h), and the resource file read and written.
#pragma once

#include <string>

namespace tarn {

void PROJECTADDDIALOG(const std::string& title);

}  // namespace tarn
