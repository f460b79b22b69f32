// SPDX-License-Identifier: Apache-2.0
#include "library/designer/propedit_rows.h"

#include "library/designer/propedit.h"
#include "library/designer/propedit_options_internal.h"
#include "library/designer/propedit_sheet.h"
#include "library/system/system.h"

#include <iterator>

namespace tarn {
namespace {

constexpr std::string_view rowParts[] = {"lblname1", "edtvalue1", "btndrop1", "edtoptions1", "linerow1"};

}  // namespace

PropertyRow PROPERTYROW(const Object& window, int n) {
    PropertyRow row;
    Object* const parts[] = {&row.name, &row.value, &row.drop, &row.options, &row.line};
    for (std::size_t i = 0; i < std::size(parts); ++i)
        *parts[i] = ControlElement(FINDCONTROL(window, rowParts[i]), n);
    return row;
}

int PROPERTYROWS(const Object& window) {
    return ControlUbound(FINDCONTROL(window, rowParts[0]));
}

int PROPERTYROWOF(const Object& window, const Object& control, std::string_view array) {
    if (control.isWindow()) return 0;
    const Object first = FINDCONTROL(window, array);
    for (int n = PROPERTYROWS(window); n > 0; --n)
        if (ControlElement(first, n) == control) return n;
    return 0;
}

// ---- values ----

std::string SHOWNPROPERTY(std::string_view options, std::string_view value) {
    const std::string shown = GETNEXTVALUE(options, value, 0);
    const ValueCheck check = CHECKVALUE(options, shown);
    return check.message.empty() ? shown : GETNEXTVALUE(options, check.fallback, 0);
}

std::string PROPERTYPROBLEM(std::string_view options, std::string& value) {
    value = detail::normalValue(options, value);
    return CHECKVALUE(options, value).message;
}

void TELLPROPERTYPROBLEM(const std::string& title, const std::string& name, const std::string& problem) {
    MSGBOX(title, "There is a problem with the '" + name + "' property.\n" + problem);
}

// ---- the controls of a row ----

void FILLPROPERTYROW(const PropertyRow& row, std::string_view name, std::string_view options,
                     std::string_view shown) {
    const LengthLimits limits = GETMINMAX(options);
    const bool limited = STRUPPER(name).starts_with("NAME") && limits.found;
    SetCaption(row.name, name);
    SetText(row.options, options);
    SetText(row.value, shown);
    SetMaxLength(row.value, limited ? limits.maximum : 0);
    SetEnabled(row.value, !detail::Options(options).is("CONST"));
    const bool drops = EXTRAPROPS(options);
    if (drops) SetPicture(row.drop, "droparrow");
    SetVisible(row.drop, drops);
    for (const Object& part : {row.name, row.value, row.line}) SetVisible(part, true);
}

void HIDEPROPERTYROW(const PropertyRow& row) {
    for (const Object& part : {row.name, row.value, row.drop, row.line}) SetVisible(part, false);
}

int FRAMEPROPERTYROWS(const Object& window, int rows) {
    int bottom = GetPosition(FINDCONTROL(window, "shpframe"), CLIENT_UNIT).y;
    if (rows > 0) {
        const Rect line = GetPosition(PROPERTYROW(window, rows).line, CLIENT_UNIT);
        bottom = line.y + line.h;
    }
    for (const std::string_view name : {"shpframe", "shpcolumn1", "shpcolumn2"}) {
        Rect at = GetPosition(FINDCONTROL(window, name), CLIENT_UNIT);
        at.h = bottom - at.y;
        SetPosition(FINDCONTROL(window, name), CLIENT_UNIT, at);
    }
    return bottom;
}

void CHOOSEPROPERTY(const Object& window, const PropertyRow& row) {
    const Rect client = GetPosition(window, CLIENT_UNIT), edit = GetPosition(row.value, CLIENT_UNIT);
    const std::string before = GetText(row.value);
    std::string value = before;
    const bool has = EXTRAPROPS(GetText(row.options), window, client.x + edit.x, client.y + edit.y + edit.h,
                                GetCaption(row.name) + " Property", value);
    if (!has) Sound();
    if (value != before) SetText(row.value, value);
}

}  // namespace tarn
