// SPDX-License-Identifier: GPL-3.0-or-later
//
// Automatic backups: their names, what is written and what is deleted for it, and what is heard.
#include "unit/ide/editor/backup_fixture.h"

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

}  // namespace
}  // namespace tarn
