// SPDX-License-Identifier: Apache-2.0
//
// The operations of indexes.h on indexes that are held in files. Each opens its file, acts and closes it.
// What the block must be, and the errors, are told there; the root has been looked at.
#pragma once

#include "kernel/index/index_file.h"
#include "kernel/index/index_filetree.h"
#include "kernel/index/indexes.h"

#include <cstdint>
#include <string_view>

namespace tarn {

void FileIndexOpen(const IndexBlock& block, const RecordDescriptor* key);
std::int32_t FileIndexInsert(const IndexBlock& block, const RecordDescriptor* key, std::int32_t row);
void FileIndexDelete(const IndexBlock& block, const RecordDescriptor* key);
void FileIndexUpdateRow(const IndexBlock& block, const RecordDescriptor* key, std::int32_t row);
IndexHit FileIndexFind(const TreeSeek& seek, const IndexBlock& block, const RecordDescriptor* key,
                       RecordDescriptor* foundKey);
std::int32_t FileIndexCount(const IndexBlock& block);
IndexShape FileIndexHeight(const IndexBlock& block);
void FileIndexClear(const IndexBlock& block);
// For reading alone. False, and the error set, when that failed.
bool OpenIndexOf(const IndexBlock& block, FileTree& tree);

}  // namespace tarn
