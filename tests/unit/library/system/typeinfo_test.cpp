// SPDX-License-Identifier: Apache-2.0
//
// Identifiers from foreign names, and the repair of type information text.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/values/adt.h"
#include "library/system/system.h"
#include "support/errorcell.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace tarn;
using namespace std::string_literals;

namespace {

class FixIdentifiers : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        ASSERT_EQ(LiveBlocks(), 0);
    }
    void TearDown() override {
        FailAllocation(-1);
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(LiveBlocks(), 0);
        ClearError();
    }
    static std::string fixed(std::string_view text) { return TYPEINFOFIXIDENTIFIERS(text, 40); }

    using Lines = std::vector<std::string>;
    static void fill(ListValue& list, const Lines& lines, std::int32_t maxlength = UNBOUNDED) {
        const String like;
        ListInit(list.get(), maxlength, like.get(), KindString, false);
        for (const std::string& line : lines) ListAppend(String(line).get(), KindString, list.get());
    }
    static Lines linesOf(const ListValue& list) {
        Lines lines;
        for (std::int32_t n = 1; n <= ListCount(list.get()); ++n)
            lines.emplace_back(StringView(static_cast<const StringDescriptor*>(ListRef(list.get(), n))));
        return lines;
    }
};

// ---- identifiers ----

TEST_F(FixIdentifiers, TheFormWithALengthReplacesUnderscoresToo) {
    EXPECT_EQ(STRTOIDENTIFIER("9lives", 40, "_"), "nlives");
    EXPECT_EQ(STRTOIDENTIFIER("a_b c", 40, "x"), "axbxc");
    EXPECT_EQ(STRTOIDENTIFIER("a b c", 2, "_"), "a_");
}

TEST_F(FixIdentifiers, TheFormWithAFirstSetKeepsUnderscoresAndTheLength) {
    const struct {
        std::string text, firstSet, replacement, word;
    } rows[] = {
        {"abc", "", "_", "abc"},
        {"a_b1", "", "_", "a_b1"},
        {"9lives", "", "_", "_9lives"},
        {"9lives", "", "xy", "x9lives"},
        {"9lives", "", "", "9lives"},
        {"9lives", "0123456789", "_", "9lives"},
        {"_a", "", "n", "n_a"},
        {"_a", "_", "n", "_a"},
        {"-a", "", "x", "xxa"},
        {"-a", "-", "x", "-a"},
        {"a-b c", "-", "xy", "axbxc"},
        {"a-b c", "", "", "abc"},
        {"", "", "_", ""},
        {"end", "", "_", "end"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(STRTOIDENTIFIER(row.text, row.firstSet, row.replacement), row.word) << row.text;
}

// ---- texts ----

TEST_F(FixIdentifiers, NamesBecomeIdentifiers) {
    const struct {
        std::string line, repaired;
    } rows[] = {
        {"\"first name\" : string[20]\n", "first_name : string[20]\n"},
        {"order no : string[10]\n", "order_no : string[10]\n"},
        {"[order no] : string[10]\n", "order_no : string[10]\n"},
        {"\t\"9lives\":integer\n", "\tnlives:integer\n"},
        {"9lives : integer\n", "nlives : integer\n"},
        {"a : string[40]\n", "a : string[40]\n"},
        {"a_b : integer\n", "a_b : integer\n"},
        {"ns:my-name : integer\n", "ns_my_name : integer\n"},
        {"a.b integer\n", "a_b integer\n"},
        {"a.b\tinteger\n", "a_b\tinteger\n"},
        {"a:integer\n", "a:integer\n"},
        {"a-b:string[4]\n", "a_b:string[4]\n"},
        {"a-b: integer\n", "a_b: integer\n"},
        {" \t x y : real", " \t x_y : real"},
        {"x y : real\r\n", "x_y : real\n"},
        {"x-y\r\n", "x_y\n"},
        {"\"open : real\n", "nopen : real\n"},
        {"[open : real\n", "nopen : real\n"},
        {"\"\" : real\n", "n : real\n"},
        {"[]:real\n", "n:real\n"},
        {":real\n", "n:real\n"},
        {"\t: real\n", "\tn: real\n"},
        {"\n", "\n"},
        {"\t \n", "\t \n"},
        {"", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(fixed(row.line), row.repaired) << row.line;
}

TEST_F(FixIdentifiers, ANameEndsWhereItsLineReadsAsNameAndType) {
    const struct {
        std::string line, repaired;
    } rows[] = {
        {"x\t: set[1 : 10]\n", "x\t: set[1 : 10]\n"},
        {"x set[1 : 10]\n", "x set[1 : 10]\n"},
        {"x-y:set[1 : 10]\n", "x_y:set[1 : 10]\n"},
        {"x:  set [ 1 : 10 , 2 : 3 ] \n", "x:  set [ 1 : 10 , 2 : 3 ] \n"},
        {"to\tset[1 : 10]\n", "to_1\tset[1 : 10]\n"},
        {"\"a b\":set[1 : 10]\n", "a_b:set[1 : 10]\n"},
        {std::string(1030, 'x') + "\t: set[1 : 2]\n", std::string(40, 'x') + "\t: set[1 : 2]\n"},
        // What has more is a name with blanks.
        {"order no : set[1 : 10]\n", "order_no : set[1 : 10]\n"},
        {"order no [pieces] : integer\n", "order_no__pieces_ : integer\n"},
        {"a : b : real\n", "a : b : real\n"},
        {"a b c\n", "a b c\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(fixed(row.line), row.repaired) << row.line;
        const TypeInfoElement before = TypeInfoParseLine(row.line, 1),
                              after = TypeInfoParseLine(fixed(row.line), 1);
        if (row.line.find("[1 : ") == std::string::npos || row.line[0] == 'o') continue;
        EXPECT_EQ(after.typeName, before.typeName) << row.line;
        EXPECT_TRUE(after.bounds == before.bounds) << row.line;
    }
}

TEST_F(FixIdentifiers, ReservedWordsGetANumber) {
    EXPECT_EQ(fixed("end : integer\n"), "end_1 : integer\n");
    EXPECT_EQ(fixed("\tEnd:integer\n"), "\tEnd_1:integer\n");
    EXPECT_EQ(fixed("record : record\n\tgroup : real\nend record\n"),
              "record_1 : record\n\tgroup_1 : real\nend record\n");
    EXPECT_EQ(fixed("\"value s\" : real\n"), "value_s : real\n");
    EXPECT_EQ(fixed("\"values\" : real\n"), "values_1 : real\n");
    EXPECT_EQ(fixed("xor\n"), "xor_1\n");
    EXPECT_EQ(fixed("endrecord : real\n"), "endrecord : real\n");
    EXPECT_EQ(TYPEINFOFIXIDENTIFIERS("integers : real\n"s, 7), "integer_1 : real\n");
}

TEST_F(FixIdentifiers, ClosingLinesStayAsTheyAre) {
    for (const std::string line :
         {"end record\n", "end list\n", "\t\tend table\n", "end union\n", "end record", "end\n"})
        EXPECT_EQ(fixed(line), line);
    for (const std::string line :
         {"END RECORD\n", "End list\n", "END\n", "end \n", "\tend\t\n", "end  record\n", "end\trecord\n",
          "  End \t Union \n", "end recordings\n", "END TABLE[3]\n"})
        EXPECT_EQ(fixed(line), line);
    EXPECT_EQ(fixed("end union\r\nEnd list\r"), "end union\nEnd list") << "but for a carriage return";
    EXPECT_EQ(fixed("end : record\n"), "end_1 : record\n");
    EXPECT_EQ(fixed("END:list\n"), "END_1:list\n");
    EXPECT_EQ(fixed("END RECORD : integer\n"), "END_RECORD : integer\n");
    EXPECT_EQ(fixed("end  record : integer\n"), "end__record : integer\n");
    EXPECT_EQ(fixed("end list : list\n"), "end_list : list\n");
    EXPECT_EQ(fixed("end  thing\n"), "end_1  thing\n");
    EXPECT_EQ(fixed("end record : integer\n"), "end_record : integer\n");
    EXPECT_EQ(fixed("end thing\n"), "end_1 thing\n");
    EXPECT_EQ(TYPEINFOFIXIDENTIFIERS("end record\n"s, 2), "end record\n");
}

TEST_F(FixIdentifiers, ADeleteFlagStaysUnlessItIsToBeDropped) {
    const std::string text =
        "r : record\n\tdelete_flag : Tchar\n\tdelete_flag\tTchar\n\tdelete_flag : Tchars[1:2]\n\ta : "
        "real\nend record\n";
    EXPECT_EQ(fixed(text), text);
    EXPECT_EQ(TYPEINFOFIXIDENTIFIERS(text, 40, true),
              "r : record\n\tdelete_flag : Tchars[1:2]\n\ta : real\nend record\n");
    EXPECT_EQ(TYPEINFOFIXIDENTIFIERS("delete_flag : Tchar"s, 40, true), "");
    EXPECT_EQ(TYPEINFOFIXIDENTIFIERS("delete_flag:Tchar\n"s, 40, true), "delete_flag:Tchar\n");
}

TEST_F(FixIdentifiers, NamesAreCutToTheLength) {
    EXPECT_EQ(TYPEINFOFIXIDENTIFIERS("abcdef : real\n"s, 3), "abc : real\n");
    EXPECT_EQ(TYPEINFOFIXIDENTIFIERS("a b c : real\n"s, 4), "a_b_ : real\n");
}

TEST_F(FixIdentifiers, ARepairedTextStaysAsItIs) {
    const std::string text =
        "cust list : table\n\t\"T cust\" : record\n\t\tfirst-name : string[4]\n\t\tend : list\n\t\t\tto : "
        "real\n\t\tend list\n\tend record\nend table\n";
    const std::string once = fixed(text);
    EXPECT_EQ(
        once,
        "cust_list : table\n\tT_cust : record\n\t\tfirst_name : string[4]\n\t\tend_1 : list\n\t\t\tto_1 : "
        "real\n\t\tend list\n\tend record\nend table\n");
    EXPECT_EQ(fixed(once), once);
    for (std::int32_t line = 1; line <= 9; ++line) {
        const TypeInfoElement element = TypeInfoParseLine(once, line);
        EXPECT_TRUE(element.isEnd() || !ISRESERVEDWORD(element.name)) << element.name;
    }
}

TEST_F(FixIdentifiers, BlocksAreReadToTheSameEndAfterTheRepair) {
    for (const std::string last :
         {"end record", "END RECORD", "end", "end ", "end\trecord", "End  record "}) {
        const std::string text = "r : record\n\ta : real\n" + last + "\nb : real\n";
        std::size_t before = 0, after = 0;
        EXPECT_EQ(TypeInfoToValue(text, before, nullptr), KindRecord);
        EXPECT_EQ(TypeInfoToValue(fixed(text), after, nullptr), KindRecord);
        EXPECT_EQ(before, text.size() - 9);
        EXPECT_EQ(after, before) << last;
    }
}

// ---- texts, with the replacement alone ----

TEST_F(FixIdentifiers, WithAReplacementTheNamesBeforeAColonBetweenBlanksBecomeIdentifiers) {
    const struct {
        std::string line, replacement, repaired;
    } rows[] = {
        {"order no : string[10]\n", "_", "order_no : string[10]\n"},
        {"order no : string[10]\n", "xy", "orderxno : string[10]\n"},
        {"order no : string[10]\n", "", "orderno : string[10]\n"},
        {"\ta-b_c : set[1 : 10]\r\n", "_", "\ta_b_c : set[1 : 10]\n"},
        {"b c : x\r\n", "_", "b_c : x\n"},
        {"b c : x\r\nend record\r\ndelete_flag : Tchar\r\n\r\nd e : y\r", "_",
         "b_c : x\nend record\ndelete_flag : Tchar\n\nd_e : y"},
        {"\"first name\" : string[20]", "_", "first_name : string[20]"},
        {"[first name] : string[20]\n", "_", "first_name : string[20]\n"},
        {"9lives : integer\n", "_", "_9lives : integer\n"},
        {"9lives : integer\n", "n", "n9lives : integer\n"},
        {"end : integer\n", "_", "end_1 : integer\n"},
        {"GROUP : integer\nOrder : integer\n", "_", "GROUP : integer\nOrder_1 : integer\n"},
        {"end record : integer\n", "_", "end_record : integer\n"},
        {std::string(60, 'x') + " : real\n", "_", std::string(60, 'x') + " : real\n"},
        {"\"\" : real\n", "_", "n : real\n"},
        {"\"-\" : real\n", "", "n : real\n"},
        // These stay as they are.
        {"end record\n\tEnd List\nend\n", "_", "end record\n\tEnd List\nend\n"},
        {"delete_flag : Tchar\n", "x", "delete_flag : Tchar\n"},
        {"a-b:integer\n", "_", "a-b:integer\n"},
        {"a-b\t: set[1 : 10]\n", "_", "a-b\t: set[1 : 10]\n"},
        {"\"a b\":real\n", "_", "\"a b\":real\n"},
        {"a b\n\n \t\n", "_", "a b\n\n \t\n"},
        {"", "_", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TYPEINFOFIXIDENTIFIERS(row.line, row.replacement), row.repaired) << row.line;
}

// ---- values of the language ----

TEST_F(FixIdentifiers, AStringValueIsRepairedInPlace) {
    String text("order no : real\ndelete_flag : Tchar\n");
    TYPEINFOFIXIDENTIFIERS(text.get(), 40);
    EXPECT_EQ(text.view(), "order_no : real\ndelete_flag : Tchar\n");
    TYPEINFOFIXIDENTIFIERS(text.get(), 40, true);
    EXPECT_EQ(text.view(), "order_no : real\n");
    String empty;
    TYPEINFOFIXIDENTIFIERS(empty.get(), 40);
    EXPECT_EQ(empty.view(), "");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FixIdentifiers, AStringThatIsTooShortForTheRepairIsCutWith615) {
    String text(10);
    text.assign("end : real");
    TYPEINFOFIXIDENTIFIERS(text.get(), 40);
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(text.view(), "end_1 : re");
}

TEST_F(FixIdentifiers, AStringThatWouldBecomeTooLongForABlockStaysAsItWas) {
    const std::string line = "end:int\n";
    std::string lines;
    while (lines.size() + line.size() <= std::size_t{MaxBlock}) lines += line;
    String text{std::string_view(lines)};
    ASSERT_EQ(takeError(), 0);
    TYPEINFOFIXIDENTIFIERS(text.get(), 40);
    EXPECT_EQ(takeError(), ERR_BLOCK_TOO_LARGE);
    EXPECT_TRUE(text.view() == lines);
}

TEST_F(FixIdentifiers, WhenMemoryIsShortAStringStaysAsItWas) {
    int failures = 0;
    for (std::int64_t n = 0; n < 10; ++n, ++failures) {
        String text(std::string_view("order no : real\nend : real\n"));
        FailAllocation(n);
        TYPEINFOFIXIDENTIFIERS(text.get(), 40);
        FailAllocation(-1);
        const std::int32_t error = takeError();
        EXPECT_EQ(text.view(),
                  error == 0 ? "order_no : real\nend_1 : real\n" : "order no : real\nend : real\n");
        if (error == 0) break;
        EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
    }
    EXPECT_GT(failures, 0);
}

TEST_F(FixIdentifiers, AListWithoutRoomForAllLinesStaysAsItWas) {
    const Lines before = {"a b : real\nc d : real", "e f : real"};
    ListValue list;
    fill(list, before, 2);
    ASSERT_EQ(takeError(), 0);
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    EXPECT_EQ(takeError(), ERR_FIXED_LIST);
    EXPECT_EQ(linesOf(list), before);
    EXPECT_EQ(AdtCheck(list.get(), KindList), "");
    ListValue larger;
    fill(larger, before, 3);
    TYPEINFOFIXIDENTIFIERS(larger.get(), 40);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(linesOf(larger), (Lines{"a_b : real", "c_d : real", "e_f : real"}));
    EXPECT_EQ(larger.get()->maxlength, 3);
    EXPECT_EQ(AdtCheck(larger.get(), KindList), "");
}

TEST_F(FixIdentifiers, AListOfALineThatWouldBecomeTooLongStaysAsItWas) {
    std::string longest = "end:int";
    longest.resize(std::size_t{MaxBlock}, ' ');
    ListValue list;
    fill(list, {"a b : real", longest});
    ASSERT_EQ(takeError(), 0);
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    EXPECT_EQ(takeError(), ERR_BLOCK_TOO_LARGE);
    EXPECT_TRUE(linesOf(list) == (Lines{"a b : real", longest}));
}

TEST_F(FixIdentifiers, WhenMemoryIsShortNoLineOfAListIsLost) {
    const Lines before = {"a b : real\nc d : real", "", "end : real"};
    const Lines after = {"a_b : real", "c_d : real", "", "end_1 : real"};
    int failures = 0;
    for (std::int64_t n = 0; n < 100; ++n, ++failures) {
        ListValue list;
        fill(list, before);
        FailAllocation(n);
        TYPEINFOFIXIDENTIFIERS(list.get(), 40);
        FailAllocation(-1);
        const std::int32_t error = takeError();
        EXPECT_EQ(linesOf(list), error == 0 ? after : before) << n;
        EXPECT_EQ(AdtCheck(list.get(), KindList), "");
        if (error == 0) break;
        EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
    }
    EXPECT_GT(failures, 3);
}

TEST_F(FixIdentifiers, AStringThatEndsInALineFeedGivesAnEmptyOneBehindIt) {
    ListValue list;
    fill(list, {"a b : real\n", "e f : real\r\n", ""});
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    const Lines after = {"a_b : real", "", "e_f : real", "", ""};
    EXPECT_EQ(linesOf(list), after);
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    EXPECT_EQ(linesOf(list), after);
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FixIdentifiers, StringsOfTwoByteCharactersAreRepaired) {
    CharacterWidth = 2;
    {
        const auto narrow = [](const StringDescriptor* s) {
            std::string text;
            for (std::int32_t i = 1; i <= StringLength(s); ++i)
                text += static_cast<char>(StringGetChar(s, i));
            return text;
        };
        ListValue list;
        fill(list, {"order no : string[10]", "\tend : real", "\xE9t\xE9 : real"});
        TYPEINFOFIXIDENTIFIERS(list.get(), 40);
        EXPECT_EQ(takeError(), 0);
        Lines lines;
        for (std::int32_t n = 1; n <= ListCount(list.get()); ++n)
            lines.push_back(narrow(static_cast<const StringDescriptor*>(ListRef(list.get(), n))));
        EXPECT_EQ(lines, (Lines{"order_no : string[10]", "\tend_1 : real", "nt_ : real"}));
        String text(std::string_view("order no : real\n"));
        TYPEINFOFIXIDENTIFIERS(text.get(), 40);
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(narrow(text.get()), "order_no : real\n");
    }
    CharacterWidth = 1;
}

TEST_F(FixIdentifiers, AListIsRepairedLineByLine) {
    ListValue list;
    fill(list, {"r : record", "\tdelete_flag : Tchar", "\torder no : real", "\tend : integer", "end record"});
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    EXPECT_EQ(linesOf(list), (Lines{"r : record", "\tdelete_flag : Tchar", "\torder_no : real",
                                    "\tend_1 : integer", "end record"}));
    TYPEINFOFIXIDENTIFIERS(list.get(), 40, true);
    EXPECT_EQ(linesOf(list), (Lines{"r : record", "\torder_no : real", "\tend_1 : integer", "end record"}));
    EXPECT_EQ(AdtCheck(list.get(), KindList), "");
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FixIdentifiers, AStringOfTwoLinesBecomesTwoStrings) {
    ListValue list;
    fill(list, {"a b : real\nc d : real", "", "e f : real"});
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    EXPECT_EQ(linesOf(list), (Lines{"a_b : real", "c_d : real", "", "e_f : real"}));
    EXPECT_EQ(takeError(), 0);
}

TEST_F(FixIdentifiers, ALineThatIsCutLeavesTheOthersRepaired) {
    ListValue list;
    const String like(8);
    ListInit(list.get(), UNBOUNDED, like.get(), KindString, false);
    for (const char* line : {"end:real", "a b : c", "x y : z"})
        ListAppend(String(std::string_view(line)).get(), KindString, list.get());
    ASSERT_EQ(takeError(), 0);
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    EXPECT_EQ(takeError(), ERR_FIXED_STRING);
    EXPECT_EQ(linesOf(list), (Lines{"end_1:re", "a_b : c", "x_y : z"}));
}

TEST_F(FixIdentifiers, EmptyListsStayEmpty) {
    ListValue list, untyped;
    fill(list, {});
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    ListInit(untyped.get(), UNBOUNDED, nullptr, KindNone, false);
    TYPEINFOFIXIDENTIFIERS(untyped.get(), 40);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(ListCount(list.get()), 0);
    EXPECT_EQ(ListCount(untyped.get()), 0);
}

TEST_F(FixIdentifiers, WrongKindsAreRefusedAndStay) {
    ListValue numbers;
    ListInit(numbers.get(), UNBOUNDED, nullptr, KindInteger, false);
    TYPEINFOFIXIDENTIFIERS(numbers.get(), 40);
    EXPECT_EQ(takeError(), ERR_LIST_TYPE);
    TYPEINFOFIXIDENTIFIERS(static_cast<ListDescriptor*>(nullptr), 40);
    EXPECT_EQ(takeError(), ERR_LIST_TYPE);
    String text("a b : real");
    TYPEINFOFIXIDENTIFIERS(reinterpret_cast<ListDescriptor*>(text.get()), 40);
    EXPECT_EQ(takeError(), ERR_LIST_TYPE);
    EXPECT_EQ(text.view(), "a b : real");
    TYPEINFOFIXIDENTIFIERS(static_cast<StringDescriptor*>(nullptr), 40);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
    TYPEINFOFIXIDENTIFIERS(reinterpret_cast<StringDescriptor*>(numbers.get()), 40);
    EXPECT_EQ(takeError(), ERR_STRING_TYPE);
}

TEST_F(FixIdentifiers, AListInAFileThatIsNotOpenIs661) {
    ListValue list;
    const String like;
    ListInit(list.get(), UNBOUNDED, like.get(), KindString, true);
    ASSERT_EQ(takeError(), 0);
    TYPEINFOFIXIDENTIFIERS(list.get(), 40);
    EXPECT_EQ(takeError(), ERR_FILE_NOT_OPEN);
}

TEST_F(FixIdentifiers, ShortMemoryLeavesEachLineOldOrNew) {
    const Lines before = {"order no : real", "end : integer"}, after = {"order_no : real", "end_1 : integer"};
    int failures = 0;
    for (std::int64_t n = 0; n < 100; ++n, ++failures) {
        ListValue list;
        fill(list, before);
        ASSERT_EQ(takeError(), 0);
        FailAllocation(n);
        TYPEINFOFIXIDENTIFIERS(list.get(), 40);
        FailAllocation(-1);
        const std::int32_t error = takeError();
        const Lines lines = linesOf(list);
        ASSERT_EQ(lines.size(), 2U);
        if (error == 0) {
            EXPECT_EQ(lines, after);
            break;
        }
        EXPECT_EQ(error, ERR_OUT_OF_MEMORY);
        for (std::size_t i = 0; i < 2; ++i)
            EXPECT_TRUE(lines[i] == before[i] || lines[i] == after[i]) << lines[i];
    }
    EXPECT_GT(failures, 0);
}

}  // namespace
