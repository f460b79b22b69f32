// SPDX-License-Identifier: GPL-3.0-or-later
//
// The tests of whole resource files: a list of files, each marked with what its test gave.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

bool RCFILETESTDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
