// SPDX-License-Identifier: Apache-2.0
//
// Arrays as a whole: assignment and literals.
#include "unit/kernel/arrays_fixture.h"

#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>

using namespace tarn;

namespace {

// ---- assignment ----

TEST_F(Arrays, AFixedArrayTakesAsManyElementsInStorageOrder) {
    ArrayValue a = tens(1, 6), b = tens(-10, -5), c = tens(1, 5), d;
    ArrayInit(d.get(), KindInteger, 1, 2, 1, 3, none, none, nullptr);
    for (std::int32_t i = -10; i <= -5; ++i) putInteger(b.get(), i, i);
    ArrayAssign(a.get(), b.get());
    EXPECT_EQ(contentOf(a.get()), "-10,-9,-8,-7,-6,-5,");
    EXPECT_EQ(ArrayLowerBound(a.get(), 1), 1);
    ArrayAssign(c.get(), b.get());
    EXPECT_EQ(takeError(), ERR_FIXED_ARRAY);
    EXPECT_EQ(contentOf(c.get()), "10,20,30,40,50,");
    ArrayAssign(b.get(), c.get());
    EXPECT_EQ(takeError(), ERR_FIXED_ARRAY);
    ArrayAssign(d.get(), a.get());  // as many elements in other dimensions
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
    ArrayAssign(a.get(), a.get());
    EXPECT_EQ(contentOf(a.get()), "-10,-9,-8,-7,-6,-5,");
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Arrays, StorageOrderHoldsInTwoDimensionsToo) {
    ArrayValue a, b;
    ArrayInit(a.get(), KindInteger, 1, 2, 1, 3, none, none, nullptr);
    ArrayInit(b.get(), KindInteger, 0, 2, 5, 6, none, none, nullptr);
    for (std::int32_t n = 0; n < 6; ++n) WriteAt(At(a.get()->data) + n * 4, n);
    ArrayAssign(b.get(), a.get());
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(std::memcmp(At(a.get()->data), At(b.get()->data), 24), 0);
    EXPECT_EQ(ArrayUpperBound(b.get(), 2), 6);
}

TEST_F(Arrays, ADynamicArrayTakesTheBounds) {
    const ArrayValue sources[] = {tens(1, 3), tens(-4, 9), tens(5, 5, DYNAMIC_BOUNDS)};
    for (const ArrayValue& source : sources) {
        ArrayValue fresh, shaped = tens(1, 4, DYNAMIC_BOUNDS);
        ArrayInitDynamic(fresh.get(), KindInteger, nullptr);
        for (ArrayValue* a : {&fresh, &shaped}) {
            ArrayAssign(a->get(), source.get());
            EXPECT_EQ(ErrorCell(), 0);
            EXPECT_EQ(contentOf(a->get()), contentOf(source.get()));
            EXPECT_EQ(ArrayLowerBound(a->get(), 1), ArrayLowerBound(source.get(), 1));
            EXPECT_EQ(a->get()->maxlength, DYNAMIC_BOUNDS);
            EXPECT_NE(a->get()->data, source.get()->data);
            expectSound(a->get());
        }
    }
}

TEST_F(Arrays, AnAssignmentIsDeep) {
    ArrayValue a = texts({"one", "two"}), b = texts({"", "", ""}, DYNAMIC_BOUNDS);
    ArrayAssign(b.get(), a.get());
    putText(a.get(), 1, "changed");
    EXPECT_EQ(contentOf(b.get()), "one,two,");
    ArrayAssign(b.get(), b.get());
    EXPECT_EQ(contentOf(b.get()), "one,two,");
}

TEST_F(Arrays, TagsAreComparedBeforeDimensionsAndDimensionsBeforeCounts) {
    ArrayValue integers = tens(1, 3), reals, wide, realWide;
    ArrayInit(reals.get(), KindReal, 1, 3);
    ArrayInit(wide.get(), KindInteger, 1, 2, 1, 2, none, none, nullptr);
    ArrayInit(realWide.get(), KindReal, 1, 2, 1, 2, none, none, nullptr);
    ArrayAssign(integers.get(), reals.get());
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    ArrayAssign(integers.get(), realWide.get());
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    ArrayAssign(integers.get(), wide.get());
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
    EXPECT_EQ(contentOf(integers.get()), "10,20,30,");
    ArrayValue dynamic = tens(1, 3, DYNAMIC_BOUNDS);
    ArrayAssign(dynamic.get(), wide.get());
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
    ArrayAssign(dynamic.get(), reals.get());
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    EXPECT_EQ(contentOf(dynamic.get()), "10,20,30,");
}

TEST_F(Arrays, WhatHasNoShapeGoesOnlyToWhatHasNone) {
    ArrayValue none1, none2, shaped = tens(1, 3, DYNAMIC_BOUNDS), fixed = tens(1, 3);
    ArrayInitDynamic(none1.get(), KindInteger, nullptr);
    ArrayInitDynamic(none2.get(), KindInteger, nullptr);
    ArrayAssign(none1.get(), none2.get());
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(ArrayDimensions(none1.get()), 0);
    ArrayAssign(shaped.get(), none1.get());
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    ArrayAssign(fixed.get(), none1.get());
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    EXPECT_EQ(contentOf(shaped.get()), "10,20,30,");
    EXPECT_EQ(contentOf(fixed.get()), "10,20,30,");
}

TEST_F(Arrays, ElementsThatDoNotFitAreCutOneByOne) {
    ArrayValue a = texts({"abcdef", "xyz", "123456"}), b = texts({"", "", ""}, 0, 4);
    ArrayAssign(b.get(), a.get());
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(contentOf(b.get()), "abcd,xyz,1234,");
}

// ---- literals ----

TEST_F(Arrays, ALiteralTakesKindAndBoundsFromItsFirstValue) {
    ArrayValue a;
    ArrayInitDynamic(a.get(), KindNone, nullptr);
    const String first("first"), second("second");
    ArrayAutoAssign(a.get(), true, 5, first.get(), KindString);
    EXPECT_EQ(a.get()->tag, KindString);
    EXPECT_EQ(ArrayLowerBound(a.get(), 1), 5);
    EXPECT_EQ(ArrayUpperBound(a.get(), 1), 5);
    ArrayAutoAssign(a.get(), true, 7, second.get(), KindString);
    EXPECT_EQ(contentOf(a.get()), "first,,second,");
    ArrayAutoAssign(a.get(), true, 4, second.get(), KindString);
    EXPECT_EQ(contentOf(a.get()), "second,first,,second,");
    EXPECT_EQ(ArrayLowerBound(a.get(), 1), 4);
    EXPECT_EQ(ErrorCell(), 0);
    expectSound(a.get());
}

TEST_F(Arrays, ALiteralOfEveryKindTakesTheShapeOfItsFirstValue) {
    const ValueModel values[] = {
        model::Number(KindBoolean, 1),
        model::Number(KindEnum, 9),
        model::Number(KindInteger, -5),
        model::Number(KindFixed, 15000),
        model::Real(0.5),
        model::Text("abc", 7),
        model::Record({model::Number(KindBoolean, 1), model::Text("in", 4)}),
        model::Record({model::Text("in")}, KindUnion),
        model::Array({{0, 1}}, model::Number(KindReal, 0), {model::Real(1), model::Real(2)})};
    for (ValueModel m : values) {
        if (m.kind == KindArray) m.element = {model::Real(0)};
        SCOPED_TRACE(m.kind);
        OddValue v(m);
        ArrayValue a;
        ArrayInitDynamic(a.get(), KindNone, nullptr);
        ArrayAutoAssign(a.get(), false, 1, v.at(), m.kind);
        ArrayAutoAssign(a.get(), true, 2, v.at(), m.kind);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(model::Differs(model::Array({{1, 2}}, m, {m, m}, DYNAMIC_BOUNDS), a.get()), "");
        expectSound(a.get());
    }
}

TEST_F(Arrays, WideningWithoutAppendEmptiesTheOtherElements) {
    ArrayValue a = tens(1, 3, DYNAMIC_BOUNDS);
    const std::int32_t value = 7;
    ArrayAutoAssign(a.get(), false, 2, &value, KindInteger);  // nothing widens
    EXPECT_EQ(contentOf(a.get()), "10,7,30,");
    ArrayAutoAssign(a.get(), false, 5, &value, KindInteger);
    EXPECT_EQ(contentOf(a.get()), "0,0,0,0,7,");
    ArrayAutoAssign(a.get(), true, -1, &value, KindInteger);
    EXPECT_EQ(contentOf(a.get()), "7,0,0,0,0,0,7,");
}

TEST_F(Arrays, ATypedDynamicArrayWithoutBoundsGetsThatSubscript) {
    ArrayValue a;
    ArrayInitDynamic(a.get(), KindInteger, nullptr);
    const std::int32_t value = 7;
    ArrayAutoAssign(a.get(), false, -3, &value, KindInteger);
    EXPECT_EQ(ArrayLowerBound(a.get(), 1), -3);
    EXPECT_EQ(ArrayUpperBound(a.get(), 1), -3);
    EXPECT_EQ(contentOf(a.get()), "7,");
}

TEST_F(Arrays, ALiteralNeverChangesFixedBounds) {
    ArrayValue a = tens(1, 3);
    std::int32_t value = 7;
    ArrayAutoAssign(a.get(), true, 3, &value, KindInteger);
    EXPECT_EQ(contentOf(a.get()), "10,20,7,");
    for (const std::int32_t i : {0, 4, INT32_MIN, INT32_MAX}) {
        ArrayAutoAssign(a.get(), true, i, &value, KindInteger);
        EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS) << i;
    }
    EXPECT_EQ(contentOf(a.get()), "10,20,7,");
}

TEST_F(Arrays, ALiteralIsCheckedAsAnyWriting) {
    ArrayValue a = tens(1, 3, DYNAMIC_BOUNDS), wide, fixed = tens(1, 3);
    ArrayInitDynamic(wide.get(), KindInteger, nullptr);
    ArrayRedim(wide.get(), 1, 2, 1, 2, none, none, false);
    const std::int32_t value = 7;
    const double real = 7;
    ArrayAutoAssign(nullptr, true, 1, nullptr, KindInteger);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    ArrayAutoAssign(wide.get(), true, 1, nullptr, KindInteger);
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
    ArrayAutoAssign(a.get(), true, 9, nullptr, KindInteger);
    EXPECT_EQ(takeError(), ERR_COMPONENT_INVALID);
    ArrayAutoAssign(a.get(), true, 9, &value, static_cast<Kind>(13));
    EXPECT_EQ(takeError(), ERR_COMPONENT_INVALID);
    ArrayAutoAssign(fixed.get(), true, 9, &real, KindReal);
    EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
    ArrayAutoAssign(fixed.get(), true, 1, &real, KindReal);
    EXPECT_EQ(takeError(), ERR_COMPONENT_TYPE);
    ArrayAutoAssign(a.get(), true, 9, &real, KindReal);
    EXPECT_EQ(takeError(), ERR_COMPONENT_TYPE);
    EXPECT_EQ(contentOf(a.get()), "10,20,30,");
    EXPECT_EQ(contentOf(fixed.get()), "10,20,30,");
}

TEST_F(Arrays, AValueThatIsNoElementWidensNothing) {
    const ValueModel row = model::Record({model::Number(KindInteger, 1)});
    OddValue good(row), other(model::Record({model::Text("abc")}));
    const ValueModel whole = model::Array({{1, 2}}, row, {row, row}, DYNAMIC_BOUNDS);
    for (const bool append : {true, false}) {
        OddValue a(whole), untyped(KindArray);
        ArrayAutoAssign(a.as<ArrayDescriptor>(), append, 5, other.at(), KindRecord);
        EXPECT_EQ(takeError(), ERR_COMPONENT_TYPE);
        EXPECT_EQ(model::Differs(whole, a.at()), "");
        // What says that it is a record, and is none.
        const String text("abc");
        ArrayAutoAssign(a.as<ArrayDescriptor>(), append, 5, text.get(), KindRecord);
        EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
        EXPECT_EQ(model::Differs(whole, a.at()), "");
        ArrayInitDynamic(untyped.as<ArrayDescriptor>(), KindNone, nullptr);
        ArrayAutoAssign(untyped.as<ArrayDescriptor>(), append, 5, good.at(), KindString);
        EXPECT_EQ(takeError(), ERR_STRING_TYPE);
        EXPECT_EQ(untyped.as<ArrayDescriptor>()->tag, 0);
        EXPECT_EQ(ArrayDimensions(untyped.as<ArrayDescriptor>()), 0);
    }
}

TEST_F(Arrays, ALiteralMayHoldOneOfItsOwnElements) {
    ArrayValue a = texts({"one", "two"}, DYNAMIC_BOUNDS);
    ArrayAutoAssign(a.get(), true, 4, ArrayRef(a.get(), 1), KindString);
    EXPECT_EQ(contentOf(a.get()), "one,two,,one,");
    ArrayAutoAssign(a.get(), false, 5, ArrayRef(a.get(), 2), KindString);
    EXPECT_EQ(contentOf(a.get()), ",,,,two,");
}

TEST_F(Arrays, ASubscriptThatNoArrayCanHaveWidensNothing) {
    ArrayValue a = tens(1, 3, DYNAMIC_BOUNDS), untyped;
    ArrayInitDynamic(untyped.get(), KindNone, nullptr);
    const std::int32_t value = 7;
    for (const std::int32_t i : {-32769, 32768, INT32_MIN, INT32_MAX, none}) {
        ArrayAutoAssign(a.get(), true, i, &value, KindInteger);
        EXPECT_NE(takeError(), 0) << i;
        EXPECT_EQ(contentOf(a.get()), "10,20,30,");
        ArrayAutoAssign(untyped.get(), true, i, &value, KindInteger);
        EXPECT_NE(takeError(), 0) << i;
        EXPECT_EQ(ArrayDimensions(untyped.get()), 0);
    }
}

}  // namespace
