// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/drawing/dlgview.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/drawing/dlgscroll.h"
#include "ide/designer/drawing/dlgzoom.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/shell/windows.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr int Whole = 100;  // per cent

ScrollBars bars() {
    return {DESIGNCONTROL("sclacross"), DESIGNCONTROL("scldown")};
}

// A window that has grown beyond the screen comes back onto it.
void moveOntoScreen() {
    const Rect screen = ScreenSize(), now = GetPosition(DialogDlg, WINDOW_UNIT);
    const Rect at = {std::max(std::min(now.x, screen.x + screen.w - now.w), screen.x),
                     std::max(std::min(now.y, screen.y + screen.h - now.h), screen.y), now.w, now.h};
    if (at != now) SetPosition(DialogDlg, WINDOW_UNIT, at);
}

// The size that the user has given a scrolled window is kept.
int mostOf(bool scrolled, int now, int room) {
    return scrolled && now < room ? now : room;
}

}  // namespace

Rect DESIGNROOM() {
    FRAME(DESIGNROOM);
    STAMP();
    const Rect screen = ScreenSize(), outer = GetPosition(DialogDlg, WINDOW_UNIT),
               inner = GetPosition(DialogDlg, CLIENT_UNIT);
    return {0, 0, screen.w - (outer.w - inner.w), screen.h - (outer.h - inner.h)};
}

bool DESIGNISSCROLLED() {
    FRAME(DESIGNISSCROLLED);
    if (!IsLoaded(DialogDlg)) return false;
    STAMP();
    return GetVisible(bars().across) || GetVisible(bars().down);
}

Rect DESIGNSCROLLED() {
    FRAME(DESIGNSCROLLED);
    STAMP();
    if (!DESIGNISSCROLLED()) return {};
    const Rect by = SCROLLEDBY(bars());
    STAMP();
    return {UNZOOMEDPIXELS(DialogDlg, by.x), UNZOOMEDPIXELS(DialogDlg, by.y), 0, 0};
}

void LAYOUTDESIGNVIEW(DesignPicture& picture) {
    FRAME(LAYOUTDESIGNVIEW);
    if (!picture.link) return;
    STAMP();
    if (DIALOGGETZOOM() <= Whole) return UNSCROLLDESIGN();
    const Rect now = GetPosition(DialogDlg, CLIENT_UNIT), room = DESIGNROOM();
    picture.mostWidth = mostOf(GetVisible(bars().across), now.w, room.w);
    picture.mostHeight = mostOf(GetVisible(bars().down), now.h, room.h);
    STAMP();
    const Rect whole = FITDESIGN(DialogDlg, picture);
    STAMP();
    if (whole.w <= picture.mostWidth && whole.h <= picture.mostHeight) return UNSCROLLDESIGN();
    moveOntoScreen();
    const Rect client = GetPosition(DialogDlg, CLIENT_UNIT);
    const Rect view = LAYOUTSCROLLBARS(bars(), {0, 0, client.w, client.h}, whole.w, whole.h);
    STAMP();
    picture.corner = {view.w, view.h, client.w - view.w, client.h - view.h};
}

void UNSCROLLDESIGN() {
    FRAME(UNSCROLLDESIGN);
    STAMP();
    if (DESIGNISSCROLLED()) LAYOUTSCROLLBARS(bars(), {}, 0, 0);
    STAMP();
}

bool SHOWSELECTEDOBJECT() {
    FRAME(SHOWSELECTEDOBJECT);
    STAMP();
    const int index = SELECTEDOBJECT();
    if (index <= 1 || !DESIGNISSCROLLED()) return false;
    const Rect at = RCUNITSTOPIXELS(DialogDlg, GETPROPPOSITION(DESIGNITEM(index)));
    const Rect corner = CALCOFFSETS(DialogDlg, DESIGNITEM(1), DIALOGGETMODE(), DIALOGGETMARGIN());
    const Rect scrolled = DESIGNSCROLLED(), client = GetPosition(DialogDlg, CLIENT_UNIT);
    const auto zoomed = [](int pixels) { return ZOOMEDPIXELS(DialogDlg, pixels); };
    STAMP();
    const int across = GetVisible(bars().down) ? SCROLLBAR_WIDTH : 0,
              down = GetVisible(bars().across) ? SCROLLBAR_WIDTH : 0;
    SCROLLINTOVIEW(bars(), {0, 0, client.w - across, client.h - down},
                   {zoomed(corner.x + scrolled.x + at.x), zoomed(corner.y + scrolled.y + at.y), zoomed(at.w),
                    zoomed(at.h)});
    STAMP();
    const Rect after = DESIGNSCROLLED();
    return after != scrolled;
}

}  // namespace tarn
