// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/objects/dlgtab.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgmenu.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

// What was clicked, in that order; empty also where objects have come or gone since.
std::vector<int> clicked() {
    std::vector<int> numbers = DESIGNNUMBERS("taborder");
    if (numbers.empty() || numbers[0] != GetListCount(DATALIST())) return {};
    numbers.erase(numbers.begin());
    return numbers;
}

bool isControl(int index) {
    return index > 1 && index <= GetListCount(DATALIST());
}

// Where each index of a list has gone.
std::vector<int> carried(const std::vector<int>& indexes, const std::vector<int>& order) {
    std::vector<int> out;
    for (const int index : indexes)
        if (const auto found = std::find(order.begin(), order.end(), index); found != order.end())
            out.push_back(static_cast<int>(found - order.begin()) + 2);
    return out;
}

}  // namespace

bool TABORDERISON() {
    FRAME(TABORDERISON);
    STAMP();
    return !DESIGNTEXT("taborder").empty();
}

void TABORDERBEGIN() {
    FRAME(TABORDERBEGIN);
    STAMP();
    if (GetListCount(DATALIST()) < 3) return Sound();  // nothing to put in order
    SELECTOBJECT(0);
    SETDESIGNNUMBERS("taborder", {GetListCount(DATALIST())});
    STAMP();
    DIALOGREDRAW();
    UPDATEDIALOGMENU();
    STAMP();
}

void TABORDERCLICK(int index) {
    FRAME(TABORDERCLICK);
    STAMP();
    std::vector<int> chosen = clicked();
    const bool known = std::find(chosen.begin(), chosen.end(), index) != chosen.end();
    if (!isControl(index) || (known && chosen.back() != index)) return Sound();
    if (known)
        chosen.pop_back();
    else
        chosen.push_back(index);
    chosen.insert(chosen.begin(), GetListCount(DATALIST()));
    SETDESIGNNUMBERS("taborder", chosen);
    STAMP();
    DIALOGREDRAW();
    STAMP();
}

std::vector<int> TABORDERNOW() {
    FRAME(TABORDERNOW);
    STAMP();
    std::vector<int> order = clicked();
    for (int index = 2; index <= GetListCount(DATALIST()); ++index)
        if (std::find(order.begin(), order.end(), index) == order.end()) order.push_back(index);
    STAMP();
    return order;
}

std::size_t TABORDERCHOSEN() {
    FRAME(TABORDERCHOSEN);
    STAMP();
    return clicked().size();
}

void TABORDEREND() {
    FRAME(TABORDEREND);
    STAMP();
    if (!TABORDERISON()) return;
    const std::vector<int> order = TABORDERNOW();
    SETDESIGNTEXT("taborder", "");
    STAMP();
    REORDERCONTROLS(order);
    STAMP();
    DIALOGREDRAW();
    UPDATEDIALOGMENU();
    STAMP();
}

void REORDERCONTROLS(const std::vector<int>& order) {
    FRAME(REORDERCONTROLS);
    STAMP();
    const std::vector<int> selected = carried(SELECTEDOBJECTS(), order),
                           locks = carried(LOCKEDOBJECTS(), order);
    const std::vector<std::string> before = DESIGNLISTS().dialog;
    const bool changed = DESIGNSTEP([&] {
        for (std::size_t i = 0; i < order.size(); ++i)
            SetList(DATALIST(), static_cast<int>(i) + 2, before[static_cast<std::size_t>(order[i]) - 1]);
        if (!selected.empty()) SELECTOBJECTS(selected);
    });
    STAMP();
    SETDESIGNNUMBERS("locks", locks);
    if (changed) DIALOGREDRAW();
    STAMP();
}

}  // namespace tarn
