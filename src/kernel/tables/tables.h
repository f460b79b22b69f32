// SPDX-License-Identifier: Apache-2.0
//
// Tables: rows, each a record, with up to five unique indexes. `data` of the descriptor (values.h) is the row
// header, a record of 12 fields that holds all of a table's state:
//
//   field  kind     meaning
//       1  list     the rows
//       2  string   the type information text of a row, at most 32768 characters
//    3..7  record   the root of index 1 to 5
//   8..12  integer  the key map of index 1 to 5: up to four row field numbers, the first in the top byte, 0
//                   behind the last; 0 for no index
//
// Beside that, and no part of its value, a table in memory has mirrors of its indexes (table_mirrors.h), which the
// reserved word of the type text's descriptor in the row header names.
//
// The number of a row is its position in the list of rows. It is not stable: the last row fills the place of
// one that is deleted. Key fields have the kinds 1 to 6 or are arrays of characters (one dimension of enums
// from 1 on). A key record holds the fields of the key alone, in key order (indexes.h).
//
// Every operation is checked, in this order: 762 null or no table; 661 held in a file and not open; 610 a row
// that is missing or malformed, 611 one of another shape; 636 an index number outside 1 to the number of
// indexes, or a key that does not fit its key map; then what each operation says. The first that is wrong is
// reported (TableAdd looks at 619 before 636). On any error, and when memory is short, the table and all its
// indexes are as they were, except where TableRebuild says otherwise.
//
// A table that is held in a file has its rows and its indexes there (filevalues.h, tables_file_index.h); the roots
// in the row header are then empty. What its operations look up is checked: 763 when an index gives a row
// that is not there or has another key, and the codes of files (651 to 656).
//
// Cost: a row by number is constant, by key logarithmic; adding and deleting is logarithmic for each index.
// In files each operation opens the files that it needs, each once, unless they are held (TableHold).
#pragma once

#include "kernel/index/indexes.h"
#include "kernel/values/strings.h"
#include "kernel/values/values.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t TypeInfoCapacity = 32768;
inline constexpr std::int32_t RowsField = 1, TypeInfoField = 2, FirstRootField = 3, FirstKeyMapField = 8;

using KeyMaps = std::array<std::int32_t, MaxIndexes>;
// The key map of up to four row fields; 0 for none.
std::int32_t MakeKeyMap(std::int32_t first, std::int32_t second = 0, std::int32_t third = 0,
                        std::int32_t fourth = 0);

// `t` need not hold anything valid. `maxlength` UNBOUNDED or a capacity of 1 or more. The maps stand without
// gaps from index 1 on; all 0 makes a table without an index. 762 for a prototype that is no record, a map
// that names a field which is not there or cannot be a key, a capacity below 1. A type text of more than
// 32768 characters is 615, and cut. On failure the descriptor is zero.
void TableInit(TableDescriptor* t, std::int32_t maxlength, const RecordDescriptor* rowPrototype,
               const KeyMaps& keyMaps, std::string_view typeInfo, bool inFile);

// 619 when a fixed table is full; 635 when another row has one of its keys. `indexNumber` is checked, but 0
// will do for a table without an index.
void TableAdd(TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* row);
// 604 when there is no such row; `row` is then cleared.
void TableRead(const TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* key,
               RecordDescriptor* row);
// The operators of IndexFind. `found` false, without an error and with `row` cleared, when there is none. For
// NEXT and PREVIOUS the key is that of the current row.
void TableFind(std::string_view op, const TableDescriptor* t, std::int32_t indexNumber,
               const RecordDescriptor* key, RecordDescriptor* row, bool& found);
// Replaces the row that has `key`: 604 when there is none, 635 when another row has one of the new keys.
void TableUpdate(const RecordDescriptor* row, std::int32_t indexNumber, const RecordDescriptor* key,
                 TableDescriptor* t);
// 604 when there is none. The last row takes the number of the deleted one.
void TableDelete(TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* key);
void TableClear(TableDescriptor* t);  // the rows stay gone when the files of the indexes cannot be emptied
// Builds every index anew from the rows, in row order. 637 when two rows have one key: that index then holds
// the rows before the second, and the indexes behind it are empty. Rows that an index lacks can still be
// updated and deleted through another, and the table then be rebuilt. 802 and 804 leave the indexes like 637
// in memory; in a file they, the codes of files, and the user who stops it (run/progress.h, no error) leave
// the old ones. In a file the last row is dropped when it is an earlier one again, as a deletion that died left it.
void TableRebuild(TableDescriptor* t);

// Keeps the files of an open table open for the operations that follow, which spares their opening and most
// reading of indexes. What an operation does, and leaves for others, stays the same; what other programs change
// meanwhile is noticed as far as sizes and times of files tell it. Until TableRelease, the closing or the end of
// the table. Nothing for a table in memory, or one that is held. 802.
void TableHold(TableDescriptor* t);
void TableRelease(TableDescriptor* t);  // 652 when a file cannot be closed; nothing for one that is not held

std::int32_t TableCount(const TableDescriptor* t);       // rows; 0 and 762 for no table, as below
std::int32_t TableIndexCount(const TableDescriptor* t);  // 0 to 5
// The first index whose key fields have the kinds of the key record's; 0 for none.
std::int32_t TableIndexFor(const TableDescriptor* t, const RecordDescriptor* key);
// `key` becomes the key record of a row: it is shaped for the index when it has no shape or another.
void TableKeyFromRow(const TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* row,
                     RecordDescriptor* key);
// A row by its number; 603 outside 1 to count, with `row` cleared.
void TableRow(const TableDescriptor* t, std::int32_t number, RecordDescriptor* row);

// The parts of the row header; null for no table. A tree may get its nodes only when its root is asked for (802: null).
ListDescriptor* TableRows(TableDescriptor* t);
const ListDescriptor* TableRows(const TableDescriptor* t);
RecordDescriptor* TableRoot(TableDescriptor* t, std::int32_t indexNumber);
const RecordDescriptor* TableRoot(const TableDescriptor* t, std::int32_t indexNumber);
std::int32_t TableKeyMap(const TableDescriptor* t, std::int32_t indexNumber);
const StringDescriptor* TableTypeInfo(const TableDescriptor* t);

}  // namespace tarn
