// SPDX-License-Identifier: Apache-2.0
// A durable save of 4,000,000 bytes; the floor is a plain write with fsync and no rename.
#include "os/files.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

const std::string text(4000000, 'x');

void saveDurable(benchmark::State& state) {
    const std::string path = "/tmp/tarnwick-bench-save";
    for (auto _ : state) {
        if (!tarn::os::saveFile(path, text).ok()) state.SkipWithError("not saved");
    }
    std::remove(path.c_str());
}
BENCHMARK(saveDurable)->Unit(benchmark::kMillisecond)->MinTime(2);

void writeAndSync(benchmark::State& state) {
    const char* path = "/tmp/tarnwick-bench-plain";
    for (auto _ : state) {
        const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (write(fd, text.data(), text.size()) < 0 || fsync(fd) != 0) state.SkipWithError("not written");
        close(fd);
    }
    std::remove(path);
}
BENCHMARK(writeAndSync)->Unit(benchmark::kMillisecond)->MinTime(2);

}  // namespace

BENCHMARK_MAIN();
