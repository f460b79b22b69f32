// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/drawing/geometry.h"

#include "library/designer/proputil.h"

#include <iterator>
#include <string>
#include <utility>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr int Border = 4;
constexpr int CaptionExtra = 5, MenuExtra = 8;  // pixels beyond a line of letters
constexpr int LineUnits = 8;

// The frame's own letters, in the place of the dialog's as long as this stands.
class FrameFont {
public:
    explicit FrameFont(const Object& window)
        : window_(window), name_(GetFontName(window)), size_(GetFontSize(window)) {
        SetFontName(window_, FRAME_FONT);
        SetFontSize(window_, FRAME_FONT_SIZE);
    }
    ~FrameFont() {
        SetFontName(window_, name_);
        SetFontSize(window_, size_);
    }
    FrameFont(const FrameFont&) = delete;
    FrameFont& operator=(const FrameFont&) = delete;

private:
    const Object& window_;
    std::string name_;
    int size_;
};

int lineHeight(const Object& window) {
    const FrameFont font(window);
    return RCUNITSTOPIXELS(window, {0, 0, 0, LineUnits}).h;
}

bool hasCaption(int borderStyle, std::string_view caption) {
    return borderStyle != 0 && !caption.empty();
}

// What the frame adds to the client area.
struct Heights {
    int border = 0, caption = 0, menu = 0;
};

// The same as the three operations, with one change of the font.
Heights heightsOf(const Object& window, std::string_view dialog) {
    const int style = GETPROPINT(dialog, "BORDERSTYLE");
    const bool caption = hasCaption(style, GETPROPVALUE(dialog, "CAPTION"));
    const bool menu = !GETPROPVALUE(dialog, "MENU").empty();
    const int line = caption || menu ? lineHeight(window) : 0;
    return {GETBORDERHEIGHT(window, style), caption ? line + CaptionExtra : 0, menu ? line + MenuExtra : 0};
}

Rect strip(int x, int y, int w, int h) {
    return h == 0 ? Rect{} : Rect{x, y, w, h};
}

void clientOnly(FrameRects& rects, const Heights&) {
    rects.client = rects.frame = {0, 0, rects.position.w, rects.position.h};
}

void clientAndMenu(FrameRects& rects, const Heights& heights) {
    const auto [w, h] = std::pair(rects.position.w, rects.position.h);
    rects.client = {0, heights.menu, w, h};
    rects.frame = {0, 0, w, heights.menu + h};
    rects.menu = heights.menu == 0 ? Rect{} : Rect{0, 0, w, heights.menu - 1};
}

void fullFrame(FrameRects& rects, const Heights& heights) {
    const auto [w, h] = std::pair(rects.position.w, rects.position.h);
    const auto [border, caption, menu] = heights;
    rects.client = {border, border + caption + menu, w, h};
    rects.frame = {0, 0, w + 2 * border, border + caption + menu + h + border};
    rects.caption = strip(border, border, w, caption);
    rects.menu = strip(border, border + caption, w, menu);
}

constexpr void (*modes[])(FrameRects&, const Heights&) = {clientOnly, clientAndMenu, fullFrame};

bool contains(const Rect& rect, int x, int y) {
    return rect.x <= x && x < rect.x + rect.w && rect.y <= y && y < rect.y + rect.h;
}

// Of the controls; 0 if none is there.
int controlAt(const Object& window, const Object& datalist, int x, int y) {
    const LetterSize letter = LETTERSIZE(window);
    for (int item = GetListCount(datalist); item >= 2; --item) {
        const UnitRect position = GETPROPPOSITION(GetList(datalist, item) + '\n');
        if (contains(RCUNITSTOPIXELS(letter, position), x, y)) return item;
    }
    return 0;
}

}  // namespace

int FONTPOINTS(const Object& window) {
    FRAME(FONTPOINTS);
    STAMP();
    constexpr int least = 6, most = 40;
    const int own = GetFontSize(window);
    if (own > 0) return own;
    const int height = TextHeight(window, "X");
    int points = least;
    for (; points < most; ++points) {
        SetFontSize(window, points);
        if (TextHeight(window, "X") >= height) break;
    }
    SetFontSize(window, own);
    STAMP();
    return points;
}

int GETBORDERHEIGHT(const Object&, int borderStyle) {
    return borderStyle != 0 ? Border : 0;
}

int GETCAPTIONHEIGHT(const Object& window, int borderStyle, std::string_view caption) {
    FRAME(GETCAPTIONHEIGHT);
    STAMP();
    return hasCaption(borderStyle, caption) ? lineHeight(window) + CaptionExtra : 0;
}

int GETMENUHEIGHT(const Object& window, std::string_view menu) {
    FRAME(GETMENUHEIGHT);
    STAMP();
    return menu.empty() ? 0 : lineHeight(window) + MenuExtra;
}

FrameRects CALCOFFSETS(const Object& window, std::string_view dialog, int mode) {
    FRAME(CALCOFFSETS);
    FrameRects rects;
    STAMP();
    rects.position = RCUNITSTOPIXELS(window, GETPROPPOSITION(dialog));
    if (mode < 0 || mode >= static_cast<int>(std::size(modes))) return rects;
    STAMP();
    modes[mode](rects, heightsOf(window, dialog));
    return rects;
}

Margin GETMARGIN(std::string_view text) {
    std::size_t at = 1;
    Margin margin;
    for (int Margin::*side : {&Margin::left, &Margin::top, &Margin::right, &Margin::bottom})
        margin.*side = GETINT(text, at);
    return margin;
}

Rect CALCOFFSETS(const Object& window, std::string_view dialog, int mode, const Margin& margin) {
    FRAME(CALCOFFSETS);
    STAMP();
    const FrameRects rects = CALCOFFSETS(window, dialog, mode);
    return {margin.left + rects.client.x, margin.top + rects.client.y,
            margin.left + rects.frame.w - rects.client.w + margin.right,
            margin.top + rects.frame.h - rects.client.h + margin.bottom};
}

UnitRect UNITSAFTER(const LetterSize& letter, const UnitRect& units, const Rect& before, const Rect& now) {
    FRAME(UNITSAFTER);
    UnitRect after = PIXELSTORCUNITS(letter, now);
    STAMP();
    if (now.x == before.x) after.x = units.x;
    if (now.y == before.y) after.y = units.y;
    if (now.w == before.w) after.w = units.w;
    if (now.h == before.h) after.h = units.h;
    return after;
}

int GETCLICKINDEX(const Object& window, const Object& datalist, int mode, const Margin& margin, int x,
                  int y) {
    FRAME(GETCLICKINDEX);
    STAMP();
    if (GetTypeof(window) != "Dialog" || GetTypeof(datalist) != "Listbox") return 0;
    STAMP();
    if (GetListCount(datalist) == 0) return 0;
    STAMP();
    const FrameRects rects = CALCOFFSETS(window, GetList(datalist, 1) + '\n', mode);
    x -= margin.left;
    y -= margin.top;
    STAMP();
    if (const int item = controlAt(window, datalist, x - rects.client.x, y - rects.client.y); item != 0)
        return item;
    if (contains(rects.menu, x, y)) return -1;
    return contains(rects.client, x, y) || contains(rects.frame, x, y) ? 1 : 0;
}

}  // namespace tarn
