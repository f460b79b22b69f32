// SPDX-License-Identifier: Apache-2.0
//
// The mouse over windows of the model: presses, double clicks and right clicks are told to the window function
// before a widget has them, with the place in the window's client area.
#pragma once

#include <QPoint>

class QEvent;
class QWidget;

namespace tarn::platform::qt {

// True: the window function has handled the event, or the window has gone; the widget does not get it.
bool hearMouse(QWidget& receiver, QEvent& event);
// The wheel with Ctrl over what a window draws itself is the key Ctrl+Plus or Ctrl+Minus. True: it was handled.
bool hearWheel(const QWidget& receiver, const QEvent& event);
QPoint lastPress();  // where the left button went down last, on the screen

}  // namespace tarn::platform::qt
