// SPDX-License-Identifier: Apache-2.0
//
// Questions to the user, and what the system tells.
#include "unit/platform/model/model_fixture.h"

#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

// ---- dialogs ----

TEST_F(ModelTest, MessageBoxesAskWithTheirButtons) {
    answers = {"&No", "", "OK"};
    EXPECT_EQ(MsgBox("Title", "Text", "&Yes\r\n&No\n&Cancel", BoxIcon::Question, 2), "&No");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Yes", "&No", "&Cancel"}));
    EXPECT_EQ(asked[0].defaultButton, 2);
    EXPECT_EQ(asked[0].icon, BoxIcon::Question);
    EXPECT_EQ(MsgBox("Title", "Text", "&Yes\n&No"), "") << "closed";
    EXPECT_EQ(MsgBox("Title", "Text", "", BoxIcon::None, 9), "OK");
    EXPECT_EQ(asked[2].buttons, std::vector<std::string>{"OK"});
    EXPECT_EQ(asked[2].defaultButton, 1);
}

struct Numeric {
    int flags;
    const char* answer;
    int result, defaultButton;
    BoxIcon icon;
};

TEST_F(ModelTest, NumericMessageBoxes) {
    const Numeric cases[] = {
        {0, "OK", 1, 1, BoxIcon::None},
        {0, "", 1, 1, BoxIcon::None},
        {1 + 16, "Cancel", 2, 1, BoxIcon::Error},
        {1, "", 2, 1, BoxIcon::None},
        {3 + 32 + 512, "&Yes", 6, 3, BoxIcon::Question},
        {3, "", 2, 1, BoxIcon::None},
        {4 + 48 + 256, "&No", 7, 2, BoxIcon::Warning},
        {4, "", 7, 1, BoxIcon::None},
        {5 + 64, "&Retry", 4, 1, BoxIcon::Information},
        {5, "", 2, 1, BoxIcon::None},
    };
    for (const Numeric& one : cases) {
        answers = {one.answer};
        EXPECT_EQ(MsgBoxEx("t", "x", one.flags), one.result) << one.flags << one.answer;
        EXPECT_EQ(asked.back().defaultButton, one.defaultButton);
        EXPECT_EQ(asked.back().icon, one.icon);
    }
}

TEST_F(ModelTest, OtherDialogsAskInTheirKind) {
    answers = {"typed", "two", "/f", "/s", "/d/"};
    EXPECT_EQ(InputBox("t", "p", "v"), "typed");
    EXPECT_EQ(ListBox("t", "p", "one\ntwo\n"), "two");
    EXPECT_EQ(OpenFileDialog("t", "start", "All(*.*)|*.*|"), "/f");
    EXPECT_EQ(SaveAsDialog("t", "start", ""), "/s");
    EXPECT_EQ(OpenFolderDialog("t", "start"), "/d/");
    using Kind = Question::Kind;
    const Kind kinds[] = {Kind::Input, Kind::List, Kind::OpenFile, Kind::SaveFile, Kind::Folder};
    for (std::size_t i = 0; i < asked.size(); ++i) EXPECT_EQ(asked[i].kind, kinds[i]);
    EXPECT_EQ(asked[0].value, "v");
    EXPECT_EQ(asked[1].rows, (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(asked[2].filter, "All(*.*)|*.*|");
    EXPECT_EQ(InputBox("t", "p", "v"), "") << "a closed box is empty";
}

TEST_F(ModelTest, WhoeverPlaysTheUserAnswersTheOpenQuestion) {
    useView(makeHeadlessView());
    EXPECT_EQ(MsgBox("t", "x", "&Yes\n&No"), "") << "nobody is there";
    play({[] {
        ASSERT_NE(view().asking(), nullptr);
        EXPECT_EQ(view().asking()->text, "x");
        EXPECT_FALSE(view().answer("Maybe"));
        EXPECT_TRUE(view().answer("No"));
    }});
    EXPECT_EQ(MsgBox("t", "x", "&Yes\n&No"), "&No");
    EXPECT_EQ(view().asking(), nullptr);
    EXPECT_FALSE(view().answer("No"));
    play({[] { EXPECT_TRUE(view().answer("b")); }});
    EXPECT_EQ(ListBox("t", "p", "a\nb"), "b");
    play({[] { EXPECT_TRUE(view().answer("")); }});
    EXPECT_EQ(ListBox("t", "p", "a\nb"), "");
}

// ---- system ----

TEST_F(ModelTest, DiskSpaceOfAFolderThatDoesNotExistIsMinusOne) {
    EXPECT_GT(DiskSpace(folder.path()).value, 0);
    EXPECT_EQ(DiskSpace(folder / "none").value, -1);
    EXPECT_EQ(DiskSpace(folder / "a.rc").value, -1) << "a file";
    EXPECT_EQ(DiskSpace("").value, -1);
}

TEST_F(ModelTest, AToolIsStoppedWhileItsProgressIsShown) {
    EXPECT_FALSE(pressToolStop());
    ShowToolProgress("Compiling");
    EXPECT_FALSE(ToolStopPressed());
    EXPECT_TRUE(pressToolStop());
    EXPECT_TRUE(ToolStopPressed());
    ShowToolProgress("");
    EXPECT_FALSE(ToolStopPressed());
    EXPECT_FALSE(pressToolStop());
}

TEST_F(ModelTest, WaitingLetsTimeAndTimersGoBy) {
    loadMain();
    SetTimer(main, 500);
    const std::int64_t start = clock.steady();
    WaitEvents(3000, true);
    EXPECT_EQ(clock.steady(), start) << "nobody looks at a splash without a screen";
    WaitEvents(3000, false);
    EXPECT_EQ(clock.steady() - start, 3'000'000'000);
    EXPECT_EQ(events.back().event, TIMER_EVENT);
    EXPECT_FALSE(waiting());
}

TEST_F(ModelTest, TheTraceLevelAndTheUsersBreakAreKept) {
    SetTrace(3);
    SetUserBreak(1);
    EXPECT_EQ(GetTrace(), 3);
    EXPECT_EQ(GetUserBreak(), 1);
    SetTrace(0);
    SetUserBreak(0);
    EXPECT_NE(SystemInfo(), "");
}

}  // namespace
}  // namespace tarn::platform
