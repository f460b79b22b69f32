// SPDX-License-Identifier: GPL-3.0-or-later
//
// Scroll bars around a drawing that is larger than its place: one below it, one to its right, each shown only while it is
// needed. What they show is read from their values; there is no other store. All numbers are pixels of the screen.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

inline constexpr int SCROLLBAR_WIDTH = 16;

struct ScrollBars {
    Object across, down;
};

// Lays the bars into a place for a drawing of that size. What is left of the place is the result.
Rect LAYOUTSCROLLBARS(const ScrollBars& bars, const Rect& place, int width, int height);
// By how much the drawing is moved to the left (x) and up (y).
Rect SCROLLEDBY(const ScrollBars& bars);
// Scrolls so that a part of the drawing comes into a view of that size, its beginning if not all of it can.
void SCROLLINTOVIEW(const ScrollBars& bars, const Rect& view, const Rect& part);
// One step: -1 or 1 in either direction. False where there is none.
bool SCROLLBY(const ScrollBars& bars, int across, int down);

}  // namespace tarn
