// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/framevariables.h"

#include "os/text/ascii.h"

#include <algorithm>

namespace tarn {

FrameVariables VariablesOf(std::int32_t frame) {
    if (frameStack == nullptr || variableTable == nullptr) return {};
    const std::int32_t recorded = std::min(frameStack->count, MaxFrames);
    if (frame < 1 || frame > recorded) return {};
    const std::int32_t first = frameStack->frames[frame - 1].firstVariable;
    const std::int32_t behind =
        frame < recorded ? frameStack->frames[frame].firstVariable : variableTable->count + 1;
    if (first < 1 || behind <= first) return {};
    return {&variableTable->entries[first - 1], behind - first};
}

VariableEntry* FindVariable(const FrameVariables& variables, std::string_view name) {
    VariableEntry* const found =
        std::find_if(variables.begin(), variables.end(),
                     [name](const VariableEntry& entry) { return ascii::equal(entry.name, name); });
    return found != variables.end() ? found : nullptr;
}

}  // namespace tarn
