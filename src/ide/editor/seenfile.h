// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an edit window saw of its file on the disk when it read or wrote it last, so that a save does not take away
// what another program has written since.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// The file is on the disk as the window shows it.
void NOTEFILESEEN(const Object& window, const std::string& file);
// Another program has changed the file since; false for one that the window did not read, and for one that is gone.
bool CHANGEDOUTSIDE(const Object& window, const std::string& file);

}  // namespace tarn
