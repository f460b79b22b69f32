// SPDX-License-Identifier: Apache-2.0
// Loading a window of 180 objects from the compiled resources on the object model alone, and the look-ups
// that every command does.
#include "platform/resources/resource.h"
#include "platform/windowing.h"

#include "os/files.h"
#include "platform/model/view.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace {

using namespace tarn::platform;

const std::string folder = "/tmp/tarnwick-bench-platform";
const Object window("Main");

void prepare() {
    std::string text = "Main DIALOG\nMENU=M\nCAPTION=\"Main\"\n";
    for (int i = 1; i <= 30; ++i)
        text += "Bitmapbutton button" + std::to_string(i) + " " + std::to_string(i) +
                "\nPOSITION=1 2 3 4\nPICTURE=\"picture\"\nHINT=\"A hint\"\n";
    text += "END\nM MENU\n";
    for (int i = 101; i <= 250; ++i)
        text += "Menuitem item" + std::to_string(i) + " " + std::to_string(i) +
                "\nPOSITION=2\nCAPTION=\"&Item...\"\nSHORTCUT=\"Ctrl+S\"\n";
    text += "END\n";
    if (!tarn::os::saveFile(folder + ".rc", text).ok()) std::abort();
    if (!CompileResources({folder + ".rc"}, folder + ".rcx").empty()) std::abort();
    SetApplicationResources(folder + ".rcx");
    useView(makeHeadlessView());
}

void loadAndUnload(benchmark::State& state) {
    prepare();
    for (auto _ : state) {
        if (Load(window) != Ok) state.SkipWithError("not loaded");
        Unload(window);
    }
}
BENCHMARK(loadAndUnload);

void loadWithTheFileReadAnew(benchmark::State& state) {
    prepare();
    for (auto _ : state) {
        SetApplicationResources(folder + ".rcx");
        if (Load(window) != Ok) state.SkipWithError("not loaded");
        Unload(window);
    }
}
BENCHMARK(loadWithTheFileReadAnew);

void findByName(benchmark::State& state) {
    prepare();
    Load(window);
    for (auto _ : state) benchmark::DoNotOptimize(FindControl(window, "ITEM250"));
    Unload(window);
}
BENCHMARK(findByName);

}  // namespace

BENCHMARK_MAIN();
