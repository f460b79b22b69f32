// SPDX-License-Identifier: Apache-2.0
//
// The mirrors (index_mirror.h) of a table in memory, all in one block that the reserved word of its type text
// names: so that every copy of the table's descriptor finds it. It is no part of the table's value: copies of
// the table have none, and it can go at any time between two operations.
//
// There is none for small tables, with memory checking on (every node that is touched is then looked at), and
// while memory is short. A table without mirrors gets them after some operations, so that the cost of making
// them is a constant for each.
#pragma once

#include "kernel/index/index_mirror.h"
#include "kernel/tables/table_access.h"

#include <cstdint>
#include <string>

namespace tarn {

struct TableMirrors;

// The trees of a table with what mirrors they have, for one operation.
class TableTrees {
public:
    // `mostRow` is the highest number of a row that the operation links. `atOnce`: the table gets its mirrors
    // now.
    explicit TableTrees(TableHeader& header, std::int32_t mostRow = 0, bool atOnce = false);
    [[nodiscard]] IndexTree at(std::int32_t index) const;
    // Makes room for a node of that row, which is linked next: the mirror goes if some other node has it.
    void makeWayFor(std::int32_t index, std::int32_t row);

    // Starts to fetch the rows that a walk along the index will come to next.
    void prefetchWalk(std::int32_t index) const;

private:
    TableHeader& header_;
    TableMirrors* mirrors_;
};

// The trees are then empty, and there are no mirrors.
void FreeTableTrees(TableHeader& header);
void DropTableMirrors(TableHeader& header);
bool IsMirrored(const TableHeader& header, std::int32_t index);
std::string CheckTableMirrors(TableHeader& header);  // "" or what is wrong

}  // namespace tarn
