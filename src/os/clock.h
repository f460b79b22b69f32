// SPDX-License-Identifier: Apache-2.0
//
// The clock and the time zone, replaceable by tests.
#pragma once

#include <cstdint>

namespace tarn::os {

struct CivilTime {
    int year = 1970, month = 1, day = 1;  // month 1 to 12, day 1 to 31
    int hour = 0, minute = 0, second = 0, nanosecond = 0;
};

class Clock {
public:
    virtual ~Clock() = default;
    // Wall clock, nanoseconds since 1970-01-01 UTC.
    virtual std::int64_t now() = 0;
    // Never goes back; nanoseconds from an arbitrary start.
    virtual std::int64_t steady() = 0;
    // The local time of a moment given as nanoseconds since 1970-01-01 UTC.
    virtual CivilTime local(std::int64_t nanoseconds) = 0;
    // Lets that much time go by (a steered clock just advances).
    virtual void sleep(std::int64_t nanoseconds) = 0;
};

Clock& clock();
Clock* useClock(Clock* clock);  // returns the one before; null means the real one

}  // namespace tarn::os
