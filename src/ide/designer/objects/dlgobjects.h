// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is done to the objects of a dialog: adding, deleting, moving, sizing, changing their order, editing their
// properties. An index is 1 for the dialog, n > 1 for item n of `datalist`, -1 for the menu.
//
// Call them inside DESIGNSTEP (dlgstep.h); ADDOBJECT alone makes a step of its own. They change the lists and nothing else:
// the caller redraws. What is not possible beeps, and gives false.
//
//   dlgobjects.cpp  deleting, moving, sizing, the order     dlgadd.cpp  adding: names, places and sizes of new ones
//   ../properties/dlgprops.cpp  editing
//
// Cost: an operation on one object reads and writes its property list; a new name and the order read those of all.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// A new object of the type, from its defaults, with a free name; the option is "horizontal", "vertical", or has no
// meaning. x and y are pixels of the window; -1 for both looks for a free place. Selects it, redraws and shows the window.
bool ADDOBJECT(const Object& window, const std::string& type, const std::string& option, int x, int y);

// Whether the dialog takes so many controls more; tells the user if it does not.
bool MAYADDCONTROLS(int more);

// `lock` is the caption of ctlprotectstr: objects stay unless it is "0".
bool DELETEOBJECT(const Object& datalist, const Object& menulist, int index, const std::string& lock);
// By resource units. The control stays inside the dialog.
bool MOVECONTROLXY(const Object& datalist, int index, int dx, int dy);
bool SIZECONTROL(const Object& datalist, int index, int dw, int dh);  // of the dialog too; not below one unit
// Past all controls that it overlaps, which the user is asked about: above them with `direction` 1, below them with -1.
bool MOVECONTROLZ(const Object& datalist, int index, int direction);

// Lets the user edit the properties of an object, or the menu. True if anything has changed.
bool EDITOBJECT(const Object& datalist, const Object& menulist, int index, const std::string& helpFile,
                const std::string& propertyHelpKey, const std::string& menuHelpKey);
// Puts right what an edit of an object's properties has left.
void POSTEDITCHECK(const Object& datalist, int index);

}  // namespace tarn
