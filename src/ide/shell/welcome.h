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
// A window in which the user works has come up. The welcome stays for one that was there, with that caption, when it was shown:
// a window manager may tell late of what came up before.
void CLOSEWELCOME(const Object& window);
// The same if the settings want it (Welcome, AtStart).
void WELCOMEATSTART();
bool WELCOMEDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
