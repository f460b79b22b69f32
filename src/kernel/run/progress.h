// SPDX-License-Identifier: Apache-2.0
//
// Long reads and writes tell how far they are, so that a window can show it and pump its events, and the user
// can stop them.
#pragma once

#include <cstdint>

namespace tarn {

// Bytes done of a total; false stops the work. Called about every `ProgressStep` bytes.
using ProgressHook = bool (*)(std::int64_t done, std::int64_t total);
inline constexpr std::int64_t ProgressStep = 1 << 20;

ProgressHook UseProgress(ProgressHook hook);  // null: none; gives the one before
// True to go on.
bool Progress(std::int64_t done, std::int64_t total);

}  // namespace tarn
