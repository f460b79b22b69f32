// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Run menu. What its commands do stands in ide/build/build.h.
#pragma once

#include <string>

namespace tarn {

void DO_QUICKBUILD(bool showMessage, bool& ok);
void DO_REBUILD();
void DO_COMPILE();
void DO_START();
void DO_START_EXAMPLE(const std::string& file);
void DO_ARGUMENTS();
void DO_INFO();

}  // namespace tarn
