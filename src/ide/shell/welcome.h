// SPDX-License-Identifier: GPL-3.0-or-later
//
// The welcome: recent programs, the examples with their pictures, and the ways to begin. It comes by itself at each
// start that opens nothing, until its box is unticked. Cost: a look at the recent files and the examples.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

inline const Object WelcomeDlg("WelcomeDlg");

// Shows it, and does what the user chooses there.
void WELCOMEDIALOG();
// The same if the settings want it (Welcome, AtStart).
void WELCOMEATSTART();
bool WELCOMEDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
