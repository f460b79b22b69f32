// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/projeditor.h"

#include "ide/program/members/removeitem.h"
#include "ide/program/newdialog.h"
#include "ide/program/newprogram.h"
#include "ide/program/projitems.h"
#include "ide/program/projlive.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowplace.h"
#include "ide/shell/windowtable.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {

// ---- buttons ----

namespace {

constexpr int FaceWidth = 48, FaceHeight = 64;  // pixels

struct Button {
    std::string_view name, caption, icon;
    void (*action)(const Object& window);  // null: there is no such command yet, so the button is disabled
};
constexpr Button buttons[] = {
    {"bitmapbutton1", "Refresh", "refresh.ico", PROJECTREFRESH},
    {"bitmapbutton2", "Remove", "bin.ico", PROJECTITEMDELETE},
    {"bitmapbutton3", "Edit", "default.ico", PROJECTITEMEDIT},
    {"bitmapbutton4", "New class", "code4.ico",
     [](const Object&) { PROJECTNEWNONMAIN(MAINCONTROL("codelabel"), "New Class"); }},
    {"bitmapbutton5", "New dialog", "dialog03.ico", [](const Object&) { PROJECTNEWDIALOG(); }},
    {"bitmapbutton6", "New data source", "disk10.ico", nullptr},
    {"bitmapbutton7", "Help", "help95.ico", SHOWWINDOWHELP},
};

bool PROJECT_COMMAND(const Object& window, const Object& control) {
    FRAME(PROJECT_COMMAND);
    const std::string name = GetName(control);
    for (const Button& button : buttons) {
        if (name != button.name) continue;
        STAMP();
        if (button.action != nullptr) button.action(window);
        return true;
    }
    return false;
}

}  // namespace

// ---- place ----

namespace {

void layOut(const Object& window) {
    const Object list = FINDCONTROL(window, "Iconlist1");
    const Rect client = GetPosition(window, CLIENT_UNIT);
    Rect place = GetPosition(list, CLIENT_UNIT);
    place.w = client.w - 2 * place.x;
    place.h = client.h - place.y - place.x;
    if (place.w > 0 && place.h > 0) SetPosition(list, CLIENT_UNIT, place);
}

// At first at the right edge, below the main window, where the Code window leaves a quarter.
Rect firstPlace(const Object& window) {
    const Rect screen = ScreenSize(), now = GetPosition(window, WINDOW_UNIT);
    const int top =
        IsLoaded(Main) ? GetPosition(Main, WINDOW_UNIT).y + GetPosition(Main, WINDOW_UNIT).h : screen.y;
    const int width = std::max(now.w, screen.w / 4);
    return {screen.x + screen.w - width, top, width, std::max(now.h, (screen.y + screen.h - top) * 3 / 4)};
}

void load(const Object& window) {
    Assert(window == ProjectEditorDlg && GetName(FINDCONTROL(window, "bitmapbutton1")) == buttons[0].name);
    for (const Button& button : buttons) {
        const Object control = FINDCONTROL(window, button.name);
        const std::string icon =
            FILEBASENAME(button.icon);  // a resource of this program, which has no extension
        SetPicture(control, PictureName(TBITMAP(FaceWidth, FaceHeight, button.caption, icon)));
        SetEnabled(control, button.action != nullptr);
    }
    const Rect smallest = GetPosition(window, CLIENT_UNIT);
    SetMinPosition(window, Rect{0, 0, smallest.w, smallest.h});
    const std::string ini = GETIDEINIFILE();
    if (!HASPLACE("Projecteditordlg")) SetPosition(window, WINDOW_UNIT, firstPlace(window));
    LOADINIFILE(ini, window, true, false);
    layOut(window);
}

}  // namespace

// ---- rows ----

namespace {

Object rowsOf(const Object& window) {
    return FINDCONTROL(window, "Iconlist1");
}

int topRowOf(const Object& window, int row) {
    while (row > 1 && PROJECTITEMAT(window, row).item.level > 1) --row;
    return row;
}

void goLeft(const Object& window, int row) {
    const int top = topRowOf(window, row);
    if (top != row) SetListIndex(rowsOf(window), top);
    if (PROJECTITEMISOPEN(window, top)) static_cast<void>(PROJECTITEMSELECT(window, rowsOf(window), top));
    SetListIndex(rowsOf(window), top);
}

void goRight(const Object& window, int row) {
    const int top = topRowOf(window, row);
    if (!PROJECTITEMISOPEN(window, top)) {
        static_cast<void>(PROJECTITEMSELECT(window, rowsOf(window), top));
        SetListIndex(rowsOf(window), row);
    } else if (PROJECTITEMAT(window, row + 1).item.level > 1) {
        SetListIndex(rowsOf(window), row + 1);
    }
}

void PROJECT_DBLCLICK(const Object& window, const Object& control) {
    FRAME(PROJECT_DBLCLICK);
    const int row = PROJECTITEMINFO(window).row;
    STAMP();
    const bool changed = PROJECTITEMSELECT(window, control, row);
    STAMP();
    if (changed)
        SetListIndex(control, row);
    else
        PROJECTITEMEDIT(window);
}

void PROJECT_RCLICK(const Object& window, const Object& control) {
    FRAME(PROJECT_RCLICK);
    const ProjectRow row = PROJECTITEMINFO(window);
    const ProjectPlace place = PROJECTITEMGETPOS(window, row.row);
    const std::string parent = PROJECTITEMGETPARENT(window, row.row);
    STAMP();
    const std::pair<std::string_view, std::string> facts[] = {
        {"CtlName", GetName(control) + " (" + STR(row.row) + ")"},
        {"MainFile", PROJECTGETMAINFILE(window)},
        {"ItemType", row.item.type},
        {"ItemName", row.item.name},
        {"ItemFile", row.item.file},
        {"ItemFileSize", std::to_string(FileSize(row.item.file))},
        {"ItemFileDate", FILETIME(row.item.file)},
        {"SelItemIdx", STR(row.number)},
        {"ItemPos", STR(place.top)},
        {"ItemSubPos", STR(place.sub)},
        {"ParentFile", parent},
        {"ParentFileSize", std::to_string(FileSize(parent))},
        {"ParentFileDate", FILETIME(parent)},
    };
    std::string text;
    for (const auto& [name, value] : facts) text += std::string(name) + " = " + value + "\n";
    STAMP();
    MSGBOX(GetCaption(window), STRRTRIMCRLF(text));
}

// The keys of the list; a button with the focus keeps its own.
bool pressKey(const Object& window, const Object& control, int key) {
    if (key == KEY_F1) return SHOWWINDOWHELP(window), true;
    if (STREQUAL(GetTypeof(control), "Bitmapbutton")) return false;
    const int row = PROJECTITEMINFO(window).row;
    if (key == KEY_RETURN) return PROJECTITEMEDIT(window), true;
    if (key == KEY_DELETE) return PROJECTITEMDELETE(window), true;
    if (key != KEY_LEFT && key != KEY_RIGHT) return false;
    if (row > 0 && key == KEY_LEFT) goLeft(window, row);
    if (row > 0 && key == KEY_RIGHT) goRight(window, row);
    return true;
}

bool isRows(const Object& control) {
    return STREQUAL(GetName(control), "Iconlist1");
}

const RegisteredWindow registered("ProjectEditorDlg", PROJECTEDITORDLG);

}  // namespace

bool PROJECTEDITORDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(PROJECTEDITORDLG);
    STAMP();
    bool result = true;
    switch (event) {
    case LOAD_EVENT: load(window); break;
    case RESIZE_EVENT: layOut(window); break;
    case COMMAND_EVENT: result = PROJECT_COMMAND(window, control); break;
    case DBLCLICK_EVENT:
        if (isRows(control) && PROJECTITEMINFO(window).row > 0) PROJECT_DBLCLICK(window, control);
        break;
    case INFO_EVENT:
        if (isRows(control) && PROJECTITEMINFO(window).row > 0) PROJECT_RCLICK(window, control);
        break;
    case KEYPRESS_EVENT: result = pressKey(window, control, parameter); break;
    case TIMER_EVENT: PROJECTFOLLOWFILES(window); break;
    case CLOSE_EVENT:
        SAVEINIFILE(GETIDEINIFILE(), window, true, false);
        if (IsLoaded(Main)) PostMessage(Main, ACTIVATE_EVENT, 0);  // which looks at the windows that are left
        result = false;
        break;
    default: result = false;
    }
    STAMP();
    return result;
}

}  // namespace tarn
