// SPDX-License-Identifier: Apache-2.0
// One value of a settings file with the whole file read again; the peer is GLib's key file. The last property of a list
// beside a copy of the list, and patterns, plain and made to take long, beside the same by std::regex where that ends.
#include "library/designer/propedit_patterns.h"
#include "library/designer/proputil.h"
#include "library/settings/profstr.h"

#include <benchmark/benchmark.h>
#include <glib.h>

#include <cstdio>
#include <fstream>
#include <regex>
#include <string>

namespace {

std::string makeFile(int keys) {
    const std::string path = "/tmp/tarnwick-bench-" + std::to_string(keys) + ".ini";
    std::ofstream out(path, std::ios::binary);
    for (int i = 0; i < keys; i++) {
        if (i % 10 == 0) out << "[Section" << i / 10 << "]\r\n";
        out << "Key" << i << "=value of key number " << i << "\r\n";
    }
    return path;
}

void profilestrget(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    const std::string path = makeFile(keys);
    const std::string section = "Section" + std::to_string((keys - 1) / 10),
                      key = "Key" + std::to_string(keys - 1);
    for (auto _ : state) {
        std::string value = tarn::PROFILESTRGET(path, section, key);
        if (value.empty()) state.SkipWithError("no value");
        benchmark::DoNotOptimize(value);
    }
    std::remove(path.c_str());
}
BENCHMARK(profilestrget)->Arg(50)->Arg(1000);

void gkeyfile(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    const std::string path = makeFile(keys);
    const std::string section = "Section" + std::to_string((keys - 1) / 10),
                      key = "Key" + std::to_string(keys - 1);
    for (auto _ : state) {
        GKeyFile* file = g_key_file_new();
        g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_NONE, nullptr);
        char* value = g_key_file_get_string(file, section.c_str(), key.c_str(), nullptr);
        if (value == nullptr) state.SkipWithError("no value");
        g_free(value);
        g_key_file_free(file);
    }
    std::remove(path.c_str());
}
BENCHMARK(gkeyfile)->Arg(50)->Arg(1000);

// A list as that of an edit control, which has the most properties.
std::string makeList() {
    std::string list = "NAME=edit1\nTYPEOF=Edit\nPOSITION=8 8 80 12\n";
    for (int i = 0; i < 12; i++)
        list += "PROPERTY" + std::to_string(i) + "=\"value " + std::to_string(i) + "\"\n";
    return list + "HINT=\"what it is for\"\n";
}

void getpropvalue(benchmark::State& state) {
    const std::string list = makeList();
    for (auto _ : state) {
        std::string value = tarn::GETPROPVALUE(list, "HINT");
        if (value != "what it is for") state.SkipWithError("no value");
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(getpropvalue);

void copyOfList(benchmark::State& state) {
    const std::string list = makeList();
    for (auto _ : state) {
        std::string copy = "\n" + list;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(copyOfList);

void setpropvalue(benchmark::State& state) {
    std::string list = makeList();
    for (auto _ : state) {
        tarn::SETPROPVALUE("HINT", "\"what it is for\"", list);
        benchmark::DoNotOptimize(list);
    }
}
BENCHMARK(setpropvalue);

constexpr const char* schemaLine = "CONSTRAINT pk_customers PRIMARY KEY CLUSTERED (customer_id ASC)";

void ismatch(benchmark::State& state) {
    for (auto _ : state)
        if (!tarn::ISMATCH(schemaLine, "PRIMARY +KEY[^(]*\\([a-z_]+")) state.SkipWithError("no match");
}
BENCHMARK(ismatch);

void stdRegex(benchmark::State& state) {
    for (auto _ : state) {
        const std::regex pattern("PRIMARY +KEY[^(]*\\([a-z_]+");
        if (!std::regex_search(schemaLine, pattern)) state.SkipWithError("no match");
    }
}
BENCHMARK(stdRegex);

// Ten closures in a row on so many characters, and no match.
void hostilePattern(benchmark::State& state) {
    const std::string text(static_cast<std::size_t>(state.range(0)), 'a');
    for (auto _ : state)
        if (tarn::ISMATCH(text, "a*a*a*a*a*a*a*a*a*a*b")) state.SkipWithError("a match");
    state.SetComplexityN(state.range(0));
}
BENCHMARK(hostilePattern)->Arg(100)->Arg(10000)->Arg(100000);

}  // namespace

BENCHMARK_MAIN();
