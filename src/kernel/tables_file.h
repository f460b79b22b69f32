// SPDX-License-Identifier: Apache-2.0
//
// The index files of a table whose rows stand in a file, as opening, closing and emptying such a table sees
// them. Only the modules of lists, tables and data files include this; index_file.h tells their format.
//
// The rows of `t` are open: the rows list in the row header holds the file's name and the count of rows, and
// so does the table its count. Its key maps tell which indexes there are; a table without any has nothing to
// do here. Operations that give false have set the error.
#pragma once

#include "kernel/values.h"

#include <string_view>

namespace tarn {

// Makes the files of all indexes, empty, in the place of what may be there; for a row file that was just made
// or has no rows. When one of them cannot be made, those that were made are gone again. 651, 652, 654, 657.
bool MakeTableIndexes(TableDescriptor& t);
// For a row file with rows: every index must be there, its size that of whole nodes, and not too short for
// the rows: 656. Only reads, so that tables in folders that cannot be written open too. 651.
bool AcceptTableIndexes(TableDescriptor& t);
// Deletes whatever stands under the names of the five possible indexes of this row file. Sets no error: what
// is not there need not be deleted, and what cannot be deleted is found when an index is made.
void RemoveIndexFiles(std::string_view tableFile);
// Brings the index files to the disk; called before the name is blanked. 651, 652, 653, 654.
bool SyncTableIndexes(const TableDescriptor& t);

}  // namespace tarn
