// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/objects/dlgalign.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgmany.h"
#include "ide/designer/objects/dlgtab.h"
#include "library/system/system.h"

#include <algorithm>
#include <numeric>

MODULE("dlgedit")

namespace tarn {
namespace {

using Places = std::vector<UnitRect>;

// ---- the operations ----

// One number of each place becomes what the first one and the place itself tell.
template <int UnitRect::*Part, class Rule>
void each(Places& places, Rule rule) {
    const UnitRect first = places[0];
    for (UnitRect& place : places) place.*Part = rule(first, place);
}

void left(Places& places, const AlignRoom&) {
    each<&UnitRect::x>(places, [](const UnitRect& first, const UnitRect&) { return first.x; });
}
void right(Places& places, const AlignRoom&) {
    each<&UnitRect::x>(places,
                       [](const UnitRect& first, const UnitRect& own) { return first.x + first.w - own.w; });
}
void top(Places& places, const AlignRoom&) {
    each<&UnitRect::y>(places, [](const UnitRect& first, const UnitRect&) { return first.y; });
}
void bottom(Places& places, const AlignRoom&) {
    each<&UnitRect::y>(places,
                       [](const UnitRect& first, const UnitRect& own) { return first.y + first.h - own.h; });
}
void centreAcross(Places& places, const AlignRoom&) {
    each<&UnitRect::x>(
        places, [](const UnitRect& first, const UnitRect& own) { return first.x + (first.w - own.w) / 2; });
}
void centreDown(Places& places, const AlignRoom&) {
    each<&UnitRect::y>(
        places, [](const UnitRect& first, const UnitRect& own) { return first.y + (first.h - own.h) / 2; });
}
void sameWidth(Places& places, const AlignRoom&) {
    each<&UnitRect::w>(places, [](const UnitRect& first, const UnitRect&) { return first.w; });
}
void sameHeight(Places& places, const AlignRoom&) {
    each<&UnitRect::h>(places, [](const UnitRect& first, const UnitRect&) { return first.h; });
}
void sameSize(Places& places, const AlignRoom& room) {
    sameWidth(places, room);
    sameHeight(places, room);
}

// The outermost stay; the gaps between become equal, but for a unit where they cannot be.
template <int UnitRect::*Start, int UnitRect::*Size>
void space(Places& places) {
    std::vector<std::size_t> order(places.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return places[a].*Start < places[b].*Start; });
    const UnitRect &low = places[order.front()], &high = places[order.back()];
    int gaps = high.*Start - low.*Start - low.*Size;  // what is left between the outermost
    for (std::size_t i = 1; i + 1 < order.size(); ++i) gaps -= places[order[i]].*Size;
    const int count = static_cast<int>(order.size()) - 1;
    int at = low.*Start + low.*Size;
    for (int i = 1; i < count; ++i) {
        UnitRect& place = places[order[static_cast<std::size_t>(i)]];
        place.*Start = at + gaps * i / count;
        at += place.*Size;
    }
}
void spaceAcross(Places& places, const AlignRoom&) {
    space<&UnitRect::x, &UnitRect::w>(places);
}
void spaceDown(Places& places, const AlignRoom&) {
    space<&UnitRect::y, &UnitRect::h>(places);
}

int nearest(int place, int step) {
    return step > 0 ? (place + step / 2) / step * step : place;
}
void snapToGrid(Places& places, const AlignRoom& room) {
    for (UnitRect& place : places) {
        place.x = nearest(place.x, room.gridWidth);
        place.y = nearest(place.y, room.gridHeight);
    }
}

// All as one block.
template <int UnitRect::*Start, int UnitRect::*Size>
void centreBlock(Places& places, int room) {
    int low = places[0].*Start, high = low;
    for (const UnitRect& place : places) {
        low = std::min(low, place.*Start);
        high = std::max(high, place.*Start + place.*Size);
    }
    const int by = (room - (high - low)) / 2 - low;
    for (UnitRect& place : places) place.*Start += by;
}
void centreInDialog(Places& places, const AlignRoom& room) {
    centreBlock<&UnitRect::x, &UnitRect::w>(places, room.width);
    centreBlock<&UnitRect::y, &UnitRect::h>(places, room.height);
}

constexpr AlignOperation operations[] = {
    {"edit_dialog_align_left", 2, left},
    {"edit_dialog_align_right", 2, right},
    {"edit_dialog_align_top", 2, top},
    {"edit_dialog_align_bottom", 2, bottom},
    {"edit_dialog_centre_across", 2, centreAcross},
    {"edit_dialog_centre_down", 2, centreDown},
    {"edit_dialog_same_width", 2, sameWidth},
    {"edit_dialog_same_height", 2, sameHeight},
    {"edit_dialog_same_size", 2, sameSize},
    {"edit_dialog_space_across", 3, spaceAcross},
    {"edit_dialog_space_down", 3, spaceDown},
    {"edit_dialog_snap_grid", 1, snapToGrid},
    {"edit_dialog_centre_dialog", 1, centreInDialog},
};

// ---- with the selection ----

AlignRoom roomNow() {
    const UnitRect dialog = DESIGNPLACE(1);
    const std::vector<int> grid = DESIGNNUMBERS("gridstr");
    if (grid.size() < 2 || grid[0] <= 0 || grid[1] <= 0) return {dialog.w, dialog.h, 0, 0};
    return {dialog.w, dialog.h, grid[0], grid[1]};
}

bool selectsControls(const std::vector<int>& selected) {
    return !selected.empty() && selected[0] > 1;
}

bool enough(const AlignOperation& operation, const std::vector<int>& selected) {
    if (!selectsControls(selected) || selected.size() < operation.least) return false;
    return operation.apply != snapToGrid || roomNow().gridWidth > 0;
}

void place(const std::vector<int>& indexes, const Places& places) {
    for (std::size_t i = 0; i < indexes.size(); ++i)
        if (places[i] != DESIGNPLACE(indexes[i]) && !ISLOCKED(indexes[i]))
            SETDESIGNPLACE(indexes[i], KEPTINSIDE(places[i]));
}

}  // namespace

const AlignOperation* FINDALIGNMENT(std::string_view name) {
    FRAME(FINDALIGNMENT);
    for (const AlignOperation& operation : operations)
        if (operation.name == name) return &operation;
    return nullptr;
}

bool CANALIGN(std::string_view name) {
    FRAME(CANALIGN);
    STAMP();
    const AlignOperation* const operation = FINDALIGNMENT(name);
    return operation != nullptr && enough(*operation, SELECTEDOBJECTS());
}

void ALIGNSELECTED(std::string_view name) {
    FRAME(ALIGNSELECTED);
    STAMP();
    if (!CANALIGN(name)) return Sound();
    const std::vector<int> selected = SELECTEDOBJECTS();
    Places places;
    for (const int index : selected) places.push_back(DESIGNPLACE(index));
    FINDALIGNMENT(name)->apply(places, roomNow());
    STAMP();
    if (DESIGNSTEP([&] { place(selected, places); })) DIALOGREDRAW();
    STAMP();
}

// ---- the order ----

namespace {

// The controls in a new order, as one step; what is selected and what is locked goes along.
void putInFront(bool front) {
    FRAME(PUTINFRONT);
    const std::vector<int> selected = SELECTEDOBJECTS();
    STAMP();
    if (!selectsControls(selected)) return Sound();
    std::vector<int> order(static_cast<std::size_t>(GetListCount(DATALIST())) - 1);
    std::iota(order.begin(), order.end(), 2);
    std::stable_partition(order.begin(), order.end(), [&](int index) {
        const bool chosen = std::find(selected.begin(), selected.end(), index) != selected.end();
        return chosen != front;
    });
    STAMP();
    REORDERCONTROLS(order);
    STAMP();
}

}  // namespace

void SELECTEDTOFRONT() {
    FRAME(SELECTEDTOFRONT);
    STAMP();
    putInFront(true);
    STAMP();
}

void SELECTEDTOBACK() {
    FRAME(SELECTEDTOBACK);
    STAMP();
    putInFront(false);
    STAMP();
}

}  // namespace tarn
