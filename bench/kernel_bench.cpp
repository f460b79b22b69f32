// SPDX-License-Identifier: Apache-2.0
// Stamps, frames and strings of the kernel, the string peer is std::string; values and conditions in the debugger. Stamps
// under the debugger are those of a function of a compiled program's shape, with breakpoints in other lines.
#include "kernel/debug/debugsettings.h"
#include "kernel/debug/engine.h"
#include "kernel/debug/expression.h"
#include "kernel/debug/showvalues.h"
#include "kernel/lists/lists.h"
#include "kernel/run/runtime.h"
#include "kernel/run/state.h"
#include "kernel/values/adt.h"
#include "kernel/values/strings.h"
#include "platform/model/view.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

MODULE("bench")

namespace {

void stampInline(benchmark::State& state) {
    for (auto _ : state) {
        STAMP();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(stampInline);

__attribute__((noinline)) void stampOutOfLine() {
    STAMP();
}

void stampCalled(benchmark::State& state) {
    for (auto _ : state) {
        stampOutOfLine();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(stampCalled);

void frame(benchmark::State& state) {
    tarn::DebugStart(1, "", "", "", "");
    for (auto _ : state) {
        FRAME(frame);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(frame);

// A program under the debugger with breakpoints of `classes` classes, at lines that it does not come to.
class UnderDebugger {
public:
    UnderDebugger(int breakpoints, int classes, const std::string& more) {
        std::string pattern = "/tmp/tarnwick-bench-XXXXXX";
        folder_ = ::mkdtemp(pattern.data());
        std::filesystem::create_directories(folder_ + "/tarnwick");
        ::setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
        ::setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
        std::ofstream(folder_ + "/main.cls") << "x";
        std::ofstream(folder_ + "/tarnwick/registry.ini")
            << "[SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe]\n=" << folder_ << "/ide\n";
        std::ofstream(folder_ + "/ide.ini") << "[debug]\nbreakpoints=" << values(breakpoints, classes) << "\n"
                                            << more;
        tarn::UseDebugger();
        tarn::UseDebugWait([](tarn::platform::DebugWindow&) {});
        tarn::DebugStart(2, "Tarnwick", "1.3", "2207", folder_ + "/main.cls");
    }
    ~UnderDebugger() {
        tarn::DebugEnd();
        std::filesystem::remove_all(folder_);
    }
    UnderDebugger(const UnderDebugger&) = delete;
    UnderDebugger& operator=(const UnderDebugger&) = delete;

private:
    static std::string values(int breakpoints, int classes) {
        std::string text;
        for (int i = 0; i < classes; ++i) {
            text += (i == 0 ? std::string("bench") : "c" + std::to_string(i)) + " ";
            for (int line = 0; line < breakpoints / classes; ++line) text += std::to_string(500 + line) + " ";
        }
        return text;
    }
    std::string folder_;
};

// Arguments: breakpoints, of how many classes.
void stampUnderDebugger(benchmark::State& state) {
    const UnderDebugger debugger(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), "");
    tarn::EnterProgramFunction("bench", "LOOP", 1);
    std::int32_t line = 1;
    for (auto _ : state) {
        tarn::Stamp(line, tarn::ReportErrors, nullptr);
        line = line % 20 + 1;
        benchmark::ClobberMemory();
    }
    tarn::FunctionLeave();
}
BENCHMARK(stampUnderDebugger)->Args({0, 1})->Args({200, 1})->Args({200, 50});

// A call with two statements in it, which looks its class up.
void callUnderDebugger(benchmark::State& state) {
    const UnderDebugger debugger(200, 50, "");
    for (auto _ : state) {
        tarn::EnterProgramFunction("bench", "CALLED", 1);
        tarn::Stamp(2, tarn::ReportErrors, nullptr);
        tarn::Stamp(3, tarn::ReportErrors, nullptr);
        tarn::FunctionLeave();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(callUnderDebugger);

// A breakpoint whose condition does not hold, at each stamp.
void conditionTested(benchmark::State& state) {
    const UnderDebugger debugger(200, 1, "Rules=bench 510 if \"x > 3 and y = 7\" ;\n");
    tarn::EnterProgramFunction("bench", "LOOP", 1);
    std::int32_t x = 5, y = 0;
    tarn::RegisterVariable("x", 'V', 3, &x);
    tarn::RegisterVariable("y", 'V', 3, &y);
    for (auto _ : state) {
        tarn::Stamp(510, tarn::ReportErrors, nullptr);
        benchmark::ClobberMemory();
    }
    tarn::FunctionLeave();
}
BENCHMARK(conditionTested);

// From one statement to the next with a stop in between: the list is filled anew, nobody looks at it.
void stepUnderDebugger(benchmark::State& state) {
    const UnderDebugger debugger(0, 1, "SingleStep=1\n");
    tarn::UseDebugWait([](tarn::platform::DebugWindow& window) {
        tarn::OnDebugEvent(window, {tarn::platform::DebugMessage::Command, tarn::DEBUG_STEP_INTO, {}});
    });
    tarn::EnterProgramFunction("bench", "LOOP", 1);
    for (auto _ : state) tarn::Stamp(2, tarn::ReportErrors, nullptr);
    tarn::FunctionLeave();
}
BENCHMARK(stepUnderDebugger);

void concatKernel(benchmark::State& state) {
    const std::string half(static_cast<std::size_t>(state.range(0)), 'a');
    tarn::StringDescriptor a{}, b{}, sum{};
    for (tarn::StringDescriptor* s : {&a, &b, &sum}) tarn::StringInit(s, tarn::UNBOUNDED);
    tarn::StringAssignView(&a, half);
    tarn::StringAssignView(&b, half);
    for (auto _ : state) {
        tarn::StringConcat(&a, &b, &sum);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(concatKernel)->Arg(40)->Arg(4000);

void concatStd(benchmark::State& state) {
    const std::string a(static_cast<std::size_t>(state.range(0)), 'a'), b = a;
    std::string sum;
    for (auto _ : state) {
        sum = a + b;
        benchmark::DoNotOptimize(sum);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(concatStd)->Arg(40)->Arg(4000);

// ---- the debugger ----

// The frame of a function with some variables, one of them a list of 100,000 integers.
class DebuggedFrame {
public:
    DebuggedFrame() {
        static tarn::VariableTable table{};
        tarn::DebugStart(1, "", "", "", "");
        tarn::variableTable = &table;
        table.count = 0;
        tarn::FunctionEnter("Bench", "frame", 1);
        tarn::StringInit(&text_, tarn::UNBOUNDED);
        tarn::StringAssignView(&text_, "some text");
        tarn::ListInit(&list_, tarn::UNBOUNDED, nullptr, tarn::KindInteger, false);
        for (std::int32_t i = 1; i <= 100'000; ++i) tarn::ListAppend(&i, tarn::KindInteger, &list_);
        tarn::RegisterVariable("first", 'V', tarn::KindInteger, &first_);
        tarn::RegisterVariable("text", 'V', tarn::KindString, &text_);
        tarn::RegisterVariable("list", 'V', tarn::KindList, &list_);
        tarn::RegisterVariable("count", 'V', tarn::KindInteger, &count_);
    }
    ~DebuggedFrame() {
        tarn::FunctionLeave();
        tarn::AdtFree(&list_, tarn::KindList);
        tarn::StringFree(&text_);
        tarn::variableTable = nullptr;
    }
    DebuggedFrame(const DebuggedFrame&) = delete;
    DebuggedFrame& operator=(const DebuggedFrame&) = delete;

    static std::int32_t number() { return tarn::FrameCount(); }
    std::int32_t& count() { return count_; }

private:
    std::int32_t first_ = 1, count_ = 7;
    tarn::StringDescriptor text_{};
    tarn::ListDescriptor list_{};
};

void condition(benchmark::State& state, const char* text) {
    DebuggedFrame frame;
    std::string error;
    const auto expression = tarn::DebugExpression::compile(text, error);
    for (auto _ : state) {
        if (expression->holds(DebuggedFrame::number())) state.SkipWithError("the condition holds");
        ++frame.count();
        frame.count() &= 63;
    }
}
BENCHMARK_CAPTURE(condition, integer, "count > 100");
BENCHMARK_CAPTURE(condition, three, "count > 100 or text = \"another\" or list[count + 1] = 0");

// In the model of the window, without a screen.
void values(benchmark::State& state, bool expanded, bool paged) {
    const auto view = tarn::platform::useView(tarn::platform::makeHeadlessView());
    const DebuggedFrame frame;
    tarn::platform::DebugWindow* const window = tarn::platform::StartDebug(
        {}, "", "", "", [](tarn::platform::DebugWindow&, const tarn::platform::DebugEvent&) {}, {});
    tarn::variableTable->entries[2].expanded = expanded;
    tarn::ShowValues(*window, DebuggedFrame::number(), false);
    if (paged) tarn::PageValue(*window, DebuggedFrame::number(), 3, tarn::ValuePage::Next, false);
    for (auto _ : state) tarn::ShowValues(*window, DebuggedFrame::number(), false);
    tarn::ForgetShownValues();
    tarn::platform::EndDebug(window);
}
BENCHMARK_CAPTURE(values, collapsed, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(values, expanded, true, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(values, page, true, true)->Unit(benchmark::kMillisecond);

// What each stop adds when it is left.
void noted(benchmark::State& state, bool expanded) {
    const DebuggedFrame frame;
    tarn::variableTable->entries[2].expanded = expanded;
    for (auto _ : state) tarn::NoteValues();
    tarn::ForgetShownValues();
}
BENCHMARK_CAPTURE(noted, collapsed, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(noted, expanded, true)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
