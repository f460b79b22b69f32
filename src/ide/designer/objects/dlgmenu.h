// SPDX-License-Identifier: GPL-3.0-or-later
//
// The items of Edit-Dialog that work on the selected objects: a table of them, with when they are enabled and ticked.
// Cost of bringing them up to date: one look at the selection for each.
#pragma once

#include <string_view>

namespace tarn {

// By the name of the menu item; nothing while the dialog editor is not shown.
void DIALOGCOMMAND(std::string_view item);
void UPDATEDIALOGMENU();

}  // namespace tarn
