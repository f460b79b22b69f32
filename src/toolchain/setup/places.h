// SPDX-License-Identifier: Apache-2.0
//
// Where an installation goes: the user's home, the whole system, or a folder of the user's choice. Paths have no "/" at
// their end.
#pragma once

#include "toolchain/setup/package.h"

#include <string>

namespace tarn::setup {

struct Places {
    std::string
        app;  // the folder of the program; everything that is installed is in it but the desktop entries
    std::string menu;     // where the desktop looks for entries
    std::string desktop;  // where the user looks for them; empty: there is no such folder
};

// By the variables HOME and XDG_DATA_HOME, and the desktop's folder by the user's list of folders. Empty texts if there is
// no home.
Places placesInHome(const Package& package);
Places placesInSystem(const Package& package);
Places placesInFolder(const Package& package, const std::string& folder);  // entries as in the home

// ---- desktop entries ----

// The file of a shortcut; empty if there is no place for it.
std::string entryFile(const Package& package, const Shortcut& shortcut, const Places& places);
std::string entryText(const Package& package, const Shortcut& shortcut, const Places& places);

}  // namespace tarn::setup
