// SPDX-License-Identifier: Apache-2.0
//
// Tables whose rows stand in a file: what the operations do, and what the files look like.
#include "kernel/run/progress.h"
#include "kernel/tables/tables_file_check.h"
#include "unit/kernel/tablesinfiles_fixture.h"

namespace tarn {
namespace {

// ---- the files ----

TEST_F(TablesInFiles, OpeningANewTableMakesItsRowsAndIndexes) {
    make({byNumber, byName, MakeKeyMap(4, 3)});
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.i3", "a.tab"}));
    EXPECT_EQ(bytes("a.tab"), "");
    for (const char* name : {"a.i1", "a.i2", "a.i3"}) EXPECT_EQ(bytes(name).size(), 1104U);
    EXPECT_EQ(bytes("a.i2").substr(8, 6), std::string("a.tab\0", 6));
    EXPECT_EQ(TableCount(t()), 0);
    EXPECT_EQ(find("FIRST", 1, {integer(0)}), -1);
    EXPECT_EQ(takeError(), 0);
    expectWhole();
}

TEST_F(TablesInFiles, OpeningANewTableDeletesOldIndexes) {
    for (const char* name :
         {"/d/a.i1", "/d/a.i2", "/d/a.i3", "/d/a.i4", "/d/a.i5", "/d/a.i6", "/d/b.i1", "/d/a.~i1"})
        files().put(name, "old");
    make({byNumber});
    EXPECT_EQ(names(), (Names{"a.i1", "a.i6", "a.tab", "b.i1"}));
    EXPECT_EQ(bytes("a.i1").size(), 1104U);
}

TEST_F(TablesInFiles, AnIndexFileHoldsTheTextOfItsKey) {
    table = closedTable({byName, MakeKeyMap(4, 1)}, UNBOUNDED, row(0, ""),
                        "number : integer\nname : string[8]\nweight : real\ncode : Tchars[1:3]\n");
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(keyText("a.i1"), "Index1 : record\n\tname : string[8]\nend record\n");
    EXPECT_EQ(keyText("a.i2"), "Index2 : record\n\tcode : Tchars[1:3]\n\tnumber : integer\nend record\n");
}

TEST_F(TablesInFiles, WithoutATypeTextTheKeysAreToldByTheirKinds) {
    make({byName, MakeKeyMap(4, 1)});
    EXPECT_EQ(keyText("a.i1"), "Index1 : record\n\tFIELD2 : string[8]\nend record\n");
    EXPECT_EQ(keyText("a.i2"), "Index2 : record\n\tFIELD4 : Tchars[1:3]\n\tFIELD1 : integer\nend record\n");
}

TEST_F(TablesInFiles, RowsAndNodesStandInTheirFilesAsTheyAre) {
    make({byNumber});
    EXPECT_EQ(add(row(258, "ab", 0, "xyz")), 0);
    const std::string zeros(8, '\0');
    EXPECT_EQ(bytes("a.tab"), std::string("\0\0\1\2\0\0\0\2ab\0\0\0\0\0\0", 16) + zeros + "xyz");
    EXPECT_EQ(bytes("a.i1").substr(1104),
              std::string("\0\0\0\1\0\0\0\0", 8) + zeros + zeros + std::string("\0\0\1\2", 4));
    EXPECT_EQ(bytes("a.i1")[1080 + 11], 1);
}

TEST_F(TablesInFiles, AFixedTableCountsInItsHeader) {
    make({byNumber, byName}, 3);
    EXPECT_EQ(bytes("a.tab"), std::string(4 + 3 * rowBytes, '\0'));
    fill(3);
    EXPECT_EQ(bytes("a.tab").substr(0, 4), std::string("\0\0\0\3", 4));
    EXPECT_EQ(add(row(4, "d")), 619);
    EXPECT_EQ(TableCount(t()), 3);
    EXPECT_EQ(remove(1, {integer(1)}), 0);
    EXPECT_EQ(numbers(), (Numbers{3, 2}));
    EXPECT_EQ(bytes("a.tab").substr(4 + 2 * rowBytes), std::string(rowBytes, '\0'));
    EXPECT_EQ(add(row(4, "d")), 0);
    EXPECT_EQ(numbers(), (Numbers{3, 2, 4}));
    expectWhole();
}

TEST_F(TablesInFiles, AnXbaseTableHoldsRowsOfCharacters) {
    const auto person = [](const std::string& name, const std::string& town) {
        return Cells{ordinal(' '), characters(name, 5), characters(town, 4)};
    };
    table = closedTable({0x02000000, 0x03020000}, UNBOUNDED, person("", ""));
    ASSERT_EQ(open("/d/p.dbf"), 0);
    EXPECT_EQ(names(), (Names{"p.dbf", "p.i1", "p.i2"}));
    EXPECT_EQ(add(person("Ann", "Rome")), 0);
    EXPECT_EQ(add(person("Bob", "Oslo")), 0);
    EXPECT_EQ(add(person("Ann", "Bonn")), 635);
    EXPECT_EQ(add(person("Cid", "Bonn")), 0);
    EXPECT_EQ(bytes("p.dbf").substr(97), " Ann  Rome Bob  Oslo Cid  Bonn");
    EXPECT_EQ(update(1, {characters("Bob", 5)}, person("Bo", "Oslo")), 0);
    EXPECT_EQ(remove(2, {characters("Rome", 4), characters("Ann", 5)}), 0);
    EXPECT_EQ(bytes("p.dbf").substr(97), " Cid  Bonn Bo   Oslo");
    expectWhole();
    close();
    ASSERT_EQ(open("/d/p.dbf"), 0);
    EXPECT_EQ(TableCount(t()), 2);
    expectWhole();
}

// ---- rows ----

TEST_F(TablesInFiles, RowsAreFoundByTheirKeys) {
    make();
    fill(20);
    EXPECT_EQ(find("EQ", 1, {integer(7)}), 7);
    EXPECT_EQ(find("equals", 2, {text("n7", 8)}), 7);
    EXPECT_EQ(find("EQ", 2, {text("n7")}), 7);
    EXPECT_EQ(find("FIRST", 1, {integer(0)}), 1);
    EXPECT_EQ(find("LAST", 2, {text("")}), 9);
    EXPECT_EQ(find("GE", 1, {integer(5)}), 5);
    EXPECT_EQ(find("LE", 1, {integer(5)}), 5);
    EXPECT_EQ(find("NEXT", 1, {integer(5)}), 6);
    EXPECT_EQ(find("GT", 2, {text("n1", 8)}), 10);
    EXPECT_EQ(find("PREVIOUS", 2, {text("n2", 8)}), 19);
    EXPECT_EQ(find("LT", 1, {integer(1)}), -1);
    EXPECT_EQ(find("GE", 1, {integer(21)}), -1);
    EXPECT_EQ(find("LE", 1, {integer(0)}), -1);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(TablesInFiles, AnAbsentKeyIsNotFoundAndReadingItIs604) {
    make();
    fill(3);
    RecordValue out = recordOf(row(9, "before"));
    bool found = true;
    TableFind("EQ", t(), 1, recordOf({integer(4)}).get(), out.get(), found);
    EXPECT_FALSE(found);
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(sameCells(cellsOf(out.get(), row(0, "")),
                          {integer(0), text("", 8), real(0), characters(std::string(3, '\0'), 3)}));
    out = recordOf(row(9, "before"));
    TableRead(t(), 1, recordOf({integer(4)}).get(), out.get());
    EXPECT_EQ(takeError(), 604);
    EXPECT_EQ(cellsOf(out.get(), row(0, ""))[0].number, 0);
    TableRead(t(), 2, recordOf({text("n3")}).get(), out.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(cellsOf(out.get(), row(0, ""))[0].number, 3);
}

TEST_F(TablesInFiles, TheKeyMayBeTheRowThatIsRead) {
    const Cells pair = {integer(0), integer(0)};
    table = closedTable({MakeKeyMap(1, 2)}, UNBOUNDED, pair);
    ASSERT_EQ(open(), 0);
    for (int i = 1; i <= 5; ++i) EXPECT_EQ(add({integer(i), integer(10 * i)}), 0);
    RecordValue both = recordOf({integer(2), integer(20)});
    bool found = false;
    TableFind("NEXT", t(), 1, both.get(), both.get(), found);
    EXPECT_TRUE(found);
    EXPECT_EQ(cellsOf(both.get(), pair)[0].number, 3);
    TableRead(t(), 1, both.get(), both.get());
    EXPECT_EQ(cellsOf(both.get(), pair)[1].number, 30);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(TablesInFiles, ARowIsReadByItsNumber) {
    make();
    fill(3);
    RecordValue out;
    TableRow(t(), 2, out.get());
    EXPECT_EQ(cellsOf(out.get(), row(0, ""))[0].number, 2);
    for (const int number : {0, 4, -1}) {
        TableRow(t(), number, out.get());
        EXPECT_EQ(takeError(), 603) << number;
        EXPECT_EQ(cellsOf(out.get(), row(0, ""))[0].number, 0);
    }
}

TEST_F(TablesInFiles, ADuplicateInAnyIndexLeavesTheTableUnchanged) {
    make();
    fill(5);
    const std::string before = bytes("a.tab"), first = bytes("a.i1"), second = bytes("a.i2");
    EXPECT_EQ(add(row(6, "n3")), 635);
    EXPECT_EQ(add(row(3, "new")), 635);
    EXPECT_EQ(update(1, {integer(5)}, row(5, "n4")), 635);
    EXPECT_EQ(update(2, {text("n5")}, row(1, "n5")), 635);
    EXPECT_EQ(bytes("a.tab"), before);
    EXPECT_EQ(bytes("a.i1"), first);
    EXPECT_EQ(bytes("a.i2"), second);
    EXPECT_EQ(TableCount(t()), 5);
    expectWhole();
}

TEST_F(TablesInFiles, UpdatingReplacesTheRowAndItsKeys) {
    make();
    fill(5);
    EXPECT_EQ(update(1, {integer(2)}, row(2, "n2", 7.5)), 0);  // no key changes
    EXPECT_EQ(update(1, {integer(3)}, row(33, "n3")), 0);      // the key that it was found by
    EXPECT_EQ(update(1, {integer(4)}, row(4, "four")), 0);     // another
    EXPECT_EQ(update(2, {text("n5")}, row(55, "five")), 0);    // both
    EXPECT_EQ(update(1, {integer(5)}, row(6, "six")), 604);
    EXPECT_EQ(numbers(), (Numbers{1, 2, 33, 4, 55}));
    EXPECT_EQ(find("EQ", 1, {integer(3)}), -1);
    EXPECT_EQ(find("EQ", 2, {text("n3")}), 33);
    EXPECT_EQ(find("EQ", 2, {text("four")}), 4);
    EXPECT_EQ(find("EQ", 1, {integer(55)}), 55);
    EXPECT_EQ(rows()[1][2].real, 7.5);
    EXPECT_EQ(bytes("a.tab").size(), 5U * rowBytes);
    expectWhole();
}

TEST_F(TablesInFiles, TheLastRowTakesThePlaceOfADeletedOne) {
    make();
    fill(3);
    EXPECT_EQ(remove(1, {integer(1)}), 0);
    EXPECT_EQ(numbers(), (Numbers{3, 2}));
    EXPECT_EQ(find("EQ", 1, {integer(3)}), 3);
    EXPECT_EQ(find("EQ", 2, {text("n3")}), 3);
    EXPECT_EQ(find("EQ", 1, {integer(1)}), -1);
    expectWhole();
    EXPECT_EQ(remove(2, {text("n2")}), 0);  // the last itself
    EXPECT_EQ(numbers(), (Numbers{3}));
    EXPECT_EQ(remove(1, {integer(2)}), 604);
    expectWhole();
    EXPECT_EQ(remove(1, {integer(3)}), 0);
    EXPECT_EQ(numbers(), Numbers());
    EXPECT_EQ(bytes("a.tab"), "");
    EXPECT_EQ(bytes("a.i1").size(), 1104U);
    EXPECT_EQ(bytes("a.i2").size(), 1104U);
    expectWhole();
}

TEST_F(TablesInFiles, ThreeKeysInOrderTurnTheTree) {
    make({byNumber});
    fill(3);
    EXPECT_EQ(bytes("a.i1")[1080 + 11], 2);
    EXPECT_EQ(bytes("a.i1").substr(1104 + 28, 8), std::string("\0\0\0\2\0\0\0\0", 8));
}

TEST_F(TablesInFiles, ClearingEmptiesRowsAndIndexes) {
    for (const std::int32_t capacity : {UNBOUNDED, 10}) {
        newDisk();
        make({byNumber, byName}, capacity);
        fill(5);
        EXPECT_EQ(clear(), 0);
        EXPECT_EQ(TableCount(t()), 0);
        EXPECT_EQ(find("FIRST", 2, {text("")}), -1);
        EXPECT_EQ(bytes("a.tab"), capacity == UNBOUNDED ? "" : std::string(4, '\0'));
        EXPECT_EQ(bytes("a.i1").size(), 1104U);
        expectWhole();
        fill(7);
        EXPECT_EQ(numbers(), (Numbers{1, 2, 3, 4, 5, 6, 7}));
        expectWhole();
        EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
        table = TableValue();
    }
}

TEST_F(TablesInFiles, RowsWithoutAnIndexAreOnlyAppended) {
    make({});
    EXPECT_EQ(names(), (Names{"a.tab"}));
    EXPECT_EQ(add(row(1, "a")), 0);
    EXPECT_EQ(add(row(1, "a")), 0);
    EXPECT_EQ(numbers(), (Numbers{1, 1}));
    expectWhole();
    EXPECT_EQ(rebuild(), 0);
    EXPECT_EQ(clear(), 0);
    EXPECT_EQ(TableCount(t()), 0);
}

TEST_F(TablesInFiles, AKeyRecordIsMadeOfARow) {
    make({byName, MakeKeyMap(4, 1)});
    const Cells keyShape = {characters("", 3), integer(0)};
    RecordValue key;
    TableKeyFromRow(t(), 2, recordOf(row(5, "a", 0, "xyz")).get(), key.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(sameCells(cellsOf(key.get(), keyShape), {characters("xyz", 3), integer(5)}));
    EXPECT_EQ(TableIndexFor(t(), key.get()), 2);
    EXPECT_EQ(TableIndexCount(t()), 2);
}

// ---- rebuilding ----

TEST_F(TablesInFiles, RebuildingMakesTheIndexesAnew) {
    make({byNumber, byName, MakeKeyMap(4, 1)});
    fill(30);
    files().put("/d/a.i1", "");
    files().put("/d/a.i2", bytes("a.i2").replace(1104, 500, 500, '\xFF'));
    EXPECT_NE(CheckTableFile(*t()), "");
    EXPECT_EQ(rebuild(), 0);
    expectWhole();
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.i3", "a.tab"}));
    EXPECT_EQ(TableCount(t()), 30);
    EXPECT_EQ(find("LAST", 2, {text("")}), 9);
}

TEST_F(TablesInFiles, RebuildingMakesIndexesThatAreGone) {
    make();
    fill(5);
    (void)files().remove("/d/a.i2");
    EXPECT_EQ(find("EQ", 2, {text("n1")}), -1);
    EXPECT_EQ(takeError(), 653);
    EXPECT_EQ(rebuild(), 0);
    expectWhole();
}

TEST_F(TablesInFiles, ADuplicateFillsTheIndexUpToItAndLeavesTheNextEmpty) {
    make({byNumber, byName, MakeKeyMap(3)});
    for (int i = 1; i <= 5; ++i) EXPECT_EQ(add(row(i, "n" + std::to_string(i), i)), 0);
    // Row 4 gets the name of row 2.
    std::string rows = bytes("a.tab");
    rows[3 * rowBytes + 9] = '2';
    files().put("/d/a.tab", rows);
    EXPECT_EQ(rebuild(), 637);
    EXPECT_EQ(bytes("a.i1").size(), 1104U + 5 * 28);
    EXPECT_EQ(bytes("a.i2").size(), 1104U + 3 * 36);
    EXPECT_EQ(bytes("a.i3").size(), 1104U);
    EXPECT_EQ(find("EQ", 2, {text("n2")}), 2);
    EXPECT_EQ(find("EQ", 2, {text("n3")}), 3);
    EXPECT_EQ(find("EQ", 2, {text("n5")}), -1);
    EXPECT_EQ(takeError(), 0);
    // Through the first index the duplicate can be updated, and others deleted.
    EXPECT_EQ(update(1, {integer(4)}, row(4, "n4", 4)), 0);
    EXPECT_EQ(remove(1, {integer(1)}), 0);
    EXPECT_EQ(numbers(), (Numbers{5, 2, 3, 4}));
    EXPECT_EQ(rebuild(), 0);
    expectWhole();
    EXPECT_EQ(find("EQ", 2, {text("n5")}), 5);
}

int stepsLeft = 0;
bool stopLater(std::int64_t done, std::int64_t total) {
    EXPECT_LE(done, total);
    return --stepsLeft > 0;
}

TEST_F(TablesInFiles, ARebuildingThatIsStoppedLeavesTheOldIndexes) {
    const Cells wide = {integer(0), text("", 40000)};
    table = closedTable({0x01000000, 0x01000000}, UNBOUNDED, wide);
    ASSERT_EQ(open(), 0);
    for (int i = 1; i <= 60; ++i) EXPECT_EQ(add({integer(i), text("", 40000)}), 0);
    const std::string before = bytes("a.i1");
    const ProgressHook hook = UseProgress(stopLater);
    for (stepsLeft = 1; stepsLeft < 4;) {
        const int steps = stepsLeft;
        EXPECT_EQ(rebuild(), 0);
        EXPECT_EQ(bytes("a.i1"), before);
        expectWhole();
        stepsLeft = steps + 1;
    }
    stepsLeft = 100;
    EXPECT_EQ(rebuild(), 0);
    EXPECT_EQ(stepsLeft, 96);
    UseProgress(hook);
    expectWhole();
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
}

// ---- indexes of other rows ----

TEST_F(TablesInFiles, ARowWithoutTheKeyOfItsNodeIs763) {
    make();
    fill(3);
    std::string rows = bytes("a.tab");
    rows[rowBytes + 3] = 9;  // row 2
    files().put("/d/a.tab", rows);
    const Rows before = this->rows();
    EXPECT_EQ(find("EQ", 1, {integer(2)}), -1);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(find("NEXT", 1, {integer(1)}), -1);
    EXPECT_EQ(takeError(), 763);
    EXPECT_EQ(update(1, {integer(2)}, row(7, "g")), 763);
    EXPECT_EQ(remove(1, {integer(2)}), 763);
    EXPECT_EQ(find("EQ", 2, {text("n2")}), 9);
    EXPECT_TRUE(same(this->rows(), before));
    EXPECT_NE(CheckTableFile(*t()), "");
    EXPECT_NE(AdtCheck(t(), KindTable), "");
    EXPECT_EQ(rebuild(), 0);
    expectWhole();
}

TEST_F(TablesInFiles, ANodeOfARowThatIsNotThereIs763) {
    for (const char number : {'\0', '\4', '\x7F'}) {
        newDisk();
        make({byNumber});
        fill(3);
        std::string index = bytes("a.i1");
        index[1104 + 28 + 3] = number;  // the node of row 2
        files().put("/d/a.i1", index);
        EXPECT_EQ(find("EQ", 1, {integer(2)}), -1);
        EXPECT_EQ(takeError(), 763);
        EXPECT_EQ(remove(1, {integer(2)}), 763);
        EXPECT_EQ(numbers(), (Numbers{1, 2, 3}));
        EXPECT_NE(CheckTableFile(*t()), "");
        table = TableValue();
    }
}

}  // namespace
}  // namespace tarn
