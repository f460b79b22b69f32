// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/dlgmouse.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/drawing/dlgzoom.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgmany.h"
#include "ide/designer/objects/dlgtab.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/windows/dragging.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr int ClickSlack = 3;  // pixels: a band that is no larger was a click

int indexAt(int parameter) {
    const int x = static_cast<std::int16_t>(static_cast<unsigned>(parameter) & 0xffffU);
    const int y = static_cast<std::int16_t>(static_cast<unsigned>(parameter) >> 16);
    return GETCLICKINDEX(DialogDlg, DATALIST(), DIALOGGETMODE(), DIALOGGETMARGIN(), x, y);
}

// The client area of the dialog, in pixels of the window.
Rect clientArea() {
    const Rect corner = CALCOFFSETS(DialogDlg, DESIGNITEM(1), DIALOGGETMODE(), DIALOGGETMARGIN());
    const FrameRects frame = CALCOFFSETS(DialogDlg, DESIGNITEM(1), DIALOGGETMODE());
    return {corner.x, corner.y, frame.client.w, frame.client.h};
}

Rect pixelsOf(int index, const Rect& client, const LetterSize& letter) {
    const Rect place = RCUNITSTOPIXELS(letter, DESIGNPLACE(index));
    return {client.x + place.x, client.y + place.y, place.w, place.h};
}

bool contains(const std::vector<int>& indexes, int index) {
    return std::find(indexes.begin(), indexes.end(), index) != indexes.end();
}

// ---- dragging ----

// What goes along with a control that is dragged, and the lines of those that do not.
DragGuides guidesFor(int dragged, const Rect& client) {
    DragGuides guides;
    const std::vector<int> selected = SELECTEDOBJECTS(), locks = LOCKEDOBJECTS();
    const LetterSize letter = LETTERSIZE(DialogDlg);
    const bool snap = SNAPISON();
    for (int index = 2; index <= GetListCount(DATALIST()); ++index) {
        if (index == dragged) continue;
        const bool along = contains(selected, index) && !contains(locks, index);
        if (!along && !snap) continue;
        const Rect place = pixelsOf(index, client, letter);
        if (along) {
            guides.along.push_back(place);
            continue;
        }
        guides.x.insert(guides.x.end(), {place.x, place.x + place.w, place.x + place.w / 2});
        guides.y.insert(guides.y.end(), {place.y, place.y + place.h, place.y + place.h / 2});
    }
    return guides;
}

// Lets the user drag a control or its edges. One that comes back where it was keeps its numbers: false.
bool track(int index) {
    FRAME(TRACK);
    const UnitRect before = DESIGNPLACE(index);
    const Rect client = clientArea();
    const LetterSize letter = LETTERSIZE(DialogDlg);
    const Rect start = pixelsOf(index, client, letter);
    STAMP();
    Rect now = TrackRect(DialogDlg, TRACK_MOVE, {HANDLEPIXELS(DialogDlg), 12, 12, 1}, client, start,
                         guidesFor(index, client));
    STAMP();
    if (!IsLoaded(DialogDlg) || now == start) return false;
    now.x -= client.x;
    now.y -= client.y;
    const UnitRect after = UNITSAFTER(letter, before, RCUNITSTOPIXELS(letter, before), now);
    STAMP();
    if (after == before) return false;
    DESIGNSTEP([&] {
        SETDESIGNPLACE(index, after);
        FOLLOWSELECTED(index, before, after);
    });
    STAMP();
    return true;
}

// ---- selecting ----

bool meets(const Rect& a, const Rect& b) {
    return a.x < b.x + b.w && b.x < a.x + a.w && a.y < b.y + b.h && b.y < a.y + a.h;
}

// A band drawn by the mouse takes what it touches into the selection, behind what is there already.
void selectByBand(std::vector<int> selected) {
    FRAME(SELECTBYBAND);
    const Rect client = clientArea();
    const Rect band = TrackRect(DialogDlg, TRACK_NEW, {4, 1, 1, 1}, client, Rect{});
    STAMP();
    if (!IsLoaded(DialogDlg) || (band.w <= ClickSlack && band.h <= ClickSlack)) return;
    const LetterSize letter = LETTERSIZE(DialogDlg);
    const std::size_t before = selected.size();
    for (int index = 2; index <= GetListCount(DATALIST()); ++index)
        if (!contains(selected, index) && meets(band, pixelsOf(index, client, letter)))
            selected.push_back(index);
    STAMP();
    if (selected.size() == before) return;
    SELECTOBJECTS(selected);
    DIALOGREDRAW();
    STAMP();
}

// With Shift held down what is selected stays.
void pressedWithShift(int index) {
    if (index > 1) return TOGGLESELECTED(index);
    std::vector<int> selected = SELECTEDOBJECTS();
    if (!selected.empty() && selected[0] <= 1) selected.clear();
    if (index == 1) selectByBand(selected);
}

}  // namespace

void DESIGNSELECTAT(int parameter) {
    FRAME(DESIGNSELECTAT);
    const int index = indexAt(parameter);
    std::vector<int> selected = SELECTEDOBJECTS();
    STAMP();
    if (index <= 1 || std::erase(selected, index) == 0) return SELECTOBJECT(index);
    selected.insert(selected.begin(), index);  // one of several, which becomes their first
    SELECTOBJECTS(selected);
    STAMP();
}

void DESIGNPRESSED(int parameter) {
    FRAME(DESIGNPRESSED);
    STAMP();
    if (TABORDERISON()) return TABORDERCLICK(indexAt(parameter));
    if ((GetMouseKeys() & MOUSE_SHIFT) != 0) return pressedWithShift(indexAt(parameter));
    const int before = SELECTEDOBJECT();
    DESIGNSELECTAT(parameter);
    const int index = SELECTEDOBJECT();
    const bool wasDrawn = before == -1 || before > 1;
    STAMP();
    if (index == -1 || index > 1 || wasDrawn) DIALOGREDRAW();
    if (index == 1) selectByBand({});
    if (index <= 1) return;
    const bool dragged = !ISLOCKED(index) && track(index);
    STAMP();
    if (!dragged && SELECTEDOBJECTS().size() > 1) SELECTOBJECT(index);  // a click after all
    DIALOGREDRAW();
    STAMP();
}

bool SNAPISON() {
    FRAME(SNAPISON);
    STAMP();
    return PROFILESTRGET(GETIDEINIFILE(), "DialogDlg", "Snap") == "1";
}

void SETSNAP(bool on) {
    FRAME(SETSNAP);
    STAMP();
    PROFILESTRPUT(GETIDEINIFILE(), "DialogDlg", "Snap", on ? "1" : "0");
    STAMP();
}

}  // namespace tarn
