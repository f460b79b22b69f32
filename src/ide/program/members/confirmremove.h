// SPDX-License-Identifier: GPL-3.0-or-later
//
// The question before something is removed from a program: what goes, and what goes with it. Only the button Remove leads
// to a removal, and only it keeps the place of the window; Return stands for Cancel. Cost: that of a dialog.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

struct RemoveChoice {
    bool remove = false;
    bool alsoRemove = false;  // the window function of a dialog
    bool alsoDelete = false;  // the files themselves
};
// Modal. What is not possible has a box that is not enabled, and is not ticked.
RemoveChoice CONFIRMREMOVEDIALOG(const std::string& title, const std::string& text, bool canRemove,
                                 bool canDelete);
bool CONFIRMREMOVEDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
