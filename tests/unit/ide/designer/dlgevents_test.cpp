// SPDX-License-Identifier: GPL-3.0-or-later
//
// What keys and mouse do in the dialog editor, on the object model.
#include "support/dialog_editor_fixture.h"
#include "support/recording_view.h"

namespace tarn {
namespace {

class DialogEvents : public DialogEditorTest {
protected:
    // Two controls that overlap at 40..50, 20..25 units; each unit is 1.5 pixels wide and 1.625 high.
    void openTwo(const std::string& own = "", int flags = 0) {
        open(dialog(control("LABEL", "one", "8 8 42 17") + control("EDIT", "two", "40 20 60 20"), "Dlg", own),
             flags);
    }
    static constexpr int InBothX = 66, InBothY = 36, InOneX = 20, InOneY = 20, InTwoX = 120, InTwoY = 50;
};

TEST_F(DialogEvents, ClickWhereTwoOverlapSelectsTheLater) {
    openTwo();
    click(InBothX, InBothY);
    EXPECT_EQ(SELECTEDOBJECT(), 3);
    click(InOneX, InOneY);
    EXPECT_EQ(SELECTEDOBJECT(), 2);
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogEvents, ClickOnTheClientAreaSelectsTheDialogAndOnTheMenuBarTheMenu) {
    openTwo("  MENU=Menu1\n");
    EXPECT_EQ(lastText().substr(0, 45), "An error occurred while loading the menu of '");
    EXPECT_FALSE(IsLoaded(DialogDlg)) << "a closed box is a No";
    write("a.rc", read(file) + "Menu1 MENU\n  Menuitem a 9\n    POSITION=1\n    CAPTION=\"A\"\nEND\n");
    OPENDIALOG(file, "Dlg");
    click(280, 140);
    EXPECT_EQ(SELECTEDOBJECT(), 1);
    click(5, -5);
    EXPECT_EQ(SELECTEDOBJECT(), -1);
    click(5, -2000);
    EXPECT_EQ(SELECTEDOBJECT(), 0);
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogEvents, DragMovesAControlAndItsEdgeSizesIt) {
    openTwo();
    drag(InOneX, InOneY, 15, 26);
    EXPECT_EQ(property(2, "POSITION"), "18 24 42 17");
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg) *");
    const Rect two = RCUNITSTOPIXELS(DialogDlg, GETPROPPOSITION(item(3)));
    drag(two.x + two.w - 2, two.y + two.h / 2, 30, 0);
    EXPECT_EQ(property(3, "POSITION"), "40 20 80 20");
    drag(two.x + 40, two.y + 10, -5000, -5000);
    EXPECT_EQ(property(3, "POSITION"), "0 0 80 20") << "it stays in the client area";
    drag(50, 30 - 1, -5000, 0);
    EXPECT_EQ(property(3, "POSITION"), "0 0 80 20");
    drag(118, 15, -500, 0);
    EXPECT_EQ(property(3, "POSITION"), "0 0 8 20") << "12 pixels at least";
}

TEST_F(DialogEvents, ADragThatComesBackChangesNothing) {
    openTwo();
    drag(InTwoX, InTwoY, 0, 0);
    EXPECT_EQ(SELECTEDOBJECT(), 3);
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogEvents, ArrowsMoveByAUnitAndBeepAtTheEdge) {
    open(dialog(control("LABEL", "one", "1 1 198 98")));
    click(20, 20);
    for (const int code : {KEY_LEFT, KEY_UP, KEY_RIGHT, KEY_RIGHT, KEY_DOWN, KEY_DOWN})
        EXPECT_TRUE(key(code));
    EXPECT_EQ(property(2, "POSITION"), "2 2 198 98");
    DIALOGSETMODIFY(false);
    EXPECT_TRUE(beeps([] { key(KEY_RIGHT); }));
    EXPECT_TRUE(beeps([] { key(KEY_DOWN); }));
    EXPECT_EQ(property(2, "POSITION"), "2 2 198 98");
    EXPECT_FALSE(DIALOGGETMODIFY());
    SELECTOBJECT(1);
    for (const int code : {KEY_LEFT, KEY_UP, KEY_RIGHT, KEY_DOWN}) EXPECT_TRUE(beeps([=] { key(code); }));
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogEvents, ArrowsWithCtrlSizeByAUnit) {
    constexpr int ctrl = 0x1000;
    open(dialog(control("LABEL", "one", "0 0 198 2")));
    SELECTOBJECT(2);
    key(ctrl + KEY_RIGHT);
    key(ctrl + KEY_DOWN);
    EXPECT_EQ(property(2, "POSITION"), "0 0 199 3");
    key(ctrl + KEY_RIGHT);
    EXPECT_TRUE(beeps([] { key(ctrl + KEY_RIGHT); })) << "the dialog is 200 wide";
    for (int i = 0; i < 2; ++i) key(ctrl + KEY_UP);
    EXPECT_TRUE(beeps([] { key(ctrl + KEY_UP); }));
    EXPECT_EQ(property(2, "POSITION"), "0 0 200 1");
    SELECTOBJECT(1);
    key(ctrl + KEY_LEFT);
    EXPECT_EQ(property(1, "POSITION"), "0 0 199 100");
    SELECTOBJECT(0);
    EXPECT_TRUE(beeps([] { key(ctrl + KEY_UP); }));
}

TEST_F(DialogEvents, TabGoesThroughAllObjectsAndAround) {
    constexpr int tab = 9, shift = 0x2000;
    openTwo();
    for (const int expected : {1, 2, 3, 1}) {
        EXPECT_TRUE(key(tab));
        EXPECT_EQ(SELECTEDOBJECT(), expected);
    }
    for (const int expected : {3, 2, 1, 3}) {
        EXPECT_TRUE(key(tab + shift));
        EXPECT_EQ(SELECTEDOBJECT(), expected);
    }
    SELECTOBJECT(0);
    key(tab + shift);
    EXPECT_EQ(SELECTEDOBJECT(), 3);
    press("menuitem_ctl");
    key(tab);
    EXPECT_EQ(SELECTEDOBJECT(), 1);
    key(tab + shift);
    EXPECT_EQ(SELECTEDOBJECT(), -1);
    key(tab + shift);
    EXPECT_EQ(SELECTEDOBJECT(), 3);
}

TEST_F(DialogEvents, TheSelectionIsToldToScreenReaders) {
    openTwo();
    EXPECT_EQ(GetHint(DialogDlg), "");
    click(InTwoX, InTwoY);
    EXPECT_EQ(GetHint(DialogDlg), "Selected: two, Edit");
    key(KEY_ESCAPE);
    EXPECT_EQ(SELECTEDOBJECT(), 0);
    EXPECT_EQ(GetHint(DialogDlg), "");
}

TEST_F(DialogEvents, F3TellsSizes) {
    openTwo();
    key(KEY_F3);
    EXPECT_TRUE(asked.empty());
    click(InTwoX, InTwoY);
    key(KEY_F3);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "two:Edit");
    EXPECT_EQ(asked[0].text, "Size of 4 x 8 RC file units in pixels = 6 13\n"
                             "Size of Edit in RC file units = 40 20 60 20\n"
                             "Size of Edit in pixels = 60 32 90 32\n");
}

TEST_F(DialogEvents, F4ListsAllProperties) {
    openTwo();
    EXPECT_TRUE(key(KEY_F4));
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Object properties");
    EXPECT_EQ(asked[0].rows[0], "Dlg:Dialog");
}

TEST_F(DialogEvents, DeleteRemovesWhatIsSelected) {
    openTwo();
    EXPECT_TRUE(beeps([] { key(KEY_DELETE); }));
    SELECTOBJECT(1);
    EXPECT_TRUE(beeps([] { key(KEY_DELETE); })) << "the dialog itself stays";
    EXPECT_FALSE(DIALOGGETMODIFY());
    click(InOneX, InOneY);
    EXPECT_FALSE(beeps([] { key(KEY_DELETE); }));
    EXPECT_EQ(names(), "Dlg\ntwo\n");
    EXPECT_EQ(DESIGNTEXT("hilite1"), "0");
    EXPECT_TRUE(DIALOGGETMODIFY());
    pick("edit_delete");
    EXPECT_EQ(names(), "Dlg\ntwo\n") << "nothing is selected";
    SELECTOBJECT(2);
    pick("edit_delete");
    EXPECT_EQ(names(), "Dlg\n");
}

TEST_F(DialogEvents, DeletingTheMenuEmptiesIt) {
    openTwo();
    press("menuitem_ctl");
    EXPECT_EQ(property(1, "MENU"), "Menu1");
    EXPECT_EQ(SELECTEDOBJECT(), -1);
    key(KEY_DELETE);
    EXPECT_EQ(property(1, "MENU"), "");
    EXPECT_EQ(count("menulist"), 0);
    EXPECT_EQ(SELECTEDOBJECT(), 0);
}

TEST_F(DialogEvents, LockedObjectsStay) {
    openTwo("", OPEN_LOCK_DELETION);
    EXPECT_EQ(DESIGNTEXT("ctlprotectstr"), "1");
    SELECTOBJECT(2);
    EXPECT_TRUE(beeps([] { key(KEY_DELETE); }));
    EXPECT_EQ(count(), 3);
}

TEST_F(DialogEvents, ResizingTheWindowSizesTheDialog) {
    openTwo();
    resize(0, 0);
    const Rect offsets = CALCOFFSETS(DialogDlg, item(1), FULL_FRAME, GETMARGIN("10 10 10 10"));
    SetPosition(DialogDlg, CLIENT_UNIT, Rect{0, 0, 300 + offsets.w, 162 + offsets.h});
    DIALOGSETMODIFY(false);
    resize(30, 13);
    EXPECT_EQ(property(1, "POSITION"), "0 0 220 108");
    EXPECT_TRUE(DIALOGGETMODIFY());
    DIALOGSETMODIFY(false);
    SETDESIGNTEXT("linkstr", "0");
    resize(30, 13);
    EXPECT_EQ(property(1, "POSITION"), "0 0 220 108");
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogEvents, ADialogIsNeverSizedToNothing) {
    openTwo();
    resize(0, 0);
    SetPosition(DialogDlg, CLIENT_UNIT, Rect{0, 0, 1, 1});
    DIALOGDLG(DialogDlg, RESIZE_EVENT, DialogDlg, 0);
    const UnitRect least = GETPROPPOSITION(item(1));
    EXPECT_GT(least.w, 0);
    EXPECT_GT(least.h, 0);
    EXPECT_EQ(RCUNITSTOPIXELS(DialogDlg, least).w, 12);
}

TEST_F(DialogEvents, OtherColoursOfTheDesktopDrawTheDialogAgainAndChangeNothing) {
    openTwo();
    auto recording = std::make_unique<platform::RecordingView>();
    auto& drawn = recording->calls;
    bool& dark = recording->dark;
    const auto told = [] { platform::userColours(*platform::findWindow(DialogDlg)); };
    auto before = platform::useView(std::move(recording));
    for (const bool now : {true, false}) {
        dark = now;
        drawn.clear();
        told();
        EXPECT_FALSE(drawn.empty()) << now;
        drawn.clear();
        told();
        EXPECT_TRUE(drawn.empty()) << "they are the ones it has";
    }
    EXPECT_FALSE(DIALOGGETMODIFY());
    platform::useView(std::move(before));
}

TEST_F(DialogEvents, F2AndReturnEditTheSelection) {
    openTwo();
    for (const int code : {KEY_F2, KEY_RETURN}) EXPECT_TRUE(key(code)) << "nothing is selected";
    EXPECT_FALSE(DIALOGGETMODIFY());
    SELECTOBJECT(3);
    doings = {[] {
        EXPECT_EQ(GetCaption(PropertiesDlg), "Two:Edit");
        pressOk();
    }};
    key(KEY_F2);
    EXPECT_FALSE(DIALOGGETMODIFY()) << "nothing was changed";
    edit({{"TEXT", "say \"hi\""}}, KEY_RETURN);
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(property(3, "TEXT"), "say \"hi\"");
    EXPECT_NE(item(3).find("\nTEXT=\"say \"hi\"\"\n"), std::string::npos) << item(3);
}

TEST_F(DialogEvents, RightClickSelectsAndEdits) {
    openTwo();
    doings = {enter("NAME", "three"), pressOk};
    const auto place = at(InTwoX, InTwoY);
    platform::userInfo(*platform::findWindow(DialogDlg), place.x, place.y);
    EXPECT_EQ(SELECTEDOBJECT(), 3);
    EXPECT_EQ(names(), "Dlg\none\nthree\n");
    EXPECT_TRUE(DIALOGGETMODIFY());
}

TEST_F(DialogEvents, PropertiesOfTheMenuEditsTheSelection) {
    openTwo();
    SELECTOBJECT(2);
    doings = {enter("CAPTION", "&Name:"), pressOk};
    pick("edit_properties");
    EXPECT_EQ(property(2, "CAPTION"), "&Name:");
    DIALOGSETMODIFY(false);
    Unload(DialogDlg);
    EXPECT_TRUE(beeps([] { pick("edit_properties"); }));
}

TEST_F(DialogEvents, CloseAsksAboutChanges) {
    openTwo();
    Unload(DialogDlg);
    EXPECT_FALSE(IsLoaded(DialogDlg));
    EXPECT_FALSE(IsLoaded(ToolboxDlg));
    EXPECT_TRUE(asked.empty());
    const struct {
        const char* answer;
        bool closes, saves;
    } cases[] = {{"&Cancel", false, false}, {"", false, false}, {"&Yes", true, true}, {"&No", true, false}};
    for (const auto& one : cases) {
        openTwo();
        SELECTOBJECT(2);
        key(KEY_RIGHT);
        asked.clear();
        answers = {one.answer};
        Unload(DialogDlg);
        ASSERT_EQ(asked.size(), 1U) << one.answer;
        EXPECT_EQ(asked[0].title, "Dialog Editor");
        EXPECT_EQ(asked[0].text, "Dialog Dlg has been edited.\nDo you want to save the changes?\n");
        EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Yes", "&No", "&Cancel"}));
        EXPECT_EQ(IsLoaded(DialogDlg), !one.closes) << one.answer;
        EXPECT_EQ(IsLoaded(ToolboxDlg), !one.closes) << one.answer;
        EXPECT_EQ(read(file).find("POSITION=9 8 42 17") != std::string::npos, one.saves) << one.answer;
        DIALOGSETMODIFY(false);
    }
}

TEST_F(DialogEvents, CloseStaysWhereTheSaveFails) {
    openTwo();
    SELECTOBJECT(2);
    edit({{"NAME", "two"}});
    asked.clear();
    answers = {"&Yes", "OK"};
    Unload(DialogDlg);
    EXPECT_EQ(asked.size(), 2U);
    EXPECT_TRUE(IsLoaded(DialogDlg));
    EXPECT_TRUE(DIALOGGETMODIFY());
    DIALOGSETMODIFY(false);
}

TEST_F(DialogEvents, AControlFarOutsideCanStillBeReached) {
    open(dialog(control("LABEL", "far", "-32768 -32768 32767 32767") +
                control("LABEL", "out", "32767 32767 8 8")));
    ASSERT_TRUE(IsLoaded(DialogDlg)) << lastText();
    EXPECT_TRUE(asked.empty()) << lastText();
    key(9);
    key(9);
    EXPECT_EQ(SELECTEDOBJECT(), 2);
    EXPECT_TRUE(beeps([] { key(KEY_LEFT); }));
    edit({{"POSITION", "1 2 30 40"}});
    EXPECT_EQ(property(2, "POSITION"), "1 2 30 40");
    DIALOGSETMODIFY(false);
}

}  // namespace
}  // namespace tarn
