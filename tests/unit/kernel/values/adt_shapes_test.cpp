// SPDX-License-Identifier: Apache-2.0
//
// Shapes of values, and what a target of another shape takes.
#include "unit/kernel/adt_fixture.h"

#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "unit/kernel/values_fixture.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace tarn;

namespace {

using namespace tarn::model;

// ---- shapes ----

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

}  // namespace
