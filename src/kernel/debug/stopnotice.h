// SPDX-License-Identifier: Apache-2.0
//
// What a program under the debugger tells others of its user: whether it runs or is stopped, and where. The environment
// shows that place in the Code window. The two never wait for each other: the program leaves a note named after its process
// (os/runtimenotes.h) at each stop and behind it, and whoever is interested looks there.
//
// The program's calls never fail and leave the error cell alone; a note that could not be written is not there. Those of a
// process that has died without DebugEnd are removed by the next program under the debugger, or by the environment that
// started it. Cost: some five system calls each.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct StopPlace {
    std::string className, functionName;
    std::string sourcePath;  // of the class table; empty where that does not know the class
    std::int32_t line = 0;   // 0: no frame is recorded there
    std::int32_t error = 0;  // the code that is pending; 0: none
    friend bool operator==(const StopPlace&, const StopPlace&) = default;
};

// ---- the program ----

// The debugger's window is there and the program runs: at the end of DebugStart, and each time a stop is left.
// `mainSource` is remembered from the first call; later ones may leave it empty.
void NoteRunning(std::string_view mainSource = {});
void NoteStopped(const StopPlace& place);  // before ActivateDebug
void EndStopNotice();                      // at DebugEnd; nothing if there is no note

// ---- whoever looks ----

enum class DebugState { None, Running, Stopped };

struct StopNotice {
    DebugState state = DebugState::None;  // None: the process is not under the debugger
    std::int32_t stop = 0;                // how many stops there were, with this one
    std::string mainSource;
    StopPlace place;  // of the last stop
    friend bool operator==(const StopNotice&, const StopNotice&) = default;
};

StopNotice ReadStopNotice(int process);
std::vector<int> DebuggedProcesses();  // those of this user that live, in no order
// Stops a program under the debugger at its next line; false, and nothing is done, if that process is none.
bool BreakInto(int process);
// Of a process that has ended. The note of a process that lives is its own.
void DropStopNotice(int process);

}  // namespace tarn
