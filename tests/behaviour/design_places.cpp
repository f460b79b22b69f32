// SPDX-License-Identifier: GPL-3.0-or-later
#include "behaviour/design_places.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/shell/windows.h"
#include "kernel/windows/drawscale.h"
#include "library/designer/proputil.h"

namespace tarn {
namespace {

platform::Point middle(const Rect& rect) {
    return {rect.x + rect.w / 2, rect.y + rect.h / 2};
}

// The first pixel of the client area that shows that one of the drawing.
platform::Point shown(platform::Point drawing) {
    const int scale = GetDrawScale(DialogDlg);
    const auto up = [scale](int n) { return n >= 0 ? (n * scale + 99) / 100 : -(-n * scale / 100); };
    return {up(drawing.x), up(drawing.y)};
}

bool drawnPoint(const std::string& name, bool corner, platform::Point& point) {
    const Margin margin = DIALOGGETMARGIN();
    const FrameRects rects = CALCOFFSETS(DialogDlg, DESIGNITEM(1), FULL_FRAME);
    const auto inWindow = [&](Rect rect) {
        return Rect{rect.x + margin.left, rect.y + margin.top, rect.w, rect.h};
    };
    if (name == "margin") return point = {2, 2}, true;
    if (name == "menu") return point = middle(inWindow(rects.menu)), rects.menu.h > 0;
    const Rect client = inWindow(rects.client);
    if (name == "-") return point = {client.x + client.w - 3, client.y + client.h - 3}, true;
    const int item = SEARCHPROPLIST(DATALIST(), "NAME", name);
    if (item < 2) return false;
    Rect rect = RCUNITSTOPIXELS(DialogDlg, GETPROPPOSITION(DESIGNITEM(item)));
    rect.x += client.x;
    rect.y += client.y;
    point = corner ? platform::Point{rect.x + rect.w - 2, rect.y + rect.h - 2} : middle(rect);
    return true;
}

}  // namespace

bool designPoint(const std::string& name, bool corner, platform::Point& point) {
    if (!drawnPoint(name, corner, point)) return false;
    point = shown(point);
    return true;
}

platform::Point designDistance(int x, int y) {
    const Rect pixels = RCUNITSTOPIXELS(DialogDlg, {x, y, 0, 0});
    return shown({pixels.x, pixels.y});
}

}  // namespace tarn
