// SPDX-License-Identifier: Apache-2.0
#include "platform/model/debugger/userbreak.h"

#include "platform/model/debugger/debugwindow.h"
#include "platform/operations/system.h"

#include <atomic>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <utility>

namespace tarn::platform {

namespace {

constexpr std::int64_t patience = 50'000'000;  // nanoseconds without an event loop
constexpr unsigned askedMask = 3;              // the clock is read each time that these bits are all 0

std::atomic<int> word{0};
static_assert(std::atomic<int>::is_always_lock_free);  // a signal handler sets it
bool watched = false;
unsigned asked = 0;
std::int64_t heard = 0;
struct sigaction former {};

// Some milliseconds coarse, and four times as fast as the fine one.
std::int64_t coarseTime() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

void onBreak(int) {
    word.store(1, std::memory_order_relaxed);
}

void lookForUser() {
    if ((++asked & askedMask) != 0) return;
    const std::int64_t now = coarseTime();
    if (now - heard < patience || programRests()) return;
    view().debugPump();
    heard = coarseTime();
}

}  // namespace

void watchUserBreak(bool on) {
    if (on == std::exchange(watched, on)) return;
    struct sigaction action {};
    action.sa_handler = onBreak;
    action.sa_flags = SA_RESTART;
    if (on)
        ::sigaction(DebugBreakSignal, &action, &former);
    else
        ::sigaction(DebugBreakSignal, &former, nullptr);
    heard = coarseTime();
}

void noteUserHeard() {
    if (watched) heard = coarseTime();
}

int userBreakWord() {
    return word.load(std::memory_order_relaxed);
}

int GetUserBreak() {
    if (watched) lookForUser();
    return userBreakWord();
}
void SetUserBreak(int value) {
    word.store(value, std::memory_order_relaxed);
}

}  // namespace tarn::platform
