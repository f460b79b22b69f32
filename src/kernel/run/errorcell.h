// SPDX-License-Identifier: Apache-2.0
//
// Guards of the error cell, for work whose own errors must not be confused with one that is pending already.
// While either lives, what is found in the cell is the work's own. They differ in what is left at the end:
//
//     guard            an error was pending before     none was pending
//     ErrorCellAside   it is pending again             none is: the work's own errors are dropped
//     OwnErrors        it is pending again             what the work left, unless it was forgotten
//
// Cost: a load and two stores.
#pragma once

#include "kernel/run/runtime.h"

#include <cstdint>
#include <utility>

namespace tarn {

// The code of the pending error, which is pending no more; 0 for none.
inline std::int32_t TakeError() {
    return std::exchange(tarn_error_cell, 0);
}

// The cell is clear at first, and at the end as it was before.
class [[nodiscard]] ErrorCellAside {
public:
    ErrorCellAside() : before_(TakeError()) {}
    ~ErrorCellAside() { tarn_error_cell = before_; }
    ErrorCellAside(const ErrorCellAside&) = delete;
    ErrorCellAside& operator=(const ErrorCellAside&) = delete;

private:
    std::int32_t before_;
};

// The cell is clear at first; at the end it holds the earlier error, or what was left in it if there was
// none.
class [[nodiscard]] OwnErrors {
public:
    OwnErrors() : before_(TakeError()) {}
    ~OwnErrors() {
        if (before_ != 0) tarn_error_cell = before_;
    }
    OwnErrors(const OwnErrors&) = delete;
    OwnErrors& operator=(const OwnErrors&) = delete;

    [[nodiscard]] static std::int32_t code() { return tarn_error_cell; }
    // Drops what the work has set until now.
    static void forget() { tarn_error_cell = 0; }

private:
    std::int32_t before_;
};

}  // namespace tarn
