// SPDX-License-Identifier: Apache-2.0
#include "library/system/conversion.h"

#include "kernel/values/arrays.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"
#include "support/errorcell.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarn {
namespace {

constexpr std::int32_t Least = std::numeric_limits<std::int32_t>::min(), Most = 0x7FFFFFFF;

class Conversions : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { EXPECT_EQ(takeError(), 0); }
};

TEST_F(Conversions, AnyNumberButZeroIsTrue) {
    EXPECT_FALSE(CVTB(std::uint8_t{0}));
    EXPECT_TRUE(CVTB(std::uint8_t{255}));
    EXPECT_FALSE(CVTB(0));
    EXPECT_TRUE(CVTB(Least));
    EXPECT_TRUE(CVTB(FixedValue(1)));
    EXPECT_FALSE(CVTB(FixedValue(0)));
    EXPECT_TRUE(CVTB(0.1));
    EXPECT_FALSE(CVTB(-0.0));
    struct Case {
        const char* text;
        bool value;
        int code;
    };
    for (const Case& c :
         {Case{"True", true, 0}, Case{"yes", true, 0}, Case{"FALSE", false, 0}, Case{"no", false, 0},
          Case{" True ", true, 0}, Case{"", false, 981}, Case{"1", false, 981}, Case{"truey", false, 981}}) {
        EXPECT_EQ(CVTB(c.text), c.value) << c.text;
        EXPECT_EQ(takeError(), c.code) << c.text;
    }
}

TEST_F(Conversions, FixedNumbersComeFromFourKinds) {
    EXPECT_EQ(CVTF(true).word, 10000);
    EXPECT_EQ(CVTF(false).word, 0);
    EXPECT_EQ(CVTF(Most).word, Fixed{Most} * 10000);
    EXPECT_EQ(CVTF(Least).word, Fixed{Least} * 10000);
    EXPECT_EQ(CVTF(1.23456).word, 12346);
    EXPECT_EQ(CVTF(1e20).word, 0);
    EXPECT_EQ(takeError(), 641);
    EXPECT_EQ(CVTF("-12.5").word, -125000);
    EXPECT_EQ(CVTF("2147483648.9999").word, 21474836489999);
    for (const char* text : {"", "x", "1.2.3"}) {
        EXPECT_EQ(CVTF(text).word, 0);
        EXPECT_EQ(takeError(), 984) << text;
    }
}

TEST_F(Conversions, IntegersComeFromThreeKinds) {
    EXPECT_EQ(CVTI(FixedValue(-19999)), -1);
    EXPECT_EQ(CVTI(FixedValue(Fixed{Most} * 10000 + 9999)), Most);
    EXPECT_EQ(CVTI(FixedValue((Fixed{Most} + 1) * 10000)), 0);
    EXPECT_EQ(takeError(), 641);
    EXPECT_EQ(CVTI(2.9), 2);
    EXPECT_EQ(CVTI(-2.9), -2);
    for (const double out : {1e10, -1e10, std::nan(""), std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(CVTI(out), 0) << out;
        EXPECT_EQ(takeError(), 641) << out;
    }
    EXPECT_EQ(CVTI("+987654321"), 987654321);
    EXPECT_EQ(CVTI(" -5 "), -5);
    EXPECT_EQ(CVTI("NULL"), 0);
    for (const char* text : {"", "12x", "null", "2147483648", "1.0"}) {
        EXPECT_EQ(CVTI(text), 0);
        EXPECT_EQ(takeError(), 983) << text;
    }
}

TEST_F(Conversions, RealsComeFromFiveKinds) {
    EXPECT_EQ(CVTR(true), 1);
    EXPECT_EQ(CVTR(std::uint8_t{200}), 200);
    EXPECT_EQ(CVTR(Least), -2147483648.0);
    EXPECT_EQ(CVTR(FixedValue(15000)), 1.5);
    EXPECT_EQ(CVTR("-1.250E-1"), -0.125);
    EXPECT_EQ(CVTR("+1E6"), 1e6);
    for (const char* text : {"", "E5", "1E999"}) {
        EXPECT_EQ(CVTR(text), 0);
        EXPECT_EQ(takeError(), 985) << text;
    }
}

TEST_F(Conversions, AnyValueThatHasATextBecomesAString) {
    const std::int32_t integer = -12;
    const Fixed fixed = -15000;
    const double real = 0.125;
    const std::uint8_t boolean = 1, ordinal = 7;
    const String text("abc");
    EXPECT_EQ(CVTS(&integer, KindInteger), "-12");
    EXPECT_EQ(CVTS(&fixed, KindFixed), "-1.5000");
    EXPECT_EQ(CVTS(&real, KindReal), "+1.2500000000000000E-0001");
    EXPECT_EQ(CVTS(&boolean, KindBoolean), "True");
    EXPECT_EQ(CVTS(&ordinal, KindEnum), "7");
    EXPECT_EQ(CVTS(text.get(), KindString), "abc");
    OwnedSet set;
    SetInit(set.get(), 1, 8);
    EXPECT_EQ(CVTS(set.get(), KindSet), "");
    EXPECT_EQ(takeError(), 986);
}

TEST_F(Conversions, TheFieldsOfXbaseFilesAreArraysOfCharactersAndReadAsText) {
    EXPECT_EQ(CVTS(TDATE().get(), KindArray), std::string(8, '\0'));
    EXPECT_EQ(CVTS(TLOGICAL().get(), KindArray), std::string(1, '\0'));
    ArrayValue name = TCHARS(3), number = TNUMERIC(12);
    EXPECT_EQ(number.get()->size, 12);
    std::int32_t place = 1;
    for (const char c : std::string("abc")) ArrayPut(name.get(), place++, &c, KindEnum);
    EXPECT_EQ(CVTS(name.get(), KindArray), "abc");
    for (const int size : {0, -1, 32768}) {
        EXPECT_EQ(TCHARS(size).get()->size, 0) << size;
        EXPECT_EQ(takeError(), 760) << size;
    }
    ArrayValue numbers, square;
    ArrayInit(numbers.get(), KindInteger, 1, 2);
    ArrayInit(square.get(), KindEnum, 1, 2, 1, 2, NO_DIMENSION, NO_DIMENSION, nullptr);
    for (const ArrayValue* other : {&numbers, &square}) {
        EXPECT_EQ(CVTS(other->get(), KindArray), "");
        EXPECT_EQ(takeError(), 986) << "no characters one behind another";
    }
}

TEST_F(Conversions, CharactersAndCodesGoBothWays) {
    EXPECT_EQ(CHR(65), "A");
    EXPECT_EQ(CHR(0), std::string(1, '\0'));
    EXPECT_EQ(CHR(256 + 66), "B");
    EXPECT_EQ(CHR(-1), "\xFF");
    EXPECT_EQ(ORD("Apple"), 65);
    EXPECT_EQ(ORD("\xFF"), 255);
    EXPECT_EQ(ORD(""), 0);
    for (int code = 0; code < 256; ++code) EXPECT_EQ(ORD(CHR(code)), code);
}

// ---- as text ----

TEST_F(Conversions, EachKindHasATextOfItsOwn) {
    EXPECT_EQ(STR(true), "True");
    EXPECT_EQ(STR(false), "False");
    EXPECT_EQ(STR(std::uint8_t{255}), "255");
    EXPECT_EQ(STR(Least), "-2147483648");
    EXPECT_EQ(STR(FixedValue(-15000)), "-1.5000");
    EXPECT_EQ(STR(0.125), "+1.2500000000000000E-0001");
    EXPECT_EQ(STR("text"), "text");
    EXPECT_EQ(STR(std::string("text")), "text");
}

TEST_F(Conversions, AFormatIsGivenByAnyKindOfNumberOrAsAText) {
    EXPECT_EQ(STR(true, 6), "  True");
    EXPECT_EQ(STR(std::uint8_t{5}, -3), "5  ");
    EXPECT_EQ(STR(123456789, 12), "   123456789");
    EXPECT_EQ(STR(-123456789, -12), "-123456789  ");
    EXPECT_EQ(STR(12345, 3), "12345") << "never cut";
    EXPECT_EQ(STR("ab", 4), "  ab");
    EXPECT_EQ(STR("ab", -4), "ab  ");
    EXPECT_EQ(STR("ab", 1000), std::string(98, ' ') + "ab") << "the widest field";
    const FixedValue number(31416);
    for (const Format format :
         {Format(FixedValue(82000)), Format(8.2), Format("8.2"), Format(std::string("8.2"))})
        EXPECT_EQ(STR(number, format), "    3.14");
    EXPECT_EQ(STR(number, 8), "       3");
    EXPECT_EQ(STR(0.125, 8.2), "+1.25E-0001");
    EXPECT_EQ(STR(0.125, "14.2"), "   +1.25E-0001");
    EXPECT_EQ(STR(true, -6.2), "True  ");
    EXPECT_EQ(STR(7, "3"), "  7");
}

TEST_F(Conversions, AFormatThatIsNoneCountsAsZero) {
    EXPECT_EQ(STR(7, "wide"), "7");
    EXPECT_EQ(takeError(), 984);
    EXPECT_EQ(STR(7, 1e30), "7");
    EXPECT_EQ(takeError(), 641);
}

TEST_F(Conversions, HexadecimalDigitsAreThoseOfTheBits) {
    EXPECT_EQ(HEXSTR(255, 4), "00FF");
    EXPECT_EQ(HEXSTR(0), "0");
    EXPECT_EQ(HEXSTR(-1), "FFFFFFFF");
    EXPECT_EQ(HEXSTR(0xFFFFFFFFU, 2), "FFFFFFFF") << "never cut";
    EXPECT_EQ(HEXSTR(std::uint8_t{10}), "A");
    EXPECT_EQ(HEXSTR(std::uint8_t{10}, 2), "0A");
    EXPECT_EQ(HEXSTR(true), "1");
    EXPECT_EQ(HEXSTR(false, 2), "00");
    EXPECT_EQ(HEXSTR(FixedValue(10000)), "2710");
    EXPECT_EQ(HEXSTR(FixedValue(-1)), std::string(16, 'F'));
    EXPECT_EQ(HEXSTR(FixedValue(1), 16), "0000000000000001");
    EXPECT_EQ(HEXSTR("AZ\xFF"), "415AFF");
    EXPECT_EQ(HEXSTR(""), "");
    EXPECT_EQ(HEXSTR(1, 0), "1");
    EXPECT_EQ(HEXSTR(1, -5), "1");
    EXPECT_EQ(HEXSTR(1, 100000).size(), 255U);
    EXPECT_EQ(HEXVAL("00fF"), 255U);
    EXPECT_EQ(HEXVAL("1Fg"), 31U);
    EXPECT_EQ(HEXVAL(""), 0U);
    EXPECT_EQ(HEXVAL("0x10"), 0U) << "it stops at the x";
    EXPECT_EQ(HEXVAL("123456789A"), 0x3456789AU);
}

TEST_F(Conversions, OneOfTwoValuesOfAnyKind) {
    EXPECT_TRUE(IIF(true, true, false));
    EXPECT_EQ(IIF(false, std::uint8_t{1}, std::uint8_t{2}), 2);
    EXPECT_EQ(IIF(true, 1, 2), 1);
    EXPECT_EQ(IIF(false, FixedValue(1), FixedValue(2)).word, 2);
    EXPECT_EQ(IIF(true, 1.5, 2.5), 1.5);
    EXPECT_EQ(IIF(false, "a", "b"), "b");
    EXPECT_EQ(IIF(true, Object("A"), Object("B")), Object("A"));
}

// ---- sets ----

TEST_F(Conversions, ASetIsReadFromItsText) {
    struct Case {
        const char* text;
        int code;
        const char* members;
    };
    const Case cases[] = {{"[1:3,7]", 0, "[1..3,7]"},
                          {" [ 1 .. 3 , 7 ] ", 989, "[5]"},  // blanks stand around a range, not in it
                          {" [ 1..3 , 7 ] ", 0, "[1..3,7]"},
                          {"[]", 0, "[]"},
                          {"[-4]", 0, "[-4]"},
                          {"", 989, "[5]"},
                          {"1,2", 989, "[5]"},
                          {"[1,2", 989, "[5]"},
                          {"[1,2] x", 989, "[5]"},
                          {"[a]", 989, "[5]"},
                          {"[40000]", 601, "[5]"},
                          {"[3:1]", 601, "[5]"}};
    for (const Case& c : cases) {
        OwnedSet set;
        SetInit(set.get(), UNBOUNDED, UNBOUNDED);
        SetInclude(5, set.get());
        SETVALUE(c.text, set.get());
        EXPECT_EQ(takeError(), c.code) << c.text;
        String text;
        SetToText(set.get(), true, text.get());
        EXPECT_EQ(StringView(text.get()), c.members) << c.text;
    }
}

TEST_F(Conversions, ATextThatIsNoSetCanBeToldInPlaceOfAnError) {
    OwnedSet set;
    SetInit(set.get(), 1, 8);
    bool ok = true;
    SETVALUE("nothing", set.get(), ok);
    EXPECT_FALSE(ok);
    SETVALUE("[2,3]", set.get(), ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(SetCount(set.get()), 2);
    EXPECT_EQ(takeError(), 0);
    SETVALUE("[2,9]", set.get(), ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(takeError(), 616) << "what fits is there";
    EXPECT_EQ(SetCount(set.get()), 1);
    SETVALUE("[1]", nullptr, ok);
    EXPECT_EQ(takeError(), 759);
}

}  // namespace
}  // namespace tarn
