// SPDX-License-Identifier: Apache-2.0
//
// Which value a line of the debugger's list shows, and the list that is filled anew.
#pragma once

#include "kernel/debug/valuedump_internal.h"
#include "kernel/run/state.h"
#include "platform/operations/debugger.h"

#include <cstdint>

namespace tarn {

struct LineValue {
    const VariableEntry* variable = nullptr;  // null: the line belongs to no variable
    std::int32_t element = ShownLine::NoValue;
    [[nodiscard]] bool isValue() const { return element != ShownLine::NoValue; }
};
// By what ShowValues has last put into the list.
LineValue ValueOfLine(std::int32_t frame, int line);
bool ShownInHex();

// What the user has asked for.
HowShown HowItIsShown(const VariableEntry& entry);

// Of a recorded frame, by its function's name: another function at the same depth is another frame.
std::uint64_t FunctionOfFrame(std::int32_t frame);

// ShowValues, with the selection and the first seen line as they were.
void ShowValuesAgain(platform::DebugWindow& window, std::int32_t frame, bool hex);

}  // namespace tarn
