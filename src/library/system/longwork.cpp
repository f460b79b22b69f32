// SPDX-License-Identifier: Apache-2.0
#include "library/system/longwork.h"

#include "kernel/windows/windowing.h"
#include "os/clock.h"

#include <utility>

namespace tarn {
namespace {

constexpr std::int64_t Millisecond = 1'000'000;  // nanoseconds
constexpr std::int64_t Slice = 20 * Millisecond, Patience = 1000 * Millisecond;

LongWork* innermost = nullptr;

bool report(std::int64_t done, std::int64_t total) {
    return innermost == nullptr || innermost->go(done, total);
}

}  // namespace

LongWork::LongWork(std::string text)
    : text_(std::move(text)), start_(os::clock().steady()), pumped_(start_),
      outer_(std::exchange(innermost, this)), hookBefore_(UseProgress(report)) {
    if (outer_ == nullptr) {
        SetBusy(true);
        return;
    }
    start_ = outer_->start_;
    pumped_ = outer_->pumped_;
    stopped_ = outer_->stopped_;
    seen_ = outer_->seen_;
}

LongWork::~LongWork() {
    UseProgress(hookBefore_);
    innermost = outer_;
    if (outer_ != nullptr) {
        outer_->stopped_ = stopped_;
        outer_->seen_ = seen_;
        return;
    }
    if (!seen_.empty()) ShowToolProgress({});
    SetBusy(false);
}

void LongWork::show(std::int64_t done, std::int64_t total) {
    std::string text = text_;
    if (total > 0) text += " (" + std::to_string(done * 100 / total) + " %)";
    if (text == seen_) return;
    ShowToolProgress(text);
    seen_ = text;
}

bool LongWork::go(std::int64_t done, std::int64_t total) {
    const std::int64_t now = os::clock().steady();
    if (stopped_ || now - pumped_ < Slice) return !stopped_;
    if (now - start_ >= Patience) show(done, total);
    WaitEvents(0, false);
    stopped_ = !seen_.empty() && ToolStopPressed();
    pumped_ = os::clock().steady();
    return !stopped_;
}

}  // namespace tarn
