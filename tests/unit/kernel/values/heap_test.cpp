// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/heap.h"

#include "kernel/values/heap_quick.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "support/errorcell.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using namespace tarn;

namespace {

// Every test starts and ends with an empty heap and a clear cell.
class Heap : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        ClearError();
        ASSERT_EQ(LiveBlocks(), 0);
        SetMemoryChecking(false);
    }
    void TearDown() override {
        FailAllocation(-1);
        EXPECT_EQ(LiveBlocks(), 0);
        ClearError();
        SetMemoryChecking(false);
    }
    static Offset make(std::int32_t size) {
        Offset block = 0;
        Allocate(block, size);
        return block;
    }
};

class BothHeaps : public Heap {
protected:
    void SetUp() override {
        Heap::SetUp();
        SetMemoryChecking(GetParam());
        ASSERT_EQ(MemoryChecking(), GetParam());
    }
};
INSTANTIATE_TEST_SUITE_P(Checking, BothHeaps, ::testing::Bool());

class GuardedHeap : public Heap {
protected:
    void SetUp() override {
        Heap::SetUp();
        SetMemoryChecking(true);
    }
};

TEST_P(BothHeaps, RefusesSizesOutsideTheLimits) {
    constexpr struct {
        std::int32_t size, error;
    } rows[] = {{0, 821}, {-1, 804}, {INT32_MIN, 804}, {4096001, 804}, {INT32_MAX, 804}};
    for (const auto& row : rows) {
        Offset block = 77;
        Allocate(block, row.size);
        EXPECT_EQ(block, 0U) << row.size;
        EXPECT_EQ(takeError(), row.error) << row.size;
    }
}

TEST_P(BothHeaps, TakesTheSmallestAndTheLargestSize) {
    for (const std::int32_t size : {1, 4095999, 4096000}) {
        Offset block = make(size);
        ASSERT_NE(block, 0U);
        std::memset(At(block), 0x5A, static_cast<std::size_t>(size));
        Free(block, size);
        EXPECT_EQ(block, 0U);
        EXPECT_EQ(takeError(), 0);
    }
}

TEST_P(BothHeaps, AnEarlierErrorStays) {
    SetError(756);
    make(0);
    EXPECT_EQ(ErrorCell(), 756);
}

TEST_P(BothHeaps, EveryByteOfEveryBlockIsItsOwn) {
    std::vector<std::pair<Offset, std::int32_t>> blocks;
    for (std::int32_t size = 1; size < 3000; size += 7) {
        blocks.emplace_back(make(size), size);
        std::memset(At(blocks.back().first), size & 0xFF, static_cast<std::size_t>(size));
    }
    for (const auto& [block, size] : blocks) {
        const std::string expected(static_cast<std::size_t>(size), static_cast<char>(size & 0xFF));
        EXPECT_EQ(std::string(At(block), static_cast<std::size_t>(size)), expected);
    }
    for (auto& [block, size] : blocks) Free(block, size);
    EXPECT_EQ(takeError(), 0);
}

TEST_P(BothHeaps, AFreedBlockIsUsedAgain) {
    Offset first = make(100);
    const Offset was = first;
    Free(first, 100);
    Offset second = make(97);  // the same class
    EXPECT_EQ(second, was);
    Free(second, 97);
}

TEST_P(BothHeaps, ResizeKeepsTheFirstBytes) {
    Offset block = make(10);
    std::memcpy(At(block), "0123456789", 10);
    std::int32_t size = 10;
    for (const std::int32_t next : {11, 16, 17, 300, 5000, 4096000, 40, 10, 4}) {
        EXPECT_TRUE(Resize(block, size, next));
        size = next;
        EXPECT_EQ(std::memcmp(At(block), "0123456789", static_cast<std::size_t>(std::min(10, next))), 0)
            << next;
    }
    Free(block, size);
    EXPECT_EQ(takeError(), 0);
}

TEST_P(BothHeaps, ResizeStaysInPlaceInsideItsClass) {
    const std::int32_t low = GetParam() ? 300 - GuardBytes : 300, high = low + 20;
    Offset block = make(low);
    const Offset was = block;
    EXPECT_TRUE(Resize(block, low, high));
    EXPECT_EQ(block, was);
    std::memset(At(block), 1, static_cast<std::size_t>(high));
    EXPECT_TRUE(Resize(block, high, low));
    EXPECT_EQ(block, was);
    Free(block, low);
    EXPECT_EQ(takeError(), 0);
}

TEST_P(BothHeaps, ResizeInPlaceNeverMoves) {
    Offset block = make(300);
    EXPECT_EQ(ResizeInPlace(block, 300, 320), !GetParam());
    const std::int32_t size = GetParam() ? 300 : 320;
    for (const std::int32_t next : {321, 200, 0, -1, 4096001}) EXPECT_FALSE(ResizeInPlace(block, size, next));
    EXPECT_FALSE(ResizeInPlace(0, 300, 300));
    Free(block, size);
    EXPECT_EQ(takeError(), 0);
}

// Blocks of this size until one stands at the end of the used range: the next of another size follows it.
class HeapEnd : public Heap {
protected:
    void TearDown() override {
        for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) Free(block->first, block->second);
        Heap::TearDown();
    }
    Offset add(std::int32_t size) {
        blocks.emplace_back(make(size), size);
        return blocks.back().first;
    }
    // A block behind which there is nothing.
    Offset last(std::int32_t size) {
        for (Offset before = add(size);; before = blocks.back().first) {
            if (add(size) - before == static_cast<Offset>(size)) break;
        }
        const Offset block = blocks.back().first;
        blocks.pop_back();
        return block;
    }
    std::vector<std::pair<Offset, std::int32_t>> blocks;
};

// The sizes are the largest ones of their classes.
TEST_F(HeapEnd, TheLastBlockGrowsWhereItStandsAndGivesItsRoomBack) {
    add(1310720);
    add(2621440);
    Offset block = last(1048576);
    const Offset was = block;
    std::memset(At(block), 7, 1048576);
    ASSERT_TRUE(Resize(block, 1048576, 1310720));
    EXPECT_EQ(block, was);
    EXPECT_EQ(At(block)[1048575], 7);
    ASSERT_TRUE(Resize(block, 1310720, 2621440));
    EXPECT_EQ(block, was);
    Free(block, 2621440);
    Offset next = 0;
    while (next < was) next = add(1572864);
    EXPECT_EQ(next, was);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(HeapEnd, ABlockWithAnotherBehindItMoves) {
    Offset block = last(1048576);
    const Offset was = block;
    add(1572864);
    std::memset(At(block), 7, 1048576);
    ASSERT_TRUE(Resize(block, 1048576, 1310720));
    EXPECT_NE(block, was);
    EXPECT_EQ(At(block)[1048575], 7);
    Free(block, 1310720);
}

TEST_F(HeapEnd, AFreeBlockOfTheNewSizeIsTakenFirst) {
    Offset waiting = last(1310720);
    add(1572864);
    Offset block = last(1048576);
    const Offset was = waiting;
    Free(waiting, 1310720);
    ASSERT_TRUE(Resize(block, 1048576, 1310720));
    EXPECT_EQ(block, was);
    Free(block, 1310720);
}

TEST_F(Heap, WhetherTwoSizesHaveOneBlockIsToldWithoutIt) {
    Offset block = 0;
    for (std::int32_t size = 1; size < 5000; ++size) {
        block = make(size);
        ASSERT_EQ(ResizeInPlace(block, size, size + 1), FitsInItsBlock(size, size + 1)) << size;
        Free(block, FitsInItsBlock(size, size + 1) ? size + 1 : size);
    }
}

TEST_P(BothHeaps, AFailedResizeLeavesTheBlock) {
    constexpr struct { std::int32_t size, error; } rows[] = {{0, 821}, {-5, 804}, {4096001, 804}};
    Offset block = make(3);
    std::memcpy(At(block), "abc", 3);
    const Offset was = block;
    for (const auto& row : rows) {
        EXPECT_FALSE(Resize(block, 3, row.size));
        EXPECT_EQ(takeError(), row.error);
        EXPECT_EQ(block, was);
    }
    FailAllocation(0);
    EXPECT_FALSE(Resize(block, 3, 4000));
    EXPECT_EQ(takeError(), 802);
    EXPECT_EQ(block, was);
    EXPECT_EQ(std::memcmp(At(block), "abc", 3), 0);
    Free(block, 3);
}

TEST_P(BothHeaps, ResizeOfNoBlockAllocates) {
    Offset block = 0;
    EXPECT_TRUE(Resize(block, 0, 12));
    EXPECT_NE(block, 0U);
    Free(block, 12);
}

TEST_P(BothHeaps, TheNthRequestFails) {
    FailAllocation(2);
    Offset a = make(8), b = make(8), c = make(8);
    EXPECT_EQ(c, 0U);
    EXPECT_EQ(takeError(), 802);
    Offset d = make(8);
    EXPECT_NE(d, 0U);
    for (Offset* block : {&a, &b, &d}) Free(*block, 8);
    EXPECT_EQ(takeError(), 0);
}

TEST_P(BothHeaps, ExhaustionGives802AndTheHeapGoesOnWorking) {
    std::vector<Offset> blocks;
    for (Offset block = make(4096000); block != 0; block = make(4096000)) blocks.push_back(block);
    EXPECT_EQ(takeError(), 802);
    EXPECT_GE(blocks.size(), 3U);
    Free(blocks.back(), 4096000);
    blocks.pop_back();
    blocks.push_back(make(4096000));
    EXPECT_NE(blocks.back(), 0U);
    for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) Free(*block, 4096000);
    EXPECT_EQ(takeError(), 0);
}

TEST_P(BothHeaps, AUsedUpRangeStillServesSmallBlocks) {
    std::vector<Offset> large;
    for (Offset block = make(4096000); block != 0; block = make(4096000)) large.push_back(block);
    EXPECT_EQ(takeError(), 802);
    for (Offset& block : large) Free(block, 4096000);
    std::vector<std::pair<Offset, std::int32_t>> small;
    for (int i = 0; i < 3000; ++i) {
        const std::int32_t size = 1 + i * 7;
        small.emplace_back(make(size), size);
        ASSERT_NE(small.back().first, 0U);
        std::memset(At(small.back().first), i & 0xFF, static_cast<std::size_t>(size));
    }
    for (auto& [block, size] : small) {
        const int i = (size - 1) / 7;
        ASSERT_EQ(At(block)[0], static_cast<char>(i & 0xFF));
        ASSERT_EQ(At(block)[size - 1], static_cast<char>(i & 0xFF));
        Free(block, size);
    }
    EXPECT_EQ(takeError(), 0);
}

TEST_P(BothHeaps, ABlockShrinksInAHeapThatIsUsedUp) {
    constexpr std::int32_t steps[] = {3000000, 70001, 4097, 300, 17, 1};
    std::vector<std::pair<Offset, std::int32_t>> blocks;
    for (std::int32_t size = 4096000; size > 0; size = size * 2 / 3) {
        for (Offset block = make(size); block != 0; block = make(size)) {
            blocks.emplace_back(block, size);
            if (blocks.size() % 20000 == 0) break;
        }
        takeError();
    }
    auto& [block, size] = blocks.front();
    ASSERT_EQ(size, 4096000);
    std::memcpy(At(block), "abc", 3);
    for (const std::int32_t smaller : steps) {
        FailAllocation(0);
        ASSERT_TRUE(Resize(block, size, smaller)) << smaller;
        FailAllocation(-1);
        size = smaller;
        ASSERT_EQ(At(block)[0], 'a');
        EXPECT_EQ(takeError(), 0);
    }
    blocks.emplace_back(make(900000), 900000);  // what was given up can be used again
    EXPECT_NE(blocks.back().first, 0U);
    for (auto it = blocks.rbegin(); it != blocks.rend(); ++it) Free(it->first, it->second);
    EXPECT_EQ(takeError(), 0);
}

TEST_P(BothHeaps, OffsetsAndAddressesConvertBothWays) {
    Offset block = make(5);
    EXPECT_EQ(OffsetOf(At(block)), block);
    EXPECT_EQ(At(0), nullptr);
    EXPECT_EQ(OffsetOf(nullptr), 0U);
    int elsewhere = 0;
    EXPECT_EQ(OffsetOf(&elsewhere), 0U);
    Free(block, 5);
}

TEST_P(BothHeaps, CheckingDoesNotChangeWhileBlocksLive) {
    Offset block = make(5);
    SetMemoryChecking(!GetParam());
    EXPECT_EQ(MemoryChecking(), GetParam());
    Free(block, 5);
    EXPECT_EQ(takeError(), 0);
}

TEST_P(BothHeaps, ARandomWalkKeepsAllContents) {
    struct Block {
        Offset at;
        std::string bytes;  // what must stand there
        [[nodiscard]] std::int32_t size() const { return static_cast<std::int32_t>(bytes.size()); }
    };
    std::mt19937 random(7);
    std::vector<Block> blocks;
    const auto check = [](const Block& block) {
        return std::memcmp(At(block.at), block.bytes.data(), block.bytes.size()) == 0;
    };
    const auto drop = [&] {
        ASSERT_TRUE(check(blocks.back()));
        Free(blocks.back().at, blocks.back().size());
        blocks.pop_back();
    };
    for (int step = 0; step < 20000; ++step) {
        const std::size_t size = 1 + random() % (random() % 20 == 0 ? 20000 : 300);
        const char fill = static_cast<char>(random());
        if (!blocks.empty()) std::swap(blocks[random() % blocks.size()], blocks.back());
        if (blocks.size() < 50 || (blocks.size() < 120 && random() % 3 == 0)) {
            blocks.push_back({make(static_cast<std::int32_t>(size)), std::string(size, fill)});
        } else if (random() % 2 == 0) {
            Block& block = blocks.back();
            ASSERT_TRUE(Resize(block.at, block.size(), static_cast<std::int32_t>(size)));
            block.bytes.resize(std::min(size, block.bytes.size()));
            ASSERT_TRUE(check(block));
            block.bytes.resize(size, fill);
        } else {
            drop();
            continue;
        }
        std::memcpy(At(blocks.back().at), blocks.back().bytes.data(), blocks.back().bytes.size());
    }
    while (!blocks.empty()) drop();
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Heap, WithoutCheckingImpossibleBlocksAreRefused) {
    Offset real = make(16), none = 0, wild = 0xFFFFFFF0U, odd = real + 1;
    Free(none, 16);
    EXPECT_EQ(takeError(), 0);
    Free(wild, 16);
    EXPECT_EQ(takeError(), 823);
    Free(odd, 16);
    EXPECT_EQ(takeError(), 823);
    Free(real, 0);
    EXPECT_EQ(takeError(), 824);
    Free(real, 16);
    EXPECT_EQ(takeError(), 0);
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(Heap, AFreedBlockKeepsNothingOfItsBytes) {
    for (const std::int32_t size : {64, 3000000}) {
        Offset block = make(size);
        std::memset(At(block), 0x77, static_cast<std::size_t>(size));
        const char* bytes = At(block);
        Free(block, size);
#ifdef TARNWICK_TINY
        const char cleared = static_cast<char>(0xDD);
#else
        const char cleared = 0;
#endif
        // The first word links the free blocks.
        for (std::int32_t i = 4; i < size; ++i) ASSERT_EQ(bytes[i], cleared) << i;
    }
}
#endif

TEST_F(GuardedHeap, ABlockCostsTwentyFourBytes) {
    std::vector<Offset> kept;
    Offset a = make(8), b = make(8);                  // 8 + 24 is exactly a class of 32
    while (b - a != 32U && LiveBlocks() < 1000000) {  // blocks that tests before have freed may lie anywhere
        kept.push_back(a);
        a = b;
        b = make(8);
    }
    EXPECT_EQ(b - a, 32U);
    Free(b, 8);  // the newest ones first, which are found at once
    Free(a, 8);
    for (auto block = kept.rbegin(); block != kept.rend(); ++block) Free(*block, 8);
}

TEST_F(GuardedHeap, GuardsStandAroundTheBytes) {
    Offset a = make(5), b = make(6);
    EXPECT_EQ(std::memcmp(At(a) - 20, "LMLM", 4), 0);
    EXPECT_EQ(std::memcmp(At(a) - 4, "<><>", 4), 0);
    EXPECT_EQ(std::memcmp(At(a) + 5, "<><>", 4), 0);
    const auto word = [](const char* at) {
        std::uint32_t value = 0;
        std::memcpy(&value, at, 4);
        return value;
    };
    EXPECT_EQ(word(At(a) - 8), 5U);
    EXPECT_EQ(word(At(b) - 16), a);  // the older block
    EXPECT_EQ(word(At(a) - 12), b);  // the newer block
    EXPECT_EQ(word(At(a) - 16), 0U);
    EXPECT_EQ(word(At(b) - 12), 0U);
    Free(a, 5);
    Free(b, 6);
}

TEST_F(GuardedHeap, WrongFreesReportAndFreeNothing) {
    Offset a = make(10), b = make(20), c = make(30);
    Offset wild = b + 4, none = 0;
    Free(wild, 20);
    EXPECT_EQ(takeError(), 823);
    EXPECT_NE(wild, 0U);
    Free(none, 20);
    EXPECT_EQ(takeError(), 823);
    Free(b, 19);
    EXPECT_EQ(takeError(), 824);
    EXPECT_NE(b, 0U);
    EXPECT_EQ(LiveBlocks(), 3);
    Offset again = a;
    Free(a, 10);
    Free(again, 10);
    EXPECT_EQ(takeError(), 823);
    Free(b, 20);
    Free(c, 30);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(GuardedHeap, OverwrittenGuardsAreFoundByTheFree) {
    constexpr struct {
        int place;  // from the block's first byte
        std::int32_t error;
    } rows[] = {{10, 825}, {13, 825}, {-4, 825}, {-1, 825}, {-20, 822}, {-17, 822}, {-8, 824}, {-12, 822}};
    for (const auto& row : rows) {
        Offset block = make(10);
        char* byte = At(block) + row.place;
        const char was = *byte;
        *byte = static_cast<char>(was ^ 0x41);
        Free(block, 10);
        EXPECT_EQ(takeError(), row.error) << row.place;
        EXPECT_NE(block, 0U);
        *byte = was;
        Free(block, 10);
        EXPECT_EQ(takeError(), 0);
    }
}

TEST_F(GuardedHeap, ABadHeadOnTheWayIs822ButNotBehindTheBlock) {
    Offset older = make(10), middle = make(10), newer = make(10);
    char* guard = At(middle) - 20;
    *guard = '?';
    Free(older, 10);
    EXPECT_EQ(takeError(), 822);
    Free(newer, 10);
    EXPECT_EQ(takeError(), 0);
    *guard = 'L';
    Free(older, 10);
    Free(middle, 10);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(GuardedHeap, WildLinksEndTheSearchWith822) {
    for (const std::uint32_t wild : {1U, 16U, 0x1000U, 0xFFFFFFFCU}) {
        Offset older = make(10), newer = make(10);
        char* link = At(newer) - 16;
        std::uint32_t was = 0;
        std::memcpy(&was, link, 4);
        std::memcpy(link, &wild, 4);
        Free(older, 10);
        EXPECT_EQ(takeError(), 822) << wild;
        EXPECT_EQ(CountLeaks().bytes, -1);
        std::memcpy(link, &was, 4);
        Free(older, 10);
        Free(newer, 10);
        EXPECT_EQ(takeError(), 0);
    }
}

TEST_F(GuardedHeap, AListThatRunsInACircleEndsTheWalk) {
    Offset older = make(10), newer = make(10);
    char* link = At(older) - 16;
    std::memcpy(link, &newer, 4);
    EXPECT_EQ(CountLeaks().bytes, -1);
    Offset nowhere = newer + 4;
    Free(nowhere, 10);
    EXPECT_EQ(takeError(), 822);
    std::memset(link, 0, 4);
    Free(older, 10);
    Free(newer, 10);
}

TEST_F(GuardedHeap, ResizeChecksAsFreeDoes) {
    Offset block = make(10);
    EXPECT_FALSE(Resize(block, 11, 20));
    EXPECT_EQ(takeError(), 824);
    At(block)[10] = '!';
    EXPECT_FALSE(Resize(block, 10, 20));
    EXPECT_EQ(takeError(), 825);
    At(block)[10] = '<';
    EXPECT_TRUE(Resize(block, 10, 12));
    EXPECT_EQ(CountLeaks().bytes, 12);
    EXPECT_EQ(std::memcmp(At(block) + 12, "<><>", 4), 0);
    Free(block, 12);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(GuardedHeap, LeaksAreCountedAsTheyWereAskedFor) {
    EXPECT_EQ(CountLeaks().blocks, 0);
    Offset a = make(40), b = make(8);
    EXPECT_EQ(CountLeaks().bytes, 48);
    EXPECT_EQ(CountLeaks().blocks, 2);
    Free(a, 40);
    EXPECT_EQ(CountLeaks().bytes, 8);
    Free(b, 8);
    EXPECT_EQ(CountLeaks().bytes, 0);
    EXPECT_EQ(CountLeaks().blocks, 0);
}

TEST_F(GuardedHeap, DamageMakesTheLeakCountMinusOne) {
    for (const int place : {-20, 10, -12, -8}) {
        Offset block = make(10);
        char* byte = At(block) + place;
        const char was = *byte;
        *byte = static_cast<char>(was ^ 0x41);
        EXPECT_EQ(CountLeaks().bytes, -1) << place;
        *byte = was;
        Free(block, 10);
    }
}

TEST_F(Heap, WithoutCheckingNoLeaksAreCounted) {
    Offset block = make(10);
    EXPECT_EQ(CountLeaks().bytes, 0);
    Free(block, 10);
}

}  // namespace
