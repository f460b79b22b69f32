// SPDX-License-Identifier: Apache-2.0
//
// Sets to text, and from text.
#include "unit/kernel/sets_fixture.h"

#include "kernel/values/adt_kinds.h"
#include "kernel/values/sets.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <cstring>
#include <gtest/gtest.h>

using namespace tarn;

namespace {

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

}  // namespace
