// SPDX-License-Identifier: Apache-2.0
//
// Tables whose rows stand in a file: their index files, as opening and closing such a table sees them, and
// what checks and mends the files of a table. Only the modules of lists, tables and data files include this,
// and tools; index_file.h tells the format of index files.
//
// The rows of `t` are open: the rows list in the row header holds the file's name and the count of rows, and
// so does the table its count. Its key maps tell which indexes there are; a table without any has nothing to
// do here. Operations that give false have set the error.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// Makes the files of all indexes, empty; what stood in their places has stepped aside. When one of them
// cannot be made, those that were made are gone again. 652, 654, 657.
bool MakeTableIndexes(TableDescriptor& t);
// For a row file that was just made or has no rows: empty indexes. Indexes that are as they should be are not
// touched, and others emptied where they stand, if all can be, so that the folder need not be one that can be
// written. Else what stands in their places steps aside and is gone when all are made; it is back when one
// cannot be. 652, 654, 657, 656 for the index of another table.
bool StartTableIndexes(TableDescriptor& t);
// For a row file with rows: every index must be there, its size that of whole nodes, and not too short for
// the rows, and must not name another table file that stands beside: 656. A copy under another name still
// names the file of which it is one, and serves when that is not there. Only reads, so that tables in folders
// that cannot be written open too. 651.
bool AcceptTableIndexes(TableDescriptor& t);
// Deletes what stands under the names of the five possible indexes of this row file, but the row file itself
// and the indexes of another table file beside. Sets no error: what is not there need not be deleted, and
// what cannot be deleted is found when an index is made.
void RemoveIndexFiles(std::string_view tableFile);
// Brings the index files to the disk; called before the name is blanked. 651, 652, 653, 654.
bool SyncTableIndexes(const TableDescriptor& t);
// The end of a table, before its rows end: the indexes of a scratch file are deleted, those of another file
// brought to the disk. Nothing for a table in memory, or not open, or whose file is gone.
void ReleaseTableIndexes(const TableDescriptor& t);

// ---- checking ----

// 762 for a type text that is not that of the rows. An empty one is not looked at.
bool AcceptTypeText(const TableDescriptor& t, std::string text);

// "" or what is wrong with the files of an open table: the size and the count of the rows, each row's bytes,
// each index from its header to its last node, and whether nodes and rows have the same keys. Sets no error.
std::string CheckTableFile(const TableDescriptor& t);

// ---- mending ----

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
    std::int32_t rowsRestored = 0;  // that a deletion had moved and that were lost (tables_file_kept.h)
    std::int32_t rowsTorn = 0;      // dropped, as they could not be read, while rows were kept
    std::int32_t badRow = 0;        // the row that could not be read, or 0
    bool stopped = false;           // by the user (data/progress.h)
    std::vector<DuplicateKey> duplicates;  // the first of them, index after index; none was dropped
};

// Whether a table that is held in a file and not open misses rows that were kept while deletions moved them
// (tables_file_kept.h). No file is changed, and no error set; false for a file that cannot be looked at.
bool MissesKeptRows(TableDescriptor& t, std::string_view fileName);

// Mends the file of a list that is held in a file and not open, after a death of a process or machine: writes
// a row that was noted, cuts off what is not a whole row, and sets the count right. An existing file only
// (653); 658 for an Xbase file of other fields, 619 for more rows than the capacity, 655 for more than a list
// can count: nothing is changed then. Sets no error, as the next one.
MendedRows MendRows(ListDescriptor& l, std::string_view fileName);
// The same for a table (762 for a type text that is not that of its rows), which then gets new indexes. A
// last row that is an earlier one again, whole, is dropped: a deletion had moved it; rows that were kept
// while deletions moved them and are missing come back, behind the others. Other rows with one key stay; the
// indexes then lack all but the first. When it fails or is stopped the old indexes are as they were.
// `rowsBehind`: so many whole rows behind those that the header counts are taken in.
RebuiltTable RebuildTableFile(TableDescriptor& t, std::string_view fileName, std::int32_t rowsBehind = 0);

}  // namespace tarn
