// SPDX-License-Identifier: GPL-3.0-or-later
//
// Automatic backups on a disk that is steered: names, what is written and deleted when, and what is left when the disk
// fails or the process dies at any call.
#include "ide/editor/backup.h"
#include "support/ide_fixture.h"
#include "support/steerable.h"

namespace tarn {
namespace {

TEST(EmbeddedDate, IsWhatStandsBetweenTheFirstParentheses) {
    const struct {
        const char *name, *date;
    } rows[] = {
        {"C:\\a\\b.cls (2015-03-01 10-15-00).bak", "2015-03-01 10-15-00"},
        {"/a/b (1) (2).bak", "1"},
        {"/a (x)/b (2015-03-01 10-15-00).bak", "x"},  // a folder hides the date
        {"(2015).bak", ""},                           // the first character
        {"/a/b", ""},
        {"/a/b (2015", ""},
        {"/a/b )(2015)", ""},
        {"/a/b ()", ""},
        {"", ""},
        {"/a/\xff\xe4 (2015-01-02).bak", "2015-01-02"},
    };
    for (const auto& row : rows) EXPECT_EQ(FILEGETEMBEDDEDDATE(row.name), row.date) << row.name;
}

TEST(DayNames, AreThoseOfTheCalendar) {
    const struct {
        const char *date, *name;
    } rows[] = {{"1600-01-01", "Saturday"},
                {"1600-01-02", "Sunday"},
                {"1599-12-31", "Friday"},
                {"2015-03-01 10-15-00", "Sunday"},
                {"2000-02-29", "Tuesday"},
                {"2026-01-02", "Friday"},
                {"9999-12-31", "Friday"},
                {"0001-01-01", "Monday"},
                {"2015-02-30", ""},
                {"copy", ""},
                {"", ""}};
    for (const auto& row : rows) EXPECT_EQ(DAYNAMEOF(row.date), row.name) << row.date;
}

TEST(BackupMessages, TellWhyThereAreNone) {
    EXPECT_EQ(EDITWNDBACKUPERRMSG(0), "");
    EXPECT_EQ(EDITWNDBACKUPERRMSG(1), "The filename is invalid.");
    EXPECT_EQ(EDITWNDBACKUPERRMSG(2), "The filename is too long to include the timestamp.");
    EXPECT_EQ(EDITWNDBACKUPERRMSG(3), "The file is read-only or is stored on a read-only disk.");
    EXPECT_EQ(EDITWNDBACKUPERRMSG(4),
              "The file is already a backup file because it has the extension '.bak'.");
    EXPECT_EQ(EDITWNDBACKUPERRMSG(5), "");
}

class Backup : public IdeTest {
protected:
    const std::string file = "/home/user/note.txt";
    const std::string now = "/home/user/note.txt (2015-03-01 10-15-00).bak";
    os::SteeredFiles disk;
    os::SteeredClock clock;

    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        clock.setLocal({2015, 3, 1, 10, 15, 0, 0});
        os::useClock(&clock);
        disk.put(ini(), read(ini()));
        disk.putFolder(dir + "state");
        disk.put(file, "one\n");
        os::useFiles(&disk);
        static_cast<void>(platform::takeHeadlessSounds());
    }
    void TearDown() override {
        os::useClock(nullptr);
        os::useFiles(nullptr);
        IdeTest::TearDown();
    }
    void setting(const char* key, const char* value) { PROFILESTRPUT(ini(), "EditorOptionsDlg", key, value); }
    void openAndChange() {
        EDITWNDOPEN(SDIEdit, file, false, 0);
        type("two\n");
    }
    void tick() {
        SDIEDIT(SDIEdit, TIMER_EVENT, SDIEdit, 0);
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    static std::string day(int number) {
        return "/home/user/note.txt (2014-01-0" + STR(number) + " 00-00-00).bak";
    }
    void putDays(int count) {
        for (int i = 1; i <= count; i++) disk.put(day(i), "day " + STR(i));
    }
    std::vector<std::string> backups() {
        std::vector<std::string> found;
        for (const std::string& one : disk.allFiles())
            if (one.ends_with(".bak")) found.push_back(one);
        return found;
    }
};

TEST_F(Backup, IsNamedAfterItsFileAndTheTime) {
    const BackupName names = EDITWNDGETBACKUPNAME(file);
    EXPECT_EQ(names.code, 0);
    EXPECT_EQ(names.backupName, now);
    EXPECT_EQ(names.oldestName, "");
}

TEST_F(Backup, OfASecondThatHasOneTakesTheNext) {
    disk.put(now, "other");
    EXPECT_EQ(EDITWNDGETBACKUPNAME(file).backupName, "/home/user/note.txt (2015-03-01 10-15-01).bak");
}

TEST_F(Backup, IsRefusedWithACode) {
    disk.put("/home/user/locked.txt", "x", 0444);
    disk.put("/ro/in.txt", "x");
    disk.putFolder("/ro", 0555);
    const std::string fits = "/home/user/" + std::string(255 - 26 - 11 - 4, 'a') + ".txt";
    const struct {
        std::string file;
        int code;
    } rows[] = {{"<untitled>", 1},
                {"", 1},
                {"note.txt", 1},
                {"/home/user/a*b.txt", 1},
                {fits, 0},
                {"/home/user/a" + fits.substr(11), 2},
                {"/home/user/locked.txt", 3},
                {"/ro/in.txt", 3},
                {"/home/user/x.bak", 4},
                {"/home/user/x.BAK", 4},
                {"/home/user/x.bak.txt", 0},
                {"/home/user/gone.txt", 0},
                {"/home/user/\xe4\xff.txt", 0},
                // The order of the tests: the first that holds.
                {"/home/user/" + std::string(300, 'a') + ".bak", 2},
                {std::string("/home/user/lo") + "*.bak", 1}};
    for (const auto& row : rows) {
        const BackupName names = EDITWNDGETBACKUPNAME(row.file);
        EXPECT_EQ(names.code, row.code) << row.file;
        EXPECT_EQ(names.backupName.empty(), row.code != 0) << row.file;
    }
}

TEST_F(Backup, ListHasTheNewestFirstAndFullPaths) {
    putDays(3);
    disk.put("/home/user/note.txt.bak", "of another program");
    disk.put("/home/user/note.txt (2014-01-02 00-00-00).txt", "no backup");
    disk.put("/home/user/another note.txt (2014-01-02 00-00-00).bak", "of another file");
    EXPECT_EQ(EDITWNDGETBACKUPLIST(file),
              "/home/user/note.txt.bak\n" + day(3) + "\n" + day(2) + "\n" + day(1) + "\n");
    EXPECT_EQ(EDITWNDGETBACKUPLIST("<untitled>"), "");
    EXPECT_EQ(EDITWNDGETBACKUPLIST("/no/such/folder/a.txt"), "");
}

TEST_F(Backup, ListIsReadAgainOnlyWhenTheFolderMayHaveChanged) {
    putDays(2);
    clock.advance(10'000'000'000);
    const std::string before = EDITWNDGETBACKUPLIST(file);
    disk.failAlways(os::FileCall::List, os::FileError::ReadFailed);
    EXPECT_EQ(EDITWNDGETBACKUPLIST(file), before) << "as it was found";
    disk.failAlways(os::FileCall::List, os::FileError::None);
    ASSERT_EQ(os::saveNewFile(day(3), "x", 0600), os::FileError::None);
    EXPECT_EQ(EDITWNDGETBACKUPLIST(file), day(3) + "\n" + before) << "the folder has changed";
    ASSERT_EQ(disk.remove(day(3)), os::FileError::None);
    EXPECT_EQ(EDITWNDGETBACKUPLIST(file), before) << "in the same step of the disk's clock";
    EXPECT_EQ(EDITWNDGETBACKUPLIST("/home/user/other.txt"), "");
}

TEST_F(Backup, HoldsTheTextOfTheWindowAndLeavesTheFileAndItsMarks) {
    openAndChange();
    tick();
    EXPECT_EQ(disk.contents(now), "one\ntwo\n");
    EXPECT_EQ(disk.contents(file), "one\n");
    EXPECT_FALSE(GETMODIFYPRIVATE(SDIEdit));
    EXPECT_TRUE(GetModify(SDIEdit));
    EXPECT_EQ(GetCaption(SDIEdit), file + " *");
    EXPECT_TRUE(asked.empty()) << lastText();
}

TEST_F(Backup, IsWrittenOnceForAChange) {
    openAndChange();
    tick();
    clock.advance(60'000'000'000);
    tick();
    EXPECT_EQ(backups().size(), 1u);
    type("three\n");
    tick();
    EXPECT_EQ(backups().size(), 2u);
    EDITWNDSAVE(SDIEdit, false);
    clock.advance(60'000'000'000);
    tick();
    EXPECT_EQ(backups().size(), 2u) << "a save is as good as a backup";
}

TEST_F(Backup, IsNotWrittenOfAnEmptyWindowAndNotOfAnUntitledText) {
    tick();
    EDITWNDNEW(SDIEdit, "text");
    tick();
    EXPECT_TRUE(backups().empty());
    EXPECT_TRUE(GETMODIFYPRIVATE(SDIEdit));
    EXPECT_TRUE(asked.empty()) << lastText();
    SETMODIFYPRIVATE(SDIEdit, true);
    EDITWNDAUTOBACKUP(Object("NoWindow"));
    Load(FileInfoDlg);
    EDITWNDAUTOBACKUP(FileInfoDlg);
    EXPECT_TRUE(backups().empty());
}

TEST_F(Backup, OfABackupIsNeverWritten) {
    disk.put(day(1), "old\n");
    EDITWNDOPEN(SDIEdit, day(1), false, 0);
    EXPECT_NE(lastText().find("it has the extension '.bak'"), std::string::npos) << lastText();
    type("x");
    tick();
    EXPECT_EQ(backups().size(), 1u);
}

TEST_F(Backup, KeepsEveryByte) {
    std::string bytes;
    for (int i = 0; i < 256; i++) bytes += static_cast<char>(i);
    openAndChange();
    SetSelection(SDIEdit, 1, GetTextLength(SDIEdit));
    SetSelText(SDIEdit, bytes + "\r\nend");
    tick();
    EXPECT_EQ(disk.contents(now), bytes + "\r\nend");
}

TEST_F(Backup, IsAsPrivateAsItsFile) {
    disk.put(file, "one\n", 0600);
    openAndChange();
    tick();
    EXPECT_EQ(os::infoOf(now).mode, 0600u);
}

TEST_F(Backup, AtTheLimitPushesOutTheOldest) {
    setting("AutoBackupMaxfiles", "3");
    putDays(3);
    EXPECT_EQ(EDITWNDGETBACKUPNAME(file).oldestName, day(1));
    openAndChange();
    tick();
    EXPECT_EQ(backups(), (std::vector<std::string>{day(2), day(3), now}));
}

TEST_F(Backup, AboveALoweredLimitPushesOutOneOnly) {
    setting("AutoBackupMaxfiles", "3");
    putDays(5);
    openAndChange();
    tick();
    EXPECT_EQ(backups(), (std::vector<std::string>{day(1), day(2), day(4), day(5), now}))
        << "the third-newest of those that were there";
}

TEST_F(Backup, BelowTheLimitAndWithoutOneStays) {
    setting("AutoBackupMaxfiles", "4");
    putDays(3);
    EXPECT_EQ(EDITWNDGETBACKUPNAME(file).oldestName, "");
    setting("AutoBackupMaxfiles", "0");
    EXPECT_EQ(EDITWNDGETBACKUPNAME(file).oldestName, "");
    setting("AutoBackupMaxfiles", "-1");
    EXPECT_EQ(EDITWNDGETBACKUPNAME(file).oldestName, "");
    setting("AutoBackupMaxfiles", "many");
    EXPECT_EQ(EDITWNDGETBACKUPNAME(file).oldestName, "");
}

TEST_F(Backup, OfAnotherFileIsNeverPushedOut) {
    setting("AutoBackupMaxfiles", "1");
    disk.put("/home/user/note.txt2 (2014-01-01 00-00-00).bak", "of note.txt2");
    openAndChange();
    tick();
    EXPECT_EQ(backups().size(), 2u);
    disk.put("/home/user/note.txt.bak", "of another program");
    ASSERT_EQ(disk.remove("/home/user/note.txt2 (2014-01-01 00-00-00).bak"), os::FileError::None);
    clock.advance(5'000'000'000);
    type("x");
    tick();
    EXPECT_EQ(disk.contents("/home/user/note.txt.bak"), "of another program");
}

TEST_F(Backup, GoesOverNoFileAndThroughNoLink) {
    disk.put("/home/user/precious", "precious");
    disk.putLink("/home/user/precious", now);
    openAndChange();
    tick();
    EXPECT_EQ(disk.contents("/home/user/precious"), "precious");
    EXPECT_EQ(disk.contents("/home/user/note.txt (2015-03-01 10-15-01).bak"), "one\ntwo\n");
    disk.putLink("/home/user/absent", "/home/user/note.txt (2015-03-01 10-15-02).bak");
    clock.advance(2'000'000'000);
    type("x");
    tick();
    EXPECT_FALSE(disk.has("/home/user/absent"));
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "Error");
}

// ---- sounds ----

TEST_F(Backup, IsHeardIfSoundsAreOn) {
    openAndChange();
    tick();
    EXPECT_EQ(platform::takeHeadlessSounds(), std::vector<std::string>{dir + "save.wav"});
    setting("chkSoundEffects", "0");
    clock.advance(1'000'000'000);
    type("x");
    tick();
    EXPECT_TRUE(platform::takeHeadlessSounds().empty());
}

TEST_F(Backup, ThatPushesOneOutIsHeardTwiceAndNobodyWaits) {
    os::useFiles(nullptr);
    start();
    os::useFiles(&disk);
    setting("AutoBackupMaxfiles", "1");
    putDays(1);
    openAndChange();
    const std::int64_t before = clock.steady();
    tick();
    EXPECT_EQ(clock.steady(), before);
    EXPECT_EQ(platform::takeHeadlessSounds(), std::vector<std::string>{dir + "save.wav"});
    clock.advance(999'000'000);
    DoEvents();
    EXPECT_TRUE(platform::takeHeadlessSounds().empty());
    clock.advance(2'000'000);
    DoEvents();
    EXPECT_EQ(platform::takeHeadlessSounds(), std::vector<std::string>{dir + "snip.wav"});
    clock.advance(5'000'000'000);
    DoEvents();
    EXPECT_TRUE(platform::takeHeadlessSounds().empty()) << "once";
    EXPECT_EQ(backups(), std::vector<std::string>{now});
}

// ---- failures ----

TEST_F(Backup, ThatFailsAtAnyCallIsToldAndLeavesNothingHalf) {
    for (const os::FileError error :
         {os::FileError::DiskFull, os::FileError::Denied, os::FileError::WriteFailed}) {
        int failures = 0;
        for (int n = 1; n < 30; n++) {
            for (const std::string& one : backups()) ASSERT_EQ(disk.remove(one), os::FileError::None);
            EDITWNDOPEN(SDIEdit, file, false, 0);
            type("two\n");
            const std::string text = GetText(SDIEdit);
            asked.clear();
            disk.clearLog();
            disk.failAt(n, error);
            tick();
            disk.stopFailing();
            EXPECT_EQ(GetText(SDIEdit), text);
            EXPECT_TRUE(GetModify(SDIEdit));
            EXPECT_EQ(disk.contents(file), "one\n");
            for (const std::string& one : backups()) EXPECT_EQ(disk.contents(one), text) << "call " << n;
            if (disk.calls() < n) break;
            failures++;
            if (asked.empty())
                continue;  // a failure that changes nothing: the temporary could not be removed
            EXPECT_EQ(asked[0].title, "Error");
            EXPECT_NE(asked[0].text.find("(error 65"), std::string::npos) << asked[0].text;
        }
        EXPECT_GT(failures, 3);
    }
}

TEST_F(Backup, KilledAtAnyCallIsThereWholeOrNotAtAll) {
    setting("AutoBackupMaxfiles", "2");
    int deaths = 0;
    for (int n = 1; n < 30; n++) {
        for (const std::string& one : backups()) ASSERT_EQ(disk.remove(one), os::FileError::None);
        putDays(2);
        EDITWNDOPEN(SDIEdit, file, false, 0);
        type("two\n");
        const std::string text = GetText(SDIEdit);
        disk.clearLog();
        disk.dieAt(n, n % 2 == 0);
        bool died = false;
        try {
            tick();
        } catch (const os::ProcessDeath&) {
            died = true;
        }
        disk.revive();
        ClearError();
        EXPECT_EQ(disk.contents(file), "one\n");
        EXPECT_EQ(disk.contents(day(2)), "day 2");
        EXPECT_TRUE(!disk.has(day(1)) || disk.contents(day(1)) == "day 1");
        bool isThere = false;
        for (const std::string& one : backups()) {
            if (one == day(1) || one == day(2)) continue;
            isThere = true;
            EXPECT_EQ(disk.contents(one), text) << "call " << n;
        }
        EXPECT_TRUE(isThere || disk.has(day(1))) << "the old one goes only when the new one is there";
        if (!died) break;
        deaths++;
    }
    EXPECT_GT(deaths, 4);
}

TEST_F(Backup, OnAFullDiskKeepsTheOldOnes) {
    setting("AutoBackupMaxfiles", "1");
    putDays(1);
    openAndChange();
    disk.setFreeBytes(3);
    tick();
    EXPECT_EQ(disk.contents(day(1)), "day 1");
    EXPECT_EQ(backups().size(), 1u);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_TRUE(
        asked[0].text.starts_with("Disk drive full up (error 654).\nThe automatic backup could not be "
                                  "written:\n\n\t'" +
                                  now + "'\n\n"))
        << asked[0].text;
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(Backup, ThatFailedIsTriedAgainAndToldOnce) {
    openAndChange();
    disk.setFreeBytes(3);
    tick();
    tick();
    EXPECT_EQ(backups().size(), 0u);
    EXPECT_EQ(asked.size(), 1u) << "the user knows";
    disk.setFreeBytes(1000);
    tick();
    EXPECT_EQ(backups().size(), 1u) << "without another change";
    type("x");
    disk.setFreeBytes(3);
    tick();
    EXPECT_EQ(asked.size(), 2u) << "it had worked again";
}

TEST_F(Backup, ThatCannotPushOutTheOldestSaysSo) {
    setting("AutoBackupMaxfiles", "1");
    putDays(1);
    openAndChange();
    disk.failAlways(os::FileCall::Remove, os::FileError::Denied);
    tick();
    disk.failAlways(os::FileCall::Remove, os::FileError::None);
    EXPECT_EQ(disk.contents(now), "one\ntwo\n");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_NE(asked[0].text.find("(error 652)"), std::string::npos) << asked[0].text;
    EXPECT_NE(asked[0].text.find("An old automatic backup could not be deleted:\n\n\t'" + day(1) + "'"),
              std::string::npos)
        << asked[0].text;
}

TEST_F(Backup, InAFolderWithoutWriteAccessIsWarnedOfAndNotTried) {
    disk.putFolder("/home/user", 0555);
    openAndChange();
    EXPECT_NE(lastText().find("read-only disk"), std::string::npos) << lastText();
    asked.clear();
    tick();
    EXPECT_TRUE(asked.empty()) << lastText();
    disk.putFolder("/home/user", 0755);
}

// ---- the warning ----

TEST_F(Backup, IsWarnedOfAtLoadWithWhatHelps) {
    const std::string head = "Automatic Backups and Undo will not work for the following file:\n\n\t'";
    disk.put("/home/user/locked.txt", "x", 0444);
    disk.put("/home/user/x.bak", "x");
    const struct {
        std::string file, message;
    } rows[] = {
        {"/home/user/a*b.txt", "The filename is invalid.\nTo enable Automatic Backups and Undo for this "
                               "file, save the file first, give\n"
                               "it a valid name, then re-open it again."},
        {"/home/user/" + std::string(240, 'a'),
         "The filename is too long to include the timestamp.\nTo enable Automatic Backups and Undo for this "
         "file, "
         "close the file and copy it\nto a folder with a shorter path."},
        {"/home/user/locked.txt",
         "The file is read-only or is stored on a read-only disk.\nTo enable Automatic Backups and Undo for "
         "this "
         "file, close the file,\ncopy it to a local disk, give it read-write access, then re-open it."},
        {"/home/user/x.bak",
         "The file is already a backup file because it has the extension '.bak'.\nTo enable Automatic "
         "Backups and "
         "Undo for this file, close the file, make a copy\nand rename it, then re-open it"}};
    for (const auto& row : rows) {
        asked.clear();
        EDITWNDCHECKBACKUPOK(row.file);
        ASSERT_EQ(asked.size(), 1u) << row.file;
        EXPECT_EQ(asked[0].text, head + row.file + "'\n\n" + row.message);
    }
    asked.clear();
    EDITWNDCHECKBACKUPOK(file);
    EXPECT_TRUE(asked.empty());
    EDITWNDOPEN(SDIEdit, "/home/user/locked.txt", false, 0);
    EXPECT_EQ(asked.size(), 1u);
    EXPECT_EQ(GetStatus(SDIEdit), "Read-only file");
}

TEST_F(Backup, IsNotWarnedOfWithAnIntervalOfZero) {
    for (const char* interval : {"0", "-5", "", "often"}) {
        setting("AutoBackupInterval", interval);
        EDITWNDCHECKBACKUPOK("/home/user/x.bak");
        EXPECT_TRUE(asked.empty()) << interval;
    }
}

// ---- the timer ----

TEST_F(Backup, TimerRunsFromTheStartToTheEnd) {
    os::useFiles(nullptr);
    setting("AutoBackupInterval", "2");
    start();
    const Object label = MAINCONTROL("lblautobackuptimer");
    EXPECT_EQ(GetCaption(label), "1");
    const std::string text = write("a.txt", "one\n");
    EDITWNDOPEN(SDIEdit, text, false, 0);
    type("x");
    clock.advance(119'000'000'000);
    DoEvents();
    EXPECT_EQ(EDITWNDGETBACKUPLIST(text), "");
    clock.advance(2'000'000'000);
    DoEvents();
    EXPECT_EQ(EDITWNDGETBACKUPLIST(text), text + " (2015-03-01 10-17-01).bak\n");
    DO_UNLOAD();
    EXPECT_EQ(GetCaption(label), "0");
    type("y");
    clock.advance(500'000'000'000);
    DoEvents();
    EXPECT_EQ(STRLINES(EDITWNDGETBACKUPLIST(text)), 1);
}

TEST_F(Backup, TimerDoesNotRunWithAnIntervalOfZero) {
    os::useFiles(nullptr);
    setting("AutoBackupInterval", "0");
    start();
    const Object label = MAINCONTROL("lblautobackuptimer");
    EXPECT_EQ(GetCaption(label), "0");
    EDITWNDSETTIMER(SDIEdit, label, 1);
    EXPECT_EQ(GetCaption(label), "1");
    EDITWNDSETTIMER(SDIEdit, label, 100'000'000);  // as long as the platform can
    EXPECT_EQ(GetCaption(label), "1");
    EDITWNDKILLTIMER(SDIEdit, label);
    EXPECT_EQ(GetCaption(label), "0");
    EDITWNDKILLTIMER(SDIEdit, label);
    EXPECT_EQ(GetCaption(label), "0");
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Backup, TimerThatCannotBeStartedIsAnAssertion) {
    os::useFiles(nullptr);
    start();
    struct Ended {};
    const os::EndHook before = os::useEndHook([](int) { throw Ended{}; });
    EXPECT_THROW(EDITWNDSETTIMER(Object("NoWindow"), MAINCONTROL("lblautobackuptimer"), 1), Ended);
    os::useEndHook(before);
    EXPECT_EQ(AssertText(), "SetTimer could not start the auto-backup timer");
}

// ---- deleting all ----

class DeleteBackups : public Backup {
protected:
    void SetUp() override {
        Backup::SetUp();
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", "/lib1/; /lib2");
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", "/examples");
        for (const char* one : {"/lib1/a.bak", "/lib1/sub/deep/b.bak", "/lib2/c.bak", "/examples/x/d.bak",
                                "/home/user/sub/e.bak", "/elsewhere/f.bak"})
            disk.put(one, std::string(1000, 'x'));
        disk.put("/lib1/keep.cls", "class");
        disk.put("/lib1/keep.bak.txt", "text");
        disk.putFolder("/lib1/folder.bak");
    }
    void deleteAll() {
        EDITWNDDELETEBACKUPS("Delete");
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
};

TEST_F(DeleteBackups, ShowsThemSortedAndDeletesAllWhateverIsChosen) {
    EDITWNDOPEN(SDIEdit, file, false, 0);
    const std::vector<std::string> rows{"/examples/x/d.bak", "/home/user/sub/e.bak", "/lib1/a.bak",
                                        "/lib1/sub/deep/b.bak", "/lib2/c.bak"};
    answers = {"/lib1/a.bak"};
    deleteAll();
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "Delete");
    EXPECT_EQ(asked[0].rows, rows);
    EXPECT_EQ(asked[0].text, "5 backup files, 5,000 bytes total.\nTo delete all these files, select any one "
                             "file and press OK.\nOr "
                             "press Cancel not to delete anything.");
    EXPECT_EQ(backups(), std::vector<std::string>{"/elsewhere/f.bak"});
    EXPECT_TRUE(disk.has("/lib1/keep.cls"));
    EXPECT_TRUE(disk.has("/lib1/keep.bak.txt"));
    EXPECT_TRUE(disk.has("/lib1/folder.bak"));
}

TEST_F(DeleteBackups, DeletesNothingOnCancel) {
    deleteAll();
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].rows.size(), 4u) << "no file is open";
    EXPECT_EQ(backups().size(), 6u);
}

TEST_F(DeleteBackups, SaysWhenThereIsNothing) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", "/empty;/no/such");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", "");
    disk.put("/empty/a.bak", "");
    deleteAll();
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].kind, platform::Question::Kind::Message);
    EXPECT_EQ(asked[0].text, "There are no backup files to delete.");
}

TEST_F(DeleteBackups, FollowsNoLinkToAFolderAndNamesAFileOnce) {
    disk.putLink("/elsewhere", "/lib1/link");
    disk.putLink("/lib1", "/lib1/sub/circle");
    disk.put("/precious", "precious");
    disk.putLink("/precious", "/lib2/link.bak");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", "/lib1;/lib1/sub;/lib2;/lib1");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", "");
    answers = {"/lib1/a.bak"};
    deleteAll();
    EXPECT_EQ(asked[0].rows, (std::vector<std::string>{"/lib1/a.bak", "/lib1/sub/deep/b.bak", "/lib2/c.bak",
                                                       "/lib2/link.bak"}));
    EXPECT_EQ(disk.contents("/precious"), "precious");
    EXPECT_TRUE(disk.has("/elsewhere/f.bak"));
}

TEST_F(DeleteBackups, LeavesTheCopyOfTheSettings) {
    disk.put(FILECHANGEEXT(ini(), ".bak"), "[Main]\n");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", dir);
    answers = {"/lib1/a.bak"};
    deleteAll();
    EXPECT_TRUE(disk.has(FILECHANGEEXT(ini(), ".bak")));
}

TEST_F(DeleteBackups, GoesOnBehindOneThatStaysAndTellsIt) {
    disk.putFolder("/lib1/sub/deep", 0555);
    answers = {"/lib1/a.bak"};
    deleteAll();
    disk.putFolder("/lib1/sub/deep", 0755);
    EXPECT_TRUE(disk.has("/lib1/sub/deep/b.bak"));
    EXPECT_FALSE(disk.has("/lib2/c.bak"));
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_NE(asked[1].text.find("(error 652)"), std::string::npos) << asked[1].text;
}

TEST_F(DeleteBackups, KilledAtAnyCallDamagesNothing) {
    for (int n = 1; n < 10; n++) {
        for (const char* one : {"/lib1/a.bak", "/lib1/sub/deep/b.bak", "/lib2/c.bak", "/examples/x/d.bak"})
            disk.put(one, "backup");
        disk.clearLog();
        disk.dieAt(n);
        answers = {"/lib1/a.bak"};
        bool died = false;
        try {
            deleteAll();
        } catch (const os::ProcessDeath&) {
            died = true;
        }
        disk.revive();
        ClearError();
        EXPECT_EQ(disk.contents("/lib1/keep.cls"), "class");
        EXPECT_EQ(disk.contents(file), "one\n");
        if (!died) break;
    }
}

}  // namespace
}  // namespace tarn
