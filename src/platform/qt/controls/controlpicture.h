// SPDX-License-Identifier: Apache-2.0
//
// What a control looks like, without one: its widget is made as for a window, drawn into a picture, and deleted. The
// pictures are kept, so that a drawing of many controls of which one has changed makes one widget.
//
// Cost: a picture that is known costs a look-up, another one a widget. The kept ones have at most 64 MB.
#pragma once

#include "platform/object.h"

#include <QPixmap>
#include <QPoint>
#include <QRect>

#include <string_view>

namespace tarn::platform::qt {

// How a control falls on the pixels of a device.
struct PixelGrid {
    qreal ratio = 1;  // pixels of the device for one of the control
    QPointF offset;   // of its corner from that of the picture, in pixels of the device; below 1
    QRect seen;       // what of the picture is on the device, in its pixels; null: all
};

struct ControlPicture {
    QPixmap pixmap;
    QPoint corner;  // in the whole picture, of which a large one is only drawn where it is seen
};

// Of a property list (see DrawControl), of that size in device-independent pixels; null if it is of no control, or nothing
// of it is seen. `font` is that of its window.
ControlPicture controlPicture(std::string_view properties, const QSize& size, const Font& font,
                              const PixelGrid& grid);

}  // namespace tarn::platform::qt
