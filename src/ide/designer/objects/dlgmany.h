// SPDX-License-Identifier: GPL-3.0-or-later
//
// What keys and menus do to all selected objects at once: each is one step, and redraws. With one object these are the
// operations of dlgobjects.h. Of several, all go or none: where one would leave the dialog it beeps. Locked ones stay.
// Cost: the positions of the selected objects are read and written, and the lists copied (DESIGNSTEP).
#pragma once

#include "library/designer/proputil.h"

namespace tarn {

// The place of an object, in resource units. It is set inside DESIGNSTEP; one that is the same already is not written.
UnitRect DESIGNPLACE(int index);
void SETDESIGNPLACE(int index, const UnitRect& place);
// Moved into the dialog; one that is too large lies at its left and upper edge.
UnitRect KEPTINSIDE(UnitRect place);

void MOVESELECTED(int dx, int dy);  // by resource units
void SIZESELECTED(int dw, int dh);
void DELETESELECTED();
void SELECTALLCONTROLS();  // in their order; none where the dialog has none
// Takes a control into the selection, or out of it.
void TOGGLESELECTED(int index);
// Changes the others by what a drag has changed of the first; they stay inside the dialog.
void FOLLOWSELECTED(int index, const UnitRect& before, const UnitRect& after);

}  // namespace tarn
