// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/viewmenu.h"

#include "ide/build/textview.h"
#include "ide/build/toolrun.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/drawing/dlgzoom.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/designer/toolbox.h"
#include "ide/editor/completion.h"
#include "ide/editor/declaration.h"
#include "ide/editor/editlooks.h"
#include "ide/editor/textedit.h"
#include "ide/program/browseinfo.h"
#include "ide/program/functionlist.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/dialogs/finddlgs.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("viewmenu")

namespace tarn {

void DO_LINE() {
    FRAME(DO_LINE);
    STAMP();
    GOTOLINEDIALOG("View-Line", SDIEdit, GETHELPFILE(), "View_Line");
}

void DO_FUNCTION_LIST() {
    FRAME(DO_FUNCTION_LIST);
    STAMP();
    GOTOFUNCDIALOG();
}

void DO_BROWSE_INFO() {
    FRAME(DO_BROWSE_INFO);
    STAMP();
    BROWSEINFODIALOG();
}

void DO_ERRORS() {
    FRAME(DO_ERRORS);
    STAMP();
    if (IsLoaded(ViewDlg))
        Show(ViewDlg, false);
    else
        VIEWDIALOG(ErrorsTitle, GETCOMPILERMESSAGES(), GetFontName(SDIEdit), GetFontSize(SDIEdit));
}

void DO_PROGRAM_WINDOW(const Object& programLabel) {
    FRAME(DO_PROGRAM_WINDOW);
    STAMP();
    Precondition(STREQUAL(GetTypeof(programLabel), "Label"));
    STAMP();
    if (IsLoaded(ProjectEditorDlg)) return static_cast<void>(Show(ProjectEditorDlg, false));
    const std::string file = EDITWNDGETFILENAME(SDIEdit);
    if (!ISMAINCLASS(file)) return Sound();
    STAMP();
    PROJECTOPEN(ProjectEditorDlg, "Program Window", file, programLabel);
    STAMP();
}

// ---- the Code window ----

namespace {

bool hasText() {
    if (ISSHOWN(SDIEdit) && !EDITWNDGETFILENAME(SDIEdit).empty()) return true;
    Sound();
    return false;
}

}  // namespace

void DO_DECLARATION() {
    FRAME(DO_DECLARATION);
    STAMP();
    if (!hasText()) return;
    // From another window the key brings the Code window forward.
    const bool here =
        ActiveWindow() == SDIEdit || STREQUAL(GetCaption(MAINCONTROL("lbllastactive")), "SDIEdit");
    Show(SDIEdit, false);
    STAMP();
    if (here) GOTODECLARATION(SDIEdit, false);
}

void DO_BACK() {
    FRAME(DO_BACK);
    STAMP();
    if (hasText()) GOBACK(SDIEdit);
}

void DO_COMPLETE() {
    FRAME(DO_COMPLETE);
    STAMP();
    if (!hasText()) return;
    Show(SDIEdit, false);
    STAMP();
    COMPLETEWORD(SDIEdit, false);
}

void DO_FOLD_ALL(bool folded) {
    FRAME(DO_FOLD_ALL);
    STAMP();
    if (hasText()) FoldAll(SDIEdit, folded);
    STAMP();
}

void DO_LOOK(std::string_view setting) {
    FRAME(DO_LOOK);
    STAMP();
    SWITCHLOOK(SDIEdit, setting);
}

void DO_TAB_WIDTH(int columns) {
    FRAME(DO_TAB_WIDTH);
    STAMP();
    CHOOSETABWIDTH(SDIEdit, columns);
}

void DO_ZOOM(int points) {
    FRAME(DO_ZOOM);
    STAMP();
    if (DIALOGISINFRONT()) return DIALOGZOOM(points);
    ZOOMBY(SDIEdit, points);
}

void DO_LINE_ENDS(int ends) {
    FRAME(DO_LINE_ENDS);
    STAMP();
    CHOOSELINEENDS(SDIEdit, ends);
}

void DO_STD_TOOLBAR(const Object& mainWindow, const Object& label, const Object& menuItem) {
    FRAME(DO_STD_TOOLBAR);
    STAMP();
    Precondition(STREQUAL(GetTypeof(mainWindow), "Dialog") && STREQUAL(GetTypeof(label), "Label") &&
                 STREQUAL(GetTypeof(menuItem), "Menuitem"));
    STAMP();
    const bool on = !GetChecked(menuItem);
    SetChecked(menuItem, on);
    STAMP();
    const Rect bottom = GetPosition(label, CLIENT_UNIT);
    const int height = (on ? bottom.y + bottom.h : 0) + 1;
    const int widest = ScreenSize().w - 8;
    STAMP();
    SetMinPosition(mainWindow, Rect{0, 0, 640 - 8, height});
    SetMaxPosition(mainWindow, Rect{0, 0, widest, height});
    STAMP();
    Rect client = GetPosition(mainWindow, CLIENT_UNIT);
    client.w = std::clamp(client.w, 640 - 8, std::max(widest, 640 - 8));
    client.h = height;
    SetPosition(mainWindow, CLIENT_UNIT, client);
    STAMP();
    PROFILESTRPUT(GETIDEINIFILE(), "Main", "VIEW_STD_TOOLBAR", on ? "1" : "0");
    STAMP();
    EDITWNDSETMAXSIZE(SDIEdit, mainWindow);
}

// Only for the dialog editor, whose Toolbox it is.
void DO_TOOLBOX(const Object& menuItem) {
    FRAME(DO_TOOLBOX);
    STAMP();
    Precondition(STREQUAL(GetTypeof(menuItem), "Menuitem"));
    STAMP();
    if (!ISSHOWN(DialogDlg)) return Sound();
    if (TOOLBOXGETVISIBLE()) return TOOLBOXCLOSE();
    TOOLBOXOPEN(GETHELPFILE(), "Toolbox");
}

void DO_PROPERTY_WINDOW() {
    FRAME(DO_PROPERTY_WINDOW);
    STAMP();
    PROPERTYWINDOWTOGGLE();
}

}  // namespace tarn
