// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Tools menu.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Asks for a data file and shows its rows. The settings of delimited text are asked for first.
void DO_EXPLORE_DB();
// Asks for a resource file and opens it as a program without a class.
void DO_EXPLORE_RCFILE(const Object& programLabel);
// Asks for a dialog, first for the current one, and shows it as its program will.
void DO_TEST_DIALOG();
// A new dialog in a new resource file, which needs the Program Window and the Code window closed. `title` is that of
// the boxes.
void DO_OPTIONS_RCFILE(const std::string& title);
void CREATERCFILEDIALOG(const std::string& title);
void DO_TEST_RCFILE();  // the tests of whole resource files
// The dialogs of Tools-Options; see ide/options.
void DO_OPTIONS_COMP();
void DO_OPTIONS_DEBUG();
void DO_OPTIONS_EDITOR(const Object& mainWindow, const Object& timerLabel);
void DO_OPTIONS_FONTS();
void DO_OPTIONS_GEN(const Object& mainWindow);
void DO_OPTIONS_PATHS();
void DO_OPTIONS_KEYS();
// Reads the open dialog as its users will.
void DO_CHECK_DIALOG();
// Asks for a bitmap and shows it as a text for a source.
void DO_CONVERT_BMP();
// Asks for a template and shows what comes of it.
void DO_TEST_TEMPLATE();

}  // namespace tarn
