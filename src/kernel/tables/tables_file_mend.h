// SPDX-License-Identifier: Apache-2.0
//
// Mends the files of lists and tables after a death of a process or machine, and makes the indexes of a table
// anew. Only the modules of lists, tables and data files include this, and tools.
//
// Cost: linear in the rows, which are read once; the keys of an index are sorted.
#pragma once

#include "kernel/values/values.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tarn {

// What was done to the file of rows.
struct MendedRows {
    std::int32_t error = 0;       // 0, or the code of what went wrong; the file may then be mended in part
    std::int32_t rows = 0;        // that are there now
    std::int64_t bytesCut = 0;    // from behind the last whole row
    std::int32_t rowWritten = 0;  // a row whose replacement was begun and noted (tables_file_note.h), or 0
    bool countSet = false;        // the count in the header was none that can be
    std::int32_t rowsTaken = 0;   // rows behind those that the header counted
};
struct DuplicateKey {
    std::int32_t index = 0;           // from 1
    std::int32_t row = 0, first = 0;  // the row that has the key of the first
};
struct RebuiltTable {
    static constexpr std::size_t MostDuplicates = 1000;
    std::int32_t error = 0;  // as above; 637 for duplicates
    MendedRows mended;
    std::int32_t rows = 0;
    std::int32_t rowDropped = 0, sameAs = 0;  // the last row, when it was an earlier one again, or 0
    std::int32_t rowsRestored = 0;  // that a deletion had moved and that were lost (tables_file_guard.h)
    std::int32_t rowsTorn = 0;      // dropped, as they could not be read, while rows were guarded
    std::int32_t badRow = 0;        // the row that could not be read, or 0
    bool stopped = false;           // by the user (run/progress.h)
    std::vector<DuplicateKey> duplicates;  // the first of them, index after index; none was dropped
};

// Mends the file of a list that is held in a file and not open, after a death of a process or machine: writes
// a row that was noted, cuts off what is not a whole row, and sets the count right. An existing file only
// (653); 658 for an Xbase file of other fields, 619 for more rows than the capacity, 655 for more than a list
// can count: nothing is changed then. Sets no error, as the next one.
MendedRows MendRows(ListDescriptor& l, std::string_view fileName);
// The same for a table (762 for a type text that is not that of its rows), which then gets new indexes. A
// last row that is an earlier one again, whole, is dropped: a deletion had moved it; rows that were guarded
// while deletions moved them and are missing come back, behind the others. Other rows with one key stay; the
// indexes then lack all but the first. When it fails or is stopped the old indexes are as they were.
// `xbaseRows`, unless below 0: so many rows an Xbase file shall have, if it is that long; what stands behind
// them, but for a byte 26, is cut off.
RebuiltTable RebuildTableFile(TableDescriptor& t, std::string_view fileName, std::int32_t xbaseRows = -1);

}  // namespace tarn
