// SPDX-License-Identifier: Apache-2.0
//
// Start and stop of a process that runs on the kernel, beyond what every module needs (that is in runtime.h).
#pragma once

#include "kernel/run/runtime.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

struct ProcessOptions {
    bool memoryChecking = false;
    // One running copy of this executable for each user. The environment and built programs take the lock,
    // the compiler and the make tool do not.
    bool singleInstance = true;
};

// Takes the lock of the executable's name for at most a second (807 when another copy runs), runs the self
// tests (805) and keeps the command line. ProcessStart(bool) is this with the lock.
void ProcessStart(const ProcessOptions& options);

// The name of the lock: the executable's file name without folder and extension, the ASCII letters
// upper-cased.
std::string InstanceName();
// The same for any executable; a leading dot begins no extension.
std::string InstanceNameOf(std::string_view path);

// From here on a halt ends the process with code 1 if an error was reported (ErrorWasReported). Without it the code
// of a halt is 0.
void ExitStrictly();

// A halt has begun: what is thrown now is no stray exception.
bool ProcessIsEnding();

// The arguments of the program as one line, which can be split again; see os/text/arguments.h.
std::string JoinedArguments();
// The same as it was at ProcessStart; empty outside ProcessStart to ProcessStop.
std::string_view CommandLineText();

// Called by Halt, the newest first, each once, while the windows still exist.
void AddExitHook(void (*hook)());

// The tests of values (strings, numbers, sets, dates, a table) that each start runs; false when one failed.
// Takes microseconds and leaves the error cell as it was.
bool SelfTest();

}  // namespace tarn
