// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the parts of the dialog check share: the objects as they need them, and the findings.
#pragma once

#include "ide/designer/check/dlgcheck.h"
#include "library/designer/proputil.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn::detail {

// What a type of control means for its user.
struct CheckedType {
    std::string_view name;
    bool takesKeys = false;   // Tab stops there
    bool hasCaption = false;  // that it shows
    bool wantsKey = false;    // a mnemonic of its own
    bool wantsLabel = false;  // in front of it
    bool isPicture = false;   // that needs a name
    int lettersBeside = 0;    // the room that the caption does not have, in letters
};

struct CheckedObject {
    int index = 0;  // of its list, from 1
    std::string list, name, type, caption, hint, array;
    CheckedType is;
    UnitRect at;  // of a menu item: its level is x
    bool visible = true, tabStop = false, readOnly = false, isDefault = false, isCancel = false;

    [[nodiscard]] bool isA(std::string_view word) const;
    [[nodiscard]] std::string told() const;  // "Edit 'edtname'"
    // The list with another value.
    [[nodiscard]] std::string with(std::string_view property, const std::string& value) const;
    [[nodiscard]] std::string movedTo(const UnitRect& place) const;
};

struct CheckedDialog {
    CheckedObject dialog;
    std::vector<CheckedObject> controls;  // the visible ones, in their order
    std::vector<CheckedObject> menu;      // the visible items
};

using Findings = std::vector<DialogFinding>;

bool overlaps(const UnitRect& a, const UnitRect& b);
bool contains(const UnitRect& outer, const UnitRect& inner);
// Whether the control may lie there: inside the dialog, and on no other that it does not lie on now.
bool isFree(const CheckedDialog& dialog, const CheckedObject& control, const UnitRect& place);

void checkKeys(const CheckedDialog& dialog, Findings& findings);
void checkMenuKeys(const CheckedDialog& dialog, Findings& findings);
void checkDefaultButton(const CheckedDialog& dialog, Findings& findings);
void checkOrder(const CheckedDialog& dialog, Findings& findings);
void checkPlaces(const CheckedDialog& dialog, Findings& findings);
void checkReading(const CheckedDialog& dialog, Findings& findings);
void checkRoom(const Object& window, const CheckedDialog& dialog, Findings& findings);

}  // namespace tarn::detail
