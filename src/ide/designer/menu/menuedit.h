// SPDX-License-Identifier: GPL-3.0-or-later
//
// The menu editor: the flat list of a menu's items, nested by the level that POSITION holds. The work on the items is in
// menuitems.h; here is the window.
//
// Cost: that of the items, read once and written once.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <vector>

namespace tarn {

// Item 1 of `items` is the property list of the menu, which stays. On OK with a change the others are replaced, and the
// result is true; else they stay as they were, byte for byte. An empty list opens nothing.
[[nodiscard]] bool MENUEDITDIALOG(const std::string& title, const std::string& helpFile,
                                  const std::string& helpKey, std::vector<std::string>& items);
bool MENUEDITDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
