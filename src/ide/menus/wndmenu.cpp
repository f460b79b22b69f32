// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/wndmenu.h"

#include "ide/build/output.h"
#include "ide/menus/filemenu.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

MODULE("wndmenu")

namespace tarn {
namespace {

void bringForward(const Object& window) {
    if (ISSHOWN(window)) Show(window, false);
}

// A window that lays itself out does so when the user sizes it, and has to hear of this as well.
void moveTo(const Object& window, const Rect& place) {
    const Rect before = GetPosition(window, CLIENT_UNIT);
    SetWindowState(window, 0);
    SetPosition(window, WINDOW_UNIT, place);
    const Rect after = GetPosition(window, CLIENT_UNIT);
    if (after.w != before.w || after.h != before.h) PostMessage(window, RESIZE_EVENT, 0);
}

void moveKeepingSize(const Object& window, int x, int y) {
    if (!ISSHOWN(window)) return;
    const Rect now = GetPosition(window, WINDOW_UNIT);
    moveTo(window, Rect{x, y, now.w, now.h});
}

// The Code window keeps a size that fills the work area, and otherwise takes what the others leave.
void placeCodeWindow(const Rect& work, int errorHeight, int programWidth) {
    if (!ISSHOWN(SDIEdit)) return;
    const Rect now = GetPosition(SDIEdit, WINDOW_UNIT);
    if (now.w >= work.w && now.h >= work.h) return moveTo(SDIEdit, Rect{work.x, work.y, now.w, now.h});
    moveTo(SDIEdit, Rect{work.x, work.y, work.w - programWidth, work.h - errorHeight});
}

}  // namespace

void DO_WINDOW_ARRANGE() {
    FRAME(DO_WINDOW_ARRANGE);
    STAMP();
    const Rect main = GetPosition(Main, WINDOW_UNIT);
    const Rect screen = ScreenSize();
    const int top = main.y + main.h;
    const Rect work{main.x, top, screen.w, screen.h - top};
    int errorHeight = 0, programWidth = 0;
    STAMP();
    if (ISSHOWN(ViewDlg)) {
        errorHeight = 5 * GetPosition(MAINCONTROL("codelabel"), CLIENT_UNIT).h;
        moveTo(ViewDlg, Rect{work.x, work.y + work.h - errorHeight, work.w, errorHeight});
    }
    STAMP();
    moveKeepingSize(DialogDlg, work.x + 20, work.y + 20);
    moveKeepingSize(BrowseInfoDlg, work.x + 40, work.y + 40);
    STAMP();
    if (ISSHOWN(ProjectEditorDlg)) {
        programWidth = GetPosition(ProjectEditorDlg, WINDOW_UNIT).w;
        moveTo(ProjectEditorDlg,
               Rect{work.x + work.w - programWidth, work.y, programWidth, work.h - errorHeight});
    }
    STAMP();
    placeCodeWindow(work, errorHeight, programWidth);
}

void DO_WINDOW_CLOSE_ALL() {
    FRAME(DO_WINDOW_CLOSE_ALL);
    STAMP();
    CLOSEALL();
}

void DO_WINDOW_WINDOWS() {
    FRAME(DO_WINDOW_WINDOWS);
    std::string captions;
    for (const Object& window : WindowList()) {
        STAMP();
        if (GetVisible(window)) captions += GetCaption(window) + "\n";
    }
    STAMP();
    const std::string chosen = ListBox("Window List", "Choose a window:", captions);
    if (chosen.empty()) return;
    for (const Object& window : WindowList()) {
        STAMP();
        if (!GetVisible(window) || GetCaption(window) != chosen) continue;
        Show(window, false);
        return;
    }
}

void DO_WINDOW_PROGRAM() {
    FRAME(DO_WINDOW_PROGRAM);
    STAMP();
    bringForward(ProjectEditorDlg);
}

void DO_WINDOW_CODE() {
    FRAME(DO_WINDOW_CODE);
    STAMP();
    bringForward(SDIEdit);
}

void DO_WINDOW_DIALOG() {
    FRAME(DO_WINDOW_DIALOG);
    STAMP();
    bringForward(DialogDlg);
}

void DO_WINDOW_BROWSER() {
    FRAME(DO_WINDOW_BROWSER);
    STAMP();
    bringForward(BrowseInfoDlg);
}

void DO_WINDOW_ERROR() {
    FRAME(DO_WINDOW_ERROR);
    STAMP();
    bringForward(ViewDlg);
}

void DO_WINDOW_OUTPUT() {
    FRAME(DO_WINDOW_OUTPUT);
    STAMP();
    bringForward(OutputDlg);
}

}  // namespace tarn
