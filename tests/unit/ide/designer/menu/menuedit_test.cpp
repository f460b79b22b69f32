// SPDX-License-Identifier: GPL-3.0-or-later
//
// The menu editor, as the environment's resources have it, on the object model alone.
#include "ide/designer/menu/menuedit.h"
#include "ide/designer/menu/menuitems.h"
#include "kernel/windows/resources.h"
#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "support/doings_fixture.h"

#include <random>

namespace tarn {
namespace {

constexpr int KeyEnd = 35, KeyHome = 36;

class MenuEditor : public DoingsTest {
protected:
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

TEST_F(MenuEditor, ShowsTheItemsWithTheirIndentsAndTheFirstOneSelected) {
    give(some());
    look([] {
        EXPECT_EQ(GetCaption(MenuEditDlg), "Menu Editor");
        EXPECT_EQ(shown(), (Strings{"&File", "...&Open...", "...-----", "...E&xit", "&Help"}));
        EXPECT_EQ(rowsOf("data1").size(), 5u);
        EXPECT_EQ(row(), 1);
        EXPECT_EQ(current(), "1");
        EXPECT_EQ(action(), "");
        EXPECT_FALSE(changed());
        EXPECT_EQ(text("edit1") + "," + text("edit2") + "," + text("edit3") + "," + text("edit4"),
                  "&File,0,1,");
        for (const char* hidden : {"data1", "label6", "checkbox1", "helpkey", "helpfile"})
            EXPECT_FALSE(GetVisible(part(hidden))) << hidden;
    });
    EXPECT_EQ(brief(items), some());
}

TEST_F(MenuEditor, ShowsThePropertyListsInstead) {
    give({"2|a|b"});
    MENUITEMVIEW = false;
    look([this] { EXPECT_EQ(shown()[0] + "\n", items[1]); });
}

TEST_F(MenuEditor, FormsOfAnItem) {
    const struct {
        const char *item, *shown;
    } forms[] = {{"1|File|x", "File"},
                 {"2|File|", "...File"},
                 {"3|a|b", "......a"},
                 {"1||", "-----"},
                 {"2||", "...-----"},
                 {"0|a|b", "a"},
                 {"-3|a|b", "a"},
                 {"2||named", "..."},
                 {"x|a|b", "a"},
                 {"1|-|", "-"},
                 {"1|\xe4\"\xff|n", "\xe4\"\xff"},
                 {"1|Open\tCtrl+O|n", "Open\tCtrl+O"}};
    for (const auto& form : forms) EXPECT_EQ(PROPLISTTOLISTITEM(item(form.item)), form.shown) << form.item;
    EXPECT_EQ(PROPLISTTOLISTITEM(""), "-----");
    EXPECT_LE(PROPLISTTOLISTITEM(item("2147483647|a|b")).size(), 1000u);
}

TEST_F(MenuEditor, AnEmptyListOpensNothing) {
    items.clear();
    EXPECT_FALSE(MENUEDITDIALOG("Menu Editor", "", "", items));
    EXPECT_TRUE(items.empty());
}

TEST_F(MenuEditor, TheMenuAloneHasNoRows) {
    give({});
    look([] {
        EXPECT_EQ(row(), 0);
        EXPECT_EQ(current(), "0");
        EXPECT_EQ(text("edit1") + "," + text("edit2") + "," + text("edit3") + "," + text("edit4"), ",0,1,");
        for (const char* button :
             {"upbutton", "downbutton", "indentbutton", "unindentbutton", "deletebutton"})
            press(button);
        EXPECT_FALSE(changed());
        EXPECT_EQ(row(), 0);
    });
    EXPECT_FALSE(edit([] { press("pushbutton1"); })) << "nothing has changed";
    EXPECT_EQ(items.size(), 1u);
}

TEST_F(MenuEditor, OkWithoutAChangeGivesFalseAndTheSameBytes) {
    give({"1|a|b"});
    items[1] = "HINT=odd\nname=b\nCAPTION=a\nPOSITION=1 0 0 0\nUNKNOWN==x";
    const Strings before = items;
    EXPECT_FALSE(edit([] {
        press("pushbutton1");
        EXPECT_FALSE(IsLoaded(MenuEditDlg) && GetVisible(MenuEditDlg));
    }));
    EXPECT_EQ(items, before);
    EXPECT_TRUE(asked.empty()) << lastText();
}

TEST_F(MenuEditor, CancelEscapeAndCloseLeaveTheListByteForByte) {
    const std::function<void()> ways[] = {[] { press("pushbutton2"); }, [] { key(KEY_ESCAPE, "edit1"); },
                                          [] { platform::userClose(*platform::findWindow(MenuEditDlg)); }};
    for (const auto& leave : ways) {
        give(some());
        const Strings before = items;
        EXPECT_FALSE(edit([&leave] {
            press("deletebutton");
            enterItem("x", "y");
            press("addbutton");
            press("indentbutton");
            EXPECT_TRUE(changed());
            leave();
        }));
        EXPECT_EQ(items, before);
    }
}

TEST_F(MenuEditor, OkReplacesTheItemsAndKeepsTheMenu) {
    give(some());
    const std::string menu = items[0];
    EXPECT_TRUE(edit([] {
        enter("edit1", "&Files");
        press("pushbutton1");
    }));
    EXPECT_EQ(items[0], menu);
    Strings expected = some();
    expected[0] = "1|&Files|";
    EXPECT_EQ(brief(items), expected);
    for (std::size_t n = 1; n < items.size(); ++n) EXPECT_EQ(items[n].back(), '\n');
}

// ---- the checks ----

TEST_F(MenuEditor, WhatIsWrongWithAnItemIsToldInItsOrder) {
    const struct {
        const char *caption, *name;
        std::string text;
    } cases[] = {{"-", "1 no symbol", ""},
                 {"-----", "help", ""},
                 {"", "", ""},
                 {"  ", " \t ", ""},
                 {"&File", "", ""},
                 {"&File", "File_1", ""},
                 {"&File", "  File_1\t", ""},
                 {"a", "1a", noSymbol("1a")},
                 {"a", "a-b", noSymbol("a-b")},
                 {"a", "_a", noSymbol("_a")},
                 {"", "a b", noSymbol("a b")},
                 {"a", "\xe4", noSymbol("\xe4")},
                 {"a", "help", takenName("help")},
                 {"a", "HELP", takenName("HELP")},
                 {"", "Help", takenName("Help")},
                 {"", "fine", NoCaption},
                 {"", "-", noSymbol("-")}};
    give(some());
    look([&] {
        for (const auto& one : cases) {
            asked.clear();
            enterItem(one.caption, one.name);
            const MenuItemCheck check = CHECKMENUITEMPROPS(1);
            EXPECT_EQ(check.ok, one.text.empty()) << one.caption << "," << one.name;
            EXPECT_EQ(lastText(), one.text);
            EXPECT_EQ(check.name, STRTRIM(one.name));
            EXPECT_EQ(check.caption, STRTRIM(one.caption));
            for (const auto& box : asked) EXPECT_EQ(box.title, "Menu Editor");
        }
    });
}

TEST_F(MenuEditor, AHitOnTheRowItselfDoesNotCount) {
    give({"1|a|same", "1|b|other", "1|c|SAME"});
    look([this] {
        enterItem("b", "other");
        EXPECT_TRUE(CHECKMENUITEMPROPS(2).ok);
        EXPECT_FALSE(CHECKMENUITEMPROPS(-1).ok) << "a new item has no row";
        enterItem("a", "same");
        EXPECT_FALSE(CHECKMENUITEMPROPS(1).ok) << "the row hides a later one";
        EXPECT_FALSE(CHECKMENUITEMPROPS(3).ok);
        EXPECT_EQ(asked.size(), 3u);
    });
}

TEST_F(MenuEditor, SwitchesAreNoughtOrOne) {
    const struct {
        const char *text, *kept, *stored;
    } cases[] = {{"0", "0", "0"}, {"1", "1", "1"},  {" 1 ", "0", "0"}, {"2", "2", "0"},   {"", "0", "0"},
                 {"x", "0", "0"}, {"1x", "0", "0"}, {"-1", "-1", "0"}, {"01", "01", "0"}, {"\xff", "0", "0"}};
    give({"1|a|b"});
    look([&] {
        for (const char* field : {"edit2", "edit3"})
            for (const auto& one : cases) {
                enter(field, one.text);
                EXPECT_EQ(text(field), one.kept) << one.text;
                const MenuItemCheck check = CHECKMENUITEMPROPS(1);
                EXPECT_EQ(field == std::string("edit2") ? check.checked : check.enabled, one.stored)
                    << one.text;
            }
    });
}

TEST_F(MenuEditor, AWrongItemIsNotStoredAndNotLeft) {
    give(some());
    look([this] {
        enter("edit4", "no symbol");
        for (const int code : {int{KEY_UP}, int{KEY_DOWN}, KeyHome, KeyEnd}) EXPECT_TRUE(key(code)) << code;
        EXPECT_EQ(asked.size(), 4u);
        EXPECT_FALSE(key(KEY_DOWN, "edit1")) << "the keys of other controls are their own";
        EXPECT_FALSE(key(KEY_LEFT));
        EXPECT_TRUE(mouseDown());
        EXPECT_EQ(asked.size(), 5u);
        EXPECT_EQ(row(), 1);
        pick(3);
        EXPECT_EQ(asked.size(), 6u) << "however the selection was moved";
        EXPECT_EQ(row(), 1);
        press("pushbutton1");
        EXPECT_EQ(asked.size(), 7u);
        EXPECT_TRUE(GetVisible(MenuEditDlg));
        EXPECT_EQ(text("edit4"), "no symbol") << "what was typed stays";
        EXPECT_EQ(now(), some());
        EXPECT_FALSE(changed());
    });
}

TEST_F(MenuEditor, TheItemIsStoredBeforeTheSelectionMoves) {
    give(some());
    look([] {
        enterItem("&Datei", "datei");
        enter("edit2", "1");
        enter("edit3", "0");
        EXPECT_FALSE(key(KEY_DOWN)) << "the list moves its selection itself";
        EXPECT_EQ(action(), "Updating 1");
        EXPECT_TRUE(changed());
        EXPECT_EQ(now()[0], "1|&Datei|datei");
        EXPECT_EQ(shown()[0], "&Datei");
        EXPECT_EQ(GETPROPVALUE(rowsOf("data1")[0], "CHECKED") + GETPROPVALUE(rowsOf("data1")[0], "ENABLED"),
                  "10");
        pick(2);
        EXPECT_EQ(text("edit1"), "&Open...");
        EXPECT_EQ(current(), "2");
        enter("edit1", "O&pen");
        EXPECT_FALSE(mouseDown());
        EXPECT_EQ(current(), "2") << "the row that is still selected";
        EXPECT_EQ(now()[1], "2|O&pen|file_open");
        pick(4);
        EXPECT_EQ(action(), "Updating 2");
    });
}

TEST_F(MenuEditor, AMouseDownWithoutACurrentRowRemembersTheSelection) {
    give(some());
    look([this] {
        SetCaption(part("label6"), "0");
        enter("edit4", "no symbol");
        EXPECT_FALSE(mouseDown());
        EXPECT_EQ(current(), "1");
        EXPECT_TRUE(asked.empty());
        enter("edit4", "");
    });
}

TEST_F(MenuEditor, NothingIsUpdatedWhereNothingDiffers) {
    give({"1|  blanks around  |name", "1|b|c"});
    items[1] = STRREPLACE(items[1], "NAME=name", "NAME= name ");
    EXPECT_FALSE(edit([] {
        EXPECT_FALSE(key(KEY_DOWN));
        EXPECT_EQ(action(), "");
        enter("edit1", "blanks around");
        EXPECT_FALSE(key(KEY_DOWN));
        EXPECT_EQ(action(), "");
        press("pushbutton1");
    }));
}

TEST_F(MenuEditor, WhatTheEditorDoesNotShowSurvivesEveryEdit) {
    give({"1|a|a", "1|b|b", "1|c|c"});
    const std::string more =
        "SHORTCUT=\"Ctrl+\\0\"\nHINT=\"a\\nb = \"c\"\"\nPICTURE=\"<RESOURCEDIR>\\x.bmp\"\nODD=\xff=\n";
    items[2] = "NAME=b\nTYPEOF=Menuitem\nPOSITION=1\nCAPTION=\"b\"\nCHECKED=0\nENABLED=1\n" + more;
    EXPECT_TRUE(edit([] {
        pick(2);
        enterItem("other", "other");
        enter("edit2", "1");
        press("indentbutton");
        press("upbutton");
        press("downbutton");
        press("downbutton");
        press("indentbutton");
        press("unindentbutton");
        press("pushbutton1");
    }));
    EXPECT_EQ(brief(items), (Strings{"1|a|a", "1|c|c", "2|other|other"}));
    EXPECT_EQ(items[3],
              "NAME=other\nTYPEOF=Menuitem\nPOSITION=2\nCAPTION=\"other\"\nCHECKED=1\nENABLED=1\n" + more);
}

TEST_F(MenuEditor, CaptionsOfAnyBytesComeBackAsTheyAre) {
    for (const std::string caption : {"\"quoted\"", "\"", "\"\"", "Open\tCtrl+O", "\xc3\xa4\xff\x80", "a\\nb",
                                      "a=b\"c", "\\", "x\rx", "&&&", "CAPTION=x"}) {
        give({"1|old|name"});
        EXPECT_TRUE(edit([&] {
            enter("edit1", caption);
            press("pushbutton1");
        }));
        EXPECT_EQ(GETPROPVALUE(items[1], "CAPTION"), caption);
        EXPECT_EQ(GETPROPVALUE(items[1], "HINT"), "");
        EXPECT_FALSE(edit([&] {
            EXPECT_EQ(text("edit1"), caption);
            press("pushbutton1");
        })) << caption;
    }
}

TEST_F(MenuEditor, ALineEndInAFieldBecomesABlank) {
    give({"1|old|name"});
    EXPECT_TRUE(edit([&] {
        enter("edit1", std::string("a\nNAME=x\0y", 10));
        press("pushbutton1");
    }));
    EXPECT_EQ(brief(items), (Strings{"1|a NAME=x y|name"}));
}

TEST_F(MenuEditor, PropertiesThatAnItemLacksAreAdded) {
    give({"1|a|b"});
    items[1] = "TYPEOF=Menuitem\nCAPTION=a";
    EXPECT_TRUE(edit([&] {
        enterItem("a", "name");
        press("indentbutton");
        press("unindentbutton");
        press("pushbutton1");
    }));
    EXPECT_EQ(brief(items), (Strings{"1|a|name"}));
    EXPECT_EQ(GETPROPVALUE(items[1], "ENABLED"), "1");
}

// ---- adding and deleting ----

TEST_F(MenuEditor, AddsBeforeTheRowAtItsLevel) {
    give(some());
    EXPECT_TRUE(edit([] {
        pick(2);
        enterItem("&New", "file_new");
        enter("edit2", "1");
        press("addbutton");
        EXPECT_EQ(action(), "Adding 2");
        EXPECT_EQ(row(), 2);
        EXPECT_EQ(current(), "2");
        EXPECT_TRUE(changed());
        EXPECT_EQ(shown()[1], "...&New");
        EXPECT_EQ(now()[2], "2|&Open...|file_open") << "the item that was shown before stays as it was";
        enterItem("", "");
        enter("edit2", "0");
        press("addbutton");
        EXPECT_EQ(shown()[1], "...-----");
        press("pushbutton1");
    }));
    Strings expected = some();
    expected.insert(expected.begin() + 1, {"2||", "2|&New|file_new"});
    EXPECT_EQ(brief(items), expected);
    EXPECT_EQ(GETPROPVALUE(items[3], "CHECKED"), "1");
    EXPECT_EQ(GETPROPNAMES(items[3]), GETPROPNAMES(GETOBJECTDEFAULTS("Menuitem")));
    EXPECT_EQ(GETPROPVALUE(items[3], "TYPEOF"), "Menuitem");
}

TEST_F(MenuEditor, TheFirstItemOfAMenuHasLevelOne) {
    give({});
    EXPECT_TRUE(edit([] {
        enterItem("&File", "file");
        press("addbutton");
        EXPECT_EQ(action(), "Adding 1");
        press("pushbutton1");
    }));
    EXPECT_EQ(brief(items), (Strings{"1|&File|file"}));
    EXPECT_EQ(GETPROPVALUE(items[1], "ENABLED"), "1");
}

TEST_F(MenuEditor, AWrongItemIsNotAdded) {
    give(some());
    look([this] {
        pick(5);
        press("addbutton");
        EXPECT_EQ(lastText(), takenName("help")) << "its own name is another's for a new item";
        enterItem("", "fine");
        press("addbutton");
        EXPECT_EQ(lastText(), NoCaption);
        EXPECT_EQ(now(), some());
        EXPECT_FALSE(changed());
    });
}

TEST_F(MenuEditor, TheItemBeyondTheLargestMenuIsRefused) {
    Strings rows;
    for (int n = 1; n < MAX_CONTROLS; ++n) rows.push_back("1|c" + STR(n) + "|n" + STR(n));
    give(rows);
    EXPECT_TRUE(edit([this] {
        enterItem("last", "last");
        press("addbutton");
        EXPECT_EQ(shown().size(), 255u);
        EXPECT_TRUE(asked.empty());
        enterItem("one more", "no symbol");
        press("addbutton");
        EXPECT_EQ(
            lastText(),
            "Cannot add a menu item, this menu has too many items.\nThe maximum number allowed is 255.");
        EXPECT_EQ(shown().size(), 255u);
        enterItem("last", "last");
        press("pushbutton1");
    }));
    EXPECT_EQ(items.size(), 256u);
}

TEST_F(MenuEditor, DeletingSelectsTheNextRow) {
    give({"1|a|a", "1|b|b", "1|c|c"});
    EXPECT_TRUE(edit([this] {
        pick(2);
        enter("edit4", "no symbol");
        press("deletebutton");
        EXPECT_EQ(action(), "Deleting 2");
        EXPECT_TRUE(asked.empty());
        EXPECT_EQ(now(), (Strings{"1|a|a", "1|c|c"}));
        EXPECT_EQ(row(), 2);
        EXPECT_EQ(current(), "2");
        EXPECT_EQ(text("edit4"), "c");
        press("deletebutton");
        EXPECT_EQ(text("edit4"), "a");
        press("deletebutton");
        EXPECT_EQ(shown(), Strings{});
        EXPECT_EQ(current(), "0");
        EXPECT_EQ(text("edit1"), "");
        press("pushbutton1");
    }));
    EXPECT_EQ(items.size(), 1u);
}

// ---- moving ----

TEST_F(MenuEditor, MovesSwapRowsAndKeepTheSelectionOnTheItem) {
    give(some());
    look([] {
        press("upbutton");
        EXPECT_EQ(now(), some()) << "the first cannot go up";
        EXPECT_FALSE(changed());
        press("downbutton");
        EXPECT_EQ(action(), "Moving 1");
        EXPECT_EQ(row(), 2);
        EXPECT_EQ(current(), "2");
        EXPECT_TRUE(changed());
        EXPECT_EQ(shown(), (Strings{"...&Open...", "&File", "...-----", "...E&xit", "&Help"}));
        press("upbutton");
        EXPECT_EQ(action(), "Moving 2");
        EXPECT_EQ(now(), some());
        pick(5);
        press("downbutton");
        EXPECT_EQ(now(), some()) << "the last cannot go down";
        EXPECT_EQ(action(), "") << "the last action has been cleared";
    });
}

TEST_F(MenuEditor, WhatIsTypedMovesWithItsItem) {
    give({"1|a|a", "1|b|b"});
    EXPECT_TRUE(edit([] {
        enter("edit1", "changed");
        press("downbutton");
        press("indentbutton");
        press("pushbutton1");
    }));
    EXPECT_EQ(brief(items), (Strings{"1|b|b", "2|changed|a"}));
}

TEST_F(MenuEditor, LevelsGoFromOneToEleven) {
    give({"1|a|a", "10|b|b"});
    look([] {
        press("unindentbutton");
        EXPECT_EQ(now()[0], "1|a|a");
        EXPECT_FALSE(changed());
        pick(2);
        press("indentbutton");
        EXPECT_EQ(now()[1], "11|b|b");
        EXPECT_EQ(action(), "Indenting 2");
        press("indentbutton");
        EXPECT_EQ(now()[1], "11|b|b");
        EXPECT_EQ(action(), "");
        press("unindentbutton");
        EXPECT_EQ(action(), "Unindenting 2");
        EXPECT_EQ(shown()[1], std::string(9 * 3, '.') + "b");
    });
}

TEST_F(MenuEditor, TheCaptionOfTheButtonSaysWhatItDoes) {
    give({"1|a|a", "1|b|b"});
    look([] {
        for (const auto& [button, caption] : {std::pair("upbutton", "MOVE UP"),
                                              {"downbutton", "MOVE DOWN"},
                                              {"indentbutton", "INDENT"},
                                              {"unindentbutton", "UNINDENT"}})
            EXPECT_EQ(STRUPPER(STRDELCHARS(GetCaption(part(button)), "&")), caption);
        MOVEMENUITEMPROPS(2, "In&dEnT");
        EXPECT_EQ(now()[1], "2|b|b");
        MOVEMENUITEMPROPS(2, "INDENT ");
        EXPECT_EQ(now()[1], "2|b|b");
        MOVEMENUITEMPROPS(0, "MOVE DOWN");
        MOVEMENUITEMPROPS(3, "MOVE UP");
        MOVEMENUITEMPROPS(-1, "INDENT");
        EXPECT_EQ(now(), (Strings{"1|a|a", "2|b|b"}));
    });
}

TEST_F(MenuEditor, CharactersAreTakenOutOfATextAltogether) {
    EXPECT_EQ(STRDELCHARS("&Move &&Up", "&"), "Move Up");
    EXPECT_EQ(STRDELCHARS("abcabc", "ca"), "bb");
    EXPECT_EQ(STRDELCHARS("abc", ""), "abc");
    EXPECT_EQ(STRDELCHARS("", "abc"), "");
    EXPECT_EQ(STRDELCHARS(std::string("a\0b\xff", 4), std::string("\0\xff", 2)), "ab");
}

// ---- the tree ----

TEST_F(MenuEditor, LevelJumpsAreRepairedAtOk) {
    const struct {
        std::vector<int> before, after;
    } cases[] = {{{1, 4}, {1, 2}},
                 {{1, 4, 5, 6, 5}, {1, 2, 3, 4, 3}},
                 {{1, 4, 5, 1, 2, 3, 4, 5}, {1, 2, 3, 1, 2, 3, 4, 5}},
                 {{1, 4, 4}, {1, 2, 3}},
                 {{3, 4, 1}, {1, 2, 1}},
                 {{1, 3, 5}, {1, 2, 3}},
                 {{0, 1}, {1, 1}},
                 {{-7, 2147483647}, {1, 2}},
                 {{-2147483647 - 1}, {1}},
                 {{11, 11}, {1, 2}}};
    for (const auto& one : cases) {
        Strings rows, expected;
        for (std::size_t i = 0; i < one.before.size(); ++i) {
            const std::string rest = "|c|n" + STR(static_cast<int>(i));
            rows.push_back(STR(one.before[i]) + rest);
            expected.push_back(STR(one.after[i]) + rest);
        }
        give(rows);
        EXPECT_TRUE(edit([] { press("pushbutton1"); }));
        EXPECT_EQ(brief(items), expected);
    }
}

TEST_F(MenuEditor, ATreeThatIsRightIsLeftAlone) {
    give({"1|a|", "2|b|", "3|c|c", "1|d|d", "2|e|e"});
    const Strings before = items;
    EXPECT_FALSE(edit([] { press("pushbutton1"); }));
    EXPECT_EQ(items, before);
}

TEST_F(MenuEditor, LeavesNeedANameAndPopupsNeedNone) {
    const struct {
        Strings rows;
        int wrong;
        bool repaired = false;
    } cases[] = {{{"1|File|", "2|Open|open"}, 0},
                 {{"1|File|", "2|Open|"}, 2},
                 {{"1|File|"}, 1},
                 {{"1|File|", "1|Edit|edit"}, 1},
                 {{"1||"}, 0},
                 {{"1|-|"}, 0},
                 {{"1|-----|", "1|a|a"}, 0},
                 {{"1|a|", "2||"}, 0},
                 {{"1|a|", "4|b|b"}, 0, true},
                 {{"1|a|a", "2|b|", "2|c|"}, 2},
                 {{"1|a|a", "2|b|", "3|c|c", "1|d|"}, 4}};
    for (const auto& one : cases) {
        asked.clear();
        give(one.rows);
        const bool ok = one.wrong == 0;
        EXPECT_EQ(edit([&] {
                      press("pushbutton1");
                      EXPECT_EQ(asked.size(), ok ? 0u : 1u);
                      if (ok) return;
                      EXPECT_EQ(lastText(),
                                noName(GETPROPVALUE(items[static_cast<std::size_t>(one.wrong)], "CAPTION")));
                      EXPECT_EQ(row(), one.wrong);
                      EXPECT_EQ(current(), STR(one.wrong));
                      EXPECT_EQ(text("edit1"),
                                GETPROPVALUE(items[static_cast<std::size_t>(one.wrong)], "CAPTION"));
                      press("pushbutton2");
                  }),
                  one.repaired && ok);
    }
}

TEST_F(MenuEditor, WhatIsRepairedAndThenNamedIsTaken) {
    give({"1|a|", "4|b|"});
    EXPECT_TRUE(edit([this] {
        press("pushbutton1");
        EXPECT_EQ(lastText(), noName("b"));
        EXPECT_EQ(shown()[1], "...b");
        enter("edit4", "b");
        press("pushbutton1");
    }));
    EXPECT_EQ(brief(items), (Strings{"1|a|", "2|b|b"}));
}

// ---- help, size, and anything ----

TEST_F(MenuEditor, HelpNeedsAFileAndATopic) {
    give(some());
    doings = {[] {
        EXPECT_FALSE(GetEnabled(part("pushbutton3")));
        key(KEY_F1);
        press("pushbutton2");
    }};
    EXPECT_FALSE(MENUEDITDIALOG("Menu", "", "Topic", items));
    EXPECT_TRUE(asked.empty());
    doings = {[] {
        EXPECT_EQ(GetCaption(part("helpkey")), "Topic");
        press("pushbutton3");
        key(KEY_F1);
        press("pushbutton2");
    }};
    EXPECT_FALSE(MENUEDITDIALOG("Menu", dir + "none.htm", "Topic", items));
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].text, "Help file '" + dir + "none.htm' was empty or not found.");
}

TEST_F(MenuEditor, TheListTakesTheRoomOfALargerWindow) {
    give(some());
    look([] {
        const auto place = [](const char* name) { return GetPosition(part(name), CLIENT_UNIT); };
        const Rect list = place("listbox1"), name = place("edit4"), ok = place("pushbutton1"),
                   add = place("addbutton");
        const Rect frame = GetPosition(MenuEditDlg, WINDOW_UNIT);
        platform::userMoved(*platform::findWindow(MenuEditDlg),
                            Rect{frame.x, frame.y, frame.w + 50, frame.h + 30}, 0);
        EXPECT_EQ(place("listbox1"), (Rect{list.x, list.y, list.w + 50, list.h + 30}));
        EXPECT_EQ(place("edit4"), (Rect{name.x + 50, name.y, name.w, name.h}));
        EXPECT_EQ(place("addbutton"), (Rect{add.x + 50, add.y, add.w, add.h}));
        EXPECT_EQ(place("pushbutton1"), (Rect{ok.x + 50, ok.y + 30, ok.w, ok.h}));
    });
}

TEST_F(MenuEditor, WhateverIsDoneTheTwoListsStayInStep) {
    give(some());
    look([] {
        std::mt19937 random(7);
        const auto any = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
        const char* const buttons[] = {"upbutton",  "downbutton",   "indentbutton", "unindentbutton",
                                       "addbutton", "deletebutton", "addbutton"};
        const char* const texts[] = {"", "-", "a", "1", "\xff", "file_open", "no symbol", "x\ty"};
        for (int step = 0; step < 3000; ++step) {
            switch (any(4)) {
            case 0: press(buttons[any(7)]); break;
            case 1: enter("edit" + STR(any(4) + 1), texts[any(8)]); break;
            case 2: enterItem("c" + STR(step), "n" + STR(step)); break;
            default:
                if (!mouseDown()) pick(any(GetListCount(part("listbox1")) + 1));
            }
            const Strings lists = rowsOf("data1"), rows = shown();
            ASSERT_EQ(lists.size(), rows.size());
            for (std::size_t n = 0; n < rows.size(); ++n) ASSERT_EQ(PROPLISTTOLISTITEM(lists[n]), rows[n]);
            ASSERT_EQ(current(), STR(row()));
        }
    });
}

}  // namespace
}  // namespace tarn
