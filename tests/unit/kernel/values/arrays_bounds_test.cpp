// SPDX-License-Identifier: Apache-2.0
//
// Bounds of arrays, and how they change.
#include "unit/kernel/arrays_fixture.h"

#include "kernel/values/arrays.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>

using namespace tarn;

namespace {

// ---- bounds ----

TEST_F(Arrays, BoundsAreAskedByDimension) {
    ArrayValue a;
    ArrayInit(a.get(), KindInteger, -3, 3, 1, 2, none, none, nullptr);
    EXPECT_EQ(ArrayLowerBound(a.get(), 1), -3);
    EXPECT_EQ(ArrayUpperBound(a.get(), 1), 3);
    EXPECT_EQ(ArrayLowerBound(a.get(), 2), 1);
    EXPECT_EQ(ArrayUpperBound(a.get(), 2), 2);
    EXPECT_EQ(ArrayDimensions(a.get()), 2);
    EXPECT_EQ(ErrorCell(), 0);
    for (const std::int32_t dimension : {3, 0, -1, 4, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(ArrayLowerBound(a.get(), dimension), 0);
        EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION) << dimension;
        EXPECT_EQ(ArrayUpperBound(a.get(), dimension), 0);
        EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION) << dimension;
    }
    const ArrayValue one = tens(1, 3);
    EXPECT_EQ(ArrayUpperBound(one.get(), 2), 0);
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
}

TEST_F(Arrays, CharactersAreEnumsFromOneInOneDimension) {
    constexpr struct {
        Kind kind;
        std::int32_t lower, upper, lower2;
        bool characters;
    } rows[] = {{KindEnum, 1, 8, none, true},     {KindEnum, 1, 1, none, true},
                {KindEnum, 0, 8, none, false},    {KindEnum, 2, 8, none, false},
                {KindEnum, 1, 8, 1, false},       {KindBoolean, 1, 8, none, false},
                {KindInteger, 1, 8, none, false}, {KindEnum, -1, 8, none, false}};
    for (const auto& row : rows) {
        ArrayValue a;
        ArrayInit(a.get(), row.kind, row.lower, row.upper, row.lower2, row.lower2, none, none, nullptr);
        EXPECT_EQ(ArrayIsCharacters(a.get()), row.characters) << row.kind << ' ' << row.lower;
    }
    ArrayValue dynamic;
    ArrayInitDynamic(dynamic.get(), KindEnum, nullptr);
    EXPECT_FALSE(ArrayIsCharacters(dynamic.get()));
}

// ---- redimensioning ----

TEST_F(Arrays, AThreeByThreeArrayBecomesTwoByFour) {
    for (const bool preserve : {true, false}) {
        ArrayValue a;
        ArrayInitDynamic(a.get(), KindInteger, nullptr);
        ArrayRedim(a.get(), 1, 3, 1, 3, none, none, false);
        for (std::int32_t i = 1; i <= 3; ++i) {
            for (std::int32_t j = 1; j <= 3; ++j) {
                const std::int32_t value = i * 10 + j;
                ArrayPut2(a.get(), i, j, &value, KindInteger);
            }
        }
        ArrayRedim(a.get(), 1, 2, 1, 4, none, none, preserve);
        EXPECT_EQ(a.get()->size, 8 * 4);
        for (std::int32_t i = 1; i <= 2; ++i) {
            for (std::int32_t j = 1; j <= 4; ++j) {
                std::int32_t value = -1;
                ArrayGet2(a.get(), i, j, &value, KindInteger);
                EXPECT_EQ(value, preserve && j <= 3 ? i * 10 + j : 0) << i << j;
            }
        }
        std::int32_t value = 0;
        ArrayGet2(a.get(), 3, 1, &value, KindInteger);
        EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
        expectSound(a.get());
    }
}

TEST_F(Arrays, RedimKeepsWhatBothBoundsHold) {
    constexpr struct {
        std::int32_t lower, upper;
        const char *kept, *lost;
    } rows[] = {{1, 5, "a,b,c,d,e,", ",,,,,"},
                {3, 8, "c,d,e,,,,", ",,,,,,"},
                {-1, 2, ",,a,b,", ",,,,"},
                {2, 3, "b,c,", ",,"},
                {6, 7, ",,", ",,"},
                {-9, -8, ",,", ",,"},
                {0, 6, ",a,b,c,d,e,,", ",,,,,,,"},
                {5, 5, "e,", ","}};
    for (const auto& row : rows) {
        for (const bool preserve : {true, false}) {
            ArrayValue a = texts({"a", "b", "c", "d", "e"}, DYNAMIC_BOUNDS);
            ArrayRedim(a.get(), row.lower, row.upper, preserve);
            EXPECT_EQ(ErrorCell(), 0);
            EXPECT_EQ(contentOf(a.get()), preserve ? row.kept : row.lost) << row.lower << ".." << row.upper;
            EXPECT_EQ(ArrayLowerBound(a.get(), 1), row.lower);
            EXPECT_EQ(ArrayUpperBound(a.get(), 1), row.upper);
            expectSound(a.get());
        }
    }
}

TEST_F(Arrays, NewElementsAreOfThePrototypeAndLeaveNothingBehind) {
    ArrayValue a = texts({"abc", "def"}, DYNAMIC_BOUNDS, 4);
    ArrayRedim(a.get(), 2, 4, true);
    const ValueModel m =
        model::Array({{2, 4}}, model::Text("", 4),
                     {model::Text("def", 4), model::Text("", 4), model::Text("", 4)}, DYNAMIC_BOUNDS);
    EXPECT_EQ(model::Differs(m, a.get()), "");
    const model::HeapUse use = model::UseOf(m);
    EXPECT_EQ(CountLeaks().bytes, use.bytes);
    EXPECT_EQ(CountLeaks().blocks, use.blocks);
}

TEST_F(Arrays, OnlyDynamicArraysOfAsManyDimensionsAreRedimensioned) {
    ArrayValue fixed = tens(1, 3);
    ArrayRedim(fixed.get(), 1, 3, true);
    EXPECT_EQ(takeError(), ERR_ARRAY_REDIM);
    ArrayRedim(fixed.get(), 5, 1, true);  // the first fault is that it is fixed
    EXPECT_EQ(takeError(), ERR_ARRAY_REDIM);
    EXPECT_EQ(contentOf(fixed.get()), "10,20,30,");
    ArrayValue a = tens(1, 3, DYNAMIC_BOUNDS);
    ArrayRedim(a.get(), 1, 3, 1, 3, none, none, true);
    EXPECT_EQ(takeError(), ERR_ARRAY_REDIM);
    ArrayRedim(a.get(), 1, 3, 1, 3, 1, 3, true);
    EXPECT_EQ(takeError(), ERR_ARRAY_REDIM);
    ArrayRedim(a.get(), 1, 3, 5, 1, none, none, true);  // another number comes before bad bounds
    EXPECT_EQ(takeError(), ERR_ARRAY_REDIM);
    EXPECT_EQ(contentOf(a.get()), "10,20,30,");
    ArrayValue two;
    ArrayInitDynamic(two.get(), KindInteger, nullptr);
    ArrayRedim(two.get(), 1, 2, 1, 2, none, none, false);
    ArrayRedim(two.get(), 1, 2, true);
    EXPECT_EQ(takeError(), ERR_ARRAY_REDIM);
    EXPECT_EQ(ArrayDimensions(two.get()), 2);
}

TEST_F(Arrays, BadBoundsLeaveADynamicArrayAsItWas) {
    constexpr struct {
        std::int32_t lower, upper, error;
    } rows[] = {{5, 1, ERR_ARRAY_TYPE},
                {-32769, 1, ERR_ARRAY_TYPE},
                {1, 32768, ERR_ARRAY_TYPE},
                {1, none, ERR_ARRAY_TYPE}};
    for (const bool preserve : {true, false}) {
        ArrayValue a = tens(1, 3, DYNAMIC_BOUNDS), unshaped;
        ArrayInitDynamic(unshaped.get(), KindInteger, nullptr);
        for (const auto& row : rows) {
            ArrayRedim(a.get(), row.lower, row.upper, preserve);
            EXPECT_EQ(takeError(), row.error) << row.lower << ' ' << row.upper;
            ArrayRedim(unshaped.get(), row.lower, row.upper, preserve);
            EXPECT_EQ(takeError(), row.error) << row.lower << ' ' << row.upper;
        }
        ArrayRedim(unshaped.get(), 1, 32767, 1, 32767, 1, 32767, preserve);
        EXPECT_EQ(takeError(), ERR_BLOCK_TOO_LARGE);
        EXPECT_EQ(ArrayDimensions(unshaped.get()), 0);
        EXPECT_EQ(contentOf(a.get()), "10,20,30,");
    }
}

TEST_F(Arrays, ARedimBeyondABlockLeavesTheArrayAsItWas) {
    for (const bool preserve : {true, false}) {
        ArrayValue a = texts({"one"}, DYNAMIC_BOUNDS), two;
        ArrayInitDynamic(two.get(), KindReal, nullptr);
        ArrayRedim(two.get(), 1, 2, 1, 2, none, none, preserve);
        const double value = 2.5;
        ArrayPut2(two.get(), 2, 2, &value, KindReal);
        ArrayRedim(two.get(), -32768, 32767, -32768, 32767, none, none, preserve);
        EXPECT_EQ(takeError(), ERR_BLOCK_TOO_LARGE);
        double back = 0;
        ArrayGet2(two.get(), 2, 2, &back, KindReal);
        EXPECT_EQ(back, value);
        EXPECT_EQ(two.get()->size, 32);
    }
}

TEST_F(Arrays, ARedimMovesTheElementsOfThreeDimensions) {
    ArrayValue a;
    ArrayInitDynamic(a.get(), KindInteger, nullptr);
    ArrayRedim(a.get(), 0, 2, -1, 1, 5, 7, false);
    for (std::int32_t i = 0; i <= 2; ++i)
        for (std::int32_t j = -1; j <= 1; ++j)
            for (std::int32_t k = 5; k <= 7; ++k) WriteAt(ArrayRef3(a.get(), i, j, k), i * 100 + j * 10 + k);
    ArrayRedim(a.get(), 1, 4, 0, 2, 3, 6, true);
    for (std::int32_t i = 1; i <= 4; ++i) {
        for (std::int32_t j = 0; j <= 2; ++j) {
            for (std::int32_t k = 3; k <= 6; ++k) {
                const bool kept = i <= 2 && j <= 1 && k >= 5;
                EXPECT_EQ(ReadAt<std::int32_t>(ArrayRef3(a.get(), i, j, k)), kept ? i * 100 + j * 10 + k : 0);
            }
        }
    }
}

}  // namespace
