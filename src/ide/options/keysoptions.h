// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tools-Options-Keyboard: the commands of the menus with their keys. The user chooses a command, presses keys in the
// field below the list, and assigns them; keys of another command of the same window are told with its name, and go over
// only if the user says so. Nothing holds before OK.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

bool KEYSOPTIONSDLG(const Object& window, int event, const Object& control, int parameter);
void KEYSOPTIONSDIALOG();

}  // namespace tarn
