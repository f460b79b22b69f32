// SPDX-License-Identifier: Apache-2.0
//
// Rows of Xbase files to values and back, a field at a time and whole.
#include "kernel/text/fixed.h"
#include "kernel/values/heap.h"
#include "unit/kernel/table_rows.h"
#include "unit/kernel/values_fixture.h"
#include "unit/kernel/xbase_fixture.h"

#include <cmath>
#include <limits>
#include <random>

namespace tarn {
namespace {

using namespace std::string_literals;

class XbaseRows : public Xbase {
protected:
    // The text in a field of the type, read into a value of the declared kind: what is shown, "658 " ahead of
    // it when that failed. The value holds something else before.
    static std::string read(const std::string& text, char type, const std::string& typeText) {
        const XbaseHeader header = headerOf({{"A", type, static_cast<int>(text.size())}});
        Typed value("a : " + typeText + "\n");
        fill(value);
        XbaseFault fault;
        std::size_t position = 0;
        std::int32_t field = 1;
        XbaseFromRow(" " + text, position, header, field, value.get(), value.kind(), fault);
        EXPECT_EQ(position, text.size() + 1);
        EXPECT_EQ(field, 2);
        EXPECT_EQ(fault.errorField, fault.errorCode == 0 ? 0 : 1);
        EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
        const std::string code = fault.errorCode == 0 ? "" : std::to_string(fault.errorCode) + " ";
        return code + Shown(value.get(), value.kind());
    }
    // The row of one field that a value gives, without its mark; the code when it does not fit.
    static std::string written(const void* value, Kind kind, const XField& field) {
        const XbaseHeader header = headerOf({field});
        XbaseFault fault;
        std::size_t position = 0;
        std::int32_t number = 1;
        std::string row;
        XbaseToRow(value, kind, header, number, row, position, fault);
        EXPECT_EQ(row[0], ' ');
        EXPECT_EQ(position, row.size());
        EXPECT_EQ(row.size(), static_cast<std::size_t>(field.length) + 1);
        if (fault.errorCode == 0) return row.substr(1);
        EXPECT_EQ(row, std::string(row.size(), ' '));
        EXPECT_EQ(fault.errorField, 1);
        return std::to_string(fault.errorCode);
    }
    static std::string integer(std::int32_t value, const XField& field) {
        return written(&value, KindInteger, field);
    }
    static std::string fixedNumber(Fixed value, const XField& field) {
        return written(&value, KindFixed, field);
    }
    static std::string real(double value, const XField& field) { return written(&value, KindReal, field); }

private:
    static void fill(Typed& value) {
        if (value.kind() == KindString)
            StringAssignView(value.get<StringDescriptor>(), "??");
        else if (value.kind() == KindArray)
            std::memset(At(value.get<ArrayDescriptor>()->data), '?',
                        static_cast<std::size_t>(value.get<ArrayDescriptor>()->size));
        else if (!IsAdtKind(value.kind()))
            std::memset(value.get(), 1, static_cast<std::size_t>(KindSize[value.kind()]));
    }
};

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

// ---- writing ----

TEST_F(XbaseRows, IntegersStandAtTheRight) {
    EXPECT_EQ(integer(0, {"A", 'N', 12}), "           0");
    EXPECT_EQ(integer(-7, {"A", 'N', 4}), "  -7");
    EXPECT_EQ(integer(INT32_MAX, {"A", 'N', 12}), "  2147483647");
    EXPECT_EQ(integer(INT32_MIN, {"A", 'N', 12}), " -2147483648");
    EXPECT_EQ(integer(INT32_MIN, {"A", 'N', 11}), "-2147483648");
    EXPECT_EQ(integer(INT32_MIN, {"A", 'N', 10}), "658");
    EXPECT_EQ(integer(1000, {"A", 'N', 3}), "658");
    EXPECT_EQ(integer(-99, {"A", 'N', 2}), "658");
    EXPECT_EQ(integer(0, {"A", 'N', 0}), "658");
    EXPECT_EQ(integer(12, {"A", 'N', 8, 2}), "   12.00");
    EXPECT_EQ(integer(-12, {"A", 'N', 6, 2}), "-12.00");
    EXPECT_EQ(integer(-12, {"A", 'N', 5, 2}), "658");
    EXPECT_EQ(integer(1, {"A", 'N', 255, 253}), "1." + std::string(253, '0'));
    EXPECT_EQ(integer(1, {"A", 'N', 255, 255}), "658");
    for (const char type : "CDLMF"s) EXPECT_EQ(integer(1, {"A", type, 9}), "658") << type;
    const std::uint8_t ordinal = 255;
    EXPECT_EQ(written(&ordinal, KindEnum, {"A", 'N', 4}), " 255");
    EXPECT_EQ(written(&ordinal, KindEnum, {"A", 'N', 2}), "658");
}

TEST_F(XbaseRows, FixedNumbersHaveTheDecimalsOfTheField) {
    EXPECT_EQ(fixedNumber(0, {"A", 'N', 20, 4}), "              0.0000");
    EXPECT_EQ(fixedNumber(12345, {"A", 'N', 9, 4}), "   1.2345");
    EXPECT_EQ(fixedNumber(-1, {"A", 'N', 9, 4}), "  -0.0001");
    EXPECT_EQ(fixedNumber(12345, {"A", 'N', 9, 2}), "     1.23");
    EXPECT_EQ(fixedNumber(12350, {"A", 'N', 9, 2}), "     1.24");
    EXPECT_EQ(fixedNumber(-12350, {"A", 'N', 9, 2}), "    -1.24");
    EXPECT_EQ(fixedNumber(15000, {"A", 'N', 3, 0}), "  2");
    EXPECT_EQ(fixedNumber(-4, {"A", 'N', 5, 3}), "0.000");
    EXPECT_EQ(fixedNumber(-5, {"A", 'N', 6, 3}), "-0.001");
    EXPECT_EQ(fixedNumber(12345, {"A", 'N', 9, 6}), " 1.234500");
    EXPECT_EQ(fixedNumber(99950000, {"A", 'N', 4, 0}), "9995");
    EXPECT_EQ(fixedNumber(99995000, {"A", 'N', 4, 0}), "658");
    EXPECT_EQ(fixedNumber(LargestFixed, {"A", 'N', 20, 4}), "922337203685477.5807");
    EXPECT_EQ(fixedNumber(SmallestFixed, {"A", 'N', 20, 4}), "658");
    EXPECT_EQ(fixedNumber(SmallestFixed + 1, {"A", 'N', 21, 4}), "-922337203685477.5807");
    EXPECT_EQ(fixedNumber(SmallestFixed, {"A", 'N', 21, 4}), "-922337203685477.5808");
    EXPECT_EQ(fixedNumber(SmallestFixed, {"A", 'N', 16, 0}), "-922337203685478");
}

TEST_F(XbaseRows, RealNumbersHaveTheDecimalsOfTheField) {
    EXPECT_EQ(real(0, {"A", 'N', 20, 4}), "              0.0000");
    EXPECT_EQ(real(-0.0, {"A", 'N', 6, 4}), "0.0000");
    EXPECT_EQ(real(-0.00001, {"A", 'N', 6, 4}), "0.0000");
    EXPECT_EQ(real(-0.00006, {"A", 'N', 7, 4}), "-0.0001");
    EXPECT_EQ(real(-0.5, {"A", 'N', 4, 0}), "   0");
    EXPECT_EQ(real(0.125, {"A", 'N', 9, 4}), "   0.1250");
    EXPECT_EQ(real(-1.5, {"A", 'N', 4, 1}), "-1.5");
    EXPECT_EQ(real(1e14, {"A", 'N', 20, 4}), "100000000000000.0000");
    EXPECT_EQ(real(1e15, {"A", 'N', 20, 4}), "658");
    EXPECT_EQ(real(-1e14, {"A", 'N', 20, 4}), "658");
    EXPECT_EQ(real(1e300, {"A", 'N', 20, 4}), "658");
    EXPECT_EQ(real(1e22, {"A", 'N', 25}), "  10000000000000000000000");
    EXPECT_EQ(real(std::numeric_limits<double>::quiet_NaN(), {"A", 'N', 20, 4}), "658");
    EXPECT_EQ(real(std::numeric_limits<double>::infinity(), {"A", 'N', 20, 4}), "658");
    EXPECT_EQ(real(-std::numeric_limits<double>::infinity(), {"A", 'N', 20, 4}), "658");
    EXPECT_EQ(real(1, {"A", 'N', 255, 254}), "658");
    EXPECT_EQ(real(1, {"A", 'N', 255, 253}), "1." + std::string(253, '0'));
    EXPECT_EQ(real(1, {"A", 'N', 0, 0}), "658");
    EXPECT_EQ(real(1, {"A", 'F', 9, 0}), "658");
}

TEST_F(XbaseRows, BooleansAreALetter) {
    const char yes = 1, no = 0;
    EXPECT_EQ(written(&yes, KindBoolean, {"A", 'L', 1}), "T");
    EXPECT_EQ(written(&no, KindBoolean, {"A", 'L', 1}), "F");
    EXPECT_EQ(written(&yes, KindBoolean, {"A", 'L', 3}), "T  ");
    EXPECT_EQ(written(&yes, KindBoolean, {"A", 'L', 0}), "658");
    EXPECT_EQ(written(&yes, KindBoolean, {"A", 'C', 1}), "658");
}

TEST_F(XbaseRows, TextsStandAtTheLeft) {
    const auto text = [](std::string_view bytes, const XField& field) {
        const String s(bytes);
        return written(s.get(), KindString, field);
    };
    EXPECT_EQ(text("abc", {"A", 'C', 5}), "abc  ");
    EXPECT_EQ(text("", {"A", 'C', 2}), "  ");
    EXPECT_EQ(text("abcde", {"A", 'C', 5}), "abcde");
    EXPECT_EQ(text("abcde   ", {"A", 'C', 5}), "abcde");
    EXPECT_EQ(text("abc\0"s, {"A", 'C', 5}), "abc  ");
    EXPECT_EQ(text("abcdef", {"A", 'C', 5}), "658");
    EXPECT_EQ(text("20240229", {"A", 'D', 8}), "20240229");
    EXPECT_EQ(text("1", {"A", 'N', 8}), "658");
    EXPECT_EQ(text("", {"A", 'C', 0}), "");
    Typed characters("a : Tchars[1:5]\n");
    std::memcpy(At(characters.get<ArrayDescriptor>()->data), "12 ab", 5);
    EXPECT_EQ(written(characters.get(), KindArray, {"A", 'C', 8}), "12 ab   ");
    EXPECT_EQ(written(characters.get(), KindArray, {"A", 'C', 5}), "12 ab");
    EXPECT_EQ(written(characters.get(), KindArray, {"A", 'C', 4}), "658");
    std::memcpy(At(characters.get<ArrayDescriptor>()->data), "12   ", 5);
    EXPECT_EQ(written(characters.get(), KindArray, {"A", 'N', 2}), "12");
}

// ---- the deletion mark ----

TEST_F(XbaseRows, TheMarkIsTheFirstFieldOfARecordThatHoldsIt) {
    const XbaseHeader header = headerOf({{"A", 'C', 2}, {"B", 'N', 2}});
    Typed marked("T : record\n\tdelete_flag : Tchar\n\ta : Tchars[1:2]\n\tb : integer\nend record\n");
    std::string bytes;
    for (const char mark : " *x\xFF"s) {
        EXPECT_EQ(XbaseReadRow(mark + "ab 7"s, header, marked.get(), KindRecord, true).errorCode, 0);
        EXPECT_EQ(Shown(marked.get(), KindRecord),
                  std::to_string(static_cast<unsigned char>(mark)) + "|'ab'|7");
        EXPECT_EQ(XbaseWriteRow(marked.get(), KindRecord, header, bytes, true).errorCode, 0);
        EXPECT_EQ(bytes, mark + "ab 7"s);
    }
    // A record that was just made is no deleted row.
    *At(marked.get<RecordDescriptor>()->data) = 0;
    EXPECT_EQ(XbaseWriteRow(marked.get(), KindRecord, header, bytes, true).errorCode, 0);
    EXPECT_EQ(bytes, " ab 7");
    // It is no mark unless it is said to be one.
    EXPECT_EQ(XbaseReadRow("*ab 7", header, marked.get(), KindRecord).errorField, 1);
    Typed plain("T : record\n\ta : Tchars[1:2]\n\tb : integer\nend record\n");
    EXPECT_EQ(XbaseReadRow("*cd 9", header, plain.get(), KindRecord).errorCode, 0);
    EXPECT_EQ(Shown(plain.get(), KindRecord), "'cd'|9");
    EXPECT_EQ(XbaseWriteRow(plain.get(), KindRecord, header, bytes).errorCode, 0);
    EXPECT_EQ(bytes, " cd 9");
}

TEST_F(XbaseRows, AnEnumThatTheFileHasAFieldForIsNoMark) {
    const XbaseHeader header = headerOf({{"A", 'N', 3}, {"B", 'C', 2}});
    Typed row("T : record\n\ta : enum\n\tb : string[2]\nend record\n");
    EXPECT_EQ(XbaseReadRow("* 65xy", header, row.get(), KindRecord).errorCode, 0);
    EXPECT_EQ(Shown(row.get(), KindRecord), "65|xy");
    std::string bytes;
    EXPECT_EQ(XbaseWriteRow(row.get(), KindRecord, header, bytes).errorCode, 0);
    EXPECT_EQ(bytes, "  65xy");
}

TEST_F(XbaseRows, AMarkCanStandAlone) {
    XbaseHeader header;
    header.recordSize = 1;
    Typed row("T : record\n\tdelete_flag : Tchar\nend record\n");
    EXPECT_EQ(XbaseReadRow("*", header, row.get(), KindRecord).errorCode, 0);
    EXPECT_EQ(Shown(row.get(), KindRecord), "42");
    std::string bytes;
    EXPECT_EQ(XbaseWriteRow(row.get(), KindRecord, header, bytes).errorCode, 0);
    EXPECT_EQ(bytes, "*");
    header.recordSize = 0;
    EXPECT_EQ(XbaseReadRow("", header, row.get(), KindRecord).errorCode, 0);
    EXPECT_EQ(Shown(row.get(), KindRecord), "32");
    EXPECT_EQ(XbaseWriteRow(row.get(), KindRecord, header, bytes).errorCode, 0);
    EXPECT_EQ(bytes, "");
}

// The declaration of a file with 48 fields has 49 lines, of which a record takes 48.
TEST_F(XbaseRows, AMarkTakesTheRoomOfTheLastFieldOfAFullFile) {
    const XFields file(48, {"A", 'C', 1});
    const XbaseHeader header = headerOf(file);
    std::string lines = "T : record\n\tdelete_flag : Tchar\n";
    for (int i = 1; i <= 48; ++i) lines += "\tf" + std::to_string(i) + " : Tchars[1:1]\n";
    Typed row(lines + "end record\n");
    ASSERT_EQ(RecordFieldCount(row.get<RecordDescriptor>()), 48);
    const XbaseFault fault = XbaseReadRow("*" + std::string(47, 'a') + "z", header, row.get(), KindRecord);
    EXPECT_EQ(fault.errorCode, 658);
    EXPECT_EQ(fault.errorField, 48);
    EXPECT_EQ(Shown(row.get(), KindRecord).substr(0, 10), "42|'a'|'a'");
    EXPECT_EQ(Shown(row.get(), KindRecord).find('z'), std::string::npos);
    std::string bytes;
    EXPECT_EQ(XbaseWriteRow(row.get(), KindRecord, header, bytes).errorField, 48);
    EXPECT_EQ(bytes, "*" + std::string(47, 'a') + " ");
    // The rows of such a file cannot be kept in it: the last field would be lost.
    EXPECT_EQ(XbaseCheckValue(header, KindRecord, row.get()), 48);
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

// ---- much ----

// A kind, a field that it fits and a random value that the field can hold.
struct Random {
    Cell cell;
    XField field;
};

class RandomRows {
public:
    explicit RandomRows(unsigned seed) : random_(seed) {}

    std::vector<Random> row() {
        std::vector<Random> fields(1 + random_() % 8);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            fields[i] = field();
            fields[i].field.name = "F" + std::to_string(i);
        }
        return fields;
    }

private:
    int upTo(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most + 1)); }
    std::int64_t number(int digits) {
        const auto any = static_cast<std::int64_t>(random_());
        std::int64_t limit = 1;
        for (int i = 0; i < digits; ++i) limit *= 10;
        return any % limit;
    }
    std::string characters(int most) {
        std::string text(static_cast<std::size_t>(upTo(most)), ' ');
        for (char& c : text) c = static_cast<char>(upTo(20) == 0 ? upTo(255) : ' ' + upTo(94));
        return text;
    }
    Random field() {
        const int length = 1 + upTo(upTo(9) == 0 ? 254 : 19);
        switch (upTo(7)) {
        case 0: return {flag(upTo(1) != 0), {"", 'L', 1}};
        case 1: return {ordinal(upTo(255)), {"", 'N', 3 + upTo(9)}};
        case 2: return {integer(static_cast<std::int32_t>(number(10)) >> upTo(30)), {"", 'N', 11 + upTo(9)}};
        case 3: return {fixedNumber(number(16)), {"", 'N', 20, 4}};
        case 4: return {real(static_cast<double>(number(12)) / 1024), {"", 'N', 30, 10}};
        case 5: {
            std::string text = characters(length);
            text.erase(text.find_last_not_of(" \0"s) + 1);
            return {tarn::text(text, upTo(1) != 0 ? length : UNBOUNDED), {"", 'C', length}};
        }
        case 6: return {tarn::characters(characters(length), length), {"", "CDN"[upTo(2)], length}};
        default: return {tarn::text("20240229", 8), {"", 'D', 8}};
        }
    }

    std::mt19937_64 random_;
};

TEST_F(XbaseRows, RandomRowsComeBack) {
    RandomRows random(17);
    std::string bytes;
    int kinds[KindCount] = {};
    for (int step = 0; step < 20000; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        const std::vector<Random> fields = random.row();
        XFields file;
        Cells cells, empty;
        const bool marked = step % 3 == 0;
        if (marked) cells.push_back(ordinal(step % 2 == 0 ? '*' : ' '));
        for (const Random& field : fields) {
            cells.push_back(field.cell);
            file.push_back(field.field);
            ++kinds[field.cell.kind];
        }
        for (const Cell& cell : cells) {
            empty.push_back(cell);
            empty.back().number = 0;
            empty.back().real = 0;
            if (cell.kind == KindArray)
                empty.back().text.assign(cell.text.size(), '?');
            else
                empty.back().text.clear();
        }
        const XbaseHeader header = headerOf(file);
        const RecordValue row = recordOf(cells);
        RecordValue back = recordOf(empty);
        ASSERT_EQ(XbaseWriteRow(row.get(), KindRecord, header, bytes, marked).errorCode, 0);
        ASSERT_EQ(XbaseReadRow(bytes, header, back.get(), KindRecord, marked).errorCode, 0);
        ASSERT_TRUE(sameCells(cellsOf(back.get(), cells), cells)) << bytes;
        ASSERT_EQ(AdtCheck(back.get(), KindRecord), "");
    }
    for (const Kind kind : {KindBoolean, KindEnum, KindInteger, KindFixed, KindReal, KindString, KindArray})
        EXPECT_GT(kinds[kind], 5000) << kind;
}

// Any bytes at all are values of legal shape.
TEST_F(XbaseRows, RandomBytesGiveWholeValues) {
    std::mt19937 random(5);
    const XbaseHeader header = headerOf(
        {{"A", 'N', 5, 2}, {"B", 'N', 9}, {"C", 'N', 20, 4}, {"D", 'C', 9}, {"E", 'L', 1}, {"F", 'C', 4}});
    Typed row("T : record\n\ta : enum\n\tb : integer\n\tc : real\n\td : string[8]\n\te : boolean\n"
              "\tf : Tchars[1:4]\nend record\n");
    for (int step = 0; step < 20000; ++step) {
        std::string bytes(random() % 55, ' ');
        for (char& c : bytes)
            c = random() % 4 == 0 ? static_cast<char>(random() % 256) : "0123. -*E"[random() % 9];
        XbaseReadRow(bytes, header, row.get(), KindRecord);
        ASSERT_EQ(AdtCheck(row.get(), KindRecord), "") << step;
        ASSERT_LE(ReadAt<std::uint8_t>(RecordFieldAddress(row.get<RecordDescriptor>(), 5)), 1);
    }
    EXPECT_EQ(ErrorCell(), 0);
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
