// SPDX-License-Identifier: Apache-2.0
// Delimited text beside the import of sqlite3, and beside a loop that only splits.
#include "data_bench.h"

#include "kernel/data/tab/tabular.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/tables/filevalues.h"

#include <algorithm>
#include <cstring>

namespace bench {

using namespace tarn;

namespace {

constexpr DataOptions commaRows{1, 0, ',', -1};
constexpr std::int32_t manyRows = 1000000;

bool loaded(const DataResult& result, std::int32_t rows) {
    return result.code == 0 && result.rows == rows;
}

// ---- here ----

void csvListKernel(benchmark::State& state) {
    const std::string path = ordersCsv();
    ListValue list;
    initList(list.get(), orderDeclaration);
    repeat(
        state, [&] { return loaded(TabLoad(path, commaRows, list.get(), KindList), OrderRows); },
        [&] { ListClear(list.get()); });
    setRows(state, OrderRows);
}

// The declaration is what is found in the first rows.
void csvDiscoverKernel(benchmark::State& state) {
    const std::string path = ordersCsv();
    const DataOptions firstRows{1, 0, ',', 100};
    ListValue list;
    const auto load = [&] {
        initList(list.get(), TabDiscover(path, firstRows, MaxTypeInfo).typeText);
        return loaded(TabLoad(path, commaRows, list.get(), KindList), OrderRows);
    };
    repeat(state, load, [&] { list = {}; });
    setRows(state, OrderRows);
}

void csvTableKernel(benchmark::State& state) {
    const std::string path = ordersCsv();
    TableValue table;
    initTable(table.get(), orderDeclaration, static_cast<std::int32_t>(state.range(0)));
    repeat(
        state, [&] { return loaded(TabLoad(path, commaRows, table.get(), KindTable), OrderRows); },
        [&] { TableClear(table.get()); });
    setRows(state, OrderRows);
}

// A list in a file is the rows of that file: the old ones go as the new ones come.
void csvFileListKernel(benchmark::State& state) {
    const std::string path = ordersCsv(manyRows);
    RecordValue row;
    TypeInfoToRecord(String(orderDeclaration).get(), row.get());
    ListValue list;
    ListInit(list.get(), UNBOUNDED, row.get(), KindRecord, true);
    FileOpen(list.get(), KindList, pathOf("orders.rows"));
    for (auto _ : state)
        if (!loaded(TabLoad(path, commaRows, list.get(), KindList), manyRows))
            return state.SkipWithError("the work was not done");
    setRows(state, manyRows);
}

void csvSaveKernel(benchmark::State& state) {
    ListValue list;
    initList(list.get(), orderDeclaration);
    TabLoad(ordersCsv(), commaRows, list.get(), KindList);
    const std::string names = "id\nname\ntown\namount\nweight\nday\npieces\npaid\n";
    const std::string path = pathOf("saved.csv");
    repeat(state, [&] { return loaded(TabSave(path, commaRows, list.get(), KindList, names), OrderRows); });
    setRows(state, OrderRows);
}

// ---- peers ----

const std::string createOrders = "create table t(id integer, name text, town text, amount real, weight real, "
                                 "day text, pieces integer, paid text);\n";

std::string importOf(const std::string& path) {
    return ".mode csv\n.import --skip 1 " + path + " t\n";
}

void csvImportSqlite(benchmark::State& state) {
    const std::string index = state.range(0) != 0 ? "create unique index i on t(id);\n" : "";
    timeProgram(state, {"sqlite3", ":memory:"}, createOrders + index + importOf(ordersCsv()));
    setRows(state, OrderRows);
}

void csvFileImportSqlite(benchmark::State& state) {
    const std::string base = pathOf("many.db");
    timeProgram(state, {"sqlite3", base},
                "drop table if exists t;\n" + createOrders + importOf(ordersCsv(manyRows)));
    setRows(state, manyRows);
}

void csvSaveSqlite(benchmark::State& state) {
    const std::string base = fileOf("orders.db", [] { return std::string(); });
    if (sizeOf(base) == 0) runProgram({"sqlite3", base}, createOrders + importOf(ordersCsv()));
    timeProgram(state, {"sqlite3", base}, ".mode csv\n.headers on\nselect * from t;\n", pathOf("sqlite.csv"));
    setRows(state, OrderRows);
}

// All cells of the text, found and no more.
bool split(const std::string& path) {
    const std::string text = contentOf(path);
    std::int64_t cells = 0, characters = 0;
    const char* at = text.data();
    for (const char* const end = at + text.size(); at != end;) {
        const auto* const line =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        for (const char* cell = at; cell <= line; ++cells) {
            const void* const mark = std::memchr(cell, ',', static_cast<std::size_t>(line - cell));
            const char* const cellEnd = mark != nullptr ? static_cast<const char*>(mark) : line;
            characters += cellEnd - cell;
            cell = cellEnd + 1;
        }
        at = line + 1;
    }
    benchmark::DoNotOptimize(characters);
    return cells == 8 * (OrderRows + 1);
}
void csvSplitPlain(benchmark::State& state) {
    const std::string path = ordersCsv();
    repeat(state, [&] { return split(path); });
    setRows(state, OrderRows);
}

BENCHMARK(csvListKernel);
BENCHMARK(csvDiscoverKernel);
BENCHMARK(csvTableKernel)->Arg(0)->Arg(1);
BENCHMARK(csvImportSqlite)->Arg(0)->Arg(1)->UseManualTime();
BENCHMARK(csvSplitPlain);
BENCHMARK(csvFileListKernel)->Iterations(1)->Repetitions(3);
BENCHMARK(csvFileImportSqlite)->Iterations(1)->Repetitions(3)->UseManualTime();
BENCHMARK(csvSaveKernel);
BENCHMARK(csvSaveSqlite)->UseManualTime();

// ---- growing files ----

void csvListLinear(benchmark::State& state) {
    const std::string path = wideCsv(state.range(0));
    ListValue list;
    initList(list.get(), wideDeclaration);
    repeat(
        state, [&] { return TabLoad(path, commaRows, list.get(), KindList).code == 0; },
        [&] { ListClear(list.get()); });
    setBytes(state, sizeOf(path));
}
BENCHMARK(csvListLinear)->Arg(1)->Arg(10)->Arg(100);

}  // namespace

}  // namespace bench
