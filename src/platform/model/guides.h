// SPDX-License-Identifier: Apache-2.0
//
// How a drag follows its guides, for views: the arithmetic, and the guides of the drag that is under way.
#pragma once

#include "platform/model/track.h"
#include "platform/operations/dragging.h"

#include <vector>

namespace tarn::platform {

inline constexpr int GUIDE_REACH = 4;  // pixels from which a guide draws a rectangle

// Of the drag that a view is asked for; empty for one without.
const DragGuides& dragGuides();

// The rectangle when the mouse stands at `now`; `free` lets the guides draw nothing.
Rect tracked(const Track& track, Point now, const DragGuides& guides, bool free = false);
// What goes along with it when it is `rect`, in their order.
std::vector<Rect> trackedAlong(const Track& track, const Rect& rect, const DragGuides& guides);
// The guides that an edge or the middle of a rectangle lies on: of each direction the first, or -1.
Point guidesAt(const Rect& rect, const DragGuides& guides);

// For views: the keys that are held down at a press, told before the press is.
void userMouseKeys(int keys);

}  // namespace tarn::platform
