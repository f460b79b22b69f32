// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Run menu. What its commands do stands in ide/build/build.h, ide/build/start.h and ide/debug.
#pragma once

#include <string>

namespace tarn {

void DO_QUICKBUILD(bool showMessage, bool& ok);
void DO_REBUILD();
void DO_COMPILE();
void DO_START();
void DO_START_EXAMPLE(const std::string& file);
void DO_DEBUG();
void DO_ARGUMENTS();
void DO_INFO();
void DO_TOGGLE_BREAKPOINT();
void DO_BREAKPOINT_RULE();
void DO_RUN_TO_CURSOR();
void DO_BREAK();

}  // namespace tarn
