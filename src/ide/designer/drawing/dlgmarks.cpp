// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/drawing/dlgmarks.h"

#include "ide/designer/drawing/dlgdraw.h"
#include "library/system/system.h"

#include <algorithm>
#include <array>

MODULE("dlgdraw")

namespace tarn {
namespace {

constexpr int LockSide = 9, ShackleInset = 2, ShackleHeight = 6, BodyTop = 4;  // pixels
constexpr int LockInset = HANDLE_SIZE + 1;  // beside the handle of the corner
constexpr int NumberGap = 3;                // between a number and the edges of its box

void box(const Object& window, const Rect& rect, int line, int fill) {
    SetForeColour(window, line);
    SetBackColour(window, fill);
    DrawShape(window, RECTANGLE_SHAPE, rect.x, rect.y, rect.w, rect.h);
}

}  // namespace

void DRAWHOLLOWHANDLERECT(const Object& window, const Rect& rect, int size, int line, int ground) {
    FRAME(DRAWHOLLOWHANDLERECT);
    STAMP();
    box(window, rect, line, NO_COLOUR);
    const int right = rect.x + rect.w - size, bottom = rect.y + rect.h - size;
    const std::array lefts = {rect.x, rect.x + rect.w / 2 - size / 2, right};
    const std::array tops = {rect.y, rect.y + rect.h / 2 - size / 2, bottom};
    for (std::size_t row = 0; row < tops.size(); ++row)
        for (std::size_t column = 0; column < lefts.size(); ++column) {
            if (row == 1 && column == 1) continue;
            box(window,
                {std::max(lefts[column], rect.x), std::max(tops[row], rect.y), std::min(size, rect.w),
                 std::min(size, rect.h)},
                line, ground);
        }
}

void DRAWLOCKMARK(const Object& window, const Rect& rect, int ink, int ground) {
    FRAME(DRAWLOCKMARK);
    STAMP();
    const int x = rect.x + rect.w - LockSide - LockInset, y = rect.y + LockInset;
    box(window, {x - 1, y - 1, LockSide + 2, LockSide + 2}, ground, ground);
    box(window, {x + ShackleInset, y, LockSide - 2 * ShackleInset, ShackleHeight}, ink, NO_COLOUR);
    box(window, {x, y + BodyTop, LockSide, LockSide - BodyTop}, ink, ink);
}

void DRAWNUMBERMARK(const Object& window, const Rect& rect, int number, int ink, int ground) {
    FRAME(DRAWNUMBERMARK);
    STAMP();
    const std::string text = STR(number);
    const int height = TextHeight(window, text) + 2;
    const int width = std::max(TextWidth(window, text) + 2 * NumberGap, height);
    STAMP();
    box(window, {rect.x, rect.y, width, height}, ground, ground);
    SetForeColour(window, ink);
    SetBackColour(window, NO_COLOUR);
    constexpr int centred = 2;
    DRAWCONTROLTEXT(window, {rect.x, rect.y, width, height}, text, centred);
    STAMP();
}

}  // namespace tarn
