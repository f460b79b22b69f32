// SPDX-License-Identifier: Apache-2.0
//
// How the Program Window follows the files of its program.
#include "ide/designer/dlgedit.h"
#include "ide/program/projlive.h"
#include "unit/ide/program/projwindow_fixture.h"

namespace tarn {
namespace {

// ---- refresh ----

TEST_F(ProjWindow, ARefreshKeepsThePlace) {
    open();
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    choose(4);
    write("main.rc", dialog("First") + dialog("Middle") + dialog("Second"));
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_EQ(shownRows(), "Main Class Main|Dialogs|DIALOG First|[DIALOG Middle]|DIALOG Second|Class Other|");
    EXPECT_EQ(PROJECTGETMAINFILE(), file);
    EXPECT_TRUE(asked.empty());
}

TEST_F(ProjWindow, ATopItemThatHasLostItsChildrenIsSelectedItself) {
    open();
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    choose(4);
    write("main.rc", dialog("First"));
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_EQ(shownRows(), "Main Class Main|Dialogs|[DIALOG First]|Class Other|");
    write("main.rc", "");
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_EQ(shownRows(), "Main Class Main|[Dialogs]|Class Other|");
    answerWith({"main.cls"});
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_EQ(shownRows(), "[Main Class Main]|");
}

TEST_F(ProjWindow, ADependencyListThatFailsLeavesTheRowsAtARefresh) {
    open();
    choose(2);
    makeTool("printf 'no such class\\n' >\"" + dir + "ordo.err\"\nexit 1\n");
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_EQ(lastText(), "It is not possible to open/update the window.\nno such class");
    EXPECT_EQ(asked.back().title, "Program Window");
    EXPECT_EQ(shownRows(), "Main Class Main|[Dialogs]|Class Other|");
}

TEST_F(ProjWindow, ARefreshWithoutTheWindowSaysNothing) {
    loadWindows();
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- following the files ----

TEST_F(ProjWindow, AChangedFileIsNoticedWhenTheUserComes) {
    open();
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    choose(5);
    write("main.rc", dialog("New") + dialog("First") + dialog("Second"));
    Show(ProjectEditorDlg, false);
    EXPECT_TRUE(PROJECTCAMEFORWARD(ProjectEditorDlg));
    PROJECTEDITORDLG(ProjectEditorDlg, TIMER_EVENT, ProjectEditorDlg, 0);
    EXPECT_EQ(shownRows(), "Main Class Main|Dialogs|DIALOG New|DIALOG First|DIALOG Second|[Class Other]|")
        << "what is open stays open, and the selected row is found again";
}

TEST_F(ProjWindow, ATwinThatAppearsOrGoesIsAChange) {
    open();
    EXPECT_FALSE(PROJECTCAMEFORWARD(ProjectEditorDlg)) << "nothing has changed";
    write("other.rc", dialog("X"));
    EXPECT_TRUE(PROJECTCAMEFORWARD(ProjectEditorDlg));
    answerWith({"main.cls", "main.rc", "other.cls", "other.rc"});
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_FALSE(PROJECTCAMEFORWARD(ProjectEditorDlg));
    std::filesystem::remove(dir + "other.rc");
    EXPECT_TRUE(PROJECTCAMEFORWARD(ProjectEditorDlg));
    EXPECT_FALSE(PROJECTCAMEFORWARD(SDIEdit));
}

TEST_F(ProjWindow, AFailureToFollowIsNotTold) {
    open();
    makeTool("exit 1\n");
    write("main.cls", std::string(MainClass) + "\n");
    Show(ProjectEditorDlg, false);
    PROJECTEDITORDLG(ProjectEditorDlg, TIMER_EVENT, ProjectEditorDlg, 0);
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(shownRows(), "[Main Class Main]|Dialogs|Class Other|");
}

TEST_F(ProjWindow, NothingChangesBehindAUserWhoHasGoneOn) {
    open();
    write("main.rc", dialog("Only"));
    Show(SDIEdit, false);
    PROJECTEDITORDLG(ProjectEditorDlg, TIMER_EVENT, ProjectEditorDlg, 0);
    EXPECT_EQ(GetListCount(data()), 5);
}

}  // namespace
}  // namespace tarn
