// SPDX-License-Identifier: Apache-2.0
//
// Records, lists and tables that programs make of texts.
#include "unit/kernel/typeinfo_fixture.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace tarn;
using namespace std::string_literals;

namespace {

// ---- the public conversions ----

TEST_F(TypeInfoValues, TheOuterPairOfLinesIsTakenOff) {
    const std::string record = "\tr : record\n\t\ta : integer\n\tend record\n";
    for (const std::string first : {"x : list\n", "x : table\n", "x : TABLE[*]\n"}) {
        for (const std::string last : {"end list\n", "end table\n", "end List", "end table"}) {
            RecordValue value;
            EXPECT_EQ(toRecord(first + record + last, value), 0) << first << last;
            EXPECT_EQ(RecordFieldCount(value.get()), 1);
        }
        RecordValue value;
        EXPECT_EQ(toRecord(first + record + "end record\n", value), ERR_RECORD_TYPE) << first;
        EXPECT_EQ(toRecord(first + record, value), ERR_RECORD_TYPE) << first;
    }
}

TEST_F(TypeInfoValues, BlocksAreClosedInAnyCase) {
    const Built b = built("R : RECORD\n\ta : integer\nEND RECORD\nb : real\n");
    EXPECT_EQ(b.kind, KindRecord);
    EXPECT_EQ(b.position, std::strlen("R : RECORD\n\ta : integer\nEND RECORD\n"));
    EXPECT_EQ(b.shown, "FIELD1 : integer\n");
    ListValue list;
    EXPECT_EQ(toList("L : LIST\n\ta : integer\nEND LIST\n", list), 0);
    EXPECT_EQ(ListElementKind(list.get()), KindInteger);
    TableValue table;
    EXPECT_EQ(toTable("T : table\n\tR : record\n\t\ta : integer\n\tEnd Record\nEND TABLE\n", table), 0);
    EXPECT_EQ(StringView(TableTypeInfo(table.get())), "a : integer\n");
}

TEST_F(TypeInfoValues, EmptyLinesBehindTheLastAreNone) {
    for (const std::string more : {"\n", "\n\n\n", "\r\n", " \t\n\n", "\n  "}) {
        RecordValue record;
        EXPECT_EQ(toRecord(customers + more, record), 0);
        EXPECT_EQ(RecordFieldCount(record.get()), 2);
        TableValue table;
        EXPECT_EQ(toTable(customers + more, table), 0);
        EXPECT_EQ(StringView(TableTypeInfo(table.get())), "id : integer\nname : string[40]\n");
        ListValue list;
        EXPECT_EQ(toList("l : list\n\te : integer\nend list\n" + more, list), 0);
        EXPECT_EQ(ListElementKind(list.get()), KindInteger);
    }
    RecordValue record;
    EXPECT_EQ(toRecord("\n \n\t\n", record), ERR_RECORD_TYPE);
}

TEST_F(TypeInfoValues, AColumnWithTheNameOfClosingLinesEndsTheRecord) {
    for (const std::string name : {"end", "END"}) {
        const std::string text =
            "r : record\n\ta : integer\n\t" + name + " : integer\n\tb : real\nend record\n";
        const FieldList list = TypeInfoFieldList(text);
        EXPECT_EQ(list.names, "a\n");
        EXPECT_EQ(list.keys.names, "a");
        TableValue table;
        EXPECT_EQ(toTable(text, table), 0);
        EXPECT_EQ(StringView(TableTypeInfo(table.get())), "a : integer\n");
    }
    EXPECT_EQ(TypeInfoFieldList("r : record\n\t\"end\" : integer\n\tb : real\nend record\n").names,
              "\"end\"\nb\n");
}

TEST_F(TypeInfoValues, LinesMayEndWithCarriageReturns) {
    TableValue table;
    EXPECT_EQ(toTable("t : table\r\n\tr : record\r\n\t\tid : integer\r\n\t\tname : string[40]\r\n"
                      "\tend record\r\nend table\r\n",
                      table),
              0);
    EXPECT_EQ(StringView(TableTypeInfo(table.get())), "id : integer\nname : string[40]\n");
    EXPECT_EQ(TypeInfoIndexText(table.get(), 1),
              "Index1 : record\n\tid : integer\n\tname : string[40]\nend record\n");
}

TEST_F(TypeInfoValues, TextsThatAreNoRecordAre757) {
    for (const std::string text : {"", "x", "a : integer\n", "u : union\n\ta : integer\nend union\n",
                                   "l : list\n\ta : integer\nend list\n", "end record\n", "\n"}) {
        RecordValue value;
        EXPECT_EQ(toRecord(fields(3), value), 0);
        EXPECT_EQ(toRecord(text, value), ERR_RECORD_TYPE) << text;
        EXPECT_TRUE(isZero(value.get(), sizeof(RecordDescriptor)));
    }
}

TEST_F(TypeInfoValues, AnErrorInsideOfTheTextIsTheOneThatIsReported) {
    RecordValue value;
    EXPECT_EQ(toRecord("r : record\n\ta : set[9:1]\nend record\n", value), ERR_SET_BOUNDS);
    EXPECT_TRUE(isZero(value.get(), sizeof(RecordDescriptor)));
    ListValue list;
    EXPECT_EQ(toList("l : list\n\ta : Tchars[9:1]\nend list\n", list), ERR_ARRAY_TYPE);
    EXPECT_TRUE(isZero(list.get(), sizeof(ListDescriptor)));
    TableValue table;
    EXPECT_EQ(toTable("r : record\n\ta : string[0]\nend record\n", table), ERR_EMPTY_BLOCK);
    EXPECT_TRUE(isZero(table.get(), sizeof(TableDescriptor)));
}

TEST_F(TypeInfoValues, ATextOfAnotherKindIs756BeforeTheTargetIsLookedAt) {
    OwnedSet set;
    SetInit(set.get(), 1, 9);
    const auto* wrong = reinterpret_cast<const StringDescriptor*>(set.get());
    OwnedSet target;
    SetInit(target.get(), 1, 9);
    TypeInfoToRecord(wrong, reinterpret_cast<RecordDescriptor*>(target.get()));
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    TypeInfoToList(nullptr, reinterpret_cast<ListDescriptor*>(target.get()));
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    TypeInfoToTable(wrong, nullptr);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    TypeInfoToFileVar(wrong, nullptr, KindInteger);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    EXPECT_EQ(target.get()->upper, 9);
}

TEST_F(TypeInfoValues, ATargetOfAnotherKindStaysAsItIs) {
    const String text(customers);
    OwnedSet set;
    SetInit(set.get(), 1, 9);
    TypeInfoToRecord(text.get(), reinterpret_cast<RecordDescriptor*>(set.get()));
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    TypeInfoToList(text.get(), reinterpret_cast<ListDescriptor*>(set.get()));
    EXPECT_EQ(takeError(), ERR_LIST_TYPE);
    TypeInfoToTable(text.get(), reinterpret_cast<TableDescriptor*>(set.get()));
    EXPECT_EQ(takeError(), ERR_TABLE_TYPE);
    TypeInfoToFileVar(text.get(), set.get(), KindTable);
    EXPECT_EQ(takeError(), ERR_TABLE_TYPE);
    EXPECT_EQ(AdtCheck(set.get(), KindSet), "");
    EXPECT_EQ(set.get()->upper, 9);
    TypeInfoToRecord(text.get(), nullptr);
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    TypeInfoToList(text.get(), nullptr);
    EXPECT_EQ(takeError(), ERR_LIST_TYPE);
    TypeInfoToTable(text.get(), nullptr);
    EXPECT_EQ(takeError(), ERR_TABLE_TYPE);
}

TEST_F(TypeInfoValues, TheTextMayStandInTheTargetItself) {
    RecordValue record;
    EXPECT_EQ(toRecord("r : record\n\ttext : string[200]\nend record\n", record), 0);
    auto* field = static_cast<StringDescriptor*>(RecordFieldAddress(record.get(), 1));
    StringAssignView(field, "r : record\n\ta : integer\n\tb : real\nend record\n");
    TypeInfoToRecord(field, record.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(RecordFieldCount(record.get()), 2);
}

TEST_F(TypeInfoValues, OnlyTheFirst32767CharactersAreRead) {
    std::string text = "r : record\n\ta : integer\n";
    const std::string last = "\tb : integer\n";
    while (text.size() + last.size() < 32767) text.insert(11, "\n");
    ASSERT_EQ(text.size() + last.size(), 32767U);
    RecordValue record;
    EXPECT_EQ(toRecord(text + last + "\tc : integer\n", record), 0);
    EXPECT_EQ(RecordFieldCount(record.get()), 2);
    EXPECT_EQ(toRecord(text + "\n\n\n" + last, record), 0);  // "\tb : inte", no type
    EXPECT_EQ(RecordFieldCount(record.get()), 1);
}

TEST_F(TypeInfoValues, TwoByteTextsAreReadByTheirCharacters) {
    CharacterWidth = 2;
    {
        String wide;
        const std::string text = fields(2);
        StringAssignView(wide.get(), text);
        RecordValue record;
        TypeInfoToRecord(wide.get(), record.get());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(RecordFieldCount(record.get()), 2);
    }
    CharacterWidth = 1;
}

TEST_F(TypeInfoValues, AListIsMadeOfWhatItsLinesHold) {
    const struct {
        std::string text;
        Kind element;
    } rows[] = {
        {"l : list\n\te : integer\nend list\n", KindInteger},
        {"l : list\n\te : string[9]\nend list", KindString},
        {customers, KindRecord},
        {"t : table\n\te : integer\nend list\n", KindInteger},
        {"t : table\n\tl : list\n\t\te : real\n\tend list\nend table\n", KindReal},
        {"l : list\n\tm : list\n\t\te : real\n\tend list\nend list\n", KindReal},
    };
    for (const auto& row : rows) {
        ListValue list;
        EXPECT_EQ(toList(row.text, list), 0) << row.text;
        EXPECT_EQ(ListElementKind(list.get()), row.element);
        EXPECT_EQ(ListCount(list.get()), 0);
        EXPECT_FALSE(ListIsInFile(list.get()));
        EXPECT_EQ(list.get()->maxlength, UNBOUNDED);
        EXPECT_EQ(AdtCheck(list.get(), KindList), "");
    }
}

TEST_F(TypeInfoValues, TextsThatAreNoListAre761) {
    for (const std::string& text : {""s, "e : integer\n"s, fields(2), "l : list\n\te : nothing\nend list\n"s,
                                    "l : list\nend list\n"s}) {
        ListValue list;
        EXPECT_EQ(toList("l : list\n\te : any\nend list\n", list), 0);
        EXPECT_EQ(toList(text, list), ERR_LIST_TYPE) << text;
        EXPECT_TRUE(isZero(list.get(), sizeof(ListDescriptor)));
    }
}

TEST_F(TypeInfoValues, ATableHasTheRowItsDescriptionAndADefaultKey) {
    TableValue table;
    EXPECT_EQ(toTable(customers, table), 0);
    EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
    EXPECT_EQ(TableCount(table.get()), 0);
    EXPECT_EQ(TableIndexCount(table.get()), 1);
    EXPECT_EQ(TableKeyMap(table.get(), 1), MakeKeyMap(1, 2));
    EXPECT_EQ(StringView(TableTypeInfo(table.get())), "id : integer\nname : string[40]\n");
    EXPECT_EQ(TypeInfoIndexText(table.get(), 1),
              "Index1 : record\n\tid : integer\n\tname : string[40]\nend record\n");
}

TEST_F(TypeInfoValues, ATableMayBeMadeOfARecordAlone) {
    for (const std::string& text :
         {fields(2), "l : list\n" + fields(2) + "end list\n", "t:table\n" + fields(2) + "end table"}) {
        TableValue table;
        EXPECT_EQ(toTable(text, table), 0) << text;
        EXPECT_EQ(StringView(TableTypeInfo(table.get())), "f1 : integer\nf2 : integer\n");
    }
}

TEST_F(TypeInfoValues, ADeleteFlagIsAFieldButNoKey) {
    for (const std::string flag : {"delete_flag : Tchar", "DELETE_FLAG:tchar"}) {
        TableValue table;
        EXPECT_EQ(toTable("t : table\n\tr : record\n\t\t" + flag +
                              "\n\t\tcode : Tchars[1:4]\n\tend record\nend table\n",
                          table),
                  0);
        EXPECT_EQ(TableKeyMap(table.get(), 1), MakeKeyMap(2));
        EXPECT_EQ(StringView(TableTypeInfo(table.get())), flag + "\ncode : Tchars[1:4]\n");
    }
    TableValue table;
    EXPECT_EQ(toTable("r : record\n\tcode : integer\n\tdelete_flag : Tchar\nend record\n", table), 0);
    EXPECT_EQ(TableKeyMap(table.get(), 1), MakeKeyMap(1, 2));
    EXPECT_EQ(toTable("r : record\n\tdelete_flag : integer\nend record\n", table), 0);
    EXPECT_EQ(TableKeyMap(table.get(), 1), MakeKeyMap(1));
    EXPECT_EQ(toTable("r : record\n\tdelete_flag : Tchar\nend record\n", table), 0);
    EXPECT_EQ(TableIndexCount(table.get()), 0);
}

TEST_F(TypeInfoValues, ARowWithoutKeyFieldsMakesATableWithoutAnIndex) {
    TableValue table;
    EXPECT_EQ(toTable("r : record\n\ta : boolean\n\tb : set[1:9]\n\tc : string[1025]\nend record\n", table),
              0);
    EXPECT_EQ(TableIndexCount(table.get()), 0);
    EXPECT_EQ(TypeInfoIndexText(table.get(), 1), "");
}

TEST_F(TypeInfoValues, TextsThatAreNoRowAre762) {
    for (const std::string text : {"", "a : integer\n", "t : table\n\ta : integer\nend table\n",
                                   "u : union\n\ta : integer\nend union\n",
                                   "l : list\n\tm : list\n\t\ta : real\n\tend list\nend list\n"}) {
        TableValue table;
        EXPECT_EQ(toTable(customers, table), 0);
        EXPECT_EQ(toTable(text, table), ERR_TABLE_TYPE) << text;
        EXPECT_TRUE(isZero(table.get(), sizeof(TableDescriptor)));
    }
}

TEST_F(TypeInfoValues, RowsGoIntoATableThatATextMade) {
    TableValue table;
    ASSERT_EQ(toTable(customers, table), 0);
    RecordValue row;
    ASSERT_EQ(toRecord(customers, row), 0);
    for (std::int32_t id = 1; id <= 3; ++id) {
        RecordPut(row.get(), 1, &id, KindInteger);
        TableAdd(table.get(), 1, row.get());
    }
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(TableCount(table.get()), 3);
    TableAdd(table.get(), 1, row.get());
    EXPECT_EQ(takeError(), ERR_DUPLICATE_FIELDS);
}

TEST_F(TypeInfoValues, FileVariablesAreMadeByTheFirstLine) {
    const String tableText(customers),
        listText("l : list\n\tr : record\n\t\ta : integer\n\tend record\nend list\n");
    TableValue table;
    TypeInfoToFileVar(tableText.get(), table.get(), KindTable);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(TableIndexCount(table.get()), 1);
    EXPECT_TRUE(ListIsInFile(TableRows(table.get())));
    ListValue list;
    TypeInfoToFileVar(listText.get(), list.get(), KindList);
    EXPECT_EQ(takeError(), 0);
    EXPECT_TRUE(ListIsInFile(list.get()));
    EXPECT_EQ(ListElementKind(list.get()), KindRecord);

    TypeInfoToFileVar(listText.get(), table.get(), KindTable);
    EXPECT_EQ(takeError(), ERR_TABLE_TYPE);
    EXPECT_TRUE(isZero(table.get(), sizeof(TableDescriptor)));
    TypeInfoToFileVar(tableText.get(), list.get(), KindList);
    EXPECT_EQ(takeError(), ERR_LIST_TYPE);
    EXPECT_TRUE(isZero(list.get(), sizeof(ListDescriptor)));
    const String record(fields(2));
    TypeInfoToFileVar(record.get(), table.get(), KindTable);
    EXPECT_EQ(takeError(), ERR_TABLE_TYPE);
    TypeInfoToFileVar(record.get(), table.get(), KindRecord);
    EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE);
}

TEST_F(TypeInfoValues, WhenMemoryIsShortNothingStaysAllocated) {
    const std::string rich =
        "t : table\n\tr : record\n\t\ta : integer\n\t\tb : string[40]\n\t\tc : Tchars[1:4]\n\t\td : "
        "set[1:90]\n\t\te : list\n\t\t\tf : record\n\t\t\t\tg : any\n\t\t\tend record\n\t\tend "
        "list\n\tend record\nend table\n";
    const String text(rich);
    const std::vector<std::function<bool()>> operations = {
        [&] {
            RecordValue record;
            TypeInfoToRecord(text.get(), record.get());
            return record.get()->tag != 0 || !isZero(record.get(), sizeof(RecordDescriptor));
        },
        [&] {
            ListValue list;
            TypeInfoToList(text.get(), list.get());
            return list.get()->tag != 0 || !isZero(list.get(), sizeof(ListDescriptor));
        },
        [&] {
            TableValue table;
            TypeInfoToTable(text.get(), table.get());
            return table.get()->tag != 0 || !isZero(table.get(), sizeof(TableDescriptor));
        },
        [&] {
            TableValue table;
            TypeInfoToFileVar(text.get(), table.get(), KindTable);
            return table.get()->tag != 0 || !isZero(table.get(), sizeof(TableDescriptor));
        },
    };
    const std::int64_t before = LiveBlocks();
    for (const auto& operation : operations) {
        int failures = 0;
        for (std::int64_t n = 0; n < 200; ++n, ++failures) {
            FailAllocation(n);
            const bool made = operation();
            FailAllocation(-1);
            const std::int32_t error = takeError();
            EXPECT_EQ(LiveBlocks(), before);
            if (error == 0) {
                EXPECT_TRUE(made);
                break;
            }
            EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
            EXPECT_FALSE(made);
        }
        EXPECT_GT(failures, 5);
        EXPECT_LT(failures, 200);
    }
}

TEST_F(TypeInfoValues, ValuesOfAnyTextAreWholeOrNothing) {
    const std::vector<std::string> words = {
        "a",       "end",        " : ",   "record\n", "list\n", "end record\n", "union\n",     "\t",
        "integer", "string",     "[3]",   "[1:9]",    "Tchars", "set",          "\n",          "any\n",
        "table\n", "end list\n", "adt\n", "\"b c\"",  ":",      "[0]",          "end table\n", "boolean\n"};
    SetMemoryChecking(false);
    for (std::uint32_t seed = 0; seed < 4000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        std::string text = seed % 2 == 0 ? "r : record\n" : "t : table\nr : record\n";
        for (std::size_t n = random() % 60; n > 0; --n) text += words[random() % words.size()];
        const String source(text);
        RecordValue record;
        ListValue list;
        TableValue table;
        TypeInfoToRecord(source.get(), record.get());
        EXPECT_EQ(takeError() == 0, KindOf(record.get()) == KindRecord);
        TypeInfoToList(source.get(), list.get());
        EXPECT_EQ(takeError() == 0, list.get()->tag != 0);
        TypeInfoToTable(source.get(), table.get());
        EXPECT_EQ(takeError() == 0, KindOf(table.get()) == KindTable);
        EXPECT_EQ(KindOf(record.get()) == KindRecord ? AdtCheck(record.get(), KindRecord) : "", "");
        EXPECT_EQ(list.get()->tag != 0 ? AdtCheck(list.get(), KindList) : "", "");
        EXPECT_EQ(KindOf(table.get()) == KindTable ? AdtCheck(table.get(), KindTable) : "", "");
        if (HasFailure()) return;
    }
}

}  // namespace
