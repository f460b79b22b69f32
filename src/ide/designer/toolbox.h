// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Toolbox: a small window of buttons that add objects to the open dialog and change their order.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

void TOOLBOXOPEN(const std::string& helpFile, const std::string& helpKey);
void TOOLBOXCLOSE();
bool TOOLBOXDLG(const Object& window, int event, const Object& control, int parameter);

struct ToolboxChoice {
    std::string type, option;  // empty while the Toolbox is not loaded
};
ToolboxChoice TOOLBOXGETSELECTION();

}  // namespace tarn
