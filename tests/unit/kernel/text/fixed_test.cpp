// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/fixed.h"

#include "kernel/text/numbers.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <cmath>
#include <limits>

using namespace tarn;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

class FixedNumbers : public Runtime {
protected:
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
    static Fixed mul(Fixed a, Fixed b) {
        Fixed r = 77;
        FixedMul(a, b, r);
        return r;
    }
    static Fixed div(Fixed a, Fixed b) {
        Fixed r = 77;
        FixedDiv(a, b, r);
        return r;
    }
    static Fixed add(Fixed a, Fixed b) {
        Fixed r = 77;
        FixedAdd(a, b, r);
        return r;
    }
    static Fixed sub(Fixed a, Fixed b) {
        Fixed r = 77;
        FixedSub(a, b, r);
        return r;
    }
    static Fixed fromReal(double x) {
        Fixed f = 77;
        FixedFromReal(x, f);
        return f;
    }
    // The number that a text holds; `none` for a text that holds none.
    static constexpr Fixed none = 7777777;
    static Fixed fromText(std::string_view text) {
        Fixed f = none;
        bool ok = false;
        FixedFromText(text, f, ok);
        EXPECT_EQ(ok, f != none) << text;
        return f;
    }
};

// ---- formats ----

TEST_F(FixedNumbers, AFormatHoldsAWidthAndDecimalsWithoutTrailingZeros) {
    constexpr struct {
        Fixed format;
        std::int32_t width, decimals;
    } rows[] = {
        {14000, 1, 4},        // 1.4
        {81200, 8, 12},       // 8.12
        {10000, 1, 0},        // 1
        {0, 0, 0},            // 0
        {4000, 0, 4},         // 0.4
        {400, 0, 4},          // 0.04
        {121000, 12, 1},      // 12.10 is 12.1
        {82000, 8, 2},        // 8.2
        {-81200, -8, 12},     // -8.12
        {-4000, 0, 4},        // -0.4
        {102100, 10, 20},     // 10.21 is too many decimals
        {19999, 1, 20},       // 1.9999 likewise
        {1000000, 100, 0},    // 100
        {1010000, 100, 0},    // 101 is too wide
        {-1010000, -100, 0},  // -101 likewise
        {LargestFixed, 100, 20},
        {SmallestFixed, -100, 20},
    };
    for (const auto& row : rows) {
        const NumberFormat format = SplitFormat(row.format);
        EXPECT_EQ(format.width, row.width) << row.format;
        EXPECT_EQ(format.decimals, row.decimals) << row.format;
    }
}

// ---- real ----

TEST_F(FixedNumbers, RealsAreRoundedToTheNearestHalvesAwayFromZero) {
    constexpr struct {
        double x;
        Fixed f;
    } rows[] = {
        {0.0, 0},
        {-0.0, 0},
        {1.0, 10000},
        {-1.5, -15000},
        {0.0001, 1},
        {-0.0001, -1},
        {1.23456, 12346},
        {1.23454, 12345},
        {-1.23456, -12346},
        {0.03125, 313},    // 312.5
        {-0.03125, -313},  // likewise
        {0.15625, 1563},   // 1562.5
        {123456789.0123, 1234567890123},
        {922337203685477.5, 9223372036854775000},
        {-922337203685477.5, -9223372036854775000},
        {4503599627370495.5e-4, 4503599627370496},
    };
    for (const auto& row : rows) EXPECT_EQ(fromReal(row.x), row.f) << row.x;
}

TEST_F(FixedNumbers, ARealJustBelowAHalfIsRoundedDown) {
    // 0.00035 is not a double: the nearest one is less, and its product with 10000 would round to 3.5.
    const double below = std::nextafter(0.03125, 0), above = std::nextafter(0.03125, 1);
    EXPECT_EQ(fromReal(below), 312);
    EXPECT_EQ(fromReal(above), 313);
    EXPECT_EQ(fromReal(0.00035), 3);
    EXPECT_EQ(fromReal(-0.00035), -3);
}

TEST_F(FixedNumbers, RealsBelowTheSmallestStepAreZeroWithoutAnError) {
    for (const double x : {0.00009999, 0.00005, -0.00009999, 1e-300, -5e-324, std::nextafter(0.0001, 0)})
        EXPECT_EQ(fromReal(x), 0) << x;
}

TEST_F(FixedNumbers, RealsThatNoFixedNumberCanHoldAre641AndZero) {
    for (const double x : {922337203685477.625, -922337203685477.625, 922337203685478.0, -922337203685478.0,
                           1e15, -1e15, 1e300, -1e300, infinity, -infinity, notANumber, -notANumber}) {
        EXPECT_EQ(fromReal(x), 0) << x;
        EXPECT_EQ(takeError(), 641) << x;
    }
}

TEST_F(FixedNumbers, AFixedNumberIsTheNearestReal) {
    EXPECT_EQ(FixedToReal(0), 0.0);
    EXPECT_EQ(FixedToReal(1), 0.0001);
    EXPECT_EQ(FixedToReal(-1), -0.0001);
    EXPECT_EQ(FixedToReal(12345), 1.2345);
    EXPECT_EQ(FixedToReal(LargestFixed), 922337203685477.5807);
    EXPECT_EQ(FixedToReal(SmallestFixed), -922337203685477.5808);
    EXPECT_EQ(FixedToReal(9223372036854774999), 922337203685477.4999);
    EXPECT_EQ(FixedToReal(123456789012345678), 12345678901234.5678);
    EXPECT_EQ(FixedToReal(-123456789012345678), -12345678901234.5678);
}

TEST_F(FixedNumbers, EachFixedNumberThatARealCanTellApartComesBack) {
    for (const Fixed f : {Fixed{0}, Fixed{1}, Fixed{-1}, Fixed{9999}, Fixed{10001}, Fixed{-123456789},
                          Fixed{4503599627370495}, Fixed{-4503599627370496}})
        EXPECT_EQ(fromReal(FixedToReal(f)), f);
}

// ---- integers ----

TEST_F(FixedNumbers, IntegersAreScaledAndCutTowardsZero) {
    for (const std::int32_t i : {0, 1, -1, 123456789, INT32_MAX, INT32_MIN}) {
        Fixed f = 77;
        FixedFromInteger(i, f);
        EXPECT_EQ(f, std::int64_t{i} * 10000);
        EXPECT_EQ(FixedToInteger(f), i);
    }
    EXPECT_EQ(FixedToInteger(19999), 1);
    EXPECT_EQ(FixedToInteger(-19999), -1);
    EXPECT_EQ(FixedToInteger(9999), 0);
    EXPECT_EQ(FixedToInteger(-9999), 0);
    EXPECT_EQ(FixedToInteger(21474836479999), INT32_MAX);
}

TEST_F(FixedNumbers, OutsideTheIntegersTheLow32BitsStay) {
    EXPECT_EQ(FixedToInteger(21474836489999), INT32_MIN);   // 2147483648.9999
    EXPECT_EQ(FixedToInteger(-21474836499999), INT32_MAX);  // -2147483649.9999
    EXPECT_EQ(FixedToInteger(Fixed{4294967296 + 5} * 10000), 5);
    EXPECT_EQ(FixedToInteger(LargestFixed), static_cast<std::int32_t>(922337203685477 & 0xFFFFFFFF));
}

// ---- arithmetic ----

TEST_F(FixedNumbers, SumsAndDifferencesWrap) {
    EXPECT_EQ(add(12345, -345), 12000);
    EXPECT_EQ(sub(12345, 345), 12000);
    EXPECT_EQ(add(LargestFixed, 1), SmallestFixed);
    EXPECT_EQ(add(SmallestFixed, SmallestFixed), 0);
    EXPECT_EQ(sub(SmallestFixed, 1), LargestFixed);
    EXPECT_EQ(sub(0, SmallestFixed), SmallestFixed);
}

TEST_F(FixedNumbers, ProductsAreCutTowardsZero) {
    constexpr struct {
        Fixed a, b, product;
    } rows[] = {
        {0, 12345, 0},
        {10000, 12345, 12345},
        {-10000, 12345, -12345},
        {15000, 15000, 22500},
        {1, 9999, 0},
        {-1, 9999, 0},
        {1, 10000, 1},
        {3, 5000, 1},
        {-3, 5000, -1},
        {-3, -5000, 1},
        {LargestFixed, 10000, LargestFixed},
        {LargestFixed, -10000, -LargestFixed},
        {SmallestFixed, 10000, SmallestFixed},
        {LargestFixed, 9999, 9222449699651090329},
        {LargestFixed, 1, 922337203685477},
        {SmallestFixed, 1, -922337203685477},
        {SmallestFixed, -1, 922337203685477},
        {SmallestFixed, -9999, 9222449699651090330},
        {SmallestFixed, 9999, -9222449699651090330},
        {SmallestFixed, 0, 0},
        {300000000000, 300000000000, 9000000000000000000},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(mul(row.a, row.b), row.product) << row.a << " " << row.b;
        EXPECT_EQ(mul(row.b, row.a), row.product) << row.a << " " << row.b;
    }
}

TEST_F(FixedNumbers, ProductsBeyondTheRangeAreTheLargestOrTheSmallestWithoutAnError) {
    Fixed large = 0;
    FixedFromReal(1E12, large);
    EXPECT_EQ(mul(large, large), LargestFixed);
    EXPECT_EQ(mul(-large, large), SmallestFixed);
    EXPECT_EQ(mul(-large, -large), LargestFixed);
    EXPECT_EQ(mul(LargestFixed, 10001), LargestFixed);
    EXPECT_EQ(mul(LargestFixed, -10001), SmallestFixed);
    EXPECT_EQ(mul(SmallestFixed, 10001), SmallestFixed);
    EXPECT_EQ(mul(SmallestFixed, -10000), LargestFixed);
    EXPECT_EQ(mul(SmallestFixed, SmallestFixed), LargestFixed);
    EXPECT_EQ(mul(SmallestFixed, LargestFixed), SmallestFixed);
    EXPECT_EQ(mul(LargestFixed, LargestFixed), LargestFixed);
    // 2^63 exactly: the magnitude of the smallest number, and one too many for the largest.
    constexpr Fixed half = Fixed{1} << 59U, sixteen = 160000;
    EXPECT_EQ(mul(half, sixteen), LargestFixed);
    EXPECT_EQ(mul(-half, sixteen), SmallestFixed);
}

TEST_F(FixedNumbers, QuotientsAreCutTowardsZero) {
    constexpr struct {
        Fixed a, b, quotient;
    } rows[] = {
        {0, 5, 0},
        {10000, 30000, 3333},
        {-10000, 30000, -3333},
        {10000, -30000, -3333},
        {-20000, -30000, 6666},
        {12345, 10000, 12345},
        {1, 10001, 0},
        {-1, 10001, 0},
        {1, 1, 10000},
        {922337203685477, 1, 9223372036854770000},
        {922337203685477, -1, -9223372036854770000},
        {LargestFixed, 10000, LargestFixed},
        {LargestFixed, -10000, -LargestFixed},
        {LargestFixed, LargestFixed, 10000},
        {LargestFixed, SmallestFixed, -9999},
        {LargestFixed, 20000, LargestFixed / 2},
        {SmallestFixed, 10000, SmallestFixed},
        {SmallestFixed, SmallestFixed, 10000},
        {SmallestFixed, LargestFixed, -10000},
        {SmallestFixed, 20000, SmallestFixed / 2},
        {SmallestFixed, -20000, 4611686018427387904},
        {1, SmallestFixed, 0},
        {1000000000000, SmallestFixed, 0},
        {-1000000000000, SmallestFixed, 0},
    };
    for (const auto& row : rows) EXPECT_EQ(div(row.a, row.b), row.quotient) << row.a << " " << row.b;
}

TEST_F(FixedNumbers, QuotientsBeyondTheRangeAreTheLargestOrTheSmallestWithoutAnError) {
    EXPECT_EQ(div(922337203685478, 1), LargestFixed);
    EXPECT_EQ(div(922337203685478, -1), SmallestFixed);
    EXPECT_EQ(div(LargestFixed, 1), LargestFixed);
    EXPECT_EQ(div(LargestFixed, -1), SmallestFixed);
    EXPECT_EQ(div(SmallestFixed, 1), SmallestFixed);
    EXPECT_EQ(div(SmallestFixed, -1), LargestFixed);
    EXPECT_EQ(div(SmallestFixed, 9999), SmallestFixed);
    EXPECT_EQ(div(SmallestFixed, -10000), LargestFixed);
    EXPECT_EQ(div(LargestFixed, 9999), LargestFixed);
}

TEST_F(FixedNumbers, DivisionByZeroIs643AndZero) {
    for (const Fixed a : {Fixed{0}, Fixed{1}, Fixed{-1}, LargestFixed, SmallestFixed}) {
        EXPECT_EQ(div(a, 0), 0);
        EXPECT_EQ(takeError(), 643);
    }
    SetError(800);
    EXPECT_EQ(div(1, 0), 0);
    EXPECT_EQ(takeError(), 800);
}

TEST_F(FixedNumbers, ResultsMayBeOperands) {
    Fixed a = 20000;
    FixedMul(a, a, a);
    EXPECT_EQ(a, 40000);
    FixedDiv(a, a, a);
    EXPECT_EQ(a, 10000);
    a = LargestFixed;
    FixedMul(a, a, a);
    EXPECT_EQ(a, LargestFixed);
    FixedDiv(a, a, a);
    EXPECT_EQ(a, 10000);
    FixedAdd(a, a, a);
    FixedSub(a, a, a);
    EXPECT_EQ(a, 0);
}

TEST_F(FixedNumbers, SignsAndMagnitudes) {
    constexpr struct {
        Fixed f, negative, magnitude;
        std::int32_t sign;
    } rows[] = {
        {0, 0, 0, 0},
        {1, -1, 1, 1},
        {-1, 1, 1, -1},
        {LargestFixed, -LargestFixed, LargestFixed, 1},
        {SmallestFixed, SmallestFixed, SmallestFixed, -1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FixedNeg(row.f), row.negative);
        EXPECT_EQ(FixedAbs(row.f), row.magnitude);
        EXPECT_EQ(FixedSign(row.f), row.sign);
    }
}

TEST_F(FixedNumbers, ComparisonsByOperator) {
    constexpr Fixed numbers[] = {SmallestFixed, -10000, -1, 0, 1, 10000, LargestFixed};
    for (const Fixed a : numbers) {
        for (const Fixed b : numbers) {
            EXPECT_EQ(FixedCompare("EQ", a, b), a == b);
            EXPECT_EQ(FixedCompare("NE", a, b), a != b);
            EXPECT_EQ(FixedCompare("GT", a, b), a > b);
            EXPECT_EQ(FixedCompare("LT", a, b), a < b);
            EXPECT_EQ(FixedCompare("GE", a, b), a >= b);
            EXPECT_EQ(FixedCompare("le", a, b), a <= b);
            EXPECT_EQ(FixedCompare("LESS", a, b), FixedCompare("LE", a, b));
            EXPECT_EQ(FixedCompare("EQUAL", a, b), a == b);
            for (const char* op : {"", "E", "XX", "=", " EQ"}) EXPECT_FALSE(FixedCompare(op, a, b)) << op;
        }
    }
}

// ---- texts ----

TEST_F(FixedNumbers, TextsOfNumbers) {
    constexpr struct {
        std::string_view text;
        Fixed f;
    } rows[] = {
        {"0", 0},
        {"+0", 0},
        {"-0", 0},
        {"1.2", 12000},
        {"1.2000", 12000},
        {"1.", 10000},
        {"-1.", -10000},
        {".0001", 1},
        {"+.0001", 1},
        {"-.0001", -1},
        {"-0.0001", -1},
        {"0.00019999999", 1},
        {"-0.00019999999", -1},
        {"1.99999", 19999},
        {"  12.5", 125000},
        {"12.5  ", 125000},
        {"  -12.5  ", -125000},
        {"000000000000000000000000000000012", 120000},
        {"2147483647.9999", 21474836479999},
        {"2147483648.9999", 21474836489999},
        {"-2147483649.9999", -21474836499999},
        {"922337203685477.5807", LargestFixed},
        {"922337203685477.58079999", LargestFixed},
        {"-922337203685477.5808", SmallestFixed},
        {"-922337203685477.58089", SmallestFixed},
        {"-922337203685477.5807", -LargestFixed},
    };
    for (const auto& row : rows) EXPECT_EQ(fromText(row.text), row.f) << row.text;
}

TEST_F(FixedNumbers, TextsOfNoNumberLeaveTheTargetAsItWas) {
    using namespace std::string_view_literals;
    for (const auto text : {""sv,
                            " "sv,
                            "+"sv,
                            "-"sv,
                            "."sv,
                            "+."sv,
                            "-."sv,
                            " . "sv,
                            "1..2"sv,
                            "1.2.3"sv,
                            "1,2"sv,
                            "--1"sv,
                            "+-1"sv,
                            "- 1"sv,
                            "1 2"sv,
                            "1x"sv,
                            "x1"sv,
                            "1.2345x"sv,
                            "1E5"sv,
                            "\t1"sv,
                            "1\n"sv,
                            "1\0"sv,
                            "0x10"sv,
                            "1-"sv,
                            "NULL"sv,
                            "922337203685477.5808"sv,
                            "-922337203685477.5809"sv,
                            "922337203685478"sv,
                            "9999999999999999999"sv,
                            "99999999999999999999999999999999999"sv,
                            "-99999999999999999999999999999999999"sv,
                            "18446744073709551617"sv})
        EXPECT_EQ(fromText(text), none) << text;
}

TEST_F(FixedNumbers, FixedNumbersFillTheirFields) {
    constexpr struct {
        Fixed f, format;
        const char* text;
    } rows[] = {
        {0, DefaultFixedFormat, "0.0000"},
        {12000, DefaultFixedFormat, "1.2000"},
        {-1, DefaultFixedFormat, "-0.0001"},
        {-12345, DefaultFixedFormat, "-1.2345"},
        {LargestFixed, DefaultFixedFormat, "922337203685477.5807"},
        {SmallestFixed, DefaultFixedFormat, "-922337203685477.5808"},
        {12345, 81200, "1.234500000000"},          // 8.12
        {12345, 12000, "1.23"},                    // 1.2
        {12350, 13000, "1.235"},                   // 1.3
        {12350, 12000, "1.24"},                    // a half, away from 0
        {-12350, 12000, "-1.24"},                  //
        {12349, 12000, "1.23"},                    //
        {15000, 10000, "2"},                       // 1: no decimals, no point
        {14999, 10000, "1"},                       //
        {-15000, 10000, "-2"},                     //
        {99999, 12000, "10.00"},                   // 1.2
        {12345, 82000, "    1.23"},                // 8.2
        {12345, -82000, "1.23    "},               // -8.2
        {-12345, 82000, "   -1.23"},               //
        {-12345, -82000, "-1.23   "},              //
        {123456789, 32000, "12345.68"},            // 3.2: never cut
        {12345, 4000, "1.2345"},                   // 0.4: as wide as needed
        {12345, 19999, "1.23450000000000000000"},  // more than 20 decimals are 20
        {LargestFixed, 10000, "922337203685478"},  //
        {SmallestFixed, 19999, "-922337203685477.58080000000000000000"},
    };
    for (const auto& row : rows) EXPECT_EQ(FixedToText(row.f, row.format), row.text) << row.format;
    EXPECT_EQ(FixedToText(12345), "1.2345");
    EXPECT_EQ(FixedToText(5, LargestFixed).size(), 100U);
    EXPECT_EQ(FixedToText(5, SmallestFixed).size(), 100U);
}

TEST_F(FixedNumbers, ANegativeNumberKeepsItsSignWhenAllItsDigitsAreRoundedAway) {
    EXPECT_EQ(FixedToText(-1, 12000), "-0.00");
    EXPECT_EQ(FixedToText(-1, 10000), "-0");
    EXPECT_EQ(FixedToText(1, 10000), "0");
}

}  // namespace
