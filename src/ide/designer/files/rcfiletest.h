// SPDX-License-Identifier: GPL-3.0-or-later
//
// The tests of whole resource files: a list of files, each marked with what its test gave.
//
// A test that fails ends the run; what failed stands in the window. Cost: that of TESTPROPERTIES (dlgtest.h) for each
// dialog.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

bool RCFILETESTDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
