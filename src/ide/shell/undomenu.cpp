// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/undomenu.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlghistory.h"
#include "ide/editor/backup.h"
#include "ide/editor/textedit.h"
#include "ide/shell/commands.h"
#include "ide/shell/ide.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"
#include "library/time/timeutil.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <vector>

MODULE("ide", tarn::IDE_ONERROR)

namespace tarn {

// ---- 50 handles kept as text, since the array shrinks when items are removed ----

namespace {

constexpr int undoItems = 50;

bool isMenuitem(const Object& item) {
    return STREQUAL(GetTypeof(item), "Menuitem");
}

std::string handlesAsText(const int (&handles)[undoItems]) {
    std::string text;
    for (const int handle : handles) text += STR(handle) + "\n";
    return text;
}

void handlesFromText(const std::string& text, int (&handles)[undoItems]) {
    for (int i = 0; i < undoItems; i++) {
        bool ok = false;
        handles[i] = CVTI(STRLINE(text, i + 1), ok);
    }
}

std::string undoHandleText() {
    return STRREPLACE(GetText(MAINCONTROL("edtmenuarray")), "\r\n", "\n");
}

// The menu items that were noted must still be there whenever the menu is made anew.
void checkUndoItems() {
    const std::string text = undoHandleText();
    Assert(STRLINES(text) == undoItems,
           "aControls was setup wrongly under the Load event: " + STR(STRLINES(text)));
    Assert(isMenuitem(MAINCONTROL("edit_undo_01")),
           "aControls[1] is invalid after being re-loaded from Main.edtMenuarray, type: " +
               GetTypeof(MAINCONTROL("edit_undo_01")));
}

}  // namespace

void NOTEUNDOITEMS() {
    FRAME(NOTEUNDOITEMS);
    STAMP();
    const Object store = MAINCONTROL("edtmenuarray");
    SetText(store, "");
    const Object first = MAINCONTROL("edit_undo_01");
    Assert(isMenuitem(first), "Edit-Undo is not a valid menuitem");
    const int lower = ControlLbound(first), upper = ControlUbound(first);
    Assert(lower == 1 && upper == undoItems,
           "Edit-Undo array does not have the correct range: " + STR(lower) + " " + STR(upper));
    STAMP();
    int handles[undoItems] = {};
    for (int i = 1; i <= undoItems; i++) {
        const Object item = ControlElement(first, i);
        handles[i - 1] = GetHandle(item);
        Assert(isMenuitem(item),
               "EDIT_UNDO_01[" + STR(i) + "] is not a valid menuitem: " + STR(handles[i - 1]));
    }
    STAMP();
    SetText(store, handlesAsText(handles));
    int again[undoItems] = {};
    handlesFromText(undoHandleText(), again);
    Assert(handlesAsText(again) == handlesAsText(handles),
           "aControls[] did not correctly convert into a string");
    for (int i = 0; i < undoItems; i++) {
        const std::string place = "aControls[" + STR(i + 1) + "] ";
        Assert(again[i] == handles[i], place + "was not copied: " + STR(handles[i]) + " : " + STR(again[i]));
        Assert(isMenuitem(FindHandle(again[i])), place + "is not a valid menuitem: " + STR(again[i]));
    }
    STAMP();
}

// ---- the restore points ----

namespace {

std::string_view nextLine(std::string_view& rest) {
    std::string_view line = ascii::takeLine(rest);
    if (line.ends_with('\n')) line.remove_suffix(1);
    return line;
}

struct Item {
    std::string caption;
    bool heading = false;
};

// What the menu shows for these lines.
std::vector<Item> itemsOf(std::string_view lines) {
    std::vector<Item> items;
    while (!lines.empty() && items.size() < undoItems) {
        const std::string_view line = nextLine(lines);
        const bool heading = line.starts_with('*');
        items.push_back({heading ? STRTRIM(line.substr(1)) : std::string(line), heading});
    }
    if (items.empty()) items.push_back({" ------ No backups ------ ", true});
    return items;
}

bool shows(const Object& menuArray, const std::vector<Item>& items) {
    if (ControlUbound(menuArray) != static_cast<int>(items.size())) return false;
    for (int i = 1; const Item& item : items) {
        const Object element = ControlElement(menuArray, i++);
        if (GetEnabled(element) == item.heading || GetCaption(element) != item.caption) return false;
    }
    return true;
}

// Leaves one element of the array and puts as many behind it as are needed.
void resize(const Object& menuArray, int count) {
    FRAME(POPULATEMENUITEMS);
    STAMP();
    if (const int last = ControlUbound(menuArray); last > 1)
        RemoveMenuitems(ControlElement(menuArray, 2), ControlElement(menuArray, last));
    STAMP();
    Assert(ControlLbound(menuArray) == 1 && ControlUbound(menuArray) == 1 && isMenuitem(menuArray));
    STAMP();
    if (count > 1) AddMenuitems(menuArray, std::string(static_cast<std::size_t>(count - 1), '\n'));
    for (int i = 1; i <= count; i++) {
        STAMP();
        Assert(isMenuitem(ControlElement(menuArray, i)));
    }
    STAMP();
}

}  // namespace

std::string APPENDDATEHEADINGS(const std::string& files) {
    FRAME(APPENDDATEHEADINGS);
    constexpr std::size_t dayLength = 10;  // of "YYYY-MM-DD"
    std::string items, last;
    for (std::string_view rest = files; !rest.empty();) {
        const std::string_view file = nextLine(rest);
        const std::string date = FILEGETEMBEDDEDDATE(file);
        if (date.empty()) continue;
        const std::string full = TIMEMAKEFULLSTR(date);
        const std::string day = ISDATESTRVALID(full) ? full.substr(0, dayLength) : std::string();
        if (day != last && !day.empty()) items += "* ------ " + day + " (" + DAYNAMEOF(full) + ") ------ \n";
        last = day;
        items.append(file) += '\n';
    }
    return items;
}

void POPULATEMENUITEMS(const Object& menuArray, const std::string& items) {
    FRAME(POPULATEMENUITEMS);
    STAMP();
    checkUndoItems();
    STAMP();
    const std::vector<Item> wanted = itemsOf(items);
    if (shows(menuArray, wanted)) return;
    STAMP();
    resize(menuArray, static_cast<int>(wanted.size()));
    for (int i = 1; const Item& item : wanted) {
        STAMP();
        const Object element = ControlElement(menuArray, i++);
        SetEnabled(element, !item.heading);
        SetCaption(element, item.caption);
    }
    STAMP();
}

// ---- the steps of the text ----

namespace {

// In Main the user means the window of before; where none is noted, the text.
bool worksInText() {
    if (!ISSHOWN(SDIEdit)) return false;
    const Object active = ActiveWindow();
    if (ISSDIWINDOW(active)) return active == SDIEdit;
    const std::string last = GetCaption(MAINCONTROL("lbllastactive"));
    return last.empty() || STREQUAL(last, SDIEdit.window());
}

}  // namespace

bool CANUNDOTYPING() {
    FRAME(CANUNDOTYPING);
    STAMP();
    return worksInText() && CanUndo(SDIEdit);
}

bool CANREDOTYPING() {
    FRAME(CANREDOTYPING);
    STAMP();
    return worksInText() && CanRedo(SDIEdit);
}

void UPDATEUNDOTYPINGITEMS() {
    FRAME(UPDATEUNDOTYPINGITEMS);
    if (!IsLoaded(Main)) return;
    STAMP();
    const bool dialog = DIALOGISINFRONT();
    SetEnabled(MAINCONTROL("edit_undo_typing"), dialog ? DIALOGCANUNDO() : CANUNDOTYPING());
    SetEnabled(MAINCONTROL("edit_redo_typing"), dialog ? DIALOGCANREDO() : CANREDOTYPING());
    STAMP();
}

void UPDATEUNDOMENU() {
    FRAME(UPDATEUNDOMENU);
    if (!IsLoaded(Main)) return;
    static std::string list, items;  // the headings of the list that was there last
    STAMP();
    std::string now = EDITWNDGETBACKUPLIST(EDITWNDGETFILENAME(SDIEdit));
    if (now != list) {
        items = APPENDDATEHEADINGS(now);
        list = std::move(now);
    }
    STAMP();
    POPULATEMENUITEMS(MAINCONTROL("edit_undo_01"), items);
    STAMP();
    UPDATEUNDOTYPINGITEMS();
}

}  // namespace tarn
