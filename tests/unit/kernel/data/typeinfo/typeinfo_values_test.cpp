// SPDX-License-Identifier: Apache-2.0
//
// A value of each type, and of records and lists, is built from its text.
#include "unit/kernel/typeinfo_fixture.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

using namespace tarn;
using namespace std::string_literals;

namespace {

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

}  // namespace
