// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Window menu.
#pragma once

namespace tarn {

void DO_WINDOW_ARRANGE();
void DO_WINDOW_CLOSE_ALL();
void DO_WINDOW_WINDOWS();
void DO_WINDOW_PROGRAM();
void DO_WINDOW_CODE();
void DO_WINDOW_DIALOG();
void DO_WINDOW_BROWSER();
void DO_WINDOW_ERROR();
void DO_WINDOW_OUTPUT();

}  // namespace tarn
