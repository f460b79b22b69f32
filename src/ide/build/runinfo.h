// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window that tells what a program is made of: its class, its executable and its compiled resources with their sizes
// and dates, the classes that it inherits, and with how much debug information they were compiled. Cost: the make tool is
// asked three times, and each symbol file is read.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

inline const Object RunInfoDlg("RunInfoDlg");

// Of the program that a build would build; what is no program is told, and no window comes.
void RUNINFODIALOG();
bool RUNINFODLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
