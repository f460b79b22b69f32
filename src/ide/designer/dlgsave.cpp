// SPDX-License-Identifier: GPL-3.0-or-later
//
// Saving a dialog: a row of checks, each of which may end it, then the rename and the write. Whatever ends it leaves the
// dialog marked as changed.
#include "ide/designer/dlgchanges.h"
#include "ide/designer/dlgdisk.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/dlghistory.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/files/dlgcode.h"
#include "ide/designer/files/dlgtest.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/designer/toolbox.h"
#include "ide/editor/ownwrites.h"
#include "ide/editor/sourcefile.h"
#include "ide/shell/rescue.h"
#include "ide/shell/windows.h"
#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

MODULE("dlgedit")

namespace tarn {
namespace {

// Each may end the save.
struct Save {
    std::string file, oldName;
    bool asSeen = false;   // nobody has changed the dialog in the file
    bool missing = false;  // the dialog is no longer in the file, and the user wants it there
};
using Step = bool (*)(Save& save);

// Ignore goes on; everything else ends the save.
bool ignored(const std::string& message) {
    Sound();
    return MsgBox(DialogEditorTitle, message, "OK\nIgnore", BoxIcon::Warning) == "Ignore";
}

void tell(const std::string& message) {
    Sound();
    MsgBox(DialogEditorTitle, message, "OK", BoxIcon::Error);
}

void selectGuilty(const NameFault& fault) {
    SELECTOBJECT(fault.second ? -1 : fault.index);
    DIALOGREDRAW();
}

// ---- the checks ----

bool typeMayHaveControls(Save&) {
    const std::string type = GETPROPVALUE(DESIGNITEM(1), "TYPEOF");
    const int controls = GetListCount(DATALIST()) - 1;
    if (controls <= 0 || (!STREQUAL(type, "Editwindow") && !STREQUAL(type, "Richeditwindow"))) return true;
    return ignored("Windows of type '" + type + "' should not contain control objects.\n" +
                   "However the window being saved contains " + STR(controls) + " control(s).\n" +
                   "These controls should be deleted before saving the window.\n");
}

bool namesAreAllowed(Save&) {
    const NameFault fault = CHECKBADNAMES(DATALIST(), MENULIST(), -1, false, BadNames);
    if (fault.message.empty()) return true;
    if (ignored(fault.message + "(The index of the invalid name = " + STR(fault.index) + ")")) return true;
    selectGuilty(fault);
    return false;
}

bool namesAreUnique(Save&) {
    const NameFault fault = CHECKDUPLICATES(DATALIST(), MENULIST(), -1, false);
    if (fault.message.empty()) return true;
    tell(fault.message + "(The index of the duplicate = " + STR(fault.index) + ")");
    selectGuilty(fault);
    return false;
}

bool asked(const std::string& text, const std::string& yes) {
    return MsgBox("File-Save", text, yes + "\n&Cancel", BoxIcon::Warning) == yes;
}

bool codeWindowAgrees(Save& save) {
    return ASKCODEWINDOW(save.file);
}

// What another program has written meanwhile goes only if the user says so.
bool maySaveOver(Save& save) {
    const DialogOnDisk state = DIALOGONDISK(save.file, save.oldName);
    save.asSeen = state == DialogOnDisk::AsSeen;
    save.missing = state == DialogOnDisk::Missing || state == DialogOnDisk::FileMissing ||
                   state == DialogOnDisk::Removed;
    switch (state) {
    case DialogOnDisk::AsSeen: return true;
    case DialogOnDisk::FileMissing:
        return asked("The following file was deleted or renamed by another program:\n\n\t" + save.file +
                         "\n\nSave this dialog to a new file of that name?",
                     "&Save");
    case DialogOnDisk::Removed:
        return asked("The dialog '" + save.oldName + "' was removed from the following file:\n\n\t" +
                         save.file + "\n\nAdd it again?",
                     "&Save");
    case DialogOnDisk::Missing:
        return asked("The following file was changed by another program after it was read here:\n\n\t" +
                         save.file + "\n\nThe dialog '" + save.oldName +
                         "' cannot be read there any more. Add it again?",
                     "&Save");
    default:
        return asked("The following file was changed by another program after it was read here:\n\n\t" +
                         save.file + "\n\nIts dialog '" + save.oldName +
                         "' is another one now. Everything else in the file stays as it is.",
                     "&Save over it");
    }
}

// ---- the work ----

void renamed(const Save& save, const std::string& name) {
    SETDESIGNTEXT("dlgname", name);
    SetCaption(DialogDlg, STRREPLACE(GetCaption(DialogDlg), "(" + save.oldName + ")", "(" + name + ")"));
}

bool rename(Save& save) {
    const std::string name = GETPROPVALUE(DESIGNITEM(1), "NAME");
    if (STREQUAL(name, save.oldName)) return true;
    const std::string error = save.missing ? "" : ResourceRename(save.file, save.oldName, name);
    if (!error.empty()) return tell(error), false;
    SHOWOWNWRITE(save.file);
    renamed(save, name);
    DIALOGHISTORYAPART();
    NOTEDIALOGSEEN(save.file, name);
    CHECKRENAMEFUNCTION(TWINFILE(save.file, ClassExtension), save.oldName, name);
    AUTOREFRESHPROJECT();
    return true;
}

// The menu that the dialog has in the file.
std::string menuInFile(const Save& save) {
    ObjectArray objects;
    if (!ResourceRead(save.file, DIALOGGETDLGNAME(), objects).empty()) return {};
    return GETPROPVALUE(objects[0], "MENU");
}

// A menu that the user has deleted goes from the file too, unless another dialog shows it. What another program has given
// the dialog meanwhile stays.
void dropMenu(const Save& save, const std::string& before) {
    if (!save.asSeen || STREQUAL(before, GETPROPVALUE(DESIGNITEM(-1), "NAME"))) return;
    if (const std::string error = DROPMENU(save.file, before); !error.empty()) tell(error);
}

bool write(Save& save) {
    const std::string menu = menuInFile(save);
    const std::string error =
        ResourceWrite(TSTRINGARRAY(DATALIST()), TSTRINGARRAY(MENULIST()), save.file, DIALOGHISTORYPAST());
    if (!error.empty()) return tell(error), false;
    dropMenu(save, menu);
    SHOWOWNWRITE(save.file);
    NOTEDIALOGSEEN(save.file, DIALOGGETDLGNAME());
    DIALOGHISTORYSAVED();
    DIALOGSETMODIFY(false);
    DROPRESCUEDTEXT(save.file);
    return true;
}

constexpr Step steps[] = {typeMayHaveControls, namesAreAllowed, namesAreUnique, codeWindowAgrees,
                          maySaveOver,         rename,          write};

}  // namespace

void DIALOGSAVE() {
    FRAME(DIALOGSAVE);
    if (!IsLoaded(DialogDlg) || GetListCount(DATALIST()) == 0) return;
    STAMP();
    if (!KEEPTYPEDPROPERTY()) return;
    STAMP();
    Save save{DIALOGGETFILENAME(), DIALOGGETDLGNAME()};
    const std::string before = FILETEXT(save.file);
    bool saved = true;
    for (const Step step : steps) {
        STAMP();
        saved = saved && step(save);
    }
    STAMP();
    if (saved) TELLSAVED(before, save.file);
    STAMP();
}

namespace {

// The user does not want the changes.
void giveUp() {
    DIALOGSETMODIFY(false);
    DROPRESCUEDTEXT(DIALOGGETFILENAME());
}

}  // namespace

bool DIALOGSAVEIFMODIFIED() {
    FRAME(DIALOGSAVEIFMODIFIED);
    STAMP();
    static_cast<void>(KEEPTYPEDPROPERTY());
    STAMP();
    if (!DIALOGGETMODIFY()) return true;
    const std::string answer =
        MsgBox("Save Changes?",
               DIALOGGETFILENAME() + "\nThis file has been changed. Do you want to save the changes?",
               "&Yes\n&No\n&Cancel", BoxIcon::Question);
    STAMP();
    if (answer == "&Yes") DIALOGSAVE();
    if (answer == "&No") giveUp();
    STAMP();
    return true;
}

bool DIALOGMAYCLOSE() {
    FRAME(DIALOGMAYCLOSE);
    STAMP();
    if (!KEEPTYPEDPROPERTY()) return false;
    STAMP();
    std::string answer = "&No";
    if (DIALOGGETMODIFY())
        answer =
            MsgBox(DialogEditorTitle,
                   "Dialog " + DIALOGGETDLGNAME() + " has been edited.\nDo you want to save the changes?\n",
                   "&Yes\n&No\n&Cancel", BoxIcon::Question);
    STAMP();
    if (answer == "&Yes") DIALOGSAVE();
    STAMP();
    if (answer != "&No" && (answer != "&Yes" || DIALOGGETMODIFY())) return false;
    if (answer == "&No" && DIALOGGETMODIFY()) DROPRESCUEDTEXT(DIALOGGETFILENAME());
    TOOLBOXCLOSE();
    PROPERTYWINDOWCLOSE();
    return true;
}

}  // namespace tarn
