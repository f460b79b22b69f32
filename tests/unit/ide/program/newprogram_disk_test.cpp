// SPDX-License-Identifier: GPL-3.0-or-later
//
// New classes and programs where the disk fails or the process dies: all of them is there, or nothing.
#include "ide/designer/dlgedit.h"
#include "ide/program/changes.h"
#include "support/steerable.h"
#include "unit/ide/program/newprogram_fixture.h"

namespace tarn {
namespace {

// ---- disks and processes that end ----

class NewProgramOnBadDisk : public NewProgram {
protected:
    os::SteeredFiles disk;
    void SetUp() override {
        NewProgram::SetUp();
        const std::string settings = read(ini()), resources = read(dir + "ide.rcx");
        makeTool({"none"});
        disk.put(ini(), settings);
        disk.put(dir + "ide.rcx", resources);
        disk.putFolder(dir + "state", 0777);
        disk.putOwner(dir + "state", 1000, 1000);
        begin();
        os::useFiles(&disk);
    }
    void TearDown() override {
        os::useFiles(nullptr);
        NewProgram::TearDown();
    }
    void begin() {
        for (const char* const file : {"/w/New1.cls", "/w/App1.cls", "/w/App1.rc"}) {
            disk.put(file, "");
            disk.remove(file);
        }
        disk.put("/w/a.cls", Main);
        asked.clear();
    }
    // The program of a.cls, whose list nobody can make: the window is not asked for one here.
    void openMain() {
        if (!IsLoaded(ProjectEditorDlg)) Load(ProjectEditorDlg);
        SetCaption(FINDCONTROL(ProjectEditorDlg, "Mainfile"), "/w/a.cls");
    }
    [[nodiscard]] bool classOld() { return !disk.has("/w/New1.cls") && disk.contents("/w/a.cls") == Main; }
    [[nodiscard]] bool classNew() {
        return disk.contents("/w/New1.cls").starts_with("Tarnwick Class New1\n") &&
               disk.contents("/w/a.cls").find("\nUses New1\n") != std::string::npos;
    }
};

TEST_F(NewProgramOnBadDisk, AFullDiskLeavesNoHalfClass) {
    for (std::int64_t room = 0; room < 1500; room += 40) {
        begin();
        openMain();
        disk.setFreeBytes(room);
        fill({});
        newClass();
        disk.setFreeBytes(1000000);
        const bool pending = lastText().find("The next start") != std::string::npos;
        static_cast<void>(FINISHCHANGES());
        EXPECT_TRUE(classOld() || classNew()) << room;
        EXPECT_TRUE(!pending || classNew()) << room;
        EXPECT_TRUE(classNew() || !asked.empty()) << room;
        INITFILE(SDIEdit);
    }
}

TEST_F(NewProgramOnBadDisk, AFailureAtAnyCallLeavesNoHalfClass) {
    for (int call = 1; call < 200; ++call) {
        begin();
        openMain();
        disk.failAt(call, os::FileError::WriteFailed);
        fill({});
        newClass();
        const int calls = disk.calls();
        disk.stopFailing();
        static_cast<void>(FINISHCHANGES());
        EXPECT_TRUE(classOld() || classNew()) << call;
        EXPECT_TRUE(classNew() || !asked.empty()) << call;
        INITFILE(SDIEdit);
        if (calls < call) return;
    }
    FAIL() << "no end";
}

TEST_F(NewProgramOnBadDisk, AKillAtAnyCallLeavesNoHalfClassAtTheNextStart) {
    for (const bool midway : {false, true}) {
        bool died = true;
        for (int call = 1; died && call < 200; ++call) {
            begin();
            openMain();
            fill({});
            died = false;
            disk.dieAt(call, midway);
            try {
                PROJECTNEWNONMAIN(MAINCONTROL("codelabel"), "New Class");
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            disk.revive();
            ClearError();
            static_cast<void>(FINISHCHANGES());
            EXPECT_TRUE(classOld() || classNew()) << call;
            INITFILE(SDIEdit);
        }
        EXPECT_FALSE(died);
        EXPECT_TRUE(classNew());
    }
}

// A whole new program, with the class and the dialog that are opened then, by the menu (`asks`) and as the start makes it.
class NewMainOnBadDisk : public NewProgramOnBadDisk {
protected:
    std::string stem;
    void SetUp() override {
        NewProgramOnBadDisk::SetUp();
        disk.putFolder(dir + "work", 0777);
        disk.putOwner(dir + "work", 1000, 1000);
        stem = dir + "work/App1";
    }
    void begin(bool asks) {
        ClearError();
        disk.setFreeBytes(1'000'000);
        closeAll();
        SETCURDIR(dir + "work");
        for (const std::string& file : disk.allFiles())
            if (file.starts_with(dir + "work/") || file.find("/changes/") != std::string::npos)
                disk.remove(file);
        asked.clear();
        doings.clear();
        if (asks) fill({});
    }
    static void closeAll() {
        for (const Object& window : {DialogDlg, ProjectEditorDlg, PropertiesDlg})
            if (IsLoaded(window)) {
                if (window == DialogDlg) DIALOGSETMODIFY(false);
                Unload(window);
            }
        INITFILE(SDIEdit);
    }
    // Neither file, or both with all that is in them.
    [[nodiscard]] bool nothing() { return !disk.has(stem + ".cls") && !disk.has(stem + ".rc"); }
    [[nodiscard]] bool everything() {
        return disk.contents(stem + ".cls").starts_with("Tarnwick Class App1\n") &&
               disk.contents(stem + ".cls").ends_with("End class\n") &&
               disk.contents(stem + ".rc") == dialogText();
    }
};

TEST_F(NewMainOnBadDisk, AFailureAtAnyCallLeavesAllOfTheProgramOrNothing) {
    for (const bool asks : {false, true})
        for (const os::FileError error : {os::FileError::WriteFailed, os::FileError::DiskFull}) {
            bool reached = true;
            for (int call = 1; reached && call < 400; ++call) {
                begin(asks);
                disk.failAt(call, error);
                newProgram(asks);
                reached = disk.calls() >= call;
                disk.stopFailing();
                static_cast<void>(FINISHCHANGES());
                EXPECT_TRUE(nothing() || everything()) << asks << " " << call;
                EXPECT_TRUE(everything() || !asked.empty()) << asks << " " << call;
            }
            EXPECT_FALSE(reached);
            EXPECT_TRUE(everything()) << lastText() << GETCURDIR();
        }
    closeAll();
}

TEST_F(NewMainOnBadDisk, AFullDiskLeavesAllOfTheProgramOrNothing) {
    for (std::int64_t room = 0; room < 2400; room += 60) {
        begin(false);
        disk.setFreeBytes(room);
        newProgram(false);
        disk.setFreeBytes(1'000'000);
        static_cast<void>(FINISHCHANGES());
        EXPECT_TRUE(nothing() || everything()) << room;
        EXPECT_TRUE(everything() || !asked.empty()) << room;
    }
    closeAll();
}

TEST_F(NewMainOnBadDisk, AKillAtAnyCallLeavesAllOfTheProgramOrNothingAtTheNextStart) {
    for (const bool asks : {false, true})
        for (const bool midway : {false, true}) {
            bool died = true;
            int deaths = 0;
            for (int call = 1; died && call < 400; ++call) {
                platform::DestroyAllWindows();  // a new process
                start();
                begin(asks);
                died = false;
                disk.dieAt(call, midway);
                try {
                    PROJECTNEWMAIN(ProjectEditorDlg, MAINCONTROL("codelabel"), "New Program", asks);
                } catch (const os::ProcessDeath&) {
                    died = true;
                }
                disk.revive();
                ClearError();
                static_cast<void>(FINISHCHANGES());
                EXPECT_TRUE(nothing() || everything()) << asks << " " << call;
                deaths += died ? 1 : 0;
            }
            EXPECT_FALSE(died);
            EXPECT_GT(deaths, 10);
            EXPECT_TRUE(everything()) << lastText();
        }
    closeAll();
}

TEST_F(NewProgramOnBadDisk, AnUnfinishedChangeIsToldAtTheNextStart) {
    const std::string folder = dir + "state/tarnwick/changes/";
    disk.failAlways(os::FileCall::Remove, os::FileError::Denied);
    EXPECT_EQ(CHANGEFILES({{"/w/a.cls", "x"}, {"/w/b.cls", "y", os::FileChange::Kind::Create}}), "");
    disk.failAlways(os::FileCall::Remove, os::FileError::None);
    disk.put("/w/a.cls", Main);
    EXPECT_TRUE(FINISHCHANGES());
    EXPECT_EQ(asked.back().title, "Unfinished Changes");
    EXPECT_EQ(lastText(),
              "The environment was stopped while it changed several files that belong together.\n\n"
              "These files got the contents that they were to have:\n\t'/w/a.cls'");
    EXPECT_EQ(disk.contents("/w/a.cls"), "x");
    EXPECT_FALSE(FINISHCHANGES());
}

}  // namespace
}  // namespace tarn
