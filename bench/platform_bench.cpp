// SPDX-License-Identifier: Apache-2.0
// Loading a window of 180 objects from the compiled resources on the object model alone, and the look-ups
// that every command does; and a resource file of 100 dialogs, read and written.
#include "platform/resources/resource.h"
#include "platform/windowing.h"

#include "os/files.h"
#include "platform/model/view.h"
#include "platform/resources/rcedit.h"

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

// 100 dialogs of 20 controls, one of 255, with comments.
std::string manyDialogs() {
    std::string text;
    for (int d = 1; d <= 100; ++d) {
        text += "// The dialog " + std::to_string(d) + "\nDialog" + std::to_string(d) + " DIALOG\n";
        for (int c = 1; c <= (d == 100 ? MAX_CONTROLS : 20); ++c)
            text += "  // what it is for\n  Edit edit" + std::to_string(c) + " " + std::to_string(c) +
                    "\n    POSITION=1 2 3 4\n    TEXT=\"some text\"\n    MULTILINE=1\n";
        text += "END\n\n";
    }
    return text;
}

const std::string resources = folder + "-many.rc";

void parseManyDialogs(benchmark::State& state) {
    const std::string text = manyDialogs();
    for (auto _ : state) benchmark::DoNotOptimize(parseResourceText(text).statements.size());
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}
BENCHMARK(parseManyDialogs);

void readEachOfManyDialogs(benchmark::State& state) {
    if (!tarn::os::saveFile(resources, manyDialogs()).ok()) std::abort();
    ObjectArray objects;
    for (auto _ : state)
        for (int d = 1; d <= 100; ++d)
            if (!ResourceRead(resources, "Dialog" + std::to_string(d), objects).empty()) std::abort();
}
BENCHMARK(readEachOfManyDialogs)->Unit(benchmark::kMillisecond);

// Without the disk: what a save costs above its writing.
void changeOneOfManyDialogs(benchmark::State& state) {
    RcFile parsed = parseResourceText(manyDialogs());
    const std::string name = "Dialog" + std::to_string(state.range(0));
    ObjectArray objects;
    if (!readObjects(parsed, resources, name, objects).empty()) std::abort();
    for (auto _ : state) {
        std::swap(objects[1], objects[2]);
        if (!writeObjects(parsed, resources, objects, {}).empty()) std::abort();
    }
}
BENCHMARK(changeOneOfManyDialogs)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
