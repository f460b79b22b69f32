// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/filemenu.h"

#include "ide/designer/dlgedit.h"
#include "ide/editor/recentfiles.h"
#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/program/newprogram.h"
#include "ide/program/projedit.h"
#include "ide/shell/examples.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/dialogs/commdlgs_print.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

MODULE("filemenu")

namespace tarn {
namespace {

void requireType(const Object& control, std::string_view type) {
    Precondition(STREQUAL(GetTypeof(control), type));
}

// Opens the file, and the program if it is one, and notes it among the recent ones if the window took it.
void openAndRemember(const std::string& file, bool isMain, const Object& programLabel) {
    EDITWNDOPEN(SDIEdit, file, false, 0);
    if (!HASNAMEINEDITOR(file)) return;
    if (isMain) PROJECTOPEN(ProjectEditorDlg, "Program Window", file, programLabel);
    SAVEMRUITEM(GETIDEINIFILE(), "MRU", 5, file);
}

bool programWindowsLoaded() {
    for (const Object& window : {ProjectEditorDlg, DialogDlg, BrowseInfoDlg, ViewDlg}) {
        if (IsLoaded(window)) return true;
    }
    return false;
}

}  // namespace

void DO_NEW_TEXTFILE(const Object& codeLabel) {
    FRAME(DO_NEW_TEXTFILE);
    STAMP();
    requireType(codeLabel, "Label");
    STAMP();
    PROJECTNEWTEXTFILE();
}

void DO_NEW_CLASS(const Object& codeLabel) {
    FRAME(DO_NEW_CLASS);
    STAMP();
    requireType(codeLabel, "Label");
    STAMP();
    PROJECTNEWNONMAIN(codeLabel, "New Class");
}

void DO_NEW_PROGRAM(const Object& programLabel, const Object& codeLabel) {
    FRAME(DO_NEW_PROGRAM);
    STAMP();
    requireType(programLabel, "Label");
    requireType(codeLabel, "Label");
    STAMP();
    PROJECTNEWMAIN(ProjectEditorDlg, codeLabel, "New Program", true);
}

void DO_OPEN(std::string name, const Object& programLabel) {
    FRAME(DO_OPEN);
    STAMP();
    requireType(programLabel, "Label");
    STAMP();
    if (name.empty()) name = OpenFileDialog("File-Open", "", "Class (*.cls)|*.cls|All files (*)|*|");
    if (name.empty() || FileSize(name) < 0) return;
    STAMP();
    const bool isMain = ISMAINCLASS(name);
    STAMP();
    if (isMain && programWindowsLoaded() && !CLOSEALL()) return;
    STAMP();
    openAndRemember(name, isMain, programLabel);
}

bool CLOSEALL() {
    FRAME(CLOSEALL);
    for (const Object& window : WindowList()) {
        STAMP();
        if (window == Main || !IsLoaded(window)) continue;
        Unload(window);
        STAMP();
        if (IsLoaded(window) && GetVisible(window)) return false;
    }
    return true;
}

void DO_SAVE() {
    FRAME(DO_SAVE);
    STAMP();
    const std::string window = GETSAVEWINDOW();
    STAMP();
    if (STREQUAL(window, SDIEdit.window())) return EDITWNDSAVE(SDIEdit, false);
    if (STREQUAL(window, DialogDlg.window())) return DIALOGSAVE();
    Sound();
}

void DO_SAVE_AS() {
    FRAME(DO_SAVE_AS);
    STAMP();
    EDITWNDSAVE(SDIEdit, true);
}

void DO_SAVE_ALL() {
    FRAME(DO_SAVE_ALL);
    STAMP();
    SAVEALL();
}

void DO_CLOSE_ALL() {
    FRAME(DO_CLOSE_ALL);
    STAMP();
    CLOSEALL();
}

void DO_CLOSE(const std::string& name) {
    FRAME(DO_CLOSE);
    STAMP();
    for (const Object& window : {SDIEdit, DialogDlg})
        if (STREQUAL(name, window.window())) return Unload(window);
    Sound();
}

void DO_MRU(const Object& first, const Object& last, const std::string& file, const Object& programLabel) {
    FRAME(DO_MRU);
    STAMP();
    requireType(first, "Menuitem");
    requireType(last, "Menuitem");
    requireType(programLabel, "Label");
    const std::string name = STRTRIM(file);
    STAMP();
    if (name.empty()) return Sound();
    if (FileSize(name) >= 0) return DO_OPEN(name, programLabel);
    MSGBOX("File-Open", "File '" + file + "' was not found.");
    STAMP();
    REMOVEMRUITEM(GETIDEINIFILE(), "MRU", name);
    STAMP();
    LOADMRULIST(GETIDEINIFILE(), "MRU", 5, first);
}

void DO_OPEN_EXAMPLES(const std::string& title, const Object& programLabel) {
    FRAME(DO_OPEN_EXAMPLES);
    STAMP();
    requireType(programLabel, "Label");
    STAMP();
    BROWSEEXAMPLES(title);
}

void DO_PRINT() {
    FRAME(DO_PRINT);
    STAMP();
    const bool errors =
        STREQUAL(GetCaption(MAINCONTROL("lbllastactive")), ViewDlg.window()) && ISSHOWN(ViewDlg);
    STAMP();
    if (!errors && !IsLoaded(SDIEdit)) return MSGBOX("Print", "Nothing to print");
    PRINT(errors ? ViewDlg : SDIEdit, GetCaption(MAINCONTROL("printername")));
    STAMP();
}

void DO_PRINTER_SETUP(const Object& printerName) {
    FRAME(DO_PRINTER_SETUP);
    STAMP();
    requireType(printerName, "Label");
    STAMP();
    const std::string name = PRINTERSETUPDIALOG();
    STAMP();
    if (!name.empty()) SetCaption(printerName, name);
}

void DO_EXIT() {
    FRAME(DO_EXIT);
    STAMP();
    const int answer = MsgBoxEx("File-Exit", "Exit now? Any unsaved changes will be lost.", 4 + 32 + 256);
    STAMP();
    if (answer == 6) Halt();
}

}  // namespace tarn
