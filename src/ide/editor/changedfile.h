// SPDX-License-Identifier: GPL-3.0-or-later
//
// What happens when another program has changed or deleted the file that a window shows: one question for each change,
// asked when the user comes to the window.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

// Asks if there is a new change and nothing else is being asked: reload (one step that can be undone), keep, or show
// the difference. A file that has gone is kept in the window or closed.
void ASKABOUTCHANGEOUTSIDE(const Object& window);

}  // namespace tarn
