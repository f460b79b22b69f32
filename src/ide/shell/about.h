// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the About box of the environment says, and the buttons that it has.
#pragma once

#include "library/dialogs/commdlgs_about.h"

#include <string>

namespace tarn {

// The program's details, a rule, who made it and whose work it carries, a rule, and the report of the system.
std::string GETABOUTTEXT();
AboutButtons GETABOUTBOXBUTTONS();
// The address of the product's pages, from the settings; empty if there is none.
std::string GETWEBSITE();

}  // namespace tarn
