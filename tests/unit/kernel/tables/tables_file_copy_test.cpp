// SPDX-License-Identifier: Apache-2.0
//
// Tables that are held in files as values: copying between memory and files, comparing, emptying, ending.
#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_mend.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>

namespace tarn {
namespace {

using os::FileError;
using os::SteeredFiles;
using Names = std::vector<std::string>;

class FileTableCopies : public FileTables {
protected:
    void TearDown() override {
        other = TableValue();
        FileTables::TearDown();
    }
    static constexpr KeyMaps maps = {byNumber, byName};

    static Rows someRows(int first, int count) {
        Rows all;
        for (int i = first; i < first + count; ++i) all.push_back(row(i, "n" + std::to_string(i)));
        return all;
    }
    static TableValue tableOf(const std::string& name, const Rows& rows, std::int32_t maxlength = UNBOUNDED) {
        TableValue made;
        TableInit(made.get(), maxlength, recordOf(row(0, "")).get(), maps, "", !name.empty());
        if (!name.empty()) FileOpen(made.get(), KindTable, name);
        for (const Cells& cells : rows) TableAdd(made.get(), 1, recordOf(cells).get());
        return made;
    }
    static bool same(const Rows& a, const Rows& b) {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), sameCells);
    }
    std::int32_t copy() {
        AdtCopy(other.get(), t(), KindTable);
        return takeError();
    }
    void expectNothingLeft() {
        for (const std::string& name : names()) {
            EXPECT_EQ(name.find('~'), std::string::npos) << name;
            EXPECT_EQ(name.find(".tarnwick"), std::string::npos) << name;
        }
    }
    void abandonOther() { SetRowFileName(*TableRows(other.get()), {}); }

    TableValue other;
};

// ---- copying ----

TEST_F(FileTableCopies, RowsGoBetweenMemoryAndFilesInAllFourWays) {
    for (const std::string from : {"", "/d/b.tab"}) {
        for (const std::string to : {"", "/d/a.tab"}) {
            for (const int count : {0, 1, 9}) {
                for (const bool checking : {false, true}) {
                    SCOPED_TRACE("from '" + from + "' to '" + to + "', " + std::to_string(count));
                    newDisk();
                    SetMemoryChecking(checking);
                    other = tableOf(from, someRows(1, count));
                    table = tableOf(to, someRows(5, 4));
                    ASSERT_EQ(takeError(), 0);
                    EXPECT_EQ(copy(), 0);
                    EXPECT_TRUE(same(rows(), someRows(1, count)));
                    EXPECT_EQ(AdtCheck(t(), KindTable), "");
                    EXPECT_EQ(AdtCheck(other.get(), KindTable), "");
                    EXPECT_TRUE(AdtCompare("EQ", t(), other.get(), KindTable));
                    EXPECT_EQ(find("LAST", 1, {integer(0)}), count == 0 ? -1 : count);
                    EXPECT_EQ(add(row(77, "more")), 0);
                    EXPECT_TRUE(AdtCompare("NE", t(), other.get(), KindTable));
                    EXPECT_EQ(FileExists(t(), KindTable), !to.empty());
                    expectNothingLeft();
                    table = TableValue();
                    other = TableValue();
                }
            }
        }
    }
}

TEST_F(FileTableCopies, ATableThatIsNotOpenCannotBeCopiedOrCopiedTo) {
    other = closedTable(maps);
    table = tableOf("", {});
    EXPECT_EQ(copy(), 661);
    table = tableOf("/d/a.tab", someRows(1, 2));
    EXPECT_EQ(copy(), 661);
    EXPECT_TRUE(same(rows(), someRows(1, 2)));
    std::swap(table, other);
    EXPECT_EQ(copy(), 661);
    std::swap(table, other);
    other = tableOf("", someRows(1, 2));
    table = closedTable(maps);
    EXPECT_EQ(copy(), 661);
    other = closedTable(maps);
    EXPECT_EQ(copy(), 0);  // neither has anything
    EXPECT_FALSE(FileExists(t(), KindTable));
}

TEST_F(FileTableCopies, AValueWithoutAShapeDoesNotBecomeAnotherUseOfAFile) {
    other = tableOf("/d/a.tab", someRows(1, 2));
    EXPECT_EQ(copy(), 661);
    EXPECT_EQ(t()->tag, 0);
}

TEST_F(FileTableCopies, RowsOfAnotherTypeAre762AndTooMany619) {
    other = tableOf("/d/b.tab", someRows(1, 5));
    table = closedTable({byNumber});
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(copy(), 762);  // other keys
    table = closedTable(maps, UNBOUNDED, {integer(0), text("", 8)});
    ASSERT_EQ(open("/d/c.tab"), 0);
    EXPECT_EQ(copy(), 762);
    table = tableOf("/d/e.tab", someRows(7, 2), 4);
    EXPECT_EQ(copy(), 619);
    EXPECT_TRUE(same(rows(), someRows(7, 2)));
    table = tableOf("", someRows(7, 2), 4);
    EXPECT_EQ(copy(), 619);
    table = tableOf("/d/f.tab", someRows(7, 2), 5);
    EXPECT_EQ(copy(), 0);
    EXPECT_TRUE(same(rows(), someRows(1, 5)));
    expectWhole();
    expectNothingLeft();
}

TEST_F(FileTableCopies, TwoValuesOnOneFileAreCopiesOfEachOther) {
    other = tableOf("/d/a.tab", someRows(1, 3));
    table = closedTable(maps);
    ASSERT_EQ(open("/d/../d/a.tab"), 0);
    EXPECT_EQ(copy(), 0);
    EXPECT_TRUE(same(rows(), someRows(1, 3)));
    expectWhole();
}

TEST_F(FileTableCopies, RowsWithOneKeyCannotBecomeATable) {
    other = tableOf("/d/b.tab", someRows(1, 5));
    std::string rowsOfB = bytes("b.tab");
    rowsOfB[4 * rowBytes + 3] = 2;
    files().put("/d/b.tab", rowsOfB);
    table = tableOf("/d/a.tab", someRows(7, 2));
    EXPECT_EQ(copy(), 637);
    EXPECT_TRUE(same(rows(), someRows(7, 2)));
    expectWhole();
    expectNothingLeft();
    table = tableOf("", someRows(7, 2));
    EXPECT_EQ(copy(), 635);
    EXPECT_TRUE(same(rows(), someRows(7, 2)));
}

TEST_F(FileTableCopies, AFieldOfARecordIsCopiedLikeATable) {
    other = tableOf("", someRows(1, 3));
    table = tableOf("/d/a.tab", {});
    RecordDescriptor from{0, TagRecord, 0, MakeFieldKinds({KindTable})}, to = from;
    ASSERT_TRUE(AllocateData(from, sizeof(TableDescriptor)) && AllocateData(to, sizeof(TableDescriptor)));
    std::swap(*reinterpret_cast<TableDescriptor*>(At(from.data)) = {}, *other.get());
    std::swap(*reinterpret_cast<TableDescriptor*>(At(to.data)) = {}, *t());
    AdtCopy(&from, &to, KindRecord);
    EXPECT_EQ(takeError(), 0);
    std::swap(*reinterpret_cast<TableDescriptor*>(At(to.data)), *t());
    EXPECT_TRUE(same(rows(), someRows(1, 3)));
    expectWhole();
    AdtFree(&from, KindRecord);
    AdtFree(&to, KindRecord);
}

// ---- failing and dying ----

TEST_F(FileTableCopies, ACopyThatFailsLeavesTheTargetAsItWas) {
    for (const std::string from : {"", "/d/b.tab"}) {
        bool failed = true;
        for (int call = 1; failed && !HasFailure(); ++call) {
            newDisk();
            other = tableOf(from, someRows(1, 9));
            table = tableOf("/d/a.tab", someRows(5, 4));
            SCOPED_TRACE("from '" + from + "', call " + std::to_string(call));
            files().failAt(call, FileError::WriteFailed);
            const std::int32_t error = copy();
            failed = files().calls() >= call;
            const std::string failedCall =
                failed ? files().log()[static_cast<std::size_t>(call) - 1] : std::string();
            files().stopFailing();
            EXPECT_TRUE(error == 0 || error == 652) << error;
            EXPECT_TRUE(same(rows(), error == 0 ? someRows(1, 9) : someRows(5, 4)));
            expectWhole();
            if (!failedCall.starts_with("remove ")) expectNothingLeft();
            EXPECT_EQ(files().openHandles(), 0);
        }
    }
}

TEST_F(FileTableCopies, OnADiskThatIsFullAtAnyByteTheTargetIsAsItWas) {
    std::int32_t error = 654;
    for (int room = 0; error != 0 && !HasFailure(); room += room < 300 ? 1 : 61) {
        newDisk();
        other = tableOf("", someRows(1, 9));
        table = tableOf("/d/a.tab", someRows(5, 4));
        SCOPED_TRACE(room);
        files().setFreeBytes(room);
        error = copy();
        files().stopFailing();
        EXPECT_TRUE(error == 0 || error == 654) << error;
        EXPECT_TRUE(same(rows(), error == 0 ? someRows(1, 9) : someRows(5, 4)));
        expectWhole();
        expectNothingLeft();
    }
}

TEST_F(FileTableCopies, AfterADeathTheOldRowsAreThereOrTheNew) {
    struct Ending {
        bool machine;
        SteeredFiles::Names names;
        SteeredFiles::Overwritten overwritten;
    };
    using Kept = SteeredFiles::Names;
    using Over = SteeredFiles::Overwritten;
    const Ending endings[] = {{false, Kept::Kept, Over::Kept},
                              {true, Kept::Kept, Over::Kept},
                              {true, Kept::Kept, Over::Lost},
                              {true, Kept::Lost, Over::Kept},
                              {true, Kept::Lost, Over::Lost}};
    for (const Ending& ending : endings) {
        for (const bool midway : {false, true}) {
            bool died = true;
            for (int call = 1; died && !HasFailure(); ++call) {
                SCOPED_TRACE(call);
                newDisk();
                other = tableOf("", someRows(1, 9));
                table = tableOf("/d/a.tab", someRows(5, 4));
                close();
                ASSERT_EQ(open(), 0);
                files().dieAt(call, midway);
                try {
                    EXPECT_EQ(copy(), 0);
                } catch (const os::ProcessDeath&) {}
                died = files().dead();
                abandon();
                takeError();
                ending.machine ? files().afterMachineDeath(ending.names, ending.overwritten)
                               : files().revive();
                if (open() == 0) {
                    EXPECT_TRUE(same(rows(), someRows(1, 9)) || same(rows(), someRows(5, 4)) ||
                                !CheckTableFile(*t()).empty());
                    abandon();
                }
                EXPECT_EQ(RebuildTableFile(*t(), "/d/a.tab").error, 0);
                ASSERT_EQ(open(), 0);
                EXPECT_TRUE(same(rows(), someRows(1, 9)) || same(rows(), someRows(5, 4)));
                expectWhole();
                const Names all = names();
                EXPECT_TRUE(std::none_of(all.begin(), all.end(), [](const std::string& name) {
                    return name.find('~') != std::string::npos;
                }));
            }
        }
    }
}

// ---- other operations on any value ----

TEST_F(FileTableCopies, TablesCompareWhereverTheyStand) {
    other = tableOf("", someRows(1, 3));
    table = tableOf("/d/a.tab", someRows(1, 3));
    EXPECT_TRUE(AdtCompare("EQ", t(), other.get(), KindTable));
    EXPECT_EQ(update(1, {integer(2)}, row(2, "other")), 0);
    EXPECT_FALSE(AdtCompare("EQ", t(), other.get(), KindTable));
    EXPECT_TRUE(AdtCompare("NE", t(), other.get(), KindTable));
    close();
    EXPECT_FALSE(AdtCompare("NE", t(), other.get(), KindTable));
    EXPECT_EQ(takeError(), 661);
}

TEST_F(FileTableCopies, InAFileIsAnotherShapeThanInMemory) {
    other = tableOf("", {});
    table = tableOf("/d/a.tab", {});
    EXPECT_FALSE(AdtSameShape(t(), other.get(), KindTable));
    other = closedTable(maps);
    EXPECT_TRUE(AdtSameShape(t(), other.get(), KindTable));
    other = closedTable(maps, 5);
    EXPECT_FALSE(AdtSameShape(t(), other.get(), KindTable));
}

TEST_F(FileTableCopies, TheShapeOfATableIsATableThatIsNotOpen) {
    other = tableOf("/d/a.tab", someRows(1, 3));
    AdtInit(t(), other.get(), KindTable);
    EXPECT_EQ(takeError(), 0);
    EXPECT_FALSE(FileExists(t(), KindTable));
    EXPECT_EQ(TableIndexCount(t()), 2);
    ASSERT_EQ(open("/d/b.tab"), 0);
    EXPECT_EQ(TableCount(t()), 0);
    EXPECT_EQ(AdtCheck(t(), KindTable), "");
}

TEST_F(FileTableCopies, EmptyingAValueDoesNotEmptyAFile) {
    table = tableOf("/d/a.tab", someRows(1, 3));
    AdtClear(t(), KindTable);
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(same(rows(), someRows(1, 3)));
    expectWhole();
}

TEST_F(FileTableCopies, TheEndOfAValueClosesItsFilesAndKeepsThem) {
    table = tableOf("/d/a.tab", someRows(1, 3));
    table = TableValue();
    EXPECT_EQ(names(), (Names{"a.i1", "a.i2", "a.tab"}));
    files().afterMachineDeath(SteeredFiles::Names::Lost);
    table = closedTable(maps);
    ASSERT_EQ(open(), 0);
    EXPECT_TRUE(same(rows(), someRows(1, 3)));
    expectWhole();
}

TEST_F(FileTableCopies, TheEndOfAValueDeletesScratchFiles) {
    files().put("/d/w.i3", "of w.tab");
    files().put("/d/w.~ab3", "of older rows");
    table = tableOf("/d/w.~ab", someRows(1, 3));
    files().put("/d/a.tab", "x");
    EXPECT_EQ(names(), (Names{"a.tab", "w.i3", "w.~ab", "w.~ab1", "w.~ab2"}));
    table = TableValue();
    EXPECT_EQ(names(), (Names{"a.tab", "w.i3"}));
}

TEST_F(FileTableCopies, TheEndOfAValueWhoseFilesAreGoneIsQuiet) {
    table = tableOf("/d/a.tab", someRows(1, 3));
    for (const char* name : {"/d/a.tab", "/d/a.i1", "/d/a.i2"}) (void)files().remove(name);
    table = TableValue();
    EXPECT_EQ(takeError(), 0);
}

}  // namespace
}  // namespace tarn
