// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tools-Options-Debug: the breakpoints of all classes with their rules, the trace levels, and how values show. What is
// chosen goes to the settings by OK, and into the margin of the Code window.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

bool DEBUGOPTIONSDLG(const Object& window, int event, const Object& control, int parameter);
void DEBUGOPTIONSDIALOG();

// The list of breakpoints, an icon list or a list box: an item is the class, a tab and the line.
void SETBREAKPOINTS(const Object& list, const std::string& value);  // from the settings' value
std::string GETBREAKPOINTS(const Object& list);                     // the value of its items
// The row of a breakpoint, from 1; -1 if it is not there.
int FINDBREAKPOINT(const Object& list, const std::string& className, int line);

}  // namespace tarn
