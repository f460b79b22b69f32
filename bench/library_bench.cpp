// SPDX-License-Identifier: Apache-2.0
// One value of a settings file with the whole file read again; the peer is GLib's key file.
#include "library/settings/profstr.h"

#include <benchmark/benchmark.h>
#include <glib.h>

#include <cstdio>
#include <fstream>
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

}  // namespace

BENCHMARK_MAIN();
