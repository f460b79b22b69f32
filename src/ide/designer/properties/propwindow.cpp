// SPDX-License-Identifier: GPL-3.0-or-later
//
//   changing      from a row to the design
//   the user      keys, the search, the scroll bar
//   the window    opening, closing, and where it was
#include "ide/designer/properties/propwindow.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/properties/propshared.h"
#include "ide/designer/properties/propwindow_internal.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/windows/focus.h"
#include "library/designer/propedit_rows.h"
#include "library/designer/proputil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>
#include <cstdint>
#include <vector>

MODULE("propwindow")

namespace tarn {
namespace {

constexpr int F6 = 117, CtrlF = 0x1000 + 'F';
constexpr const char* Section = "Propertydlg";

// ---- changing ----

std::string shownIn(int n) {
    return STRLINE(GetCaption(PROPERTYPART("lblshown")), n);
}

// The text of a row counts as shown from now on.
void noteShown(int n, const std::string& value) {
    const std::string before = GetCaption(PROPERTYPART("lblshown"));
    std::string after;
    for (int i = 1; i <= STRLINES(before); ++i) after += (i == n ? value : STRLINE(before, i)) + "\n";
    SetCaption(PROPERTYPART("lblshown"), after);
    SetText(PROPERTYROW(PropertyDlg, n).value, value);
}

bool takeBack(int n) {
    const PropertyRow row = PROPERTYROW(PropertyDlg, n);
    const std::string shown = shownIn(n);
    if (GetText(row.value) == shown) return false;
    SetText(row.value, shown);
    return true;
}

// Boxes come last: they let other events in, which must find the row in order.
bool keep(int n) {
    FRAME(KEEP);
    const PropertyRow row = PROPERTYROW(PropertyDlg, n);
    const std::string name = GetCaption(row.name);
    std::string value = GetText(row.value);
    STAMP();
    if (value == shownIn(n)) return true;
    const std::string problem = PROPERTYPROBLEM(GetText(row.options), value);
    if (!problem.empty()) {
        takeBack(n);
        TELLPROPERTYPROBLEM(GetCaption(PROPERTYPART("lbltitle")), name, problem);
        STAMP();
        return false;
    }
    noteShown(n, value);
    const bool changed = CHANGESHAREDPROPERTY(SHOWNOBJECTS(), name, value);
    STAMP();
    if (changed)
        DIALOGREDRAW();
    else
        REFRESHPROPERTYWINDOW();
    STAMP();
    return true;
}

void choose(int n) {
    CHOOSEPROPERTY(PropertyDlg, PROPERTYROW(PropertyDlg, n));
    static_cast<void>(keep(n));
}

// ---- the user ----

int rowOf(const Object& control) {
    return PROPERTYROWOF(PropertyDlg, control, "edtvalue1");
}

// Scrolls so that a property has a row, and goes there. It is counted among those that are found.
void goTo(int property) {
    const Object bar = PROPERTYPART("sclrows");
    const int above = GetValue(bar);
    SetValue(bar, std::clamp(above, property - SHOWNROWS() + 1, property));
    if (GetValue(bar) != above) FILLPROPERTYWINDOW(SHOWNOBJECTS());
    SetFocus(PROPERTYROW(PropertyDlg, property - GetValue(bar) + 1).value);
}

// From a row (0: the search) to the next one whose value can be entered; up from the first one to the search.
void walk(int from, int step) {
    if (from > 0 && !keep(from)) return;
    const std::vector<SharedProperty> properties = FOUNDPROPERTIES(SHOWNOBJECTS());
    int property = GetValue(PROPERTYPART("sclrows")) + from - 1 + step;
    if (from == 0) property = 0;
    const auto isThere = [&] { return property >= 0 && property < static_cast<int>(properties.size()); };
    while (isThere() && STREQUAL(properties[static_cast<std::size_t>(property)].options, "CONST"))
        property += step;
    if (isThere()) return goTo(property);
    if (step < 0)
        SetFocus(PROPERTYPART("edtsearch"));
    else
        Sound();
}

void search(const std::string& text) {
    SetText(PROPERTYPART("edtsearch"), text);
    SetValue(PROPERTYPART("sclrows"), 0);
    REFRESHPROPERTYWINDOW();
}

// First what was typed, then the search, then back to the design.
bool escape(int row) {
    if (row > 0 && takeBack(row)) return true;
    if (!GetText(PROPERTYPART("edtsearch")).empty())
        search("");
    else if (IsLoaded(DialogDlg))
        Show(DialogDlg, false);
    return true;
}

bool keyPressed(const Object& control, int key) {
    const int row = rowOf(control);
    const bool inSearch = control == PROPERTYPART("edtsearch");
    switch (key) {
    case KEY_UP: return row > 0 && (walk(row, -1), true);
    case KEY_DOWN: return (row > 0 || inSearch) && (walk(row, 1), true);
    case KEY_RETURN: return (row > 0 && (static_cast<void>(keep(row)), true)) || inSearch;
    case KEY_F4: return row > 0 && (choose(row), true);
    case KEY_F1: return DESIGNHELP(GETHELPFILE(), "Properties_Window"), true;
    case CtrlF: return SetFocus(PROPERTYPART("edtsearch")), true;
    case F6: return KEEPTYPEDPROPERTY() && IsLoaded(DialogDlg) ? (Show(DialogDlg, false), true) : true;
    case KEY_ESCAPE: return escape(row);
    default: return false;
    }
}

bool pressed(const Object& control) {
    const int row = PROPERTYROWOF(PropertyDlg, control, "btndrop1");
    if (row > 0) choose(row);
    return row > 0;
}

bool changed(const Object& control) {
    if (control == PROPERTYPART("edtsearch")) SetValue(PROPERTYPART("sclrows"), 0);
    if (control != PROPERTYPART("edtsearch") && control != PROPERTYPART("sclrows")) return false;
    static_cast<void>(KEEPTYPEDPROPERTY());
    REFRESHPROPERTYWINDOW();
    return true;
}

// The other rows may be typed in by now.
bool left(const Object& control) {
    const int row = rowOf(control);
    return row == 0 || row > SHOWNROWS() || keep(row);
}

// ---- the window ----

std::string setting(std::string_view key) {
    return PROFILESTRGET(GETIDEINIFILE(), Section, key);
}

void set(std::string_view key, const std::string& value) {
    PROFILESTRPUT(GETIDEINIFILE(), Section, key, value);
}

int numberIn(const std::string& text, int word) {
    bool ok = false;
    const int number = CVTI(STRWORD(text, word), ok);
    return ok ? number : 0;
}

// Where it was last, if that is still on the screen; at first at the right edge.
void place() {
    FRAME(PLACE);
    constexpr int gap = 20, least = 120;
    const Rect screen = ScreenSize();
    Rect frame = GetPosition(PropertyDlg, WINDOW_UNIT);
    frame.h = std::min(frame.h, screen.h - 2 * gap);
    frame.x = screen.x + std::max(screen.w - frame.w - gap, 0);
    frame.y = screen.y + std::max(screen.h - frame.h, 0) / 3;
    const std::string text = setting("_Position");
    STAMP();
    const Rect last{numberIn(text, 1), numberIn(text, 2), numberIn(text, 3), numberIn(text, 4)};
    const auto right = std::int64_t{last.x} + last.w;
    const bool isSeen = last.x < screen.x + screen.w - gap && last.y < screen.y + screen.h - gap &&
                        right > screen.x + gap && last.y >= screen.y;
    if (isSeen && last.w >= least && last.h >= least) frame = last;
    SetMinPosition(PropertyDlg, Rect{0, 0, least, least});
    SetPosition(PropertyDlg, WINDOW_UNIT, frame);
    STAMP();
}

void notePlace() {
    FRAME(NOTEPLACE);
    const Rect at = GetPosition(PropertyDlg, WINDOW_UNIT);
    STAMP();
    set("_Position", POSITIONTEXT(at));
    STAMP();
}

void loaded() {
    TakeKeys(PropertyDlg, {CtrlF});
    place();
    LAYOUTPROPERTYWINDOW();
    REFRESHPROPERTYWINDOW();
}

bool closing() {
    if (!KEEPTYPEDPROPERTY()) return true;
    notePlace();
    set("Shown", "0");
    return false;
}

const RegisteredWindow registered("PropertyDlg", PROPERTYDLG);

}  // namespace

void REFRESHPROPERTYWINDOW() {
    FRAME(REFRESHPROPERTYWINDOW);
    if (!IsLoaded(PropertyDlg)) return;
    STAMP();
    FILLPROPERTYWINDOW(SELECTEDOBJECTS());
    STAMP();
}

bool KEEPTYPEDPROPERTY() {
    FRAME(KEEPTYPEDPROPERTY);
    if (!IsLoaded(PropertyDlg)) return true;
    STAMP();
    bool kept = true;
    for (int n = 1; n <= SHOWNROWS(); ++n) kept = keep(n) && kept;
    STAMP();
    return kept;
}

bool PROPERTYWINDOWVISIBLE() {
    FRAME(PROPERTYWINDOWVISIBLE);
    STAMP();
    return ISSHOWN(PropertyDlg);
}

bool GOTOPROPERTYWINDOW() {
    FRAME(GOTOPROPERTYWINDOW);
    STAMP();
    if (!ISSHOWN(PropertyDlg)) return false;
    Show(PropertyDlg, false);
    STAMP();
    return true;
}

void PROPERTYWINDOWOPEN() {
    FRAME(PROPERTYWINDOWOPEN);
    STAMP();
    if (setting("Shown") != "1") return;
    Load(PropertyDlg);
    STAMP();
    Show(PropertyDlg, false);
    STAMP();
}

void PROPERTYWINDOWCLOSE() {
    FRAME(PROPERTYWINDOWCLOSE);
    if (!IsLoaded(PropertyDlg)) return;
    STAMP();
    Unload(PropertyDlg);
    STAMP();
    set("Shown", "1");
}

void PROPERTYWINDOWTOGGLE() {
    FRAME(PROPERTYWINDOWTOGGLE);
    STAMP();
    if (ISSHOWN(PropertyDlg)) {
        Unload(PropertyDlg);
    } else if (ISSHOWN(DialogDlg)) {
        set("Shown", "1");
        PROPERTYWINDOWOPEN();
    } else {
        Sound();
    }
    STAMP();
    UPDATEMAINWINDOW();
}

bool PROPERTYDLG(const Object&, int event, const Object& control, int parameter) {
    FRAME(PROPERTYDLG);
    STAMP();
    bool handled = false;
    switch (event) {
    case LOAD_EVENT: loaded(); break;
    case KEYPRESS_EVENT: handled = keyPressed(control, parameter); break;
    case COMMAND_EVENT: handled = pressed(control); break;
    case CHANGE_EVENT: handled = changed(control); break;
    case LEAVE_EVENT: handled = left(control); break;
    case RESIZE_EVENT:
        LAYOUTPROPERTYWINDOW();
        REFRESHPROPERTYWINDOW();
        break;
    case CLOSE_EVENT: handled = closing(); break;
    default: break;
    }
    STAMP();
    return handled;
}

}  // namespace tarn
