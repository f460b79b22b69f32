// SPDX-License-Identifier: GPL-3.0-or-later
//
// The zoom of the dialog editor: the design is shown larger or smaller than the running window will be. Positions, the
// geometry and what is under the mouse count the pixels of 100 % at every zoom, so nothing but the size of the editor's
// window depends on it.
//
// It stands in the window's label `zoomstr`, and behind the name in its caption where it is not 100. Each dialog opens at
// 100 %. Cost: a redraw.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

int DIALOGGETZOOM();              // per cent; 100 without a dialog
void DIALOGSETZOOM(int percent);  // without a redraw
// One step larger or smaller, or back to 100 % with 0; a sound where there is no further step.
void DIALOGZOOM(int step);

// How small and how large the user can make the editor's window, by the property list of the dialog.
inline constexpr int LEAST_SIDE = 12;  // pixels of a dialog
void LIMITDESIGNSIZE(const std::string& dialog);

// Whether a zoom of the last second has given the window that size, so that it is not the user's.
bool ISGIVENSIZE(const Rect& client);

// The pixels on the screen that so many of the drawing take, and how many of the drawing find room in so many there.
int ZOOMEDPIXELS(const Object& window, int pixels);
int UNZOOMEDPIXELS(const Object& window, int pixels);
// How near to the edge of a control the mouse takes hold of it: never harder to hit than at 100 %.
int HANDLEPIXELS(const Object& window);

}  // namespace tarn
