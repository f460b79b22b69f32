// SPDX-License-Identifier: Apache-2.0
//
// How a view is to show a window: operations/quietly.h tells it beside View::show, which has the window alone.
#pragma once

namespace tarn::platform {

enum class Showing {
    InFront,  // raised and active
    Quietly,  // without the focus
    Behind,   // the same, under all other windows
};
Showing howToShow();  // during View::show

}  // namespace tarn::platform
