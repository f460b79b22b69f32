// SPDX-License-Identifier: GPL-3.0-or-later
//
// Undo and redo in the dialog editor, on the object model, and the deltas that the steps are kept as.
#include "ide/designer/dlghistory.h"

#include "ide/designer/listdelta.h"
#include "ide/designer/objects/dlgclip.h"
#include "library/designer/propedit.h"
#include "support/dialog_editor_fixture.h"

#include <random>

namespace tarn {
namespace {

using Texts = std::vector<std::string>;

// ---- deltas ----

TEST(ListDelta, LeadsFromOneListToTheOther) {
    const std::string longOne(300, 'x');
    const Texts lists[] = {
        {},
        {""},
        {"one"},
        {"one", "two", "three"},
        {"three", "two", "one"},
        {"two"},
        {"one", "two", "two", "three"},
        {longOne + "1", longOne + "2"},
        {longOne + "2", "two", longOne + "3"},
        {std::string("a\0b", 3), "\xff\x80", "\n"},
    };
    for (const Texts& from : lists)
        for (const Texts& to : lists) EXPECT_EQ(DELTAAPPLIED(from, LISTDELTA(from, to)), to);
}

TEST(ListDelta, IsEmptyForTheSameListAndShortForOneChangedText) {
    Texts list;
    for (int i = 0; i < 255; ++i) list.push_back("NAME=Label" + STR(i) + "\n" + std::string(300, 'x'));
    EXPECT_EQ(LISTDELTA(list, list), "");
    Texts other = list;
    other[100].replace(7, 1, "M");
    EXPECT_LT(LISTDELTA(list, other).size(), 20U);
    other = list;
    std::rotate(other.begin(), other.begin() + 100, other.end());
    EXPECT_LT(LISTDELTA(list, other).size(), 10U);
}

TEST(ListDelta, OfAnotherListReadsNothingBeyondItsTexts) {
    const std::string delta =
        LISTDELTA({"one", "two", "three of more bytes"}, {"three of many bytes", "two", "one", "x"});
    for (const Texts& other : {Texts{}, Texts{"a"}, Texts{"", "", ""}})
        EXPECT_LE(DELTAAPPLIED(other, delta).size(), 4U);
    for (std::size_t cut = 0; cut < delta.size(); ++cut)
        EXPECT_LE(DELTAAPPLIED({"one"}, std::string_view(delta).substr(0, cut)).size(), 4U);
}

TEST(ListDelta, NumbersComeBack) {
    std::string bytes;
    const std::size_t numbers[] = {0, 1, 127, 128, 16383, 16384, SIZE_MAX};
    for (const std::size_t number : numbers) PUTNUMBER(bytes, number);
    std::string_view rest = bytes;
    for (const std::size_t number : numbers) EXPECT_EQ(TAKENUMBER(rest), number);
    EXPECT_EQ(TAKENUMBER(rest), 0U);
}

// ---- steps by themselves ----

DesignLists lists(const Texts& dialog, int selection = 0, const Texts& menu = {}) {
    return {dialog, menu, selection, {}};
}

TEST(DesignHistorySteps, LeadBackAndForthWithTheSelection) {
    DesignHistory history;
    const DesignLists a = lists({"d"}, 1), b = lists({"d", "one"}, 2),
                      c = lists({"d", "one"}, -1, {"m", "i"});
    history.note(a, b);
    history.note(b, c);
    EXPECT_EQ(history.undo(c), b);
    EXPECT_EQ(history.undo(b), a);
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.undo(a));
    EXPECT_EQ(history.redo(a), b);
    EXPECT_EQ(history.redo(b), c);
    EXPECT_FALSE(history.redo(c));
}

TEST(DesignHistorySteps, KeepEachOfSeveralSelected) {
    DesignHistory history;
    DesignLists a = lists({"d", "1", "2", "3"}, 4), b = lists({"d"}, 0);
    a.others = {2, 3};
    history.note(a, b);
    EXPECT_EQ(history.undo(b), a);
}

TEST(DesignHistorySteps, ANewOneDropsWhatWasUndone) {
    DesignHistory history;
    history.note(lists({"a"}), lists({"b"}));
    history.note(lists({"b"}), lists({"c"}));
    history.undo(lists({"c"}));
    history.note(lists({"b"}), lists({"x"}));
    EXPECT_FALSE(history.canRedo());
    EXPECT_EQ(history.steps(), 2U);
    EXPECT_EQ(history.undo(lists({"x"})), lists({"b"}));
}

TEST(DesignHistorySteps, TheOldestGoBeyondTheLimit) {
    DesignHistory history;
    for (int i = 0; i < 1500; ++i) history.note(lists({STR(i)}), lists({STR(i + 1)}));
    EXPECT_EQ(history.steps(), 1000U);
    int undone = 0;
    for (DesignLists now = lists({"1500"}); history.canUndo(); ++undone) now = *history.undo(now);
    EXPECT_EQ(undone, 1000);
}

TEST(DesignHistorySteps, TheOldestGoBeyondTheBytesButOneStays) {
    DesignHistory history(1000, 10000);
    for (int i = 0; i < 10; ++i)
        history.note(lists({std::string(4000, static_cast<char>('a' + i))}),
                     lists({std::string(4000, static_cast<char>('b' + i))}));
    EXPECT_LT(history.steps(), 3U);
    EXPECT_GE(history.steps(), 1U);
    history.note(lists({std::string(4000, 'k')}), lists({std::string(99999, 'z')}));
    EXPECT_EQ(history.steps(), 1U);
    EXPECT_EQ(history.undo(lists({std::string(99999, 'z')})), lists({std::string(4000, 'k')}));
}

TEST(DesignHistorySteps, ListsThatChangedWithoutAStepEndThem) {
    DesignHistory history;
    history.note(lists({"a"}), lists({"b"}));
    EXPECT_FALSE(history.undo(lists({"other"})));
    EXPECT_FALSE(history.canUndo());
    history.note(lists({"a"}), lists({"b"}));
    history.note(lists({"other"}), lists({"c"}));
    EXPECT_EQ(history.steps(), 1U);
}

// 255 controls as the dialog editor has them.
DesignLists fullDialog() {
    Texts dialog = {"NAME=Dlg\nTYPEOF=Dialog\nPOSITION=0 0 400 300"};
    for (int i = 1; i <= 255; ++i) {
        std::string list = GETOBJECTDEFAULTS("Pushbutton");
        SETPROPVALUE("NAME", "Pushbutton" + STR(i), list);
        SETPROPPOSITION(list, {i, i, 55, 15});
        dialog.push_back(list);
    }
    return {dialog, {}, 0, {}};
}

DesignLists moved(DesignLists lists, std::size_t from, std::size_t to, int by) {
    for (std::size_t i = from; i < to; ++i) {
        UnitRect at = GETPROPPOSITION(lists.dialog[i]);
        at.x += by;
        SETPROPPOSITION(lists.dialog[i], at);
    }
    return lists;
}

TEST(DesignHistorySteps, AThousandOf255ControlsStayBelowAFewMegabytes) {
    constexpr std::size_t mega = std::size_t{1} << 20U;
    const DesignLists full = fullDialog();
    DesignLists none = full;
    none.dialog.resize(1);
    {
        DesignHistory history;
        DesignLists now = full;
        for (std::size_t i = 0; i < 1000; ++i) {
            const DesignLists next = moved(now, 1 + i % 255, 2 + i % 255, static_cast<int>(i % 40));
            if (next.dialog != now.dialog) history.note(now, next);
            now = next;
        }
        RecordProperty("one", static_cast<int>(history.bytes()));
        EXPECT_LT(history.bytes(), mega / 2);
    }
    {
        DesignHistory history;
        DesignLists now = full;
        for (int i = 0; i < 1000; ++i) {
            const DesignLists next = moved(now, 1, 256, i % 7 + 1);
            history.note(now, next);
            now = next;
        }
        RecordProperty("all", static_cast<int>(history.bytes()));
        EXPECT_EQ(history.steps(), 1000U);
        EXPECT_LT(history.bytes(), 6 * mega);
    }
    {
        DesignHistory history;
        for (int i = 0; i < 500; ++i) {
            history.note(full, none);
            history.note(none, full);
        }
        RecordProperty("deleted", static_cast<int>(history.bytes()));
        EXPECT_EQ(history.steps(), 1000U);
        EXPECT_LT(history.bytes(), mega / 2);
    }
}

// ---- in the window ----

class DialogUndo : public DialogEditorTest {
protected:
    void openThree(int flags = 0) {
        open(dialog(control("LABEL", "one", "8 8 42 17") + control("EDIT", "two", "40 20 60 20") +
                        control("PUSHBUTTON", "three", "100 60 40 12"),
                    "Dlg", "  MENU=Menu1\n") +
                 "Menu1 MENU\n  Menuitem a 9\n    POSITION=1\n    CAPTION=\"A\"\nEND\n",
             flags);
    }
    static DesignLists content() {
        DesignLists now = DESIGNLISTS();
        now.selection = 0;
        now.others.clear();
        return now;
    }
    static bool marked() { return GetCaption(DialogDlg).ends_with(" *"); }
    static void undo() { key(0x1000 + 'Z'); }
    static void redo() { key(0x1000 + 'Y'); }
};

TEST_F(DialogUndo, EachActionIsOneStepThatComesBackWithItsSelection) {
    constexpr int ctrl = 0x1000;
    openThree();
    const struct {
        const char* what;
        std::function<void()> act;
    } actions[] = {
        {"move", [] { key(KEY_RIGHT); }},
        {"size", [] { key(ctrl + KEY_DOWN); }},
        {"delete", [] { key(KEY_DELETE); }},
        {"delete the menu", [] { SELECTOBJECT(-1), key(KEY_DELETE); }},
        {"edit",
         [this] {
             edit({{"CAPTION", "Another"}});
         }},
        {"add", [] { press("Label_ctl"); }},
        {"drag", [] { drag(20, 20, 15, 26); }},
        {"resize", [] { resize(30, 26); }},
        {"order", [this] { answers = {"Yes please"}, press("up_tool"); }},
        {"duplicate", [] { pick("edit_dialog_duplicate"); }},
    };
    for (const auto& one : actions) {
        SELECTOBJECT(2);
        const DesignLists before = DESIGNLISTS();
        one.act();
        const DesignLists after = DESIGNLISTS();
        EXPECT_NE(content().dialog, before.dialog) << one.what;
        undo();
        EXPECT_EQ(DESIGNLISTS().dialog, before.dialog) << one.what;
        EXPECT_EQ(DESIGNLISTS().menu, before.menu) << one.what;
        EXPECT_FALSE(marked()) << one.what;
        EXPECT_TRUE(beeps(undo)) << one.what << " was more than a step";
        redo();
        EXPECT_EQ(DESIGNLISTS().dialog, after.dialog) << one.what;
        EXPECT_EQ(DESIGNLISTS().selection, after.selection) << one.what;
        EXPECT_TRUE(marked()) << one.what;
        EXPECT_TRUE(beeps(redo)) << one.what;
        undo();
    }
}

TEST_F(DialogUndo, BringsTheSelectionBack) {
    openThree();
    SELECTOBJECTS({4, 2});
    key(KEY_DELETE);
    EXPECT_EQ(SELECTEDOBJECT(), 0);
    undo();
    EXPECT_EQ(SELECTEDOBJECTS(), (std::vector<int>{4, 2}));
    redo();
    EXPECT_EQ(SELECTEDOBJECT(), 0);
}

TEST_F(DialogUndo, ARunOfArrowsIsAsManySteps) {
    openThree();
    SELECTOBJECT(2);
    for (int i = 0; i < 5; ++i) key(KEY_RIGHT);
    for (int x = 12; x >= 8; --x) {
        undo();
        EXPECT_EQ(property(2, "POSITION"), STR(x) + " 8 42 17");
    }
    EXPECT_FALSE(marked());
}

TEST_F(DialogUndo, WhatChangesNothingIsNoStep) {
    openThree();
    SELECTOBJECT(2);
    key(KEY_RIGHT);
    SELECTOBJECT(1);
    key(KEY_RIGHT);
    click(20, 20);
    key(KEY_ESCAPE);
    undo();
    EXPECT_FALSE(marked());
    EXPECT_TRUE(beeps(undo));
}

TEST_F(DialogUndo, AStepWithinAStepIsPartOfIt) {
    openThree();
    DESIGNSTEP([] {
        DESIGNSTEP([] { SetList(DATALIST(), 2, "NAME=a\nTYPEOF=Label\nPOSITION=0 0 8 8"); });
        EXPECT_TRUE(beeps(undo)) << "nothing is undone while a step runs";
        SetList(DATALIST(), 3, "NAME=b\nTYPEOF=Label\nPOSITION=0 0 8 8");
    });
    undo();
    EXPECT_FALSE(marked());
    EXPECT_EQ(property(2, "NAME") + property(3, "NAME"), "onetwo");
}

TEST_F(DialogUndo, ANewStepDropsWhatWasUndone) {
    openThree();
    SELECTOBJECT(2);
    key(KEY_RIGHT);
    undo();
    key(KEY_DOWN);
    EXPECT_TRUE(beeps(redo));
    EXPECT_EQ(property(2, "POSITION"), "8 9 42 17");
}

TEST_F(DialogUndo, LeadsBehindASaveAndTheMarkFollowsTheFile) {
    openThree();
    const std::string before = read(file);
    SELECTOBJECT(2);
    key(KEY_RIGHT);
    key(KEY_RIGHT);
    DIALOGSAVE();
    EXPECT_FALSE(marked());
    undo();
    EXPECT_TRUE(marked());
    redo();
    EXPECT_FALSE(marked()) << "this is what the file has";
    undo();
    undo();
    EXPECT_TRUE(marked());
    DIALOGSAVE();
    EXPECT_FALSE(marked());
    EXPECT_EQ(read(file), before);
    redo();
    EXPECT_TRUE(marked());
}

// Between the save and the undo the blocks of the file are gone.
TEST_F(DialogUndo, BringsBackEachByteThatASaveTookOut) {
    const std::string text =
        "// first\nDlg DIALOG\n  POSITION=0 0 200 100\n  MENU=Menu1\n"
        "  LABEL one 101\n    POSITION=8 8 42 17\n"
        "\n  // the name, as the user types it\n  EDIT   two 77  // number kept\n"
        "    // wide enough\n    POSITION= 40 20 60 20\n    Strange=1\n"
        "  PUSHBUTTON three 103\n    POSITION=100 60 40 12\n  // last\nEND\n"
        "Menu1 MENU\n  MENUITEM a 9\n    POSITION=1\n  // a line\n  MENUITEM  10\n    POSITION=1\n"
        "END\n";
    open(text);
    ASSERT_EQ(read(file), text);
    SELECTOBJECT(3);
    key(KEY_DELETE);
    DIALOGSAVE();
    EXPECT_EQ(read(file).find("wide enough"), std::string::npos);
    key(0x1000 + 'A');
    key(KEY_DELETE);
    DIALOGSAVE();
    EXPECT_EQ(read(file).find("PUSHBUTTON"), std::string::npos);
    undo();
    undo();
    DIALOGSAVE();
    EXPECT_EQ(read(file), text);
    redo();
    DIALOGSAVE();
    undo();
    SELECTOBJECT(3);
    key(KEY_RIGHT);
    DIALOGSAVE();
    EXPECT_NE(
        read(file).find("  EDIT   two 77  // number kept\n    // wide enough\n    POSITION= 41 20 60 20\n"),
        std::string::npos)
        << read(file);
}

TEST_F(DialogUndo, ADialogOpenedAsChangedStaysMarked) {
    openThree(OPEN_AS_CHANGED);
    SELECTOBJECT(2);
    key(KEY_RIGHT);
    undo();
    EXPECT_TRUE(marked());
    DIALOGSAVE();
    EXPECT_FALSE(marked());
}

TEST_F(DialogUndo, ARenameByASaveIsTakenBackByTheNext) {
    openThree();
    const std::string before = read(file);
    SELECTOBJECT(1);
    edit({{"NAME", "Fresh"}});
    DIALOGSAVE();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Fresh");
    undo();
    EXPECT_TRUE(marked());
    EXPECT_EQ(property(1, "NAME"), "Dlg");
    DIALOGSAVE();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dlg");
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg)");
    EXPECT_EQ(read(file), before);
    redo();
    DIALOGSAVE();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Fresh");
}

TEST_F(DialogUndo, AFileThatCouldNotBeSavedLeavesTheMark) {
    openThree();
    SELECTOBJECT(2);
    edit({{"NAME", "no name"}});
    DIALOGSAVE();
    EXPECT_TRUE(marked());
    undo();
    EXPECT_FALSE(marked());
    redo();
    EXPECT_TRUE(marked());
}

TEST_F(DialogUndo, EndsWithTheDialog) {
    openThree();
    write("b.rc", dialog(control("LABEL", "x", "1 1 8 8"), "Other"));
    SELECTOBJECT(2);
    key(KEY_RIGHT);
    DIALOGSAVE();
    EXPECT_TRUE(DIALOGCANUNDO());
    OPENDIALOG(dir + "b.rc", "Other");
    EXPECT_FALSE(DIALOGCANUNDO());
    EXPECT_TRUE(beeps(undo));
    SELECTOBJECT(2);
    key(KEY_RIGHT);
    EXPECT_TRUE(DIALOGCANUNDO());
    answers = {"&No"};
    Unload(DialogDlg);
    ASSERT_FALSE(IsLoaded(DialogDlg));
    EXPECT_FALSE(DIALOGCANUNDO());
    EXPECT_TRUE(beeps(DIALOGUNDO));
    OPENDIALOG(dir + "b.rc", "Other");
    EXPECT_FALSE(DIALOGCANUNDO());
}

TEST_F(DialogUndo, AnotherDialogOpenedWithinAStepGetsNoStepOfIt) {
    openThree();
    write("b.rc", dialog(control("LABEL", "x", "1 1 8 8"), "Other"));
    EXPECT_FALSE(DESIGNSTEP([&] { OPENDIALOG(dir + "b.rc", "Other"); }));
    EXPECT_FALSE(marked());
    EXPECT_FALSE(DIALOGCANUNDO());
}

TEST_F(DialogUndo, TheMenuItemsAreThoseOfTheWindowInFront) {
    openThree();
    EXPECT_FALSE(isEnabled("edit_undo_typing"));
    SELECTOBJECT(2);
    key(KEY_RIGHT);
    EXPECT_TRUE(isEnabled("edit_undo_typing"));
    EXPECT_FALSE(isEnabled("edit_redo_typing"));
    pick("edit_undo_typing");
    EXPECT_EQ(property(2, "POSITION"), "8 8 42 17");
    EXPECT_FALSE(isEnabled("edit_undo_typing"));
    EXPECT_TRUE(isEnabled("edit_redo_typing"));
    Show(SDIEdit, false);
    EXPECT_FALSE(isEnabled("edit_redo_typing")) << "the text has nothing to redo";
    type("x");
    pick("edit_undo_typing");
    EXPECT_EQ(GetText(SDIEdit), "") << "in the text it is the text's";
    Show(DialogDlg, false);
    pick("edit_redo_typing");
    EXPECT_EQ(property(2, "POSITION"), "9 8 42 17");
}

TEST_F(DialogUndo, TheDialogSubmenuIsThereWhileTheEditorIsShown) {
    EXPECT_FALSE(isEnabled("edit_dialog"));
    openThree();
    EXPECT_TRUE(isEnabled("edit_dialog"));
    Unload(DialogDlg);
    pick("window_code");
    EXPECT_FALSE(isEnabled("edit_dialog"));
}

}  // namespace
}  // namespace tarn
