// SPDX-License-Identifier: Apache-2.0
//
// Marks of lines in a text that the model holds.
#include "platform/model/linemarks.h"

#include "os/files.h"
#include "platform/model/view.h"
#include "platform/windowing.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

const Object Window("MarksWnd"), Dialog("MarksDlg"), Gone("GoneWnd");
std::vector<int> clicks;

bool heard(const Object& window, int event, const Object&, int parameter) {
    if (event == KEYPRESS_EVENT && parameter == KEY_MARGIN_CLICK)
        clicks.push_back(GetClickedLine(window).value);
    return false;
}

class LineMarks : public ::testing::Test {
protected:
    void SetUp() override {
        before_ = useView(makeHeadlessView());
        const char* text =
            "MarksWnd EDITWINDOW\n  POSITION=0 0 90 90\nEND\n"
            "MarksDlg DIALOG\n  POSITION=0 0 90 90\n  LABEL label1 101\n    POSITION=1 1 9 9\nEND\n";
        ASSERT_TRUE(os::saveFile(folder_ / "a.rc", text, os::Durability::Unsynced).ok());
        RegisterWindow(Window, heard);
        ASSERT_EQ(Load(Window, folder_ / "a.rc", "MarksWnd"), "");
        ASSERT_EQ(SetMarkMargin(Window, true), Ok);
        SetText(Window, "one\ntwo\nthree\nfour\nfive\n");
        clicks.clear();
    }
    void TearDown() override {
        DestroyAllWindows();
        useView(std::move(before_));
    }
    static void mark(const std::vector<int>& lines) {
        std::vector<LineMark> marks;
        for (const int line : lines) marks.push_back({line, LINEMARK_BREAKPOINT});
        EXPECT_EQ(SetLineMarks(Window, marks), Ok);
    }
    static std::string lines() {
        std::string text;
        for (const LineMark& mark : GetLineMarks(Window).value) text += std::to_string(mark.line) + " ";
        return text;
    }
    // Replaces a part of the text as the user does.
    static void edit(std::string_view part, std::string_view text) {
        const std::size_t at = GetText(Window).value.find(part);
        ASSERT_NE(at, std::string::npos) << part;
        SetSelection(Window, static_cast<int>(at) + 1, static_cast<int>(part.size()));
        SetSelText(Window, text);
    }
    TempFolder folder_;
    std::unique_ptr<View> before_;
};

TEST_F(LineMarks, AreKeptInTheirOrderWithTheirKinds) {
    const std::vector<LineMark> marks = {{4, LINEMARK_RULE}, {2, LINEMARK_BREAKPOINT}, {2, LINEMARK_CURRENT}};
    SetLineMarks(Window, marks);
    EXPECT_EQ(GetLineMarks(Window).value, marks);
}

TEST_F(LineMarks, OfLinesThatAreNotThereHaveNone) {
    mark({0, -3, 6, 7, 2});
    EXPECT_EQ(lines(), "0 0 6 0 2 ") << "behind the last line end there is a line";
}

TEST_F(LineMarks, MoveWithTheirLines) {
    struct Case {
        const char *part, *text, *lines;
    };
    for (const Case& c : {Case{"one\n", "zero\none\n", "3 5 "},
                          {"one\n", "", "1 3 "},
                          {"one", "1", "2 4 "},
                          {"two", "a\nb\ntwo", "4 6 "},
                          {"wo\n", "wo\n\n\n", "2 6 "},
                          {"two\n", "", "0 3 "},
                          {"two\nthree\n", "", "0 2 "},
                          {"three\n", "", "2 3 "},
                          {"two\nthree\nfour\nfive\n", "", "0 0 "},
                          {"\nfour", "", "2 3 "},
                          {"e\nt", "", "1 3 "},
                          {"five\n", "", "2 4 "},
                          {"three\nfour", "four", "2 3 "},
                          {"two\n", "2\n", "0 4 "}}) {
        SetText(Window, "one\ntwo\nthree\nfour\nfive\n");
        mark({2, 4});
        edit(c.part, c.text);
        EXPECT_EQ(lines(), c.lines) << c.part << " -> " << c.text;
    }
}

TEST_F(LineMarks, AreNotMovedByLineEndsOfAnotherKind) {
    mark({2, 5});
    SetLineEnds(Window, ENDS_CRLF);
    EXPECT_EQ(lines(), "2 5 ");
}

TEST_F(LineMarks, GoWithTheText) {
    mark({2});
    SetText(Window, "one\ntwo\n");
    EXPECT_EQ(lines(), "");
}

TEST_F(LineMarks, NeedTheMargin) {
    mark({2});
    SetMarkMargin(Window, false);
    EXPECT_FALSE(GetMarkMargin(Window).value);
    EXPECT_EQ(lines(), "");
    mark({2});
    EXPECT_EQ(lines(), "");
}

TEST_F(LineMarks, TellTheLineOfAClickBesideThem) {
    Control& window = *findControl(Window);
    ASSERT_EQ(Show(Window, false).code, Ok);
    userMarginClick(window, 3);
    userMarginClick(window, 1);
    EXPECT_EQ(clicks, (std::vector<int>{3, 1}));
    SetMarkMargin(Window, false);
    userMarginClick(window, 2);
    EXPECT_EQ(clicks.size(), 2U) << "there is no margin to click in";
}

TEST_F(LineMarks, AreNotOfOtherObjects) {
    EXPECT_NE(SetLineMarks(Gone, {}), Ok);
    EXPECT_NE(GetLineMarks(Gone).code, Ok);
    EXPECT_NE(SetMarkMargin(Gone, true), Ok);
    EXPECT_NE(GetMarkMargin(Gone).code, Ok);
    EXPECT_NE(GetClickedLine(Gone).code, Ok);
    ASSERT_EQ(Load(Dialog, folder_ / "a.rc", "MarksDlg"), "");
    const Object label = FindControl(Dialog, "label1");
    EXPECT_EQ(SetMarkMargin(label, true), Ok);
    EXPECT_FALSE(GetMarkMargin(label).value);
    EXPECT_EQ(SetLineMarks(label, {{1, LINEMARK_CURRENT}}), Ok);
    EXPECT_TRUE(GetLineMarks(label).value.empty());
}

}  // namespace
}  // namespace tarn::platform
