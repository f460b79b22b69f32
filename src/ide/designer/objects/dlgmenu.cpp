// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/objects/dlgmenu.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgmouse.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/objects/dlgalign.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgtab.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

bool controlSelected() {
    return SELECTEDOBJECT() > 1;
}

// All of the selected ones are.
bool lockIsOn() {
    return controlSelected() && WITHOUTLOCKED(SELECTEDOBJECTS()).empty();
}

void switchLock() {
    LOCKOBJECTS(SELECTEDOBJECTS(), !lockIsOn());
    DIALOGREDRAW();
}

void switchTabOrder() {
    if (TABORDERISON())
        TABORDEREND();
    else
        TABORDERBEGIN();
}

bool hasOrder() {
    return TABORDERISON() || GetListCount(DATALIST()) > 2;
}

struct CommandRow {
    std::string_view item;
    void (*action)();
    bool (*enabled)();
    bool (*ticked)();  // null: never
};
constexpr CommandRow commands[] = {
    {"edit_dialog_front", SELECTEDTOFRONT, controlSelected, nullptr},
    {"edit_dialog_back", SELECTEDTOBACK, controlSelected, nullptr},
    {"edit_dialog_snap", [] { SETSNAP(!SNAPISON()); }, [] { return true; }, SNAPISON},
    {"edit_dialog_tab_order", switchTabOrder, hasOrder, TABORDERISON},
    {"edit_dialog_lock", switchLock, controlSelected, lockIsOn},
};

// What needs an open dialog, and no more.
constexpr std::string_view ofAnyDialog[] = {"edit_dialog_properties", "edit_dialog_duplicate",
                                            "edit_dialog_changes", "edit_dialog_preview"};

const CommandRow* rowOf(std::string_view item) {
    for (const CommandRow& row : commands)
        if (row.item == item) return &row;
    return nullptr;
}

// While the order is clicked nothing else is done to the controls.
bool isEnabled(std::string_view item) {
    const CommandRow* const row = rowOf(item);
    if (TABORDERISON() && item != "edit_dialog_tab_order" && item != "edit_dialog_snap") return false;
    return row != nullptr ? row->enabled() : CANALIGN(item);
}

}  // namespace

void DIALOGCOMMAND(std::string_view item) {
    FRAME(DIALOGCOMMAND);
    STAMP();
    if (!ISSHOWN(DialogDlg) || !isEnabled(item)) return Sound();
    const CommandRow* const row = rowOf(item);
    if (row != nullptr)
        row->action();
    else
        ALIGNSELECTED(item);
    STAMP();
    UPDATEDIALOGMENU();
    STAMP();
}

void UPDATEDIALOGMENU() {
    FRAME(UPDATEDIALOGMENU);
    if (!IsLoaded(Main)) return;
    STAMP();
    const bool shown = ISSHOWN(DialogDlg);
    const Object first = MAINCONTROL("edit_dialog_align_left");
    if (first.empty()) return;
    for (const std::string_view item : ofAnyDialog) SetEnabled(MAINCONTROL(item), shown);
    for (int i = ControlLbound(first); i <= ControlUbound(first); ++i) {
        const Object item = ControlElement(first, i);
        const std::string name = STRLOWER(GetName(item));
        SetEnabled(item, shown && isEnabled(name));
        if (const CommandRow* const row = rowOf(name); row != nullptr && row->ticked != nullptr)
            SetChecked(item, shown && row->ticked());
    }
    STAMP();
}

}  // namespace tarn
