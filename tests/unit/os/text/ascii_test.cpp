// SPDX-License-Identifier: Apache-2.0
#include "os/text/ascii.h"

#include <gtest/gtest.h>

namespace tarn::ascii {
namespace {

TEST(AsciiTest, EveryByteHasItsClasses) {
    constexpr std::string_view upperCase = "ABCDEFGHIJKLMNOPQRSTUVWXYZ",
                               lowerCase = "abcdefghijklmnopqrstuvwxyz", digits = "0123456789";
    const auto in = [](std::string_view set, char c) { return set.find(c) != std::string_view::npos; };
    for (int code = 0; code < 256; ++code) {
        const char c = static_cast<char>(code);
        const bool letter = in(upperCase, c) || in(lowerCase, c);
        EXPECT_EQ(isUpper(c), in(upperCase, c)) << code;
        EXPECT_EQ(isLower(c), in(lowerCase, c)) << code;
        EXPECT_EQ(isLetter(c), letter) << code;
        EXPECT_EQ(isDigit(c), in(digits, c)) << code;
        EXPECT_EQ(isSymbol(c), letter || in(digits, c) || c == '_') << code;
        EXPECT_EQ(isBlank(c), in(" \t", c)) << code;
        EXPECT_EQ(isSpace(c), in(" \t\r\n", c)) << code;
    }
}

TEST(AsciiTest, OnlyLettersHaveAnotherCase) {
    EXPECT_EQ(lowered("[AZ`az{@\xC4\xE4]"), "[az`az{@\xC4\xE4]");
    EXPECT_EQ(uppered("[AZ`az{@\xC4\xE4]"), "[AZ`AZ{@\xC4\xE4]");
    EXPECT_EQ(lowered(std::string_view("A\0B", 3)), std::string("a\0b", 3));
    EXPECT_EQ(uppered(""), "");
}

TEST(AsciiTest, TextsAreEqualWithoutRegardToCase) {
    EXPECT_TRUE(equal("", ""));
    EXPECT_TRUE(equal("Orders.DBF", "oRDERS.dbf"));
    EXPECT_FALSE(equal("a", "ab"));
    EXPECT_FALSE(equal("[", "{"));  // 32 apart, as the cases of letters are
    EXPECT_FALSE(equal("\xC4", "\xE4"));
}

TEST(AsciiTest, NamesFitPatternsOfWildcards) {
    struct Row {
        const char *name, *pattern;
        bool fits;
    };
    static constexpr Row rows[] = {{"", "", true},
                                   {"", "*", true},
                                   {"", "?", false},
                                   {"a", "", false},
                                   {"a.cls", "*.cls", true},
                                   {"A.CLS", "*.cls", true},
                                   {"a.cls", "*.CL?", true},
                                   {"a.cl", "*.CL?", false},
                                   {"abab", "*ab", true},
                                   {"aab", "*ab", true},
                                   {"abc", "a*b", false},
                                   {"abc", "a**c", true},
                                   {"abc", "abc*", true},
                                   {"abc", "?b?", true},
                                   {"abcd", "?b?", false},
                                   {"a*c", "a*c", true},
                                   {"\xC3\xA4.txt", "??.txt", true}};
    for (const Row& row : rows)
        EXPECT_EQ(matches(row.name, row.pattern), row.fits) << row.name << " " << row.pattern;
    EXPECT_FALSE(matches(std::string(3000, 'a'), "*a*a*a*a*b"));
}

TEST(AsciiTest, HexadecimalDigitsHaveValues) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (std::size_t i = 0; i < digits.size(); ++i) {
        EXPECT_EQ(hexDigit(digits[i]), static_cast<int>(i));
        EXPECT_EQ(hexDigit(lower(digits[i])), static_cast<int>(i));
    }
    for (const char c : {'G', 'g', '/', ':', '@', '`', '\0', '\xFF'}) EXPECT_EQ(hexDigit(c), -1) << c;
}

TEST(AsciiTest, LinesAreTakenWithTheirEnds) {
    std::string_view rest = "one\r\n\ntwo";
    EXPECT_EQ(takeLine(rest), "one\r\n");
    EXPECT_EQ(takeLine(rest), "\n");
    EXPECT_EQ(takeLine(rest), "two");
    EXPECT_EQ(takeLine(rest), "");
    EXPECT_EQ(withoutLineEnd("one\r\n"), "one");
    EXPECT_EQ(withoutLineEnd("one\n\r\n"), "one");
    EXPECT_EQ(withoutLineEnd("\r"), "");
    EXPECT_EQ(withoutLineEnd(" one "), " one ");
}

}  // namespace
}  // namespace tarn::ascii
