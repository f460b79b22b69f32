// SPDX-License-Identifier: GPL-3.0-or-later
//
// The items of Edit-Dialog that work on the selected objects: a table of them, with when they are enabled and ticked.
// Cost of bringing them up to date: one look at the selection for each.
#pragma once

#include <string_view>

namespace tarn {

// By the name of the menu item. Beeps where the item would be disabled.
void DIALOGCOMMAND(std::string_view item);
// Enables and ticks them for what is selected now; without an editor all are disabled.
void UPDATEDIALOGMENU();

}  // namespace tarn
