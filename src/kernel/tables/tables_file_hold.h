// SPDX-License-Identifier: Apache-2.0
//
// Tables whose files stay open from one operation to the next, where a program asks for it (TableHold). Only the
// modules of tables include this.
//
// Operations do and leave what they always do: rows and indexes are in their files when an operation has returned,
// and the disk has them when the table was closed. Only the opening is spared, and the reading of the nodes of
// indexes that are in memory already (index/index_filehold.h).
#pragma once

#include "kernel/values/values.h"

namespace tarn {

// Nothing for a table in memory, or one that is held. The table is open. 802.
bool HoldTableFiles(TableDescriptor& t);
// Closes what is open; a file that cannot be closed is 651 to 654. Nothing for a table that is not held.
bool ReleaseTableFiles(const TableDescriptor& t);

}  // namespace tarn
