// SPDX-License-Identifier: Apache-2.0
//
// Drawings that are shown larger or smaller than they are drawn. A header of its own, since few need it.
//
// The scale of a window holds for what is drawn on it from then on, for the places of the mouse that its events tell, and
// for TrackRect: all of these count pixels of the drawing, whatever its scale. Texts and controls are drawn at the scale,
// not blown up. Controls that the window has, and its position and size, are not touched. It goes with the window.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

inline constexpr int LEAST_DRAW_SCALE = 10, MOST_DRAW_SCALE = 1000;  // per cent

Answer<int> GetDrawScale(const Object& window);        // per cent; 100 where none was set
Code SetDrawScale(const Object& window, int percent);  // the nearest that is allowed

}  // namespace tarn::platform
