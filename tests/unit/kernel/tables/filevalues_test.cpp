// SPDX-License-Identifier: Apache-2.0
//
// Opening, making and closing the files of lists.
#include "kernel/tables/tables.h"
#include "unit/kernel/filelists_fixture.h"

namespace tarn {
namespace {

using model::Array;
using model::List;
using model::Number;
using model::Real;
using model::Record;
using model::Set;
using model::Text;

using namespace std::string_literals;

class FileValues : public FileLists {
protected:
    // The code of an opening; the value is closed again.
    static std::int32_t openError(ListValue& l, const std::string& name) {
        FileOpen(l.get(), KindList, name);
        const std::int32_t error = takeError();
        EXPECT_EQ(FileExists(l.get(), KindList), error == 0);
        FileClose(l.get(), KindList);
        takeError();
        return error;
    }
};

const ValueModel number = Number(KindInteger, 0);

// ---- making ----

TEST_F(FileValues, AnUnboundedListMakesAnEmptyFile) {
    ListValue l = listOf(number);
    EXPECT_FALSE(FileExists(l.get(), KindList));
    EXPECT_EQ(nameOf(l), "");
    FileOpen(l.get(), KindList, "/d/a.tab");
    EXPECT_TRUE(files_.has("/d/a.tab"));
    EXPECT_EQ(bytesOf("/d/a.tab"), "");
    EXPECT_TRUE(FileExists(l.get(), KindList));
    EXPECT_EQ(nameOf(l), "/d/a.tab");
    EXPECT_EQ(ListCount(l.get()), 0);
    EXPECT_EQ(l.get()->size, 255);
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, AFixedListMakesACountAndItsCapacityOfEmptyRows) {
    const ListValue l = opened("/d/a.tab", Text("", 2), 3);
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("00000000 000000000000 000000000000 000000000000"));
    EXPECT_EQ(ListCount(l.get()), 0);
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, TheEmptyRowsOfALargeFixedListAreWrittenInBlocks) {
    const ListValue l = opened("/d/a.tab", Text("", 996), 200);
    EXPECT_EQ(bytesOf("/d/a.tab"), std::string(4 + 200 * 1000, '\0'));
    const ListValue one = opened("/d/b.tab", Text("", 100000), 2);
    EXPECT_EQ(bytesOf("/d/b.tab").size(), 4 + 2 * 100004U);
}

TEST_F(FileValues, AnXbaseNameMakesAnXbaseFile) {
    for (const std::string name : {"/d/a.dbf", "/d/a.DBF", "/d/a.xBf"}) {
        const ListValue l = opened(name, xbaseRow());
        const std::string bytes = bytesOf(name);
        ASSERT_EQ(bytes.size(), 65U);
        EXPECT_EQ(bytes[0], 3);
        EXPECT_EQ(bytes.substr(4, 8), fromHex("00000000 4100 0400"));
        EXPECT_EQ(bytes.substr(32, 12), "FIELD1\0\0\0\0\0C"s);
        EXPECT_EQ(bytes[64], 13);
        EXPECT_EQ(FileFormat(l.get(), KindList), 5);
        EXPECT_EQ(check(l), "");
    }
}

TEST_F(FileValues, AFixedXbaseFileHoldsRowsThatAreMarkedAsDeleted) {
    const ListValue l = opened("/d/a.dbf", xbaseRow(), 2);
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(65), "*   *   ");
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(4, 4), "\0\0\0\0"s);
    EXPECT_EQ(ListCount(l.get()), 0);
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, ANewFileIsMadeWhereALinkLeads) {
    files_.putFolder("/e");
    files_.putLink("/e/real.tab", "/d/plain");
    files_.putLink("/e/real.fix", "/d/fixed");
    ListValue plain = numbers("/d/plain", {1}), fixed = numbers("/d/fixed", {1}, 2);
    EXPECT_EQ(bytesOf("/e/real.tab"), fromHex("00000001"));
    EXPECT_EQ(bytesOf("/e/real.fix"), fromHex("00000001 00000001 00000000"));
    EXPECT_EQ(files_.allFiles(), (Texts{"/d/fixed", "/d/plain", "/e/real.fix", "/e/real.tab"}));
}

// ---- opening ----

TEST_F(FileValues, TheCountOfAPlainFileIsItsSizeByTheRow) {
    files_.put("/d/a.tab", fromHex("00000007 00000008 FFFFFFFF"));
    const ListValue l = numbers("/d/a.tab");
    EXPECT_EQ(numbersIn(l), (Numbers{7, 8, -1}));
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, TheCountOfAFixedFileStandsAheadOfItsRows) {
    files_.put("/d/a.tab", fromHex("00000002 00000007 00000008 00000000"));
    const ListValue l = numbers("/d/a.tab", {}, 3);
    EXPECT_EQ(numbersIn(l), (Numbers{7, 8}));
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, AFixedFileMayHaveFewerOrMoreRowsThanTheCapacity) {
    files_.put("/d/a.tab", fromHex("00000001 00000007"));
    ListValue grows = numbers("/d/a.tab", {8}, 3);
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("00000002 00000007 00000008"));
    files_.put("/d/b.tab", fromHex("00000001 00000007 00000000 00000000 00000000"));
    ListValue keeps = numbers("/d/b.tab", {8}, 3);
    EXPECT_EQ(numbersIn(keeps), (Numbers{7, 8}));
    EXPECT_EQ(bytesOf("/d/b.tab"), fromHex("00000002 00000007 00000008 00000000 00000000"));
}

TEST_F(FileValues, WhatIsOpenedWasClosedBefore) {
    ListValue l = texts("/d/a.tab", {"a", "bc"});
    FileClose(l.get(), KindList);
    EXPECT_FALSE(FileExists(l.get(), KindList));
    EXPECT_EQ(l.get()->count, 0);
    EXPECT_EQ(check(l), "");
    FileOpen(l.get(), KindList, "/d/a.tab");
    EXPECT_EQ(textsIn(l), (Texts{"a", "bc"}));
}

TEST_F(FileValues, OpeningChecksInOrder) {
    ListValue list = listOf(number), open = numbers("/d/open.tab"), memory;
    ListInit(memory.get(), UNBOUNDED, nullptr, KindInteger, false);
    RecordValue record;
    RecordInit(record.get(), TagRecord, MakeFieldKinds({KindInteger}));
    std::int32_t plain = 0;
    files_.putFolder("/d/folder");
    const std::string longest = "/d/" + std::string(251, 'a'), tooLong = longest + "a";
    struct Case {
        void* value;
        Kind kind;
        std::string name;
        std::int32_t error;
    };
    const Case cases[] = {
        {nullptr, KindList, "", 660},
        {nullptr, KindTable, "", 660},
        {&plain, KindInteger, "", 660},
        {record.get(), KindRecord, "", 660},
        {record.get(), KindList, "/d/a.tab", 660},
        {list.get(), KindTable, "/d/a.tab", 660},
        {memory.get(), KindList, "", 660},
        {open.get(), KindList, "", 764},
        {open.get(), KindList, "/d/b.tab", 764},
        {list.get(), KindList, "", 661},
        {list.get(), KindList, tooLong, 657},
        {list.get(), KindList, "/d/", 657},
        {list.get(), KindList, "\\d\\", 657},
        {list.get(), KindList, "/", 657},
        {list.get(), KindList, "/d/..", 657},
        {list.get(), KindList, ".", 657},
        {list.get(), KindList, "C:", 657},
        {list.get(), KindList, "z:", 657},
        {list.get(), KindList, "C:\\", 657},
        {list.get(), KindList, "/d/a\0b"s, 657},
        {list.get(), KindList, "/d/folder", 657},
        {list.get(), KindList, "/none/a.tab", 652},
        {list.get(), KindList, "/d/open.tab/a.tab", 652},
    };
    for (const Case& c : cases) {
        FileOpen(c.value, c.kind, c.name);
        EXPECT_EQ(takeError(), c.error) << &c - cases;
        EXPECT_FALSE(FileExists(list.get(), KindList)) << &c - cases;
    }
    EXPECT_EQ(openError(list, longest), 0);
    EXPECT_EQ(nameOf(open), "/d/open.tab");
    EXPECT_EQ(files_.allFiles(), (Texts{longest, "/d/open.tab"}));
}

TEST_F(FileValues, RowsWithoutOneLengthCannotBeHeldInAFile) {
    const ValueModel dynamicSet = Set(1, 1, {}, DYNAMIC_BOUNDS);
    const ValueModel rows[] = {
        Text(""),
        Record({Number(KindInteger, 0), Text("")}),
        Record({}),
        Record({dynamicSet}),
        Array({}, number, {}, DYNAMIC_BOUNDS),
        dynamicSet,
        List(number, {}),
        Text("", 4095997),
    };
    for (const ValueModel& row : rows) {
        ListValue l = listOf(row);
        EXPECT_EQ(openError(l, "/d/a.tab"), 660) << &row - rows;
        EXPECT_EQ(FileRecordLength(l.get(), KindList), 0);
        EXPECT_EQ(takeError(), 660);
        files_.put("/d/there.tab", "");
        EXPECT_EQ(openError(l, "/d/there.tab"), 660) << &row - rows;
    }
    EXPECT_FALSE(files_.has("/d/a.tab"));
    ListValue largest = listOf(Text("", 4095996));
    EXPECT_EQ(openError(largest, "/d/a.tab"), 0);
    EXPECT_EQ(FileRecordLength(largest.get(), KindList), 4096000);
}

TEST_F(FileValues, SizesAndCountsThatNoFileHasAreRefused) {
    struct Case {
        std::string name, bytes;
        std::int32_t capacity, error;
    };
    const Case cases[] = {
        {"/d/a.tab", "1"s, UNBOUNDED, 655},
        {"/d/a.tab", "12345"s, UNBOUNDED, 655},
        {"/d/a.tab", ""s, 2, 655},
        {"/d/a.tab", "\0\0\0"s, 2, 655},
        {"/d/a.tab", fromHex("00000000"), 2, 0},
        {"/d/a.tab", fromHex("00000000 00"), 2, 655},
        {"/d/a.tab", fromHex("00000001"), 2, 655},
        {"/d/a.tab", fromHex("00000001 0000"), 2, 655},
        {"/d/a.tab", fromHex("00000001 00000007"), 2, 0},
        {"/d/a.tab", fromHex("FFFFFFFF 00000007"), 2, 655},
        {"/d/a.tab", fromHex("80000000 00000007"), 2, 655},
        {"/d/a.tab", fromHex("00000003 00000007 00000007 00000007"), 2, 619},
        {"/d/a.tab", fromHex("00000003 00000007 00000007 000000"), 2, 655},
        {"/d/a.tab", fromHex("00000003 00000007 00000007"), 2, 619},
        {"/d/a.tab", fromHex("00000003"), 2, 619},
        {"/d/a.tab", fromHex("00000002 00000007"), 2, 655},
        {"/d/a.tab", fromHex("7FFFFFFF 00000007 00000007"), 2, 619},
    };
    for (const Case& c : cases) {
        files_.put(c.name, c.bytes);
        ListValue l = listOf(number, c.capacity);
        EXPECT_EQ(openError(l, c.name), c.error) << &c - cases;
        EXPECT_EQ(bytesOf(c.name), c.bytes);
    }
}

TEST_F(FileValues, AFileThatCannotBeReadIsToldSo) {
    files_.put("/d/a.tab", fromHex("00000007"), 0200);
    ListValue l = listOf(number);
    EXPECT_EQ(openError(l, "/d/a.tab"), 651);
    files_.put("/d/b.tab", fromHex("00000007 00000001"));
    ListValue fixed = listOf(number, 1);
    files_.failAlways(os::FileCall::Read, os::FileError::ReadFailed);
    EXPECT_EQ(openError(fixed, "/d/b.tab"), 651);
    files_.stopFailing();
}

// ---- Xbase ----

// A header of one field of three characters, and `records` in it.
std::string xbaseFile(char records, std::string_view rows) {
    std::string bytes(65, '\0');
    bytes[0] = 3;
    bytes[4] = records;
    bytes[8] = 65;
    bytes[10] = 4;
    bytes.replace(32, 4, "NAME");
    bytes[43] = 'C';
    bytes[48] = 3;
    bytes[64] = 13;
    return bytes.append(rows);
}

TEST_F(FileValues, AnXbaseFileIsOpenedWithItsCount) {
    files_.put("/d/a.dbf", xbaseFile(2, " ann*bob"));
    const ListValue l = opened("/d/a.dbf", xbaseRow());
    ASSERT_EQ(ListCount(l.get()), 2);
    const ValueModel rows[] = {xbaseRow("ann", ' '), xbaseRow("bob", '*')};
    for (std::int32_t n = 1; n <= 2; ++n) {
        RecordValue row;
        ListGet(l.get(), n, row.get(), KindRecord);
        EXPECT_EQ(model::Differs(rows[n - 1], row.get()), "");
    }
    EXPECT_EQ(FileHeaderSize(l.get(), KindList), 65);
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, XbaseFilesThatDoNotFitAreRefused) {
    const ValueModel good = xbaseRow(), numbersRow = Record({number});
    const std::string whole = xbaseFile(1, " ann");
    std::string signature = whole, sizes = whole, longField = whole, many = whole, negative = whole;
    signature[0] = 7;
    sizes[10] = 5;
    longField[48] = 4;
    longField[10] = 5;
    longField += "x";
    many[4] = 2;
    negative[7] = '\x80';
    struct Case {
        const ValueModel& row;
        std::string bytes;
        std::int32_t error;
    };
    const Case cases[] = {
        {good, whole, 0},
        {numbersRow, whole, 658},
        {numbersRow, "", 658},
        {good, "", 655},
        {good, whole.substr(0, 31), 655},
        {good, whole.substr(0, 64), 655},
        {good, signature, 658},
        {good, sizes, 658},
        {good, longField, 658},
        {good, many, 655},
        {good, negative, 655},
        {good, whole + "x", 655},
        {good, whole.substr(0, 68), 655},
        {good, whole.substr(0, 65), 655},
    };
    for (const Case& c : cases) {
        files_.put("/d/a.dbf", c.bytes);
        ListValue l = listOf(c.row);
        EXPECT_EQ(openError(l, "/d/a.dbf"), c.error) << &c - cases;
        EXPECT_EQ(bytesOf("/d/a.dbf"), c.bytes) << &c - cases;
    }
    files_.put("/d/a.dbf", xbaseFile(3, " ann bob eve"));
    ListValue fixed = listOf(good, 2);
    EXPECT_EQ(openError(fixed, "/d/a.dbf"), 619);
    ListValue made = listOf(numbersRow);
    EXPECT_EQ(openError(made, "/d/new.dbf"), 658);
    EXPECT_FALSE(files_.has("/d/new.dbf"));
}

// Neither for a field that the rows lack nor alone.
TEST_F(FileValues, TheMarkStandsForNoField) {
    std::string number = xbaseFile(1, " 042");
    number[43] = 'N';
    for (const std::string& bytes : {number, xbaseFile(1, "*ann")}) {
        files_.put("/d/a.dbf", bytes);
        ListValue alone = listOf(Record({Number(KindEnum, 0)}));
        EXPECT_EQ(openError(alone, "/d/a.dbf"), 658);
        EXPECT_EQ(bytesOf("/d/a.dbf"), bytes);
    }
    ListValue alone = listOf(Record({Number(KindEnum, 0)}));
    EXPECT_EQ(openError(alone, "/d/new.dbf"), 658);
    EXPECT_FALSE(files_.has("/d/new.dbf"));
    // A file of the fields N3 and C3, a row of the mark and three characters.
    std::string two = xbaseFile(1, " 042Ann");
    const std::string field = two.substr(32, 32);
    two.insert(64, field);
    two[8] = 97;
    two[10] = 7;
    two[43] = 'N';
    files_.put("/d/a.dbf", two);
    ListValue less = listOf(xbaseRow());
    EXPECT_EQ(openError(less, "/d/a.dbf"), 658);
}

TEST_F(FileValues, AnEndMarkGoesWhenAnXbaseFileIsOpened) {
    files_.put("/d/a.dbf", xbaseFile(1, " ann\x1A"));
    ListValue l = opened("/d/a.dbf", xbaseRow());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(bytesOf("/d/a.dbf"), xbaseFile(1, " ann"));
    EXPECT_EQ(ListCount(l.get()), 1);
    EXPECT_EQ(check(l), "");
}

TEST_F(FileValues, AnEndMarkIsPassedOverWhereTheFileMayNotBeWritten) {
    const std::string bytes = xbaseFile(1, " ann\x1A");
    files_.put("/d/a.dbf", bytes, 0444);
    ListValue l = opened("/d/a.dbf", xbaseRow());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(bytesOf("/d/a.dbf"), bytes);
    EXPECT_EQ(ListCount(l.get()), 1);
    EXPECT_EQ(check(l), "");
    FileClose(l.get(), KindList);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FileValues, AnEndMarkThatCannotBeRemovedIsAnError) {
    const std::string bytes = xbaseFile(1, " ann\x1A");
    for (int call = 1; call <= 3; ++call) {
        files_.put("/d/a.dbf", bytes);
        ListValue l = listOf(xbaseRow());
        files_.failAt(call, os::FileError::WriteFailed);
        FileOpen(l.get(), KindList, "/d/a.dbf");
        files_.stopFailing();
        EXPECT_EQ(takeError(), 652);
        EXPECT_FALSE(FileExists(l.get(), KindList));
    }
}

// ---- names ----

TEST_F(FileValues, BothSlashesSeparateAndTheNameStaysAsItWasGiven) {
    files_.setCurrentFolder("/d");
    ListValue l = numbers("\\d\\a.tab", {1}), relative = numbers("b.tab", {2});
    EXPECT_EQ(nameOf(l), "\\d\\a.tab");
    EXPECT_EQ(nameOf(relative), "b.tab");
    EXPECT_TRUE(files_.has("/d/a.tab"));
    EXPECT_TRUE(files_.has("/d/b.tab"));
    files_.setCurrentFolder("/");
    EXPECT_EQ(numbersIn(l), (Numbers{1}));
    std::int32_t value = 0;
    ListGet(relative.get(), 1, &value, KindInteger);
    EXPECT_EQ(takeError(), 653);
    files_.setCurrentFolder("/d");
    EXPECT_EQ(numbersIn(relative), (Numbers{2}));
}

// ---- what a file is like ----

TEST_F(FileValues, FormatHeaderAndRowTellTheLayout) {
    struct Case {
        const char* name;
        ValueModel row;
        std::int32_t capacity, format, header, length;
    };
    const Case cases[] = {
        {"/d/a.tab", number, UNBOUNDED, 3, 0, 4},      {"/d/b.tab", number, 5, 4, 4, 4},
        {"/d/c.dbf", xbaseRow(), UNBOUNDED, 5, 65, 4}, {"/d/d.xbf", xbaseRow(), 2, 5, 65, 4},
        {"/d/dbf", number, UNBOUNDED, 3, 0, 4},        {"/d/e.dbf.txt", Text("", 10), UNBOUNDED, 3, 0, 14},
    };
    for (const Case& c : cases) {
        ListValue l = listOf(c.row, c.capacity);
        EXPECT_EQ(FileFormat(l.get(), KindList), 0);
        EXPECT_EQ(takeError(), 661);
        FileOpen(l.get(), KindList, c.name);
        EXPECT_EQ(FileFormat(l.get(), KindList), c.format) << c.name;
        EXPECT_EQ(FileHeaderSize(l.get(), KindList), c.header) << c.name;
        EXPECT_EQ(FileRecordLength(l.get(), KindList), c.length) << c.name;
        EXPECT_EQ(takeError(), 0);
    }
    ListValue memory;
    ListInit(memory.get(), UNBOUNDED, nullptr, KindInteger, false);
    EXPECT_EQ(FileRecordLength(memory.get(), KindList), 0);
    EXPECT_EQ(takeError(), 660);
    EXPECT_EQ(FileHeaderSize(memory.get(), KindList), 0);
    EXPECT_EQ(takeError(), 660);
    EXPECT_EQ(FileFormat(memory.get(), KindList), 0);
    EXPECT_EQ(takeError(), 661);
    EXPECT_FALSE(FileExists(memory.get(), KindList));
    EXPECT_FALSE(FileExists(nullptr, KindTable));
    EXPECT_EQ(FileNameOf(nullptr, KindList), "");
}

TEST_F(FileValues, TheCountInAHeaderCanBeKept) {
    files_.put("/d/a.tab", std::string(12, '\0'));
    FileKeepCount("/d/a.tab", 4, 0x01020304);
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("01020304 00000000 00000000"));
    FileKeepCount("/d/a.tab", 5, 0x01020304);
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("01020304 04030201 00000000"));
    FileKeepCount("/d/a.tab", 3, 9);
    FileKeepCount("/none", 3, 9);
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("01020304 04030201 00000000"));
    EXPECT_EQ(takeError(), 0);
    FileKeepCount("/d/none", 4, 1);
    EXPECT_EQ(takeError(), 653);
    FileKeepCount("/d/a.tab", 4, -1);
    EXPECT_EQ(takeError(), 655);
    files_.put("/d/ro.tab", std::string(12, '\0'), 0444);
    FileKeepCount("/d/ro.tab", 4, 1);
    EXPECT_EQ(takeError(), 652);
}

// ---- closing ----

TEST_F(FileValues, WhatWasClosedSurvivesTheDeathOfTheMachine) {
    for (const std::int32_t capacity : {UNBOUNDED, std::int32_t{3}}) {
        ListValue l = numbers("/d/a.tab", {1, 2}, capacity);
        FileClose(l.get(), KindList);
        files_.afterMachineDeath(os::SteeredFiles::Names::Lost);
        FileOpen(l.get(), KindList, "/d/a.tab");
        EXPECT_EQ(numbersIn(l), (Numbers{1, 2}));
        FileClose(l.get(), KindList);
        files_.remove("/d/a.tab");
    }
}

TEST_F(FileValues, ClosingWhatIsNotOpenDoesNothing) {
    ListValue l = listOf(number), memory;
    ListInit(memory.get(), UNBOUNDED, nullptr, KindInteger, false);
    std::int32_t plain = 0;
    FileClose(l.get(), KindList);
    FileClose(memory.get(), KindList);
    FileClose(&plain, KindInteger);
    FileClose(nullptr, KindList);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FileValues, AFileThatIsGoneOrCannotBeSyncedIsClosedAllTheSame) {
    ListValue l = numbers("/d/a.tab", {1});
    files_.remove("/d/a.tab");
    FileClose(l.get(), KindList);
    EXPECT_EQ(takeError(), 653);
    EXPECT_FALSE(FileExists(l.get(), KindList));
    for (const os::FileCall call : {os::FileCall::Sync, os::FileCall::SyncFolder}) {
        FileOpen(l.get(), KindList, "/d/b.tab");
        files_.failAlways(call, os::FileError::WriteFailed);
        FileClose(l.get(), KindList);
        files_.stopFailing();
        EXPECT_EQ(takeError(), 652);
        EXPECT_FALSE(FileExists(l.get(), KindList));
    }
}

TEST_F(FileValues, FreeingAListKeepsTheFileOfTheUser) {
    { const ListValue l = numbers("/d/a.tab", {1}); }
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("00000001"));
    files_.afterMachineDeath(os::SteeredFiles::Names::Lost);
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("00000001"));
    {
        ListValue l = numbers("/d/a.tab", {2});
        files_.remove("/d/a.tab");
    }
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FileValues, FreeingAListDeletesAScratchFileAndClosingKeepsIt) {
    for (const std::string name : {"/d/a.~ml", "/d/b.~"}) {
        { const ListValue l = numbers(name, {1}); }
        EXPECT_FALSE(files_.has(name)) << name;
        ListValue l = numbers(name, {1});
        FileClose(l.get(), KindList);
        EXPECT_TRUE(files_.has(name)) << name;
    }
    for (const std::string name : {"/d/~a.tab", "/d/a~", "/d/a.t~"}) {
        { const ListValue l = numbers(name, {1}); }
        EXPECT_TRUE(files_.has(name)) << name;
    }
}

TEST_F(FileValues, EmptyingAValueDoesNotTouchItsFile) {
    ListValue l = numbers("/d/a.tab", {1, 2});
    AdtClear(l.get(), KindList);
    EXPECT_EQ(numbersIn(l), (Numbers{1, 2}));
    RecordValue holder;
    RecordInit(holder.get(), TagRecord, MakeFieldKinds({KindList}));
    auto* field = static_cast<ListDescriptor*>(RecordFieldAddress(holder.get(), 1));
    ListInit(field, UNBOUNDED, nullptr, KindInteger, true);
    FileOpen(field, KindList, "/d/b.tab");
    const std::int32_t seven = 7;
    ListAppend(&seven, KindInteger, field);
    AdtClear(holder.get(), KindRecord);
    ListValue records;
    ListInit(records.get(), UNBOUNDED, holder.get(), KindRecord, false);
    ListGet(records.get(), 1, holder.get(), KindRecord);  // which clears its output
    EXPECT_EQ(takeError(), 603);
    EXPECT_EQ(FileNameOf(field, KindList), "/d/b.tab");
    EXPECT_EQ(bytesOf("/d/b.tab"), fromHex("00000007"));
}

TEST_F(FileValues, AnUnopenedListIsOpenedOnlyWithItsShape) {
    ListValue l = texts("/d/a.tab", {"a"}), like;
    AdtInit(like.get(), l.get(), KindList);
    EXPECT_EQ(nameOf(like), "");
    EXPECT_EQ(like.get()->count, 0);
    FileOpen(like.get(), KindList, "/d/a.tab");
    EXPECT_EQ(textsIn(like), (Texts{"a"}));
    EXPECT_TRUE(AdtSameShape(l.get(), like.get(), KindList));
}

// ---- failures ----

struct Making {
    const char* name;
    std::int32_t capacity;
};
constexpr Making makings[] = {
    {"/d/a.tab", UNBOUNDED}, {"/d/b.tab", 3}, {"/d/c.dbf", UNBOUNDED}, {"/d/d.dbf", 3}};

ValueModel rowFor(const Making& making, const ValueModel& xbase) {
    return std::string_view(making.name).ends_with(".dbf") ? xbase : number;
}

TEST_F(FileValues, AFileThatCannotBeMadeIsGone) {
    for (const Making& making : makings) {
        ListValue l = listOf(rowFor(making, xbaseRow()), making.capacity);
        for (int call = 1;; ++call) {
            SCOPED_TRACE(std::string(making.name) + " call " + std::to_string(call));
            files_.failAt(call, os::FileError::WriteFailed);
            FileOpen(l.get(), KindList, making.name);
            const bool reached = files_.calls() >= call;
            files_.stopFailing();
            if (!reached) break;
            EXPECT_EQ(takeError(), 652);
            EXPECT_FALSE(FileExists(l.get(), KindList));
            EXPECT_EQ(l.get()->count, 0);
            EXPECT_TRUE(files_.allFiles().empty());
            EXPECT_EQ(files_.openHandles(), 0);
        }
        EXPECT_TRUE(FileExists(l.get(), KindList));
        EXPECT_EQ(takeError(), 0);
        FileClose(l.get(), KindList);
        files_.remove(making.name);
    }
}

TEST_F(FileValues, AFileThatDoesNotFitOnTheDiskIsGone) {
    for (const Making& making : makings) {
        ListValue l = listOf(rowFor(making, xbaseRow()), making.capacity);
        for (std::int64_t bytes = 0;; ++bytes) {
            SCOPED_TRACE(std::string(making.name) + " bytes " + std::to_string(bytes));
            files_.setFreeBytes(bytes);
            FileOpen(l.get(), KindList, making.name);
            files_.stopFailing();
            if (FileExists(l.get(), KindList)) break;
            EXPECT_EQ(takeError(), 654);
            EXPECT_TRUE(files_.allFiles().empty());
        }
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(check(l), "");
        FileClose(l.get(), KindList);
        files_.remove(making.name);
    }
}

TEST_F(FileValues, AFileIsNeverSeenHalfMade) {
    for (const Making& making : makings) {
        for (const bool midway : {false, true}) {
            for (int call = 1;; ++call) {
                SCOPED_TRACE(std::string(making.name) + " call " + std::to_string(call));
                ListValue l = listOf(rowFor(making, xbaseRow()), making.capacity);
                files_.dieAt(call, midway);
                bool died = false;
                try {
                    FileOpen(l.get(), KindList, making.name);
                } catch (const os::ProcessDeath&) {
                    died = true;
                }
                files_.revive();
                files_.stopFailing();
                if (died) {
                    ListValue other = listOf(rowFor(making, xbaseRow()), making.capacity);
                    FileOpen(other.get(), KindList, making.name);
                    EXPECT_EQ(takeError(), 0);
                    EXPECT_EQ(check(other), "");
                }
                AdtFree(l.get(), KindList);
                for (const std::string& file : files_.allFiles()) files_.remove(file);
                if (!died) break;
            }
        }
    }
}

// ---- tables ----

// A table of a number, with an index on it.
TableValue tableOf(std::string_view typeText, std::int32_t maxlength = UNBOUNDED) {
    TableValue t;
    const OddValue row(Record({number}));
    TableInit(t.get(), maxlength, static_cast<const RecordDescriptor*>(row.at()), {MakeKeyMap(1)}, typeText,
              true);
    return t;
}

TEST_F(FileValues, OpeningATableChecksInOrder) {
    TableValue good = tableOf("a : integer\n"), other = tableOf("a : string[3]\n"), open = tableOf("");
    FileOpen(open.get(), KindTable, "/d/open.tab");
    files_.put("/d/torn.tab", "12345");
    files_.put("/d/full.tab", fromHex("00000002 00000001 00000002"));
    files_.put("/d/bare.tab", fromHex("00000001"));
    TableValue small = tableOf("", 1);
    struct Case {
        TableDescriptor* t;
        std::string name;
        std::int32_t error;
    };
    const Case cases[] = {
        {open.get(), "", 764},
        {other.get(), "", 661},
        {other.get(), "/d/", 657},
        {other.get(), "/d/torn.tab", 762},
        {other.get(), "/d/new.tab", 762},
        {good.get(), "/d/torn.tab", 655},
        {small.get(), "/d/full.tab", 619},
        {good.get(), "/d/bare.tab", 656},
    };
    for (const Case& c : cases) {
        FileOpen(c.t, KindTable, c.name);
        EXPECT_EQ(takeError(), c.error) << &c - cases;
        EXPECT_EQ(FileExists(c.t, KindTable), c.t == open.get());
        EXPECT_EQ(c.t->count, 0);
    }
    EXPECT_FALSE(files_.has("/d/new.tab"));
}

TEST_F(FileValues, TheTypeTextIsTheFieldsOrTheWholeDeclaration) {
    for (const char* text : {"", "a : integer\n", "r : record\n\ta : integer\nend record\n",
                             "t : table\n\tr : record\n\t\ta : integer\n\tend record\nend table\n"}) {
        TableValue t = tableOf(text);
        FileOpen(t.get(), KindTable, "/d/a.tab");
        EXPECT_EQ(takeError(), 0) << text;
    }
}

TEST_F(FileValues, ATableThatMayNotBeWrittenIsReadWithAndWithoutRows) {
    for (const bool empty : {true, false}) {
        files_.putFolder("/d", 0755);
        {
            TableValue t = tableOf("");
            FileOpen(t.get(), KindTable, "/d/a.tab");
            const OddValue row(Record({Number(KindInteger, 7)}));
            if (!empty) TableAdd(t.get(), 1, static_cast<const RecordDescriptor*>(row.at()));
        }
        for (const std::string& file : files_.allFiles()) files_.put(file, files_.contents(file), 0444);
        files_.putFolder("/d", 0555);
        TableValue t = tableOf("");
        FileOpen(t.get(), KindTable, "/d/a.tab");
        EXPECT_EQ(takeError(), 0);
        RecordValue row;
        bool found = false;
        TableFind("FIRST", t.get(), 1, nullptr, row.get(), found);
        EXPECT_EQ(found, !empty);
        FileClose(t.get(), KindTable);
        EXPECT_EQ(takeError(), 0);
        files_.putFolder("/d", 0755);
        for (const std::string& file : files_.allFiles()) files_.remove(file);
    }
}

TEST_F(FileValues, OpeningNeedsNoMemoryOfTheHeap) {
    ListValue l = listOf(Text("", 3), 2);
    FailAllocation(0);
    FileOpen(l.get(), KindList, "/d/a.tab");
    FailAllocation(-1);
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(FileExists(l.get(), KindList));
}

}  // namespace
}  // namespace tarn
