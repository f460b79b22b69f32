// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Properties window: the properties of what is selected in the dialog editor, beside the design. It stays open, follows
// the selection, and each value is part of the design as soon as it is entered: by Return, by choosing, or by leaving its
// field. Esc takes back what was typed; a value that the property may not have is told in a box, and the old one stays.
//
// Of several objects it shows the properties that all have with the same choices, but not NAME and TYPEOF; where they differ
// the value is empty, with a hint. A change goes to all of them in one step.
//
// The window has a row for each property that fits, and a scroll bar for the others. All state is in its controls:
//
//   edtsearch     only properties with this in their names, in any case
//   sclrows       how many of them are above the first row
//   lblobjects    the objects whose properties are shown, as SELECTEDOBJECTS gives them
//   lblshown      the values as they were shown, one a line: a row with another one has been typed in
//   lblnote       stands in place of the rows when there are none
//
// While it is not open all of these do nothing. Cost: reading the properties of the selected objects.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

inline const Object PropertyDlg("PropertyDlg");

// Opens it beside the dialog editor, or closes it; from then on it opens with the dialog editor, or no more.
void PROPERTYWINDOWTOGGLE();
// With the dialog editor: opens it if the user has had it open, and closes it.
void PROPERTYWINDOWOPEN();
void PROPERTYWINDOWCLOSE();
bool PROPERTYWINDOWVISIBLE();

// Shows what is selected now, as it stands in the lists. What is being typed stays while its object and its value do.
void REFRESHPROPERTYWINDOW();
// Makes what is being typed part of the design. False if the user has been told that it cannot be.
bool KEEPTYPEDPROPERTY();
// Moves the user there; false if it is not open.
bool GOTOPROPERTYWINDOW();

bool PROPERTYDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
