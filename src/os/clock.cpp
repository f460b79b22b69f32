// SPDX-License-Identifier: Apache-2.0
#include "os/clock.h"

#include <cerrno>
#include <ctime>

namespace tarn::os {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

std::int64_t read(clockid_t which) {
    timespec time{};
    ::clock_gettime(which, &time);
    return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

class RealClock : public Clock {
public:
    std::int64_t now() override { return read(CLOCK_REALTIME); }
    std::int64_t steady() override { return read(CLOCK_MONOTONIC); }

    CivilTime local(std::int64_t nanoseconds) override {
        std::time_t seconds = nanoseconds / nanosecondsPerSecond;
        std::int64_t rest = nanoseconds % nanosecondsPerSecond;
        if (rest < 0) {
            rest += nanosecondsPerSecond;
            --seconds;
        }
        ::tzset();  // localtime_r need not look whether the zone has changed
        std::tm time{};
        ::localtime_r(&seconds, &time);
        return {time.tm_year + 1900, time.tm_mon + 1, time.tm_mday,          time.tm_hour,
                time.tm_min,         time.tm_sec,     static_cast<int>(rest)};
    }

    void sleep(std::int64_t nanoseconds) override {
        if (nanoseconds <= 0) return;
        timespec left{nanoseconds / nanosecondsPerSecond, nanoseconds % nanosecondsPerSecond};
        while (::clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {}
    }
};

Clock* inForce = nullptr;  // null: the real one

}  // namespace

Clock& clock() {
    static RealClock real;
    return inForce != nullptr ? *inForce : real;
}

Clock* useClock(Clock* clock) {
    Clock* const before = inForce;
    inForce = clock;
    return before;
}

}  // namespace tarn::os
