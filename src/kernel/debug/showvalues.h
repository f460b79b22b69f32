// SPDX-License-Identifier: Apache-2.0
//
// The values of a frame in the debugger's list: one line for each variable, or for each element of an expanded one.
#pragma once

#include "kernel/run/state.h"
#include "platform/operations/debugger.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Fills the list with the variables of the frame (1 is the bottom, FrameCount() the top), with a marker at each that can
// be expanded. `hex` shows integers also in hexadecimal.
void ShowValues(platform::DebugWindow& window, std::int32_t frame, bool hex);

// The text of one variable, of one or more lines, each with its end.
std::string DumpVariable(const VariableEntry& entry, bool hex);

// A double click on a line: expands or collapses what it shows, if that is an array, list or table, and fills the list
// anew with the selection and the first seen line as they were. False if there is nothing to expand there.
bool ExpandValue(platform::DebugWindow& window, std::int32_t frame, int line, bool hex);

// Changes the value that a line shows to what `text` says. The empty text if that was done, else why not, in words for
// the user; the value is then as it was.
std::string ChangeValue(platform::DebugWindow& window, std::int32_t frame, int line, std::string_view text);

// Remembers the values that are shown, so that the next ShowValues marks those that have changed since.
void NoteShownValues();

}  // namespace tarn
