// SPDX-License-Identifier: Apache-2.0
//
// Searches by one integer in rows of numbers, which have a way of their own, beside a map and beside small tables,
// which have it not.
#include "kernel/run/errors.h"
#include "kernel/tables/table_mirrors.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <functional>
#include <map>
#include <random>

using namespace tarn;

namespace {

class QuickTables : public Runtime {
protected:
    void SetUp() override {
        Runtime::SetUp();
        out = recordOf(row(0, 0));
        make(big);
        make(small);
    }
    void TearDown() override {
        big = TableValue();
        small = TableValue();
        out = RecordValue();
        EXPECT_EQ(takeError(), 0);
        Runtime::TearDown();
    }
    static Cells row(int key, int value) {
        return {fixedNumber(value), integer(key), real(key * 0.5), integer(-key)};
    }
    static void make(TableValue& table, const KeyMaps& maps = {MakeKeyMap(2), MakeKeyMap(1, 2)}) {
        table = TableValue();
        TableInit(table.get(), UNBOUNDED, recordOf(row(0, 0)).get(), maps, "", false);
    }
    void compareWithMap(unsigned seed);
    static RecordValue key(int n) { return recordOf({integer(n)}); }
    void add(int n, int value) { TableAdd(big.get(), 1, recordOf(row(n, value)).get()); }
    void fill(int count) {
        for (int n = 1; n <= count; ++n) add(n * 3, n);
        for (int n = 1; n <= count; ++n) TableRead(big.get(), 1, key(n * 3).get(), out.get());
        for (int n = 1; n <= 3; ++n) TableAdd(small.get(), 1, recordOf(row(n * 3, n)).get());
        ASSERT_EQ(takeError(), 0);
        ASSERT_TRUE(IsMirrored(HeaderOf(*big.get()), 0));
    }
    [[nodiscard]] int valueFound() const {
        return static_cast<int>(ReadAt<std::int64_t>(RecordFieldAddress(out.get(), 1)));
    }
    TableValue big, small;
    RecordValue out;
};

void QuickTables::compareWithMap(unsigned seed) {
    std::map<int, int> model;
    std::mt19937 random(seed);
    for (int step = 0; step < 20000 && !HasFailure(); ++step) {
        const int n = static_cast<int>(random() % 900) - 450, choice = static_cast<int>(random() % 10);
        if (choice < 3) {
            add(n, step);
            EXPECT_EQ(takeError(), model.emplace(n, step).second ? 0 : 635);
        } else if (choice == 3) {
            TableDelete(big.get(), 1, key(n).get());
            EXPECT_EQ(takeError(), model.erase(n) != 0 ? 0 : 604);
        } else if (choice == 4) {
            TableUpdate(recordOf(row(n, step)).get(), 1, key(n).get(), big.get());
            EXPECT_EQ(takeError(), model.count(n) != 0 ? 0 : 604);
            if (model.count(n) != 0) model[n] = step;
        } else if (choice < 7) {
            TableRead(big.get(), 1, key(n).get(), out.get());
            EXPECT_EQ(takeError(), model.count(n) != 0 ? 0 : 604);
            EXPECT_EQ(valueFound(), model.count(n) != 0 ? model[n] : 0);
        } else {
            bool found = false;
            TableFind(choice == 9 ? "neXT" : "NEXT", big.get(), 1, key(n).get(), out.get(), found);
            const auto next = model.upper_bound(n);
            ASSERT_EQ(found, next != model.end());
            EXPECT_EQ(valueFound(), found ? next->second : 0);
        }
        if (step % 1000 == 0) {
            EXPECT_EQ(AdtCheck(big.get(), KindTable), "");
        }
    }
    EXPECT_TRUE(IsMirrored(HeaderOf(*big.get()), 0));
}

TEST_F(QuickTables, HoldWhatAMapHolds) {
    const KeyMaps layouts[] = {
        {MakeKeyMap(2), MakeKeyMap(1, 2)},  // rows are added the long way
        {MakeKeyMap(2), MakeKeyMap(4)},
        {MakeKeyMap(2)},
    };
    unsigned seed = 1;
    for (const KeyMaps& maps : layouts) {
        SCOPED_TRACE(seed);
        make(big, maps);
        compareWithMap(seed++);
    }
}

TEST_F(QuickTables, ARowThatAnotherHasAKeyOfIsNotAdded) {
    make(big, {MakeKeyMap(2), MakeKeyMap(4)});
    fill(500);
    const Cells sameFirst = {fixedNumber(1), integer(30), real(0), integer(7)},
                sameSecond = {fixedNumber(1), integer(7), real(0), integer(-30)};
    for (const Cells& cells : {sameFirst, sameSecond}) {
        TableAdd(big.get(), 1, recordOf(cells).get());
        EXPECT_EQ(takeError(), 635);
        EXPECT_EQ(TableCount(big.get()), 500);
        EXPECT_EQ(AdtCheck(big.get(), KindTable), "");
    }
    for (const std::int32_t index : {0, 3, -1, 6}) {
        TableAdd(big.get(), index, recordOf(row(7, 7)).get());
        EXPECT_EQ(takeError(), 636) << index;
    }
    TableAdd(big.get(), 1, key(7).get());
    EXPECT_EQ(takeError(), 611);
    TableAdd(big.get(), 1, nullptr);
    EXPECT_EQ(takeError(), 610);
    TableAdd(big.get(), 2, recordOf(row(7, 7)).get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(TableCount(big.get()), 501);
    EXPECT_EQ(AdtCheck(big.get(), KindTable), "");
}

TEST_F(QuickTables, RowsComeInTheirOrder) {
    make(big, {MakeKeyMap(2), MakeKeyMap(4)});
    for (int n = 0; n < 3000; ++n) add(n * 7919 % 3001, n);
    EXPECT_EQ(takeError(), 0);
    for (int n = 0; n < 3000; ++n) {
        TableRow(big.get(), n + 1, out.get());
        ASSERT_EQ(valueFound(), n);
    }
    EXPECT_EQ(IndexCount(TableRoot(big.get(), 2), {}), 3000);
    EXPECT_EQ(AdtCheck(big.get(), KindTable), "");
}

TEST_F(QuickTables, AWalkComesToEveryRowAndEnds) {
    fill(500);
    bool found = false;
    TableFind("FIRST", big.get(), 1, nullptr, out.get(), found);
    for (int n = 1; n <= 500; ++n) {
        ASSERT_TRUE(found);
        ASSERT_EQ(valueFound(), n);
        TableFind("NEXT", big.get(), 1, key(n * 3).get(), out.get(), found);
    }
    EXPECT_FALSE(found);
    EXPECT_EQ(valueFound(), 0);
    EXPECT_EQ(takeError(), 0);
}

// It looks some rows ahead, and finds others there when it turns, when it begins elsewhere and when rows come and go.
TEST_F(QuickTables, AWalkMayTurnAnywhere) {
    constexpr int rows = 60;
    fill(rows);
    std::mt19937 random(7);
    int at = rows / 2;
    for (int turn = 0; turn < 2000 && !HasFailure(); ++turn) {
        const bool upwards = random() % 2 != 0;
        for (auto steps = random() % 20; steps > 0; --steps) {
            const int next = upwards ? at + 1 : at - 1;
            bool found = false;
            TableFind(upwards ? "NEXT" : "PREVIOUS", big.get(), 1, key(at * 3).get(), out.get(), found);
            ASSERT_EQ(found, next >= 1 && next <= rows) << at;
            ASSERT_EQ(valueFound(), found ? next : 0);
            if (!found) break;
            at = next;
        }
        if (turn % 3 == 0) at = static_cast<int>(1 + random() % rows);
        if (turn % 5 != 0) continue;
        const int other = static_cast<int>(1 + random() % rows);
        TableDelete(big.get(), 1, key(other * 3).get());
        add(other * 3, other);
    }
    EXPECT_EQ(takeError(), 0);
}

// Whatever is wrong with the arguments is told as it is of a table that has no short way.
TEST_F(QuickTables, WrongArgumentsAreToldAsEver) {
    fill(500);
    const RecordValue right = key(6), wide = recordOf({fixedNumber(6)}),
                      two = recordOf({integer(6), integer(6)});
    RecordDescriptor noContent = *right.get(), otherTag = *right.get(), shortRow = *out.get(), zero{};
    noContent.data = 0;
    otherTag.tag = TagUnion;
    shortRow.size -= 8;
    const RecordDescriptor* const keys[] = {right.get(), wide.get(), two.get(), &noContent,
                                            &otherTag,   &zero,      nullptr};
    RecordDescriptor* const rows[] = {out.get(), &shortRow, nullptr};
    for (const std::int32_t index : {-1, 0, 1, 2, 3, 5, 6, INT32_MAX}) {
        for (const RecordDescriptor* const k : keys) {
            for (RecordDescriptor* const r : rows) {
                TableRead(small.get(), index, k, r);
                const std::int32_t error = takeError();
                TableRead(big.get(), index, k, r);
                EXPECT_EQ(takeError(), error) << index;
                bool found = false, foundSmall = false;
                TableFind("NEXT", small.get(), index, k, r, foundSmall);
                const std::int32_t errorOfNext = takeError();
                TableFind("NEXT", big.get(), index, k, r, found);
                EXPECT_EQ(takeError(), errorOfNext) << index;
                EXPECT_EQ(found, foundSmall) << index;
            }
        }
    }
    for (const std::string_view op : {"NEX", "NEXTS", "N\x65XU", ""}) {
        bool found = true;
        TableFind(op, big.get(), 1, right.get(), out.get(), found);
        EXPECT_EQ(takeError(), 636) << op;
        EXPECT_FALSE(found);
    }
}

TEST_F(QuickTables, AnOutputWithoutAShapeTakesIt) {
    fill(100);
    RecordValue shapeless;
    TableRead(big.get(), 1, key(30).get(), shapeless.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(ReadAt<std::int32_t>(RecordFieldAddress(shapeless.get(), 2)), 30);
}

TEST_F(QuickTables, AnEarlierErrorStays) {
    fill(100);
    SetError(756);
    TableRead(big.get(), 1, key(30).get(), out.get());
    EXPECT_EQ(takeError(), 756);
    EXPECT_EQ(valueFound(), 10);
}

}  // namespace
