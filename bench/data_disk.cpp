// SPDX-License-Identifier: Apache-2.0
//
// Tables on disk, by the operation, beside SQLite opened for each operation (as a table here is) and held
// open, and beside LevelDB, which is held open always and does not look whether a key is there. Rows are six
// integers, of which the first ones are keys, all unique.
#include "data_bench.h"
#include "disk_kernel.h"
#include "disk_peers.h"
#include "kernel/run/errorcell.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace bench {

namespace {

// ---- operations ----

// Every benchmark of one store uses the same, which is made once and left as it was. Errors of an earlier one are
// forgotten: only its own rows say so.
template <class Store>
Store& storeOf(benchmark::State& state) {
    tarn::ClearError();
    static std::map<std::pair<std::int64_t, std::int64_t>, std::unique_ptr<Store>> stores;
    auto& store = stores[{state.range(0), state.range(1)}];
    if (store == nullptr)
        store = std::make_unique<Store>(static_cast<std::int32_t>(state.range(0)),
                                        static_cast<std::int32_t>(state.range(1)));
    return *store;
}

// Every row once before any comes again, in an order that is none of the keys'.
std::int32_t nextProbe(std::int32_t probe, std::int32_t count) {
    constexpr std::int32_t step = 61803;  // prime to all the counts
    return (probe + step) % count;
}

void notDone(benchmark::State& state) {
    state.SkipWithError(("the work was not done, error " + std::to_string(tarn::TakeError())).c_str());
}

template <class Work>
void eachTime(benchmark::State& state, bool good, Work work) {
    for (auto _ : state)
        if (!good || !work()) return notDone(state);
}

template <class Store>
void diskFind(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    std::int32_t probe = 0;
    eachTime(state, store.good(), [&] {
        probe = nextProbe(probe, static_cast<std::int32_t>(state.range(0)));
        return store.find(probe);
    });
}
template <class Store>
void diskNext(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    eachTime(state, store.good() && store.find(0), [&] { return store.next(); });
}
template <class Store>
void diskAdd(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    const auto rows = static_cast<std::int32_t>(state.range(0));
    std::int32_t added = rows;
    eachTime(state, store.good(), [&] { return store.add(added++); });
    while (added > rows) store.remove(--added);
}
template <class Store>
void diskDelete(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    auto row = static_cast<std::int32_t>(state.range(0));
    for (std::int64_t i = 0; i < static_cast<std::int64_t>(state.max_iterations); ++i)
        store.add(row + static_cast<std::int32_t>(i));
    eachTime(state, store.good(), [&] { return store.remove(row++); });
}
// Rows from anywhere, of which nothing was used shortly before. Each comes back, which is not timed.
template <class Store>
void diskDeleteSpread(benchmark::State& state) {
    Store& store = storeOf<Store>(state);
    std::int32_t probe = 0;
    for (auto _ : state) {
        probe = nextProbe(probe, static_cast<std::int32_t>(state.range(0)));
        const bool removed = store.good() && store.remove(probe);
        state.PauseTiming();
        if (!removed || !store.add(probe)) return notDone(state);
        state.ResumeTiming();
    }
}

constexpr std::int64_t readings = 1000, changes = 200;

void readingSizes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{1000, 10000, 100000, 1000000}, {1}})->Iterations(readings);
}
void changingSizes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{1000, 10000, 100000, 1000000}, {1, 5}})->Iterations(changes);
}
// A million rows with five indexes take LevelDB long to be made.
void levelSizes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{1000, 10000, 100000, 1000000}, {1}})->Args({100000, 5})->Iterations(changes);
}

#define EACH_STORE(operation, sizing, levelSizing)                                                           \
    BENCHMARK(operation<KernelRows>)->Name(#operation "Kernel")->Apply(sizing);                              \
    BENCHMARK(operation<SqliteOpened>)->Name(#operation "SqliteOpened")->Apply(sizing);                      \
    BENCHMARK(operation<SqliteHeld>)->Name(#operation "SqliteHeld")->Apply(sizing);                          \
    BENCHMARK(operation<LevelRows>)->Name(#operation "Level")->Apply(levelSizing)
EACH_STORE(diskFind, readingSizes, readingSizes);
EACH_STORE(diskNext, readingSizes, readingSizes);
EACH_STORE(diskAdd, changingSizes, levelSizes);
BENCHMARK(diskFind<KernelRebuilt>)->Name("diskFindRebuilt")->Apply(readingSizes);
BENCHMARK(diskNext<KernelRebuilt>)->Name("diskNextRebuilt")->Apply(readingSizes);
BENCHMARK(diskAdd<KernelRebuilt>)->Name("diskAddRebuilt")->Apply(changingSizes);
EACH_STORE(diskDelete, changingSizes, levelSizes);

void largeOnes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{100000, 1000000}, {1}})->Iterations(readings);
}
void largeChanges(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{100000, 1000000}, {1, 5}})->Iterations(changes);
}
BENCHMARK(diskFind<KernelGrown>)->Name("diskFindGrown")->Apply(largeOnes);
BENCHMARK(diskFind<KernelHeld>)->Name("diskFindHeld")->Apply(largeOnes);
BENCHMARK(diskNext<KernelGrown>)->Name("diskNextGrown")->Apply(largeOnes);
BENCHMARK(diskNext<KernelHeld>)->Name("diskNextHeld")->Apply(largeOnes);
BENCHMARK(diskAdd<KernelGrown>)->Name("diskAddGrown")->Apply(largeChanges);
BENCHMARK(diskAdd<KernelHeld>)->Name("diskAddHeld")->Apply(largeChanges);
BENCHMARK(diskDelete<KernelGrown>)->Name("diskDeleteGrown")->Apply(largeChanges);
BENCHMARK(diskDelete<KernelHeld>)->Name("diskDeleteHeld")->Apply(largeChanges);
BENCHMARK(diskDeleteSpread<KernelRows>)->Name("diskDeleteSpreadKernel")->Apply(largeChanges);
BENCHMARK(diskDeleteSpread<KernelGrown>)->Name("diskDeleteSpreadGrown")->Apply(largeChanges);
BENCHMARK(diskDeleteSpread<SqliteOpened>)->Name("diskDeleteSpreadSqliteOpened")->Apply(largeChanges);

// ---- to the disk ----

void durable(benchmark::internal::Benchmark* b) {
    b->Args({100000, 1})->Args({100000, 5})->Iterations(20)->UseRealTime();
}
BENCHMARK(diskAdd<KernelDurable>)->Name("diskAddDurable")->Apply(durable);
BENCHMARK(diskAdd<SqliteFull>)->Name("diskAddSqliteFull")->Apply(durable);

// ---- whole indexes ----

void diskRebuildKernel(benchmark::State& state) {
    KernelRows& store = storeOf<KernelRows>(state);
    store.close();
    repeat(state, [&] { return store.rebuild().error == 0; });
    store.open();
    setRows(state, state.range(0));
}
void diskRebuildSqlite(benchmark::State& state) {
    Sqlite db(
        makeSqlite(static_cast<std::int32_t>(state.range(0)), static_cast<std::int32_t>(state.range(1))),
        true, "off");
    const auto rebuild = [&] { return db.with("REINDEX", [](Statement& s) { return s.run(); }); };
    repeat(state, rebuild);
    setRows(state, state.range(0));
}
void rebuiltSizes(benchmark::internal::Benchmark* b) {
    b->ArgsProduct({{100000, 1000000}, {1, 5}});
}
BENCHMARK(diskRebuildKernel)->Apply(rebuiltSizes);
BENCHMARK(diskRebuildSqlite)->Apply(rebuiltSizes);

// ---- memory ----

// A line of /proc/self/status, in kB.
std::int64_t statusOf(const std::string& name) {
    std::ifstream in("/proc/self/status");
    for (std::string word; in >> word;)
        if (std::int64_t value = 0; word == name + ":" && in >> value) return value;
    return -1;
}

// How far the memory of a program that uses one table rises above what it is when that is open; "kB" of the
// counters.
void diskMemory(benchmark::State& state) {
    const auto rows = static_cast<std::int32_t>(state.range(0)),
               indexes = static_cast<std::int32_t>(state.range(1));
    const std::string path = makeKernel(rows, indexes, Nodes::Balanced, "memory"),
                      output = pathOf("memory.txt");
    for (auto _ : state) {
        const double used = runProgram(
            {"/proc/self/exe", diskMemoryOption, path, std::to_string(rows), std::to_string(indexes)}, "",
            output);
        if (used < 0) return state.SkipWithError("the program failed");
        state.counters["kB"] = std::stod(contentOf(output));
    }
}
BENCHMARK(diskMemory)->Args({1000, 5})->Args({1000000, 5})->Iterations(1)->Repetitions(1);

}  // namespace

int printDiskMemory(const char* path, const char* rows, const char* indexes) {
    constexpr std::int32_t operations = 2000;
    KernelRows store(path, std::atoi(indexes));
    store.open();
    const std::int32_t count = std::atoi(rows);
    const std::int64_t before = statusOf("VmRSS");
    bool good = store.good();
    for (std::int32_t i = 0, probe = 0; i < operations && good; ++i) {
        probe = nextProbe(probe, count);
        good = store.find(probe) && store.next() && store.add(count) && store.remove(count);
    }
    std::printf("%lld\n", static_cast<long long>(statusOf("VmHWM") - before));
    return good ? 0 : 1;
}

}  // namespace bench
