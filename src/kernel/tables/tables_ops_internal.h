// SPDX-License-Identifier: Apache-2.0
//
// The operations of tables.h, once for tables in memory and once for tables whose rows stand in a file.
// tables.cpp has checked the arguments: rows and keys have the shapes of the table, which is open. They give
// false when they failed; the error is then set.
//
// Of the two kinds of files of a table the rows are those that count: indexes can be made again. An operation
// looks into all indexes first and leaves their changes in memory, then writes the rows, then the indexes, so
// that a death in between leaves rows that are whole. Deleting cuts off the last row as its very last step.
#pragma once

#include "kernel/tables/table_access.h"

#include <cstdint>

namespace tarn {

bool MemoryTableFind(const TableDescriptor& t, std::int32_t indexNumber, const TreeSeek& seek,
                     const KeyView& key, RecordDescriptor* row, bool& found);
bool MemoryTableAdd(TableDescriptor& t, const RecordDescriptor& row);
bool MemoryTableUpdate(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key,
                       const RecordDescriptor& row);
bool MemoryTableDelete(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key);
bool MemoryTableRebuild(TableDescriptor& t);

// `found` false, with the result true, when there is no such row. 763 when the row that an index gives has
// not the key. `key` may be a part of `row`.
bool FileTableFind(const TableDescriptor& t, std::int32_t indexNumber, const TreeSeek& seek,
                   const KeyView& key, RecordDescriptor* row, bool& found);
bool FileTableAdd(TableDescriptor& t, const RecordDescriptor& row);  // 635
bool FileTableUpdate(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key,
                     const RecordDescriptor& row);                                       // 604, 635
bool FileTableDelete(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key);  // 604
bool FileTableClear(TableDescriptor& t);
// 637: the indexes are then as tables.h says. Stopped by the user (run/progress.h): true, and as it was.
bool FileTableRebuild(TableDescriptor& t);

// Makes the rows of a table those of another of the same row type; each may stand in a file.
bool CopyIntoFileTable(const TableDescriptor& from, TableDescriptor& to);

}  // namespace tarn
