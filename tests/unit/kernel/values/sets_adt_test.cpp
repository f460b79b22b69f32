// SPDX-License-Identifier: Apache-2.0
//
// Sets as a kind of value, and with too little memory.
#include "unit/kernel/sets_fixture.h"

#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/sets.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

using namespace tarn;

namespace {

// ---- as a kind of value ----

TEST_F(Sets, InitTakesTheShapeWithoutTheMembers) {
    OwnedSet f, d;
    AdtInit(f.get(), fixed(-4, 9, "[1]").get(), KindSet);
    AdtInit(d.get(), dynamic("[50]").get(), KindSet);
    EXPECT_EQ(whole(f), "-4..9[]");
    EXPECT_EQ(f.get()->maxlength, 0);
    EXPECT_EQ(whole(d), "1..1[]");
    EXPECT_EQ(d.get()->maxlength, DYNAMIC_BOUNDS);
    SetDescriptor bad = *f.get();
    bad.upper = 4000;
    SetDescriptor target;
    std::memset(&target, 0x55, sizeof target);
    AdtInit(&target, &bad, KindSet);
    EXPECT_EQ(takeError(), 759);
    EXPECT_TRUE(isZero(target));
}

TEST_F(Sets, AdtClearMakesTheEmptySetOfTheShape) {
    OwnedSet f = fixed(-4, 9, "[1]"), d = dynamic("[50]");
    AdtClear(f.get(), KindSet);
    AdtClear(d.get(), KindSet);
    EXPECT_EQ(whole(f), "-4..9[]");
    EXPECT_EQ(whole(d), "1..1[]");
}

TEST_F(Sets, CopyFollowsAssignmentAndShapesAZeroTarget) {
    const OwnedSet source = dynamic("[-3,60]");
    OwnedSet zero, f = fixed(1, 80, "[2]"), d = dynamic();
    AdtCopy(source.get(), zero.get(), KindSet);
    EXPECT_EQ(whole(zero), "-3..60[-3,60]");
    EXPECT_EQ(zero.get()->maxlength, DYNAMIC_BOUNDS);
    AdtCopy(source.get(), d.get(), KindSet);
    EXPECT_EQ(whole(d), "-3..60[-3,60]");
    AdtCopy(source.get(), f.get(), KindSet, 1);
    EXPECT_EQ(takeError(), 616);
    EXPECT_EQ(whole(f), "1..80[60]");
    AdtCopy(f.get(), f.get(), KindSet);
    EXPECT_EQ(whole(f), "1..80[60]");
    SetDescriptor bad = *f.get();
    bad.upper = 4000;
    AdtCopy(&bad, d.get(), KindSet);
    EXPECT_EQ(takeError(), 759);
    AdtCopy(d.get(), &bad, KindSet);
    EXPECT_EQ(takeError(), 759);
    EXPECT_EQ(whole(d), "-3..60[-3,60]");
    EXPECT_EQ(whole(f), "1..80[60]");
}

TEST_F(Sets, ValuesAreEqualByTheirMembersAndHaveNoOtherOrder) {
    const OwnedSet a = dynamic("[1..3]"), b = fixed(-9, 9, "[1..3]"), c = dynamic("[9]");
    EXPECT_TRUE(AdtCompare("EQ", a.get(), b.get(), KindSet));
    EXPECT_TRUE(AdtCompare("NE", a.get(), c.get(), KindSet));
    EXPECT_FALSE(AdtCompare("GT", c.get(), a.get(), KindSet));
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Sets, TheShapeIsTheBoundsOfAFixedSetAndNothingMoreOfADynamicOne) {
    const OwnedSet a = fixed(1, 9), b = fixed(1, 9, "[3]"), c = fixed(1, 10), e = fixed(0, 9);
    const OwnedSet d = dynamic(), wide = dynamic("[50]");
    EXPECT_TRUE(AdtSameShape(a.get(), b.get(), KindSet));
    EXPECT_FALSE(AdtSameShape(a.get(), c.get(), KindSet));
    EXPECT_FALSE(AdtSameShape(a.get(), e.get(), KindSet));
    EXPECT_FALSE(AdtSameShape(fixed(1, 1).get(), d.get(), KindSet));
    EXPECT_TRUE(AdtSameShape(d.get(), wide.get(), KindSet));
}

TEST_F(Sets, CheckNamesWhatIsWrong) {
    const OwnedSet s = fixed(3, 20);
    const auto wrong = [&](const std::function<void(SetDescriptor&)>& damage) {
        SetDescriptor damaged = *s.get();
        damage(damaged);
        return AdtCheck(&damaged, KindSet);
    };
    EXPECT_EQ(wrong([](SetDescriptor&) {}), "");
    EXPECT_EQ(wrong([](SetDescriptor& d) { d.maxlength = -1; }), "set: neither fixed nor dynamic");
    EXPECT_EQ(wrong([](SetDescriptor& d) { d.lower = 21; }), "set: bounds that cannot be");
    EXPECT_EQ(wrong([](SetDescriptor& d) { d.upper = 32768; }), "set: bounds that cannot be");
    EXPECT_EQ(wrong([](SetDescriptor& d) { d.upper = 25; }), "set: size is not that of its bounds");
    EXPECT_EQ(wrong([](SetDescriptor& d) { d.data = 0; }), "set: size without data");
    EXPECT_EQ(wrong([](SetDescriptor& d) { d.unused[3] = 0; }), "set: more than one dimension");
    EXPECT_EQ(wrong([](SetDescriptor& d) { d.reserved = 1; }), "set: reserved word in use");
    char* bytes = At(s.get()->data);
    for (const auto& [byte, bit] : {std::pair{0, 0x40}, std::pair{2, 0x08}}) {
        bytes[byte] = static_cast<char>(bit);
        EXPECT_EQ(AdtCheck(s.get(), KindSet), "set: members outside its bounds");
        bytes[byte] = 0;
    }
}

TEST_F(Sets, ADescriptorMayStandAtAnyAddress) {
    char storage[48];
    for (int shift = 0; shift < 4; ++shift) {
        auto* s = reinterpret_cast<SetDescriptor*>(storage + shift);
        SetInit(s, UNBOUNDED, UNBOUNDED);
        SetIncludeRange(-3, 70, s);
        SetUnion(s, s, s);
        SetRedim(s, 0, 5, true);
        EXPECT_EQ(whole(s), "0..5[0..5]");
        EXPECT_TRUE(SetCompare("GE", s, s));
        SetFree(s);
    }
}

// ---- short memory ----

class SetsShortOfMemory : public Sets {
protected:
    // Runs `operation` with ever more requests granted; each failure leaves 802 and the set as it was.
    // The result counts the failures.
    static int failures(const char* before, const std::function<void(SetDescriptor*)>& operation,
                        const char* after) {
        for (int granted = 0;; ++granted) {
            OwnedSet s = dynamic(before);
            const std::string as = whole(s);
            const std::int64_t blocks = LiveBlocks();
            FailAllocation(granted);
            operation(s.get());
            FailAllocation(-1);
            EXPECT_EQ(LiveBlocks(), blocks);
            if (takeError() == 0) {
                EXPECT_EQ(whole(s), after);
                return granted;
            }
            EXPECT_EQ(whole(s), as);
            if (granted > 9) return -1;
        }
    }
};

TEST_F(SetsShortOfMemory, InitLeavesAZeroedDescriptor) {
    for (const std::int32_t bound : {UNBOUNDED, 5}) {
        SetDescriptor s;
        std::memset(&s, 0x55, sizeof s);
        FailAllocation(0);
        SetInit(&s, bound, bound);
        FailAllocation(-1);
        EXPECT_EQ(takeError(), 802);
        EXPECT_TRUE(isZero(s));
    }
}

TEST_F(SetsShortOfMemory, ASetIsAsItWas) {
    const OwnedSet other = dynamic("[-50..50]");
    std::int32_t error = 0, position = 1;
    const std::vector<std::pair<std::function<void(SetDescriptor*)>, const char*>> rows = {
        {[](SetDescriptor* s) { SetInclude(500, s); }, "1..500[3..9,500]"},
        {[](SetDescriptor* s) { SetInclude(-500, s); }, "-500..9[-500,3..9]"},
        {[](SetDescriptor* s) { SetIncludeRange(5, 500, s); }, "1..500[3..500]"},
        {[](SetDescriptor* s) { SetRedim(s, -90, 4, true); }, "-90..4[3..4]"},
        {[](SetDescriptor* s) { SetRedim(s, 1, 900, false); }, "1..900[]"},
        {[&](SetDescriptor* s) { SetUnion(s, other.get(), s); }, "-50..50[-50..50]"},
        {[&](SetDescriptor* s) { SetIntersect(other.get(), s, s); }, "-50..50[3..9]"},
        {[&](SetDescriptor* s) { SetDifference(other.get(), s, s); }, "-50..50[-50..2,10..50]"},
        {[&](SetDescriptor* s) { SetAssign(s, other.get(), error); }, "-50..50[-50..50]"},
        {[&](SetDescriptor* s) { AdtCopy(other.get(), s, KindSet, 1); }, "-50..50[-50..50]"},
        {[&](SetDescriptor* s) {
             position = 1;
             SetFromText("[7..99]", position, s, error);
             EXPECT_EQ(error, ErrorCell());
             EXPECT_EQ(position, 8);
         },
         "1..99[7..99]"},
    };
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(failures("[3..9]", rows[i].first, rows[i].second), 1) << i;
    const auto clear = [](SetDescriptor* s) { AdtClear(s, KindSet); };
    EXPECT_EQ(failures("[3..9]", clear, "1..1[]"), 0);
}

TEST_F(SetsShortOfMemory, AssignmentTellsOf802EvenBehindAnOlderError) {
    OwnedSet d = dynamic("[3]");
    const OwnedSet wide = dynamic("[900]");
    std::int32_t error = 0;
    SetError(ERR_ARRAY_BOUNDS);
    FailAllocation(0);
    SetAssign(d.get(), wide.get(), error);
    FailAllocation(-1);
    EXPECT_EQ(error, 802);
    EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
    EXPECT_EQ(whole(d), "1..3[3]");
}

TEST_F(SetsShortOfMemory, InitAndCopyOfValuesLeaveAZeroTarget) {
    const OwnedSet like = dynamic("[900]");
    SetDescriptor target;
    std::memset(&target, 0x55, sizeof target);
    FailAllocation(0);
    AdtInit(&target, like.get(), KindSet);
    EXPECT_EQ(takeError(), 802);
    EXPECT_TRUE(isZero(target));
    FailAllocation(0);
    AdtCopy(like.get(), &target, KindSet);
    FailAllocation(-1);
    EXPECT_EQ(takeError(), 802);
    EXPECT_TRUE(isZero(target));
}

TEST_F(SetsShortOfMemory, WhatNeedsNoOtherBlockSucceeds) {
    OwnedSet d = dynamic("[1..20]"), f = fixed(1, 30, "[4]");
    std::int32_t error = 0, position = 1;
    FailAllocation(0);
    SetExcludeRange(5, 9, d.get());
    SetInclude(23, d.get());
    SetIntersect(f.get(), d.get(), f.get());
    SetUnion(f.get(), d.get(), f.get());
    SetDifference(d.get(), d.get(), d.get());
    SetAssign(f.get(), d.get(), error);
    SetFromText("[1..3,30]", position, f.get(), error);
    FailAllocation(-1);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(whole(d), "1..23[]");
    EXPECT_EQ(whole(f), "1..30[1..3,30]");
}

}  // namespace
