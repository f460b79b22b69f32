// SPDX-License-Identifier: Apache-2.0
//
// A table with mirrors beside its twin, which loses its own before each operation: both must do the same to the
// letter, also to trees and rows that were changed behind their backs.
#include "unit/kernel/table_mirrors_fixture.h"

using namespace tarn;

namespace {

const KeyMaps oneInteger = {MakeKeyMap(1)};
const KeyMaps five = {MakeKeyMap(1), MakeKeyMap(2), MakeKeyMap(3, 5), MakeKeyMap(6), MakeKeyMap(4, 1)};

// ---- when there are some ----

TEST_F(Mirrors, ATableGetsThemWhenItHasGrown) {
    make(five);
    fill(31);
    EXPECT_FALSE(IsMirrored(header(), 0));
    for (int n = 32; n < 40; ++n) add(n);
    for (int index = 0; index < 5; ++index) EXPECT_TRUE(IsMirrored(header(), index));
    expectTwins();
    EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
}

TEST_F(Mirrors, ASmallTableAndACopyHaveNone) {
    make(oneInteger);
    fill(20);
    for (int n = 1; n <= 100; ++n) find("EQ", 0, {integer(n % 20)});
    EXPECT_FALSE(IsMirrored(header(), 0));
    for (int n = 21; n <= 60; ++n) add(n);
    EXPECT_TRUE(IsMirrored(header(), 0));
    TableValue copy;
    AdtCopy(table.get(), copy.get(), KindTable);
    EXPECT_FALSE(IsMirrored(HeaderOf(*copy.get()), 0));
}

TEST_F(Mirrors, ACopyGetsItsOwnAfterSomeSearches) {
    make(oneInteger);
    fill(80);
    TableValue copy;
    AdtCopy(table.get(), copy.get(), KindTable);
    for (int n = 1; n <= 10; ++n) {
        EXPECT_FALSE(IsMirrored(HeaderOf(*copy.get()), 0)) << n;
        TableRead(copy.get(), 1, recordOf({integer(n)}).get(), out.get());
    }
    EXPECT_TRUE(IsMirrored(HeaderOf(*copy.get()), 0));
    EXPECT_EQ(AdtCheck(copy.get(), KindTable), "");
}

TEST_F(Mirrors, WithMemoryCheckingThereIsNone) {
    table = TableValue();
    SetMemoryChecking(true);
    make(oneInteger);
    fill(200);
    for (int n = 1; n <= 200; ++n) find("EQ", 0, {integer(n)});
    EXPECT_FALSE(IsMirrored(header(), 0));
    table = TableValue();
    twin = TableValue();
    out = RecordValue();
    SetMemoryChecking(false);
}

TEST_F(Mirrors, TheyGoWithTheTableAndItsRows) {
    const std::int64_t before = LiveBlocks();
    make(five);
    const std::int64_t empty = LiveBlocks();
    fill(100);
    for (int n = 1; n <= 100; ++n) find("EQ", n % 5, keyOf(n % 5, row(n)));
    out = RecordValue();
    both([](TableDescriptor* t) { TableClear(t); });
    EXPECT_EQ(LiveBlocks(), empty);
    fill(100);
    table = TableValue();
    twin = TableValue();
    EXPECT_EQ(LiveBlocks(), before);
    make({});
}

// ---- what stays the same ----

TEST_F(Mirrors, EverySearchFindsWhatTheTreeHolds) {
    make(five);
    std::mt19937 random(3);
    for (int n = 0; n < 400; ++n) add(static_cast<int>(random() % 500));
    static const char* const operators[] = {"EQ", "FIRST", "LAST", "GE", "LE", "NEXT", "PREVIOUS"};
    for (int step = 0; step < 6000 && !HasFailure(); ++step) {
        const int index = step % 5;
        find(operators[random() % 7], index, keyOf(index, row(static_cast<int>(random() % 510))));
    }
    expectTwins();
}

TEST_F(Mirrors, AWalkComesToEveryRowBothWays) {
    make(five);
    fill(300);
    for (int index = 0; index < 5; ++index) {
        for (const auto& [first, next] : {std::pair("FIRST", "NEXT"), std::pair("LAST", "PREVIOUS")}) {
            find(first, index, keyOf(index, row(0)));
            for (int n = 0; n < 301; ++n) find(next, index, keyOf(index, cellsOf(out.get(), rowShape)));
        }
    }
}

TEST_F(Mirrors, AWalkThatTurnsOrMeetsAChangeGoesOnFromItsKey) {
    make(five);
    fill(200);
    std::mt19937 random(11);
    Cells at = row(100);
    for (int step = 0; step < 3000 && !HasFailure(); ++step) {
        const auto choice = static_cast<unsigned>(random() % 40);
        const int index = static_cast<int>(random() % 50) == 0 ? step % 5 : 1,
                  n = static_cast<int>(random() % 300);
        find(choice < 30 ? "NEXT" : choice < 36 ? "PREVIOUS" : "GE", index, keyOf(index, at));
        if (RecordFieldCount(out.get()) != 0 && takeError() == 0) at = cellsOf(out.get(), rowShape);
        if (choice == 37) add(n);
        if (choice == 38) remove(0, {integer(n)});
        if (choice == 39)
            both([&](TableDescriptor* t) {
                TableUpdate(recordOf(row(n)).get(), 2, recordOf(keyOf(1, at)).get(), t);
            });
    }
    expectTwins();
}

TEST_F(Mirrors, AWalkSeesWhatChangesAheadOfIt) {
    make(five);
    for (int n = 2; n <= 400; n += 2) add(n);
    Cells at = row(0);
    for (int step = 0; step < 150; ++step) {
        find("NEXT", 0, keyOf(0, at));
        at = cellsOf(out.get(), rowShape);
        const int n = static_cast<int>(at[0].number);
        if (step % 4 == 1) remove(0, {integer(n + 2)});
        if (step % 4 == 2) add(n + 1);
        if (step % 8 == 3)
            both([&](TableDescriptor* t) {
                TableUpdate(recordOf(row(n + 3)).get(), 1, recordOf({integer(n + 2)}).get(), t);
            });
        if (step % 50 == 49) both([](TableDescriptor* t) { TableRebuild(t); });
    }
    expectTwins();
}

TEST_F(Mirrors, AKeyThatChangesBehindTheTableIsFoundByTheOldOne) {
    make(five);
    fill(64);
    for (int n = 1; n <= 64; ++n) find("EQ", 0, {integer(n)});
    both([](TableDescriptor* t) { WriteAt(fieldOf(t, 7, 1), std::int32_t{1000}); });
    for (const int key : {7, 1000, 8}) find("EQ", 0, {integer(key)});
    remove(1, {text("n7", 12)});  // its entry in the first index stays
    for (const int key : {7, 1000, 64}) find("EQ", 0, {integer(key)});
    expectTwins();
    both([](TableDescriptor* t) { TableRebuild(t); });
    expectTwins();
}

TEST_F(Mirrors, ANumberThatTwoNodesHaveEndsTheMirror) {
    make(oneInteger);
    fill(64);
    both([](TableDescriptor* t) { ListRemoveLast(TableRows(t)); });  // its node stays
    EXPECT_TRUE(IsMirrored(header(), 0));
    add(200);
    EXPECT_FALSE(IsMirrored(header(), 0));
    expectTwins();
    for (int n = 190; n < 210; ++n) find("NEXT", 0, {integer(n)});
    both([](TableDescriptor* t) { TableRebuild(t); });
    EXPECT_TRUE(IsMirrored(header(), 0));
    expectTwins();
}

TEST_F(Mirrors, ATreeThatChangesBehindTheTableEndsTheMirrors) {
    make(five);
    fill(64);
    for (const auto& change : std::vector<std::function<void(RecordDescriptor*)>>{
             [](RecordDescriptor* root) { IndexDelete(root, {}, recordOf({integer(9)}).get()); },
             [](RecordDescriptor* root) { IndexUpdateRow(root, {}, recordOf({integer(10)}).get(), 11); },
             [](RecordDescriptor* root) { IndexInsert(root, {}, recordOf({integer(9)}).get(), 3); },
             [](RecordDescriptor* root) { IndexClear(root, {}); }}) {
        both([&](TableDescriptor* t) { change(TableRoot(t, 1)); });
        EXPECT_FALSE(IsMirrored(header(), 0));
        for (int n = 1; n <= 20; ++n) find("EQ", 0, {integer(n)});
        for (int n = 1; n <= 20; ++n) find("EQ", 1, {text("n" + std::to_string(n), 12)});
        expectTwins();
    }
    remove(1, {text("n5", 12)});
    expectTwins();
    both([](TableDescriptor* t) { TableRebuild(t); });
    EXPECT_TRUE(IsMirrored(header(), 0));
    expectTwins();
}

// Rows that a list operation appended may have numbers that a mirror does not reach.
TEST_F(Mirrors, ARowBehindAllEntriesIsUpdatedAndDeleted) {
    make({MakeKeyMap(2), MakeKeyMap(1), MakeKeyMap(3)});
    fill(64);
    constexpr int far = 20000;
    both([&](TableDescriptor* t) {
        for (int n = 65; n <= far; ++n) ListAppend(recordOf(row(n)).get(), KindRecord, TableRows(t));
        for (const int n : {far - 1, far})
            IndexInsert(TableRoot(t, 1), {}, recordOf(keyOf(0, row(n))).get(), n);
    });
    both([&](TableDescriptor* t) {
        TableUpdate(recordOf(row(far + 1)).get(), 1, recordOf(keyOf(0, row(far))).get(), t);
    });
    find("EQ", 1, {integer(far + 1)});
    remove(0, keyOf(0, row(far - 1)));
    find("EQ", 1, {integer(far + 1)});
    expectTwins();
}

// The word that names the mirrors stands in the type text, which programs can write to.
TEST_F(Mirrors, AWordThatNamesNothingNamesNoMirrors) {
    make(oneInteger);
    fill(20);
    constexpr std::int32_t size = 16;
    constexpr Offset hugePage = 2U << 20U;  // what the heap grows by
    std::vector<Offset> blocks(1);
    while ((blocks.back() + size) % hugePage != 0 || blocks.back() < hugePage ||
           OffsetOf(At(blocks.back()) + size) != 0)
        Allocate(blocks.emplace_back(), size);
    const Offset last = blocks.back(), end = last + size;
    WriteAt(At(last), OffsetOf(&header()));
    WriteAt(At(last) + 8, OffsetOf(&header()));
    for (const Offset word : {last, last + 8, end - 2, end, end + 16, 0xFFFFFFF0U, 2U}) {
        header().typeInfo.reserved = static_cast<std::int32_t>(word);
        EXPECT_FALSE(IsMirrored(header(), 0)) << word;
        TableRead(table.get(), 1, recordOf({integer(7)}).get(), out.get());
        EXPECT_EQ(takeError(), 0);
    }
    header().typeInfo.reserved = 0;
    for (Offset& block : blocks) Free(block, size);
}

TEST_F(Mirrors, AWordThatLeadsIntoWhatWasFreedNamesNoMirrors) {
    make(oneInteger);
    fill(20);
    constexpr std::int32_t size = 4096, step = 16;
    Offset block = 0, behind = 0;
    Allocate(block, size);
    Allocate(behind, size);
    const Offset word = block + step;
    Free(block, size);
    header().typeInfo.reserved = static_cast<std::int32_t>(word);
    EXPECT_FALSE(IsMirrored(header(), 0));
    find("EQ", 0, {integer(7)});
    header().typeInfo.reserved = 0;
    Free(behind, size);
}

// ---- against the twin ----

class MirrorModels : public Mirrors, public ::testing::WithParamInterface<int> {
protected:
    // What goes past the table, and what sets it right.
    void meddle(std::mt19937& random) {
        const std::int32_t count = TableCount(table.get());
        const auto number =
            static_cast<std::int32_t>(1 + random() % static_cast<unsigned>(std::max(count, 1)));
        switch (random() % 5) {
        case 0:
            if (count != 0)
                both(
                    [&](TableDescriptor* t) { WriteAt(fieldOf(t, number, 1), std::int32_t{5000 + number}); });
            break;
        case 1:
            if (count != 0) both([&](TableDescriptor* t) { ListRemoveLast(TableRows(t)); });
            break;
        case 2:
            both([&](TableDescriptor* t) {
                IndexDelete(TableRoot(t, 1), {}, recordOf({integer(number)}).get());
            });
            break;
        case 3: both([](TableDescriptor* t) { TableClear(t); }); break;
        default: both([](TableDescriptor* t) { TableRebuild(t); });
        }
    }
    // An operation that meets a lack of memory leaves the table and its mirrors as they were, and otherwise did
    // what it does with enough.
    void shortOfMemory(std::mt19937& random) {
        const RecordValue added = recordOf(row(static_cast<int>(random() % 700)));
        const std::string before = formOf(*TableRoot(table.get(), 1), TableRoot(table.get(), 1)->data);
        FailAllocation(static_cast<std::int64_t>(random() % 12));
        TableAdd(table.get(), 1, added.get());
        FailAllocation(-1);
        const std::int32_t error = takeError();
        EXPECT_EQ(CheckTableMirrors(header()), "");
        if (error == ERR_OUT_OF_MEMORY) {
            EXPECT_EQ(formOf(*TableRoot(table.get(), 1), TableRoot(table.get(), 1)->data), before);
            return;
        }
        DropTableMirrors(HeaderOf(*twin.get()));
        TableAdd(twin.get(), 1, added.get());
        EXPECT_EQ(takeError(), error);
    }
};

TEST_P(MirrorModels, BothDoTheSame) {
    constexpr int steps = 4000, numbers = 700;
    const auto seed = static_cast<unsigned>(GetParam());
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const bool meddling = seed % 2 != 0;
    make(five);
    for (int i = 0; i < steps && !HasFailure(); ++i) {
        step(random, i / 500 % 2 == 0, numbers);
        if (i % 37 == 0) shortOfMemory(random);
        if (meddling && i % 151 == 150) meddle(random);
        expectTwins();
        if (HasFailure()) ADD_FAILURE() << "step " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, MirrorModels, ::testing::Range(1, 7));

}  // namespace
