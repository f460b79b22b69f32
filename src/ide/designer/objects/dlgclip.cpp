// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/objects/dlgclip.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/objects/cliptext.h"
#include "ide/designer/objects/dlgobjects.h"
#include "ide/designer/objects/dlgpaste.h"
#include "ide/designer/objects/dlgtab.h"
#include "ide/shell/statusline.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

void refuse(const std::string& why) {
    FRAME(REFUSE);
    Sound();
    STAMP();
    TELLSTATUS(why);
    SetHint(DialogDlg, why);
    STAMP();
}

// In their order in the list, so that what lies on top stays on top.
std::vector<std::string> selectedControls() {
    std::vector<int> selected = SELECTEDOBJECTS();
    std::sort(selected.begin(), selected.end());
    std::vector<std::string> lists;
    for (const int index : selected)
        if (index > 1) lists.push_back(DESIGNITEM(index));
    return lists;
}

// False if there is nothing to copy.
bool copySelected() {
    FRAME(COPYSELECTED);
    STAMP();
    const std::vector<std::string> lists = selectedControls();
    if (lists.empty()) return refuse("No control is selected."), false;
    STAMP();
    const std::string text = CONTROLSTEXT(lists);
    if (text.empty()) return refuse("A control that a resource file cannot hold is not copied."), false;
    SetText(clipboard, text);
    TELLSTATUS("");
    STAMP();
    return true;
}

void addControls(const std::vector<std::string>& controls) {
    FRAME(ADDCONTROLS);
    const Object datalist = DATALIST();
    std::vector<int> added;
    for (const std::string& list : controls) {
        ADDDESIGNITEM(datalist, list);
        added.push_back(GetListCount(datalist));
    }
    STAMP();
    SELECTOBJECTS(added);
    STAMP();
}

// All of them, or none.
void put(const std::vector<std::string>& controls) {
    FRAME(PUT);
    STAMP();
    if (!MAYADDCONTROLS(static_cast<int>(controls.size()))) return;
    STAMP();
    const DesignLists now = DESIGNLISTS();
    const std::vector<std::string> fitted =
        STOREDCONTROLS(FITTEDCONTROLS(controls, {now.dialog, now.menu, DESIGNTEXT("gridstr")}));
    if (fitted.empty()) return refuse("A control that a resource file cannot hold is not pasted.");
    STAMP();
    DESIGNSTEP([&] { addControls(fitted); });
    TELLSTATUS("");
    DIALOGREDRAW();
    STAMP();
    Show(DialogDlg, false);
    STAMP();
}

// While the order is clicked nothing else is done to the controls.
bool takesCommands() {
    return IsLoaded(DialogDlg) && GetListCount(DATALIST()) > 0 && !TABORDERISON();
}

}  // namespace

void DIALOGCOPY() {
    FRAME(DIALOGCOPY);
    if (!takesCommands()) return Sound();
    STAMP();
    static_cast<void>(copySelected());
}

void DIALOGCUT() {
    FRAME(DIALOGCUT);
    if (!takesCommands() || DESIGNTEXT("ctlprotectstr") != "0") return Sound();
    STAMP();
    if (!copySelected()) return;
    STAMP();
    DIALOGDELETESELECTED();
    STAMP();
}

void DIALOGPASTE() {
    FRAME(DIALOGPASTE);
    if (!takesCommands()) return Sound();
    STAMP();
    const ClipControls controls = TEXTCONTROLS(GetText(clipboard));
    STAMP();
    controls.fault.empty() ? put(controls.lists) : refuse(controls.fault);
    STAMP();
}

void DIALOGDUPLICATE() {
    FRAME(DIALOGDUPLICATE);
    if (!takesCommands()) return Sound();
    STAMP();
    const std::vector<std::string> lists = selectedControls();
    lists.empty() ? refuse("No control is selected.") : put(lists);
    STAMP();
}

}  // namespace tarn
