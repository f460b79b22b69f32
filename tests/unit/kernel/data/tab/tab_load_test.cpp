// SPDX-License-Identifier: Apache-2.0
//
// Reading delimited text into values.
#include "unit/kernel/tab_fixture.h"

#include <utility>
#include <vector>

namespace tarn {
namespace {

class TabLoading : public Tab {
protected:
    static constexpr const char* three = "a : integer\nb : string[10]\nc : boolean\n";
};

TEST_F(TabLoading, CellsGoToFieldsInOrder) {
    EXPECT_EQ(loaded("1,abc,true\n-2,\"x, y\",No\n", three), "{1|abc|True}{-2|x, y|False}");
    EXPECT_EQ(loaded("1;abc;yes\n", three, {0, 0, ';', -1}), "{1|abc|True}");
    EXPECT_EQ(loaded("1\tabc\tyes\n", three, {0, 0, '\t', -1}), "{1|abc|True}");
    EXPECT_EQ(loaded("1 abc yes\n", three, {0, 0, ' ', -1}), "{1|abc|True}");
    EXPECT_EQ(loaded("1\1abc\1yes\n", three, {0, 0, 1, -1}), "{1|abc|True}");
}

TEST_F(TabLoading, EveryKindHasItsReaderAndItsCode) {
    struct Case {
        const char *type, *cell, *shown;
    };
    const Case cases[] = {
        {"boolean", "true", "{True}"},
        {"boolean", "YES", "{True}"},
        {"boolean", "no", "{False}"},
        {"boolean", "1", "981@1 {False}"},
        {"boolean", "truely", "981@1 {False}"},
        {"enum", "255", "{255}"},
        {"enum", "256", "982@1 {0}"},
        {"enum", "-1", "982@1 {0}"},
        {"enum", "x", "982@1 {0}"},
        {"integer", "2147483647", "{2147483647}"},
        {"integer", "-2147483648", "{-2147483648}"},
        {"integer", "+7", "{7}"},
        {"integer", "2147483648", "983@1 {0}"},
        {"integer", "1.5", "983@1 {0}"},
        {"integer", "1 2", "983@1 {0}"},
        {"integer", "-", "983@1 {0}"},
        {"fixed", "1.5", "{15000f}"},
        {"fixed", "-.0001", "{-1f}"},
        {"fixed", "1.", "{10000f}"},
        {"fixed", "1.23456", "{12345f}"},
        {"fixed", "922337203685477.5807", "{9223372036854775807f}"},
        {"fixed", "-922337203685477.5808", "{-9223372036854775808f}"},
        {"fixed", "922337203685477.5808", "984@1 {0f}"},
        {"fixed", "922337203685477", "{9223372036854770000f}"},
        {"fixed", "922337203685478", "984@1 {0f}"},
        {"fixed", "999999999999999", "984@1 {0f}"},
        {"fixed", "-999999999999999", "984@1 {0f}"},
        {"fixed", "92233720368547.75", "{922337203685477500f}"},
        {"fixed", "000000000000001", "{10000f}"},
        {"fixed", "1E3", "984@1 {0f}"},
        {"fixed", ".", "984@1 {0f}"},
        {"real", "1.5", "{1.5r}"},
        {"real", "-0.1", "{-0.10000000000000001r}"},
        {"real", "+1.25E-0001", "{0.125r}"},
        {"real", "123456789012345.6789", "{123456789012345.67r}"},
        {"real", "-INF", "{-infr}"},
        {"real", "1E999", "985@1 {0r}"},
        {"real", "1e", "985@1 {0r}"},
        {"real", "inf", "985@1 {0r}"},
        {"string[5]", "abc", "{abc}"},
        {"string[5]", "abcdef", "986@1 {abcde}"},
        {"set[1:9]", "[1..3,7]", "{[1..3,7]}"},
        {"set[1:9]", "[ 1 , 3 ]  ", "{[1,3]}"},
        {"set[1:9]", "\"[1:3]\"", "{[1..3]}"},
        {"set[1:9]", "[]", "{[]}"},
        {"set[1:9]", "[10]", "989@1 {[]}"},
        {"set[1:9]", "[99999]", "989@1 {[]}"},
        {"set[1:9]", "[1", "989@1 {[]}"},
        {"set[1:9]", "[1]x", "989@1 {[]}"},
        {"set[1:9]", "1", "989@1 {[]}"},
        {"set[1:9]", "NULL", "989@1 {[]}"},
        {"Tchars[1:4]", "ab", "{'ab  '}"},
        {"Tchars[1:4]", "abcde", "986@1 {'abcd'}"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(loaded(std::string(c.cell) + "\n", std::string("x : ") + c.type + "\n"), c.shown)
            << c.type << " " << c.cell;
}

TEST_F(TabLoading, EmptyCellsAreZero) {
    const std::string all =
        "a : boolean\nb : enum\nc : integer\nd : fixed\ne : real\nf : string[4]\ng : set[1:9]\n"
        "h : Tchars[1:2]\n";
    const std::string zero = "{False|0|0|0f|0r||[]|'" + std::string(2, '\0') + "'}";
    for (const char* row :
         {",,,,,,,\n", "\n", " , \t,,  ,,,  ,\n", "\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\n", ","})
        EXPECT_EQ(loaded(row, all), zero) << row;
}

TEST_F(TabLoading, NullIsZeroForNumbersAndATextForStrings) {
    EXPECT_EQ(loaded("NULL,null,Null,nULL,NULL,NULL\n",
                     "a : boolean\nb : enum\nc : integer\nd : fixed\ne : real\nf : string[4]\n"),
              "{False|0|0|0f|0r|NULL}");
    EXPECT_EQ(loaded("NULLS\n", "a : integer\n"), "983@1 {0}");
    EXPECT_EQ(loaded(" NULL ,1\n", "a : integer\nb : integer\n"), "{0|1}");
}

TEST_F(TabLoading, BlanksAheadOfNumbersAreSkippedAndThoseOfStringsKept) {
    EXPECT_EQ(
        loaded(" \t1 , \t true ,  a b  ,x\n", "a : integer\nb : boolean\nc : string[9]\nd : string[9]\n"),
        "{1|True|  a b|x}");
    EXPECT_EQ(loaded("\t1\n", "a : integer\nb : integer\n", {0, 0, '\t', -1}), "{0|1}");
    EXPECT_EQ(loaded(" 1\n", "a : integer\nb : integer\n", {0, 0, ' ', -1}), "{0|1}");
}

TEST_F(TabLoading, QuotedCellsHoldAnyByte) {
    const std::string nul(1, '\0');
    EXPECT_EQ(loaded("\"a\nb\",1\n\"c,\"\"d\"\"\",2\n", "a : string[20]\nb : integer\n"),
              "{a\nb|1}{c,\"d\"|2}");
    EXPECT_EQ(loaded("\"a\r\n\r\nb" + nul + "c  \",1\n", "a : string[20]\nb : integer\n"),
              "{a\r\n\r\nb" + nul + "c  |1}");
    EXPECT_EQ(loaded("\"\"\"\"\n\"\"\"\"\"\"\n\"\"\n", "a : string[20]\n"), "{\"}{\"\"}{}");
    EXPECT_EQ(loaded("\"12\",\" 1.5 \",\"true\"\n", "a : integer\nb : fixed\nc : boolean\n"),
              "{12|15000f|True}");
    EXPECT_EQ(loaded("1,\"a\nb\"", "a : integer\nb : string[20]\n"), "{1|a\nb}");
}

TEST_F(TabLoading, WhatFollowsAClosingQuoteIsNoPartOfTheCell) {
    EXPECT_EQ(loaded("\"a\" x ,1\n\"b\"  ,2\n", "a : string[20]\nb : integer\n"), "{a|1}{b|2}");
}

TEST_F(TabLoading, AQuoteThatIsNotClosedIsACharacter) {
    EXPECT_EQ(loaded("\"a,1\nb,2\n", "a : string[20]\nb : integer\n"), "{\"a|1}{b|2}");
    EXPECT_EQ(loaded("a\"b,1\n", "a : string[20]\nb : integer\n"), "{a\"b|1}");
    EXPECT_EQ(loaded(" \"a\",1\n", "a : string[20]\nb : integer\n"), "{ \"a\"|1}");
    EXPECT_EQ(loaded("\"", "a : string[20]\n"), "{\"}");
    EXPECT_EQ(loaded("\"\"\"", "a : string[20]\nb : set[1:3]\n"), "{\"\"\"|[]}");
    EXPECT_EQ(loaded("\"\"\"", "a : integer\n"), "983@1 {0}");
    EXPECT_EQ(loaded("\"\"\"", "b : set[1:3]\n"), "989@1 {[]}");
}

TEST_F(TabLoading, AnUnquotedTextEndsAtANul) {
    const std::string nul(1, '\0');
    EXPECT_EQ(loaded("ab  " + nul + "cd,1\n", "a : string[20]\nb : integer\n"), "{ab|1}");
}

TEST_F(TabLoading, LinesEndWithOrWithoutCarriageReturns) {
    EXPECT_EQ(loaded("1,a\r\n2,b\r\r\n3,c", "a : integer\nb : string[9]\n"), "{1|a}{2|b}{3|c}");
    EXPECT_EQ(loaded("1,a\rb\n", "a : integer\nb : string[9]\n"), "{1|a\rb}");
    EXPECT_EQ(loaded("1\r", "a : integer\n"), "{1}");
}

TEST_F(TabLoading, RowsMayBeShorterAndLongerThanTheRecord) {
    EXPECT_EQ(loaded("1\n1,a,yes,more,9\n\n", three), "{1||False}{1|a|True}{0||False}");
}

TEST_F(TabLoading, AFailureStopsItsRowButNotTheLoadAndTheFirstIsReported) {
    EXPECT_EQ(loaded("1,a,yes\nx,b,yes\n3,c,maybe\n4,d,no\n", three),
              "983@2 {1|a|True}{0||False}{3|c|False}{4|d|False}");
}

TEST_F(TabLoading, HeaderAndFooterRowsAreLeftOut) {
    const char* const field = "a : integer\n";
    EXPECT_EQ(loaded("a\n-\n1\n2\n", field, {2, 0, ',', -1}), "{1}{2}");
    EXPECT_EQ(loaded("a\n1\n2\nend\n", field, {1, 1, ',', -1}), "{1}{2}");
    EXPECT_EQ(loaded("1\n2\n\n(2 rows affected)\n", field, {0, 2, ',', -1}), "{1}{2}");
    EXPECT_EQ(loaded("1\n2\n\n(2 rows affected)", field, {0, 2, ',', -1}), "{1}{2}");
    EXPECT_EQ(loaded("1\n2\n3", field, {0, 0, ',', -1}), "{1}{2}{3}");
    EXPECT_EQ(loaded("1\n2\n", field, {2, 1, ',', -1}), "");
    EXPECT_EQ(loaded("1\n2\n", field, {5, 0, ',', -1}), "");
    EXPECT_EQ(loaded("1\n2\n", field, {0, 5, ',', -1}), "");
    EXPECT_EQ(loaded("1\n2\n", field, {-1, -7, ',', -9}), "{1}{2}");
}

TEST_F(TabLoading, AtMostTheRowsAskedForAreRead) {
    EXPECT_EQ(loaded("1\n2\n3\n", "a : integer\n", {0, 0, ',', 2}), "{1}{2}");
    EXPECT_EQ(loaded("1\n2\n3\n", "a : integer\n", {0, 0, ',', 0}), "");
    EXPECT_EQ(loaded("1\n2\n3\n", "a : integer\n", {1, 1, ',', 7}), "{2}");
}

TEST_F(TabLoading, AFrameOfSeparatorsIsRemoved) {
    const char* const fields = "a : integer\nb : string[9]\n";
    EXPECT_EQ(loaded("\1a\1b\1\n\0011\1x\1\n\0012\1\"y\nz\"\1\n", fields, {1, 0, 1, -1}), "{1|x}{2|y\nz}");
    EXPECT_EQ(loaded("a\1b\n\0011\1x\1\n", fields, {1, 0, 1, -1}), "{0|1}");  // no frame around the header
    EXPECT_EQ(loaded(",a,b,\n,1,x,\n", fields, {1, 0, ',', -1}), "{0|1}");    // not for printable ones
}

TEST_F(TabLoading, RecordsInsideTakeTheirCellsInOrder) {
    EXPECT_EQ(loaded("1,2,x,[1,3],9\n", "a : integer\nr : record\n\tb : integer\n\tc : string[9]\n"
                                        "\ts : set[1:5]\nend record\nz : integer\n"),
              "{1|2|x|[1,3]|9}");
    EXPECT_EQ(loaded("1,x,5\n", "r : record\n\tb : integer\n\tc : integer\nend record\nz : integer\n"),
              "983@1 {1|0|0}");
}

TEST_F(TabLoading, WholeValuesOfOtherKinds) {
    EXPECT_EQ(loadedAs("1\nx\n3\n", "x : list\n\ti : integer\nend list\n"), "983@2 {1}{0}{3}");
    EXPECT_EQ(loadedAs("a, b\n\"c,\"\n", "x : list\n\ts : string[9]\nend list\n"), "{a}{c,}");
    EXPECT_EQ(loadedAs("[1,2]\n[]\n", "x : list\n\ts : set[1:4]\nend list\n"), "{[1..2]}{[]}");
    EXPECT_EQ(loadedAs("1,a\n2,b\n", "x : record\n\ta : integer\n\tb : string[9]\nend record\n"), "1|a");
    EXPECT_EQ(loadedAs("[2,4]\n", "x : set[1:9]\n"), "[2,4]");
    EXPECT_EQ(loadedAs("", "x : set[1:9]\n"), "[]");
}

TEST_F(TabLoading, AStringTakesTheWholeText) {
    EXPECT_EQ(loadedAs("a,b\r\n\"c\n", "x : string[90]\n"), "a,b\r\n\"c\n");
    EXPECT_EQ(loadedAs("abcdef", "x : string[4]\n"), "abcd");
    EXPECT_EQ(loadedAs("h\n-\na\nb\nc\nf\n", "x : string[90]\n", {2, 1, '\t', -1}), "a\nb\nc\n");
    EXPECT_EQ(loadedAs("a\nb\nc", "x : string[90]\n", {0, 0, '\t', 2}), "a\nb\n");
    EXPECT_EQ(loadedAs("", "x : string[4]\n"), "");
}

TEST_F(TabLoading, LinesAreCellsAsTheyStandWhenThereIsNoSeparator) {
    const DataOptions lines = DefaultDataOptions(1);
    EXPECT_EQ(loadedAs(" a, b  \n\"c\n\n d\r\n", "x : list\n\ts : string[9]\nend list\n", lines),
              "{ a, b  }{\"c}{}{ d}");
    EXPECT_EQ(loadedAs("a\n",
                       "x : list\n\tr : record\n\t\ta : string[9]\n\t\tb : integer\n\tend record\nend list\n",
                       lines),
              "658@0 ");
}

TEST_F(TabLoading, TheOldContentGoes) {
    Typed list("x : list\n\ti : integer\nend list\n");
    const std::int32_t old = 7;
    ListAppend(&old, KindInteger, list.get<ListDescriptor>());
    files_.put("/d/a.csv", "1\n2\n");
    const DataResult result = TabLoad("/d/a.csv", CommaRows, list.get(), KindList);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.rows, 2);
    EXPECT_EQ(Shown(list.get(), KindList), "{1}{2}");
}

TEST_F(TabLoading, AHeaderRowHoldsTheLinesOfItsQuotedCells) {
    EXPECT_EQ(loaded("\"a\nb\",c\n1,2\n", "a : integer\nb : integer\n", {1, 0, ',', -1}), "{1|2}");
    EXPECT_EQ(loaded("\"a\nb\",c\n--,--\n1,2\n", "a : integer\nb : integer\n", {2, 0, ',', -1}), "{1|2}");
    EXPECT_EQ(loadedAs("\"a\nb\",c\n1,2\n", "s : string", {1, 0, ',', -1}), "1,2\n");
}

// ---- tables and fixed lists ----

TEST_F(TabLoading, TablesRefuseRowsWithAKeyTheyHaveAndGoOn) {
    RecordValue row;
    TypeInfoToRecord(String("r : record\n\tk : integer\n\tt : string[9]\nend record\n").get(), row.get());
    TableValue table;
    TableInit(table.get(), UNBOUNDED, row.get(), {MakeKeyMap(1)}, "k : integer\nt : string[9]\n", false);
    files_.put("/d/a.csv", "1,a\n2,b\n1,c\nx,d\n3,e\n");
    const DataResult result = TabLoad("/d/a.csv", CommaRows, table.get(), KindTable);
    EXPECT_EQ(result.code, 635);
    EXPECT_EQ(result.row, 3);
    EXPECT_EQ(result.rows, 4);
    EXPECT_EQ(Shown(table.get(), KindTable), "{1|a}{2|b}{0|}{3|e}");
    EXPECT_EQ(AdtCheck(table.get(), KindTable), "");
}

TEST_F(TabLoading, WhatIsFullTakesNoMore) {
    RecordValue row;
    TypeInfoToRecord(String("r : record\n\tk : integer\nend record\n").get(), row.get());
    TableValue table;
    TableInit(table.get(), 2, row.get(), {}, "", false);
    files_.put("/d/a.csv", "1\n2\n3\n4\n");
    DataResult result = TabLoad("/d/a.csv", CommaRows, table.get(), KindTable);
    EXPECT_EQ(result.code, 619);
    EXPECT_EQ(result.row, 3);
    EXPECT_EQ(result.rows, 2);
    ListValue list;
    ListInit(list.get(), 3, nullptr, KindInteger, false);
    result = TabLoad("/d/a.csv", CommaRows, list.get(), KindList);
    EXPECT_EQ(result.code, 618);
    EXPECT_EQ(result.row, 4);
    EXPECT_EQ(Shown(list.get(), KindList), "{1}{2}{3}");
}

TEST_F(TabLoading, EmptyElementsAreAppendedInPlace) {
    ListDescriptor untyped{0, 0, 0, UNBOUNDED, 0, 0};
    EXPECT_EQ(ListAppendEmpty(&untyped), nullptr);
    EXPECT_EQ(ErrorCell(), 761);
    ClearError();
    Typed list("x : list\n\tr : record\n\t\ts : string[3]\n\tend record\nend list\n");
    void* const element = ListAppendEmpty(list.get<ListDescriptor>());
    EXPECT_EQ(element, ListRef(list.get<ListDescriptor>(), 1));
    for (std::int64_t n = 0; n < 3; ++n) {
        FailAllocation(n);
        EXPECT_EQ(ListAppendEmpty(list.get<ListDescriptor>()), nullptr) << n;
        FailAllocation(-1);
        EXPECT_EQ(ErrorCell(), 802);
        ClearError();
        EXPECT_EQ(AdtCheck(list.get(), KindList), "");
    }
    EXPECT_EQ(Shown(list.get(), KindList), "{}");
}

// ---- lines of any length ----

TEST_F(TabLoading, ALineOfTheLargestLengthIsWholeAndALongerOneIsCut) {
    const std::string longest(MaxTabLine - 2, 'x');
    const char* const fields = "a : integer\nb : string[40000]\n";
    EXPECT_EQ(loaded("1," + longest + "\n2,b\n", fields), "{1|" + longest + "}{2|b}");
    EXPECT_EQ(loaded("1," + longest + "\r\n2,b\n", fields), "{1|" + longest + "}{2|b}");
    EXPECT_EQ(loaded("1," + longest + "y\n2,b\n", fields), "986@1 {1|" + longest + "}{2|b}");
    EXPECT_EQ(loaded("1," + longest + "y\r\n2,b\n", fields), "986@1 {1|" + longest + "}{2|b}");
    EXPECT_EQ(loaded("1," + longest + std::string(300000, 'y') + "\n2,b\n", fields),
              "986@1 {1|" + longest + "}{2|b}");
    EXPECT_EQ(loaded("1," + longest + std::string(300000, 'y'), fields), "986@1 {1|" + longest + "}");
    EXPECT_EQ(loaded("1," + longest, fields), "{1|" + longest + "}");
}

TEST_F(TabLoading, ALongHeaderLineIsSkippedWhole) {
    EXPECT_EQ(loaded(std::string(100000, 'h') + "\n1\n", "a : integer\n", {1, 0, ',', -1}), "{1}");
}

TEST_F(TabLoading, RowsCrossTheBlocksOfTheFileAnywhere) {
    for (std::size_t shift = 0; shift < 40; ++shift) {
        std::string text(shift, 'x'), expected;
        text = "\"" + text + "\",0\n";
        expected = "{" + std::string(shift, 'x') + "|0}";
        for (int i = 1; text.size() < 40000 * 8; ++i) {
            text += "\"line " + std::to_string(i) + "\nof, \"\"two\"\"\"," + std::to_string(i) + "\n";
            expected += "{line " + std::to_string(i) + "\nof, \"two\"|" + std::to_string(i) + "}";
            text += std::string(static_cast<std::size_t>(i % 900), 'p') + ",-1\n";
            expected += "{" + std::string(static_cast<std::size_t>(i % 900), 'p') + "|-1}";
        }
        ASSERT_TRUE(loaded(text, "a : string[1000]\nb : integer\n") == expected) << shift;
        if (shift > 5) shift += 7;
    }
}

TEST_F(TabLoading, FootersAreFoundAcrossBlocks) {
    std::string text;
    for (int i = 0; i < 120000; ++i) text += "12345\n";
    EXPECT_EQ(loaded(text, "a : integer\n", {0, 119998, ',', -1}), "{12345}{12345}");
}

// ---- what goes wrong ----

TEST_F(TabLoading, WhatCannotBeReadLeavesTheTargetAsItWas) {
    Typed list("x : list\n\ti : integer\nend list\n");
    const std::int32_t old = 7;
    ListAppend(&old, KindInteger, list.get<ListDescriptor>());
    const auto code = [&](const std::string& file) {
        const DataResult result = TabLoad(file, CommaRows, list.get(), KindList);
        EXPECT_EQ(Shown(list.get(), KindList), "{7}");
        EXPECT_EQ(result.rows, 0);
        return result.code;
    };
    files_.put("/d/secret.csv", "1\n", 0);
    EXPECT_EQ(code("/d/none.csv"), 651);
    EXPECT_EQ(code("/none/a.csv"), 651);
    EXPECT_EQ(code("/d"), 651);
    EXPECT_EQ(code("/d/secret.csv"), 651);
    EXPECT_EQ(code(""), 657);
    std::string text;
    while (text.size() < 600000) text += "12\n";
    files_.put("/d/long.csv", text);
    for (int n = 1; n <= 3; ++n) {
        files_.failAt(os::FileCall::Read, n, os::FileError::ReadFailed);
        EXPECT_EQ(code("/d/long.csv"), 651) << n;
        files_.stopFailing();
    }
    files_.failAt(os::FileCall::Read, 2, os::FileError::Vanished);
    EXPECT_EQ(code("/d/long.csv"), 653);
}

TEST_F(TabLoading, AReadOnlyFileCanBeRead) {
    files_.put("/d/r.csv", "5\n", 0444);
    Typed list("x : list\n\ti : integer\nend list\n");
    EXPECT_EQ(TabLoad("/d/r.csv", CommaRows, list.get(), KindList).code, 0);
    EXPECT_EQ(Shown(list.get(), KindList), "{5}");
}

TEST_F(TabLoading, TheFirstFaultIsNamed) {
    Typed list("x : list\n\ti : integer\nend list\n");
    Typed lists("x : list\n\ty : list\n\t\ti : integer\n\tend list\nend list\n");
    std::int32_t number = 0;
    const auto code = [&](void* value, Kind kind, std::int32_t separator) {
        return TabLoad("/none", {0, 0, separator, -1}, value, kind).code;
    };
    EXPECT_EQ(code(nullptr, KindList, 0), 764);
    EXPECT_EQ(code(list.get(), KindNone, 0), 764);
    EXPECT_EQ(code(list.get(), KindString, 0), 756);
    EXPECT_EQ(code(list.get(), KindTable, 0), 762);
    for (const std::int32_t separator : {0, 10, 34, 256, -2})
        EXPECT_EQ(code(list.get(), KindList, separator), 757);
    EXPECT_EQ(code(lists.get(), KindList, 0), 757);
    EXPECT_EQ(code(lists.get(), KindList, ','), 658);
    EXPECT_EQ(code(&number, KindInteger, ','), 658);
    EXPECT_EQ(code(list.get(), KindList, ','), 651);
    ListDescriptor held{};
    ListInit(&held, UNBOUNDED, nullptr, KindInteger, true);
    EXPECT_EQ(code(&held, KindList, 0), 661);
    AdtFree(&held, KindList);
    ListDescriptor untyped{0, 0, 0, UNBOUNDED, 0, 0};
    EXPECT_EQ(code(&untyped, KindList, ','), 658);
}

TEST_F(TabLoading, AStoppedLoadLeavesTheTargetAsItWas) {
    std::string text;
    while (text.size() < 3 * ProgressStep) text += "12\n";
    files_.put("/d/long.csv", text);
    static std::vector<std::pair<std::int64_t, std::int64_t>> calls;
    calls.clear();
    UseProgress([](std::int64_t done, std::int64_t total) {
        calls.emplace_back(done, total);
        return calls.size() < 2;
    });
    Typed list("x : list\n\ti : integer\nend list\n");
    const DataResult result = TabLoad("/d/long.csv", CommaRows, list.get(), KindList);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.rows, 0);
    EXPECT_EQ(Shown(list.get(), KindList), "");
    ASSERT_EQ(calls.size(), 2u);
    for (const auto& [done, total] : calls) EXPECT_EQ(total, static_cast<std::int64_t>(text.size()));
    EXPECT_GE(calls[0].first, ProgressStep);
    EXPECT_LT(calls[0].first, 2 * ProgressStep);
    EXPECT_GE(calls[1].first - calls[0].first, ProgressStep);
}

TEST_F(TabLoading, ALackOfMemoryAnywhereLeavesTheTargetAsItWas) {
    files_.put("/d/a.csv", "1,abc,[1,2]\n2,def,[3]\n3,ghi,[]\n");
    const std::string row =
        "\tr : record\n\t\ta : integer\n\t\tb : string[9]\n\t\tc : set[1:9]\n\tend record\n";
    for (const bool isTable : {false, true}) {
        Typed value(isTable ? "x : record\n\ta : integer\n\tb : string[9]\n\tc : set[1:9]\nend record\n"
                            : "x : list\n" + row + "end list\n");
        TableValue table;
        if (isTable)
            TableInit(table.get(), UNBOUNDED, value.get<RecordDescriptor>(), {MakeKeyMap(1)}, "", false);
        void* const target = isTable ? static_cast<void*>(table.get()) : value.get();
        const Kind kind = isTable ? KindTable : KindList;
        DataResult result{-1};
        for (std::int64_t n = 0; result.code != 0; ++n) {
            const std::int64_t before = LiveBlocks();
            FailAllocation(n);
            result = TabLoad("/d/a.csv", CommaRows, target, kind);
            FailAllocation(-1);
            if (result.code == 0) break;
            ASSERT_EQ(result.code, 802) << n;
            ASSERT_EQ(result.rows, 0) << n;
            ASSERT_EQ(LiveBlocks(), before) << n;
            ASSERT_EQ(Shown(target, kind), "");
            ASSERT_LT(n, 200);
        }
        EXPECT_EQ(Shown(target, kind), "{1|abc|[1..2]}{2|def|[3]}{3|ghi|[]}");
    }
}

TEST_F(TabLoading, AnErrorThatIsPendingStaysAndDoesNotDisturb) {
    SetError(641);
    files_.put("/d/a.csv", "1E999\n2\n");
    Typed list("x : list\n\ti : real\nend list\n");
    const DataResult result = TabLoad("/d/a.csv", CommaRows, list.get(), KindList);
    EXPECT_EQ(result.code, 985);
    EXPECT_EQ(Shown(list.get(), KindList), "{0r}{2r}");
    EXPECT_EQ(ErrorCell(), 641);
    ClearError();
}

// ---- options ----

TEST_F(TabLoading, OptionsComeFromARecordOfFourIntegers) {
    EXPECT_EQ(DataOptionsOf(nullptr, 7).separatorchar, 9);
    EXPECT_EQ(DataOptionsOf(nullptr, 7).numheaderrows, 2);
    EXPECT_EQ(DataOptionsOf(nullptr, 2).separatorchar, 44);
    EXPECT_EQ(DataOptionsOf(nullptr, 2).numheaderrows, 0);
    EXPECT_EQ(DataOptionsOf(nullptr, 2).numfooterrows, 0);
    EXPECT_EQ(DataOptionsOf(nullptr, 2).maxdatarows, -1);
    RecordDescriptor empty{};
    EXPECT_EQ(DataOptionsOf(&empty, 7).separatorchar, 9);
    empty.tag = TagRecord;
    EXPECT_EQ(DataOptionsOf(&empty, 7).separatorchar, 9);
    RecordValue four;
    RecordInit(four.get(), TagRecord, MakeFieldKinds({KindInteger, KindInteger, KindInteger, KindInteger}));
    for (std::int32_t n = 1; n <= 4; ++n) RecordPut(four.get(), n, &n, KindInteger);
    const DataOptions read = DataOptionsOf(four.get(), 7);
    EXPECT_EQ(read.numheaderrows, 1);
    EXPECT_EQ(read.numfooterrows, 2);
    EXPECT_EQ(read.separatorchar, 3);
    EXPECT_EQ(read.maxdatarows, 4);
    EXPECT_EQ(ErrorCell(), 0);
    RecordValue three3;
    RecordInit(three3.get(), TagRecord, MakeFieldKinds({KindInteger, KindInteger, KindInteger}));
    EXPECT_EQ(DataOptionsOf(three3.get(), 7).separatorchar, 9);
    EXPECT_EQ(ErrorCell(), 757);
    ClearError();
    const String text("x");
    DataOptionsOf(reinterpret_cast<const RecordDescriptor*>(text.get()), 7);
    EXPECT_EQ(ErrorCell(), 764);
    ClearError();
}

}  // namespace
}  // namespace tarn
