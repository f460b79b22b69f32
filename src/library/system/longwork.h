// SPDX-License-Identifier: Apache-2.0
//
// Work in this process that may take long: meanwhile the windows are drawn but take no input, and after a
// second the user sees how far it is and can stop it.
#pragma once

#include "kernel/run/progress.h"

#include <cstdint>
#include <string>

namespace tarn {

// Lives as long as the work. Reads and writes of data files report to it by themselves (progress.h); other
// work calls `go`. Work inside of other work is a part of that: it shows its own text, and one stop ends
// both.
class LongWork {
public:
    explicit LongWork(std::string text);  // what the user sees: "Reading 'a.csv'"
    ~LongWork();
    LongWork(const LongWork&) = delete;
    LongWork& operator=(const LongWork&) = delete;

    // False when the user has stopped the work. Costs next to nothing, except every 20 milliseconds, when the
    // events that wait are handled. `total` 0: it is not known how much there is to do.
    bool go(std::int64_t done = 0, std::int64_t total = 0);
    [[nodiscard]] bool stopped() const { return stopped_; }

private:
    void show(std::int64_t done, std::int64_t total);

    std::string text_, seen_;
    std::int64_t start_, pumped_;  // nanoseconds
    bool stopped_ = false;
    LongWork* outer_;
    ProgressHook hookBefore_;
};

}  // namespace tarn
