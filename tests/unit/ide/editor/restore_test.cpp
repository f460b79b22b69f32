// SPDX-License-Identifier: GPL-3.0-or-later
//
// Restore points: the questions, the dialog, and what stands on the disk when the disk fails or the process dies at any
// call of a restore.
#include "ide/editor/restore.h"

#include "ide/editor/backup.h"
#include "ide/menus/editmenu.h"
#include "support/ide_fixture.h"
#include "support/steerable.h"

namespace tarn {
namespace {

constexpr const char* Title = "Edit-Undo (restore from backup)";

class Restore : public IdeTest {
protected:
    const std::string file = "/home/user/note.txt", fresh = "/home/user/note.txt (2015-03-01 10-15-00).bak",
                      old = "/home/user/note.txt (2014-12-24 18-30-59).bak";
    os::SteeredFiles disk;
    os::SteeredClock clock;
    std::vector<std::string> presses;                       // of the dialog's buttons, in turn
    std::vector<std::pair<std::string, std::string>> seen;  // label and caption, when the first was pressed
    int prompts = 0;

    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
        disk.put(ini(), read(ini()));
        disk.putFolder(dir + "state");
        disk.put(file, "new\n");
        disk.put(old, "old\n");
        os::useFiles(&disk);
        clock.setLocal({2015, 3, 1, 10, 15, 0, 0});
        os::useClock(&clock);
        platform::view().setIdle([this] { pressNext(); });
        EDITWNDOPEN(SDIEdit, file, false, 0);
    }
    void TearDown() override {
        platform::view().setIdle(nullptr);
        os::useClock(nullptr);
        os::useFiles(nullptr);
        IdeTest::TearDown();
    }
    void pressNext() {
        if (!IsLoaded(UndoDlg) || !GetVisible(UndoDlg)) return;
        if (seen.empty())
            for (const char* label : {"lblcurrentfile", "lblbackupfile", "lblprompt", "lblmoredetails"})
                seen.emplace_back(label, GetCaption(FINDCONTROL(UndoDlg, label)));
        if (presses.empty()) return Unload(UndoDlg);
        const std::string press = presses.front();
        presses.erase(presses.begin());
        if (press == "Esc")
            platform::userKey(*platform::findWindow(UndoDlg), nullptr, KEY_ESCAPE);
        else
            platform::userCommand(*platform::findControl(FINDCONTROL(UndoDlg, press)));
    }
    std::string saw(const std::string& label) {
        for (const auto& [name, caption] : seen)
            if (name == label) return caption;
        return "(the dialog was not shown)";
    }
    void restore(const std::string& backup) {
        seen.clear();
        DO_UNDO(Title, backup, MAINCONTROL("lblautobackuptimer"));
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    void beginAnew() {
        for (const std::string& one : disk.allFiles()) {
            if (!one.starts_with("/home/user/") || one == old) continue;
            ASSERT_EQ(disk.remove(one), os::FileError::None);
        }
        disk.put(file, "new\n");
        EDITWNDCLOSE(SDIEdit, true);
        EDITWNDOPEN(SDIEdit, file, false, 0);
    }
    std::string timer() { return GetCaption(MAINCONTROL("lblautobackuptimer")); }
};

TEST_F(Restore, PutsTheBackupInThePlaceOfTheFileAndKeepsWhatItWas) {
    presses = {"pushbutton1"};
    restore(old);
    EXPECT_EQ(disk.contents(file), "old\n");
    EXPECT_EQ(disk.contents(fresh), "new\n");
    EXPECT_EQ(disk.contents(old), "old\n");
    EXPECT_EQ(GetCaption(SDIEdit), file);
    EXPECT_EQ(GetText(SDIEdit), "old\n");
    EXPECT_TRUE(GetVisible(SDIEdit));
    EXPECT_FALSE(IsLoaded(UndoDlg));
    EXPECT_EQ(timer(), "1");
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(EDITWNDGETBACKUPLIST(file), fresh + "\n" + old + "\n");
}

TEST_F(Restore, SaysWhatItWillDo) {
    restore(old);
    EXPECT_EQ(saw("lblcurrentfile"), file);
    EXPECT_EQ(saw("lblbackupfile"), old);
    EXPECT_EQ(saw("lblprompt"), "Restore 'note.txt' to how it was on Wednesday 2014-12-24 18:30.");
    EXPECT_EQ(saw("lblmoredetails"), "1. The copy of 'note.txt' in the editor will be closed.\n2. '" + file +
                                         "' will be renamed to '" + fresh + "'.\n3. '" + old +
                                         "' will be copied to '" + file + "'.\n");
    type("x");
    restore(old);
    EXPECT_TRUE(
        saw("lblmoredetails")
            .starts_with(
                "1. You will be prompted whether to save changes in the text editor.\n2. The copy of "))
        << saw("lblmoredetails");
}

TEST_F(Restore, IsLeftByCancelAndEscAndTheCloseBox) {
    for (const std::vector<std::string>& way :
         {std::vector<std::string>{"pushbutton3"}, std::vector<std::string>{"Esc"},
          std::vector<std::string>{}}) {
        presses = way;
        restore(old);
        EXPECT_EQ(disk.contents(file), "new\n");
        EXPECT_FALSE(disk.has(fresh));
        EXPECT_EQ(GetCaption(SDIEdit), file);
        EXPECT_EQ(timer(), "1");
    }
}

TEST_F(Restore, StopsTheTimerMeanwhile) {
    std::string during;
    platform::view().setIdle([&] {
        if (!IsLoaded(UndoDlg) || !GetVisible(UndoDlg)) return;
        during = timer();
        Unload(UndoDlg);
    });
    restore(old);
    EXPECT_EQ(during, "0");
    EXPECT_EQ(timer(), "1");
    PROFILESTRPUT(ini(), "EditorOptionsDlg", "AutoBackupInterval", "0");
    restore(old);
    EXPECT_EQ(timer(), "0");
}

TEST_F(Restore, DetailsAreShownAndHidden) {
    Load(UndoDlg);
    const auto at = [](const char* name) { return GetPosition(FINDCONTROL(UndoDlg, name), CLIENT_UNIT); };
    const auto press = [] {
        platform::userCommand(*platform::findControl(FINDCONTROL(UndoDlg, "pushbutton2")));
    };
    Show(UndoDlg, false);
    const auto check = [&](const char* label, const char* caption, bool details) {
        const Rect last = at(label);
        EXPECT_EQ(GetCaption(FINDCONTROL(UndoDlg, "pushbutton2")), caption);
        EXPECT_EQ(GetVisible(FINDCONTROL(UndoDlg, "label4")), details);
        EXPECT_EQ(GetVisible(FINDCONTROL(UndoDlg, "lblmoredetails")), details);
        EXPECT_EQ(GetPosition(UndoDlg, CLIENT_UNIT).h, last.y + last.h + at("pushbutton1").h + 40);
        for (const char* button : {"pushbutton1", "pushbutton2", "pushbutton3", "pushbutton4"})
            EXPECT_EQ(at(button).y, last.y + last.h + 20) << button;
    };
    check("lblprompt", "Details...", false);
    press();
    check("lblmoredetails", "Hide details", true);
    press();
    check("lblprompt", "Details...", false);
}

TEST_F(Restore, NeedsAFileInTheWindow) {
    EDITWNDNEW(SDIEdit, "");
    restore(old);
    EXPECT_EQ(lastText(),
              "The following filename:\n\n\t'<untitled>'\n\nis missing or invalid. No restore points are "
              "available for this file.");
    SetModify(SDIEdit, false);
    EDITWNDCLOSE(SDIEdit, true);
    restore(old);
    EXPECT_EQ(lastText(), "The following filename:\n\n\t''\n\nis missing or invalid. No restore points are "
                          "available for this file.");
    EXPECT_EQ(asked.back().title, Title);
    EXPECT_TRUE(seen.empty());
}

TEST_F(Restore, NeedsABackup) {
    const std::string gone = "/home/user/note.txt (2013-01-01 00-00-00).bak";
    restore(gone);
    EXPECT_EQ(lastText(), "The following backup file:\n\n\t'" + gone +
                              "'\n\nis missing or invalid. The file cannot be used as a restore point.");
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(timer(), "1");
}

TEST_F(Restore, AsksAboutChangesFirst) {
    type("more\n");
    presses = {"pushbutton1"};
    answers = {"&Cancel"};
    restore(old);
    EXPECT_EQ(disk.contents(file), "new\n");
    EXPECT_EQ(GetText(SDIEdit), "new\nmore\n");
    EXPECT_FALSE(disk.has(fresh));
    EXPECT_EQ(timer(), "1");
    presses = {"pushbutton1"};
    answers = {"&Yes"};
    restore(old);
    EXPECT_EQ(disk.contents(file), "old\n");
    EXPECT_EQ(disk.contents(fresh), "new\nmore\n") << "what was saved is the restore point";
    clock.advance(5'000'000'000);
    type("gone\n");
    presses = {"pushbutton1"};
    answers = {"&No"};
    restore(fresh);
    EXPECT_EQ(disk.contents(file), "new\nmore\n");
    EXPECT_EQ(disk.contents("/home/user/note.txt (2015-03-01 10-15-05).bak"), "old\n");
}

TEST_F(Restore, OfAFileThatHasGoneMakesItAgain) {
    ASSERT_EQ(disk.remove(file), os::FileError::None);
    presses = {"pushbutton1"};
    restore(old);
    EXPECT_EQ(disk.contents(file), "old\n");
    EXPECT_FALSE(disk.has(fresh));
    EXPECT_EQ(GetText(SDIEdit), "old\n");
}

TEST_F(Restore, GoesThroughALinkThatIsTheFile) {
    disk.put("/srv/real.txt", "real\n");
    disk.putLink("/srv/real.txt", "/home/user/link.txt");
    const std::string backup = "/home/user/link.txt (2014-12-24 18-30-59).bak";
    disk.put(backup, "before\n");
    EDITWNDOPEN(SDIEdit, "/home/user/link.txt", false, 0);
    presses = {"pushbutton1"};
    restore(backup);
    EXPECT_EQ(disk.contents("/srv/real.txt"), "before\n");
    EXPECT_EQ(disk.contents("/home/user/link.txt (2015-03-01 10-15-00).bak"), "real\n");
}

TEST_F(Restore, OfAFileThatCannotHaveBackupsIsRefused) {
    disk.put("/home/user/x.bak", "x");
    disk.put("/home/user/x.bak (2014-12-24 18-30-59).bak", "y");
    EDITWNDOPEN(SDIEdit, "/home/user/x.bak", false, 0);
    asked.clear();
    restore("/home/user/x.bak (2014-12-24 18-30-59).bak");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_TRUE(asked[0].text.starts_with("Automatic Backups and Undo will not work for")) << asked[0].text;
    EXPECT_TRUE(seen.empty());
}

TEST_F(Restore, KeepsBytesAndNamesFrom128Up) {
    const std::string odd = "/home/user/\xe4\xff (x).txt", backup = odd + " (2014-12-24 18-30-59).bak";
    disk.put(odd, "\x80\xff\n");
    disk.put(backup, std::string("\xfe\0\r\n", 4));
    EDITWNDOPEN(SDIEdit, odd, false, 0);
    presses = {"pushbutton1"};
    restore(backup);
    EXPECT_EQ(disk.contents(odd), std::string("\xfe\0\r\n", 4));
    EXPECT_EQ(disk.contents(odd + " (2015-03-01 10-15-00).bak"), "\x80\xff\n");
}

TEST_F(Restore, ThatFailsAtAnyCallLosesNothing) {
    for (const os::FileError error :
         {os::FileError::DiskFull, os::FileError::Denied, os::FileError::WriteFailed}) {
        int failures = 0;
        for (int n = 1; n < 60; n++) {
            beginAnew();
            asked.clear();
            presses = {"pushbutton1"};
            disk.clearLog();
            disk.failAt(n, error);
            restore(old);
            disk.stopFailing();
            const std::string now = disk.contents(file);
            EXPECT_TRUE(now == "old\n" || now == "new\n") << "call " << n << ": " << now;
            EXPECT_EQ(disk.contents(old), "old\n");
            EXPECT_TRUE(now == "new\n" || disk.contents(fresh) == "new\n") << "call " << n;
            EXPECT_TRUE(!disk.has(fresh) || disk.contents(fresh) == "new\n") << "call " << n;
            EXPECT_EQ(GetText(SDIEdit), now) << "the window shows the file";
            EXPECT_EQ(timer(), "1");
            if (disk.calls() < n) break;
            failures++;
            EXPECT_TRUE(now == "old\n" || !asked.empty()) << "call " << n;
        }
        EXPECT_GT(failures, 6);
    }
}

TEST_F(Restore, KilledAtAnyCallLosesNothing) {
    int deaths = 0;
    for (int n = 1; n < 60; n++) {
        beginAnew();
        presses = {"pushbutton1"};
        disk.clearLog();
        disk.dieAt(n, n % 2 == 0);
        bool died = false;
        try {
            restore(old);
        } catch (const os::ProcessDeath&) {
            died = true;
        }
        disk.revive();
        ClearError();
        const std::string now = disk.contents(file);
        EXPECT_TRUE(now == "old\n" || now == "new\n") << "call " << n << ": " << now;
        EXPECT_EQ(disk.contents(old), "old\n");
        EXPECT_TRUE(now == "new\n" || disk.contents(fresh) == "new\n") << "call " << n;
        if (!died) break;
        deaths++;
    }
    EXPECT_GT(deaths, 6);
}

TEST_F(Restore, OnAFullDiskLeavesTheFile) {
    presses = {"pushbutton1"};
    disk.setFreeBytes(2);
    restore(old);
    EXPECT_EQ(disk.contents(file), "new\n");
    EXPECT_EQ(GetText(SDIEdit), "new\n");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_TRUE(asked[0].text.starts_with("Disk drive full up (error 654).\nThe file was not restored."))
        << asked[0].text;
}

TEST_F(Restore, NamesNoDayWhereTheNameHasNone) {
    const std::string named = "/home/user/note.txt (hello).bak";
    disk.put(named, "old\n");
    restore(named);
    EXPECT_EQ(saw("lblprompt"), "Restore 'note.txt' to how it was.");
}

}  // namespace
}  // namespace tarn
