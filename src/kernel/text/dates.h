// SPDX-License-Identifier: Apache-2.0
//
// Dates and times. A date is a text of 24 characters, "YYYY-MM-DD hh:mm:ss.ffff", of the years 0001 to 9999
// of the proleptic Gregorian calendar. To calculate it is a fixed number of seconds since 1600-01-01
// 00:00:00.0000, negative before.
//
// What is no valid date gives an empty text, 0 or false; no operation sets an error. The buffers for texts
// have room for `size` bytes with the NUL; 25 are needed, and with fewer, or a null buffer, nothing is
// written.
//
// Cost: tens of nanoseconds, for DateParse up to some hundreds, and what the clock and the file system take
// for DateNow and FileTimeText. Nothing is allocated but the strings that DateParse and FileTimeText fill.
#pragma once

#include "kernel/text/fixed.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t DateLength = 24, DateSize = 25;

struct DateParts {
    std::int32_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, fraction = 0;
    bool operator==(const DateParts&) const = default;
};

bool IsLeapYear(std::int32_t year);
std::int32_t DaysInMonth(std::int32_t year, std::int32_t month);  // 0 for a month outside 1 to 12
bool DateValid(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour,
               std::int32_t minute, std::int32_t second, std::int32_t fraction);

// An invalid date gives "".
void DateMake(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour, std::int32_t minute,
              std::int32_t second, std::int32_t fraction, char* text, std::int32_t size);
// All 0 for a text that is not canonical and valid.
void DateSplit(std::string_view text, std::int32_t& year, std::int32_t& month, std::int32_t& day,
               std::int32_t& hour, std::int32_t& minute, std::int32_t& second, std::int32_t& fraction);

void DateToSeconds(std::string_view text, Fixed& seconds);           // 0 for no date
void DateFromSeconds(Fixed seconds, char* text, std::int32_t size);  // "" outside the years 1 to 9999

// `unit`, in any case: "YYYY"; "MM" "M"; "DD" "D"; "HH" "H"; "MI" "N"; "SS" "S"; "MS". Years and months clamp
// the day to the month's last; the others count in seconds. "" for a text of another length than 24 or that
// is no date, another unit, or a result outside the years 1 to 9999.
void DateAdd(std::string_view unit, std::int32_t n, std::string_view text, char* result, std::int32_t size);
// The number of a unit in a date ("MS": the fraction in milliseconds, truncated); 0 as above.
std::int32_t DatePart(std::string_view unit, std::string_view text);

// Reads a loose date in English ("31-Jan-2000 1:30 PM", "Friday March 3 2000"). The words may stand in any
// order that leaves one meaning; everything else is refused, because a wrong date is worse than none.
//
//   separators  blanks (and tabs), "-" and ",", in any number; some between each two words, and as many as
//               there are around the whole, but no "-" where it would be a sign: before the first word,
//               before and behind the time
//   year        four digits, once
//   month       the name of a month or its first three letters, in any case, once; or a number
//   day         a number of one or two digits, once. Without a month's name two numbers are needed, month and
//               day, and the year must stand before both: "1-2-2000" has two meanings
//   day name    or its first three letters, in any case, once, anywhere; what day it says does not matter
//   time        last, once or not at all, behind a blank at least: the hour of one or two digits, ":",
//   minutes
//               of two; ":", seconds of two; ".", decimals of which those behind the fourth are dropped
//   AM, PM      at the end of a time, in any case, blanks before it or not. PM adds 12 to hours below 12, AM
//               makes 12 into 0; other hours stay
//
// Numbers of three or of more than four digits, words that are no names and other characters make it no date,
// and so do a year, month, day, hour, minute or second that does not exist. `ok` is then false and `result`
// empty. `text` may be that of `result` itself.
void DateParse(std::string_view text, std::string& result, bool& ok);

// The local time of the clock; always 24 characters.
void DateNow(char* text, std::int32_t size);
// The local time of a file's last write; "" for a file that is not there, and for a time outside the range of
// the clock (1677-09-21 to 2262-04-11, UTC).
void FileTimeText(std::string_view path, std::string& text);

// The names, from 1 (January, Sunday); "" outside.
std::string_view MonthName(std::int32_t month);
std::string_view DayName(std::int32_t day);

}  // namespace tarn
