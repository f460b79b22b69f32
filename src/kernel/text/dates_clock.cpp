// SPDX-License-Identifier: Apache-2.0
//
// Dates of the clock and of files. A moment is nanoseconds in a 64-bit word, so its year lies between 1677
// and 2262 and always has a text. File systems also hold times beyond these; the file layer brings them to
// the ends of the range, where they must not pass for times of those years.
#include "kernel/text/dates.h"

#include "os/clock.h"
#include "os/files.h"

#include <algorithm>
#include <limits>

namespace tarn {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

// False for the seconds at both ends of the range, which stand for all times beyond them.
bool isTold(std::int64_t moment) {
    constexpr std::int64_t margin = 3 * nanosecondsPerSecond;
    return moment > std::numeric_limits<std::int64_t>::min() + margin &&
           moment < std::numeric_limits<std::int64_t>::max() - margin;
}

void writeLocal(std::int64_t moment, char* text, std::int32_t size) {
    constexpr int nanosecondsPerTick = nanosecondsPerSecond / FixedOne;
    const os::CivilTime t = os::clock().local(moment);
    // Zones that count leap seconds have a second 60, which no date has.
    DateMake(t.year, t.month, t.day, t.hour, t.minute, std::min(t.second, 59),
             t.nanosecond / nanosecondsPerTick, text, size);
}

}  // namespace

void DateNow(char* text, std::int32_t size) {
    writeLocal(os::clock().now(), text, size);
}

void FileTimeText(std::string_view path, std::string& text) {
    char date[DateSize] = "";
    if (const os::FileInfo file = os::infoOf(os::native(path)); file.exists && isTold(file.modified))
        writeLocal(file.modified, date, DateSize);
    text = date;
}

}  // namespace tarn
