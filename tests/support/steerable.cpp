// SPDX-License-Identifier: Apache-2.0
//
// The clock that is set, programs that are played, and how twins are put in force.
#include "support/steerable.h"

#include <algorithm>

namespace tarn::os {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t secondsPerDay = 86'400;

// Days since 1970-01-01 and back, in the Gregorian calendar. Years begin in March here, so that the leap day
// is last.
std::int64_t daysOf(int year, int month, int day) {
    const std::int64_t y = month <= 2 ? year - 1 : year;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yearOfEra = y - era * 400;
    const std::int64_t dayOfYear = (153 * ((month + 9) % 12) + 2) / 5 + day - 1;
    return era * 146'097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719'468;
}

void setDay(std::int64_t days, CivilTime& time) {
    time.year = static_cast<int>(1970 + (days >= 0 ? days : days - 365) / 366) - 1;
    while (daysOf(time.year + 1, 1, 1) <= days) ++time.year;
    time.month = 12;
    while (daysOf(time.year, time.month, 1) > days) --time.month;
    time.day = static_cast<int>(days - daysOf(time.year, time.month, 1)) + 1;
}

std::int64_t floorOf(std::int64_t value, std::int64_t unit) {
    return value / unit - (value % unit < 0 ? 1 : 0);
}

}  // namespace

CivilTime SteeredClock::local(std::int64_t nanoseconds) {
    const std::int64_t seconds = floorOf(nanoseconds, nanosecondsPerSecond) + offset_;
    const std::int64_t day = floorOf(seconds, secondsPerDay);
    const int second = static_cast<int>(seconds - day * secondsPerDay);
    CivilTime time;
    setDay(day, time);
    time.hour = second / 3600;
    time.minute = second / 60 % 60;
    time.second = second % 60;
    time.nanosecond =
        static_cast<int>(nanoseconds - floorOf(nanoseconds, nanosecondsPerSecond) * nanosecondsPerSecond);
    return time;
}

void SteeredClock::setLocal(const CivilTime& time) {
    const std::int64_t seconds = daysOf(time.year, time.month, time.day) * secondsPerDay + time.hour * 3600 +
                                 time.minute * 60 + time.second - offset_;
    now_ = seconds * nanosecondsPerSecond + time.nanosecond;
}

void SteeredClock::advance(std::int64_t nanoseconds) {
    if (nanoseconds <= 0) return;
    now_ += nanoseconds;
    steady_ += nanoseconds;
}

namespace {

class PlayedChild : public Child {
public:
    PlayedChild(const Played& played, int id)
        : played_(played), id_(id), end_(clock().steady() + played.lasts) {}

    ExitState poll() override {
        if (!state_.ended && !played_.hangs && clock().steady() >= end_) end(played_.code, played_.signal);
        return state_;
    }

    ExitState wait(int milliseconds) override {
        constexpr std::int64_t nanosecondsPerMillisecond = 1'000'000;
        if (poll().ended) return state_;
        const std::int64_t most = milliseconds * nanosecondsPerMillisecond;
        clock().sleep(played_.hangs ? most : std::min(most, end_ - clock().steady()));
        return poll();
    }

    void stop(int graceMilliseconds) override {
        constexpr int asked = 15, forced = 9;
        if (poll().ended) return;
        if (played_.deaf) wait(graceMilliseconds);
        if (!state_.ended) end(0, played_.deaf ? forced : asked);
    }

    [[nodiscard]] int id() const override { return id_; }

private:
    void end(int code, int signal) { state_ = {true, code, signal}; }

    Played played_;
    int id_;
    std::int64_t end_;
    ExitState state_;
};

}  // namespace

std::unique_ptr<Child> SteeredProcesses::start(const StartRequest& request, StartError& error) {
    started_.push_back(request);
    const Played played = program_ ? program_(request) : Played{};
    error = played.error;
    if (error != StartError::None) return nullptr;
    constexpr int firstId = 1000;
    return std::make_unique<PlayedChild>(played, firstId + static_cast<int>(started_.size()));
}

Steered::~Steered() {
    switch (kind_) {
    case Kind::Files: useFiles(files_); break;
    case Kind::Clock: useClock(clock_); break;
    case Kind::Processes: useProcesses(processes_); break;
    }
}

}  // namespace tarn::os
