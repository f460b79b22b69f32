// SPDX-License-Identifier: Apache-2.0
//
// What an operation left in the error cell. It is clear then, and so is the last error, so that the next
// operation of a test starts from nothing.
#pragma once

#include "kernel/run/runtime.h"

#include <cstdint>

namespace tarn {

inline std::int32_t takeError() {
    const std::int32_t code = ErrorCell();
    ClearError();
    return code;
}

}  // namespace tarn
