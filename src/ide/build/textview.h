// SPDX-License-Identifier: GPL-3.0-or-later
//
// The error window: the compiler's messages as plain text. A double click or Return on a message opens the
// source at its line; F1 opens help on its number.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

bool VIEWDLG(const Object& window, int event, const Object& control, int parameter);
void VIEWDIALOG(const std::string& title, const std::string& file, const std::string& fontName, int fontSize);

}  // namespace tarn
