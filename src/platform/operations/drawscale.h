// SPDX-License-Identifier: Apache-2.0
//
// Drawings that are shown larger or smaller than they are drawn, or in other colours than the desktop's. A header of its
// own, since few need it.
//
// The scale of a window holds for what is drawn on it from then on, for the places of the mouse that its events tell, and
// for TrackRect: all of these count pixels of the drawing, whatever its scale. Texts and controls are drawn at the scale,
// not blown up. Controls that the window has, and its position and size, are not touched. It goes with the window.
//
// An image has a scale and colours of its own, which hold for what is drawn on it and for nothing else.
//
// The colours of a drawing are what controls, grounds, and letters and lines without a colour have in it: the desktop's,
// or those that a light or a dark desktop would have. A desktop that is so itself gives its own.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

inline constexpr int LEAST_DRAW_SCALE = 10, MOST_DRAW_SCALE = 1000;  // per cent

// Of a window, or an image; 702 for anything else.
Answer<int> GetDrawScale(const Object& object);        // per cent; 100 where none was set
Code SetDrawScale(const Object& object, int percent);  // the nearest that is allowed

namespace constants {
enum DrawColours : int { DESKTOP_COLOURS = 0, LIGHT_COLOURS = 1, DARK_COLOURS = 2 };
}  // namespace constants
using namespace constants;

Answer<DrawColours> GetDrawColours(const Object& object);
Code SetDrawColours(const Object& object, DrawColours colours);

}  // namespace tarn::platform
