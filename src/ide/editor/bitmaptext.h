// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window that shows a bitmap as a text for a source. Its text can be copied, and put into the Code window at the
// caret, which closes it.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Modal. Why a file cannot be converted is told in a box instead.
void CONVERTBMPDIALOG(const std::string& file);
bool CONVERTBMPDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
