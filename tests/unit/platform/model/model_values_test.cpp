// SPDX-License-Identifier: Apache-2.0
//
// What controls and windows hold: texts, numbers, rows, positions, members of arrays.
#include "unit/platform/model/model_fixture.h"

#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <set>

namespace tarn::platform {
namespace {

// ---- values ----

TEST_F(ModelTest, LoadSetsWhatTheResourcesSay) {
    loadMain();
    EXPECT_EQ(GetCaption(mine("label1")).value, "A label");
    EXPECT_EQ(GetText(mine("edit1")).value, "first");
    EXPECT_EQ(GetMaxLength(mine("edit1")).value, 10);
    EXPECT_EQ(GetCombotext(mine("combo0")).value, "typed");
    EXPECT_EQ(GetCombostyle(mine("combo2")).value, 2);
    EXPECT_EQ(GetListCount(mine("combo2")).value, 3);
    EXPECT_EQ(GetMin(mine("bar1")).value, -5);
    EXPECT_EQ(GetValue(mine("bar1")).value, 2);
    EXPECT_EQ(GetMax(findControl(mine("bar1"))->object).value, 5);
    EXPECT_FALSE(GetEnabled(mine("disabled")).value);
    EXPECT_EQ(GetPicture(mine("tool")).value, "open");
    EXPECT_TRUE(GetChecked(mine("file_exit")).value);
    EXPECT_EQ(control("file_exit").shortcut, 115 + 0x3000);
    EXPECT_EQ(control("below").level, 3);
    EXPECT_TRUE(control("ok").isDefault);
    EXPECT_TRUE(control("cancel").isCancel);
    EXPECT_EQ(GetBorderStyle(main).value, 1);
    Load(second);
    EXPECT_EQ(GetBorderStyle(second).value, 2);
    Load(editor);
    EXPECT_EQ(GetBorderStyle(editor).value, 2);
    EXPECT_EQ(GetFlags(editor).value, READONLY);
    EXPECT_TRUE(GetReadonly(editor).value);
    EXPECT_EQ(GetMaxLength(editor).value, 500);
}

TEST_F(ModelTest, ResourceUnitsBecomePixelsByTheFontsMeasures) {
    loadMain();
    EXPECT_EQ(GetPosition(mine("label1"), WINDOW_UNIT).value, (Rect{6, 13, 6, 13}))
        << "6 by 13 pixels for 4 by 8 units";
    EXPECT_EQ(GetPosition(main, CLIENT_UNIT).value, (Rect{6, 13, 60, 130}));
}

TEST_F(ModelTest, TextsOfAnyBytesAreKept) {
    Load(editor);
    std::string all;
    for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
    EXPECT_EQ(SetText(editor, all), Ok);
    EXPECT_EQ(GetText(editor).value, all);
    EXPECT_EQ(GetTextLength(editor).value, 256);
    EXPECT_FALSE(GetModify(editor).value);
    SetSelection(editor, 11, 1);
    EXPECT_EQ(GetSelText(editor).value, "\n");
    SetSelText(editor, "abc");
    EXPECT_TRUE(GetModify(editor).value);
    EXPECT_EQ(GetTextLength(editor).value, 258);
    SetModify(editor, false);
    EXPECT_FALSE(GetModify(editor).value);
    SetModify(editor, true);
    SetText(editor, "");
    EXPECT_FALSE(GetModify(editor).value) << "a new text is not modified";
    EXPECT_EQ(GetSelection(editor).value.start, 1);
}

TEST_F(ModelTest, SelectionsStayInTheText) {
    Load(editor);
    SetText(editor, "12345");
    const int cases[][4] = {{2, 3, 2, 3},  {0, 1, 1, 1},  {-9, 2, 1, 2}, {6, 5, 6, 0},
                            {99, 1, 6, 0}, {4, 99, 4, 2}, {3, -1, 3, 0}, {1, INT32_MAX, 1, 5}};
    for (const auto& [start, length, wantedStart, wantedLength] : cases) {
        SetSelection(editor, start, length);
        EXPECT_EQ(GetSelection(editor).value.start, wantedStart);
        EXPECT_EQ(GetSelection(editor).value.length, wantedLength);
    }
}

TEST_F(ModelTest, ComboBoxesOfEachStyle) {
    loadMain();
    const Object typed = mine("combo0"), list = mine("combo2");
    SetCombotext(typed, "anything");
    EXPECT_EQ(GetCombotext(typed).value, "anything");
    EXPECT_EQ(GetListIndex(typed).value, 0);
    SetListIndex(typed, 2);
    EXPECT_EQ(GetText(typed).value, "Two");
    EXPECT_EQ(GetListIndex(typed).value, 2);
    SetCombotext(list, "THREE");
    EXPECT_EQ(GetListIndex(list).value, 3) << "the case does not matter";
    EXPECT_EQ(GetCombotext(list).value, "three");
    SetCombotext(list, "none");
    EXPECT_EQ(GetListIndex(list).value, 3) << "no match leaves the selection alone";
    SetListIndex(list, 0);
    EXPECT_EQ(GetCombotext(list).value, "");
    EXPECT_EQ(GetTextLength(list).value, 0);
}

TEST_F(ModelTest, ValuesStayInTheirRange) {
    loadMain();
    SetValue(mine("bar1"), 99);
    EXPECT_EQ(GetValue(mine("bar1")).value, 5);
    SetValue(mine("bar1"), -99);
    EXPECT_EQ(GetValue(mine("bar1")).value, -5);
    SetMin(mine("bar1"), 10);
    SetMax(mine("bar1"), 0);
    SetValue(mine("bar1"), 3);
    EXPECT_EQ(GetValue(mine("bar1")).value, 10) << "a range upside down harms nobody";
    SetValue(mine("check1"), 77);
    EXPECT_EQ(GetValue(mine("check1")).value, 1);
}

TEST_F(ModelTest, RadioButtonsExcludeEachOtherInTheirGroup) {
    loadMain();
    const auto set = [&] {
        std::string names;
        for (const char* name : {"radio1", "radio2", "radio3", "free1", "free2", "other1"})
            if (GetValue(mine(name)).value != 0) names.append(name).append(" ");
        return names;
    };
    EXPECT_EQ(set(), "radio1 other1 ");
    SetValue(mine("radio3"), 1);
    EXPECT_EQ(set(), "radio3 other1 ");
    SetValue(mine("free1"), 1);
    SetValue(mine("free2"), 5);
    EXPECT_EQ(set(), "radio3 free2 other1 ") << "those that stand together";
    EXPECT_EQ(Controlselectionpos(mine("radio1")).value, 3);
    SetValue(mine("radio3"), 0);
    EXPECT_EQ(set(), "free2 other1 ");
    EXPECT_EQ(Controlselectionpos(mine("radio1")).value, 0);
    EXPECT_EQ(Controlselectionpos(mine("free1")).code, NotAControlArray);
}

// ---- lists ----

TEST_F(ModelTest, RowsAreNumberedFromOneAndHaveNoLineEnd) {
    loadMain();
    const Object list = mine("list1");
    AddItem(list, "b\n");
    AddItem(list, 1, "a\r\n", "a.bmp");
    AddItem(list, 99, "c\nd\n\n");
    AddItem(list, -5, "");
    EXPECT_EQ(GetListCount(list).value, 4);
    EXPECT_EQ(GetList(list, 1).value, "");
    EXPECT_EQ(GetList(list, 2).value, "a");
    EXPECT_EQ(GetList(list, 3).value, "b");
    EXPECT_EQ(GetList(list, 4).value, "c\nd\n") << "one line end is taken off";
    SetList(list, 3, "b\r");
    EXPECT_EQ(GetList(list, 3).value, "b\r") << "a carriage return by itself is none";
    const std::string big(100'000, 'x');
    SetList(list, 1, big);
    EXPECT_EQ(GetList(list, 1).value, big);
    EXPECT_EQ(control("list1").rows[1].picture, "a.bmp");
}

TEST_F(ModelTest, RowsOutOfRangeAreEmptyAndHarmless) {
    loadMain();
    const Object list = mine("icons1");
    AddItem(list, "only");
    for (const int row : {0, -1, 2, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(GetList(list, row).value, "");
        EXPECT_EQ(GetList(list, row).code, Ok);
        EXPECT_EQ(SetList(list, row, "x"), Ok);
        EXPECT_EQ(RemoveItem(list, row), Ok);
        SetListIndex(list, 1);
        EXPECT_EQ(SetListIndex(list, row), Ok);
        EXPECT_EQ(GetListIndex(list).value, 0);
    }
    EXPECT_EQ(GetListCount(list).value, 1);
    EXPECT_EQ(GetList(list, 1).value, "only");
}

TEST_F(ModelTest, TheSelectedRowMovesWithItsText) {
    loadMain();
    const Object list = mine("list1");
    for (const char* row : {"a", "b", "c"}) AddItem(list, row);
    SetListIndex(list, 2);
    AddItem(list, 1, "new");
    EXPECT_EQ(GetListIndex(list).value, 3);
    RemoveItem(list, 1);
    EXPECT_EQ(GetListIndex(list).value, 2);
    RemoveItem(list, 3);
    EXPECT_EQ(GetListIndex(list).value, 2);
    RemoveItem(list, 2);
    EXPECT_EQ(GetListIndex(list).value, 0);
    SetListIndex(list, 1);
    Clear(list);
    EXPECT_EQ(GetListIndex(list).value, 0);
    EXPECT_EQ(GetListCount(list).value, 0);
}

TEST_F(ModelTest, NamedValuesOfAWindow) {
    loadMain();
    EXPECT_EQ(GetArrayValue(main, "Name").value, "");
    SetArrayValue(main, "Name", "a");
    SetArrayValue(main, "NAME", "b\nc");
    EXPECT_EQ(GetArrayValue(main, "name").value, "b\nc");
    Unload(main);
    loadMain();
    EXPECT_EQ(GetArrayValue(main, "Name").value, "");
}

// ---- positions ----

TEST_F(ModelTest, PositionsAreKeptInTheLimitsOfTheWindow) {
    loadMain();
    SetPosition(main, WINDOW_UNIT, {-20, -20, 100, 100});
    EXPECT_EQ(GetPosition(main, WINDOW_UNIT).value, (Rect{-20, -20, 100, 100}));
    SetMinPosition(main, {0, 0, 632, 25});
    SetMaxPosition(main, {0, 0, 1912, 25});
    SetPosition(main, WINDOW_UNIT, {0, 0, 1920, 1});
    EXPECT_EQ(GetPosition(main, WINDOW_UNIT).value, (Rect{0, 0, 1912, 25}));
    SetPosition(main, CLIENT_UNIT, {0, 0, 10, 400});
    EXPECT_EQ(GetPosition(main, CLIENT_UNIT).value, (Rect{0, 0, 632, 25}));
    SetMaxPosition(main, {});
    SetPosition(main, WINDOW_UNIT, {0, 0, 5000, 5000});
    EXPECT_EQ(GetPosition(main, WINDOW_UNIT).value, (Rect{0, 0, 5000, 5000}));
    EXPECT_EQ(GetMinPosition(main).value, (Rect{0, 0, 632, 25}));
    SetPosition(mine("label1"), WINDOW_UNIT, {1, 2, 3, 4});
    EXPECT_EQ(GetPosition(mine("label1"), CLIENT_UNIT).value, (Rect{1, 2, 3, 4}));
}

TEST_F(ModelTest, WindowStates) {
    loadMain();
    EXPECT_EQ(GetWindowState(main).value, 0);
    for (const int state : {2, 1, 0}) {
        SetWindowState(main, state);
        EXPECT_EQ(GetWindowState(main).value, state);
    }
    SetWindowState(main, 7);
    EXPECT_EQ(GetWindowState(main).value, 0);
}

TEST_F(ModelTest, MeasuresWithoutAScreenAreFixed) {
    loadMain();
    EXPECT_EQ(ScreenSize(), (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(TextWidth(main, "ABC").value, 18);
    EXPECT_EQ(TextWidth(main, "\xc3\xa4").value, 6) << "one letter of two bytes";
    EXPECT_EQ(TextWidth(main, "a\nlong").value, 24);
    EXPECT_EQ(TextHeight(main, "a").value, 13);
    EXPECT_EQ(GetDpiX(Sysscreen).value, 96);
}

TEST_F(ModelTest, FontsAreKept) {
    loadMain();
    const Font font{"Mono", 12, true, false};
    SetFontName(main, font.name);
    SetFontSize(main, font.size);
    SetFontBold(main, font.bold);
    SetFontItalic(main, font.italic);
    const Object button = mine("ok");
    EXPECT_EQ(GetFontName(main).value, font.name);
    EXPECT_EQ(GetFontSize(main).value, font.size);
    EXPECT_EQ(GetFontBold(main).value, font.bold);
    EXPECT_EQ(GetFontItalic(main).value, font.italic);
    EXPECT_EQ(GetFontName(button).value, "") << "its own";
    EXPECT_EQ(GetFontSize(button).value, 0);
    SetFontSize(main, -3);
    EXPECT_EQ(GetFontSize(main).value, 0);
}

// ---- arrays ----

TEST_F(ModelTest, ArraysHaveBoundsFromOne) {
    loadMain();
    const Object first = mine("radio1");
    EXPECT_EQ(ControlLbound(first).value, 1);
    EXPECT_EQ(ControlUbound(first).value, 3) << "the array's name in any case";
    EXPECT_EQ(ControlElement(mine("radio3"), 1), first);
    EXPECT_TRUE(ControlElement(first, 0).empty());
    EXPECT_TRUE(ControlElement(first, 4).empty());
    EXPECT_EQ(Controlarraypos(mine("radio2")).value, 2);
    EXPECT_EQ(ControlUbound(mine("ok")).code, NotAControlArray);
    EXPECT_EQ(Controlarraypos(mine("ok")).code, NotAControlArray);
    EXPECT_TRUE(ControlElement(mine("ok"), 1).empty());
    EXPECT_TRUE(ControlElement(Object(), 1).empty());
}

TEST_F(ModelTest, MenuArraysShrinkAndGrowAgainWithConsecutiveNumbers) {
    loadMain();
    const Object first = mine("item_01");
    const std::set<int> before = {GetHandle(mine("item_02")).value, GetHandle(mine("item_03")).value};
    while (ControlUbound(first).value > 1) ASSERT_EQ(RemoveMenuitem(ControlElement(first, 2)), Ok);
    EXPECT_EQ(ControlUbound(first).value, 1);
    EXPECT_EQ(GetTypeof(first), "Menuitem");
    for (const int handle : before) EXPECT_TRUE(FindHandle(handle).empty());
    for (int i = 2; i <= 3; ++i)
        ASSERT_EQ(AddMenuitem(ControlElement(first, i - 1), "c" + std::to_string(i)), Ok);
    EXPECT_EQ(ControlUbound(first).value, 3);
    for (int i = 1; i <= 3; ++i) {
        const Object item = ControlElement(first, i);
        EXPECT_EQ(item.number(), 201 + i);
        EXPECT_EQ(Controlarraypos(item).value, i);
        EXPECT_FALSE(before.contains(GetHandle(item).value));
    }
    EXPECT_EQ(GetCaption(ControlElement(first, 3)).value, "c3");
    EXPECT_TRUE(GetEnabled(ControlElement(first, 3)).value);
    ASSERT_EQ(AddMenuitem(ControlElement(first, 3), "more"), Ok);
    EXPECT_EQ(ControlElement(first, 4).number(), 207) << "the next number that nothing has";
    const Window& window = *findWindow(main);
    EXPECT_EQ(window.menuItems[2]->name, "below") << "it hangs below the first one now";
    EXPECT_EQ(window.menuItems[4]->caption, "c3");
    EXPECT_EQ(window.menuItems[5]->caption, "more");
    EXPECT_EQ(window.menuItems[5]->level, 2);
}

TEST_F(ModelTest, AnItemIsAddedBehindWhatHangsBelowTheOneBefore) {
    loadMain();
    ASSERT_EQ(AddMenuitem(mine("item_03"), "new"), Ok);
    const Window& window = *findWindow(main);
    EXPECT_EQ(window.menuItems[4]->name, "below");
    EXPECT_EQ(window.menuItems[5]->caption, "new");
}

TEST_F(ModelTest, OnlyMenuArraysGrowAndShrink) {
    loadMain();
    for (const char* name : {"radio1", "file_exit", "ok"}) {
        EXPECT_EQ(AddMenuitem(mine(name), ""), NotAControlArray) << name;
        EXPECT_EQ(RemoveMenuitem(mine(name)), NotAControlArray) << name;
    }
}

TEST_F(ModelTest, AnItemMayBeRemovedInItsOwnEvent) {
    loadMain();
    handler = [&](const Object&, int event, const Object& sender, int) {
        if (event != COMMAND_EVENT) return false;
        EXPECT_EQ(RemoveMenuitem(sender), Ok);
        return true;
    };
    userCommand(control("item_02"));
    EXPECT_EQ(ControlUbound(mine("item_01")).value, 2);
}

}  // namespace
}  // namespace tarn::platform
