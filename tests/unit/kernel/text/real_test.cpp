// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/fixed.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <bit>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>

using namespace tarn;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();

class Reals : public Runtime {
protected:
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
    // The number that a text holds; `none` for a text that holds none.
    static constexpr double none = 7777777;
    static double fromText(std::string_view text) {
        double x = none;
        bool ok = false;
        RealFromText(text, x, ok);
        EXPECT_EQ(ok, x != none) << text;
        return x;
    }
};

TEST_F(Reals, DivisionByZeroIs643AndZero) {
    EXPECT_EQ(RealDiv(1, 4), 0.25);
    for (const double b : {0.0, -0.0}) {
        for (const double a : {0.0, 1.0, -1.0, infinity, notANumber}) {
            const double quotient = RealDiv(a, b);
            EXPECT_EQ(quotient, 0);
            EXPECT_FALSE(std::signbit(quotient));
            EXPECT_EQ(takeError(), 643);
        }
    }
}

TEST_F(Reals, DivisionOfWhatIsNoNumberIsDefinedWithoutAnError) {
    EXPECT_EQ(RealDiv(largest, 0.5), infinity);
    EXPECT_EQ(RealDiv(-largest, 0.5), -infinity);
    EXPECT_EQ(RealDiv(5, infinity), 0);
    EXPECT_EQ(RealDiv(infinity, -2), -infinity);
    EXPECT_TRUE(std::isnan(RealDiv(infinity, infinity)));
    EXPECT_TRUE(std::isnan(RealDiv(notANumber, 2)));
    EXPECT_TRUE(std::isnan(RealDiv(2, notANumber)));
}

TEST_F(Reals, TheExponentForm) {
    constexpr struct {
        double x;
        std::int32_t decimals;
        const char* text;
    } rows[] = {
        {0.125, 2, "+1.25E-0001"},
        {1, 2, "+1.00E+0000"},
        {-10, 0, "-1.E+0001"},
        {-10, 2, "-1.00E+0001"},
        {0, 1, "+0.0E+0000"},
        {-0.0, 1, "-0.0E+0000"},
        {3.5E12, 1, "+3.5E+0012"},
        {9.996, 2, "+1.00E+0001"},
        {1e100, 1, "+1.0E+0100"},
        {1e-100, 1, "+1.0E-0100"},
        {largest, 16, "+1.7976931348623157E+0308"},
        {-largest, 16, "-1.7976931348623157E+0308"},
        {5e-324, 3, "+4.941E-0324"},
        {1, -5, "+1.E+0000"},
        {1, 99, "+1.00000000000000000000E+0000"},
        {0.1, 20, "+1.00000000000000005551E-0001"},
        {infinity, 4, "+INF"},
        {-infinity, 4, "-INF"},
        {notANumber, 4, "+NAN"},
        {-notANumber, 4, "+NAN"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(RealToText(row.x, row.decimals), row.text);
        char buffer[64] = "old";
        RealToText(row.x, row.decimals, buffer, sizeof buffer);
        EXPECT_STREQ(buffer, row.text);
    }
}

TEST_F(Reals, ABufferThatIsTooSmallGetsNothing) {
    char buffer[16] = "old";
    RealToText(1, 2, buffer, 11);
    EXPECT_STREQ(buffer, "");
    RealToText(1, 2, buffer, 12);
    EXPECT_STREQ(buffer, "+1.00E+0000");
    std::strcpy(buffer, "old");
    RealToText(1, 2, buffer, 0);
    RealToText(1, 2, buffer, -1);
    EXPECT_STREQ(buffer, "old");
    RealToText(1, 2, nullptr, 16);
}

TEST_F(Reals, AFormatGivesDecimalsAndWidth) {
    EXPECT_EQ(RealToFormat(1.5, 12000), "+1.50E+0000");             // 1.2
    EXPECT_EQ(RealToFormat(1.5, 141000), "    +1.5E+0000");         // 14.1
    EXPECT_EQ(RealToFormat(1.5, -141000), "+1.5E+0000    ");        // -14.1
    EXPECT_EQ(RealToFormat(-1.5, 61200), "-1.500000000000E+0000");  // 6.12: never cut
    EXPECT_EQ(RealToFormat(1, 10000), "+1.E+0000");                 // 1
    EXPECT_EQ(RealToFormat(infinity, 80000), "    +INF");
    EXPECT_EQ(RealToFormat(1, LargestFixed).size(), 100U);
    EXPECT_EQ(RealToFormat(1, SmallestFixed).size(), 100U);
}

TEST_F(Reals, TextsOfNumbers) {
    constexpr struct {
        std::string_view text;
        double x;
    } rows[] = {
        {"0.0E+00", 0},
        {"1.250E-1", 0.125},
        {"-1.250E-1", -0.125},
        {"1.0E+00", 1},
        {"1.0E+1", 10},
        {"+3.5E+12", 3.5e12},
        {"+1E6", 1e6},
        {"+1E9", 1e9},
        {"+1E12", 1e12},
        {"+1e12", 1e12},
        {"-10", -10},
        {"0", 0},
        {"1.", 1},
        {".5", 0.5},
        {"+.5", 0.5},
        {"-.5e1", -5},
        {"  1.5  ", 1.5},
        {"+1.25E-0001", 0.125},
        {"007", 7},
        {"0.1", 0.1},
        {"1.7976931348623157E+0308", largest},
        {"4.9406564584124654E-324", 5e-324},
        {"2.2250738585072011E-308", 2.2250738585072011e-308},
        {"1E00000000000000000000000000000000000001", 10},
        {"0E99999999999999999999999999", 0},
        {"0.000E+999", 0},
        {"+INF", infinity},
        {"-inf", -infinity},
        {" +Inf ", infinity},
    };
    for (const auto& row : rows) EXPECT_EQ(fromText(row.text), row.x) << row.text;
    EXPECT_TRUE(std::isnan(fromText("+NAN")));
    EXPECT_TRUE(std::isnan(fromText("+nan")));
}

TEST_F(Reals, ZeroKeepsItsSign) {
    EXPECT_FALSE(std::signbit(fromText("0")));
    EXPECT_TRUE(std::signbit(fromText("-0")));
    EXPECT_TRUE(std::signbit(fromText("-0.0E+0000")));
    EXPECT_TRUE(std::signbit(fromText("-1E-400")));
}

TEST_F(Reals, TextsOfNoNumberLeaveTheTargetAsItWas) {
    using namespace std::string_view_literals;
    for (const auto text :
         {""sv,     " "sv,         "+"sv,       "-"sv,        "."sv,     "+."sv,   "E5"sv,   ".E5"sv,
          "1E"sv,   "1E+"sv,       "1E-"sv,     "1E5.0"sv,    "1 E5"sv,  "1E 5"sv, "1..2"sv, "1.2.3"sv,
          "1,5"sv,  "--1"sv,       "+-1"sv,     "-+1"sv,      "- 1"sv,   "1x"sv,   "0x10"sv, "1p3"sv,
          "\t1"sv,  "1\n"sv,       "1\0"sv,     "1 2"sv,      "inf"sv,   "nan"sv,  "NAN"sv,  "INF"sv,
          "-NAN"sv, "+INFINITY"sv, "+NAN(1)"sv, "infinity"sv, "+INFx"sv, "+IN"sv,  "NULL"sv, "1d5"sv})
        EXPECT_EQ(fromText(text), none) << text;
}

TEST_F(Reals, TextsTooLargeForARealAreNoNumberAndNoError) {
    const std::string digits(400, '9');
    for (const std::string& text :
         {std::string("1.8E308"), std::string("-1.8E308"), std::string("1E400"),
          std::string("1E99999999999999999999999"), std::string("1E9223372036854775808"), digits,
          "-" + digits, "0." + digits + "E309", std::string("0.0001E400"),
          "." + std::string(500, '0') + "1E+900"}) {
        EXPECT_EQ(fromText(text), none) << text;
        EXPECT_EQ(takeError(), 0) << text;
    }
}

TEST_F(Reals, TextsTooSmallForARealAreZero) {
    const std::string zeros(400, '0');
    for (const std::string& text : {std::string("1E-400"), std::string("-1E-400"), std::string("2E-324"),
                                    std::string("1E-99999999999999999999999"), "0." + zeros + "1",
                                    "1" + zeros + "E-800", "." + std::string(10, '0') + "1E-330"})
        EXPECT_EQ(fromText(text), 0) << text;
}

TEST_F(Reals, ALongTextIsReadExactly) {
    const std::string zeros(400, '0');
    EXPECT_EQ(fromText("0." + zeros + "1E+401"), 1);
    EXPECT_EQ(fromText("1" + zeros + "E-400"), 1);
    EXPECT_EQ(fromText(zeros + "1.5" + zeros), 1.5);
    EXPECT_EQ(fromText("9007199254740993" + std::string(1, '.') + zeros), 9007199254740992.0);
    EXPECT_EQ(fromText("9007199254740993." + zeros + "1"), 9007199254740994.0);
}

TEST_F(Reals, SixteenDecimalsReadBackAsTheSameNumber) {
    for (const double x : {0.1, 1.0 / 3, -2.0 / 3, 5e-324, 2.2250738585072014e-308, largest, -largest,
                           9007199254740993.0, 1e23, 123456.789}) {
        const double back = fromText(RealToText(x, RealTextDecimals));
        EXPECT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(x)) << x;
    }
}

// Sets a locale with a comma for its point; false when none is installed.
bool useComma() {
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "nl_NL.UTF-8", "es_ES.UTF-8", "de_DE", "fr_FR"})
        if (std::setlocale(LC_ALL, name) != nullptr && std::string(std::localeconv()->decimal_point) == ",")
            return true;
    return false;
}

TEST_F(Reals, TextsDoNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const bool comma = useComma();
    const std::string real = RealToText(1234567.5, 3), fixed = FixedToText(12345678900);
    const double back = fromText("1234567.5");
    std::setlocale(LC_ALL, before.c_str());
    if (!comma) GTEST_SKIP() << "no locale with a comma is installed";
    EXPECT_EQ(real, "+1.235E+0006");
    EXPECT_EQ(fixed, "1234567.8900");
    EXPECT_EQ(back, 1234567.5);
}

}  // namespace
