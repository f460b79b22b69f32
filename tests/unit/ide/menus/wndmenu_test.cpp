// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/wndmenu.h"

#include "ide/build/output.h"
#include "ide/build/textview.h"
#include "ide/shell/commands.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

// On the screen of the model, which has 1920 x 1080 pixels.
class WindowMenu : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
        SetPosition(Main, WINDOW_UNIT, {100, 50, 700, 90});
        EDITWNDOPEN(SDIEdit, write("a.txt", "text"), false, 0);
        SetPosition(SDIEdit, WINDOW_UNIT, {5, 5, 300, 200});
        asked.clear();
        top = place(Main).y + place(Main).h;
    }
    int top = 0;  // of the work area
    static Rect place(const Object& window) { return GetPosition(window, WINDOW_UNIT); }
    void showErrors() { VIEWDIALOG("View Errors", write("e.txt", "error\n"), "", 0); }
    static std::string text(const Rect& r) {
        return STR(r.x) + " " + STR(r.y) + " " + STR(r.w) + " " + STR(r.h);
    }
};

TEST_F(WindowMenu, OutputBringsTheOutputWindowForwardWhenItIsThere) {
    const Object item = MAINCONTROL("window_output");
    EXPECT_EQ(GetCaption(item), "&Output");
    EXPECT_FALSE(GetEnabled(item));
    DO_WINDOW_OUTPUT();
    EXPECT_FALSE(IsLoaded(OutputDlg)) << "there is nothing to show";
    write("p.exe", "#!/bin/sh\necho one\n");
    std::filesystem::permissions(dir + "p.exe", std::filesystem::perms(0755));
    RUNPROGRAM("Run-Start", dir + "p.exe", "", dir);
    for (int waited = 0; !ISSHOWN(OutputDlg) && waited < 1000; waited++) DoEvents(), usleep(10000);
    ASSERT_TRUE(ISSHOWN(OutputDlg));
    EXPECT_TRUE(GetEnabled(item)) << "without a command between";
    Show(SDIEdit, false);
    DO_COMMAND(item, 1);
    EXPECT_EQ(ActiveWindow(), OutputDlg) << "the focus does not go back";
}

TEST_F(WindowMenu, ArrangeGivesTheCodeWindowAloneTheWholeWorkArea) {
    DO_WINDOW_ARRANGE();
    EXPECT_EQ(text(place(SDIEdit)), "100 " + STR(top) + " 1920 " + STR(1080 - top));
}

TEST_F(WindowMenu, ArrangePutsTheErrorWindowBelowWithFiveLabelsOfHeight) {
    showErrors();
    DO_WINDOW_ARRANGE();
    const int height = 5 * GetPosition(MAINCONTROL("codelabel"), CLIENT_UNIT).h;
    EXPECT_EQ(text(place(ViewDlg)), "100 " + STR(1080 - height) + " 1920 " + STR(height));
    EXPECT_EQ(text(place(SDIEdit)), "100 " + STR(top) + " 1920 " + STR(1080 - top - height));
}

TEST_F(WindowMenu, ArrangePutsTheBrowserFortyPixelsInWithItsOwnSize) {
    RegisterWindow(BrowseInfoDlg,
                   [](const Object&, int, const Object&, int) { return false; });  // an empty one stays
    Load(BrowseInfoDlg);
    SetPosition(BrowseInfoDlg, WINDOW_UNIT, {7, 9, 500, 300});
    Show(BrowseInfoDlg, false);
    DO_WINDOW_ARRANGE();
    EXPECT_EQ(text(place(BrowseInfoDlg)), "140 " + STR(top + 40) + " 500 300");
    EXPECT_EQ(text(place(SDIEdit)), "100 " + STR(top) + " 1920 " + STR(1080 - top)) << "it takes no room";
}

TEST_F(WindowMenu, ArrangeLeavesWhatIsHiddenWhereItIs) {
    showErrors();
    Hide(ViewDlg);
    const Rect before = place(ViewDlg);
    DO_WINDOW_ARRANGE();
    EXPECT_EQ(text(place(ViewDlg)), text(before));
    EXPECT_EQ(text(place(SDIEdit)), "100 " + STR(top) + " 1920 " + STR(1080 - top));
}

TEST_F(WindowMenu, ArrangeKeepsTheSizeOfACodeWindowThatFillsTheWorkArea) {
    SetMaxPosition(SDIEdit, {});
    SetPosition(SDIEdit, WINDOW_UNIT, {0, 0, 2000, 1000});
    DO_WINDOW_ARRANGE();
    EXPECT_EQ(text(place(SDIEdit)), "100 " + STR(top) + " 2000 1000");
    SetPosition(SDIEdit, WINDOW_UNIT, {0, 0, 2000, 1080 - top - 1});  // large in one direction is not enough
    DO_WINDOW_ARRANGE();
    EXPECT_EQ(text(place(SDIEdit)), "100 " + STR(top) + " 1920 " + STR(1080 - top));
}

TEST_F(WindowMenu, ArrangeTakesAWindowOutOfItsFullSize) {
    SetWindowState(SDIEdit, 2);
    DO_WINDOW_ARRANGE();
    EXPECT_EQ(GetWindowState(SDIEdit), 0);
}

TEST_F(WindowMenu, WindowListHasTheCaptionsOfVisibleWindows) {
    showErrors();
    Hide(ViewDlg);
    DO_WINDOW_WINDOWS();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Window List");
    EXPECT_EQ(asked[0].rows, (std::vector<std::string>{GetCaption(Main), GetCaption(SDIEdit)}));
}

TEST_F(WindowMenu, WindowListBringsTheChosenOneForwardAndNothingChangesWithoutOne) {
    showErrors();
    EXPECT_EQ(ActiveWindow(), ViewDlg);
    answers = {""};
    DO_WINDOW_WINDOWS();
    EXPECT_EQ(ActiveWindow(), ViewDlg);
    answers = {GetCaption(SDIEdit)};
    DO_WINDOW_WINDOWS();
    EXPECT_EQ(ActiveWindow(), SDIEdit);
    answers = {"no such caption"};
    DO_WINDOW_WINDOWS();
    EXPECT_EQ(ActiveWindow(), SDIEdit);
}

TEST_F(WindowMenu, OfEqualCaptionsTheFirstWindowWins) {
    showErrors();
    SetCaption(ViewDlg, GetCaption(SDIEdit));
    ASSERT_EQ(ActiveWindow(), ViewDlg);
    answers = {GetCaption(SDIEdit)};
    DO_WINDOW_WINDOWS();
    EXPECT_EQ(ActiveWindow(), SDIEdit);
}

TEST_F(WindowMenu, CommandsBringForwardWhatIsVisibleAlone) {
    showErrors();
    DO_WINDOW_CODE();
    EXPECT_EQ(ActiveWindow(), SDIEdit);
    DO_WINDOW_ERROR();
    EXPECT_EQ(ActiveWindow(), ViewDlg);
    Hide(ViewDlg);
    DO_WINDOW_ERROR();
    EXPECT_FALSE(GetVisible(ViewDlg));
    for (void (*command)() : {DO_WINDOW_PROGRAM, DO_WINDOW_DIALOG, DO_WINDOW_BROWSER}) command();
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(WindowMenu, CloseAllClosesAllButTheMainWindow) {
    showErrors();
    DO_WINDOW_CLOSE_ALL();
    EXPECT_TRUE(IsLoaded(Main));
    EXPECT_FALSE(ISSHOWN(SDIEdit));
    EXPECT_FALSE(ISSHOWN(ViewDlg));
}

TEST_F(WindowMenu, ArrangeLetsTheProgramWindowLayItsListOut) {
    Load(ProjectEditorDlg);
    Show(ProjectEditorDlg, false);
    ASSERT_TRUE(ISSHOWN(ProjectEditorDlg));
    const auto below = [] {
        const Rect list = GetPosition(FINDCONTROL(ProjectEditorDlg, "iconlist1"), CLIENT_UNIT);
        return GetPosition(ProjectEditorDlg, CLIENT_UNIT).h - list.y - list.h;
    };
    const int margin = below();
    DO_WINDOW_ARRANGE();
    for (int waited = 0; below() != margin && waited < 100; waited++) DoEvents(), usleep(10000);
    EXPECT_EQ(place(ProjectEditorDlg).h, 1080 - top);
    EXPECT_EQ(below(), margin);
}

}  // namespace
}  // namespace tarn
