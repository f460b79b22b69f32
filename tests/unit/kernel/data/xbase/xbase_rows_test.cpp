// SPDX-License-Identifier: Apache-2.0
//
// Rows of Xbase files read into values, a field at a time and whole.
#include "unit/kernel/xbase_rows_fixture.h"

namespace tarn {
namespace {

using namespace std::string_literals;

// ---- reading ----

TEST_F(XbaseRows, CellsBecomeValues) {
    const struct {
        std::string text;
        char type;
        const char *typeText, *shown;
    } cases[] = {
        {"T", 'L', "boolean", "True"},
        {"Y", 'L', "boolean", "True"},
        {"t", 'L', "boolean", "True"},
        {"y", 'L', "boolean", "True"},
        {"F", 'L', "boolean", "False"},
        {"N", 'L', "boolean", "False"},
        {"?", 'L', "boolean", "False"},
        {" ", 'L', "boolean", "False"},
        {"1", 'L', "boolean", "False"},
        {"\0"s, 'L', "boolean", "False"},
        {"", 'L', "boolean", "False"},
        {"Txx", 'L', "boolean", "True"},
        {"  7", 'N', "enum", "7"},
        {"255", 'N', "enum", "255"},
        {"256", 'N', "enum", "658 0"},
        {" -1", 'N', "enum", "658 0"},
        {" -0", 'N', "enum", "0"},
        {"   ", 'N', "enum", "0"},
        {"         -12", 'N', "integer", "-12"},
        {"12          ", 'N', "integer", "12"},
        {"+12", 'N', "integer", "12"},
        {"000000000000012", 'N', "integer", "12"},
        {"2147483647", 'N', "integer", "2147483647"},
        {"2147483648", 'N', "integer", "658 0"},
        {"-2147483648", 'N', "integer", "-2147483648"},
        {"-2147483649", 'N', "integer", "658 0"},
        {"99999999999999999999999999", 'N', "integer", "658 0"},
        {"12.00", 'N', "integer", "12"},
        {"12.", 'N', "integer", "12"},
        {".00", 'N', "integer", "0"},
        {"12.50", 'N', "integer", "658 0"},
        {".", 'N', "integer", "658 0"},
        {"-", 'N', "integer", "658 0"},
        {"1 2", 'N', "integer", "658 0"},
        {"1e3", 'N', "integer", "658 0"},
        {"--1", 'N', "integer", "658 0"},
        {"*****", 'N', "integer", "658 0"},
        {"NULL", 'N', "integer", "658 0"},
        {"     ", 'N', "integer", "0"},
        {"", 'N', "integer", "0"},
        {"\0\0\0\0"s, 'N', "integer", "0"},
        {"12\0\0"s, 'N', "integer", "12"},
        {"    1.2345", 'N', "fixed", "12345f"},
        {"1.23456789", 'N', "fixed", "12345f"},
        {"-.0001", 'N', "fixed", "-1f"},
        {"-1.23", 'N', "fixed", "-12300f"},
        {"5.", 'N', "fixed", "50000f"},
        {"922337203685477", 'N', "fixed", "9223372036854770000f"},
        {"-922337203685477", 'N', "fixed", "-9223372036854770000f"},
        {"922337203685478", 'N', "fixed", "658 0f"},
        {"999999999999999", 'N', "fixed", "658 0f"},
        {"-999999999999999.", 'N', "fixed", "658 0f"},
        {"123456789012345.6789", 'N', "fixed", "1234567890123456789f"},
        {"922337203685477.5807", 'N', "fixed", "9223372036854775807f"},
        {"922337203685477.5808", 'N', "fixed", "658 0f"},
        {"-922337203685477.5808", 'N', "fixed", "-9223372036854775808f"},
        {"1E3", 'N', "fixed", "658 0f"},
        {"1.2.3", 'N', "fixed", "658 0f"},
        {"*******", 'N', "fixed", "658 0f"},
        {"       ", 'N', "fixed", "0f"},
        {"  0.125", 'N', "real", "0.125r"},
        {"-0.1", 'N', "real", "-0.10000000000000001r"},
        {"-0.0", 'N', "real", "-0r"},
        {"1.5E+10", 'N', "real", "15000000000r"},
        {"12345678901234567890", 'N', "real", "1.2345678901234567e+19r"},
        {"1E400", 'N', "real", "658 0r"},
        {"abc", 'N', "real", "658 0r"},
        {"***", 'N', "real", "658 0r"},
        {"   ", 'N', "real", "0r"},
        {"abc   ", 'C', "string", "abc"},
        {"abc   ", 'C', "string[6]", "abc"},
        {"abc   ", 'C', "string[3]", "abc"},
        {"abcd  ", 'C', "string[3]", "658 abc"},
        {"  abc ", 'C', "string", "  abc"},
        {"      ", 'C', "string", ""},
        {"\0\0\0"s, 'C', "string", ""},
        {"ab\0\0"s, 'C', "string", "ab"},
        {"", 'C', "string", ""},
        {"a\nb\"", 'C', "string", "a\nb\""},
        {"20240229", 'D', "string[8]", "20240229"},
        {"        ", 'D', "string[8]", ""},
        {"abc   ", 'C', "Tchars[1:6]", "'abc   '"},
        {"abc", 'C', "Tchars[1:6]", "'abc   '"},
        {"abcdef", 'C', "Tchars[1:3]", "'abc'"},
        {"abc  ", 'C', "Tchars[1:3]", "'abc'"},
        {"20240229", 'D', "Tdate[1:8]", "'20240229'"},
        {" 12", 'N', "Tnumeric[1:3]", "' 12'"},
        {"?", 'L', "Tlogical[1:1]", "'?'"},
        {"ab", 'M', "Tchars[1:2]", "'ab'"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(read(c.text, c.type, c.typeText), c.shown) << "\"" << c.text << "\" " << c.typeText;
}

TEST_F(XbaseRows, EachKindNeedsItsType) {
    const struct {
        const char* typeText;
        std::string types;  // that do
    } cases[] = {{"boolean", "L"}, {"enum", "N"},       {"integer", "N"},    {"fixed", "N"},
                 {"real", "N"},    {"string", "CD"},    {"string[9]", "CD"}, {"Tchars[1:1]", "CDLNMF1"},
                 {"set[1:9]", ""}, {"Tchars[2:3]", ""}, {"Tchars[0:3]", ""}};
    for (const auto& c : cases) {
        for (const char type : "CDLNMF1"s) {
            const bool good = c.types.find(type) != std::string::npos;
            EXPECT_EQ(read("1", type, c.typeText).substr(0, 3) != "658", good) << c.typeText << type;
        }
    }
}

TEST_F(XbaseRows, ArraysOfOtherShapesAreRefused) {
    const XbaseHeader header = headerOf({{"A", 'C', 4}});
    const auto readInto = [&](ArrayDescriptor& array) {
        XbaseFault fault;
        std::size_t position = 1;
        std::int32_t field = 1;
        XbaseFromRow(" abcd", position, header, field, &array, KindArray, fault);
        std::string row;
        XbaseFault writing = XbaseWriteRow(&array, KindArray, header, row);
        EXPECT_EQ(writing.errorCode, fault.errorCode);
        AdtFree(&array, KindArray);
        return fault.errorCode;
    };
    ArrayDescriptor array;
    ArrayInit(&array, KindEnum, 1, 2, 1, 2, NO_DIMENSION, NO_DIMENSION, nullptr);
    EXPECT_EQ(readInto(array), 658);
    ArrayInit(&array, KindBoolean, 1, 4);
    EXPECT_EQ(readInto(array), 658);
    ArrayInit(&array, KindInteger, 1, 4);
    EXPECT_EQ(readInto(array), 658);
    ArrayInitDynamic(&array, KindEnum, nullptr);
    EXPECT_EQ(readInto(array), 658);
    ArrayInit(&array, KindEnum, 1, 4);
    EXPECT_EQ(readInto(array), 0);
}

TEST_F(XbaseRows, AFailureKeepsGoing) {
    const XbaseHeader header = headerOf({{"A", 'N', 3}, {"B", 'C', 3}, {"C", 'N', 3}, {"D", 'N', 2}});
    Typed row("T : record\n\ta : integer\n\tb : integer\n\tc : enum\n\td : integer\nend record\n");
    const XbaseFault fault = XbaseReadRow(" 123abc999 7", header, row.get(), KindRecord);
    EXPECT_EQ(fault.errorField, 2);
    EXPECT_EQ(fault.errorCode, 658);
    EXPECT_EQ(Shown(row.get(), KindRecord), "123|0|0|7");
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(XbaseRows, RecordsInsideAreReadFieldByField) {
    const XbaseHeader header = headerOf({{"A", 'N', 2}, {"B", 'C', 3}, {"C", 'L', 1}});
    Typed row("T : record\n\ta : record\n\t\ta : integer\n\t\tu : union\n\t\t\tb : string[3]\n\t\tend union\n"
              "\tend record\n\tc : boolean\nend record\n");
    EXPECT_EQ(XbaseReadRow(" 12abcT", header, row.get(), KindRecord).errorCode, 0);
    EXPECT_EQ(Shown(row.get(), KindRecord), "12|abc|True");
    std::string bytes;
    EXPECT_EQ(XbaseWriteRow(row.get(), KindRecord, header, bytes).errorCode, 0);
    EXPECT_EQ(bytes, " 12abcT");
}

TEST_F(XbaseRows, WhatARowDoesNotHaveIsEmptyAndAFault) {
    const XbaseHeader header = headerOf({{"A", 'N', 2}, {"B", 'C', 3}});
    Typed row("T : record\n\ta : integer\n\tb : string\n\tc : integer\n\td : string[4]\nend record\n");
    StringAssignView(static_cast<StringDescriptor*>(RecordFieldAddress(row.get<RecordDescriptor>(), 4)), "x");
    XbaseFault fault = XbaseReadRow(" 12abc", header, row.get(), KindRecord);
    EXPECT_EQ(fault.errorField, 3);
    EXPECT_EQ(fault.errorCode, 658);
    EXPECT_EQ(Shown(row.get(), KindRecord), "12|abc|0|");
    // A row that is cut off.
    fault = XbaseReadRow(" 12ab", header, row.get(), KindRecord);
    EXPECT_EQ(fault.errorField, 2);
    EXPECT_EQ(Shown(row.get(), KindRecord), "12||0|");
    fault = XbaseReadRow("", header, row.get(), KindRecord);
    EXPECT_EQ(fault.errorField, 1);
    // The record does not have a field of the file.
    Typed less("T : record\n\ta : integer\nend record\n");
    fault = XbaseReadRow(" 12abc", header, less.get(), KindRecord);
    EXPECT_EQ(fault.errorField, 2);
    EXPECT_EQ(fault.errorCode, 658);
    EXPECT_EQ(Shown(less.get(), KindRecord), "12");
    std::string bytes;
    EXPECT_EQ(XbaseWriteRow(less.get(), KindRecord, header, bytes).errorField, 2);
    EXPECT_EQ(bytes, " 12   ");
    EXPECT_EQ(XbaseWriteRow(row.get(), KindRecord, header, bytes).errorField, 3);
    EXPECT_EQ(bytes.size(), 6U);
}

TEST_F(XbaseRows, ARowThatEndsElsewhereThanItsFieldsIsToldWhenChecksAreOn) {
    XbaseHeader header = headerOf({{"A", 'N', 2}, {"B", 'C', 3}});
    header.recordSize = 7;
    SetMemoryChecking(true);
    {
        Typed row("T : record\n\ta : integer\n\tb : string\nend record\n");
        EXPECT_EQ(XbaseReadRow(" 12abc ", header, row.get(), KindRecord).errorCode, 0);
        EXPECT_EQ(takeError(), 828);
        header.recordSize = 6;
        EXPECT_EQ(XbaseReadRow(" 12abc", header, row.get(), KindRecord).errorCode, 0);
        EXPECT_EQ(takeError(), 0);
    }
    SetMemoryChecking(false);
    Typed row("T : record\n\ta : integer\n\tb : string\nend record\n");
    header.recordSize = 7;
    EXPECT_EQ(XbaseReadRow(" 12abc ", header, row.get(), KindRecord).errorCode, 0);
    EXPECT_EQ(takeError(), 0);
}

// ---- a field after the other ----

TEST_F(XbaseRows, ValuesCanBeReadAndWrittenOneByOne) {
    const XbaseHeader header = headerOf({{"A", 'N', 2}, {"B", 'C', 3}, {"C", 'L', 1}});
    std::string row;
    std::size_t position = 0;
    std::int32_t field = 1, number = 42;
    XbaseFault fault;
    XbaseToRow(&number, KindInteger, header, field, row, position, fault);
    EXPECT_EQ(row, " 42    ");
    EXPECT_EQ(position, 3U);
    const String text("xyz");
    XbaseToRow(text.get(), KindString, header, field, row, position, fault);
    const char yes = 1;
    XbaseToRow(&yes, KindBoolean, header, field, row, position, fault);
    EXPECT_EQ(row, " 42xyzT");
    EXPECT_EQ(position, row.size());
    EXPECT_EQ(fault.errorCode, 0);
    XbaseToRow(&yes, KindBoolean, header, field, row, position, fault);
    EXPECT_EQ(fault.errorField, 4);
    EXPECT_EQ(row, " 42xyzT");

    position = 0;
    field = 1;
    fault = {};
    number = 0;
    XbaseFromRow(row, position, header, field, &number, KindInteger, fault);
    EXPECT_EQ(number, 42);
    String read;
    XbaseFromRow(row, position, header, field, read.get(), KindString, fault);
    EXPECT_EQ(read.view(), "xyz");
    EXPECT_EQ(field, 3);
    EXPECT_EQ(fault.errorCode, 0);
}

TEST_F(XbaseRows, BrokenValuesAreFaults) {
    const XbaseHeader header = headerOf({{"A", 'C', 2}});
    StringDescriptor none{};
    none.tag = 99;
    EXPECT_EQ(XbaseReadRow(" ab", header, &none, KindString).errorCode, 658);
    std::string row;
    EXPECT_EQ(XbaseWriteRow(&none, KindString, header, row).errorCode, 658);
    EXPECT_EQ(row, "   ");
    RecordDescriptor record{};
    EXPECT_EQ(XbaseReadRow(" ab", header, &record, KindRecord).errorCode, 658);
    Typed deep("a : integer\n");
    EXPECT_EQ(XbaseReadRow(" ab", header, deep.get(), KindInteger).errorCode, 658);
}

// ---- memory ----

TEST_F(XbaseRows, ALackOfMemoryIsTold) {
    const XbaseHeader header = headerOf({{"A", 'C', 40}, {"B", 'N', 3}, {"C", 'C', 40}});
    const std::string bytes = " " + std::string(40, 'a') + " 12" + std::string(40, 'c');
    for (std::int64_t n = 0; n <= 2; ++n) {
        Typed row("T : record\n\ta : string\n\tb : integer\n\tc : string\nend record\n");
        FailAllocation(n);
        const XbaseFault fault = XbaseReadRow(bytes, header, row.get(), KindRecord);
        FailAllocation(-1);
        EXPECT_EQ(fault.errorCode, n == 2 ? 0 : 802);
        EXPECT_EQ(takeError(), n == 2 ? 0 : 802);
        EXPECT_EQ(fault.errorField, n == 2 ? 0 : n == 0 ? 1 : 3);
        EXPECT_EQ(AdtCheck(row.get(), KindRecord), "");
        EXPECT_EQ(ReadAt<std::int32_t>(RecordFieldAddress(row.get<RecordDescriptor>(), 2)), 12);
    }
}

TEST_F(XbaseRows, WideStringsAreReadAndWritten) {
    CharacterWidth = 2;
    {
        const XbaseHeader header = headerOf({{"A", 'C', 5}});
        String s;
        EXPECT_EQ(XbaseReadRow(" ab\xE4  ", header, s.get(), KindString).errorCode, 0);
        EXPECT_EQ(s.length(), 3);
        EXPECT_EQ(StringGetChar(s.get(), 3), 0xE4);
        std::string row;
        EXPECT_EQ(XbaseWriteRow(s.get(), KindString, header, row).errorCode, 0);
        EXPECT_EQ(row, " ab\xE4  ");
        StringPutChar(s.get(), 1, 0x20AC);
        EXPECT_EQ(XbaseWriteRow(s.get(), KindString, header, row).errorCode, 0);
        EXPECT_EQ(row, " ?b\xE4  ");
    }
    CharacterWidth = 1;
}

}  // namespace
}  // namespace tarn
