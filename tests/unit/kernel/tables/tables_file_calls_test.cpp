// SPDX-License-Identifier: Apache-2.0
//
// What operations on tables in files ask of the disk: as little as what they promise needs.
#include "os/tinylimits.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>
#include <string_view>

namespace tarn {
namespace {

class TableCalls : public FileTables {
protected:
    int calls(std::string_view begin) {
        const auto& log = files().log();
        return static_cast<int>(std::count_if(
            log.begin(), log.end(), [=](const std::string& call) { return call.starts_with(begin); }));
    }
    int folderSyncsOfClosing() {
        files().clearLog();
        close();
        const int count = calls("syncfolder ");
        EXPECT_EQ(calls("sync") - count, 3);  // rows and indexes, always
        EXPECT_EQ(open(), 0);
        return count;
    }
};

TEST_F(TableCalls, AnOperationOpensEachFileOnce) {
    make();
    fill(20);
    files().clearLog();
    ASSERT_EQ(add(row(21, "n21")), 0);
    EXPECT_EQ(calls("open "), 3);
    files().clearLog();
    ASSERT_EQ(update(1, {integer(4)}, row(40, "n40")), 0);
    EXPECT_EQ(calls("open "), 3);
    ASSERT_EQ(remove(1, {integer(3)}), 0);  // makes the file of moved rows
    files().clearLog();
    ASSERT_EQ(remove(1, {integer(2)}), 0);
    EXPECT_EQ(calls("open "), 4);
    EXPECT_EQ(calls("close"), 4);
    expectWhole();
}

TEST_F(TableCalls, ASearchBehindAChangeReadsItsRowAlone) {
    if (limits::Tiny) GTEST_SKIP() << "few records are remembered";
    make();
    fill(200);
    const auto findsByOneReading = [this](int number) {
        files().failAt(os::FileCall::Read, 2, os::FileError::ReadFailed);
        EXPECT_EQ(find("EQ", 1, {integer(number)}), number);
        files().stopFailing();
    };
    findsByOneReading(77);
    ASSERT_EQ(update(1, {integer(4)}, row(400, "n400")), 0);
    findsByOneReading(400);
    ASSERT_EQ(remove(2, {text("n9", 8)}), 0);
    findsByOneReading(200);  // which has moved
    expectWhole();
}

// It takes no time of its own from this user.
TEST_F(TableCalls, AnIndexOfAnotherOwnerIsReadAgain) {
    make();
    fill(20);
    files().put("/d/a.i1", bytes("a.i1"), 0666);
    files().putOwner("/d/a.i1", 5, 1000);
    for (int i = 21; i <= 40; ++i) ASSERT_EQ(add(row(i, "n" + std::to_string(i))), 0);
    EXPECT_EQ(find("EQ", 1, {integer(33)}), 33);
    expectWhole();
}

TEST_F(TableCalls, ClosingWaitsForTheFolderOnlyWhenItsNamesMayHaveChanged) {
    constexpr std::int64_t second = 1'000'000'000;
    os::SteeredClock clock;
    const os::Steered steered(clock);
    newDisk();
    make();
    EXPECT_EQ(folderSyncsOfClosing(), 1);
    EXPECT_EQ(folderSyncsOfClosing(), 1);  // too soon: a name may have come at the same time
    clock.advance(second);
    EXPECT_EQ(folderSyncsOfClosing(), 1);
    EXPECT_EQ(folderSyncsOfClosing(), 0);
    fill(3);
    EXPECT_EQ(folderSyncsOfClosing(), 0);
    clock.advance(second);
    ASSERT_EQ(rebuild(), 0);  // names change
    clock.advance(second);
    EXPECT_EQ(folderSyncsOfClosing(), 1);
    EXPECT_EQ(folderSyncsOfClosing(), 0);
    clock.advance(second);
    os::Handle handle = -1;  // another program
    ASSERT_EQ(files().open("/d/other", os::OpenMode::CreateNew, 0644, handle), os::FileError::None);
    files().close(handle);
    EXPECT_EQ(folderSyncsOfClosing(), 1);
    clock.advance(second);
    files().failAlways(os::FileCall::SyncFolder, os::FileError::WriteFailed);
    FileClose(t(), KindTable);
    EXPECT_EQ(takeError(), 652);
    files().stopFailing();
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(folderSyncsOfClosing(), 1);  // as the last one failed
}

TEST_F(TableCalls, WhatTheDiskGotAtTheClosingOutlivesTheMachine) {
    constexpr std::int64_t second = 1'000'000'000;
    os::SteeredClock clock;
    const os::Steered steered(clock);
    newDisk();
    make();
    for (int n = 1; n <= 4; ++n) {
        clock.advance(second);
        ASSERT_EQ(add(row(n, "n" + std::to_string(n))), 0);
        if (n == 3) {
            ASSERT_EQ(rebuild(), 0);
        }
        close();
        files().afterMachineDeath(os::SteeredFiles::Names::Lost);
        ASSERT_EQ(open(), 0);
        EXPECT_EQ(TableCount(t()), n);
        expectWhole();
    }
}

}  // namespace
}  // namespace tarn
