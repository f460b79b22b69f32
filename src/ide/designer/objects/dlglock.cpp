// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/objects/dlglock.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

bool contains(const std::vector<int>& indexes, int index) {
    return std::find(indexes.begin(), indexes.end(), index) != indexes.end();
}

// Where an object of the list before stands in the list after; 0 if it is not there any more. One that has changed where
// it stands is the same.
int placeAfter(int index, const std::vector<std::string>& before, const std::vector<std::string>& after) {
    const auto at = static_cast<std::size_t>(index) - 1;
    if (at >= before.size()) return 0;
    const bool same = at < after.size() && after[at] == before[at];
    const auto found = std::find(after.begin(), after.end(), before[at]);
    if (!same && found != after.end()) return static_cast<int>(found - after.begin()) + 1;
    return same || after.size() == before.size() ? index : 0;
}

}  // namespace

std::vector<int> LOCKEDOBJECTS() {
    FRAME(LOCKEDOBJECTS);
    STAMP();
    return DESIGNNUMBERS("locks");
}

bool ISLOCKED(int index) {
    FRAME(ISLOCKED);
    STAMP();
    return contains(LOCKEDOBJECTS(), index);
}

void LOCKOBJECTS(const std::vector<int>& indexes, bool locked) {
    FRAME(LOCKOBJECTS);
    STAMP();
    std::vector<int> locks = LOCKEDOBJECTS();
    for (const int index : indexes) {
        std::erase(locks, index);
        if (locked && index > 1) locks.push_back(index);
    }
    std::sort(locks.begin(), locks.end());
    SETDESIGNNUMBERS("locks", locks);
    STAMP();
}

std::vector<int> WITHOUTLOCKED(const std::vector<int>& indexes) {
    FRAME(WITHOUTLOCKED);
    STAMP();
    const std::vector<int> locks = LOCKEDOBJECTS();
    std::vector<int> rest;
    for (const int index : indexes)
        if (!contains(locks, index)) rest.push_back(index);
    return rest;
}

void CARRYLOCKS(const DesignLists& before, const DesignLists& after) {
    FRAME(CARRYLOCKS);
    STAMP();
    const std::vector<int> locks = LOCKEDOBJECTS();
    if (locks.empty()) return;
    std::vector<int> carried;
    for (const int index : locks)
        if (const int place = placeAfter(index, before.dialog, after.dialog); place > 1)
            carried.push_back(place);
    STAMP();
    SETDESIGNNUMBERS("locks", carried);
    STAMP();
}

}  // namespace tarn
