// SPDX-License-Identifier: GPL-3.0-or-later
//
// Adding an object: its defaults, its name, its place, its size, and then into the lists.
#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/designer/objects/dlgobjects.h"
#include "ide/shell/windows.h"
#include "kernel/windows/resources.h"
#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

// An object before it is in a list.
struct NewObject {
    std::string type, option;
    std::string list;  // its properties
    int x = 0, y = 0;  // pixels of the window; -1 looks for a place

    [[nodiscard]] bool is(std::string_view other) const { return STREQUAL(type, other); }
    [[nodiscard]] bool hasOption(std::string_view word) const {
        const int length = static_cast<int>(std::min(option.size(), word.size()));
        return length > 0 && STREQUAL(STRLEFT(option, length), STRLEFT(word, length));
    }
};

// ---- name and option ----

void setName(NewObject& object) {
    FRAME(SETNAME);
    const bool menu = object.is("Menuitem");
    const std::string names =
        menu ? ResourceInfo(DIALOGGETFILENAME(), "MENU", "*").text : GETPROPVALUE(DATALIST(), "NAME");
    const std::string base = menu ? "Menu" : object.is("Iconlist") ? object.type : STRNAMECASE(object.type);
    STAMP();
    const std::string name = GETNEXTNAME(names, base);
    SETPROPVALUE("NAME", name, object.list);
    if (!menu && !object.is("Iconlist")) SETPROPVALUE("CAPTION", STRADDQUOTES(name), object.list);
}

void setOption(NewObject& object) {
    constexpr int horizontal = 4, vertical = 5;
    if (object.hasOption("horizontal"))
        SETPROPINT("ALIGNMENT", horizontal, object.list);
    else if (object.hasOption("vertical"))
        SETPROPINT("ALIGNMENT", vertical, object.list);
}

// ---- place and size ----

constexpr int Step = 8;  // resource units

bool isTaken(int x, int y) {
    for (int item = GetListCount(DATALIST()); item >= 2; --item) {
        const UnitRect other = GETPROPPOSITION(DESIGNITEM(item));
        if (other.x == x && other.y == y) return true;
    }
    return false;
}

// Down a slope until nothing stands there; the last place that is inside the dialog if all are taken.
UnitRect freePlace() {
    const UnitRect dialog = GETPROPPOSITION(DESIGNITEM(1));
    UnitRect place{0, 0, Step, Step};
    while (isTaken(place.x, place.y)) {
        if (place.x + 2 * Step > dialog.w) break;
        place.x += Step;
        place.y += Step;
        if (place.y + Step > dialog.h) place.y = 0;
    }
    return place;
}

UnitRect placeAt(const Object& window, int x, int y) {
    const Rect corner = CALCOFFSETS(window, DESIGNITEM(1), DIALOGGETMODE(), DIALOGGETMARGIN());
    return PIXELSTORCUNITS(window, Rect{x - corner.x, y - corner.y, 0, 0});
}

struct Size {
    std::string_view type;
    int w, h;  // resource units
};
constexpr Size sizes[] = {
    {"Label", 80, 12},      {"Edit", 80, 12},         {"Checkbox", 80, 12}, {"Radiobutton", 80, 12},
    {"Pushbutton", 55, 15}, {"Bitmapbutton", 16, 16}, {"Groupbox", 80, 64}, {"Combobox", 80, 64},
    {"Listbox", 80, 64},    {"Iconlist", 80, 64},     {"Image", 80, 64},    {"Shape", 24, 24},
};
constexpr Size lying{"", 80, 12}, standing{"", 12, 64};

void setSize(const Object& window, const NewObject& object, UnitRect& position) {
    constexpr Rect icon{0, 0, 32, 32};  // pixels
    const auto take = [&](int w, int h) { position.w = w, position.h = h; };
    const auto found = std::find_if(std::begin(sizes), std::end(sizes),
                                    [&](const Size& one) { return object.is(one.type); });
    if (found != std::end(sizes)) return take(found->w, found->h);
    if (object.is("Scrollbar") || object.is("Progressbar")) {
        const Size& size = object.option.empty() || object.hasOption("horizontal") ? lying : standing;
        return take(size.w, size.h);
    }
    if (!object.is("Icon")) return;
    const UnitRect units = PIXELSTORCUNITS(window, icon);
    take(units.w, units.h);
}

void setPlace(const Object& window, NewObject& object) {
    FRAME(SETPLACE);
    STAMP();
    if (object.is("Menuitem")) return SETPROPVALUE("POSITION", "0", object.list);
    UnitRect position = object.x == -1 && object.y == -1 ? freePlace() : placeAt(window, object.x, object.y);
    STAMP();
    setSize(window, object, position);
    SETPROPPOSITION(object.list, position);
    STAMP();
}

// ---- into the lists ----

// Why the dialog cannot have so many controls; empty if it can.
std::string obstacle(int controls) {
    const std::string type = GETPROPVALUE(DESIGNITEM(1), "TYPEOF");
    if (!STREQUAL(type, "Dialog"))
        return "Cannot add a control object, controls can only be added to Dialogs.\nThe type of the current "
               "window is " +
               type + ".";
    if (controls > MAX_CONTROLS)
        return "Cannot add a control object, this dialog has too many control objects.\nThe maximum number "
               "allowed is " +
               STR(MAX_CONTROLS) + ".\n";
    return {};
}

bool told(const std::string& problem) {
    if (!problem.empty()) MSGBOX(DialogEditorTitle, problem);
    return !problem.empty();
}

void addControl(const NewObject& object, int controls) {
    FRAME(ADDCONTROL);
    STAMP();
    if (told(obstacle(controls + 1))) return;
    ADDDESIGNITEM(DATALIST(), object.list);
    STAMP();
    SELECTOBJECT(GetListCount(DATALIST()));
    STAMP();
}

void addMenu(const NewObject& object) {
    FRAME(ADDMENU);
    std::string dialog = DESIGNITEM(1);
    const bool hasMenu = !GETPROPVALUE(dialog, "MENU").empty();
    STAMP();
    if (told(hasMenu ? "Cannot add a menu, this window already has a menu." : "")) return;
    const Object menulist = MENULIST();
    Clear(menulist);  // of a menu that the dialog does not name any more
    ADDDESIGNITEM(menulist, object.list);
    SETPROPVALUE("MENU", STRADDQUOTES(GETPROPVALUE(object.list, "NAME")), dialog);
    SETDESIGNITEM(DATALIST(), 1, dialog);
    STAMP();
    SELECTOBJECT(-1);
    STAMP();
}

}  // namespace

bool MAYADDCONTROLS(int more) {
    FRAME(MAYADDCONTROLS);
    STAMP();
    return !told(obstacle(GetListCount(DATALIST()) - 1 + more));
}

bool ADDOBJECT(const Object& window, const std::string& type, const std::string& option, int x, int y) {
    FRAME(ADDOBJECT);
    STAMP();
    if (!STREQUAL(GetTypeof(window), "Dialog") || FileSize(DIALOGGETFILENAME()) < 0) return false;
    STAMP();
    NewObject object{type, option, GETOBJECTDEFAULTS(type), x, y};
    if (object.list.empty()) return false;
    const int controls = STRLINES(GETPROPVALUE(DATALIST(), "NAME")) - 1;
    STAMP();
    setName(object);
    setOption(object);
    setPlace(window, object);
    STAMP();
    const bool added =
        DESIGNSTEP([&] { object.is("Menuitem") ? addMenu(object) : addControl(object, controls); });
    STAMP();
    DIALOGREDRAW();
    Show(window, false);
    STAMP();
    return added;
}

}  // namespace tarn
