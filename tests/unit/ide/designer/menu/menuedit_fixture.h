// SPDX-License-Identifier: GPL-3.0-or-later
//
// The menu editor, as the environment's resources have it, on the object model alone.
#pragma once

#include "ide/designer/menu/menuedit.h"
#include "ide/designer/menu/menuitems.h"
#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "support/doings_fixture.h"

namespace tarn {

class MenuEditor : public DoingsTest {
protected:
    static constexpr int KeyEnd = 35, KeyHome = 36;
    using Strings = std::vector<std::string>;

    Strings items;

    void SetUp() override {
        DoingsTest::SetUp();
        REGISTERWINDOWS();
    }
    void TearDown() override {
        EXPECT_FALSE(IsLoaded(MenuEditDlg));
        MENUITEMVIEW = true;
        DoingsTest::TearDown();
    }

    // "level|caption|name" as the property list that a resource file gives.
    static std::string item(const std::string& text, const std::string& more = "") {
        const std::size_t first = text.find('|'), second = text.rfind('|');
        return "NAME=" + text.substr(second + 1) + "\nTYPEOF=Menuitem\nPOSITION=" + text.substr(0, first) +
               "\nCAPTION=\"" + text.substr(first + 1, second - first - 1) +
               "\"\nCHECKED=0\nENABLED=1\nVISIBLE=1\nSHORTCUT=\"\"\nPICTURE=\"\"\nARRAY=\nHINT=\"\"\n" + more;
    }
    void give(const Strings& rows) {
        items = {"NAME=MainMenu\nTYPEOF=Menuitem\nPOSITION=0\n"};
        for (const std::string& row : rows) items.push_back(item(row));
    }
    // "level|caption|name" of each item.
    static Strings brief(const Strings& lists) {
        Strings rows;
        for (std::size_t n = 1; n < lists.size(); ++n)
            rows.push_back(GETPROPVALUE(lists[n], "POSITION") + "|" + GETPROPVALUE(lists[n], "CAPTION") +
                           "|" + GETPROPVALUE(lists[n], "NAME"));
        return rows;
    }
    bool edit(std::function<void()> doing) {
        doings.push_back(std::move(doing));
        return MENUEDITDIALOG("Menu Editor", "help.htm", "Menu Editor", items);
    }
    // Opens, does it, and leaves by Cancel.
    void look(const std::function<void()>& doing) {
        EXPECT_FALSE(edit([doing] {
            doing();
            press("pushbutton2");
        }));
    }

    static Object part(const std::string& name) { return FINDCONTROL(MenuEditDlg, name); }
    static void press(const std::string& name) { platform::userCommand(*platform::findControl(part(name))); }
    static bool key(int code, const std::string& focus = "listbox1") {
        return platform::userKey(*platform::findWindow(MenuEditDlg), platform::findControl(part(focus)),
                                 code);
    }
    static bool mouseDown() {
        return platform::userMouseDown(*platform::findControl(part("listbox1")), 0, 0);
    }
    static void pick(int row) { platform::userRow(*platform::findControl(part("listbox1")), row); }
    static void enter(const std::string& edit, const std::string& text) {
        SetText(part(edit), text);
        platform::userChange(*platform::findControl(part(edit)));
    }
    static void enterItem(const std::string& caption, const std::string& name) {
        enter("edit1", caption);
        enter("edit4", name);
    }
    static std::string text(const std::string& edit) { return GetText(part(edit)); }
    static std::string action() { return GetCaption(part("label5")); }
    static std::string current() { return GetCaption(part("label6")); }
    static bool changed() { return GetChecked(part("checkbox1")); }
    static int row() { return GetListIndex(part("listbox1")); }
    static Strings rowsOf(const std::string& list) {
        Strings rows;
        for (int n = 1; n <= GetListCount(part(list)); ++n) rows.push_back(GetList(part(list), n));
        return rows;
    }
    static Strings shown() { return rowsOf("listbox1"); }
    static Strings now() {
        Strings lists = rowsOf("data1");
        lists.insert(lists.begin(), "");
        return brief(lists);
    }
    static Strings some() {
        return {"1|&File|", "2|&Open...|file_open", "2||", "2|E&xit|file_exit", "1|&Help|help"};
    }

    static std::string wrongName(const std::string& name) {
        return "The following Name property is not allowed:\n\n\t'" + name + "'\n\n";
    }
    static constexpr const char* Again = "Please fix up the Name property, then try again.";
    static constexpr const char* NoCaption =
        "This menu item is not valid. It should have a Caption property.";
    static std::string takenName(const std::string& name) {
        return wrongName(name) + "It is already being used for another menu item.\n" + Again;
    }
    static std::string noSymbol(const std::string& name) {
        return wrongName(name) +
               "Names should start with a letter and contain letters, digits or the underscore.\n" + Again;
    }
    static std::string noName(const std::string& caption) {
        return "The following Menuitem does not have a name:\n\n\t'" + caption +
               "'\n\nPlease choose a name for this Menuitem. All Menuitems must have a name,\n"
               "except for separators and menuitems that lead to popup menus.";
    }
};

}  // namespace tarn
