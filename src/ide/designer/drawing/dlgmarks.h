// SPDX-License-Identifier: GPL-3.0-or-later
//
// The marks that stand above the controls of a design, beside the handles of the first selected one (dlgdraw.h). Each draws
// between StartGraph and EndGraph, in pixels from its origin. Errors: those of the drawing operations.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

// As DRAWHANDLERECT, with handles that are outlines on a ground.
void DRAWHOLLOWHANDLERECT(const Object& window, const Rect& rect, int size, int line, int ground);
// A padlock in the upper right corner, inside of its handle.
void DRAWLOCKMARK(const Object& window, const Rect& rect, int ink, int ground);
// A number in a box in the upper left corner, in the font of the drawing.
void DRAWNUMBERMARK(const Object& window, const Rect& rect, int number, int ink, int ground);

}  // namespace tarn
