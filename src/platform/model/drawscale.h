// SPDX-License-Identifier: Apache-2.0
//
// Between the pixels of a window's drawing and those of its client area (operations/drawscale.h), for views.
#pragma once

#include "platform/model/model.h"
#include "platform/operations/drawscale.h"

namespace tarn::platform {

int drawScale(const Control& control);  // per cent, of its window

// How a drawing on a window, or on an image, is shown.
struct DrawLook {
    int scale = 100;  // per cent
    DrawColours colours = DESKTOP_COLOURS;
};
DrawLook drawLook(const Control& drawnOn);

// The pixel of the drawing that a pixel of the client area shows.
Point onDrawing(Point client, int percent);
// The pixels that show a rectangle of the drawing: neighbours there are neighbours here, and nothing vanishes.
Rect onClient(const Rect& drawing, int percent);

}  // namespace tarn::platform
