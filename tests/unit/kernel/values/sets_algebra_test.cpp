// SPDX-License-Identifier: Apache-2.0
//
// Sets with each other: algebra, assignment, comparing.
#include "unit/kernel/sets_fixture.h"

#include "kernel/values/adt_kinds.h"
#include "kernel/values/sets.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <gtest/gtest.h>

using namespace tarn;

namespace {

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

}  // namespace
