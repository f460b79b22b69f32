// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the options have to do with automatic backups: the one place that calls the editor's.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

bool HASBACKUPS();     // false in an environment without automatic backups: nothing here does anything then
int BACKUPINTERVAL();  // minutes, as the settings have them; 0: no backups
// Starts the timer of the Code window anew; `label` keeps its state.
void RESTARTBACKUPTIMER(const Object& label, int minutes);
void DELETEBACKUPS(const std::string& title);

}  // namespace tarn
