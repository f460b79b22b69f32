// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/dates.h"

#include "support/steerable.h"
#include "support/tempfolder.h"
#include "unit/kernel/runtime_fixture.h"

#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <string>
#include <sys/stat.h>

namespace tarn {
namespace {

class Dates : public Runtime {
protected:
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
    static std::string make(const DateParts& d) {
        char text[DateSize] = "before";
        DateMake(d.year, d.month, d.day, d.hour, d.minute, d.second, d.fraction, text, DateSize);
        return text;
    }
    static DateParts split(std::string_view text) {
        DateParts d{-1, -1, -1, -1, -1, -1, -1};
        DateSplit(text, d.year, d.month, d.day, d.hour, d.minute, d.second, d.fraction);
        return d;
    }
    static Fixed seconds(std::string_view text) {
        Fixed result = -77;
        DateToSeconds(text, result);
        return result;
    }
    static std::string fromSeconds(Fixed seconds) {
        char text[DateSize] = "before";
        DateFromSeconds(seconds, text, DateSize);
        return text;
    }
    static std::string add(std::string_view unit, std::int32_t n, std::string_view text) {
        char result[DateSize] = "before";
        DateAdd(unit, n, text, result, DateSize);
        return result;
    }
};

constexpr std::int32_t most = INT32_MAX, least = INT32_MIN;
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

// Texts that are no dates: wrong length, characters or numbers.
constexpr std::string_view noDates[] = {
    "",
    "2000-01-01",
    "2000-01-01 00:00:00",
    "2000-01-01 00:00:00.000",
    "2000-01-01 00:00:00.00000",
    " 2000-01-01 00:00:00.0000",
    "2000-01-01 00:00:00.0000 ",
    "2000/01-01 00:00:00.0000",
    "2000-01/01 00:00:00.0000",
    "2000-01-01T00:00:00.0000",
    "2000-01-01 00-00:00.0000",
    "2000-01-01 00:00-00.0000",
    "2000-01-01 00:00:00:0000",
    "200a-01-01 00:00:00.0000",
    "2000- 1-01 00:00:00.0000",
    "2000-01-+1 00:00:00.0000",
    "2000-01-01 -1:00:00.0000",
    "2000-01-01 00:00:0x.0000",
    "2000-01-01 00:00:00.00.0",
    "-200-01-01 00:00:00.0000",
    "0000-01-01 00:00:00.0000",
    "2000-00-01 00:00:00.0000",
    "2000-13-01 00:00:00.0000",
    "2000-01-00 00:00:00.0000",
    "2000-01-32 00:00:00.0000",
    "2000-04-31 00:00:00.0000",
    "1900-02-29 00:00:00.0000",
    "2001-02-29 00:00:00.0000",
    "2000-02-30 00:00:00.0000",
    "2000-01-01 24:00:00.0000",
    "2000-01-01 00:60:00.0000",
    "2000-01-01 00:00:60.0000",
    std::string_view("2000-01-01 00:00:00.000\0", 24),
};

// ---- the calendar ----

TEST_F(Dates, AYearIsALeapYearIfDivisibleBy400OrBy4AndNotBy100) {
    constexpr struct {
        std::int32_t year;
        bool leap;
    } rows[] = {{2000, true}, {1600, true},  {400, true},   {9600, true},  {1996, true},  {4, true},
                {9996, true}, {1900, false}, {2100, false}, {100, false},  {1999, false}, {1, false},
                {2, false},   {9999, false}, {0, true},     {-4, true},    {-100, false}, {-400, true},
                {-1, false},  {most, false}, {least, true}, {2022, false}, {10000, true}};
    for (const auto& row : rows) EXPECT_EQ(IsLeapYear(row.year), row.leap) << row.year;
}

TEST_F(Dates, MonthsHaveTheirLengths) {
    constexpr std::int32_t lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (std::int32_t month = 1; month <= 12; ++month) {
        EXPECT_EQ(DaysInMonth(1999, month), lengths[month - 1]) << month;
        EXPECT_EQ(DaysInMonth(2000, month), month == 2 ? 29 : lengths[month - 1]) << month;
    }
    EXPECT_EQ(DaysInMonth(1900, 2), 28);
    for (const std::int32_t month : {0, 13, -1, most, least}) EXPECT_EQ(DaysInMonth(2000, month), 0) << month;
}

TEST_F(Dates, ValidIsWhatLiesWithinEachPartsBounds) {
    constexpr struct {
        DateParts date;
        bool valid;
    } rows[] = {
        {{1, 1, 1, 0, 0, 0, 0}, true},           {{9999, 12, 31, 23, 59, 59, 9999}, true},
        {{2000, 2, 29, 12, 30, 30, 5000}, true}, {{0, 1, 1, 0, 0, 0, 0}, false},
        {{10000, 1, 1, 0, 0, 0, 0}, false},      {{-1, 1, 1, 0, 0, 0, 0}, false},
        {{least, 1, 1, 0, 0, 0, 0}, false},      {{most, 1, 1, 0, 0, 0, 0}, false},
        {{2000, 0, 1, 0, 0, 0, 0}, false},       {{2000, 13, 1, 0, 0, 0, 0}, false},
        {{2000, least, 1, 0, 0, 0, 0}, false},   {{2000, most, 1, 0, 0, 0, 0}, false},
        {{2000, 1, 0, 0, 0, 0, 0}, false},       {{2000, 1, 32, 0, 0, 0, 0}, false},
        {{2000, 2, 30, 0, 0, 0, 0}, false},      {{2001, 2, 29, 0, 0, 0, 0}, false},
        {{2000, 9, 31, 0, 0, 0, 0}, false},      {{2000, 1, 1, -1, 0, 0, 0}, false},
        {{2000, 1, 1, 24, 0, 0, 0}, false},      {{2000, 1, 1, 0, -1, 0, 0}, false},
        {{2000, 1, 1, 0, 60, 0, 0}, false},      {{2000, 1, 1, 0, 0, -1, 0}, false},
        {{2000, 1, 1, 0, 0, 60, 0}, false},      {{2000, 1, 1, 0, 0, 0, -1}, false},
        {{2000, 1, 1, 0, 0, 0, 10000}, false},
    };
    for (const auto& row : rows) {
        const DateParts& d = row.date;
        EXPECT_EQ(DateValid(d.year, d.month, d.day, d.hour, d.minute, d.second, d.fraction), row.valid)
            << d.year << ' ' << d.month << ' ' << d.day << ' ' << d.hour << ' ' << d.minute << ' ' << d.second
            << ' ' << d.fraction;
        EXPECT_EQ(make(d).size(), row.valid ? 24U : 0U);
    }
}

TEST_F(Dates, NamesAreCountedFromOne) {
    EXPECT_EQ(MonthName(1), "January");
    EXPECT_EQ(MonthName(9), "September");
    EXPECT_EQ(MonthName(12), "December");
    EXPECT_EQ(DayName(1), "Sunday");
    EXPECT_EQ(DayName(4), "Wednesday");
    EXPECT_EQ(DayName(7), "Saturday");
    for (const std::int32_t n : {0, -1, 13, most, least}) {
        EXPECT_EQ(MonthName(n), "");
        EXPECT_EQ(DayName(n), "");
    }
    EXPECT_EQ(DayName(8), "");
}

// ---- the two forms ----

TEST_F(Dates, MakeAndSplitAreTheReverseOfEachOther) {
    constexpr struct {
        DateParts date;
        const char* text;
    } rows[] = {
        {{1, 1, 1, 0, 0, 0, 0}, "0001-01-01 00:00:00.0000"},
        {{1600, 1, 1, 9, 9, 9, 9}, "1600-01-01 09:09:09.0009"},
        {{2000, 12, 12, 23, 59, 59, 1234}, "2000-12-12 23:59:59.1234"},
        {{9999, 12, 31, 23, 59, 59, 9999}, "9999-12-31 23:59:59.9999"},
        {{2000, 2, 29, 10, 20, 30, 100}, "2000-02-29 10:20:30.0100"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(make(row.date), row.text);
        EXPECT_EQ(split(row.text), row.date) << row.text;
    }
}

TEST_F(Dates, WhatIsNoDateSplitsIntoZerosAndIsZeroSeconds) {
    for (const std::string_view text : noDates) {
        EXPECT_EQ(split(text), DateParts{}) << text;
        EXPECT_EQ(seconds(text), 0) << text;
    }
}

TEST_F(Dates, SecondsAreCountedFromTheYear1600) {
    constexpr struct {
        const char* text;
        Fixed seconds;
    } rows[] = {
        {"1600-01-01 00:00:00.0000", 0},
        {"1600-01-01 00:00:00.0001", 1},
        {"1600-01-01 00:00:01.0000", FixedOne},
        {"1599-12-31 23:59:59.9999", -1},
        {"1599-12-31 00:00:00.0000", -86400 * FixedOne},
        {"1600-02-29 00:00:00.0000", 59 * 86400 * FixedOne},
        {"1601-01-01 00:00:00.0000", 31622400 * FixedOne},
        {"1602-01-01 00:00:00.0000", (31622400 + 31536000) * FixedOne},
        {"1970-01-01 00:00:00.0000", 11676096000 * FixedOne},
        {"0001-01-01 00:00:00.0000", -50459500800 * FixedOne},
        {"9999-12-31 23:59:59.9999", 265078396800 * FixedOne - 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(seconds(row.text), row.seconds) << row.text;
        EXPECT_EQ(fromSeconds(row.seconds), row.text);
    }
}

TEST_F(Dates, SecondsOutsideTheYears1To9999AreNoDate) {
    constexpr Fixed first = -50459500800 * FixedOne, last = 265078396800 * FixedOne - 1;
    EXPECT_NE(fromSeconds(first), "");
    EXPECT_NE(fromSeconds(last), "");
    for (const Fixed outside : {first - 1, last + 1, LargestFixed, SmallestFixed})
        EXPECT_EQ(fromSeconds(outside), "") << outside;
}

TEST_F(Dates, ABufferOfLessThan25BytesIsLeftAloneAndANullOneToo) {
    constexpr std::string_view date = "2000-01-31 01:01:01.4321";
    for (const std::int32_t size : {24, 1, 0, -1, least}) {
        char text[DateSize] = "before";
        DateMake(2000, 1, 1, 0, 0, 0, 0, text, size);
        DateMake(2000, 13, 1, 0, 0, 0, 0, text, size);
        DateFromSeconds(0, text, size);
        DateFromSeconds(LargestFixed, text, size);
        DateAdd("D", 1, date, text, size);
        DateAdd("?", 1, date, text, size);
        DateNow(text, size);
        EXPECT_STREQ(text, "before") << size;
    }
    DateMake(2000, 1, 1, 0, 0, 0, 0, nullptr, DateSize);
    DateMake(2000, 13, 1, 0, 0, 0, 0, nullptr, DateSize);
    DateFromSeconds(0, nullptr, DateSize);
    DateAdd("D", 1, date, nullptr, DateSize);
    DateNow(nullptr, DateSize);
    char wide[40];
    std::fill(std::begin(wide), std::end(wide), '#');
    DateMake(2000, 1, 1, 0, 0, 0, 0, wide, sizeof wide);
    EXPECT_EQ(std::string(wide, sizeof wide),
              std::string("2000-01-01 00:00:00.0000") + '\0' + std::string(15, '#'));
}

// ---- units ----

TEST_F(Dates, AddCountsInEachUnit) {
    constexpr std::string_view year = "1999-01-01 23:59:59.0001", leap = "2000-02-29 23:59:59.0001",
                               month = "2000-01-31 01:01:01.4321", late = "2000-01-01 23:59:59.9990",
                               last = "2000-01-01 23:59:59.9999", first = "0001-01-01 00:00:00.0000",
                               end = "9999-12-31 23:59:59.9999", march = "2000-03-01 00:00:00.0000";
    const struct {
        std::string_view unit;
        std::int32_t n;
        std::string_view text, result;
    } rows[] = {
        {"YYYY", 4000, year, "5999-01-01 23:59:59.0001"},
        {"YYYY", -1000, year, "0999-01-01 23:59:59.0001"},
        {"YYYY", 1, leap, "2001-02-28 23:59:59.0001"},
        {"YYYY", 100, leap, "2100-02-28 23:59:59.0001"},
        {"YYYY", 400, leap, "2400-02-29 23:59:59.0001"},
        {"YYYY", -1, leap, "1999-02-28 23:59:59.0001"},
        {"YYYY", -100, leap, "1900-02-28 23:59:59.0001"},
        {"YYYY", -400, leap, "1600-02-29 23:59:59.0001"},
        {"YYYY", 0, leap, leap},
        {"MM", 1, month, "2000-02-29 01:01:01.4321"},
        {"MM", 2, month, "2000-03-31 01:01:01.4321"},
        {"MM", 3, month, "2000-04-30 01:01:01.4321"},
        {"MM", -1, month, "1999-12-31 01:01:01.4321"},
        {"MM", -2, month, "1999-11-30 01:01:01.4321"},
        {"MM", 13, month, "2001-02-28 01:01:01.4321"},
        {"MM", -23, month, "1998-02-28 01:01:01.4321"},
        {"M", 12, month, "2001-01-31 01:01:01.4321"},
        {"M", -12, month, "1999-01-31 01:01:01.4321"},
        {"M", 11, month, "2000-12-31 01:01:01.4321"},
        {"DD", 1, leap, "2000-03-01 23:59:59.0001"},
        {"D", -1, march, "2000-02-29 00:00:00.0000"},
        {"D", 366, late, "2001-01-01 23:59:59.9990"},
        {"D", 146097, late, "2400-01-01 23:59:59.9990"},
        {"D", -146097, late, "1600-01-01 23:59:59.9990"},
        {"H", 1, last, "2000-01-02 00:59:59.9999"},
        {"HH", -24, last, "1999-12-31 23:59:59.9999"},
        {"MI", 1, last, "2000-01-02 00:00:59.9999"},
        {"N", -60, last, "2000-01-01 22:59:59.9999"},
        {"SS", 1, last, "2000-01-02 00:00:00.9999"},
        {"S", -60, last, "2000-01-01 23:58:59.9999"},
        {"S", most, march, "2068-03-19 03:14:07.0000"},
        {"MS", 1, late, "2000-01-02 00:00:00.0000"},
        {"MS", 2, late, "2000-01-02 00:00:00.0010"},
        {"MS", -1, late, "2000-01-01 23:59:59.9980"},
        {"MS", 3600000, late, "2000-01-02 00:59:59.9990"},
        {"MS", -1000, "1600-01-01 00:00:00.0000", "1599-12-31 23:59:59.0000"},
        {"yyyy", 1, year, "2000-01-01 23:59:59.0001"},
        {"mM", 1, year, "1999-02-01 23:59:59.0001"},
        {"mi", 1, year, "1999-01-02 00:00:59.0001"},
        {"n", 1, year, "1999-01-02 00:00:59.0001"},
        {"Ms", 1, year, "1999-01-01 23:59:59.0011"},
        {"YYYY", 9998, first, "9999-01-01 00:00:00.0000"},
        {"YYYY", -9998, end, "0001-12-31 23:59:59.9999"},
        {"M", 119987, first, "9999-12-01 00:00:00.0000"},
        {"M", -119987, end, "0001-01-31 23:59:59.9999"},
        {"D", 3652058, first, "9999-12-31 00:00:00.0000"},
        {"D", -3652058, end, "0001-01-01 23:59:59.9999"},
        // Outside the years 1 to 9999.
        {"YYYY", 9999, first, ""},
        {"YYYY", -1, first, ""},
        {"YYYY", most, first, ""},
        {"YYYY", least, first, ""},
        {"M", 119988, first, ""},
        {"M", -1, first, ""},
        {"M", most, first, ""},
        {"M", least, end, ""},
        {"D", 3652059, first, ""},
        {"D", -1, first, ""},
        {"D", most, end, ""},
        {"D", least, first, ""},
        {"H", 1, end, ""},
        {"H", most, year, ""},
        {"H", least, year, ""},
        {"N", 1, end, ""},
        {"S", 1, end, ""},
        {"S", -1, first, ""},
        {"MS", 1, end, ""},
        {"MS", -1, first, ""},
        // No units.
        {"", 1, year, ""},
        {"Y", 1, year, ""},
        {"YY", 1, year, ""},
        {"YYY", 1, year, ""},
        {"YYYYY", 1, year, ""},
        {"MMM", 1, year, ""},
        {"NN", 1, year, ""},
        {"D ", 1, year, ""},
        {" D", 1, year, ""},
        {"DAY", 1, year, ""},
        {"W", 1, year, ""},
        {std::string_view("D\0", 2), 1, year, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(add(row.unit, row.n, row.text), row.result) << row.unit << ' ' << row.n << ' ' << row.text;
}

TEST_F(Dates, AddTakesEachDateUnitAndNothingThatIsNoDate) {
    for (const std::string_view unit :
         {"YYYY", "MM", "M", "DD", "D", "HH", "H", "MI", "N", "SS", "S", "MS"}) {
        EXPECT_EQ(add(unit, 0, "2000-02-29 23:59:59.9999"), "2000-02-29 23:59:59.9999") << unit;
        for (const std::string_view text : noDates) {
            EXPECT_EQ(add(unit, 1, text), "") << unit << ' ' << text;
            EXPECT_EQ(DatePart(unit, text), 0) << unit << ' ' << text;
        }
    }
}

TEST_F(Dates, AddMayWriteOverTheTextThatItReads) {
    char text[DateSize] = "2000-01-31 01:01:01.4321";
    DateAdd("M", 1, std::string_view(text), text, DateSize);
    EXPECT_STREQ(text, "2000-02-29 01:01:01.4321");
    DateAdd("W", 1, std::string_view(text), text, DateSize);
    EXPECT_STREQ(text, "");
}

TEST_F(Dates, PartIsTheNumberOfAUnit) {
    constexpr std::string_view text = "2003-04-05 06:07:08.0919";
    constexpr struct {
        std::string_view unit;
        std::int32_t number;
    } rows[] = {{"YYYY", 2003}, {"MM", 4}, {"M", 4},   {"DD", 5}, {"D", 5},   {"HH", 6},
                {"H", 6},       {"MI", 7}, {"N", 7},   {"SS", 8}, {"S", 8},   {"MS", 91},
                {"yyyy", 2003}, {"mI", 7}, {"ms", 91}, {"YY", 0}, {"MSS", 0}, {"", 0}};
    for (const auto& row : rows) EXPECT_EQ(DatePart(row.unit, text), row.number) << row.unit;
    EXPECT_EQ(DatePart("MS", "2003-04-05 06:07:08.9999"), 999);
    EXPECT_EQ(DatePart("MS", "2003-04-05 06:07:08.0009"), 0);
}

// ---- the clock ----

TEST_F(Dates, NowIsTheLocalTimeOfTheClock) {
    os::SteeredClock clock;
    const os::Steered steered(clock);
    const auto now = [] {
        char text[DateSize] = "";
        DateNow(text, DateSize);
        return std::string(text);
    };
    EXPECT_EQ(now(), "2001-02-03 04:05:06.0000");
    clock.setOffset(-5 * 3600);
    EXPECT_EQ(now(), "2001-02-02 23:05:06.0000");
    clock.setOffset(5 * 3600 + 1800);
    EXPECT_EQ(now(), "2001-02-03 09:35:06.0000");
    clock.setLocal({1999, 12, 31, 23, 59, 59, 999'999'999});
    EXPECT_EQ(now(), "1999-12-31 23:59:59.9999");
    clock.advance(1);
    EXPECT_EQ(now(), "2000-01-01 00:00:00.0000");
    clock.setOffset(0);
    clock.set(-1);
    EXPECT_EQ(now(), "1969-12-31 23:59:59.9999");
    clock.set(std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(now(), "2262-04-11 23:47:16.8547");
    clock.set(std::numeric_limits<std::int64_t>::min() + nanosecondsPerSecond);
    EXPECT_EQ(now(), "1677-09-21 00:12:44.1452");
}

TEST_F(Dates, ALeapSecondOfTheClockIsTheSecondBeforeIt) {
    class LeapClock : public os::SteeredClock {
        os::CivilTime local(std::int64_t) override { return {2016, 12, 31, 23, 59, 60, 500'000'000}; }
    } clock;
    const os::Steered steered(clock);
    char text[DateSize] = "";
    DateNow(text, DateSize);
    EXPECT_STREQ(text, "2016-12-31 23:59:59.5000");
}

TEST_F(Dates, NowOfTheRealClockIsADateOf24Characters) {
    char text[100] = "";
    DateNow(text, sizeof text);
    EXPECT_EQ(std::string_view(text).size(), 24U);
    EXPECT_NE(seconds(text), 0);
    EXPECT_GT(DatePart("YYYY", text), 2020);
}

TEST_F(Dates, FileTimeIsTheLocalTimeOfTheLastWrite) {
    os::SteeredClock clock;
    const os::Steered steeredClock(clock);
    os::SteeredFiles files;
    const os::Steered steeredFiles(files);
    files.put("/data/a.cls", "text");
    files.putLink("/data/a.cls", "/data/link");
    files.putLink("/data/none", "/data/dangling");
    ASSERT_EQ(files.setModified("/data/a.cls", 951'782'399 * nanosecondsPerSecond + 123'456'789),
              os::FileError::None);
    const auto timeOf = [](std::string_view path) {
        std::string text = "before";
        FileTimeText(path, text);
        return text;
    };
    EXPECT_EQ(timeOf("/data/a.cls"), "2000-02-28 23:59:59.1234");
    EXPECT_EQ(timeOf("\\data\\a.cls"), "2000-02-28 23:59:59.1234");
    EXPECT_EQ(timeOf("/data/link"), "2000-02-28 23:59:59.1234");
    clock.setOffset(3600);
    EXPECT_EQ(timeOf("/data/a.cls"), "2000-02-29 00:59:59.1234");
    EXPECT_EQ(timeOf("/data").size(), 24U);
    for (const std::string_view path : {std::string_view("/data/none"), std::string_view("/data/dangling"),
                                        std::string_view(""), std::string_view("/data/a.cls\0x", 13)})
        EXPECT_EQ(timeOf(path), "") << path;
    std::string path = "/data/a.cls";
    FileTimeText(path, path);
    EXPECT_EQ(path, "2000-02-29 00:59:59.1234");
}

TEST_F(Dates, AFileTimeAtTheEndsOfTheClocksRangeStandsForTimesBeyondItAndIsNotTold) {
    constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max(),
                           earliest = std::numeric_limits<std::int64_t>::min();
    os::SteeredClock clock;
    const os::Steered steeredClock(clock);
    os::SteeredFiles files;
    const os::Steered steeredFiles(files);
    files.put("/a", "text");
    const auto timeOf = [&](std::int64_t moment) {
        EXPECT_EQ(files.setModified("/a", moment), os::FileError::None);
        std::string text = "before";
        FileTimeText("/a", text);
        return text;
    };
    constexpr std::int64_t most = latest / nanosecondsPerSecond - 1;
    for (const std::int64_t moment :
         {latest, earliest, most * nanosecondsPerSecond, -most * nanosecondsPerSecond,
          -most * nanosecondsPerSecond + 999'999'999})
        EXPECT_EQ(timeOf(moment), "") << moment;
    EXPECT_EQ(timeOf(latest - 4 * nanosecondsPerSecond), "2262-04-11 23:47:12.8547");
    EXPECT_EQ(timeOf(earliest + 4 * nanosecondsPerSecond), "1677-09-21 00:12:47.1452");
}

TEST_F(Dates, AFileOfAYearThatTheClockDoesNotReachHasNoTime) {
    const TempFolder folder;
    const std::string path = folder / "a.txt";
    ASSERT_TRUE(os::saveFile(path, "text").ok());
    const timespec times[] = {{15'000'000'000, 0}, {15'000'000'000, 0}};  // in the year 2445
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    if (status.st_mtim.tv_sec != times[1].tv_sec) GTEST_SKIP() << "the file system holds no such time";
    std::string text = "before";
    FileTimeText(path, text);
    EXPECT_EQ(text, "");
}

TEST_F(Dates, FileTimeOnTheDiskIsToldInTheZoneInForce) {
    const TempFolder folder;
    const std::string path = folder / "a.txt";
    ASSERT_TRUE(os::saveFile(path, "text").ok());
    ASSERT_EQ(os::files().setModified(path, 1'711'846'800 * nanosecondsPerSecond), os::FileError::None);
    const Variable zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    std::string text;
    FileTimeText(path, text);
    EXPECT_EQ(text, "2024-03-31 03:00:00.0000");
}

}  // namespace
}  // namespace tarn
