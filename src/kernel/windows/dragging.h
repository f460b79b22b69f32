// SPDX-License-Identifier: Apache-2.0
//
// Drags that follow guides, and the keys held with the mouse, as modules call it: like windowing.h these put a failure
// into the error cell. What they do is told in platform/operations/dragging.h. Programs do not have them.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/dragging.h"

namespace tarn {

using platform::DragGuides;
using platform::GetMouseKeys;
using platform::MOUSE_CTRL;
using platform::MOUSE_SHIFT;

inline Rect TrackRect(const Object& window, TrackMode mode, const TrackLimits& limits, const Rect& bounds,
                      const Rect& rect, const DragGuides& guides) {
    return detail::bare(platform::TrackRect(window, mode, limits, bounds, rect, guides));
}

}  // namespace tarn
