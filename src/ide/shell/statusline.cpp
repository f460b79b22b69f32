// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/statusline.h"

#include "ide/shell/windows.h"
#include "library/dialogs/dlgutil.h"
#include "library/system/system.h"

MODULE("ide")

namespace tarn {

namespace {

constexpr int Edge = 8;  // pixels that stay free behind the text

// The text has all of the toolbar that the buttons leave.
void widen(const Object& label) {
    Rect place = GetPosition(label, CLIENT_UNIT);
    const int width = GetPosition(Main, CLIENT_UNIT).w - place.x - Edge;
    if (width <= place.w) return;
    place.w = width;
    SetPosition(label, CLIENT_UNIT, place);
}

}  // namespace

void TELLSTATUS(std::string_view text) {
    FRAME(TELLSTATUS);
    if (!IsLoaded(Main)) return;
    STAMP();
    const Object label = MAINCONTROL("lblstatus");
    const std::string caption = PLAINCAPTION(text);
    if (GetCaption(label) == caption) return;
    widen(label);
    SetCaption(label, caption);
    STAMP();
}

}  // namespace tarn
