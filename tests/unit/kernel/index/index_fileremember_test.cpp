// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_fileremember.h"
#include "support/steerable.h"
#include "unit/kernel/index_records.h"
#include "unit/kernel/runtime_fixture.h"

#include <functional>
#include <map>
#include <random>
#include <string>

namespace tarn {
namespace {

using os::FileError;

class RememberedRecordsTest : public ::testing::Test {
protected:
    RememberedRecordsTest() { records.shape(recordSize, nearBytes); }
    void put(std::int32_t number, char version = 'a') {
        records.put(placeOf(number), recordOf(number, version).data(), nearBytes);
    }
    std::string at(std::int32_t number) {
        const char* const bytes = records.find(placeOf(number), nearBytes);
        return bytes != nullptr ? std::string(bytes, nearBytes) : std::string();
    }
    RememberedRecords records{std::size_t{64} << 10};
};

TEST_F(RememberedRecordsTest, RecordsAreFoundByTheirPlaces) {
    EXPECT_EQ(at(1), "");
    put(1);
    put(2);
    EXPECT_EQ(at(1), recordOf(1));
    EXPECT_EQ(at(2), recordOf(2));
    EXPECT_EQ(records.find(placeOf(1) + 1, 8), nullptr);
    EXPECT_EQ(records.find(placeOf(1), nearBytes + 1), nullptr);
    EXPECT_EQ(records.find(0, 4), nullptr);
    records.forget();
    EXPECT_EQ(at(1), "");
}

TEST_F(RememberedRecordsTest, WhatIsWrittenIsInThem) {
    for (std::int32_t n = 1; n <= 4; ++n) put(n);
    records.wrote(placeOf(1), "head");
    EXPECT_EQ(at(1), "head" + recordOf(1).substr(4));
    records.wrote(placeOf(2), recordOf(2, 'b') + recordOf(3, 'b'));
    EXPECT_EQ(at(2), recordOf(2, 'b'));
    EXPECT_EQ(at(3), recordOf(3, 'b'));
    EXPECT_EQ(at(4), recordOf(4));
    records.wrote(placeOf(900), recordOf(900));
    EXPECT_EQ(at(900), recordOf(900));
    records.wrote(placeOf(700), recordOf(700) + recordOf(701));  // many would drive out others
    EXPECT_EQ(at(700), "");
    EXPECT_EQ(at(701), "");
    records.wrote(placeOf(800), "head");
    EXPECT_EQ(at(800), "");
}

TEST_F(RememberedRecordsTest, AWritingElsewhereForgetsAll) {
    for (const std::int64_t place : {std::int64_t{8}, placeOf(1) + 4}) {
        put(1);
        records.wrote(place, "name");
        EXPECT_EQ(at(1), "");
    }
}

TEST_F(RememberedRecordsTest, TheControlRecordIsRemembered) {
    const std::string control(24, 'c'), next(24, 'd');
    EXPECT_EQ(records.find(IndexControlAt, 24), nullptr);
    records.wrote(IndexControlAt, next);
    EXPECT_EQ(records.find(IndexControlAt, 24), nullptr);
    records.put(IndexControlAt, control.data(), 24);
    EXPECT_EQ(std::string(records.find(IndexControlAt, 24), 24), control);
    records.wrote(IndexControlAt, next);
    EXPECT_EQ(std::string(records.find(IndexControlAt, 24), 24), next);
}

TEST_F(RememberedRecordsTest, AnotherShapeForgetsAll) {
    put(1);
    records.shape(recordSize, nearBytes);
    EXPECT_EQ(at(1), recordOf(1));
    records.shape(recordSize + 4, nearBytes);
    EXPECT_EQ(records.find(IndexHeaderBytes, nearBytes), nullptr);
}

TEST_F(RememberedRecordsTest, WhateverIsAskedForIsWhatWasWrittenLast) {
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
    static void rememberOne(const os::FileInfo& info) {
        RememberedRecords* const records = RecallRecords(info, false);
        ASSERT_NE(records, nullptr);
        records->shape(recordSize, nearBytes);
        records->put(placeOf(1), recordOf(1).data(), nearBytes);
        LeaveRecords(records);
    }
    static bool remembers(const os::FileInfo& info) {
        RememberedRecords* const records = RecallRecords(info, false);
        if (records == nullptr) return false;
        records->shape(recordSize, nearBytes);
        const bool there = records->find(placeOf(1), nearBytes) != nullptr;
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
        RememberedRecords* const records = RecallRecords(info, false);
        EXPECT_EQ(records != nullptr, one.remembered) << start - one.changed;
        LeaveRecords(records);
    }
}

TEST_F(RememberedTest, RecordsStayUntilTheFileChanges) {
    const os::FileInfo info = fileAt(start - 10 * second - 1);
    rememberOne(info);
    EXPECT_TRUE(remembers(info));
    for (int which = 0; which < 4; ++which) {
        rememberOne(info);
        os::FileInfo other = info;
        if (which == 0) other.size += recordSize;
        if (which == 1) other.modified += 1;
        if (which == 2) other.changed += 1;
        if (which == 3) other.inode += 1;
        EXPECT_FALSE(remembers(other)) << which;
        EXPECT_EQ(remembers(info), which == 3) << which;
    }
}

TEST_F(RememberedTest, TheFilesThatWereUsedLastAreRemembered) {
    constexpr std::uint64_t files = 8;
    const auto file = [](std::uint64_t inode) { return fileAt(start - 5 * second, inode); };
    for (std::uint64_t inode = 1; inode <= files + 1; ++inode) rememberOne(file(inode));
    for (std::uint64_t inode = 2; inode <= files + 1; ++inode) EXPECT_TRUE(remembers(file(inode))) << inode;
    EXPECT_FALSE(remembers(file(1)));
    EXPECT_FALSE(remembers(file(2)));
}

TEST_F(RememberedTest, RecordsThatAreInUseDoNotGiveWay) {
    const auto file = [](std::uint64_t inode) { return fileAt(start - 5 * second, inode); };
    rememberOne(file(1));
    RememberedRecords* const used = RecallRecords(file(1), false);
    for (std::uint64_t inode = 2; inode <= 30; ++inode) rememberOne(file(inode));
    EXPECT_TRUE(remembers(file(1)));
    EXPECT_EQ(RecallRecords(fileAt(start - 4 * second, 1), false), nullptr);  // it has changed meanwhile
    LeaveRecords(used);
    EXPECT_FALSE(remembers(fileAt(start - 4 * second, 1)));
}

// ---- files that were just written ----

class StampedTest : public RememberedTest {
protected:
    void SetUp() override {
        RememberedTest::SetUp();
        disk.put(path, std::string(2000, 'x'));
        ASSERT_EQ(disk.open(path, os::OpenMode::ReadWrite, 0, handle), FileError::None);
    }
    os::FileInfo now() {
        os::FileInfo info;
        EXPECT_EQ(disk.infoOpen(handle, info), FileError::None);
        return info;
    }
    // An operation that writes and remembers a record. False: it had nothing to remember it by.
    bool write(bool stamps = true) {
        RememberedRecords* const records = RecallRecords(now(), true);
        if (records == nullptr) return false;
        records->shape(recordSize, nearBytes);
        ChangeRecords(records);
        EXPECT_EQ(disk.write(handle, placeOf(1), recordOf(1)), FileError::None);
        records->wrote(placeOf(1), recordOf(1));
        if (stamps) StampRecords(records, handle);
        LeaveRecords(records);
        return true;
    }
    const std::string path = "/d/t.i1";
    os::Handle handle = -1;
};

TEST_F(StampedTest, WhatWasWrittenIsRememberedAtOnce) {
    ASSERT_TRUE(write());
    EXPECT_TRUE(remembers(now()));
    ASSERT_TRUE(write());
    EXPECT_TRUE(remembers(now()));
}

TEST_F(StampedTest, WithoutAStampItIsNot) {
    ASSERT_TRUE(write(false));
    EXPECT_FALSE(remembers(now()));
    ASSERT_TRUE(write());
    ASSERT_TRUE(write(false));
    EXPECT_FALSE(remembers(now()));
}

// All at the very time of the stamp.
TEST_F(StampedTest, AnyChangeOfAnotherProgramShows) {
    const std::function<void()> changes[] = {
        [&] { disk.write(handle, placeOf(1), "y"); },
        [&] { disk.truncate(handle, 1999); },
        [&] { disk.put(path, std::string(2000, 'y')), disk.write(handle, 0, "y"); },
        [&] {
            disk.write(handle, 0, "y");
            disk.setModified(path, clock.now());
        },
    };
    for (const auto& change : changes) {
        ASSERT_TRUE(write());
        ASSERT_TRUE(remembers(now()));
        change();
        EXPECT_FALSE(remembers(now()));
        ASSERT_TRUE(write());
        EXPECT_TRUE(remembers(now()));
    }
}

TEST_F(StampedTest, ADiskThatTakesNoStampHasNothingRemembered) {
    disk.failAlways(os::FileCall::SetModified, FileError::Denied);
    ASSERT_TRUE(write());
    EXPECT_FALSE(remembers(now()));
    disk.stopFailing();
    ASSERT_TRUE(write());
    EXPECT_TRUE(remembers(now()));
}

// Its time of modification would be that of its change: another change at that time would not show.
TEST_F(StampedTest, AStampThatIsTheTimeOfTheChangeIsNone) {
    static std::int64_t late = (std::int64_t{1} << 61) + 1;  // later than any stamp before
    clock.set(late += second);
    ASSERT_TRUE(write());
    EXPECT_FALSE(remembers(now()));
    ASSERT_TRUE(write());
    EXPECT_TRUE(remembers(now()));
}

TEST_F(StampedTest, StampsAreOddAndNeverTheSame) {
    std::int64_t last = 0;
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(write());
        EXPECT_EQ(now().modified % 2, 1);
        EXPECT_GT(now().modified, last);
        last = now().modified;
    }
}

TEST_F(StampedTest, AnOperationThatWroteNothingLeavesWhatIsRemembered) {
    ASSERT_TRUE(write());
    LeaveRecords(RecallRecords(now(), true));
    EXPECT_TRUE(remembers(now()));
    disk.write(handle, 0, "y");
    LeaveRecords(RecallRecords(now(), true));
    EXPECT_FALSE(remembers(now()));
}

TEST_F(RememberedTest, AnotherFileSystemHasOtherFiles) {
    const os::FileInfo info = fileAt(start - 5 * second);
    rememberOne(info);
    os::SteeredFiles another;
    const os::Steered instead(another);
    EXPECT_FALSE(remembers(info));
}

}  // namespace
}  // namespace tarn
