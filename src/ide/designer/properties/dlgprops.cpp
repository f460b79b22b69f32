// SPDX-License-Identifier: GPL-3.0-or-later
//
// Editing the properties of one object in the sheet, and the menu in its editor. A property that the user leaves as it is
// keeps its line, byte for byte.
#include "ide/designer/dlgstep.h"
#include "ide/designer/menu/menuedit.h"
#include "ide/designer/objects/dlgobjects.h"
#include "ide/designer/properties/proplines.h"
#include "library/designer/propedit.h"
#include "library/designer/propedit_sheet.h"
#include "library/designer/proputil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>
#include <vector>

MODULE("dlgedit")

namespace tarn {
namespace {

// ---- the sheet ----

std::string joined(const std::vector<PropertyLine>& rows, std::string PropertyLine::*column) {
    std::string text;
    for (const PropertyLine& row : rows) text += row.*column + "\n";
    return text;
}

std::string rebuilt(const std::vector<PropertyLine>& rows, const std::string& values) {
    std::string list;
    int n = 0;
    for (const PropertyLine& row : rows) list += PROPERTYLINE(row, STRLINE(values, ++n)) + "\n";
    return list;
}

void editProperties(const Object& datalist, int index, const std::string& helpFile,
                    const std::string& helpKey) {
    FRAME(EDITPROPERTIES);
    const std::string list = GETDESIGNITEM(datalist, index);
    const std::vector<PropertyLine> rows = PROPERTYLINES(list, index == 1);
    const std::string title = STRNAMECASE(GETPROPVALUE(list, "NAME") + ":" + GETPROPVALUE(list, "TYPEOF"));
    std::string values = joined(rows, &PropertyLine::value);
    STAMP();
    if (!PROPERTIESDIALOG(title, helpFile, helpKey, joined(rows, &PropertyLine::name),
                          joined(rows, &PropertyLine::options), values))
        return;
    STAMP();
    SETDESIGNITEM(datalist, index, rebuilt(rows, values));
    STAMP();
    POSTEDITCHECK(datalist, index);
    STAMP();
}

// ---- the menu ----

void editMenu(const Object& datalist, const Object& menulist, const std::string& helpFile,
              const std::string& helpKey) {
    FRAME(EDITMENU);
    std::vector<std::string> items;
    for (int item = 1; item <= GetListCount(menulist); ++item) items.push_back(GETDESIGNITEM(menulist, item));
    STAMP();
    if (items.empty()) {
        items.push_back(GETOBJECTDEFAULTS("Menuitem"));
        SETPROPVALUE("POSITION", "0", items[0]);
        SETPROPVALUE("NAME", GETPROPVALUE(GETDESIGNITEM(datalist, 1), "MENU"), items[0]);
    }
    STAMP();
    if (!MENUEDITDIALOG("Menu Editor", helpFile, helpKey, items)) return;
    STAMP();
    Clear(menulist);
    for (const std::string& item : items) ADDDESIGNITEM(menulist, item);
    STAMP();
}

}  // namespace

bool EDITOBJECT(const Object& datalist, const Object& menulist, int index, const std::string& helpFile,
                const std::string& propertyHelpKey, const std::string& menuHelpKey) {
    FRAME(EDITOBJECT);
    STAMP();
    if (!STREQUAL(GetTypeof(datalist), "Listbox")) return false;
    STAMP();
    return DESIGNSTEP([&] {
        if (index >= 1 && index <= GetListCount(datalist))
            editProperties(datalist, index, helpFile, propertyHelpKey);
        if (index == -1) editMenu(datalist, menulist, helpFile, menuHelpKey);
    });
}

// ---- what an edit leaves ----

namespace {

struct Edited {
    const Object& list;
    int index;
    std::string properties;
};

void unresolvePicture(Edited& object) {
    const std::string picture = GETPROPVALUE(object.properties, "PICTURE");
    const std::string stored = FILEUNRESOLVEPATHS(picture, DESIGNFOLDERS());
    if (stored != picture) SETPROPVALUE("PICTURE", STRADDQUOTES(stored), object.properties);
}

// The lines of a single line need no bars.
void dropScrollbars(Edited& object) {
    if (GETPROPVALUE(object.properties, "MULTILINE") == "0" &&
        GETPROPVALUE(object.properties, "SCROLLBARS") != "0")
        SETPROPINT("SCROLLBARS", 0, object.properties);
}

void dropOtherDefaults(Edited& object) {
    if (GETPROPINT(object.properties, "DEFAULT") != 1) return;
    for (int item = 1; item <= GetListCount(object.list); ++item) {
        std::string other = GETDESIGNITEM(object.list, item);
        const bool isDefault =
            STREQUAL(GETPROPVALUE(other, "TYPEOF"), "Pushbutton") && GETPROPINT(other, "DEFAULT") == 1;
        if (item == object.index || !isDefault) continue;
        SETPROPINT("DEFAULT", 0, other);
        SETDESIGNITEM(object.list, item, other);
    }
}

void giveFont(Edited& object) {
    constexpr std::string_view font = "Microsoft Sans Serif";
    if (!GETPROPVALUE(object.properties, "FONTNAME").empty()) return;
    MSGBOX(DialogEditorTitle,
           "Warning - Invalid Fontname.\nThe dialog has no Fontname, because an empty string was entered.\n"
           "The Fontname will be auomatically set to the default font (" +
               std::string(font) + ").\n");
    SETPROPVALUE("FONTNAME", STRADDQUOTES(font), object.properties);
}

struct Fix {
    std::string_view type;
    void (*apply)(Edited& object);
};
constexpr Fix fixes[] = {{"Bitmapbutton", unresolvePicture}, {"Icon", unresolvePicture},
                         {"Image", unresolvePicture},        {"Edit", dropScrollbars},
                         {"Pushbutton", dropOtherDefaults},  {"Dialog", giveFont}};

void warnOfName(const Object& datalist, int index, bool isDialog) {
    FRAME(WARNOFNAME);
    const Object menulist = FINDCONTROL(datalist.owner(), "menulist");
    const NameFault bad = CHECKBADNAMES(datalist, menulist, index, false, BadNames);
    STAMP();
    if (!bad.message.empty())
        MSGBOX(DialogEditorTitle, "Warning - Invalid Name\n" + bad.message +
                                      "The index of the invalid name = " + STR(bad.index) + ".");
    STAMP();
    if (isDialog) return;
    const NameFault twice = CHECKDUPLICATES(datalist, menulist, index, false);
    STAMP();
    if (!twice.message.empty())
        MSGBOX(DialogEditorTitle, "Warning - Duplicate Name\n" + twice.message +
                                      "The index of the duplicate = " + STR(twice.index) + ".");
    STAMP();
}

}  // namespace

void POSTEDITCHECK(const Object& datalist, int index) {
    FRAME(POSTEDITCHECK);
    STAMP();
    if (!STREQUAL(GetTypeof(datalist), "Listbox") || index < 1 || index > GetListCount(datalist)) return;
    STAMP();
    Edited object{datalist, index, GETDESIGNITEM(datalist, index)};
    const std::string before = object.properties, type = GETPROPVALUE(before, "TYPEOF");
    for (const Fix& fix : fixes)
        if (STREQUAL(type, fix.type)) fix.apply(object);
    STAMP();
    if (object.properties != before) SETDESIGNITEM(datalist, index, object.properties);
    STAMP();
    warnOfName(datalist, index, STREQUAL(type, "Dialog"));
}

}  // namespace tarn
