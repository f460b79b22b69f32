// SPDX-License-Identifier: GPL-3.0-or-later
//
//   the rows      what they show, and where they are
//   changing      from a row to the design
//   the user      keys, the search, the scroll bar
//   the window    opening, closing, and where it was
#include "ide/designer/propwindow.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/propshared.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/windows/focus.h"
#include "library/designer/propedit_rows.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>
#include <cstdint>
#include <vector>

MODULE("propwindow")

namespace tarn {
namespace {

constexpr int F6 = 117;
constexpr const char* Section = "Propertydlg";

Object part(std::string_view name) {
    return FINDCONTROL(PropertyDlg, name);
}

// ---- the rows ----

std::string numbersText(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers) text += STR(number) + " ";
    return text;
}

std::vector<int> shownObjects() {
    const std::string text = GetCaption(part("lblobjects"));
    std::vector<int> objects;
    for (int n = 1; n <= STRWORDCOUNT(text); ++n) objects.push_back(CVTI(STRWORD(text, n)));
    return objects;
}

// The selected objects' properties that have the search in their names.
std::vector<SharedProperty> foundProperties(const std::vector<int>& objects) {
    std::vector<SharedProperty> properties = SHAREDPROPERTIES(objects);
    const std::string search = STRUPPER(STRTRIM(GetText(part("edtsearch"))));
    std::erase_if(properties, [&](const SharedProperty& one) {
        return STRUPPER(one.name).find(search) == std::string::npos;
    });
    return properties;
}

std::string titleOf(const std::vector<int>& objects) {
    if (objects.size() > 1) return STR(static_cast<int>(objects.size())) + " objects";
    return objects.empty() ? "" : STRNAMECASE(OBJECTTITLE(objects[0]));
}

std::string noteFor(const std::vector<int>& objects) {
    if (objects.empty()) return "Nothing is selected.";
    if (objects[0] == -1) return "F2 opens the menu in its editor.";
    return GetText(part("edtsearch")).empty() ? "The objects have no property in common."
                                              : "No property has this in its name.";
}

// How many rows the window has room for.
int roomForRows() {
    constexpr int margin = 10;
    const int bottom = GetPosition(PropertyDlg, CLIENT_UNIT).h - margin, most = PROPERTYROWS(PropertyDlg);
    int rows = 1;
    while (rows < most) {
        const Rect line = GetPosition(PROPERTYROW(PropertyDlg, rows + 1).line, CLIENT_UNIT);
        if (line.y + line.h > bottom) break;
        ++rows;
    }
    return rows;
}

// The values take what the names leave of the width.
void layOut() {
    FRAME(LAYOUT);
    const int width = GetPosition(PropertyDlg, CLIENT_UNIT).w;
    const Rect frame = GetPosition(part("shpframe"), CLIENT_UNIT);
    const Rect bar = GetPosition(part("sclrows"), CLIENT_UNIT);
    const int right = width - frame.x - (GetVisible(part("sclrows")) ? bar.w + 2 : 0);  // of the frame
    const auto setPlace = [](const Object& control, auto change) {
        Rect at = GetPosition(control, CLIENT_UNIT);
        change(at);
        SetPosition(control, CLIENT_UNIT, at);
    };
    STAMP();
    for (int n = 1; n <= PROPERTYROWS(PropertyDlg); ++n) {
        const PropertyRow row = PROPERTYROW(PropertyDlg, n);
        setPlace(row.drop, [&](Rect& at) { at.x = right - at.w - 1; });
        const int end = GetPosition(row.drop, CLIENT_UNIT).x - 2;
        setPlace(row.value, [&](Rect& at) { at.w = std::max(end - at.x, 1); });
        setPlace(row.line, [&](Rect& at) { at.w = right - at.x; });
    }
    STAMP();
    const int drop = GetPosition(PROPERTYROW(PropertyDlg, 1).drop, CLIENT_UNIT).x;
    setPlace(part("shpframe"), [&](Rect& at) { at.w = right - at.x; });
    setPlace(part("shpcolumn2"), [&](Rect& at) { at.x = drop - 2; });
    for (const std::string_view name : {"edtsearch", "lbltitle", "lblnote"})
        setPlace(part(name), [&](Rect& at) { at.w = std::max(width - frame.x - at.x, 1); });
    const int bottom = GetPosition(PropertyDlg, CLIENT_UNIT).h - frame.x;
    setPlace(part("sclrows"), [&](Rect& at) {
        at.x = width - frame.x - at.w;
        at.h = std::max(bottom - at.y, at.w);
    });
    STAMP();
}

void showScrollBar(int properties, int rows) {
    const Object bar = part("sclrows");
    const int above = std::max(properties - rows, 0);
    SetMax(bar, above);
    if (GetValue(bar) > above) SetValue(bar, above);
    if (GetVisible(bar) == (above > 0)) return;
    SetVisible(bar, above > 0);
    layOut();
}

void showRow(int n, const SharedProperty& property, const std::string& before, bool sameObjects) {
    const PropertyRow row = PROPERTYROW(PropertyDlg, n);
    const bool same = sameObjects && GetVisible(row.value) && GetCaption(row.name) == property.name &&
                      GetText(row.options) == property.options && before == property.shown;
    if (!same) FILLPROPERTYROW(row, property.name, property.options, property.shown);
    SetHint(row.value, property.differs ? "The selected objects have different values" : "");
}

void fill(const std::vector<int>& objects) {
    FRAME(FILL);
    const std::vector<SharedProperty> properties = foundProperties(objects);
    const std::string now = numbersText(objects), before = GetCaption(part("lblshown"));
    const bool sameObjects = GetCaption(part("lblobjects")) == now;
    STAMP();
    const int count = static_cast<int>(properties.size()), room = roomForRows();
    showScrollBar(count, room);
    const int above = GetValue(part("sclrows")), rows = std::min(count - above, room);
    std::string shown;
    STAMP();
    for (int n = 1; n <= rows; ++n) {
        const SharedProperty& property = properties[static_cast<std::size_t>(above + n - 1)];
        showRow(n, property, STRLINE(before, n), sameObjects);
        shown += property.shown + "\n";
    }
    for (int n = rows + 1; n <= PROPERTYROWS(PropertyDlg); ++n) HIDEPROPERTYROW(PROPERTYROW(PropertyDlg, n));
    STAMP();
    FRAMEPROPERTYROWS(PropertyDlg, rows);
    SetCaption(part("lblobjects"), now);
    SetCaption(part("lblshown"), shown);
    SetCaption(part("lbltitle"), titleOf(objects));
    SetCaption(part("lblnote"), rows == 0 ? noteFor(objects) : "");
    for (const std::string_view name : {"shpframe", "shpcolumn1", "shpcolumn2"})
        SetVisible(part(name), rows > 0);
    STAMP();
}

int shownRows() {
    return STRLINES(GetCaption(part("lblshown")));
}

// ---- changing ----

std::string shownIn(int n) {
    return STRLINE(GetCaption(part("lblshown")), n);
}

// The text of a row counts as shown from now on.
void noteShown(int n, const std::string& value) {
    const std::string before = GetCaption(part("lblshown"));
    std::string after;
    for (int i = 1; i <= STRLINES(before); ++i) after += (i == n ? value : STRLINE(before, i)) + "\n";
    SetCaption(part("lblshown"), after);
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
        TELLPROPERTYPROBLEM(GetCaption(part("lbltitle")), name, problem);
        STAMP();
        return false;
    }
    noteShown(n, value);
    const bool changed = CHANGESHAREDPROPERTY(shownObjects(), name, value);
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
    const Object bar = part("sclrows");
    const int above = GetValue(bar);
    SetValue(bar, std::clamp(above, property - shownRows() + 1, property));
    if (GetValue(bar) != above) fill(shownObjects());
    SetFocus(PROPERTYROW(PropertyDlg, property - GetValue(bar) + 1).value);
}

// From a row (0: the search) to the next one whose value can be entered; up from the first one to the search.
void walk(int from, int step) {
    if (from > 0 && !keep(from)) return;
    const std::vector<SharedProperty> properties = foundProperties(shownObjects());
    int property = GetValue(part("sclrows")) + from - 1 + step;
    if (from == 0) property = 0;
    const auto isThere = [&] { return property >= 0 && property < static_cast<int>(properties.size()); };
    while (isThere() && STREQUAL(properties[static_cast<std::size_t>(property)].options, "CONST"))
        property += step;
    if (isThere()) return goTo(property);
    if (step < 0)
        SetFocus(part("edtsearch"));
    else
        Sound();
}

void search(const std::string& text) {
    SetText(part("edtsearch"), text);
    SetValue(part("sclrows"), 0);
    REFRESHPROPERTYWINDOW();
}

// First what was typed, then the search, then back to the design.
bool escape(int row) {
    if (row > 0 && takeBack(row)) return true;
    if (!GetText(part("edtsearch")).empty())
        search("");
    else if (IsLoaded(DialogDlg))
        Show(DialogDlg, false);
    return true;
}

bool keyPressed(const Object& control, int key) {
    const int row = rowOf(control);
    const bool inSearch = control == part("edtsearch");
    switch (key) {
    case KEY_UP: return row > 0 && (walk(row, -1), true);
    case KEY_DOWN: return (row > 0 || inSearch) && (walk(row, 1), true);
    case KEY_RETURN: return (row > 0 && (static_cast<void>(keep(row)), true)) || inSearch;
    case KEY_F4: return row > 0 && (choose(row), true);
    case KEY_F1: return DESIGNHELP(GETHELPFILE(), "Properties_Window"), true;
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
    if (control == part("edtsearch")) SetValue(part("sclrows"), 0);
    if (control != part("edtsearch") && control != part("sclrows")) return false;
    static_cast<void>(KEEPTYPEDPROPERTY());
    REFRESHPROPERTYWINDOW();
    return true;
}

// The other rows may be typed in by now.
bool left(const Object& control) {
    const int row = rowOf(control);
    return row == 0 || row > shownRows() || keep(row);
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
    set("_Position", STR(at.x) + " " + STR(at.y) + " " + STR(at.w) + " " + STR(at.h));
    STAMP();
}

void loaded() {
    WatchFocus(PropertyDlg);
    place();
    layOut();
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
    fill(SELECTEDOBJECTS());
    STAMP();
}

bool KEEPTYPEDPROPERTY() {
    FRAME(KEEPTYPEDPROPERTY);
    if (!IsLoaded(PropertyDlg)) return true;
    STAMP();
    bool kept = true;
    for (int n = 1; n <= shownRows(); ++n) kept = keep(n) && kept;
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
        layOut();
        REFRESHPROPERTYWINDOW();
        break;
    case CLOSE_EVENT: handled = closing(); break;
    default: break;
    }
    STAMP();
    return handled;
}

}  // namespace tarn
