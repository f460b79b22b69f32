// SPDX-License-Identifier: Apache-2.0
//
// Reports of errors, beside what runtime.h has of them for modules: for handlers in C, and for the rooms
// above.
#pragma once

#include <string>

namespace tarn {

// Calls the rescue hook (SetRescueHook in runtime.h), once in the life of the process.
void RescueOnce();

// The frame of a handler of compiled code, which must not be lost in it: an error that arises while one works, in it
// or in what it calls, goes to the default handler, whatever class it is of. Begin is false then, and when a report
// goes on already; after true, end.
bool BeginHandler();
void EndHandler();

// Whether this process has shown an error to its user, in a box or on standard error. What a handler of the program
// took, or the debugger showed, does not count.
bool ErrorWasReported();
void NoteReportedError();  // allocates nothing

// The text cut to what a report holds, 1024 characters.
std::string CutReport(std::string text);

// The stop of the debugger, which a stamp calls while there is a debugger window; null until a debugger has
// put itself there, and a stamp then does as without a window. `force` stops in any case; without it the call
// returns at once unless a breakpoint or a step asks for a stop.
using DebuggerStop = void (*)(bool force);
extern DebuggerStop DebugStop;

}  // namespace tarn
