// SPDX-License-Identifier: Apache-2.0
//
// Tables in memory: making, filling, reading, changing and rebuilding them.
#include "kernel/lists/lists.h"
#include "unit/kernel/tables_fixture.h"

namespace tarn {
namespace {

// ---- making ----

TEST_F(Tables, AKeyMapHoldsItsFieldsFromTheTopByte) {
    EXPECT_EQ(MakeKeyMap(1), 0x01000000);
    EXPECT_EQ(MakeKeyMap(1, 2, 3, 4), 0x01020304);
    EXPECT_EQ(MakeKeyMap(48, 47), 0x302F0000);
}

TEST_F(Tables, ANewTableHoldsItsStateInTheRowHeader) {
    make({MakeKeyMap(1), MakeKeyMap(2, 3)});
    EXPECT_EQ(t()->tag, 16);
    EXPECT_EQ(t()->size, 36);
    EXPECT_EQ(t()->maxlength, UNBOUNDED);
    EXPECT_EQ(t()->count, 0);
    EXPECT_EQ(KindOf(t()), KindTable);
    const auto* header = reinterpret_cast<const RecordDescriptor*>(At(t()->data));
    constexpr int kinds[] = {11, 6, 7, 7, 7, 7, 7, 3, 3, 3, 3, 3};
    EXPECT_EQ(RecordFieldCount(header), 12);
    for (int n = 1; n <= 12; ++n) EXPECT_EQ(RecordFieldKind(header, n), kinds[n - 1]);
    EXPECT_EQ(RecordFieldAddress(header, RowsField), TableRows(t()));
    EXPECT_EQ(RecordFieldAddress(header, TypeInfoField), TableTypeInfo(t()));
    for (int n = 1; n <= 5; ++n)
        EXPECT_EQ(RecordFieldAddress(header, FirstRootField + n - 1), TableRoot(t(), n));
    EXPECT_EQ(ReadAt<std::int32_t>(RecordFieldAddress(header, FirstKeyMapField + 1)), 0x02030000);
    EXPECT_EQ(TableKeyMap(t(), 1), 0x01000000);
    EXPECT_EQ(TableKeyMap(t(), 3), 0);
    EXPECT_EQ(TableIndexCount(t()), 2);
    EXPECT_EQ(StringView(TableTypeInfo(t())), "row type");
    EXPECT_EQ(StringMaxLength(TableTypeInfo(t())), 32768);
    expectWhole();
}

TEST_F(Tables, WhatCannotBeATableIsRefused) {
    const RecordValue good = recordOf(row(0, ""));
    RecordValue other, dynamic;
    RecordInit(other.get(), TagRecord, MakeFieldKinds({KindSet, KindInteger}));
    ArrayValue free;
    ArrayInitDynamic(free.get(), KindEnum, nullptr);
    ArrayRedim(free.get(), 1, 5, false);
    RecordInit(dynamic.get(), TagRecord, {});
    RecordAppend(dynamic.get(), free.get(), KindArray);
    RecordDescriptor zero{}, unionRow = *good.get();
    unionRow.tag = TagUnion;
    struct Case {
        const char* what;
        const RecordDescriptor* prototype;
        std::int32_t maxlength;
        KeyMaps maps;
    };
    const Case cases[] = {
        {"no prototype", nullptr, UNBOUNDED, twoIndexes},
        {"a prototype without a shape", &zero, UNBOUNDED, twoIndexes},
        {"a union", &unionRow, UNBOUNDED, twoIndexes},
        {"no capacity", good.get(), 0, twoIndexes},
        {"a negative capacity", good.get(), -1, twoIndexes},
        {"a field that is not there", good.get(), UNBOUNDED, {MakeKeyMap(6)}},
        {"a field beyond all", good.get(), UNBOUNDED, {MakeKeyMap(49)}},
        {"a field number that is none", good.get(), UNBOUNDED, {MakeKeyMap(257)}},
        {"a negative field number", good.get(), UNBOUNDED, {MakeKeyMap(1, -255)}},
        {"a gap in a map", good.get(), UNBOUNDED, {0x01000200}},
        {"a map that begins with 0", good.get(), UNBOUNDED, {0x00010000}},
        {"a gap between maps", good.get(), UNBOUNDED, {0, MakeKeyMap(1)}},
        {"a field that is no key", other.get(), UNBOUNDED, {MakeKeyMap(1)}},
        {"an array without fixed bounds", dynamic.get(), UNBOUNDED, {MakeKeyMap(1)}},
    };
    for (const Case& c : cases) {
        TableInit(t(), c.maxlength, c.prototype, c.maps, "", false);
        EXPECT_EQ(takeError(), 762) << c.what;
        EXPECT_EQ(t()->tag, 0);
    }
    TableInit(nullptr, UNBOUNDED, good.get(), twoIndexes, "", false);
    EXPECT_EQ(takeError(), 762);
}

TEST_F(Tables, ATypeTextThatIsTooLongIsCut) {
    TableInit(t(), UNBOUNDED, recordOf(row(0, "")).get(), twoIndexes, std::string(32769, 'x'), false);
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(StringLength(TableTypeInfo(t())), 32768);
    add(row(1, "a"));
    expectWhole();
}

// ---- adding ----

TEST_F(Tables, RowsAreFoundByEachIndex) {
    make(twoIndexes);
    fill(20);
    EXPECT_EQ(TableCount(t()), 20);
    EXPECT_EQ(t()->count, 20);
    for (int i = 1; i <= 20; ++i) {
        EXPECT_EQ(find("EQ", 1, {integer(i)}), i);
        EXPECT_EQ(find("EQ", 2, {text("n" + std::to_string(i))}), i);
    }
    expectWhole();
}

TEST_F(Tables, ADuplicateInAnyIndexLeavesTheTableUnchanged) {
    make(twoIndexes);
    fill(9);
    const Cells duplicates[] = {row(5, "fresh"), row(99, "n5"), row(5, "n6")};
    for (const Cells& duplicate : duplicates) {
        add(duplicate);
        EXPECT_EQ(takeError(), 635);
        EXPECT_EQ(TableCount(t()), 9);
        EXPECT_EQ(find("EQ", 1, {integer(99)}), -1);
        EXPECT_EQ(find("EQ", 2, {text("fresh")}), -1);
        expectWhole();
    }
}

TEST_F(Tables, AFixedTableTakesNoMoreThanItsCapacity) {
    make(twoIndexes, 2);
    fill(2);
    add(row(3, "c"));
    EXPECT_EQ(takeError(), 619);
    add(row(1, "n1"));  // full comes before duplicate
    EXPECT_EQ(takeError(), 619);
    TableAdd(t(), 9, recordOf(row(3, "c")).get());  // and before the number of the index
    EXPECT_EQ(takeError(), 619);
    EXPECT_EQ(numbers(), (Numbers{1, 2}));
    expectWhole();
    TableDelete(t(), 1, recordOf({integer(1)}).get());
    add(row(3, "n1"));
    EXPECT_EQ(numbers(), (Numbers{2, 3}));
    TableClear(t());
    EXPECT_EQ(TableCount(t()), 0);
    expectWhole();
    fill(2);
    expectWhole();
}

TEST_F(Tables, ATableWithoutAnIndexOnlyTakesRows) {
    make({});
    EXPECT_EQ(TableIndexCount(t()), 0);
    for (int i = 0; i < 3; ++i) add(row(7, "same"));
    EXPECT_EQ(numbers(), (Numbers{7, 7, 7}));
    TableAdd(t(), 1, recordOf(row(7, "same")).get());
    EXPECT_EQ(takeError(), 636);
    expectWhole();
}

// ---- reading ----

TEST_F(Tables, AnAbsentKeyIsNotFound) {
    make(twoIndexes);
    fill(3);
    RecordValue out = recordOf(row(1, "x", 1, "abc", "old"));
    bool found = true;
    TableFind("EQ", t(), 1, recordOf({integer(9)}).get(), out.get(), found);
    EXPECT_FALSE(found);
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(sameCells(cellsOf(out.get(), row(0, "")),
                          {integer(0), text(""), real(0), characters(std::string(3, '\0'), 3), text("")}));
    putCells(row(1, "x", 1, "abc", "old"), out.get());
    TableRead(t(), 1, recordOf({integer(9)}).get(), out.get());
    EXPECT_EQ(takeError(), 604);
    EXPECT_EQ(cellsOf(out.get(), row(0, ""))[4].text, "");
}

TEST_F(Tables, ReadGivesTheWholeRow) {
    make(twoIndexes);
    const Cells whole = row(5, "five", 5.5, "abc", "a note that is long");
    add(whole);
    RecordValue out;
    TableRead(t(), 2, recordOf({text("five")}).get(), out.get());
    EXPECT_TRUE(sameCells(cellsOf(out.get(), whole), whole));
    putCells(row(0, ""), out.get());
    TableRow(t(), 1, out.get());
    EXPECT_TRUE(sameCells(cellsOf(out.get(), whole), whole));
}

TEST_F(Tables, OperatorsGiveNeighboursInKeyOrder) {
    make(twoIndexes);
    for (const int i : {30, 10, 20}) add(row(i, std::to_string(i)));
    struct Case {
        const char* op;
        int key, number;
    };
    constexpr Case cases[] = {{"first", 0, 10},     {"LAST", 0, 30},      {"NEXT", 10, 20}, {"NEXT", 30, -1},
                              {"PREVIOUS", 10, -1}, {"PREVIOUS", 30, 20}, {"GE", 11, 20},   {"GE", 31, -1},
                              {"LE", 29, 20},       {"LE", 9, -1},        {"GT", 20, 30},   {"LT", 20, 10},
                              {"EQUALS", 20, 20}};
    for (const Case& c : cases) EXPECT_EQ(find(c.op, 1, {integer(c.key)}), c.number) << c.op << c.key;
    RecordValue out;
    bool found = false;
    TableFind("FIRST", t(), 1, nullptr, out.get(), found);
    EXPECT_TRUE(found);
    TableFind("MIDDLE", t(), 1, recordOf({integer(1)}).get(), out.get(), found);
    EXPECT_FALSE(found);
    EXPECT_EQ(takeError(), 636);
}

TEST_F(Tables, ARowNumberOutsideTheTableIsAnError) {
    make(twoIndexes);
    fill(2);
    for (const int number : {0, 3, -1}) {
        RecordValue out = recordOf(row(1, "x"));
        TableRow(t(), number, out.get());
        EXPECT_EQ(takeError(), 603);
        EXPECT_EQ(cellsOf(out.get(), row(0, ""))[1].text, "");
    }
}

// ---- updating ----

TEST_F(Tables, UpdateMovesOnlyKeysThatChange) {
    make(twoIndexes);
    fill(5);
    TableUpdate(recordOf(row(3, "n3", 2.5, "new")).get(), 1, recordOf({integer(3)}).get(), t());
    TableUpdate(recordOf(row(40, "n4")).get(), 2, recordOf({text("n4")}).get(), t());
    TableUpdate(recordOf(row(50, "fifty")).get(), 1, recordOf({integer(5)}).get(), t());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(numbers(), (Numbers{1, 2, 3, 40, 50}));
    EXPECT_EQ(find("EQ", 1, {integer(4)}), -1);
    EXPECT_EQ(find("EQ", 1, {integer(40)}), 40);
    EXPECT_EQ(find("EQ", 2, {text("n5")}), -1);
    EXPECT_EQ(find("EQ", 2, {text("fifty")}), 50);
    expectWhole();
}

TEST_F(Tables, UpdateRefusesTheKeyOfAnotherRow) {
    make(twoIndexes);
    fill(5);
    TableUpdate(recordOf(row(30, "n4")).get(), 1, recordOf({integer(3)}).get(), t());
    EXPECT_EQ(takeError(), 635);
    TableUpdate(recordOf(row(4, "new")).get(), 1, recordOf({integer(3)}).get(), t());
    EXPECT_EQ(takeError(), 635);
    EXPECT_EQ(numbers(), (Numbers{1, 2, 3, 4, 5}));
    EXPECT_EQ(find("EQ", 1, {integer(30)}), -1);
    EXPECT_EQ(find("EQ", 2, {text("new")}), -1);
    expectWhole();
    TableUpdate(recordOf(row(9, "n9")).get(), 1, recordOf({integer(8)}).get(), t());
    EXPECT_EQ(takeError(), 604);
}

TEST_F(Tables, ARowOfTheTableCanBeItsOwnUpdate) {
    make(twoIndexes);
    fill(3);
    auto* own = static_cast<RecordDescriptor*>(ListRef(TableRows(t()), 2));
    TableUpdate(own, 1, recordOf({integer(2)}).get(), t());
    EXPECT_EQ(takeError(), 0);
    TableUpdate(own, 1, recordOf({integer(1)}).get(), t());
    EXPECT_EQ(takeError(), 635);
    TableAdd(t(), 1, own);
    EXPECT_EQ(takeError(), 635);
    expectWhole();
    make({});
    fill(1);
    TableAdd(t(), 0, static_cast<RecordDescriptor*>(ListRef(TableRows(t()), 1)));
    EXPECT_EQ(numbers(), (Numbers{1, 1}));
}

// ---- deleting ----

TEST_F(Tables, TheLastRowFillsTheHole) {
    make(twoIndexes);
    fill(3);
    TableDelete(t(), 1, recordOf({integer(1)}).get());
    EXPECT_EQ(numbers(), (Numbers{3, 2}));
    EXPECT_EQ(t()->count, 2);
    EXPECT_EQ(find("EQ", 1, {integer(3)}), 3);
    EXPECT_EQ(find("EQ", 2, {text("n3")}), 3);
    EXPECT_EQ(find("EQ", 1, {integer(1)}), -1);
    expectWhole();
    TableDelete(t(), 2, recordOf({text("n2")}).get());
    EXPECT_EQ(numbers(), (Numbers{3}));
    TableDelete(t(), 2, recordOf({text("n2")}).get());
    EXPECT_EQ(takeError(), 604);
    TableDelete(t(), 2, recordOf({text("n3")}).get());
    EXPECT_EQ(TableCount(t()), 0);
    EXPECT_EQ(TableRoot(t(), 1)->data, 0U);
    expectWhole();
}

TEST_F(Tables, TheMovedRowLeavesTheTreesAndComesAgain) {
    make({MakeKeyMap(1)});
    for (const int i : {4, 3, 5, 2}) add(row(i, ""));  // 4, left 3 with 2 below
    TableDelete(t(), 1, recordOf({integer(5)}).get());
    String picture;
    IndexPrint(TableRoot(t(), 1), {}, picture.get());
    EXPECT_EQ(picture.view(), "|-[2 0]\n[3 0]\n|-[4 0]");
    EXPECT_EQ(numbers(), (Numbers{4, 3, 2}));
    expectWhole();
}

TEST_F(Tables, ClearKeepsTheShape) {
    make(twoIndexes);
    fill(5);
    TableClear(t());
    EXPECT_EQ(TableCount(t()), 0);
    EXPECT_EQ(t()->count, 0);
    EXPECT_EQ(TableIndexCount(t()), 2);
    expectWhole();
    fill(5);
    expectWhole();
}

// ---- rebuilding ----

TEST_F(Tables, RebuildMakesTheIndexesAnew) {
    make(twoIndexes);
    fill(10);
    IndexClear(TableRoot(t(), 2), {});
    IndexDelete(TableRoot(t(), 1), {}, recordOf({integer(4)}).get());
    EXPECT_NE(AdtCheck(t(), KindTable), "");
    TableRebuild(t());
    EXPECT_EQ(takeError(), 0);
    expectWhole();
}

TEST_F(Tables, RebuildStopsAtADuplicate) {
    make({MakeKeyMap(1), MakeKeyMap(2), MakeKeyMap(1, 2)});
    fill(5);
    auto* fourth = static_cast<RecordDescriptor*>(ListRef(TableRows(t()), 4));
    StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(fourth, 2)), "n2");
    TableRebuild(t());
    EXPECT_EQ(takeError(), 637);
    EXPECT_EQ(IndexCount(TableRoot(t(), 1), {}), 5);
    EXPECT_EQ(IndexCount(TableRoot(t(), 2), {}), 3);
    EXPECT_EQ(IndexCount(TableRoot(t(), 3), {}), 0);
}

TEST_F(Tables, ADuplicateThatStopsARebuildCanBeMended) {
    for (const bool remove : {true, false}) {
        make(twoIndexes);
        fill(5);
        auto* fourth = static_cast<RecordDescriptor*>(ListRef(TableRows(t()), 4));
        StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(fourth, 2)), "n2");
        TableRebuild(t());
        EXPECT_EQ(takeError(), 637);
        const RecordValue key = recordOf({integer(4)});
        if (remove)
            TableDelete(t(), 1, key.get());
        else
            TableUpdate(recordOf(row(4, "n4")).get(), 1, key.get(), t());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(find("EQ", 2, {text("n2")}), 2);  // the row that came first keeps its entry
        TableRebuild(t());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(numbers(), remove ? (Numbers{1, 2, 3, 5}) : (Numbers{1, 2, 3, 4, 5}));
        expectWhole();
    }
}

TEST_F(Tables, ADamagedTreeIsNeitherCopiedNorFreedTwice) {
    for (const int at : {52, 16}) {
        make({MakeKeyMap(1)});
        fill(7);
        const std::int64_t blocks = LiveBlocks();
        const RecordDescriptor top = *TableRoot(t(), 1);
        const auto was = ReadAt<RecordDescriptor>(At(top.data) + at);
        WriteAt(At(top.data) + at, top);  // a circle
        TableValue copy;
        AdtCopy(t(), copy.get(), KindTable);
        EXPECT_EQ(takeError(), 763);
        EXPECT_EQ(copy.get()->tag, 0);
        EXPECT_EQ(LiveBlocks(), blocks);
        WriteAt(At(top.data) + at, was);
        expectWhole();
    }
}

// ---- keys ----

TEST_F(Tables, AnIndexIsFoundForAKey) {
    make({MakeKeyMap(1), MakeKeyMap(2), MakeKeyMap(2, 1), MakeKeyMap(4), MakeKeyMap(5)});
    EXPECT_EQ(TableIndexFor(t(), recordOf({integer(1)}).get()), 1);
    EXPECT_EQ(TableIndexFor(t(), recordOf({text("")}).get()), 2);  // the first of two
    EXPECT_EQ(TableIndexFor(t(), recordOf({text(""), integer(1)}).get()), 3);
    EXPECT_EQ(TableIndexFor(t(), recordOf({characters("", 3)}).get()), 4);
    EXPECT_EQ(TableIndexFor(t(), recordOf({characters("", 4)}).get()), 0);
    EXPECT_EQ(TableIndexFor(t(), recordOf({real(1)}).get()), 0);
    EXPECT_EQ(TableIndexFor(t(), nullptr), 0);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Tables, AKeyIsBuiltFromARow) {
    make({MakeKeyMap(4, 2, 1, 3)});
    const RecordValue from = recordOf(row(7, "seven", 7.5, "abc"));
    RecordValue key;
    TableKeyFromRow(t(), 1, from.get(), key.get());
    const Cells expected = {characters("abc", 3), text("seven", 8), integer(7), real(7.5)};
    EXPECT_EQ(RecordFieldCount(key.get()), 4);
    EXPECT_TRUE(sameCells(cellsOf(key.get(), expected), expected));
    EXPECT_EQ(AdtCheck(key.get(), KindRecord), "");
    RecordValue other = recordOf({real(1), text("x")});
    TableKeyFromRow(t(), 1, from.get(), other.get());
    EXPECT_TRUE(sameCells(cellsOf(other.get(), expected), expected));
    EXPECT_EQ(takeError(), 0);
}

}  // namespace
}  // namespace tarn
