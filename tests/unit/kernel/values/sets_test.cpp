// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/sets.h"

#include "kernel/run/errors.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

using namespace tarn;

namespace {

constexpr std::int32_t lowest = -32768, highest = 32767;

// Every set lives and dies under memory checking, so that a leak or a wrong free fails the test.
class Sets : public Runtime {
protected:
    void SetUp() override {
        Runtime::SetUp();
        SetMemoryChecking(true);
    }
    void TearDown() override {
        FailAllocation(-1);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(LiveBlocks(), 0);
        Runtime::TearDown();
    }
    static OwnedSet dynamic(std::string_view members = "[]") { return made(UNBOUNDED, UNBOUNDED, members); }
    static OwnedSet fixed(std::int32_t lower, std::int32_t upper, std::string_view members = "[]") {
        return made(lower, upper, members);
    }
    static std::string textOf(const SetDescriptor* s, bool dots = true) {
        String text;
        SetToText(s, dots, text.get());
        return std::string(text.view());
    }
    static std::string textOf(const OwnedSet& s) { return textOf(s.get()); }
    // "lower..upper[members]", and what is wrong with the set.
    static std::string whole(const SetDescriptor* s) {
        return std::to_string(SetLowerBound(s)) + ".." + std::to_string(SetUpperBound(s)) + textOf(s) +
               AdtCheck(s, KindSet);
    }
    static std::string whole(const OwnedSet& s) { return whole(s.get()); }
    static bool isZero(const SetDescriptor& s) {
        const SetDescriptor zero{};
        return std::memcmp(&s, &zero, sizeof s) == 0;
    }

    struct Read {
        std::int32_t error, position;
        bool operator==(const Read& other) const = default;
        friend std::ostream& operator<<(std::ostream& out, const Read& read) {
            return out << "error " << read.error << ", position " << read.position;
        }
    };
    static Read read(std::string_view text, const OwnedSet& s, std::int32_t position = 1) {
        Read result{-1, position};
        SetFromText(text, result.position, const_cast<OwnedSet&>(s).get(), result.error);
        return result;
    }

private:
    static OwnedSet made(std::int32_t lower, std::int32_t upper, std::string_view members) {
        OwnedSet s;
        SetInit(s.get(), lower, upper);
        EXPECT_EQ(read(members, s).error, 0) << members;
        return s;
    }
};

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

// ---- algebra ----

TEST_F(Sets, AlgebraSpansTheBoundsOfBoth) {
    const OwnedSet a = fixed(-20, 5, "[-20,-3..5]"), b = fixed(0, 30, "[2..9,30]");
    OwnedSet d = dynamic();
    SetUnion(a.get(), b.get(), d.get());
    EXPECT_EQ(whole(d), "-20..30[-20,-3..9,30]");
    SetIntersect(a.get(), b.get(), d.get());
    EXPECT_EQ(whole(d), "-20..30[2..5]");
    SetDifference(a.get(), b.get(), d.get());
    EXPECT_EQ(whole(d), "-20..30[-20,-3..1]");
    SetDifference(b.get(), a.get(), d.get());
    EXPECT_EQ(whole(d), "-20..30[6..9,30]");
}

TEST_F(Sets, AlgebraOfSetsFarApart) {
    const OwnedSet low = fixed(lowest, lowest + 9, "[-32768,-32760]"),
                   high = fixed(highest - 9, highest, "[32760..32767]");
    OwnedSet d = dynamic();
    SetUnion(high.get(), low.get(), d.get());
    EXPECT_EQ(whole(d), "-32768..32767[-32768,-32760,32760..32767]");
    SetIntersect(low.get(), high.get(), d.get());
    EXPECT_EQ(whole(d), "-32768..32767[]");
    SetDifference(low.get(), high.get(), d.get());
    EXPECT_EQ(whole(d), "-32768..32767[-32768,-32760]");
}

TEST_F(Sets, AnOperandMayBeTheDestination) {
    using Algebra = void (*)(const SetDescriptor*, const SetDescriptor*, SetDescriptor*);
    constexpr struct {
        Algebra algebra;
        const char *toFirst, *toSecond, *withItself;
    } rows[] = {{SetUnion, "-9..70[-9..5,40..70]", "-9..70[-9..5,40..70]", "-9..60[-9..5,40..60]"},
                {SetIntersect, "-9..70[1..5,50..60]", "-9..70[1..5,50..60]", "-9..60[-9..5,40..60]"},
                {SetDifference, "-9..70[-9..0,40..49]", "-9..70[-9..0,40..49]", "-9..60[]"}};
    for (const auto& row : rows) {
        OwnedSet a = dynamic("[-9..5,40..60]"), b = dynamic("[1..5,50..70]");
        row.algebra(a.get(), b.get(), a.get());
        EXPECT_EQ(whole(a), row.toFirst);
        EXPECT_EQ(whole(b), "1..70[1..5,50..70]");
        a = dynamic("[-9..5,40..60]");
        row.algebra(a.get(), b.get(), b.get());
        EXPECT_EQ(whole(b), row.toSecond);
        EXPECT_EQ(whole(a), "-9..60[-9..5,40..60]");
        row.algebra(a.get(), a.get(), a.get());
        EXPECT_EQ(whole(a), row.withItself);
    }
}

TEST_F(Sets, AFixedDestinationTakesWhatFitsAnd616) {
    const OwnedSet a = fixed(1, 20, "[1..20]"), b = fixed(15, 30, "[18..30]");
    OwnedSet f = fixed(5, 25, "[5]");
    SetUnion(a.get(), b.get(), f.get());
    EXPECT_EQ(takeError(), 616);
    EXPECT_EQ(whole(f), "5..25[5..25]");
    SetIntersect(a.get(), b.get(), f.get());
    EXPECT_EQ(whole(f), "5..25[18..20]");
    SetDifference(b.get(), a.get(), f.get());
    EXPECT_EQ(takeError(), 616);
    EXPECT_EQ(whole(f), "5..25[21..25]");
    SetUnion(f.get(), a.get(), f.get());
    EXPECT_EQ(takeError(), 616);
    EXPECT_EQ(whole(f), "5..25[5..25]");
}

// ---- assignment ----

TEST_F(Sets, ADynamicDestinationTakesTheBoundsOfTheSource) {
    OwnedSet d = dynamic("[500]");
    std::int32_t error = -1;
    SetAssign(d.get(), fixed(-10, 10, "[-9,9]").get(), error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(whole(d), "-10..10[-9,9]");
    EXPECT_EQ(d.get()->maxlength, DYNAMIC_BOUNDS);
    SetAssign(d.get(), d.get(), error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(whole(d), "-10..10[-9,9]");
}

TEST_F(Sets, AFixedDestinationKeepsItsBounds) {
    constexpr struct {
        const char *source, *expected;
        std::int32_t error;
    } rows[] = {
        {"[4..10]", "4..10[4..10]", 0},
        {"[]", "4..10[]", 0},
        {"[3..10]", "4..10[4..10]", 616},
        {"[5,11]", "4..10[5]", 616},
        {"[-500,7]", "4..10[7]", 616},
        {"[500]", "4..10[]", 616},
        {"[-500]", "4..10[]", 616},
        {"[1]", "4..10[]", 616},
        {"[-32768..32767]", "4..10[4..10]", 616},
    };
    for (const auto& row : rows) {
        OwnedSet f = fixed(4, 10, "[6]");
        std::int32_t error = -1;
        SetAssign(f.get(), dynamic(row.source).get(), error);
        EXPECT_EQ(error, row.error) << row.source;
        EXPECT_EQ(takeError(), row.error);
        EXPECT_EQ(whole(f), row.expected) << row.source;
    }
}

TEST_F(Sets, AnEmptySourceFarAwayFitsAnywhere) {
    for (const auto& source : {fixed(-900, -800), fixed(800, 900)}) {
        OwnedSet f = fixed(4, 10, "[6]");
        std::int32_t error = -1;
        SetAssign(f.get(), source.get(), error);
        EXPECT_EQ(error, 0);
        EXPECT_EQ(whole(f), "4..10[]");
    }
}

// ---- comparing ----

TEST_F(Sets, TheHighestDifferingMemberDecides) {
    constexpr struct {
        const char *a, *b;
        int order;
    } rows[] = {
        {"[9]", "[1,2,3]", 1},
        {"[]", "[]", 0},
        {"[]", "[-500]", -1},
        {"[1]", "[2]", -1},
        {"[1,9]", "[9]", 1},
        {"[1..7,9]", "[8,9]", -1},
        {"[-5]", "[-6]", 1},
        {"[-5]", "[-6,-5]", -1},
        {"[1..100]", "[101]", -1},
        {"[1..100]", "[1..99,101]", -1},
        {"[-100..100]", "[-99..100]", 1},
        {"[3,200]", "[4,200]", -1},
        {"[-32768..32767]", "[-32767..32767]", 1},
        {"[-300..-200]", "[200..300]", -1},
        {"[5]", "[5]", 0},
    };
    const auto expectOrder = [](const OwnedSet& a, const OwnedSet& b, int order) {
        const struct {
            const char* op;
            bool holds;
        } operators[] = {{"EQ", order == 0}, {"ne", order != 0}, {"Gt", order > 0},
                         {"lT", order < 0},  {"GE", order >= 0}, {"lexyz", order <= 0},
                         {"XX", false},      {"E", false},       {"", false}};
        for (const auto& row : operators)
            EXPECT_EQ(SetCompare(row.op, a.get(), b.get()), row.holds)
                << textOf(a) << " " << row.op << " " << textOf(b);
    };
    for (const auto& row : rows) {
        const OwnedSet a = dynamic(row.a), b = dynamic(row.b), wide = fixed(lowest, highest, row.b);
        expectOrder(a, b, row.order);
        expectOrder(b, a, -row.order);
        expectOrder(a, wide, row.order);
        expectOrder(wide, a, -row.order);
    }
}

TEST_F(Sets, BoundsDoNotCountInComparing) {
    EXPECT_TRUE(SetCompare("EQ", fixed(-100, -90).get(), fixed(90, 100).get()));
    EXPECT_TRUE(SetCompare("EQ", fixed(1, 8, "[3]").get(), fixed(3, 300, "[3]").get()));
    EXPECT_FALSE(SetCompare("NE", fixed(1, 8, "[3]").get(), fixed(-90, 5, "[3]").get()));
}

// ---- to text ----

TEST_F(Sets, TextShowsRuns) {
    constexpr struct {
        const char *members, *dots, *colon;
    } rows[] = {
        {"[1,2,3,7]", "[1..3,7]", "[1:3,7]"},
        {"[]", "[]", "[]"},
        {"[5]", "[5]", "[5]"},
        {"[1,2]", "[1..2]", "[1:2]"},
        {"[7,8,9]", "[7..9]", "[7:9]"},
        {"[-3,-1..1,3]", "[-3,-1..1,3]", "[-3,-1:1,3]"},
        {"[-32768,32767]", "[-32768,32767]", "[-32768,32767]"},
        {"[1..64,66..200,203]", "[1..64,66..200,203]", "[1:64,66:200,203]"},
    };
    for (const auto& row : rows) {
        const OwnedSet s = dynamic(row.members);
        EXPECT_EQ(textOf(s.get(), true), row.dots);
        EXPECT_EQ(textOf(s.get(), false), row.colon);
    }
}

TEST_F(Sets, RunsEndAtTheBoundsAndAtEachPlaceOfAByte) {
    for (std::int32_t lower = 1; lower <= 16; ++lower) {
        for (std::int32_t upper = lower + 1; upper <= 90; ++upper) {
            OwnedSet s = fixed(lower, upper);
            SetIncludeRange(lower, upper, s.get());
            ASSERT_EQ(textOf(s), "[" + std::to_string(lower) + ".." + std::to_string(upper) + "]");
        }
    }
}

TEST_F(Sets, TheLongestTextsComeBack) {
    OwnedSet s = dynamic(), again = fixed(lowest, highest);
    for (std::int32_t i = lowest; i <= highest; i += 3) SetIncludeRange(i, std::min(i + 1, highest), s.get());
    const std::string text = textOf(s);
    EXPECT_EQ(read(text, again), (Read{0, static_cast<std::int32_t>(text.size()) + 1}));
    EXPECT_TRUE(SetCompare("EQ", s.get(), again.get()));
}

TEST_F(Sets, TextGoesToItsDestinationAsInAnAssignment) {
    const OwnedSet s = dynamic("[1..3,7]");
    String four(4);
    SetToText(s.get(), true, four.get());
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(four.view(), "[1..");
    SetToText(s.get(), true, nullptr);
    EXPECT_EQ(takeError(), 756);
}

// ---- from text ----

TEST_F(Sets, TextsThatAreSets) {
    constexpr struct {
        const char *text, *expected;
    } rows[] = {
        {"[1,2,5..7]", "1..7[1..2,5..7]"},
        {"[]", "1..1[]"},
        {"  [ ] ", "1..1[]"},
        {"[5]", "1..5[5]"},
        {"[-5]", "-5..1[-5]"},
        {"[5:7]", "1..7[5..7]"},
        {"[+5..+7]", "1..7[5..7]"},
        {"[-7..-5]", "-7..1[-7..-5]"},
        {"[-1:1]", "-1..1[-1..1]"},
        {"[  1  ,  2  ,  5..7  ]", "1..7[1..2,5..7]"},
        {"[7,5..6,1,1,5]", "1..7[1,5..7]"},
        {"[5..5]", "1..5[5]"},
        {"[-0]", "0..1[0]"},
        {"[007]", "1..7[7]"},
        {"[100,-100]", "-100..100[-100,100]"},
        {"[-32768:32767]", "-32768..32767[-32768..32767]"},
        {"[1,]", "1..1[1]"},
        {"[,]", "1..1[]"},
        {"[,,2, ,]", "1..2[2]"},
    };
    for (const auto& row : rows) {
        const OwnedSet s = dynamic("[77]");
        const std::string text = row.text;
        EXPECT_EQ(read(text, s), (Read{0, static_cast<std::int32_t>(text.find(']')) + 2})) << text;
        EXPECT_EQ(whole(s), row.expected) << text;
    }
}

TEST_F(Sets, OtherTextsGive1AtTheOffendingCharacterAndNoChange) {
    constexpr struct {
        const char* text;
        std::int32_t position;
    } rows[] = {
        {"", 1},
        {"   ", 4},
        {"1,2]", 1},
        {"x", 1},
        {"]", 1},
        {"[", 2},
        {"[ ", 3},
        {"[1", 3},
        {"[1..", 5},
        {"[1..5", 6},
        {"[1..]", 5},
        {"[1:]", 4},
        {"[1:,2]", 4},
        {"[1.5]", 3},
        {"[1...5]", 5},
        {"[1..5..7]", 6},
        {"[..5]", 2},
        {"[:5]", 2},
        {"[1 2]", 4},
        {"[1 ..5]", 4},
        {"[1.. 5]", 5},
        {"[1,2", 5},
        {"[1,x]", 4},
        {"[x]", 2},
        {"[[1]]", 2},
        {"[-]", 2},
        {"[+]", 2},
        {"[--5]", 2},
        {"[- 5]", 2},
        {"[1..-]", 5},
        {"[\t1]", 2},
        {"[1;2]", 3},
        {"[99999999999]", 2},
        {"[2147483648]", 2},
        {"[-2147483649]", 2},
        {"[1..99999999999999999999999999]", 5},
        {"[3,40000,x]", 10},
        {"[5..1,", 7},
    };
    const OwnedSet s = dynamic("[77]");
    for (const auto& row : rows) {
        EXPECT_EQ(read(row.text, s), (Read{1, row.position})) << row.text;
        EXPECT_EQ(ErrorCell(), 0) << row.text;
        ASSERT_EQ(whole(s), "1..77[77]") << row.text;
    }
    EXPECT_EQ(read(std::string_view("[1\0]", 4), s), (Read{1, 3}));
    EXPECT_EQ(read(std::string_view("\0[1]", 4), s), (Read{1, 1}));
}

TEST_F(Sets, MembersThatNoSetCanHoldGive601BehindTheTextAndNoChange) {
    const OwnedSet d = dynamic("[77]"), f = fixed(1, 90, "[77]");
    for (const char* text : {"[5..1]", "[40000]", "[-32769]", "[1..32768]", "[2147483647]", "[-2147483648]",
                             "[1,5:4,7]", "[-2147483648..2147483647]"}) {
        const Read expected{601, static_cast<std::int32_t>(std::strlen(text)) + 1};
        for (const OwnedSet* s : {&d, &f}) {
            EXPECT_EQ(read(text, *s), expected) << text;
            EXPECT_EQ(takeError(), 601) << text;
        }
    }
    EXPECT_EQ(whole(d), "1..77[77]");
    EXPECT_EQ(whole(f), "1..90[77]");
}

TEST_F(Sets, AFixedSetTakesWhatFitsOfATextAnd616) {
    const OwnedSet f = fixed(3, 12, "[4]");
    EXPECT_EQ(read("[1..5,20]x", f), (Read{616, 10}));
    EXPECT_EQ(takeError(), 616);
    EXPECT_EQ(whole(f), "3..12[3..5]");
    EXPECT_EQ(read("[]", f), (Read{0, 3}));
    EXPECT_EQ(whole(f), "3..12[]");
    EXPECT_EQ(read("[1..5,40000]", f), (Read{601, 13}));
    EXPECT_EQ(takeError(), 601);
    EXPECT_EQ(whole(f), "3..12[]");
}

TEST_F(Sets, ReadingStartsAtThePositionAndEndsBehindTheBracket) {
    const OwnedSet s = dynamic();
    const std::string text = "a=[1] b = [2..3]; c";
    EXPECT_EQ(read(text, s, 3), (Read{0, 6}));
    EXPECT_EQ(textOf(s), "[1]");
    EXPECT_EQ(read(text, s, 10), (Read{0, 17}));
    EXPECT_EQ(textOf(s), "[2..3]");
    EXPECT_EQ(read(text, s, 1), (Read{1, 1}));
    EXPECT_EQ(read(text, s, 20), (Read{1, 20}));
    for (const std::int32_t outside : {0, -1, 21, INT32_MIN, INT32_MAX})
        EXPECT_EQ(read(text, s, outside), (Read{1, outside}));
    EXPECT_EQ(textOf(s), "[2..3]");
}

TEST_F(Sets, ATextThatStandsInTheSetItselfIsReadBeforeItIsReplaced) {
    OwnedSet s = fixed(1, 64);
    std::memcpy(At(s.get()->data), "[64,2:5]", 8);
    EXPECT_EQ(read({At(s.get()->data), 8}, s), (Read{0, 9}));
    EXPECT_EQ(whole(s), "1..64[2..5,64]");
}

TEST_F(Sets, LongHostileTextsEnd) {
    const OwnedSet s = dynamic();
    EXPECT_EQ(read("[" + std::string(100000, ','), s), (Read{1, 100002}));
    EXPECT_EQ(read(std::string(100000, ' '), s), (Read{1, 100001}));
    EXPECT_EQ(read("[" + std::string(100000, '9') + "]", s), (Read{1, 2}));
    EXPECT_EQ(read("[" + std::string(100000, '0') + "]", s), (Read{0, 100003}));
    EXPECT_EQ(whole(s), "0..1[0]");
    std::string ranges = "[";
    for (int i = 0; i < 1000; ++i) ranges += "-32768..32767,";
    EXPECT_EQ(read(ranges + "]", s).error, 0);
    EXPECT_EQ(whole(s), "-32768..32767[-32768..32767]");
}

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
