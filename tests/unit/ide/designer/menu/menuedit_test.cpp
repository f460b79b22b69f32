// SPDX-License-Identifier: GPL-3.0-or-later
//
// The menu editor: what it shows, how it is left, and what it checks of an item.
#include "unit/ide/designer/menu/menuedit_fixture.h"

#include "ide/designer/menu/menuedit.h"
#include "ide/designer/menu/menuitems.h"
#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "support/doings_fixture.h"

namespace tarn {
namespace {

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

}  // namespace
}  // namespace tarn
