// SPDX-License-Identifier: Apache-2.0
//
// What a control looks like, without one: its widget is made as for a window, drawn into a picture, and deleted. The
// pictures are kept, so that a drawing of many controls of which one has changed makes one widget.
//
// Cost: a picture that is known costs a look-up, another one a widget. The kept ones have at most 64 MB.
#pragma once

#include "platform/object.h"

#include <QPixmap>

#include <string_view>

namespace tarn::platform::qt {

// Of a property list (see DrawControl), of that size in device-independent pixels; null if it is of no control. `font` is
// that of its window.
QPixmap controlPicture(std::string_view properties, const QSize& size, const Font& font, qreal ratio);

}  // namespace tarn::platform::qt
