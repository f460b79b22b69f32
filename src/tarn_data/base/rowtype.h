// SPDX-License-Identifier: Apache-2.0
//
// Declarations of rows. A table file does not tell what its rows are, so the user gives a text file with the
// type information text of a record, or of a list or a table that holds one; what `info` prints will do.
#pragma once

#include "kernel/values/owned.h"
#include "tarn_data/base/problem.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

struct RowType {
    std::string columns;    // type information text: the lines of the fields
    RecordValue row;        // an empty one
    std::int32_t capacity;  // of the table; UNBOUNDED
    RowType();
    [[nodiscard]] bool there() const { return !columns.empty(); }
};
// An empty record of these columns; false, and the error in the cell, when it cannot be made.
bool makeRow(std::string_view columns, RecordValue& row);
// Reads a declaration from a file, and looks whether its rows can stand in a file.
Problem readRowType(const std::string& file, RowType& type);
// That of the rows of an Xbase file, the deletion mark first.
Problem xbaseRowType(const std::string& file, RowType& type);
std::int32_t rowBytes(const RowType& type);

// A table without rows that is held in a file and not open, with these indexes. False: it cannot be made.
bool makeFileTable(const RowType& type, const std::vector<std::int32_t>& keyMaps, TableValue& table);

}  // namespace tarn::datatool
