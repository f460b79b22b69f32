// SPDX-License-Identifier: GPL-3.0-or-later
//
// Recent files: a list of the settings file, newest first, and the menu items that show it.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

void LOADMRULIST(const std::string& iniFile, const std::string& section, int count, const Object& firstItem);
void SAVEMRUITEM(const std::string& iniFile, const std::string& section, int limit, const std::string& name);
void REMOVEMRUITEM(const std::string& iniFile, const std::string& section, const std::string& name);

}  // namespace tarn
