// SPDX-License-Identifier: Apache-2.0
//
// Values as type information text, whether one matches a text, and keys.
#include "unit/kernel/typeinfo_fixture.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace tarn;
using namespace std::string_literals;

namespace {

// ---- printing ----

TEST_F(TypeInfoValues, ScalarsPrintOneLine) {
    const std::int64_t bytes = 0;
    constexpr const char* names[] = {"boolean", "enum", "integer", "fixed", "real"};
    for (std::int32_t kind = 1; kind <= 5; ++kind)
        EXPECT_EQ(TypeInfoFromValue(&bytes, static_cast<Kind>(kind)), "FIELD1 : "s + names[kind - 1] + "\n");
    EXPECT_EQ(TypeInfoFromValue(&bytes, KindInteger, "id\nname\n"), "id : integer\n");
    const String fixed(40), growing;
    EXPECT_EQ(TypeInfoFromValue(fixed.get(), KindString), "FIELD1 : string[40]\n");
    EXPECT_EQ(TypeInfoFromValue(growing.get(), KindString), "FIELD1 : string\n");
}

TEST_F(TypeInfoValues, FieldsOfKindsWithoutALineOfTheirOwnAreAdt) {
    RecordValue record;
    ASSERT_EQ(
        toRecord(
            "r : record\n\ta : Tchars[2:5]\n\tb : record\n\t\tx : real\n\tend record\n\tc : list\n\t\tx : "
            "real\n\tend list\nend record\n",
            record),
        0);
    ArrayValue numbers;
    ArrayInit(numbers.get(), KindInteger, 1, 3);
    RecordAppend(record.get(), numbers.get(), KindArray);
    ArrayValue grid;
    ArrayInit(grid.get(), KindEnum, 1, 3, 1, 2, NO_DIMENSION, NO_DIMENSION, nullptr);
    RecordAppend(record.get(), grid.get(), KindArray);
    ASSERT_EQ(takeError(), 0);
    EXPECT_EQ(TypeInfoFromValue(record.get(), KindRecord, "a\n\nlong name\n"),
              "a : Tchars[2:5]\nFIELD2 : adt\nlong name : adt\nFIELD4 : adt\nFIELD5 : adt\n");
    EXPECT_EQ(TypeInfoFromValue(numbers.get(), KindArray), "FIELD1 : adt\n");
}

TEST_F(TypeInfoValues, OtherKindsAndWrongValuesPrintNothing) {
    ListValue list;
    ASSERT_EQ(toList("l : list\n\te : integer\nend list\n", list), 0);
    TableValue table;
    ASSERT_EQ(toTable(customers, table), 0);
    OwnedSet set;
    SetInit(set.get(), 1, 9);
    EXPECT_EQ(TypeInfoFromValue(list.get(), KindList), "");
    EXPECT_EQ(TypeInfoFromValue(table.get(), KindTable), "");
    EXPECT_EQ(TypeInfoFromValue(set.get(), KindSet), "");
    EXPECT_EQ(TypeInfoFromValue(set.get(), KindNone), "");
    EXPECT_EQ(TypeInfoFromValue(set.get(), static_cast<Kind>(13)), "");
    EXPECT_EQ(TypeInfoFromValue(set.get(), KindString), "");
    EXPECT_EQ(TypeInfoFromValue(set.get(), KindRecord), "");
    EXPECT_EQ(TypeInfoFromValue(nullptr, KindInteger), "");
}

TEST_F(TypeInfoValues, DefaultNamesComeFromTheListOrTheNumber) {
    const std::string names = "id\n name \n\nfirst name : string[4]\n" + std::string(50, 'n');
    EXPECT_EQ(TypeInfoDefaultName(names, 1), "id");
    EXPECT_EQ(TypeInfoDefaultName(names, 2), "name");
    EXPECT_EQ(TypeInfoDefaultName(names, 3), "FIELD3");
    EXPECT_EQ(TypeInfoDefaultName(names, 4), "first name");
    EXPECT_EQ(TypeInfoDefaultName(names, 5), std::string(40, 'n'));
    EXPECT_EQ(TypeInfoDefaultName(names, 6), "FIELD6");
    EXPECT_EQ(TypeInfoDefaultName("", 1), "FIELD1");
    EXPECT_EQ(TypeInfoDefaultName(names, 0), "FIELD0");
}

TEST_F(TypeInfoValues, DefaultNamesInQuotesKeepBothQuotes) {
    const std::string inside(60, 'n');
    const std::string names = "\"a : b\" : string[4]\n\t\"last, first\"\n\"" + inside + "\" : real\n\"" +
                              inside.substr(0, 38) + "\"\n\"\"\n\"open : real\n\"" + std::string(2000, 'n') +
                              "\"\r\n\"a\"b : real\n";
    EXPECT_EQ(TypeInfoDefaultName(names, 1), "\"a : b\"");
    EXPECT_EQ(TypeInfoDefaultName(names, 2), "\"last, first\"");
    const std::string longest = '"' + inside.substr(0, 38) + '"';
    EXPECT_EQ(TypeInfoDefaultName(names, 3), longest);
    EXPECT_EQ(TypeInfoDefaultName(names, 4), longest);
    EXPECT_EQ(TypeInfoDefaultName(names, 5), "\"\"");
    EXPECT_EQ(TypeInfoDefaultName(names, 6), "\"open");
    EXPECT_EQ(TypeInfoDefaultName(names, 7), longest);
    EXPECT_EQ(TypeInfoDefaultName(names, 8), "\"a\"");
}

// ---- matching ----

TEST_F(TypeInfoValues, WhatARecordPrintsMatchesIt) {
    for (const std::string type : {"boolean", "enum", "integer", "fixed", "real", "string[40]", "string",
                                   "set[1:9]", "Tchars[1:4]", "any"}) {
        RecordValue record;
        ASSERT_EQ(toRecord(fields(3, type), record), 0);
        EXPECT_EQ(TypeInfoMatchesValue(TypeInfoFromValue(record.get(), KindRecord), record.get()), 0) << type;
        EXPECT_EQ(TypeInfoMatchesValue("a : " + type + "\nb : " + type + "\nc : " + type, record.get()), 0)
            << type;
    }
}

TEST_F(TypeInfoValues, MatchingGivesTheFirstElementThatDiffers) {
    RecordValue record;
    ASSERT_EQ(
        toRecord(
            "r : record\n\ta : integer\n\tb : string[4]\n\tc : set[1:9]\n\td : list\n\t\tx : real\n\tend "
            "list\nend record\n",
            record),
        0);
    const struct {
        std::string text;
        std::int32_t number;
    } rows[] = {
        {"a : integer\nb : string[4]\nc : set[1:9]\nd : adt\n", 0},
        {"x : INT\ny : varchar[4]\nz : set[1:9]\nd : adt", 0},
        {"a : integer\nb : adt[4]\nc : adt[1:9]\nd : adt\n", 0},
        {": integer\nb : string[4]\n", 1},
        {"\"a\" : integer\nb : string[4]\n", 1},
        {"1a : integer\n", 1},
        {"a-b : integer\n", 1},
        {"\ta : integer\n", 1},
        {"end : integer\n", 1},
        {"a : real\n", 1},
        {"a : adt\n", 1},
        {"a : integer[4]\n", 1},
        {"a : integer\nb : integer\n", 2},
        {"a : integer\nb : string[5]\n", 2},
        {"a : integer\nb : string[4:5]\n", 2},
        {"a : integer\nb : string\n", 2},
        {"a : integer\nb : adt\n", 2},
        {"a : integer\nb : string[4]\nc : set[1:8]\n", 3},
        {"a : integer\nb : string[4]\nc : set[1:9,2]\n", 3},
        {"a : integer\nb : string[4]\nc : set[1:9]\nd : list\n", 0},
        {"a : integer\nb : string[4]\nc : set[1:9]\nd : adt[1]\n", 4},
        {"a : integer\nb : string[4]\nc : set[1:9]\n", 4},
        {"a : integer\nb : string[4]\nc : set[1:9]\nd : adt\ne : real\n", 5},
        {"a : integer\n", 2},
        {"", 1},
        {"\n", 1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TypeInfoMatchesValue(row.text, record.get()), row.number) << row.text;
}

TEST_F(TypeInfoValues, WrongArgumentsMatchNothing) {
    EXPECT_EQ(TypeInfoMatchesValue("a : integer\n", nullptr), 1);
    OwnedSet set;
    SetInit(set.get(), 1, 9);
    EXPECT_EQ(TypeInfoMatchesValue("a : integer\n", reinterpret_cast<RecordDescriptor*>(set.get())), 1);
    RecordValue record;
    ASSERT_EQ(toRecord(fields(1), record), 0);
    const std::string line = "a : integer";
    EXPECT_EQ(TypeInfoMatchesValue(line + std::string(32768 - line.size(), ' '), record.get()), 0);
    EXPECT_EQ(TypeInfoMatchesValue(line + std::string(32769 - line.size(), ' '), record.get()), 1);
    RecordValue empty;
    ASSERT_EQ(toRecord("r : record\nend record\n", empty), 0);
    EXPECT_EQ(TypeInfoMatchesValue("a : integer\n", empty.get()), 1);
}

TEST_F(TypeInfoValues, APathNamesTheTypesOfTheFirstLines) {
    const std::string text =
        "data : record\n\ta : list\n\t\tb : Record\n\t\t\tx : int\n\t\tend record\n\tend list\nend record\n";
    for (const std::string path : {"/record", "/record/list", "/record/list/record", "/RECORD/List"})
        EXPECT_TRUE(TypeInfoIsPath(text, path)) << path;
    for (const std::string path :
         {"", "/", "record", "/record/", "/list", "/record/record", "/record/list/record/int", "//record",
          "/record//record", "record/list", "/record/list/"})
        EXPECT_FALSE(TypeInfoIsPath(text, path)) << path;
    EXPECT_TRUE(TypeInfoIsPath("a : record\nend record\n", "/record"));
    EXPECT_FALSE(TypeInfoIsPath("a : record\n", "/record"));  // a block has two lines
    EXPECT_TRUE(TypeInfoIsPath("a : record\nend record", "/record"));
    EXPECT_FALSE(TypeInfoIsPath("a : record\nb : list\nend list\n", "/record/list"));
    EXPECT_FALSE(TypeInfoIsPath("", "/record"));
}

// ---- keys ----

TEST_F(TypeInfoValues, DefaultKeysAreTheFirstFourFieldsThatCanBe) {
    const struct {
        std::string types;
        bool skipFirst;
        std::int32_t map;
        std::string names;
    } rows[] = {
        {"integer real fixed enum", false, MakeKeyMap(1, 2, 3, 4), "FIELD1,FIELD2,FIELD3,FIELD4"},
        {"integer real fixed enum Tchar", false, MakeKeyMap(1, 2, 3, 4), "FIELD1,FIELD2,FIELD3,FIELD4"},
        {"integer real fixed enum Tchar", true, MakeKeyMap(2, 3, 4, 5), "FIELD2,FIELD3,FIELD4,FIELD5"},
        {"boolean set[1:9] string", false, 0, ""},
        {"string[1] string[2] string[1024] string[1025]", false, MakeKeyMap(2, 3), "FIELD2,FIELD3"},
        {"Tchars[1:4] Tchars[0:4] Tchars[1:1]", false, MakeKeyMap(1, 3), "FIELD1,FIELD3"},
        {"any boolean integer", false, MakeKeyMap(1, 3), "FIELD1,FIELD3"},
        {"integer", true, 0, ""},
    };
    for (const auto& row : rows) {
        std::string text = "r : record\n";
        for (std::size_t at = 0, end = 0; at < row.types.size(); at = end + 1) {
            end = std::min(row.types.find(' ', at), row.types.size());
            text += "\tx : " + row.types.substr(at, end - at) + "\n";
        }
        RecordValue record;
        ASSERT_EQ(toRecord(text + "end record\n", record), 0) << row.types;
        const DefaultKeys keys = TypeInfoDefaultKeys(record.get(), "", row.skipFirst);
        EXPECT_EQ(keys.map, row.map) << row.types;
        EXPECT_EQ(keys.names, row.names) << row.types;
    }
}

TEST_F(TypeInfoValues, DefaultKeysHaveTheNamesOfTheirFields) {
    RecordValue record;
    ASSERT_EQ(toRecord(fields(3), record), 0);
    EXPECT_EQ(TypeInfoDefaultKeys(record.get(), "id\nfirst name\n", false).names, "id,first name,FIELD3");
    EXPECT_EQ(TypeInfoDefaultKeys(record.get(), "\tid : integer\n\tname : string[4]\n", true).names,
              "name,FIELD3");
    EXPECT_EQ(TypeInfoDefaultKeys(nullptr, "id\n", false).names, "");
}

TEST_F(TypeInfoValues, AFieldListIsReadFromTheText) {
    FieldList list = TypeInfoFieldList(customers);
    EXPECT_EQ(list.names, "id\nname\n");
    EXPECT_EQ(list.keys.names, "id,name");
    EXPECT_EQ(list.keys.map, MakeKeyMap(1, 2));
    list = TypeInfoFieldList(
        "r : record\n\tdelete_flag : Tchar\n\t\"a b\" : Tchars[1:4]\n\tc : boolean\n\td : real\nend record");
    EXPECT_EQ(list.names, "\"a b\"\nc\nd\n");
    EXPECT_EQ(list.keys.names, "\"a b\",d");
    EXPECT_EQ(list.keys.map, MakeKeyMap(2, 4));
    list = TypeInfoFieldList("a : integer\n");
    EXPECT_EQ(list.names, "");
    EXPECT_EQ(list.keys.map, 0);
}

TEST_F(TypeInfoValues, FieldsAreCountedWithoutLinesThatHoldNoValue) {
    const std::string text =
        "t : table\n\tr : record\n\t\ta : boolean\n\t\tb : adt\n\t\tc : record\n\t\t\tx : integer\n\t\tend "
        "record\n\t\td : nothing\n\t\te : integer\n\tend record\nend table\n";
    const FieldList list = TypeInfoFieldList(text);
    EXPECT_EQ(list.names, "a\nc\ne\n");
    EXPECT_EQ(list.keys.names, "e");
    EXPECT_EQ(list.keys.map, MakeKeyMap(3));
    TableValue table;
    ASSERT_EQ(toTable(text, table), 0);
    EXPECT_EQ(TypeInfoIndexText(table.get(), 1), "Index1 : record\n\te : integer\nend record\n");
}

TEST_F(TypeInfoValues, IndexTextsNameTheFieldsOfTheKey) {
    RecordValue row;
    ASSERT_EQ(toRecord("r : record\n\ta : Tchars[1:4]\n\tb : integer\n\tc : string[9]\n\td : real\n\te : "
                       "fixed\nend record\n",
                       row),
              0);
    const auto texts = [&](const KeyMaps& maps, std::string_view description) {
        TableValue table;
        TableInit(table.get(), UNBOUNDED, row.get(), maps, description, false);
        EXPECT_EQ(takeError(), 0);
        std::vector<std::string> all;
        for (std::int32_t n = 0; n <= 6; ++n) all.push_back(TypeInfoIndexText(table.get(), n));
        return all;
    };
    using Texts = std::vector<std::string>;
    const std::string described = "a : tchars[1:4]\nb:integer\nc : string[9]\nd : real\ne : table\n";
    EXPECT_EQ(
        texts({MakeKeyMap(1), MakeKeyMap(4, 3, 2, 1)}, described),
        (Texts{"", "Index1 : record\n\ta : Tchars[1:4]\nend record\n",
               "Index2 : record\n\td : real\n\tc : string[9]\n\tb : integer\n\ta : Tchars[1:4]\nend record\n",
               "", "", "", ""}));
    // However the types are written, the text can be read.
    const std::string blanks = "a : tchars [ 1 : 4 ]\nb : integer\nc : string [9]\nd : set[*]\n";
    EXPECT_EQ(texts({MakeKeyMap(1, 2, 3, 4)}, blanks)[1],
              "Index1 : record\n\ta : Tchars[1:4]\n\tb : integer\n\tc : string[9]\n\td : set\nend record\n");
    // A description that does not have the field leaves it out.
    EXPECT_EQ(texts({MakeKeyMap(1, 2), MakeKeyMap(3)}, "b : integer\n"),
              (Texts{"", "Index1 : record\n\tb : integer\nend record\n", "", "", "", "", ""}));
    EXPECT_EQ(TypeInfoIndexText(nullptr, 1), "");
}

}  // namespace
