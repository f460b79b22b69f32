// SPDX-License-Identifier: Apache-2.0
//
// What the parts of data_bench share: the files that they read, which are made when they are first wanted and
// go with the program, and the shapes of the values that they are read into.
//
// Loads are timed without the freeing of what they loaded. Figures are processor time, for other programs
// disturb it least; only what waits for the disk, or for another program, is timed otherwise.
#pragma once

#include "kernel/tables/tables.h"
#include "kernel/values/owned.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "kernel/values/values.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

inline constexpr std::int32_t OrderRows = 100000;
inline constexpr std::int64_t Megabyte = 1000000;

// One line of the orders: 8 columns of which two are texts and one is a date.
struct Order {
    std::int32_t id, pieces;
    std::string name, town, amount, weight, day, paid;
};
Order orderNumber(std::int32_t i);  // the same for the same number, from 1

// ---- files ----

// A path in the folder of this run.
std::string pathOf(std::string_view name);
// The file of that name, made by `make`, which gives its bytes, unless it is there.
std::string fileOf(std::string_view name, const std::function<std::string()>& make);
// Block by block, as files grow that are used row by row: the system keeps what is written at once together,
// and then takes long for each small change in it.
void writeAt(const std::string& path, std::int64_t offset, std::string_view bytes);
std::int64_t sizeOf(const std::string& path);
std::string contentOf(const std::string& path);

std::string ordersCsv(std::int32_t rows = OrderRows);
std::string ordersXml(std::int32_t rows = OrderRows);
std::string ordersXmlAttributes(std::int32_t rows = OrderRows);
// Rows of 40 texts, so that 100 MB fit into a list of at most 113,777 records.
std::string wideCsv(std::int64_t megabytes);
std::string wideXml(std::int64_t megabytes);

// ---- values ----

extern const std::string orderDeclaration, wideDeclaration;  // of one row
void initList(tarn::ListDescriptor* list, const std::string& declaration);
// Indexes on the first fields.
void initTable(tarn::TableDescriptor* table, const std::string& declaration, std::int32_t indexes);

// ---- timing ----

// Times `work`, which gives whether it did what it should, and `after` not. It was done once before, so that
// the system has found the file and given the memory: clearing pages costs as much as reading a file into
// them.
void repeat(benchmark::State& state, const std::function<bool()>& work,
            const std::function<void()>& after = nullptr);
// The rates of what every iteration did.
void setBytes(benchmark::State& state, std::int64_t bytes);
void setRows(benchmark::State& state, std::int64_t rows);

// Runs a program with these words and the text as its input, its output into the file `output`: its seconds
// of processor time, or -1 when it failed.
double runProgram(const std::vector<std::string>& words, const std::string& input,
                  const std::string& output = "/dev/null");
// Processor time of a program less that of its start alone, as manual time.
void timeProgram(benchmark::State& state, const std::vector<std::string>& words, const std::string& input,
                 const std::string& output = "/dev/null");

// ---- the memory of a table on disk, in a program of its own ----

inline constexpr const char* diskMemoryOption = "--disk-memory";
int printDiskMemory(const char* path, const char* rows, const char* indexes);

}  // namespace bench
