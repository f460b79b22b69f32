// SPDX-License-Identifier: GPL-3.0-or-later
//
// The user's hands in each mode. `makeHands` puts the mode's view in force.
#pragma once

#include "support/user_script.h"

#include <memory>
#include <string>

namespace tarn {

std::unique_ptr<Hands> makeHands(const std::string& mode);
std::unique_ptr<Hands> makeQtHands(bool onScreen);

}  // namespace tarn
