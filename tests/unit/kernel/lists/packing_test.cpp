// SPDX-License-Identifier: Apache-2.0
//
// Values as bytes.
#include "kernel/data/datafile.h"
#include "kernel/data/packing_whole.h"
#include "kernel/values/arrays.h"
#include "unit/kernel/tab_fixture.h"

#include <random>

namespace tarn {
namespace {

using namespace std::string_literals;

class Packing : public Tab {
protected:
    static std::string packed(const void* value, Kind kind) {
        std::string bytes;
        const std::int32_t code = PackWhole(value, kind, bytes);
        return code == 0 ? bytes : std::to_string(code);
    }
    // Loads the row of delimited text into a value of the declaration.
    void fill(Typed& value, std::string_view row) {
        files_.put("/d/row", std::string(row));
        ASSERT_EQ(TabLoad("/d/row", CommaRows, value.get(), value.kind()).code, 0);
    }
    std::string packedRow(std::string_view row, std::string_view declaration) {
        Typed value(declaration);
        fill(value, row);
        return packed(value.get(), value.kind());
    }
};

TEST_F(Packing, EachKindHasItsBytes) {
    struct Case {
        const char *type, *cell;
        std::string bytes;
    };
    const Case cases[] = {
        {"boolean", "true", "\1"s},
        {"enum", "200", "\xC8"s},
        {"integer", "258", "\0\0\1\2"s},
        {"integer", "-2", "\xFF\xFF\xFF\xFE"s},
        {"fixed", "1.0001", "\0\0\0\0\0\0\x27\x11"s},
        {"fixed", "-0.0001", "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s},
        {"real", "1", "\0\0\0\0\0\0\xF0\x3F"s},
        {"string[5]", "abc", "\0\0\0\3abc\0\0"s},
        {"string[3]", "abc", "\0\0\0\3abc"s},
        {"set[1:9]", "[1,9]", "\x80\x80"s},
        {"Tchars[1:3]", "ab", "ab "s},
        {"record\n\t\ty : boolean\n\t\tz : integer\n\tend record", "true,1", "\1\0\0\0\1"s},
    };
    for (const Case& c : cases) {
        const std::string declaration = std::string("r : record\n\tx : ") + c.type + "\nend record\n";
        EXPECT_EQ(packedRow(std::string(c.cell) + "\n", declaration), c.bytes) << c.type;
        Typed value(declaration);
        EXPECT_EQ(PackedLength(value.get(), KindRecord), static_cast<std::int64_t>(c.bytes.size())) << c.type;
        EXPECT_EQ(UnpackWhole(c.bytes, value.get(), KindRecord), 0) << c.type;
        EXPECT_EQ(packed(value.get(), KindRecord), c.bytes) << c.type;
    }
}

TEST_F(Packing, ListsAreTheirElementsAndThoseOfAFixedCapacityBeginWithTheCount) {
    ListValue open, fixed;
    ListInit(open.get(), UNBOUNDED, nullptr, KindInteger, false);
    ListInit(fixed.get(), 3, nullptr, KindInteger, false);
    for (std::int32_t i = 1; i <= 2; ++i) {
        ListAppend(&i, KindInteger, open.get());
        ListAppend(&i, KindInteger, fixed.get());
    }
    EXPECT_EQ(packed(open.get(), KindList), "\0\0\0\1\0\0\0\2"s);
    EXPECT_EQ(packed(fixed.get(), KindList), "\0\0\0\2\0\0\0\1\0\0\0\2\0\0\0\0"s);
    EXPECT_EQ(PackedLength(fixed.get(), KindList), 16);
    EXPECT_EQ(PackedLength(open.get(), KindList), 0);
}

TEST_F(Packing, WhatADeletedElementLeavesIsNotPacked) {
    ListValue list;
    const String one("secret");
    StringDescriptor shape;
    StringInit(&shape, 6);
    ListInit(list.get(), 2, &shape, KindString, false);
    StringFree(&shape);
    ListAppend(one.get(), KindString, list.get());
    ListRemoveLast(list.get());
    EXPECT_EQ(packed(list.get(), KindList), std::string(4 + 20, '\0'));
}

TEST_F(Packing, AStringIsItsBytesAndTheLastOfARecordMayBeOpen) {
    const String text("a\0b"s);
    EXPECT_EQ(packed(text.get(), KindString), "a\0b"s);
    RecordValue record;
    const std::int32_t number = 1;
    RecordInit(record.get(), TagRecord, {});
    RecordAppend(record.get(), &number, KindInteger);
    RecordAppend(record.get(), text.get(), KindString);
    EXPECT_EQ(packed(record.get(), KindRecord), "\0\0\0\1a\0b"s);
    EXPECT_EQ(UnpackWhole("\0\0\0\2xyz"s, record.get(), KindRecord), 0);
    EXPECT_EQ(Shown(record.get(), KindRecord), "2|xyz");
    EXPECT_EQ(UnpackWhole("\0\0\0"s, record.get(), KindRecord), 655);
    RecordAppend(record.get(), &number, KindInteger);
    EXPECT_EQ(packed(record.get(), KindRecord), "660");
}

TEST_F(Packing, WhatHasNoOneLengthCannotBePacked) {
    ListValue strings;
    const String text("x");
    ListInit(strings.get(), UNBOUNDED, text.get(), KindString, false);
    EXPECT_EQ(packed(strings.get(), KindList), "660");
    ListDescriptor untyped{0, 0, 0, UNBOUNDED, 0, 0};
    EXPECT_EQ(packed(&untyped, KindList), "660");
    RecordDescriptor empty{0, TagRecord, 0, {}};
    EXPECT_EQ(packed(&empty, KindRecord), "660");
    SetDescriptor dynamic;
    SetInit(&dynamic, UNBOUNDED, UNBOUNDED);
    SetInclude(3, &dynamic);
    EXPECT_EQ(packed(&dynamic, KindSet), "\x20"s);
    RecordValue holder;
    RecordInit(holder.get(), TagRecord, {});
    RecordAppend(holder.get(), &dynamic, KindSet);
    EXPECT_EQ(packed(holder.get(), KindRecord), "660");
    SetFree(&dynamic);
    EXPECT_EQ(packed(nullptr, KindList), "764");
    EXPECT_EQ(packed(text.get(), KindList), "764");
    ListDescriptor held{};
    ListInit(&held, UNBOUNDED, nullptr, KindInteger, true);
    EXPECT_EQ(packed(&held, KindList), "661");
    AdtFree(&held, KindList);
}

TEST_F(Packing, ARecordMayNotBeLargerThanABlock) {
    RecordValue record;
    RecordInit(record.get(), TagRecord, {});
    StringDescriptor large;
    StringInit(&large, MaxBlock);
    RecordAppend(record.get(), &large, KindString);
    StringFree(&large);
    EXPECT_EQ(PackedLength(record.get(), KindRecord), MostPackedBytes + 4);
    EXPECT_EQ(packed(record.get(), KindRecord), "660");
}

TEST_F(Packing, SizesThatNoValueHasAreRefused) {
    Typed list("x : list\n\ti : integer\nend list\n");
    EXPECT_EQ(UnpackWhole("\0\0\0\1\0"s, list.get(), KindList), 655);
    Typed record("r : record\n\ta : integer\nend record\n");
    EXPECT_EQ(UnpackWhole("\0\0\0"s, record.get(), KindRecord), 655);
    EXPECT_EQ(UnpackWhole("\0\0\0\0\0"s, record.get(), KindRecord), 655);
    ListValue fixed;
    ListInit(fixed.get(), 2, nullptr, KindInteger, false);
    EXPECT_EQ(UnpackWhole("\0\0\0"s, fixed.get(), KindList), 655);
    EXPECT_EQ(UnpackWhole("\0\0\0\1\0\0\0\0"s, fixed.get(), KindList), 655);
    EXPECT_EQ(UnpackWhole("\0\0\0\3\0\0\0\0\0\0\0\0"s, fixed.get(), KindList), 618);
    EXPECT_EQ(UnpackWhole("\xFF\xFF\xFF\xFF\0\0\0\0\0\0\0\0"s, fixed.get(), KindList), 655);
    EXPECT_EQ(UnpackWhole("\0\0\0\1\0\0\0\5\0\0\0\0"s, fixed.get(), KindList), 0);
    EXPECT_EQ(Shown(fixed.get(), KindList), "{5}");
}

TEST_F(Packing, DamagedBytesGiveLegalValuesOrAnError) {
    const std::string declaration =
        "r : record\n\ta : boolean\n\tb : string[4]\n\tc : set[3:12]\n\td : real\n"
        "\te : Tchars[1:2]\nend record\n";
    const std::string good = packedRow("true,abc,[3,5,12],1.5,xy\n", declaration);
    int errors = 0;
    for (std::size_t at = 0; at < good.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string bytes = good;
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
            Typed value(declaration);
            const std::int32_t code = UnpackWhole(bytes, value.get(), KindRecord);
            ASSERT_TRUE(code == 0 || code == 651) << at << " " << code;
            errors += code != 0 ? 1 : 0;
            ASSERT_EQ(AdtCheck(value.get(), KindRecord), "") << at;
            const auto record = ReadAt<RecordDescriptor>(value.get());
            ASSERT_LE(ReadAt<std::uint8_t>(At(record.data)), 1);
            std::string again;
            ASSERT_EQ(PackWhole(value.get(), KindRecord, again), 0);
            ASSERT_EQ(again.size(), good.size());
        }
    }
    EXPECT_GE(errors, 29);  // the lengths of the string that are above 4 or negative
}

// ---- files of packed values ----

TEST_F(Packing, TablesComeBackWithTheirIndexes) {
    TableValue table;
    const char* const declaration =
        "t : table\n\tr : record\n\t\tk : integer\n\t\ts : string[9]\n\tend record\nend table\n";
    TypeInfoToTable(String(declaration).get(), table.get());
    files_.put("/d/in", "2,b\n1,a\n3,c\n");
    ASSERT_EQ(TabLoad("/d/in", CommaRows, table.get(), KindTable).code, 0);
    std::string message;
    EXPECT_EQ(SaveValue("/d/t.bin", FormatBinary, {}, 0, table.get(), KindTable).rows, 3);
    EXPECT_EQ(files_.contents("/d/t.bin").size(), 3 * (4 + 13u));
    TableClear(table.get());
    EXPECT_EQ(LoadValue("/d/t.bin", FormatBinary, {}, table.get(), KindTable, message).code, 0);
    EXPECT_EQ(Shown(table.get(), KindTable), "{2|b}{1|a}{3|c}");
    EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
    const std::string bytes = files_.contents("/d/t.bin");
    files_.put("/d/t.bin", bytes + bytes);
    EXPECT_EQ(LoadValue("/d/t.bin", FormatBinary, {}, table.get(), KindTable, message).code, 635);
    EXPECT_EQ(Shown(table.get(), KindTable), "{2|b}{1|a}{3|c}");
}

TEST_F(Packing, AFailedLoadLeavesTheValue) {
    String text(std::string_view("old"));
    std::string message;
    files_.put("/d/a.bin", "new");
    EXPECT_EQ(LoadValue("/d/none.bin", FormatBinary, {}, text.get(), KindString, message).code, 651);
    files_.failAt(os::FileCall::Read, 1, os::FileError::ReadFailed);
    EXPECT_EQ(LoadValue("/d/a.bin", FormatBinary, {}, text.get(), KindString, message).code, 651);
    files_.stopFailing();
    FailAllocation(0);
    EXPECT_EQ(LoadValue("/d/a.bin", FormatBinary, {}, text.get(), KindString, message).code, 802);
    FailAllocation(-1);
    UseProgress([](std::int64_t, std::int64_t) { return false; });
    EXPECT_TRUE(LoadValue("/d/a.bin", FormatBinary, {}, text.get(), KindString, message).stopped);
    UseProgress(nullptr);
    EXPECT_EQ(text.view(), "old");
    EXPECT_EQ(LoadValue("/d/a.bin", FormatBinary, {}, text.get(), KindString, message).code, 0);
    EXPECT_EQ(text.view(), "new");
    files_.put("/d/a.bin", std::string(MaxBlock + 1, 'x'));
    EXPECT_EQ(LoadValue("/d/a.bin", FormatBinary, {}, text.get(), KindString, message).code, 804);
    EXPECT_EQ(text.view(), "new");
}

// None of these files is read much further than its value reaches.
TEST_F(Packing, FilesThatAreTooLargeAreRefusedBeforeTheyAreRead) {
    files_.put("/d/a.bin", std::string(std::size_t{20 * ProgressStep}, '\0'));
    ListValue small;
    ListInit(small.get(), 3, nullptr, KindInteger, false);
    Typed list("x : list\n\ti : integer\nend list\n"), record("r : record\n\ta : integer\nend record\n");
    Typed open("r : record\n\ta : integer\n\ts : string\nend record\n"), text("s : string"),
        word("s : string[5]");
    const struct {
        void* value;
        Kind kind;
        std::int32_t code;
        int reads;
    } cases[] = {{list.get(), KindList, 804, 4},     {small.get(), KindList, 655, 1},
                 {record.get(), KindRecord, 655, 1}, {open.get(), KindRecord, 804, 8},
                 {text.get(), KindString, 804, 4},   {word.get(), KindString, 0, 1}};
    std::string message;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        files_.failAt(os::FileCall::Read, c.reads + 1, os::FileError::ReadFailed);
        EXPECT_EQ(LoadValue("/d/a.bin", FormatBinary, {}, c.value, c.kind, message).code, c.code);
        files_.stopFailing();
    }
}

TEST_F(Packing, ASaveThatIsStoppedLeavesTheFile) {
    Typed list("x : list\n\ti : integer\nend list\n");
    ListValue fixed;
    ListInit(fixed.get(), 500'000, nullptr, KindInteger, false);
    for (std::int32_t number = 0; number < 500'000; ++number) {
        ListAppend(&number, KindInteger, list.get<ListDescriptor>());
        ListAppend(&number, KindInteger, fixed.get());
    }
    files_.put("/d/a.bin", "old");
    static std::int64_t last = 0;
    for (void* value : {list.get(), static_cast<void*>(fixed.get())}) {
        UseProgress([](std::int64_t, std::int64_t) { return false; });
        EXPECT_TRUE(SaveValue("/d/a.bin", FormatBinary, {}, 0, value, KindList).stopped);
        EXPECT_EQ(files_.contents("/d/a.bin"), "old");
        UseProgress([](std::int64_t done, std::int64_t total) {
            EXPECT_LE(done, total);
            EXPECT_NEAR(static_cast<double>(total), 2e6, 1e4);
            last = done;
            return true;
        });
        const DataResult result = SaveValue("/d/b.bin", FormatBinary, {}, 0, value, KindList);
        EXPECT_FALSE(result.stopped);
        EXPECT_EQ(result.rows, 500'000);
        EXPECT_GE(last, ProgressStep);
    }
}

TEST_F(Packing, AFailedSaveLeavesTheFile) {
    const String text(std::string_view("new"));
    files_.put("/d/a.bin", "old");
    files_.setFreeBytes(1);
    EXPECT_EQ(SaveValue("/d/a.bin", FormatBinary, {}, 0, text.get(), KindString).code, 654);
    EXPECT_EQ(files_.contents("/d/a.bin"), "old");
}

}  // namespace
}  // namespace tarn
