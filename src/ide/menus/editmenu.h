// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Edit menu.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// One step of what was done to the text in the Code window, or in the dialog editor if the user was there last, back or
// forth; a sound when there is none.
void DO_UNDO_TYPING();
void DO_REDO_TYPING();
// Restores the Code window's file from one of its backups.
void DO_UNDO(const std::string& title, const std::string& backupFile, const Object& timerLabel);

// The properties of what is selected in the dialog editor, if the user was there last; else a sound.
void DO_PROPERTIES();
// The lines that a save of the open dialog would change.
void DO_DIALOG_CHANGES();
// The open dialog as it looks on other desktops.
void DO_DIALOG_PREVIEW();
// The selected controls of the dialog editor once more.
void DO_DIALOG_DUPLICATE();

}  // namespace tarn
