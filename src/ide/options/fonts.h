// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tools-Options-Fonts: the font of the Code window, which takes it at once and has it again at the next start.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

// Lets the user choose a font, beginning with the window's; `apply` gives it to the window. True if another one was
// chosen.
bool CHOOSEFONT(const Object& window, bool apply);
void FONTOPTIONSDIALOG();

}  // namespace tarn
