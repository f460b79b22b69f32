// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: what the windows of the environment need of the mouse beyond TrackRect (position.h). Programs of
// the language do not have them.
#pragma once

#include "platform/operations/position.h"

#include <vector>

namespace tarn::platform {

namespace types {

// What a drag keeps to beside its limits, in pixels of the client area.
struct DragGuides {
    std::vector<Rect> along;  // these move and grow with the rectangle, and stay inside the bounds as well
    std::vector<int> x, y;    // lines that its edges and its middle come to stand on when they are near
};

}  // namespace types
using namespace types;

// TrackRect with guides: bands show what goes along, and a line the guide that has drawn the rectangle. While Alt is held
// down the guides draw nothing. What goes along changes by what the result differs from `rect`.
Answer<Rect> TrackRect(const Object& window, TrackMode mode, const TrackLimits& limits, const Rect& bounds,
                       const Rect& rect, const DragGuides& guides);

enum MouseKey : int { MOUSE_CTRL = 0x1000, MOUSE_SHIFT = 0x2000 };

// The keys that were held down when the mouse was pressed last.
int GetMouseKeys();

}  // namespace tarn::platform
