// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the parts of a drawn dialog lie. A dialog is drawn as a picture in the client area of the dialog editor's
// window, inside a margin. All rectangles are pixels relative to the left upper corner of the drawn frame, unless
// something else is said.
//
// The window's font is the dialog's (DRAWWINDOW sets it); to measure a caption or a menu it is set to the frame's and back.
// Errors: those of the measures (a window that is not loaded), with rectangles of 0.
//
// Cost: each asks the window for the size of its letters, twice where a caption or a menu is measured; GETCLICKINDEX reads
// the positions of the controls.
#pragma once

#include "kernel/windows/windowing.h"
#include "library/designer/dlgunits.h"

#include <string>
#include <string_view>

namespace tarn {

// How large the letters of the window's font are, also where it is the desktop's, of which no number is told: then they are
// those that are as high. 6 to 40.
int FONTPOINTS(const Object& window);

// The letters of the frame's own texts.
inline constexpr std::string_view FRAME_FONT = "Microsoft Sans Serif";
inline constexpr int FRAME_FONT_SIZE = 8;

// How much of the frame is drawn.
enum FrameMode : int { CLIENT_ONLY = 0, CLIENT_AND_MENU = 1, FULL_FRAME = 2 };

struct FrameRects {
    Rect position;                      // POSITION of the dialog
    Rect client, frame, caption, menu;  // what is not drawn is all 0
};
// Of a dialog's property list. A mode that is none gives rectangles of 0, but the position.
FrameRects CALCOFFSETS(const Object& window, std::string_view dialog, int mode);

struct Margin {
    int left = 0, top = 0, right = 0, bottom = 0;  // pixels
};
Margin GETMARGIN(std::string_view text);  // four numbers, parted by blanks

// The corner of the client area in the window (x, y), and how much wider and higher than the client area the window
// is (w, h): frame and margin.
Rect CALCOFFSETS(const Object& window, std::string_view dialog, int mode, const Margin& margin);

int GETBORDERHEIGHT(const Object& window, int borderStyle);
int GETCAPTIONHEIGHT(const Object& window, int borderStyle, std::string_view caption);
int GETMENUHEIGHT(const Object& window, std::string_view menu);

// The units of a place that the user has given other pixels: the numbers whose pixels are the same stay, also under a font
// of so small letters that pixels do not lead back to units.
UnitRect UNITSAFTER(const LetterSize& letter, const UnitRect& units, const Rect& before, const Rect& now);

// The object at a place of the window: 1 the dialog, n > 1 item n of `datalist`, -1 the menu, 0 nothing. Where objects
// overlap, the later one.
int GETCLICKINDEX(const Object& window, const Object& datalist, int mode, const Margin& margin, int x, int y);

}  // namespace tarn
