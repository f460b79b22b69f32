// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tools-Options-General: the caption of the main window, the opening action, the design grid and the help file. The main
// window and the dialog editor follow at once.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

bool GENOPTIONSDLG(const Object& window, int event, const Object& control, int parameter);
void GENOPTIONSDIALOG(const Object& mainWindow);

}  // namespace tarn
