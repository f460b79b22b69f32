// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/typeinfo/typeinfo.h"

#include "kernel/run/errors.h"
#include "unit/kernel/runtime_fixture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace tarn;
using namespace std::string_literals;

namespace {

constexpr std::int32_t No = TypeInfoNoValue;

class TypeInfoLines : public Runtime {
protected:
    void TearDown() override {
        FailAllocation(-1);
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
    static std::string changed(std::int32_t delta, std::string text, std::int32_t size = 1000) {
        TypeInfoChangeIndent(delta, text, size);
        return text;
    }
    static std::string formatted(std::string text, std::int32_t line, const TypeBounds& bounds = {},
                                 std::int32_t size = 1000) {
        TypeInfoFormatLine(text, size, line, "n", "set", bounds);
        return text;
    }
};

const std::string customers = "cust : table\n"
                              "\tTcust : record\n"
                              "\t\tid : integer\n"
                              "\t\tname : string[40]\n"
                              "\tend record\n"
                              "end table\n";

TEST_F(TypeInfoLines, ALineHasAnIndentANameATypeAndBounds) {
    const struct {
        std::string line;
        std::int32_t indent;
        std::string name, typeName;
        TypeBounds bounds;
    } rows[] = {
        {"id : integer\n", 0, "id", "integer", {}},
        {"id : integer", 0, "id", "integer", {}},
        {"id : integer\r\n", 0, "id", "integer", {}},
        {"\t\tid : integer\n", 2, "id", "integer", {}},
        {" \t id:integer\n", 3, "id", "integer", {}},
        {"id\t:\tinteger\n", 0, "id", "integer", {}},
        {"id integer\n", 0, "id", "integer", {}},
        {"end record\n", 0, "end", "record", {}},
        {"\tend\n", 1, "end", "", {}},
        {"name : string[40]\n", 0, "name", "string", {40, No, No, No, No, No}},
        {"x : set[1:10]\n", 0, "x", "set", {1, 10, No, No, No, No}},
        {"x : set [ -5 : +7 ] \n", 0, "x", "set", {-5, 7, No, No, No, No}},
        {"x : adt[1:2,3:4,5:6]\n", 0, "x", "adt", {1, 2, 3, 4, 5, 6}},
        {"x : adt[1,3:4,5]\n", 0, "x", "adt", {1, No, 3, 4, 5, No}},
        {"x : adt[1,2,3,4:5]\n", 0, "x", "adt", {1, No, 2, No, 3, No}},
        {"x : table[*]\n", 0, "x", "table", {}},
        {"x : set[1:\n", 0, "x", "set", {1, No, No, No, No, No}},
        {"x : set[1:2\n", 0, "x", "set", {1, 2, No, No, No, No}},
        {"x : set[--1]\n", 0, "x", "set", {}},
        {"x : set[]\n", 0, "x", "set", {}},
        {"x : [7]\n", 0, "x", "", {7, No, No, No, No, No}},
        {"\"first name\" : string[20]\n", 0, "\"first name\"", "string", {20, No, No, No, No, No}},
        {"\"a : b\":real\n", 0, "\"a : b\"", "real", {}},
        {"\"\" : real\n", 0, "\"\"", "real", {}},
        {"\t\"open : real\n", 1, "", "", {}},
        {"\"tab\tinside\" : real\n", 0, "", "", {}},
        {"only\n", 0, "only", "", {}},
        {"\n", 0, "", "", {}},
        {"\t \n", 2, "", "", {}},
        {" : integer\n", 1, "", "integer", {}},
        {"x : T_2b\n", 0, "x", "T_2b", {}},
        {"x : a-b\n", 0, "x", "a", {}},
        {"\xC3\xA4 : integer\n", 0, "", "", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const TypeInfoElement e = TypeInfoParseLine(row.line, 1);
        EXPECT_EQ(e.indent, row.indent);
        EXPECT_EQ(e.name, row.name);
        EXPECT_EQ(e.typeName, row.typeName);
        EXPECT_TRUE(e.bounds == row.bounds) << e.bounds.lb1 << ':' << e.bounds.ub1 << ',' << e.bounds.lb2;
        EXPECT_EQ(e.isEnd(), row.name == "end");
        EXPECT_EQ(TypeInfoName(row.line, 1), row.name);
        EXPECT_EQ(TypeInfoIndent(row.line, 1), row.indent);
    }
}

TEST_F(TypeInfoLines, ClosingLinesAreToldInAnyCase) {
    for (const std::string line : {"end record\n", "END RECORD\n", "\tEnd\n", "eND : integer"})
        EXPECT_TRUE(TypeInfoParseLine(line, 1).isEnd()) << line;
    for (const std::string line : {"ends record\n", "\"end\" : integer\n", "\n", "record end\n"})
        EXPECT_FALSE(TypeInfoParseLine(line, 1).isEnd()) << line;
    EXPECT_EQ(TypeInfoCountElements("End : integer\na : real\nEND RECORD\n", 0), 1);
    EXPECT_EQ(TypeInfoFindElement("a : real\nEND RECORD\n", "end", 0), -1);
}

TEST_F(TypeInfoLines, AColumnWithTheNameOfClosingLinesClosesNothing) {
    for (const std::string line :
         {"end record\n", "END  Record \n", "\tend\tlist\r\n", "end union", "End table\n", " end \n"})
        EXPECT_TRUE(TypeInfoIsClosing(line, 1)) << line;
    for (const std::string line : {"end : record\n", "end:list\n", "end integer\n", "end record : integer\n",
                                   "endrecord\n", "a : record\n", "\n", "end record x\n"})
        EXPECT_FALSE(TypeInfoIsClosing(line, 1)) << line;
    EXPECT_FALSE(TypeInfoIsClosing("end\n", 2));
}

// ':' may stand in a name and ends it too.
TEST_F(TypeInfoLines, TheColonThatLeavesATypePartsTheName) {
    const struct {
        std::string line, name, typeName;
        std::int32_t lb1;
    } rows[] = {
        {"a:integer", "a", "integer", No},
        {"a: integer", "a", "integer", No},
        {"a :integer", "a", "integer", No},
        {"a:string[4]", "a", "string", 4},
        {"ns:a : integer", "ns:a", "integer", No},
        {"ns:a integer", "ns:a", "integer", No},
        {"ns:a: integer", "ns:a", "integer", No},
        {"ns:a:integer", "ns:a", "integer", No},
        {"my-ns.x:a_1 : string[9]", "my-ns.x:a_1", "string", 9},
        {"ns:my-element", "ns:my-element", "", No},
        {"a:", "a", "", No},
        {"a::integer", "a", "integer", No},
        {":integer", "", "integer", No},
        {":", "", "", No},
        {"12:30 : string[5]", "12:30", "string", 5},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const TypeInfoElement e = TypeInfoParseLine(row.line, 1);
        EXPECT_EQ(e.name, row.name);
        EXPECT_EQ(e.typeName, row.typeName);
        EXPECT_EQ(e.bounds.lb1, row.lb1);
    }
}

TEST_F(TypeInfoLines, ABoundIsReadFromItsFirst34Digits) {
    const auto bound = [](const std::string& text) {
        return TypeInfoParseLine("x : set[" + text + ":8]", 1).bounds;
    };
    EXPECT_TRUE(bound(std::string(33, '0') + "5") == (TypeBounds{5, 8, No, No, No, No}));
    EXPECT_TRUE(bound(std::string(33, '0') + "57") == (TypeBounds{5, 8, No, No, No, No}));
    EXPECT_TRUE(bound("-" + std::string(33, '0') + "57") == (TypeBounds{-5, 8, No, No, No, No}));
    EXPECT_TRUE(bound(std::string(34, '0') + "7") == (TypeBounds{0, 8, No, No, No, No}));
    EXPECT_TRUE(bound("2147483647") == (TypeBounds{2147483647, 8, No, No, No, No}));
    // No integer: the bound is absent.
    EXPECT_TRUE(bound("2147483648") == (TypeBounds{No, 8, No, No, No, No}));
    EXPECT_TRUE(bound(std::string(500, '9')) == (TypeBounds{No, 8, No, No, No, No}));
}

TEST_F(TypeInfoLines, NamesAndTypesAreCut) {
    const TypeInfoElement e =
        TypeInfoParseLine(std::string(1030, 'n') + " : " + std::string(50, 't') + "[3]", 1);
    EXPECT_EQ(e.name, std::string(MaxTypeInfoName, 'n'));
    EXPECT_EQ(e.typeName, std::string(MaxTypeName, 't'));
    EXPECT_EQ(e.bounds.lb1, 3);
    EXPECT_EQ(TypeInfoTypeText(std::string(50, 't').insert(0, "a : ") + "[3]", 1),
              std::string(MaxTypeName, 't') + "[3]");
}

TEST_F(TypeInfoLines, AMissingLineLeavesEverythingInitial) {
    for (const std::string& text : {""s, "a : integer\n"s, "a : integer"s}) {
        for (const std::int32_t line : {-1, 0, 2, 1000000}) {
            const TypeInfoElement e = TypeInfoParseLine(text, line);
            EXPECT_EQ(e.indent, 0);
            EXPECT_EQ(e.name, "");
            EXPECT_EQ(e.typeName, "");
            EXPECT_TRUE(e.bounds == TypeBounds{});
            EXPECT_EQ(TypeInfoLine(text, line), "");
            EXPECT_EQ(TypeInfoName(text, line), "");
            EXPECT_EQ(TypeInfoTypeText(text, line), "");
            EXPECT_EQ(TypeInfoIndent(text, line), 0);
        }
    }
    EXPECT_EQ(TypeBounds{}.lb1, -999999);
}

TEST_F(TypeInfoLines, LinesAreCopiedWithTheirLineFeed) {
    EXPECT_EQ(TypeInfoLine(customers, 1), "cust : table\n");
    EXPECT_EQ(TypeInfoLine(customers, 4), "\t\tname : string[40]\n");
    EXPECT_EQ(TypeInfoLine(customers, 6), "end table\n");
    EXPECT_EQ(TypeInfoLine("a\nb", 2), "b");
    EXPECT_EQ(TypeInfoLine("\n\n", 2), "\n");
}

TEST_F(TypeInfoLines, ATypeTextHasTheBracketThatFollowsAtOnce) {
    const struct {
        std::string line, text;
    } rows[] = {
        {"a : string[40]\n", "string[40]"},
        {"a : Tchars[1:10]\n", "Tchars[1:10]"},
        {"a : adt[-1:+2,3]\n", "adt[-1:+2,3]"},
        {"a : string [40]\n", "string"},
        {"a : integer\n", "integer"},
        {"a : set[1: 10]\n", "set[1:"},
        {"a : string[40] x\n", "string[40]"},
        {"end record\n", "record"},
        {"a\n", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(TypeInfoTypeText(row.line, 1), row.text) << row.line;
    EXPECT_EQ(TypeInfoTypeText(customers, 4), "string[40]");
}

TEST_F(TypeInfoLines, ALineIsDeletedWithItsLineFeedOrStays) {
    const auto deleted = [](std::string text, std::int32_t line) {
        TypeInfoDeleteLine(text, line);
        return text;
    };
    EXPECT_EQ(deleted("a\nb\nc\n", 1), "b\nc\n");
    EXPECT_EQ(deleted("a\nb\nc\n", 2), "a\nc\n");
    EXPECT_EQ(deleted("a\nb\nc\n", 3), "a\nb\n");
    EXPECT_EQ(deleted("a\nb\nc", 3), "a\nb\nc");
    EXPECT_EQ(deleted("a\nb\n", 3), "a\nb\n");
    EXPECT_EQ(deleted("a\nb\n", 0), "a\nb\n");
    EXPECT_EQ(deleted("", 1), "");
}

TEST_F(TypeInfoLines, TabsAreAddedToEachLineOrRemoved) {
    EXPECT_EQ(changed(1, "a\n\tb\n"), "\ta\n\t\tb\n");
    EXPECT_EQ(changed(2, "a\n"), "\t\ta\n");
    EXPECT_EQ(changed(0, "a\n\tb\n"), "a\n\tb\n");
    EXPECT_EQ(changed(-1, "a\n\tb\n\t\tc\n"), "a\nb\n\tc\n");
    EXPECT_EQ(changed(-5, "\t\t\ta\n\tb\n"), "a\nb\n");
    EXPECT_EQ(changed(-1, " a\n"), " a\n");  // a blank is no tab
    EXPECT_EQ(changed(INT32_MIN, "\t\ta\n"), "a\n");
    EXPECT_EQ(changed(1, "\n"), "\t\n");
    EXPECT_EQ(changed(-1, "\t\n\n"), "\n\n");
}

TEST_F(TypeInfoLines, ALastLineWithoutALineFeedIsLostWhenTheIndentChanges) {
    EXPECT_EQ(changed(1, "a\nb"), "\ta\n");
    EXPECT_EQ(changed(0, "a\nb"), "a\n");
    EXPECT_EQ(changed(-1, "a"), "");
}

TEST_F(TypeInfoLines, AChangedIndentIsCutToTheBuffer) {
    EXPECT_EQ(changed(1, "ab\ncd\n", 9), "\tab\n\tcd\n");
    EXPECT_EQ(changed(1, "ab\ncd\n", 8), "\tab\n\tcd");
    EXPECT_EQ(changed(1, "ab\ncd\n", 6), "\tab\n\t");
    EXPECT_EQ(changed(1, "ab\n", 1), "");
    EXPECT_EQ(changed(INT32_MAX, "ab\n", 5), "\t\t\t\t");
    EXPECT_EQ(changed(0, "ab\n", 0), "ab\n");  // no buffer: nothing happens
    EXPECT_EQ(changed(1, "ab\n", -3), "ab\n");
}

TEST_F(TypeInfoLines, ElementsAreTheLinesAtAnIndentThatCloseNothing) {
    EXPECT_EQ(TypeInfoCountElements(customers, 0), 1);
    EXPECT_EQ(TypeInfoCountElements(customers, 1), 1);
    EXPECT_EQ(TypeInfoCountElements(customers, 2), 2);
    EXPECT_EQ(TypeInfoCountElements(customers, 3), 0);
    EXPECT_EQ(TypeInfoCountElements("a : real\nb : real", 0), 2);
    EXPECT_EQ(TypeInfoCountElements("end : integer\na : real\n", 0), 1);
    EXPECT_EQ(TypeInfoCountElements("  a : real\n\t\tb : real\n", 2), 2);  // blanks count as tabs
    EXPECT_EQ(TypeInfoCountElements("", 0), 0);
}

TEST_F(TypeInfoLines, AnElementIsFoundByNameInAnyCaseTheLastOne) {
    EXPECT_EQ(TypeInfoFindElement(customers, "NAME", 2), 4);
    EXPECT_EQ(TypeInfoFindElement(customers, "name", 1), -1);
    EXPECT_EQ(TypeInfoFindElement(customers, "nam", 2), -1);
    EXPECT_EQ(TypeInfoFindElement("a : real\nb : real\nA : integer\n", "a", 0), 3);
    EXPECT_EQ(TypeInfoFindElement("\"A b\" : real\n", "\"a B\"", 0), 1);
    EXPECT_EQ(TypeInfoFindElement(customers, "end", 0), -1);
    EXPECT_EQ(TypeInfoFindElement("", "a", 0), -1);
}

TEST_F(TypeInfoLines, TheEmptyNameIsThatOfLinesWithoutOne) {
    EXPECT_EQ(TypeInfoFindElement(customers, "", 0), -1);
    EXPECT_EQ(TypeInfoFindElement("a : real\n\n\xC3\xA4 : real\nb : real\n", "", 0), 3);
    EXPECT_EQ(TypeInfoFindElement("a : real\n\t: real\n", "", 1), 2);
    EXPECT_EQ(TypeInfoFindElement("", "", 0), -1);
}

TEST_F(TypeInfoLines, SkippingALineStopsAtTheEnd) {
    std::size_t position = 0;
    TypeInfoSkipLine("ab\nc", position);
    EXPECT_EQ(position, 3U);
    TypeInfoSkipLine("ab\nc", position);
    EXPECT_EQ(position, 4U);
    TypeInfoSkipLine("ab\nc", position);
    EXPECT_EQ(position, 4U);
    position = 1000;
    TypeInfoSkipLine("ab\nc", position);
    EXPECT_EQ(position, 4U);
}

TEST_F(TypeInfoLines, ALineIsRewrittenBetweenItsIndentAndItsEnd) {
    EXPECT_EQ(formatted("a : real\n\t b : string[4]\nc : real\n", 2), "a : real\n\t n : set\nc : real\n");
    EXPECT_EQ(formatted("a : real\n", 1), "n : set\n");
    EXPECT_EQ(formatted("a : real", 1), "n : set");
    EXPECT_EQ(formatted("\ta : real\r\nb", 1), "\tn : set\r\nb");
    EXPECT_EQ(formatted("\n", 1), "n : set\n");
}

TEST_F(TypeInfoLines, BoundsAreWrittenAsFarAsTheyArePresent) {
    const struct {
        TypeBounds bounds;
        std::string text;
    } rows[] = {
        {{}, "n : set"},
        {{No, 4, 5, 6, 7, 8}, "n : set"},
        {{-1, No, No, No, No, No}, "n : set[-1]"},
        {{1, 2, No, No, No, No}, "n : set[1:2]"},
        {{1, 2, 3, No, No, No}, "n : set[1:2,3]"},
        {{1, No, 3, 4, No, No}, "n : set[1,3:4]"},
        {{1, 2, 3, 4, 5, No}, "n : set[1:2,3:4,5]"},
        {{1, 2, 3, 4, 5, 6}, "n : set[1:2,3:4,5:6]"},
        {{INT32_MIN, INT32_MAX, No, No, No, No}, "n : set[-2147483648:2147483647]"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(formatted("x", 1, row.bounds), row.text);
        if (row.bounds.lb1 == No) continue;
        EXPECT_TRUE(TypeInfoParseLine(row.text, 1).bounds == row.bounds) << row.text;
    }
}

TEST_F(TypeInfoLines, ARewrittenTextIsCutToTheBuffer) {
    EXPECT_EQ(formatted("a\nbcd\n", 1, {}, 13), "n : set\nbcd\n");
    EXPECT_EQ(formatted("a\nbcd\n", 1, {}, 11), "n : set\nbc");
    EXPECT_EQ(formatted("a\nbcd\n", 1, {}, 1), "");
    EXPECT_EQ(formatted("a\nbcd\n", 1, {}, 0), "a\nbcd\n");
}

TEST_F(TypeInfoLines, NothingIsRewrittenWithoutTextNameTypeOrLine) {
    EXPECT_EQ(formatted("", 1), "");
    EXPECT_EQ(formatted("a\n", 0), "a\n");
    EXPECT_EQ(formatted("a\n", -1), "a\n");
    EXPECT_EQ(formatted("a\n", 2), "a\n");
    std::string text = "a\n";
    TypeInfoFormatLine(text, 100, 1, "", "set", {});
    TypeInfoFormatLine(text, 100, 1, "n", "", {});
    EXPECT_EQ(text, "a\n");
}

TEST_F(TypeInfoLines, LinesAreAppendedToABufferAsFarAsItGoes) {
    std::string buffer = "a : real\n";
    TypeInfoAppendLine(buffer, 100, "b", "string", {40, No, No, No, No, No});
    EXPECT_EQ(buffer, "a : real\nb : string[40]\n");
    TypeInfoAppendLine(buffer, 100, "", "real", {});
    TypeInfoAppendLine(buffer, 100, "c", "", {});
    EXPECT_EQ(buffer, "a : real\nb : string[40]\n");
    TypeInfoAppendLine(buffer, 28, "c", "real", {});
    EXPECT_EQ(buffer, "a : real\nb : string[40]\nc :");
    TypeInfoAppendLine(buffer, 0, "c", "real", {});
    EXPECT_EQ(buffer, "a : real\nb : string[40]\nc :");
}

TEST_F(TypeInfoLines, AnAppendedLineGoesOnWhereTheBufferEnds) {
    std::string buffer = "a : real";
    TypeInfoAppendLine(buffer, 100, "b", "int", {});
    EXPECT_EQ(buffer, "a : realb : int\n");
}

TEST_F(TypeInfoLines, LinesAreAppendedToStringsOfTwoByteCharacters) {
    CharacterWidth = 2;
    {
        const auto wide = [](std::string_view text) {
            std::string bytes;
            for (const char c : text) bytes.append({c, '\0'});
            return bytes;
        };
        String text(std::string_view("a : real\n"));
        TypeInfoAppendLineToString(text.get(), "b", "set", {1, 9, No, No, No, No});
        EXPECT_EQ(text.view(), wide("a : real\nb : set[1:9]\n"));
        String fixed(12);
        TypeInfoAppendLineToString(fixed.get(), "b", "set", {1, 9, No, No, No, No});
        EXPECT_EQ(fixed.view(), wide("b : set[1:9]"));
    }
    CharacterWidth = 1;
}

TEST_F(TypeInfoLines, LinesAreAppendedToAStringValue) {
    String text("a : real\n");
    TypeInfoAppendLineToString(text.get(), "b", "set", {1, 9, No, No, No, No});
    EXPECT_EQ(text.view(), "a : real\nb : set[1:9]\n");
    String fixed(12);
    TypeInfoAppendLineToString(fixed.get(), "b", "set", {1, 9, No, No, No, No});
    EXPECT_EQ(fixed.view(), "b : set[1:9]");
    TypeInfoAppendLineToString(fixed.get(), "b", "set", {});
    EXPECT_EQ(fixed.view(), "b : set[1:9]");
}

TEST_F(TypeInfoLines, AppendingLeavesAValueOfAnotherKindAlone) {
    ListDescriptor list{};
    list.maxlength = UNBOUNDED;
    const ListDescriptor before = list;
    TypeInfoAppendLineToString(reinterpret_cast<StringDescriptor*>(&list), "b", "set", {});
    EXPECT_EQ(std::memcmp(&list, &before, sizeof list), 0);
    TypeInfoAppendLineToString(nullptr, "b", "set", {});
}

TEST_F(TypeInfoLines, TypeNamesStandForKindsInAnyCase) {
    const struct {
        std::string names;
        std::int32_t kind;
    } rows[] = {
        {"boolean bit BOOLEAN Bit", 1},
        {"enum Tchar tchar", 2},
        {"integer int INT", 3},
        {"fixed money", 4},
        {"real float Float", 5},
        {"string varchar char nvarchar nchar uniqueidentifier bigint Tdatetime any Any TDATETIME", 6},
        {"record Record", 7},
        {"union", 8},
        {"set", 9},
        {"Tchars Tnumeric Tlogical Tdate tdate", 10},
        {"list", 11},
        {"adt ADT", 13},
        {"table array text strin strings x 1", 0},
    };
    for (const auto& row : rows) {
        for (std::size_t at = 0; at <= row.names.size();) {
            const std::size_t end = std::min(row.names.find(' ', at), row.names.size());
            EXPECT_EQ(TypeInfoKind(row.names.substr(at, end - at)), row.kind)
                << row.names.substr(at, end - at);
            at = end + 1;
        }
    }
    EXPECT_EQ(TypeInfoKind(""), 0);
}

TEST_F(TypeInfoLines, ARepairedNameHoldsLettersAndDigits) {
    const struct {
        std::string text;
        std::int32_t maxLength;
        std::string replacement, word;
    } rows[] = {
        {"first name", 40, "_", "first_name"},
        {"9lives", 40, "_", "nlives"},
        {"_a_b", 40, "_", "na_b"},
        {"a_b", 40, "x", "axb"},  // '_' is replaced too
        {"a_b", 40, "", "ab"},
        {"9a", 40, "", "na"},
        {"9a", 40, "x", "xa"},
        {"9a-b", 40, "xy", "xyaxyb"},
        {"9a-b", 40, "1x", "na1xb"},
        {"a1b2", 40, "_", "a1b2"},
        {"\xC3\xA4rger", 40, "_", "n_rger"},
        {"abcdef", 3, "_", "abc"},
        {"a-bcdef", 3, "xyz", "axy"},
        {"abc", 0, "_", ""},
        {"abc", -1, "_", ""},
        {"", 40, "_", ""},
        {" ", 40, "_", "n"},
        {"Order No.", 40, "_", "Order_No_"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TypeInfoIdentifier(row.text, row.maxLength, row.replacement), row.word) << row.text;
}

TEST_F(TypeInfoLines, AppendingToAStringWithoutMemoryLeavesNothingBehind) {
    String text("a : real\n");
    FailAllocation(0);
    TypeInfoAppendLineToString(text.get(), "b", "set", {1, 9, No, No, No, No});
    FailAllocation(-1);
    EXPECT_EQ(ErrorCell(), ERR_OUT_OF_MEMORY);
    ClearError();
    EXPECT_EQ(text.view(), "");
}

}  // namespace
