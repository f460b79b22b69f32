// SPDX-License-Identifier: Apache-2.0
//
// Rows on their way from one file to another: a table without indexes, in memory, or in a file of a folder
// for the work when there are more than memory holds.
#pragma once

#include "kernel/lists/rowfile.h"
#include "kernel/values/owned.h"
#include "tarn_data/base/problem.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tarn::datatool {

class WorkFolder;

class Rows {
public:
    Rows();
    ~Rows();
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    std::unique_ptr<WorkFolder> folder;  // that the rows stand in when memory has no room for them
    TableValue table;

    [[nodiscard]] std::int32_t count() const;
    // An empty row that shows the shape of all.
    [[nodiscard]] const RecordDescriptor* shape() const;
    // A row, from 1; valid until the next is asked for. Null, with the error in the cell, when it cannot be
    // read.
    RecordDescriptor* at(std::int32_t number);
    // Keeps what was changed of the row that was given last.
    bool keep();
    // Appends a row of this shape. 635, 619 and the codes of memory and files.
    bool add(const RecordDescriptor* row);
    // Reading and appending many rows in a file goes in blocks, from now until the end of this or `endBatch`.
    bool beginBatch();
    bool endBatch();

private:
    [[nodiscard]] ListDescriptor* list();
    RecordValue row_;  // the copy of one that stands in a file
    std::int32_t number_ = 0;
    std::unique_ptr<RowBatch> batch_;
};

}  // namespace tarn::datatool
