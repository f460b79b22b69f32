// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/projedit.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

MODULE("projedit")

namespace tarn {

std::string COMPILERGETMAINFILE() {
    FRAME(COMPILERGETMAINFILE);
    const std::string program = PROJECTGETMAINFILE();
    return program.empty() ? EDITWNDGETFILENAME(SDIEdit) : program;
}

std::string GETSAVEWINDOW() {
    FRAME(GETSAVEWINDOW);
    Object active = ActiveWindow();
    if (active == PropertyDlg) active = DialogDlg;  // it is the design that is worked on there
    STAMP();
    for (const Object& window : {SDIEdit, DialogDlg}) {
        if (active == window && IsLoaded(window) && GetVisible(window)) return STRLOWER(window.window());
    }
    STAMP();
    if (active != Main) return {};
    if (IsLoaded(SDIEdit) && GetModify(SDIEdit)) return STRLOWER(SDIEdit.window());
    return IsLoaded(DialogDlg) && DIALOGGETMODIFY() ? STRLOWER(DialogDlg.window()) : std::string();
}

void SAVEALL() {
    FRAME(SAVEALL);
    STAMP();
    if (IsLoaded(SDIEdit) && GetModify(SDIEdit)) EDITWNDSAVE(SDIEdit, false);
    STAMP();
    if (IsLoaded(DialogDlg) && DIALOGGETMODIFY()) DIALOGSAVE();
}

namespace {

// The resource file beside a file; empty if there is none, or nothing in it.
std::string resourcesBeside(const std::string& file) {
    const std::string twin = TWINFILE(file, ResourceExtension);
    return !twin.empty() && FileSize(twin) > 0 ? twin : std::string();
}

}  // namespace

CurrentResource GETCURRENTRESOURCE() {
    FRAME(GETCURRENTRESOURCE);
    STAMP();
    const std::string open = DIALOGGETFILENAME();
    if (!open.empty()) return {open, DIALOGGETDLGNAME()};
    STAMP();
    const ProjectRow row = PROJECTITEMINFO(ProjectEditorDlg);
    if (STREQUAL(FILEGETEXT(row.item.file), ResourceExtension)) return {row.item.file, row.item.name};
    STAMP();
    const std::string code = EDITWNDGETFILENAME(SDIEdit);
    for (const std::string& file : {row.item.file, PROJECTITEMGETPARENT(ProjectEditorDlg, row.row)})
        if (const std::string twin = resourcesBeside(file); !twin.empty()) return {twin, ""};
    STAMP();
    return {ISCLASSFILE(code) ? TWINFILE(code, ResourceExtension) : "", ""};
}

void PROJECTNEWTEXTFILE() {
    FRAME(PROJECTNEWTEXTFILE);
    STAMP();
    EDITWNDNEW(SDIEdit, "");
    STAMP();
    if (EDITWNDGETFILENAME(SDIEdit) == Untitled) Show(SDIEdit, false);
}

}  // namespace tarn
