// SPDX-License-Identifier: Apache-2.0
//
// Delimited text files: rows of cells with a separator between them. A cell that begins with '"' runs to the
// closing one, may hold any byte, and "" in it stands for one quote. docs/formats/tabular.md has the rules.
//
// Limits: 48 columns, lines of 32767 characters, column names of 255.
//
// Cost: linear in the file, which is read in blocks.
#pragma once

#include "kernel/values.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr std::int32_t MaxTabColumns = 48, MaxTabLine = 32767, MaxTabName = 255;

// How a file is laid out. As a record: four integers in this order.
struct TabOptions {
    std::int32_t numheaderrows = 0;   // 0 none, 1 column names, 2 column names and a line of dashes
    std::int32_t numfooterrows = 0;   // rows behind the data
    std::int32_t separatorchar = 44;  // character code; -1: none, every line is one cell as it stands
    std::int32_t maxdatarows = -1;    // rows to read; -1 for all
};
// The defaults of format 1 (lines), 2 (comma) and 7 (tab, two header rows).
TabOptions DefaultTabOptions(std::int32_t format);
// From an options record; the defaults for null and for an empty one, 764 and 757 for what is no such record.
TabOptions TabOptionsOf(const RecordDescriptor* options, std::int32_t format);

struct TabStructure {
    std::string typeText;  // "Tname : record" ... "end record"; "" when nothing was found
    std::string message;   // "" or what is wrong
    std::int32_t rowsSeen = 0, columnsSeen = 0;  // columns: also those beyond the 48 that are declared
    bool stopped = false;                        // by progress.h: nothing was found, and there is no message
    std::int32_t rowBehind = 0;  // 0, or the first one that is not blank behind the empty line that ended it
};
// Reads names and types of the columns from the rows up to the first empty line.
TabStructure TabDiscover(const std::string& filename, const TabOptions& options, std::int32_t typeTextSize);

// How much there is in a file, whatever its cells hold.
struct TabExtent {
    std::int32_t code = 0, row = 0;  // the first failure: of the file, or 986 for a row of more than a line
    std::int32_t rows = 0;           // up to the last one that holds a text
    std::vector<std::int32_t>
        longest{};         // of each column that holds one, 48 at most: characters of the longest
    bool stopped = false;  // by progress.h
};
TabExtent TabMeasure(const std::string& filename, const TabOptions& options);

// How a load or a save ended. `code` 0: well; else the first failure: 981 to 986, 989 for a cell (the load
// goes on with the next row), 618, 619, 635 for a row that the value refused, 651 to 655 and 657 for the
// file, or for that of the value, 658 for a value that such a file cannot hold, 661 for one that is held in a
// file and not open, 757 for a separator that cannot be, 764 for what is no value, 802 and 804.
struct TabResult {
    std::int32_t code = 0;
    std::int32_t row = 0;   // of the first failure, from 1
    std::int32_t rows = 0;  // read or written; 0 where the value, or the file, is as it was
    bool stopped = false;   // by progress.h: the value is as it was
    std::int32_t line = 0;  // of the first failure, from 1, where `row` cannot tell it (XML)
    // Of a save that failed:
    std::string message{};     // more than its code says; else empty
    std::string rescueCopy{};  // where the new bytes stand if the file may be damaged; else empty
};
// Gives every cell of the first 48 columns to `visit`, with the numbers of its row and column, from 1, and
// its text as a string would take it. `rows` of the result are those that were read.
using TabVisitor = std::function<void(std::int32_t row, std::int32_t column, std::string_view text)>;
TabResult TabVisitCells(const std::string& filename, const TabOptions& options, const TabVisitor& visit);
// Reads a whole file into a string, set, list, record, union or table; the old content goes. Errors of values
// are told in the result alone; the error cell stays clear.
TabResult TabLoad(const std::string& filename, const TabOptions& options, void* value, Kind kind);
// Replaces the file; on failure the old one stays. `names` of the columns, one per line, where the value does
// not have them (a table does).
TabResult TabSave(const std::string& filename, const TabOptions& options, const void* value, Kind kind,
                  std::string_view names = {});

}  // namespace tarn
