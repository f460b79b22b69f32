// SPDX-License-Identifier: Apache-2.0
//
// The mirrors (index_mirror.h) of a table in memory, all in one block that the reserved word of its type text
// names: so that every copy of the table's descriptor finds it. It is no part of the table's value: copies of
// the table have none, and it can go at any time between two operations, as soon as trees without nodes have theirs.
//
// Trees whose keys allow it lose their nodes when they are mirrored: they are most of what adding rows costs, and
// hardly anybody looks at them. Who asks for a root (TableRoot) gets a tree with its nodes, which it keeps from then
// on; bit 0 of the reserved word remembers that somebody did.
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
    [[nodiscard]] bool good() const { return good_; }  // false: 802, and no such row can be linked
    [[nodiscard]] IndexTree at(std::int32_t index) const;
    // Makes room for a node of that row, which is linked next, also one that no entry of the mirror is for: the mirror
    // goes if some other node has it, or for want of memory. False: 802. Asked a second time with no other change, it
    // needs no memory.
    bool makeWayFor(std::int32_t index, std::int32_t row);

    // Starts to fetch the rows that a walk along the index will come to next.
    void prefetchWalk(std::int32_t index) const;

private:
    TableHeader& header_;
    bool good_ = true;  // before what sets it
    TableMirrors* mirrors_;
};

// The shortest way of most searches: in rows of numbers alone, for keys that are one integer. False, with neither `row`
// nor the error cell touched, for all others, and when there is no such row: they go the way of every search. The walk
// of the index (index_mirror.h) may have moved to the neighbour meanwhile, as far as it goes: every search asks it for
// its key first.
bool ReadQuickly(TableHeader& header, std::int32_t indexNumber, const RecordDescriptor* key,
                 RecordDescriptor* row);
bool ReadNextQuickly(TableHeader& header, std::int32_t indexNumber, const RecordDescriptor* key,
                     RecordDescriptor* row);

// Likewise for adding a row with such keys alone to the table of this header, when there is room for it; false then
// changes nothing at all. The result may be true with 802 set, and the table as it was.
bool AddQuickly(TableDescriptor& t, TableHeader& header, std::int32_t indexNumber,
                const RecordDescriptor* row);

// The trees are then empty, and there are no mirrors.
void FreeTableTrees(TableHeader& header);
bool DropTableMirrors(TableHeader& header);  // false: 802, and as before
// Gives a tree its nodes for good, if it has none. False: 802.
bool ShowTableTree(TableHeader& header, std::int32_t index);
// Lets the trees do without nodes again, when they are made anew. False: they could.
bool HideTableTrees(TableHeader& header);
// A copy of a tree with its nodes, into a root that need not hold anything valid; false: 802, 763.
bool CopyTableTree(const TableHeader& header, std::int32_t index, RecordDescriptor& root);
bool IsNodeless(const TableHeader& header, std::int32_t index);
bool IsMirrored(const TableHeader& header, std::int32_t index);
std::string CheckTableMirrors(TableHeader& header);  // "" or what is wrong

}  // namespace tarn
