// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: places and sizes in pixels, text measures, rows of buttons, and dragging a rectangle
// with the mouse.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

// Of the screen: its work area. Of a printer: 0, 0 and the printable area of a page, in dots.
Answer<Rect> GetPosition(const Object& object, Unit unit);
Code SetPosition(const Object& object, Unit unit, const Rect& rect);
// Limits of a window: width and height of its client area, 0 for none; x and y only tell where a maximised
// window goes.
Answer<Rect> GetMinPosition(const Object& window);
Code SetMinPosition(const Object& window, const Rect& rect);
Answer<Rect> GetMaxPosition(const Object& window);  // all zero: the whole screen
Code SetMaxPosition(const Object& window, const Rect& rect);
Rect ScreenSize();  // the work area of the screen with the active window
Desktop DesktopInfo();

Answer<int> WindowWidth(const Object& object);  // of the frame; of a control its own
Answer<int> WindowHeight(const Object& object);
// What can be filled: the client area of a window, the printable area of a printer's page, the work area of
// the screen; of a control its own size.
Answer<int> GetPageWidth(const Object& object);
Answer<int> GetPageHeight(const Object& object);
Answer<int> GetDpiX(const Object& object);  // dots per inch of the screen, or of a printer
Answer<int> GetDpiY(const Object& object);

// In pixels, in the current font of the window or control, on a printer in dots. Without a screen a letter is
// 6 pixels wide and a line 13 high.
Answer<int> TextWidth(const Object& window, std::string_view text);
Answer<int> TextHeight(const Object& window, std::string_view text);

// Puts the visible push buttons of a window in order after its size has changed. Those that share some height
// are a row. Each row is centred with even gaps (that of its first two) and one top edge, and all rows move
// together so that the lowest ends 8 pixels above the lower edge. Other controls stay.
Code AlignItems(const Object& window);

// Lets the user move or resize a rectangle with the mouse until the button is released. `mode` TRACK_NEW
// draws a new one from the point where the button was pressed; TRACK_MOVE moves `rect`, or resizes it when
// the button was pressed within `limits.handle` pixels inside one of its edges. The result stays inside
// `bounds`, is no smaller than the limits say, and what has moved lies on the grid of `limits.step` that
// begins in the corner of `bounds`. Pixels of the client area. Escape, a window that goes, and a mouse that moves no
// farther than in a click give `rect` back. Without a mouse button that is down it is given back at once.
Answer<Rect> TrackRect(const Object& window, TrackMode mode, const TrackLimits& limits, const Rect& bounds,
                       const Rect& rect);

}  // namespace tarn::platform
