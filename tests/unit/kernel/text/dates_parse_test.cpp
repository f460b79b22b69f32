// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/dates.h"
#include "unit/kernel/runtime_fixture.h"

#include <cctype>
#include <cstdint>
#include <string>

namespace tarn {
namespace {

class LooseDates : public Runtime {
protected:
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        Runtime::TearDown();
    }
    // The date, or "refused".
    static std::string parse(std::string_view text) {
        std::string result = "before";
        bool ok = false;
        DateParse(text, result, ok);
        EXPECT_EQ(ok, !result.empty()) << text;
        return ok ? result : "refused";
    }
};

TEST_F(LooseDates, EachFormParsesWithEachTimeAndWithNone) {
    constexpr struct {
        const char *text, *day;
    } forms[] = {
        {"2000-01-31", "2000-01-31"},          {"Jan-31-2000", "2000-01-31"},
        {"31-Jan-2000", "2000-01-31"},         {"March 31, 2000", "2000-03-31"},
        {"March 3 2000", "2000-03-03"},        {"31 March, 2000", "2000-03-31"},
        {"3 March 2000", "2000-03-03"},        {"Sun March 26, 2000", "2000-03-26"},
        {"Friday March 3 2000", "2000-03-03"}, {"Sun 26 March, 2000", "2000-03-26"},
        {"Friday 3 March 2000", "2000-03-03"},
    };
    constexpr struct {
        const char *text, *time;
    } times[] = {
        {"", "00:00:00.0000"},
        {" 11:30", "11:30:00.0000"},
        {" 11:30:33", "11:30:33.0000"},
        {" 11:30:33.1234", "11:30:33.1234"},
        {" 1:30", "01:30:00.0000"},
        {" 1:30:33", "01:30:33.0000"},
        {" 1:30:33.1234", "01:30:33.1234"},
        {" 11:30AM", "11:30:00.0000"},
        {" 11:30 AM", "11:30:00.0000"},
        {" 11:30:33PM", "23:30:33.0000"},
        {" 11:30:33 PM", "23:30:33.0000"},
        {" 1:30:33.1234PM", "13:30:33.1234"},
        {" 1:30:33.1234  pm", "13:30:33.1234"},
        {" 12:00 AM", "00:00:00.0000"},
        {" 12:59:59.9999am", "00:59:59.9999"},
        {" 12:00 PM", "12:00:00.0000"},
        {" 12:01Pm", "12:01:00.0000"},
        {" 0:00", "00:00:00.0000"},
        {" 23:59:59.9999", "23:59:59.9999"},
        {"   00:00:00.0001", "00:00:00.0001"},
        {"\t2:03", "02:03:00.0000"},
    };
    for (const auto& form : forms)
        for (const auto& time : times)
            EXPECT_EQ(parse(std::string(form.text) + time.text), std::string(form.day) + " " + time.time)
                << form.text << time.text;
}

TEST_F(LooseDates, LooseDatesThatHaveOneMeaningParse) {
    constexpr struct {
        const char *text, *date;
    } rows[] = {
        // The day's name is not compared with the day (3 March 2000 was a Friday, 1 March a Wednesday).
        {"Friday 3 March 2000 1:30:33.1234PM", "2000-03-03 13:30:33.1234"},
        {"Friday 1 March 2000", "2000-03-01 00:00:00.0000"},
        {"sAtUrDaY, mArCh 3, 2000", "2000-03-03 00:00:00.0000"},
        {"MON 2000-01-31", "2000-01-31 00:00:00.0000"},
        {"3 March Friday 2000", "2000-03-03 00:00:00.0000"},
        {"  2000-1-3\t", "2000-01-03 00:00:00.0000"},
        {"2000 1 3", "2000-01-03 00:00:00.0000"},
        {"2000-Jan-31", "2000-01-31 00:00:00.0000"},
        {"2000 31 January", "2000-01-31 00:00:00.0000"},
        {"31 - Jan - 2000", "2000-01-31 00:00:00.0000"},
        {"31,Jan,2000", "2000-01-31 00:00:00.0000"},
        {"may 1 0001", "0001-05-01 00:00:00.0000"},
        {"31 dec 9999 11:59:59.9999 PM  ", "9999-12-31 23:59:59.9999"},
        {"29 Feb 2000", "2000-02-29 00:00:00.0000"},
        {"March 3, 2000, 11:30", "2000-03-03 11:30:00.0000"},
        {"2000-01-31 1:30:33.5", "2000-01-31 01:30:33.5000"},
        {"2000-01-31 1:30:33.05", "2000-01-31 01:30:33.0500"},
        {"2000-01-31 1:30:33.12349", "2000-01-31 01:30:33.1234"},
        {"2000-01-31 1:30:33.123456789012345678901234567890", "2000-01-31 01:30:33.1234"},
        {"2000-01-31 13:30 PM", "2000-01-31 13:30:00.0000"},
        {"2000-01-31 0:30 PM", "2000-01-31 12:30:00.0000"},
        {"2000-01-31 0:30 AM", "2000-01-31 00:30:00.0000"},
        {"2000-01-31 01:01:01.4321", "2000-01-31 01:01:01.4321"},
        // AM makes 12 into 0 and changes no other hour.
        {"2000-01-31 13:00 AM", "2000-01-31 13:00:00.0000"},
        {"2000-01-31 23:59:59.9999AM", "2000-01-31 23:59:59.9999"},
        // Separators may be repeated, and stand around the whole.
        {"2000--01-31", "2000-01-31 00:00:00.0000"},
        {"2000-01--31", "2000-01-31 00:00:00.0000"},
        {"2000- -01-31", "2000-01-31 00:00:00.0000"},
        {"March 3,, 2000", "2000-03-03 00:00:00.0000"},
        {"March 3 ,- 2000", "2000-03-03 00:00:00.0000"},
        {"2000-01-31,", "2000-01-31 00:00:00.0000"},
        {"2000-01-31-", "2000-01-31 00:00:00.0000"},
        {"2000-01-31 - ,", "2000-01-31 00:00:00.0000"},
        {", 2000-01-31", "2000-01-31 00:00:00.0000"},
        {"March 3, 2000,, 11:30", "2000-03-03 11:30:00.0000"},
        {"2000-01-31 11:30 AM,", "2000-01-31 11:30:00.0000"},
        {"2000-01-31 11:30 ,, ", "2000-01-31 11:30:00.0000"},
    };
    for (const auto& row : rows) EXPECT_EQ(parse(row.text), row.date) << row.text;
}

TEST_F(LooseDates, EachNameOfAMonthAndADayParsesInAnyCase) {
    for (std::int32_t month = 1; month <= 12; ++month) {
        for (std::int32_t day = 1; day <= 7; ++day) {
            const std::string expected =
                "2001-" + std::string(month < 10 ? "0" : "") + std::to_string(month) + "-09 00:00:00.0000";
            const std::string m(MonthName(month)), d(DayName(day));
            EXPECT_EQ(parse(d + " " + m + " 9, 2001"), expected);
            EXPECT_EQ(parse(d.substr(0, 3) + " 9 " + m.substr(0, 3) + " 2001"), expected);
            std::string capitals = d + " " + m + " 9 2001", small = capitals;
            for (char& c : capitals) c = static_cast<char>(std::toupper(c));
            for (char& c : small) c = static_cast<char>(std::tolower(c));
            EXPECT_EQ(parse(capitals), expected);
            EXPECT_EQ(parse(small), expected);
        }
    }
}

TEST_F(LooseDates, WhatCouldBeAnotherDateOrNoneIsRefused) {
    constexpr std::string_view rows[] = {
        // Nothing, or not all of it.
        "",
        " ",
        "2000",
        "March",
        "3 March",
        "March 2000",
        "2000-01",
        "01-31",
        "Friday",
        "11:30",
        "AM",
        "Friday March 2000",
        "2000-01-31-11:30",
        // Twice.
        "2000 March 3 2001",
        "March March 3 2000",
        "March 3 April 2000",
        "3 4 March 2000",
        "2000-01-31 5",
        "2000-March-01-31",
        "Fri Sun 3 March 2000",
        "Fri Fri 3 March 2000",
        "3 March 2000 11:30 12:30",
        "2000-01-02-03",
        // Which is the month?
        "01-31-2000",
        "31-01-2000",
        "1-2-2000",
        "1 2000 2",
        "01 31, 2000",
        // Numbers of other lengths.
        "200-01-31",
        "20000-01-31",
        "2000-001-31",
        "2000-01-031",
        "00-01-31",
        "March 3 99",
        "March 3 1999a",
        "20000131",
        "March 003 2000",
        "3 March 02000",
        "99999999999999999999 March 3 2000",
        // Words that are no names.
        "Marc 3 2000",
        "Ma 3 2000",
        "Sept 3 2000",
        "Tues 3 March 2000",
        "Marchy 3 2000",
        "J 3 2000",
        "3rd March 2000",
        "March 3rd 2000",
        "the 3 March 2000",
        "3 of March 2000",
        "Januar 1 2000",
        "Mondays 3 March 2000",
        "2000-01-31 x",
        "x 2000-01-31",
        "2000-01-31T11:30",
        "M\xC3\xA4rz 3 2000",
        // Other characters.
        "2000/01/31",
        "31.01.2000",
        "2000.01.31",
        "Jan. 31, 2000",
        "2000_01_31",
        "+2000-01-31",
        "(2000-01-31)",
        "2000-01-31;",
        "\"2000-01-31\"",
        "2000-01-31\n",
        "2000-01-31\xA0",
        std::string_view("2000-01-31\0", 11),
        std::string_view("2000\00001-31", 10),
        // Gaps.
        "31Jan2000",
        "31Jan 2000",
        "Jan31 2000",
        "March3,2000",
        "-2000-01-31",
        ", -2000-01-31",
        // Days that do not exist.
        "0000-01-31",
        "2000-00-31",
        "2000-13-01",
        "2000-01-00",
        "2000-01-32",
        "2000-04-31",
        "30 Feb 2000",
        "29 Feb 1900",
        "0 March 2000",
        "March 99 2000",
        // Times: signs of zones, missing and odd parts.
        "2000-01-31 -05:00",
        "2000-01-31 - 11:30",
        "2000-01-31 ,- 11:30",
        "2000-01-31 11:30-",
        "2000-01-31 11:30 AM -",
        "2000-01-31 11:30, -05:00",
        "2000-01-31,11:30",
        "2000-01-31 11:30-05:00",
        "2000-01-31 11:30 -05:00",
        "2000-01-31 11:30 +05:00",
        "2000-01-31 11:30Z",
        "2000-01-31 11:30 GMT",
        "2000-01-31 :30",
        "2000-01-31 11:",
        "2000-01-31 11:3",
        "2000-01-31 11:300",
        "2000-01-31 111:30",
        "2000-01-31 11:30:",
        "2000-01-31 11:30:3",
        "2000-01-31 11:30:333",
        "2000-01-31 11:30:33.",
        "2000-01-31 11:30:33.x",
        "2000-01-31 11:30.5",
        "2000-01-31 11:30:33,5",
        "2000-01-31 11:30:33:44",
        "2000-01-31 11 :30",
        "2000-01-31 11: 30",
        "2000-01-31 11.30",
        "2000-01-31 11",
        "2000-01-31 1 PM",
        "2000-01-31 PM",
        "2000-01-31 24:00",
        "2000-01-31 99:00",
        "2000-01-31 11:60",
        "2000-01-31 11:30:60",
        "2000-01-31 24:00 PM",
        "2000-01-31 11:30:33. PM",
        // Halves of the day.
        "2000-01-31 24:00 AM",
        "2000-01-31 11:30 AMPM",
        "2000-01-31 11:30 AM PM",
        "2000-01-31 11:30 A",
        "2000-01-31 11:30 P.M.",
        "2000-01-31 11:30 AM 5",
        "2000-01-31 11:30-AM",
        "2000-01-31 11:30, AM",
        "AM 2000-01-31 11:30",
        // The time is last.
        "11:30 2000-01-31",
        "2000 11:30 01-31",
        "Sun Mar 26 11:30:33 2000",
        "2000-01-31 11:30 Friday",
        "2000-01-31 11:30 x",
    };
    for (const std::string_view text : rows) EXPECT_EQ(parse(text), "refused") << text;
}

TEST_F(LooseDates, ParseMayReadTheTextThatItFills) {
    std::string text = "31-Jan-2000 1:30 PM";
    bool ok = false;
    DateParse(text, text, ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(text, "2000-01-31 13:30:00.0000");
    text = "31-Jan-2000 1:30 XM";
    DateParse(text, text, ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(text, "");
}

}  // namespace
}  // namespace tarn
