// SPDX-License-Identifier: Apache-2.0
//
// What the parts of the debugger share: its state, and what each part does for the others.
#pragma once

#include "kernel/debug/breakpoints.h"
#include "kernel/debug/debugsettings.h"
#include "kernel/debug/engine.h"
#include "kernel/run/state.h"

#include "platform/windowing.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::debug {

using platform::DebugEvent;
using platform::DebugWindow;

enum class ListMode : char {
    None = ' ',
    Code = 'C',
    Stack = 'S',
    Classes = 'F',
    Information = 'I',
    Values = 'W',
    Watches = 'E'
};

struct Engine {
    DebugWindow* window = nullptr;  // null: none of the rest counts
    BreakpointTable* breakpoints = nullptr;
    std::string settingsFile;  // empty: none is known
    std::string product;

    bool stepFlag = false;       // stop at the next stamp
    std::int32_t stepDepth = 0;  // not 0: stop as soon as the frame count is at or below it
    std::int32_t outOf = 0;      // the frame that is stepped out of; 0: none
    std::string result;          // of the function that was stepped out of last; empty: it is not known
    bool leaves = false;         // the user has closed the window: the program goes on without a debugger
    bool stopped = false;

    ListMode mode = ListMode::None;
    std::string shownClass;
    std::int32_t highlighted = 0;  // the line that is marked as the current one; 0: none
    std::int32_t frame = 0;        // the one chosen in the call stack, else the top one; 0: there is none
    std::vector<std::int32_t> stackFrames;  // by the lines of the call stack; 0: the line is none
    std::vector<std::string> leftOut;       // classes that found no room in the table of classes

    std::vector<DebugRule> rules;
    bool rulesChanged = false;
    std::vector<CodeRange> stopCodes;
    std::vector<std::string> watches;
    bool watchesChanged = false;
};
extern Engine engine;

// ---- frames, from 1 to FrameCount(): nothing of one that is not recorded ----

std::int32_t LineOf(std::int32_t frame);
std::string ClassOf(std::int32_t frame);
std::string FunctionOf(std::int32_t frame);

// ---- engine.cpp ----

// Saves, closes the window and forgets everything but the tables of the run-time.
void CloseDebugger();

// ---- stop.cpp ----

// Remembers the result of the function that is stepped out of, when that ends.
void NoteResult();

// ---- points.cpp: the lines that need a look ----

// Makes the map anew after any change of breakpoints or rules.
void ArmPoints();
void DropPoints();
// Whether the current line of the top frame needs a look. Cost: some nanoseconds.
bool IsArmedHere();
// The look: counts the hit, writes what is to be written, and tells whether to stop. `fault` is why the line's condition
// could not be read, if so.
bool StopsHere(std::string& fault);
bool IsLeftOut(std::string_view className);  // of the table of classes: breakpoints there do nothing
// Stops at the line once, whether it has a breakpoint or not; an empty class takes that back.
void RunTo(std::string_view className, std::int32_t line);
// The class's lines are known now: a line to run to that has no code becomes the next one that has.
void SettleRunTo(std::string_view className);

// ---- the lists ----

// The source of the class, with its breakpoints marked and the line selected. An empty class is the top frame's.
void ShowCode(DebugWindow& window, std::string_view className, std::int32_t line);
std::string LoadSource(std::string_view className);
int LineFlags(std::string_view className, std::int32_t line);  // those of its breakpoint

void ShowStack(DebugWindow& window);
std::int32_t FrameOfStackLine(int line);  // 0: none
void ShowClasses(DebugWindow& window);
void ShowInformation(DebugWindow& window);
void ShowFrameValues(DebugWindow& window);
void ShowWatches(DebugWindow& window);
// Fills the list with the text, in a mode that marks no line.
void FillList(DebugWindow& window, ListMode mode, const std::string& text);

// ---- what the user does ----

void Leave(DebugWindow& window);  // the stop
void ToggleBreakpoint(DebugWindow& window);
void RunToSelected(DebugWindow& window);
void EditRule(DebugWindow& window, int line);
void AskWatch(DebugWindow& window);
void EditWatch(DebugWindow& window, int line);
void RemoveWatch(DebugWindow& window, int line);
// The value of the name that ends where `source` ends, the beginning of that line of the shown class: of a variable of the
// chosen frame, or a constant. Empty if there is none.
std::string TipFor(std::string_view source, std::int32_t line);
void HelpOnError();
void ShowHelp(const std::string& topic);
void Beep();
// The caption of the button pressed.
std::string Ask(const std::string& text, const std::string& buttons);
bool ShowsIntegersInHex();

}  // namespace tarn::debug
