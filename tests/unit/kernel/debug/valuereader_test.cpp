// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/valuetext.h"
#include "kernel/lists/lists.h"
#include "kernel/tables/tables.h"
#include "kernel/values/strings.h"
#include "unit/kernel/debug/debuggedvalues.h"
#include "unit/kernel/filelists_fixture.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace tarn;
using namespace tarn::debugged;

namespace {

constexpr std::uint32_t compact = VALUE_BRACES | VALUE_BLANKS;

ValueModel array(std::int32_t lower, const std::vector<std::int64_t>& numbers, std::int32_t maxlength = 0) {
    std::vector<ValueModel> parts;
    for (const std::int64_t number : numbers) parts.push_back(integer(number));
    const auto upper = lower + static_cast<std::int32_t>(numbers.size()) - 1;
    return Array({{lower, upper}}, integer(0), parts, maxlength);
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
        {array(4, {1, 2, 3}, DYNAMIC_BOUNDS), "{}", 3, unsized(integer(0))},
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
        ValueMisfit misfit{100, 7, 7, 1, "old"};
        EXPECT_EQ(ValueFromWholeText(one.text, &number, KindInteger, misfit), one.fits) << one.text;
        EXPECT_EQ(misfit.position, one.position) << one.text;
        EXPECT_EQ(misfit.kind, KindInteger) << one.text;
        EXPECT_EQ(misfit.capacity, 0) << one.text;
        EXPECT_EQ(misfit.kept, "") << one.text;
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

}  // namespace
