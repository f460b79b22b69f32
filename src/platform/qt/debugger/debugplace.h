// SPDX-License-Identifier: Apache-2.0
//
// Where the debugger's window opens: rectangles of frames, in pixels of the screen. Nothing fails; cost: constant.
#pragma once

#include <QRect>

namespace tarn::platform::qt {

// The rectangle, no larger than the room; one that was larger is moved into it, others may stand out as the user has left
// them.
QRect fittedPlace(const QRect& wanted, const QRect& room);
// A rectangle of that size, or one no smaller than `smallest`, that leaves the other one free: right of it, below, left or
// above, whatever has room first. Where nothing has: the lower right corner of the room, with the size.
QRect placeBeside(const QRect& other, const QRect& room, const QSize& size, const QSize& smallest);

}  // namespace tarn::platform::qt
