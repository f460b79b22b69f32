// SPDX-License-Identifier: Apache-2.0
//
// Whole Xbase files: saves, what is told about a file, and random tables that come back.
#include "kernel/tables/filevalues.h"
#include "kernel/text/fixed.h"
#include "unit/kernel/xbase_files_fixture.h"

#include <random>

namespace tarn {
namespace {

using namespace std::string_literals;

// ---- saving ----

TEST_F(XbaseFiles, AListIsWrittenRowByRow) {
    files_.put("/d/a.dbf", FileBytes(peopleFile, {person("1", "Ann", 'T'), person("-22", "Bob x", 'F')}));
    Typed list(people);
    load(list);
    EXPECT_EQ(saved(list, "id : integer\nname : string[8]\nok : boolean\n"),
              FileBytes({{"id", 'N', 12}, {"name", 'C', 8}, {"ok", 'L', 1}},
                        {"            1Ann     T", "          -22Bob x   F"}));
    files_.put("/d/a.dbf", FileBytes(peopleFile, {}));
    load(list);
    EXPECT_EQ(saved(list, "id : integer\nname : string[8]\nok : boolean\n"),
              FileBytes({{"id", 'N', 12}, {"name", 'C', 8}, {"ok", 'L', 1}}, {}));
}

TEST_F(XbaseFiles, NamesAndTypesThatAreMissingAreMade) {
    Typed list(
        "x : list\n\tr : record\n\t\ta : integer\n\t\tb : Tchars[1:3]\n\t\tc : record\n\t\t\td : boolean\n"
        "\t\tend record\n\tend record\nend list\n");
    EXPECT_EQ(saved(list, ""), FileBytes({{"FIELD1", 'N', 12}, {"FIELD2", 'C', 3}, {"FIELD3", 'L', 1}}, {}));
    EXPECT_EQ(saved(list, "one\ntwo\n"),
              FileBytes({{"one", 'N', 12}, {"two", 'C', 3}, {"FIELD3", 'L', 1}}, {}));
    EXPECT_EQ(saved(list, "one : integer\ntwo : Tnumeric[1:3]\n"),
              FileBytes({{"one", 'N', 12}, {"two", 'N', 3, 4}, {"FIELD3", 'L', 1}}, {}));
}

TEST_F(XbaseFiles, RowsOfAFileThatHaveNoDeclarationKeepTheirMark) {
    Typed list("x : list\n\tr : record\n\t\tdelete_flag : Tchar\n\t\ta : Tchars[1:3]\n"
               "\t\tb : Tchars[1:2]\n\tend record\nend list\n");
    const std::string bytes = FileBytes({{"FIELD1", 'C', 3}, {"FIELD2", 'C', 2}}, {" abcde", "*xyzuv"});
    files_.put("/d/a.dbf", bytes);
    load(list);
    EXPECT_EQ(saved(list, ""), bytes);
    Typed alone("x : list\n\tr : record\n\t\tdelete_flag : Tchar\n\tend record\nend list\n");
    EXPECT_EQ(saved(alone, ""), "658@0");
    EXPECT_EQ(saved(alone, "delete_flag : Tchar\n"), "658@0");
}

TEST_F(XbaseFiles, WhatIsHeldInAFileIsSavedWithTheFieldsOfThatFile) {
    const std::string bytes =
        FileBytes({{"ID", 'N', 3, 1}, {"WHEN", 'D', 8}}, {" 4.220240229", "*   20240301"});
    const std::string row =
        "T : record\n\tdelete_flag : Tchar\n\ta : Tchars[1:3]\n\tb : Tchars[1:8]\nend record\n";
    Typed record(row);
    files_.put("/d/a.dbf", bytes);
    {
        ListValue list;
        ListInit(list.get(), UNBOUNDED, record.get(), KindRecord, true);
        FileOpen(list.get(), KindList, "/d/a.dbf");
        EXPECT_EQ(XbaseSave("/d/out.dbf", list.get(), KindList, "").rows, 2);
        EXPECT_EQ(files_.contents("/d/out.dbf"), bytes);
        EXPECT_EQ(XbaseSave("/d/a.dbf", list.get(), KindList, "").rows, 2);  // itself
        EXPECT_EQ(files_.contents("/d/a.dbf"), bytes.substr(0, bytes.size() - 1));
        ListAppend(record.get(), KindRecord, list.get());
        EXPECT_EQ(takeError(), 0);
        files_.remove("/d/a.dbf");
        EXPECT_EQ(XbaseSave("/d/out.dbf", list.get(), KindList, "").code, 651);
    }
    files_.put("/d/a.dbf", bytes);
    TableValue table;
    TableInit(table.get(), UNBOUNDED, record.get<RecordDescriptor>(), {}, "", true);
    FileOpen(table.get(), KindTable, "/d/a.dbf");
    files_.remove("/d/out.dbf");
    EXPECT_EQ(XbaseSave("/d/out.dbf", table.get(), KindTable, "").rows, 2);
    EXPECT_EQ(files_.contents("/d/out.dbf"), bytes);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(XbaseFiles, WideDeclarationsAreReadByTheirCharacters) {
    CharacterWidth = 2;
    {
        const String text("t : table\n\tT : record\n\t\tdelete_flag : Tchar\n\t\tid : Tnumeric[1:4]\n"
                          "\tend record\nend table\n");
        TableValue table;
        TypeInfoToTable(text.get(), table.get());
        EXPECT_EQ(XbaseSave("/d/out.dbf", table.get(), KindTable, "").code, 0);
        EXPECT_EQ(files_.contents("/d/out.dbf"), FileBytes({{"id", 'N', 4, 4}}, {}));
    }
    CharacterWidth = 1;
}

TEST_F(XbaseFiles, ATableHasItsOwnNames) {
    const String text(
        "t : table\n\tT : record\n\t\tdelete_flag : Tchar\n\t\tid : Tnumeric[1:4]\n\tend record\n"
        "end table\n");
    TableValue table;
    TypeInfoToTable(text.get(), table.get());
    RecordValue row = recordOf({ordinal(0), characters("12", 4)});
    TableAdd(table.get(), 1, row.get());
    putCells({ordinal('*'), characters("   7", 4)}, row.get());
    TableAdd(table.get(), 1, row.get());
    EXPECT_EQ(XbaseSave("/d/out.dbf", table.get(), KindTable, "other : Tchars\n").rows, 2);
    EXPECT_EQ(files_.contents("/d/out.dbf"), FileBytes({{"id", 'N', 4, 4}}, {" 12  ", "*   7"}));
    TableValue back;
    TypeInfoToTable(text.get(), back.get());
    EXPECT_EQ(XbaseLoad("/d/out.dbf", back.get(), KindTable, message).code, 0);
    EXPECT_EQ(Shown(back.get(), KindTable), "{32|'12  '}{42|'   7'}");
}

TEST_F(XbaseFiles, ARecordAStringAndASetAreRowsToo) {
    Typed record("r : record\n\ta : integer\n\tb : boolean\nend record\n");
    EXPECT_EQ(saved(record, "a : integer\nb : boolean\n"),
              FileBytes({{"a", 'N', 12}, {"b", 'L', 1}}, {"            0F"}));
    Typed text("s : string[20]\n");
    StringAssignView(text.get<StringDescriptor>(), "ab\r\n\nc d  \nlast");
    EXPECT_EQ(saved(text, "s : string[20]\n"),
              FileBytes({{"s", 'C', 20}}, {" ab                  ", std::string(21, ' '),
                                           " c d                 ", " last                "}));
    files_.put("/d/a.dbf", files_.contents("/d/out.dbf"));
    EXPECT_EQ(load(text), "ab\n\nc d\nlast\n#4");
    Typed set("s : set[-5:900]\n");
    for (const int member : {-5, 7, 900}) SetInclude(member, set.get<SetDescriptor>());
    EXPECT_EQ(saved(set, ""),
              FileBytes({{"FIELD1", 'N', 12}}, {"           -5", "            7", "          900"}));
    files_.put("/d/a.dbf", files_.contents("/d/out.dbf"));
    Typed back("s : set[-5:900]\n");
    EXPECT_EQ(load(back), "[-5,7,900]#3");
}

TEST_F(XbaseFiles, ARowThatDoesNotFitLeavesTheOldFile) {
    Typed reals("x : list\n\tr : real\nend list\n");
    for (const double value : {1.0, 2.0, 1e18, 3.0, 1e18})
        ListAppend(&value, KindReal, reals.get<ListDescriptor>());
    files_.put("/d/out.dbf", "old");
    EXPECT_EQ(saved(reals, "r : real\n"), "658@3");
    Typed fixed("x : list\n\tr : fixed\nend list\n");
    ListAppend(&SmallestFixed, KindFixed, fixed.get<ListDescriptor>());
    EXPECT_EQ(saved(fixed, "r : fixed\n"), "658@1");
    Typed texts("x : list\n\ts : string\nend list\n");
    const String longText(std::string(256, 'x'));
    ListAppend(longText.get(), KindString, texts.get<ListDescriptor>());
    EXPECT_EQ(saved(texts, "s : string\n"), "658@1");
    Typed lines("s : string\n");
    StringAssignView(lines.get<StringDescriptor>(), "a\n" + std::string(256, 'x') + "\n");
    EXPECT_EQ(saved(lines, "s : string\n"), "658@2");
    Typed wide("x : list\n\ts : string[256]\nend list\n");
    EXPECT_EQ(saved(wide, "s : string[256]\n"), "658@0");
    EXPECT_EQ(files_.contents("/d/out.dbf"), "old");
}

TEST_F(XbaseFiles, AFailureAtAnyCallLeavesTheOldFileWhole) {
    Typed list("x : list\n\ti : integer\nend list\n");
    addNumbers(list, 3);
    const std::string whole = saved(list, "i : integer\n");
    int failures = 0;
    for (int call = 1;; ++call) {
        files_.put("/d/out.dbf", "old");
        files_.failAt(call, os::FileError::DiskFull);
        const DataResult result = XbaseSave("/d/out.dbf", list.get(), KindList, "i : integer\n");
        files_.stopFailing();
        ASSERT_LT(call, 50);
        const std::string now = files_.contents("/d/out.dbf");
        if (result.code == 0 && now == whole && call > 12) break;
        if (result.code == 0) continue;
        ++failures;
        EXPECT_TRUE(result.code == 654 || result.code == 652) << call << " " << result.code;
        EXPECT_EQ(result.rows, 0);
        EXPECT_TRUE(now == "old" || now == whole) << call;
    }
    EXPECT_GE(failures, 4);
}

TEST_F(XbaseFiles, ADeathAtAnyCallLeavesTheOldOrTheNewFile) {
    Typed list("x : list\n\ti : integer\nend list\n");
    addNumbers(list, 3);
    const std::string whole = saved(list, "i : integer\n");
    for (const bool midway : {false, true}) {
        for (int call = 1; call < 30; ++call) {
            files_.put("/d/out.dbf", "old");
            files_.dieAt(call, midway);
            bool died = false;
            try {
                XbaseSave("/d/out.dbf", list.get(), KindList, "i : integer\n");
            } catch (const os::ProcessDeath&) {
                died = true;
            }
            files_.afterMachineDeath(os::SteeredFiles::Names::Lost);
            files_.stopFailing();
            const std::string now = files_.contents("/d/out.dbf");
            EXPECT_TRUE(now == "old" || now == whole) << call;
            if (!died) {
                EXPECT_EQ(now, whole);
                break;
            }
        }
    }
}

TEST_F(XbaseFiles, AFullDiskAFolderAndAReadOnlyFileAreTold) {
    Typed list("x : list\n\ti : integer\nend list\n");
    addNumbers(list, 3);
    files_.put("/d/out.dbf", "old", 0444);
    EXPECT_EQ(saved(list, "i : integer\n"), "652@0");
    EXPECT_EQ(files_.contents("/d/out.dbf"), "old");
    EXPECT_EQ(saved(list, "i : integer\n", "/d"), "652@0");
    EXPECT_EQ(saved(list, "i : integer\n", "/none/a.dbf"), "652@0");
    EXPECT_EQ(saved(list, "i : integer\n", ""), "657@0");
    files_.put("/d/other.dbf", "old");
    files_.setFreeBytes(30);
    EXPECT_EQ(saved(list, "i : integer\n", "/d/other.dbf"), "654@0");
    EXPECT_EQ(files_.contents("/d/other.dbf"), "old");
}

TEST_F(XbaseFiles, AStoppedSaveLeavesTheOldFile) {
    Typed list("x : list\n\ts : string[255]\nend list\n");
    const String text(std::string(255, 'x'));
    for (int i = 0; i < 12000; ++i) ListAppend(text.get(), KindString, list.get<ListDescriptor>());
    files_.put("/d/out.dbf", "old");
    static std::int64_t last = 0;
    UseProgress([](std::int64_t done, std::int64_t total) {
        last = total;
        return done < total / 2;
    });
    const DataResult result = XbaseSave("/d/out.dbf", list.get(), KindList, "s : string\n");
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.rows, 0);
    EXPECT_NEAR(static_cast<double>(last), 12000.0 * 256, 12000);
    EXPECT_EQ(files_.contents("/d/out.dbf"), "old");
}

// docs/formats/xbase.md shows these bytes.
TEST_F(XbaseFiles, AFileIsWrittenByteByByte) {
    clock_.setLocal({2026, 11, 21, 12, 0, 0, 0});
    Typed list("x : list\n\tr : record\n\t\tdelete_flag : Tchar\n\t\tid : integer\n\t\tname : string[6]\n"
               "\t\tok : boolean\n\tend record\nend list\n");
    for (const Cells& cells : {Cells{ordinal(' '), integer(7), text("Ann", 6), flag(true)},
                               Cells{ordinal('*'), integer(-40), text("Bob", 6), flag(false)}})
        putCells(cells, static_cast<RecordDescriptor*>(ListAppendEmpty(list.get<ListDescriptor>())));
    EXPECT_EQ(saved(list, "delete_flag : Tchar\nid : integer\nname : string[6]\nok : boolean\n"),
              "\x03\x1A\x0B\x15\x02\x00\x00\x00\x81\x00\x14\x00\x00\x00\x00\x00"
              "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
              "\x69\x64\x00\x00\x00\x00\x00\x00\x00\x00\x00\x4E\x00\x00\x00\x00"
              "\x0C\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
              "\x6E\x61\x6D\x65\x00\x00\x00\x00\x00\x00\x00\x43\x00\x00\x00\x00"
              "\x06\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
              "\x6F\x6B\x00\x00\x00\x00\x00\x00\x00\x00\x00\x4C\x00\x00\x00\x00"
              "\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
              "\x0D"
              "            7Ann   T"
              "*         -40Bob   F"
              "\x1A"s);
}

// ---- memory ----

TEST_F(XbaseFiles, ALackOfMemoryLeavesTheTarget) {
    std::vector<std::string> rows;
    for (int i = 0; i < 20; ++i) rows.push_back(person(std::to_string(i), "name", 'T'));
    const std::string bytes = FileBytes(peopleFile, rows);
    const char* const declarations[] = {
        people, "s : set[0:100]\n", "r : record\n\tid : integer\n\tname : string\nend record\n",
        "x : list\n\tr : record\n\t\tid : integer\n\t\tname : string\n\tend record\nend list\n"};
    for (const char* declaration : declarations) {
        const std::string whole = loaded(bytes, declaration);
        for (std::int64_t n = 0;; ++n) {
            SCOPED_TRACE(declaration + std::to_string(n));
            Typed value(declaration);
            const std::string empty = Shown(value.get(), value.kind());
            const std::int64_t blocks = LiveBlocks();
            FailAllocation(n);
            const std::string result = load(value);
            FailAllocation(-1);
            if (result == whole) break;
            EXPECT_EQ(result, "802@0 " + empty + "#0");
            EXPECT_EQ(LiveBlocks(), blocks);
            ASSERT_LT(n, 500);
        }
    }
    files_.put("/d/a.dbf", FileBytes({{"A", 'C', 20}}, {" one                 ", " two                 "}));
    for (std::int64_t n = 0; n <= 1; ++n) {
        Typed text("s : string\n");
        FailAllocation(n);
        const std::string result = load(text);
        FailAllocation(-1);
        EXPECT_EQ(result, n == 0 ? "802@0 #0" : "one\ntwo\n#2");
    }
}

// ---- the one door ----

TEST_F(XbaseFiles, FormatFiveIsXbase) {
    Typed list("x : list\n\tr : record\n\t\ti : integer\n\tend record\nend list\n");
    ListAppendEmpty(list.get<ListDescriptor>());
    EXPECT_EQ(SaveValue("/d/b.dbf", FormatXbase, {}, 0, list.get(), KindList).code, 0);
    EXPECT_EQ(files_.contents("/d/b.dbf"), FileBytes({{"FIELD1", 'N', 12}}, {"            0"}));
    EXPECT_EQ(SaveValue("/d/b.dbf", FormatXbase, {}, 0, list.get(), KindList, "number\n").code, 0);
    EXPECT_EQ(files_.contents("/d/b.dbf"), FileBytes({{"number", 'N', 12}}, {"            0"}));
    const DataResult result = LoadValue("/d/b.dbf", FormatXbase, {}, list.get(), KindList, message);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.rows, 1);
    files_.put("/d/b.dbf", "PK");
    EXPECT_EQ(LoadValue("/d/b.dbf", FormatXbase, {}, list.get(), KindList, message).code, 661);
    EXPECT_EQ(message, "Xbase file does not start with a valid signature byte");
    SetError(604);
    EXPECT_EQ(LoadValue("/d/none", FormatXbase, {}, list.get(), KindList, message).code, 651);
    EXPECT_EQ(takeError(), 604);
}

TEST_F(XbaseFiles, AFileIsDescribed) {
    files_.put(
        "/d/my.dbf",
        FileBytes({{"ID", 'N', 5}, {"NAME", 'C', 20}, {"BORN", 'D', 8}, {"OK", 'L', 1}, {"MORE", 'C', 9}},
                  {}));
    DataFileInfo info = GetDataFileInfo("/d/my.dbf", nullptr);
    EXPECT_EQ(info.message, "");
    EXPECT_EQ(info.format, FormatXbase);
    EXPECT_EQ(info.typeText, "delete_flag : Tchar\nID : Tnumeric[1:5]\nNAME : Tchars[1:20]\n"
                             "BORN : Tdate[1:8]\nOK : Tlogical[1:1]\nMORE : Tchars[1:9]\n");
    EXPECT_EQ(info.keys, "ID,NAME,BORN,OK");
    const String name("/d/my.dbf");
    String keys, text, told;
    GetDataFileInfo(name.get(), nullptr, keys.get(), text.get(), told.get());
    EXPECT_EQ(keys.view(), "ID,NAME,BORN,OK");
    EXPECT_EQ(text.view(), info.typeText);
    EXPECT_EQ(told.view(), "");
    // Whatever it is called.
    files_.put("/d/other.txt", HeadBytes({{"A", 'C', 3}}));
    EXPECT_EQ(GetDataFileInfo("/d/other.txt", nullptr).typeText, "delete_flag : Tchar\nA : Tchars[1:3]\n");
}

TEST_F(XbaseFiles, AFileThatIsDescribedCanBeLoadedSo) {
    const std::string bytes = FileBytes(peopleFile, {person("1", "Ann", 'T'), person("2", "Bob", 'F', '*')});
    files_.put("/d/a.dbf", bytes);
    const DataFileInfo info = GetDataFileInfo("/d/a.dbf", nullptr);
    const String text("t : table\n\tT : record\n" + indented(info.typeText) + "\tend record\nend table\n");
    TableValue table;
    TypeInfoToTable(text.get(), table.get());
    EXPECT_EQ(LoadValue("/d/a.dbf", FormatXbase, {}, table.get(), KindTable, message).code, 0);
    EXPECT_EQ(Shown(table.get(), KindTable), "{32|'   1'|'Ann     '|'T'}{42|'   2'|'Bob     '|'F'}");
    // And is the same file again, but for the decimals of numbers.
    EXPECT_EQ(SaveValue("/d/a.dbf", FormatXbase, {}, 0, table.get(), KindTable).code, 0);
    std::string again = files_.contents("/d/a.dbf");
    EXPECT_EQ(again[32 + 17], 4);
    again[32 + 17] = 0;
    EXPECT_EQ(again, bytes);
}

TEST_F(XbaseFiles, FaultsOfAFileAreItsDescription) {
    const auto described = [&](const std::string& bytes) {
        files_.put("/d/a.dbf", bytes);
        const DataFileInfo info = GetDataFileInfo("/d/a.dbf", nullptr);
        EXPECT_EQ(info.typeText, "");
        EXPECT_EQ(info.keys, "");
        EXPECT_EQ(ErrorCell(), 0);
        return info.message;
    };
    EXPECT_EQ(described("\3\1\2\3"), "Xbase file header is incomplete");
    EXPECT_EQ(described(HeadBytes({{"A"}}, 0, 32)), "Xbase file header is too small");
    EXPECT_EQ(described(HeadBytes({{"A", 'M', 10}})),
              "Xbase field number 1 is type M which is not a standard Xbase type");
    EXPECT_EQ(described(HeadBytes({}, 0, 65, 1) + std::string(32, ' ')),
              "Data File information cannot be obtained");
    std::string bytes = HeadBytes({{"A"}});
    bytes[2] = 13;
    EXPECT_EQ(described(bytes), "File '/d/a.dbf' is an unknown file type (first four bytes = 03 01 0D 03).");
}

TEST_F(XbaseFiles, AnIndexFileHasTheDescriptionOfItsKey) {
    const auto indexFile = [](const std::string& text) {
        std::string bytes = "\0\0\x04\x50\0\0\0\0orders.tab"s;
        bytes.resize(49);
        bytes += text;
        bytes.resize(1104);
        return bytes;
    };
    files_.put("/d/orders.i1",
               indexFile("Index1 : record\n\tid : integer\n\tname : string[8]\nend record\n"));
    const DataFileInfo info = GetDataFileInfo("/d/orders.i1", nullptr);
    EXPECT_EQ(info.message, "");
    EXPECT_EQ(info.typeText, "id : integer\nname : string[8]\n");
    EXPECT_EQ(info.keys, "id,name");
    const char* const noInformation = "Data File information cannot be obtained";
    const std::string whole = indexFile("Index1 : record\n\tid : integer\nend record");
    files_.put("/d/a.i1", whole);
    EXPECT_EQ(GetDataFileInfo("/d/a.i1", nullptr).typeText, "id : integer\n");
    for (const std::string& bytes : {indexFile(""), whole.substr(0, 4), whole.substr(0, 1103),
                                     indexFile(std::string(1055, 'x')), indexFile("a : \x01 b\n")}) {
        files_.put("/d/a.i1", bytes);
        const DataFileInfo none = GetDataFileInfo("/d/a.i1", nullptr);
        EXPECT_EQ(none.message, noInformation);
        EXPECT_EQ(none.typeText, "");
    }
}

// ---- much ----

TEST_F(XbaseFiles, RandomTablesComeBack) {
    std::mt19937_64 random(99);
    Typed list(
        "x : list\n\tr : record\n\t\tdelete_flag : Tchar\n\t\ta : boolean\n\t\tb : enum\n\t\tc : integer\n"
        "\t\td : fixed\n\t\te : real\n\t\tf : string[30]\n\t\tg : string\n\t\th : Tchars[1:9]\n"
        "\t\ti : Tdate[1:8]\n\tend record\nend list\n");
    const std::string lines = "delete_flag : Tchar\na : boolean\nb : enum\nc : integer\nd : fixed\ne : real\n"
                              "f : string[30]\ng : string\nh : Tchars[1:9]\ni : Tdate[1:8]\n";
    const auto textOf = [&](std::size_t most) {
        std::string text(random() % (most + 1), ' ');
        for (char& c : text) c = static_cast<char>(random() % 256);
        return text.substr(0, text.find_last_not_of(" \0"s) + 1);
    };
    for (int i = 0; i < 20000; ++i) {
        const Cells cells = {ordinal(random() % 2 == 0 ? ' ' : '*'),
                             flag(random() % 2 == 0),
                             ordinal(static_cast<std::int64_t>(random() % 256)),
                             integer(static_cast<std::int32_t>(random()) >> random() % 31),
                             fixedNumber(static_cast<std::int64_t>(random()) >> (4 + random() % 56)),
                             real(static_cast<double>(static_cast<std::int64_t>(random()) >> 24) / 16),
                             text(textOf(30), 30),
                             text(textOf(255)),
                             characters(textOf(9), 9),
                             characters("20240229", 8)};
        putCells(cells, static_cast<RecordDescriptor*>(ListAppendEmpty(list.get<ListDescriptor>())));
    }
    ASSERT_EQ(XbaseSave("/d/a.dbf", list.get(), KindList, lines).code, 0);
    Typed back("x : list\n\tr : record\n" + indented(lines) + "\tend record\nend list\n");
    const DataResult result = XbaseLoad("/d/a.dbf", back.get(), KindList, message, -1, lines);
    EXPECT_EQ(result.code, 0) << result.row;
    EXPECT_EQ(result.rows, 20000);
    EXPECT_TRUE(AdtCompare("EQ", list.get(), back.get(), KindList));
}

}  // namespace
}  // namespace tarn
