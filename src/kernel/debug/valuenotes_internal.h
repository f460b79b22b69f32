// SPDX-License-Identifier: Apache-2.0
//
// What the variables were when the program went on from its last stop, as fingerprints, so that the list can mark those
// that have changed since, whether they were looked at then or not.
//
// The values of the innermost call are noted always, those of its callers as long as they are not much: a stop is left at
// once, however large the program's values are. What was not noted has not changed. A class variable is noted once, however
// many calls see it.
//
// Of a value the first MaxValueText characters count, and so many of the elements of an array, list or table that is not
// expanded; of one that is expanded as many as the list can show.
#pragma once

#include "kernel/debug/valuedump_internal.h"
#include "kernel/run/state.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace tarn {

struct ValueNote {
    std::uint64_t type = 0, value = 0;  // the type with the length or the bounds
    std::int32_t firstElement = 0;
    std::vector<std::uint64_t> elements;
};

// What the variable is now. `text` grows by the characters that were looked at.
ValueNote NoteOf(const VariableEntry& entry, const HowShown& how, std::size_t& text);

bool IsOtherElement(const ValueNote& before, const ValueNote& now, std::int32_t element);

// Notes the variables of all calls. What stands in files is read; the error cell stays as it was.
void NoteCalls();
void ForgetCalls();
// Of a variable of the frame; null if it was not noted, or that was another function. Valid until the next NoteCalls.
const ValueNote* NotedValue(std::int32_t frame, const VariableEntry& entry);

}  // namespace tarn
