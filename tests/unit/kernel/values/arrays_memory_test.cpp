// SPDX-License-Identifier: Apache-2.0
//
// Arrays when memory is short: each request of each operation fails in turn.
#include "kernel/run/errors.h"
#include "kernel/values/arrays.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>
#include <memory>

using namespace tarn;

namespace {

using ArrayMemory = Values;

bool isZero(const ArrayDescriptor& a) {
    constexpr ArrayDescriptor zero{};
    return std::memcmp(&a, &zero, sizeof a) == 0;
}

const ValueModel& rowModel() {
    static const ValueModel row =
        model::Record({model::Number(KindBoolean, 1), model::Text("text"), model::Text("cap", 6),
                       model::Array({{1, 2}}, model::Text(""), {model::Text("x"), model::Text("yy")})});
    return row;
}

TEST_F(ArrayMemory, WithoutMemoryNoArrayIsMade) {
    OddValue like(rowModel());
    failEveryRequest([] { return ArrayValue(); },
                     [&](ArrayValue& a) { ArrayInit(a.get(), KindRecord, 1, 3, like.at()); },
                     [](ArrayValue& a, bool failed) { EXPECT_EQ(isZero(*a.get()), failed); });
    failEveryRequest([] { return ArrayValue(); },
                     [&](ArrayValue& a) { ArrayInitDynamic(a.get(), KindRecord, like.at()); },
                     [](ArrayValue& a, bool failed) { EXPECT_EQ(isZero(*a.get()), failed); });
}

ArrayValue made(const ValueModel& m) {
    ArrayValue a;
    model::Make(m, a.get());
    return a;
}

TEST_F(ArrayMemory, WithoutMemoryARedimLeavesTheArrayAsItWas) {
    const ValueModel empty = model::Emptied(rowModel());
    const ValueModel m = model::Array({{1, 3}}, empty, {rowModel(), empty, rowModel()}, DYNAMIC_BOUNDS);
    const ValueModel kept = model::Array({{3, 5}}, empty, {rowModel(), empty, empty}, DYNAMIC_BOUNDS),
                     lost = model::Array({{3, 5}}, empty, {}, DYNAMIC_BOUNDS);
    for (const bool preserve : {true, false}) {
        failEveryRequest([&] { return made(m); }, [&](ArrayValue& a) { ArrayRedim(a.get(), 3, 5, preserve); },
                         [&](ArrayValue& a, bool failed) {
                             EXPECT_EQ(model::Differs(failed ? m : preserve ? kept : lost, a.get()), "");
                         });
    }
}

TEST_F(ArrayMemory, WithoutMemoryADynamicArrayIsNotAssigned) {
    const ValueModel empty = model::Emptied(rowModel());
    const ValueModel source = model::Array({{2, 3}}, empty, {rowModel(), rowModel()});
    ArrayValue from = made(source);
    ValueModel old = rowModel();
    for (ValueModel* leaf : model::Leaves(old)) model::Change(*leaf);
    const ValueModel targets[] = {model::Array({}, empty, {}, DYNAMIC_BOUNDS),
                                  model::Array({{1, 3}}, empty, {old, old, old}, DYNAMIC_BOUNDS),
                                  model::Array({{2, 3}}, empty, {old, old}, DYNAMIC_BOUNDS)};
    ValueModel result = source;
    result.maxlength = DYNAMIC_BOUNDS;
    for (const ValueModel& target : targets) {
        failEveryRequest([&] { return made(target); },
                         [&](ArrayValue& a) { ArrayAssign(a.get(), from.get()); },
                         [&](ArrayValue& a, bool failed) {
                             EXPECT_EQ(model::Differs(failed ? target : result, a.get()), "");
                         });
    }
    EXPECT_EQ(model::Differs(source, from.get()), "");
}

TEST_F(ArrayMemory, WithoutMemoryAFixedArrayStaysSound) {
    const ValueModel empty = model::Emptied(rowModel());
    ArrayValue from = made(model::Array({{1, 2}}, empty, {rowModel(), rowModel()}));
    failEveryRequest(
        [&] {
            return made(model::Array({{5, 6}}, empty));
        },
        [&](ArrayValue& a) { ArrayAssign(a.get(), from.get()); },
        [&](ArrayValue& a, bool failed) {
            EXPECT_EQ(AdtCheck(a.get(), KindArray), "");
            const ValueModel whole = model::Array({{5, 6}}, empty, {rowModel(), rowModel()});
            if (!failed) {
                EXPECT_EQ(model::Differs(whole, a.get()), "");
            }
        });
}

TEST_F(ArrayMemory, WithoutMemoryALiteralIsAsItWas) {
    const ValueModel empty = model::Emptied(rowModel());
    OddValue v(rowModel());
    const ValueModel typed = model::Array({}, empty, {}, DYNAMIC_BOUNDS),
                     shaped = model::Array({{1, 2}}, empty, {rowModel(), rowModel()}, DYNAMIC_BOUNDS);
    failEveryRequest([&] { return made(typed); },
                     [&](ArrayValue& a) { ArrayAutoAssign(a.get(), true, 3, v.at(), KindRecord); },
                     [&](ArrayValue& a, bool failed) {
                         EXPECT_EQ(AdtCheck(a.get(), KindArray), "");
                         const ValueModel one = model::Array({{3, 3}}, empty, {rowModel()}, DYNAMIC_BOUNDS);
                         if (!failed) {
                             EXPECT_EQ(model::Differs(one, a.get()), "");
                         }
                     });
    failEveryRequest([&] { return made(shaped); },
                     [&](ArrayValue& a) { ArrayAutoAssign(a.get(), true, 3, v.at(), KindRecord); },
                     [&](ArrayValue& a, bool failed) {
                         EXPECT_EQ(AdtCheck(a.get(), KindArray), "");
                         ValueModel three = shaped;
                         three.bounds[0] = {1, 3};
                         three.parts.push_back(rowModel());
                         if (!failed) {
                             EXPECT_EQ(model::Differs(three, a.get()), "");
                         }
                     });
    failEveryRequest(
        [&] {
            ArrayValue a;
            ArrayInitDynamic(a.get(), KindNone, nullptr);
            return a;
        },
        [&](ArrayValue& a) { ArrayAutoAssign(a.get(), true, 3, v.at(), KindRecord); },
        [&](ArrayValue& a, bool) { EXPECT_EQ(AdtCheck(a.get(), KindArray), ""); });
}

TEST_F(ArrayMemory, WithoutMemoryPuttingAndGettingStaySound) {
    const ValueModel empty = model::Emptied(rowModel());
    OddValue v(rowModel());
    failEveryRequest(
        [&] {
            return made(model::Array({{1, 2}}, empty, {empty, rowModel()}));
        },
        [&](ArrayValue& a) { ArrayPut(a.get(), 1, v.at(), KindRecord); },
        [&](ArrayValue& a, bool failed) {
            EXPECT_EQ(AdtCheck(a.get(), KindArray), "");
            EXPECT_EQ(model::Differs(rowModel(), ArrayRef(a.get(), 2)), "");
            if (!failed) {
                EXPECT_EQ(model::Differs(rowModel(), ArrayRef(a.get(), 1)), "");
            }
        });
    ArrayValue source = made(model::Array({{1, 1}}, empty, {rowModel()}));
    for (const bool shaped : {true, false}) {
        failEveryRequest(
            [&] {
                return shaped ? std::make_unique<OddValue>(empty) : std::make_unique<OddValue>(KindRecord);
            },
            [&](auto& out) { ArrayGet(source.get(), 1, out->at(), KindRecord); },
            [&](auto& out, bool failed) {
                EXPECT_EQ(AdtCheck(out->at(), KindRecord), "");
                if (!failed) {
                    EXPECT_EQ(model::Differs(rowModel(), out->at()), "");
                }
            });
    }
}

}  // namespace
