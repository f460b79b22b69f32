// SPDX-License-Identifier: GPL-3.0-or-later
//
// The items of the Edit menu that change with what there is to undo: the restore points of the Code window's file, newest
// first under the headings of their days, and the two for the steps of the text itself, or of the dialog editor while that is
// in front.
//
// Cost of bringing them up to date: a look at the file's folder, and the menu is made anew only when it would differ.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Notes the handles of the 50 items, while the menu is as the resource has it.
void NOTEUNDOITEMS();
// A heading for each day, "*" in front of it, and the files below. A file without a date in its name is left out;
// what stands in the place of one, as the parentheses of a folder, counts as one, so that the file can be restored.
std::string APPENDDATEHEADINGS(const std::string& files);
// Makes the array of menu items anew from lines; those with a "*" are headings and disabled. At most 50 are shown.
void POPULATEMENUITEMS(const Object& menuArray, const std::string& items);

bool CANUNDOTYPING();  // the user works in the Code window, and there is a step
bool CANREDOTYPING();
void UPDATEUNDOMENU();         // all of it; nothing unless Main is loaded
void UPDATEUNDOTYPINGITEMS();  // the two alone; the same

}  // namespace tarn
