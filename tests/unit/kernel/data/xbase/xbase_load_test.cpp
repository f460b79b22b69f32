// SPDX-License-Identifier: Apache-2.0
//
// Xbase files loaded into values of each kind, and files that cannot be.
#include "unit/kernel/xbase_files_fixture.h"

namespace tarn {
namespace {

using namespace std::string_literals;

// ---- loading ----

TEST_F(XbaseFiles, AListTakesEachRowAsARecord) {
    EXPECT_EQ(loaded(FileBytes(peopleFile, {person("1", "Ann", 'T'), person("-22", "Bob x", 'F'),
                                            person("333", "", '?', '*')}),
                     people),
              "{1|Ann|True}{-22|Bob x|False}{333||False}#3");
    EXPECT_EQ(message, "");
    EXPECT_EQ(loaded(FileBytes(peopleFile, {}), people), "#0");
}

TEST_F(XbaseFiles, TheOldContentGoes) {
    files_.put("/d/a.dbf", FileBytes({{"A", 'N', 2}}, {"  7"}));
    Typed list("x : list\n\ti : integer\nend list\n");
    addNumbers(list, 3);
    EXPECT_EQ(load(list), "{7}#1");
}

TEST_F(XbaseFiles, TheMarkOfDeletionIsData) {
    const std::string marked = "x : list\n\tr : record\n\t\tdelete_flag : Tchar\n\t\tid : Tnumeric[1:4]\n"
                               "\t\tname : Tchars[1:8]\n\t\tok : Tlogical[1:1]\n\tend record\nend list\n";
    EXPECT_EQ(loaded(FileBytes(peopleFile, {person("1", "Ann", 'T'), person("2", "Bob", 'F', '*')}), marked),
              "{32|'   1'|'Ann     '|'T'}{42|'   2'|'Bob     '|'F'}#2");
}

TEST_F(XbaseFiles, ARowThatLacksAFieldIsNoRowWithoutAMark) {
    const std::string bytes = FileBytes({{"ID", 'N', 3}, {"NAME", 'C', 3}}, {"* 42Ann", "  43Bob"});
    const auto list = [](const std::string& lines) {
        return "x : list\n\tr : record\n" + lines + "\tend record\nend list\n";
    };
    const std::string flag = "\t\tdelete_flag : Tchar\n", id = "\t\tid : Tnumeric[1:3]\n",
                      name = "\t\tname : Tchars[1:3]\n";
    EXPECT_EQ(loaded(bytes, list(flag + id + name)), "{42|' 42'|'Ann'}{32|' 43'|'Bob'}#2");
    EXPECT_EQ(loaded(bytes, list(flag + id)), "658@1 {42|' 42'}{32|' 43'}#2");
    EXPECT_EQ(loaded(bytes, list(flag + id + name + name)).substr(0, 6), "658@1 ");
    EXPECT_EQ(loaded(bytes, list(id)), "658@1 {' 42'}{' 43'}#2");
    // An enum ahead of other kinds is a field, unless it is declared as the mark.
    EXPECT_EQ(loaded(bytes, list("\t\tid : enum\n\t\tname : string\n")), "{42|Ann}{43|Bob}#2");
    Typed integers(list(flag + "\t\tid : integer\n" + name));
    files_.put("/d/a.dbf", bytes);
    EXPECT_EQ(XbaseLoad("/d/a.dbf", integers.get(), KindList, message).code, 658);
    const char* const lines = "delete_flag : Tchar\nid : integer\nname : Tchars[1:3]\n";
    EXPECT_EQ(XbaseLoad("/d/a.dbf", integers.get(), KindList, message, -1, lines).code, 0);
    EXPECT_EQ(Shown(integers.get(), KindList), "{42|42|'Ann'}{32|43|'Bob'}");
}

TEST_F(XbaseFiles, ATableIsDeclaredWithTheMarkOrWithoutIt) {
    files_.put("/d/a.dbf", FileBytes({{"ID", 'N', 3}}, {"* 42"}));
    const auto shown = [&](const std::string& lines) {
        const String text("t : table\n\tT : record\n" + indented(lines) + "\tend record\nend table\n");
        TableValue table;
        TypeInfoToTable(text.get(), table.get());
        const std::int32_t code = XbaseLoad("/d/a.dbf", table.get(), KindTable, message).code;
        return std::to_string(code) + " " + Shown(table.get(), KindTable);
    };
    EXPECT_EQ(shown("delete_flag : Tchar\nid : integer\n"), "0 {42|42}");
    EXPECT_EQ(shown("mark : Tchar\nid : integer\n"), "658 {42|0}");
}

TEST_F(XbaseFiles, RowsAreReadUntilAShortOne) {
    const std::string rows = person("1", "Ann", 'T') + person("2", "Bob", 'T');
    const std::string both = "{1|Ann|True}{2|Bob|True}#2";
    // Whatever the header counts.
    for (const std::uint32_t records : {0U, 1U, 2U, 3U, 0xFFFFFFFFU})
        EXPECT_EQ(loaded(HeadBytes(peopleFile, records) + rows + "\x1A", people), both) << records;
    EXPECT_EQ(loaded(HeadBytes(peopleFile, 2) + rows, people), both);
    EXPECT_EQ(loaded(HeadBytes(peopleFile, 2) + rows + rows.substr(0, 13), people), both);
    EXPECT_EQ(loaded(HeadBytes(peopleFile, 2) + rows.substr(0, 27), people), "{1|Ann|True}#1");
    EXPECT_EQ(loaded(HeadBytes(peopleFile, 2), people), "#0");
}

TEST_F(XbaseFiles, RowsBeginWhereTheHeaderEnds) {
    const std::string row = person("1", "Ann", 'T');
    std::string bytes = HeadBytes(peopleFile, 1, 130);
    EXPECT_EQ(loaded(bytes + '\0' + row, people), "{1|Ann|True}#1");
    bytes = HeadBytes(peopleFile, 1, 129 + 263);
    EXPECT_EQ(loaded(bytes + std::string(263, '\0') + row, people), "{1|Ann|True}#1");
}

TEST_F(XbaseFiles, TheEndOfAFileIsNoRowOfOneByte) {
    const std::string head = HeadBytes({}, 0, 65, 1) + std::string(32, ' ').substr(1);
    const std::string flags = "x : list\n\tr : record\n\t\tdelete_flag : Tchar\n\tend record\nend list\n";
    ASSERT_EQ(head.size(), 64U);
    EXPECT_EQ(loaded(head + " * *\x1A", flags), "{42}{32}{42}#3");
    EXPECT_EQ(loaded(head + " * *", flags), "{42}{32}{42}#3");
    EXPECT_EQ(loaded(head + " \x1A", flags), "#0");
    EXPECT_EQ(loaded(head + " ", flags), "#0");
}

TEST_F(XbaseFiles, MarksOfTheEndBehindTheCountAreNoRows) {
    const std::string list = "x : list\n\ts : string\nend list\n";
    const std::string bytes = FileBytes({{"A", 'C', 3}}, {" abc", " def"});
    const std::string rows = "{abc}{def}#2", four(4, '\x1A'), ends = four.substr(1);
    for (const int marks : {1, 2, 3, 4, 5, 50})
        EXPECT_EQ(loaded(bytes + std::string(marks, '\x1A'), list), rows) << marks;
    // Rows that the header counts are rows, and so are those that say something.
    const std::string head = HeadBytes({{"A", 'C', 3}}, 2);
    EXPECT_EQ(loaded(head + " abc" + four + four, list), "{abc}{" + ends + "}#2");
    EXPECT_EQ(loaded(head + " abc def" + four + " ghi" + four, list), "{abc}{def}{" + ends + "}{ghi}#4");
    EXPECT_EQ(loaded(HeadBytes({{"A", 'C', 3}}, 0xFFFFFFFF) + " abc" + four, list), "{abc}{" + ends + "}#2");
    const std::string flags = "x : list\n\tr : record\n\t\tdelete_flag : Tchar\n\tend record\nend list\n";
    const std::string none = HeadBytes({}, 0, 65, 1) + std::string(31, ' ');
    EXPECT_EQ(loaded(none + " * *\x1A\x1A\x1A", flags), "{42}{32}{42}#3");
}

TEST_F(XbaseFiles, TheFirstRowThatFailsIsTold) {
    const std::string bytes = FileBytes(peopleFile, {person("1", "Ann", 'T'), person("x", "Bob", 'T'),
                                                     person("3", "Cid", 'T'), person("****", "Dan", 'T')});
    EXPECT_EQ(loaded(bytes, people), "658@2 {1|Ann|True}{0|Bob|True}{3|Cid|True}{0|Dan|True}#4");
    // A kind that the file does not have.
    EXPECT_EQ(loaded(bytes, "x : list\n\tr : record\n\t\tid : string[4]\n\t\tname : string[8]\n\tend record\n"
                            "end list\n"),
              "658@1 {|Ann}{|Bob}{|Cid}{|Dan}#4");
    EXPECT_EQ(loaded(FileBytes({{"A", 'C', 2}}, {" ab"}),
                     "x : list\n\tr : record\n\t\ta : string\n\t\tb : string\n\tend record\nend list\n"),
              "658@1 {ab|}#1");
    EXPECT_EQ(
        loaded(FileBytes({{"A", 'C', 5}}, {" abc  ", " abcde"}), "x : list\n\ts : string[3]\nend list\n"),
        "658@2 {abc}{abc}#2");
}

TEST_F(XbaseFiles, ListsOfOtherElementsTakeTheFirstField) {
    const std::string bytes = FileBytes({{"A", 'N', 4}, {"B", 'C', 4}}, {"  1.5abcd", "     efgh"});
    EXPECT_EQ(loaded(bytes, "x : list\n\tf : fixed\nend list\n"), "{15000f}{0f}#2");
    EXPECT_EQ(loaded(bytes, "x : list\n\tf : Tchars[1:4]\nend list\n"), "{' 1.5'}{'    '}#2");
    // What a shorter array has no room for is a failure, unless it is blank.
    EXPECT_EQ(loaded(bytes, "x : list\n\tf : Tchars[1:3]\nend list\n"), "{' 1.'}{'   '}#2");
    EXPECT_EQ(loaded(bytes, "x : list\n\tf : boolean\nend list\n"), "658@1 {False}{False}#2");
}

TEST_F(XbaseFiles, ARecordTakesTheFirstRow) {
    const std::string record = "r : record\n\tid : integer\n\tname : string[8]\n\tok : boolean\nend record\n";
    EXPECT_EQ(loaded(FileBytes(peopleFile, {person("1", "Ann", 'T'), person("2", "Bob", 'T')}), record),
              "1|Ann|True#1");
    EXPECT_EQ(loaded(FileBytes(peopleFile, {}), record), "0||False#0");
    EXPECT_EQ(loaded(FileBytes(peopleFile, {person("x", "Ann", 'T')}), record), "658@1 0|Ann|True#1");
}

TEST_F(XbaseFiles, AStringTakesTheFirstFieldOfEachRowInALine) {
    const std::string bytes =
        FileBytes({{"A", 'C', 4}, {"B", 'C', 4}}, {" ab  xxxx", " cd efxxx", "*    xxxx"});
    EXPECT_EQ(loaded(bytes, "s : string\n"), "ab\ncd e\n\n#3");
    EXPECT_EQ(loaded(bytes, "s : string[9]\n"), "ab\ncd e\n\n#3");
    EXPECT_EQ(loaded(bytes, "s : string[5]\n"), "658@2 ab\ncd#2");
    EXPECT_EQ(loaded(FileBytes({{"A", 'D', 8}}, {" 20240229"}), "s : string\n"), "20240229\n#1");
    EXPECT_EQ(loaded(FileBytes({{"A", 'N', 2}}, {" 12", " 13"}), "s : string\n"), "658@1 \n\n#2");
    EXPECT_EQ(loaded(FileBytes({{"A", 'N', 2}}, {}), "s : string\n"), "#0");
}

TEST_F(XbaseFiles, ASetTakesTheNumberOfEachRow) {
    const XFields file = {{"A", 'N', 6}, {"B", 'C', 1}};
    EXPECT_EQ(loaded(FileBytes(file, {"      3x", "*     5x", "      4x", "     -1x", "       x"}),
                     "s : set[-1:9]\n"),
              "[-1,3..5]#5");
    EXPECT_EQ(loaded(FileBytes(file, {"      3x", "    10 x", "      4x"}), "s : set[1:9]\n"),
              "658@2 [3..4]#3");
    EXPECT_EQ(loaded(FileBytes(file, {"      3x", "   abc x"}), "s : set[1:9]\n"), "658@2 [3]#2");
    EXPECT_EQ(loaded(FileBytes({{"A", 'C', 2}}, {"  3"}), "s : set[1:9]\n"), "658@1 []#1");
}

TEST_F(XbaseFiles, ATableTakesEachRow) {
    files_.put("/d/a.dbf", FileBytes(peopleFile, {person("2", "Bob", 'T'), person("1", "Ann", 'F'),
                                                  person("2", "Bob", 'F'), person("3", "Cid", 'F')}));
    const String text("t : table\n\tT : record\n\t\tid : integer\n\t\tname : string[8]\n\t\tok : boolean\n"
                      "\tend record\nend table\n");
    TableValue table;
    TypeInfoToTable(text.get(), table.get());
    const DataResult result = XbaseLoad("/d/a.dbf", table.get(), KindTable, message);
    EXPECT_EQ(result.code, 635);
    EXPECT_EQ(result.row, 3);
    EXPECT_EQ(result.rows, 3);
    EXPECT_EQ(Shown(table.get(), KindTable), "{2|Bob|True}{1|Ann|False}{3|Cid|False}");
    EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
}

TEST_F(XbaseFiles, ALoadCanBeLimited) {
    files_.put("/d/a.dbf", FileBytes({{"A", 'N', 2}}, {"  1", "  2", "  3"}));
    Typed list("x : list\n\ti : integer\nend list\n");
    for (const std::int32_t most : {0, 1, 2, 3, 4, -1, -7}) {
        const DataResult result = XbaseLoad("/d/a.dbf", list.get(), KindList, message, most);
        EXPECT_EQ(result.rows, most < 0 || most > 3 ? 3 : most);
        EXPECT_EQ(list.get<ListDescriptor>()->count, result.rows);
        EXPECT_EQ(LoadValue("/d/a.dbf", FormatXbase, {0, 0, ',', most}, list.get(), KindList, message).rows,
                  result.rows);
    }
}

TEST_F(XbaseFiles, AFullListEndsTheLoad) {
    const std::string bytes = FileBytes({{"A", 'N', 2}}, {"  1", "  2", "  3", "  4"});
    EXPECT_EQ(loaded(bytes, "x : list[2]\n\ti : integer\nend list\n").substr(0, 4), "{1}{");
    files_.put("/d/a.dbf", bytes);
    ListValue list;
    ListInit(list.get(), 2, nullptr, KindInteger, false);
    const DataResult result = XbaseLoad("/d/a.dbf", list.get(), KindList, message);
    EXPECT_EQ(result.code, 618);
    EXPECT_EQ(result.row, 3);
    EXPECT_EQ(result.rows, 2);
    EXPECT_EQ(Shown(list.get(), KindList), "{1}{2}");
    const String text("t : table\n\tT : record\n\t\tid : integer\n\tend record\nend table\n");
    RecordValue row = recordOf({integer(0)});
    TableValue table;
    TableInit(table.get(), 3, row.get(), {}, "id : integer\n", false);
    const DataResult full = XbaseLoad("/d/a.dbf", table.get(), KindTable, message);
    EXPECT_EQ(full.code, 619);
    EXPECT_EQ(full.row, 4);
    EXPECT_EQ(full.rows, 3);
}

TEST_F(XbaseFiles, ManyRowsAreReadInBlocks) {
    std::vector<std::string> rows;
    std::int64_t sum = 0;
    for (int i = 0; i < 70000; ++i) {
        std::string number = std::to_string(i);
        rows.push_back(" " + std::string(6 - number.size(), ' ') + number);
        sum += i;
    }
    files_.put("/d/a.dbf", FileBytes({{"A", 'N', 6}}, rows));
    Typed list("x : list\n\ti : integer\nend list\n");
    EXPECT_EQ(XbaseLoad("/d/a.dbf", list.get(), KindList, message).rows, 70000);
    const auto* numbers = reinterpret_cast<const std::int32_t*>(At(list.get<ListDescriptor>()->data));
    for (int i = 0; i < 70000; ++i) sum -= numbers[i];
    EXPECT_EQ(sum, 0);
}

// ---- what cannot be loaded ----

TEST_F(XbaseFiles, WhatIsNoXbaseFileSaysSo) {
    Typed list(people);
    const auto result = [&](const std::string& bytes) {
        files_.put("/d/a.dbf", bytes);
        const DataResult got = XbaseLoad("/d/a.dbf", list.get(), KindList, message);
        EXPECT_EQ(got.rows, 0);
        return std::to_string(got.code) + " " + message;
    };
    EXPECT_EQ(result("PK"), "661 Xbase file does not start with a valid signature byte");
    EXPECT_EQ(result(HeadBytes(peopleFile).substr(0, 32)), "661 Xbase file header is incomplete");
    EXPECT_EQ(result(HeadBytes(peopleFile, 0, 20)), "661 Xbase file header is too small");
    EXPECT_EQ(result(HeadBytes(peopleFile, 0, -1, 15)),
              "661 Field sizes do not match the size stored in the header (calculated size = 14, size in "
              "header = 15)");
    EXPECT_EQ(result(HeadBytes(peopleFile).substr(0, 128)), "655 ");
    EXPECT_EQ(result(HeadBytes(peopleFile)), "0 ");
}

TEST_F(XbaseFiles, AFileThatCannotBeReadSaysSo) {
    Typed list(people);
    const auto result = [&](const std::string& name) {
        const std::int32_t code = XbaseLoad(name, list.get(), KindList, message).code;
        return std::to_string(code) + " " + message;
    };
    EXPECT_EQ(result("/d/none.dbf"), "651 Could not open the file (error 651)");
    EXPECT_EQ(result("/d"), "651 Could not open the file (error 651)");
    EXPECT_EQ(result(""), "657 Could not open the file (error 657)");
    files_.put("/d/secret.dbf", FileBytes(peopleFile, {}), 0);
    EXPECT_EQ(result("/d/secret.dbf"), "651 Could not open the file (error 651)");
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(XbaseFiles, AFailedReadLeavesTheTarget) {
    std::vector<std::string> rows(30000, person("1", "Ann", 'T'));
    files_.put("/d/a.dbf", FileBytes(peopleFile, rows));
    for (int n = 1; n <= 3; ++n) {
        Typed list("x : list\n\tr : record\n\t\tid : integer\n\tend record\nend list\n");
        ListAppendEmpty(list.get<ListDescriptor>());
        files_.failAt(os::FileCall::Read, n, os::FileError::ReadFailed);
        EXPECT_EQ(load(list), "651@0 {0}#0") << n;
        EXPECT_EQ(message.empty(), n > 1);
        files_.stopFailing();
    }
    Typed list("x : list\n\tr : record\n\t\tid : integer\n\tend record\nend list\n");
    files_.failAt(os::FileCall::Read, 2, os::FileError::Vanished);
    EXPECT_EQ(load(list), "653@0 #0");
}

TEST_F(XbaseFiles, ValuesThatHaveNoRowsAreRefused) {
    files_.put("/d/a.dbf", FileBytes(peopleFile, {}));
    const auto code = [&](void* value, Kind kind) {
        const std::int32_t loading = XbaseLoad("/d/a.dbf", value, kind, message).code;
        EXPECT_EQ(XbaseSave("/d/out.dbf", value, kind, "a : integer\n").code, loading);
        EXPECT_EQ(XbaseLoad("/d/none.dbf", value, kind, message).code, loading);
        return loading;
    };
    std::int32_t number = 1;
    Typed lists("x : list\n\ty : list\n\t\ti : integer\n\tend list\nend list\n");
    Typed sets("x : list\n\tr : record\n\t\ti : integer\n\t\ts : set[1:9]\n\tend record\nend list\n");
    Typed bare("x : list\n\ts : set[1:9]\nend list\n");
    Typed record("x : record\n\ts : set[1:9]\nend record\n");
    Typed array("x : Tchars[1:9]\n");
    Typed inFile("x : list\n\ti : integer\nend list\n");
    EXPECT_EQ(code(lists.get(), KindList), 658);
    EXPECT_EQ(code(sets.get(), KindList), 658);
    EXPECT_EQ(code(bare.get(), KindList), 658);
    EXPECT_EQ(code(record.get(), KindRecord), 658);
    EXPECT_EQ(code(array.get(), KindArray), 658);
    EXPECT_EQ(code(&number, KindInteger), 658);
    EXPECT_EQ(code(nullptr, KindList), 764);
    EXPECT_EQ(code(array.get(), KindList), 761);
    ListValue held;
    ListInit(held.get(), UNBOUNDED, nullptr, KindInteger, true);
    EXPECT_EQ(code(held.get(), KindList), 661);
}

TEST_F(XbaseFiles, AStoppedLoadLeavesTheTarget) {
    files_.put("/d/a.dbf",
               FileBytes({{"A", 'N', 254}}, std::vector<std::string>(20000, std::string(254, ' ') + "7")));
    static std::vector<std::int64_t> told;
    told.clear();
    UseProgress([](std::int64_t done, std::int64_t total) {
        told.push_back(done);
        return done < total / 2;
    });
    Typed list("x : list\n\ti : integer\nend list\n");
    addNumbers(list, 1);
    EXPECT_EQ(load(list), "stopped {0}#0");
    EXPECT_EQ(told.size(), 3U);
    told.clear();
    UseProgress([](std::int64_t done, std::int64_t) {
        told.push_back(done);
        return true;
    });
    EXPECT_EQ(XbaseLoad("/d/a.dbf", list.get(), KindList, message).rows, 20000);
    EXPECT_EQ(told.size(), 4U);
}

}  // namespace
}  // namespace tarn
