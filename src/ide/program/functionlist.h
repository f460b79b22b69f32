// SPDX-License-Identifier: GPL-3.0-or-later
//
// The functions of the text in the Code window, as they stand there, saved or not; choosing one goes to its line.
//
// Without a text it beeps. Cost: a scan of the text, again when a function is chosen.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

bool GOTOFUNCDLG(const Object& window, int event, const Object& control, int parameter);
void GOTOFUNCDIALOG();

}  // namespace tarn
