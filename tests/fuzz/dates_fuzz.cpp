// SPDX-License-Identifier: Apache-2.0
// Loose dates: any bytes give a canonical date, which reads as itself, or nothing. Its seconds and its parts give it
// back.
#include "kernel/text/dates.h"
#include "library/time/timeutil.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void takeApart(const std::string& date) {
    char text[tarn::DateSize];
    tarn::Fixed seconds = 0;
    tarn::DateToSeconds(date, seconds);
    tarn::DateFromSeconds(seconds, text, tarn::DateSize);
    require(date == text);
    tarn::DateParts p;
    tarn::DateSplit(date, p.year, p.month, p.day, p.hour, p.minute, p.second, p.fraction);
    require(tarn::DateValid(p.year, p.month, p.day, p.hour, p.minute, p.second, p.fraction));
    tarn::DateMake(p.year, p.month, p.day, p.hour, p.minute, p.second, p.fraction, text, tarn::DateSize);
    require(date == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::string date, again;
    bool ok = false;
    tarn::DateParse(text, date, ok);
    require(ok == (tarn::DatePart("D", date) != 0));
    if (ok) tarn::DateParse(date, again, ok);
    require(again == date);
    if (ok) takeApart(date);
    char sum[tarn::DateSize];
    tarn::DateAdd("M", static_cast<std::int32_t>(size), text, sum, tarn::DateSize);
    tarn::FORMATTIME(text, text);
    tarn::TIMEGETDAYNUMBER(tarn::TIMEMAKEFULLSTR(text));
    return 0;
}
