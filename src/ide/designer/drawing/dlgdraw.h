// SPDX-License-Identifier: GPL-3.0-or-later
//
// What designs are drawn of: bevels, handles, arrows, lamps, texts in boxes, and the controls, one routine for each type.
// Each draws on a window between StartGraph and EndGraph, in pixels from its origin, and leaves the colours of the drawing
// as it needed them; the font is the drawing's. A colour is 0xBBGGRR; NO_COLOUR leaves out what would have it.
//
// Errors: those of the drawing operations. Cost: some drawing operations each; a control is one (DrawControl).
#pragma once

#include "kernel/windows/windowing.h"
#include "library/system/constants.h"

#include <string>
#include <string_view>

namespace tarn {

inline constexpr int NO_COLOUR = -1;
inline constexpr int GRID_GREY = 0x909090;  // seen on light grounds and on dark ones
inline constexpr int HANDLE_SIZE = 4;       // pixels of a side

// ---- primitives ----

// The bevel of frames and boxes: the corners are inside it, the light comes from the upper left. Less than 4 pixels wide or
// high there is only the fill, and with corners that are turned round nothing.
struct Bevel {
    int lightOuter = NO_COLOUR, lightInner = NO_COLOUR, darkInner = NO_COLOUR, darkOuter = NO_COLOUR,
        fill = NO_COLOUR;
};
void DRAWCOLOREDRECT(const Object& window, int x1, int y1, int x2, int y2, const Bevel& bevel);
// An outline with eight handles inside it: the corners and the middles of the sides.
void DRAWHANDLERECT(const Object& window, const Rect& rect, int size, int line, int fill);

enum class Arrow { Up, Down, Left, Right };
void DRAWARROW(const Object& window, const Rect& rect, Arrow direction, int colour);
// By a word: UP, DOWN, LEFT, RIGHT, in any case; another one draws nothing.
void DRAWARROWTEXT(const Object& window, const Rect& rect, std::string_view direction, int colour);
void DRAWCIRCLE(const Object& window, const Rect& rect, int line, int fill);
// A table of boxes of that size from the corner of the rectangle on, as far as it reaches.
void DRAWCELLS(const Object& window, const Rect& rect, int width, int height, int line);
// One line, in the middle of the height. Alignment: 0 left, 1 right, 2 centre. What is too long ends with dots.
void DRAWCONTROLTEXT(const Object& window, const Rect& rect, std::string_view text, int alignment);
// What is left of the rectangle inside the bars. `bars`: 1 horizontal, 2 vertical, 3 both.
Rect DRAWSCROLLBARS(const Object& window, const Rect& rect, int bars);
void DRAWSIZINGCORNER(const Object& window, const Rect& rect);  // in the lower right corner
void DRAWLANDSCAPE(const Object& window, const Rect& rect);     // a sheet of paper that lies on its side

// ---- the frame ----

enum class NcButton { Close, Maximise, Minimise };
void DRAWNCBUTTON(const Object& window, const Rect& rect, NcButton button);

// ---- panels ----

// A lamp: RED, AMBER, GREEN, in any case; another word is a lamp that is out.
void DRAWPANELLAMP(const Object& window, const Rect& rect, std::string_view state);
// A lamp, and its text as the caption of the window's Edit "StatusText", if it has one.
void DRAWSTATUSTEXT(const Object& window, const Rect& lamp, std::string_view state, const std::string& text);
std::string GETSTATUSTEXT(const Object& window);  // empty without that edit

// ---- controls ----

// Where the pictures of a dialog come from.
struct PictureFolders {
    std::string resources, compiler;  // what the placeholders stand for
    std::string file;                 // the resource file that declares pictures by name
};
struct DesignControl {
    const Object& window;
    Rect rect;
    std::string_view properties;  // its list
    const PictureFolders& folders;
    bool menu = false;    // the dialog has one
    bool leads = false;   // the control behind it can have the focus, so that a label's mnemonic leads there
    bool ground = false;  // there is a grid, which shall not show between letters
    bool running =
        false;  // as its program shows it: bars where they are needed, and nothing where there is nothing
};
// By TYPEOF. What is no type of a control is a box with its name.
void DRAWCONTROL(const DesignControl& control);

void DRAWBITMAPBUTTON(const DesignControl& control);
void DRAWCHECKBOX(const DesignControl& control);
void DRAWCOMBOBOX(const DesignControl& control);
void DRAWEDIT(const DesignControl& control);
void DRAWGROUPBOX(const DesignControl& control);
void DRAWICON(const DesignControl& control);
void DRAWICONLIST(const DesignControl& control);
void DRAWIMAGE(const DesignControl& control);
void DRAWLABEL(const DesignControl& control);
void DRAWLISTBOX(const DesignControl& control);
void DRAWPROGRESSBAR(const DesignControl& control);
void DRAWPUSHBUTTON(const DesignControl& control);
void DRAWRADIOBUTTON(const DesignControl& control);
void DRAWSCROLLBAR(const DesignControl& control);
void DRAWSHAPE(const DesignControl& control);

}  // namespace tarn
