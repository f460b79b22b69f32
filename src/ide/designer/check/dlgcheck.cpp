// SPDX-License-Identifier: GPL-3.0-or-later
//
// The objects of the dialog check, and what is read: names, labels and colours.
#include "ide/designer/check/dlgcheck.h"

#include "ide/designer/check/dlgcheck_internal.h"
#include "library/system/system.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

MODULE("dlgcheck")

namespace tarn {
namespace detail {
namespace {

constexpr CheckedType types[] = {
    {.name = "Label", .hasCaption = true},
    {.name = "Edit", .takesKeys = true, .wantsLabel = true},
    {.name = "Combobox", .takesKeys = true, .wantsLabel = true},
    {.name = "Listbox", .takesKeys = true, .wantsLabel = true},
    {.name = "Iconlist", .takesKeys = true, .wantsLabel = true},
    {.name = "Pushbutton", .takesKeys = true, .hasCaption = true, .wantsKey = true, .lettersBeside = 2},
    {.name = "Bitmapbutton", .takesKeys = true, .isPicture = true},
    {.name = "Checkbox", .takesKeys = true, .hasCaption = true, .wantsKey = true, .lettersBeside = 3},
    {.name = "Radiobutton", .takesKeys = true, .hasCaption = true, .wantsKey = true, .lettersBeside = 3},
    {.name = "Groupbox", .hasCaption = true, .lettersBeside = 2},
    {.name = "Scrollbar", .takesKeys = true},
    {.name = "Icon", .isPicture = true},
    {.name = "Image", .isPicture = true},
};

CheckedType typeOf(std::string_view name) {
    const auto* const found = std::find_if(std::begin(types), std::end(types), [&](const CheckedType& type) {
        return STREQUAL(type.name, name);
    });
    return found == std::end(types) ? CheckedType{} : *found;
}

// A drop-down box is given the height of its list.
constexpr int lineOfCombobox = 14;

CheckedObject objectOf(int index, const std::string& list) {
    CheckedObject object;
    const auto value = [&](std::string_view name) { return GETPROPVALUE(list, name); };
    const auto is = [&](std::string_view name, bool missing) {
        const std::string text = value(name);
        return text.empty() ? missing : text[0] != '0';
    };
    object.index = index;
    object.list = list;
    object.name = value("NAME");
    object.type = value("TYPEOF");
    object.caption = STRREPLACE(value("CAPTION"), "\\n", "\n", false);
    object.hint = value("HINT");
    object.array = value("ARRAY");
    object.is = typeOf(object.type);
    object.at = GETPROPPOSITION(list);
    object.visible = is("VISIBLE", true);
    object.tabStop = object.is.takesKeys && is("TABSTOP", !object.isA("Bitmapbutton"));
    object.readOnly = is("READONLY", false);
    object.isDefault = is("DEFAULT", false);
    object.isCancel = is("CANCEL", false);
    if (object.isA("Combobox") && is("COMBOSTYLE", true)) object.at.h = std::min(object.at.h, lineOfCombobox);
    return object;
}

// The visible objects behind the first.
std::vector<CheckedObject> objectsOf(const ObjectArray& lists) {
    std::vector<CheckedObject> objects;
    for (std::size_t n = 1; n < lists.size(); ++n) {
        if (lists[n].empty()) continue;
        CheckedObject object = objectOf(static_cast<int>(n) + 1, lists[n]);
        if (object.visible) objects.push_back(std::move(object));
    }
    return objects;
}

}  // namespace

bool CheckedObject::isA(std::string_view word) const {
    return STREQUAL(type, word);
}

std::string CheckedObject::told() const {
    return type + " '" + (name.empty() ? caption : name) + "'";
}

std::string CheckedObject::with(std::string_view property, const std::string& value) const {
    std::string changed = list;
    SETPROPVALUE(property, value, changed);
    return changed == list ? std::string() : changed;
}

std::string CheckedObject::movedTo(const UnitRect& place) const {
    std::string changed = list;
    SETPROPPOSITION(changed, place);
    return changed;
}

// ---- names and labels ----

namespace {

bool isNamed(const CheckedObject& control, const CheckedObject* before) {
    const bool labelled = before != nullptr && before->isA("Label") && before->index + 1 == control.index;
    return labelled || !control.hint.empty() || (control.isA("Bitmapbutton") && !control.caption.empty());
}

// ---- contrast ----

constexpr double wantedContrast = 4.5;

double brightness(int colour) {
    double sum = 0;
    constexpr double weights[] = {0.2126, 0.7152, 0.0722};  // red, which is the lowest byte, green, blue
    for (const double weight : weights) {
        const double part = (colour & 0xFF) / 255.0;
        sum += weight * (part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4));
        colour >>= 8;
    }
    return sum;
}

double contrast(int a, int b) {
    const double one = brightness(a), other = brightness(b);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

// A colour of the desktop is not known, and has its own contrast.
bool hasColour(const CheckedObject& control, std::string_view name, int& colour) {
    const std::string text = GETPROPVALUE(control.list, name);
    colour = GETPROPINT(control.list, name);
    return !text.empty() && colour >= 0;
}

void checkContrast(const CheckedObject& control, Findings& findings) {
    int fore = 0, back = 0;
    const bool known = hasColour(control, "FORECOLOUR", fore) && hasColour(control, "BACKCOLOUR", back);
    if (control.isA("Shape") || !known) return;
    const double found = contrast(fore, back);
    if (found >= wantedContrast) return;
    const int tenths = static_cast<int>(found * 10);
    const bool dark = contrast(0, back) >= contrast(0xFFFFFF, back);
    findings.push_back({false, control.index,
                        "The colours of " + control.told() + " have a contrast of " + STR(tenths / 10) + "." +
                            STR(tenths % 10) +
                            " to 1, which is hard to see; at least 4.5 to 1 is needed. Choose a " +
                            (dark ? "darker" : "lighter") + " FORECOLOUR.",
                        control.with("FORECOLOUR", dark ? "0x000000" : "0xFFFFFF")});
}

}  // namespace

void checkReading(const CheckedDialog& dialog, Findings& findings) {
    const CheckedObject* before = nullptr;
    for (const CheckedObject& control : dialog.controls) {
        if (control.is.wantsLabel && !isNamed(control, before))
            findings.push_back({false, control.index,
                                control.told() +
                                    " has no label before it, so that a screen reader cannot name it. Put a "
                                    "Label in front of it in the order of the objects, or give it a HINT.",
                                ""});
        if (control.is.isPicture && !isNamed(control, before))
            findings.push_back(
                {false, control.index,
                 control.told() +
                     " shows a picture alone, which a screen reader cannot tell. Give it a HINT.",
                 ""});
        checkContrast(control, findings);
        before = &control;
    }
}

}  // namespace detail

std::vector<DialogFinding> CHECKDIALOG(const Object& window, const ObjectArray& dialog,
                                       const ObjectArray& menu) {
    FRAME(CHECKDIALOG);
    STAMP();
    detail::CheckedDialog checked{detail::objectOf(1, dialog[0]), detail::objectsOf(dialog),
                                  detail::objectsOf(menu)};
    detail::Findings findings;
    detail::checkKeys(checked, findings);
    detail::checkDefaultButton(checked, findings);
    detail::checkOrder(checked, findings);
    detail::checkPlaces(checked, findings);
    detail::checkReading(checked, findings);
    STAMP();
    detail::checkRoom(window, checked, findings);
    STAMP();
    detail::checkMenuKeys(checked, findings);
    std::stable_sort(findings.begin(), findings.end(), [](const DialogFinding& a, const DialogFinding& b) {
        return std::pair(a.inMenu, a.index) < std::pair(b.inMenu, b.index);
    });
    STAMP();
    return findings;
}

}  // namespace tarn
