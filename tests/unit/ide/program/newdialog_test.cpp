// SPDX-License-Identifier: GPL-3.0-or-later
//
// A new dialog: which files it goes to, what it is called, and what is left when something stands in the way.
#include "ide/program/newdialog.h"

#include "ide/designer/dlgedit.h"
#include "ide/editor/seenfile.h"
#include "ide/program/changes.h"
#include "ide/program/projwindow.h"
#include "library/source/symbols.h"
#include "support/ide_fixture.h"
#include "support/steerable.h"

#include <filesystem>

namespace tarn {
namespace {

constexpr const char* Class = "Tarnwick Class A\n\nfunction main()\nend function\n\nEnd class\n";
constexpr const char* Main1 = "Main DIALOG\n    POSITION=0 0 100 100\nEND\n";

// As the shipped template makes it.
std::string dialogText(const std::string& name) {
    return name + " DIALOG\n    POSITION=20 20 240 160\n    CAPTION=\"" + name +
           "\"\n    BORDERSTYLE=2\n    Pushbutton btnok\n        POSITION=124 136 52 16\n"
           "        CAPTION=\"OK\"\n        DEFAULT=1\n    Pushbutton btncancel\n"
           "        POSITION=180 136 52 16\n        CAPTION=\"Cancel\"\n        CANCEL=1\nEND\n";
}

class NewDialog : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
        std::filesystem::create_directory(dir + "work");
        std::filesystem::current_path(dir + "work");
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
    // Opens the program of these files, the first one its main class, with the row of that class selected.
    void openProgram(const std::vector<std::string>& files) {
        std::string list;
        for (const std::string& file : files) list += dir + file + "\\n";
        const std::string tool =
            write("ordo.exe", "#!/bin/sh\nprintf '" + list + "' >\"" + dir + "ordo.err\"\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
        PROJECTOPEN(ProjectEditorDlg, "Program Window", dir + files[0]);
        ASSERT_TRUE(IsLoaded(ProjectEditorDlg)) << lastText();
        asked.clear();
    }
    void run() {
        PROJECTNEWDIALOG();
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    std::string text(const std::string& name) { return read(dir + name); }
    static int functions(const std::string& text, const std::string& name) {
        return SYMFINDFUNCTION(name, 0, text).bodyStart;
    }
};

TEST_F(NewDialog, GoesToTheFilesOfTheSelectedClassAndIsOpened) {
    write("a.cls", Class);
    write("a.rc", Main1);
    openProgram({"a.cls", "a.rc"});
    run();
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(text("a.rc"), Main1 + std::string("\n") + dialogText("Dialog1"));
    EXPECT_NE(functions(text("a.cls"), "Dialog1"), 0);
    EXPECT_EQ(text("a.cls").find('\r'), std::string::npos);
    EXPECT_NE(text("a.cls").find("callback function Dialog1(in  anEvent : integer,\n"
                                 "                              aControl : Control,\n"
                                 "                              aParameter : integer,\n"
                                 "                          out handled : boolean)\n"),
              std::string::npos)
        << text("a.cls");
    EXPECT_EQ(DIALOGGETFILENAME(), dir + "a.rc");
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog1");
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(NewDialog, MakesTheResourceFileOfAClassThatHasNone) {
    write("a.cls", Class);
    openProgram({"a.cls"});
    run();
    EXPECT_EQ(text("a.rc"), dialogText("Dialog1"));
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog1");
}

TEST_F(NewDialog, HasANameThatIsFreeInAllResourceFilesOfTheProgram) {
    write("a.cls", Class);
    write("a.rc", dialogText("Dialog1"));
    write("b.cls", "Tarnwick Class B\nEnd class\n");
    write("b.rc", dialogText("dialog7") + "\n" + dialogText("Dialog3"));
    openProgram({"a.cls", "a.rc", "b.cls", "b.rc"});
    run();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog8");
    EXPECT_EQ(DIALOGGETFILENAME(), dir + "a.rc");
}

TEST_F(NewDialog, HasANameThatNoResourceOfItsProgramHas) {
    write("a.cls", Class);
    write("a.rc", "");
    write("b.cls", "Tarnwick Class B\nEnd class\n");
    write("b.rc", "DIALOG1 BITMAP \"x.bmp\"\n");
    openProgram({"a.cls", "a.rc", "b.cls", "b.rc"});
    run();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog2");
}

TEST_F(NewDialog, HasANameThatNoOtherResourceOfTheFileHas) {
    write("a.cls", Class);
    write("a.rc", "Dialog1 BITMAP \"x.bmp\"\nDialog2 MENU\nEND\n");
    EDITWNDOPEN(SDIEdit, dir + "a.cls", false, 0);
    run();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog3");
}

TEST_F(NewDialog, TakesTheLineEndsOfTheFilesThatAreThere) {
    write("a.cls", STRNL2CRNL(Class));
    write("a.rc", STRNL2CRNL(Main1));
    openProgram({"a.cls", "a.rc"});
    run();
    EXPECT_EQ(text("a.rc"), STRNL2CRNL(Main1 + std::string("\n") + dialogText("Dialog1")));
    EXPECT_EQ(STRREPLACE(text("a.cls"), "\r\n", "").find('\n'), std::string::npos);
}

TEST_F(NewDialog, AFileWithoutALastLineEndGetsOne) {
    write("a.cls", Class);
    write("a.rc", "Main DIALOG\nEND");
    EDITWNDOPEN(SDIEdit, dir + "a.cls", false, 0);
    run();
    EXPECT_EQ(text("a.rc"), "Main DIALOG\nEND\n\n" + dialogText("Dialog1"));
}

TEST_F(NewDialog, AClassInTheCodeWindowIsChangedThereAlone) {
    write("a.cls", Class);
    openProgram({"a.cls"});
    EDITWNDOPEN(SDIEdit, dir + "a.cls", false, 0);
    run();
    EXPECT_EQ(text("a.cls"), Class);
    EXPECT_NE(functions(GetText(SDIEdit), "Dialog1"), 0);
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(NewDialog, AFunctionOfThatNameStays) {
    const std::string with = STRREPLACE(Class, "End class", "function dialog1()\nend function\n\nEnd class");
    write("a.cls", with);
    openProgram({"a.cls"});
    run();
    EXPECT_EQ(text("a.cls"), with);
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog1");
}

TEST_F(NewDialog, AClassThatCannotTakeTheFunctionIsTold) {
    write("a.cls", "no class\n");
    openProgram({"a.cls"});
    run();
    ASSERT_FALSE(asked.empty());
    EXPECT_TRUE(
        asked[0].text.starts_with("Could not add the window function for 'Dialog1'.\nClass syntax is wrong"))
        << asked[0].text;
    EXPECT_EQ(text("a.cls"), "no class\n");
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog1");  // the dialog is there all the same
}

TEST_F(NewDialog, FilesWithTheirExtensionsInUpperCaseAreTwinsToo) {
    write("a.CLS", Class);
    write("a.RC", Main1);
    openProgram({"a.CLS", "a.RC"});
    run();
    EXPECT_EQ(text("a.RC"), Main1 + std::string("\n") + dialogText("Dialog1"));
    EXPECT_NE(functions(text("a.CLS"), "Dialog1"), 0);
    EXPECT_FALSE(std::filesystem::exists(dir + "a.rc"));
    EXPECT_FALSE(std::filesystem::exists(dir + "a.cls"));
}

TEST_F(NewDialog, AFileOfTheSameNameInOtherCaseIsAnotherClass) {
    write("a.cls", Class);
    openProgram({"a.cls"});
    EDITWNDOPEN(SDIEdit, write("A.cls", Class), false, 0);
    run();
    EXPECT_NE(functions(text("a.cls"), "Dialog1"), 0);
    EXPECT_EQ(GetText(SDIEdit), Class);
}

TEST_F(NewDialog, AClassThatIsInTheCodeWindowByALinkIsChangedThere) {
    write("a.cls", Class);
    openProgram({"a.cls"});
    std::filesystem::create_symlink(dir + "a.cls", dir + "link.cls");
    EDITWNDOPEN(SDIEdit, dir + "link.cls", false, 0);
    run();
    EXPECT_EQ(text("a.cls"), Class);
    EXPECT_NE(functions(GetText(SDIEdit), "Dialog1"), 0);
}

TEST_F(NewDialog, WithoutAProgramItGoesBesideTheClassInTheCodeWindow) {
    EDITWNDOPEN(SDIEdit, write("a.cls", Class), false, 0);
    run();
    EXPECT_EQ(text("a.rc"), dialogText("Dialog1"));
    EXPECT_EQ(GetText(SDIEdit), Class);  // a program that is not open gets no function
    EXPECT_EQ(text("a.cls"), Class);
}

TEST_F(NewDialog, WithNothingOpenItMakesAFileInTheCurrentFolder) {
    run();
    EXPECT_EQ(text("work/New1.rc"), dialogText("Dialog1"));
    EXPECT_EQ(DIALOGGETFILENAME(), dir + "work/New1.rc");
}

TEST_F(NewDialog, AnUntouchedFileServesOnceMore) {
    run();
    Unload(DialogDlg);
    run();
    EXPECT_EQ(DIALOGGETFILENAME(), dir + "work/New1.rc");
    EXPECT_EQ(text("work/New1.rc"), dialogText("Dialog1"));
    Unload(DialogDlg);
    write("work/New1.rc", dialogText("Dialog1") + "// mine\n");
    run();
    EXPECT_EQ(DIALOGGETFILENAME(), dir + "work/New2.rc");
    EXPECT_EQ(text("work/New1.rc"), dialogText("Dialog1") + "// mine\n");
    EXPECT_EQ(text("work/New2.rc"), dialogText("Dialog1"));
}

TEST_F(NewDialog, AFileOfTheLibraryIsAskedAbout) {
    std::filesystem::create_directory(dir + "lib");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", dir + "lib");
    EDITWNDOPEN(SDIEdit, write("lib/a.cls", Class), false, 0);
    answers = {"&No"};
    run();
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].text,
              "This will add 'Dialog1' to '" + dir +
                  "lib/a.rc'\nYou are adding a new dialog to one of the system files. Are you sure?");
    EXPECT_FALSE(std::filesystem::exists(dir + "lib/a.rc"));
    EXPECT_EQ(DIALOGGETFILENAME(), "");
    answers = {"&Yes"};
    run();
    EXPECT_EQ(text("lib/a.rc"), dialogText("Dialog1"));
}

TEST_F(NewDialog, ChangesOfTheOpenDialogAreAskedAbout) {
    EDITWNDOPEN(SDIEdit, write("a.cls", Class), false, 0);
    run();
    DIALOGSETMODIFY(true);
    answers = {"&Cancel"};
    run();
    EXPECT_TRUE(lastText().ends_with("This file has been changed. Do you want to save the changes?"))
        << lastText();
    EXPECT_EQ(text("a.rc"), dialogText("Dialog1"));
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog1");
    EXPECT_TRUE(DIALOGGETMODIFY());
    answers = {"&No"};
    run();
    EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog2");
}

TEST_F(NewDialog, ATemplateThatIsMissingIsTold) {
    EDITWNDOPEN(SDIEdit, write("a.cls", Class), false, 0);
    PROFILESTRDEL(ini(), "Template.DialogBody.cls", "");
    run();
    EXPECT_EQ(lastText(),
              "Cannot create new dialog.\nCannot create Template.DialogBody.cls, it was not in \"" + ini() +
                  "\".\n");
    EXPECT_FALSE(std::filesystem::exists(dir + "a.rc"));
}

TEST_F(NewDialog, AResourceFileThatCannotTakeItStaysAsItWas) {
    // The menu does not end, so that what stands behind it would be a part of it.
    for (const std::string& bad : {std::string("Main DIALOG\n  CAPTION=\"\n"), std::string("a\0b", 3)}) {
        EDITWNDOPEN(SDIEdit, write("a.cls", Class), false, 0);
        write("a.rc", bad);
        asked.clear();
        run();
        if (text("a.rc") != bad) {
            EXPECT_EQ(DIALOGGETDLGNAME(), "Dialog1") << bad;  // then it was found
            Unload(DialogDlg);
            continue;
        }
        EXPECT_TRUE(lastText().starts_with("Could not add 'Dialog1' to '" + dir + "a.rc'.\n")) << lastText();
        EXPECT_EQ(DIALOGGETFILENAME(), "");
    }
}

TEST_F(NewDialog, AFileThatCannotBeReadIsTold) {
    EDITWNDOPEN(SDIEdit, write("a.cls", Class), false, 0);
    std::filesystem::create_directory(dir + "a.rc");
    run();
    EXPECT_FALSE(asked.empty());
    EXPECT_EQ(DIALOGGETFILENAME(), "");
}

// ---- disks that fail ----

class NewDialogOnBadDisk : public NewDialog {
protected:
    os::SteeredFiles disk;
    void SetUp() override {
        NewDialog::SetUp();
        disk.put(ini(), read(ini()));
        disk.put("/w/a.cls", Class);
        disk.put("/w/a.rc", Main1);
        os::useFiles(&disk);
    }
    void TearDown() override {
        os::useFiles(nullptr);
        NewDialog::TearDown();
    }
};

TEST_F(NewDialogOnBadDisk, AFullDiskIsToldAndLeavesTheFile) {
    EDITWNDOPEN(SDIEdit, "/w/a.cls", false, 0);
    disk.setFreeBytes(0);
    run();
    ASSERT_FALSE(asked.empty());
    EXPECT_EQ(asked[0].text,
              "Could not add 'Dialog1' to '/w/a.rc'.\n'/w/a.rc'\ncould not be written: The disk is full.\n"
              "Nothing was changed. Try again when the cause is gone.");
    EXPECT_EQ(disk.contents("/w/a.rc"), Main1);
    EXPECT_EQ(DIALOGGETFILENAME(), "");
}

// Whatever call fails: the file is the old one or the new one, whole.
TEST_F(NewDialogOnBadDisk, AFailureAtAnyCallLeavesTheOldFileOrTheNew) {
    const std::string after = Main1 + std::string("\n") + dialogText("Dialog1");
    EDITWNDOPEN(SDIEdit, "/w/a.cls", false, 0);
    for (int call = 1; call < 100; ++call) {
        disk.put("/w/a.rc", Main1);
        asked.clear();
        disk.failAt(call, os::FileError::WriteFailed);
        run();
        disk.stopFailing();
        const std::string now = disk.contents("/w/a.rc");
        EXPECT_TRUE(now == Main1 || now == after) << call << ": " << now;
        EXPECT_TRUE(now == after || !asked.empty()) << call;
        if (IsLoaded(DialogDlg)) Unload(DialogDlg);
        if (disk.calls() < call) break;
    }
    EXPECT_EQ(disk.contents("/w/a.cls"), Class);
}

// The dialog and its function in the class, of a program whose class is selected.
class NewDialogOfAProgram : public NewDialogOnBadDisk {
protected:
    void begin() {
        disk.put("/w/a.cls", Class);
        disk.put("/w/a.rc", Main1);
        if (!IsLoaded(ProjectEditorDlg)) Load(ProjectEditorDlg);
        std::vector<std::string> items;
        ProjectItem item;
        item.level = 1;
        item.type = "Class";
        item.file = "/w/a.cls";
        ADDPROJECTITEM(item, items);
        UPDATEPROJECTWINDOW(ProjectEditorDlg, "/w/a.cls", items[0] + "\n", {1, 0});
        asked.clear();
    }
    void end() {
        ClearError();
        static_cast<void>(FINISHCHANGES());
        if (IsLoaded(DialogDlg)) Unload(DialogDlg);
    }
    [[nodiscard]] bool allOld() {
        return disk.contents("/w/a.cls") == Class && disk.contents("/w/a.rc") == Main1;
    }
    [[nodiscard]] bool allNew() {
        return functions(disk.contents("/w/a.cls"), "Dialog1") != 0 &&
               disk.contents("/w/a.rc") == Main1 + std::string("\n") + dialogText("Dialog1");
    }
};

TEST_F(NewDialogOfAProgram, AFailureAtAnyCallLeavesBothFilesOldOrNew) {
    int calls = 1000;
    for (int call = 1; call <= calls; ++call) {
        begin();
        disk.failAt(call, os::FileError::DiskFull);
        run();
        calls = disk.calls();
        disk.stopFailing();
        end();
        EXPECT_TRUE(allOld() || allNew()) << call;
        EXPECT_TRUE(allNew() || !asked.empty()) << call;
    }
    EXPECT_TRUE(allNew());
}

TEST_F(NewDialogOfAProgram, AKillAtAnyCallLeavesBothFilesOldOrNewAtTheNextStart) {
    for (const bool midway : {false, true}) {
        bool died = true;
        for (int call = 1; died && call < 200; ++call) {
            begin();
            died = false;
            disk.dieAt(call, midway);
            try {
                PROJECTNEWDIALOG();
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            disk.revive();
            end();
            EXPECT_TRUE(allOld() || allNew()) << call;
        }
        EXPECT_FALSE(died);
        EXPECT_TRUE(allNew());
    }
}

TEST_F(NewDialog, AResourceFileInTheCodeWindowIsSavedFirstAndShowsTheDialogThen) {
    write("a.cls", Class);
    write("a.rc", Main1);
    openProgram({"a.cls", "a.rc"});
    EDITWNDOPEN(SDIEdit, dir + "a.rc", false, 0);
    SetText(SDIEdit, std::string("// typed\n") + Main1);
    SetModify(SDIEdit, true);
    answers = {"&Cancel"};
    run();
    EXPECT_EQ(lastText(), dir + "a.rc\nThis file has been changed. Do you want to save the changes?");
    EXPECT_EQ(text("a.rc"), Main1);
    answers = {"&Yes"};
    run();
    EXPECT_TRUE(text("a.rc").starts_with("// typed\n")) << text("a.rc");
    EXPECT_NE(text("a.rc").find("Dialog1 DIALOG"), std::string::npos);
    EXPECT_EQ(GetText(SDIEdit), text("a.rc"));
    EXPECT_EQ(NEWCHANGEOUTSIDE(SDIEdit, dir + "a.rc"), OutsideChange::None);
}

}  // namespace
}  // namespace tarn
