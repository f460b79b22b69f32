// SPDX-License-Identifier: Apache-2.0
//
// Where the functions that run make their results. Compiled code of debug level 2 tells it behind its variables; the
// debugger shows the result of a function that is stepped out of. It is whole when the function's last stamp (line 0) has
// come, and may be gone when the frame is. Cost: constant.
#pragma once

#include "kernel/run/state.h"

#include <cstdint>

namespace tarn {

struct ResultPlace {
    std::int32_t kind = 0;  // 0: the function has none, or does not tell
    void* address = nullptr;
};

void RegisterResult(std::int32_t kind, void* address);  // of the top frame
ResultPlace ResultOf(std::int32_t frame);               // 1 is the bottom

}  // namespace tarn
