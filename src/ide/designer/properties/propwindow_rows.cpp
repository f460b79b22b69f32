// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/properties/propwindow_internal.h"

#include "ide/designer/dlgstep.h"
#include "ide/designer/properties/propwindow.h"
#include "library/designer/propedit_rows.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("propwindow")

namespace tarn {

Object PROPERTYPART(std::string_view name) {
    return FINDCONTROL(PropertyDlg, name);
}

std::vector<int> SHOWNOBJECTS() {
    const std::string text = GetCaption(PROPERTYPART("lblobjects"));
    std::vector<int> objects;
    for (int n = 1; n <= STRWORDCOUNT(text); ++n) objects.push_back(CVTI(STRWORD(text, n)));
    return objects;
}

std::vector<SharedProperty> FOUNDPROPERTIES(const std::vector<int>& objects) {
    std::vector<SharedProperty> properties = SHAREDPROPERTIES(objects);
    const std::string search = STRUPPER(STRTRIM(GetText(PROPERTYPART("edtsearch"))));
    std::erase_if(properties, [&](const SharedProperty& one) {
        return STRUPPER(one.name).find(search) == std::string::npos;
    });
    return properties;
}

int SHOWNROWS() {
    return STRLINES(GetCaption(PROPERTYPART("lblshown")));
}

void LAYOUTPROPERTYWINDOW() {
    FRAME(LAYOUT);
    const int width = GetPosition(PropertyDlg, CLIENT_UNIT).w;
    const Rect frame = GetPosition(PROPERTYPART("shpframe"), CLIENT_UNIT);
    const Rect bar = GetPosition(PROPERTYPART("sclrows"), CLIENT_UNIT);
    const int right =
        width - frame.x - (GetVisible(PROPERTYPART("sclrows")) ? bar.w + 2 : 0);  // of the frame
    const auto setPlace = [](const Object& control, auto change) {
        Rect at = GetPosition(control, CLIENT_UNIT);
        change(at);
        SetPosition(control, CLIENT_UNIT, at);
    };
    STAMP();
    for (int n = 1; n <= PROPERTYROWS(PropertyDlg); ++n) {
        const PropertyRow row = PROPERTYROW(PropertyDlg, n);
        setPlace(row.drop, [&](Rect& at) { at.x = right - at.w - 1; });
        const int end = GetPosition(row.drop, CLIENT_UNIT).x - 2;
        setPlace(row.value, [&](Rect& at) { at.w = std::max(end - at.x, 1); });
        setPlace(row.line, [&](Rect& at) { at.w = right - at.x; });
    }
    STAMP();
    const int drop = GetPosition(PROPERTYROW(PropertyDlg, 1).drop, CLIENT_UNIT).x;
    setPlace(PROPERTYPART("shpframe"), [&](Rect& at) { at.w = right - at.x; });
    setPlace(PROPERTYPART("shpcolumn2"), [&](Rect& at) { at.x = drop - 2; });
    for (const std::string_view name : {"edtsearch", "lbltitle", "lblnote"})
        setPlace(PROPERTYPART(name), [&](Rect& at) { at.w = std::max(width - frame.x - at.x, 1); });
    const int bottom = GetPosition(PropertyDlg, CLIENT_UNIT).h - frame.x;
    setPlace(PROPERTYPART("sclrows"), [&](Rect& at) {
        at.x = width - frame.x - at.w;
        at.h = std::max(bottom - at.y, at.w);
    });
    STAMP();
}

namespace {

std::string numbersText(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers) text += STR(number) + " ";
    return text;
}

std::string titleOf(const std::vector<int>& objects) {
    if (objects.size() > 1) return STR(static_cast<int>(objects.size())) + " objects";
    return objects.empty() ? "" : STRNAMECASE(OBJECTTITLE(objects[0]));
}

std::string noteFor(const std::vector<int>& objects) {
    if (objects.empty()) return "Nothing is selected.";
    if (objects[0] == -1) return "F2 opens the menu in its editor.";
    return GetText(PROPERTYPART("edtsearch")).empty() ? "The objects have no property in common."
                                                      : "No property has this in its name.";
}

// How many rows the window has room for.
int roomForRows() {
    constexpr int margin = 10;
    const int bottom = GetPosition(PropertyDlg, CLIENT_UNIT).h - margin, most = PROPERTYROWS(PropertyDlg);
    int rows = 1;
    while (rows < most) {
        const Rect line = GetPosition(PROPERTYROW(PropertyDlg, rows + 1).line, CLIENT_UNIT);
        if (line.y + line.h > bottom) break;
        ++rows;
    }
    return rows;
}

void showScrollBar(int properties, int rows) {
    const Object bar = PROPERTYPART("sclrows");
    const int above = std::max(properties - rows, 0);
    SetMax(bar, above);
    if (GetValue(bar) > above) SetValue(bar, above);
    if (GetVisible(bar) == (above > 0)) return;
    SetVisible(bar, above > 0);
    LAYOUTPROPERTYWINDOW();
}

void showRow(int n, const SharedProperty& property, const std::string& before, bool sameObjects) {
    const PropertyRow row = PROPERTYROW(PropertyDlg, n);
    const bool same = sameObjects && GetVisible(row.value) && GetCaption(row.name) == property.name &&
                      GetText(row.options) == property.options && before == property.shown;
    if (!same) FILLPROPERTYROW(row, property.name, property.options, property.shown);
    SetHint(row.value, property.differs ? "The selected objects have different values" : "");
}

}  // namespace

void FILLPROPERTYWINDOW(const std::vector<int>& objects) {
    FRAME(FILL);
    const std::vector<SharedProperty> properties = FOUNDPROPERTIES(objects);
    const std::string now = numbersText(objects), before = GetCaption(PROPERTYPART("lblshown"));
    const bool sameObjects = GetCaption(PROPERTYPART("lblobjects")) == now;
    STAMP();
    const int count = static_cast<int>(properties.size()), room = roomForRows();
    showScrollBar(count, room);
    const int above = GetValue(PROPERTYPART("sclrows")), rows = std::min(count - above, room);
    std::string shown;
    STAMP();
    for (int n = 1; n <= rows; ++n) {
        const SharedProperty& property = properties[static_cast<std::size_t>(above + n - 1)];
        showRow(n, property, STRLINE(before, n), sameObjects);
        shown += property.shown + "\n";
    }
    for (int n = rows + 1; n <= PROPERTYROWS(PropertyDlg); ++n) HIDEPROPERTYROW(PROPERTYROW(PropertyDlg, n));
    STAMP();
    FRAMEPROPERTYROWS(PropertyDlg, rows);
    SetCaption(PROPERTYPART("lblobjects"), now);
    SetCaption(PROPERTYPART("lblshown"), shown);
    SetCaption(PROPERTYPART("lbltitle"), titleOf(objects));
    SetCaption(PROPERTYPART("lblnote"), rows == 0 ? noteFor(objects) : "");
    SetVisible(PROPERTYPART("lblnote"), rows == 0);
    for (const std::string_view name : {"shpframe", "shpcolumn1", "shpcolumn2"})
        SetVisible(PROPERTYPART(name), rows > 0);
    STAMP();
}

}  // namespace tarn
