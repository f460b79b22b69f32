// SPDX-License-Identifier: GPL-3.0-or-later
//
// When backups are written by themselves, and the warning where they cannot be.
#include "unit/ide/editor/backup_fixture.h"

namespace tarn {
namespace {

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

}  // namespace
}  // namespace tarn
