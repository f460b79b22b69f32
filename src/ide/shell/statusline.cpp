// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/statusline.h"

#include "ide/shell/windows.h"
#include "library/system/system.h"

MODULE("ide")

namespace tarn {

void TELLSTATUS(std::string_view text) {
    FRAME(TELLSTATUS);
    if (!IsLoaded(Main)) return;
    STAMP();
    const Object label = MAINCONTROL("lblstatus");
    if (GetCaption(label) != text) SetCaption(label, text);
    STAMP();
}

}  // namespace tarn
