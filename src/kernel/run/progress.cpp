// SPDX-License-Identifier: Apache-2.0
#include "kernel/run/progress.h"

#include <utility>

namespace tarn {

namespace {

ProgressHook current = nullptr;

}  // namespace

ProgressHook UseProgress(ProgressHook hook) {
    return std::exchange(current, hook);
}

bool Progress(std::int64_t done, std::int64_t total) {
    return current == nullptr || current(done, total);
}

}  // namespace tarn
