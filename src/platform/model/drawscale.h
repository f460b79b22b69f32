// SPDX-License-Identifier: Apache-2.0
//
// Between the pixels of a window's drawing and those of its client area (operations/drawscale.h), for views.
#pragma once

#include "platform/model/model.h"

namespace tarn::platform {

int drawScale(const Control& control);  // per cent, of its window

// The pixel of the drawing that a pixel of the client area shows.
Point onDrawing(Point client, int percent);
// The pixels that show a rectangle of the drawing: neighbours there are neighbours here, and nothing vanishes.
Rect onClient(const Rect& drawing, int percent);

}  // namespace tarn::platform
