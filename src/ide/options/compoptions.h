// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tools-Options-Compiler: the levels and switches of the compiler, with the command line that they give shown while they
// are chosen. What is chosen goes to the settings, and the command line with it, when the window closes after OK.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

bool COMPOPTIONSDLG(const Object& window, int event, const Object& control, int parameter);
void COMPOPTIONSDIALOG();
// Sets a level without showing anything: "-P0" to "-P2" (preconditions) or "-D0" to "-D2" (debug information), in any
// case. Any other text changes nothing.
void SETCOMPILEROPTION(const std::string& option);

}  // namespace tarn
