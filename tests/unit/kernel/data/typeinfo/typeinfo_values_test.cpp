// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/typeinfo/typeinfo.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
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

class TypeInfoValues : public Runtime {
protected:
    void SetUp() override {
        Runtime::SetUp();
        SetMemoryChecking(true);
    }
    void TearDown() override {
        FailAllocation(-1);
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
    // Builds the value of the first element and frees it again.
    struct Built {
        std::int32_t kind = 0;
        std::size_t position = 0;
        std::int32_t error = 0;
        std::string shown;  // TypeInfoFromValue of it
    };
    static Built built(std::string_view text, std::size_t position = 0) {
        char value[44];
        std::memset(value, 0x5A, sizeof value);
        Built b{0, position, 0, {}};
        b.kind = TypeInfoToValue(text, b.position, value);
        b.error = takeError();
        if (!IsValueKind(b.kind)) return b;
        const auto kind = static_cast<Kind>(b.kind);
        EXPECT_EQ(AdtCheck(value, kind), "");
        b.shown = TypeInfoFromValue(value, kind);
        AdtFree(value, kind);
        std::size_t advanced = position;
        EXPECT_EQ(TypeInfoToValue(text, advanced, nullptr), b.kind);
        EXPECT_EQ(advanced, b.position);
        return b;
    }
    static std::int32_t toRecord(std::string_view text, RecordValue& record) {
        const String source(text);
        TypeInfoToRecord(source.get(), record.get());
        return takeError();
    }
    static std::int32_t toList(std::string_view text, ListValue& list) {
        const String source(text);
        TypeInfoToList(source.get(), list.get());
        return takeError();
    }
    static std::int32_t toTable(std::string_view text, TableValue& table) {
        const String source(text);
        TypeInfoToTable(source.get(), table.get());
        return takeError();
    }
    static bool isZero(const void* value, std::size_t bytes) {
        const std::vector<char> zero(bytes, '\0');
        return std::memcmp(value, zero.data(), bytes) == 0;
    }
    static std::string fields(std::int32_t count, const std::string& type = "integer") {
        std::string text = "r : record\n";
        for (std::int32_t n = 1; n <= count; ++n) text += "\tf" + std::to_string(n) + " : " + type + "\n";
        return text + "end record\n";
    }
};

const std::string customers = "cust : table\n"
                              "\tTcust : record\n"
                              "\t\tid : integer\n"
                              "\t\tname : string[40]\n"
                              "\tend record\n"
                              "end table\n";

// ---- one value ----

TEST_F(TypeInfoValues, EachTypeNameBuildsItsEmptyValue) {
    const struct {
        std::string type;
        std::int32_t kind;
        std::string shown;
    } rows[] = {
        {"boolean", 1, "boolean"},
        {"bit", 1, "boolean"},
        {"enum", 2, "enum"},
        {"Tchar", 2, "enum"},
        {"integer", 3, "integer"},
        {"INT", 3, "integer"},
        {"fixed", 4, "fixed"},
        {"money", 4, "fixed"},
        {"real", 5, "real"},
        {"float", 5, "real"},
        {"string[40]", 6, "string[40]"},
        {"varchar[1]", 6, "string[1]"},
        {"Tdatetime[24]", 6, "string[24]"},
        {"uniqueidentifier[36]", 6, "string[36]"},
        {"bigint[20]", 6, "string[20]"},
        {"any", 6, "string[1024]"},
        {"Any[7]", 6, "string[1024]"},
        {"string", 6, "string"},
        {"string[-1000000]", 6, "string"},
        {"Tchars[1:10]", 10, "Tchars[1:10]"},
        {"Tnumeric[1:4]", 10, "Tchars[1:4]"},
        {"Tlogical[1:1]", 10, "Tchars[1:1]"},
        {"Tdate[0:7]", 10, "Tchars[0:7]"},
    };
    for (const auto& row : rows) {
        const std::string text = "x : " + row.type + "\n";
        const Built b = built(text);
        EXPECT_EQ(b.kind, row.kind) << row.type;
        EXPECT_EQ(b.position, text.size());
        EXPECT_EQ(b.error, 0) << row.type;
        EXPECT_EQ(b.shown, "FIELD1 : " + row.shown + "\n");
    }
    EXPECT_EQ(built("x : set[-3:9]\n").kind, KindSet);
    EXPECT_EQ(built("x : set\n").kind, KindSet);
}

TEST_F(TypeInfoValues, NumbersAreZeroAndArraysZeroFilled) {
    for (const auto& [type, kind] : {std::pair("boolean"s, KindBoolean), std::pair("fixed"s, KindFixed)}) {
        char value[9];
        std::memset(value, 0x5A, sizeof value);
        std::size_t position = 0;
        EXPECT_EQ(TypeInfoToValue("x : " + type, position, value), kind);
        EXPECT_TRUE(isZero(value, static_cast<std::size_t>(KindSize[kind])));
        EXPECT_EQ(value[KindSize[kind]], 0x5A);
    }
    ArrayValue array;
    std::size_t position = 0;
    EXPECT_EQ(TypeInfoToValue("x : Tchars[1:10]", position, array.get()), KindArray);
    EXPECT_EQ(array.get()->tag, KindEnum);
    EXPECT_EQ(array.get()->size, 10);
    EXPECT_TRUE(isZero(At(array.get()->data), 10));
}

TEST_F(TypeInfoValues, SetsHaveTheBoundsOrAreDynamic) {
    OwnedSet set;
    std::size_t position = 0;
    EXPECT_EQ(TypeInfoToValue("x : set[-3:9]", position, set.get()), KindSet);
    EXPECT_EQ(set.get()->lower, -3);
    EXPECT_EQ(set.get()->upper, 9);
    EXPECT_EQ(set.get()->maxlength, 0);
    OwnedSet dynamic;
    position = 0;
    EXPECT_EQ(TypeInfoToValue("x : set", position, dynamic.get()), KindSet);
    EXPECT_EQ(dynamic.get()->maxlength, DYNAMIC_BOUNDS);
}

TEST_F(TypeInfoValues, WhatIsNoTypeIsSkipped) {
    for (const std::string text :
         {"x : nothing\n", "x\n", "\n", "end record\n", "x : array[1:2]\n", "\"x : integer\n"}) {
        const Built b = built(text);
        EXPECT_EQ(b.kind, KindNone) << text;
        EXPECT_EQ(b.position, text.size());
        EXPECT_EQ(b.error, 0);
    }
    EXPECT_EQ(built("x : adt\ny : integer\n").kind, KindAnyAdt);
    EXPECT_EQ(built("x : adt\ny : integer\n").position, 8U);
    EXPECT_EQ(built("").kind, KindNone);
    EXPECT_EQ(built("x : integer", 5000).position, 11U);
}

TEST_F(TypeInfoValues, ValuesThatCannotBeSetTheErrorOfTheirKind) {
    const struct {
        std::string type;
        std::int32_t error;
    } rows[] = {
        {"string[0]", 821},       {"string[-5]", 804},   {"string[4096001]", 804}, {"set[9:1]", 601},
        {"set[5]", 601},          {"set[1:40000]", 601}, {"Tchars", 760},          {"Tchars[9:1]", 760},
        {"Tchars[1:40000]", 760}, {"Tchars[5]", 760},
    };
    for (const auto& row : rows) {
        const std::string alone = "x : " + row.type + "\n";
        const Built b = built(alone);
        EXPECT_EQ(b.kind, KindNone) << row.type;
        EXPECT_EQ(b.error, row.error) << row.type;
        EXPECT_EQ(b.position, alone.size());
        // Inside of blocks too, behind fields that hold memory, with the position at the end.
        for (const std::string& text : {"r : record\n\ta : any\n\ti : list\n\t\tx : " + row.type +
                                            "\n\tend list\n\tz : any\nend record\n",
                                        "r : record\n\ta : any\n\ti : record\n\t\tb : any\n\t\tx : " +
                                            row.type + "\n\tend record\n\tz : any\nend record\n"}) {
            const Built inside = built(text);
            EXPECT_EQ(inside.kind, KindNone);
            EXPECT_EQ(inside.error, row.error);
            EXPECT_EQ(inside.position, text.size());
        }
    }
}

// ---- records and lists ----

TEST_F(TypeInfoValues, ARecordHasItsFieldsPackedInOrder) {
    RecordValue record;
    EXPECT_EQ(
        toRecord("r : record\n\ta : boolean\n\tb : integer\n\tc : string[5]\n\td : set[1:9]\n\te : real\nend "
                 "record\n",
                 record),
        0);
    EXPECT_EQ(AdtCheck(record.get(), KindRecord), "");
    EXPECT_EQ(record.get()->size, 1 + 4 + 24 + 44 + 8);
    EXPECT_EQ(RecordFieldCount(record.get()), 5);
    EXPECT_EQ(TypeInfoFromValue(record.get(), KindRecord, "a\nb\nc\nd\ne\n"),
              "a : boolean\nb : integer\nc : string[5]\nd : set[1:9]\ne : real\n");
    const String five("12345");
    RecordPut(record.get(), 3, five.get(), KindString);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(TypeInfoValues, BlocksHoldBlocks) {
    RecordValue record;
    EXPECT_EQ(
        toRecord(
            "r : record\n\tu : union\n\t\ta : integer\n\t\tb : string[3]\n\tend union\n\tl : list\n\t\tm : "
            "record\n\t\t\tx : any\n\t\tend record\n\tend list\n\tz : list\n\t\ty : integer\n\tend "
            "list\nend record\n",
            record),
        0);
    EXPECT_EQ(AdtCheck(record.get(), KindRecord), "");
    EXPECT_EQ(RecordFieldCount(record.get()), 3);
    EXPECT_EQ(RecordFieldKind(record.get(), 1), KindUnion);
    EXPECT_EQ(KindOf(RecordFieldAddress(record.get(), 1)), KindUnion);
    EXPECT_EQ(RecordFieldKind(record.get(), 2), KindList);
    const auto* list = static_cast<const ListDescriptor*>(RecordFieldAddress(record.get(), 2));
    EXPECT_EQ(ListElementKind(list), KindRecord);
    EXPECT_EQ(list->maxlength, UNBOUNDED);
    EXPECT_EQ(ListElementKind(static_cast<const ListDescriptor*>(RecordFieldAddress(record.get(), 3))),
              KindInteger);
}

TEST_F(TypeInfoValues, LinesWithoutAKindAreNoFields) {
    RecordValue record;
    EXPECT_EQ(
        toRecord("r : record\n\ta : integer\n\tb : adt\n\tc : nothing\n\n\td : list\n\t\te : nothing\n\tend "
                 "list\n\tf : real\nend record\n",
                 record),
        0);
    EXPECT_EQ(TypeInfoFromValue(record.get(), KindRecord), "FIELD1 : integer\nFIELD2 : real\n");
}

TEST_F(TypeInfoValues, ARecordMayBeEmptyOrUnclosed) {
    RecordValue record;
    EXPECT_EQ(toRecord("r : record\nend record\n", record), 0);
    EXPECT_EQ(KindOf(record.get()), KindRecord);
    EXPECT_EQ(RecordFieldCount(record.get()), 0);
    EXPECT_EQ(toRecord("r : record\n\ta : integer", record), 0);
    EXPECT_EQ(RecordFieldCount(record.get()), 1);
    EXPECT_EQ(toRecord("r:record\na:integer\ni:record\nx:real\nend\nb:real\nend whatever\n", record), 0);
    EXPECT_EQ(RecordFieldCount(record.get()), 3);
}

TEST_F(TypeInfoValues, FieldsFromThe49thOnAreReadAndDropped) {
    for (const std::string type : {"integer", "string[3]", "set[1:9]"}) {
        const std::string text = fields(49, type);
        const std::string behind = "behind : integer\n";
        char value[36];
        std::size_t position = 0;
        ASSERT_EQ(TypeInfoToValue(text + behind, position, value), KindRecord);
        EXPECT_EQ(position, text.size());
        EXPECT_EQ(RecordFieldCount(reinterpret_cast<RecordDescriptor*>(value)), 48);
        EXPECT_EQ(AdtCheck(value, KindRecord), "");
        AdtFree(value, KindRecord);
    }
    RecordValue record;
    EXPECT_EQ(toRecord(fields(300), record), 0);
    EXPECT_EQ(RecordFieldCount(record.get()), 48);
    // A block behind the 48th field is read to its end.
    std::string text = fields(48);
    text.insert(text.find("end record"), "\tmore : record\n\t\tx : any\n\tend record\n");
    const Built b = built(text + "y : real\n");
    EXPECT_EQ(b.position, text.size());
}

TEST_F(TypeInfoValues, AListHasOneElementDefinition) {
    const Built b = built("l : list\n\ta : integer\n\tb : any\n\tc : nothing\nend list\nz : real\n");
    EXPECT_EQ(b.kind, KindList);
    EXPECT_EQ(b.position, std::strlen("l : list\n\ta : integer\n\tb : any\n\tc : nothing\nend list\n"));
    for (const std::string text :
         {"l : list\nend list\n", "l : list\n", "l : list\n\ta : nothing\n\tb : integer\nend list\n",
          "l : list\n\ta : adt\nend list\n", "l : list\n\tm : list\n\tend list\nend list\n"}) {
        const Built none = built(text);
        EXPECT_EQ(none.kind, KindNone) << text;
        EXPECT_EQ(none.position, text.size());
        EXPECT_EQ(none.error, 0);
    }
}

TEST_F(TypeInfoValues, ATableInsideOfAValueIsPassedOver) {
    RecordValue record;
    EXPECT_EQ(
        toRecord(
            "r : record\n\ta : integer\n\tt : table\n\t\tu : record\n\t\t\tx : any\n\t\tend record\n\tend "
            "table\n\tb : real\nend record\n",
            record),
        0);
    EXPECT_EQ(TypeInfoFromValue(record.get(), KindRecord), "FIELD1 : integer\nFIELD2 : real\n");
}

TEST_F(TypeInfoValues, BlocksAreBuiltToAHundredLevels) {
    const auto nested = [](int levels) {
        std::string text;
        for (int i = 0; i < levels; ++i) text += "r : record\n";
        text += "x : integer\n";
        for (int i = 0; i < levels; ++i) text += "end record\n";
        return text;
    };
    for (const int levels : {1, 99, 100, 101, 102, 1000}) {
        SCOPED_TRACE(levels);
        const std::string text = nested(levels);
        RecordValue record;
        std::size_t position = 0;
        ASSERT_EQ(TypeInfoToValue(text + "y : real\n", position, record.get()), KindRecord);
        EXPECT_EQ(position, text.size());
        const RecordDescriptor* r = record.get();
        int built = 1;
        for (; RecordFieldKind(r, 1) == KindRecord; ++built)
            r = static_cast<const RecordDescriptor*>(RecordFieldAddress(r, 1));
        EXPECT_EQ(built, std::min(levels, 100));
        EXPECT_EQ(RecordFieldCount(r), levels <= 100 ? 1 : 0);
    }
    // Of lists nothing is left, since their element has no kind.
    std::string lists;
    for (int i = 0; i < 101; ++i) lists += "l : list\n";
    EXPECT_EQ(built(lists + "x : integer\n").kind, KindNone);
    EXPECT_EQ(built(lists.substr(9) + "x : integer\n").kind, KindList);
}

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
