// SPDX-License-Identifier: Apache-2.0
//
// The breakpoints of the running program, the lines that can have one, and what the environment and the program leave for
// each other in the settings file: the section "debug".
//
// Names of classes compare without regard to case and are kept upper-cased. A null table holds nothing and takes nothing.
#pragma once

#include "kernel/run/state.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t MaxBreakpoints = 200;
inline constexpr std::int32_t MaxCodeLine = 8000;
inline constexpr std::size_t MaxBreakpointsText = 1024;  // characters of the value `breakpoints`

struct BreakpointEntry {
    char className[MaxName + 1];
    std::int32_t line;
};

struct BreakpointTable {
    std::int32_t count;
    bool changed;
    BreakpointEntry entries[MaxBreakpoints];  // in order of arrival
};

std::int32_t BreakpointFind(const BreakpointTable* table, std::string_view className,
                            std::int32_t line);  // 0: none
// At the end of the table, or away from it; a full table takes none.
void BreakpointSet(BreakpointTable* table, std::string_view className, std::int32_t line, bool on);
bool BreakpointsChanged(const BreakpointTable* table);
void BreakpointsSetChanged(BreakpointTable* table, bool value);

// The value of `breakpoints`: those of the classes of the program, "class line line class line ", as many as 1024
// characters hold.
std::string BreakpointsText(const BreakpointTable* table, const ClassTable* classes);

// Whether the line is one of those that the class's symbols name; NextCodeLine gives the first one behind a line.
bool LineHasCode(std::string_view className, std::int32_t line);
std::int32_t NextCodeLine(std::string_view className, std::int32_t line);  // 0: none

struct DebugSettings {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
    std::int32_t traceMode = 0;
    bool singleStep = false;
};
// Empties the table and fills it from the file. An empty name of the file or the section gives nothing.
DebugSettings LoadDebugSettings(std::string_view file, std::string_view section, BreakpointTable* table);
// The numbers of a value like `_Position`; the rest is as at first. What is no number is 0.
DebugSettings ParseDebugPosition(std::string_view value);

}  // namespace tarn
