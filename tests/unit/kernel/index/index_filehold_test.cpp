// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_filehold.h"
#include "support/steerable.h"
#include "unit/kernel/runtime_fixture.h"

#include <map>
#include <random>
#include <string>

namespace tarn {
namespace {

using os::FileError;
using os::OpenMode;

constexpr std::int32_t recordSize = 28, kept = 28;

std::string recordOf(std::int32_t number, char version = 'a') {
    std::string record(recordSize, version);
    record.replace(0, 8, std::to_string(10000000 + number));
    return record;
}
std::int64_t placeOf(std::int32_t number) {
    return IndexRecordAt(number, recordSize);
}

class HeldRecordsTest : public ::testing::Test {
protected:
    HeldRecordsTest() { records.shape(recordSize, kept); }
    void put(std::int32_t number, char version = 'a') {
        records.put(placeOf(number), recordOf(number, version).data(), kept);
    }
    std::string at(std::int32_t number) {
        const char* const bytes = records.find(placeOf(number), kept);
        return bytes != nullptr ? std::string(bytes, kept) : std::string();
    }
    HeldRecords records{std::size_t{64} << 10};
};

TEST_F(HeldRecordsTest, RecordsAreFoundByTheirPlaces) {
    EXPECT_EQ(at(1), "");
    put(1);
    put(2);
    EXPECT_EQ(at(1), recordOf(1));
    EXPECT_EQ(at(2), recordOf(2));
    EXPECT_EQ(records.find(placeOf(1) + 1, 8), nullptr);
    EXPECT_EQ(records.find(placeOf(1), kept + 1), nullptr);
    EXPECT_EQ(records.find(0, 4), nullptr);
    records.forget();
    EXPECT_EQ(at(1), "");
}

TEST_F(HeldRecordsTest, WhatIsWrittenIsInThem) {
    for (std::int32_t n = 1; n <= 4; ++n) put(n);
    records.wrote(placeOf(1), "head");
    EXPECT_EQ(at(1), "head" + recordOf(1).substr(4));
    records.wrote(placeOf(2), recordOf(2, 'b') + recordOf(3, 'b'));
    EXPECT_EQ(at(2), recordOf(2, 'b'));
    EXPECT_EQ(at(3), recordOf(3, 'b'));
    EXPECT_EQ(at(4), recordOf(4));
    records.wrote(placeOf(900), recordOf(900));  // not there: not kept
    EXPECT_EQ(at(900), "");
}

TEST_F(HeldRecordsTest, AWritingElsewhereForgetsAll) {
    for (const std::int64_t place : {std::int64_t{8}, placeOf(1) + 4}) {
        put(1);
        records.wrote(place, "name");
        EXPECT_EQ(at(1), "");
    }
}

TEST_F(HeldRecordsTest, TheControlRecordIsKept) {
    const std::string control(24, 'c'), next(24, 'd');
    EXPECT_EQ(records.find(IndexControlAt, 24), nullptr);
    records.wrote(IndexControlAt, next);
    EXPECT_EQ(records.find(IndexControlAt, 24), nullptr);
    records.put(IndexControlAt, control.data(), 24);
    EXPECT_EQ(std::string(records.find(IndexControlAt, 24), 24), control);
    records.wrote(IndexControlAt, next);
    EXPECT_EQ(std::string(records.find(IndexControlAt, 24), 24), next);
}

TEST_F(HeldRecordsTest, AnotherShapeForgetsAll) {
    put(1);
    records.shape(recordSize, kept);
    EXPECT_EQ(at(1), recordOf(1));
    records.shape(recordSize + 4, kept);
    EXPECT_EQ(records.find(IndexHeaderBytes, kept), nullptr);
}

TEST_F(HeldRecordsTest, WhateverIsAskedForIsWhatWasWrittenLast) {
    std::mt19937 random(3);
    std::map<std::int32_t, char> file;
    std::int32_t hits = 0;
    for (int i = 0; i < 200000; ++i) {
        const auto number = static_cast<std::int32_t>(random() % 100000 / (1 + random() % 3000) + 1);
        auto& version = file.try_emplace(number, 'a').first->second;
        if (random() % 3 == 0) {
            version = static_cast<char>('a' + random() % 26);
            records.wrote(placeOf(number), recordOf(number, version));
        }
        const std::string seen = at(number);
        hits += seen.empty() ? 0 : 1;
        ASSERT_TRUE(seen.empty() || seen == recordOf(number, version)) << number;
        put(number, version);
    }
    EXPECT_GT(hits, 1000);
}

// ---- files that are not open ----

class RememberedTest : public Runtime {
protected:
    static constexpr std::int64_t second = 1'000'000'000, start = 1000 * second;

    void SetUp() override {
        Runtime::SetUp();
        clock.set(start);
    }
    static os::FileInfo fileAt(std::int64_t changed, std::uint64_t inode = 1) {
        os::FileInfo info;
        info.exists = true;
        info.size = 2000;
        info.device = 1;
        info.inode = inode;
        info.modified = info.changed = changed;
        return info;
    }
    static void keepOne(const os::FileInfo& info) {
        HeldRecords* const records = RememberedRecords(info);
        ASSERT_NE(records, nullptr);
        records->shape(recordSize, kept);
        records->put(placeOf(1), recordOf(1).data(), kept);
        LeaveRecords(records);
    }
    static bool keeps(const os::FileInfo& info) {
        HeldRecords* const records = RememberedRecords(info);
        if (records == nullptr) return false;
        records->shape(recordSize, kept);
        const bool there = records->find(placeOf(1), kept) != nullptr;
        LeaveRecords(records);
        return there;
    }
    os::SteeredClock clock;
    os::Steered steeredClock{clock};
    os::SteeredFiles disk;
    os::Steered steered{disk};
};

TEST_F(RememberedTest, AFileThatJustChangedIsNotRemembered) {
    constexpr std::int64_t tenth = second / 10;
    const struct {
        std::int64_t changed, modified;
        bool remembered;
    } cases[] = {
        {start - tenth, start - second - 1, true},       {start - tenth + 1, start - second - 1, false},
        {start - second - 1, start - tenth + 1, false},  {start - second - 1, start - second - 1, true},
        {start - 2 * second, start - 2 * second, false},  // times of whole seconds
        {start - 3 * second, start - 3 * second, true},  {start + 1, start + 1, false},
    };
    for (const auto& one : cases) {
        os::FileInfo info = fileAt(one.changed);
        info.modified = one.modified;
        const HeldRecords* const records = RememberedRecords(info);
        EXPECT_EQ(records != nullptr, one.remembered) << start - one.changed;
        LeaveRecords(records);
    }
}

TEST_F(RememberedTest, RecordsStayUntilTheFileChanges) {
    const os::FileInfo info = fileAt(start - 10 * second - 1);
    keepOne(info);
    EXPECT_TRUE(keeps(info));
    for (int which = 0; which < 4; ++which) {
        keepOne(info);
        os::FileInfo other = info;
        if (which == 0) other.size += recordSize;
        if (which == 1) other.modified += 1;
        if (which == 2) other.changed += 1;
        if (which == 3) other.inode += 1;
        EXPECT_FALSE(keeps(other)) << which;
        EXPECT_EQ(keeps(info), which == 3) << which;
    }
}

TEST_F(RememberedTest, TheFilesThatWereUsedLastAreRemembered) {
    constexpr std::uint64_t files = 8;
    const auto file = [](std::uint64_t inode) { return fileAt(start - 5 * second, inode); };
    for (std::uint64_t inode = 1; inode <= files + 1; ++inode) keepOne(file(inode));
    for (std::uint64_t inode = 2; inode <= files + 1; ++inode) EXPECT_TRUE(keeps(file(inode))) << inode;
    EXPECT_FALSE(keeps(file(1)));
    EXPECT_FALSE(keeps(file(2)));
}

TEST_F(RememberedTest, RecordsThatAreInUseDoNotGiveWay) {
    const auto file = [](std::uint64_t inode) { return fileAt(start - 5 * second, inode); };
    keepOne(file(1));
    HeldRecords* const used = RememberedRecords(file(1));
    for (std::uint64_t inode = 2; inode <= 30; ++inode) keepOne(file(inode));
    EXPECT_TRUE(keeps(file(1)));
    EXPECT_EQ(RememberedRecords(fileAt(start - 4 * second, 1)), nullptr);  // it has changed meanwhile
    LeaveRecords(used);
    EXPECT_FALSE(keeps(fileAt(start - 4 * second, 1)));
}

TEST_F(RememberedTest, AnotherFileSystemHasOtherFiles) {
    const os::FileInfo info = fileAt(start - 5 * second);
    keepOne(info);
    os::SteeredFiles another;
    const os::Steered instead(another);
    EXPECT_FALSE(keeps(info));
}

// ---- files that are held open ----

class HeldIndexTest : public Runtime {
protected:
    void SetUp() override {
        Runtime::SetUp();
        disk.put(path, std::string(IndexHeaderBytes, 'h'));
    }
    // One operation.
    std::int32_t use(HeldIndex& held, OpenMode mode, bool changes = false) {
        std::int64_t size = 0;
        const std::int32_t code = held.take(mode, handle, size);
        if (code != 0) return code;
        EXPECT_EQ(size, static_cast<std::int64_t>(disk.contents(path).size()));
        if (changes) {
            EXPECT_EQ(disk.write(handle, size, "x"), FileError::None);
        }
        held.giveBack(changes);
        return 0;
    }
    static bool keeps(HeldIndex& held) {
        held.records().shape(recordSize, kept);
        return held.records().find(placeOf(1), kept) != nullptr;
    }
    static void keepOne(HeldIndex& held) {
        held.records().shape(recordSize, kept);
        held.records().put(placeOf(1), recordOf(1).data(), kept);
    }
    const std::string path = "/d/t.i1";
    os::Handle handle = -1;
    os::SteeredFiles disk;
    os::Steered steered{disk};
};

TEST_F(HeldIndexTest, IsFoundByItsPathWhileItIsNotInUse) {
    HeldIndex held(path);
    EXPECT_EQ(HeldIndex::of(path), &held);
    EXPECT_EQ(HeldIndex::of("/d/t.i2"), nullptr);
    OpenMode mode = OpenMode::Read;
    std::int64_t size = 0;
    ASSERT_EQ(held.take(mode, handle, size), 0);
    EXPECT_EQ(mode, OpenMode::ReadWrite);
    EXPECT_EQ(HeldIndex::of(path), nullptr);
    held.giveBack(false);
    EXPECT_EQ(HeldIndex::of(path), &held);
}

TEST_F(HeldIndexTest, StaysOpenUntilItEndsOrIsLetGo) {
    {
        HeldIndex held(path);
        ASSERT_EQ(use(held, OpenMode::Read), 0);
        ASSERT_EQ(use(held, OpenMode::ReadWrite, true), 0);
        EXPECT_EQ(disk.openHandles(), 1);
        HeldIndex::letGo("/d/t.i2");
        EXPECT_EQ(disk.openHandles(), 1);
        HeldIndex::letGo(path);
        EXPECT_EQ(disk.openHandles(), 0);
        ASSERT_EQ(use(held, OpenMode::Read), 0);
        HeldIndex::letGo();
        EXPECT_EQ(disk.openHandles(), 0);
        ASSERT_EQ(use(held, OpenMode::Read), 0);
    }
    EXPECT_EQ(disk.openHandles(), 0);
    EXPECT_EQ(HeldIndex::of(path), nullptr);
}

TEST_F(HeldIndexTest, OwnChangesKeepTheRecordsThoseOfOthersDoNot) {
    HeldIndex held(path);
    ASSERT_EQ(use(held, OpenMode::ReadWrite), 0);
    keepOne(held);
    ASSERT_EQ(use(held, OpenMode::ReadWrite, true), 0);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_TRUE(keeps(held));
    os::Handle other = -1;
    ASSERT_EQ(disk.open(path, OpenMode::ReadWrite, 0, other), FileError::None);
    ASSERT_EQ(disk.write(other, 0, "H"), FileError::None);
    disk.close(other);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_FALSE(keeps(held));
}

TEST_F(HeldIndexTest, AFileWithoutANameGivesWayToTheOneThatHasIt) {
    HeldIndex held(path);
    ASSERT_EQ(use(held, OpenMode::ReadWrite), 0);
    keepOne(held);
    disk.put("/d/new", std::string(IndexHeaderBytes + 28, 'n'));
    ASSERT_EQ(disk.rename("/d/new", path), FileError::None);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_FALSE(keeps(held));
    ASSERT_EQ(disk.remove(path), FileError::None);
    EXPECT_EQ(use(held, OpenMode::Read), 653);
    EXPECT_EQ(disk.openHandles(), 0);
}

TEST_F(HeldIndexTest, OneThatMayOnlyBeReadIsOpenedAgainForWriting) {
    HeldIndex held(path);
    disk.setMode(path, 0444);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_EQ(use(held, OpenMode::ReadWrite), 652);
    disk.setMode(path, 0644);
    EXPECT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_EQ(use(held, OpenMode::ReadWrite, true), 0);
    EXPECT_EQ(disk.openHandles(), 1);
}

}  // namespace
}  // namespace tarn
