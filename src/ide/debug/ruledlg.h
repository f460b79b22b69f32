// SPDX-License-Identifier: GPL-3.0-or-later
//
// Run-Breakpoint Rule: when a breakpoint stops, or what it writes instead of a stop.
#pragma once

#include "kernel/debug/debugsettings.h"
#include "kernel/windows/windowing.h"

namespace tarn {

bool BREAKPOINTRULEDLG(const Object& window, int event, const Object& control, int parameter);
// Lets the user change the rule; false if he leaves it as it is. The class and the line stay.
bool RULEDIALOG(DebugRule& rule);

}  // namespace tarn
