// SPDX-License-Identifier: GPL-3.0-or-later
//
// What happens in the window of the dialog editor: a table of keys, and one of the other events. All state is in the
// controls of the window.
#include "ide/designer/dlgedit.h"
#include "ide/designer/dlghistory.h"
#include "ide/designer/dlgmouse.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/drawing/dlgview.h"
#include "ide/designer/drawing/dlgzoom.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/designer/files/dlgcode.h"
#include "ide/designer/objects/dlgclip.h"
#include "ide/designer/objects/dlgmany.h"
#include "ide/designer/objects/dlgobjects.h"
#include "ide/designer/objects/dlgtab.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

#include <algorithm>
#include <iterator>
#include <utility>

MODULE("dlgedit")

namespace tarn {
namespace {

// Keys beside those that have a name for all windows. What is pressed with Ctrl or Shift comes with these bits.
constexpr int Tab = 9, F6 = 117, Ctrl = 0x1000, Shift = 0x2000;
constexpr int Zero = 48, Plus = 187, Minus = 189;

void redrawIf(bool changed) {
    if (changed) DIALOGREDRAW();
}

// ---- keys ----

void showHelp() {
    DESIGNHELP(DESIGNTEXT("helpfile"), DESIGNTEXT("helpkey"));
}

void editSelected() {
    redrawIf(EDITOBJECT(DATALIST(), MENULIST(), SELECTEDOBJECT(), DESIGNTEXT("helpfile"),
                        DESIGNTEXT("prophelpkey"), DESIGNTEXT("menuhelpkey")));
}

void tellSize() {
    const std::string list = DESIGNITEM(SELECTEDOBJECT());
    if (list.empty()) return;
    const std::string type = GETPROPVALUE(list, "TYPEOF");
    const UnitRect units = GETPROPPOSITION(list);
    const Rect unit = RCUNITSTOPIXELS(DialogDlg, {0, 0, 4, 8}), pixels = RCUNITSTOPIXELS(DialogDlg, units);
    const UnitRect again = PIXELSTORCUNITS(DialogDlg, pixels);
    std::string text = "Size of 4 x 8 RC file units in pixels = " + STR(unit.w) + " " + STR(unit.h) + "\n" +
                       "Size of " + type + " in RC file units = " + POSITIONTEXT(units) + "\n" + "Size of " +
                       type + " in pixels = " + POSITIONTEXT(pixels) + "\n";
    if (again != units) text += "Recalculated size in RC file units = " + POSITIONTEXT(again) + "\n";
    MSGBOX(OBJECTTITLE(SELECTEDOBJECT()), text);
}

void listProperties() {
    ListBox("Object properties", "", GETPROPERTYLISTS(DATALIST(), MENULIST()));
}

void selectNothing() {
    if (TABORDERISON()) return TABORDEREND();
    SELECTOBJECT(0);
    DIALOGREDRAW();
}

// Through the dialog, its controls in their order, and its menu, around the ends.
void stepSelection(int by) {
    const int objects = GetListCount(DATALIST());
    const bool menu = !GETPROPVALUE(DESIGNITEM(1), "MENU").empty();
    const int places = objects + (menu ? 1 : 0);
    const int selected = SELECTEDOBJECT();
    const int place = selected == -1 ? places : selected;  // 0: none
    const int next = place == 0 && by < 0 ? places : (place - 1 + by + places) % places + 1;
    SELECTOBJECT(menu && next == places ? -1 : next);
    static_cast<void>(SHOWSELECTEDOBJECT());
    DIALOGREDRAW();
}

void showToolbox() {
    if (ISSHOWN(ToolboxDlg))
        Show(ToolboxDlg, false);
    else if (!GOTOPROPERTYWINDOW())
        Sound();
}

struct KeyRow {
    int key;
    void (*action)();
};
constexpr KeyRow keys[] = {
    {KEY_F1, showHelp},
    {KEY_F2, editSelected},
    {KEY_RETURN, editSelected},
    {KEY_F3, tellSize},
    {KEY_F4, listProperties},
    {KEY_DELETE, DELETESELECTED},
    {KEY_ESCAPE, selectNothing},
    {KEY_LEFT, [] { MOVESELECTED(-1, 0); }},
    {KEY_RIGHT, [] { MOVESELECTED(1, 0); }},
    {KEY_UP, [] { MOVESELECTED(0, -1); }},
    {KEY_DOWN, [] { MOVESELECTED(0, 1); }},
    {Ctrl + KEY_LEFT, [] { SIZESELECTED(-1, 0); }},
    {Ctrl + KEY_RIGHT, [] { SIZESELECTED(1, 0); }},
    {Ctrl + KEY_UP, [] { SIZESELECTED(0, -1); }},
    {Ctrl + KEY_DOWN, [] { SIZESELECTED(0, 1); }},
    {Ctrl + 'A', SELECTALLCONTROLS},
    {Tab, [] { stepSelection(1); }},
    {Shift + Tab, [] { stepSelection(-1); }},
    {F6, showToolbox},
    {Ctrl + Plus, [] { DIALOGZOOM(1); }},
    {Ctrl + Shift + Plus, [] { DIALOGZOOM(1); }},  // where Plus stands above another sign
    {Ctrl + Minus, [] { DIALOGZOOM(-1); }},
    {Ctrl + Zero, [] { DIALOGZOOM(0); }},
    // The editing keys of the Edit menu, which other windows than Main get themselves.
    {Ctrl + 'Z', DIALOGUNDO},
    {Ctrl + 'Y', DIALOGREDO},
    {Ctrl + Shift + 'Z', DIALOGREDO},
    {Ctrl + 'X', DIALOGCUT},
    {Ctrl + 'C', DIALOGCOPY},
    {Ctrl + 'V', DIALOGPASTE},
};

// While the order is clicked nothing else is done to the controls.
bool refusedNow(int key) {
    constexpr int kept[] = {KEY_F1, KEY_F3, KEY_F4, KEY_ESCAPE, F6};
    return TABORDERISON() && std::find(std::begin(kept), std::end(kept), key) == std::end(kept);
}

bool keyPressed(int key) {
    if (refusedNow(key)) return Sound(), true;
    for (const KeyRow& row : keys) {
        if (row.key != key) continue;
        row.action();
        return true;
    }
    return false;
}

// ---- the mouse ----

void rightClicked(int parameter) {
    if (TABORDERISON()) return Sound();
    DESIGNSELECTAT(parameter);
    DIALOGREDRAW();
    editSelected();
}

void showCode() {
    const int index = SELECTEDOBJECT();
    const std::string dialog = DESIGNITEM(1), object = index == -1 ? dialog : DESIGNITEM(index);
    if (object.empty()) return;
    const std::string type = index == -1 ? "Menuitem" : GETPROPVALUE(object, "TYPEOF");
    SHOWCODEFILE(DIALOGGETFILENAME(), GETPROPVALUE(object, "NAME"), GETPROPVALUE(dialog, "TYPEOF"), type);
}

// ---- the window ----

// To the right of the Toolbox, below the main window.
void place() {
    constexpr int gap = 20;
    const Rect screen = ScreenSize(), main = GetPosition(Main, WINDOW_UNIT);
    const int toolbox = IsLoaded(ToolboxDlg) ? GetPosition(ToolboxDlg, WINDOW_UNIT).w + gap : 0;
    const Rect own = GetPosition(DialogDlg, WINDOW_UNIT);
    SetPosition(DialogDlg, WINDOW_UNIT, Rect{screen.x + gap + toolbox, main.y + main.h + gap, own.w, own.h});
}

bool drawnDark = false;  // the desktop was dark when the dialog was drawn last

void loaded() {
    drawnDark = DesktopInfo().dark;
    place();
}

// A dialog that is drawn in a window of that size, or is larger than the window may become, stays as it is.
int sizeFrom(int client, int offsets, int most, int before) {
    const int drawn = ZOOMEDPIXELS(DialogDlg, before + offsets);
    const bool cut = most > 0 && client >= most && drawn > most;
    return cut || client == drawn ? before
                                  : std::max(UNZOOMEDPIXELS(DialogDlg, client) - offsets, LEAST_SIDE);
}

// A window that is drawn on hears of other colours as of another size.
void redrawInColours() {
    if (DIALOGDRAWING()) return;
    const bool dark = DesktopInfo().dark;
    if (std::exchange(drawnDark, dark) != dark) DIALOGREDRAW();
}

void resized() {
    FRAME(RESIZED);
    STAMP();
    std::string list = DESIGNITEM(1);
    if (DIALOGDRAWING() || list.empty() || DESIGNTEXT("linkstr") != "1") return;
    STAMP();
    if (DESIGNISSCROLLED()) return DIALOGREDRAW();  // the edge sizes what is seen of it
    STAMP();
    const Rect offsets = CALCOFFSETS(DialogDlg, list, DIALOGGETMODE(), DIALOGGETMARGIN());
    const Rect window = GetPosition(DialogDlg, CLIENT_UNIT), most = GetMaxPosition(DialogDlg);
    if (ISGIVENSIZE(window)) return;
    const UnitRect before = GETPROPPOSITION(list);
    const LetterSize letter = LETTERSIZE(DialogDlg);
    Rect pixels = RCUNITSTOPIXELS(letter, before);
    const Rect old = pixels;
    pixels.w = sizeFrom(window.w, offsets.w, most.w, pixels.w);
    pixels.h = sizeFrom(window.h, offsets.h, most.h, pixels.h);
    STAMP();
    if (pixels == old) return;
    const UnitRect after = UNITSAFTER(letter, before, old, pixels);
    STAMP();
    if (after == before) return;
    SETPROPPOSITION(list, after);
    redrawIf(DESIGNSTEP([&] { SETDESIGNITEM(DATALIST(), 1, list); }));
    STAMP();
}

bool closes() {
    if (!DIALOGMAYCLOSE()) return false;
    DIALOGHISTORYEND();
    return true;
}

struct EventRow {
    int event;
    bool (*action)(int parameter);  // whether the event is handled
};
constexpr EventRow events[] = {
    {LOAD_EVENT, [](int) { return DIALOGHISTORYEND(), loaded(), false; }},
    {KEYPRESS_EVENT, keyPressed},
    {MOUSEDOWN_EVENT, [](int parameter) { return DESIGNPRESSED(parameter), true; }},
    {INFO_EVENT, [](int parameter) { return rightClicked(parameter), true; }},
    {DBLCLICK_EVENT, [](int) { return showCode(), true; }},
    {CHANGE_EVENT, [](int) { return DIALOGREDRAW(), true; }},  // of a scroll bar
    {RESIZE_EVENT, [](int) { return resized(), redrawInColours(), true; }},
    {CLOSE_EVENT, [](int) { return !closes(); }},
};

// The mouse on a scroll bar is the bar's own, and not of the design below it.
bool isOfScrollBar(int event, const Object& control) {
    const bool mouse = event == MOUSEDOWN_EVENT || event == INFO_EVENT || event == DBLCLICK_EVENT;
    return mouse && (control == DESIGNCONTROL("sclacross") || control == DESIGNCONTROL("scldown"));
}

const RegisteredWindow registered("DialogDlg", DIALOGDLG);

}  // namespace

bool DIALOGISINFRONT() {
    FRAME(DIALOGISINFRONT);
    STAMP();
    return ISSHOWN(DialogDlg) && STREQUAL(GetCaption(MAINCONTROL("lbllastactive")), DialogDlg.window());
}

void DIALOGEDITSELECTED() {
    FRAME(DIALOGEDITSELECTED);
    STAMP();
    if (TABORDERISON()) return Sound();
    editSelected();
    STAMP();
}

void DIALOGDELETESELECTED() {
    FRAME(DIALOGDELETESELECTED);
    STAMP();
    if (TABORDERISON()) return Sound();
    DELETESELECTED();
    STAMP();
}

void DIALOGSELECTALL() {
    FRAME(DIALOGSELECTALL);
    STAMP();
    if (TABORDERISON()) return Sound();
    SELECTALLCONTROLS();
    STAMP();
}

bool DIALOGDLG(const Object&, int event, const Object& control, int parameter) {
    FRAME(DIALOGDLG);
    STAMP();
    if (isOfScrollBar(event, control)) return false;
    if ((event == KEYPRESS_EVENT || event == MOUSEDOWN_EVENT || event == INFO_EVENT) && !KEEPTYPEDPROPERTY())
        return true;
    STAMP();
    bool handled = false;
    for (const EventRow& row : events)
        if (row.event == event) handled = row.action(parameter);
    STAMP();
    return handled;
}

}  // namespace tarn
