// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog that asks at start what to begin with.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

void STARTUPDIALOG();
bool STARTUPDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
