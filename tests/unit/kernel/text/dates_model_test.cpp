// SPDX-License-Identifier: Apache-2.0
//
// Dates against plain models: a counter that goes from day to day, a list of the first days of all years, and
// random texts put together from parts.
#include "kernel/text/dates.h"
#include "unit/kernel/runtime_fixture.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

constexpr std::int64_t ticksOfSecond = 10000, ticksOfDay = 86400 * ticksOfSecond;
constexpr std::array<int, 12> lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int lengthOf(int year, int month) {
    if (month != 2) return lengths[static_cast<std::size_t>(month - 1)];
    if (year % 100 == 0) return year % 400 == 0 ? 29 : 28;
    return (year & 3) == 0 ? 29 : 28;
}

std::string textOf(const DateParts& d) {
    char text[100];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%04d", d.year, d.month, d.day, d.hour,
                  d.minute, d.second, d.fraction);
    return text;
}

// The first day of each year, counted from 0001-01-01, and of the year behind the last.
const std::vector<int>& yearStarts() {
    static const std::vector<int> starts = [] {
        std::vector<int> days = {0, 0};
        for (int year = 1; year <= 9999; ++year) {
            int sum = 0;
            for (int month = 1; month <= 12; ++month) sum += lengthOf(year, month);
            days.push_back(days.back() + sum);
        }
        return days;
    }();
    return starts;
}

std::int64_t modelTicks(const DateParts& d) {  // since 0001-01-01
    std::int64_t days = yearStarts()[static_cast<std::size_t>(d.year)] + d.day - 1;
    for (int month = 1; month < d.month; ++month) days += lengthOf(d.year, month);
    return days * ticksOfDay + ((d.hour * 60 + d.minute) * 60 + d.second) * ticksOfSecond + d.fraction;
}

bool modelDate(std::int64_t ticks, DateParts& d) {
    const std::vector<int>& starts = yearStarts();
    if (ticks < 0 || ticks >= starts.back() * ticksOfDay) return false;
    auto days = static_cast<int>(ticks / ticksOfDay);
    const auto next = std::upper_bound(starts.begin() + 1, starts.end(), days);
    d.year = static_cast<int>(next - starts.begin()) - 1;
    days -= *(next - 1);
    for (d.month = 1; days >= lengthOf(d.year, d.month); ++d.month) days -= lengthOf(d.year, d.month);
    d.day = days + 1;
    std::int64_t rest = ticks % ticksOfDay;
    d.fraction = static_cast<int>(rest % 10000);
    d.second = static_cast<int>((rest /= 10000) % 60);
    d.minute = static_cast<int>((rest /= 60) % 60);
    d.hour = static_cast<int>(rest / 60);
    return true;
}

using Random = std::mt19937;

int between(Random& random, int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
}

DateParts randomDate(Random& random) {
    DateParts d;
    d.year = between(random, 0, 3) == 0 ? between(random, 1, 9999) : between(random, 1580, 2420);
    d.month = between(random, 0, 3) == 0 ? 2 : between(random, 1, 12);
    const int length = lengthOf(d.year, d.month);
    d.day = between(random, 0, 2) == 0 ? length : between(random, 1, length);
    d.hour = between(random, 0, 23);
    d.minute = between(random, 0, 59);
    d.second = between(random, 0, 59);
    d.fraction = between(random, 0, 9999);
    return d;
}

class DatesModel : public Runtime {};

// ---- every day ----

TEST_F(DatesModel, EachDayOfAllYearsHasItsSecondsAndItsText) {
    std::int64_t days = 0, leapYears = 0, wrong = 0;
    std::int64_t dayOf1600 = 0;
    for (int year = 1; year < 1600; ++year)
        for (int month = 1; month <= 12; ++month) dayOf1600 += lengthOf(year, month);
    std::string before;
    for (int year = 1; year <= 9999; ++year) {
        leapYears += IsLeapYear(year) ? 1 : 0;
        for (int month = 1; month <= 12; ++month) {
            const int length = lengthOf(year, month);
            if (DaysInMonth(year, month) != length) ++wrong;
            for (int day = 1; day <= length; ++day, ++days) {
                std::string text = textOf({year, month, day, 0, 0, 0, 0});
                Fixed seconds = 0;
                char made[DateSize], back[DateSize], next[DateSize] = "";
                DateMake(year, month, day, 0, 0, 0, 0, made, DateSize);
                DateToSeconds(text, seconds);
                DateFromSeconds((days - dayOf1600) * ticksOfDay, back, DateSize);
                DateAdd("D", 1, before, next, DateSize);
                if (made != text || back != text || seconds != (days - dayOf1600) * ticksOfDay ||
                    next != (before.empty() ? before : text)) {
                    ++wrong;
                    ADD_FAILURE() << text << ' ' << made << ' ' << back << ' ' << next << ' ' << seconds;
                }
                ASSERT_LT(wrong, 10);
                before = std::move(text);
            }
            if (DateValid(year, month, length + 1, 0, 0, 0, 0)) ++wrong;
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(leapYears, 9999 / 4 - 9999 / 100 + 9999 / 400);
    EXPECT_EQ(days, 3652059);
}

TEST_F(DatesModel, RandomSecondsAndTextsAreTheReverseOfEachOther) {
    const std::int64_t dayOf1600 = yearStarts()[1600];
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        std::uniform_int_distribution<std::int64_t> ticks(-ticksOfDay,
                                                          yearStarts().back() * ticksOfDay + ticksOfDay);
        for (int step = 0; step < 20'000; ++step) {
            const std::int64_t moment = ticks(random);
            DateParts d;
            const std::string expected = modelDate(moment, d) ? textOf(d) : "";
            char text[DateSize];
            DateFromSeconds(moment - dayOf1600 * ticksOfDay, text, DateSize);
            ASSERT_EQ(text, expected);
            Fixed seconds = 1;
            DateToSeconds(text, seconds);
            ASSERT_EQ(seconds, expected.empty() ? 0 : moment - dayOf1600 * ticksOfDay) << text;
            DateParts split;
            DateSplit(text, split.year, split.month, split.day, split.hour, split.minute, split.second,
                      split.fraction);
            ASSERT_EQ(split, expected.empty() ? DateParts{} : d) << text;
        }
    }
}

// ---- DateAdd ----

struct ModelUnit {
    const char* name;
    int months;
    std::int64_t ticks;
    int DateParts::*part;
};
constexpr ModelUnit modelUnits[] = {
    {"YYYY", 12, 0, &DateParts::year},
    {"MM", 1, 0, &DateParts::month},
    {"m", 1, 0, &DateParts::month},
    {"Dd", 0, ticksOfDay, &DateParts::day},
    {"D", 0, ticksOfDay, &DateParts::day},
    {"hH", 0, 3600 * ticksOfSecond, &DateParts::hour},
    {"H", 0, 3600 * ticksOfSecond, &DateParts::hour},
    {"MI", 0, 60 * ticksOfSecond, &DateParts::minute},
    {"n", 0, 60 * ticksOfSecond, &DateParts::minute},
    {"SS", 0, ticksOfSecond, &DateParts::second},
    {"s", 0, ticksOfSecond, &DateParts::second},
    {"mS", 0, 10, &DateParts::fraction},
};

bool modelAdd(const ModelUnit& unit, int n, DateParts& d) {
    if (unit.months == 0) return modelDate(modelTicks(d) + n * unit.ticks, d);
    // All months of all years in one row, the first one is 0.
    const std::int64_t month = (d.year - 1) * 12 + (d.month - 1) + std::int64_t{n} * unit.months;
    if (month < 0 || month >= 9999 * 12) return false;
    d.year = static_cast<int>(month / 12) + 1;
    d.month = static_cast<int>(month % 12) + 1;
    while (d.day > lengthOf(d.year, d.month)) --d.day;
    return true;
}

int randomCount(Random& random) {
    switch (between(random, 0, 9)) {
    case 0: return between(random, INT32_MIN, INT32_MAX);
    case 1: return between(random, 0, 1) == 0 ? INT32_MIN : INT32_MAX;
    case 2: return between(random, -4'000'000, 4'000'000);
    case 3:
    case 4: return between(random, -10'000, 10'000);
    default: return between(random, -70, 70);
    }
}

TEST_F(DatesModel, RandomSumsAreThoseOfAPlainModel) {
    constexpr int steps = 25'000;
    int outside = 0, total = 0;
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        DateParts d = randomDate(random);
        for (int step = 0; step < steps; ++step, ++total) {
            const ModelUnit& unit = modelUnits[between(random, 0, std::size(modelUnits) - 1)];
            const int n = randomCount(random);
            const std::string text = textOf(d);
            const int part = d.*unit.part;
            ASSERT_EQ(DatePart(unit.name, text), unit.part == &DateParts::fraction ? part / 10 : part)
                << text;
            DateParts sum = d;
            const bool inside = modelAdd(unit, n, sum);
            char result[DateSize];
            DateAdd(unit.name, n, text, result, DateSize);
            ASSERT_EQ(result, inside ? textOf(sum) : "") << unit.name << ' ' << n << ' ' << text;
            outside += inside ? 0 : 1;
            d = inside && between(random, 0, 9) != 0 ? sum : randomDate(random);
        }
    }
    EXPECT_GT(outside, total / 100);  // both ends of the calendar were met,
    EXPECT_LT(outside, total / 2);    // and most steps lie between them
}

// ---- DateParse ----

std::string pick(Random& random, std::initializer_list<const char*> choices) {
    return choices.begin()[between(random, 0, static_cast<int>(choices.size()) - 1)];
}

std::string cased(Random& random, std::string text) {
    const int way = between(random, 0, 3);
    for (char& c : text) {
        if (way == 1 || (way == 3 && between(random, 0, 1) == 0)) c = static_cast<char>(std::toupper(c));
        if (way == 2) c = static_cast<char>(std::tolower(c));
    }
    return text;
}

std::string nameOf(Random& random, std::string_view name) {
    return cased(random, std::string(between(random, 0, 1) == 0 ? name.substr(0, 3) : name));
}

std::string number(Random& random, int n, int digits) {
    char text[40];
    std::snprintf(text, sizeof text, "%0*d", between(random, 1, digits), n);
    return text;
}

std::string randomDay(Random& random, const DateParts& d) {
    const std::string y = textOf(d).substr(0, 4), n = number(random, d.day, 2),
                      blank = pick(random, {" ", "  "}), mark = pick(random, {"-", " - ", "- "}),
                      comma = pick(random, {"", ",", " ,"}) + blank,
                      month = nameOf(random, MonthName(d.month)),
                      weekday = nameOf(random, DayName(between(random, 1, 7))) + comma;
    switch (between(random, 0, 6)) {
    case 0: return y + mark + number(random, d.month, 2) + mark + n;
    case 1: return month + mark + n + mark + y;
    case 2: return n + mark + month + mark + y;
    case 3: return month + blank + n + comma + y;
    case 4: return n + blank + month + comma + y;
    case 5: return weekday + month + blank + n + comma + y;
    default: return weekday + n + blank + month + comma + y;
    }
}

// A text of the time, after which `d` has no more of it than the text says.
std::string randomTime(Random& random, DateParts& d) {
    const int parts = between(random, 0, 3);
    if (parts < 3) d.fraction = 0;
    if (parts < 2) d.second = 0;
    if (parts < 1) d.hour = d.minute = 0;
    if (parts == 0) return "";
    const bool half = between(random, 0, 1) == 0;
    const int hour = !half ? d.hour : d.hour % 12 == 0 ? 12 : d.hour % 12;
    std::string text = pick(random, {" ", "   "}) + number(random, hour, 2) + textOf(d).substr(13, 3);
    if (parts >= 2) text += textOf(d).substr(16, 3);
    if (parts == 3) text += textOf(d).substr(19, 5);
    if (half) text += pick(random, {"", " ", "  "}) + cased(random, d.hour < 12 ? "am" : "pm");
    return text;
}

TEST_F(DatesModel, RandomTextsOfAllFormsAndTimesParseToTheirDate) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        for (int step = 0; step < 20'000; ++step) {
            DateParts d = randomDate(random);
            std::string text = pick(random, {"", " "}) + randomDay(random, d);
            text += randomTime(random, d) + pick(random, {"", " "});
            std::string result;
            bool ok = false;
            DateParse(text, result, ok);
            ASSERT_TRUE(ok) << text;
            ASSERT_EQ(result, textOf(d)) << text;
            DateParse(std::string(result), result, ok);
            ASSERT_TRUE(ok) << text;
            ASSERT_EQ(result, textOf(d)) << text;
        }
    }
}

// Damaged texts give a date or nothing. A date has the year, the day and all digits of the minute in its
// text.
TEST_F(DatesModel, RandomDamageGivesADateThatStandsInTheTextOrNone) {
    constexpr std::string_view junk = " -,:./+0123456789aApPmMjJ\t\n\xFF";
    int dates = 0, refused = 0;
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        for (int step = 0; step < 20'000; ++step) {
            DateParts d = randomDate(random);
            std::string text = randomDay(random, d);
            text += randomTime(random, d);
            for (int damage = between(random, 1, 3); damage > 0 && !text.empty(); --damage) {
                const auto at =
                    static_cast<std::size_t>(between(random, 0, static_cast<int>(text.size()) - 1));
                const char c =
                    junk[static_cast<std::size_t>(between(random, 0, static_cast<int>(junk.size()) - 1))];
                switch (between(random, 0, 2)) {
                case 0: text[at] = c; break;
                case 1: text.insert(at, 1, c); break;
                default: text.erase(at, 1);
                }
            }
            std::string result = "before";
            bool ok = false;
            DateParse(text, result, ok);
            ASSERT_EQ(result.empty(), !ok) << text;
            (ok ? dates : refused)++;
            if (!ok) continue;
            ASSERT_EQ(result.size(), 24U) << text;
            ASSERT_NE(DatePart("D", result), 0) << text << ' ' << result;
            ASSERT_NE(text.find(result.substr(0, 4)), std::string::npos) << text << ' ' << result;
            ASSERT_NE(text.find(std::to_string(DatePart("D", result))), std::string::npos) << text;
            if (text.find(':') != std::string::npos)
                ASSERT_NE(text.find(result.substr(13, 3)), std::string::npos) << text << ' ' << result;
            else
                ASSERT_EQ(result.substr(11), "00:00:00.0000") << text;
        }
    }
    EXPECT_GT(dates, 10'000);
    EXPECT_GT(refused, 10'000);
}

}  // namespace
}  // namespace tarn
