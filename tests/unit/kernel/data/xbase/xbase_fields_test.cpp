// SPDX-License-Identifier: Apache-2.0
//
// Values and declarations to descriptors, and what fits the fields of a file.
#include "kernel/values/arrays.h"
#include "unit/kernel/table_rows.h"
#include "unit/kernel/xbase_fixture.h"

namespace tarn {
namespace {

using namespace std::string_literals;

class XbaseFields : public Xbase {
protected:
    // "name type length.decimals" of each descriptor, or the code.
    static std::string built(const void* value, Kind kind, std::string_view typeText) {
        XbaseHeader header;
        header.fieldCount = 9;
        const std::int32_t code = XbaseBuildDescriptors(value, kind, typeText, header);
        std::string text = code != 0 ? std::to_string(code) : "";
        EXPECT_EQ(header.fieldCount == 0, code != 0);
        for (std::int32_t i = 0; i < header.fieldCount; ++i)
            text += (i > 0 ? ", " : "") + std::string(header.name[i]) + " " + header.type[i] + " " +
                    std::to_string(header.length[i]) + "." + std::to_string(header.decimals[i]);
        return text;
    }
    // Of the value that the lines describe.
    static std::string builtFrom(const std::string& lines) {
        const Typed row("T : record\n" + lines + "end record\n");
        EXPECT_EQ(row.kind(), KindRecord);
        return built(const_cast<Typed&>(row).get(), KindRecord, lines);
    }
};

// ---- building ----

TEST_F(XbaseFields, EachKindHasItsDescriptor) {
    const struct {
        const char *line, *descriptor;
    } cases[] = {
        {"a : boolean\n", "a L 1.0"},
        {"a : enum\n", "a N 4.0"},
        {"a : integer\n", "a N 12.0"},
        {"a : fixed\n", "a N 20.4"},
        {"a : real\n", "a N 20.4"},
        {"a : string[40]\n", "a C 40.0"},
        {"a : string\n", "a C 255.0"},
        {"a : string[255]\n", "a C 255.0"},
        {"a : string[256]\n", "658"},
        {"a : Tchars[1:7]\n", "a C 7.0"},
        {"a : TCHARS[1:255]\n", "a C 255.0"},
        {"a : Tchars[1:256]\n", "658"},
        {"a : Tchars[2:7]\n", "658"},
        {"a : Tchars[0:7]\n", "658"},
        {"a : Tdate[1:8]\n", "a D 8.0"},
        {"a : Tlogical[1:1]\n", "a L 1.0"},
        {"a : Tnumeric[1:4]\n", "a N 4.4"},
        {"a : tnumeric[1:9]\n", "a N 9.4"},
        {"a : set[1:9]\n", "658"},
        {"a : integer\nb : set[1:9]\n", "658"},
    };
    for (const auto& c : cases) EXPECT_EQ(builtFrom(c.line), c.descriptor) << c.line;
}

TEST_F(XbaseFields, ValuesWithoutARecordHaveOneDescriptor) {
    const std::int32_t number = 5;
    EXPECT_EQ(built(&number, KindInteger, "n : integer\n"), "n N 12.0");
    Typed text("s : string[9]\n");
    EXPECT_EQ(built(text.get(), KindString, "s : string[9]\n"), "s C 9.0");
    Typed set("s : set[1:9]\n");
    EXPECT_EQ(built(set.get(), KindSet, "s : set[1:9]\n"), "658");
    EXPECT_EQ(built(nullptr, KindRecord, "s : integer\n"), "658");
    EXPECT_EQ(built(nullptr, KindString, "s : string\n"), "658");
}

TEST_F(XbaseFields, ListsAndTablesAreTheirRows) {
    Typed list("x : list\n\tr : record\n\t\ta : integer\n\tend record\nend list\n");
    EXPECT_EQ(built(list.get(), KindList, "a : integer\n"), "a N 12.0");
    Typed numbers("x : list\n\tr : boolean\nend list\n");
    EXPECT_EQ(built(numbers.get(), KindList, "a : boolean\n"), "a L 1.0");
    const String text("t : table\n\tT : record\n\t\ta : fixed\n\tend record\nend table\n");
    TableValue table;
    TypeInfoToTable(text.get(), table.get());
    EXPECT_EQ(built(table.get(), KindTable, "a : fixed\n"), "a N 20.4");
    Typed lists("x : list\n\ty : list\n\t\ti : integer\n\tend list\nend list\n");
    EXPECT_EQ(built(lists.get(), KindList, "a : integer\n"), "658");
}

TEST_F(XbaseFields, RecordsAndUnionsInsideAreFlattened) {
    EXPECT_EQ(builtFrom("a : integer\nb : record\n\tc : boolean\n\td : union\n\t\te : fixed\n\t\tf : enum\n"
                        "\tend union\nend record\ng : string[3]\n"),
              "a N 12.0, c L 1.0, e N 20.4, f N 4.0, g C 3.0");
}

TEST_F(XbaseFields, NamesComeFromTheDeclaration) {
    EXPECT_EQ(builtFrom("elevenchars : integer\ntwelve_chars : boolean\n"),
              "elevenchars N 12.0, twelve_char L 1.0");
    EXPECT_EQ(builtFrom("\"first name\" : integer\n"), "first name N 12.0");
    // The same names once they are cut.
    EXPECT_EQ(builtFrom("description_a : integer\ndescription_b : integer\nDescription : integer\n"),
              "description N 12.0, descripti_2 N 12.0, Descripti_3 N 12.0");
    const Typed row("T : record\n\ta : integer\n\tb : integer\nend record\n");
    const void* value = const_cast<Typed&>(row).get();
    // As a file has it, or a table.
    EXPECT_EQ(built(value, KindRecord, "T : record\n\ta : integer\n\tb : integer\nend record\n"),
              "a N 12.0, b N 12.0");
    EXPECT_EQ(built(value, KindRecord,
                    "t : table\n\tT : record\n\t\ta : integer\n\t\tb : integer\n\tend record\nend table\n"),
              "a N 12.0, b N 12.0");
    EXPECT_EQ(built(value, KindRecord, "a\nb\n"), "a N 12.0, b N 12.0");
    EXPECT_EQ(built(value, KindRecord, "a : integer\nb : integer"), "a N 12.0, b N 12.0");
}

TEST_F(XbaseFields, ADeclarationThatIsTooShortIsRefused) {
    const Typed row("T : record\n\ta : integer\n\tb : integer\nend record\n");
    const void* value = const_cast<Typed&>(row).get();
    EXPECT_EQ(built(value, KindRecord, ""), "658");
    EXPECT_EQ(built(value, KindRecord, "a : integer\n"), "658");
    EXPECT_EQ(built(value, KindRecord, "T : record\nend record\n"), "658");
    Typed characters("T : record\n\ta : Tchars[1:3]\nend record\n");
    EXPECT_EQ(built(characters.get(), KindRecord, "a : string[3]\n"), "658");
    EXPECT_EQ(built(characters.get(), KindRecord, "a\n"), "658");
    EXPECT_EQ(built(characters.get(), KindRecord, "a : Tchar\n"), "658");
    RecordValue empty;
    RecordInit(empty.get(), TagRecord, MakeFieldKinds({}));
    EXPECT_EQ(built(empty.get(), KindRecord, "a : integer\n"), "658");
}

TEST_F(XbaseFields, TheDeletionMarkHasNoDescriptor) {
    EXPECT_EQ(builtFrom("delete_flag : Tchar\na : Tchars[1:3]\n"), "a C 3.0");
    EXPECT_EQ(builtFrom("Delete_Flag : TCHAR\na : integer\n"), "a N 12.0");
    // Not the first, not of that type, not an enum.
    EXPECT_EQ(builtFrom("a : integer\ndelete_flag : Tchar\n"), "a N 12.0, delete_flag N 4.0");
    EXPECT_EQ(builtFrom("delete_flag : enum\na : integer\n"), "delete_flag N 4.0, a N 12.0");
    const Typed row("T : record\n\ta : integer\n\tb : integer\nend record\n");
    EXPECT_EQ(built(const_cast<Typed&>(row).get(), KindRecord, "delete_flag : Tchar\nb : integer\n"),
              "delete_flag N 12.0, b N 12.0");
    // The first field of a row that can be kept in a file is the mark whatever it is called.
    EXPECT_EQ(builtFrom("state : enum\na : Tchars[1:3]\n"), "a C 3.0");
    // A file of no fields could not be read again.
    EXPECT_EQ(builtFrom("delete_flag : Tchar\n"), "658");
    EXPECT_EQ(builtFrom("state : enum\n"), "state N 4.0");
}

TEST_F(XbaseFields, FortyEightFieldsFit) {
    std::string lines;
    for (int i = 1; i <= 24; ++i) lines += "f" + std::to_string(i) + " : boolean\n";
    const auto nested = [&](int count) {
        std::string text = lines + "r : record\n";
        for (int i = 25; i <= count; ++i) text += "\tf" + std::to_string(i) + " : boolean\n";
        return text + "end record\n";
    };
    EXPECT_EQ(builtFrom(nested(48)).substr(0, 16), "f1 L 1.0, f2 L 1");
    EXPECT_EQ(builtFrom(nested(49)), "658");
}

// ---- bytes ----

TEST_F(XbaseFields, AHeaderIsWrittenByteByByte) {
    os::SteeredClock clock;  // 2001-02-03
    const os::Steered steered(clock);
    Typed row("T : record\n\tid : integer\n\ttwelve_chars : string[20]\nend record\n");
    std::int32_t code = -1;
    const std::string bytes = XbaseHeaderBytes(row.get(), KindRecord,
                                               "id : integer\ntwelve_chars : string[20]\n", 0x0A0B0C0D, code);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(bytes, "\x03\x01\x02\x03\x0D\x0C\x0B\x0A\x61\x00\x21\x00"
                     "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                     "id\0\0\0\0\0\0\0\0\0N\0\0\0\0\x0C\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                     "twelve_charC\0\0\0\0\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\r"s);
}

TEST_F(XbaseFields, AHeaderHasTodaysDate) {
    os::SteeredClock clock;
    const os::Steered steered(clock);
    Typed row("T : record\n\tid : boolean\nend record\n");
    std::int32_t code = 0;
    for (const int year : {1999, 2000, 2024, 2101}) {
        clock.setLocal({year, 12, 31, 23, 59, 59, 0});
        const std::string bytes = XbaseHeaderBytes(row.get(), KindRecord, "id : boolean\n", 0, code);
        EXPECT_EQ(bytes.substr(0, 4), "\3"s + static_cast<char>(year % 100) + "\x0C\x1F") << year;
    }
}

TEST_F(XbaseFields, WhatHasNoDescriptorsHasNoHeader) {
    Typed row("T : record\n\tid : set[1:3]\nend record\n");
    std::int32_t code = 0;
    EXPECT_EQ(XbaseHeaderBytes(row.get(), KindRecord, "id : set[1:3]\n", 0, code), "");
    EXPECT_EQ(code, 658);
    EXPECT_EQ(XbaseHeaderBytes(row.get(), KindRecord, "", 0, code), "");
    EXPECT_EQ(code, 658);
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- what fits a file ----

TEST_F(XbaseFields, AValueFitsOrItsFirstMisfitIsNamed) {
    const XFields file = {{"N", 'N', 8, 2}, {"C", 'C', 5}, {"L", 'L', 1}, {"D", 'D', 8}};
    const struct {
        const char* lines;
        std::int32_t result;
    } cases[] = {
        {"a : integer\nb : string[5]\nc : boolean\nd : string[8]\n", 0},
        {"a : enum\nb : string\nc : Tlogical[1:1]\nd : Tdate[1:8]\n", 0},
        {"a : fixed\nb : Tchars[1:5]\nc : boolean\nd : string[80]\n", 0},
        {"a : real\nb : Tchars[1:5]\nc : boolean\nd : string\n", 0},
        {"a : record\n\tb : real\n\tc : string[5]\nend record\nd : boolean\ne : string\n", 0},
        {"x : enum\na : integer\nb : string[5]\nc : boolean\nd : string[8]\n", 2},
        {"x : Tchar\na : Tnumeric[1:8]\nb : Tchars[1:5]\nc : Tlogical[1:1]\nd : Tdate[1:8]\n", 0},
        {"a : boolean\nb : string[5]\nc : boolean\nd : string[8]\n", 1},
        {"a : string[8]\nb : string[5]\nc : boolean\nd : string[8]\n", 1},
        {"a : integer\nb : string[4]\nc : boolean\nd : string[8]\n", 2},
        {"a : integer\nb : Tchars[1:4]\nc : boolean\nd : string[8]\n", 2},
        {"a : integer\nb : Tchars[1:6]\nc : boolean\nd : string[8]\n", 2},
        {"a : integer\nb : integer\nc : boolean\nd : string[8]\n", 2},
        {"a : integer\nb : string[5]\nc : integer\nd : string[8]\n", 3},
        {"a : integer\nb : string[5]\nc : boolean\nd : boolean\n", 4},
        {"a : integer\nb : string[5]\nc : boolean\nd : set[1:8]\n", 4},
        {"a : boolean\nb : integer\nc : boolean\nd : boolean\n", 1},
        {"a : integer\n", 2},
        {"a : integer\nb : string[5]\nc : boolean\n", 4},
        {"a : integer\nb : string[5]\nc : boolean\nd : string\ne : integer\n", 5},
        {"x : enum\na : integer\nb : string[4]\nc : boolean\nd : string[8]\n", 2},
        {"x : enum\nb : string[5]\nc : boolean\nd : string\n", 0},
        {"x : enum\nb : string[5]\nc : boolean\nd : string\ne : integer\nf : integer\n", 5},
        {"x : enum\n", 1},
        {"x : enum\na : Tnumeric[1:8]\nb : Tchars[1:5]\nc : Tlogical[1:1]\n", 4},
        {"x : enum\na : Tchars[1:5]\nc : Tlogical[1:1]\nd : Tdate[1:8]\n", 1},
    };
    const XbaseHeader header = headerOf(file);
    files_.put("/d/a.dbf", HeadBytes(file));
    for (const auto& c : cases) {
        Typed row("T : record\n"s + c.lines + "end record\n");
        EXPECT_EQ(XbaseCheckValue(header, KindRecord, row.get()), c.result) << c.lines;
        EXPECT_EQ(XbaseCheckValue("/d/a.dbf", KindRecord, row.get()), c.result) << c.lines;
    }
}

TEST_F(XbaseFields, AnArrayOfOneDoesNotFitALongerLogicalField) {
    const XbaseHeader header = headerOf({{"A", 'C', 1}, {"L", 'L', 3}});
    Typed one("T : record\n\tx : Tchar\n\ta : Tchars[1:1]\n\tl : Tlogical[1:1]\nend record\n");
    EXPECT_EQ(XbaseCheckValue(header, KindRecord, one.get()), 2);
    Typed three("T : record\n\tx : Tchar\n\ta : Tchars[1:1]\n\tl : Tlogical[1:3]\nend record\n");
    EXPECT_EQ(XbaseCheckValue(header, KindRecord, three.get()), 0);
}

TEST_F(XbaseFields, AnythingWrongWithTheFileIsFieldOne) {
    Typed row("T : record\n\ta : Tchars[1:1]\nend record\n");
    EXPECT_EQ(XbaseCheckValue("/d/none.dbf", KindRecord, row.get()), 1);
    EXPECT_EQ(takeError(), 651);
    files_.put("/d/a.dbf", "PK");
    EXPECT_EQ(XbaseCheckValue("/d/a.dbf", KindRecord, row.get()), 1);
    files_.put("/d/a.dbf", HeadBytes({{"A"}}));
    EXPECT_EQ(XbaseCheckValue("/d/a.dbf", KindRecord, row.get()), 0);
    EXPECT_EQ(XbaseCheckValue("/d/a.dbf", KindRecord, nullptr), 1);
    EXPECT_EQ(XbaseCheckValue("/d/a.dbf", KindList, row.get()), 1);
}

TEST_F(XbaseFields, RowsOfFilesAreAMarkAndCharacters) {
    const struct {
        const char* lines;
        bool result;
    } cases[] = {
        {"x : Tchar\n", true},
        {"x : enum\na : Tchars[1:1]\nb : Tnumeric[1:255]\n", true},
        {"x : enum\na : Tchars[1:256]\n", false},
        {"x : enum\na : Tchars[2:5]\n", false},
        {"x : enum\na : enum\n", false},
        {"x : enum\na : string[5]\n", false},
        {"x : enum\na : integer\n", false},
        {"a : Tchars[1:5]\n", false},
        {"a : integer\n", false},
        {"a : boolean\nb : Tchars[1:5]\n", false},
        {"x : enum\na : record\n\tb : Tchars[1:5]\nend record\n", false},
    };
    for (const auto& c : cases) {
        Typed row("T : record\n"s + c.lines + "end record\n");
        EXPECT_EQ(TypeInfoIsXbaseRecord(row.get<RecordDescriptor>()), c.result) << c.lines;
    }
    RecordDescriptor none{};
    EXPECT_FALSE(TypeInfoIsXbaseRecord(nullptr));
    EXPECT_FALSE(TypeInfoIsXbaseRecord(&none));
    Typed variants("u : union\n\tx : enum\n\ta : Tchars[1:5]\nend union\n");
    EXPECT_FALSE(TypeInfoIsXbaseRecord(variants.get<RecordDescriptor>()));
    RecordValue row = recordOf({ordinal(0), characters("", 4)});
    auto* array = static_cast<ArrayDescriptor*>(RecordFieldAddress(row.get(), 2));
    AdtFree(array, KindArray);
    ArrayInit(array, KindEnum, 1, 2, 1, 2, NO_DIMENSION, NO_DIMENSION, nullptr);
    EXPECT_FALSE(TypeInfoIsXbaseRecord(row.get()));
    AdtFree(array, KindArray);
    ArrayInit(array, KindBoolean, 1, 4);
    EXPECT_FALSE(TypeInfoIsXbaseRecord(row.get()));
}

}  // namespace
}  // namespace tarn
