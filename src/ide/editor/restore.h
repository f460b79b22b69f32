// SPDX-License-Identifier: GPL-3.0-or-later
//
// Restore points: a file goes back to one of its backups (backup.h), and what it was becomes a restore point itself.
// The file has its old or its new text at every moment, and the old one is in a backup before the new one is written.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Asks under `title` and restores the Code window's file from the backup. The timer of the backups, whose label is
// given, stands still meanwhile.
void RESTOREFROMBACKUP(const std::string& title, const std::string& backup, const Object& timerLabel);
bool UNDODLG(const Object& window, int event, const Object& control, int parameter);

// A file that cannot be restored is told in a box, and the program goes on.
void RESTORE_ONERROR(std::int32_t code);

}  // namespace tarn
