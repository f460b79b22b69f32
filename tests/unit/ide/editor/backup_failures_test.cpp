// SPDX-License-Identifier: GPL-3.0-or-later
//
// Automatic backups where the disk fails or the process dies at any call.
#include "unit/ide/editor/backup_fixture.h"

namespace tarn {
namespace {

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

}  // namespace
}  // namespace tarn
