// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_heads.h"

#include "unit/kernel/index_model.h"
#include "unit/kernel/runtime_fixture.h"

#include <bit>
#include <functional>
#include <limits>
#include <random>

using namespace tarn;

namespace {

class Heads : public Runtime {
protected:
    static KeyHead headOf(const Cells& cells) {
        const RecordValue key = recordOf(cells);
        KeyView view;
        EXPECT_TRUE(KeyOfRecord(key.get(), view));
        return HeadOfKey(view);
    }
    static std::uint32_t hashOf(const Cells& cells) {
        const RecordValue key = recordOf(cells);
        KeyView view;
        EXPECT_TRUE(KeyOfRecord(key.get(), view));
        return HashOfKey(view, HeadOfKey(view));
    }
    // What the heads of two keys tell must be so.
    static void expectTrue(const Cells& a, const Cells& b) {
        const KeyHead left = headOf(a), right = headOf(b);
        const bool same = sameCells(a, b);
        EXPECT_EQ(left.whole, right.whole);
        if (left.bits != right.bits) {
            EXPECT_EQ(left.bits < right.bits, CellsOrder()(a, b));
            EXPECT_FALSE(same);
        } else if (left.whole) {
            EXPECT_TRUE(same);
        }
        if (same) {
            EXPECT_EQ(hashOf(a), hashOf(b));
            EXPECT_EQ(left.bits, right.bits);
        }
    }
};

TEST_F(Heads, AreInTheOrderOfTheKeys) {
    std::mt19937 random(7);
    for (const KeyShape& shape : keyShapes) {
        SCOPED_TRACE(shape.name);
        for (int i = 0; i < 3000; ++i) expectTrue(randomKey(shape, random), randomKey(shape, random));
    }
}

TEST_F(Heads, TellTheKeysOfWholeNumbers) {
    std::mt19937_64 random(5);
    using Make = std::function<Cells(std::int64_t)>;
    const Make shapes[] = {
        [](std::int64_t n) { return Cells{integer(static_cast<std::int32_t>(n))}; },
        [](std::int64_t n) { return Cells{fixedNumber(n)}; },
        [](std::int64_t n) {
            return Cells{integer(static_cast<std::int32_t>(n)), integer(static_cast<std::int32_t>(n >> 32))};
        },
    };
    for (const Make& shape : shapes) {
        for (int i = 0; i < 1000; ++i) {
            const std::int64_t ends[] = {0, -1, INT32_MIN, INT32_MAX, INT64_MIN, INT64_MAX};
            const RecordValue key = recordOf(shape(i < 6 ? ends[i] : static_cast<std::int64_t>(random())));
            KeyView view;
            ASSERT_TRUE(KeyOfRecord(key.get(), view));
            ASSERT_TRUE(HeadTellsKey(view));
            KeyView told = view;
            char fields[8] = {};
            FieldsOfHead(HeadOfKey(view).bits, told, fields);
            ASSERT_EQ(CompareKeys(told, view), 0);
            ASSERT_EQ(HeadOfKey(told).bits, HeadOfKey(view).bits);
        }
    }
    for (const Cells& other : {Cells{real(1)}, Cells{text("a", 4)}, Cells{fixedNumber(1), integer(1)},
                               Cells{characters("a", 3)}}) {
        const RecordValue key = recordOf(other);
        KeyView view;
        ASSERT_TRUE(KeyOfRecord(key.get(), view));
        EXPECT_FALSE(HeadTellsKey(view));
    }
}

TEST_F(Heads, AreInTheOrderOfTheKeysAtTheirEnds) {
    constexpr double infinite = std::numeric_limits<double>::infinity(), least = 5e-324;
    const double oddNaN = std::bit_cast<double>(0xFFF8000000000001U);
    const std::vector<Cells> groups[] = {
        {{integer(INT32_MIN)}, {integer(-1)}, {integer(0)}, {integer(1)}, {integer(INT32_MAX)}},
        {{fixedNumber(INT64_MIN)}, {fixedNumber(-1)}, {fixedNumber(0)}, {fixedNumber(INT64_MAX)}},
        {{real(-infinite)},
         {real(-1)},
         {real(-least)},
         {real(-0.0)},
         {real(0)},
         {real(least)},
         {real(1e300)},
         {real(infinite)},
         {real(std::numeric_limits<double>::quiet_NaN())},
         {real(oddNaN)}},
        {{text("")},
         {text(std::string(1, '\0'))},
         {text("a")},
         {text(std::string("a\0", 2))},
         {text("abcdefgh")},
         {text("abcdefgha")},
         {text("abcdefghb")},
         {text("abcdefgi")},
         {text("\xff")}},
        {{characters("abcdefgh", 8)}, {characters("abcdefgi", 8)}, {characters("", 8)}},
        {{characters("abcdefghi", 9)}, {characters("abcdefghj", 9)}, {characters("", 9)}},
        {{flag(false), ordinal(255)}, {flag(true), ordinal(0)}, {flag(true), ordinal(255)}},
        {{integer(1), integer(2)}, {integer(1), integer(-2)}, {integer(-1), integer(7)}},
        {{integer(1), integer(2), flag(true)}, {integer(1), integer(2), flag(false)}},
        {{ordinal(1), fixedNumber(1)}, {ordinal(1), fixedNumber(2)}, {ordinal(1), fixedNumber(INT64_MIN)}},
        {{integer(5), text("ab"), integer(1)},
         {integer(5), text("ab"), integer(2)},
         {integer(5), text("abc"), integer(0)},
         {integer(5), text("abcdefgh"), integer(0)}},
        {{text("ab"), text("z")}, {text("ab"), text("")}, {text("abc"), text("")}},
    };
    for (const auto& group : groups) {
        for (const Cells& a : group) {
            for (const Cells& b : group) expectTrue(a, b);
        }
    }
}

TEST_F(Heads, AreWholeWhenNothingStandsBehindThem) {
    const struct {
        Cells key;
        bool whole;
    } cases[] = {
        {{integer(1)}, true},
        {{fixedNumber(1)}, true},
        {{real(1)}, true},
        {{characters("abc", 8)}, true},
        {{integer(1), integer(2)}, true},
        {{integer(1), flag(true), ordinal(3), characters("x", 2)}, true},
        {{characters("abc", 9)}, false},
        {{text("a")}, false},
        {{integer(1), text("a")}, false},
        {{text("a"), integer(1)}, false},
        {{fixedNumber(1), flag(true)}, false},
        {{integer(1), fixedNumber(2)}, false},
    };
    for (const auto& c : cases) EXPECT_EQ(headOf(c.key).whole, c.whole) << &c - cases;
}

TEST_F(Heads, OfWideTextsSayNothingOfThem) {
    CharacterWidth = 2;
    const KeyHead one = headOf({text("b")}), other = headOf({text("a")});
    EXPECT_EQ(one.bits, other.bits);
    EXPECT_FALSE(one.whole);
    CharacterWidth = 1;
}

}  // namespace
