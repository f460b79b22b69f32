// SPDX-License-Identifier: Apache-2.0
//
// Tables whose rows stand in memory. A change goes in two steps. First everything that can fail: the places
// of all keys are found, the nodes and the new row are made. Then the trees and the rows change, which needs
// no memory: so there is nothing to undo.
#include "kernel/lists/lists.h"
#include "kernel/tables/table_mirrors.h"
#include "kernel/tables/tables_ops_internal.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/records.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn {

namespace {

// ---- the entries of a row ----

// What a change has got ready for one index.
struct Entry {
    KeyView key;
    IndexPath path;
    Offset node = 0;
};

// The first half of adding a row: the places of its keys, which nobody has.
bool findPlaces(const TableHeader& header, const TableTrees& trees, const RecordDescriptor& row,
                Entry (&entries)[MaxIndexes]) {
    TreeSearch searches[MaxIndexes];
    const std::int32_t count = IndexesOf(header);
    for (std::int32_t i = 0; i < count; ++i) {
        if (!KeyOfRow(row, header.keyMaps[i], entries[i].key)) return Refuse(ERR_COMPONENT_INVALID);
        searches[i] = {trees.at(i), &entries[i].key, &entries[i].path};
    }
    if (!FindKeys(searches, count)) return false;
    return std::none_of(entries, entries + count, [](const Entry& entry) { return entry.path.found; }) ||
           Refuse(ERR_DUPLICATE_FIELDS);
}

void freeNodes(Entry (&entries)[MaxIndexes]) {
    for (Entry& entry : entries) FreeNode(entry.node, NodeKinds(entry.key));
}

bool makeNodes(const TableTrees& trees, Entry (&entries)[MaxIndexes], std::int32_t row) {
    for (std::int32_t i = 0; i < MaxIndexes && entries[i].key.count != 0; ++i) {
        if (trees.at(i).isNodeless()) continue;
        entries[i].node = MakeNode(entries[i].key, row);
        if (entries[i].node != 0) continue;
        freeNodes(entries);
        return false;
    }
    return true;
}

// The entry of a row that is in the table. A row has none in an index that could not be built: then `path`
// has not found it.
bool findEntry(const TableHeader& header, const IndexTree& tree, std::int32_t index, std::int32_t number,
               Entry& entry) {
    const bool known = KeyOfRow(RowAt(header, number), header.keyMaps[index], entry.key);
    if (!known) return Refuse(ERR_INDEX_TYPE);
    if (!FindKey(tree, entry.key, entry.path)) return false;
    entry.path.found = entry.path.found && FoundRow(tree, entry.path) == number;
    return true;
}

bool findEntryToUnlink(const TableHeader& header, const IndexTree& tree, std::int32_t index,
                       std::int32_t number, Entry& entry) {
    if (!findEntry(header, tree, index, number, entry)) return false;
    return !entry.path.found || PrepareUnlinkNode(tree, entry.path);
}

void removeEntry(const IndexTree& tree, Entry& entry) {
    if (!entry.path.found) return;
    const FieldKinds kinds = tree.root->kinds;
    const Offset node = FoundNode(tree, entry.path);
    UnlinkNode(tree, entry.path, entry.key);
    FreeNode(node, kinds);
}

// Links a node, if the tree has some, by its key, under a new number. Fails, for a damaged tree, when the key has no
// place: the row then has no entry.
void linkAnew(TableTrees& trees, std::int32_t index, Offset node, const KeyView& key, std::int32_t number) {
    IndexPath path;
    trees.makeWayFor(index, number);  // cannot fail: readyToLink has been asked
    const IndexTree tree = trees.at(index);
    const bool placed = FindKey(tree, key, path) && !path.found;
    if (placed) return LinkNode(tree, path, key, node, number);
    FreeNode(node, NodeKinds(key));
    SetError(ERR_INDEX_TYPE);
}

// Before the first change of an operation that unlinks what `unlinked` has found and then links under `number`: whether
// that will find the number free, or can make it so without memory.
bool readyToLink(TableTrees& trees, std::int32_t index, std::int32_t number, const Entry& unlinked) {
    return unlinked.path.found || trees.makeWayFor(index, number);
}

// Gives row `number` a new number: its node leaves the tree and comes again.
void renumber(const TableHeader& header, TableTrees& trees, std::int32_t index, std::int32_t number,
              std::int32_t newNumber) {
    Entry entry;
    const IndexTree tree = trees.at(index);
    if (!findEntryToUnlink(header, tree, index, number, entry) || !entry.path.found) return;
    const Offset node = FoundNode(tree, entry.path);
    UnlinkNode(tree, entry.path, entry.key);
    if (node != 0) SetNodeRow(node, newNumber);
    linkAnew(trees, index, node, entry.key, newNumber);
}

// ---- finding ----

// The number of a row, by its key or its neighbour's; 0 for none. False for an error.
bool findRow(const TableHeader& header, const IndexTree& tree, const TreeSeek& seek, const KeyView& key,
             std::int32_t& number) {
    if (!SeekRow(tree, seek, key, number)) return false;
    return number == 0 || HasRow(header, number) || Refuse(ERR_INDEX_TYPE);
}

// The number of the row that must have this key.
bool findByKey(const TableHeader& header, const IndexTree& tree, const KeyView& key, std::int32_t& number) {
    return findRow(header, tree, {}, key, number) && (number != 0 || Refuse(ERR_TABLE_NOT_FOUND));
}

// ---- rows ----

bool copyRow(const RecordDescriptor& shape, const RecordDescriptor& from, RecordDescriptor* to) {
    const bool plain = IsPlainRow(to, shape) && from.size == shape.size && from.data != 0;
    if (!plain) return CopyValue(&from, to, KindRecord);
    std::memcpy(At(to->data), At(from.data), static_cast<std::size_t>(from.size));
    return true;
}

// A row like the others with this one's content, to be moved into the list. False when memory is short.
bool makeRow(const TableHeader& header, const RecordDescriptor& row, RecordDescriptor& made) {
    const RecordDescriptor& shape = RowShape(header);
    if (!IsPlainRow(&row, shape))
        return MakeElement(reinterpret_cast<char*>(&made), &shape, &row, KindRecord);
    made = shape;
    if (!AllocateData(made, shape.size)) return false;
    std::memcpy(At(made.data), At(row.data), static_cast<std::size_t>(shape.size));
    return true;
}

// ---- updating ----

// An index in which an update changes the key.
struct Change {
    bool differs = false;
    Entry before, after;
};

bool prepareChange(const TableHeader& header, const IndexTree& tree, std::int32_t index, std::int32_t number,
                   const RecordDescriptor& row, Change& change) {
    KeyView old;
    const std::int32_t keyMap = header.keyMaps[index];
    if (!KeyOfRow(RowAt(header, number), keyMap, old) || !KeyOfRow(row, keyMap, change.after.key))
        return Refuse(ERR_COMPONENT_INVALID);
    change.differs = CompareKeys(old, change.after.key) != 0;
    if (!change.differs) return true;
    if (!FindKey(tree, change.after.key, change.after.path)) return false;
    if (change.after.path.found) return Refuse(ERR_DUPLICATE_FIELDS);
    return findEntryToUnlink(header, tree, index, number, change.before);
}

void freeChanges(Change (&changes)[MaxIndexes]) {
    for (Change& change : changes) FreeNode(change.after.node, NodeKinds(change.after.key));
}

// All that an update needs: nodes for the keys that change, and the row.
bool prepareChanges(const TableHeader& header, TableTrees& trees, std::int32_t number,
                    const RecordDescriptor& row, Change (&changes)[MaxIndexes], RecordDescriptor& made) {
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (!prepareChange(header, trees.at(i), i, number, row, changes[i])) return false;
        if (changes[i].differs && !readyToLink(trees, i, number, changes[i].before)) return false;
    }
    bool good = true;
    for (std::int32_t i = 0; i < IndexesOf(header) && good; ++i) {
        if (!changes[i].differs || trees.at(i).isNodeless()) continue;
        changes[i].after.node = MakeNode(changes[i].after.key, number);
        good = changes[i].after.node != 0;
    }
    good = good && makeRow(header, row, made);
    if (!good) freeChanges(changes);
    return good;
}

void applyChange(TableTrees& trees, std::int32_t index, std::int32_t number, Change& change) {
    removeEntry(trees.at(index), change.before);
    linkAnew(trees, index, change.after.node, change.after.key, number);
}

// ---- rebuilding ----

// 637 for a key that another row has; the rows before are then in the index.
bool fillIndex(TableHeader& header, const IndexTree& tree, std::int32_t index) {
    for (std::int32_t number = 1; number <= header.rows.count; ++number) {
        Entry entry;
        if (!KeyOfRow(RowAt(header, number), header.keyMaps[index], entry.key))
            return Refuse(ERR_COMPONENT_TYPE);
        if (!FindKey(tree, entry.key, entry.path)) return false;
        if (entry.path.found) return Refuse(ERR_UNIQUE_INDEX);
        if (!tree.isNodeless()) entry.node = MakeNode(entry.key, number);
        if (entry.node == 0 && !tree.isNodeless()) return false;
        LinkNode(tree, entry.path, entry.key, entry.node, number);
    }
    return true;
}

}  // namespace

bool MemoryTableFind(const TableDescriptor& t, std::int32_t indexNumber, const TreeSeek& seek,
                     const KeyView& key, RecordDescriptor* row, bool& found) {
    TableHeader& header = HeaderOf(t);
    const TableTrees trees(header);
    std::int32_t number = 0;
    found = false;
    if (!findRow(header, trees.at(indexNumber - 1), seek, key, number)) return false;
    if (seek.nearest != 0) trees.prefetchWalk(indexNumber - 1);
    found = number != 0 && copyRow(RowShape(header), RowAt(header, number), row);
    return found || number == 0;
}

bool MemoryTableAdd(TableDescriptor& t, const RecordDescriptor& row) {
    TableHeader& header = HeaderOf(t);
    const std::int32_t count = header.rows.count;
    if (IsFixedList(header.rows) && count >= header.rows.maxlength) return Refuse(ERR_FIXED_LIST);
    TableTrees trees(header, count + 1);
    if (!trees.good()) return false;
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (!trees.makeWayFor(i, count + 1)) return false;
    }
    Entry entries[MaxIndexes];
    if (!findPlaces(header, trees, row, entries) || !makeNodes(trees, entries, count + 1)) return false;
    RecordDescriptor made{};
    if (!makeRow(header, row, made) || !AppendElement(header.rows, reinterpret_cast<char*>(&made)))
        return freeNodes(entries), false;
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        LinkNode(trees.at(i), entries[i].path, entries[i].key, entries[i].node, count + 1);
    }
    t.count = header.rows.count;
    return true;
}

bool MemoryTableUpdate(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key,
                       const RecordDescriptor& row) {
    TableHeader& header = HeaderOf(t);
    TableTrees trees(header);
    std::int32_t number = 0;
    if (!findByKey(header, trees.at(indexNumber - 1), key, number)) return false;
    Change changes[MaxIndexes];
    RecordDescriptor made{};
    if (!prepareChanges(header, trees, number, row, changes, made)) return false;
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (changes[i].differs) applyChange(trees, i, number, changes[i]);
    }
    std::swap(RowAt(header, number), made);
    FreeValue(&made, KindRecord);
    return true;
}

bool MemoryTableDelete(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key) {
    TableHeader& header = HeaderOf(t);
    TableTrees trees(header);
    std::int32_t number = 0;
    if (!findByKey(header, trees.at(indexNumber - 1), key, number)) return false;
    const std::int32_t last = header.rows.count, indexes = IndexesOf(header);
    Entry entries[MaxIndexes], moved;
    for (std::int32_t i = 0; i < indexes; ++i) {
        if (!findEntryToUnlink(header, trees.at(i), i, number, entries[i])) return false;
        if (number != last && !findEntry(header, trees.at(i), i, last, moved)) return false;
        if (number != last && !readyToLink(trees, i, number, entries[i])) return false;
    }
    for (std::int32_t i = 0; i < indexes; ++i) {
        removeEntry(trees.at(i), entries[i]);
        if (number != last) renumber(header, trees, i, last, number);
    }
    std::swap(RowAt(header, number), RowAt(header, last));
    ListRemoveLast(&header.rows);
    t.count = header.rows.count;
    return true;
}

namespace {

bool fillIndexes(TableHeader& header) {
    FreeTableTrees(header);
    const TableTrees trees(header, header.rows.count, true);
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (!fillIndex(header, trees.at(i), i)) return false;
    }
    return true;
}

}  // namespace

// Trees that were shown need more memory with their nodes than they had before: where that is short they do without, rather
// than leave rows out of an index that was whole.
bool MemoryTableRebuild(TableDescriptor& t) {
    TableHeader& header = HeaderOf(t);
    const bool clear = ErrorCell() == 0;
    if (fillIndexes(header)) return true;
    if (!clear || ErrorCell() != ERR_OUT_OF_MEMORY || !HideTableTrees(header)) return false;
    ClearError();
    return fillIndexes(header);
}

}  // namespace tarn
