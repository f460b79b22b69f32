// SPDX-License-Identifier: Apache-2.0
#include "unit/kernel/runtime_fixture.h"

#include "kernel/api/api.h"
#include "kernel/run/errors.h"
#include "kernel/values/strings.h"
#include "os/instance.h"
#include "support/tempfolder.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tarn;

namespace {

class Process : public Runtime {
protected:
    void TearDown() override {
        endOf([] { Halt(); });  // gives back the lock and the command line's block
        Runtime::TearDown();
    }
    static void startTool() { ProcessStart(ProcessOptions{true, false}); }

    TempFolder folder_;
    Variable runtime_{"XDG_RUNTIME_DIR", folder_.path()};
};

// Another process that holds the lock of this executable until it is told to end.
class OtherCopy {
public:
    OtherCopy() {
        int ready[2], done[2];
        if (pipe(ready) != 0 || pipe(done) != 0) return;
        child_ = fork();
        if (child_ == 0) {
            const bool held = os::acquireInstanceLock(InstanceName(), 0) == os::LockState::Acquired;
            char byte = held ? 'y' : 'n';
            (void)!write(ready[1], &byte, 1);
            close(done[1]);
            (void)!read(done[0], &byte, 1);
            _exit(0);
        }
        char byte = 0;
        (void)!read(ready[0], &byte, 1);
        holds_ = byte == 'y';
        for (const int end : {ready[0], ready[1], done[0]}) close(end);
        done_ = done[1];
    }
    ~OtherCopy() {
        close(done_);
        waitpid(child_, nullptr, 0);
    }
    OtherCopy(const OtherCopy&) = delete;
    OtherCopy& operator=(const OtherCopy&) = delete;
    [[nodiscard]] bool holds() const { return holds_; }

private:
    pid_t child_ = -1;
    int done_ = -1;
    bool holds_ = false;
};

bool anotherCanLock() {
    const OtherCopy other;
    return other.holds();
}

TEST_F(Process, TheSelfTestHoldsAndLeavesTheCellAlone) {
    EXPECT_TRUE(SelfTest());
    EXPECT_EQ(ErrorCell(), 0);
    SetError(601);
    EXPECT_TRUE(SelfTest());
    EXPECT_EQ(ErrorCell(), 601);
    EXPECT_EQ(LiveBlocks(), 0);
}

TEST_F(Process, TheSelfTestTakesUnderFiveMilliseconds) {
    auto best = std::chrono::steady_clock::duration::max();  // the others were interrupted
    for (int i = 0; i < 10; ++i) {
        const auto start = std::chrono::steady_clock::now();
        SelfTest();
        best = std::min(best, std::chrono::steady_clock::now() - start);
    }
    EXPECT_LT(best, std::chrono::milliseconds(5));
}

TEST_F(Process, ASelfTestThatFailsIs805) {
    CharacterWidth = 2;  // the texts still hold
    EXPECT_TRUE(SelfTest());
    CharacterWidth = 1;
    FailAllocation(0);  // the first fixed string cannot be made
    EXPECT_FALSE(SelfTest());
    EXPECT_EQ(ErrorCell(), 0);
    FailAllocation(0);
    startTool();
    EXPECT_EQ(ErrorCell(), 805);
    endOf([] { ProcessStop(); });
}

TEST_F(Process, TheLockIsNamedAfterTheProgram) {
    EXPECT_EQ(InstanceName(), "KERNEL_TEST");
    const std::pair<const char*, const char*> names[] = {
        {"/usr/bin/ide", "IDE"},
        {"ide.exe", "IDE"},
        {"/a.b/ide", "IDE"},
        {"/a/my.ide.exe", "MY.IDE"},
        {"/a/.ide", ".IDE"},
        {"/a/.ide.exe", ".IDE"},
        {"/a/..", "."},
        {"C:\\x\\Tool_9.exe", "TOOL_9"},
        {"/a/t\xC3\xA4.x", "T\xC3\xA4"},
        {"/a/", ""},
    };
    for (const auto& [path, name] : names) EXPECT_EQ(InstanceNameOf(path), name) << path;
}

TEST_F(Process, StartTakesTheLockAndHaltReleasesIt) {
    ProcessStart(true);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_FALSE(anotherCanLock());
    EXPECT_EQ(endOf([] { ProcessStop(); }), 0);
    EXPECT_TRUE(anotherCanLock());
    EXPECT_EQ(log(), (Log{"close", "end 0"}));
}

TEST_F(Process, ASecondCopyReports807AtItsFirstStampAndReleasesNothing) {
    {
        const OtherCopy other;
        ASSERT_TRUE(other.holds());
        const auto start = std::chrono::steady_clock::now();
        ProcessStart(true);
        const auto waited = std::chrono::steady_clock::now() - start;
        EXPECT_GE(waited, std::chrono::milliseconds(990));
        EXPECT_LT(waited, std::chrono::milliseconds(3000));
        EXPECT_EQ(ErrorCell(), 807);
        EXPECT_TRUE(log().empty());
        EXPECT_EQ(endOf([] { Stamp(1, ReportErrors, nullptr); }), 0);
        EXPECT_EQ(log()[1], "box|Error 807|Program is already running\n|OK");
        EXPECT_FALSE(anotherCanLock());
    }
    ClearError();
    endOf([] { ProcessStop(); });
}

TEST_F(Process, ALockLeftByACopyThatDiedIsTaken) {
    { const OtherCopy other; }
    ProcessStart(true);
    EXPECT_EQ(ErrorCell(), 0);
    endOf([] { ProcessStop(); });
}

TEST_F(Process, ToolsRunBesideEachOther) {
    const OtherCopy other;
    startTool();
    EXPECT_EQ(ErrorCell(), 0);
    endOf([] { ProcessStop(); });
}

TEST_F(Process, TheCommandLineIsKeptAndFreed) {
    char name[] = "kernel_test", first[] = "one", second[] = "two words";
    char* arguments[] = {name, first, second, nullptr};
    os::setCommandLine(3, arguments);
    EXPECT_EQ(CommandLineText(), "");
    startTool();
    EXPECT_EQ(CommandLineText(), "one \"two words\"");
    EXPECT_EQ(CountLeaks().blocks, 1);
    EXPECT_EQ(endOf([] { ProcessStop(); }), 0);
    EXPECT_EQ(CommandLineText(), "");
    EXPECT_EQ(log(), (Log{"close", "end 0"}));
    os::setCommandLine(1, arguments);
}

TEST_F(Process, MemoryThatIsLeftIs826) {
    startTool();
    Offset a = 0, b = 0;
    Allocate(a, 40);
    Allocate(b, 8);
    EXPECT_EQ(endOf([] { ProcessStop(); }), 0);
    EXPECT_EQ(log(), (Log{"fatal|Error 826|Some memory was not freed\n\n(48 byte(s) in 2 block(s))\n",
                          "close", "end 0"}));
    Free(a, 40);
    Free(b, 8);
}

TEST_F(Process, ABrokenListReportsMinusOneBytes) {
    startTool();
    Offset a = 0;
    Allocate(a, 40);
    At(a)[40] = '?';
    endOf([] { ProcessStop(); });
    EXPECT_EQ(log()[0], "fatal|Error 826|Some memory was not freed\n\n(-1 byte(s) in 0 block(s))\n");
    At(a)[40] = '<';
    Free(a, 40);
}

TEST_F(Process, WithoutMemoryCheckingNothingIsLookedFor) {
    ProcessStart(ProcessOptions{false, false});
    Offset a = 0;
    Allocate(a, 40);
    endOf([] { ProcessStop(); });
    EXPECT_EQ(log(), (Log{"close", "end 0"}));
    Free(a, 40);
}

TEST_F(Process, AnErrorThatRemainsIsShownInTheFatalBox) {
    startTool();
    SetError(654);
    Offset a = 0;
    Allocate(a, 40);  // the first error wins over the leak
    EXPECT_EQ(endOf([] { ProcessStop(); }), 0);
    EXPECT_EQ(log(), (Log{"fatal|Error 654|Disk drive full up\n", "close", "end 0"}));
    Free(a, 40);
}

TEST_F(Process, TheRescueComesBeforeTheReportOfAnErrorThatRemains) {
    startTool();
    SetRescueHook([] { log().emplace_back("rescue"); });
    SetError(654);
    EXPECT_EQ(endOf([] { ProcessStop(); }), 0);
    EXPECT_EQ(log(), (Log{"rescue", "fatal|Error 654|Disk drive full up\n", "close", "end 0"}));
}

TEST_F(Process, AnEndWithoutAnErrorRescuesNothing) {
    startTool();
    SetRescueHook([] { log().emplace_back("rescue"); });
    EXPECT_EQ(endOf([] { ProcessStop(); }), 0);
    EXPECT_EQ(log(), (Log{"close", "end 0"}));
}

TEST_F(Process, ExitHooksRunNewestFirstOnceBeforeTheWindowsGo) {
    AddExitHook([] { log().emplace_back("first"); });
    AddExitHook([] { log().emplace_back("second"); });
    endOf([] { Halt(); });
    endOf([] { Halt(); });
    EXPECT_EQ(log(), (Log{"second", "first", "close", "end 0", "close", "end 0"}));
}

// ---- the fatal report ----

TEST_F(Process, AFatalReportHasTitlePlaceAndExtra) {
    const struct {
        std::int32_t code;
        const char *message, *file, *function;
        std::int32_t line;
        const char *extra, *report;
    } rows[] = {
        {5, "Access violation", "ide", "do_open", 12, "",
         "fatal|Error 5|Access violation\nFile ide, function do_open, line 12\n"},
        {5, "", "ide", "f", 1, "", "fatal|Error 5|File ide, function f, line 1\n"},
        {5, "m", "", "f", 1, "", "fatal|Error 5|m\n"},
        {5, "m", "c", "", 1, "", "fatal|Error 5|m\n"},
        {-12, "m", "", "", 0, "more", "fatal|Error -12|m\nmore\n"},
        {INT32_MIN, "", "", "", 0, "", "fatal|Error -2147483648|"},
    };
    for (const auto& row : rows) {
        log().clear();
        const int code =
            endOf([&] { RunTimeFatal(row.code, row.message, row.file, row.function, row.line, row.extra); });
        EXPECT_EQ(code, 1);
        EXPECT_EQ(log()[0], row.report);
    }
}

TEST_F(Process, AFatalReportHasAtMost1024Characters) {
    endOf([] { RunTimeFatal(1, std::string(2000, 'm'), "c", "f", 1, "x"); });
    EXPECT_EQ(log()[0], "fatal|Error 1|" + std::string(1024, 'm'));
}

TEST_F(Process, AFatalReportRescuesFirst) {
    SetRescueHook([] { log().emplace_back("rescue"); });
    endOf([] { RunTimeFatal(5, "m", "", "", 0, ""); });
    EXPECT_EQ(log(), (Log{"rescue", "fatal|Error 5|m\n", "end 1"}));
}

// ---- a whole program ----

tarn_program program(void (*main)()) {
    tarn_program made{};
    made.library_version = "1.3";
    made.main_source = "";
    made.debug_mode = 1;
    made.memory_checking = 1;
    made.main = main;
    return made;
}

int run(const tarn_program& made) {
    char name[] = "kernel_test";
    char* arguments[] = {name, nullptr};
    return tarn_run(1, arguments, &made);
}

TEST_F(Process, AProgramRunsItsStepsInOrder) {
    static auto& entries = log();
    tarn_program made = program([] { entries.push_back("main " + std::to_string(DebugMode())); });
    made.single_instance = 1;
    made.initialise = [] { entries.emplace_back(MemoryChecking() ? "initialise checked" : "initialise"); };
    made.finalise = [] { entries.push_back("finalise " + std::to_string(DebugMode())); };
    EXPECT_EQ(endOf([&] { run(made); }), 0);
    EXPECT_EQ(log(), (Log{"initialise checked", "main 1", "finalise 1", "close", "end 0"}));
    EXPECT_EQ(DebugMode(), 0);
}

TEST_F(Process, AProgramForAnotherVersionReports806AtItsFirstStamp) {
    for (const char* version : {"1.2", "", "1.30", static_cast<const char*>(nullptr)}) {
        log().clear();
        ClearError();
        tarn_program made = program([] {
            tarn_stamp(1, 0, tarn_default_onerror);
            log().emplace_back("went on");
        });
        made.library_version = version;
        EXPECT_EQ(endOf([&] { run(made); }), 0);
        EXPECT_EQ(log(), (Log{"beep", "box|Error 806|DLL is wrong version\n|OK", "close", "end 0"}));
        ClearError();
        endOf([] { ProcessStop(); });
    }
}

TEST_F(Process, AProgramAssertsAndClearsErrorsThroughTheCInterface) {
    static Log seen;
    seen.clear();
    endOf([&] {
        run(program([] {
            tarn_string text;
            tarn_string_init(&text, TARN_UNBOUNDED);
            tarn_string_assign_bytes(&text, "n > 0", 5);
            tarn_assert(1, &text);
            seen.push_back(std::to_string(tarn_error_cell));
            tarn_assert(0, &text);
            seen.push_back(std::to_string(tarn_error_cell) + AssertText());
            tarn_clear_error();
            seen.push_back(std::to_string(tarn_error_cell) + std::to_string(LastError()));
            tarn_assert(0, nullptr);
            seen.push_back(std::to_string(tarn_error_cell) + AssertText());
            tarn_clear_error();
            tarn_string_free(&text);
        }));
    });
    EXPECT_EQ(seen, (Log{"0", "687n > 0", "00", "687"}));
}

TEST_F(Process, AProgramUsesStringsThroughTheCInterface) {
    static std::string text;
    static int32_t order, third;
    const tarn_program made = program([] {
        tarn_string a, b;
        tarn_string_init(&a, TARN_UNBOUNDED);
        tarn_string_init(&b, 4);
        tarn_string_assign_bytes(&a, "abc", 3);
        tarn_string_assign_bytes(&b, nullptr, 9);
        tarn_string_concat(&a, &a, &a);
        tarn_string_put(&a, 1, 'X');
        third = tarn_string_get(&a, 3);
        tarn_string_assign(&b, &a);
        order = tarn_string_compare(&a, &b);
        text = std::string(tarn_heap_base + b.data, static_cast<std::size_t>(tarn_string_length(&b))) +
               std::to_string(tarn_error_cell);
        tarn_error_cell = 0;
        tarn_string_free(&b);
        tarn_string_free(&a);
    });
    EXPECT_EQ(endOf([&] { run(made); }), 0);
    EXPECT_EQ(text, "Xbca615");
    EXPECT_EQ(third, 'c');
    EXPECT_EQ(order, 1);
    EXPECT_EQ(log(), (Log{"close", "end 0"}));
}

TEST_F(Process, AStrayExceptionIs512WithThePlaceItCameFrom) {
    SetRescueHook([] { log().emplace_back("rescue"); });
    const tarn_program made = program([] {
        tarn_enter("main", "WORK", 3);
        tarn_stamp(4, 0, tarn_default_onerror);
        throw 42;
    });
    EXPECT_EQ(endOf([&] { run(made); }), 1);
    EXPECT_EQ(log(), (Log{"rescue",
                          "fatal|Error 512|Other operating system error\nFile main, function work, line 4\n",
                          "end 1"}));
    endOf([] { ProcessStop(); });
}

// ---- faults: each in a process of its own ----

using Fault = void (*)();

class Faults : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    static void runFaulty(Fault fault) {
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
        static Fault inside;
        inside = fault;
        RunProtected([] {
            DebugStart(1, ProductWord, ProductVersion, ProductBuild, "");
            FunctionEnter("main", "WORK", 3);
            tarn_current_line = 7;
            inside();
        });
    }
};

void raiseFault(int signal, int code) {
    // Sent to oneself with the code that the processor's fault would carry.
    siginfo_t info{};
    info.si_signo = signal;
    info.si_code = code;
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    action.sa_sigaction(signal, &info, nullptr);
}

volatile int zero = 0;
int* volatile nowhere = reinterpret_cast<int*>(64);  // no page of any process

TEST_F(Faults, AnAccessViolationIs5) {
    EXPECT_EXIT(runFaulty([] { *nowhere = 1; }), ::testing::ExitedWithCode(1),
                "Error 5\nAccess violation\nFile main, function work, line 7\n");
}

TEST_F(Faults, AnIntegerDivisionByZeroIs148) {
    EXPECT_EXIT(runFaulty([] { raiseFault(SIGFPE, FPE_INTDIV); }), ::testing::ExitedWithCode(1),
                "Error 148\nInteger divide by zero\nFile main, function work, line 7\n");
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(Faults, ADivisionOfTheProcessorIs148Too) {
    EXPECT_EXIT(runFaulty([] { zero = 100 / zero; }), ::testing::ExitedWithCode(1),
                "Error 148\nInteger divide by zero");
}
#endif

TEST_F(Faults, AFloatingDivisionByZeroIs142) {
    EXPECT_EXIT(runFaulty([] { raiseFault(SIGFPE, FPE_FLTDIV); }), ::testing::ExitedWithCode(1),
                "Error 142\nFloating point divide by zero\n");
}

TEST_F(Faults, AnythingElseIs512) {
    EXPECT_EXIT(runFaulty([] { raiseFault(SIGFPE, FPE_FLTOVF); }), ::testing::ExitedWithCode(1),
                "Error 512\nOther op");
    EXPECT_EXIT(runFaulty([] { raise(SIGILL); }), ::testing::ExitedWithCode(1), "Error 512\nOther op");
    EXPECT_EXIT(runFaulty([] { std::abort(); }), ::testing::ExitedWithCode(1), "Error 512\nOther op");
    EXPECT_EXIT(runFaulty([] { throw 1; }), ::testing::ExitedWithCode(1), "Error 512\nOther op");
}

// ---- exceptions that leave functions ----

constexpr ModuleInfo thrower{"thrower"};

void throwAt(std::int32_t line) {
    const Frame frame(thrower, "THROW_IT", 10);
    Stamp(line, ReportErrors, DefaultErrorHandler);
    throw 1;
}
void callThrower(std::int32_t line) {
    const Frame frame(thrower, "CALL_IT", 20);
    Stamp(25, ReportErrors, DefaultErrorHandler);
    throwAt(line);
}

TEST_F(Faults, AnExceptionIsToldWithThePlaceThatThrewItThoughItsFramesAreGone) {
    EXPECT_EXIT(runFaulty([] { callThrower(12); }), ::testing::ExitedWithCode(1),
                "Error 512\nOther operating system error\nFile thrower, function throw_it, line 12\n");
}

TEST_F(Faults, AnExceptionThatWasCaughtIsNotTakenForTheNext) {
    EXPECT_EXIT(runFaulty([] {
                    try {
                        callThrower(12);
                    } catch (int) {}
                    callThrower(13);
                }),
                ::testing::ExitedWithCode(1), "File thrower, function throw_it, line 13\n");
    EXPECT_EXIT(runFaulty([] {
                    const Frame frame(thrower, "CATCHES", 30);
                    try {
                        callThrower(12);
                    } catch (int) {}
                    Stamp(33, ReportErrors, DefaultErrorHandler);
                    throw 2;
                }),
                ::testing::ExitedWithCode(1), "File thrower, function catches, line 33\n");
}

struct CallsAtItsEnd {
    ~CallsAtItsEnd() {
        const Frame frame(thrower, "CLEANS_UP", 40);
        Stamp(41, ReportErrors, DefaultErrorHandler);
    }
};

TEST_F(Faults, WhatIsCalledWhileAnExceptionTravelsIsNotItsPlace) {
    EXPECT_EXIT(runFaulty([] {
                    const Frame frame(thrower, "HOLDS", 50);
                    Stamp(51, ReportErrors, DefaultErrorHandler);
                    const CallsAtItsEnd last;
                    Stamp(52, ReportErrors, DefaultErrorHandler);
                    throw 3;
                }),
                ::testing::ExitedWithCode(1), "File thrower, function holds, line 52\n");
}

TEST_F(Faults, ABusErrorIsAnAccessViolation) {
    EXPECT_EXIT(runFaulty([] { raise(SIGBUS); }), ::testing::ExitedWithCode(1), "Error 5\nAccess violation");
}

#ifndef __SANITIZE_ADDRESS__
int deeper(int n) {
    volatile char room[4096];
    room[0] = static_cast<char>(n);
    return n == INT32_MAX ? room[0] : deeper(n + 1) + room[0];
}

TEST_F(Faults, AStackThatIsUsedUpStillReports) {
    EXPECT_EXIT(runFaulty([] { zero = deeper(0); }), ::testing::ExitedWithCode(1),
                "Error 5\nAccess violation");
}
#endif

TEST_F(Faults, TheRescueComesFirst) {
    EXPECT_EXIT(runFaulty([] {
                    SetRescueHook([] { os::debugOutput("rescued\n"); });
                    *nowhere = 1;
                }),
                ::testing::ExitedWithCode(1), "rescued\nError 5\n");
}

TEST_F(Faults, AFaultInsideTheRescueStillReports) {
    EXPECT_EXIT(runFaulty([] {
                    SetRescueHook([] { *nowhere = 2; });
                    *nowhere = 1;
                }),
                ::testing::ExitedWithCode(1), "Error 5\nAccess violation");
}

TEST_F(Faults, HandlersGoWithTheProgram) {
    struct sigaction before {
    }, inside{}, after{};
    sigaction(SIGSEGV, nullptr, &before);
    static struct sigaction* seen;
    seen = &inside;
    RunProtected([] { sigaction(SIGSEGV, nullptr, seen); });
    sigaction(SIGSEGV, nullptr, &after);
    EXPECT_NE(inside.sa_sigaction, before.sa_sigaction);
    EXPECT_EQ(after.sa_sigaction, before.sa_sigaction);
}

TEST_F(Faults, WithAScreenTheBoxProgramGetsTitleAndText) {
    // A stand-in for the box, that writes its arguments where the test can read them. It stands beside a link
    // to this program by which it is called, as the real box may stand beside the program itself. It takes
    // its folder with it, since the process that dies makes one of its own.
    const TempFolder folder;
    const std::string box = folder / "tarnwick-fatal";
    FILE* script = std::fopen(box.c_str(), "w");
    ASSERT_NE(script, nullptr);
    std::fputs("#!/bin/sh\nprintf 'box:%s:%s' \"$1\" \"$2\" >&2\nrm -r \"${0%/*}\"\n", script);
    std::fclose(script);
    ASSERT_EQ(chmod(box.c_str(), 0755), 0);
    std::string program = folder / "program";
    ASSERT_EQ(symlink("/proc/self/exe", program.c_str()), 0);
    const Variable display("DISPLAY", ":99");
    char* called[] = {program.data()};
    const auto fail = [&] {
        os::setCommandLine(1, called);
        RunTimeFatal(826, "left", "", "", 0, "x");
    };
    EXPECT_EXIT(fail(), ::testing::ExitedWithCode(1), "Error 826\nleft\nx\nbox:Error 826:left\nx\n");
}

}  // namespace
