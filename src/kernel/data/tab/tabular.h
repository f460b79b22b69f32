// SPDX-License-Identifier: Apache-2.0
//
// Delimited text files: rows of cells with a separator between them. A cell that begins with '"' runs to the
// closing one, may hold any byte, and "" in it stands for one quote. docs/formats/tabular.md has the rules.
//
// Limits: 48 columns, lines of 32767 characters, column names of 255.
//
// Cost: linear in the file, which is read in blocks.
#pragma once

#include "kernel/data/format.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr std::int32_t MaxTabColumns = 48, MaxTabLine = 32767, MaxTabName = 255;

struct TabStructure {
    std::string typeText;  // "Tname : record" ... "end record"; "" when nothing was found
    std::string message;   // "" or what is wrong
    std::int32_t rowsSeen = 0, columnsSeen = 0;  // columns: also those beyond the 48 that are declared
    bool stopped = false;                        // by progress.h: nothing was found, and there is no message
};
// Reads names and types of the columns from the rows up to the first empty line.
TabStructure TabDiscover(const std::string& filename, const DataOptions& options, std::int32_t typeTextSize);

// Gives every cell of the first 48 columns to `visit`, with the numbers of its row and column, from 1, and
// its text as a string would take it. `rows` of the result are those that were read.
using TabVisitor = std::function<void(std::int32_t row, std::int32_t column, std::string_view text)>;
DataResult TabVisitCells(const std::string& filename, const DataOptions& options, const TabVisitor& visit);
// Reads a whole file into a string, set, list, record, union or table; the old content goes. Errors of values
// are told in the result alone; the error cell stays clear.
DataResult TabLoad(const std::string& filename, const DataOptions& options, void* value, Kind kind);
// Replaces the file; on failure the old one stays. `names` of the columns, one per line, where the value does
// not have them (a table does).
DataResult TabSave(const std::string& filename, const DataOptions& options, const void* value, Kind kind,
                   std::string_view names = {});

}  // namespace tarn
