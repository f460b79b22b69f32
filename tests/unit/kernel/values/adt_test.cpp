// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/adt.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

using namespace tarn;

namespace {

using namespace tarn::model;

constexpr Kind adtKinds[] = {KindString, KindRecord, KindUnion, KindSet, KindArray, KindList, KindTable};

struct Named {
    std::string name;
    ValueModel value;
};

ValueModel person(std::string_view name, std::int32_t age) {
    return Record(
        {Number(KindBoolean, 1), Text(name), Number(KindInteger, age), Text("cap", 12), Real(age * 0.5)});
}

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

// ---- shapes ----

class GenericOperations : public Values {};

TEST_F(GenericOperations, ShapesAreTheSameWhenAllButContentAndCountsIs) {
    const ValueModel integer = Number(KindInteger, 0);
    const struct {
        ValueModel a, b;
        bool same;
    } rows[] = {
        {Number(KindInteger, 1), Number(KindInteger, 2), true},
        {Text("a"), Text("bc"), true},
        {Text("a", 5), Text("bc", 5), true},
        {Text("a", 5), Text("a", 6), false},
        {Text("a", 5), Text("a"), false},
        {Record({integer}), Record({integer}), true},
        {Record({integer}), Record({integer, integer}), false},
        {Record({integer}), Record({Real(0)}), false},
        {Record({Number(KindBoolean, 0)}), Record({Number(KindEnum, 0)}), false},
        {Record({Text("a", 5)}), Record({Text("a", 6)}), false},
        {Record({}), Record({}), true},
        {Record({Record({Text("", 2)})}), Record({Record({Text("", 2)})}), true},
        {Record({Record({Text("", 2)})}), Record({Record({Text("", 3)})}), false},
        {Array({{1, 3}}, integer), Array({{1, 3}}, integer), true},
        {Array({{1, 3}}, integer), Array({{0, 2}}, integer), false},
        {Array({{1, 3}}, integer), Array({{1, 4}}, integer), false},
        {Array({{1, 3}}, integer), Array({{1, 3}, {1, 1}}, integer), false},
        {Array({{1, 3}}, integer), Array({{1, 3}}, Real(0)), false},
        {Array({{1, 3}}, integer), Array({{1, 3}}, integer, {}, DYNAMIC_BOUNDS), false},
        {Array({{1, 3}}, Text("")), Array({{1, 3}}, Text("", 4)), false},
        {Set(1, 9, {1}), Set(1, 9, {}), true},
        {Set(1, 9, {}), Set(1, 8, {}), false},
        {Set(1, 9, {}), Set(1, 9, {}, DYNAMIC_BOUNDS), false},
        {List(integer, {integer}), List(integer, {}), true},
        {List(integer, {}), List(integer, {}, 5), false},
        {List(integer, {}, 4), List(integer, {}, 5), false},
        {List(integer, {}), List(Real(0), {}), false},
        {List(Text(""), {}), List(Text("", 4), {}), false},
        {Array({}, Text(""), {}, DYNAMIC_BOUNDS), Array({}, Text("", 4), {}, DYNAMIC_BOUNDS), false},
        {Array({}, Text(""), {}, DYNAMIC_BOUNDS), Array({}, Text(""), {}, DYNAMIC_BOUNDS), true},
    };
    int n = 0;
    for (const auto& row : rows) {
        OddValue a(row.a), b(row.b);
        EXPECT_EQ(AdtSameShape(a.at(), b.at(), row.a.kind), row.same) << "row " << n;
        EXPECT_EQ(AdtSameShape(b.at(), a.at(), row.a.kind), row.same) << "row " << n;
        EXPECT_EQ(ErrorCell(), 0) << "row " << n;
        ++n;
    }
}

TEST_F(GenericOperations, ArraysOfOtherShapesAreNotEqual) {
    const std::vector<ValueModel> ones(4, Number(KindInteger, 1));
    OddValue a(Array({{1, 4}}, ones[0], ones)), shifted(Array({{0, 3}}, ones[0], ones)),
        square(Array({{1, 2}, {1, 2}}, ones[0], ones)), longer(Array({{1, 5}}, ones[0], ones));
    for (OddValue* b : {&shifted, &square, &longer}) {
        EXPECT_FALSE(AdtCompare("EQ", a.at(), b->at(), KindArray));
        EXPECT_TRUE(AdtCompare("NE", a.at(), b->at(), KindArray));
    }
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(GenericOperations, StringsCompareByTextAndNotByCapacity) {
    OddValue a(Text("abc")), b(Text("abc", 5)), c(Text("abd", 5)), d(Text("ab"));
    EXPECT_TRUE(AdtCompare("EQ", a.at(), b.at(), KindString));
    EXPECT_FALSE(AdtCompare("EQ", a.at(), c.at(), KindString));
    EXPECT_TRUE(AdtCompare("NE", a.at(), d.at(), KindString));
    EXPECT_FALSE(AdtCompare("GT", c.at(), a.at(), KindString));
    EXPECT_FALSE(AdtCompare("GE", a.at(), a.at(), KindString));
}

TEST_F(GenericOperations, RealsCompareByExactValue) {
    const double a = 0.1 + 0.2, b = 0.3, zero = 0.0, minusZero = -0.0;
    EXPECT_FALSE(AdtCompare("EQ", &a, &b, KindReal));
    EXPECT_TRUE(AdtCompare("NE", &a, &b, KindReal));
    EXPECT_TRUE(AdtCompare("EQ", &zero, &minusZero, KindReal));
}

// ---- bounded targets ----

TEST_F(GenericOperations, ABoundedTargetMustHoldWhatComes) {
    OddValue text(Text("abcdef")), small(Text("", 4));
    AdtCopy(text.at(), small.at(), KindString);
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(Differs(Text("abcd", 4), small.at()), "");
    const std::vector<ValueModel> ones(3, Number(KindInteger, 1));
    const ValueModel two = Array({{1, 2}}, ones[0]);
    OddValue three(Array({{1, 3}}, ones[0], ones)), fixed(two);
    AdtCopy(three.at(), fixed.at(), KindArray);
    EXPECT_EQ(takeError(), ERR_FIXED_ARRAY);
    EXPECT_EQ(Differs(two, fixed.at()), "");
}

// With memory checking on the copy is compared: that it has bounds of its own is no difference.
TEST_F(GenericOperations, AnArrayOfOtherBoundsIsCopiedInStorageOrder) {
    const std::vector<ValueModel> texts = {Text("a"), Text("b"), Text("c")};
    OddValue source(Array({{1, 3}}, texts[0], texts)), target(Array({{0, 2}}, texts[0]));
    AdtCopy(source.at(), target.at(), KindArray);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(Differs(Array({{0, 2}}, texts[0], texts), target.at()), "");
}

TEST_F(GenericOperations, ADynamicTargetTakesTheBounds) {
    const std::vector<ValueModel> texts = {Text("a"), Text("b"), Text("c")};
    for (const ArrayBounds& bounds : {ArrayBounds{1, 9}, ArrayBounds{NO_DIMENSION, NO_DIMENSION}}) {
        OddValue source(Array({{5, 7}}, texts[0], texts)),
            target(Array({bounds}, texts[0], {}, DYNAMIC_BOUNDS));
        AdtCopy(source.at(), target.at(), KindArray);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(Differs(Array({{5, 7}}, texts[0], texts, DYNAMIC_BOUNDS), target.at()), "");
    }
}

TEST_F(GenericOperations, RecordsOfOtherFieldsAre611AndChangeNothing) {
    const ValueModel target = Record({Number(KindInteger, 1), Text("abc")});
    const ValueModel sources[] = {
        Record({Text("abc"), Number(KindInteger, 1)}),
        Record({Number(KindInteger, 1)}),
        Record({Number(KindInteger, 1), Text("abc"), Real(1)}),
        Record({}),
    };
    for (const ValueModel& m : sources) {
        OddValue source(m), to(target);
        AdtCopy(source.at(), to.at(), KindRecord);
        EXPECT_EQ(takeError(), ERR_COMPONENT_TYPE);
        EXPECT_EQ(Differs(target, to.at()), "");
        EXPECT_FALSE(AdtCompare("EQ", source.at(), to.at(), KindRecord));
        EXPECT_TRUE(AdtCompare("NE", source.at(), to.at(), KindRecord));
        EXPECT_EQ(ErrorCell(), 0);
    }
}

// The misfit stands behind, or below, a field that fits.
TEST_F(GenericOperations, AMisfitDeepInAValueChangesNothingOfIt) {
    const ValueModel one = Number(KindInteger, 1), two = Number(KindInteger, 2);
    const auto record = [](ValueModel inner, const ValueModel& number) {
        return Record({number, Record({number, std::move(inner)})});
    };
    const struct {
        ValueModel source, target;
        std::int32_t error;
    } rows[] = {
        {Record({Real(1)}), Record({Text("abc")}), ERR_COMPONENT_TYPE},
        {Array({{1, 3}}, two), Array({{1, 2}}, one), ERR_FIXED_ARRAY},
        {Array({{1, 2}}, Real(0)), Array({{1, 2}}, one), ERR_ARRAY_TYPE},
        {Array({{1, 2}, {1, 1}}, two), Array({{1, 2}}, one), ERR_ARRAY_DIMENSION},
        {List(two, {two, two}), List(one, {one}, 1), ERR_FIXED_LIST},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.error);
        const ValueModel target = record(row.target, one);
        OddValue from(record(row.source, two)), to(target);
        AdtCopy(from.at(), to.at(), KindRecord);
        EXPECT_EQ(takeError(), row.error);
        EXPECT_EQ(Differs(target, to.at()), "");
        const ValueModel array = Array({{1, 2}}, target, {target, target});
        OddValue elements(array);
        ArrayPut(elements.as<ArrayDescriptor>(), 1, from.at(), KindRecord);
        EXPECT_NE(takeError(), 0);
        EXPECT_EQ(Differs(array, elements.at()), "");
    }
}

TEST_F(GenericOperations, ARecordIsPutIntoAFieldOfItsOwnThatHasNoShapeYet) {
    OddValue r(KindRecord);
    RecordInit(r.as<RecordDescriptor>(), TagRecord, MakeFieldKinds({KindInteger, KindRecord}));
    RecordPut(r.as<RecordDescriptor>(), 2, r.at(), KindRecord);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(AdtCheck(r.at(), KindRecord), "");
    EXPECT_EQ(
        RecordFieldCount(static_cast<RecordDescriptor*>(RecordFieldAddress(r.as<RecordDescriptor>(), 2))), 2);
}

// By its tag this is told to be an array, but no array has elements of that kind.
TEST_F(GenericOperations, AnArrayWithTheTagOfAFileListIsNone) {
    for (std::int32_t tag = 17; tag <= 28; ++tag) {
        for (const std::int32_t maxlength : {0, DYNAMIC_BOUNDS}) {
            ArrayDescriptor a{
                0, tag, 0, maxlength, {{1, 2}, {NO_DIMENSION, NO_DIMENSION}, {NO_DIMENSION, NO_DIMENSION}},
                0};
            const ArrayDescriptor before = a;
            ArrayDescriptor target{};
            EXPECT_NE(AdtCheck(&a, KindArray), "") << tag;
            EXPECT_FALSE(AdtCompare("EQ", &a, &a, KindArray));
            EXPECT_EQ(takeError(), ERR_ARRAY_TYPE) << tag;
            AdtInit(&target, &a, KindArray);
            EXPECT_EQ(takeError(), ERR_ARRAY_TYPE) << tag;
            AdtCopy(&a, &target, KindArray);
            EXPECT_EQ(takeError(), ERR_ARRAY_TYPE) << tag;
            AdtFree(&a, KindArray);
            EXPECT_EQ(takeError(), ERR_ARRAY_TYPE) << tag;
            EXPECT_EQ(std::memcmp(&a, &before, sizeof a), 0) << tag;
        }
    }
}

TEST_F(GenericOperations, ANumberThatIsNoneIsCopiedWithoutADifference) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    double copy = 0;
    AdtCopy(&nan, &copy, KindReal);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_TRUE(std::isnan(copy));
    OddValue source(Record({Number(KindBoolean, 1), Real(nan)})), target(KindRecord);
    AdtCopy(source.at(), target.at(), KindRecord);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(Differs(Record({Number(KindBoolean, 1), Real(nan)}), target.at()), "");
}

TEST_F(GenericOperations, FieldsThatWereNeverInitialisedAreCopiedAsTheyAre) {
    OddValue source(KindRecord), target(KindRecord);
    RecordInit(source.as<RecordDescriptor>(), TagRecord,
               MakeFieldKinds({KindBoolean, KindString, KindRecord, KindArray, KindReal}));
    AdtCopy(source.at(), target.at(), KindRecord);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_TRUE(AdtCompare("EQ", source.at(), target.at(), KindRecord));
    EXPECT_TRUE(AdtSameShape(source.at(), target.at(), KindRecord));
    EXPECT_EQ(AdtCheck(target.at(), KindRecord), "");
    for (std::int32_t i = 0; i < target.as<RecordDescriptor>()->size; ++i)
        EXPECT_EQ(At(target.as<RecordDescriptor>()->data)[i], 0);
    AdtClear(target.at(), KindRecord);
    EXPECT_EQ(ErrorCell(), 0);
    // One that was is not equal to one that was not.
    StringInit(static_cast<StringDescriptor*>(RecordFieldAddress(source.as<RecordDescriptor>(), 2)),
               UNBOUNDED);
    EXPECT_TRUE(AdtCompare("NE", source.at(), target.at(), KindRecord));
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- faults ----

TEST_F(GenericOperations, AKindThatIsNoneIs764) {
    OddValue a(Text("abc")), b(Text("def"));
    for (const std::int32_t number : {INT32_MIN, -1, 0, 13, 14, 29, INT32_MAX}) {
        const auto kind = static_cast<Kind>(number);
        AdtInit(a.at(), b.at(), kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        AdtCopy(b.at(), a.at(), kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        AdtFree(a.at(), kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        AdtClear(a.at(), kind);
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        EXPECT_FALSE(AdtCompare("EQ", a.at(), a.at(), kind));
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        EXPECT_FALSE(AdtCompare("NE", a.at(), b.at(), kind));
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        EXPECT_FALSE(AdtSameShape(a.at(), b.at(), kind));
        EXPECT_EQ(takeError(), ERR_UNIDENTIFIABLE) << number;
        EXPECT_NE(AdtCheck(a.at(), kind), "");
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(AdtTypeError(kind), ERR_UNIDENTIFIABLE);
        EXPECT_EQ(AdtConversionError(kind), ERR_UNIDENTIFIABLE);
    }
    EXPECT_EQ(Differs(Text("abc"), a.at()), "");
}

TEST_F(GenericOperations, EveryKindHasItsErrors) {
    for (std::int32_t kind = 1; kind <= 12; ++kind) {
        EXPECT_EQ(AdtTypeError(static_cast<Kind>(kind)), 750 + kind);
        EXPECT_EQ(AdtConversionError(static_cast<Kind>(kind)), 980 + kind);
    }
}

TEST_F(GenericOperations, FreeingNothingIsNoError) {
    for (const Kind kind : adtKinds) {
        AdtFree(nullptr, kind);
        OddValue zero(kind);
        AdtFree(zero.at(), kind);
        EXPECT_TRUE(zero.isZero());
        EXPECT_EQ(ErrorCell(), 0) << kind;
    }
    AdtFree(nullptr, KindNone);
    AdtFree(nullptr, static_cast<Kind>(13));
    AdtFree(nullptr, KindInteger);
    std::int32_t number = 5;
    AdtFree(&number, KindInteger);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(ErrorCell(), 0);
}

// A descriptor of one kind, given as each other kind.
TEST_F(GenericOperations, ADescriptorOfAnotherKindIsThatKindsError) {
    const ValueModel models[] = {Text("abc"), person("Ada", 36), Record({Text("u")}, KindUnion),
                                 Array({{1, 2}}, Text(""), {Text("x"), Text("y")})};
    for (const ValueModel& m : models) {
        for (const Kind kind : {KindString, KindRecord, KindUnion, KindArray}) {
            if (kind == m.kind) continue;
            SCOPED_TRACE(std::to_string(m.kind) + " as " + std::to_string(kind));
            OddValue v(m);
            char target[64];
            AdtInit(target, v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            for (std::int32_t i = 0; i < KindSize[kind]; ++i) ASSERT_EQ(target[i], 0);
            AdtCopy(v.at(), v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            AdtCopy(v.at(), target, kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            for (const char* op : {"EQ", "NE", "GT", "LE"}) {
                EXPECT_FALSE(AdtCompare(op, v.at(), v.at(), kind)) << op;
                EXPECT_EQ(takeError(), AdtTypeError(kind)) << op;
            }
            AdtClear(v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            EXPECT_FALSE(AdtSameShape(v.at(), v.at(), kind));
            takeError();
            EXPECT_NE(AdtCheck(v.at(), kind), "");
            AdtFree(v.at(), kind);
            EXPECT_EQ(takeError(), AdtTypeError(kind));
            EXPECT_EQ(Differs(m, v.at()), "");
        }
    }
}

TEST_F(GenericOperations, ATargetOfAnotherKindIsRefused) {
    OddValue text(Text("abc")), record(person("Ada", 36));
    AdtCopy(text.at(), record.at(), KindString);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    AdtCopy(record.at(), text.at(), KindRecord);
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    EXPECT_EQ(Differs(Text("abc"), text.at()), "");
    EXPECT_EQ(Differs(person("Ada", 36), record.at()), "");
    EXPECT_FALSE(AdtCompare("EQ", record.at(), text.at(), KindRecord));
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    EXPECT_FALSE(AdtCompare("NE", record.at(), text.at(), KindRecord));
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
}

TEST_F(GenericOperations, ARecordAndAUnionOfTheSameFieldsAreNotOfOneKind) {
    OddValue record(Record({Text("abc")})), other(Record({Text("abc")}, KindUnion));
    AdtCopy(record.at(), other.at(), KindRecord);
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
    AdtCopy(record.at(), other.at(), KindUnion);
    EXPECT_EQ(takeError(), ERR_UNION_TYPE);
    EXPECT_FALSE(AdtCompare("NE", record.at(), other.at(), KindRecord));
    EXPECT_EQ(takeError(), ERR_RECORD_TYPE);
}

TEST_F(GenericOperations, ANullAddressIsAnErrorAndTouchesNothing) {
    const ValueModel models[] = {Number(KindInteger, 5), Text("abc"), person("Ada", 36)};
    for (const ValueModel& m : models) {
        OddValue v(m);
        AdtInit(nullptr, v.at(), m.kind);
        EXPECT_NE(takeError(), 0);
        AdtCopy(nullptr, v.at(), m.kind);
        EXPECT_NE(takeError(), 0);
        AdtCopy(v.at(), nullptr, m.kind);
        EXPECT_NE(takeError(), 0);
        AdtClear(nullptr, m.kind);
        EXPECT_NE(takeError(), 0);
        EXPECT_FALSE(AdtCompare("NE", nullptr, v.at(), m.kind));
        EXPECT_NE(takeError(), 0);
        EXPECT_FALSE(AdtCompare("NE", v.at(), nullptr, m.kind));
        EXPECT_NE(takeError(), 0);
        EXPECT_EQ(Differs(m, v.at()), "");
        EXPECT_NE(AdtCheck(nullptr, m.kind), "");
    }
}

TEST_F(GenericOperations, AZeroDescriptorIsNoSource) {
    for (const Kind kind : {KindString, KindRecord, KindUnion, KindArray}) {
        OddValue zero(kind), target(kind);
        AdtInit(target.at(), zero.at(), kind);
        EXPECT_EQ(takeError(), AdtTypeError(kind)) << kind;
        EXPECT_TRUE(target.isZero());
        AdtCopy(zero.at(), target.at(), kind);
        EXPECT_EQ(takeError(), AdtTypeError(kind)) << kind;
        EXPECT_FALSE(AdtCompare("EQ", zero.at(), target.at(), kind));
        EXPECT_EQ(takeError(), AdtTypeError(kind)) << kind;
        EXPECT_EQ(AdtCheck(zero.at(), kind), "");
    }
}

TEST_F(GenericOperations, AnUnopenedFileListWithinAValueIsNotCompared) {
    ListValue inFile;
    ListInit(inFile.get(), UNBOUNDED, nullptr, KindInteger, true);
    RecordValue a, b;
    for (RecordValue* record : {&a, &b}) {
        RecordInit(record->get(), TagRecord, {});
        RecordAppend(record->get(), inFile.get(), KindList);
    }
    for (const char* op : {"EQ", "NE"}) {
        EXPECT_FALSE(AdtCompare(op, a.get(), b.get(), KindRecord)) << op;
        EXPECT_EQ(takeError(), ERR_FILE_NOT_OPEN) << op;
    }
}

TEST_F(GenericOperations, ValuesAreCopiedUpToABoundOfNesting) {
    SetMemoryChecking(false);
    RecordValue empty;
    RecordInit(empty.get(), TagRecord, {});
    for (const std::int32_t levels : {MaxNesting - 1, MaxNesting + 20}) {
        RecordValue nested, copy;
        AdtInit(nested.get(), empty.get(), KindRecord);
        RecordDescriptor* inner = nested.get();
        for (std::int32_t level = 1; level < levels; ++level) {
            RecordAppend(inner, empty.get(), KindRecord);
            inner = static_cast<RecordDescriptor*>(RecordFieldAddress(inner, 1));
        }
        EXPECT_EQ(takeError(), 0);
        AdtCopy(nested.get(), copy.get(), KindRecord);
        EXPECT_EQ(takeError(), levels <= MaxNesting ? 0 : int{ERR_UNIDENTIFIABLE});
        EXPECT_EQ(copy.get()->data != 0, levels <= MaxNesting);
        EXPECT_EQ(AdtCheck(nested.get(), KindRecord), "");
    }
}

TEST_F(GenericOperations, AnUnopenedFileListIsNotCompared) {
    ListDescriptor a{0, KindInteger + TagInFile, 0, UNBOUNDED, 0, 0};
    ASSERT_TRUE(AllocateData(a, 255));
    std::memset(At(a.data), 0, 255);
    for (const char* op : {"EQ", "NE"}) {
        EXPECT_FALSE(AdtCompare(op, &a, &a, KindList));
        EXPECT_EQ(takeError(), ERR_FILE_NOT_OPEN) << op;
    }
    FreeData(a);
}

// ---- the check ----

TEST_F(GenericOperations, TheCheckFindsWhatIsWrong) {
    const ValueModel m =
        Record({Number(KindBoolean, 1), Text("abc"), Array({{1, 2}}, Text(""), {Text("x"), Text("y")})});
    OddValue v(m);
    auto* r = v.as<RecordDescriptor>();
    const auto wrong = [&](void* word, std::int32_t value) {
        const auto old = ReadAt<std::int32_t>(word);
        WriteAt(word, value);
        EXPECT_NE(AdtCheck(v.at(), KindRecord), "") << value << " for " << old;
        WriteAt(word, old);
        EXPECT_EQ(AdtCheck(v.at(), KindRecord), "");
    };
    auto* text = static_cast<char*>(RecordFieldAddress(r, 2));
    auto* array = static_cast<char*>(RecordFieldAddress(r, 3));
    char* element = At(ReadAt<ArrayDescriptor>(array).data);
    wrong(&r->size, r->size - 1);
    wrong(&r->tag, 13);
    wrong(text, 4);              // its size
    wrong(text + 16, 4);         // its length
    wrong(text + 16, -1);        // its length
    wrong(text + 4, 13);         // its tag
    wrong(text + 8, 0);          // its data
    wrong(array, 47);            // its size
    wrong(array + 16, 3);        // its lower bound
    wrong(array + 20, 3);        // its upper bound
    wrong(array + 24, 1);        // half a second dimension
    wrong(array + 4, KindReal);  // its element kind
    wrong(array + 40, 0);        // its prototype
    wrong(element + 4, 13);      // the tag of its first element
    wrong(element + 16, 7);      // the length of its first element
    wrong(&r->kinds, 0x16);      // a field less than the size says
}

// ---- memory checking on whole values ----

TEST_F(GenericOperations, ALeftValueIsCountedWithAllItsBlocks) {
    // 24 bytes of a record, 24 of its text.
    RecordDescriptor r;
    Make(Record({Text("twenty-four characters..")}), &r);
    EXPECT_EQ(CountLeaks().bytes, 48);
    EXPECT_EQ(CountLeaks().blocks, 2);
    EXPECT_EQ(endOf([] { ProcessStop(); }), 0);
    ASSERT_FALSE(log().empty());
    EXPECT_EQ(log()[0], "fatal|Error 826|Some memory was not freed\n\n(48 byte(s) in 2 block(s))\n");
    ClearError();
    AdtFree(&r, KindRecord);
    EXPECT_EQ(LiveBlocks(), 0);
}

// The tail guard stands right behind the bytes of a block.
TEST_F(GenericOperations, AnOverwrittenGuardShowsWhenTheValueIsFreed) {
    const ValueModel m = Array({{1, 3}}, Number(KindBoolean, 0));
    ArrayDescriptor a;
    Make(m, &a);
    Offset block = a.data;
    const std::int32_t size = a.size;
    const char guard = At(block)[size];
    At(block)[size] = 'x';
    EXPECT_EQ(CountLeaks().bytes, -1);
    AdtFree(&a, KindArray);
    EXPECT_EQ(takeError(), ERR_BLOCK_OVERWRITTEN);
    EXPECT_EQ(LiveBlocks(), 1);
    At(block)[size] = guard;
    Free(block, size);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(GenericOperations, AnOverwrittenGuardDeepInAValueShowsAndTheRestIsFreed) {
    RecordDescriptor r;
    Make(
        Record({Number(KindBoolean, 1), Array({{1, 2}}, Text(""), {Text("abc"), Text("def")}), Text("last")}),
        &r);
    const auto array = ReadAt<ArrayDescriptor>(RecordFieldAddress(&r, 2));
    const auto text = ReadAt<StringDescriptor>(At(array.data));
    Offset block = text.data;
    const char guard = At(block)[3];
    At(block)[3] = 'x';
    AdtFree(&r, KindRecord);
    EXPECT_EQ(takeError(), ERR_BLOCK_OVERWRITTEN);
    EXPECT_EQ(LiveBlocks(), 1);
    At(block)[3] = guard;
    Free(block, 3);
    EXPECT_EQ(LiveBlocks(), 0);
}

// ---- the owning types ----

TEST_F(GenericOperations, OwnersFreeAndMove) {
    ArrayValue a, b;
    Make(Array({{1, 2}}, Text(""), {Text("x"), Text("y")}), a.get());
    const ArrayDescriptor was = *a.get();
    b = std::move(a);
    EXPECT_EQ(b.get()->data, was.data);
    EXPECT_EQ(a.get()->data, 0U);
    EXPECT_EQ(a.get()->tag, 0);
    ArrayValue c(std::move(b));
    EXPECT_EQ(c.get()->data, was.data);
    Make(Array({{1, 2}}, Text(""), {Text("x"), Text("y")}), b.get());
    c = std::move(b);
    EXPECT_NE(c.get()->data, was.data);
    ArrayValue& same = c;
    c = std::move(same);
    EXPECT_EQ(Differs(Array({{1, 2}}, Text(""), {Text("x"), Text("y")}), c.get()), "");
}

TEST_F(GenericOperations, AUnionHasAnOwnerOfItsOwn) {
    UnionValue u;
    Make(Record({Text("abc"), Real(1)}, KindUnion), u.get());
    UnionValue other = std::move(u);
    EXPECT_EQ(u.get()->tag, 0);
    EXPECT_EQ(AdtCheck(other.get(), KindUnion), "");
}

}  // namespace
