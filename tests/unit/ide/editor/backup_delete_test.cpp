// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command that deletes all backups of a folder.
#include "unit/ide/editor/backup_fixture.h"

namespace tarn {
namespace {

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
