// SPDX-License-Identifier: Apache-2.0
//
// Opening, making and closing the files of lists.
#include "unit/kernel/filevalues_fixture.h"

namespace tarn {
namespace {

using model::Array;
using model::List;
using model::Number;
using model::Record;
using model::Set;
using model::Text;

using namespace std::string_literals;

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

}  // namespace
}  // namespace tarn
