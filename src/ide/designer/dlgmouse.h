// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the mouse does in the dialog editor: it selects, drags one object or all that are selected, and draws a band around
// those to be selected. `parameter` is that of the event.
#pragma once

namespace tarn {

void DESIGNPRESSED(int parameter);
void DESIGNSELECTAT(int parameter);  // without a redraw

// While on, edges and middles of what is dragged are drawn to those of other controls. A setting of the user.
bool SNAPISON();
void SETSNAP(bool on);

}  // namespace tarn
