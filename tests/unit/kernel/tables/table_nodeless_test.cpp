// SPDX-License-Identifier: Apache-2.0
//
// Trees that have no nodes until somebody looks at them, beside a twin whose trees have theirs.
#include "unit/kernel/table_mirrors_fixture.h"

using namespace tarn;

namespace {

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

TEST_F(Nodeless, ARebuildThatMeetsALackOfMemoryDoesWithoutTheNodesThatWereShown) {
    make(wholeNumbers);
    fill(64);
    for (int n = 0; n < 200; ++n) {
        ASSERT_NE(TableRoot(table.get(), 2), nullptr);
        FailAllocation(n);
        TableRebuild(table.get());
        FailAllocation(-1);
        EXPECT_EQ(takeError(), 0) << n;
        expectTwins();
    }
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
    constexpr int steps = 3000, numbers = 400;
    const auto seed = static_cast<unsigned>(GetParam());
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const bool meddling = seed % 2 != 0;
    int without = 0;
    make(wholeNumbers);
    for (int i = 0; i < steps && !HasFailure(); ++i) {
        step(random, i / 500 % 2 == 0, numbers);
        if (i % 37 == 0) shortOfMemory(random);
        if (meddling && i % 151 == 150) meddle(random);
        EXPECT_EQ(CheckTableMirrors(header()), "");
        without += isNodeless(0) && isNodeless(1) ? 1 : 0;
        for (std::int32_t n = 1; n <= 3 && i % 20 == 0; ++n)
            EXPECT_EQ(shownForm(table.get(), n), shownForm(twin.get(), n));
        if (HasFailure()) ADD_FAILURE() << "step " << i;
    }
    EXPECT_GT(without, steps / 8);
}

INSTANTIATE_TEST_SUITE_P(Seeds, NodelessModels, ::testing::Range(1, 7));

}  // namespace
