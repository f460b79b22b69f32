// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/objects/dlgobjects.h"

#include "ide/designer/dlgstep.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

#include <algorithm>
#include <vector>

MODULE("dlgedit")

namespace tarn {
namespace {

// What does not go beeps.
bool refused() {
    Sound();
    return false;
}

bool isControl(const Object& datalist, int index) {
    return index > 1 && index <= GetListCount(datalist);
}

void storePosition(const Object& datalist, int index, const UnitRect& position) {
    std::string list = GETDESIGNITEM(datalist, index);
    SETPROPPOSITION(list, position);
    SETDESIGNITEM(datalist, index, list);
}

bool fitsInto(int place, int size, int room) {
    return place >= 0 && place <= room - size;
}

}  // namespace

// ---- deleting ----

bool DELETEOBJECT(const Object& datalist, const Object& menulist, int index, const std::string& lock) {
    FRAME(DELETEOBJECT);
    STAMP();
    if (lock != "0") return refused();
    if (isControl(datalist, index)) {
        RemoveItem(datalist, index);
        return true;
    }
    STAMP();
    if (index != -1) return refused();
    std::string dialog = GETDESIGNITEM(datalist, 1);
    SETPROPVALUE("MENU", "\"\"", dialog);
    SETDESIGNITEM(datalist, 1, dialog);
    Clear(menulist);
    STAMP();
    return true;
}

// ---- moving and sizing ----

bool MOVECONTROLXY(const Object& datalist, int index, int dx, int dy) {
    FRAME(MOVECONTROLXY);
    STAMP();
    if (!isControl(datalist, index)) return refused();
    const UnitRect dialog = GETPROPPOSITION(GETDESIGNITEM(datalist, 1));
    UnitRect position = GETPROPPOSITION(GETDESIGNITEM(datalist, index));
    position.x += dx;
    position.y += dy;
    STAMP();
    if (!fitsInto(position.x, position.w, dialog.w) || !fitsInto(position.y, position.h, dialog.h))
        return refused();
    storePosition(datalist, index, position);
    STAMP();
    return true;
}

bool SIZECONTROL(const Object& datalist, int index, int dw, int dh) {
    FRAME(SIZECONTROL);
    STAMP();
    if (index != 1 && !isControl(datalist, index)) return refused();
    const UnitRect dialog = GETPROPPOSITION(GETDESIGNITEM(datalist, 1));
    UnitRect position = GETPROPPOSITION(GETDESIGNITEM(datalist, index));
    position.w += dw;
    position.h += dh;
    const bool leaves =
        (dw > 0 && position.x + position.w > dialog.w) || (dh > 0 && position.y + position.h > dialog.h);
    STAMP();
    if (position.w < 1 || position.h < 1 || (index != 1 && leaves)) return refused();
    storePosition(datalist, index, position);
    STAMP();
    return true;
}

// ---- order ----

namespace {

bool meet(int a, int aSize, int b, int bSize) {
    return a <= b + bSize - 1 && b <= a + aSize - 1;
}

bool overlap(const UnitRect& a, const UnitRect& b) {
    return meet(a.x, a.w, b.x, b.w) && meet(a.y, a.h, b.y, b.h);
}

// The controls that one overlaps in a direction.
struct Overlapping {
    std::string lines;
    int count = 0, farthest = 0;
};

Overlapping overlapping(const Object& datalist, int index, int direction) {
    constexpr int most = 10;
    Overlapping found;
    const int last = GetListCount(datalist);
    const UnitRect own = GETPROPPOSITION(GETDESIGNITEM(datalist, index));
    for (int other = index + direction; other >= 2 && other <= last; other += direction) {
        const std::string list = GETDESIGNITEM(datalist, other);
        if (!overlap(own, GETPROPPOSITION(list))) continue;
        found.farthest = other;
        if (++found.count <= most)
            found.lines += "\t" + GETPROPVALUE(list, "NAME") + ":" + GETPROPVALUE(list, "TYPEOF") + "\n";
    }
    if (found.count > most) found.lines += "\t...(more)...\n";
    return found;
}

bool wantsMove(const std::string& list, const std::string& lines, int direction) {
    const bool up = direction > 0;
    const std::string answer =
        MsgBox("Move Control?",
               GETPROPVALUE(list, "TYPEOF") + " object " + GETPROPVALUE(list, "NAME") + " is " +
                   (up ? "underneath" : "above") + " the following control(s):\n\n" + lines +
                   "\nDo you want to move it " + (up ? "on top of these?" : "underneath these?"),
               "Yes please\nNo thanks", BoxIcon::Question);
    return answer == "Yes please";
}

}  // namespace

bool MOVECONTROLZ(const Object& datalist, int index, int direction) {
    FRAME(MOVECONTROLZ);
    STAMP();
    if (!isControl(datalist, index) || direction == 0) return refused();
    const Overlapping found = overlapping(datalist, index, direction > 0 ? 1 : -1);
    STAMP();
    if (found.count == 0) return refused();
    const std::string list = GETDESIGNITEM(datalist, index);
    STAMP();
    if (!wantsMove(list, found.lines, direction)) return false;
    RemoveItem(datalist, index);
    const bool atEnd = found.farthest > GetListCount(datalist);
    const std::string text = list.substr(0, list.size() - 1);
    if (atEnd)
        AddItem(datalist, text);
    else
        AddItem(datalist, found.farthest, text);
    STAMP();
    SELECTOBJECT(found.farthest);
    STAMP();
    return true;
}

}  // namespace tarn
