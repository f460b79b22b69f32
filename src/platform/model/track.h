// SPDX-License-Identifier: Apache-2.0
//
// How a rectangle follows the mouse, for views: pure arithmetic, so that it can be tested without a screen.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

struct Point {
    int x = 0, y = 0;
};

// A drag from the point where the button was pressed.
struct Track {
    TrackMode mode = TRACK_MOVE;
    TrackLimits limits;
    Rect bounds, start;
    Point pressed;
};

// The rectangle when the mouse stands at `now`.
Rect tracked(const Track& track, Point now);
// What a press there takes hold of: -1 the left or upper edge, 1 the right or lower one, 0 neither. Both 0: it
// moves the whole.
Point trackHandle(const Track& track);

}  // namespace tarn::platform
