// SPDX-License-Identifier: Apache-2.0
//
// Making the indexes of many rows. Rows are read one after another. The index of a large table is written at
// once, of its sorted keys; that of a small one, and what comes behind a duplicate, row by row, some
// thousands of nodes at a time. Memory does not grow with the table.
#pragma once

#include "kernel/index/index_filesort.h"
#include "kernel/index/index_filetree.h"
#include "kernel/lists/list_access.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/tables/tables_file_mend.h"
#include "os/tinylimits.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarn {

// Says now and then how many rows were done, and asks whether to go on. For an index a row counts twice: when
// its key is known, and when it is written.
class RowProgress {
public:
    RowProgress(const TableHeader& header, std::int32_t indexes);
    bool step(std::int32_t times);

private:
    std::int64_t rowBytes_, total_, halves_ = 0, next_;
};

enum class Filled { Whole, Duplicate, Stopped, Failed };

// Whether a duplicate is the last row, whole, at an earlier place: a deletion that died had moved it there. False, with the
// error set, also when one of the two cannot be read.
bool IsLastRowAgain(const TableHeader& header, const DuplicateKey& duplicate);

// Fills an empty index file, up to the first row, in row order, whose key another has.
class IndexFill {
public:
    static constexpr std::int32_t leastAtOnce = limits::LeastSorted;

    // `sortBytes` are those that keys may take in memory while they are sorted.
    IndexFill(const TableHeader& shape, std::int32_t index, std::size_t sortBytes = KeySort::usualBytes)
        : header_(shape), index_(index), sortBytes_(sortBytes) {}
    bool open(const std::string& path);
    // Rows from `first` to `last`. What stands before a duplicate is in the file then, and the fill can go on
    // behind it.
    Filled run(ListReader& rows, std::int32_t first, std::int32_t last, RowProgress* progress);
    bool close() { return tree_.close(); }
    [[nodiscard]] const DuplicateKey& duplicate() const { return duplicate_; }
    [[nodiscard]] std::int32_t badRow() const { return badRow_; }  // that could not be read; 0 for none

private:
    Filled insert(const RecordDescriptor& row, std::int32_t number);
    Filled runByRow(ListReader& rows, std::int32_t first, std::int32_t last, RowProgress* progress);
    std::optional<Filled> runAtOnce(ListReader& rows, std::int32_t last, RowProgress* progress);

    const TableHeader& header_;
    std::int32_t index_;
    std::size_t sortBytes_;
    std::string path_;
    KeyLayout layout_;
    FileTree tree_;
    DuplicateKey duplicate_;
    std::int32_t badRow_ = 0, rowsPerCommit_ = 1;
};

}  // namespace tarn
