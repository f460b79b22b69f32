// SPDX-License-Identifier: GPL-3.0-or-later
//
// The arguments that the program is started with.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

bool ARGUMENTSDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
