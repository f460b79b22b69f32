// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/objects/dlgmany.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgobjects.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

using Change = UnitRect (*)(UnitRect, int, int);

UnitRect moved(UnitRect place, int dx, int dy) {
    place.x += dx;
    place.y += dy;
    return place;
}
UnitRect sized(UnitRect place, int dw, int dh) {
    place.w += dw;
    place.h += dh;
    return place;
}

bool inside(const UnitRect& place, const UnitRect& dialog) {
    return place.x >= 0 && place.y >= 0 && place.x <= dialog.w - place.w && place.y <= dialog.h - place.h;
}

bool allowed(const std::vector<int>& indexes, Change change, int across, int down) {
    const UnitRect dialog = DESIGNPLACE(1);
    return std::all_of(indexes.begin(), indexes.end(), [&](int index) {
        const UnitRect after = change(DESIGNPLACE(index), across, down);
        return after.w >= 1 && after.h >= 1 && inside(after, dialog);
    });
}

void changeAll(const std::vector<int>& indexes, Change change, int across, int down) {
    FRAME(CHANGEALL);
    STAMP();
    if (!allowed(indexes, change, across, down)) return Sound();
    const bool changed = DESIGNSTEP([&] {
        for (const int index : indexes) SETDESIGNPLACE(index, change(DESIGNPLACE(index), across, down));
    });
    STAMP();
    if (changed) DIALOGREDRAW();
    STAMP();
}

// The selected objects that a command of keys may move; none, with a beep, if all are locked.
std::vector<int> movable() {
    const std::vector<int> selected = SELECTEDOBJECTS();
    std::vector<int> rest = WITHOUTLOCKED(selected);
    if (rest.empty() && !selected.empty()) Sound();
    return rest;
}

// One object is changed by what there is for one, which knows its own limits.
void changeSelected(Change change, bool (*changeOne)(const Object&, int, int, int), int across, int down) {
    FRAME(CHANGESELECTED);
    const std::vector<int> selected = SELECTEDOBJECTS(), rest = movable();
    STAMP();
    if (selected.size() > 1 && !rest.empty()) return changeAll(rest, change, across, down);
    if (rest.size() != selected.size()) return;
    if (DESIGNSTEP([&] { changeOne(DATALIST(), SELECTEDOBJECT(), across, down); })) DIALOGREDRAW();
    STAMP();
}

}  // namespace

UnitRect DESIGNPLACE(int index) {
    FRAME(DESIGNPLACE);
    STAMP();
    return GETPROPPOSITION(DESIGNITEM(index));
}

void SETDESIGNPLACE(int index, const UnitRect& place) {
    FRAME(SETDESIGNPLACE);
    STAMP();
    std::string list = DESIGNITEM(index);
    if (list.empty() || GETPROPPOSITION(list) == place) return;
    SETPROPPOSITION(list, place);
    SETDESIGNITEM(DATALIST(), index, list);
    STAMP();
}

UnitRect KEPTINSIDE(UnitRect place) {
    FRAME(KEPTINSIDE);
    STAMP();
    const UnitRect dialog = DESIGNPLACE(1);
    place.x = std::max(std::min(place.x, dialog.w - place.w), 0);
    place.y = std::max(std::min(place.y, dialog.h - place.h), 0);
    return place;
}

void MOVESELECTED(int dx, int dy) {
    FRAME(MOVESELECTED);
    STAMP();
    changeSelected(moved, MOVECONTROLXY, dx, dy);
}

void SIZESELECTED(int dw, int dh) {
    FRAME(SIZESELECTED);
    STAMP();
    changeSelected(sized, SIZECONTROL, dw, dh);
}

void DELETESELECTED() {
    FRAME(DELETESELECTED);
    STAMP();
    std::vector<int> indexes = SELECTEDOBJECTS();
    if (indexes.empty()) indexes = {0};  // which beeps
    std::sort(indexes.rbegin(), indexes.rend());
    const bool deleted = DESIGNSTEP([&] {
        const std::string lock = DESIGNTEXT("ctlprotectstr");
        const Object menulist = MENULIST();
        for (const int index : indexes)
            if (!DELETEOBJECT(DATALIST(), menulist, index, lock)) return;
        SELECTOBJECT(0);
    });
    STAMP();
    if (deleted) DIALOGREDRAW();
    STAMP();
}

void SELECTALLCONTROLS() {
    FRAME(SELECTALLCONTROLS);
    STAMP();
    std::vector<int> all;
    for (int index = 2; index <= GetListCount(DATALIST()); ++index) all.push_back(index);
    if (all.empty()) return Sound();
    SELECTOBJECTS(all);
    STAMP();
    DIALOGREDRAW();
    STAMP();
}

void TOGGLESELECTED(int index) {
    FRAME(TOGGLESELECTED);
    STAMP();
    std::vector<int> selected = SELECTEDOBJECTS();
    if (!selected.empty() && selected[0] <= 1) selected.clear();  // the dialog and the menu stand alone
    if (std::erase(selected, index) == 0) selected.push_back(index);
    SELECTOBJECTS(selected);
    STAMP();
    DIALOGREDRAW();
    STAMP();
}

void FOLLOWSELECTED(int index, const UnitRect& before, const UnitRect& after) {
    FRAME(FOLLOWSELECTED);
    const UnitRect dialog = DESIGNPLACE(1);
    STAMP();
    for (const int other : WITHOUTLOCKED(SELECTEDOBJECTS())) {
        if (other == index) continue;
        const UnitRect old = DESIGNPLACE(other);
        UnitRect place =
            sized(moved(old, after.x - before.x, after.y - before.y), after.w - before.w, after.h - before.h);
        place.w = std::max(place.w, 1);
        place.h = std::max(place.h, 1);
        SETDESIGNPLACE(other, inside(old, dialog) ? KEPTINSIDE(place) : place);
    }
    STAMP();
}

}  // namespace tarn
