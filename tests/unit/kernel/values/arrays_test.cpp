// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/arrays.h"

#include "kernel/run/errors.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

using namespace tarn;

namespace {

constexpr std::int32_t none = NO_DIMENSION;
constexpr ArrayDescriptor zeroArray{};

bool isZero(const ArrayDescriptor& a) {
    return std::memcmp(&a, &zeroArray, sizeof a) == 0;
}

class Arrays : public Values {
protected:
    static void putInteger(ArrayDescriptor* a, std::int32_t i, std::int32_t value) {
        ArrayPut(a, i, &value, KindInteger);
    }
    static std::int32_t integerAt(const ArrayDescriptor* a, std::int32_t i) {
        std::int32_t value = -77;
        ArrayGet(a, i, &value, KindInteger);
        return value;
    }
    static void putText(ArrayDescriptor* a, std::int32_t i, std::string_view text) {
        const String s(text);
        ArrayPut(a, i, s.get(), KindString);
    }
    static std::string textAt(const ArrayDescriptor* a, std::int32_t i) {
        String s;
        ArrayGet(a, i, s.get(), KindString);
        return std::string(s.view());
    }
    // 1..n with the elements 10, 20, ...
    static ArrayValue tens(std::int32_t lower, std::int32_t upper, std::int32_t maxlength = 0) {
        ArrayValue a;
        if (maxlength == DYNAMIC_BOUNDS) {
            ArrayInitDynamic(a.get(), KindInteger, nullptr);
            ArrayRedim(a.get(), lower, upper, false);
        } else {
            ArrayInit(a.get(), KindInteger, lower, upper);
        }
        for (std::int32_t i = lower; i <= upper; ++i) putInteger(a.get(), i, (i - lower + 1) * 10);
        return a;
    }
    static ArrayValue texts(std::vector<std::string> elements, std::int32_t maxlength = 0,
                            std::int32_t capacity = UNBOUNDED) {
        const String like(capacity);
        ArrayValue a;
        const auto n = static_cast<std::int32_t>(elements.size());
        if (maxlength == DYNAMIC_BOUNDS) {
            ArrayInitDynamic(a.get(), KindString, like.get());
            ArrayRedim(a.get(), 1, n, false);
        } else {
            ArrayInit(a.get(), KindString, 1, n, like.get());
        }
        for (std::int32_t i = 1; i <= n; ++i) putText(a.get(), i, elements[static_cast<std::size_t>(i - 1)]);
        return a;
    }
    static std::string contentOf(const ArrayDescriptor* a) {
        std::string all;
        for (std::int32_t i = a->bounds[0].lower; i <= a->bounds[0].upper; ++i)
            all += (a->tag == KindString ? textAt(a, i) : std::to_string(integerAt(a, i))) + ",";
        return all;
    }
    static void expectSound(const ArrayDescriptor* a) { EXPECT_EQ(AdtCheck(a, KindArray), ""); }
};

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

// ---- the order of checks ----

struct Access {
    const char* name;
    std::int32_t dimensions;
    bool reads;
    std::function<void(ArrayDescriptor*, std::int32_t subscript, void*, Kind)> call;
};

const std::vector<Access>& accesses() {
    static const std::vector<Access> all = {
        {"get", 1, true, [](auto* a, auto i, void* v, Kind k) { ArrayGet(a, i, v, k); }},
        {"get2", 2, true, [](auto* a, auto i, void* v, Kind k) { ArrayGet2(a, 1, i, v, k); }},
        {"get3", 3, true, [](auto* a, auto i, void* v, Kind k) { ArrayGet3(a, 1, 1, i, v, k); }},
        {"put", 1, false, [](auto* a, auto i, void* v, Kind k) { ArrayPut(a, i, v, k); }},
        {"put2", 2, false, [](auto* a, auto i, void* v, Kind k) { ArrayPut2(a, 1, i, v, k); }},
        {"put3", 3, false, [](auto* a, auto i, void* v, Kind k) { ArrayPut3(a, 1, 1, i, v, k); }},
    };
    return all;
}

void make(ArrayDescriptor* a, std::int32_t dimensions) {
    const std::int32_t more = dimensions > 1 ? 1 : none, most = dimensions > 2 ? 1 : none;
    ArrayInit(a, KindInteger, 1, 3, more, more == none ? none : 3, most, most == none ? none : 3, nullptr);
}

// Every set of faults at once: the first in the order is what is reported.
TEST_F(Arrays, TheFirstFaultOfAnAccessIsReported) {
    enum Fault { NoArray = 1, Dimensions = 2, Value = 4, Subscript = 8, Type = 16, AllFaults = 32 };
    for (const Access& access : accesses()) {
        for (int faults = 1; faults < AllFaults; ++faults) {
            SCOPED_TRACE(std::string(access.name) + " with faults " + std::to_string(faults));
            ArrayValue a;
            make(a.get(), (faults & Dimensions) != 0 ? access.dimensions % 3 + 1 : access.dimensions);
            std::memset(At(a.get()->data), 1, static_cast<std::size_t>(a.get()->size));
            const ArrayDescriptor before = *a.get();
            double real = 9;
            std::int32_t integer = 9;
            void* v = (faults & Type) != 0 ? static_cast<void*>(&real) : &integer;
            access.call((faults & NoArray) != 0 ? nullptr : a.get(), (faults & Subscript) != 0 ? 4 : 2,
                        (faults & Value) != 0 ? nullptr : v, (faults & Type) != 0 ? KindReal : KindInteger);
            constexpr std::int32_t errors[] = {ERR_ARRAY_TYPE, ERR_ARRAY_DIMENSION, ERR_COMPONENT_INVALID,
                                               ERR_ARRAY_BOUNDS, ERR_COMPONENT_TYPE};
            int first = 0;
            while ((faults >> first & 1) == 0) ++first;
            EXPECT_EQ(takeError(), errors[first]);
            EXPECT_EQ(std::memcmp(&before, a.get(), sizeof before), 0);
            for (int i = 0; i < before.size; ++i) ASSERT_EQ(At(before.data)[i], 1);
            const bool cleared = access.reads && (faults & Value) == 0;
            EXPECT_EQ(integer, cleared && (faults & Type) == 0 ? 0 : 9);
            EXPECT_EQ(real, cleared && (faults & Type) != 0 ? 0 : 9);
        }
    }
}

TEST_F(Arrays, WhatIsNoArrayIs760) {
    String text("abc");
    ArrayDescriptor zero{}, list{0, KindInteger, 0, UNBOUNDED, {}, 0}, full{0, KindInteger, 0, 5, {}, 0},
        other{0, KindInteger, 0, -5, {}, 0}, record{0, TagRecord, 0, 0, {}, 0},
        set{0, TagString, 0, 0, {}, 0}, unused{0, 13, 0, DYNAMIC_BOUNDS, {}, 0};
    for (ArrayDescriptor* bad :
         {static_cast<ArrayDescriptor*>(nullptr), &zero, &list, &full, &other, &record, &set, &unused}) {
        SCOPED_TRACE(bad == nullptr ? -1 : bad->tag);
        const std::vector<std::function<void()>> calls = {
            [&] { putInteger(bad, 1, 5); },
            [&] { EXPECT_EQ(integerAt(bad, 1), 0); },
            [&] { EXPECT_EQ(ArrayRef(bad, 1), nullptr); },
            [&] { EXPECT_EQ(ArrayRef2(bad, 1, 1), nullptr); },
            [&] { EXPECT_EQ(ArrayRef3(bad, 1, 1, 1), nullptr); },
            [&] { EXPECT_EQ(ArrayLowerBound(bad, 1), 0); },
            [&] { EXPECT_EQ(ArrayUpperBound(bad, 9), 0); },
            [&] { ArrayRedim(bad, 1, 2, true); },
            [&] { ArrayAssign(bad, bad); },
        };
        for (std::size_t i = 0; i < calls.size(); ++i) {
            calls[i]();
            EXPECT_EQ(takeError(), ERR_ARRAY_TYPE) << i;
        }
        ArrayDimensions(bad);
        EXPECT_EQ(ArrayElementCount(bad), 0);
        EXPECT_FALSE(ArrayIsCharacters(bad));
        ClearError();
    }
}

TEST_F(Arrays, AValueThatIsNoneIs610) {
    ArrayValue a = texts({"abc"});
    std::int32_t integer = 5;
    StringDescriptor badTag{0, 30, 0, UNBOUNDED, 0, 0}, negative{0, -1, 0, UNBOUNDED, 0, 0},
        badSize{-1, 29, 0, UNBOUNDED, 0, 0};
    const struct {
        void* value;
        std::int32_t kind;
    } rows[] = {{nullptr, KindString}, {&integer, 0},           {&integer, 13},        {&integer, -1},
                {&badTag, KindString}, {&negative, KindString}, {&badSize, KindString}};
    for (const auto& row : rows) {
        ArrayPut(a.get(), 1, row.value, static_cast<Kind>(row.kind));
        EXPECT_EQ(takeError(), ERR_COMPONENT_INVALID) << row.kind;
        ArrayGet(a.get(), 1, row.value, static_cast<Kind>(row.kind));
        EXPECT_EQ(takeError(), ERR_COMPONENT_INVALID) << row.kind;
    }
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(badTag.tag, 30);
    EXPECT_EQ(badSize.size, -1);
    EXPECT_EQ(textAt(a.get(), 1), "abc");
}

TEST_F(Arrays, EverySubscriptIsCheckedAgainstItsOwnBounds) {
    ArrayValue a;
    ArrayInit(a.get(), KindInteger, 1, 2, 10, 20, -5, -4, nullptr);
    constexpr std::int32_t rows[][3] = {
        {0, 15, -4}, {3, 15, -4}, {1, 9, -4},          {1, 21, -4},        {1, 15, -6},       {1, 15, -3},
        {2, 2, -4},  {10, 1, -5}, {INT32_MIN, 15, -4}, {1, INT32_MAX, -4}, {1, 15, INT32_MIN}};
    for (const auto& row : rows) {
        std::int32_t value = 5;
        ArrayPut3(a.get(), row[0], row[1], row[2], &value, KindInteger);
        EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS) << row[0] << ' ' << row[1] << ' ' << row[2];
        ArrayGet3(a.get(), row[0], row[1], row[2], &value, KindInteger);
        EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
        EXPECT_EQ(value, 0);
        EXPECT_EQ(ArrayRef3(a.get(), row[0], row[1], row[2]), nullptr);
        EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
    }
    for (int i = 0; i < a.get()->size; ++i) EXPECT_EQ(At(a.get()->data)[i], 0);
}

TEST_F(Arrays, AnArrayWithoutBoundsHasNoDimension) {
    ArrayValue a;
    ArrayInitDynamic(a.get(), KindInteger, nullptr);
    putInteger(a.get(), 1, 5);
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
    EXPECT_EQ(integerAt(a.get(), 1), 0);
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
    EXPECT_EQ(ArrayRef(a.get(), 1), nullptr);
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
    EXPECT_EQ(ArrayUpperBound(a.get(), 1), 0);
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
}

TEST_F(Arrays, TheAddressOfAnElementChecksDimensionsBeforeBounds) {
    ArrayValue a = tens(1, 3);
    EXPECT_EQ(ArrayRef(a.get(), 3), At(a.get()->data) + 8);
    EXPECT_EQ(ArrayRef(a.get(), 4), nullptr);
    EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
    EXPECT_EQ(ArrayRef2(a.get(), 4, 1), nullptr);
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
    EXPECT_EQ(ArrayRef3(a.get(), 4, 1, 1), nullptr);
    EXPECT_EQ(takeError(), ERR_ARRAY_DIMENSION);
}

TEST_F(Arrays, AFailedReadingEmptiesItsOutputAndKeepsTheShapeOfIt) {
    ArrayValue a = tens(1, 3);
    const ValueModel outputs[] = {
        model::Number(KindFixed, 5),
        model::Text("abc"),
        model::Text("abc", 5),
        model::Record({model::Number(KindEnum, 5), model::Text("abc", 4)}),
        model::Array({{1, 2}}, model::Text(""), {model::Text("x"), model::Text("y")}),
    };
    for (const ValueModel& m : outputs) {
        for (const std::int32_t subscript : {1, 9}) {
            OddValue out(m);
            ArrayGet(a.get(), subscript, out.at(), m.kind);
            EXPECT_EQ(takeError(), subscript == 9 ? ERR_ARRAY_BOUNDS : ERR_COMPONENT_TYPE);
            EXPECT_EQ(model::Differs(model::Emptied(m), out.at()), "");
        }
        OddValue out(m);
        ArrayGet(nullptr, 1, out.at(), m.kind);
        EXPECT_EQ(takeError(), ERR_ARRAY_TYPE);
        EXPECT_EQ(model::Differs(model::Emptied(m), out.at()), "");
    }
}

TEST_F(Arrays, AnEarlierErrorStandsAndTheChecksHoldAllTheSame) {
    ArrayValue a = tens(1, 3);
    SetError(ERR_ASSERT);
    putInteger(a.get(), 2, 5);
    putInteger(a.get(), 4, 6);
    EXPECT_EQ(integerAt(a.get(), 2), 5);
    EXPECT_EQ(integerAt(a.get(), 4), 0);
    EXPECT_EQ(takeError(), ERR_ASSERT);
}

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
