// SPDX-License-Identifier: Apache-2.0
//
// The debugger inside of the running program: it starts with debug mode 2, stops at lines, steps and errors, and does what
// its window is told. The windowing library runs the event loop of a stop (platform/operations/debugger.h); all other
// windows wait.
//
// A stop happens between two statements, on the program's one thread. What the engine itself runs does not stamp, so a
// stop never happens inside of another. The error cell is as it was behind everything but a stop for its error.
//
// Cost of a stamp without a stop: the class of a frame is looked up once for each frame, and a line is a bit of a map,
// however many breakpoints there are (see the benchmark). A stop fills the window's list once.
#pragma once

#include "platform/operations/debugger.h"

#include <cstdint>
#include <string_view>

namespace tarn {

// From here on debug mode 2 starts this debugger. A program calls it ahead of DebugStart.
void UseDebugger();
// What DebugEnd does with the debugger: settings are saved, and the window is gone. For a halt, which comes from anywhere.
// Nothing if there is none.
void EndDebugger();

// The commands of the window: its buttons in their order, then what only keys send.
enum DebugCommandNumber : int {
    DEBUG_HALT = 101,
    DEBUG_RUN,
    DEBUG_STEP_INTO,
    DEBUG_STEP_OVER,
    DEBUG_TOGGLE,
    DEBUG_STACK,
    DEBUG_VALUES,
    DEBUG_CODE,
    DEBUG_CLASSES,
    DEBUG_INFORMATION,
    DEBUG_HELP,
    DEBUG_STEP_OUT,   // runs until the function has returned
    DEBUG_RUN_TO,     // runs until the selected line, or the next one with code behind it, is reached
    DEBUG_WATCH,      // asks for an expression, and shows all that are watched
    DEBUG_NEXT_PAGE,  // of the selected array, list or table: PageElements elements alone
    DEBUG_PREVIOUS_PAGE,
    DEBUG_WHOLE,  // the selected value without limits, or again within them
};

inline constexpr std::string_view DebuggerTitle = "Integrated Debugger",
                                  InactiveDebuggerTitle = "Integrated Debugger [inactive]";

// What the window tells: the handler of StartDebug.
void OnDebugEvent(platform::DebugWindow& window, const platform::DebugEvent& event);

// What waits for the user at a stop; the operation of the platform unless a test has put another there. Gives the one
// before.
using DebugWait = void (*)(platform::DebugWindow& window);
DebugWait UseDebugWait(DebugWait wait);

}  // namespace tarn
