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

bool stopsAt(std::int32_t code) {
    const auto takes = TheDebuggerHooks().takesError;
    return debugging() && (takes == nullptr || takes(code));
}

// In the debugger the user looks at the place of the error, and the program goes on behind it.
void stopForError() {
    DebugStop(true);
    ContinueAfterError();
}

void report(std::int32_t code, ErrorHandler handler) {
    if (stopsAt(code))
        stopForError();
    else
        (handler != nullptr ? handler : DefaultErrorHandler)(code);
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
    if (debugging()) return stopForError();  // no handler of the program has taken it
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
    if (!debugging()) return;
    if (line != 0)
        pollDebugger();
    else if (const auto functionEnds = TheDebuggerHooks().functionEnds; functionEnds != nullptr)
        functionEnds();
}

}  // namespace tarn
