// SPDX-License-Identifier: Apache-2.0
//
// What a stamp does with a pending error: the report's text, the default handler, Continue and Halt.
#include "kernel/run/report.h"

#include "kernel/run/debughooks.h"
#include "kernel/run/desktop.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/run/state.h"
#include "platform/windowing.h"

#include <utility>

namespace tarn {

DebuggerStop DebugStop = nullptr;

namespace {

RescueHook rescueHook = nullptr;

bool reporting = false;
bool reported = false;
bool seen = false;  // the user has seen the error, which goes to its handler, at a stop of the debugger

// While a handler of compiled code works: the report of the error that it was called with, which is the last error.
bool handling = false;
std::int32_t handledCode = 0;
std::string handledDetails;

bool debugging() {
    return tarn_debugger_window != nullptr && DebugStop != nullptr;
}

std::string place() {
    const FrameRecord* top = TopFrame();
    if (top == nullptr) return {};
    return std::string("File ") + top->className() + ", function " + top->functionName() + ", line " +
           std::to_string(tarn_current_line) + "\n";
}

bool continuable(std::int32_t code) {
    return code >= ERR_FIRST_CONTINUABLE && code <= ERR_LAST_CONTINUABLE;
}

std::string show(const std::string& title, const std::string& buttons) {
    TheDesktop().sound();
    return TheDesktop().box(title, ErrorDetails(), buttons);
}

ErrorWay wayOf(std::int32_t code) {
    if (!debugging()) return ErrorWay::Handler;
    const auto chosen = TheDebuggerHooks().wayOf;
    return chosen != nullptr ? chosen(code) : ErrorWay::Stop;
}

// In the debugger the user looks at the place of the error.
void stopForError() {
    const std::int32_t code = tarn_error_cell;
    DebugStop(true);
    if (code != ERR_OUT_OF_STACK) return;
    RescueOnce();  // nothing is left to go on with
    Halt();
}

bool inRuntime() {
    const FrameRecord* const top = FrameAtDepth(FrameCount());
    return top != nullptr && top->ofRuntime();
}

void report(std::int32_t code, ErrorHandler handler) {
    const ErrorWay way = wayOf(code);
    if (way != ErrorWay::Handler) stopForError();
    if (way == ErrorWay::Stop) return ContinueAfterError();
    seen = way == ErrorWay::StopThenHandler;
    (handler != nullptr ? handler : DefaultErrorHandler)(code);
    seen = false;
}

// The user's break stops whatever the breakpoints say, once.
void pollDebugger() {
    const bool broken = platform::GetUserBreak() == 1;
    if (broken) platform::SetUserBreak(0);
    if (DebugStop != nullptr)
        DebugStop(broken);  // looking for the break, the window may have heard of its end
}

}  // namespace

std::string CutReport(std::string text) {
    if (text.size() > MaxReport) text.resize(MaxReport);
    return text;
}

std::string ErrorDetails() {
    const std::int32_t code = tarn_error_cell;
    if (code == 0 && handling && LastError() == handledCode) return handledDetails;
    if (code == 0) return LastError() != 0 ? ErrorMessage(LastError()) : std::string();
    std::string text = ErrorMessage(code) + "\n" + place();
    if (code == ERR_ASSERT && !AssertText().empty()) text += AssertText() + "\n";
    return CutReport(std::move(text));
}

void SetRescueHook(RescueHook hook) {
    rescueHook = hook;
}

void RescueOnce() {
    const RescueHook hook = rescueHook;
    rescueHook = nullptr;
    if (hook != nullptr) hook();
}

bool ErrorWasReported() {
    return reported;
}
void NoteReportedError() {
    reported = true;
}

Reporting::Reporting() : entered_(!std::exchange(reporting, true)) {}

Reporting::~Reporting() {
    if (entered_) reporting = false;
}

bool BeginHandler() {
    if (reporting) return false;
    if (handling) {
        DefaultErrorHandler(tarn_error_cell);
        return false;
    }
    handling = true;
    seen = false;  // what arises from here on is another one
    handledCode = tarn_error_cell;
    handledDetails = ErrorDetails();
    ContinueAfterError();
    return true;
}

void EndHandler() {
    handling = false;
    handledDetails.clear();
}

void DefaultErrorHandler(std::int32_t code) {
    if (debugging() || seen) {  // no handler of the program has taken it
        if (!std::exchange(seen, false)) stopForError();
        return ContinueAfterError();
    }
    {
        const Reporting report;
        if (!report.entered()) return;
        NoteReportedError();
        const std::string title = "Error " + std::to_string(code);
        if (!continuable(code)) {
            RescueOnce();  // before the box: the user may never come back to it
            show(title, "OK");
            Halt();
        }
        if (show(title, "Continue\nHalt") != "Continue") {
            RescueOnce();
            Halt();
        }
    }
    ContinueAfterError();
}

void StampSlow(std::int32_t line, std::int32_t action, ErrorHandler handler) {
    if (const std::int32_t code = tarn_error_cell; code != 0) {
        if (action == ClearErrors)
            tarn_error_cell = 0;
        else if (action == ReportErrors)
            report(code, handler);
    }
    if (line != 0) tarn_current_line = line;
    if (!debugging() || inRuntime()) return;
    if (line != 0)
        pollDebugger();
    else if (const auto functionEnds = TheDebuggerHooks().functionEnds; functionEnds != nullptr)
        functionEnds();
}

}  // namespace tarn
