// SPDX-License-Identifier: Apache-2.0
//
// Tables in memory as values: copied, compared, and held in rows of others.
#include "unit/kernel/tables_fixture.h"

namespace tarn {
namespace {

// ---- as values ----

TEST_F(Tables, ACopyHasRowsTreesAndText) {
    make({MakeKeyMap(1), MakeKeyMap(2, 4), MakeKeyMap(5, 1)});
    fill(30);
    TableValue copy;
    AdtCopy(t(), copy.get(), KindTable);
    EXPECT_EQ(AdtCheck(copy.get(), KindTable), "");
    EXPECT_TRUE(AdtCompare("EQ", t(), copy.get(), KindTable));
    EXPECT_TRUE(AdtSameShape(t(), copy.get(), KindTable));
    EXPECT_EQ(StringView(TableTypeInfo(copy.get())), "row type");
    TableDelete(t(), 1, recordOf({integer(9)}).get());
    EXPECT_EQ(TableCount(copy.get()), 30);
    EXPECT_TRUE(AdtCompare("NE", t(), copy.get(), KindTable));
    AdtCopy(t(), copy.get(), KindTable);
    EXPECT_TRUE(AdtCompare("EQ", t(), copy.get(), KindTable));
    EXPECT_EQ(AdtCheck(copy.get(), KindTable), "");
    AdtClear(copy.get(), KindTable);
    EXPECT_EQ(TableCount(copy.get()), 0);
    EXPECT_EQ(AdtCheck(copy.get(), KindTable), "");
    EXPECT_TRUE(AdtSameShape(t(), copy.get(), KindTable));
    AdtCopy(t(), t(), KindTable);
    expectWhole();
}

TEST_F(Tables, ACopyKeepsWideCharacters) {
    CharacterWidth = 2;
    make(twoIndexes);
    fill(20);
    TableValue copy;
    AdtCopy(t(), copy.get(), KindTable);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(AdtCheck(copy.get(), KindTable), "");
    EXPECT_TRUE(AdtCompare("EQ", t(), copy.get(), KindTable));
    RecordValue out;
    TableRead(copy.get(), 2, recordOf({text("n17")}).get(), out.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(ReadAt<std::int32_t>(RecordFieldAddress(out.get(), 1)), 17);
    copy = TableValue();
    out = RecordValue();
    table = TableValue();
    CharacterWidth = 1;
}

TEST_F(Tables, ACopyMustFit) {
    make(twoIndexes);
    fill(3);
    TableValue small, big, otherKeys, otherRows;
    TableInit(small.get(), 2, recordOf(row(0, "")).get(), twoIndexes, "", false);
    TableInit(big.get(), 3, recordOf(row(0, "")).get(), twoIndexes, "", false);
    TableInit(otherKeys.get(), UNBOUNDED, recordOf(row(0, "")).get(), {MakeKeyMap(1)}, "", false);
    TableInit(otherRows.get(), UNBOUNDED, recordOf({integer(1), text("")}).get(), twoIndexes, "", false);
    AdtCopy(t(), small.get(), KindTable);
    EXPECT_EQ(takeError(), 619);
    AdtCopy(t(), otherKeys.get(), KindTable);
    EXPECT_EQ(takeError(), 762);
    AdtCopy(t(), otherRows.get(), KindTable);
    EXPECT_EQ(takeError(), 762);
    for (const TableValue* other : {&small, &otherKeys, &otherRows}) {
        EXPECT_EQ(TableCount(other->get()), 0);
        EXPECT_FALSE(AdtSameShape(t(), other->get(), KindTable));
    }
    AdtCopy(t(), big.get(), KindTable);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(TableCount(big.get()), 3);
    EXPECT_EQ(AdtCheck(big.get(), KindTable), "");
    EXPECT_TRUE(AdtCompare("EQ", t(), big.get(), KindTable));
}

TEST_F(Tables, RowsMayHoldTables) {
    make(twoIndexes);
    fill(3);
    RecordValue outerRow = recordOf({integer(1)});
    RecordAppend(outerRow.get(), t(), KindTable);
    TableValue outer, copy;
    TableInit(outer.get(), UNBOUNDED, outerRow.get(), {MakeKeyMap(1)}, "", false);
    TableAdd(outer.get(), 1, outerRow.get());
    AdtCopy(outer.get(), copy.get(), KindTable);
    EXPECT_EQ(AdtCheck(copy.get(), KindTable), "");
    EXPECT_TRUE(AdtCompare("EQ", outer.get(), copy.get(), KindTable));
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Tables, UnopenedTablesDoNotCompare) {
    make(twoIndexes);
    TableValue inFile, copy;
    TableInit(inFile.get(), UNBOUNDED, recordOf(row(0, "")).get(), twoIndexes, "", true);
    EXPECT_FALSE(AdtCompare("EQ", t(), inFile.get(), KindTable));
    EXPECT_EQ(takeError(), 661);
    AdtCopy(inFile.get(), t(), KindTable);
    EXPECT_EQ(takeError(), 661);
    AdtInit(copy.get(), inFile.get(), KindTable);
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(AdtSameShape(inFile.get(), copy.get(), KindTable));
}

TEST_F(Tables, MemoryCheckingSeesNoFault) {
    SetMemoryChecking(true);
    make({MakeKeyMap(1), MakeKeyMap(2, 4), MakeKeyMap(5, 1)});
    fill(60);
    for (int i = 1; i <= 60; i += 2) TableDelete(t(), 1, recordOf({integer(i)}).get());
    for (int i = 2; i <= 60; i += 4)
        TableUpdate(recordOf(row(i + 100, "u" + std::to_string(i))).get(), 1, recordOf({integer(i)}).get(),
                    t());
    TableValue copy;
    AdtCopy(t(), copy.get(), KindTable);
    EXPECT_EQ(takeError(), 0);
    expectWhole();
    copy = TableValue();
    table = TableValue();
    EXPECT_EQ(CountLeaks().bytes, 0);
}

}  // namespace
}  // namespace tarn
