// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the mouse does in the dialog editor: it selects, drags one object or all that are selected, and draws a band around
// those to be selected. `parameter` is that of the event.
//
// A locked control is selected and stays. Errors: those of TrackRect. Cost: a look at the places of all controls, and
// a redraw.
#pragma once

namespace tarn {

// A press of the left button, until it is let go.
void DESIGNPRESSED(int parameter);
void DESIGNSELECTAT(int parameter);  // without a redraw

// While on, edges and middles of what is dragged are drawn to those of other controls. A setting of the user.
bool SNAPISON();
void SETSNAP(bool on);

}  // namespace tarn
