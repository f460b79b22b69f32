// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window with the findings of the dialog check.
#include "ide/designer/check/dlgcheck.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/designer/proputil.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgcheck")

namespace tarn {
namespace {

constexpr const char* Title = "Tools-Check Dialog";
constexpr const char* NothingFound = "Nothing was found that gets in the way of the users of this dialog.";

// The findings, in the order of the rows.
std::vector<DialogFinding> found;

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}
Object listOf(const DialogFinding& finding) {
    return DESIGNCONTROL(finding.inMenu ? "menulist" : "datalist");
}

// Null if no row is selected.
const DialogFinding* selected(const Object& window) {
    const int row = GetListIndex(in(window, "listbox1"));
    return row > 0 && row <= static_cast<int>(found.size()) ? &found[static_cast<std::size_t>(row - 1)]
                                                            : nullptr;
}

void check() {
    found = CHECKDIALOG(DialogDlg, TSTRINGARRAY(DATALIST()), TSTRINGARRAY(MENULIST()));
}

bool canRepair(const DialogFinding& finding) {
    return !finding.repair.empty();
}

void bringUpToDate(const Object& window) {
    const DialogFinding* finding = selected(window);
    SetText(in(window, "edit1"), finding == nullptr ? NothingFound : finding->text);
    SetEnabled(in(window, "btnshow"), finding != nullptr);
    SetEnabled(in(window, "btnrepair"), finding != nullptr && canRepair(*finding));
    SetEnabled(in(window, "btnrepairall"), std::any_of(found.begin(), found.end(), canRepair));
}

// The selection stays at its row as far as there is one.
void fill(const Object& window) {
    const Object list = in(window, "listbox1");
    const int row = std::max(GetListIndex(list), 1);
    Clear(list);
    for (const DialogFinding& finding : found) AddItem(list, finding.text);
    SetListIndex(list, std::min(row, static_cast<int>(found.size())));
    bringUpToDate(window);
}

void selectObject(const DialogFinding& finding) {
    SELECTOBJECT(finding.inMenu ? -1 : finding.index);
    DIALOGREDRAW();
}

void show(const Object& window) {
    if (const DialogFinding* finding = selected(window); finding != nullptr) selectObject(*finding);
}

void mend(const DialogFinding& finding) {
    SetList(listOf(finding), finding.index, finding.repair);
    check();
}

void repair(const Object& window) {
    const DialogFinding* finding = selected(window);
    if (finding == nullptr || !canRepair(*finding)) return Sound();
    const DialogFinding done = *finding;
    DESIGNSTEP([&] { mend(done); });
    fill(window);
    selectObject(done);
}

// One repair may need or undo another, so each is looked for anew; what does not come to an end is left.
void mendAll() {
    const std::size_t most = 2 * found.size() + 1;
    for (std::size_t n = 0; n < most; ++n) {
        const auto next = std::find_if(found.begin(), found.end(), canRepair);
        if (next == found.end()) return;
        mend(DialogFinding(*next));
    }
}

void repairAll(const Object& window) {
    DESIGNSTEP(mendAll);
    fill(window);
    DIALOGREDRAW();
}

constexpr DialogButton buttons[] = {{"btnshow", show}, {"btnrepair", repair}, {"btnrepairall", repairAll}};
constexpr DialogShape shape = {.ok = "",
                               .cancel = "pushbutton1",
                               .help = "pushbutton2",
                               .showHelp = SHOWWINDOWHELP,
                               .load = fill,
                               .buttons = buttons};
const RegisteredWindow registered("DlgCheckDlg", DLGCHECKDLG);

bool handle(const Object& window, int event, const Object& control, int parameter) {
    if (event == DBLCLICK_EVENT) return show(window), true;
    if (event == CHANGE_EVENT) return bringUpToDate(window), true;
    return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
}

}  // namespace

bool DLGCHECKDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(DLGCHECKDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

void CHECKDIALOGDLG() {
    FRAME(CHECKDIALOGDLG);
    STAMP();
    if (!IsLoaded(DialogDlg)) return Sound();
    check();
    STAMP();
    if (found.empty()) return MSGBOX(Title, NothingFound);
    Load(DlgCheckDlg);
    STAMP();
    Show(DlgCheckDlg, true);
    STAMP();
    found.clear();
}

}  // namespace tarn
