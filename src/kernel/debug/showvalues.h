// SPDX-License-Identifier: Apache-2.0
//
// The values of a frame in the debugger's list: one line for each variable, or for each element of an expanded one.
//
//   count : Integer = 3
//   names : List (Length=2) = {"a", "b"}            collapsed
//   names : List (Length=2) =                       expanded
//      "a",
//      "b"
//
// A value of MaxShownValue characters or more is "{...too big...}"; an array of characters is cut behind
// MaxShownCharacters, with "..." behind them; what could not be read is "{...cannot be read...}". The whole list has at
// most MaxShownText characters: the elements that have no place are one line "  {...too big...}".
//
// Frames count from the bottom, from 1 to FrameCount(). The operations on a line are about what ShowValues has last put
// there, and do nothing for another line or frame.
//
// What stands in files is read, so that 653 and the other codes of files may be in the cell afterwards.
//
// Cost: linear in the text that is shown. NoteValues looks at the first MaxValueText characters of each value of the
// innermost call, and of its callers while they are not much; of what is expanded, at all that is shown.
#pragma once

#include "kernel/run/state.h"
#include "platform/operations/debugger.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::size_t MaxShownText = 1024000, MaxShownValue = 1024, MaxShownCharacters = 1020;
inline constexpr std::int32_t PageElements = 100;

// Fills the list with the variables of the frame, with a marker at each that can be expanded. `hex` shows integers in
// hexadecimal. Lines whose values were others when they were noted have DEBUG_CHANGED.
void ShowValues(platform::DebugWindow& window, std::int32_t frame, bool hex);

// The text of one variable, of one or more lines, each with its end, of at most `capacity` characters.
std::string DumpVariable(const VariableEntry& entry, bool hex, std::size_t capacity = MaxShownText);
// The same into a string of the language, whose descriptor `dest` is. 764 for a variable without a value, 756 for what
// is no string; nothing is changed then.
void DumpVariable(const VariableEntry& entry, bool hex, void* dest);

// A double click on a line: expands or collapses the variable whose name is its first word, if that is an array, list or
// table, and fills the list anew with the selection and the first seen line as they were; on the line that tells which
// elements are shown, goes on to the next ones. False if there is nothing to expand there, or the line has more than
// MaxShownValue characters.
bool ExpandValue(platform::DebugWindow& window, std::int32_t frame, int line, bool hex);

enum class ValuePage { Next, Previous };
// Shows, of the array, list or table of a line, PageElements elements alone, under a line that tells which: the first
// ones, then those behind or before. False, with nothing changed, if there are none. The value stays so until it is
// collapsed.
bool PageValue(platform::DebugWindow& window, std::int32_t frame, int line, ValuePage page, bool hex);

// Shows the value of a line whole, in as many lines as that takes, or again within the limits. False, with nothing changed,
// if it is within them anyway.
bool ShowWholeValue(platform::DebugWindow& window, std::int32_t frame, int line, bool hex);

// Changes the value that a line shows to what `text` says (valuetext.h). The empty text if that was done, else why not,
// in words for the user; the value is then as it was. The list is filled anew, with the selection and the first seen line
// as they were; the error cell stays as it was.
std::string ChangeValue(platform::DebugWindow& window, std::int32_t frame, int line, std::string_view text);

// The variable that a line shows, or which element of it, counted from 1: "x : Integer", "element 2 of names"; empty for a
// line without one.
std::string NameOfValue(std::int32_t frame, int line);

// The value that a line shows as ChangeValue takes it, without the limits but MaxShownText; empty for a line without one.
std::string WholeValue(std::int32_t frame, int line, bool hex);

// Remembers the values of all calls, shown or not, so that ShowValues marks those that have changed since: for the end of a
// stop. Of a value that is too big to be shown the first MaxValueText characters count. The error cell stays as it was.
void NoteValues();

// Forgets what is shown, noted and paged, for the end of debugging.
void ForgetShownValues();

}  // namespace tarn
