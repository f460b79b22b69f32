// SPDX-License-Identifier: Apache-2.0
//
// What is checked when an element is asked for or put, and in which order.
#include "unit/kernel/arrays_fixture.h"

#include "kernel/values/arrays.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

using namespace tarn;

namespace {

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
    const std::int32_t more = dimensions > 1 ? 1 : NO_DIMENSION, most = dimensions > 2 ? 1 : NO_DIMENSION;
    ArrayInit(a, KindInteger, 1, 3, more, more == NO_DIMENSION ? NO_DIMENSION : 3, most,
              most == NO_DIMENSION ? NO_DIMENSION : 3, nullptr);
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

}  // namespace
