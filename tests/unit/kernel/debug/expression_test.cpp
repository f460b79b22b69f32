// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/expression.h"
#include "kernel/debug/fieldnames.h"

#include "kernel/lists/lists.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/values/strings.h"
#include "unit/kernel/debug/debuggedvalues.h"
#include "unit/kernel/debug/framevariables_fixture.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace tarn;
using namespace tarn::debugged;

namespace {

class Expressions : public FrameValues {
protected:
    std::string valueOf(std::string_view text, std::int32_t frame = 1, bool hex = false) {
        std::string error;
        const auto expression = DebugExpression::compile(text, error);
        return expression != nullptr ? expression->text(frame, hex) : "! " + error;
    }
    bool holds(std::string_view text, std::int32_t frame = 1) {
        std::string error;
        const auto expression = DebugExpression::compile(text, error);
        EXPECT_NE(expression, nullptr) << error;
        return expression != nullptr && expression->holds(frame);
    }
    void addAll() {
        add("b", Number(KindBoolean, 1));
        add("e", Number(KindEnum, 3));
        add("i", integer(7));
        add("f", Number(KindFixed, 12500));
        add("r", Real(0.5));
        add("s", Text("abc"));
        add("set", Set(1, 20, {1, 2, 3, 7}));
        add("rec", Record({integer(5), Text("x")}));
        add("a", Array({{3, 5}}, integer(0), {integer(30), integer(40), integer(50)}));
        add("a2", Array({{1, 2}, {0, 1}}, integer(0), {integer(10), integer(11), integer(20), integer(21)}));
        add("l", List(Text(""), {Text("one"), Text("two")}));
        add("c", Array({{1, 4}}, Number(KindEnum, 0),
                       {Number(KindEnum, 'o'), Number(KindEnum, 'k'), Number(KindEnum, 0),
                        Number(KindEnum, 'z')}));
    }
};

TEST_F(Expressions, HaveTheValuesOfTheLanguage) {
    addAll();
    const struct {
        const char* text;
        const char* value;
    } cases[] = {
        {"i", "7"},
        {" I ", "7"},
        {"b", "True"},
        {"e", "3"},
        {"f", "1.2500"},
        {"r", "+5.0000000000000000E-0001"},
        {"s", "\"abc\""},
        {"set", "[1..3,7]"},
        {"rec", "{5, \"x\"}"},
        {"a", "{30, 40, 50}"},
        {"l", "{\"one\", \"two\"}"},
        {"c", "\"ok\""},
        // literals
        {"12", "12"},
        {"-12", "-12"},
        {"-2147483648", "-2147483648"},
        {"0xFF", "255"},
        {"0xFFL", "255"},
        {"-0x1", "-1"},
        {"1.5", "1.5000"},
        {".25", "0.2500"},
        {"1.23456", "+1.2345600000000001E+0000"},
        {"1E3", "+1.0000000000000000E+0003"},
        {"1.5e-1", "+1.4999999999999999E-0001"},
        {"\"a\"\"b\\n\"", "\"a\"\"b\\\\n\""},
        {"true", "True"},
        {"[1, 3..5]", "[1,3..5]"},
        // elements
        {"a[3]", "30"},
        {"a[i-2]", "50"},
        {"a2[2, 0]", "20"},
        {"a2[1,1]", "11"},
        {"l[2]", "\"two\""},
        {"l[2][1]", "116"},
        {"s[1]", "97"},
        {"s[9]", "0"},
        {"a[a[3] - 25]", "50"},
        // arithmetic
        {"i + 1", "8"},
        {"i+1", "8"},
        {"i -1", "6"},
        {"i - -1", "8"},
        {"2 + 3 * 4", "14"},
        {"(2 + 3) * 4", "20"},
        {"10 - 3 - 2", "5"},
        {"7 / 2", "3.5000"},
        {"7 div 2", "3"},
        {"-7 div 2", "-4"},
        {"-7 mod 2", "1"},
        {"2147483647 + 1", "-2147483648"},
        {"f * 2", "2.5000"},
        {"f + r", "+1.7500000000000000E+0000"},
        {"-f", "-1.2500"},
        {"-(i)", "-7"},
        {"+i", "7"},
        {"- - i", "7"},
        {"e + 1", "4"},
        {"12 div 5 mod 2", "0"},
        // comparisons
        {"i = 7", "True"},
        {"i <> 7", "False"},
        {"i < 7.5", "True"},
        {"r = 0.5", "True"},
        {"f >= 1.25", "True"},
        {"s = \"abc\"", "True"},
        {"s < \"abd\"", "True"},
        {"s > \"ab\"", "True"},
        {"s <= \"ABC\"", "False"},
        {"c = \"ok\"", "True"},
        {"b = true", "True"},
        {"set = [1..3, 7]", "True"},
        {"set > [1..3]", "True"},
        {"rec = rec", "True"},
        {"l <> l", "False"},
        {"a = a", "True"},
        {"7 in set", "True"},
        {"i in [1, 5..9]", "True"},
        {"e in [1]", "False"},
        {"i = 7 and not (s = \"x\")", "True"},
        {"not b or i > 3", "True"},
        {"not not b", "True"},
        {"not i = 8", "True"},
        {"b and b and b", "True"},
        {"false or false or b", "True"},
        // sets of sets
        {"set + [5, 30]", "[1..3,5,7,30]"},
        {"set - [2, 7..9]", "[1,3]"},
        {"set * [2..8]", "[2..3,7]"},
        {"[1] + [2] * [2] - [1]", "[2]"},
        {"([1] + [2]) * ([2] + [3])", "[2]"},
        {"set - set", "[]"},
        {"[-32768] + [32767]", "[-32768,32767]"},
        {"2 in set - [2]", "False"},
        {"set - [7] = [1..3]", "True"},
        {"[] + [] = []", "True"},
        {"set", "[1..3,7]"},  // they stay as they were
        // what decides leaves out the rest
        {"false and a[100] = 1", "False"},
        {"true or nothing", "True"},
        {"b = false or i div 0 = 1 and b", "(division by zero)"},
    };
    for (const auto& one : cases) EXPECT_EQ(valueOf(one.text), one.value) << one.text;
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(valueOf("i", 1, true), "0x00000007");
    EXPECT_EQ(valueOf("l[1]", 1, true), "\"one\"");
}

TEST_F(Expressions, SayWhyTheyHaveNoValue) {
    addAll();
    const struct {
        const char* text;
        const char* value;
    } cases[] = {
        {"nothing", "(there is no nothing here)"},
        {"a[2]", "(there is no element 2)"},
        {"a[6]", "(there is no element 6)"},
        {"l[0]", "(there is no element 0)"},
        {"l[3]", "(there is no element 3)"},
        {"a[1, 2]", "(this has no such elements)"},
        {"i[1]", "(this has no such elements)"},
        {"set[1]", "(this has no such elements)"},
        {"a2[1,2,3,4]", "(this has no such elements)"},
        {"a[\"x\"]", "(a subscript is an integer)"},
        {"rec.x", "(no field x is known)"},
        {"i.x", "(no field x is known)"},
        {"i div 0", "(division by zero)"},
        {"i mod 0", "(division by zero)"},
        {"i / 0", "(division by zero)"},
        {"r / 0", "(division by zero)"},
        {"f / 0.0", "(division by zero)"},
        {"i + s", "(these values have no +)"},
        {"s + s", "(these values have no +)"},
        {"r div 2", "(these values have no div)"},
        {"-s", "(these values have no -)"},
        {"set + 5", "(these values have no +)"},
        {"5 + set", "(these values have no +)"},
        {"set * l", "(these values have no *)"},
        {"set - a", "(these values have no -)"},
        {"set / set", "(these values have no /)"},
        {"set div set", "(these values have no div)"},
        {"-set", "(these values have no -)"},
        {"i = s", "(these values have no =)"},
        {"i = b", "(these values have no =)"},
        {"rec < rec", "(these values have no <)"},
        {"s in set", "(these values have no in)"},
        {"i in i", "(these values have no in)"},
        {"not i", "(this is neither true nor false)"},
        {"i and b", "(this is neither true nor false)"},
        {"b and i", "(this is neither true nor false)"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(valueOf(one.text), one.value) << one.text;
        EXPECT_TRUE(holds(one.text)) << one.text;
    }
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(valueOf("i", 2), "(there is no i here)");
    EXPECT_EQ(valueOf("i", 0), "(there is no i here)");
}

TEST_F(Expressions, SayWhatCannotBeRead) {
    const struct {
        std::string text;
        std::string error;
    } cases[] = {
        {"", "A value is missing (at character 1)."},
        {"i +", "A value is missing (at character 4)."},
        {"i and", "A value is missing (at character 6)."},
        {"i = and", "A value is missing (at character 5)."},
        {"(i", "\")\" is missing (at character 3)."},
        {"a[1", "\"]\" is missing (at character 4)."},
        {"a[]", "A name or a value is expected here (at character 3)."},
        {"i)", "What follows does not belong to the expression (at character 2)."},
        {"i j", "What follows does not belong to the expression (at character 3)."},
        {"i = 1 = 2", "What follows does not belong to the expression (at character 7)."},
        {"i := 1", "What follows does not belong to the expression (at character 3)."},
        {"i == 1", "Two values are compared by one \"=\" (at character 3)."},
        {"f(1)", "Functions are not called in an expression (at character 2)."},
        {"rec.", "The name of a field is expected here (at character 5)."},
        {"\"abc", "The text has no end (at character 1)."},
        {"2147483648", "This number cannot be read, or is too large (at character 1)."},
        {"0x", "This number cannot be read, or is too large (at character 1)."},
        {"0x123456789", "This number cannot be read, or is too large (at character 1)."},
        {"1.", "This number cannot be read, or is too large (at character 1)."},
        {"1E", "This number cannot be read, or is too large (at character 1)."},
        {"1E999", "This number cannot be read, or is too large (at character 1)."},
        {std::string(100000, '9'), "This number cannot be read, or is too large (at character 1)."},
        {"[1,", "A set is made of numbers from -32768 to 32767, such as [1, 5..9] (at character 4)."},
        {"[40000]", "A set is made of numbers from -32768 to 32767, such as [1, 5..9] (at character 1)."},
        {"[1,,2]",
         "A set is made of numbers with one comma between two, such as [1, 5..9] (at character 4)."},
        {"[1,]", "A set is made of numbers with one comma between two, such as [1, 5..9] (at character 4)."},
        {"i in [,]",
         "A set is made of numbers with one comma between two, such as [1, 5..9] (at character 7)."},
        {"#", "A name or a value is expected here (at character 1)."},
        {std::string(100000, '('), "The brackets are nested too deep (at character 101)."},
    };
    for (const auto& one : cases) {
        std::string error;
        EXPECT_EQ(DebugExpression::compile(one.text, error), nullptr) << one.text.substr(0, 40);
        EXPECT_EQ(error, one.error);
    }
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Expressions, MayBeLong) {
    addInteger("i", 1);
    std::string sum = "i";
    for (int n = 1; n < 20000; ++n) sum += "+i";
    EXPECT_EQ(valueOf(sum), "20000");
    EXPECT_EQ(valueOf(std::string(100, '(') + "i" + std::string(100, ')')), "1");
    EXPECT_EQ(valueOf(std::string(100001, '-') + "i"), "-1");
    std::string sets = "[-32768]";
    for (int n = 1; n < 2000; ++n) sets += "+[32767]";
    EXPECT_EQ(valueOf(sets), "[-32768,32767]");
}

TEST_F(Expressions, OfSetsLackMemoryAndSaySo) {
    add("set", Set(1, 20, {1, 2}));
    std::string error;
    const auto expression = DebugExpression::compile("set + [30] = [1, 2, 30]", error);
    ASSERT_NE(expression, nullptr) << error;
    EXPECT_EQ(expression->text(1, false), "True");
    for (const int request : {0, 1}) {
        FailAllocation(request);
        EXPECT_EQ(expression->text(1, false), "(" + ErrorMessage(802) + ")") << request;
        FailAllocation(-1);
    }
    EXPECT_EQ(expression->text(1, false), "True");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(Expressions, OfSetsNeedThemToBeThere) {
    SetDescriptor none{};
    RegisterVariable("none", 'V', KindSet, &none);
    EXPECT_EQ(valueOf("none + [1]"), "(this cannot be read)");
    EXPECT_EQ(valueOf("[1] - none"), "(this cannot be read)");
}

TEST_F(Expressions, AreShownWithinTheLimits) {
    add("s", Text(std::string(2000, 'x')));
    EXPECT_EQ(valueOf("s"), "{...too big...}");
    EXPECT_EQ(valueOf("s = s"), "True");
}

TEST_F(Expressions, FollowTheFrame) {
    addInteger("i", 1);
    std::string error;
    const auto expression = DebugExpression::compile("i = 2", error);
    EXPECT_FALSE(expression->holds(1));
    FunctionEnter("Main", "deeper", 1);
    add("other", Text("x"));
    addInteger("i", 2);
    EXPECT_TRUE(expression->holds(2));
    EXPECT_FALSE(expression->holds(1));
    FunctionLeave();
    EXPECT_TRUE(expression->holds(2));  // no such frame: it cannot be told
    EXPECT_FALSE(expression->holds(1));
}

TEST_F(Expressions, LeaveThePendingError) {
    addAll();
    SetError(603);
    EXPECT_FALSE(holds("i = 8"));
    EXPECT_EQ(valueOf("l[9]"), "(there is no element 9)");
    EXPECT_EQ(takeError(), 603);
}

TEST_F(Expressions, ReadRowsOfTablesAndFiles) {
    const OddValue row(Record({integer(1), Text("a", 4)}));
    TableValue table;
    TableInit(table.get(), UNBOUNDED, static_cast<const RecordDescriptor*>(row.at()), {MakeKeyMap(1)}, "",
              false);
    TableAdd(table.get(), 1, static_cast<const RecordDescriptor*>(row.at()));
    RegisterVariable("t", 'V', KindTable, table.get());
    EXPECT_EQ(valueOf("t[1]"), "{1, \"a\"}");
    EXPECT_EQ(valueOf("t[2]"), "(there is no element 2)");

    const OddValue like(Text("", 6));
    ListValue list;
    ListInit(list.get(), UNBOUNDED, like.at(), KindString, true);
    RegisterVariable("l", 'V', KindList, list.get());
    EXPECT_EQ(valueOf("l[1]"), "(there is no element 1)");
    FileOpen(list.get(), KindList, folder_ / "n.dat");
    for (const char* text : {"one", "two"}) ListAppend(String(text).get(), KindString, list.get());
    EXPECT_EQ(valueOf("l[2]"), "\"two\"");
    EXPECT_EQ(valueOf("l[1] < l[2]"), "True");
    EXPECT_EQ(valueOf("l"), "{\"one\", \"two\"}");
    std::filesystem::remove(folder_ / "n.dat");
    EXPECT_EQ(valueOf("l[2]"), "(" + ErrorMessage(653) + ")");
    EXPECT_EQ(takeError(), 0);
}

// ---- the names of fields, which the program tells, and constants, which symbol files tell ----

class NamedFields : public Expressions {
protected:
    static ValueModel point(std::int64_t x, std::int64_t y) { return Record({integer(x), integer(y)}); }
    void addNamed(std::string_view name, const ValueModel& value, const char* names) {
        NameFields(add(name, value), names);
    }
};

TEST_F(NamedFields, AreFound) {
    addNamed("line", Record({point(1, 2), Text("L", 8), point(3, 4)}), "(first(x,y),name,last(p,q))");
    addNamed("points", List(point(0, 0), {point(5, 6), point(7, 8)}), "[(x,y)]");
    addNamed("inner",
             Array({{1, 2}}, Record({integer(0), Text("")}),
                   {Record({integer(1), Text("one")}), Record({integer(2), Text("two")})}),
             "[(k,v)]");
    addNamed("deep", Record({List(point(0, 0), {point(9, 10)})}), "(all[(x,y)])");
    add("bare", point(1, 2));
    EXPECT_EQ(valueOf("line.first.y"), "2");
    EXPECT_EQ(valueOf("LINE.NAME"), "\"L\"");
    EXPECT_EQ(valueOf("line.last.q"), "4");
    EXPECT_EQ(valueOf("line.last.x"), "(no field x is known)");
    EXPECT_EQ(valueOf("line.first"), "{1, 2}");
    EXPECT_EQ(valueOf("points[2].x + 1"), "8");
    EXPECT_EQ(valueOf("points.x"), "(no field x is known)");
    EXPECT_EQ(valueOf("inner[2].v"), "\"two\"");
    EXPECT_EQ(valueOf("inner[2].v[1]"), "116");
    EXPECT_EQ(valueOf("deep.all[1].y"), "10");
    EXPECT_EQ(valueOf("bare.x"), "(no field x is known)");
    EXPECT_TRUE(holds("line.first.x = 1 and points[1].y = 6"));
    EXPECT_FALSE(holds("line.first.x = 2"));
}

TEST_F(NamedFields, MayBeMoreThanThereAre) {
    addNamed("point", point(1, 2), "(x,y,z)");
    EXPECT_EQ(valueOf("point.z"), "(no field z is known)");
}

TEST_F(NamedFields, AreThoseOfRowsInFiles) {
    const OddValue like(point(0, 0));
    ListValue list;
    ListInit(list.get(), UNBOUNDED, like.at(), KindRecord, true);
    RegisterVariable("l", 'V', KindList, list.get());
    NameFields(list.get(), "[(x,y)]");
    FileOpen(list.get(), KindList, folder_ / "n.dat");
    const OddValue row(point(3, 4));
    ListAppend(row.at(), KindRecord, list.get());
    EXPECT_EQ(valueOf("l[1].y"), "4");
}

class DeclaredConstants : public Expressions {
protected:
    static std::string symbol(const std::string& name, const std::string& sort, const std::string& type,
                              int value) {
        return "\"" + name + "\",1,\"const\",\"" + sort + "\",1,1,1,\"Main\",0,0,0,0,0,0,\"\",\"" + type +
               "\",0," + std::to_string(value) + ",\"\"\n";
    }
    void registerClasses() {
        RegisterClass(folder_ / "main.cls", "Main");
        RegisterClass(folder_ / "other.cls", "Other");
    }
};

TEST_F(DeclaredConstants, AreKnownByTheirNames) {
    write("main.sym", symbol("Main", "class", "", 5) + symbol("LIMIT", "const", "integer", 12) +
                          symbol("RATE", "const", "fixed", 15000) + symbol("SIZE", "type", "integer", 7));
    write("other.sym", symbol("red", "const", "TColour", 2) + symbol("LIMIT", "const", "integer", 13));
    registerClasses();
    addInteger("i", 12);
    EXPECT_EQ(valueOf("i = limit"), "True");
    EXPECT_EQ(valueOf("red"), "2");
    for (const char* name : {"RATE", "SIZE", "Main"})
        EXPECT_EQ(valueOf(name), "(there is no " + std::string(name) + " here)");
    addInteger("red", 77);
    EXPECT_EQ(valueOf("red"), "77");
}

TEST_F(DeclaredConstants, AreThoseOfTheClassOfTheFrame) {
    write("main.sym", symbol("LIMIT", "const", "integer", 12));
    write("other.sym", symbol("LIMIT", "const", "integer", 13));
    registerClasses();
    FunctionEnter("Other", "deeper", 1);
    std::string error;
    const auto expression = DebugExpression::compile("LIMIT", error);
    EXPECT_EQ(expression->text(1, false), "12");
    EXPECT_EQ(expression->text(2, false), "13");
    EXPECT_EQ(expression->text(1, false), "12");
}

TEST_F(DeclaredConstants, OfADamagedFileAreWhatCanBeRead) {
    write("main.sym", symbol("LIMIT", "const", "integer", 12) + "\"HALF\",1,\"half");
    registerClasses();
    EXPECT_EQ(valueOf("LIMIT"), "12");
    EXPECT_EQ(valueOf("HALF"), "(there is no HALF here)");
}

}  // namespace
