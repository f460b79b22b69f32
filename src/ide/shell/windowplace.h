// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where a window stood when the environment ran last, as far as its settings tell.
// Cost: a look into the settings file.
#pragma once

#include <string_view>

namespace tarn {

// Whether the settings have a place for the window of that section. A window that was maximised before it ever had a place
// is stored with a size of nothing, which is none: it is placed as at first.
bool HASPLACE(std::string_view section);

}  // namespace tarn
