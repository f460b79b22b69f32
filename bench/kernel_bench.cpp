// SPDX-License-Identifier: Apache-2.0
// Stamps, frames and strings of the kernel; the string peer is std::string.
#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"

#include <benchmark/benchmark.h>

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

}  // namespace

BENCHMARK_MAIN();
