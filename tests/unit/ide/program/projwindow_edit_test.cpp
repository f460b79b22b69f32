// SPDX-License-Identifier: Apache-2.0
//
// What the rows of the Program Window open and edit, and the current resource.
#include "ide/designer/dlgedit.h"
#include "support/tempfolder.h"
#include "unit/ide/program/projwindow_fixture.h"

namespace tarn {
namespace {

// ---- editing ----

TEST_F(ProjWindow, WhatCannotBeEditedIsTold) {
    open();
    write("data.xml", "<x/>");
    write("note.doc", "x");
    const std::string rc = dir + "main.rc";
    const struct {
        std::string item, file, reason, headline = "Cannot edit the following file:";
    } cases[] = {
        {"1 \"t\" \"Class\" \"n\" \"/gone.cls\"", "/gone.cls", "The file does not exist or cannot be found."},
        {"1 \"t\" \"DIALOG\" \"n\" \"" + rc + "\"", rc, "Choose a dialog from this file and try again."},
        {"1 \"t\" \"INCFILE\" \"n\" \"" + rc + "\"", rc, "Choose a dialog from this file and try again."},
        {"1 \"t\" \"INCFILE\" \"n\" \"" + dir + "note.doc\"", dir + "note.doc",
         "There is no editor for this type of file.", "The following file:"},
    };
    for (const auto& c : cases) {
        UPDATEPROJECTWINDOW(ProjectEditorDlg, file, c.item + "\n", {});
        choose(1);
        asked.clear();
        EXPECT_TRUE(key(KEY_RETURN));
        EXPECT_EQ(lastText(), c.headline + "\n\n\t'" + c.file + "'\n\n" + c.reason);
    }
    asked.clear();
    choose(0);
    PROJECTITEMEDIT(ProjectEditorDlg);
    EXPECT_TRUE(asked.empty());
}

TEST_F(ProjWindow, TextsOpenInTheCodeWindow) {
    open();
    const std::string note = write("note.TXT", "hello");
    UPDATEPROJECTWINDOW(ProjectEditorDlg, file, "1 \"t\" \"INCFILE\" \"n\" \"" + note + "\"\n", {});
    PROJECTITEMEDIT(ProjectEditorDlg);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), note);
}

// ---- the current resource, and saving ----

TEST_F(ProjWindow, TheCurrentResourceIsThatOfTheSelectedRow) {
    open();
    const std::string rc = dir + "main.rc";
    const auto is = [](const std::string& resource, const std::string& dialogName) {
        const CurrentResource current = GETCURRENTRESOURCE();
        EXPECT_EQ(current.file, resource);
        EXPECT_EQ(current.dialog, dialogName);
    };
    choose(2);
    is(rc, "Main");
    key(KEY_RIGHT);
    choose(4);
    is(rc, "Second");
    choose(1);
    is(rc, "");
    choose(5);
    is(rc, "");  // no twin of its own or of its owner: that of the class in the Code window
    write("other.rc", dialog("X"));
    is(dir + "other.rc", "");
    write("other.rc", "");
    is(rc, "");
    EDITWNDOPEN(SDIEdit, write("note.txt", "x"), false, 0);
    is("", "");
    choose(0);
    is("", "");
}

TEST_F(ProjWindow, TheOwnersResourceFileCountsWhereARowHasNone) {
    open();
    const std::string note = write("note.txt", "x");
    UPDATEPROJECTWINDOW(
        ProjectEditorDlg, file,
        "1 \"a\" \"Class\" \"Main\" \"" + file + "\"\n1 \"b\" \"INCFILE\" \"n\" \"" + note + "\"\n", {2, 0});
    EDITWNDOPEN(SDIEdit, note, false, 0);
    EXPECT_EQ(GETCURRENTRESOURCE().file, dir + "main.rc");
}

TEST_F(ProjWindow, AResourceFileMayHaveItsExtensionInUpperCase) {
    open();
    choose(0);
    const std::string rc = write("b.RC", dialog("X"));
    EDITWNDOPEN(SDIEdit, write("b.cls", "Tarnwick Class b\nEnd class\n"), false, 0);
    EXPECT_EQ(GETCURRENTRESOURCE().file, rc);
}

TEST_F(ProjWindow, TheOpenDialogIsTheCurrentResource) {
    open();
    choose(1);
    OPENDIALOG(dir + "main.rc", "Second");
    ASSERT_TRUE(IsLoaded(DialogDlg)) << lastText();
    EXPECT_EQ(GETCURRENTRESOURCE().file, dir + "main.rc");
    EXPECT_EQ(GETCURRENTRESOURCE().dialog, "Second");
}

TEST_F(ProjWindow, ADialogOpensInTheDialogEditor) {
    open();
    choose(2);
    key(KEY_RIGHT);
    choose(3);
    key(KEY_RETURN);
    EXPECT_EQ(DIALOGGETDLGNAME(), "First") << lastText();
    choose(4);
    doubleClick();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Second") << lastText();
    EXPECT_EQ(DIALOGGETFILENAME(), dir + "main.rc");
}

TEST_F(ProjWindow, AChangedDialogIsSavedWithTheRest) {
    open();
    OPENDIALOG(dir + "main.rc", "Second");
    type("x");
    Show(Main, false);
    EXPECT_EQ(GETSAVEWINDOW(), "sdiedit");
    SAVEALL();
    EXPECT_FALSE(GetModify(SDIEdit));
    EXPECT_EQ(read(file), std::string(MainClass) + "x");
    DIALOGSETMODIFY(true);
    Show(Main, false);
    EXPECT_EQ(GETSAVEWINDOW(), "dialogdlg");
    SAVEALL();
    EXPECT_FALSE(DIALOGGETMODIFY()) << lastText();
    EXPECT_EQ(GETSAVEWINDOW(), "");
    Show(DialogDlg, false);
    EXPECT_EQ(GETSAVEWINDOW(), "dialogdlg");
}

TEST_F(ProjWindow, ASaveMeansTheActiveWindow) {
    open();
    Show(ProjectEditorDlg, false);
    EXPECT_EQ(GETSAVEWINDOW(), "");
    Show(SDIEdit, false);
    EXPECT_EQ(GETSAVEWINDOW(), "sdiedit");
    Show(Main, false);
    EXPECT_EQ(GETSAVEWINDOW(), "");
    type("x");
    Show(Main, false);
    EXPECT_EQ(GETSAVEWINDOW(), "sdiedit");
}

TEST_F(ProjWindow, APictureThatNoProgramOpensIsToldWithTheProgramsThatAreMissing) {
    open();
    const std::string picture = write("a.bmp", "picture");
    write("main.rc", "a BITMAP \"a.bmp\"\n");
    PROJECTREFRESH(ProjectEditorDlg);
    choose(3);
    static_cast<void>(key(KEY_RIGHT));
    choose(4);
    const Variable path("PATH", dir + "none");
    PROJECTITEMEDIT(ProjectEditorDlg);
    Stamp(0, ReportErrors, DefaultErrorHandler);
    ASSERT_EQ(asked.size(), 1U) << shownRows();
    EXPECT_EQ(asked[0].title, "Error");
    EXPECT_EQ(lastText(),
              "Executable file or path not found (error 901).\nCannot run external program.\nNeither "
              "'mspaint' nor 'xdg-open' is there to open '" +
                  picture + "'. Install one of them, and try again.");
    EXPECT_EQ(ErrorCell(), 0);
}

}  // namespace
}  // namespace tarn
