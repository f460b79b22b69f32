// SPDX-License-Identifier: Apache-2.0
//
// What edit windows show around their text, without a screen.
#include "platform/model/model.h"
#include "platform/operations/textedits.h"
#include "platform/windowing.h"
#include "support/resources.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

int changes = 0;
bool countChanges(const Object&, int event, const Object&, int) {
    if (event == CHANGE_EVENT) ++changes;
    return false;
}

class EditsTest : public ::testing::Test {
protected:
    const Object main{"Main"}, editor{"Editor"};
    TempFolder folder;
    std::unique_ptr<View> before;

    void SetUp() override {
        ASSERT_EQ(useResources(folder, "Main DIALOG\nEND\nEditor EDITWINDOW\nEND\n"), "");
        before = useView(makeHeadlessView());
        for (const Object& window : {main, editor}) RegisterWindow(window, countChanges);
        ASSERT_EQ(Load(main), Ok);
        ASSERT_EQ(Load(editor), Ok);
        changes = 0;
    }
    void TearDown() override {
        DestroyAllWindows();
        useView(std::move(before));
        SetApplicationResources("");
    }
};

TEST_F(EditsTest, WhatIsSetIsThereAgainCutToItsLimits) {
    EXPECT_EQ(GetLooks(editor).value, LOOK_LINE);
    EXPECT_EQ(GetTabWidth(editor).value, 4);
    SetLooks(editor, LOOK_BLANKS);
    SetTabWidth(editor, 0);
    SetZoom(editor, 100);
    SetBlocks(editor, "any if");
    ShowChoices(editor, "a\tb\n", 1);
    ShowCallTip(editor, 3, "tip", 1, 2);
    SetStatus(editor, "stays");
    SetStatus(editor, "passes", StatusKind::Passes);
    EXPECT_EQ(GetLooks(editor).value, LOOK_BLANKS);
    EXPECT_EQ(GetTabWidth(editor).value, 1);
    EXPECT_EQ(GetZoom(editor).value, 20);
    EXPECT_EQ(GetBlocks(editor).value, "any if");
    EXPECT_EQ(GetChoices(editor).value, "a\tb\n");
    EXPECT_EQ(GetCallTip(editor).value, "tip");
    EXPECT_EQ(GetStatus(editor).value, "stays");
    EXPECT_EQ(GetStatus(editor, StatusKind::Passes).value, "passes");
    SetTabWidth(editor, 99);
    SetZoom(editor, -100);
    EXPECT_EQ(GetTabWidth(editor).value, 32);
    EXPECT_EQ(GetZoom(editor).value, -8);
}

TEST_F(EditsTest, OtherWindowsTakeNoneOfIt) {
    EXPECT_EQ(SetLooks(main, LOOK_BLANKS), Ok);
    EXPECT_EQ(SetTabWidth(main, 8), Ok);
    EXPECT_EQ(SetLineEnds(main, ENDS_LF), Ok);
    EXPECT_EQ(ShowChoices(main, "a", 1), Ok);
    EXPECT_EQ(SetStatus(main, "a", StatusKind::Passes), Ok);
    EXPECT_EQ(GetStatus(main, StatusKind::Passes).value, "");
    EXPECT_EQ(GetLooks(main).value, 0);
    EXPECT_EQ(GetTabWidth(main).value, 0);
    EXPECT_EQ(GetLineEnds(main).value, ENDS_NONE);
    EXPECT_EQ(GetChoices(main).value, "");
    EXPECT_EQ(GetTextRange(main, 1, 5).value, "");
}

TEST_F(EditsTest, OnWhatIsNotLoadedTheyFail) {
    const Object gone("Gone");
    for (const Code code :
         {GetTextRange(gone, 1, 1).code, GetLooks(gone).code, SetLooks(gone, 0), SetTabWidth(gone, 1),
          SetZoom(gone, 1), GetLineEnds(gone).code, SetLineEnds(gone, 0), SetBlocks(gone, ""),
          FoldAll(gone, true), ShowChoices(gone, "", 0), ShowCallTip(gone, 1, "", 0, 0), SetStatus(gone, ""),
          SetStatus(gone, "", StatusKind::Passes)})
        EXPECT_EQ(code, 702);
}

TEST_F(EditsTest, RangesAreCutToTheText) {
    SetText(editor, "abc");
    struct Case {
        int start, length;
        const char* text;
    };
    for (const auto& [start, length, text] : {Case{1, 3, "abc"},
                                              {2, 1, "b"},
                                              {3, 100, "c"},
                                              {4, 1, ""},
                                              {100, 1, ""},
                                              {-5, 2, "ab"},
                                              {1, -1, ""}})
        EXPECT_EQ(GetTextRange(editor, start, length).value, text) << start << " " << length;
}

TEST_F(EditsTest, LineEndsAreToldAndConverted) {
    struct Case {
        std::string text;
        int ends;
        std::string pairs;
    };
    const Case cases[] = {
        {"", ENDS_NONE, ""},
        {"a", ENDS_NONE, "a"},
        {"a\n", ENDS_LF, "a\r\n"},
        {"\r\n\r\n", ENDS_CRLF, "\r\n\r\n"},
        {"a\rb", ENDS_CR, "a\r\nb"},
        {"a\r\r\nb\n", ENDS_MIXED, "a\r\n\r\nb\r\n"},
        {"\r\r", ENDS_CR, "\r\n\r\n"},
        {"\n\r", ENDS_MIXED, "\r\n\r\n"},
        {"\n\r\n", ENDS_MIXED, "\r\n\r\n"},
        {"\r\n\r", ENDS_MIXED, "\r\n\r\n"},
        {std::string("\0\n\xFF", 3), ENDS_LF, std::string("\0\r\n\xFF", 4)},
    };
    for (const auto& [text, ends, pairs] : cases) {
        SetText(editor, text);
        changes = 0;
        EXPECT_EQ(GetLineEnds(editor).value, ends);
        EXPECT_EQ(SetLineEnds(editor, ENDS_CRLF), Ok);
        EXPECT_EQ(GetText(editor).value, pairs);
        EXPECT_EQ(changes, text == pairs ? 0 : 1);
    }
}

TEST_F(EditsTest, AConversionKeepsTheCaretInItsLine) {
    SetText(editor, "a\nb\nc");
    SetSelection(editor, 5, 0);
    SetLineEnds(editor, ENDS_CRLF);
    EXPECT_EQ(GetSelection(editor).value.start, 7);
}

TEST_F(EditsTest, AConversionIsOneStepAndKeepsTheMarks) {
    SetText(editor, "a\nbc\nd\n");
    SetMarks(editor, {{1, 1}, {4, 3}});
    SetLineEnds(editor, ENDS_CRLF);
    ASSERT_EQ(GetMarks(editor).value.size(), 2U);
    EXPECT_EQ(GetMarks(editor).value[0].start, 1);
    EXPECT_EQ(GetMarks(editor).value[1].start, 5) << "in front of c";
    EXPECT_EQ(GetMarks(editor).value[1].length, 4) << "with the pair";
    Undo(editor);
    EXPECT_EQ(GetText(editor).value, "a\nbc\nd\n");
    EXPECT_FALSE(CanUndo(editor));
    EXPECT_FALSE(GetModify(editor).value);
    Redo(editor);
    EXPECT_EQ(GetText(editor).value, "a\r\nbc\r\nd\r\n");
}

TEST_F(EditsTest, AReadonlyOrFullTextKeepsItsLineEnds) {
    SetText(editor, "a\nb");
    SetMaxLength(editor, 3);
    SetLineEnds(editor, ENDS_CRLF);
    EXPECT_EQ(GetText(editor).value, "a\nb");
    SetMaxLength(editor, 0);
    SetFlags(editor, READONLY);
    SetLineEnds(editor, ENDS_CRLF);
    EXPECT_EQ(GetText(editor).value, "a\nb");
    SetFlags(editor, 0);
    SetLineEnds(editor, ENDS_MIXED);
    EXPECT_EQ(GetText(editor).value, "a\nb") << "no end of its own";
}

}  // namespace
}  // namespace tarn::platform
