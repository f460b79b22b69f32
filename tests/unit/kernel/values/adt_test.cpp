// SPDX-License-Identifier: Apache-2.0
//
// What holds for values of every kind: each test runs with each of them.
#include "unit/kernel/adt_fixture.h"

#include "kernel/run/errors.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/arrays.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

using namespace tarn;

namespace {

using namespace tarn::model;

struct Named {
    std::string name;
    ValueModel value;
};

void PrintTo(const Named& named, std::ostream* out) {
    *out << named.name;
}

const std::vector<Named>& values() {
    static const ValueModel texts = Array({{1, 3}}, Text(""), {Text("one"), Text(""), Text("three")}),
                            dynamicTexts =
                                Array({{-1, 0}}, Text(""), {Text("minus"), Text("zero")}, DYNAMIC_BOUNDS);
    static const std::vector<Named> all = {
        {"Boolean", Number(KindBoolean, 1)},
        {"Enum", Number(KindEnum, 255)},
        {"Integer", Number(KindInteger, INT32_MIN)},
        {"Fixed", Number(KindFixed, INT64_MIN)},
        {"Real", Real(-0.1)},
        {"UnboundedString", Text("some text")},
        {"FixedString", Text("abc", 10)},
        {"FullString", Text("abc", 3)},
        {"Record", person("Ada", 36)},
        {"Union", Record({Number(KindInteger, 5), Text("u"), Real(1)}, KindUnion)},
        {"EmptyRecord", Record({})},
        {"Set", Set(-10, 10, {-10, -6, 6, 10})},
        {"DynamicSet", Set(1, 100, {1, 50, 100}, DYNAMIC_BOUNDS)},
        {"RecordOfSets", Record({Number(KindBoolean, 1), Set(0, 7, {0, 7}), Set(3, 4, {3}, DYNAMIC_BOUNDS)})},
        {"List", List(Number(KindInteger, 0), {Number(KindInteger, 5), Number(KindInteger, 6)})},
        {"ListWithoutRows", List(Text("", 4), {})},
        {"ListOfTexts", List(Text(""), {Text("one"), Text(""), Text("three")})},
        {"FixedListOfTexts", List(Text(""), {Text("one"), Text("two")}, 4)},
        {"ListOfRecords", List(person("", 0), {person("Bob", 40), person("Eve", 41)})},
        {"RecordOfLists",
         Record({Number(KindBoolean, 1), List(texts, {texts, texts}), List(Real(0), {Real(1)}, 3)})},
        {"ArrayOfLists",
         Array({{1, 2}}, List(Text(""), {}), {List(Text(""), {Text("x")}), List(Text(""), {})})},
        {"Integers",
         Array({{1, 4}}, Number(KindInteger, 0), {Number(KindInteger, 1), Number(KindInteger, 2)})},
        {"Matrix", Array({{0, 1}, {-1, 1}}, Real(0), {Real(1), Real(2), Real(3), Real(4), Real(5), Real(6)})},
        {"Cube", Array({{0, 1}, {1, 1}, {5, 6}}, Number(KindEnum, 0), {Number(KindEnum, 9)})},
        {"Texts", texts},
        {"DynamicTexts", dynamicTexts},
        {"DynamicWithoutBounds", Array({}, Text("", 4), {}, DYNAMIC_BOUNDS)},
        {"ArrayOfRecords", Array({{1, 2}}, person("", 0), {person("Bob", 40), person("Eve", 41)})},
        {"RecordOfArraysOfStrings",
         Record({Number(KindBoolean, 1), texts, dynamicTexts, Number(KindBoolean, 0)})},
        {"ArrayOfArrays", Array({{1, 2}}, texts, {texts, texts})},
        {"RecordInRecord", Record({Number(KindEnum, 3), person("In", 1),
                                   Record({person("Deep", 2), Text("variant", 9)}, KindUnion)})},
    };
    return all;
}

// A copy in which every leaf is another.
ValueModel changed(const ValueModel& value) {
    ValueModel m = value;
    for (ValueModel* leaf : Leaves(m)) Change(*leaf);
    return m;
}

class EveryValue : public Values, public ::testing::WithParamInterface<Named> {
protected:
    [[nodiscard]] const ValueModel& value() const { return GetParam().value; }
    [[nodiscard]] Kind kind() const { return value().kind; }
    // A zero value of kind 6 has no shape that a copy could give it.
    [[nodiscard]] bool takesShape() const { return kind() > KindString; }
    [[nodiscard]] bool bounded() const { return kind() == KindString && value().maxlength != UNBOUNDED; }
};
INSTANTIATE_TEST_SUITE_P(Kinds, EveryValue, ::testing::ValuesIn(values()),
                         [](const auto& info) { return info.param.name; });

TEST_P(EveryValue, IsSound) {
    OddValue v(value());
    EXPECT_EQ(AdtCheck(v.at(), kind()), "");
    EXPECT_EQ(Differs(value(), v.at()), "");
    const HeapUse use = UseOf(value());
    EXPECT_EQ(CountLeaks().bytes, use.bytes);
    EXPECT_EQ(CountLeaks().blocks, use.blocks);
}

TEST_P(EveryValue, IsInitialisedToTheEmptyValueOfTheShape) {
    OddValue like(value()), target(kind());
    std::memset(target.at(), 0xAA, static_cast<std::size_t>(KindSize[kind()]));
    AdtInit(target.at(), like.at(), kind());
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(Differs(Emptied(value()), target.at()), "");
    EXPECT_EQ(Differs(value(), like.at()), "");
    EXPECT_EQ(AdtCheck(target.at(), kind()), "");
    AdtFree(like.at(), kind());
    EXPECT_EQ(Differs(Emptied(value()), target.at()), "");
}

TEST_P(EveryValue, IsFreedWithAllBelowItAndOnlyOnce) {
    OddValue v(value());
    if (!IsAdtKind(kind())) {
        AdtFree(v.at(), kind());
        EXPECT_EQ(Differs(value(), v.at()), "");
        return;
    }
    for (int i = 0; i < 3; ++i) {
        AdtFree(v.at(), kind());
        EXPECT_TRUE(v.isZero());
        EXPECT_EQ(LiveBlocks(), 0);
        EXPECT_EQ(ErrorCell(), 0);
    }
}

TEST_P(EveryValue, IsCopiedDeeplyOverAnotherOfTheSameShape) {
    for (const bool full : {true, false}) {
        OddValue source(value()), target(full ? changed(value()) : Emptied(value()));
        AdtCopy(source.at(), target.at(), kind());
        if (kind() == KindArray && value().bounds[0].lower == NO_DIMENSION) {
            EXPECT_EQ(ErrorCell(), 0);
            continue;
        }
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(Differs(value(), target.at()), "");
        EXPECT_EQ(Differs(value(), source.at()), "");
        AdtFree(source.at(), kind());
        EXPECT_EQ(Differs(value(), target.at()), "");
        EXPECT_EQ(AdtCheck(target.at(), kind()), "");
    }
}

TEST_P(EveryValue, IsCopiedToWhatHasNoShapeYet) {
    for (const std::int32_t flag : {0, 1}) {
        OddValue source(value()), target(kind());
        AdtCopy(source.at(), target.at(), kind(), flag);
        if (kind() == KindString) {
            EXPECT_EQ(takeError(), ERR_STRING_TYPE);
            EXPECT_TRUE(target.isZero());
            continue;
        }
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(Differs(value(), target.at()), "");
        EXPECT_EQ(AdtCheck(target.at(), kind()), "");
    }
}

TEST_P(EveryValue, IsCopiedToItself) {
    OddValue v(value());
    AdtCopy(v.at(), v.at(), kind());
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(Differs(value(), v.at()), "");
}

TEST_P(EveryValue, EqualsItsCopyInAnyCaseOfTheOperator) {
    OddValue a(value()), b(value());
    for (const char* op : {"EQ", "eq", "Eq", "eQ"}) EXPECT_TRUE(AdtCompare(op, a.at(), b.at(), kind())) << op;
    for (const char* op : {"NE", "ne", "GT", "LT", "GE", "LE", "gt", "XX", "E", "", "=", "Q"})
        EXPECT_FALSE(AdtCompare(op, a.at(), b.at(), kind())) << op;
    EXPECT_TRUE(AdtCompare("EQ", a.at(), a.at(), kind()));
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_P(EveryValue, DiffersInEachOfItsParts) {
    ValueModel m = value();
    OddValue a(value());
    const std::size_t leaves = Leaves(m).size();
    for (std::size_t i = 0; i < leaves; ++i) {
        ValueModel other = value();
        Change(*Leaves(other)[i]);
        OddValue b(other);
        EXPECT_FALSE(AdtCompare("EQ", a.at(), b.at(), kind())) << "leaf " << i;
        EXPECT_TRUE(AdtCompare("NE", a.at(), b.at(), kind())) << "leaf " << i;
        EXPECT_TRUE(AdtCompare("ne", b.at(), a.at(), kind())) << "leaf " << i;
        for (const char* op : {"GT", "LT", "GE", "LE"}) {
            EXPECT_FALSE(AdtCompare(op, a.at(), b.at(), kind())) << op;
            EXPECT_FALSE(AdtCompare(op, b.at(), a.at(), kind())) << op;
        }
        EXPECT_TRUE(AdtSameShape(a.at(), b.at(), kind())) << "leaf " << i;
    }
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_P(EveryValue, IsClearedToTheEmptyValueOfItsShape) {
    OddValue v(value()), like(value());
    AdtClear(v.at(), kind());
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(Differs(Emptied(value()), v.at()), "");
    EXPECT_EQ(AdtCheck(v.at(), kind()), "");
    EXPECT_TRUE(AdtSameShape(v.at(), v.at(), kind()));
    const HeapUse use = UseOf(Emptied(value())), other = UseOf(value());
    EXPECT_EQ(CountLeaks().bytes, use.bytes + other.bytes);
    EXPECT_EQ(CountLeaks().blocks, use.blocks + other.blocks);
}

TEST_P(EveryValue, WithoutMemoryIsNotInitialised) {
    OddValue like(value());
    if (UseOf(Emptied(value())).blocks == 0) return;
    failEveryRequest([&] { return std::make_unique<OddValue>(kind()); },
                     [&](auto& v) {
                         std::memset(v->at(), 0xAA, static_cast<std::size_t>(KindSize[kind()]));
                         AdtInit(v->at(), like.at(), kind());
                     },
                     [&](auto& v, bool failed) {
                         EXPECT_EQ(v->isZero(), failed);
                         if (!failed) {
                             EXPECT_EQ(Differs(Emptied(value()), v->at()), "");
                         }
                     });
}

// A leaf after a copy that memory cut short: the old, the new, or an unbounded string without its text.
bool isOldOrNew(const ValueModel& before, const ValueModel& after, const void* at);

bool partsAreOldOrNew(const ValueModel& before, const ValueModel& after, const void* at) {
    const char* part = At(ReadAt<DescriptorHead>(at).data);
    for (std::size_t i = 0; i < after.parts.size(); ++i) {
        if (!isOldOrNew(before.parts[i], after.parts[i], part)) return false;
        part += KindSize[after.parts[i].kind];
    }
    return true;
}

bool isOldOrNew(const ValueModel& before, const ValueModel& after, const void* at) {
    if (Differs(before, at).empty() || Differs(after, at).empty()) return true;
    if (after.kind == KindString && after.maxlength == UNBOUNDED) return Differs(Text(""), at).empty();
    const bool mixes = after.kind == KindRecord || after.kind == KindUnion ||
                       (after.kind == KindArray && after.maxlength == 0);
    return mixes && partsAreOldOrNew(before, after, at);
}

TEST_P(EveryValue, WithoutMemoryHasEachFieldOldOrNew) {
    const ValueModel old = changed(value());
    OddValue source(value());
    for (std::int64_t n = 0; n < 1000; ++n) {
        SCOPED_TRACE("request " + std::to_string(n));
        OddValue target(old);
        FailAllocation(n);
        AdtCopy(source.at(), target.at(), kind());
        FailAllocation(-1);
        const std::int32_t error = takeError();
        EXPECT_EQ(AdtCheck(target.at(), kind()), "");
        EXPECT_TRUE(isOldOrNew(old, value(), target.at())) << Differs(value(), target.at());
        EXPECT_EQ(Differs(value(), source.at()), "");
        if (error == 0) {
            EXPECT_EQ(Differs(value(), target.at()), "");
            return;
        }
        EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
    }
    FAIL();
}

TEST_P(EveryValue, WithoutMemoryATargetWithoutShapeStaysSound) {
    if (!takesShape()) return;
    OddValue source(value());
    const std::int64_t blocks = LiveBlocks();
    for (std::int64_t n = 0; n < 1000; ++n) {
        SCOPED_TRACE("request " + std::to_string(n));
        std::int32_t error = 0;
        {
            OddValue target(kind());
            FailAllocation(n);
            AdtCopy(source.at(), target.at(), kind());
            FailAllocation(-1);
            error = takeError();
            EXPECT_EQ(AdtCheck(target.at(), kind()), "");
            if (error == 0) {
                EXPECT_EQ(Differs(value(), target.at()), "");
            }
        }
        EXPECT_EQ(LiveBlocks(), blocks);
        if (error == 0) return;
        EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
    }
    FAIL();
}

TEST_P(EveryValue, WithoutMemoryIsNotCleared) {
    for (std::int64_t n = 0; n < 1000; ++n) {
        OddValue v(value());
        FailAllocation(n);
        AdtClear(v.at(), kind());
        FailAllocation(-1);
        const std::int32_t error = takeError();
        EXPECT_EQ(Differs(error != 0 ? value() : Emptied(value()), v.at()), "") << n;
        if (error == 0) return;
        EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
    }
    FAIL();
}

TEST_P(EveryValue, WorksWithMemoryCheckingOffToo) {
    SetMemoryChecking(false);
    OddValue source(value()), target(changed(value())), fresh(kind());
    AdtCopy(source.at(), target.at(), kind());
    EXPECT_EQ(Differs(value(), target.at()), "");
    AdtInit(fresh.at(), source.at(), kind());
    EXPECT_EQ(Differs(Emptied(value()), fresh.at()), "");
    AdtClear(target.at(), kind());
    EXPECT_EQ(Differs(Emptied(value()), target.at()), "");
    EXPECT_EQ(ErrorCell(), 0);
}

}  // namespace
