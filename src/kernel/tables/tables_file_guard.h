// SPDX-License-Identifier: Apache-2.0
//
// Guarded rows: those that a deletion moves, copied to a file beside the table until its files are brought to the
// disk. Only the modules of tables in files include this.
//
// A deletion lets the last row fill the hole and cuts the file. Nothing tells which of the two the disk gets
// first: when the machine dies, the old place of the row may be gone and the new one not yet written. So the
// last rows, some thousands at a time, are copied to a file beside (orders.~d1) and synced before the first
// of them moves: one waiting for the disk in thousands of deletions. Rows that are deleted or changed
// meanwhile are noted there too, without a sync. RebuildTableFile brings back what is guarded, not noted as
// gone, and is missing, and a table that misses such a row is not opened (656). Back comes also a row whose
// deletion or change the disk did not get. All integers big-endian:
//
//   offset  size  field
//        0     8  "\xA7kept\r\n\x1A"
//        8     4  n, the bytes of a row
//       12     4  the first position whose row is guarded; those behind it are, too
//       16        entries of n + 5 bytes each: 'K' for guarded or 'G' for gone, the row, CRC-32 of both
//
// A file that is not there guards nothing. It goes when the rows are synced, emptied and synced first, so that
// an old one never comes back.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tarn {

// One deletion or change of a row of an open table.
class RowGuard {
public:
    explicit RowGuard(const TableDescriptor& t) : table_(t) {}

    // Before anything is written: row `number` will be gone or another one, and the row at `moved`, unless
    // that is 0, will be moved from there. False, with the error set, when neither the file beside can be
    // written nor the rows be synced.
    bool begin(std::int32_t number, std::int32_t moved);
    // Between writing a row to its new place and cutting off the old: syncs the rows if they are not guarded.
    bool beforeCut();
    // The operation failed, and the row is as it was.
    void takeBack();

private:
    bool guardAndNote(std::int32_t number, std::int32_t moved);

    const TableDescriptor& table_;
    std::int64_t sizeBefore_ = -1;  // of the file beside; below 0 when nothing was noted
    std::int32_t rowBytes_ = 0;
    bool guarded_ = true;
};

// The name of the file beside.
std::string GuardFileName(std::string_view tableFile);
bool HasGuardedRows(const TableDescriptor& t);
// Syncs the rows, if some are guarded, and ends that. 651, 652, 653, 654.
bool EndGuard(const TableDescriptor& t);
// Calls `see` with each row that is guarded and not gone, until it gives false; false then. Nothing is to be
// seen where there is no such file, or it cannot be read. Sets no error by itself.
bool EachGuardedRow(const TableDescriptor& t, const std::function<bool(const RecordDescriptor& row)>& see);

}  // namespace tarn
