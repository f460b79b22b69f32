// SPDX-License-Identifier: GPL-3.0-or-later
//
// What controls become when they are put into a dialog: names, places and the default button. On property lists alone.
// Cost: each place that is taken is one pass through the controls.
#pragma once

#include <string>
#include <vector>

namespace tarn {

// The dialog with its controls, and the menu with its items; `grid` is the text of gridstr.
struct PasteTarget {
    std::vector<std::string> dialog, menu;
    std::string grid;
};
std::vector<std::string> FITTEDCONTROLS(std::vector<std::string> controls, const PasteTarget& target);

}  // namespace tarn
