// SPDX-License-Identifier: GPL-3.0-or-later
//
// Several selected objects: how they are selected, and what keys, mouse and menus do to all of them.
#include "ide/designer/dlgmouse.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgmany.h"
#include "ide/designer/objects/dlgtab.h"
#include "ide/shell/idecore.h"
#include "library/settings/profstr.h"
#include "platform/model/guides.h"
#include "support/dialog_editor_fixture.h"

namespace tarn {
namespace {

using Indexes = std::vector<int>;
constexpr int Ctrl = 0x1000;

class ManyObjects : public DialogEditorTest {
protected:
    // A unit is 1.5 pixels wide and 1.625 high, so whole places are multiples of 2 and of 8.
    void openThree(int flags = 0) {
        open(dialog(control("LABEL", "one", "8 8 40 16") + control("EDIT", "two", "80 8 40 16") +
                    control("LISTBOX", "three", "8 56 40 16")),
             flags);
    }
    static void shiftClick(int index) {
        platform::userMouseKeys(platform::MOUSE_SHIFT);
        const Rect place = RCUNITSTOPIXELS(DialogDlg, DESIGNPLACE(index));
        click(place.x + place.w / 2, place.y + place.h / 2);
        platform::userMouseKeys(0);
    }
    static void clickOn(int index) {
        const Rect place = RCUNITSTOPIXELS(DialogDlg, DESIGNPLACE(index));
        click(place.x + place.w / 2, place.y + place.h / 2);
    }
    static void dragBy(int index, int dx, int dy) {
        const Rect place = RCUNITSTOPIXELS(DialogDlg, DESIGNPLACE(index));
        const Rect way = RCUNITSTOPIXELS(DialogDlg, {dx, dy, 0, 0});
        drag(place.x + place.w / 2, place.y + place.h / 2, way.x, way.y);
    }
    // The corners of a band in resource units.
    static void band(int x, int y, int right, int bottom) {
        const Rect from = RCUNITSTOPIXELS(DialogDlg, {x, y, 0, 0});
        const Rect to = RCUNITSTOPIXELS(DialogDlg, {right, bottom, 0, 0});
        drag(from.x, from.y, to.x - from.x, to.y - from.y);
    }
    static std::string place(int index) { return property(index, "POSITION"); }
    static bool enabled(const std::string& item) { return GetEnabled(MAINCONTROL(item)); }
};

// ---- the store ----

TEST_F(ManyObjects, TheFirstIsHilite1AndTheOthersStandBesideIt) {
    openThree();
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{});
    SELECTOBJECTS({3, 2, 4});
    EXPECT_EQ(DESIGNTEXT("hilite1"), "3");
    EXPECT_EQ(DESIGNTEXT("hilites"), "2 4");
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{3, 2, 4}));
    EXPECT_EQ(GetHint(DialogDlg), "Selected: two, Edit, and 2 more");
    SELECTOBJECT(2);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{2});
    EXPECT_EQ(DESIGNTEXT("hilites"), "");
}

TEST_F(ManyObjects, SeveralAreControlsAloneAndEachIsThereOnce) {
    openThree();
    SELECTOBJECTS({1, 3, 99, 3, -1, 0, 2});
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{3, 2}));
    for (const int alone : {1, -1}) {
        SELECTOBJECTS({alone});
        EXPECT_EQ(SELECTEDOBJECTS(), Indexes{alone});
    }
    SELECTOBJECTS({});
    EXPECT_EQ(DESIGNTEXT("hilite1"), "0");
}

TEST_F(ManyObjects, OddTextsInTheLabelsAreLeftOut) {
    openThree();
    SETDESIGNTEXT("hilite1", "2");
    for (const char* text : {"", "x", "2", "3 x 4", "-5 3 3", "99999999999 3", "   3  "}) {
        SETDESIGNTEXT("hilites", text);
        const Indexes selected = SELECTEDOBJECTS();
        EXPECT_EQ(selected[0], 2) << text;
        EXPECT_LE(selected.size(), 2U) << text;
        EXPECT_EQ(selected.size() == 2, std::string(text).find('3') != std::string::npos) << text;
    }
    SETDESIGNTEXT("hilites", "3 4");
    SETDESIGNTEXT("hilite1", "1");
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{1}) << "the dialog stands alone";
}

// ---- selecting ----

TEST_F(ManyObjects, ShiftClickTakesInAndTakesOut) {
    openThree();
    clickOn(2);
    shiftClick(4);
    shiftClick(3);
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{2, 4, 3}));
    shiftClick(2);
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{4, 3})) << "the next one is the first then";
    shiftClick(4);
    shiftClick(3);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{});
    EXPECT_EQ(DESIGNTEXT("hilite1"), "0");
    SELECTOBJECT(1);
    shiftClick(3);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{3}) << "the dialog stands alone";
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(ManyObjects, AShiftClickBesideTheControlsKeepsThem) {
    openThree();
    SELECTOBJECTS({2, 3});
    platform::userMouseKeys(platform::MOUSE_SHIFT);
    click(290, 150);
    click(5, -2000);
    platform::userMouseKeys(0);
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{2, 3}));
}

TEST_F(ManyObjects, ABandSelectsWhatItTouches) {
    openThree();
    band(180, 90, 100, 20);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{3});
    band(180, 90, 2, 2);
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{2, 3, 4}));
    band(180, 90, 160, 80);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{1}) << "it touches none";
    band(2, 2, 7, 7);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{1}) << "up to an edge is not on it";
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(ManyObjects, ABandWithShiftTakesMoreIn) {
    openThree();
    SELECTOBJECT(4);
    platform::userMouseKeys(platform::MOUSE_SHIFT);
    band(180, 40, 2, 2);
    platform::userMouseKeys(0);
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{4, 2, 3}));
}

TEST_F(ManyObjects, AClickOnTheFreeAreaSelectsTheDialog) {
    openThree();
    SELECTOBJECTS({2, 3});
    click(290, 150);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{1});
    band(180, 90, 181, 91);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{1}) << "a mouse that hardly moves clicks";
}

TEST_F(ManyObjects, SelectAllAndEscape) {
    openThree();
    pick("edit_select_all");
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{2, 3, 4}));
    key(KEY_ESCAPE);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{});
    key(Ctrl + 'A');
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{2, 3, 4}));
    open(dialog(""));
    EXPECT_TRUE(beeps([] { pick("edit_select_all"); })) << "there is none";
}

TEST_F(ManyObjects, AClickOnOneOfSeveralLetsTheOthersGoAndADragMakesItTheFirst) {
    openThree();
    SELECTOBJECTS({2, 3, 4});
    dragBy(3, 4, 0);
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{3, 2, 4}));
    clickOn(4);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{4});
    SELECTOBJECTS({2, 3});
    clickOn(4);
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{4});
}

// ---- moving and sizing ----

TEST_F(ManyObjects, ADragMovesAll) {
    openThree();
    SELECTOBJECTS({2, 4});
    dragBy(2, 20, 8);
    EXPECT_EQ(place(2), "28 16 40 16");
    EXPECT_EQ(place(4), "28 64 40 16");
    EXPECT_EQ(place(3), "80 8 40 16") << "this one is not selected";
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{2, 4}));
    dragBy(4, 4, 0);
    EXPECT_EQ(place(2), "32 16 40 16");
}

TEST_F(ManyObjects, ADragStopsWhereOneReachesTheEdge) {
    openThree();
    SELECTOBJECTS({2, 3, 4});
    dragBy(2, -1000, 1000);
    EXPECT_EQ(place(2), "0 36 40 16");
    EXPECT_EQ(place(3), "72 36 40 16");
    EXPECT_EQ(place(4), "0 84 40 16");
}

TEST_F(ManyObjects, AnEdgeSizesAll) {
    openThree();
    SELECTOBJECTS({2, 3});
    const Rect one = RCUNITSTOPIXELS(DialogDlg, DESIGNPLACE(2));
    drag(one.x + one.w - 2, one.y + one.h / 2, 30, 0);
    EXPECT_EQ(place(2), "8 8 60 16");
    EXPECT_EQ(place(3), "80 8 60 16");
}

TEST_F(ManyObjects, ArrowsMoveAllOrNone) {
    openThree();
    SELECTOBJECTS({2, 3});
    key(KEY_RIGHT);
    key(KEY_DOWN);
    EXPECT_EQ(place(2), "9 9 40 16");
    EXPECT_EQ(place(3), "81 9 40 16");
    key(Ctrl + KEY_LEFT);
    key(Ctrl + KEY_DOWN);
    EXPECT_EQ(place(2), "9 9 39 17");
    EXPECT_EQ(place(3), "81 9 39 17");
    for (int i = 0; i < 9; ++i) key(KEY_LEFT);
    EXPECT_TRUE(beeps([] { key(KEY_LEFT); }));
    EXPECT_EQ(place(2), "0 9 39 17");
    EXPECT_EQ(place(3), "72 9 39 17") << "one that could go waits for the other";
    for (int i = 0; i < 16; ++i) key(Ctrl + KEY_UP);
    EXPECT_TRUE(beeps([] { key(Ctrl + KEY_UP); }));
    EXPECT_EQ(place(3), "72 9 39 1");
}

TEST_F(ManyObjects, DeleteDeletesAll) {
    openThree();
    SELECTOBJECTS({4, 2});
    EXPECT_FALSE(beeps([] { key(KEY_DELETE); }));
    EXPECT_EQ(names(), "Dlg\ntwo\n");
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{});
    EXPECT_TRUE(DIALOGGETMODIFY());
}

TEST_F(ManyObjects, NoneIsDeletedWhereDeletionIsLocked) {
    openThree(OPEN_LOCK_DELETION);
    SELECTOBJECTS({2, 3});
    EXPECT_TRUE(beeps([] { key(KEY_DELETE); }));
    EXPECT_EQ(count(), 4);
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{2, 3}));
}

// ---- locks ----

TEST_F(ManyObjects, ALockedObjectStays) {
    openThree();
    EXPECT_FALSE(enabled("edit_dialog_lock"));
    SELECTOBJECT(2);
    EXPECT_TRUE(enabled("edit_dialog_lock"));
    pick("edit_dialog_lock");
    EXPECT_TRUE(GetChecked(MAINCONTROL("edit_dialog_lock")));
    EXPECT_EQ(LOCKEDOBJECTS(), Indexes{2});
    dragBy(2, 20, 8);
    for (const int code : std::initializer_list<int>{KEY_RIGHT, Ctrl + KEY_RIGHT})
        EXPECT_TRUE(beeps([=] { key(code); }));
    pick("edit_dialog_centre_dialog");
    EXPECT_EQ(place(2), "8 8 40 16");
    EXPECT_FALSE(DIALOGGETMODIFY()) << "a lock is no change";
    SELECTOBJECTS({2, 3});
    EXPECT_FALSE(GetChecked(MAINCONTROL("edit_dialog_lock"))) << "one of them is free";
    key(KEY_RIGHT);
    EXPECT_EQ(place(2), "8 8 40 16");
    EXPECT_EQ(place(3), "81 8 40 16");
    dragBy(3, 20, 8);
    EXPECT_EQ(place(2), "8 8 40 16");
    EXPECT_EQ(place(3), "101 16 40 16");
    SELECTOBJECT(2);
    pick("edit_dialog_lock");
    EXPECT_EQ(LOCKEDOBJECTS(), Indexes{});
    key(KEY_RIGHT);
    EXPECT_EQ(place(2), "9 8 40 16");
}

TEST_F(ManyObjects, ALockFollowsItsObject) {
    openThree();
    LOCKOBJECTS({3, 4}, true);
    SELECTOBJECT(2);
    key(KEY_DELETE);
    EXPECT_EQ(LOCKEDOBJECTS(), (Indexes{2, 3}));
    SELECTOBJECT(2);
    edit({{"NAME", "other"}});
    EXPECT_EQ(LOCKEDOBJECTS(), (Indexes{2, 3})) << "a change of its properties does not end it";
    pick("edit_dialog_front");
    EXPECT_EQ(names(), "Dlg\nthree\nother\n");
    LOCKOBJECTS({2}, false);
    pick("edit_dialog_back");
    EXPECT_EQ(names(), "Dlg\nother\nthree\n");
    EXPECT_EQ(LOCKEDOBJECTS(), Indexes{2});
    key(KEY_DELETE);
    EXPECT_EQ(LOCKEDOBJECTS(), Indexes{});
}

TEST_F(ManyObjects, LocksEndWithTheDialog) {
    openThree();
    SELECTOBJECT(2);
    pick("edit_dialog_lock");
    openThree();
    EXPECT_EQ(LOCKEDOBJECTS(), Indexes{});
}

// ---- snapping ----

TEST_F(ManyObjects, SnappingIsOffUntilItIsChosen) {
    openThree();
    EXPECT_FALSE(SNAPISON());
    EXPECT_FALSE(GetChecked(MAINCONTROL("edit_dialog_snap")));
    dragBy(4, 70, 0);
    EXPECT_EQ(place(4), "78 56 40 16");
    pick("edit_dialog_snap");
    EXPECT_EQ(PROFILESTRGET(GETIDEINIFILE(), "DialogDlg", "Snap"), "1");
    EXPECT_TRUE(GetChecked(MAINCONTROL("edit_dialog_snap")));
    dragBy(4, 1, 10);
    EXPECT_EQ(place(4), "80 66 40 16") << "to the left edge of two";
    pick("edit_dialog_snap");
    EXPECT_FALSE(SNAPISON());
}

}  // namespace
}  // namespace tarn
