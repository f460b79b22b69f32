// SPDX-License-Identifier: Apache-2.0
// Loose dates: any bytes give a canonical date, which reads as itself, or nothing.
#include "kernel/text/dates.h"
#include "library/time/timeutil.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::string date, again;
    bool ok = false;
    tarn::DateParse(text, date, ok);
    if (ok != (tarn::DatePart("D", date) != 0)) std::abort();
    if (ok) tarn::DateParse(date, again, ok);
    if (again != date) std::abort();
    char sum[tarn::DateSize];
    tarn::DateAdd("M", static_cast<std::int32_t>(size), text, sum, tarn::DateSize);
    tarn::FORMATTIME(text, text);
    tarn::TIMEGETDAYNUMBER(tarn::TIMEMAKEFULLSTR(text));
    return 0;
}
