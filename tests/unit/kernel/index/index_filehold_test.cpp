// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_filehold.h"
#include "support/steerable.h"
#include "unit/kernel/index_records.h"
#include "unit/kernel/runtime_fixture.h"

#include <functional>
#include <string>

namespace tarn {
namespace {

using os::FileCall;
using os::FileError;
using os::OpenMode;

constexpr std::int64_t second = 1'000'000'000;

// A disk where another program may come between a stamp and the look that follows it.
class SharedFiles : public os::SteeredFiles {
public:
    FileError setModifiedOpen(os::Handle handle, std::int64_t nanoseconds) override {
        const FileError error = SteeredFiles::setModifiedOpen(handle, nanoseconds);
        if (behindStamp) behindStamp();
        return error;
    }
    std::function<void()> behindStamp;
};

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
    void anotherWrites() {
        os::Handle other = -1;
        ASSERT_EQ(disk.open(path, OpenMode::ReadWrite, 0, other), FileError::None);
        ASSERT_EQ(disk.write(other, 0, "H"), FileError::None);
        disk.close(other);
    }
    static bool remembers(HeldIndex& held) {
        held.records().shape(recordSize, nearBytes);
        return held.records().find(placeOf(1), nearBytes) != nullptr;
    }
    static void rememberOne(HeldIndex& held) {
        held.records().shape(recordSize, nearBytes);
        held.records().put(placeOf(1), recordOf(1).data(), nearBytes);
    }
    const std::string path = "/d/t.i1";
    os::Handle handle = -1;
    os::SteeredClock clock;
    os::Steered steeredClock{clock};
    SharedFiles disk;
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

// Without time between two changes it is as on a disk that gives both the same.
TEST_F(HeldIndexTest, OwnChangesKeepTheRecordsThoseOfOthersDoNot) {
    for (const std::int64_t between : {std::int64_t{0}, second}) {
        SCOPED_TRACE(between);
        HeldIndex held(path);
        ASSERT_EQ(use(held, OpenMode::ReadWrite, true), 0);
        rememberOne(held);
        clock.advance(between);
        ASSERT_EQ(use(held, OpenMode::ReadWrite, true), 0);
        ASSERT_EQ(use(held, OpenMode::Read), 0);
        EXPECT_TRUE(remembers(held));
        clock.advance(between);
        anotherWrites();
        ASSERT_EQ(use(held, OpenMode::Read), 0);
        EXPECT_FALSE(remembers(held));
    }
}

TEST_F(HeldIndexTest, AChangeBetweenAStampAndItsLookIsNotTakenForAnOwnOne) {
    for (const std::int64_t wait : {std::int64_t{0}, 10 * second}) {
        SCOPED_TRACE(wait);
        HeldIndex held(path);
        ASSERT_EQ(use(held, OpenMode::ReadWrite, true), 0);
        rememberOne(held);
        disk.behindStamp = [&] {
            clock.advance(1);
            anotherWrites();
            clock.advance(wait);
        };
        ASSERT_EQ(use(held, OpenMode::ReadWrite, true), 0);
        disk.behindStamp = {};
        ASSERT_EQ(use(held, OpenMode::Read), 0);
        EXPECT_FALSE(remembers(held));
    }
}

TEST_F(HeldIndexTest, WhatWasReadOfAFileThatIsNotNewStays) {
    clock.advance(10 * second);
    HeldIndex held(path);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    rememberOne(held);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_TRUE(remembers(held));
}

// It may have changed again at the same time, to the same size.
TEST_F(HeldIndexTest, WhatWasReadAtTheTimeOfAChangeIsReadAgain) {
    for (const std::int64_t wait : {std::int64_t{0}, 10 * second}) {
        SCOPED_TRACE(wait);
        HeldIndex held(path);
        anotherWrites();
        ASSERT_EQ(use(held, OpenMode::Read), 0);
        rememberOne(held);
        anotherWrites();
        clock.advance(wait);
        ASSERT_EQ(use(held, OpenMode::Read), 0);
        EXPECT_FALSE(remembers(held));
    }
}

TEST_F(HeldIndexTest, AFileThatTakesNoStampIsKnownByItsSizeAndTimesWhenItIsNotNew) {
    disk.failAlways(FileCall::SetModified, FileError::Denied);
    HeldIndex held(path);
    ASSERT_EQ(use(held, OpenMode::ReadWrite, true), 0);
    rememberOne(held);
    clock.advance(10 * second);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_FALSE(remembers(held));
    rememberOne(held);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_TRUE(remembers(held));
    disk.put(path, "other");
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_FALSE(remembers(held));
}

TEST_F(HeldIndexTest, AFileWithoutANameGivesWayToTheOneThatHasIt) {
    HeldIndex held(path);
    ASSERT_EQ(use(held, OpenMode::ReadWrite), 0);
    rememberOne(held);
    disk.put("/d/new", std::string(IndexHeaderBytes + 28, 'n'));
    ASSERT_EQ(disk.rename("/d/new", path), FileError::None);
    ASSERT_EQ(use(held, OpenMode::Read), 0);
    EXPECT_FALSE(remembers(held));
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
