// SPDX-License-Identifier: Apache-2.0
//
// Dialogs that modules share.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// The splash window over "logo.bmp" of the application's folder with the product's name and version. Waits up
// to 3 seconds, which a click or a key ends; the window then stays until SPLASHDLG_UNLOAD.
void SPLASHDLG_SHOWWITHBUTTONS();
void SPLASHDLG_SPLASHTEXT(const std::string& line1, const std::string& line2, const std::string& line3);
void SPLASHDLG_UNLOAD();

}  // namespace tarn
