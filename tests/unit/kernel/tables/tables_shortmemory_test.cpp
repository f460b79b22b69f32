// SPDX-License-Identifier: Apache-2.0
//
// Tables in memory when a request for memory fails, whichever it is: nothing has changed, and nothing is lost.
#include "unit/kernel/tables_fixture.h"

#include <functional>

namespace tarn {
namespace {

// ---- memory ----

// Runs an operation with the n-th request failing, for n = 0, 1, 2, ... until it succeeds.
class ShortMemory : public Tables {
protected:
    int failuresOf(const std::function<void()>& operation) {
        TableValue before;
        AdtCopy(t(), before.get(), KindTable);
        const std::int64_t blocks = LiveBlocks();
        for (int failures = 0;; ++failures) {
            FailAllocation(failures);
            operation();
            FailAllocation(-1);
            const std::int32_t error = takeError();
            if (error == 0) return failures;
            EXPECT_EQ(error, 802);
            EXPECT_EQ(LiveBlocks(), blocks);
            EXPECT_TRUE(AdtCompare("EQ", before.get(), t(), KindTable));
            expectWhole();
            if (HasFailure()) return -1;
        }
    }
    void SetUp() override {
        Tables::SetUp();
        make({MakeKeyMap(1), MakeKeyMap(2, 4), MakeKeyMap(5), MakeKeyMap(3), MakeKeyMap(4, 5)});
        for (int i = 1; i <= 12; ++i) add(rowOf(i));
    }
    static Cells rowOf(int i) {
        const std::string s = std::to_string(i);
        return row(i, "n" + s, i * 0.5, "c" + s, "note " + s);
    }
};

TEST_F(ShortMemory, AddChangesNothing) {
    const RecordValue added = recordOf(rowOf(13));
    EXPECT_GE(failuresOf([&] { TableAdd(t(), 1, added.get()); }), 10);
    EXPECT_EQ(TableCount(t()), 13);
    expectWhole();
}

TEST_F(ShortMemory, UpdateChangesNothing) {
    const RecordValue other = recordOf(rowOf(99)), key = recordOf({integer(4)});
    EXPECT_GE(failuresOf([&] { TableUpdate(other.get(), 1, key.get(), t()); }), 10);
    EXPECT_EQ(find("EQ", 1, {integer(99)}), 99);
    expectWhole();
}

TEST_F(ShortMemory, DeleteAndClearNeedNone) {
    const RecordValue key = recordOf({integer(4)});
    EXPECT_EQ(failuresOf([&] { TableDelete(t(), 1, key.get()); }), 0);
    EXPECT_EQ(TableCount(t()), 11);
    expectWhole();
    EXPECT_EQ(failuresOf([&] { TableClear(t()); }), 0);
    expectWhole();
}

TEST_F(ShortMemory, ReadingClearsItsOutput) {
    const RecordValue key = recordOf({integer(4)});
    RecordValue out = recordOf(rowOf(1));
    EXPECT_GE(failuresOf([&] {
                  TableRead(t(), 1, key.get(), out.get());
                  if (ErrorCell() != 0) out = recordOf(rowOf(1));
              }),
              0);
    EXPECT_TRUE(sameCells(cellsOf(out.get(), rowOf(4)), rowOf(4)));
    out = recordOf(row(9, "old"));
    bool found = true;
    FailAllocation(0);
    TableFind("EQ", t(), 1, key.get(), out.get(), found);
    FailAllocation(-1);
    EXPECT_FALSE(found);
    EXPECT_EQ(takeError(), 802);
    EXPECT_EQ(cellsOf(out.get(), row(0, ""))[0].number, 0);
    EXPECT_EQ(cellsOf(out.get(), row(0, ""))[1].text, "");
}

TEST_F(ShortMemory, AKeyStaysAsItWas) {
    const RecordValue from = recordOf(rowOf(4));
    const Cells old = {text("old", 9)};
    RecordValue key = recordOf(old);
    for (int n = 0;; ++n) {
        FailAllocation(n);
        TableKeyFromRow(t(), 2, from.get(), key.get());
        FailAllocation(-1);
        if (takeError() == 0) break;
        EXPECT_TRUE(sameCells(cellsOf(key.get(), old), old));
        ASSERT_LT(n, 9);
    }
    const Cells made = {text("n4"), characters("c4", 3)};
    EXPECT_TRUE(sameCells(cellsOf(key.get(), made), made));
}

TEST_F(ShortMemory, CopiesAndNewTablesAreWholeOrNothing) {
    TableValue target, source;
    AdtCopy(t(), source.get(), KindTable);
    TableDelete(source.get(), 1, recordOf({integer(3)}).get());
    const std::int64_t blocks = LiveBlocks();
    int n = 0;
    for (;; ++n) {
        FailAllocation(n);
        AdtCopy(t(), target.get(), KindTable);
        FailAllocation(-1);
        if (takeError() == 0) break;
        EXPECT_EQ(target.get()->tag, 0);
        EXPECT_EQ(LiveBlocks(), blocks);
        ASSERT_LT(n, 1000);
    }
    EXPECT_GT(n, 60);
    EXPECT_GT(failuresOf([&] { AdtCopy(source.get(), t(), KindTable); }), 60);
    EXPECT_EQ(TableCount(t()), 11);
    expectWhole();
}

TEST_F(ShortMemory, AnInitLeavesZero) {
    const RecordValue like = recordOf(row(0, ""));
    for (const std::int32_t maxlength : {std::int32_t{UNBOUNDED}, 3}) {
        TableValue made;
        const std::int64_t blocks = LiveBlocks();
        int n = 0;
        for (;; ++n) {
            FailAllocation(n);
            TableInit(made.get(), maxlength, like.get(), twoIndexes, "text", false);
            FailAllocation(-1);
            if (takeError() == 0) break;
            EXPECT_EQ(made.get()->tag, 0);
            EXPECT_EQ(LiveBlocks(), blocks);
            ASSERT_LT(n, 100);
        }
        EXPECT_GT(n, 3);
    }
}

TEST_F(ShortMemory, RebuildLeavesTheIndexesBehindEmpty) {
    for (int n = 0;; ++n) {
        FailAllocation(n);
        TableRebuild(t());
        FailAllocation(-1);
        const std::int32_t error = takeError();
        if (error == 0) break;
        EXPECT_EQ(error, 802);
        bool partial = false;
        for (int index = 1; index <= 5; ++index) {
            const std::int32_t count = IndexCount(TableRoot(t(), index), {});
            EXPECT_TRUE(partial ? count == 0 : count <= 12);
            partial = partial || count < 12;
            EXPECT_EQ(IndexHeight(TableRoot(t(), index), {}).bad, 0U);
        }
        EXPECT_TRUE(partial);
        ASSERT_LT(n, 1000);
    }
    expectWhole();
}

}  // namespace
}  // namespace tarn
