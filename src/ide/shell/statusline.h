// SPDX-License-Identifier: GPL-3.0-or-later
//
// The status line of the main window: a word on what a command has done, which needs no answer. It stands beside the
// buttons, and goes with the toolbar. Without the main window nothing is told.
#pragma once

#include <string_view>

namespace tarn {

void TELLSTATUS(std::string_view text);  // empty: nothing is told any more

}  // namespace tarn
