// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window that tells what is known of the file in the Code window.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

void FILEINFODIALOG();
bool FILEINFODLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
