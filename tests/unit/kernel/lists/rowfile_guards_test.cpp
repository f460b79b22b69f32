// SPDX-License-Identifier: Apache-2.0
//
// What keeps the rows of files whole where something comes from outside: counts near the largest, other
// capacities, rows that look like notes, other programs and other values that change the same file.
#include "kernel/data/datafile.h"
#include "kernel/run/errors.h"
#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_mend.h"
#include "support/errorcell.h"
#include "support/tempfolder.h"
#include "unit/kernel/filelists_fixture.h"
#include "unit/kernel/filetables_fixture.h"

#include <filesystem>
#include <fstream>
#include <limits>
#include <new>

namespace tarn {
namespace {

using namespace std::string_literals;
using model::Number;

// ---- the largest count ----

class LargestCounts : public Runtime {
protected:
    static constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

    // A file of that many bytes 0, which takes no room on the disk.
    std::string sparse(const std::string& name, std::int64_t bytes) {
        const std::string path = folder_ / name;
        std::ofstream(path).close();
        std::filesystem::resize_file(path, static_cast<std::uintmax_t>(bytes));
        return path;
    }
    TempFolder folder_;
};

TEST_F(LargestCounts, RowsAreAddedUpToIt) {
    const std::string path = sparse("a.lst", std::int64_t{most} - 70000);
    ListDescriptor l{};
    ListInit(&l, UNBOUNDED, nullptr, KindBoolean, true);
    FileOpen(&l, KindList, path);
    ASSERT_EQ(takeError(), 0);
    ASSERT_EQ(l.count, most - 70000);
    const bool set = true;
    bool out = false;
    ListResize(most, &set, &l);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(l.count, most);
    EXPECT_EQ(std::filesystem::file_size(path), static_cast<std::uintmax_t>(most));
    for (const std::int32_t position : {most, most - 69999}) {
        ListGet(&l, position, &out, KindBoolean);
        EXPECT_TRUE(out);
    }
    ListGet(&l, most - 70000, &out, KindBoolean);
    EXPECT_FALSE(out);
    ListAppend(&set, KindBoolean, &l);
    EXPECT_EQ(takeError(), 618);
    ListRemoveLast(&l);
    EXPECT_EQ(l.count, most - 1);
    AdtFree(&l, KindList);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(LargestCounts, TheLastRowIsReplaced) {
    const std::string path = sparse("a.lst", std::int64_t{most} * 4);
    ListDescriptor l{};
    ListInit(&l, UNBOUNDED, nullptr, KindInteger, true);
    FileOpen(&l, KindList, path);
    const std::int32_t value = 7;
    std::int32_t out = 0;
    ListPut(&value, KindInteger, most, &l);
    ListGet(&l, most, &out, KindInteger);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(out, 7);
    EXPECT_EQ(std::filesystem::file_size(path), static_cast<std::uintmax_t>(most) * 4);
    AdtFree(&l, KindList);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(LargestCounts, ATableTakesNoRowBeyondIt) {
    const std::string path = sparse("a.tab", most);
    {
        TableValue table;
        TableInit(table.get(), UNBOUNDED, recordOf({flag(false)}).get(), {}, "", true);
        FileOpen(table.get(), KindTable, path);
        TableAdd(table.get(), 0, recordOf({flag(true)}).get());
        EXPECT_EQ(takeError(), 619);
        EXPECT_EQ(TableCount(table.get()), most);
    }
    EXPECT_EQ(takeError(), 0);
}

TEST_F(LargestCounts, MoreRowsThanCanBeCountedAreNotCut) {
    const std::string path = sparse("a.lst", std::int64_t{most} + 1);
    ListDescriptor l{};
    ListInit(&l, UNBOUNDED, nullptr, KindBoolean, true);
    FileOpen(&l, KindList, path);
    EXPECT_EQ(takeError(), 655);
    EXPECT_EQ(MendRows(l, path).error, 655);
    EXPECT_EQ(std::filesystem::file_size(path), static_cast<std::uintmax_t>(most) + 1);
    AdtFree(&l, KindList);
}

// ---- lists ----

class GuardedLists : public FileLists {
protected:
    static std::int32_t put(ListValue& l, std::int32_t position, std::int32_t value) {
        ListPut(&value, KindInteger, position, l.get());
        return ErrorCell();
    }
    static std::int32_t appendNumber(ListValue& l, std::int32_t value) {
        ListAppend(&value, KindInteger, l.get());
        return ErrorCell();
    }
    MendedRows mendNumbers(const std::string& name, std::int32_t maxlength = UNBOUNDED) {
        ListValue l = listOf(Number(KindInteger, 0), maxlength);
        return MendRows(*l.get(), name);
    }
    // An Xbase file of two rows.
    std::string xbaseFile(const std::string& name) {
        ListValue l = opened(name, xbaseRow());
        for (const char* text : {"ann", "bob"}) appendXbase(l, text);
        FileClose(l.get(), KindList);
        return bytesOf(name);
    }
    static void appendXbase(ListValue& l, std::string_view name) {
        const OddValue row(xbaseRow(name, ' '));
        ListAppend(row.at(), row.kind(), l.get());
    }
};

TEST_F(GuardedLists, MendingWithASmallerCapacityChangesNothing) {
    for (const char* count : {"\0\0\0\6", "\0\0\0\7", "\x7F\0\0\0"}) {
        { ListValue l = numbers("/d/a.lst", {1, 2, 3, 4, 5, 6}, 6); }
        std::string bytes = bytesOf("/d/a.lst");
        files_.put("/d/a.lst", bytes.replace(0, 4, count, 4));
        const MendedRows result = mendNumbers("/d/a.lst", 2);
        EXPECT_EQ(result.error, 619);
        EXPECT_FALSE(result.countSet);
        EXPECT_EQ(bytesOf("/d/a.lst"), bytes);
        EXPECT_EQ(mendNumbers("/d/a.lst", 6).rows, 6);
        files_.remove("/d/a.lst");
    }
}

TEST_F(GuardedLists, RowsThatLookLikeTheBeginningOfANoteStay) {
    const std::string note = fromHex("A7726F77 A71A0D0A 00000000 00000004 00000001");
    for (std::size_t like = 4; like < 16; like += 4) {
        const std::string rows = fromHex("00000001") + note.substr(0, like);
        files_.put("/d/a.lst", rows);
        const MendedRows result = mendNumbers("/d/a.lst");
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(result.bytesCut, 0);
        EXPECT_EQ(bytesOf("/d/a.lst"), rows);
    }
    for (const std::size_t torn : {16, 20}) {
        files_.put("/d/a.lst", fromHex("00000001") + note.substr(0, torn));
        EXPECT_EQ(mendNumbers("/d/a.lst").bytesCut, static_cast<std::int64_t>(torn));
        EXPECT_EQ(bytesOf("/d/a.lst"), fromHex("00000001"));
    }
    std::string elsewhere = fromHex("00000001") + note;
    elsewhere[15] = 8;  // not where it stands
    files_.put("/d/a.lst", elsewhere.substr(0, 20));
    EXPECT_EQ(mendNumbers("/d/a.lst").bytesCut, 0);
}

TEST_F(GuardedLists, MendingAnXbaseFileOfOtherFieldsChangesNothing) {
    const std::string torn = xbaseFile("/d/a.dbf") + " x";
    files_.put("/d/a.dbf", torn);
    ListValue wide = listOf(
        model::Record({Number(KindEnum, 0), model::Array({{1, 2}}, Number(KindEnum, 0),
                                                         {Number(KindEnum, 0), Number(KindEnum, 0)})}));
    EXPECT_EQ(MendRows(*wide.get(), "/d/a.dbf").error, 658);
    EXPECT_EQ(bytesOf("/d/a.dbf"), torn);
    ListValue odd = listOf(Number(KindInteger, 0));
    EXPECT_EQ(MendRows(*odd.get(), "/d/a.dbf").error, 658);
    EXPECT_EQ(bytesOf("/d/a.dbf"), torn);
    ListValue own = listOf(xbaseRow());
    EXPECT_EQ(MendRows(*own.get(), "/d/a.dbf").error, 0);
    EXPECT_EQ(bytesOf("/d/a.dbf").size(), torn.size() - 2);
}

// ---- replacing a row ----

TEST_F(GuardedLists, ADeathInAPutLosesNeitherRow) {
    for (const std::int32_t capacity : {UNBOUNDED, std::int32_t{4}}) {
        bool died = true;
        for (int call = 1; died; ++call) {
            for (const bool midway : {false, true}) {
                SCOPED_TRACE(std::to_string(call) + (midway ? " midway" : ""));
                ListValue l = numbers("/d/a.lst", {0x11111111, 0x22222222, 0x33333333}, capacity);
                files_.dieAt(call, midway);
                died = false;
                try {
                    put(l, 2, 0x44444444);
                } catch (const os::ProcessDeath&) {
                    died = true;
                }
                files_.revive();
                files_.stopFailing();
                takeError();
                DropRows(*l.get());
                EXPECT_EQ(mendNumbers("/d/a.lst", capacity).error, 0);
                const ListValue again = numbers("/d/a.lst", {}, capacity);
                const Numbers found = numbersIn(again);
                ASSERT_EQ(found.size(), 3U);
                EXPECT_EQ(found[0], 0x11111111);
                EXPECT_TRUE(found[1] == 0x22222222 || found[1] == 0x44444444) << found[1];
                EXPECT_EQ(found[2], 0x33333333);
                EXPECT_TRUE(died || found[1] == 0x44444444);
                files_.remove("/d/a.lst");
            }
        }
    }
}

TEST_F(GuardedLists, APutIntoAFileOfAnotherSizeIsToldAndChangesNothing) {
    ListValue l = numbers("/d/a.lst", {1, 2});
    files_.put("/d/a.lst", fromHex("00000001 00000002 00"));
    EXPECT_EQ(put(l, 1, 9), 655);
    takeError();
    EXPECT_EQ(bytesOf("/d/a.lst"), fromHex("00000001 00000002 00"));
}

// ---- two values on one file ----

TEST_F(GuardedLists, ACopyFromAFileThatChangedIsRefused) {
    ListValue a = numbers("/d/a.lst", {1}), b = numbers("/d/a.lst"), memory;
    ListInit(memory.get(), UNBOUNDED, nullptr, KindInteger, false);
    appendNumber(a, 2);
    AdtCopy(b.get(), memory.get(), KindList);
    EXPECT_EQ(takeError(), 655);
    EXPECT_EQ(ListCount(memory.get()), 0);
    ListValue c = numbers("/d/c.lst", {7});
    AdtCopy(b.get(), c.get(), KindList);
    EXPECT_EQ(takeError(), 655);
    EXPECT_EQ(numbersIn(c), (Numbers{7}));
}

TEST_F(GuardedLists, SortingByAnOldCountLosesNoRow) {
    ListValue a = texts("/d/a.lst", {"b", "a"}), b = texts("/d/a.lst");
    append(a, "c");
    ListSort(b.get(), true, false);
    EXPECT_EQ(takeError(), 655);
    EXPECT_EQ(textsIn(a), (Texts{"b", "a", "c"}));
}

TEST_F(GuardedLists, ACopyOntoTheSameFileTakesTheCount) {
    ListValue a = numbers("/d/a.lst", {1}), b = numbers("/d/a.lst");
    appendNumber(a, 2);
    AdtCopy(a.get(), b.get(), KindList);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(numbersIn(b), (Numbers{1, 2}));
    EXPECT_EQ(appendNumber(b, 3), 0);
    AdtCopy(a.get(), b.get(), KindList);  // now the other is old
    EXPECT_EQ(takeError(), 655);
    EXPECT_EQ(numbersIn(b), (Numbers{1, 2, 3}));
}

// ---- other programs and an Xbase file ----

TEST_F(GuardedLists, RowsAreWrittenOverTheEndMark) {
    struct Case {
        const char* what;
        void (*change)(ListValue&);
        const char* rows;
    };
    const Case cases[] = {
        {"append", [](ListValue& l) { appendXbase(l, "cid"); }, " ann bob cid"},
        {"batch",
         [](ListValue& l) {
             RowBatch batch(*l.get());
             appendXbase(l, "cid");
             appendXbase(l, "dan");
         },
         " ann bob cid dan"},
        {"remove", [](ListValue& l) { ListRemoveLast(l.get()); }, " ann"},
        {"put",
         [](ListValue& l) {
             const OddValue row(xbaseRow("eve", ' '));
             ListPut(row.at(), row.kind(), 1, l.get());
         },
         " eve bob"},
        {"grow",
         [](ListValue& l) {
             const OddValue row(xbaseRow("fay", ' '));
             ListResize(4, row.at(), l.get());
         },
         " ann bob fay fay"},
        {"clear", [](ListValue& l) { ListClear(l.get()); }, ""},
    };
    for (const Case& c : cases) {
        for (const bool later : {false, true}) {  // while it is open
            SCOPED_TRACE(c.what);
            std::string bytes = xbaseFile("/d/a.dbf");
            if (!later) files_.put("/d/a.dbf", bytes + '\x1A');
            ListValue l = opened("/d/a.dbf", xbaseRow());
            if (later) files_.put("/d/a.dbf", bytes + '\x1A');
            EXPECT_EQ(check(l), "");
            EXPECT_EQ(ListCount(l.get()), 2);
            c.change(l);
            EXPECT_EQ(takeError(), 0);
            EXPECT_EQ(bytesOf("/d/a.dbf").substr(65), c.rows);
            EXPECT_EQ(check(l), "");
            FileClose(l.get(), KindList);
            files_.remove("/d/a.dbf");
        }
    }
}

TEST_F(GuardedLists, AByte26BehindAPlainFileIsNoEndMark) {
    ListValue l = numbers("/d/a.lst", {1});
    files_.put("/d/a.lst", fromHex("00000001 1A"));
    EXPECT_NE(check(l), "");
    EXPECT_EQ(appendNumber(l, 2), 655);
    takeError();
    FileClose(l.get(), KindList);
    FileOpen(l.get(), KindList, "/d/a.lst");
    EXPECT_EQ(takeError(), 655);
}

TEST_F(GuardedLists, FieldsThatChangedAreFoundBeforeARowIsWritten) {
    std::string bytes = xbaseFile("/d/a.dbf");
    ListValue l = opened("/d/a.dbf", xbaseRow());
    bytes[32 + 16] = 4;  // the length of the field
    bytes[10] = 5;       // that of a row
    bytes.resize(65);
    bytes += " anna bobb";
    files_.put("/d/a.dbf", bytes);
    appendXbase(l, "cid");
    EXPECT_EQ(takeError(), 658);
    const OddValue row(xbaseRow("eve", ' '));
    ListPut(row.at(), row.kind(), 1, l.get());
    EXPECT_EQ(takeError(), 658);
    ListRemoveLast(l.get());
    EXPECT_EQ(takeError(), 658);
    EXPECT_EQ(bytesOf("/d/a.dbf"), bytes);
    EXPECT_EQ(ListCount(l.get()), 2);
}

TEST_F(GuardedLists, AFailedOpeningLeavesTheEndMark) {
    const std::string bytes = xbaseFile("/d/a.dbf") + '\x1A';
    files_.put("/d/a.dbf", bytes);
    ListValue one = listOf(xbaseRow(), 1);
    FileOpen(one.get(), KindList, "/d/a.dbf");
    EXPECT_EQ(takeError(), 619);
    EXPECT_EQ(bytesOf("/d/a.dbf"), bytes);
}

TEST_F(GuardedLists, TheDateOfAnXbaseFileFollowsItsRows) {
    os::SteeredClock clock;
    const os::Steered steered(clock);
    os::CivilTime day;
    day.year = 2031;
    day.month = 7;
    day.day = 9;
    ListValue l = opened("/d/a.dbf", xbaseRow());
    for (const bool removes : {false, true}) {
        clock.setLocal(day);
        removes ? ListRemoveLast(l.get()) : appendXbase(l, "ann");
        const std::string date = {31, 7, static_cast<char>(day.day)};
        EXPECT_EQ(bytesOf("/d/a.dbf").substr(0, 5), "\x03" + date + (removes ? '\0' : '\1'));
        ++day.day;
    }
}

// ---- saving onto the own rows ----

TEST_F(GuardedLists, SavingInAnotherFormatOntoTheOwnRowsIsRefused) {
    files_.putLink("/d/a.tab", "/d/link.csv");
    ListValue l = texts("/d/a.tab", {"one", "two"});
    const std::string bytes = bytesOf("/d/a.tab");
    const DataOptions options = DefaultDataOptions(FormatComma);
    for (const char* name : {"/d/a.tab", "/d/../d/a.tab", "/d/link.csv"}) {
        for (const DataFormat format : {FormatText, FormatComma, FormatTab, FormatXbase, FormatXml}) {
            EXPECT_EQ(SaveValue(name, format, options, 0, l.get(), KindList).code, 652) << name << format;
            EXPECT_EQ(bytesOf("/d/a.tab"), bytes);
        }
    }
    EXPECT_EQ(SaveValue("/d/a.tab", FormatBinary, options, 0, l.get(), KindList).code, 0);
    EXPECT_EQ(bytesOf("/d/a.tab"), bytes);
    EXPECT_EQ(SaveValue("/d/b.txt", FormatText, options, 0, l.get(), KindList).code, 0);
    EXPECT_EQ(textsIn(l), (Texts{"one", "two"}));
    ListValue fixed = texts("/d/f.tab", {"one"}, 3);
    EXPECT_EQ(SaveValue("/d/f.tab", FormatBinary, options, 0, fixed.get(), KindList).code, 652);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(GuardedLists, AnXbaseFileThatIsSavedOntoItselfTakesRows) {
    xbaseFile("/d/a.dbf");
    ListValue l = opened("/d/a.dbf", xbaseRow());
    const DataResult saved = SaveValue("/d/a.dbf", FormatXbase, DefaultDataOptions(FormatComma), 0, l.get(),
                                       KindList, "delete_flag : Tchar\nNAME : Tchars[1:3]\n");
    EXPECT_EQ(saved.code, 0);
    EXPECT_NE(bytesOf("/d/a.dbf").back(), '\x1A');
    appendXbase(l, "cid");
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(65), " ann bob cid");
}

// ---- files beside ----

TEST_F(GuardedLists, RowsOfAFileWithOtherNamesDoNotTakeItsPlace) {
    ListValue l = texts("/d/a.lst", {"b", "a"});
    files_.putHardLink("/d/a.lst", "/d/b.lst");
    const std::string bytes = bytesOf("/d/a.lst");
    ListSort(l.get(), true, false);
    EXPECT_EQ(takeError(), 652);
    EXPECT_EQ(bytesOf("/d/a.lst"), bytes);
    EXPECT_EQ(bytesOf("/d/b.lst"), bytes);
    files_.remove("/d/b.lst");
    ListSort(l.get(), true, false);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(textsIn(l), (Texts{"a", "b"}));
}

TEST_F(GuardedLists, RowsWhoseOwnerCannotBeKeptDoNotTakeTheirPlace) {
    { ListValue l = texts("/d/a.lst", {"b", "a"}); }
    const std::string bytes = bytesOf("/d/a.lst");
    files_.put("/d/a.lst", bytes, 0666);
    files_.putOwner("/d/a.lst", 77, 77);
    ListValue l = texts("/d/a.lst");
    ListSort(l.get(), true, false);
    EXPECT_EQ(takeError(), 652);
    EXPECT_EQ(bytesOf("/d/a.lst"), bytes);
    EXPECT_EQ(os::infoOf("/d/a.lst").owner, 77U);
}

// ---- memory ----

// Memory is short at a writing.
class ScarceFiles : public os::SteeredFiles {
public:
    os::FileError write(os::Handle handle, std::int64_t offset, std::string_view bytes) override {
        if (left-- == 0) throw std::bad_alloc();
        return SteeredFiles::write(handle, offset, bytes);
    }
    int left = -1;
};

TEST_F(GuardedLists, ALackOfMemoryLeavesNoFileAndNoHandle) {
    ScarceFiles scarce;
    const os::Steered steered(scarce);
    scarce.putFolder("/d");
    for (const int left : {0, 1}) {
        ListValue l = listOf(Number(KindInteger, 0), 3);
        scarce.left = left;
        FileOpen(l.get(), KindList, "/d/a.lst");
        scarce.left = -1;
        EXPECT_EQ(takeError(), 802);
        EXPECT_EQ(scarce.openHandles(), 0);
        EXPECT_TRUE(scarce.allFiles().empty());
    }
    ListValue l = texts("/d/a.lst", {"b", "a"}, 3);
    scarce.left = 0;
    ListSort(l.get(), true, false);
    scarce.left = -1;
    EXPECT_EQ(takeError(), 802);
    EXPECT_EQ(scarce.openHandles(), 0);
    EXPECT_EQ(scarce.allFiles().size(), 1U);
    EXPECT_EQ(textsIn(l), (Texts{"b", "a"}));
    FileClose(l.get(), KindList);
}

// ---- tables ----

class GuardedTables : public FileTables {};

TEST_F(GuardedTables, RebuildingWithAnotherTypeTextChangesNothing) {
    make({byNumber});
    fill(3);
    close();
    const std::string torn = bytes("a.tab") + "torn", index = bytes("a.i1");
    files().put("/d/a.tab", torn);
    table = closedTable({byNumber}, UNBOUNDED, row(0, ""), "x : Tboolean\n");
    EXPECT_EQ(RebuildTableFile(*t(), "/d/a.tab").error, 762);
    EXPECT_EQ(bytes("a.tab"), torn);
    EXPECT_EQ(bytes("a.i1"), index);
}

TEST_F(GuardedTables, RebuildingByAnOldCountIsRefused) {
    make({byNumber});
    fill(1);
    TableValue other = closedTable({byNumber});
    FileOpen(other.get(), KindTable, "/d/a.tab");
    EXPECT_EQ(add(row(2, "two")), 0);
    const std::string index = bytes("a.i1");
    TableRebuild(other.get());
    EXPECT_EQ(takeError(), 655);
    EXPECT_EQ(bytes("a.i1"), index);
    expectWhole();
    TableValue copy = closedTable({byNumber});
    FileOpen(copy.get(), KindTable, "/d/b.tab");
    AdtCopy(other.get(), copy.get(), KindTable);
    EXPECT_EQ(takeError(), 655);
    EXPECT_EQ(TableCount(copy.get()), 0);
    AdtCopy(t(), other.get(), KindTable);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(TableCount(other.get()), 2);
    TableAdd(other.get(), 1, recordOf(row(3, "three")).get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(CheckTableFile(*other.get()), "");
}

TEST_F(GuardedTables, ATableThatIsNotOpenedKeepsItsEndMark) {
    const Cells like = {ordinal(' '), characters("", 5)};
    table = closedTable({0x02000000}, UNBOUNDED, like);
    ASSERT_EQ(open("/d/p.dbf"), 0);
    EXPECT_EQ(add({ordinal(' '), characters("Ann", 5)}), 0);
    close();
    const std::string marked = bytes("p.dbf") + '\x1A';
    files().put("/d/p.dbf", marked);
    (void)files().remove("/d/p.i1");
    EXPECT_EQ(open("/d/p.dbf"), 656);
    EXPECT_EQ(bytes("p.dbf"), marked);
}

TEST_F(GuardedTables, ATableThatIsSavedOntoItsXbaseFileTakesRows) {
    const Cells like = {ordinal(' '), characters("", 5)};
    table = closedTable({0x02000000}, UNBOUNDED, like);
    ASSERT_EQ(open("/d/p.dbf"), 0);
    for (const char* name : {"Ann", "Bob"}) EXPECT_EQ(add({ordinal(' '), characters(name, 5)}), 0);
    const DataOptions options = DefaultDataOptions(FormatComma);
    EXPECT_EQ(SaveValue("/d/p.dbf", FormatXbase, options, 0, t(), KindTable).code, 0);
    EXPECT_EQ(add({ordinal(' '), characters("Cid", 5)}), 0);
    EXPECT_EQ(TableCount(t()), 3);
    expectWhole();
    const std::string rows = bytes("p.dbf");
    EXPECT_EQ(SaveValue("/d/p.dbf", FormatComma, options, 0, t(), KindTable).code, 652);
    EXPECT_EQ(bytes("p.dbf"), rows);
}

}  // namespace
}  // namespace tarn
