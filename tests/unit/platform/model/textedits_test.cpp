// SPDX-License-Identifier: Apache-2.0
//
// Edits and marks of many places in a text that the model holds.
#include "platform/operations/textedits.h"

#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/windowing.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

int changes = 0;

bool heard(const Object&, int event, const Object&, int) {
    changes += event == CHANGE_EVENT ? 1 : 0;
    return false;
}

const Object Window("EditsWnd"), Gone("GoneWnd");

class TextEdits : public ::testing::Test {
protected:
    void SetUp() override {
        before_ = useView(makeHeadlessView());
        const char* text =
            "EditsWnd EDITWINDOW\n  POSITION=0 0 90 90\nEND\n"
            "EditsDlg DIALOG\n  POSITION=0 0 90 90\n  LABEL label1 101\n    POSITION=1 1 9 9\nEND\n";
        ASSERT_TRUE(os::saveFile(folder_ / "a.rc", text, os::Durability::Unsynced).ok());
        RegisterWindow(Window, heard);
        ASSERT_EQ(Load(Window, folder_ / "a.rc", "EditsWnd"), "");
        changes = 0;
    }
    void TearDown() override {
        DestroyAllWindows();
        useView(std::move(before_));
    }
    static std::string textOf() { return GetText(Window).value; }
    static std::string marks() {
        std::string places;
        for (const Selection& mark : GetMarks(Window).value)
            places += std::to_string(mark.start) + "+" + std::to_string(mark.length) + " ";
        return places;
    }
    TempFolder folder_;
    std::unique_ptr<View> before_;
};

TEST_F(TextEdits, AreDoneAtOnceAndToldOnce) {
    SetText(Window, "one two three");
    EXPECT_EQ(ReplaceParts(Window, {{1, 3, "1"}, {5, 0, "+"}, {9, 5, ""}}), Ok);
    EXPECT_EQ(textOf(), "1 +two ");
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(GetModify(Window).value);
    EXPECT_EQ(GetSelection(Window).value.start, 8);
    EXPECT_EQ(GetSelection(Window).value.length, 0);
}

TEST_F(TextEdits, ThatCannotBeAreLeftOut) {
    struct Case {
        std::vector<TextEdit> edits;
        const char* text;
    };
    for (const Case& c : {Case{{}, "abc"},
                          {{{0, 1, "x"}}, "abc"},
                          {{{5, 1, "x"}}, "abc"},
                          {{{4, 9, "x"}}, "abcx"},
                          {{{2, 99, "x"}}, "ax"},
                          {{{2, -3, "x"}}, "axbc"},
                          {{{1, 2, "x"}, {2, 1, "y"}, {3, 1, "z"}}, "xz"},
                          {{{3, 1, "x"}, {1, 1, "y"}}, "abx"},
                          {{{1, 0, "x"}, {1, 0, "y"}}, "xyabc"}}) {
        SetText(Window, "abc");
        changes = 0;
        EXPECT_EQ(ReplaceParts(Window, c.edits), Ok);
        EXPECT_EQ(textOf(), c.text);
        EXPECT_EQ(changes, std::string(c.text) == "abc" ? 0 : 1) << c.text;
    }
}

TEST_F(TextEdits, NeedAnObjectAndAText) {
    EXPECT_NE(ReplaceParts(Gone, {{1, 0, "x"}}), Ok);
    EXPECT_NE(SetMarks(Gone, {}), Ok);
    EXPECT_NE(GetMarks(Gone).code, Ok);
    const Object dialog("EditsDlg");
    ASSERT_EQ(Load(dialog, folder_ / "a.rc", "EditsDlg"), "");
    const Object label = FindControl(dialog, "label1");
    EXPECT_EQ(ReplaceParts(label, {{1, 0, "x"}}), Ok);
    EXPECT_EQ(SetMarks(label, {{1, 1}}), Ok);
    EXPECT_TRUE(GetMarks(label).value.empty());
}

TEST_F(TextEdits, MarksStayWithTheirText) {
    SetText(Window, "one two one");
    SetMarks(Window, {{1, 3}, {9, 3}});
    SetSelection(Window, 5, 3);
    SetSelText(Window, "three");
    EXPECT_EQ(marks(), "1+3 11+3 ");
    SetSelection(Window, 2, 1);
    SetSelText(Window, "");
    EXPECT_EQ(marks(), "10+3 ");
    SetMarks(Window, {});
    EXPECT_EQ(marks(), "");
    SetMarks(Window, {{1, 1}});
    SetText(Window, "x");
    EXPECT_EQ(marks(), "");
}

}  // namespace
}  // namespace tarn::platform
