// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tools-Options-Editor: automatic backups, what the Code window shows, and the colours of highlighting, which hold for
// the sections "Hilite" of all languages. The Code window follows at once.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

bool EDITOROPTIONSDLG(const Object& window, int event, const Object& control, int parameter);
// The largest size of the Code window and the timer of backups follow too; `timerLabel` keeps the timer's state.
void EDITOROPTIONSDIALOG(const Object& mainWindow, const Object& timerLabel);

}  // namespace tarn
