// SPDX-License-Identifier: Apache-2.0
// A class text of 8,000 lines, the most that is changed: listed, one function looked for, and each change. The floor is
// the same text cut into lines that are copied.
#include "library/source/symbols.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

// Functions of forty lines, as people write them.
std::string makeClass() {
    std::string text = "Tarnwick Class Large\r\nUses One Two Three\r\n\r\n";
    int lines = 4;  // with that of the end
    for (int n = 1; lines + 40 <= 8000; lines += 40, ++n) {
        text += "// Function " + std::to_string(n) + " of the class.\r\n";
        text += "public function Fun" + std::to_string(n) +
                "(first : integer, inout second : string) return integer\r\n";
        text += "    var total : integer\r\n";
        for (int i = 0; i < 35; ++i)
            text += "        total := total + first * " + std::to_string(i) + "  // and so on\r\n";
        text += "end function\r\n\r\n";
    }
    for (; lines < 8000; ++lines) text += "\r\n";
    return text + "End class\r\n";
}
const std::string& largeClass() {
    static const std::string text = makeClass();
    return text;
}

void linesPlain(benchmark::State& state) {
    const std::string& text = largeClass();
    for (auto _ : state) {
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find('\n', at) + 1;
            lines.push_back(text.substr(at, end - at));
            at = end;
        }
        if (lines.size() != 8000) state.SkipWithError("not 8,000 lines");
    }
}
BENCHMARK(linesPlain);

void classScan(benchmark::State& state) {
    const std::string& text = largeClass();
    for (auto _ : state) {
        std::string list = tarn::SYMSCANSOURCE(text, 1024 + 2048 + 4096 + 8192);
        if (list.empty()) state.SkipWithError("no functions");
        benchmark::DoNotOptimize(list);
    }
}
BENCHMARK(classScan);

void classFind(benchmark::State& state) {
    const std::string& text = largeClass();
    for (auto _ : state)
        if (tarn::SYMFINDFUNCTION("fun199", 0, text).bodyStart == 0) state.SkipWithError("not found");
}
BENCHMARK(classFind);

template <typename Change>
void changed(benchmark::State& state, Change change) {
    for (auto _ : state) {
        std::string text = largeClass();
        if (!change(text)) state.SkipWithError("not changed");
        benchmark::DoNotOptimize(text);
    }
}
void classAdd(benchmark::State& state) {
    changed(state, [](std::string& text) {
        return tarn::SYMADDFUNCTION("function f()\nend function", 0, text).empty();
    });
}
BENCHMARK(classAdd);
void classDelete(benchmark::State& state) {
    changed(state, [](std::string& text) { return tarn::SYMDELETEFUNCTION("Fun199", 0, text); });
}
BENCHMARK(classDelete);
void classRename(benchmark::State& state) {
    changed(state,
            [](std::string& text) { return tarn::SYMRENAMEFUNCTION("Fun199", "Other", 0, text).empty(); });
}
BENCHMARK(classRename);
void classUses(benchmark::State& state) {
    changed(state, [](std::string& text) { return tarn::SYMSETUSES("One Two", 0, text).empty(); });
}
BENCHMARK(classUses);

}  // namespace
