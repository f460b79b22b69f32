// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/toolbox.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/objects/dlgobjects.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/shell/ide.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr int F6 = 117;
constexpr int Beeping[] = {KEY_LEFT, KEY_RIGHT, KEY_UP, KEY_DOWN, KEY_DELETE, KEY_F2, KEY_F3, KEY_F4};

Object tool(std::string_view name) {
    return FINDCONTROL(ToolboxDlg, name);
}

// At the left edge of the screen, a third of what is free above it.
void place() {
    constexpr int left = 20, share = 3;
    const Rect screen = ScreenSize(), own = GetPosition(ToolboxDlg, WINDOW_UNIT);
    const int top = screen.y + std::max(screen.h - own.h, 0) / share;
    SetPosition(ToolboxDlg, WINDOW_UNIT, Rect{left, top, own.w, own.h});
}

ToolboxChoice choiceOf(const Object& control) {
    std::string words = GetName(control);
    const std::size_t at = words.find('_');
    if (at != std::string::npos) words[at] = ' ';
    return {STRWORD(words, 1), STRWORD(words, 2)};
}

bool keyPressed(int key) {
    const bool beeps = std::find(std::begin(Beeping), std::end(Beeping), key) != std::end(Beeping);
    if (beeps)
        Sound();
    else if (key == KEY_ESCAPE)
        TOOLBOXCLOSE();
    else if (key == KEY_F1)
        DESIGNHELP(GetCaption(tool("helpfile")), GetCaption(tool("helpkey")));
    else if (key == F6 && !GOTOPROPERTYWINDOW())
        Show(DialogDlg, false);
    else if (key != F6)
        return false;
    return true;
}

void moveInOrder(int direction) {
    if (DESIGNSTEP([&] { MOVECONTROLZ(DATALIST(), SELECTEDOBJECT(), direction); })) DIALOGREDRAW();
}

bool isInArray(const Object& control) {
    const Object first = tool("icon_ctl");
    return control.number() >= first.number() && control.number() <= tool("menuitem_ctl").number();
}

bool commanded(const Object& control) {
    FRAME(COMMANDED);
    STAMP();
    if (!IsLoaded(DialogDlg)) return Sound(), true;
    if (control == tool("up_tool")) return moveInOrder(1), true;
    if (control == tool("down_tool")) return moveInOrder(-1), true;
    STAMP();
    if (control == tool("pointer_tool")) {
        Show(DialogDlg, false);
        return true;
    }
    if (!isInArray(control)) return false;
    const ToolboxChoice choice = choiceOf(control);
    STAMP();
    ADDOBJECT(DialogDlg, choice.type, choice.option, -1, -1);
    STAMP();
    return true;
}

const RegisteredWindow registered("ToolboxDlg", TOOLBOXDLG);

}  // namespace

void TOOLBOXOPEN(const std::string& helpFile, const std::string& helpKey) {
    FRAME(TOOLBOXOPEN);
    STAMP();
    Load(ToolboxDlg);
    STAMP();
    SetCaption(tool("helpfile"), helpFile);
    SetCaption(tool("helpkey"), helpKey);
    Show(ToolboxDlg, false);
    STAMP();
}

void TOOLBOXCLOSE() {
    FRAME(TOOLBOXCLOSE);
    STAMP();
    if (IsLoaded(ToolboxDlg)) Unload(ToolboxDlg);
    STAMP();
    UPDATEMAINWINDOW();
}

bool TOOLBOXGETVISIBLE() {
    FRAME(TOOLBOXGETVISIBLE);
    STAMP();
    return ISSHOWN(ToolboxDlg);
}

ToolboxChoice TOOLBOXGETSELECTION() {
    FRAME(TOOLBOXGETSELECTION);
    if (!IsLoaded(ToolboxDlg)) return {};
    STAMP();
    return choiceOf(Controlselection(tool("pointer_tool")));
}

bool TOOLBOXDLG(const Object&, int event, const Object& control, int parameter) {
    FRAME(TOOLBOXDLG);
    STAMP();
    bool handled = false;
    switch (event) {
    case LOAD_EVENT: place(); break;
    case KEYPRESS_EVENT:  // Return presses the button that has the focus, as Space does
        handled = parameter == KEY_RETURN && !control.isWindow() ? commanded(control) : keyPressed(parameter);
        break;
    case COMMAND_EVENT: handled = commanded(control); break;
    default: break;
    }
    STAMP();
    return handled;
}

}  // namespace tarn
