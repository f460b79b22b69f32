// SPDX-License-Identifier: Apache-2.0
#include "library/data/dbutil_layout_internal.h"

#include "library/system/system.h"

#include <algorithm>

namespace tarn::detail {

void layOutList(const Object& window, std::string_view firstButton, std::string_view lastButton) {
    const Rect client = GetPosition(window, CLIENT_UNIT);
    const Object list = FINDCONTROL(window, "iconlist1");
    Rect rows = GetPosition(list, CLIENT_UNIT);
    const Object buttons[] = {FINDCONTROL(window, lastButton), FINDCONTROL(window, firstButton)};
    const int margin = rows.x;
    int right = client.w - margin;
    int top = client.h;
    for (const Object& button : buttons) {
        Rect place = GetPosition(button, CLIENT_UNIT);
        place.x = right - place.w;
        place.y = client.h - margin - place.h;
        SetPosition(button, CLIENT_UNIT, place);
        right = place.x - margin / 2;
        top = place.y;
    }
    rows.w = std::max(client.w - 2 * margin, 1);
    rows.h = std::max(top - margin - rows.y, 1);
    SetPosition(list, CLIENT_UNIT, rows);
}

void stretchToMargin(const Object& window, std::string_view name) {
    const Object control = FINDCONTROL(window, name);
    const int margin = GetPosition(FINDCONTROL(window, "iconlist1"), CLIENT_UNIT).x;
    Rect place = GetPosition(control, CLIENT_UNIT);
    place.w = std::max(GetPosition(window, CLIENT_UNIT).w - margin - place.x, 1);
    SetPosition(control, CLIENT_UNIT, place);
}

void limitSize(const Object& window, int percent) {
    const Rect client = GetPosition(window, CLIENT_UNIT);
    SetMinPosition(window, Rect{0, 0, client.w * percent / 100, client.h * percent / 100});
}

std::string countText(int rows, int columns) {
    return STR(rows) + " row(s), " + STR(columns) + " column(s)";
}

}  // namespace tarn::detail
