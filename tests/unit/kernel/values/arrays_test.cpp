// SPDX-License-Identifier: Apache-2.0
//
// How arrays are made, and their elements.
#include "unit/kernel/arrays_fixture.h"

#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>

using namespace tarn;

namespace {

// ---- making ----

TEST_F(Arrays, AFixedArrayHasAllItsElementsAtOnce) {
    ArrayValue a;
    ArrayInit(a.get(), KindInteger, -1, 3, 1, 2, 0, 0, nullptr);
    const ArrayDescriptor& d = *a.get();
    EXPECT_EQ(d.size, 5 * 2 * 4);
    EXPECT_EQ(d.tag, KindInteger);
    EXPECT_NE(d.data, 0U);
    EXPECT_EQ(d.maxlength, 0);
    constexpr ArrayBounds expected[] = {{-1, 3}, {1, 2}, {0, 0}};
    EXPECT_EQ(std::memcmp(d.bounds, expected, sizeof expected), 0);
    EXPECT_EQ(d.prototype, 0U);
    EXPECT_EQ(ArrayElementCount(&d), 10);
    EXPECT_EQ(ArrayDimensions(&d), 3);
    EXPECT_EQ(CountLeaks().blocks, 1);
    EXPECT_EQ(CountLeaks().bytes, 40);
    for (int i = 0; i < 40; ++i) EXPECT_EQ(At(d.data)[i], 0);
    expectSound(&d);
}

TEST_F(Arrays, EveryKindOfNumberTakesItsSize) {
    for (std::int32_t kind = KindBoolean; kind <= KindReal; ++kind) {
        ArrayValue a;
        std::memset(a.get(), 0xAA, sizeof(ArrayDescriptor));
        ArrayInit(a.get(), static_cast<Kind>(kind), 1, 7);
        EXPECT_EQ(a.get()->size, 7 * KindSize[kind]);
        EXPECT_EQ(a.get()->tag, kind);
        EXPECT_EQ(a.get()->bounds[1].lower, none);
        EXPECT_EQ(a.get()->bounds[1].upper, none);
        EXPECT_EQ(a.get()->bounds[2].lower, none);
        EXPECT_EQ(a.get()->bounds[2].upper, none);
    }
}

TEST_F(Arrays, ElementsHaveTheShapeOfThePrototypeAndNotItsContent) {
    ArrayValue a;
    {
        String like(5);
        like.assign("abc");
        ArrayInit(a.get(), KindString, 1, 3, like.get());
        EXPECT_EQ(like.view(), "abc");
    }
    EXPECT_EQ(model::Differs(model::Array({{1, 3}}, model::Text("", 5)), a.get()), "");
    putText(a.get(), 2, "12345678");
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(textAt(a.get(), 2), "12345");
    EXPECT_EQ(textAt(a.get(), 3), "");
}

TEST_F(Arrays, ADynamicArrayIsBornWithoutBounds) {
    ArrayValue a;
    std::memset(a.get(), 0xAA, sizeof(ArrayDescriptor));
    const String like(5);
    ArrayInitDynamic(a.get(), KindString, like.get());
    EXPECT_EQ(model::Differs(model::Array({}, model::Text("", 5), {}, DYNAMIC_BOUNDS), a.get()), "");
    EXPECT_EQ(ArrayDimensions(a.get()), 0);
    EXPECT_EQ(ArrayElementCount(a.get()), 0);
    EXPECT_EQ(a.get()->data, 0U);
    EXPECT_EQ(ErrorCell(), 0);
    expectSound(a.get());
}

TEST_F(Arrays, AnUntypedArrayIsAnEmptyArray) {
    ArrayValue a;
    ArrayInitDynamic(a.get(), KindNone, nullptr);
    EXPECT_EQ(a.get()->tag, 0);
    EXPECT_EQ(a.get()->maxlength, DYNAMIC_BOUNDS);
    EXPECT_EQ(KindOf(a.get()), KindArray);
    EXPECT_EQ(ArrayDimensions(a.get()), 0);
    EXPECT_EQ(ErrorCell(), 0);
    expectSound(a.get());
}

TEST_F(Arrays, BoundsThatCannotBeAre760AndLeaveAZeroDescriptor) {
    constexpr std::int32_t rows[][6] = {
        {5, 1, none, none, none, none},
        {-32769, 1, none, none, none, none},
        {1, 32768, none, none, none, none},
        {32768, 32768, none, none, none, none},
        {none, none, none, none, none, none},
        {none, 1, none, none, none, none},
        {1, none, none, none, none, none},
        {none, none, 1, 2, none, none},
        {1, 2, none, none, 1, 2},
        {1, 2, 2, 1, none, none},
        {1, 2, 1, none, none, none},
        {1, 2, none, 1, none, none},
        {1, 2, 1, 2, 3, 2},
        {1, 2, 1, 2, -32769, 2},
        {1, 2, 1, 2, 1, 32768},
        {1, 2, 1, 2, none, 1},
        {1, 2, 1, 2, 1, none},
        {UNBOUNDED, UNBOUNDED, none, none, none, none},
        {INT32_MIN, INT32_MAX, none, none, none, none},
        {INT32_MAX, INT32_MIN, none, none, none, none},
        {DYNAMIC_BOUNDS, DYNAMIC_BOUNDS, none, none, none, none},
    };
    for (const auto& b : rows) {
        ArrayDescriptor a;
        std::memset(&a, 0xAA, sizeof a);
        ArrayInit(&a, KindInteger, b[0], b[1], b[2], b[3], b[4], b[5], nullptr);
        EXPECT_EQ(takeError(), ERR_ARRAY_TYPE) << b[0] << ' ' << b[1] << ' ' << b[2] << ' ' << b[3];
        EXPECT_TRUE(isZero(a));
    }
}

TEST_F(Arrays, KindsAndPrototypesThatCannotBeAre760) {
    const String text;
    OddValue record(model::Record({model::Number(KindInteger, 1)}));
    StringDescriptor malformed{0, 30, 0, UNBOUNDED, 0, 0}, zero{};
    const struct {
        std::int32_t kind;
        const void* prototype;
    } rows[] = {{-1, nullptr},
                {13, nullptr},
                {29, nullptr},
                {KindString, nullptr},
                {KindRecord, nullptr},
                {KindTable, nullptr},
                {KindString, record.at()},
                {KindRecord, text.get()},
                {KindUnion, record.at()},
                {KindString, &malformed},
                {KindString, &zero}};
    for (const auto& row : rows) {
        ArrayDescriptor a;
        std::memset(&a, 0xAA, sizeof a);
        ArrayInit(&a, static_cast<Kind>(row.kind), 1, 2, row.prototype);
        EXPECT_EQ(takeError(), ERR_ARRAY_TYPE) << row.kind;
        EXPECT_TRUE(isZero(a)) << row.kind;
        std::memset(&a, 0xAA, sizeof a);
        ArrayInitDynamic(&a, static_cast<Kind>(row.kind), row.prototype);
        EXPECT_EQ(takeError(), ERR_ARRAY_TYPE) << row.kind;
        EXPECT_TRUE(isZero(a)) << row.kind;
    }
    ArrayDescriptor a;
    ArrayInit(&a, KindNone, 1, 2);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    EXPECT_TRUE(isZero(a));
    ArrayInit(nullptr, KindInteger, 1, 2);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    ArrayInitDynamic(nullptr, KindInteger, nullptr);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
}

TEST_F(Arrays, TheWidestBoundsAreLegal) {
    ArrayValue a;
    ArrayInit(a.get(), KindBoolean, -32768, 32767);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(a.get()->size, 65536);
    const std::uint8_t yes = 1;
    ArrayPut(a.get(), -32768, &yes, KindBoolean);
    ArrayPut(a.get(), 32767, &yes, KindBoolean);
    EXPECT_EQ(At(a.get()->data)[0], 1);
    EXPECT_EQ(At(a.get()->data)[65535], 1);
    ArrayPut(a.get(), -32769, &yes, KindBoolean);
    EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
    ArrayPut(a.get(), 32768, &yes, KindBoolean);
    EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
}

TEST_F(Arrays, AnArrayTakesAtMostOneBlock) {
    {
        ArrayValue a;
        ArrayInit(a.get(), KindBoolean, 1, 32000, 1, 128, none, none, nullptr);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(a.get()->size, MaxBlock);
    }
    constexpr struct {
        Kind kind;
        std::int32_t b[6];
    } rows[] = {
        {KindBoolean, {1, 32000, 1, 129, none, none}},
        {KindReal, {1, 32000, 1, 17, none, none}},
        {KindBoolean, {-32768, 32767, -32768, 32767, none, none}},
        {KindBoolean, {-32768, 32767, -32768, 32767, -32768, 32767}},
        {KindInteger, {-32768, 32767, -16384, 16383, -1024, 1023}},  // 2 to the 42nd
    };
    for (const auto& row : rows) {
        ArrayDescriptor a;
        ArrayInit(&a, row.kind, row.b[0], row.b[1], row.b[2], row.b[3], row.b[4], row.b[5], nullptr);
        EXPECT_EQ(takeError(), ERR_BLOCK_TOO_LARGE);
        EXPECT_TRUE(isZero(a));
    }
    // What cannot be is said before what is too large.
    ArrayDescriptor a;
    ArrayInit(&a, KindBoolean, -32768, 32767, -32768, 32767, 2, 1, nullptr);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
}

TEST_F(Arrays, AnArrayThatFailedToBeMadeIsNoArray) {
    ArrayDescriptor a;
    ArrayInit(&a, KindInteger, 5, 1);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    putInteger(&a, 1, 7);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    EXPECT_EQ(integerAt(&a, 1), 0);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    ArrayRedim(&a, 1, 2, true);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    EXPECT_EQ(ArrayRef(&a, 1), nullptr);
    EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
    EXPECT_TRUE(isZero(a));
}

// ---- elements ----

TEST_F(Arrays, ElementsStandRowByRowTheLastSubscriptFastest) {
    ArrayValue a;
    ArrayInit(a.get(), KindInteger, -1, 1, 0, 3, 5, 6, nullptr);
    std::int32_t n = 0;
    for (std::int32_t i = -1; i <= 1; ++i) {
        for (std::int32_t j = 0; j <= 3; ++j) {
            for (std::int32_t k = 5; k <= 6; ++k, ++n) {
                EXPECT_EQ(ArrayRef3(a.get(), i, j, k), At(a.get()->data) + n * 4);
                const std::int32_t value = n * n;
                ArrayPut3(a.get(), i, j, k, &value, KindInteger);
                EXPECT_EQ(ReadAt<std::int32_t>(At(a.get()->data) + n * 4), value);
            }
        }
    }
    std::int32_t value = 0;
    ArrayGet3(a.get(), 0, 2, 6, &value, KindInteger);
    EXPECT_EQ(value, (((0 + 1) * 4 + 2) * 2 + 1) * (((0 + 1) * 4 + 2) * 2 + 1));
}

TEST_F(Arrays, TwoSubscriptsReachATwoDimensionalArray) {
    ArrayValue a;
    ArrayInit(a.get(), KindReal, 1, 3, 1, 4, none, none, nullptr);
    const double pi = 3.25;
    ArrayPut2(a.get(), 2, 3, &pi, KindReal);
    EXPECT_EQ(ReadAt<double>(At(a.get()->data) + (1 * 4 + 2) * 8), pi);
    EXPECT_EQ(ArrayRef2(a.get(), 2, 3), At(a.get()->data) + 48);
    double back = 0;
    ArrayGet2(a.get(), 2, 3, &back, KindReal);
    EXPECT_EQ(back, pi);
}

TEST_F(Arrays, EveryKindIsPutAndGotByCopy) {
    const ValueModel values[] = {
        model::Number(KindBoolean, 1),
        model::Number(KindEnum, 200),
        model::Number(KindInteger, INT32_MIN),
        model::Number(KindFixed, INT64_MIN),
        model::Real(-1e300),
        model::Text("a text"),
        model::Text("cap", 10),
        model::Record({model::Number(KindBoolean, 1), model::Text("inside"), model::Real(2.5)}),
        model::Record({model::Number(KindInteger, 5), model::Text("u")}, KindUnion),
        model::Array({{1, 3}}, model::Text(""), {model::Text("p"), model::Text(""), model::Text("qr")}),
    };
    for (const ValueModel& m : values) {
        SCOPED_TRACE(m.kind);
        ArrayValue a;
        OddValue out(model::Emptied(m));
        {
            OddValue in(m);
            ArrayInit(a.get(), m.kind, 1, 3, IsAdtKind(m.kind) ? in.at() : nullptr);
            ArrayPut(a.get(), 2, in.at(), m.kind);
            EXPECT_EQ(model::Differs(m, in.at()), "");
        }
        ArrayGet(a.get(), 2, out.at(), m.kind);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(model::Differs(m, out.at()), "");
        const ValueModel whole = model::Array({{1, 3}}, m, {model::Emptied(m), m, model::Emptied(m)});
        EXPECT_EQ(model::Differs(whole, a.get()), "");
        expectSound(a.get());
    }
}

TEST_F(Arrays, ARecordWithoutAShapeTakesThatOfTheElement) {
    const ValueModel m = model::Record({model::Number(KindInteger, 3), model::Text("abc")});
    OddValue in(m), out(KindRecord);
    ArrayValue a;
    ArrayInit(a.get(), KindRecord, 0, 0, in.at());
    ArrayPut(a.get(), 0, in.at(), KindRecord);
    ArrayGet(a.get(), 0, out.at(), KindRecord);
    EXPECT_EQ(model::Differs(m, out.at()), "");
}

TEST_F(Arrays, ARecordOfAnotherShapeIsNoElement) {
    OddValue in(model::Record({model::Number(KindInteger, 3), model::Text("abc")})),
        other(model::Record({model::Text("abc"), model::Number(KindInteger, 3)})),
        shorter(model::Record({model::Number(KindInteger, 3)}));
    ArrayValue a;
    ArrayInit(a.get(), KindRecord, 1, 2, in.at());
    ArrayPut(a.get(), 1, in.at(), KindRecord);
    for (OddValue* bad : {&other, &shorter}) {
        ArrayPut(a.get(), 1, bad->at(), KindRecord);
        EXPECT_EQ(takeError(), ERR_COMPONENT_TYPE);
        OddValue out(KindRecord);
        ArrayGet(a.get(), 1, out.at(), KindRecord);
        EXPECT_EQ(
            model::Differs(model::Record({model::Number(KindInteger, 3), model::Text("abc")}), out.at()), "");
    }
}

TEST_F(Arrays, ADescriptorOfAnotherKindThanItSaysChangesNothing) {
    ArrayValue a = texts({"one", "two"});
    StringDescriptor zero{};
    ArrayPut(a.get(), 1, &zero, KindString);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    OddValue record(model::Record({model::Number(KindInteger, 3)}));
    ArrayPut(a.get(), 1, record.at(), KindString);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    EXPECT_EQ(contentOf(a.get()), "one,two,");
    ArrayValue records;
    ArrayInit(records.get(), KindRecord, 1, 1, record.at());
    const String text("x");
    ArrayPut(records.get(), 1, text.get(), KindRecord);
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    expectSound(records.get());
}

TEST_F(Arrays, ATextLongerThanTheOutputIsCut) {
    ArrayValue a = texts({"abcdef"});
    String out(4);
    ArrayGet(a.get(), 1, out.get(), KindString);
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(out.view(), "abcd");
}

TEST_F(Arrays, AnElementMayBePutInItsOwnPlaceAndInAnother) {
    ArrayValue a = texts({"one", "two", "three"});
    ArrayPut(a.get(), 1, ArrayRef(a.get(), 1), KindString);
    EXPECT_EQ(contentOf(a.get()), "one,two,three,");
    ArrayPut(a.get(), 1, ArrayRef(a.get(), 3), KindString);
    ArrayGet(a.get(), 2, ArrayRef(a.get(), 3), KindString);
    EXPECT_EQ(contentOf(a.get()), "three,two,two,");
}

}  // namespace
