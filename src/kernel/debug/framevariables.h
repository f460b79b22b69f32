// SPDX-License-Identifier: Apache-2.0
//
// The variables of one frame in the debugger's table of variables.
#pragma once

#include "kernel/run/state.h"

#include <cstdint>
#include <string_view>

namespace tarn {

// Entries from `first` on; none for a frame that is not recorded, and without a table. Frames count from the bottom,
// from 1.
struct FrameVariables {
    VariableEntry* first = nullptr;
    std::int32_t count = 0;
    [[nodiscard]] VariableEntry* begin() const { return first; }
    [[nodiscard]] VariableEntry* end() const { return first + count; }
};
FrameVariables VariablesOf(std::int32_t frame);

// The first that has this name, in any case; null for none. Parameters and locals stand before class variables, so that
// they hide those as they do in the program.
VariableEntry* FindVariable(const FrameVariables& variables, std::string_view name);

}  // namespace tarn
