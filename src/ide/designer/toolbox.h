// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Toolbox: a small window of buttons that add objects to the open dialog and change their order. It stays above all
// windows. The name of a button says what it adds, its first "_" standing for a blank: "Scrollbar_horizontal".
//
// Tab goes through the buttons and Space presses one; the keys that change a dialog beep here. F6 goes to the dialog and
// back.
//
// Errors: those of ADDOBJECT and MOVECONTROLZ (objects/dlgobjects.h); a button beeps while no dialog is open.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

void TOOLBOXOPEN(const std::string& helpFile, const std::string& helpKey);
void TOOLBOXCLOSE();
bool TOOLBOXGETVISIBLE();
bool TOOLBOXDLG(const Object& window, int event, const Object& control, int parameter);

struct ToolboxChoice {
    std::string type, option;  // empty while the Toolbox is not loaded
};
// The selected control of the array of `pointer_tool`.
ToolboxChoice TOOLBOXGETSELECTION();

}  // namespace tarn
