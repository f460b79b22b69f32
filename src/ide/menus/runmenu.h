// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Run menu: what is compiled, whether a program is current, and how it is started. The truth is in the
// files: the make tool is asked each time.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

void DO_QUICKBUILD(bool showMessage, bool& ok);
void DO_REBUILD();
void DO_COMPILE();
void DO_START();
void DO_START_EXAMPLE(const std::string& file);
void DO_ARGUMENTS();

void RUN_BUILD(const std::string& title, const std::string& makeOptions, std::string& file, bool& ok);
void RUN_COMPILE(const Object& window);
void RUN_START(const std::string& title, const std::string& file);
bool ISUPTODATE(const std::string& file);
// Shows the compiler's messages, or clears the error window when there are none: true.
bool UPDATEERRORWINDOW(const std::string& compilerDir);
void SHOWNOCLASSERROR(const std::string& title, const std::string& file);

bool ARGUMENTSDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
