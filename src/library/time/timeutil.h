// SPDX-License-Identifier: Apache-2.0
//
// Dates for programs: pieces of canonical texts, day numbers and differences. Dates and their texts are those
// of kernel/text/dates.h. What is no date gives "", 0 or false, without an error.
#pragma once

#include "kernel/text/fixed.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// The day of a date by a pattern: "YYYY", "MM" and "DD", in capitals ("hh:mm" stays), are replaced by the
// first four characters of the date and the two pairs behind them, by position; everything else stays.
// Without a pattern "YYYY-MM-DD". "" for a text of less than 10 characters.
std::string FORMATTIME(std::string_view text, std::string_view pattern = "YYYY-MM-DD");
bool ISGREGORIANLEAPYEAR(std::int32_t year);
bool ISDATEVALID(std::int32_t year, std::int32_t month, std::int32_t day);
// True when the first four characters, and the two pairs behind one character each, are the digits of a date
// of which the day exists.
bool ISDATESTRVALID(std::string_view text);
// A date that ends early gets the tail of "0000-01-01 00:00:00.0000"; a longer text stays as it is.
std::string TIMEMAKEFULLSTR(std::string_view text);
// Days since 1600-01-01, which is day 0; and back, at midnight. Of the text only the day is read, as by
// ISDATESTRVALID; what is no date is 0 too, so ask that first where it matters.
std::int32_t TIMEGETDAYNUMBER(std::string_view text);
std::string TIMEDAYNUMBERTOSTR(std::int32_t n);  // "" outside the years 1 to 9999
// a - b in seconds, by DateToSeconds: a text that is no date counts as 1600-01-01 (ISDATESTRVALID tells them
// apart by their days).
Fixed TIMEDIFFERENCE(std::string_view a, std::string_view b);

}  // namespace tarn
