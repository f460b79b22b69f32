// SPDX-License-Identifier: Apache-2.0
//
// Where the files of a table may stand: an index must not be the file of rows, nor belong to another table.
// Only the modules of tables and data files include this, and tools.
//
// Cost: a look at each name that an index may have.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Whether a table of this file may have that many indexes where they belong: 657 when one of the names that
// belong to its indexes is the file itself, or a pipe or device stands at an index's place; 656 when the
// index of another table file that stands beside does (orders.tab and orders.txt have the same names of
// indexes). Nothing for a table without indexes.
bool AcceptIndexPlaces(std::string_view tableFile, std::int32_t indexes);
// The first of these alone.
bool AcceptRowPlace(std::string_view tableFile, std::int32_t indexes);
// The path of another table file, beside this one, that an index file belongs to: it names that file, and has the name
// of one of its indexes. "" for none.
std::string OwnerOfIndex(const std::string& indexFile, std::string_view tableFile);
// Whether an index file names another table file, which stands beside this one.
bool NamesOtherTable(const std::string& indexFile, std::string_view tableFile);

// Deletes what stands under the names of the five possible indexes of this row file, but the row file itself
// and the indexes of another table file beside. Of the files that stepped aside (orders.~i1) the first `waiting` stay: they
// are new ones that will take the places. Sets no error: what is not there need not be deleted, and what cannot be deleted
// is found when an index is made.
void RemoveIndexFiles(std::string_view tableFile, std::int32_t waiting = 0);

}  // namespace tarn
