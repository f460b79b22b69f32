// SPDX-License-Identifier: GPL-3.0-or-later
//
// Objects whose place and size the user has locked: neither mouse nor keys nor alignment moves them. A lock is a matter of
// the open editor, not of the resource file: it stands as an index in the label `locks` of the window, follows its object
// when the lists change, and ends with the editor. The property sheet, where a position is typed, goes past it.
//
// No errors: an index of no control is never locked. Cost: each reads the label; after a change each lock is looked for
// in the list.
#pragma once

#include "ide/designer/dlgstep.h"

#include <vector>

namespace tarn {

std::vector<int> LOCKEDOBJECTS();
bool ISLOCKED(int index);
void LOCKOBJECTS(const std::vector<int>& indexes, bool locked);
// Those of a list that are not locked, in their order.
std::vector<int> WITHOUTLOCKED(const std::vector<int>& indexes);

// After a change of the lists: the locks go where their objects have gone.
void CARRYLOCKS(const DesignLists& before, const DesignLists& after);

}  // namespace tarn
