// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/valuetext.h"
#include "kernel/lists/lists.h"
#include "kernel/tables/tables.h"
#include "kernel/values/strings.h"
#include "unit/kernel/filelists_fixture.h"
#include "unit/kernel/values_fixture.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace tarn;

namespace {

using model::Array;
using model::List;
using model::Number;
using model::Real;
using model::Record;
using model::Set;
using model::Text;

constexpr std::uint32_t compact = VALUE_BRACES | VALUE_BLANKS;

ValueModel integer(std::int64_t number) {
    return Number(KindInteger, number);
}
ValueModel integers(const std::vector<std::int64_t>& numbers, std::int32_t maxlength = UNBOUNDED) {
    std::vector<ValueModel> parts;
    for (const std::int64_t number : numbers) parts.push_back(integer(number));
    return List(integer(0), parts, maxlength);
}
ValueModel array(std::int32_t lower, const std::vector<std::int64_t>& numbers, std::int32_t maxlength = 0) {
    std::vector<ValueModel> parts;
    for (const std::int64_t number : numbers) parts.push_back(integer(number));
    const auto upper = lower + static_cast<std::int32_t>(numbers.size()) - 1;
    return Array({{lower, upper}}, integer(0), parts, maxlength);
}
ValueModel characters(std::string_view text, std::int32_t maxlength = 0) {
    std::vector<ValueModel> parts;
    for (const char c : text) parts.push_back(Number(KindEnum, static_cast<unsigned char>(c)));
    return Array({{1, static_cast<std::int32_t>(text.size())}}, Number(KindEnum, 0), parts, maxlength);
}
ValueModel unsized(const ValueModel& element) {
    return Array({}, element, {}, DYNAMIC_BOUNDS);
}

class ValueReading : public Values {};

// ---- what fits ----

struct Fit {
    ValueModel before;
    std::string text;
    std::int32_t behind;  // the position
    ValueModel after;
};

TEST_F(ValueReading, ReadsEachKind) {
    const Fit cases[] = {
        {Number(KindBoolean, 0), "True", 5, Number(KindBoolean, 1)},
        {Number(KindBoolean, 1), "no", 3, Number(KindBoolean, 0)},
        {Number(KindEnum, 1), "255 rest", 4, Number(KindEnum, 255)},
        {integer(1), "-2147483648", 12, integer(-2147483648)},
        {integer(1), "  +7,", 5, integer(7)},
        {integer(1), "0xFFFFFFFF", 11, integer(-1)},
        {integer(1), "0x1f", 5, integer(31)},
        {Number(KindFixed, 0), "-1.25", 6, Number(KindFixed, -12500)},
        {Number(KindFixed, 0), ".5", 3, Number(KindFixed, 5000)},
        {Real(1), "+1.2500000000000000E-0001", 26, Real(0.125)},
        {Real(1), "-INF}", 5, Real(-INFINITY)},
        {Text("old"), R"("a""b\t\n\r\\\x41\"")", 21, Text("a\"b\t\n\r\\A\"")},
        {Text("old"), "\"\xC3\xA9\"", 5, Text("\xC3\xA9")},
        {Text("old", 3), "\"\"", 3, Text("", 3)},
        {Set(1, 9, {1}), "[2, 4:5,7..9]x", 14, Set(1, 9, {2, 4, 5, 7, 8, 9})},
        {Record({integer(1), Text("a")}), "{2,\"b\"}", 8, Record({integer(2), Text("b")})},
        {Record({integer(1), Text("a")}), "2, \"b\"", 7, Record({integer(2), Text("b")})},
        {Record({integer(1), Text("a")}, KindUnion), "{ 2 , \"b\" }", 12,
         Record({integer(2), Text("b")}, KindUnion)},
        {array(5, {1, 2, 3}), "{7,8,9}", 8, array(5, {7, 8, 9})},
        {array(5, {1, 2, 3}, DYNAMIC_BOUNDS), "{7}", 4, array(5, {7}, DYNAMIC_BOUNDS)},
        {unsized(integer(0)), "{7,8}", 6, array(1, {7, 8}, DYNAMIC_BOUNDS)},
        {integers({1}), "{7, 8, 9}", 10, integers({7, 8, 9})},
        {integers({1}), "7,8", 4, integers({7, 8})},
        {integers({1}), "7,8 rest", 4, integers({7, 8})},
        {integers({1, 2}), "{}", 3, integers({})},
        {integers({1}, 3), "{\n   4,\n   5,\n   6\n}", 21, integers({4, 5, 6}, 3)},
        {characters("abc"), "\"xy\"", 5, characters(std::string_view("xy\0", 3))},
        {characters("abc"), "{65, 66, 67}", 13, characters("ABC")},
        {characters("abc", DYNAMIC_BOUNDS), "\"xyxyx\"", 8, characters("xyxyx", DYNAMIC_BOUNDS)},
    };
    for (const Fit& fit : cases) {
        OddValue value(fit.before);
        std::int32_t position = 1;
        EXPECT_TRUE(ValueFromText(fit.text, position, value.at(), fit.before.kind)) << fit.text;
        EXPECT_EQ(position, fit.behind) << fit.text;
        EXPECT_EQ(model::Differs(fit.after, value.at()), "") << fit.text;
    }
}

TEST_F(ValueReading, LeavesEmptyElementsAtTheirDefault) {
    const Fit cases[] = {
        {Record({integer(1), Text("a"), Set(1, 9, {3})}), "{,,}", 5,
         Record({integer(0), Text(""), Set(1, 9, {})})},
        {Record({integer(1), Text("a")}), "{}", 3, Record({integer(0), Text("")})},
        {Record({integer(1), Text("a")}), "{5}", 4, Record({integer(5), Text("")})},
        {array(1, {1, 2, 3}), "{,5}", 5, array(1, {0, 5, 0})},
        {array(4, {1, 2, 3}, DYNAMIC_BOUNDS), "{}", 3, array(4, {0, 0, 0}, DYNAMIC_BOUNDS)},
        {unsized(integer(0)), "{}", 3, unsized(integer(0))},
        {unsized(integer(0)), "{,}", 4, array(1, {0, 0}, DYNAMIC_BOUNDS)},
        {integers({1}), "{,}", 4, integers({0, 0})},
        {integers({1}), "7,", 3, integers({7, 0})},
        {List(Text(""), {Text("a")}), "{\"b\",}", 7, List(Text(""), {Text("b"), Text("")})},
    };
    for (const Fit& fit : cases) {
        OddValue value(fit.before);
        std::int32_t position = 1;
        EXPECT_TRUE(ValueFromText(fit.text, position, value.at(), fit.before.kind)) << fit.text;
        EXPECT_EQ(position, fit.behind) << fit.text;
        EXPECT_EQ(model::Differs(fit.after, value.at()), "") << fit.text;
    }
}

TEST_F(ValueReading, KeepsBoundsThatAreNotInTheText) {
    const ValueModel square =
        Array({{0, 1}, {5, 6}}, integer(0), {integer(1), integer(2), integer(3), integer(4)}, DYNAMIC_BOUNDS);
    OddValue value(square);
    std::int32_t position = 1;
    EXPECT_TRUE(ValueFromText("{9,8,7,6}", position, value.at(), KindArray));
    EXPECT_EQ(model::Differs(Array({{0, 1}, {5, 6}}, integer(0),
                                   {integer(9), integer(8), integer(7), integer(6)}, DYNAMIC_BOUNDS),
                             value.at()),
              "");
    OddValue inside(Record({array(-3, {1, 2}, DYNAMIC_BOUNDS)}));
    position = 1;
    EXPECT_TRUE(ValueFromText("{{5,6,7}}", position, inside.at(), KindRecord));
    EXPECT_EQ(model::Differs(Record({array(-3, {5, 6, 7}, DYNAMIC_BOUNDS)}), inside.at()), "");
}

TEST_F(ValueReading, GoesOnWhereItStopped) {
    const std::string text = "{1,2} {3} 4";
    OddValue list(integers({}));
    std::int32_t position = 1;
    EXPECT_TRUE(ValueFromText(text, position, list.at(), KindList));
    EXPECT_EQ(model::Differs(integers({1, 2}), list.at()), "");
    EXPECT_TRUE(ValueFromText(text, position, list.at(), KindList));
    EXPECT_EQ(model::Differs(integers({3}), list.at()), "");
    std::int32_t number = 0;
    EXPECT_TRUE(ValueFromText(text, position, &number, KindInteger));
    EXPECT_EQ(number, 4);
    EXPECT_EQ(position, 12);
    EXPECT_FALSE(ValueFromText(text, position, &number, KindInteger));
}

TEST_F(ValueReading, AWholeTextIsOneValueAlone) {
    const struct {
        const char* text;
        bool fits;
        std::int32_t position;
    } cases[] = {{"5", true, 2}, {" 5 \n", true, 5}, {"5 6", false, 3}, {"5,", false, 2}, {"", false, 1}};
    for (const auto& one : cases) {
        std::int32_t number = 1;
        ValueMisfit misfit{100, 7, 7};
        EXPECT_EQ(ValueFromWholeText(one.text, &number, KindInteger, misfit), one.fits) << one.text;
        EXPECT_EQ(misfit.position, one.position) << one.text;
        EXPECT_EQ(misfit.kind, KindInteger) << one.text;
        EXPECT_EQ(misfit.capacity, 0) << one.text;
        EXPECT_EQ(number, one.fits ? 5 : 1);
    }
    std::int64_t fixed = 1;
    ValueMisfit misfit;
    EXPECT_FALSE(ValueFromWholeText("1E5", &fixed, KindFixed, misfit));
    EXPECT_EQ(misfit.position, 2);
    OddValue list(integers({1}));
    EXPECT_FALSE(ValueFromWholeText("{2} 3", list.at(), KindList, misfit));
    EXPECT_EQ(model::Differs(integers({1}), list.at()), "");
}

// ---- what does not fit ----

TEST_F(ValueReading, RefusesWhatDoesNotFitAndChangesNothing) {
    const struct {
        ValueModel value;
        std::string text;
        std::int32_t position;
    } cases[] = {
        {Number(KindBoolean, 1), "maybe", 1},
        {Number(KindBoolean, 1), "", 1},
        {Number(KindEnum, 1), "256", 1},
        {Number(KindEnum, 1), "-1", 1},
        {integer(1), "x", 1},
        {integer(1), "", 1},
        {integer(1), "   ", 4},
        {integer(1), "2147483648", 1},
        {integer(1), std::string(100000, '9'), 1},
        {integer(1), "0x", 1},
        {integer(1), "0x100000000", 1},
        {integer(1), "-", 1},
        {Number(KindFixed, 1), "1.2.3", 1},
        {Number(KindFixed, 1), std::string(1000, '9'), 1},
        {Real(1), "1E400", 1},
        {Real(1), "e", 1},
        {Text("old"), "abc", 1},
        {Text("old"), "\"abc", 5},
        {Text("old"), "\"a\\q\"", 3},
        {Text("old"), "\"a\\x4\"", 3},
        {Text("old"), "\"\\", 2},
        {Text("old", 3), "\"abcd\"", 1},
        {Set(1, 9, {1}), "[1,", 4},
        {Set(1, 9, {1}), "[10]", 1},
        {Set(1, 9, {1}), "1", 1},
        {Set(1, 1, {}, DYNAMIC_BOUNDS), "[40000]", 1},
        {Record({integer(1)}), "{1", 3},
        {Record({integer(1)}), "{1,2}", 4},
        {Record({integer(1), Text("a")}), "{1,2}", 4},
        {Record({Record({integer(1)})}), "{1}", 2},
        {array(1, {1, 2}), "{1,2,3}", 6},
        {array(1, {1, 2}), "{1 2}", 4},
        {integers({1}), "{1,2", 5},
        {integers({1}), "{1,x}", 4},
        {integers({1}), "{", 2},
        {integers({1}), "}", 1},
        {integers({1, 2}, 2), "{1,2,3}", 6},
        {List(integers({}), {integers({1})}), std::string(100000, '{'), 3},
        {List(integers({}), {integers({1})}), "{{1},{2,{3}}}", 9},
        {characters("abc"), "\"abcd\"", 1},
        {array(32766, {1, 2}, DYNAMIC_BOUNDS), "{1,2,3}", 2},
    };
    for (const auto& one : cases) {
        const std::string shown = one.text.substr(0, 40);
        OddValue value(one.value);
        std::int32_t position = 1;
        EXPECT_FALSE(ValueFromText(one.text, position, value.at(), one.value.kind)) << shown;
        EXPECT_EQ(position, one.position) << shown;
        EXPECT_EQ(model::Differs(one.value, value.at()), "") << shown;
        EXPECT_EQ(takeError(), 0) << shown;
    }
}

TEST_F(ValueReading, RefusesWhatIsNoValue) {
    std::int32_t number = 5, position = 1;
    EXPECT_FALSE(ValueFromText("1", position, nullptr, KindInteger));
    EXPECT_EQ(takeError(), 764);
    for (const std::int32_t kind : {-1, 0, 13}) {
        EXPECT_FALSE(ValueFromText("1", position, &number, kind));
        EXPECT_EQ(takeError(), 764);
    }
    char zeros[64] = {};
    for (std::int32_t kind = KindString; kind <= KindTable; ++kind) {
        EXPECT_FALSE(ValueFromText("{}", position, zeros, kind));
        EXPECT_EQ(takeError(), 764);
    }
    for (const std::int32_t outside : {-1, 0, 3}) {
        position = outside;
        EXPECT_FALSE(ValueFromText("1", position, &number, KindInteger));
        EXPECT_EQ(position, outside);
    }
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(number, 5);
}

TEST_F(ValueReading, EveryCutOfATextIsRefusedOrReadAndNothingLeaks) {
    const ValueModel shape = Record({integer(1), Text("abc", 8), Set(1, 9, {1}),
                                     List(Text(""), {Text("x"), Text("y")}), array(1, {1, 2}, DYNAMIC_BOUNDS),
                                     Record({Number(KindBoolean, 1), Real(2.5)}), characters("abc")});
    const OddValue full(shape);
    const std::string text = ValueText(full.at(), KindRecord, compact | VALUE_CHARACTERS);
    for (std::size_t n = 0; n <= text.size(); ++n) {
        OddValue value(shape);
        std::int32_t position = 1;
        EXPECT_EQ(ValueFromText(text.substr(0, n), position, value.at(), KindRecord), n == text.size()) << n;
        EXPECT_EQ(model::Differs(shape, value.at()), "") << n;
    }
}

TEST_F(ValueReading, LackOfMemoryChangesNothing) {
    const ValueModel before = Record({Text("abc"), integers({1}), List(Text(""), {Text("x")})});
    const ValueModel after =
        Record({Text("longer than that"), integers({1, 2}), List(Text(""), {Text("y"), Text("zz")})});
    failEveryRequest([&] { return std::make_unique<OddValue>(before); },
                     [&](std::unique_ptr<OddValue>& value) {
                         std::int32_t position = 1;
                         static_cast<void>(ValueFromText(R"({"longer than that",{1,2},{"y","zz"}})", position,
                                                         value->at(), KindRecord));
                     },
                     [&](std::unique_ptr<OddValue>& value, bool failed) {
                         EXPECT_EQ(model::Differs(failed ? before : after, value->at()), "");
                     });
}

// ---- tables and files ----

TEST_F(ValueReading, ReadsTheRowsOfATable) {
    const OddValue row(Record({integer(1), Text("a", 4)}));
    TableValue table;
    TableInit(table.get(), UNBOUNDED, static_cast<const RecordDescriptor*>(row.at()), {MakeKeyMap(1)}, "",
              false);
    std::int32_t position = 1;
    EXPECT_TRUE(ValueFromText("{{2,\"b\"},{1,\"a\"}}", position, table.get(), KindTable));
    EXPECT_EQ(ValueText(table.get(), KindTable, compact), "{{2, \"b\"}, {1, \"a\"}}");
    EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
    position = 1;
    EXPECT_FALSE(ValueFromText("{{3,\"b\"},{3,\"a\"}}", position, table.get(), KindTable));
    EXPECT_EQ(position, 10);
    EXPECT_EQ(ValueText(table.get(), KindTable, compact), "{{2, \"b\"}, {1, \"a\"}}");
    EXPECT_EQ(takeError(), 0);
}

class FileValueReading : public FileLists {};

TEST_F(FileValueReading, FillsTheFileAnew) {
    ListValue list = numbers("/d/n.dat", {1, 2, 3});
    std::int32_t position = 1;
    EXPECT_TRUE(ValueFromText("{4,5}", position, list.get(), KindList));
    EXPECT_EQ(numbersIn(list), (Numbers{4, 5}));
    EXPECT_EQ(bytesOf("/d/n.dat").size(), 8U);
    position = 1;
    EXPECT_FALSE(ValueFromText("{4,x}", position, list.get(), KindList));
    EXPECT_EQ(numbersIn(list), (Numbers{4, 5}));
    EXPECT_EQ(files_.allFiles().size(), 1U);
    ListValue closed = listOf(integer(0));
    position = 1;
    EXPECT_FALSE(ValueFromText("{1}", position, closed.get(), KindList));
    EXPECT_EQ(takeError(), 0);
    FileClose(list.get(), KindList);
}

// ---- there and back ----

class RandomValues {
public:
    explicit RandomValues(std::uint32_t seed) : random_(seed) {}

    std::int32_t below(std::int32_t n) {
        return static_cast<std::int32_t>(random_() % static_cast<unsigned>(n));
    }
    ValueModel value(int depth) {
        static constexpr Kind simple[] = {KindBoolean, KindEnum,   KindInteger, KindFixed,
                                          KindReal,    KindString, KindSet};
        const std::int32_t pick = below(depth > 0 ? 11 : 7);
        switch (pick) {
        case 7: return fields(KindRecord, depth);
        case 8: return fields(KindUnion, depth);
        case 9: return arrayOf(depth);
        case 10: return listOf(depth);
        default: return leaf(simple[pick]);
        }
    }
    // Other content in the same shape.
    ValueModel refilled(const ValueModel& shape) {
        ValueModel m = shape;
        if (!IsAdtKind(m.kind) || m.kind == KindString || m.kind == KindSet) return leafLike(m);
        for (ValueModel& part : m.parts) part = refilled(part);
        return m;
    }

private:
    ValueModel leaf(Kind kind) {
        if (kind == KindString) return leafLike(Text("", below(2) == 0 ? UNBOUNDED : 1 + below(12)));
        if (kind == KindReal) return leafLike(Real(0));
        if (kind == KindSet) {
            const std::int32_t lower = below(40) - 20;
            return leafLike(Set(lower, lower + below(40), {}));
        }
        return leafLike(Number(kind, 0));
    }
    ValueModel leafLike(ValueModel m) {
        switch (m.kind) {
        case KindBoolean: m.number = below(2); break;
        case KindEnum: m.number = below(256); break;
        case KindInteger: m.number = static_cast<std::int32_t>(random_()); break;
        case KindFixed: m.number = static_cast<std::int64_t>(random_()) << 32 | random_(); break;
        case KindReal: m.real = real(); break;
        case KindString: m.text = text(m.maxlength == UNBOUNDED ? 20 : m.maxlength); break;
        default: {
            m.members.clear();
            for (std::int32_t i = m.bounds[0].lower; i <= m.bounds[0].upper; ++i)
                if (below(3) == 0) m.members.insert(i);
        }
        }
        return m;
    }
    double real() {
        if (below(20) == 0) return below(2) == 0 ? INFINITY : -INFINITY;
        const std::uint64_t bits = static_cast<std::uint64_t>(random_()) << 32 | random_();
        const auto number = ReadAt<double>(&bits);
        return std::isfinite(number) ? number : 0.5;
    }
    std::string text(std::int32_t longest) {
        std::string s(static_cast<std::size_t>(below(longest + 1)), ' ');
        for (char& c : s) c = static_cast<char>(below(256));
        return s;
    }
    ValueModel fields(Kind kind, int depth) {
        std::vector<ValueModel> parts;
        for (std::int32_t n = below(5); n > 0; --n) parts.push_back(value(depth - 1));
        return Record(parts, kind);
    }
    std::vector<ValueModel> alike(const ValueModel& element, std::int32_t count) {
        std::vector<ValueModel> parts;
        for (; count > 0; --count) parts.push_back(refilled(element));
        return parts;
    }
    ValueModel arrayOf(int depth) {
        const ValueModel element = value(depth - 1);
        const bool dynamic = below(2) == 0;
        const std::int32_t lower = dynamic ? 1 : below(9) - 4, count = 1 + below(4);
        if (below(3) == 0 && !dynamic)
            return Array({{lower, lower + count - 1}, {1, 2}}, element, alike(element, 2 * count));
        return Array({{lower, lower + count - 1}}, element, alike(element, count),
                     dynamic ? DYNAMIC_BOUNDS : 0);
    }
    ValueModel listOf(int depth) {
        const ValueModel element = value(depth - 1);
        const std::int32_t count = below(4);
        return List(element, alike(element, count), below(2) == 0 ? UNBOUNDED : 4);
    }
    std::mt19937 random_;
};

TEST_F(ValueReading, GivesBackWhatWasWritten) {
    SetMemoryChecking(false);  // the free of each block would search all
    static constexpr std::uint32_t forms[] = {VALUE_BRACES,
                                              compact,
                                              compact | VALUE_CHARACTERS,
                                              VALUE_BRACES | VALUE_NEWLINES,
                                              compact | VALUE_NEWLINES | VALUE_INDENT | VALUE_HEX,
                                              compact | VALUE_HEX | VALUE_CHARACTERS};
    RandomValues random(20260725);
    int byKind[KindCount] = {};
    for (int n = 0; n < 100000; ++n) {
        const ValueModel written = random.value(3), before = random.refilled(written);
        ++byKind[written.kind];
        OddValue value(written), target(before);
        const std::uint32_t flags = forms[n % 6];
        const std::string text = ValueText(value.at(), written.kind, flags);
        if (text.size() == MaxValueText) continue;
        std::int32_t position = 1;
        ASSERT_TRUE(ValueFromText(text, position, target.at(), written.kind)) << text << " at " << position;
        ASSERT_EQ(position, static_cast<std::int32_t>(text.size()) + 1) << text;
        ASSERT_EQ(model::Differs(written, target.at()), "") << text;
        ASSERT_EQ(ValueText(target.at(), written.kind, flags), text);
    }
    for (std::int32_t kind = KindBoolean; kind <= KindList; ++kind) EXPECT_GT(byKind[kind], 5000) << kind;
}

TEST_F(ValueReading, GivesBackTables) {
    SetMemoryChecking(false);
    RandomValues random(7);
    for (int n = 0; n < 2000; ++n) {
        const OddValue like(Record({integer(0), Text("", 6), Real(0)}));
        TableValue from, to;
        for (TableValue* table : {&from, &to})
            TableInit(table->get(), UNBOUNDED, static_cast<const RecordDescriptor*>(like.at()),
                      {MakeKeyMap(1), MakeKeyMap(2, 1)}, "", false);
        for (std::int32_t i = random.below(8); i > 0; --i) {
            const OddValue row(random.refilled(Record({integer(0), Text("", 6), Real(0)})));
            TableAdd(from.get(), 1, static_cast<const RecordDescriptor*>(row.at()));
            ClearError();
        }
        const std::string text = ValueText(from.get(), KindTable, compact);
        std::int32_t position = 1;
        ASSERT_TRUE(ValueFromText(text, position, to.get(), KindTable)) << text;
        ASSERT_TRUE(AdtCompare("EQ", from.get(), to.get(), KindTable)) << text;
        ASSERT_EQ(AdtCheck(to.get(), KindTable), "");
    }
}

}  // namespace
