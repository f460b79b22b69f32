// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/stop.h"

#include "kernel/debug/engine_internal.h"
#include "kernel/debug/results.h"
#include "kernel/debug/showvalues.h"
#include "kernel/debug/stopnotice.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/report.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

DebugWait debugWait = platform::ActivateDebug;

}  // namespace

DebugWait UseDebugWait(DebugWait wait) {
    return std::exchange(debugWait, wait != nullptr ? wait : platform::ActivateDebug);
}

namespace debug {

namespace {

bool stepEnds() {
    return engine.stepFlag || (engine.stepDepth != 0 && FrameCount() <= engine.stepDepth);
}

// "File x, function y, line z"; empty without a frame.
std::string placeOf(const FrameRecord* top) {
    if (top == nullptr) return {};
    return std::string("File ") + top->className() + ", function " + top->functionName() + ", line " +
           std::to_string(tarn_current_line);
}

// Where so many calls are open that the place of the innermost one is none that the run-time tells: the debugger knows it.
std::string deepPlace() {
    if (FrameCount() <= MaxFrames) return {};
    const std::string place = placeOf(FrameAtDepth(FrameCount()));
    return place + (place.empty() ? "" : ", ") + std::to_string(FrameCount()) + " calls deep";
}

std::string statusText(const std::string& fault) {
    const std::int32_t code = ErrorCell();
    std::string text = placeOf(TopFrame());
    if (code != 0) {
        text = "Error " + std::to_string(code) + ", " + ErrorMessage(code) + (text.empty() ? "" : ", ") +
               text + "\n";
        if (code == ERR_ASSERT) text += AssertText() + "\n";
    }
    text += deepPlace();
    if (code != 0) return CutReport(std::move(text));
    if (!engine.result.empty() && FrameCount() < engine.outOf) {
        text += "\nResult of " + engine.result;
    } else if (!fault.empty()) {
        text += "\n" + fault;
    }
    return CutReport(std::move(text));
}

std::string sourceOf(std::string_view className) {
    if (classTable == nullptr) return {};
    for (std::int32_t i = 0; i < classTable->count; ++i)
        if (ascii::equal(classTable->entries[i].className, className))
            return classTable->entries[i].sourcePath;
    return {};
}

StopPlace noticedPlace() {
    const std::int32_t top = FrameCount();
    const std::string className = ClassOf(top);
    return {className, FunctionOf(top), sourceOf(className), LineOf(top), ErrorCell()};
}

// What was stepped out of is left, or the user goes another way from here.
void endStepOut() {
    if (FrameCount() <= engine.outOf) engine.outOf = 0;
    engine.result.clear();
}

void clearSteps() {
    if (engine.stepDepth != 0 && FrameCount() <= engine.stepDepth) engine.stepDepth = 0;
    engine.stepFlag = false;
    RunTo({}, 0);  // it is reached, or the user has something else to look at
}

void stop(DebugWindow& window, const std::string& fault) {
    engine.stopped = true;
    clearSteps();
    platform::SetDebugCaption(window, DebuggerTitle);
    platform::SetDebugStatus(window, statusText(fault));
    endStepOut();
    engine.frame = FrameCount();
    ShowCode(window, {}, tarn_current_line);
    NoteStopped(noticedPlace());
    debugWait(window);
    NoteValues();
    engine.stopped = false;
    if (engine.leaves) return CloseDebugger();
    platform::SetDebugCaption(window, InactiveDebuggerTitle);
    NoteRunning();
}

}  // namespace

void NoteResult() {
    if (engine.outOf == 0 || FrameCount() != engine.outOf) return;
    const ResultPlace place = ResultOf(engine.outOf);
    if (place.kind == 0) return;
    const ErrorCellAside aside;
    VariableEntry entry{};
    CopyName(entry.name, (CurrentFunctionName() + "()").c_str());
    entry.kind = place.kind;
    entry.address = place.address;
    engine.result = ascii::withoutLineEnd(DumpVariable(entry, ShowsIntegersInHex()));
}

void StopIfAsked(bool force) {
    const bool armed = IsArmedHere();
    if (!force && !armed && !engine.stepFlag && engine.stepDepth == 0) [[likely]]
        return;
    if (engine.window == nullptr || DebugMode() != 2 || engine.stopped) return;
    std::string fault;
    // Also where a step stops: the hit counts, and its text is written.
    const bool point = armed && StopsHere(fault);
    if (force || point || stepEnds()) stop(*engine.window, fault);
}

}  // namespace debug

}  // namespace tarn
