// SPDX-License-Identifier: Apache-2.0
//
// Days are counted from 1 March of the year 0: the leap day is then the last day of a year, the lengths of
// the months follow one straight line, and no day of a valid date is negative, so that all divisions are
// plain ones.
#include "kernel/text/dates.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <array>

namespace tarn {

namespace {

constexpr std::int32_t firstYear = 1, lastYear = 9999;
constexpr Fixed ticksPerSecond = FixedOne;  // a tick is the unit of the seconds form
constexpr Fixed ticksPerMillisecond = ticksPerSecond / 1000, ticksPerMinute = 60 * ticksPerSecond,
                ticksPerHour = 60 * ticksPerMinute, ticksPerDay = 24 * ticksPerHour;

constexpr std::array<std::string_view, 12> monthNames = {"January",   "February", "March",    "April",
                                                         "May",       "June",     "July",     "August",
                                                         "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> dayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                      "Thursday", "Friday", "Saturday"};

constexpr bool isLeap(std::int32_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr std::int32_t lengthOfMonth(std::int32_t year, std::int32_t month) {
    constexpr std::array<std::int8_t, 13> lengths = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : lengths[static_cast<std::size_t>(month)];
}

// ---- days ----

// Days from 1 March to the first of a month; March is month 0. 153 is the length of any five months of which
// the first is March or August.
constexpr std::int32_t daysBeforeMonth(std::int32_t monthFromMarch) {
    return (153 * monthFromMarch + 2) / 5;
}

constexpr std::int32_t daysFromMarch(std::int32_t year, std::int32_t month, std::int32_t day) {
    const std::int32_t y = month <= 2 ? year - 1 : year;
    const std::int32_t m = month <= 2 ? month + 9 : month - 3;
    return 365 * y + y / 4 - y / 100 + y / 400 + daysBeforeMonth(m) + day - 1;
}

constexpr std::int32_t dayZero = daysFromMarch(1600, 1, 1);
constexpr Fixed firstTick = Fixed{daysFromMarch(firstYear, 1, 1) - dayZero} * ticksPerDay;
constexpr Fixed lastTick = Fixed{daysFromMarch(lastYear, 12, 31) + 1 - dayZero} * ticksPerDay - 1;

void setDay(std::int32_t days, DateParts& d) {
    const std::int32_t century = (4 * days + 3) / 146097;
    const std::int32_t dayOfCentury = days - 146097 * century / 4;
    const std::int32_t yearOfCentury = (4 * dayOfCentury + 3) / 1461;
    const std::int32_t dayOfYear = dayOfCentury - 1461 * yearOfCentury / 4;
    const std::int32_t m = (5 * dayOfYear + 2) / 153;
    d.day = dayOfYear - daysBeforeMonth(m) + 1;
    d.month = m < 10 ? m + 3 : m - 9;
    d.year = 100 * century + yearOfCentury + (m < 10 ? 0 : 1);
}

// ---- seconds ----

Fixed ticksOf(const DateParts& d) {
    return Fixed{daysFromMarch(d.year, d.month, d.day) - dayZero} * ticksPerDay + d.hour * ticksPerHour +
           d.minute * ticksPerMinute + d.second * ticksPerSecond + d.fraction;
}

bool setTicks(Fixed ticks, DateParts& d) {
    if (ticks < firstTick || ticks > lastTick) return false;
    const Fixed sinceMarch = ticks + dayZero * ticksPerDay;
    setDay(static_cast<std::int32_t>(sinceMarch / ticksPerDay), d);
    const auto ofDay = static_cast<std::int32_t>(sinceMarch % ticksPerDay);
    const auto seconds = ofDay / static_cast<std::int32_t>(ticksPerSecond);
    d.hour = seconds / 3600;
    d.minute = seconds / 60 % 60;
    d.second = seconds % 60;
    d.fraction = ofDay % static_cast<std::int32_t>(ticksPerSecond);
    return true;
}

// ---- texts ----

struct Field {
    std::int32_t DateParts::*part;
    std::size_t at, digits;
};
constexpr std::array<Field, 7> fields = {{{&DateParts::year, 0, 4},
                                          {&DateParts::month, 5, 2},
                                          {&DateParts::day, 8, 2},
                                          {&DateParts::hour, 11, 2},
                                          {&DateParts::minute, 14, 2},
                                          {&DateParts::second, 17, 2},
                                          {&DateParts::fraction, 20, 4}}};
constexpr std::string_view zeros = "0000-00-00 00:00:00.0000";

bool isValid(const DateParts& d) {
    return DateValid(d.year, d.month, d.day, d.hour, d.minute, d.second, d.fraction);
}

// `d` is of use only where the text is a date.
bool readDate(std::string_view text, DateParts& d) {
    if (text.size() != DateLength) return false;
    for (const std::size_t at : {4U, 7U, 10U, 13U, 16U, 19U})
        if (text[at] != zeros[at]) return false;
    for (const Field& field : fields) {
        std::int32_t value = 0;
        for (const char c : text.substr(field.at, field.digits)) {
            if (!ascii::isDigit(c)) return false;
            value = 10 * value + (c - '0');
        }
        d.*field.part = value;
    }
    return isValid(d);
}

// Writes a valid date, or the empty text when there is none.
void writeDate(bool valid, const DateParts& d, char* text, std::int32_t size) {
    if (text == nullptr || size < DateSize) return;
    if (!valid) {
        *text = 0;
        return;
    }
    zeros.copy(text, DateLength);
    for (const Field& field : fields) {
        std::int32_t value = d.*field.part;
        for (char* at = text + field.at + field.digits; value != 0; value /= 10)
            *--at = static_cast<char>('0' + value % 10);
    }
    text[DateLength] = 0;
}

// ---- units ----

struct Unit {
    std::string_view name;
    std::int32_t DateParts::*part;
    std::int32_t divisor;  // of the part, to get the number of the unit
    std::int32_t months;   // of one unit, or
    Fixed ticks;           // its length
};
constexpr std::array<Unit, 12> units = {{{"YYYY", &DateParts::year, 1, 12, 0},
                                         {"MM", &DateParts::month, 1, 1, 0},
                                         {"M", &DateParts::month, 1, 1, 0},
                                         {"DD", &DateParts::day, 1, 0, ticksPerDay},
                                         {"D", &DateParts::day, 1, 0, ticksPerDay},
                                         {"HH", &DateParts::hour, 1, 0, ticksPerHour},
                                         {"H", &DateParts::hour, 1, 0, ticksPerHour},
                                         {"MI", &DateParts::minute, 1, 0, ticksPerMinute},
                                         {"N", &DateParts::minute, 1, 0, ticksPerMinute},
                                         {"SS", &DateParts::second, 1, 0, ticksPerSecond},
                                         {"S", &DateParts::second, 1, 0, ticksPerSecond},
                                         {"MS", &DateParts::fraction, 10, 0, ticksPerMillisecond}}};

const Unit* unitNamed(std::string_view name) {
    for (const Unit& unit : units)
        if (ascii::equal(name, unit.name)) return &unit;
    return nullptr;
}

bool addMonths(std::int64_t n, DateParts& d) {
    const std::int64_t months = std::int64_t{d.year} * 12 + d.month - 1 + n;
    if (months < firstYear * 12 || months >= (lastYear + 1) * 12) return false;
    d.year = static_cast<std::int32_t>(months / 12);
    d.month = static_cast<std::int32_t>(months % 12) + 1;
    d.day = std::min(d.day, lengthOfMonth(d.year, d.month));
    return true;
}

bool add(const Unit& unit, std::int64_t n, DateParts& d) {
    // The widest step, INT32_MIN days, is about a fifth of what a fixed number holds.
    return unit.months != 0 ? addMonths(n * unit.months, d) : setTicks(ticksOf(d) + n * unit.ticks, d);
}

}  // namespace

// ---- the calendar ----

bool IsLeapYear(std::int32_t year) {
    return isLeap(year);
}

std::int32_t DaysInMonth(std::int32_t year, std::int32_t month) {
    return month < 1 || month > 12 ? 0 : lengthOfMonth(year, month);
}

bool DateValid(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour,
               std::int32_t minute, std::int32_t second, std::int32_t fraction) {
    const auto within = [](std::int32_t value, std::int32_t least, std::int32_t most) {
        return value >= least && value <= most;
    };
    return within(year, firstYear, lastYear) && within(month, 1, 12) &&
           within(day, 1, lengthOfMonth(year, month)) && within(hour, 0, 23) && within(minute, 0, 59) &&
           within(second, 0, 59) && within(fraction, 0, 9999);
}

std::string_view MonthName(std::int32_t month) {
    return month < 1 || month > 12 ? std::string_view() : monthNames[static_cast<std::size_t>(month - 1)];
}

std::string_view DayName(std::int32_t day) {
    return day < 1 || day > 7 ? std::string_view() : dayNames[static_cast<std::size_t>(day - 1)];
}

// ---- the two forms ----

void DateMake(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour, std::int32_t minute,
              std::int32_t second, std::int32_t fraction, char* text, std::int32_t size) {
    const DateParts d{year, month, day, hour, minute, second, fraction};
    writeDate(isValid(d), d, text, size);
}

void DateSplit(std::string_view text, std::int32_t& year, std::int32_t& month, std::int32_t& day,
               std::int32_t& hour, std::int32_t& minute, std::int32_t& second, std::int32_t& fraction) {
    DateParts d;
    if (!readDate(text, d)) d = {};
    year = d.year;
    month = d.month;
    day = d.day;
    hour = d.hour;
    minute = d.minute;
    second = d.second;
    fraction = d.fraction;
}

void DateToSeconds(std::string_view text, Fixed& seconds) {
    DateParts d;
    seconds = readDate(text, d) ? ticksOf(d) : 0;
}

void DateFromSeconds(Fixed seconds, char* text, std::int32_t size) {
    DateParts d;
    const bool valid = setTicks(seconds, d);
    writeDate(valid, d, text, size);
}

// ---- units ----

void DateAdd(std::string_view unit, std::int32_t n, std::string_view text, char* result, std::int32_t size) {
    DateParts d;
    const Unit* const named = unitNamed(unit);
    const bool valid = named != nullptr && readDate(text, d) && add(*named, n, d);
    writeDate(valid, d, result, size);
}

std::int32_t DatePart(std::string_view unit, std::string_view text) {
    DateParts d;
    const Unit* const named = unitNamed(unit);
    return named != nullptr && readDate(text, d) ? d.*named->part / named->divisor : 0;
}

}  // namespace tarn
