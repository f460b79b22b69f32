// SPDX-License-Identifier: Apache-2.0
#include "kernel/start/process.h"

#include "kernel/run/desktop.h"
#include "kernel/run/errors.h"
#include "kernel/run/fatal.h"
#include "kernel/run/report.h"
#include "kernel/start/protect.h"
#include "kernel/values/heap.h"
#include "kernel/values/strings.h"
#include "os/instance.h"
#include "os/paths.h"
#include "os/process.h"
#include "os/text/arguments.h"
#include "os/text/ascii.h"

#include <cstdlib>
#include <sys/utsname.h>
#include <utility>
#include <vector>

namespace tarn {

namespace {

constexpr int lockMilliseconds = 1000;

bool lockHeld = false;
bool ending = false;
bool strict = false;
StringDescriptor commandLine;  // all zero until ProcessStart

std::vector<void (*)()>& exitHooks() {
    static std::vector<void (*)()> hooks;
    return hooks;
}

// A system below version 4 lacks calls that the layers below use. One that does not say its version may have
// them.
bool systemTooOld() {
    utsname name{};
    if (uname(&name) != 0 || !ascii::isDigit(name.release[0])) return false;
    return std::atoi(name.release) < 4;
}

void keepCommandLine() {
    StringFree(&commandLine);
    StringInit(&commandLine, UNBOUNDED);
    StringAssignView(&commandLine, JoinedArguments());
}

void takeLock() {
    lockHeld = os::acquireInstanceLock(InstanceName(), lockMilliseconds) == os::LockState::Acquired;
    if (!lockHeld) SetError(ERR_ALREADY_RUNNING);
}

void runExitHooks() {
    while (!exitHooks().empty()) {
        const auto hook = exitHooks().back();
        exitHooks().pop_back();
        hook();
    }
}

// What is left in the heap, as the end of the report about it.
std::string leakText(const Leaks& leaks) {
    return "\n(" + std::to_string(leaks.bytes) + " byte(s) in " + std::to_string(leaks.blocks) + " block(s))";
}

}  // namespace

std::string InstanceName() {
    return InstanceNameOf(os::executablePath());
}

// A name that begins with its only dot has no extension: an empty lock name would be that of all such
// programs.
std::string InstanceNameOf(std::string_view path) {
    const std::string_view stem = paths::stem(path);
    return ascii::uppered(stem.empty() ? paths::fileName(path) : stem);
}

std::string JoinedArguments() {
    return os::joinedArguments(os::commandLine());
}

void ProcessStart(bool memoryChecking) {
    ProcessStart(ProcessOptions{memoryChecking, true});
}

void ProcessStart(const ProcessOptions& options) {
    ending = false;
    SetMemoryChecking(options.memoryChecking);
    if (options.singleInstance) takeLock();
    if (os::debuggerAttached()) os::debugOutput("Hello debugger from " + os::executablePath() + "\n");
    if (!SelfTest() || systemTooOld()) SetError(ERR_CANNOT_INITIALIZE);
    keepCommandLine();
}

std::string_view CommandLineText() {
    return commandLine.tag == TagString ? StringView(&commandLine) : std::string_view();
}

void ProcessStop() {
    StringFree(&commandLine);
    Leaks leaks;
    if (MemoryChecking()) leaks = CountLeaks();
    if (leaks.bytes != 0) SetError(ERR_MEMORY_LEAK);
    if (const std::int32_t code = ErrorCell(); code != 0) {
        LocateFatalProgram();
        RescueOnce();
        const std::string extra = code == ERR_MEMORY_LEAK ? leakText(leaks) : std::string();
        ReportFatal(code, ErrorText(code), "", "", 0, extra.c_str());
    }
    Halt();
}

void AddExitHook(void (*hook)()) {
    exitHooks().push_back(hook);
}

void ExitStrictly() {
    strict = true;
}

bool ProcessIsEnding() {
    return ending;
}

void Halt() {
    ending = true;
    runExitHooks();
    if (std::exchange(lockHeld, false)) os::releaseInstanceLock();
    TheDesktop().close();
    os::endProcess(strict && ErrorWasReported() ? 1 : 0);
}

}  // namespace tarn
