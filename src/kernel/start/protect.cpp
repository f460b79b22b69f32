// SPDX-License-Identifier: Apache-2.0
//
// The frame around a program that catches hardware faults and stray exceptions, and the last report of all.
//
// A fault handler runs on a stack of its own, in a process that may be damaged anywhere: everything on the
// way to the fatal box works on static memory and on calls that are safe in a signal handler. The one
// exception is the rescue hook, which saves what the user typed and cannot do so without allocating. A fault
// inside it, or a hang (a lock that the fault left taken), leads back to the report after at most
// rescueSeconds.
//
// A wish that the program end (os/session.h) is no fault: it goes through the event loop, rescues and halts.
#include "kernel/start/protect.h"

#include "kernel/run/errors.h"
#include "kernel/run/fatal.h"
#include "kernel/run/report.h"
#include "kernel/run/runtime.h"
#include "kernel/run/state.h"
#include "kernel/start/process.h"
#include "os/process.h"
#include "os/session.h"
#include "platform/model/view.h"

#include <array>
#include <csetjmp>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <sys/mman.h>
#include <unistd.h>

namespace tarn {

namespace {

constexpr std::size_t stackBytes = std::size_t{4} << 20;  // committed as it is used
constexpr unsigned rescueSeconds = 10;
constexpr int faultExitCode = 1;
constexpr int signalExitBase = 128;  // as shells report it

volatile std::sig_atomic_t rescueRunning = 0, faults = 0;
sigjmp_buf rescueEnd;

// Text of at most MaxReport characters, put together without allocating.
class FixedText {
public:
    void add(const char* text) {
        for (; text != nullptr && *text != 0 && length_ < MaxReport; ++text) text_[length_++] = *text;
        text_[length_] = 0;
    }
    void add(std::int32_t value) {
        char digits[12];
        char* at = digits + sizeof digits;
        *--at = 0;
        auto rest = value < 0 ? -std::int64_t{value} : std::int64_t{value};
        do *--at = static_cast<char>('0' + rest % 10);
        while ((rest /= 10) != 0);
        if (value < 0) *--at = '-';
        add(at);
    }
    [[nodiscard]] const char* text() const { return text_; }

private:
    char text_[MaxReport + 1] = "";
    std::size_t length_ = 0;
};

bool given(const char* text) {
    return text != nullptr && *text != 0;
}

void endOfRescue(int) {
    siglongjmp(rescueEnd, 1);
}

// In a fault: the rescue hook with a way back out of it.
void rescueGuarded() {
    if (sigsetjmp(rescueEnd, 1) == 0) {
        rescueRunning = 1;
        struct sigaction onAlarm {};
        onAlarm.sa_handler = endOfRescue;
        sigaction(SIGALRM, &onAlarm, nullptr);
        alarm(rescueSeconds);
        RescueOnce();
    }
    alarm(0);
    rescueRunning = 0;
}

std::int32_t codeOf(int signal, int reason) {
    if (signal == SIGSEGV || signal == SIGBUS) return ERR_ACCESS_VIOLATION;
    if (signal == SIGFPE && (reason == FPE_INTDIV || reason == FPE_INTOVF)) return ERR_INTEGER_DIVIDE_BY_ZERO;
    if (signal == SIGFPE && reason == FPE_FLTDIV) return ERR_FLOAT_DIVIDE_BY_ZERO;
    return ERR_OPERATING_SYSTEM;
}

void onFault(int signal, siginfo_t* info, void*) {
    if (rescueRunning != 0) siglongjmp(rescueEnd, 1);
    faults = faults + 1;
    if (faults > 1) _exit(faultExitCode);  // the report itself failed
    rescueGuarded();
    ReportFatalHere(codeOf(signal, info->si_code));
    _exit(faultExitCode);
}

// In a handler: the event loop has not come round to the end that was asked for.
void endLate(int signal) {
    rescueGuarded();
    _exit(signalExitBase + signal);
}

// What ends a program behind its back, as the toolkit does when the screen is gone, still runs this.
void rescueAtExit() {
    if (!ProcessIsEnding()) RescueOnce();
}

// Puts the handlers in place for its lifetime, and the former ones back.
class FaultHandlers {
public:
    FaultHandlers() {
        void* stack = mmap(nullptr, stackBytes, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
        if (stack != MAP_FAILED) {
            stack_.ss_sp = stack;
            stack_.ss_size = stackBytes;
            sigaltstack(&stack_, &formerStack_);
        }
        struct sigaction action {};
        action.sa_sigaction = onFault;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
        for (std::size_t i = 0; i < signals.size(); ++i) sigaction(signals[i], &action, &former_[i]);
    }
    ~FaultHandlers() {
        for (std::size_t i = 0; i < signals.size(); ++i) sigaction(signals[i], &former_[i], nullptr);
        if (stack_.ss_sp == nullptr) return;
        sigaltstack(&formerStack_, nullptr);
        munmap(stack_.ss_sp, stackBytes);
    }
    FaultHandlers(const FaultHandlers&) = delete;
    FaultHandlers& operator=(const FaultHandlers&) = delete;

private:
    static constexpr std::array signals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGSYS, SIGABRT};
    std::array<struct sigaction, signals.size()> former_{};
    stack_t stack_{}, formerStack_{};
};

// The frames of the functions that the exception has left are gone.
void reportThrown() {
    const ThrownPlace& thrown = lastThrown;
    if (thrown.depth < 1 || thrown.depth != FrameCount() + 1) return ReportFatalHere(ERR_OPERATING_SYSTEM);
    ReportFatal(ERR_OPERATING_SYSTEM, ErrorText(ERR_OPERATING_SYSTEM), thrown.frame.className(),
                thrown.frame.functionName(), thrown.line, "");
}

void runCatching(void (*program)()) {
    try {
        program();
        return;
    } catch (...) {
        if (ProcessIsEnding()) throw;  // thrown by what stands in for the end of the process
    }
    RescueOnce();
    reportThrown();
    os::endProcess(faultExitCode);
}

}  // namespace

void ReportFatal(std::int32_t code, const char* message, const char* file, const char* function,
                 std::int32_t line, const char* extra) {
    NoteReportedError();
    static FixedText title, body;  // the stack of a fault handler is small, and this runs once
    title = {};
    body = {};
    title.add("Error ");
    title.add(code);
    if (given(message)) {
        body.add(message);
        body.add("\n");
    }
    if (given(file) && given(function)) {
        for (const char* part : {"File ", file, ", function ", function, ", line "}) body.add(part);
        body.add(line);
        body.add("\n");
    }
    if (given(extra)) {
        body.add(extra);
        body.add("\n");
    }
    ShowFatalBox(title.text(), body.text());
}

void ReportFatalHere(std::int32_t code) {
    const FrameRecord* top = TopFrame();
    ReportFatal(code, ErrorText(code), top != nullptr ? top->className() : "",
                top != nullptr ? top->functionName() : "", tarn_current_line, "");
}

void RunTimeFatal(std::int32_t code, std::string_view message, std::string_view file,
                  std::string_view function, std::int32_t line, std::string_view extra) {
    LocateFatalProgram();
    RescueOnce();
    ReportFatal(code, std::string(message).c_str(), std::string(file).c_str(), std::string(function).c_str(),
                line, std::string(extra).c_str());
    os::endProcess(faultExitCode);
}

void ListenForEnd() {
    os::listenForEnd(endLate);
    platform::view().watch(os::endDescriptor(), [] {
        if (os::takeEndSignal() == 0) return;
        RescueOnce();
        Halt();
    });
}

void RunProtected(void (*program)()) {
    static const bool registered = std::atexit(rescueAtExit) == 0;
    static_cast<void>(registered);
    LocateFatalProgram();
    const FaultHandlers handlers;
    runCatching(program);
}

}  // namespace tarn
