// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Help menu: each command opens the help file on its topic.
#pragma once

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

}  // namespace tarn
