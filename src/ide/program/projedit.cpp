// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/projedit.h"

#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

MODULE("projedit")

namespace tarn {

std::string PROJECTGETMAINFILE() {
    FRAME(PROJECTGETMAINFILE);
    if (!IsLoaded(ProjectEditorDlg)) return {};
    STAMP();
    return GetCaption(FINDCONTROL(ProjectEditorDlg, "Mainfile"));
}

std::string COMPILERGETMAINFILE() {
    FRAME(COMPILERGETMAINFILE);
    const std::string program = PROJECTGETMAINFILE();
    return program.empty() ? EDITWNDGETFILENAME(SDIEdit) : program;
}

std::string GETSAVEWINDOW() {
    FRAME(GETSAVEWINDOW);
    const Object active = ActiveWindow();
    STAMP();
    for (const Object& window : {SDIEdit, DialogDlg}) {
        if (active == window && IsLoaded(window) && GetVisible(window)) return STRLOWER(window.window());
    }
    if (active == Main && IsLoaded(SDIEdit) && GetModify(SDIEdit)) return STRLOWER(SDIEdit.window());
    return {};
}

void SAVEALL() {
    FRAME(SAVEALL);
    STAMP();
    if (IsLoaded(SDIEdit) && GetModify(SDIEdit)) EDITWNDSAVE(SDIEdit, false);
}

void PROJECTNEWTEXTFILE() {
    FRAME(PROJECTNEWTEXTFILE);
    STAMP();
    EDITWNDNEW(SDIEdit, "");
    STAMP();
    if (EDITWNDGETFILENAME(SDIEdit) == Untitled) Show(SDIEdit, false);
}

}  // namespace tarn
