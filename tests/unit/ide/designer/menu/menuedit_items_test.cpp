// SPDX-License-Identifier: GPL-3.0-or-later
//
// The menu editor: items added, deleted and moved, and the tree that they make.
#include "unit/ide/designer/menu/menuedit_fixture.h"

#include "ide/designer/menu/menuedit.h"
#include "ide/designer/menu/menuitems.h"
#include "kernel/windows/resources.h"
#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "support/doings_fixture.h"

#include <random>

namespace tarn {
namespace {

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
