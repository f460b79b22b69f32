// SPDX-License-Identifier: GPL-3.0-or-later
//
// The commands of the main window: one table that is walked in order.
#pragma once

#include "kernel/windows/windowing.h"

#include <string_view>

namespace tarn {

// Carries out the command of a menu item or toolbar button; a control in no row does nothing. Then the main
// window is brought up to date and the focus goes back to where the user was working.
void DO_COMMAND(const Object& control, int parameter);
// Whether the command of this control has a handler; of a control array only the first element is known.
// Those without a handler are disabled.
bool HASHANDLER(std::string_view controlName);
void DISABLEUNHANDLED();

}  // namespace tarn
