// SPDX-License-Identifier: GPL-3.0-or-later
//
// Replace in Files while the disk fails, is full, or the process dies at each call in turn: each file is as it was or as
// it should be, and one that was changed has its old bytes beside it.
#include "ide/search/replacefiles.h"

#include "support/ide_fixture.h"
#include "support/steerable.h"

#include <functional>
#include <map>

namespace tarn {
namespace {

const std::map<std::string, std::string> Old = {{"/home/user/p/a.cls", "an old word\n"},
                                                {"/home/user/p/b.cls", "old\r\nold old"},
                                                {"/home/user/p/c.cls", "(old)\n\xFF"}};

std::string replaced(const std::string& text) {
    return STRREPLACE(text, "old", "brand new");
}

class ReplaceFiles : public IdeTest {
protected:
    os::SteeredFiles disk;
    os::SteeredClock clock;
    FileChoices choices;

    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        disk.put(ini(), read(ini()));
        os::useFiles(&disk);
        os::useClock(&clock);
        choices.text = "old";
        choices.with = "brand new";
        choices.patterns = "*.cls";
        choices.folders = {"/home/user/p"};
        prepare();
    }
    void TearDown() override {
        os::useFiles(nullptr);
        os::useClock(nullptr);
        IdeTest::TearDown();
    }
    // The folder as at the beginning.
    void prepare() {
        for (const std::string& file : disk.allFiles())
            if (file.starts_with("/home/user/p/")) disk.remove(file);
        for (const auto& [file, text] : Old) disk.put(file, text);
        disk.clearLog();
    }
    [[nodiscard]] std::vector<std::string> backupsOf(const std::string& file) const {
        std::vector<std::string> backups;
        for (const std::string& one : disk.allFiles())
            if (one.starts_with(file + " (") && one.ends_with(".bak")) backups.push_back(one);
        return backups;
    }
    // How many are replaced; each is old or new, and each new one has its old bytes beside it.
    int check(const std::string& when) {
        int changed = 0;
        for (const auto& [file, text] : Old) {
            const std::string now = disk.contents(file);
            EXPECT_TRUE(now == text || now == replaced(text)) << when << ": " << file << ": " << now;
            if (now == text) continue;
            ++changed;
            const auto backups = backupsOf(file);
            EXPECT_EQ(backups.size(), 1U) << when;
            EXPECT_EQ(backups.empty() ? "" : disk.contents(backups[0]), text) << when;
        }
        for (const std::string& file : disk.allFiles())
            if (file.ends_with(".bak")) {
                const std::string of = file.substr(0, file.find(" ("));
                EXPECT_EQ(disk.contents(file), Old.at(of)) << when << ": " << file;
            }
        return changed;
    }
};

TEST_F(ReplaceFiles, WritesTheFilesAndTheirOldBytesBesideThem) {
    const ReplacePlan plan = PLANREPLACEMENTS(choices);
    ASSERT_EQ(plan.files.size(), 3U);
    EXPECT_EQ(plan.notes, "");
    EXPECT_EQ(plan.files[1].count, 3);
    ASSERT_EQ(plan.files[1].lines.size(), 2U);
    EXPECT_EQ(plan.files[1].lines[1].line, 2);
    EXPECT_EQ(plan.files[1].lines[1].before, "old old");
    EXPECT_EQ(plan.files[1].lines[1].after, "brand new brand new");
    const ReplaceReport report = WRITEREPLACEMENTS(choices, plan);
    EXPECT_EQ(report.replacements, 5);
    EXPECT_EQ(report.files, 3);
    EXPECT_EQ(report.problems, "");
    EXPECT_EQ(check("whole"), 3);
    EXPECT_TRUE(disk.has("/home/user/p/a.cls (2001-02-03 04-05-06).bak"));
    EXPECT_EQ(disk.openHandles(), 0);
}

TEST_F(ReplaceFiles, ABackupOfTheSameSecondStaysAndTheNewOneHasTheNext) {
    disk.put("/home/user/p/a.cls (2001-02-03 04-05-06).bak", "another");
    EXPECT_EQ(WRITEREPLACEMENTS(choices, PLANREPLACEMENTS(choices)).files, 3);
    EXPECT_EQ(disk.contents("/home/user/p/a.cls (2001-02-03 04-05-06).bak"), "another");
    EXPECT_EQ(disk.contents("/home/user/p/a.cls (2001-02-03 04-05-07).bak"), Old.at("/home/user/p/a.cls"));
    EXPECT_EQ(disk.contents("/home/user/p/b.cls (2001-02-03 04-05-06).bak"), Old.at("/home/user/p/b.cls"));
}

TEST_F(ReplaceFiles, BackupsAreForNobodyElse) {
    disk.put("/home/user/p/a.cls", "old", 0600);
    WRITEREPLACEMENTS(choices, PLANREPLACEMENTS(choices));
    os::FileInfo info;
    ASSERT_EQ(disk.info(backupsOf("/home/user/p/a.cls").at(0), info), os::FileError::None);
    EXPECT_EQ(info.mode, 0600U);
}

TEST_F(ReplaceFiles, NoCopyOfAPrivateFileIsEverForOthers) {
    for (int n = 1; n < 200; ++n) {
        prepare();
        disk.put("/home/user/p/a.cls", "old", 0600);
        const ReplacePlan plan = PLANREPLACEMENTS(choices);
        disk.dieAt(n);
        bool died = false;
        try {
            WRITEREPLACEMENTS(choices, plan);
        } catch (const os::ProcessDeath&) {
            died = true;
        }
        disk.revive();
        ClearError();
        for (const std::string& file : disk.allFiles()) {
            if (!file.starts_with("/home/user/p/") || disk.contents(file) != "old") continue;
            os::FileInfo info;
            ASSERT_EQ(disk.info(file, info), os::FileError::None);
            EXPECT_EQ(info.mode & 0077U, 0U) << file << " at call " << n;
        }
        if (!died) break;
    }
}

TEST_F(ReplaceFiles, WhatIsNotWantedStays) {
    ReplacePlan plan = PLANREPLACEMENTS(choices);
    plan.files[1].wanted = false;
    EXPECT_EQ(WRITEREPLACEMENTS(choices, plan).files, 2);
    EXPECT_EQ(disk.contents("/home/user/p/b.cls"), Old.at("/home/user/p/b.cls"));
    EXPECT_TRUE(backupsOf("/home/user/p/b.cls").empty());
}

TEST_F(ReplaceFiles, WhatHasChangedOrGoneIsLeftAndTold) {
    const ReplacePlan plan = PLANREPLACEMENTS(choices);
    disk.put("/home/user/p/a.cls", "an old word, changed\n");
    disk.remove("/home/user/p/b.cls");
    const ReplaceReport report = WRITEREPLACEMENTS(choices, plan);
    EXPECT_EQ(report.files, 1);
    EXPECT_EQ(report.problems,
              "'/home/user/p/a.cls' was not changed: It has changed since the list was made.\n"
              "'/home/user/p/b.cls' was not changed: " +
                  std::string(os::describe(os::FileError::NotFound)) + "\n");
    EXPECT_EQ(disk.contents("/home/user/p/a.cls"), "an old word, changed\n");
    EXPECT_FALSE(disk.has("/home/user/p/b.cls"));
}

TEST_F(ReplaceFiles, WhatMayNotBeWrittenStays) {
    disk.put("/home/user/p/a.cls", "old", 0444);
    const ReplaceReport report = WRITEREPLACEMENTS(choices, PLANREPLACEMENTS(choices));
    EXPECT_EQ(report.problems, "'/home/user/p/a.cls' was not changed: You may not write to it.\n");
    EXPECT_EQ(disk.contents("/home/user/p/a.cls"), "old");
    EXPECT_TRUE(backupsOf("/home/user/p/a.cls").empty());
}

TEST_F(ReplaceFiles, AFileThatIsChangedInTheCodeWindowIsRefused) {
    EDITWNDOPEN(SDIEdit, "/home/user/p/a.cls", false, 0);
    const ReplacePlan before = PLANREPLACEMENTS(choices);
    type("more");
    const ReplacePlan plan = PLANREPLACEMENTS(choices);
    EXPECT_EQ(plan.files.size(), 2U);
    EXPECT_EQ(plan.notes, "'/home/user/p/a.cls' is changed in the Code window. Save it first.\n");
    EXPECT_EQ(WRITEREPLACEMENTS(choices, before).problems,
              "'/home/user/p/a.cls' was not changed: It is changed in the Code window.\n");
    EXPECT_EQ(disk.contents("/home/user/p/a.cls"), Old.at("/home/user/p/a.cls"));
    EXPECT_EQ(GetText(SDIEdit), "an old word\nmore");
}

TEST_F(ReplaceFiles, AFileInTheCodeWindowIsReadAgain) {
    EDITWNDOPEN(SDIEdit, "/home/user/p/a.cls", false, 0);
    WRITEREPLACEMENTS(choices, PLANREPLACEMENTS(choices));
    EXPECT_EQ(GetText(SDIEdit), "an brand new word\n");
    EXPECT_FALSE(GetModify(SDIEdit));
    EXPECT_TRUE(asked.empty());
}

TEST_F(ReplaceFiles, ATextThatWouldGetTooLargeIsLeft) {
    disk.put("/home/user/p/a.cls", std::string(3'999'990, 'x') + "old");
    const ReplacePlan plan = PLANREPLACEMENTS(choices);
    EXPECT_EQ(plan.files.size(), 3U);
    choices.with = std::string(100, 'n');
    EXPECT_EQ(PLANREPLACEMENTS(choices).notes,
              "'/home/user/p/a.cls' would be too large for the Code window.\n");
}

// ---- failing, full, killed ----

TEST_F(ReplaceFiles, FailingAtAnyCallLeavesEachFileOldOrNewAndIsTold) {
    for (const os::FileError error :
         {os::FileError::DiskFull, os::FileError::Denied, os::FileError::WriteFailed}) {
        int failures = 0;
        for (int n = 1; n < 200; ++n) {
            prepare();
            const ReplacePlan plan = PLANREPLACEMENTS(choices);
            disk.failAt(n, error);
            const ReplaceReport report = WRITEREPLACEMENTS(choices, plan);
            const int used = disk.calls();
            disk.stopFailing();
            const std::string when = "call " + std::to_string(n);
            const int changed = check(when);
            EXPECT_EQ(disk.openHandles(), 0) << when;
            if (report.files < 3) {
                ++failures;
                EXPECT_NE(report.problems, "") << when;
            }
            EXPECT_GE(changed, report.files) << when;
            if (used < n) break;
            ASSERT_LT(n, 199);
        }
        EXPECT_GT(failures, 6);
    }
}

TEST_F(ReplaceFiles, AFullDiskLeavesTheRestAsItWas) {
    for (int room = 0; room < 120; ++room) {
        prepare();
        const ReplacePlan plan = PLANREPLACEMENTS(choices);
        disk.setFreeBytes(room);
        const ReplaceReport report = WRITEREPLACEMENTS(choices, plan);
        disk.setFreeBytes(1'000'000);
        EXPECT_EQ(check("room for " + std::to_string(room)), report.files);
        EXPECT_EQ(report.problems.empty(), report.files == 3) << room;
    }
}

TEST_F(ReplaceFiles, KilledAtAnyCallLeavesEachFileOldOrNew) {
    int deaths = 0;
    for (const bool midway : {false, true}) {
        for (int n = 1; n < 200; ++n) {
            prepare();
            const ReplacePlan plan = PLANREPLACEMENTS(choices);
            disk.dieAt(n, midway);
            bool died = false;
            try {
                WRITEREPLACEMENTS(choices, plan);
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            disk.revive();
            ClearError();
            check("death at " + std::to_string(n));
            if (!died) break;
            ++deaths;
            ASSERT_LT(n, 199);
        }
    }
    EXPECT_GT(deaths, 40);
}

TEST_F(ReplaceFiles, AMachineThatDiesLeavesEachFileOldOrNew) {
    for (int n = 1; n < 200; ++n) {
        prepare();
        const ReplacePlan plan = PLANREPLACEMENTS(choices);
        disk.dieAt(n);
        bool died = false;
        try {
            WRITEREPLACEMENTS(choices, plan);
        } catch (const os::ProcessDeath&) {
            died = true;
        }
        disk.afterMachineDeath(os::SteeredFiles::Names::Lost);
        ClearError();
        check("the machine died at " + std::to_string(n));
        if (!died) break;
    }
}

}  // namespace
}  // namespace tarn
