// SPDX-License-Identifier: Apache-2.0
//
// Whole Xbase files: loads, saves, and what is told about a file.
#include "kernel/data/datafile.h"
#include "kernel/tables/filevalues.h"
#include "kernel/text/fixed.h"
#include "unit/kernel/table_rows.h"
#include "unit/kernel/xbase_fixture.h"

#include <random>

namespace tarn {
namespace {

using namespace std::string_literals;

const char* const people =
    "x : list\n\tr : record\n\t\tid : integer\n\t\tname : string[8]\n\t\tok : boolean\n"
    "\tend record\nend list\n";
const XFields peopleFile = {{"ID", 'N', 4}, {"NAME", 'C', 8}, {"OK", 'L', 1}};

std::string person(const std::string& id, std::string name, char ok, char mark = ' ') {
    name.resize(8, ' ');
    return mark + std::string(4 - id.size(), ' ') + id + name + ok;
}

class XbaseFiles : public Xbase {
protected:
    // What a load into a value gave: "code@row " after a failure, the value, and "#" with the count.
    std::string load(Typed& value, const std::string& name = "/d/a.dbf") {
        const DataResult result = XbaseLoad(name, value.get(), value.kind(), message);
        FailAllocation(-1);
        EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
        EXPECT_EQ(ErrorCell(), 0);
        std::string shown;
        if (result.code != 0) shown = std::to_string(result.code) + "@" + std::to_string(result.row) + " ";
        if (result.stopped) shown += "stopped ";
        return shown + Shown(value.get(), value.kind()) + "#" + std::to_string(result.rows);
    }
    std::string loaded(const std::string& bytes, std::string_view declaration) {
        files_.put("/d/a.dbf", bytes);
        Typed value(declaration);
        return load(value);
    }
    std::string saved(Typed& value, std::string_view typeText, const std::string& name = "/d/out.dbf") {
        const DataResult result = XbaseSave(name, value.get(), value.kind(), typeText);
        EXPECT_EQ(ErrorCell(), 0);
        if (result.code == 0) return files_.contents(name);
        EXPECT_EQ(result.rows, 0);
        return std::to_string(result.code) + "@" + std::to_string(result.row);
    }
    static void addNumbers(Typed& list, std::int32_t count) {
        for (std::int32_t i = 0; i < count; ++i) ListAppend(&i, KindInteger, list.get<ListDescriptor>());
    }

    std::string message;
    os::SteeredClock clock_;  // 2001-02-03, as in HeadBytes
    os::Steered steeredClock_{clock_};
};

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

// ---- damage ----

// Every way to cut a small file, and every byte of it changed: a message, or values of legal shape.
class XbaseDamage : public XbaseFiles {
protected:
    void SetUp() override {
        XbaseFiles::SetUp();
        whole_ = FileBytes(peopleFile, {person("1", "Ann", 'T'), person("22", "Bob", 'F', '*')});
    }
    void use(const std::string& bytes) {
        files_.put("/d/a.dbf", bytes);
        const DataFileInfo info = GetDataFileInfo("/d/a.dbf", nullptr);
        EXPECT_EQ(info.typeText.empty(), !info.message.empty());
        for (const char* declaration : {people, "s : string[9]\n", "s : set[1:50]\n"}) {
            Typed value(declaration);
            const DataResult result = XbaseLoad("/d/a.dbf", value.get(), value.kind(), message);
            EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
            EXPECT_EQ(ErrorCell(), 0);
            EXPECT_EQ(message.empty(), result.code != 661);
            if (result.code == 661 || result.code == 655) {
                EXPECT_EQ(result.rows, 0);
            }
        }
    }
    std::string whole_;
};

TEST_F(XbaseDamage, EveryTruncationIsAMessageOrValues) {
    for (std::size_t size = 0; size <= whole_.size(); ++size) {
        SCOPED_TRACE(size);
        use(whole_.substr(0, size));
    }
}

TEST_F(XbaseDamage, EveryChangedByteIsAMessageOrValues) {
    for (std::size_t at = 0; at < whole_.size(); ++at) {
        for (const int change : {0x01, 0x02, 0x10, 0x80, 0xFF, 0x0D, 0x20}) {
            SCOPED_TRACE(std::to_string(at) + " ^ " + std::to_string(change));
            std::string bytes = whole_;
            bytes[at] = static_cast<char>(bytes[at] ^ change);
            use(bytes);
        }
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
