// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/menu/menuedit.h"

#include "ide/designer/menu/menuitems.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/designer/propedit.h"
#include "library/dialogs/dialogshape.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit2")

namespace tarn {
namespace {

constexpr int HelpKeyCommand = 257, KeyEnd = 35, KeyHome = 36;

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}

// The row of which the edits show the values; 0 or less for none.
int currentRow(const Object& window) {
    bool ok = false;
    const int row = CVTI(GetCaption(in(window, "label6")), ok);
    return ok ? row : 0;
}
int selectedRow(const Object& window) {
    return GetListIndex(in(window, "listbox1"));
}
void rememberSelection(const Object& window) {
    SetCaption(in(window, "label6"), STR(selectedRow(window)));
}

void showHelp(const Object& window) {
    if (!GetEnabled(in(window, "pushbutton3"))) return Sound();
    MULTIHELP(0, GetCaption(in(window, "helpfile")), HelpKeyCommand, GetCaption(in(window, "helpkey")));
}

// ---- the size ----

// The size of the client area for which the controls lie where they do stands in the window.
constexpr std::string_view SizeValue = "size";

void noteSize(const Object& window) {
    const Rect now = GetPosition(window, CLIENT_UNIT);
    SetArrayValue(window, SizeValue, STR(now.w) + " " + STR(now.h));
}

void load(const Object& window) {
    const Rect smallest = GetPosition(window, CLIENT_UNIT);
    SetMinPosition(window, Rect{0, 0, smallest.w, smallest.h});
    noteSize(window);
}

// The list takes the room; the fields stay at its right, the last line and its buttons at the bottom.
void layOut(const Object& window) {
    bool ok = false, tooOk = false;
    const std::string size = GetArrayValue(window, SizeValue);
    const Rect before{0, 0, CVTI(STRWORD(size, 1), ok), CVTI(STRWORD(size, 2), tooOk)};
    if (!ok || !tooOk) return;
    const Rect onlyWider{0, 0, before.w, GetPosition(window, CLIENT_UNIT).h};
    for (const std::string_view name : {"listbox1", "label5", "pushbutton1", "pushbutton2", "pushbutton3"})
        ADJUSTCONTROLPOS(window, in(window, name), before);
    for (const std::string_view name :
         {"label1", "edit1", "label2", "edit2", "label3", "edit3", "label4", "edit4", "upbutton",
          "downbutton", "indentbutton", "unindentbutton", "addbutton", "deletebutton"})
        ADJUSTCONTROLPOS(window, in(window, name), onlyWider);
    noteSize(window);
}

// ---- what the user does ----

// Before the selection moves on. True, so that it does not, if the edits are wrong.
bool key(const Object& window, const Object& control, int code) {
    constexpr int codes[] = {KEY_UP, KEY_DOWN, KeyHome, KeyEnd};
    const bool moves = std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
    return moves && GetName(control) == "listbox1" && !STOREMENUITEMPROPS(selectedRow(window));
}

bool mouseDown(const Object& window, const Object& control) {
    if (GetName(control) != "listbox1") return false;
    const int row = currentRow(window);
    const bool stored = row < 1 || STOREMENUITEMPROPS(row);
    if (stored)
        rememberSelection(window);
    else
        SetListIndex(control, row);
    return !stored;
}

// The selection may have moved by a way that told nothing before, as by a letter key.
void rowChanged(const Object& window) {
    const int before = currentRow(window), row = selectedRow(window);
    if (row != before && !STOREMENUITEMPROPS(before)) return SELECTMENUITEM(before);
    SHOWMENUITEMPROPS(row);
    rememberSelection(window);
}

bool change(const Object& window, const Object& control) {
    const std::string name = GetName(control);
    if (name == "listbox1") return rowChanged(window), true;
    if (name != "edit2" && name != "edit3") return false;
    if (!ISDIGITSTR(GetText(control))) SetText(control, "0");
    return true;
}

void move(const Object& window, const Object& button) {
    MOVEMENUITEMPROPS(selectedRow(window), GetCaption(button));
    rememberSelection(window);
}
void add(const Object& window, const Object&) {
    ADDMENUITEMPROPS(selectedRow(window));
    rememberSelection(window);
}
void remove(const Object& window, const Object&) {
    DELETEMENUITEMPROPS(selectedRow(window));
    rememberSelection(window);
}
void accept(const Object& window, const Object&) {
    if (STOREMENUITEMPROPS(selectedRow(window)) && PROCESSMENUITEMPROPS(in(window, "data1"))) Hide(window);
}

constexpr struct {
    std::string_view control;
    void (*action)(const Object& window, const Object& button);
} buttons[] = {{"upbutton", move}, {"downbutton", move},     {"indentbutton", move}, {"unindentbutton", move},
               {"addbutton", add}, {"deletebutton", remove}, {"pushbutton1", accept}};

bool press(const Object& window, const Object& control) {
    for (const auto& button : buttons)
        if (GetName(control) == button.control) return button.action(window, control), true;
    return false;
}

// OK is the window's own: what is wrong is told by the operations on the items.
constexpr DialogShape shape = {.ok = "", .showHelp = showHelp, .load = load};
const RegisteredWindow registered("MenuEditDlg", MENUEDITDLG);

bool handle(const Object& window, int event, const Object& control, int parameter) {
    bool done = false;
    switch (event) {
    case KEYPRESS_EVENT: done = key(window, control, parameter); break;
    case MOUSEDOWN_EVENT: done = mouseDown(window, control); break;
    case CHANGE_EVENT: done = change(window, control); break;
    case COMMAND_EVENT: done = press(window, control); break;
    case RESIZE_EVENT: return layOut(window), true;
    default: break;
    }
    return done || DIALOGSHAPEEVENT(shape, window, event, control, parameter);
}

// Fills the window that has been loaded.
void fill(const Object& window, const std::vector<std::string>& items) {
    SETMENUINFO(in(window, "listbox1"), in(window, "data1"), items);
    const int row = items.size() > 1 ? 1 : 0;
    SELECTMENUITEM(row);
    SHOWMENUITEMPROPS(row);
}

}  // namespace

bool MENUEDITDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(MENUEDITDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

bool MENUEDITDIALOG(const std::string& title, const std::string& helpFile, const std::string& helpKey,
                    std::vector<std::string>& items) {
    FRAME(MENUEDITDIALOG);
    STAMP();
    if (items.empty()) return false;
    const Object& window = MenuEditDlg;
    Load(window);
    STAMP();
    if (!IsLoaded(window)) return false;
    SetCaption(window, title);
    SetCaption(in(window, "helpfile"), helpFile);
    SetCaption(in(window, "helpkey"), helpKey);
    SetEnabled(in(window, "pushbutton3"), !helpFile.empty() && !helpKey.empty());
    STAMP();
    fill(window, items);
    STAMP();
    Show(window, true);
    STAMP();
    if (!IsLoaded(window)) return false;
    const bool changed = GetChecked(in(window, "checkbox1"));
    if (changed) GETMENUINFO(in(window, "listbox1"), in(window, "data1"), items);
    STAMP();
    Unload(window);
    STAMP();
    return changed;
}

}  // namespace tarn
