// SPDX-License-Identifier: Apache-2.0
//
// Whether the files of a table fit each other and its declaration. Only the modules of lists, tables and data
// files include this, and tools. Nothing here changes a file.
//
// Cost: linear in the files, but for the type text.
#pragma once

#include "kernel/values/values.h"

#include <string>
#include <string_view>

namespace tarn {

// 762 for a type text that is not that of the rows. An empty one is not looked at.
bool AcceptTypeText(const TableDescriptor& t, std::string text);

// "" or what is wrong with the files of an open table: the size and the count of the rows, each row's bytes,
// each index from its header to its last node, and whether nodes and rows have the same keys. Sets no error.
std::string CheckTableFile(const TableDescriptor& t);
// "" or what is wrong with the indexes of an open table. Sets no error.
std::string CheckIndexFiles(const TableDescriptor& t);

// Whether all guarded rows of an open table (tables_file_guard.h) are found by the first index. Sets
// no error.
bool HasAllGuardedRows(const TableDescriptor& t);
// Whether a table that is held in a file and not open misses rows that were guarded while deletions moved them
// (tables_file_guard.h). No file is changed, and no error set; false for a file that cannot be looked at.
bool MissesGuardedRows(TableDescriptor& t, std::string_view fileName);

}  // namespace tarn
