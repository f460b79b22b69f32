// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/drawing/dlgzoom.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/drawing/dlgdraw.h"
#include "ide/designer/drawing/dlgview.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/shell/windows.h"
#include "kernel/windows/drawscale.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"
#include "os/clock.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr int Whole = 100;
constexpr int steps[] = {50, 67, 75, Whole, 125, 150, 200, 300, 400};

int product(int number, int factor, int divisor) {
    return static_cast<int>(static_cast<long long>(number) * factor / divisor);
}

// The caption with another zoom behind the name, in front of the mark of changes.
std::string captionAt(std::string caption, int before, int now) {
    constexpr std::string_view mark = " *";
    const bool marked = caption.ends_with(mark);
    if (marked) caption.resize(caption.size() - mark.size());
    const std::string old = " " + STR(before) + " %";
    if (before != Whole && caption.ends_with(old)) caption.resize(caption.size() - old.size());
    if (now != Whole) caption += " " + STR(now) + " %";
    return caption + std::string(marked ? mark : "");
}

// The window system tells of a new size in its own time, when there may be another zoom already; that is no size that the
// user has given the window.
struct GivenSizes {
    std::vector<std::pair<int, int>> sizes;
    std::int64_t until = 0;  // of the clock
};
GivenSizes& given() {
    static GivenSizes last;
    return last;
}

void noteSize() {
    constexpr std::int64_t wait = 1'000'000'000;  // nanoseconds
    GivenSizes& last = given();
    const std::int64_t now = os::clock().now();
    if (now >= last.until) last.sizes.clear();
    const Rect client = GetPosition(DialogDlg, CLIENT_UNIT);
    last.sizes.emplace_back(client.w, client.h);
    last.until = now + wait;
}

}  // namespace

bool ISGIVENSIZE(const Rect& client) {
    const GivenSizes& last = given();
    const std::pair size(client.w, client.h);
    return os::clock().now() < last.until &&
           std::find(last.sizes.begin(), last.sizes.end(), size) != last.sizes.end();
}

int DIALOGGETZOOM() {
    FRAME(DIALOGGETZOOM);
    STAMP();
    bool ok = false;
    const int zoom = CVTI(DESIGNTEXT("zoomstr"), ok);
    return ok ? zoom : Whole;
}

void DIALOGSETZOOM(int percent) {
    FRAME(DIALOGSETZOOM);
    if (!IsLoaded(DialogDlg)) return;
    STAMP();
    const int before = DIALOGGETZOOM();
    SETDESIGNTEXT("zoomstr", STR(percent));
    SetCaption(DialogDlg, captionAt(GetCaption(DialogDlg), before, percent));
    SetDrawScale(DialogDlg, percent);
    STAMP();
}

void DIALOGZOOM(int step) {
    FRAME(DIALOGZOOM);
    if (!IsLoaded(DialogDlg)) return;
    STAMP();
    const int before = DIALOGGETZOOM();
    const auto place = std::lower_bound(std::begin(steps), std::end(steps), before) - std::begin(steps);
    const auto next = std::clamp<std::ptrdiff_t>(place + step, 0, std::ssize(steps) - 1);
    const int now = step == 0 ? Whole : steps[next];
    STAMP();
    if (now == before) return step == 0 ? void() : Sound();
    noteSize();
    UNSCROLLDESIGN();
    DIALOGSETZOOM(now);
    LIMITDESIGNSIZE(DESIGNITEM(1));
    STAMP();
    DIALOGREDRAW();
    if (SHOWSELECTEDOBJECT()) DIALOGREDRAW();
    noteSize();
    STAMP();
}

void LIMITDESIGNSIZE(const std::string& dialog) {
    FRAME(LIMITSIZE);
    const Margin margin = DIALOGGETMARGIN();
    const int frame = 2 * GETBORDERHEIGHT(DialogDlg, GETPROPINT(dialog, "BORDERSTYLE"));
    const int across = margin.left + margin.right, down = margin.top + margin.bottom;
    const auto zoomed = [](int w, int h) {
        return Rect{0, 0, ZOOMEDPIXELS(DialogDlg, w), ZOOMEDPIXELS(DialogDlg, h)};
    };
    STAMP();
    SetMinPosition(DialogDlg, zoomed(across + LEAST_SIDE, down + LEAST_SIDE));
    Rect most = zoomed(frame + across + GetPageWidth(Sysscreen), frame + down + GetPageHeight(Sysscreen));
    const Rect room = DESIGNROOM();
    if (DIALOGGETZOOM() > Whole) most = {0, 0, std::min(most.w, room.w), std::min(most.h, room.h)};
    SetMaxPosition(DialogDlg, most);
    STAMP();
}

int ZOOMEDPIXELS(const Object& window, int pixels) {
    FRAME(ZOOMEDPIXELS);
    STAMP();
    const int zoom = GetDrawScale(window), down = product(pixels, zoom, Whole);
    return UNZOOMEDPIXELS(window, down) < pixels ? down + 1 : down;
}

int UNZOOMEDPIXELS(const Object& window, int pixels) {
    FRAME(UNZOOMEDPIXELS);
    STAMP();
    return product(pixels, Whole, GetDrawScale(window));
}

int HANDLEPIXELS(const Object& window) {
    FRAME(HANDLEPIXELS);
    STAMP();
    return std::max(HANDLE_SIZE, product(HANDLE_SIZE, Whole, GetDrawScale(window)));
}

}  // namespace tarn
