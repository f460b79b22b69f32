// SPDX-License-Identifier: Apache-2.0
//
// The menu bar of a window, made from its flat list of items with levels. Shortcuts are only shown here: the
// view itself routes keys (see qtview.h), since those of the main window hold in every window of the program.
// Cost: one action for each item when the list has changed, otherwise one property.
#pragma once

#include "platform/model/model.h"

class QMenuBar;

namespace tarn::platform::qt {

void buildMenu(QMenuBar& bar, Window& window);  // anew, from all items
void updateMenuItem(Control& item);             // caption, check mark, enabled, visible
// The item of a window with that shortcut that may be picked now; null if there is none.
Control* findShortcut(Window& window, int shortcut);

}  // namespace tarn::platform::qt
