// SPDX-License-Identifier: Apache-2.0
//
// The wrappers of the operations in platform/operations/dragging.h.
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
