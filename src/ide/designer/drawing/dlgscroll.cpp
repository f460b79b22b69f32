// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/drawing/dlgscroll.h"

#include "library/system/system.h"

#include <algorithm>

MODULE("dlgscroll")

namespace tarn {
namespace {

constexpr int Step = 16;  // pixels that a bar moves for a press on its arrow

int stepsIn(int pixels) {
    return pixels <= 0 ? 0 : (pixels + Step - 1) / Step;
}

// A bar for what is hidden of the drawing.
void layOut(const Object& bar, const Rect& place, int hidden) {
    const int steps = stepsIn(hidden);
    if (steps > 0 && GetPosition(bar, CLIENT_UNIT) != place) SetPosition(bar, CLIENT_UNIT, place);
    if (GetMax(bar) != steps) SetMax(bar, steps);
    if (GetValue(bar) > steps) SetValue(bar, steps);
    if (GetVisible(bar) != (steps > 0)) SetVisible(bar, steps > 0);
}

// The value of a bar with which a stretch of the drawing is seen.
int valueFor(const Object& bar, int view, int begin, int size) {
    const int now = GetValue(bar) * Step;
    int wanted = now;
    if (begin + size > now + view) wanted = begin + size - view;
    if (begin < wanted) return std::max(begin, 0) / Step;
    return std::min(stepsIn(wanted), GetMax(bar));
}

bool stepped(const Object& bar, int by) {
    const int before = GetValue(bar), after = std::clamp(before + by, 0, std::max(GetMax(bar), 0));
    if (!GetVisible(bar) || after == before) return false;
    SetValue(bar, after);
    return true;
}

}  // namespace

Rect LAYOUTSCROLLBARS(const ScrollBars& bars, const Rect& place, int width, int height) {
    FRAME(LAYOUTSCROLLBARS);
    bool across = width > place.w, down = height > place.h;
    down = down || (across && height > place.h - SCROLLBAR_WIDTH);
    across = across || (down && width > place.w - SCROLLBAR_WIDTH);
    Rect view = place;
    if (down) view.w = std::max(view.w - SCROLLBAR_WIDTH, 0);
    if (across) view.h = std::max(view.h - SCROLLBAR_WIDTH, 0);
    STAMP();
    layOut(bars.across, {place.x, place.y + view.h, view.w, SCROLLBAR_WIDTH}, across ? width - view.w : 0);
    layOut(bars.down, {place.x + view.w, place.y, SCROLLBAR_WIDTH, view.h}, down ? height - view.h : 0);
    STAMP();
    return view;
}

Rect SCROLLEDBY(const ScrollBars& bars) {
    FRAME(SCROLLEDBY);
    STAMP();
    return {GetValue(bars.across) * Step, GetValue(bars.down) * Step, 0, 0};
}

void SCROLLINTOVIEW(const ScrollBars& bars, const Rect& view, const Rect& part) {
    FRAME(SCROLLINTOVIEW);
    STAMP();
    if (GetVisible(bars.across)) SetValue(bars.across, valueFor(bars.across, view.w, part.x, part.w));
    if (GetVisible(bars.down)) SetValue(bars.down, valueFor(bars.down, view.h, part.y, part.h));
    STAMP();
}

bool SCROLLBY(const ScrollBars& bars, int across, int down) {
    FRAME(SCROLLBY);
    STAMP();
    const bool moved = stepped(bars.across, across);
    return stepped(bars.down, down) || moved;
}

}  // namespace tarn
