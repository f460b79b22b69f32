// SPDX-License-Identifier: Apache-2.0
//
// The rows of a list that is held in a file, as one operation sees them. Only the modules of lists, tables
// and data files include this; filevalues.h tells the formats.
//
// All operations give false when they failed; the error is then set: 653 the file is gone, 655 its size is
// not what it should be, 651 and 652 it cannot be read or written, 654 the disk is full, 658 a row that is
// not of the file's fields. A writing that failed has left the file as it was, as far as it can be written.
#pragma once

#include "kernel/values.h"

#include <cstdint>
#include <string_view>

namespace tarn {

// `l` is a list that is held in a file and open. Positions are checked by the caller. The words of the
// descriptor (count) are kept up to date.
bool ReadRow(const ListDescriptor& l, std::int32_t position, void* element);  // an element of its shape
bool WriteRow(ListDescriptor& l, std::int32_t position, const void* element);
bool AppendRow(ListDescriptor& l, const void* element);  // 618 when a fixed list is full
bool RemoveLastRow(ListDescriptor& l);
bool ClearRows(ListDescriptor& l);
bool ResizeRows(ListDescriptor& l, std::int32_t count, const void* fill);

// The file half of FileOpen, for the rows alone. `created` tells that the file was made.
bool OpenRows(ListDescriptor& l, std::string_view fileName, std::string_view typeText, bool& created);
// Syncs and blanks the name.
bool CloseRows(ListDescriptor& l);

// While it lives, the operations above on this list share one handle, and rows that are appended are gathered
// and written in blocks: for loading many rows. One at a time.
class RowBatch {
public:
    explicit RowBatch(ListDescriptor& l);
    ~RowBatch();
    RowBatch(const RowBatch&) = delete;
    RowBatch& operator=(const RowBatch&) = delete;
    bool finish();  // writes what is left

private:
    bool held_ = false;
};

}  // namespace tarn
