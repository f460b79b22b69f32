// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/viewmenu.h"

#include "ide/build/textview.h"
#include "ide/build/toolrun.h"
#include "ide/editor/textedit.h"
#include "ide/program/browseinfo.h"
#include "ide/program/functionlist.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/dialogs/finddlgs.h"
#include "library/settings/profstr.h"
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
        VIEWDIALOG("View Errors", GETCOMPILERMESSAGES(), GetFontName(SDIEdit), GetFontSize(SDIEdit));
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

}  // namespace tarn
