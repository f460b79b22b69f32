// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/debugger/debugplace.h"

#include <algorithm>

namespace tarn::platform::qt {

namespace {

constexpr int gap = 8;

// As near to the place as the room allows.
QRect movedInto(QRect frame, const QRect& room) {
    frame.moveLeft(std::max(room.left(), std::min(frame.left(), room.right() + 1 - frame.width())));
    frame.moveTop(std::max(room.top(), std::min(frame.top(), room.bottom() + 1 - frame.height())));
    return frame;
}

}  // namespace

QRect fittedPlace(const QRect& wanted, const QRect& room) {
    const QSize size = wanted.size().boundedTo(room.size());
    if (size == wanted.size()) return wanted;
    return movedInto({wanted.topLeft(), size}, room);
}

QRect placeBeside(const QRect& other, const QRect& room, const QSize& size, const QSize& smallest) {
    const int right = other.right() + 1 + gap, below = other.bottom() + 1 + gap;
    const QRect sides[] = {{right, room.top(), room.right() + 1 - right, room.height()},
                           {room.left(), below, room.width(), room.bottom() + 1 - below},
                           {room.left(), room.top(), other.left() - gap - room.left(), room.height()},
                           {room.left(), room.top(), room.width(), other.top() - gap - room.top()}};
    for (const QRect& side : sides)
        if (side.width() >= smallest.width() && side.height() >= smallest.height())
            return movedInto({other.topLeft(), size.boundedTo(side.size())}, side);
    const QSize fitting = size.boundedTo(room.size());
    return {{room.right() + 1 - fitting.width(), room.bottom() + 1 - fitting.height()}, fitting};
}

}  // namespace tarn::platform::qt
