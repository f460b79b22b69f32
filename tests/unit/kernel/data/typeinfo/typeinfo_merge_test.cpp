// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/typeinfo/typeinfo.h"

#include <chrono>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using namespace tarn;

namespace {

struct Merged {
    std::string text, report;
};
Merged merged(std::string_view a, std::string_view b, std::int32_t size = MaxTypeInfo) {
    Merged m;
    m.report = "left from before";
    m.text = TypeInfoMerge(a, b, size, m.report);
    return m;
}

struct Row {
    std::string a, b, result;
};
// The result does not depend on the order: names, types and bounds of the pair are merged alike.
void expectBothWays(const Row& row) {
    for (const bool swapped : {false, true}) {
        SCOPED_TRACE(row.a + "/ " + row.b + (swapped ? "swapped" : ""));
        const Merged m = swapped ? merged(row.b, row.a) : merged(row.a, row.b);
        EXPECT_EQ(m.text, row.result);
        EXPECT_EQ(m.report, "");
    }
}
void expectStopBothWays(const std::string& x, const std::string& y) {
    for (const auto& [a, b] : {std::pair(x, y), std::pair(y, x)}) {
        const Merged m = merged("k : real\nn : " + a + "\nz : real\n", "k : real\nn : " + b + "\nz : real\n");
        const auto word = [](const std::string& type) { return type.substr(0, type.find('[')); };
        EXPECT_EQ(m.report, "The type of element 'n' changed, from " + word(a) + " to " + word(b));
        EXPECT_EQ(m.text, "k : real\n");
    }
}

const std::vector<std::string> scalars = {"boolean", "bit",   "integer", "int",
                                          "fixed",   "money", "real",    "float"};
const std::vector<std::string> texts = {"string", "varchar", "char", "nvarchar", "nchar"};

// ---- one element ----

TEST(TypeInfoMerge, EqualDeclarationsStayAsTheyAre) {
    for (const std::string text :
         {"a : integer\n", "r : record\n\ta : integer\n\tb : string[4]\nend record\n",
          "a : Tchars[1:10]\n\"b c\" : Any\n"})
        expectBothWays({text, text, text});
}

TEST(TypeInfoMerge, EveryScalarWithEveryTextIsThatTextAtLeastForty) {
    for (const auto& scalar : scalars) {
        for (const auto& text : texts) {
            expectBothWays({"a : " + scalar + "\n", "a : " + text + "[5]\n", "a : " + text + "[40]\n"});
            expectBothWays({"a : " + scalar + "\n", "a : " + text + "[40]\n", "a : " + text + "[40]\n"});
            expectBothWays({"a : " + scalar + "\n", "a : " + text + "[41]\n", "a : " + text + "[41]\n"});
        }
    }
}

TEST(TypeInfoMerge, WholeNumbersWidenToFixedAndReal) {
    for (const std::string whole : {"integer", "int", "INTEGER"})
        for (const std::string wide : {"fixed", "money", "real", "float", "Float"})
            expectBothWays({"a : " + whole + "\n", "a : " + wide + "\n", "a : " + wide + "\n"});
}

TEST(TypeInfoMerge, AnyGivesWayToWhateverHoldsData) {
    for (const std::string other :
         {"boolean",    "bit",         "integer",      "int",           "fixed",
          "money",      "real",        "float",        "string[5]",     "varchar[5]",
          "char[5]",    "nvarchar[5]", "nchar[5]",     "Tdatetime[24]", "uniqueidentifier[36]",
          "bigint[20]", "set[1:9]",    "Tchars[1:10]", "Tnumeric[1:4]", "Tlogical[1:1]",
          "Tdate[1:8]", "Tchar",       "enum",         "decimal[10]",   "string"})
        for (const std::string any : {"Any", "any"})
            expectBothWays({"a : " + any + "\n", "a : " + other + "\n", "a : " + other + "\n"});
}

TEST(TypeInfoMerge, AnyGivesWayToAWholeBlock) {
    const std::string record = "x : record\n\ta : integer\n\tb : list\n\t\tc : Any\n\tend list\nend record\n";
    const std::string list = "x : list\n\tc : string[4]\nend list\n";
    for (const std::string& block : {record, list}) {
        expectBothWays({"x : Any\n", block, block});
        expectBothWays({"k : real\nx : Any\nz : int\n", "k : real\n" + block + "z : int\n",
                        "k : real\n" + block + "z : int\n"});
    }
}

TEST(TypeInfoMerge, ABlockThatReplacesAnyKeepsTheDepthOfThePlace) {
    const Merged m = merged("r : record\n\tx : Any\n\ty : int\nend record\n",
                            "r : record\n\tx : record\n\t\ta : int\n\tend record\n\ty : int\nend record\n");
    EXPECT_EQ(m.report, "");
    EXPECT_EQ(m.text, "r : record\n\tx : record\n\t\ta : int\n\tend record\n\ty : int\nend record\n");
}

TEST(TypeInfoMerge, RecordAndListBecomeAList) {
    const std::string record = "x : record\n\tb : integer\nend record\n";
    const std::string list = "x : list\n\tb : integer\nend list\n";
    expectBothWays({record, list, list});
    expectBothWays({"o : record\n\tx : record\n\t\tb : integer\n\tend record\nend record\n",
                    "o : record\n\tx : list\n\t\tb : real\n\tend list\nend record\n",
                    "o : record\n\tx : list\n\t\tb : real\n\tend list\nend record\n"});
}

TEST(TypeInfoMerge, ARecordAndAListThatEndAtOtherElementsStopTheWalk) {
    const std::string record = "x : record\n\ta : integer\n\tb : integer\nend record\n";
    const struct {
        std::string element, text, inRecord, inList;
    } rows[] = {{"a : real\n", "x : list\n\ta : real\n", "b", "end"},
                {"c : integer\n", "x : list\n", "a", "c"}};
    for (const auto& row : rows) {
        const std::string list = "x : list\n\t" + row.element + "end list\n";
        const Merged one = merged(record, list), other = merged(list, record);
        const std::string report = "The name of an element changed, from '";
        EXPECT_EQ(one.text, row.text);
        EXPECT_EQ(one.report, report + row.inRecord + "' to '" + row.inList + "'");
        EXPECT_EQ(other.text, row.text);
        EXPECT_EQ(other.report, report + row.inList + "' to '" + row.inRecord + "'");
    }
}

TEST(TypeInfoMerge, PairsThatNothingHoldsStopTheWalk) {
    const std::pair<std::string, std::string> pairs[] = {
        {"boolean", "integer"},
        {"boolean", "real"},
        {"fixed", "real"},
        {"money", "float"},
        {"integer", "int"},
        {"fixed", "money"},
        {"real", "float"},
        {"boolean", "bit"},
        {"string[5]", "varchar[5]"},
        {"Tdatetime[24]", "string[5]"},
        {"Tdatetime[24]", "integer"},
        {"set[1:5]", "string[5]"},
        {"set[1:5]", "integer"},
        {"bigint[20]", "integer"},
        {"Tchars[1:5]", "string[5]"},
        {"integer", "record"},
        {"string[5]", "list"},
        {"Any", "union"},
        {"Any", "table"},
        {"Any", "adt"},
        {"Any", "unknown"},
        {"record", "union"},
        {"record", "table"},
        {"Tchar", "integer"},
    };
    for (const auto& [x, y] : pairs) expectStopBothWays(x, y);
}

// ---- bounds ----

TEST(TypeInfoMerge, TheGreaterLengthHoldsBothTexts) {
    expectBothWays({"a : string[5]\n", "a : string[9]\n", "a : string[9]\n"});
    expectBothWays({"a : Tdatetime[24]\n", "a : Tdatetime[19]\n", "a : Tdatetime[24]\n"});
    expectBothWays({"a : adt[3]\n", "a : adt[7]\n", "a : adt[7]\n"});
}

TEST(TypeInfoMerge, RangesWidenToBothSides) {
    expectBothWays({"a : string[2:9]\n", "a : string[3:12]\n", "a : string[2:12]\n"});
    expectBothWays({"a : string[5]\n", "a : string[2:9]\n", "a : string[2:9]\n"});
    expectBothWays({"a : set[1:3]\n", "a : set[2:9]\n", "a : set[1:9]\n"});
    expectBothWays({"a : set[-4:3]\n", "a : set[-7:-5]\n", "a : set[-7:3]\n"});
    expectBothWays({"a : Tchars[1:10]\n", "a : Tchars[1:20]\n", "a : Tchars[1:20]\n"});
    expectBothWays({"a : adt[1:2,3:4]\n", "a : adt[1:2,2:9]\n", "a : adt[1:2,2:9]\n"});
}

TEST(TypeInfoMerge, ATextWithoutALengthHoldsEveryText) {
    expectBothWays({"a : string\n", "a : string[5]\n", "a : string\n"});
    expectBothWays({"a : string[-1000000]\n", "a : string[5]\n", "a : string[-1000000]\n"});
    expectBothWays({"a : integer\n", "a : string\n", "a : string\n"});
}

TEST(TypeInfoMerge, ALengthIsARangeOfItsOwn) {
    expectBothWays({"a : string[2:9]\n", "a : string[12]\n", "a : string[2:12]\n"});
    expectBothWays({"a : string[2:9]\n", "a : string[1]\n", "a : string[1:9]\n"});
    expectBothWays({"a : adt[1,5:6]\n", "a : adt[2,7]\n", "a : adt[2,5:7]\n"});
    expectBothWays({"a : adt[1:2]\n", "a : adt[5,3:4]\n", "a : adt[1:5,3:4]\n"});
    expectBothWays({"a : integer\n", "a : string[2:90]\n", "a : string[90]\n"});
    expectBothWays({"a : integer\n", "a : string[2:9]\n", "a : string[40]\n"});
}

TEST(TypeInfoMerge, ADynamicSetHoldsEverySet) {
    expectBothWays({"a : set\n", "a : set[2:5]\n", "a : set\n"});
    expectBothWays({"a : set\n", "a : set[5]\n", "a : set\n"});
    expectBothWays({"a : Any\n", "a : set\n", "a : set\n"});
    EXPECT_EQ(merged("a:Set\n", "a : set[2:5]\n").text, "a:Set\n");
    EXPECT_EQ(merged("a : set[2:5]\n", "a:Set\n").text, "a:Set\n");
}

TEST(TypeInfoMerge, LinesThatCannotBeReadAreTheSameOnlyWhenTheirTextsAre) {
    const std::string umlaut = "k : int\n\xC3\xA4 : int\n";
    expectBothWays({umlaut, umlaut + "b : int\n", umlaut + "b : int\n"});
    EXPECT_EQ(merged(umlaut, "k : int\n  \xC3\xA4 : int  \r\n").text, umlaut);
    const struct {
        std::string a, b;
    } rows[] = {
        {"\xC3\xA4 : int", "\xC3\xB6 : int"},
        {"\xC3\xA4 : int", "\xC3\xA4 : real"},
        {"\"open : int", "\"opened : int"},
        {": int", ": real"},
    };
    for (const auto& row : rows) {
        const Merged m = merged("k : int\n" + row.a + "\nz : int\n", "k : int\n" + row.b + "\nz : int\n");
        EXPECT_EQ(m.report, "The name of an element changed, from '" + row.a + "' to '" + row.b + "'");
        EXPECT_EQ(m.text, "k : int\n");
    }
    const std::string longText = "\"" + std::string(2000, 'x');
    EXPECT_EQ(merged("k : int\n" + longText, "k : int\n\"y").report,
              "The name of an element changed, from '" + longText.substr(0, 1024) + "' to '\"y'");
    // They may be inserted like others.
    expectBothWays(
        {"k : int\n\xC3\xA4 : int\nz : int\n", "k : int\nz : int\n", "k : int\n\xC3\xA4 : int\nz : int\n"});
}

TEST(TypeInfoMerge, ClosingLinesAreAlikeInAnyCase) {
    EXPECT_EQ(merged("r : record\n\ta : int\nEND RECORD\n", "r : record\n\ta : real\nend record\n").text,
              "r : record\n\ta : real\nEND RECORD\n");
    expectBothWays({"r : record\n\ta : int\nEnd Record\nb : int\n", "r : record\nEnd Record\nb : int\n",
                    "r : record\n\ta : int\nEnd Record\nb : int\n"});
}

TEST(TypeInfoMerge, TheLineOfTheFirstIsKeptUpToItsBracket) {
    EXPECT_EQ(merged("a  :\tString [5]  \n", "a : string[9]\n").text, "a  :\tString[9]\n");
    EXPECT_EQ(merged("a : string[9]\n", "a  :\tString [5]\n").text, "a : string[9]\n");
    EXPECT_EQ(merged("a:integer\n", "a : integer\n").text, "a:integer\n");
    EXPECT_EQ(merged("\"x [1]\" : string[2]\n", "\"x [1]\" : string[3]\n").text, "\"x [1]\" : string[3]\n");
}

TEST(TypeInfoMerge, TheLineOfTheWiderTypeIsTaken) {
    EXPECT_EQ(merged("a : integer\n", "a:Real\n").text, "a:Real\n");
    EXPECT_EQ(merged("a:Fixed\n", "a : int\n").text, "a:Fixed\n");
    EXPECT_EQ(merged("a : int\n", "a:VarChar(9)\n").text, "a:VarChar(9)\n");  // no bracket: no length
    EXPECT_EQ(merged("a : int\n", "a:VarChar[9]\n").text, "a:VarChar[40]\n");
}

// ---- inserted lines ----

TEST(TypeInfoMerge, AnExtraColumnIsKeptWhereItStands) {
    const std::vector<std::string> columns = {"a : integer\n", "b : real\n", "c : string[4]\n", "d : Any\n"};
    std::string all;
    for (const auto& column : columns) all += column;
    // Every subset of the columns against the whole, plain and inside a record.
    for (unsigned subset = 1; subset < 16; ++subset) {
        std::string some;
        for (unsigned i = 0; i < 4; ++i)
            if ((subset >> i & 1U) != 0) some += columns[i];
        expectBothWays({all, some, all});
        std::string allDeeper = all, someDeeper = some;
        TypeInfoChangeIndent(1, allDeeper, 1000);
        TypeInfoChangeIndent(1, someDeeper, 1000);
        expectBothWays({"r : record\n" + allDeeper + "end record\nz : int\n",
                        "r : record\n" + someDeeper + "end record\nz : int\n",
                        "r : record\n" + allDeeper + "end record\nz : int\n"});
    }
}

TEST(TypeInfoMerge, ColumnsMayBeMissingOnEitherSideInTurn) {
    expectBothWays({"a : int\nb : int\nd : int\n", "b : int\nc : int\nd : int\n",
                    "a : int\nb : int\nc : int\nd : int\n"});
    expectBothWays({"a : int\nk : int\nz : real\n", "k : int\ny : int\nz : real\n",
                    "a : int\nk : int\ny : int\nz : real\n"});
}

TEST(TypeInfoMerge, InsertedBlocksAreTakenWhole) {
    const std::string block = "\tx : record\n\t\ta : int\n\t\tx : real\n\tend record\n";
    const std::string with = "r : record\n\tk : int\n" + block + "\tz : int\nend record\n";
    const std::string without = "r : record\n\tk : int\n\tz : int\nend record\n";
    expectBothWays({with, without, with});
    const std::string last = "r : record\n\tk : int\n" + block + "end record\n";
    expectBothWays({last, "r : record\n\tk : int\nend record\n", last});
    const std::string first = "r : record\n" + block + "\tk : int\nend record\n";
    expectBothWays({first, "r : record\n\tk : int\nend record\n", first});
    expectBothWays({first, "r : record\nend record\n", first});
}

TEST(TypeInfoMerge, OneBlockMayEndWhileTheOtherGoesOn) {
    // The name that is looked for stands behind the block too, at another depth.
    expectBothWays({"r : record\n\tx : int\n\ty : int\nend record\ny : int\n",
                    "r : record\n\tx : int\nend record\ny : int\n",
                    "r : record\n\tx : int\n\ty : int\nend record\ny : int\n"});
    expectBothWays({"r : record\n\ti : record\n\t\tx : int\n\t\ty : int\n\tend record\nend record\n",
                    "r : record\nend record\n",
                    "r : record\n\ti : record\n\t\tx : int\n\t\ty : int\n\tend record\nend record\n"});
    expectBothWays({"r : record\n\tend : integer\nend record\n", "r : record\nend record\n",
                    "r : record\n\tend : integer\nend record\n"});
}

TEST(TypeInfoMerge, NestedRecordsAndListsAreMergedInside) {
    expectBothWays(
        {"r : record\n\ts : list\n\t\tt : record\n\t\t\ta : int\n\t\tend record\n\tend list\nend record\n",
         "r : record\n\ts : list\n\t\tt : record\n\t\t\ta : real\n\t\t\tb : Any\n\t\tend record\n\tend "
         "list\nend record\n",
         "r : record\n\ts : list\n\t\tt : record\n\t\t\ta : real\n\t\t\tb : Any\n\t\tend record\n\tend "
         "list\nend record\n"});
}

TEST(TypeInfoMerge, WhatRemainsOfTheLongerIsAppended) {
    expectBothWays({"a : int\n", "a : int\nb : real\nc : Any\n", "a : int\nb : real\nc : Any\n"});
    expectBothWays({"", "a : int\nb : real\n", "a : int\nb : real\n"});
    expectBothWays({"", "", ""});
}

TEST(TypeInfoMerge, TheCommonLineIsFoundByItsTypeWithoutBounds) {
    expectBothWays({"x : int\na : string[4]\n", "a : string[9]\n", "x : int\na : string[9]\n"});
    const Merged m = merged("x : int\na : string[4]\n", "a : int\n");
    EXPECT_EQ(m.report, "The name of an element changed, from 'x' to 'a'");
    EXPECT_EQ(m.text, "");
}

TEST(TypeInfoMerge, NamesThatDifferStopTheWalk) {
    const struct {
        std::string a, b, text, from, to;
    } rows[] = {
        {"a : int\n", "b : int\n", "", "a", "b"},
        {"k : int\na : int\nz : int\n", "k : real\nb : int\nz : int\n", "k : real\n", "a", "b"},
        {"a : int\n", "A : int\n", "", "a", "A"},
        {"\"a b\" : int\n", "a : int\n", "", "\"a b\"", "a"},
        // Elements that changed places are no inserted lines.
        {"a : int\nb : int\n", "b : int\na : int\n", "", "a", "b"},
        {"p : int\nq : int\nr : int\n", "r : int\nq : int\n", "", "p", "r"},
        {"r : record\n\ta : int\nend record\n", "r : record\n\tb : int\nend record\n", "r : record\n", "a",
         "b"},
        // What stands behind the block is not looked at.
        {"r : record\n\ta : int\nend record\nb : int\n", "r : record\n\tb : int\nend record\n",
         "r : record\n", "a", "b"},
    };
    for (const auto& row : rows) {
        const Merged m = merged(row.a, row.b);
        EXPECT_EQ(m.text, row.text) << row.a;
        EXPECT_EQ(m.report, "The name of an element changed, from '" + row.from + "' to '" + row.to + "'");
    }
}

TEST(TypeInfoMerge, InsertedLinesAreCountedOnTheSideThatHasThem) {
    const auto counts = [](std::string_view a, std::string_view b) {
        const InsertedLines lines = TypeInfoFindInserted(a, b);
        return std::vector<std::int32_t>{lines.inA, lines.inB, lines.found ? 1 : 0};
    };
    using Counts = std::vector<std::int32_t>;
    EXPECT_EQ(counts("x : int\ny : int\na : int\n", "a : int\n"), (Counts{2, 0, 1}));
    EXPECT_EQ(counts("a : int\n", "x : int\ny : int\na : int\n"), (Counts{0, 2, 1}));
    EXPECT_EQ(counts("x : record\n\ta : int\nend record\na : int\n", "a : int\n"), (Counts{3, 0, 1}));
    EXPECT_EQ(counts("x : int\n\ta : int\n", "a : int\n"), (Counts{0, 0, 0}));
    EXPECT_EQ(counts("\tx : int\nend record\n", "end record\n"), (Counts{1, 0, 1}));
    EXPECT_EQ(counts("\tx : int\nend record\n", "end list\n"), (Counts{0, 0, 0}));
    EXPECT_EQ(counts("x : int\n", "a : int\n"), (Counts{0, 0, 0}));
    EXPECT_EQ(counts("", "a : int\n"), (Counts{0, 0, 0}));
    EXPECT_EQ(counts("a : int\n", ""), (Counts{0, 0, 0}));
}

// ---- form ----

TEST(TypeInfoMerge, EveryLineOfTheResultEnds) {
    EXPECT_EQ(merged("a : int\nb : int", "a : int").text, "a : int\nb : int\n");
    EXPECT_EQ(merged("a : int", "a : int\nb : int").text, "a : int\nb : int\n");
    EXPECT_EQ(merged("a : int", "a : int").text, "a : int\n");
}

TEST(TypeInfoMerge, BlanksAndTabsMayBothIndent) {
    EXPECT_EQ(
        merged("r : record\n a : int\nend record\n", "r : record\n\ta : real\n\tb : int\nend record\n").text,
        "r : record\n\ta : real\n\tb : int\nend record\n");
}

TEST(TypeInfoMerge, LineEndsAreThoseOfTheFirst) {
    EXPECT_EQ(merged("a : int\r\nb : int\r\n", "a : int\nb : int\n").text, "a : int\r\nb : int\r\n");
    EXPECT_EQ(merged("a : int\nb : int\n", "a : int\r\nb : int\r\n").text, "a : int\nb : int\n");
    EXPECT_EQ(merged("a : string[4]\r\nb : int\r\n", "a : string[9]\nb : int\n").text,
              "a : string[9]\nb : int\r\n");
    EXPECT_EQ(merged("a : int\r\nb : int\r\n", "a : real\nb : int\nc : int\r\n").text,
              "a : real\nb : int\r\nc : int\r\n");
}

TEST(TypeInfoMerge, WhatIsNoDeclarationMergesToNothing) {
    for (const std::string text : {"\ta : int\n", " a : int\n", "\n", "[1]\n", "\xC3\xA4 : int\n"}) {
        for (const Merged& m : {merged(text, "a : int\n"), merged("a : int\n", text)}) {
            EXPECT_EQ(m.text, "");
            EXPECT_EQ(m.report, "");
        }
    }
}

TEST(TypeInfoMerge, TheResultIsCutToTheBufferAtTheEndOfALine) {
    EXPECT_EQ(merged("a : int\n", "a : real\nb : int\n", 18).text, "a : real\nb : int\n");
    EXPECT_EQ(merged("a : int\n", "a : real\nb : int\n", 17).text, "a : real\n");
    EXPECT_EQ(merged("a : int\n", "a : real\nb : int\n", 10).text, "a : real\n");
    EXPECT_EQ(merged("a : int\n", "a : real\nb : int\n", 3).text, "");
    EXPECT_EQ(merged("a : int", "a : int", 8).text, "");
    EXPECT_EQ(merged("a : int", "a : int", 9).text, "a : int\n");
    // What is behind a line that does not fit would stand in the wrong place.
    EXPECT_EQ(merged("a : int\nlonger : int\nb : int\n", "a : int\n", 20).text, "a : int\n");
    EXPECT_EQ(merged("a : string[5]\nb : int\n", "a : string[4000]\n", 16).text, "");
    EXPECT_EQ(merged("r : record\n\ta : int\nend record\n", "r : record\n  b : int\nend record\n", 21).text,
              "r : record\n");
    EXPECT_EQ(merged("a : int\n", "a : int\n", 1).text, "");
    EXPECT_EQ(merged("a : int\n", "a : int\n", 0).text, "");
    EXPECT_EQ(merged("a : int\n", "a : int\n", -5).text, "");
}

TEST(TypeInfoMerge, RowsOfATableMergeOneAfterAnother) {
    const std::string values[][3] = {
        {"1", "abc", "NULL"}, {"2.5", "a longer text", ""}, {"3", "17", "2000-01-31"}, {"4", "x", "NULL"}};
    std::string text;
    for (const auto& row : values) {
        std::string line;
        for (int i = 0; i < 3; ++i) {
            const std::string name(1, static_cast<char>('a' + i));
            line += TypeInfoValueLine(row[i], name, "NULL", name + " : Any");
        }
        std::string report;
        text = TypeInfoMerge(text, line, MaxTypeInfo, report);
        EXPECT_EQ(report, "");
    }
    EXPECT_EQ(text, "a : fixed\nb : string[40]\nc : Tdatetime[24]\n");
}

// Random trees of named elements, of which each of the two loses some: the merge is the whole again.
struct Tree {
    std::string name, type;
    std::vector<Tree> inside;
};
Tree randomTree(std::mt19937& random, int depth, int& names) {
    Tree tree;
    tree.name = "n" + std::to_string(++names);
    const bool block = depth < 4 && random() % 3 == 0;
    tree.type =
        block ? "record" : std::vector<std::string>{"integer", "string[7]", "Any", "set[1:5]"}[random() % 4];
    for (std::size_t n = block ? random() % 5 : 0; n > 0; --n)
        tree.inside.push_back(randomTree(random, depth + 1, names));
    return tree;
}
// Without those elements whose number in the order of the walk is divisible by `lost`, from `start` on.
void print(const Tree& tree, std::size_t indent, int lost, int start, int& number, std::string& text) {
    const bool present = lost == 0 || ++number % lost != start;
    std::string here;
    here.append(indent, '\t').append(tree.name + " : " + tree.type + "\n");
    for (const Tree& part : tree.inside) print(part, indent + 1, lost, start, number, here);
    if (tree.type == "record") here.append(indent, '\t').append("end record\n");
    if (present) text += here;
}

TEST(TypeInfoMerge, TwoPartsOfATreeMergeToTheTree) {
    for (std::uint32_t seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        Tree root{"root", "record", {}};
        int names = 0;
        for (std::size_t n = random() % 8; n > 0; --n) root.inside.push_back(randomTree(random, 1, names));
        std::string whole, part;
        int number = 0;
        print(root, 0, 0, 0, number, whole);
        const int lost = static_cast<int>(2 + random() % 5);
        number = 0;
        print(root, 0, lost, 1 + static_cast<int>(random() % static_cast<unsigned>(lost - 1)), number, part);
        if (part.empty()) continue;  // the root itself was lost
        expectBothWays({whole, part, whole});
        if (HasFailure()) return;
    }
}

// The same lines with blanks in other places, so that the two are walked and not only compared.
std::string spaced(std::string_view text, std::mt19937& random) {
    std::string result;
    for (const char c : text) {
        const bool mayWiden = c == '\n' || c == '[' || c == ']' || (c == ':' && result.back() == ' ');
        if (mayWiden && random() % 2 == 0) result += random() % 2 == 0 ? " " : "\t ";
        if (c == '\n' && random() % 4 == 0) result += '\r';
        result += c;
    }
    return result;
}

TEST(TypeInfoMerge, ATextAndItselfInOtherSpacingIsTheText) {
    for (std::uint32_t seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        Tree root{"root", "record", {}};
        int names = 0, number = 0;
        for (std::size_t n = random() % 8; n > 0; --n) root.inside.push_back(randomTree(random, 1, names));
        std::string text;
        print(root, 0, 0, 0, number, text);
        const std::string other = spaced(text, random);
        const Merged m = merged(text, other);
        EXPECT_EQ(m.text, text) << other;
        EXPECT_EQ(m.report, "");
        EXPECT_EQ(merged(other, text).text, other);
        if (HasFailure()) return;
    }
}

TEST(TypeInfoMerge, HostileTextsAreMergedInTime) {
    std::string turns, other, deep, names, reversed;
    for (int i = 0; i < 3000; ++i) {
        const std::string n = std::to_string(i);
        turns += "x" + n + " : int\ny" + n + " : int\n";
        other += "y" + n + " : int\n";
        deep.append(static_cast<std::size_t>(i % 200), ' ').append("a" + n + " : record\n");
        names += "same : t" + n + "\n";
        reversed.insert(0, "y" + n + " : int\n");
    }
    const std::string texts[] = {
        turns, other, deep, names, reversed, std::string(100000, '\n') + "a", std::string(30000, '\t')};
    const auto start = std::chrono::steady_clock::now();
    for (const auto& a : texts)
        for (const auto& b : texts) merged("a : int\n" + a, "a : int\n" + b);
    EXPECT_TRUE(merged(turns, other, INT32_MAX).text == turns);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
