// SPDX-License-Identifier: Apache-2.0
//
// Making the indexes of many rows. Rows are read one after another, nodes written some thousands at a time:
// memory does not grow with the table.
#pragma once

#include "kernel/list_access.h"
#include "kernel/table_access.h"
#include "kernel/tables_file_index.h"

#include <cstdint>
#include <string>

namespace tarn {

// Says now and then how many rows were done, and asks whether to go on.
class RowProgress {
public:
    RowProgress(const TableHeader& header, std::int32_t passes);  // over all rows
    bool step();

private:
    std::int64_t rowBytes_, total_, done_ = 0, next_;
};

enum class Filled { Whole, Duplicate, Stopped, Failed };

// Fills an empty index file in row order, up to a row whose key another has.
class IndexFill {
public:
    IndexFill(const TableHeader& shape, std::int32_t index) : header_(shape), index_(index) {}
    bool open(const std::string& path);
    // Rows from `first` to `last`. What stands before a duplicate is in the file then, and the fill can go on
    // behind it.
    Filled run(ListReader& rows, std::int32_t first, std::int32_t last, RowProgress* progress);
    bool close() { return tree_.close(); }
    [[nodiscard]] const DuplicateKey& duplicate() const { return duplicate_; }
    [[nodiscard]] std::int32_t badRow() const { return badRow_; }  // that could not be read; 0 for none

private:
    Filled insert(const RecordDescriptor& row, std::int32_t number);

    const TableHeader& header_;
    std::int32_t index_;
    FileTree tree_;
    DuplicateKey duplicate_;
    std::int32_t badRow_ = 0;
};

}  // namespace tarn
