// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/typeinfo/typeinfo.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"

#include <gtest/gtest.h>
#include <string>

using namespace tarn;
using namespace std::string_literals;

namespace {

constexpr std::int32_t No = TypeInfoNoValue;

struct Row {
    std::string value;
    char kind;
    std::int32_t lower = No, upper = No;
};

void expectGuess(const Row& row, std::string_view nullWord) {
    const ValueGuess guess = TypeInfoGuessValue(row.value, nullWord);
    EXPECT_EQ(static_cast<char>(guess.kind), row.kind) << row.value;
    EXPECT_EQ(guess.lower, row.lower) << row.value;
    EXPECT_EQ(guess.upper, row.upper) << row.value;
    EXPECT_EQ(ErrorCell(), 0) << row.value;
    ClearError();
}

TEST(TypeInfoGuess, BlankValuesAndTheNullWord) {
    const Row rows[] = {
        {"", ' '},        {" ", ' '},        {"\t\r\n ", ' '}, {"NULL", ' '},     {"null", ' '},
        {" \tNull", ' '}, {"NULLABLE", ' '}, {"NUL", 'S', 3},  {"xNULL", 'S', 5},
    };
    for (const Row& row : rows) expectGuess(row, "NULL");
}

TEST(TypeInfoGuess, WithoutANullWordNothingIsNull) {
    for (const Row& row : {Row{"NULL", 'S', 4}, Row{"", ' '}, Row{"5", 'I'}}) expectGuess(row, "");
}

TEST(TypeInfoGuess, Booleans) {
    for (const Row& row : {Row{"True", 'B'}, Row{"false", 'B'}, Row{"YES", 'B'}, Row{"no", 'B'},
                           Row{"\n\t yes", 'B'}, Row{"Truth", 'S', 5}, Row{"y", 'S', 1}, Row{"1", 'I'}})
        expectGuess(row, "NULL");
}

TEST(TypeInfoGuess, Numbers) {
    const Row rows[] = {
        {"0", 'I'},
        {"-17", 'I'},
        {"+17", 'I'},
        {"  42", 'I'},
        {"42  ", 'I'},
        {"99999999999999999999999", 'I'},  // an integer by its form
        {"1.5", 'F'},
        {"-.5", 'F'},
        {"5.", 'F'},
        {"3.14159", 'F'},
        {"999999999999999999.5", 'R'},  // no fixed number can hold it
        {"1E6", 'R'},
        {"-1.250E-1", 'R'},
        {"1E400", 'S', 5},  // nor a real one
        {"1,000", 'S', 5},
        {"--1", 'S', 3},
        {"-", 'S', 1},
        {".", 'S', 1},
        {"1 2", 'S', 3},
        {"0x1F", 'S', 4},
    };
    for (const Row& row : rows) expectGuess(row, "NULL");
}

// The readers of numbers pass over blanks alone.
TEST(TypeInfoGuess, ATabOrALineEndBehindANumberMakesItAText) {
    for (const char* number : {"42", "-1", "99999999999999999999999", "1.5", "1E6"}) {
        for (const char* behind : {"\t", "\r", "\n", "\r\n", " \t", "\t "}) {
            const std::string value = std::string(number) + behind;
            expectGuess({value, 'S', static_cast<std::int32_t>(value.size())}, "NULL");
            EXPECT_EQ(TypeInfoValueLine(value, "a", "NULL", ""),
                      "a : string[" + std::to_string(value.size()) + "]\n");
        }
        for (const char* before : {"\t", "\r\n", "\n\t "})
            EXPECT_EQ(TypeInfoGuessValue(std::string(before) + number + "  ", "NULL").kind,
                      TypeInfoGuessValue(number, "NULL").kind);
    }
    for (const char* behind : {"\t", "\r", "\n"}) {
        expectGuess({"yes"s + behind, 'S', 4}, "NULL");
        expectGuess({"[1,2]"s + behind, 'S', 6}, "NULL");
        expectGuess({"[1"s + behind + ",2]", 'S', 6}, "NULL");
    }
}

// As reals are printed they have a sign.
TEST(TypeInfoGuess, InfinityIsARealWithItsSignOnly) {
    for (const char* word : {"+INF", "-INF", " +INF ", "+NAN"}) expectGuess({word, 'R'}, "NULL");
    for (const char* word : {"INF", "inf", "NAN", "Infinity", "+INFINITY", "+ INF", "+INF\t"})
        expectGuess({word, 'S', static_cast<std::int32_t>(std::string(word).size())}, "NULL");
}

TEST(TypeInfoGuess, DatesAreTwentyFourWide) {
    const Row rows[] = {
        {"2000-01-31", 'D', 24},
        {"31-Jan-2000 1:30 PM", 'D', 24},
        {" Friday March 3 2000", 'D', 24},
        {"2000-02-30", 'S', 10},
        {"March", 'S', 5},
    };
    for (const Row& row : rows) expectGuess(row, "NULL");
}

TEST(TypeInfoGuess, SetsGiveTheirSmallestAndLargestMember) {
    const Row rows[] = {
        {"[1]", ':', 1, 1},
        {"[1,2,5..7]", ':', 1, 7},
        {" [ 9 : 12 , -3 ]", ':', -3, 12},
        {"[+4,2]", ':', 2, 4},
        {"[-32768:32767]", ':', -32768, 32767},
        {"[]", 'S', 2},
        {"[1", 'S', 2},
        {"[1,]", 'S', 4},
        {"[1,2] ", 'S', 6},
        {"[1,2]x", 'S', 6},
        {"[7..5]", 'S', 6},
        {"[1...2]", 'S', 7},
        {"[40000]", 'S', 7},
        {"[1 2]", 'S', 5},
        {"[a]", 'S', 3},
        {"[99999999999]", 'S', 13},
    };
    for (const Row& row : rows) expectGuess(row, "NULL");
}

TEST(TypeInfoGuess, AnythingElseIsAStringOfItsWholeLength) {
    for (const Row& row : {Row{"abc", 'S', 3}, Row{"  abc ", 'S', 6}, Row{"a\0b"s, 'S', 3},
                           Row{std::string(70000, 'x'), 'S', 70000}})
        expectGuess(row, "NULL");
}

TEST(TypeInfoGuess, APendingErrorStays) {
    SetError(ERR_FILE_READ);
    EXPECT_EQ(TypeInfoGuessValue("1E400", "").kind, ValueClass::String);
    EXPECT_EQ(ErrorCell(), ERR_FILE_READ);
    ClearError();
}

TEST(TypeInfoGuess, EachClassHasItsLine) {
    const struct {
        std::string value, line;
    } rows[] = {
        {"yes", "a : boolean\n"},
        {"12", "a : integer\n"},
        {"2147483647", "a : integer\n"},
        {"-2147483648 ", "a : integer\n"},
        {"2147483648", "a : real\n"},
        {"-2147483649", "a : real\n"},
        {"99999999999999999999999", "a : real\n"},
        {"1.5", "a : fixed\n"},
        {"1e5", "a : real\n"},
        {"2000-01-31", "a : Tdatetime[24]\n"},
        {"abc", "a : string[3]\n"},
        {"[2,5..7]", "a : set[2:7]\n"},
        {"null", "a : Any\n"},
        {"", "a : Any\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TypeInfoValueLine(row.value, "a", "NULL", "a : Any"), row.line) << row.value;
}

TEST(TypeInfoGuess, ABlankValueGivesTheDefaultLineWhichMayBeEmpty) {
    EXPECT_EQ(TypeInfoValueLine(" ", "a", "", ""), "");
    EXPECT_EQ(TypeInfoValueLine(" ", "a", "", "b : Any\n"), "b : Any\n");
    EXPECT_EQ(TypeInfoValueLine("x", "\"a b\"", "", ""), "\"a b\" : string[1]\n");
}

}  // namespace
