// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/windowplace.h"

#include "ide/shell/idecore.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <string>

MODULE("ide")

namespace tarn {

bool HASPLACE(std::string_view section) {
    FRAME(HASPLACE);
    const std::string text = PROFILESTRGET(GETIDEINIFILE(), section, "_Position");
    STAMP();
    bool wide = false, high = false;
    const int width = CVTI(STRWORD(text, 3), wide), height = CVTI(STRWORD(text, 4), high);
    return wide && high && width > 0 && height > 0;
}

}  // namespace tarn
