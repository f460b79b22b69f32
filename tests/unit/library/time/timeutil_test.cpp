// SPDX-License-Identifier: Apache-2.0
#include "library/time/timeutil.h"

#include "kernel/run/runtime.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace tarn {
namespace {

// None of these functions sets an error.
class TimeUtil : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { EXPECT_EQ(ErrorCell(), 0); }
};

constexpr std::int32_t most = INT32_MAX, least = INT32_MIN;

TEST_F(TimeUtil, FormatTimeReplacesThePiecesOfTheDay) {
    constexpr std::string_view date = "2003-04-05 06:07:08.0910";
    constexpr struct {
        std::string_view pattern, text;
    } rows[] = {
        {"YYYY-MM-DD", "2003-04-05"},
        {"DD.MM.YYYY", "05.04.2003"},
        {"yyyymmdd", "yyyymmdd"},
        {"mM/dD/yYyY", "mM/dD/yYyY"},
        {"summer, added", "summer, added"},
        {"DD DD", "05 05"},
        {"the day is DD", "the day is 05"},
        {"YYYYY", "2003Y"},
        {"YYY", "YYY"},
        {"MMM", "04M"},
        {"M D Y hh:mm", "M D Y hh:mm"},
        {"DDMMYYYYDD", "050420030"
                       "5"},
        {"Y", "Y"},
        {"plain", "plain"},
        {"", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(FORMATTIME(date, row.pattern), row.text) << row.pattern;
    EXPECT_EQ(FORMATTIME(date), "2003-04-05");
}

TEST_F(TimeUtil, FormatTimeCutsByPositionAlone) {
    EXPECT_EQ(FORMATTIME("2003-04-05", "MM"), "04");
    EXPECT_EQ(FORMATTIME("abcdXefYgh", "DD.MM.YYYY"), "gh.ef.abcd");
    EXPECT_EQ(FORMATTIME("2003-99-99 and more"), "2003-99-99");
    EXPECT_EQ(FORMATTIME("YYYY-MM-DD", "DDMMYYYY"), "DDMMYYYY");
    for (const std::string_view text : {"", "2003", "2003-04-0"}) {
        EXPECT_EQ(FORMATTIME(text), "") << text;
        EXPECT_EQ(FORMATTIME(text, "plain"), "") << text;
    }
}

TEST_F(TimeUtil, LeapYearsAreThoseOfTheGregorianCalendar) {
    for (const std::int32_t year : {4, 400, 1600, 1996, 2000, 2400, 9996})
        EXPECT_TRUE(ISGREGORIANLEAPYEAR(year)) << year;
    for (const std::int32_t year : {1, 100, 1900, 1999, 2001, 2100, 9999, most})
        EXPECT_FALSE(ISGREGORIANLEAPYEAR(year)) << year;
}

TEST_F(TimeUtil, ADateIsValidIfTheDayExists) {
    constexpr struct {
        std::int32_t year, month, day;
        bool valid;
    } rows[] = {
        {2000, 1, 31, true},     {2000, 2, 29, true},    {2001, 2, 28, true},     {1, 1, 1, true},
        {9999, 12, 31, true},    {2000, 4, 30, true},    {2000, 4, 31, false},    {2000, 6, 31, false},
        {2000, 9, 31, false},    {2000, 11, 31, false},  {2001, 2, 29, false},    {1900, 2, 29, false},
        {2000, 2, 30, false},    {2000, 1, 32, false},   {2000, 1, 0, false},     {2000, 0, 1, false},
        {2000, 13, 1, false},    {0, 1, 1, false},       {10000, 1, 1, false},    {-1, 1, 1, false},
        {2000, least, 1, false}, {2000, most, 1, false}, {2000, 1, least, false}, {2000, 1, most, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ISDATEVALID(row.year, row.month, row.day), row.valid)
            << row.year << ' ' << row.month << ' ' << row.day;
}

TEST_F(TimeUtil, ATextIsADateIfItsDigitsAreThoseOfADay) {
    for (const std::string_view text :
         {"2000-02-29", "2000-02-29 12:30", "2000.02.29", "2000/02/29 rest", "2000x02y29", "0001-01-01",
          "9999-12-31", "2000-01-01 99:99:99.9999", "200000102203"})
        EXPECT_TRUE(ISDATESTRVALID(text)) << text;
    for (const std::string_view text :
         {"", "2000", "2000-02-2", "2001-02-29", "0000-01-01", "2000-13-01", "2000-00-01", "2000-01-00",
          "2000-04-31", "200 -01-01", "20a0-01-01", "2000- 1-01", "2000-01-1 ", "2000-+1-01", "-200-01-01",
          " 2000-01-01", "2000--1-01", "20000101  "})
        EXPECT_FALSE(ISDATESTRVALID(text)) << text;
}

TEST_F(TimeUtil, ADateThatEndsEarlyGetsTheRest) {
    constexpr std::string_view full = "2003-04-05 06:07:08.0910", rest = "0000-01-01 00:00:00.0000";
    for (std::size_t length = 0; length <= full.size(); ++length)
        EXPECT_EQ(TIMEMAKEFULLSTR(full.substr(0, length)),
                  std::string(full.substr(0, length)) + std::string(rest.substr(length)));
    EXPECT_EQ(TIMEMAKEFULLSTR("2003"), "2003-01-01 00:00:00.0000");
    EXPECT_EQ(TIMEMAKEFULLSTR("2003-04-05"), "2003-04-05 00:00:00.0000");
    EXPECT_EQ(TIMEMAKEFULLSTR("2003-04-05 06:07:08.0910 and more"), "2003-04-05 06:07:08.0910 and more");
}

TEST_F(TimeUtil, DayNumbersCountFromTheYear1600) {
    constexpr struct {
        const char* text;
        std::int32_t number;
    } rows[] = {
        {"1600-01-01 00:00:00.0000", 0},       {"1600-01-02 00:00:00.0000", 1},
        {"1600-03-01 00:00:00.0000", 60},      {"1601-01-01 00:00:00.0000", 366},
        {"1599-12-31 00:00:00.0000", -1},      {"2000-01-01 00:00:00.0000", 146097},
        {"0001-01-01 00:00:00.0000", -584022}, {"9999-12-31 00:00:00.0000", 3068036},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(TIMEGETDAYNUMBER(row.text), row.number) << row.text;
        EXPECT_EQ(TIMEDAYNUMBERTOSTR(row.number), row.text);
    }
}

TEST_F(TimeUtil, TheDayNumberIsThatOfTheDayWhateverTheTime) {
    EXPECT_EQ(TIMEGETDAYNUMBER("1600-01-02 23:59:59.9999"), 1);
    EXPECT_EQ(TIMEGETDAYNUMBER("1599-12-31 23:59:59.9999"), -1);
    EXPECT_EQ(TIMEGETDAYNUMBER("1600-01-02"), 1);
    EXPECT_EQ(TIMEGETDAYNUMBER("1600-01-02 06-07-08"), 1);
    for (const std::string_view text : {"", "1600-01", "1601-02-29", "no date at all, this"})
        EXPECT_EQ(TIMEGETDAYNUMBER(text), 0) << text;
}

TEST_F(TimeUtil, DayNumbersOutsideTheCalendarHaveNoText) {
    EXPECT_NE(TIMEDAYNUMBERTOSTR(-584022), "");
    EXPECT_NE(TIMEDAYNUMBERTOSTR(3068036), "");
    for (const std::int32_t n : {-584023, 3068037, least, most}) EXPECT_EQ(TIMEDAYNUMBERTOSTR(n), "") << n;
}

TEST_F(TimeUtil, AllDayNumbersComeBack) {
    std::string before;
    for (std::int32_t n = -584022; n <= 3068036; n += 7) {
        const std::string text = TIMEDAYNUMBERTOSTR(n);
        ASSERT_EQ(TIMEGETDAYNUMBER(text), n) << text;
        ASSERT_TRUE(ISDATESTRVALID(text)) << text;
        ASSERT_LT(before, text);
        before = text;
    }
}

TEST_F(TimeUtil, DifferencesAreInSeconds) {
    constexpr std::string_view a = "2000-01-01 00:00:00.0000", b = "2000-01-02 00:00:00.0001";
    EXPECT_EQ(TIMEDIFFERENCE(b, a), 86400 * FixedOne + 1);
    EXPECT_EQ(TIMEDIFFERENCE(a, b), -86400 * FixedOne - 1);
    EXPECT_EQ(TIMEDIFFERENCE(a, a), 0);
    EXPECT_EQ(TIMEDIFFERENCE("1601-01-01 00:00:00.0000", "1600-01-01 00:00:00.0000"), 31622400 * FixedOne);
    EXPECT_EQ(TIMEDIFFERENCE("9999-12-31 23:59:59.9999", "0001-01-01 00:00:00.0000"),
              315537897600 * FixedOne - 1);
}

TEST_F(TimeUtil, WhatIsNoDateCountsAsZeroSecondsInADifference) {
    constexpr std::string_view date = "2000-01-01 00:00:00.0000";
    for (const std::string_view text : {"", "2000-01-01", "2001-02-29 00:00:00.0000"}) {
        EXPECT_EQ(TIMEDIFFERENCE(date, text), 12622780800 * FixedOne) << text;
        EXPECT_EQ(TIMEDIFFERENCE(text, date), -12622780800 * FixedOne) << text;
        EXPECT_EQ(TIMEDIFFERENCE(text, text), 0) << text;
    }
}

}  // namespace
}  // namespace tarn
