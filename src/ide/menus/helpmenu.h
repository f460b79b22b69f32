// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Help menu: each command opens the help file on its topic.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

void DO_FILECONTENTS();
void DO_FILEINDEX();
void DO_USING_HELP();
void DO_DEVELOPER_ENV();
void DO_KEYBOARD();
void DO_GETTING_STARTED();
void DO_EXAMPLE_PROGS();
void DO_HOW_DO_I();
void DO_COMPILER_ERRORS();
void DO_RUN_TIME_ERRORS();
void DO_TECH_SUPPORT();
void DO_WELCOME();
void DO_ABOUT(const Object& mainWindow);
void DO_PRODUCTS(const std::string& title);  // the product's pages in the browser

}  // namespace tarn
