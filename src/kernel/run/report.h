// SPDX-License-Identifier: Apache-2.0
//
// The boxes by which the kernel reports errors, as seams: tests put functions of their own there. Modules
// need none of this.
#pragma once

#include <cstdint>
#include <string>

namespace tarn {

// What the kernel itself needs of the desktop. By default the operations of the platform.
struct Desktop {
    void (*sound)();  // the beep
    // A box; gives the caption of the button pressed.
    std::string (*box)(const std::string& title, const std::string& text, const std::string& buttons);
    void (*setTrace)(int mode);  // is told of every change of the trace mode
    void (*close)();             // for the halt: stops sounds and destroys all windows
};
Desktop UseDesktop(const Desktop& desktop);  // returns the one before
const Desktop& TheDesktop();

// Shows the box of last resort and waits until it is closed. It runs after hardware faults too, so a function
// here must not allocate. By default the text goes to standard error and, where there is a screen, to the
// program tarnwick-fatal.
using FatalBox = void (*)(const char* title, const char* text);
FatalBox SetFatalBox(FatalBox box);  // returns the one before; null means the default
void ShowFatalBox(const char* title, const char* text);
// Finds out where tarnwick-fatal stands, while this can still be asked safely.
void LocateFatalProgram();

// Builds title and text of a fatal report and shows them. Never allocates. Null texts count as empty.
void ReportFatal(std::int32_t code, const char* message, const char* file, const char* function,
                 std::int32_t line, const char* extra);
// The same with the class, function and line that run now.
void ReportFatalHere(std::int32_t code);

// Calls the rescue hook, once in the life of the process.
void RescueOnce();
bool ProcessIsEnding();  // a halt has begun: what is thrown now is no stray exception

// The `reporting` mark for callers that cannot hold a Reporting.
bool BeginReport();
void EndReport();

// The text cut to what a report holds, 1024 characters.
std::string CutReport(std::string text);

// The stop of the debugger, which a stamp calls while there is a debugger window; null until a debugger has
// put itself there, and a stamp then does as without a window. `force` stops in any case; without it the call
// returns at once unless a breakpoint or a step asks for a stop.
using DebuggerStop = void (*)(bool force);
extern DebuggerStop DebugStop;

}  // namespace tarn
