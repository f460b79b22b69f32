// SPDX-License-Identifier: Apache-2.0
#include "library/system/numbers.h"

#include "support/errorcell.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace tarn {
namespace {

constexpr std::int32_t Least = std::numeric_limits<std::int32_t>::min(), Most = 0x7FFFFFFF;
constexpr double Infinity = std::numeric_limits<double>::infinity();

class Numbers : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { EXPECT_EQ(takeError(), 0); }
};

TEST_F(Numbers, AbsoluteAndNegativeValuesHaveAFormForEachKind) {
    EXPECT_EQ(ABS(-7), 7);
    EXPECT_EQ(ABS(7), 7);
    EXPECT_EQ(ABS(0), 0);
    EXPECT_EQ(ABS(Least), Least) << "there is no other number for it";
    EXPECT_EQ(NEG(5), -5);
    EXPECT_EQ(NEG(Least), Least);
    EXPECT_EQ(NEG(Most), -Most);
    EXPECT_EQ(ABS(FixedValue(-15000)), FixedValue(15000));
    EXPECT_EQ(ABS(FixedValue(SmallestFixed)), FixedValue(SmallestFixed));
    EXPECT_EQ(NEG(FixedValue(1)), FixedValue(-1));
    EXPECT_EQ(ABS(-2.5), 2.5);
    EXPECT_FALSE(std::signbit(ABS(-0.0)));
    EXPECT_TRUE(std::signbit(NEG(0.0)));
    EXPECT_EQ(ABS(-Infinity), Infinity);
    EXPECT_TRUE(std::isnan(ABS(std::nan(""))));
}

TEST_F(Numbers, RootsOfFixedNumbersAreExactToFourDecimals) {
    struct Case {
        Fixed number, root;
    };
    const Case cases[] = {{0, 0},
                          {1, 100},        // 0.0001: 0.01
                          {10000, 10000},  // 1
                          {20000, 14142},  // 2: 1.4142
                          {90000, 30000},  // 9
                          {99999, 31622},  // truncated
                          {LargestFixed, 303700049997}};
    for (const Case& c : cases) EXPECT_EQ(SQR(FixedValue(c.number)).word, c.root) << c.number;
    for (Fixed root = 0; root < 5000; ++root) {
        const Fixed square = root * root * FixedOne;
        EXPECT_EQ(SQR(FixedValue(square)).word, root * FixedOne) << root;
        EXPECT_EQ(SQR(FixedValue(square + 1)).word, root == 0 ? 100 : root * FixedOne) << root;
    }
}

TEST_F(Numbers, RootsOfRealsAreTheNearest) {
    EXPECT_EQ(SQR(0.0), 0);
    EXPECT_EQ(SQR(2.0), std::sqrt(2.0));
    EXPECT_EQ(SQR(1e300), 1e150);
    EXPECT_EQ(SQR(Infinity), Infinity);
}

TEST_F(Numbers, ANegativeNumberHasNoRoot) {
    EXPECT_EQ(SQR(-1.0), 0);
    EXPECT_EQ(takeError(), 684);
    EXPECT_EQ(SQR(FixedValue(-1)).word, 0);
    EXPECT_EQ(takeError(), 684);
}

TEST_F(Numbers, PowersThatDoNotExistHaveTheirCodes) {
    struct Case {
        double base, exponent, power;
        int code;
    };
    const Case cases[] = {{2, 10, 1024, 0},
                          {2, -1, 0.5, 0},
                          {-2, 3, -8, 0},
                          {-8, 0.5, 0, 684},
                          {0, 0, 1, 0},
                          {0, 2, 0, 0},
                          {0, -1, 0, 643},
                          {10, 308, 1e308, 0},
                          {10, 309, 0, 641},
                          {-10, 309, 0, 641},
                          {10, -400, 0, 0},
                          {9, 0.5, 3, 0},
                          {Infinity, 2, Infinity, 0},
                          {7, 0, 1, 0}};
    for (const Case& c : cases) {
        EXPECT_DOUBLE_EQ(PWR(c.base, c.exponent), c.power) << c.base << " " << c.exponent;
        EXPECT_EQ(takeError(), c.code) << c.base << " " << c.exponent;
    }
}

TEST_F(Numbers, RandomNumbersAreBelowTheirCountAndAllOfThemCome) {
    std::array<int, 6> seen{};
    for (int i = 0; i < 6000; ++i) {
        const std::int32_t n = RANDOM(6);
        ASSERT_TRUE(n >= 0 && n < 6) << n;
        ++seen[static_cast<std::size_t>(n)];
    }
    for (const int times : seen) EXPECT_TRUE(times > 800 && times < 1200) << times;
    for (const std::int32_t count : {1, 0, -1, Least}) EXPECT_EQ(RANDOM(count), 0) << count;
    bool high = false;
    for (int i = 0; i < 200; ++i) high = high || RANDOM(Most) > Most / 2;
    EXPECT_TRUE(high);
}

TEST_F(Numbers, TheGreaterTheLesserAndWhatLiesBetween) {
    EXPECT_EQ(MAXVAL(3, -4), 3);
    EXPECT_EQ(MAXVAL(Least, Most), Most);
    EXPECT_EQ(MINVAL(3, -4), -4);
    EXPECT_EQ(MINVAL(2, 2), 2);
    EXPECT_TRUE(ISBETWEEN(1, 1, 3));
    EXPECT_TRUE(ISBETWEEN(3, 1, 3));
    EXPECT_FALSE(ISBETWEEN(4, 1, 3));
    EXPECT_FALSE(ISBETWEEN(2, 3, 1));
    EXPECT_TRUE(ISBETWEEN(FixedValue(15000), FixedValue(10000), FixedValue(15000)));
    EXPECT_FALSE(ISBETWEEN(FixedValue(15001), FixedValue(10000), FixedValue(15000)));
}

TEST_F(Numbers, BytesAndColoursAreTakenApart) {
    EXPECT_EQ(LOBYTE(0x1234), 0x34);
    EXPECT_EQ(HIBYTE(0x1234), 0x12);
    EXPECT_EQ(HIBYTE(0x771234), 0x12);
    EXPECT_EQ(LOBYTE(-1), 255);
    EXPECT_EQ(HIBYTE(-1), 255);
    EXPECT_EQ(RGB(0x11, 0x22, 0x33), 0x332211) << "red is the low byte";
    EXPECT_EQ(RGB(256 + 1, -1, 2), 0x02FF01);
    const int colour = 0x332211;
    EXPECT_EQ(RGB(GETRVALUE(colour), GETGVALUE(colour), GETBVALUE(colour)), colour);
    EXPECT_EQ(GETRVALUE(0xFF), 255);
    EXPECT_EQ(GETGVALUE(0xFF00), 255);
    EXPECT_EQ(GETBVALUE(0xFF0000), 255);
}

TEST_F(Numbers, ACodeSucceedsUnlessItIsNegative) {
    EXPECT_TRUE(SUCCEEDED(0));
    EXPECT_TRUE(SUCCEEDED(Most));
    EXPECT_FALSE(SUCCEEDED(-1));
    EXPECT_FALSE(SUCCEEDED(Least));
}

}  // namespace
}  // namespace tarn
