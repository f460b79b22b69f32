// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Program Window as the user sees it: buttons, keys, clicks, and its place on the screen, which is kept.
// The rows are those of projwindow.h, the commands on a row projitems.h.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

bool PROJECTEDITORDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
