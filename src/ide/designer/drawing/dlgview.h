// SPDX-License-Identifier: GPL-3.0-or-later
//
// What of the design is seen in the dialog editor's window. Above 100 % a design may be larger than the screen; then the
// window stays on it, and scroll bars lead to the rest. The edge of the window sizes the view then, not the dialog.
//
// How far the design is scrolled counts as margin of the picture (DIALOGGETMARGIN), so that all geometry knows it. Cost: a
// look at two controls; LAYOUTDESIGNVIEW measures the dialog.
#pragma once

#include "ide/designer/drawing/drawing.h"
#include "kernel/windows/windowing.h"

namespace tarn {

Rect DESIGNROOM();        // width and height that the client area of the window may have on the screen
bool DESIGNISSCROLLED();  // there is a scroll bar
Rect DESIGNSCROLLED();    // by how much, in pixels of the drawing (x, y)

// Gives the window its size and the scroll bars their places, for the picture; tells it how large the window may be.
void LAYOUTDESIGNVIEW(DesignPicture& picture);
void UNSCROLLDESIGN();      // takes the scroll bars away
bool SHOWSELECTEDOBJECT();  // scrolls to the first selected control, without a redraw; true if that was needed

}  // namespace tarn
