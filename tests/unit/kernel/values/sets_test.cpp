// SPDX-License-Identifier: Apache-2.0
//
// The life of sets, their members and their bounds.
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

// ---- life and layout ----

TEST_F(Sets, ADynamicSetIsBornEmptyWithTheBounds1To1) {
    const OwnedSet s = dynamic();
    EXPECT_EQ(s.get()->size, 1);
    EXPECT_EQ(s.get()->tag, 29);
    EXPECT_NE(s.get()->data, 0U);
    EXPECT_EQ(s.get()->maxlength, DYNAMIC_BOUNDS);
    EXPECT_EQ(s.get()->lower, 1);
    EXPECT_EQ(s.get()->upper, 1);
    for (const std::int32_t word : s.get()->unused) EXPECT_EQ(word, NO_DIMENSION);
    EXPECT_EQ(s.get()->reserved, 0);
    EXPECT_EQ(KindOf(s.get()), KindSet);
    EXPECT_EQ(whole(s), "1..1[]");
}

TEST_F(Sets, AFixedSetTakesTheBytesOfItsBounds) {
    constexpr struct {
        std::int32_t lower, upper, size;
    } rows[] = {{1, 8, 1},
                {1, 9, 2},
                {0, 0, 1},
                {0, 1, 2},
                {-8, 0, 2},
                {-7, 0, 1},
                {-8, -8, 1},
                {-10, 10, 4},
                {8, 9, 2},
                {9, 16, 1},
                {-9, 9, 4},
                {lowest, lowest, 1},
                {1, 255, 32},
                {0, 255, 33},
                {lowest, highest, 8193},
                {highest, highest, 1}};
    for (const auto& row : rows) {
        const OwnedSet s = fixed(row.lower, row.upper);
        EXPECT_EQ(s.get()->size, row.size) << row.lower << ".." << row.upper;
        EXPECT_EQ(s.get()->maxlength, 0);
        EXPECT_EQ(KindOf(s.get()), KindSet);
        EXPECT_EQ(SetCount(s.get()), 0);
        EXPECT_EQ(AdtCheck(s.get(), KindSet), "");
    }
}

TEST_F(Sets, EachMemberHasItsBitOnTheGridWhateverTheBounds) {
    constexpr struct {
        std::int32_t member, byte;  // counted from that of -16, which is number -2
        unsigned mask;
    } rows[] = {{1, 3, 0x80},  {2, 3, 0x40},  {8, 3, 0x01},   {9, 4, 0x80},   {0, 2, 0x01},  {-1, 2, 0x02},
                {-7, 2, 0x80}, {-8, 1, 0x01}, {-15, 1, 0x80}, {-16, 0, 0x01}, {16, 4, 0x01}, {15, 4, 0x02}};
    for (const auto& row : rows) {
        OwnedSet s = fixed(-16, 16);
        SetInclude(row.member, s.get());
        for (std::int32_t byte = 0; byte < s.get()->size; ++byte) {
            const auto found = static_cast<unsigned char>(At(s.get()->data)[byte]);
            EXPECT_EQ(found, byte == row.byte ? row.mask : 0U) << row.member << " in " << byte;
        }
    }
}

TEST_F(Sets, BadBoundsGive601AndAZeroedDescriptor) {
    constexpr std::int32_t rows[][2] = {{5, 1},
                                        {lowest - 1, 0},
                                        {0, highest + 1},
                                        {INT32_MIN, INT32_MAX},
                                        {UNBOUNDED, 5},
                                        {1, UNBOUNDED},
                                        {DYNAMIC_BOUNDS, DYNAMIC_BOUNDS},
                                        {NO_DIMENSION, NO_DIMENSION}};
    for (const auto& row : rows) {
        SetDescriptor s;
        std::memset(&s, 0x55, sizeof s);
        SetInit(&s, row[0], row[1]);
        EXPECT_EQ(takeError(), 601) << row[0] << ".." << row[1];
        EXPECT_TRUE(isZero(s));
        SetInclude(1, &s);
        EXPECT_EQ(takeError(), 759);
    }
    SetInit(nullptr, 1, 5);
    EXPECT_EQ(takeError(), 759);
    SetInit(nullptr, 5, 1);
    EXPECT_EQ(takeError(), 759);
}

TEST_F(Sets, FreeZeroesAndTheSecondFreeDoesNothing) {
    SetDescriptor s;
    SetInit(&s, -10, 10);
    SetFree(&s);
    EXPECT_TRUE(isZero(s));
    SetFree(&s);
    EXPECT_EQ(ErrorCell(), 0);
    SetFree(nullptr);
    EXPECT_EQ(takeError(), 759);
    String text(std::string_view("abc"));
    SetFree(reinterpret_cast<SetDescriptor*>(text.get()));
    EXPECT_EQ(takeError(), 759);
    EXPECT_EQ(text.view(), "abc");
}

TEST_F(Sets, ClearKeepsTheBounds) {
    OwnedSet f = fixed(-10, 10, "[-10..10]"), d = dynamic("[5..100]");
    SetClear(f.get());
    SetClear(d.get());
    EXPECT_EQ(whole(f), "-10..10[]");
    EXPECT_EQ(whole(d), "1..100[]");
}

// ---- what is no set ----

TEST_F(Sets, NullAndWrongDescriptorsGive759AndNoChange) {
    OwnedSet good = fixed(1, 20, "[3..5]"), open = dynamic("[7]");
    const std::string goodBefore = whole(good), openBefore = whole(open);
    SetDescriptor zeroed{}, string = *good.get(), list = *good.get(), larger = *good.get(),
                            smaller = *good.get(), noData = *good.get(), reversed = *good.get(),
                            far = *good.get(), odd = *good.get();
    string.maxlength = UNBOUNDED;
    list.tag = 6;
    larger.upper = 200;
    smaller.upper = 2;
    noData.data = 0;
    reversed.lower = 21;
    far.lower = lowest - 8;
    odd.maxlength = -5;
    for (SetDescriptor* bad : {static_cast<SetDescriptor*>(nullptr), &zeroed, &string, &list, &larger,
                               &smaller, &noData, &reversed, &far, &odd}) {
        std::int32_t error = 0, position = 1;
        String text(std::string_view("same"));
        const auto expectAssignError = [&] { EXPECT_EQ(error, 759); };
        const std::vector<std::function<void()>> calls = {
            [&] { SetClear(bad); },
            [&] { SetRedim(bad, 1, 5, true); },
            [&] { SetRedim(bad, 5, 1, true); },
            [&] { SetInclude(4, bad); },
            [&] { SetInclude(40000, bad); },
            [&] { SetIncludeRange(4, 5, bad); },
            [&] { SetIncludeRange(5, 4, bad); },
            [&] { SetExclude(4, bad); },
            [&] { SetExclude(40000, bad); },
            [&] { SetExcludeRange(3, 4, bad); },
            [&] { SetExcludeRange(4, 3, bad); },
            [&] { EXPECT_FALSE(SetContains(4, bad)); },
            [&] { EXPECT_FALSE(SetContains(40000, bad)); },
            [&] { EXPECT_EQ(SetCount(bad), 0); },
            [&] { EXPECT_EQ(SetLowerBound(bad), 0); },
            [&] { EXPECT_EQ(SetUpperBound(bad), 0); },
            [&] { SetUnion(bad, good.get(), open.get()); },
            [&] { SetUnion(good.get(), bad, open.get()); },
            [&] { SetUnion(good.get(), open.get(), bad); },
            [&] { SetIntersect(bad, open.get(), good.get()); },
            [&] { SetIntersect(open.get(), bad, good.get()); },
            [&] { SetIntersect(good.get(), open.get(), bad); },
            [&] { SetDifference(bad, open.get(), good.get()); },
            [&] { SetDifference(open.get(), bad, good.get()); },
            [&] { SetDifference(good.get(), open.get(), bad); },
            [&] { SetAssign(bad, good.get(), error), expectAssignError(); },
            [&] { SetAssign(good.get(), bad, error), expectAssignError(); },
            [&] { SetAssign(bad, bad, error), expectAssignError(); },
            [&] { EXPECT_FALSE(SetCompare("EQ", bad, good.get())); },
            [&] { EXPECT_FALSE(SetCompare("NE", good.get(), bad)); },
            [&] { EXPECT_FALSE(SetCompare("EQ", bad, bad)); },
            [&] { EXPECT_FALSE(SetCompare("??", bad, good.get())); },
            [&] { SetToText(bad, true, text.get()); },
            [&] { SetToText(bad, true, nullptr); },
            [&] { SetFromText("[1]", position, bad, error), expectAssignError(); },
            [&] { SetFromText("x", position, bad, error), expectAssignError(); },
        };
        for (std::size_t i = 0; i < calls.size(); ++i) {
            calls[i]();
            EXPECT_EQ(takeError(), 759) << i;
        }
        EXPECT_EQ(whole(good), goodBefore);
        EXPECT_EQ(whole(open), openBefore);
        EXPECT_EQ(text.view(), "same");
        EXPECT_EQ(position, 1);
    }
    SetFree(&odd);
    EXPECT_EQ(takeError(), 759);
    SetFree(&list);
    EXPECT_EQ(takeError(), 759);
}

TEST_F(Sets, AnOlderErrorStays) {
    OwnedSet s = fixed(1, 5);
    SetError(ERR_ARRAY_BOUNDS);
    SetInclude(6, s.get());
    EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
    SetError(ERR_ARRAY_BOUNDS);
    EXPECT_EQ(read("[4..9]", s), (Read{616, 7}));
    EXPECT_EQ(takeError(), ERR_ARRAY_BOUNDS);
    EXPECT_EQ(whole(s), "1..5[4..5]");
}

// ---- members ----

TEST_F(Sets, ASetAroundZeroHoldsItsEnds) {
    OwnedSet s = fixed(-10, 10);
    SetIncludeRange(-10, -6, s.get());
    SetIncludeRange(6, 10, s.get());
    EXPECT_EQ(SetLowerBound(s.get()), -10);
    EXPECT_EQ(SetUpperBound(s.get()), 10);
    EXPECT_TRUE(SetContains(-10, s.get()));
    EXPECT_TRUE(SetContains(10, s.get()));
    EXPECT_FALSE(SetContains(0, s.get()));
    EXPECT_EQ(SetCount(s.get()), 10);
    OwnedSet copy;
    AdtCopy(s.get(), copy.get(), KindSet);
    EXPECT_EQ(whole(copy), "-10..10[-10..-6,6..10]");
}

TEST_F(Sets, MembersOutsideEverySetGive601) {
    for (OwnedSet* s : {new OwnedSet(dynamic("[1]")), new OwnedSet(fixed(lowest, highest, "[1]"))}) {
        const std::string before = whole(*s);
        for (const std::int32_t i : {40000, highest + 1, lowest - 1, INT32_MAX, INT32_MIN}) {
            SetInclude(i, s->get());
            EXPECT_EQ(takeError(), 601) << i;
            SetExclude(i, s->get());
            EXPECT_EQ(takeError(), 601) << i;
            EXPECT_FALSE(SetContains(i, s->get()));
            EXPECT_EQ(ErrorCell(), 0);
        }
        constexpr std::int32_t ranges[][2] = {{5, 1}, {1, 40000}, {-40000, 1}, {INT32_MIN, INT32_MAX}};
        for (const auto& range : ranges) {
            SetIncludeRange(range[0], range[1], s->get());
            EXPECT_EQ(takeError(), 601);
            SetExcludeRange(range[0], range[1], s->get());
            EXPECT_EQ(takeError(), 601);
        }
        EXPECT_EQ(whole(*s), before);
        delete s;
    }
}

TEST_F(Sets, AFixedSetRefusesMembersOutsideItsBoundsAsAWhole) {
    OwnedSet s = fixed(3, 12, "[5]");
    constexpr std::int32_t ranges[][2] = {{2, 2}, {13, 13}, {2, 12}, {3, 13}, {20, 30}, {-5, -1}, {12, 3}};
    for (const auto& range : ranges) {
        SetIncludeRange(range[0], range[1], s.get());
        EXPECT_EQ(takeError(), 601) << range[0];
        SetExcludeRange(range[0], range[1], s.get());
        EXPECT_EQ(takeError(), 601) << range[0];
    }
    SetInclude(2, s.get());
    EXPECT_EQ(takeError(), 601);
    SetExclude(13, s.get());
    EXPECT_EQ(takeError(), 601);
    EXPECT_EQ(whole(s), "3..12[5]");
    SetIncludeRange(3, 12, s.get());
    EXPECT_EQ(whole(s), "3..12[3..12]");
}

TEST_F(Sets, ADynamicSetWidensToWhatIsIncluded) {
    OwnedSet s = dynamic();
    SetInclude(100, s.get());
    EXPECT_EQ(whole(s), "1..100[100]");
    EXPECT_FALSE(SetContains(1, s.get()));
    SetInclude(-100, s.get());
    EXPECT_EQ(whole(s), "-100..100[-100,100]");
    SetInclude(0, s.get());
    EXPECT_EQ(whole(s), "-100..100[-100,0,100]");
    SetIncludeRange(lowest, lowest + 1, s.get());
    EXPECT_EQ(whole(s), "-32768..100[-32768..-32767,-100,0,100]");
    SetIncludeRange(99, highest, s.get());
    EXPECT_EQ(whole(s), "-32768..32767[-32768..-32767,-100,0,99..32767]");
    OwnedSet one = dynamic("[1]");
    SetInclude(100, one.get());
    EXPECT_EQ(whole(one), "1..100[1,100]");
}

TEST_F(Sets, WideningByOneMemberAtATimeKeepsAllOthers) {
    OwnedSet s = dynamic();
    for (std::int32_t i = 1; i <= 300; i += 2) {
        SetInclude(i, s.get());
        SetInclude(-i, s.get());
        ASSERT_EQ(SetCount(s.get()), i + 1);
        ASSERT_EQ(AdtCheck(s.get(), KindSet), "");
    }
    EXPECT_EQ(SetLowerBound(s.get()), -299);
    EXPECT_EQ(SetUpperBound(s.get()), 299);
}

TEST_F(Sets, ExcludingWidensNothing) {
    OwnedSet s = dynamic("[1..20]");
    SetExclude(100, s.get());
    SetExclude(-100, s.get());
    SetExcludeRange(50, 60, s.get());
    SetExcludeRange(-9, 0, s.get());
    EXPECT_EQ(whole(s), "1..20[1..20]");
    SetExcludeRange(15, 60, s.get());
    SetExcludeRange(-9, 3, s.get());
    EXPECT_EQ(whole(s), "1..20[4..14]");
    SetExcludeRange(lowest, highest, s.get());
    EXPECT_EQ(whole(s), "1..20[]");
}

TEST_F(Sets, RangesOfEveryLengthAndPlaceFillJustTheirMembers) {
    for (std::int32_t lo = -20; lo <= 20; ++lo) {
        for (std::int32_t hi = lo; hi <= 20; ++hi) {
            OwnedSet in = fixed(-20, 20), out = fixed(-20, 20, "[-20..20]");
            SetIncludeRange(lo, hi, in.get());
            SetExcludeRange(lo, hi, out.get());
            ASSERT_EQ(SetCount(in.get()), hi - lo + 1);
            for (std::int32_t i = -20; i <= 20; ++i) {
                ASSERT_EQ(SetContains(i, in.get()), i >= lo && i <= hi) << lo << ".." << hi << ": " << i;
                ASSERT_EQ(SetContains(i, out.get()), i < lo || i > hi) << lo << ".." << hi << ": " << i;
            }
        }
    }
}

TEST_F(Sets, TheWidestSetHoldsAllItsMembers) {
    OwnedSet s = dynamic();
    SetIncludeRange(lowest, highest, s.get());
    EXPECT_EQ(SetCount(s.get()), 65536);
    EXPECT_EQ(whole(s), "-32768..32767[-32768..32767]");
    SetExclude(lowest, s.get());
    SetExclude(highest, s.get());
    SetExclude(0, s.get());
    EXPECT_EQ(textOf(s), "[-32767..-1,1..32766]");
    SetExcludeRange(lowest, highest, s.get());
    EXPECT_EQ(SetCount(s.get()), 0);
}

TEST_F(Sets, ContainsIsFalseOutsideTheBoundsWithoutAnError) {
    const OwnedSet s = fixed(3, 5, "[3..5]");
    for (const std::int32_t i : {1, 2, 6, 8, 9, -5, 40000, INT32_MIN, INT32_MAX})
        EXPECT_FALSE(SetContains(i, s.get())) << i;
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- redimensioning ----

TEST_F(Sets, OnlyADynamicSetIsRedimensioned) {
    OwnedSet s = fixed(1, 9, "[2]");
    SetRedim(s.get(), 1, 20, true);
    EXPECT_EQ(takeError(), 614);
    SetRedim(s.get(), 20, 1, true);
    EXPECT_EQ(takeError(), 614);
    EXPECT_EQ(whole(s), "1..9[2]");
}

TEST_F(Sets, BadNewBoundsGive601AndNoChange) {
    OwnedSet s = dynamic("[2..9]");
    constexpr std::int32_t rows[][2] = {{5, 1}, {lowest - 1, 0}, {0, highest + 1}, {UNBOUNDED, UNBOUNDED}};
    for (const auto& row : rows) {
        SetRedim(s.get(), row[0], row[1], false);
        EXPECT_EQ(takeError(), 601);
    }
    EXPECT_EQ(whole(s), "1..9[2..9]");
}

TEST_F(Sets, RedimensioningKeepsTheMembersWithinBothBounds) {
    for (std::int32_t lower = -18; lower <= 34; ++lower) {
        for (std::int32_t upper = lower; upper <= 34; ++upper) {
            OwnedSet s = dynamic();
            SetRedim(s.get(), -9, 25, false);
            SetIncludeRange(-9, 25, s.get());
            SetRedim(s.get(), lower, upper, true);
            const std::int32_t first = std::max(lower, -9), last = std::min(upper, 25);
            ASSERT_EQ(AdtCheck(s.get(), KindSet), "") << lower << ".." << upper;
            ASSERT_EQ(SetLowerBound(s.get()), lower);
            ASSERT_EQ(SetUpperBound(s.get()), upper);
            ASSERT_EQ(SetCount(s.get()), std::max(0, last - first + 1)) << lower << ".." << upper;
            ASSERT_EQ(SetContains(first, s.get()), first <= last);
        }
    }
}

TEST_F(Sets, MembersThatWereLostDoNotComeBack) {
    OwnedSet s = dynamic("[1..16]");
    SetRedim(s.get(), 4, 5, true);
    SetRedim(s.get(), 1, 16, true);
    EXPECT_EQ(whole(s), "1..16[4..5]");
    SetRedim(s.get(), 1, 16, false);
    EXPECT_EQ(whole(s), "1..16[]");
}

}  // namespace
