// SPDX-License-Identifier: Apache-2.0
//
// Values written to the rows of Xbase files, a field at a time, and the mark of deletion.
#include "unit/kernel/xbase_rows_fixture.h"

#include <limits>

namespace tarn {
namespace {

using namespace std::string_literals;

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

}  // namespace
}  // namespace tarn
