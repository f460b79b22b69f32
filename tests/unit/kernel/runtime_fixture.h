// SPDX-License-Identifier: Apache-2.0
//
// A test whose process can be "ended": the desktop and the fatal box are recorded, the end of the process is
// an exception, and frames, trace, cell and heap are as at the start of a program.
#pragma once

#include "kernel/run/desktop.h"
#include "kernel/run/fatal.h"
#include "kernel/run/runtime.h"
#include "kernel/start/process.h"
#include "kernel/values/heap.h"
#include "os/process.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarn {

struct ProcessEnded {
    int code;
};

class Runtime : public ::testing::Test {
protected:
    void SetUp() override {
        log().clear();
        answer() = "OK";
        ClearError();
        DebugEnd();
        SetRescueHook(nullptr);
        FunctionLeave();
        tarn_current_line = 0;
        desktop_ = UseDesktop({sound, box, setTrace, close});
        fatalBox_ = SetFatalBox(fatal);
        endHook_ = os::useEndHook(end);
    }
    void TearDown() override {
        SetTraceMode(0);
        SetRescueHook(nullptr);
        DebugEnd();
        ClearError();
        SetMemoryChecking(false);
        EXPECT_EQ(LiveBlocks(), 0);
        UseDesktop(desktop_);
        SetFatalBox(fatalBox_);
        os::useEndHook(endHook_);
    }

    // What happened, one entry each: "beep", "box|title|text|buttons", "trace N", "close",
    // "fatal|title|text", "end N", and what the test adds.
    static std::vector<std::string>& log() {
        static std::vector<std::string> entries;
        return entries;
    }
    static std::string& answer() {
        static std::string text;
        return text;
    }
    // Runs `program` and gives the exit code; -1 when it came back.
    template <class Program>
    static int endOf(Program program) {
        try {
            program();
        } catch (const ProcessEnded& ended) {
            return ended.code;
        }
        return -1;
    }
    using Log = std::vector<std::string>;

private:
    static void sound() { log().emplace_back("beep"); }
    static std::string box(const std::string& title, const std::string& text, const std::string& buttons) {
        log().push_back("box|" + title + "|" + text + "|" + buttons);
        return answer();
    }
    static void setTrace(int mode) { log().push_back("trace " + std::to_string(mode)); }
    static void close() { log().emplace_back("close"); }
    static void fatal(const char* title, const char* text) {
        log().push_back(std::string("fatal|") + title + "|" + text);
    }
    static void end(int code) {
        log().push_back("end " + std::to_string(code));
        throw ProcessEnded{code};
    }

    Desktop desktop_{};
    FatalBox fatalBox_ = nullptr;
    os::EndHook endHook_ = nullptr;
};

}  // namespace tarn
