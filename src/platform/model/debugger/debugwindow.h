// SPDX-License-Identifier: Apache-2.0
//
// The debugger's window as the model knows it, for views and for whoever plays the user; the operations on it stand in
// operations/debugger.h. A view reads it, writes `place` and `top`, and reports what the user does by `userDebug`.
#pragma once

#include "platform/model/debugger/debuglines.h"
#include "platform/model/view.h"

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarn::platform {

// A command as users know it: the word at the terminal, the title of its button, its keys. `number` is what the handler
// gets.
struct DebugCommand {
    int number;
    const char *word, *title, *keys;
};
enum : int { DEBUG_STOP = 101, DEBUG_BREAKPOINT_COMMAND = 105 };
inline constexpr std::array<DebugCommand, 17> debugCommands{{
    {DEBUG_STOP, "stop", "Stop the program", "Ctrl+F2"},
    {102, "run", "Run", "F9"},
    {103, "into", "Step into calls", "F7"},
    {104, "step", "Step over calls", "F8"},
    {DEBUG_BREAKPOINT_COMMAND, "break", "Breakpoint at the selected line", "F5"},
    {106, "stack", "Call stack", "Ctrl+1"},
    {107, "values", "Values", "Ctrl+2"},
    {108, "code", "Code at the current line", "Ctrl+3"},
    {109, "classes", "Classes", "Ctrl+4"},
    {110, "info", "Information", "Ctrl+5"},
    {111, "help", "Help on the error", "Ctrl+F1"},
    {112, "out", "Step out of the function", "Shift+F8"},
    {113, "until", "Run to the selected line", "F4"},
    {114, "watch", "Watch an expression", "Ctrl+F7"},
    {115, "next", "Next hundred elements of the selected value", "Ctrl+PgDown"},
    {116, "previous", "Hundred elements before", "Ctrl+PgUp"},
    {117, "whole", "The selected value whole", "Shift+F2"},
}};
const DebugCommand* debugCommand(int number);  // null if there is none

namespace types {

class DebugWindow : public std::enable_shared_from_this<DebugWindow> {
public:
    std::string caption, status, tip, icon;
    std::vector<std::string> pictures;  // of the buttons 101 and up; an empty one is a gap
    DebugHandler handler;
    DebugPlace wanted, beside;  // where it shall open
    DebugPlace place;           // where it stands
    DebugLines lines;
    int selected = 0, top = 1;
    bool scrolls = false;  // the selected line is to be seen
    bool extent = false;   // the longest line can be reached
    bool numbers = false;
    bool stopped = false;          // inside ActivateDebug
    bool left = false;             // the handler has left the stop
    bool handling = false;         // the handler runs
    std::deque<DebugEvent> early;  // of the next stop, typed before it
};

}  // namespace types

DebugWindow* debugWindow();  // null if there is none

// What the user did. The handler hears of it while the program is stopped, and of DEBUG_STOP always; the window may be
// gone afterwards. What can be typed - commands, help, and an edit or a double click with the line 0, which is the one that
// is selected when the handler hears of it - belongs to the next stop if it comes before that: no key is lost between stops.
void userDebug(DebugWindow& window, const DebugEvent& event);
bool hearsDebug(const DebugWindow& window);  // whether the handler hears at once
// The user works in the program's own windows: what was typed before was not meant for a stop that comes of that.
void forgetTyped(DebugWindow& window);
// Breaks into the program. What was typed for the next stop is forgotten: the user wants to see where it stands.
void userDebugBreak(DebugWindow& window);
// The window's close button: while the program runs, it is broken into.
void userDebugClose(DebugWindow& window);

// While one of these lives, no function of a window runs: timers and posted events rest, a window hears later that its
// size has changed, and nothing the user does has an effect on the program's windows.
class ProgramRest {
public:
    ProgramRest();
    ~ProgramRest();
    ProgramRest(const ProgramRest&) = delete;
    ProgramRest& operator=(const ProgramRest&) = delete;
};
bool programRests();
// The event did not reach its window because the program rests; a change of size is posted when it goes on.
void noteRested(const Object& window, int event);

// Plays the user at each stop under a headless view: called once, and the stop ends behind it; null: nobody does, and the
// terminal takes the part of the window. Returns the one before.
using HeadlessDebugger = std::function<void(DebugWindow& window)>;
HeadlessDebugger setHeadlessDebugger(HeadlessDebugger debugger);

}  // namespace tarn::platform
