// SPDX-License-Identifier: GPL-3.0-or-later
//
// Alignment, the order of the controls, and the order that is clicked.
#include "ide/designer/objects/dlgalign.h"

#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgmany.h"
#include "ide/designer/objects/dlgtab.h"
#include "support/dialog_editor_fixture.h"

namespace tarn {
namespace {

using Places = std::vector<UnitRect>;
using Indexes = std::vector<int>;

// ---- the operations ----

struct Case {
    const char* what;
    Places before, after;
};

class Alignment : public ::testing::TestWithParam<Case> {};

TEST_P(Alignment, GoesByTheFirst) {
    const Case& one = GetParam();
    const AlignOperation* const operation = FINDALIGNMENT("edit_dialog_" + std::string(one.what));
    ASSERT_NE(operation, nullptr);
    Places places = one.before;
    operation->apply(places, {200, 100, 4, 8});
    for (std::size_t i = 0; i < places.size(); ++i)
        EXPECT_EQ(places[i], one.after[i])
            << i << ": " << places[i].x << " " << places[i].y << " " << places[i].w << " " << places[i].h;
}

INSTANTIATE_TEST_SUITE_P(
    All, Alignment,
    ::testing::Values(
        Case{"align_left", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {10, 50, 30, 10}}},
        Case{"align_right", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {20, 50, 30, 10}}},
        Case{"align_top", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {70, 20, 30, 10}}},
        Case{"align_bottom", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {70, 26, 30, 10}}},
        Case{"centre_across", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {15, 50, 30, 10}}},
        Case{"centre_down", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {70, 23, 30, 10}}},
        Case{"same_width", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {70, 50, 40, 10}}},
        Case{"same_height", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {70, 50, 30, 16}}},
        Case{"same_size", {{10, 20, 40, 16}, {70, 50, 30, 10}}, {{10, 20, 40, 16}, {70, 50, 40, 16}}},
        Case{"space_across",
             {{60, 0, 10, 10}, {0, 0, 10, 10}, {15, 0, 20, 10}},
             {{60, 0, 10, 10}, {0, 0, 10, 10}, {25, 0, 20, 10}}},
        Case{"space_down",
             {{0, 0, 10, 10}, {0, 11, 10, 10}, {0, 22, 10, 10}, {0, 50, 10, 10}},
             {{0, 0, 10, 10}, {0, 16, 10, 10}, {0, 33, 10, 10}, {0, 50, 10, 10}}},
        Case{"snap_grid", {{5, 3, 41, 17}, {6, 4, 3, 3}}, {{4, 0, 41, 17}, {8, 8, 3, 3}}},
        Case{"centre_dialog", {{0, 0, 40, 16}, {50, 20, 30, 10}}, {{60, 35, 40, 16}, {110, 55, 30, 10}}}),
    [](const auto& info) { return std::string(info.param.what); });

TEST(AlignmentTable, KnowsItsNames) {
    EXPECT_EQ(FINDALIGNMENT("edit_dialog"), nullptr);
    EXPECT_EQ(FINDALIGNMENT(""), nullptr);
}

// ---- with the selection ----

class AlignSelected : public DialogEditorTest {
protected:
    void openThree() {
        open(dialog(control("LABEL", "one", "8 8 60 16") + control("EDIT", "two", "100 12 40 10") +
                    control("LISTBOX", "three", "160 40 40 16")));
    }
    static std::string place(int index) { return property(index, "POSITION"); }
    static bool enabled(const std::string& item) { return GetEnabled(MAINCONTROL("edit_dialog_" + item)); }
    static void choose(const std::string& item) { pick("edit_dialog_" + item); }
};

TEST_F(AlignSelected, TheFirstSelectedStays) {
    openThree();
    SELECTOBJECTS({3, 2, 4});
    choose("align_left");
    EXPECT_EQ(place(2), "100 8 60 16");
    EXPECT_EQ(place(3), "100 12 40 10");
    EXPECT_EQ(place(4), "100 40 40 16");
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{3, 2, 4}));
}

TEST_F(AlignSelected, WhatWouldLeaveTheDialogLiesAtItsEdge) {
    openThree();
    SELECTOBJECTS({2, 4});
    choose("same_width");
    EXPECT_EQ(place(4), "140 40 60 16");
}

TEST_F(AlignSelected, LockedObjectsStayAndStillLead) {
    openThree();
    LOCKOBJECTS({2, 4}, true);
    SELECTOBJECTS({2, 3, 4});
    choose("align_top");
    EXPECT_EQ(place(2), "8 8 60 16");
    EXPECT_EQ(place(3), "100 8 40 10");
    EXPECT_EQ(place(4), "160 40 40 16");
}

TEST_F(AlignSelected, ItemsAreEnabledAsTheyMakeSense) {
    openThree();
    const struct {
        Indexes selected;
        bool one, two, three;
    } cases[] = {{{}, false, false, false},
                 {{1}, false, false, false},
                 {{2}, true, false, false},
                 {{2, 3}, true, true, false},
                 {{2, 3, 4}, true, true, true}};
    for (const auto& one : cases) {
        SELECTOBJECTS(one.selected);
        for (const char* item : {"snap_grid", "centre_dialog", "front", "back", "lock"})
            EXPECT_EQ(enabled(item), one.one) << item << " " << one.selected.size();
        for (const char* item : {"align_left", "align_right", "align_top", "align_bottom", "centre_across",
                                 "centre_down", "same_width", "same_height", "same_size"})
            EXPECT_EQ(enabled(item), one.two) << item << " " << one.selected.size();
        for (const char* item : {"space_across", "space_down"})
            EXPECT_EQ(enabled(item), one.three) << item << " " << one.selected.size();
    }
    SETDESIGNTEXT("gridstr", "0 0");
    SELECTOBJECT(2);
    EXPECT_FALSE(enabled("snap_grid")) << "there is no grid";
    EXPECT_TRUE(beeps([] { ALIGNSELECTED("edit_dialog_snap_grid"); }));
    Unload(DialogDlg);
    EXPECT_FALSE(GetEnabled(MAINCONTROL("edit_dialog")));
}

TEST_F(AlignSelected, AnAlignmentThatChangesNothingIsNoChange) {
    openThree();
    SELECTOBJECTS({2, 3});
    choose("align_left");
    DIALOGSETMODIFY(false);
    choose("align_left");
    EXPECT_FALSE(DIALOGGETMODIFY());
}

// ---- order ----

TEST_F(AlignSelected, FrontAndBackKeepTheOrderAmongThemselves) {
    openThree();
    SELECTOBJECTS({3, 2});
    choose("front");
    EXPECT_TRUE(asked.empty()) << "without a question";
    EXPECT_EQ(names(), "Dlg\nthree\none\ntwo\n");
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{4, 3})) << "they stay selected, the first one first";
    choose("back");
    EXPECT_EQ(names(), "Dlg\none\ntwo\nthree\n");
    EXPECT_EQ(SELECTEDOBJECTS(), (Indexes{3, 2}));
    DIALOGSETMODIFY(false);
    choose("back");
    EXPECT_FALSE(DIALOGGETMODIFY()) << "they are there already";
}

class TabOrder : public AlignSelected {
protected:
    static void clickOn(int index) {
        const Rect place = RCUNITSTOPIXELS(DialogDlg, DESIGNPLACE(index));
        click(place.x + place.w / 2, place.y + place.h / 2);
    }
};

TEST_F(TabOrder, ClicksNumberTheControls) {
    openThree();
    SELECTOBJECT(2);
    choose("tab_order");
    EXPECT_TRUE(TABORDERISON());
    EXPECT_TRUE(GetChecked(MAINCONTROL("edit_dialog_tab_order")));
    EXPECT_EQ(SELECTEDOBJECTS(), Indexes{});
    clickOn(4);
    EXPECT_EQ(TABORDERNOW(), (Indexes{4, 2, 3})) << "what was not clicked follows as it was";
    EXPECT_EQ(TABORDERCHOSEN(), 1U);
    clickOn(3);
    EXPECT_EQ(TABORDERNOW(), (Indexes{4, 3, 2}));
    EXPECT_EQ(names(), "Dlg\none\ntwo\nthree\n") << "nothing changes until it ends";
    EXPECT_FALSE(DIALOGGETMODIFY());
    key(KEY_ESCAPE);
    EXPECT_FALSE(TABORDERISON());
    EXPECT_EQ(names(), "Dlg\nthree\ntwo\none\n");
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_FALSE(GetChecked(MAINCONTROL("edit_dialog_tab_order")));
}

TEST_F(TabOrder, TheLastClickCanBeTakenBack) {
    openThree();
    choose("tab_order");
    clickOn(4);
    clickOn(3);
    EXPECT_TRUE(beeps([] { clickOn(4); }));
    clickOn(3);
    clickOn(2);
    EXPECT_EQ(TABORDERNOW(), (Indexes{4, 2, 3}));
    EXPECT_TRUE(beeps([] { click(290, 150); })) << "beside the controls";
    choose("tab_order");
    EXPECT_EQ(names(), "Dlg\nthree\none\ntwo\n");
}

TEST_F(TabOrder, WithoutClicksNothingChanges) {
    openThree();
    choose("tab_order");
    key(KEY_ESCAPE);
    EXPECT_FALSE(DIALOGGETMODIFY());
    EXPECT_EQ(names(), "Dlg\none\ntwo\nthree\n");
}

TEST_F(TabOrder, NothingElseIsDoneMeanwhile) {
    openThree();
    choose("tab_order");
    for (const int code :
         std::initializer_list<int>{KEY_F2, KEY_RETURN, KEY_DELETE, KEY_RIGHT, 0x1000 + KEY_DOWN, 9})
        EXPECT_TRUE(beeps([=] { key(code); })) << code;
    for (const char* item : {"edit_delete", "edit_select_all", "edit_properties"})
        EXPECT_TRUE(beeps([=] { pick(item); })) << item;
    EXPECT_FALSE(enabled("front"));
    EXPECT_TRUE(enabled("tab_order"));
    EXPECT_EQ(count(), 4);
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(TabOrder, AnOrderOfOthersIsNotMade) {
    openThree();
    choose("tab_order");
    clickOn(4);
    press("Label_ctl");
    EXPECT_EQ(count(), 5);
    EXPECT_EQ(TABORDERNOW(), (Indexes{2, 3, 4, 5}));
    key(KEY_ESCAPE);
    EXPECT_EQ(names(), "Dlg\none\ntwo\nthree\nLabel1\n");
}

TEST_F(TabOrder, OneControlHasNoOrder) {
    open(dialog(control("LABEL", "one", "8 8 60 16")));
    EXPECT_FALSE(enabled("tab_order"));
    EXPECT_TRUE(beeps([] { TABORDERBEGIN(); }));
    EXPECT_FALSE(TABORDERISON());
}

}  // namespace
}  // namespace tarn
