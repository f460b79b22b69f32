// SPDX-License-Identifier: GPL-3.0-or-later
//
// Recent files: a list of the settings file, newest first, and the menu items that show it. The list is the one value of
// its section, a name on each line; names are compared as file names are typed, in any case. A settings file that cannot
// be written sets the error cell. Cost: the reading of the settings, and the writing where the list changes.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Gives `count` menu items, of which `firstItem` is the first of an array, the captions "&1 NAME", "&2 NAME"; those behind
// the end of the list have no name.
void LOADMRULIST(const std::string& iniFile, const std::string& section, int count, const Object& firstItem);
// Puts a file to the top of the list, of which `limit` names are kept. A new text has no name, and one with a line end in
// it cannot stand in the list: both leave it as it is.
void SAVEMRUITEM(const std::string& iniFile, const std::string& section, int limit, const std::string& name);
void REMOVEMRUITEM(const std::string& iniFile, const std::string& section, const std::string& name);

}  // namespace tarn
