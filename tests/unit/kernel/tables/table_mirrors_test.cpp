// SPDX-License-Identifier: Apache-2.0
//
// A table with mirrors beside its twin, which loses its own before each operation: both must do the same to the
// letter, also to trees and rows that were changed behind their backs.
#include "kernel/tables/table_mirrors.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <functional>
#include <random>

using namespace tarn;

namespace {

const Cells rowShape = {integer(0), text("", 12), fixedNumber(0), real(0), characters("", 3), text("")};

class Mirrors : public Runtime {
protected:
    void TearDown() override {
        FailAllocation(-1);
        table = TableValue();
        twin = TableValue();
        out = RecordValue();
        EXPECT_EQ(takeError(), 0);
        Runtime::TearDown();
    }
    void make(const KeyMaps& keyMaps) {
        maps = keyMaps;
        for (TableValue* value : {&table, &twin}) {
            *value = TableValue();
            TableInit(value->get(), UNBOUNDED, recordOf(rowShape).get(), maps, "", false);
        }
        ASSERT_EQ(takeError(), 0);
    }
    static Cells row(int n) {
        return {integer(n),
                text("n" + std::to_string(n), 12),
                fixedNumber(n * 10007LL),
                real(n * 0.5),
                characters(std::to_string(n % 1000), 3),
                text(std::string(static_cast<std::size_t>(n % 9), 'p') + std::to_string(n))};
    }
    [[nodiscard]] Cells keyOf(int index, const Cells& cells) const {
        Cells key;
        for (auto map = static_cast<std::uint32_t>(maps[static_cast<std::size_t>(index)]); map != 0;
             map <<= 8U)
            key.push_back(cells[(map >> 24U) - 1]);
        return key;
    }
    TableHeader& header() { return HeaderOf(*table.get()); }
    // The same operation on both; the twin has no mirrors.
    std::int32_t both(const std::function<void(TableDescriptor*)>& operation) {
        operation(table.get());
        const std::int32_t error = takeError();
        DropTableMirrors(HeaderOf(*twin.get()));
        operation(twin.get());
        EXPECT_EQ(takeError(), error);
        return error;
    }
    void add(int n) {
        both([&](TableDescriptor* t) { TableAdd(t, 1, recordOf(row(n)).get()); });
    }
    void fill(int count) {
        for (int n = 1; n <= count; ++n) add(n);
    }
    void find(std::string_view op, int index, const Cells& key) {
        const RecordValue record = recordOf(key);
        std::optional<Cells> found[2];
        int n = 0;
        both([&](TableDescriptor* t) {
            bool there = false;
            TableFind(op, t, index + 1, record.get(), out.get(), there);
            if (there) found[n] = cellsOf(out.get(), rowShape);
            ++n;
        });
        ASSERT_EQ(found[0].has_value(), found[1].has_value()) << op;
        if (found[0]) {
            EXPECT_TRUE(sameCells(*found[0], *found[1])) << op;
        }
    }
    void remove(int index, const Cells& key) {
        both([&](TableDescriptor* t) { TableDelete(t, index + 1, recordOf(key).get()); });
    }
    // Rows and balances in the order of a walk.
    static std::string formOf(const RecordDescriptor& root, Offset node) {
        if (node == 0) return ".";
        const MemoryTree tree(const_cast<RecordDescriptor&>(root));
        return "(" + formOf(root, tree.child(node, 0)) + std::to_string(NodeRow(node)) + "/" +
               std::to_string(tree.balance(node)) + formOf(root, tree.child(node, 1)) + ")";
    }
    void expectTwins() {
        EXPECT_EQ(CheckTableMirrors(header()), "");
        EXPECT_EQ(TableCount(table.get()), TableCount(twin.get()));
        for (std::int32_t n = 1; n <= TableIndexCount(table.get()); ++n) {
            const RecordDescriptor &a = *TableRoot(table.get(), n), &b = *TableRoot(twin.get(), n);
            EXPECT_EQ(formOf(a, a.data), formOf(b, b.data));
        }
    }
    // The field of a row, reached past the table.
    static void* fieldOf(TableDescriptor* t, std::int32_t number, std::int32_t field) {
        return RecordFieldAddress(static_cast<RecordDescriptor*>(ListRef(TableRows(t), number)), field);
    }

    KeyMaps maps{};
    TableValue table, twin;
    RecordValue out;
};

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

// ---- without nodes ----

const KeyMaps wholeNumbers = {MakeKeyMap(3), MakeKeyMap(1), MakeKeyMap(2)};

class Nodeless : public Mirrors {
protected:
    // The form of a tree, which stays without nodes.
    static std::string shownForm(const TableDescriptor* t, std::int32_t n) {
        TableValue copy;
        AdtCopy(t, copy.get(), KindTable);
        const RecordDescriptor& root = *TableRoot(copy.get(), n);
        return formOf(root, root.data);
    }
    void expectSame() {
        EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
        for (std::int32_t n = 1; n <= TableIndexCount(table.get()); ++n)
            EXPECT_EQ(shownForm(table.get(), n), shownForm(twin.get(), n));
    }
    bool isNodeless(std::int32_t index) { return IsNodeless(header(), index); }
};

TEST_F(Nodeless, TreesOfWholeNumbersHaveNoNodesUntilSomebodyLooks) {
    make(wholeNumbers);
    fill(20);
    EXPECT_FALSE(isNodeless(0));
    fill(100);
    EXPECT_TRUE(isNodeless(0));
    EXPECT_TRUE(isNodeless(1));
    EXPECT_FALSE(isNodeless(2));
    EXPECT_TRUE(IsMirrored(header(), 2));
    expectSame();
    EXPECT_TRUE(isNodeless(0));
    EXPECT_NE(TableRoot(table.get(), 1)->data, 0U);
    EXPECT_FALSE(isNodeless(0));
    EXPECT_TRUE(isNodeless(1));
    EXPECT_EQ(IndexCount(TableRoot(table.get(), 1), {}), 100);
    expectTwins();
    fill(120);
    expectTwins();
}

TEST_F(Nodeless, WhatWasLookedAtKeepsItsNodes) {
    make(wholeNumbers);
    fill(100);
    const RecordDescriptor* const root = TableRoot(table.get(), 1);
    both([](TableDescriptor* t) { TableClear(t); });
    fill(100);
    EXPECT_FALSE(isNodeless(0));
    EXPECT_EQ(IndexCount(root, {}), 100);
    both([](TableDescriptor* t) { TableRebuild(t); });
    EXPECT_EQ(IndexCount(root, {}), 100);
    EXPECT_TRUE(IsMirrored(header(), 0));
    expectTwins();
}

TEST_F(Nodeless, RowsCostLess) {
    const auto blocksOf = [&](const KeyMaps& keyMaps) {
        make(keyMaps);
        const std::int64_t before = LiveBlocks();
        for (int n = 1; n <= 500; ++n) TableAdd(table.get(), 1, recordOf(row(n)).get());
        return LiveBlocks() - before;
    };
    const std::int64_t one = blocksOf({MakeKeyMap(1)}), two = blocksOf({MakeKeyMap(1), MakeKeyMap(3)});
    EXPECT_LT(two - one, 5);
}

TEST_F(Nodeless, ATreeThatCannotBeShownStaysAsItIs) {
    make(wholeNumbers);
    fill(64);
    for (int n = 0;; ++n) {
        const std::int64_t before = LiveBlocks();
        FailAllocation(n);
        const RecordDescriptor* const root = TableRoot(table.get(), 2);
        FailAllocation(-1);
        if (root != nullptr) break;
        EXPECT_EQ(takeError(), 802);
        EXPECT_EQ(LiveBlocks(), before);
        EXPECT_TRUE(isNodeless(1));
        ASSERT_LT(n, 200);
    }
    EXPECT_FALSE(isNodeless(1));
    expectTwins();
}

TEST_F(Nodeless, ACopyThatMeetsALackOfMemoryLeavesNothing) {
    make(wholeNumbers);
    fill(40);
    for (int n = 0;; ++n) {
        const std::int64_t before = LiveBlocks();
        TableValue copy;
        FailAllocation(n);
        AdtCopy(table.get(), copy.get(), KindTable);
        FailAllocation(-1);
        if (takeError() == 0) break;
        EXPECT_EQ(copy.get()->tag, 0);
        EXPECT_EQ(LiveBlocks(), before);
        ASSERT_LT(n, 2000);
    }
    expectSame();
}

TEST_F(Nodeless, ANumberThatIsTakenAlreadyNeedsTheNodes) {
    make(wholeNumbers);
    fill(64);
    both([](TableDescriptor* t) { ListRemoveLast(TableRows(t)); });  // its entries stay
    const std::string before = shownForm(table.get(), 2);
    const RecordValue added = recordOf(row(200));
    EXPECT_TRUE(isNodeless(1));
    for (int n = 0; n < 3; ++n) {
        FailAllocation(n * 20);
        TableAdd(table.get(), 1, added.get());
        FailAllocation(-1);
        EXPECT_EQ(takeError(), 802) << n;
        EXPECT_EQ(shownForm(table.get(), 2), before);
    }
    add(200);
    EXPECT_FALSE(isNodeless(1));
    expectTwins();
}

TEST_F(Nodeless, ARowWhoseEntryIsLostIsDeletedAndItsNumberUsedAgain) {
    make(wholeNumbers);
    fill(64);
    both([](TableDescriptor* t) { WriteAt(fieldOf(t, 7, 3), std::int64_t{5}); });
    remove(1, {integer(7)});  // its entry in the first index stays
    for (const std::int64_t key : {7LL, 64LL, 63LL}) find("EQ", 0, {fixedNumber(key * 10007)});
    both([](TableDescriptor* t) { TableRebuild(t); });
    expectSame();
}

TEST_F(Nodeless, TreesThatChangeElsewhereChangeNothingHere) {
    make(wholeNumbers);
    fill(64);
    RecordDescriptor root{};
    IndexInit(&root);
    const RecordValue key = recordOf({integer(5)});
    IndexInsert(&root, {}, key.get(), 1);
    IndexClear(&root, {});
    find("EQ", 1, {integer(5)});
    EXPECT_TRUE(isNodeless(1));
    expectSame();
}

class NodelessModels : public Nodeless, public ::testing::WithParamInterface<int> {
protected:
    void step(std::mt19937& random, bool growing) {
        const int n = static_cast<int>(random() % 400), index = static_cast<int>(random() % 3);
        const auto choice = static_cast<unsigned>(random() % 100);
        const Cells key = keyOf(index, row(n));
        static const char* const operators[] = {"EQ", "EQ", "EQ",   "FIRST",   "LAST",
                                                "GE", "LE", "NEXT", "PREVIOUS"};
        if (choice < 40) return find(operators[random() % 9], index, key);
        if (choice < (growing ? 75U : 50U)) return add(n);
        if (choice < 85) return remove(index, key);
        const Cells other = row(static_cast<int>(random() % 400));
        both([&](TableDescriptor* t) {
            TableUpdate(recordOf(other).get(), index + 1, recordOf(key).get(), t);
        });
    }
    void meddle(std::mt19937& random) {
        const std::int32_t count = TableCount(table.get());
        if (count == 0) return;
        const auto number = static_cast<std::int32_t>(1 + random() % static_cast<unsigned>(count));
        switch (random() % 4) {
        case 0:
            return void(both(
                [&](TableDescriptor* t) { WriteAt(fieldOf(t, number, 1), std::int32_t{5000 + number}); }));
        case 1: return void(both([&](TableDescriptor* t) { ListRemoveLast(TableRows(t)); }));
        case 2: return void(both([](TableDescriptor* t) { TableClear(t); }));
        default: both([](TableDescriptor* t) { TableRebuild(t); });
        }
    }
    void shortOfMemory(std::mt19937& random) {
        const RecordValue changed = recordOf(row(static_cast<int>(random() % 400)));
        const RecordValue key = recordOf({integer(static_cast<std::int32_t>(random() % 400))});
        const auto choice = static_cast<unsigned>(random() % 3);
        const auto operate = [&](TableDescriptor* t) {
            if (choice == 0) TableAdd(t, 1, changed.get());
            if (choice == 1) TableUpdate(changed.get(), 2, key.get(), t);
            if (choice == 2) TableDelete(t, 2, key.get());
        };
        const std::string before = shownForm(table.get(), 1) + shownForm(table.get(), 2);
        FailAllocation(static_cast<std::int64_t>(random() % 12));
        operate(table.get());
        FailAllocation(-1);
        const std::int32_t error = takeError();
        if (error == ERR_OUT_OF_MEMORY) {
            EXPECT_EQ(shownForm(table.get(), 1) + shownForm(table.get(), 2), before);
            return;
        }
        DropTableMirrors(HeaderOf(*twin.get()));
        operate(twin.get());
        EXPECT_EQ(takeError(), error);
    }
};

TEST_P(NodelessModels, TheTableDoesAsItsTwinWithNodes) {
    constexpr int steps = 3000;
    const auto seed = static_cast<unsigned>(GetParam());
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const bool meddling = seed % 2 != 0;
    int without = 0;
    make(wholeNumbers);
    for (int i = 0; i < steps && !HasFailure(); ++i) {
        step(random, i / 500 % 2 == 0);
        if (i % 37 == 0) shortOfMemory(random);
        if (meddling && i % 151 == 150) meddle(random);
        EXPECT_EQ(CheckTableMirrors(header()), "");
        without += isNodeless(0) && isNodeless(1) ? 1 : 0;
        for (std::int32_t n = 1; n <= 3 && i % 20 == 0; ++n)
            EXPECT_EQ(shownForm(table.get(), n), shownForm(twin.get(), n));
        if (HasFailure()) ADD_FAILURE() << "step " << i;
    }
    EXPECT_GT(without, steps / 4);
}

INSTANTIATE_TEST_SUITE_P(Seeds, NodelessModels, ::testing::Range(1, 7));

// ---- against the twin ----

class MirrorModels : public Mirrors, public ::testing::WithParamInterface<int> {
protected:
    void step(std::mt19937& random, bool growing) {
        const int n = static_cast<int>(random() % 700), index = static_cast<int>(random() % 5);
        const auto choice = static_cast<unsigned>(random() % 100);
        const Cells key = keyOf(index, row(n));
        static const char* const operators[] = {"EQ", "EQ", "EQ",   "FIRST",   "LAST",
                                                "GE", "LE", "NEXT", "PREVIOUS"};
        if (choice < 40) return find(operators[random() % 9], index, key);
        if (choice < (growing ? 75U : 50U)) return add(n);
        if (choice < 85) return remove(index, key);
        const Cells other = row(static_cast<int>(random() % 700));
        both([&](TableDescriptor* t) {
            TableUpdate(recordOf(other).get(), index + 1, recordOf(key).get(), t);
        });
    }
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
    constexpr int steps = 4000;
    const auto seed = static_cast<unsigned>(GetParam());
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const bool meddling = seed % 2 != 0;
    make(five);
    for (int i = 0; i < steps && !HasFailure(); ++i) {
        step(random, i / 500 % 2 == 0);
        if (i % 37 == 0) shortOfMemory(random);
        if (meddling && i % 151 == 150) meddle(random);
        expectTwins();
        if (HasFailure()) ADD_FAILURE() << "step " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, MirrorModels, ::testing::Range(1, 7));

}  // namespace
