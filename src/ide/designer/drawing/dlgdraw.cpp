// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/drawing/dlgdraw.h"

#include "library/system/strings.h"
#include "library/system/windows.h"
#include "os/text/utf8.h"

#include <algorithm>
#include <array>

MODULE("dlgdraw")

namespace tarn {
namespace {

constexpr int LeastBevel = 4;
constexpr int BarWidth = 16, TextGap = 3, SizingLines = 3, SizingStep = 4;

int rightOf(const Rect& rect) {
    return rect.x + rect.w - 1;
}
int bottomOf(const Rect& rect) {
    return rect.y + rect.h - 1;
}
Rect inside(const Rect& rect, int by) {
    return {rect.x + by, rect.y + by, rect.w - 2 * by, rect.h - 2 * by};
}

void setInk(const Object& window, int fore, int back) {
    SetForeColour(window, fore);
    SetBackColour(window, back);
}

void fillRect(const Object& window, const Rect& rect, int colour) {
    if (rect.w <= 0 || rect.h <= 0) return;
    setInk(window, colour, colour);
    DrawShape(window, RECTANGLE_SHAPE, rect.x, rect.y, rect.w, rect.h);
}

// Two sides that meet in the upper left corner, or in the lower right one.
void topAndLeft(const Object& window, int x1, int y1, int x2, int y2, int colour) {
    if (colour == NO_COLOUR) return;
    SetForeColour(window, colour);
    DrawLine(window, x1, y1, x2, y1);
    DrawLine(window, x1, y1, x1, y2);
}
void bottomAndRight(const Object& window, int x1, int y1, int x2, int y2, int colour) {
    if (colour == NO_COLOUR) return;
    SetForeColour(window, colour);
    DrawLine(window, x1, y2, x2, y2);
    DrawLine(window, x2, y1, x2, y2);
}

constexpr Bevel raised = {WHITE, WHITE, DARKGREY, BLACK, LIGHTGREY};

void drawRaised(const Object& window, const Rect& rect) {
    DRAWCOLOREDRECT(window, rect.x, rect.y, rightOf(rect), bottomOf(rect), raised);
}

// As much of the text as fits, with dots behind it where some is left out.
std::string fitting(const Object& window, std::string_view text, int width) {
    std::string out(text);
    while (!text.empty() && TextWidth(window, out) > width) {
        do text.remove_suffix(1);
        while (!text.empty() && utf8::isFollowing(text.back()));
        out = std::string(text) + "...";
    }
    return out;
}

void scrollBar(const Object& window, const Rect& rect, Arrow first, Arrow last, bool across) {
    fillRect(window, rect, 0xE0E0E0);
    const int side = std::min(BarWidth, (across ? rect.w : rect.h) / 2);
    Rect low = rect, high = rect;
    (across ? low.w : low.h) = (across ? high.w : high.h) = side;
    (across ? high.x : high.y) += (across ? rect.w : rect.h) - side;
    drawRaised(window, low);
    DRAWARROW(window, inside(low, 4), first, BLACK);
    drawRaised(window, high);
    DRAWARROW(window, inside(high, 4), last, BLACK);
}

struct Lamp {
    std::string_view state;
    int colour;
};
constexpr Lamp lamps[] = {{"RED", 0x0000E0}, {"AMBER", 0x00A5FF}, {"GREEN", 0x00B000}};
constexpr std::pair<std::string_view, Arrow> arrows[] = {
    {"UP", Arrow::Up}, {"DOWN", Arrow::Down}, {"LEFT", Arrow::Left}, {"RIGHT", Arrow::Right}};

Object statusText(const Object& window) {
    const Object edit = FindControl(window, "StatusText");
    return !edit.empty() && GetTypeof(edit) == "Edit" ? edit : Object();
}

}  // namespace

void DRAWCOLOREDRECT(const Object& window, int x1, int y1, int x2, int y2, const Bevel& bevel) {
    FRAME(DRAWCOLOREDRECT);
    STAMP();
    const int width = x2 - x1 + 1, height = y2 - y1 + 1;
    if (bevel.fill != NO_COLOUR) fillRect(window, {x1, y1, width, height}, bevel.fill);
    if (width < LeastBevel || height < LeastBevel) return;
    STAMP();
    topAndLeft(window, x1, y1, x2, y2, bevel.lightOuter);
    topAndLeft(window, x1 + 1, y1 + 1, x2 - 1, y2 - 1, bevel.lightInner);
    bottomAndRight(window, x1 + 1, y1 + 1, x2 - 1, y2 - 1, bevel.darkInner);
    bottomAndRight(window, x1, y1, x2, y2, bevel.darkOuter);
}

void DRAWHANDLERECT(const Object& window, const Rect& rect, int size, int line, int fill) {
    FRAME(DRAWHANDLERECT);
    STAMP();
    setInk(window, line, fill);
    DrawShape(window, RECTANGLE_SHAPE, rect.x, rect.y, rect.w, rect.h);
    const int right = rightOf(rect), bottom = bottomOf(rect);
    const std::array lefts = {rect.x, rect.x + rect.w / 2 - size / 2, right - size + 1};
    const std::array tops = {rect.y, rect.y + rect.h / 2 - size / 2, bottom - size + 1};
    for (std::size_t row = 0; row < tops.size(); ++row)
        for (std::size_t column = 0; column < lefts.size(); ++column) {
            if (row == 1 && column == 1) continue;
            const int x = std::max(lefts[column], rect.x), y = std::max(tops[row], rect.y);
            const int x2 = std::min(lefts[column] + size - 1, right),
                      y2 = std::min(tops[row] + size - 1, bottom);
            fillRect(window, {x, y, x2 - x + 1, y2 - y + 1}, line);
        }
}

void DRAWARROW(const Object& window, const Rect& rect, Arrow direction, int colour) {
    FRAME(DRAWARROW);
    STAMP();
    SetForeColour(window, colour);
    const bool across = direction == Arrow::Left || direction == Arrow::Right;
    const int depth = std::min((across ? rect.h : rect.w) / 2, across ? rect.w : rect.h);
    const int x = rect.x + rect.w / 2, y = rect.y + rect.h / 2, start = (depth + 1) / 2;
    // From the tip on, each line is longer by a pixel at both ends.
    for (int i = 0; i < depth; ++i) {
        switch (direction) {
        case Arrow::Up: DrawLine(window, x - i, y - start + i, x + i, y - start + i); break;
        case Arrow::Down: DrawLine(window, x - i, y + start - i, x + i, y + start - i); break;
        case Arrow::Left: DrawLine(window, x - start + i, y - i, x - start + i, y + i); break;
        case Arrow::Right: DrawLine(window, x + start - i, y - i, x + start - i, y + i); break;
        }
    }
}

void DRAWARROWTEXT(const Object& window, const Rect& rect, std::string_view direction, int colour) {
    FRAME(DRAWARROWTEXT);
    STAMP();
    for (const auto& [word, arrow] : arrows)
        if (STREQUAL(direction, word)) DRAWARROW(window, rect, arrow, colour);
}

void DRAWCIRCLE(const Object& window, const Rect& rect, int line, int fill) {
    FRAME(DRAWCIRCLE);
    STAMP();
    const int side = std::min(rect.w, rect.h);
    setInk(window, line, fill);
    DrawShape(window, ELLIPSE_SHAPE, rect.x + (rect.w - side) / 2, rect.y + (rect.h - side) / 2, side, side);
}

void DRAWCELLS(const Object& window, const Rect& rect, int width, int height, int line) {
    FRAME(DRAWCELLS);
    STAMP();
    if (width <= 0 || height <= 0) return;
    SetForeColour(window, line);
    for (int y = rect.y; y < rect.y + rect.h; y += height) DrawLine(window, rect.x, y, rightOf(rect), y);
    for (int x = rect.x; x < rect.x + rect.w; x += width) DrawLine(window, x, rect.y, x, bottomOf(rect));
}

void DRAWCONTROLTEXT(const Object& window, const Rect& rect, std::string_view text, int alignment) {
    FRAME(DRAWCONTROLTEXT);
    STAMP();
    const std::string shown = fitting(window, text.substr(0, text.find('\n')), rect.w);
    const int room = rect.w - TextWidth(window, shown);
    SetCurrentX(window, rect.x + (alignment == 1 ? room : alignment == 2 ? room / 2 : 0));
    SetCurrentY(window, rect.y + (rect.h - TextHeight(window, shown)) / 2);
    DrawTextstr(window, shown);
}

Rect DRAWSCROLLBARS(const Object& window, const Rect& rect, int bars) {
    FRAME(DRAWSCROLLBARS);
    const int below = (bars & 1) != 0 ? std::min(BarWidth, rect.h) : 0;
    const int beside = (bars & 2) != 0 ? std::min(BarWidth, rect.w) : 0;
    const Rect rest = {rect.x, rect.y, rect.w - beside, rect.h - below};
    STAMP();
    if (below != 0)
        scrollBar(window, {rect.x, rect.y + rest.h, rest.w, below}, Arrow::Left, Arrow::Right, true);
    if (beside != 0)
        scrollBar(window, {rect.x + rest.w, rect.y, beside, rest.h}, Arrow::Up, Arrow::Down, false);
    if (below != 0 && beside != 0)
        fillRect(window, {rect.x + rest.w, rect.y + rest.h, beside, below}, LIGHTGREY);
    return rest;
}

void DRAWSIZINGCORNER(const Object& window, const Rect& rect) {
    FRAME(DRAWSIZINGCORNER);
    STAMP();
    SetForeColour(window, DARKGREY);
    const int right = rightOf(rect) - 1, bottom = bottomOf(rect) - 1;
    for (int i = 1; i <= SizingLines; ++i)
        DrawLine(window, right - i * SizingStep, bottom, right, bottom - i * SizingStep);
}

void DRAWLANDSCAPE(const Object& window, const Rect& rect) {
    FRAME(DRAWLANDSCAPE);
    STAMP();
    // The sides of a sheet are as 10 to 7.
    const int width = std::min(rect.w, rect.h * 10 / 7), height = width * 7 / 10;
    if (width <= 0 || height <= 0) return;
    const Rect sheet = {rect.x + (rect.w - width) / 2, rect.y + (rect.h - height) / 2, width, height};
    setInk(window, BLACK, WHITE);
    DrawShape(window, RECTANGLE_SHAPE, sheet.x, sheet.y, sheet.w, sheet.h);
    SetForeColour(window, DARKGREY);
    for (int y = sheet.y + SizingStep; y < bottomOf(sheet) - 1; y += SizingStep)
        DrawLine(window, sheet.x + TextGap, y, rightOf(sheet) - TextGap, y);
}

void DRAWNCBUTTON(const Object& window, const Rect& rect, NcButton button) {
    FRAME(DRAWNCBUTTON);
    STAMP();
    drawRaised(window, rect);
    const Rect sign = inside(rect, 4);
    if (sign.w < 3 || sign.h < 3) return;
    setInk(window, BLACK, NO_COLOUR);
    switch (button) {
    case NcButton::Close:
        DrawLine(window, sign.x, sign.y, rightOf(sign), bottomOf(sign));
        DrawLine(window, sign.x, bottomOf(sign), rightOf(sign), sign.y);
        break;
    case NcButton::Maximise:
        DrawShape(window, RECTANGLE_SHAPE, sign.x, sign.y, sign.w, sign.h);
        DrawLine(window, sign.x, sign.y + 1, rightOf(sign), sign.y + 1);
        break;
    case NcButton::Minimise: fillRect(window, {sign.x, bottomOf(sign) - 1, sign.w, 2}, BLACK); break;
    }
}

void DRAWPANELLAMP(const Object& window, const Rect& rect, std::string_view state) {
    FRAME(DRAWPANELLAMP);
    STAMP();
    int colour = LIGHTGREY;
    for (const Lamp& lamp : lamps)
        if (STREQUAL(state, lamp.state)) colour = lamp.colour;
    DRAWCIRCLE(window, rect, DARKGREY, colour);
}

void DRAWSTATUSTEXT(const Object& window, const Rect& lamp, std::string_view state, const std::string& text) {
    FRAME(DRAWSTATUSTEXT);
    STAMP();
    DRAWPANELLAMP(window, lamp, state);
    STAMP();
    const Object edit = statusText(window);
    if (edit.empty()) return;
    SetCaption(edit, text);
    SetText(edit, text);  // what an edit shows
}

std::string GETSTATUSTEXT(const Object& window) {
    FRAME(GETSTATUSTEXT);
    STAMP();
    const Object edit = statusText(window);
    return edit.empty() ? std::string() : GetCaption(edit);
}

}  // namespace tarn
