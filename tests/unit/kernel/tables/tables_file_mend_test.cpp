// SPDX-License-Identifier: Apache-2.0
//
// What checks and mends the files of tables: torn rows, rows that stand twice, noted rows, wrong counts, indexes of
// other rows.
#include "kernel/index/index_file.h"
#include "kernel/run/progress.h"
#include "kernel/tables/tables_file_note.h"
#include "unit/kernel/mendedtables_fixture.h"

#include <algorithm>
#include <functional>

namespace tarn {
namespace {

using os::FileError;

// ---- mending rows ----

TEST_F(MendedTables, AWholeTableStaysAsItIs) {
    closedWith(5);
    const std::string rows = bytes("a.tab");
    const RebuiltTable result = mend();
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.rows, 5);
    EXPECT_EQ(result.mended.bytesCut, 0);
    EXPECT_EQ(result.mended.rowWritten, 0);
    EXPECT_EQ(result.rowDropped, 0);
    EXPECT_EQ(bytes("a.tab"), rows);
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
    expectRows({1, 2, 3, 4, 5});
}

TEST_F(MendedTables, ATornLastRowIsCutOff) {
    for (int torn = 1; torn < rowBytes; ++torn) {
        closedWith(3);
        put("a.tab", bytes("a.tab") + std::string(static_cast<std::size_t>(torn), 'x'));
        EXPECT_EQ(open(), 655);
        const RebuiltTable result = mend();
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(result.mended.bytesCut, torn);
        EXPECT_EQ(result.rows, 3);
        expectRows({1, 2, 3});
    }
}

TEST_F(MendedTables, ALastRowThatIsAnEarlierOneAgainIsDropped) {
    closedWith(4);
    put("a.tab", bytes("a.tab") + rowOf(2));
    EXPECT_EQ(open(), 656);
    const RebuiltTable result = mend();
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.rows, 4);
    EXPECT_EQ(result.rowDropped, 5);
    EXPECT_EQ(result.sameAs, 2);
    expectRows({1, 2, 3, 4});
}

TEST_F(MendedTables, OnlyTheLastRowIsDroppedAndOnlyOnce) {
    closedWith(3);
    put("a.tab", bytes("a.tab") + rowOf(2) + rowOf(1));
    const RebuiltTable result = mend();
    EXPECT_EQ(result.error, 637);
    EXPECT_EQ(result.rowDropped, 5);
    EXPECT_EQ(result.sameAs, 1);
    EXPECT_EQ(result.rows, 4);
    ASSERT_EQ(result.duplicates.size(), 2U);  // one for each index
    EXPECT_EQ(result.duplicates[0].row, 4);
    EXPECT_EQ(result.duplicates[0].first, 2);
}

TEST_F(MendedTables, WithoutAnIndexEqualRowsStay) {
    closedWith(2, {});
    put("a.tab", bytes("a.tab") + rowOf(2));
    EXPECT_EQ(mend().rows, 3);
    expectRows({1, 2, 2});
}

TEST_F(MendedTables, OtherDuplicatesAreReportedAndStay) {
    closedWith(6);
    // Rows 3 and 5 get the number of row 1, row 6 the name of row 2.
    std::string rows = bytes("a.tab");
    rows[2 * rowBytes + 3] = rows[4 * rowBytes + 3] = 1;
    rows[5 * rowBytes + 9] = '2';
    put("a.tab", rows);
    const RebuiltTable result = mend();
    EXPECT_EQ(result.error, 637);
    EXPECT_EQ(result.rows, 6);
    EXPECT_EQ(result.rowDropped, 0);
    ASSERT_EQ(result.duplicates.size(), 3U);
    const DuplicateKey expected[] = {{1, 3, 1}, {1, 5, 1}, {2, 6, 2}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(result.duplicates[i].index, expected[i].index);
        EXPECT_EQ(result.duplicates[i].row, expected[i].row);
        EXPECT_EQ(result.duplicates[i].first, expected[i].first);
    }
    EXPECT_EQ(bytes("a.tab"), rows);
    EXPECT_EQ(open(), 656);
}

TEST_F(MendedTables, ManyDuplicatesAreNotAllToldOf) {
    closedWith(1);
    std::string rows;
    for (int i = 0; i < 1200; ++i) rows += rowOf(1).replace(12, 1, 1, static_cast<char>(i));
    put("a.tab", rows);
    const RebuiltTable result = mend();
    EXPECT_EQ(result.error, 637);
    EXPECT_EQ(result.duplicates.size(), RebuiltTable::MostDuplicates);
}

TEST_F(MendedTables, ARowThatCannotBeReadIsToldOf) {
    closedWith(4);
    std::string rows = bytes("a.tab");
    rows[2 * rowBytes + 7] = 100;  // the length of the name in row 3
    put("a.tab", rows);
    const std::string index = bytes("a.i1");
    const RebuiltTable result = mend();
    EXPECT_EQ(result.error, 651);
    EXPECT_EQ(result.badRow, 3);
    EXPECT_EQ(bytes("a.i1"), index);
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
}

TEST_F(MendedTables, FilesOfAnInterruptedExchangeGo) {
    closedWith(3);
    for (const char* name : {"a.~i1", "a.~i2", "a.~n1", "a.~n2"}) put(name, "left over");
    (void)files().remove("/d/a.i1");
    EXPECT_EQ(open(), 656);
    EXPECT_EQ(mend().error, 0);
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
    expectRows({1, 2, 3});
}

// A death has left an index without its header, beside the one that stepped aside and alone knows the key.
TEST_F(MendedTables, TheIndexThatSteppedAsideStaysUntilANewOneHasItsHeader) {
    const auto knowsKey = [this](const std::string& name) {
        const Names all = names();
        return std::find(all.begin(), all.end(), name) != all.end() &&
               bytes(name).size() >= std::size_t{IndexHeaderBytes};
    };
    bool died = true;
    for (int call = 1; died && !HasFailure(); ++call) {
        SCOPED_TRACE(call);
        closedWith(3);
        put("a.~i1", bytes("a.i1"));
        put("a.i1", "");
        files().dieAt(call);
        try {
            died = false;
            EXPECT_EQ(RebuildTableFile(*t(), "/d/a.tab").error, 0);
        } catch (const os::ProcessDeath&) {
            died = true;
            abandon();
            takeError();
        }
        files().revive();
        EXPECT_TRUE(knowsKey("a.i1") || knowsKey("a.~i1"));
        EXPECT_EQ(mend().error, 0);
        EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
    }
}

TEST_F(MendedTables, ACountThatCannotBeIsSetRight) {
    struct Case {
        const char* count;
        int rows;
        bool set;
    };
    const Case cases[] = {
        {"\0\0\0\3", 3, false},  {"\0\0\0\2", 2, false},  {"\0\0\0\4", 4, false}, {"\0\0\0\7", 3, true},
        {"\x7F\0\0\3", 3, true}, {"\xFF\0\0\3", 3, true}, {"\0\0\0\0", 0, false},
    };
    for (const Case& c : cases) {
        closedWith(3, {byNumber}, 5);
        std::string rows = bytes("a.tab");
        rows.replace(0, 4, c.count, 4);
        put("a.tab", rows);
        const RebuiltTable result = mend();
        EXPECT_EQ(result.error, 0) << c.rows;
        EXPECT_EQ(result.mended.countSet, c.set);
        EXPECT_EQ(result.rows, c.rows);
    }
}

TEST_F(MendedTables, AFixedFileThatIsTornIsAsLongAsItsRows) {
    closedWith(3, {byNumber}, 5);
    const std::string rows = bytes("a.tab");
    for (std::size_t size = 0; size < rows.size(); ++size) {
        put("a.tab", rows.substr(0, size));
        const RebuiltTable result = mend();
        EXPECT_EQ(result.error, 0);
        const auto whole = static_cast<std::int32_t>((std::max<std::size_t>(size, 4) - 4) / rowBytes);
        EXPECT_EQ(result.rows, std::min(whole, size < 4 ? 0 : 3)) << size;
        ASSERT_EQ(open(), 0) << size;
        expectWhole();
        EXPECT_EQ(add(row(100, "new")), 0);
        expectWhole();
        close();
    }
}

TEST_F(MendedTables, AnXbaseFileKeepsItsCountWhereItCan) {
    const Cells like = {ordinal(' '), characters("", 5)};
    const auto make = [&] {
        newDisk();
        table = closedTable({0x02000000}, UNBOUNDED, like);
        ASSERT_EQ(open("/d/p.dbf"), 0);
        for (const char* name : {"Ann", "Bob", "Cid"}) EXPECT_EQ(add({ordinal(' '), characters(name, 5)}), 0);
        close();
    };
    struct Case {
        const char* what;
        std::function<void(std::string&)> change;
        std::int32_t rows;
    };
    const Case cases[] = {
        {"as it is", [](std::string&) {}, 3},
        {"a row less", [](std::string& file) { file[4] = 2; }, 2},
        {"a row more than there are", [](std::string& file) { file[4] = 4; }, 3},
        {"half a row", [](std::string& file) { file += " Di"; }, 3},
        {"the end mark", [](std::string& file) { file += '\x1A'; }, 3},
        {"another byte", [](std::string& file) { file += 'x'; }, 3},
        {"a blank", [](std::string& file) { file += ' '; }, 3},
        {"a torn row that counts", [](std::string& file) { file.resize(file.size() - 2); }, 2},
    };
    for (const Case& c : cases) {
        make();
        std::string file = bytes("p.dbf");
        c.change(file);
        put("p.dbf", file);
        EXPECT_EQ(mend("/d/p.dbf").error, 0) << c.what;
        ASSERT_EQ(open("/d/p.dbf"), 0) << c.what;
        EXPECT_EQ(TableCount(t()), c.rows) << c.what;
        expectWhole();
        close();
    }
}

TEST_F(MendedTables, ATornByteOfAnXbaseFileIsToldAndTheEndMarkStays) {
    for (const char last : {'\x1A', 'x', ' ', '*'}) {
        newDisk();
        table = closedTable({0x02000000}, UNBOUNDED, {ordinal(' '), characters("", 5)});
        ASSERT_EQ(open("/d/p.dbf"), 0);
        ASSERT_EQ(add({ordinal(' '), characters("Ann", 5)}), 0);
        close();
        const std::string whole = bytes("p.dbf");
        put("p.dbf", whole + last);
        EXPECT_EQ(mend("/d/p.dbf").mended.bytesCut, last == '\x1A' ? 0 : 1);
        EXPECT_EQ(bytes("p.dbf"), last == '\x1A' ? whole + last : whole);
    }
}

TEST_F(MendedTables, RowsBehindTheCountAreTakenInWhenTheyAreAskedForAndTheFileIsMended) {
    table = closedTable({0x02000000}, UNBOUNDED, {ordinal(' '), characters("", 5)});
    ASSERT_EQ(open("/d/p.dbf"), 0);
    for (const char* name : {"Ann", "Bob", "Cid"}) EXPECT_EQ(add({ordinal(' '), characters(name, 5)}), 0);
    close();
    std::string file = bytes("p.dbf");
    file[4] = 1;
    put("p.dbf", file);
    std::string index = bytes("p.i1");
    put("p.i1", index.replace(8, 5, "p.xbf"));
    put("p.xbf", file);
    EXPECT_EQ(RebuildTableFile(*t(), "/d/p.dbf", 3).error, 656);  // refused: the count is as it was
    EXPECT_EQ(bytes("p.dbf"), file);
    files().remove("/d/p.xbf");
    for (const auto& [asked, taken] : {std::pair(1, 0), {2, 1}, {3, 2}, {9, 2}, {-1, 0}}) {
        put("p.dbf", file);
        const RebuiltTable result = RebuildTableFile(*t(), "/d/p.dbf", asked);
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(result.mended.rowsTaken, taken);
        EXPECT_EQ(result.rows, 1 + taken);
        EXPECT_FALSE(result.mended.countSet);
        ASSERT_EQ(open("/d/p.dbf"), 0);
        expectWhole();
        close();
    }
}

TEST_F(MendedTables, WhatCannotBeMendedSaysWhy) {
    closedWith(2);
    EXPECT_EQ(mend("/d/none.tab").error, 653);
    EXPECT_EQ(mend("").error, 661);
    EXPECT_EQ(mend("/d/").error, 657);
    files().putFolder("/d/f.tab");
    EXPECT_EQ(mend("/d/f.tab").error, 657);
    put("x.dbf", "no header");
    EXPECT_NE(mend("/d/x.dbf").error, 0);
    EXPECT_EQ(bytes("x.dbf"), "no header");
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(RebuildTableFile(*t(), "/d/a.tab").error, 764);
    EXPECT_TRUE(FileExists(t(), KindTable));
    close();
    table = TableValue();
    EXPECT_EQ(RebuildTableFile(*t(), "/d/a.tab").error, 762);
    TableInit(t(), UNBOUNDED, recordOf(row(0, "")).get(), {byNumber}, "", false);
    EXPECT_EQ(RebuildTableFile(*t(), "/d/a.tab").error, 660);
    SetError(601);
    EXPECT_EQ(RebuildTableFile(*t(), "/d/a.tab").error, 660);
    EXPECT_EQ(takeError(), 601);
}

TEST_F(MendedTables, AListIsMendedToo) {
    ListValue list;
    ListInit(list.get(), UNBOUNDED, nullptr, KindInteger, true);
    put("l.tab", std::string("\0\0\0\1\0\0\0\2\0", 9));
    FileOpen(list.get(), KindList, "/d/l.tab");
    EXPECT_EQ(takeError(), 655);
    const MendedRows result = MendRows(*list.get(), "/d/l.tab");
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.rows, 2);
    EXPECT_EQ(result.bytesCut, 1);
    FileOpen(list.get(), KindList, "/d/l.tab");
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(ListCount(list.get()), 2);
}

bool stopAtOnce(std::int64_t, std::int64_t) {
    return false;
}

TEST_F(MendedTables, AMendingThatIsStoppedLeavesTheOldIndexes) {
    const Cells wide = {integer(0), text("", 100000)};
    table = closedTable({byNumber}, UNBOUNDED, wide);
    ASSERT_EQ(open(), 0);
    for (int i = 1; i <= 12; ++i) EXPECT_EQ(add({integer(i), text("", 100000)}), 0);
    close();
    const std::string before = bytes("a.i1");
    const ProgressHook hook = UseProgress(stopAtOnce);
    const RebuiltTable result = mend();
    UseProgress(hook);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(bytes("a.i1"), before);
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab"}));
    EXPECT_EQ(open(), 0);
}

// ---- notes ----

TEST_F(MendedTables, ARowThatWasNotedIsWritten) {
    closedWith(3);
    const std::string before = bytes("a.tab");
    // What stands behind the rows while row 2 is written.
    ASSERT_EQ(open(), 0);
    dieWithNote({integer(2)}, row(2, "n2", 9.5), row(2, "n2"), rowBytes);
    const std::string noted = bytes("a.tab");
    ASSERT_EQ(noted.substr(0, before.size()), before);
    ASSERT_EQ(noted.size(), before.size() + rowBytes + 29);
    EXPECT_EQ(open(), 655);
    const RebuiltTable result = mend();
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.mended.rowWritten, 2);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(rows()[1][2].real, 9.5);
    expectWhole();
    close();
    for (std::size_t size = before.size(); size < noted.size(); ++size) {
        put("a.tab", noted.substr(0, size));
        const RebuiltTable torn = mend();
        EXPECT_EQ(torn.error, 0);
        EXPECT_EQ(torn.mended.rowWritten, 0) << size;
        EXPECT_EQ(bytes("a.tab"), before) << size;
    }
    for (std::size_t at = before.size(); at < noted.size(); ++at) {
        std::string flipped = noted;
        flipped[at] = static_cast<char>(flipped[at] ^ 4);
        put("a.tab", flipped);
        const RebuiltTable damaged = mend();
        // All that is before the end mark is checked.
        EXPECT_EQ(damaged.mended.rowWritten, at + 1 < noted.size() ? 0 : 2) << at;
    }
}

TEST_F(MendedTables, ANoteIsNeverAsLongAsRows) {
    for (std::int32_t length = 1; length <= 70; ++length) {
        newDisk();
        const Cells like = {characters("", length)};
        table = closedTable({byNumber}, UNBOUNDED, like);
        ASSERT_EQ(open(), 0);
        EXPECT_EQ(add({characters("a", length)}), 0);
        const Cells before = {characters("a", length)}, after = {characters("b", length)};
        dieWithNote(before, after, before, length);
        const auto size = static_cast<std::int32_t>(bytes("a.tab").size());
        EXPECT_TRUE(length == 1 ? size == 1 : size % length != 0) << length;
        EXPECT_EQ(mend().mended.rowWritten, length == 1 ? 0 : 1) << length;
        EXPECT_EQ(bytes("a.tab"), (length == 1 ? before : after)[0].text);
        EXPECT_EQ(open(), 0);
        expectWhole();
        close();
    }
}

// ---- failing and dying ----

TEST_F(MendedTables, AMendingThatFailsOrDiesCanBeDoneAgain) {
    struct Damage {
        const char* what;
        std::function<std::string(const std::string&)> change;
        Numbers numbers;
    };
    const auto moved = [](const std::string& rows) {
        return rows.substr(3 * rowBytes) + rows.substr(rowBytes, 2 * rowBytes) + rows.substr(3 * rowBytes);
    };
    const Damage damages[] = {
        {"a torn row", [](const std::string& rows) { return rows + "torn"; }, {1, 2, 3, 4}},
        {"a row that was moved", moved, {4, 2, 3}},
    };
    for (const Damage& damage : damages) {
        for (const bool dies : {false, true}) {
            bool met = true;
            for (int call = 1; met && !HasFailure(); ++call) {
                SCOPED_TRACE(damage.what + std::string(dies ? ", death " : ", failure ") +
                             std::to_string(call));
                closedWith(4);
                put("a.tab", damage.change(bytes("a.tab")));
                put("a.i2", "damaged");
                dies ? files().dieAt(call, call % 2 == 0) : files().failAt(call, FileError::WriteFailed);
                try {
                    const RebuiltTable result = RebuildTableFile(*t(), "/d/a.tab");
                    met = files().calls() >= call;
                    EXPECT_TRUE(result.error == 0 || result.error == 652) << result.error;
                } catch (const os::ProcessDeath&) {
                    abandon();
                    takeError();
                    files().revive();
                }
                files().stopFailing();
                EXPECT_EQ(mend().error, 0);
                expectRows(damage.numbers);
                EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
            }
        }
    }
}

}  // namespace
}  // namespace tarn
