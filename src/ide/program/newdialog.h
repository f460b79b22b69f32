// SPDX-License-Identifier: GPL-3.0-or-later
//
// A new dialog for the open program: its text from the template Template.DialogBody at the end of a resource file, its
// window function from Template.FunctionBody in the class beside that file.
//
// Both files are changed, or none is (changes.h); a full disk or a file that cannot be written is told. Files in which the
// new dialog could not be found again get their old texts back. A class in the Code window is changed there, by one edit
// that can be undone, and not on the disk.
//
// Cost: reads and writes both files, and refreshes the Program Window.
#pragma once

namespace tarn {

// Asks about changes of the open dialog, adds the new one, and opens it. It goes to the files of the selected row of the
// Program Window; else to those of the class in the Code window; else to a new resource file in the current folder.
void PROJECTNEWDIALOG();

}  // namespace tarn
