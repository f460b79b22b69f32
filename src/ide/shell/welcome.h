// SPDX-License-Identifier: GPL-3.0-or-later
//
// The welcome: recent programs, the examples with their pictures, and the ways to begin. It comes by itself at each
// start that opens nothing, until its box is unticked. It is not modal, since a file may come from a second start of the
// environment meanwhile, and goes when one of the windows comes up in which the user works. Cost: a look at the recent files
// and the examples.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

inline const Object WelcomeDlg("WelcomeDlg");

// Shows it; what the user chooses there is done then.
void WELCOMEDIALOG();
// Closes it if a window in which the user works has come up since it was shown, or shows something else: one that was there as it
// is may be told of late, and closes nothing.
void CLOSEWELCOME();
// The same if the settings want it (Welcome, AtStart).
void WELCOMEATSTART();
bool WELCOMEDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
