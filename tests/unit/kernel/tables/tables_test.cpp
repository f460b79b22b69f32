// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/tables.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <functional>
#include <memory>

using namespace tarn;

namespace {

// Rows of an integer, a name, a real, three characters and a free text.
Cells row(int number, const std::string& name, double weight = 0, const std::string& code = "",
          const std::string& note = "") {
    return {integer(number), text(name, 8), real(weight), characters(code, 3), text(note)};
}
const KeyMaps twoIndexes = {MakeKeyMap(1), MakeKeyMap(2)};

class Tables : public Runtime {
protected:
    void TearDown() override {
        FailAllocation(-1);
        table = TableValue();
        EXPECT_EQ(takeError(), 0);
        Runtime::TearDown();
    }
    void make(const KeyMaps& maps, std::int32_t maxlength = UNBOUNDED, const Cells& like = row(0, "")) {
        table = TableValue();
        TableInit(t(), maxlength, recordOf(like).get(), maps, "row type", false);
        ASSERT_EQ(takeError(), 0);
    }
    void add(const Cells& cells) { TableAdd(t(), TableIndexCount(t()) == 0 ? 0 : 1, recordOf(cells).get()); }
    void fill(int count) {
        for (int i = 1; i <= count; ++i) add(row(i, "n" + std::to_string(i)));
        ASSERT_EQ(takeError(), 0);
    }
    // The number in the row that was found; -1 for none.
    int find(const char* op, int index, const Cells& key) {
        RecordValue out;
        bool found = false;
        TableFind(op, t(), index, recordOf(key).get(), out.get(), found);
        return found ? static_cast<int>(cellsOf(out.get(), row(0, ""))[0].number) : -1;
    }
    // The first fields of all rows, in row order.
    std::vector<int> numbers() {
        std::vector<int> all;
        for (int n = 1; n <= TableCount(t()); ++n) {
            RecordValue out;
            TableRow(t(), n, out.get());
            all.push_back(static_cast<int>(cellsOf(out.get(), row(0, ""))[0].number));
        }
        return all;
    }
    void expectWhole() { EXPECT_EQ(AdtCheck(t(), KindTable), ""); }

    TableDescriptor* t() { return table.get(); }
    Offset headerData() { return ReadAt<RecordDescriptor>(At(t()->data)).data; }
    TableValue table;
};
using Numbers = std::vector<int>;

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

// ---- errors and their order ----

TEST_F(Tables, ErrorsComeInTheirOrder) {
    make(twoIndexes);
    fill(1);
    TableValue inFile;
    TableInit(inFile.get(), UNBOUNDED, recordOf(row(0, "")).get(), twoIndexes, "", true);
    EXPECT_EQ(AdtCheck(inFile.get(), KindTable), "");
    TableDescriptor zero{};
    ListValue list;
    ListInit(list.get(), UNBOUNDED, nullptr, KindInteger, false);
    auto* noTable = reinterpret_cast<TableDescriptor*>(list.get());
    const RecordValue good = recordOf(row(1, "n1")), otherShape = recordOf({integer(1)}),
                      key = recordOf({integer(1)}), badKey = recordOf({real(1)});
    RecordDescriptor malformed = *otherShape.get();
    malformed.size = 3;
    using Row = const RecordDescriptor*;
    using Operation = std::function<void(TableDescriptor*, Row, std::int32_t, Row)>;
    const auto reading = [](auto read) {
        return [read](TableDescriptor* table, Row like, std::int32_t n, Row key) {
            // a copy, for the row is cleared
            RecordValue out;
            RecordDescriptor bad{};
            if (like != nullptr && like->size != 3) AdtCopy(like, out.get(), KindRecord);
            if (like != nullptr && like->size == 3) bad = *like;
            RecordDescriptor* row = like == nullptr ? nullptr : bad.tag != 0 ? &bad : out.get();
            read(table, row, n, key);
        };
    };
    struct Named {
        const char* name;
        Operation run;
        bool takesKey;
    };
    const Named operations[] = {
        {"add", [](auto* t, Row r, int n, Row) { TableAdd(t, n, r); }, false},
        {"update", [](auto* t, Row r, int n, Row k) { TableUpdate(r, n, k, t); }, true},
        {"read", reading([](auto* t, auto* r, int n, Row k) { TableRead(t, n, k, r); }), true},
        {"find", reading([](auto* t, auto* r, int n, Row k) {
             bool found = true;
             TableFind("EQ", t, n, k, r, found);
             EXPECT_FALSE(found);
         }),
         true},
        {"key",
         [](auto* t, Row r, int n, Row) {
             RecordValue out;
             TableKeyFromRow(t, n, r, out.get());
         },
         false},
    };
    for (const Named& operation : operations) {
        SCOPED_TRACE(operation.name);
        const auto error = [&](TableDescriptor* table, Row r, std::int32_t n, Row k) {
            operation.run(table, r, n, k);
            return takeError();
        };
        EXPECT_EQ(error(nullptr, nullptr, 9, nullptr), 762);
        EXPECT_EQ(error(&zero, nullptr, 9, nullptr), 762);
        EXPECT_EQ(error(noTable, nullptr, 9, nullptr), 762);
        EXPECT_EQ(error(inFile.get(), nullptr, 9, nullptr), 661);
        EXPECT_EQ(error(t(), nullptr, 9, nullptr), 610);
        EXPECT_EQ(error(t(), &malformed, 9, nullptr), 610);
        EXPECT_EQ(error(t(), otherShape.get(), 9, nullptr), 611);
        for (const int n : {0, 3, 6, -1}) EXPECT_EQ(error(t(), good.get(), n, key.get()), 636);
        if (!operation.takesKey) continue;
        EXPECT_EQ(error(t(), good.get(), 1, nullptr), 636);
        EXPECT_EQ(error(t(), good.get(), 1, badKey.get()), 636);
        EXPECT_EQ(error(t(), good.get(), 2, key.get()), 636);
    }
    expectWhole();
}

TEST_F(Tables, ARowWhoseKeyIsMalformedIsRefused) {
    make(twoIndexes);
    fill(3);
    RecordValue bad = recordOf(row(9, "nine"));
    auto* name = static_cast<StringDescriptor*>(RecordFieldAddress(bad.get(), 2));
    const auto good = ReadAt<StringDescriptor>(name);
    name->length = 99;  // beyond its capacity
    TableAdd(t(), 1, bad.get());
    EXPECT_EQ(takeError(), 610);
    TableUpdate(bad.get(), 1, recordOf({integer(2)}).get(), t());
    EXPECT_EQ(takeError(), 610);
    WriteAt(name, good);
    EXPECT_EQ(numbers(), (Numbers{1, 2, 3}));
    expectWhole();
}

TEST_F(Tables, OperationsWithoutARowCheckTheirTable) {
    make(twoIndexes);
    fill(1);
    TableValue inFile;
    TableInit(inFile.get(), UNBOUNDED, recordOf(row(0, "")).get(), twoIndexes, "", true);
    TableDescriptor zero{};
    for (TableDescriptor* bad : {static_cast<TableDescriptor*>(nullptr), &zero}) {
        const std::function<void()> calls[] = {
            [&] { TableDelete(bad, 9, nullptr); },
            [&] { TableClear(bad); },
            [&] { TableRebuild(bad); },
            [&] { EXPECT_EQ(TableCount(bad), 0); },
            [&] { EXPECT_EQ(TableIndexCount(bad), 0); },
            [&] { EXPECT_EQ(TableIndexFor(bad, nullptr), 0); },
            [&] { TableRow(bad, 9, nullptr); },
        };
        for (const auto& call : calls) {
            call();
            EXPECT_EQ(takeError(), 762);
        }
        EXPECT_EQ(TableRows(bad), nullptr);
        EXPECT_EQ(TableRoot(bad, 1), nullptr);
        EXPECT_EQ(TableTypeInfo(bad), nullptr);
        EXPECT_EQ(TableKeyMap(bad, 1), 0);
        EXPECT_EQ(takeError(), 0);
    }
    TableDelete(inFile.get(), 9, nullptr);
    EXPECT_EQ(takeError(), 661);
    TableClear(inFile.get());
    EXPECT_EQ(takeError(), 661);
    TableRebuild(inFile.get());
    EXPECT_EQ(takeError(), 661);
    TableRow(inFile.get(), 1, nullptr);
    EXPECT_EQ(takeError(), 661);
    EXPECT_EQ(TableCount(inFile.get()), 0);
    EXPECT_EQ(takeError(), 661);
    EXPECT_EQ(TableIndexCount(inFile.get()), 2);
    TableDelete(t(), 6, recordOf({integer(1)}).get());
    EXPECT_EQ(takeError(), 636);
    TableDelete(t(), 1, recordOf({text("")}).get());
    EXPECT_EQ(takeError(), 636);
    EXPECT_EQ(TableRoot(t(), 0), nullptr);
    EXPECT_EQ(TableRoot(t(), 6), nullptr);
}

TEST_F(Tables, AnOlderErrorDoesNotChangeWhatIsDone) {
    make(twoIndexes);
    SetError(ERR_ASSERT);
    add(row(1, "a"));
    add(row(2, "b"));
    TableUpdate(recordOf(row(3, "c")).get(), 1, recordOf({integer(2)}).get(), t());
    add(row(1, "d"));
    TableDelete(t(), 1, recordOf({integer(1)}).get());
    EXPECT_EQ(takeError(), 687);
    EXPECT_EQ(numbers(), (Numbers{3}));
    expectWhole();
}

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

// ---- checking ----

TEST_F(Tables, CheckFindsWhatIsWrong) {
    make(twoIndexes);
    fill(7);
    const Offset root = TableRoot(t(), 1)->data;
    const Offset left = ReadAt<RecordDescriptor>(At(root) + 16).data;
    struct Damage {
        const char* what;
        void* at;
        std::int32_t value;
    };
    const Damage damages[] = {
        {"the count of the table", &t()->count, 6},
        {"the capacity of the table", &t()->maxlength, 9},
        {"a row number", At(left), 1},
        {"a row number outside", At(left), 8},
        {"a balance", At(left) + 4, 1},
        {"a reserved word", At(left) + 8, 1},
        {"a link's tag", At(left) + 20, 15},
        {"a link's size", At(left) + 16, 91},
        {"a link's kinds", At(left) + 16 + 12, 0},
        {"a cut link", At(root) + 16 + 8, 0},
        {"a key", At(left) + 88, 99},
        {"a key map", At(headerData()) + 228, 0x02000000},
        {"a third index", At(headerData()) + 236, 0x01000000},
    };
    for (const Damage& damage : damages) {
        const auto was = ReadAt<std::int32_t>(damage.at);
        WriteAt(damage.at, damage.value);
        EXPECT_NE(AdtCheck(t(), KindTable), "") << damage.what;
        WriteAt(damage.at, was);
        expectWhole();
    }
}

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
