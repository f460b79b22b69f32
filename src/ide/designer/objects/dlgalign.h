// SPDX-License-Identifier: GPL-3.0-or-later
//
// Alignment: a table of operations on the places of several objects, and what applies one to the selection. All go by the
// first of them, which stays where it is but for what is said of an operation.
//
// The operations are known by the names of their menu items. Cost: linear in the objects (equal gaps sort them), and a
// redraw.
#pragma once

#include "library/designer/proputil.h"

#include <string_view>
#include <vector>

namespace tarn {

// What an operation goes by beside the places, in resource units.
struct AlignRoom {
    int width = 0, height = 0;          // of the dialog
    int gridWidth = 0, gridHeight = 0;  // 0: there is none
};

struct AlignOperation {
    std::string_view name;
    std::size_t least;  // of objects that it needs
    void (*apply)(std::vector<UnitRect>& places, const AlignRoom& room);
};
// Null if there is no operation of that name.
const AlignOperation* FINDALIGNMENT(std::string_view name);

bool CANALIGN(std::string_view name);  // with what is selected now
// One step: locked objects stay, and what an operation would put outside the dialog comes to lie at its edge. A sound where
// it cannot be done.
void ALIGNSELECTED(std::string_view name);

// To the end of the order, or to its beginning, without a question and in the order that they have among each other.
void SELECTEDTOFRONT();
void SELECTEDTOBACK();

}  // namespace tarn
