// SPDX-License-Identifier: GPL-3.0-or-later
//
// The View menu.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

void DO_LINE();
void DO_FUNCTION_LIST();
void DO_BROWSE_INFO();
void DO_ERRORS();
void DO_STD_TOOLBAR(const Object& mainWindow, const Object& label, const Object& menuItem);

}  // namespace tarn
