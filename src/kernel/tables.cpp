// SPDX-License-Identifier: Apache-2.0
//
// A change goes in two steps. First everything that can fail: the places of all keys are found, the nodes and
// the new row are made. Then the trees and the rows change, which needs no memory: so there is nothing to
// undo.
#include "kernel/tables.h"

#include "kernel/adt_kinds.h"
#include "kernel/errors.h"
#include "kernel/lists.h"
#include "kernel/records.h"
#include "kernel/runtime.h"
#include "kernel/table_access.h"

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
bool findPlaces(const TableHeader& header, const RecordDescriptor& row, Entry (&entries)[MaxIndexes]) {
    KeySearch searches[MaxIndexes];
    const std::int32_t count = IndexesOf(header);
    for (std::int32_t i = 0; i < count; ++i) {
        if (!KeyOfRow(row, header.keyMaps[i], entries[i].key)) return RefuseTable(ERR_COMPONENT_INVALID);
        searches[i] = {&header.roots[i], &entries[i].key, &entries[i].path};
    }
    const bool whole =
        count == 1 ? FindKey(header.roots[0], entries[0].key, entries[0].path) : FindKeys(searches, count);
    if (!whole) return false;
    return std::none_of(entries, entries + count, [](const Entry& entry) { return entry.path.found; }) ||
           RefuseTable(ERR_DUPLICATE_FIELDS);
}

void freeNodes(Entry (&entries)[MaxIndexes]) {
    for (Entry& entry : entries) FreeNode(entry.node, NodeKinds(entry.key));
}

bool makeNodes(Entry (&entries)[MaxIndexes], std::int32_t row) {
    for (Entry& entry : entries) {
        if (entry.key.count == 0) continue;
        entry.node = MakeNode(entry.key, row);
        if (entry.node != 0) continue;
        freeNodes(entries);
        return false;
    }
    return true;
}

// The entry of a row that is in the table. A row has none in an index that could not be built: then `path`
// has not found it.
bool findEntry(const TableHeader& header, std::int32_t index, std::int32_t number, Entry& entry) {
    const bool known = KeyOfRow(RowAt(header, number), header.keyMaps[index], entry.key);
    if (!known) return RefuseTable(ERR_INDEX_TYPE);
    if (!FindKey(header.roots[index], entry.key, entry.path)) return false;
    entry.path.found = entry.path.found && NodeRow(entry.path.nodes[entry.path.at]) == number;
    return true;
}

bool findEntryToUnlink(const TableHeader& header, std::int32_t index, std::int32_t number, Entry& entry) {
    if (!findEntry(header, index, number, entry)) return false;
    return !entry.path.found || PrepareUnlinkNode(header.roots[index], entry.path);
}

void removeEntry(TableHeader& header, std::int32_t index, Entry& entry) {
    if (!entry.path.found) return;
    const FieldKinds kinds = header.roots[index].kinds;
    const Offset node = entry.path.nodes[entry.path.at];
    UnlinkNode(header.roots[index], entry.path);
    FreeNode(node, kinds);
}

// Links a node by its own key, under a new number. Fails, for a damaged tree, when the key has no place: the
// row then has no entry.
void linkAnew(TableHeader& header, std::int32_t index, Offset node, const FieldKinds& kinds) {
    Entry entry;
    entry.key = KeyOfNode(NodeKey(node), kinds);
    const bool placed = FindKey(header.roots[index], entry.key, entry.path) && !entry.path.found;
    if (placed) return LinkNode(header.roots[index], entry.path, entry.key, node);
    FreeNode(node, kinds);
    SetError(ERR_INDEX_TYPE);
}

// Gives row `number` a new number: its node leaves the tree and comes again.
void renumber(TableHeader& header, std::int32_t index, std::int32_t number, std::int32_t newNumber) {
    Entry entry;
    if (!findEntryToUnlink(header, index, number, entry) || !entry.path.found) return;
    const FieldKinds kinds = header.roots[index].kinds;
    const Offset node = entry.path.nodes[entry.path.at];
    UnlinkNode(header.roots[index], entry.path);
    SetNodeRow(node, newNumber);
    linkAnew(header, index, node, kinds);
}

// ---- finding ----

// The number of a row, by its key or its neighbour's; 0 for none. False for an error.
bool findRow(const TableHeader& header, std::int32_t indexNumber, const TreeSeek& seek, const KeyView& key,
             std::int32_t& number) {
    Offset node = 0;
    number = 0;
    if (!SeekNode(header.roots[indexNumber - 1], seek, key, node)) return false;
    if (node == 0) return true;
    number = NodeRow(node);
    return HasRow(header, number) || RefuseTable(ERR_INDEX_TYPE);
}

// The number of the row that must have this key.
bool findByKey(const TableHeader& header, std::int32_t indexNumber, const RecordDescriptor* key,
               std::int32_t& number) {
    KeyView view;
    if (!AcceptTableKey(header, indexNumber, key, view)) return false;
    if (!findRow(header, indexNumber, {}, view, number)) return false;
    return number != 0 || RefuseTable(ERR_TABLE_NOT_FOUND);
}

bool find(std::string_view op, const TableDescriptor* t, std::int32_t indexNumber,
          const RecordDescriptor* key, RecordDescriptor* row) {
    TreeSeek seek;
    KeyView view;
    std::int32_t number = 0;
    if (!AcceptTable(t) || !AcceptRowOutput(HeaderOf(*t), row)) return false;
    const TableHeader& header = HeaderOf(*t);
    if (!AcceptIndexNumber(header, indexNumber)) return false;
    if (!ReadOperator(op, seek)) return RefuseTable(ERR_INDEX_VALUE);
    if (seek.end == 0 && !AcceptTableKey(header, indexNumber, key, view)) return false;
    if (!findRow(header, indexNumber, seek, view, number) || number == 0) return false;
    return CopyValue(&RowAt(header, number), row, KindRecord);
}

// ---- updating ----

// An index in which an update changes the key.
struct Change {
    bool differs = false;
    Entry before, after;
};

bool prepareChange(const TableHeader& header, std::int32_t index, std::int32_t number,
                   const RecordDescriptor& row, Change& change) {
    KeyView old;
    const std::int32_t keyMap = header.keyMaps[index];
    if (!KeyOfRow(RowAt(header, number), keyMap, old) || !KeyOfRow(row, keyMap, change.after.key))
        return RefuseTable(ERR_COMPONENT_INVALID);
    change.differs = CompareKeys(old, change.after.key) != 0;
    if (!change.differs) return true;
    if (!FindKey(header.roots[index], change.after.key, change.after.path)) return false;
    if (change.after.path.found) return RefuseTable(ERR_DUPLICATE_FIELDS);
    return findEntryToUnlink(header, index, number, change.before);
}

void freeChanges(Change (&changes)[MaxIndexes]) {
    for (Change& change : changes) FreeNode(change.after.node, NodeKinds(change.after.key));
}

// All that an update needs: nodes for the keys that change, and the row.
bool prepareChanges(const TableHeader& header, std::int32_t number, const RecordDescriptor& row,
                    Change (&changes)[MaxIndexes], RecordDescriptor& made) {
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (!prepareChange(header, i, number, row, changes[i])) return false;
    }
    bool good = true;
    for (std::int32_t i = 0; i < IndexesOf(header) && good; ++i) {
        if (!changes[i].differs) continue;
        changes[i].after.node = MakeNode(changes[i].after.key, number);
        good = changes[i].after.node != 0;
    }
    good = good && InitValue(&made, &RowShape(header), KindRecord);
    if (good && !CopyValue(&row, &made, KindRecord)) {
        FreeValue(&made, KindRecord);
        good = false;
    }
    if (!good) freeChanges(changes);
    return good;
}

void applyChange(TableHeader& header, std::int32_t index, Change& change) {
    const FieldKinds kinds = NodeKinds(change.after.key);
    removeEntry(header, index, change.before);
    linkAnew(header, index, change.after.node, kinds);
}

// ---- rebuilding ----

// 637 for a key that another row has; the rows before are then in the index.
bool fillIndex(TableHeader& header, std::int32_t index) {
    for (std::int32_t number = 1; number <= header.rows.count; ++number) {
        Entry entry;
        if (!KeyOfRow(RowAt(header, number), header.keyMaps[index], entry.key))
            return RefuseTable(ERR_COMPONENT_TYPE);
        if (!FindKey(header.roots[index], entry.key, entry.path)) return false;
        if (entry.path.found) return RefuseTable(ERR_UNIQUE_INDEX);
        entry.node = MakeNode(entry.key, number);
        if (entry.node == 0) return false;
        LinkNode(header.roots[index], entry.path, entry.key, entry.node);
    }
    return true;
}

// ---- making ----

bool areKeyMaps(const RecordDescriptor& row, const KeyMaps& keyMaps) {
    bool ended = false;
    for (const std::int32_t keyMap : keyMaps) {
        if (keyMap != 0 && (ended || !IsKeyMap(row, keyMap))) return false;
        ended = keyMap == 0;
    }
    return true;
}

}  // namespace

std::int32_t MakeKeyMap(std::int32_t first, std::int32_t second, std::int32_t third, std::int32_t fourth) {
    constexpr std::uint32_t noSuchField = 0xFF;  // which no row has: TableInit refuses it
    std::uint32_t map = 0;
    for (const std::int32_t field : {first, second, third, fourth})
        map =
            map << 8U | (field >= 0 && field <= MaxFields ? static_cast<std::uint32_t>(field) : noSuchField);
    return static_cast<std::int32_t>(map);
}

void TableInit(TableDescriptor* t, std::int32_t maxlength, const RecordDescriptor* rowPrototype,
               const KeyMaps& keyMaps, std::string_view typeInfo, bool inFile) {
    if (t == nullptr) return SetError(ERR_TABLE_TYPE);
    *t = {};
    const bool good = IsWholeRecord(rowPrototype) && (maxlength == UNBOUNDED || maxlength >= 1) &&
                      areKeyMaps(*rowPrototype, keyMaps);
    if (!good) return SetError(ERR_TABLE_TYPE);
    ListDescriptor rows;
    ListInit(&rows, maxlength, rowPrototype, KindRecord, inFile);
    if (rows.tag != 0) MakeTable(*t, rows, keyMaps, typeInfo);
}

// ---- rows ----

void TableAdd(TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* row) {
    if (!AcceptTable(t) || !AcceptTableRow(HeaderOf(*t), row)) return;
    TableHeader& header = HeaderOf(*t);
    const std::int32_t count = header.rows.count;
    if (t->maxlength != UNBOUNDED && count >= t->maxlength) return SetError(ERR_FIXED_TABLE);
    if ((indexNumber != 0 || header.keyMaps[0] != 0) && !AcceptIndexNumber(header, indexNumber)) return;
    Entry entries[MaxIndexes];
    if (!findPlaces(header, *row, entries) || !makeNodes(entries, count + 1)) return;
    ListAppend(row, KindRecord, &header.rows);
    if (header.rows.count == count) return freeNodes(entries);
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        LinkNode(header.roots[i], entries[i].path, entries[i].key, entries[i].node);
    }
    t->count = header.rows.count;
}

void TableRead(const TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* key,
               RecordDescriptor* row) {
    std::int32_t number = 0;
    const bool good = AcceptTable(t) && AcceptRowOutput(HeaderOf(*t), row) &&
                      findByKey(HeaderOf(*t), indexNumber, key, number) &&
                      CopyValue(&RowAt(HeaderOf(*t), number), row, KindRecord);
    if (!good) ClearRowOutput(row);
}

void TableFind(std::string_view op, const TableDescriptor* t, std::int32_t indexNumber,
               const RecordDescriptor* key, RecordDescriptor* row, bool& found) {
    found = find(op, t, indexNumber, key, row);
    if (!found) ClearRowOutput(row);
}

void TableUpdate(const RecordDescriptor* row, std::int32_t indexNumber, const RecordDescriptor* key,
                 TableDescriptor* t) {
    std::int32_t number = 0;
    if (!AcceptTable(t) || !AcceptTableRow(HeaderOf(*t), row)) return;
    TableHeader& header = HeaderOf(*t);
    if (!findByKey(header, indexNumber, key, number)) return;
    Change changes[MaxIndexes];
    RecordDescriptor made{};
    if (!prepareChanges(header, number, *row, changes, made)) return;
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (changes[i].differs) applyChange(header, i, changes[i]);
    }
    std::swap(RowAt(header, number), made);
    FreeValue(&made, KindRecord);
}

void TableDelete(TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* key) {
    std::int32_t number = 0;
    if (!AcceptTable(t)) return;
    TableHeader& header = HeaderOf(*t);
    if (!findByKey(header, indexNumber, key, number)) return;
    const std::int32_t last = header.rows.count, indexes = IndexesOf(header);
    Entry entries[MaxIndexes], moved;
    for (std::int32_t i = 0; i < indexes; ++i) {
        if (!findEntryToUnlink(header, i, number, entries[i])) return;
        if (number != last && !findEntry(header, i, last, moved)) return;
    }
    for (std::int32_t i = 0; i < indexes; ++i) {
        removeEntry(header, i, entries[i]);
        if (number != last) renumber(header, i, last, number);
    }
    std::swap(RowAt(header, number), RowAt(header, last));
    ListRemoveLast(&header.rows);
    t->count = header.rows.count;
}

void TableClear(TableDescriptor* t) {
    if (AcceptTable(t)) EmptyTable(*t);
}

void TableRebuild(TableDescriptor* t) {
    if (!AcceptTable(t)) return;
    TableHeader& header = HeaderOf(*t);
    for (RecordDescriptor& root : header.roots) FreeTree(root);
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (!fillIndex(header, i)) return;
    }
}

void TableRow(const TableDescriptor* t, std::int32_t number, RecordDescriptor* row) {
    const bool good = AcceptTable(t) && AcceptRowOutput(HeaderOf(*t), row) &&
                      (HasRow(HeaderOf(*t), number) || RefuseTable(ERR_LIST_BOUNDS)) &&
                      CopyValue(&RowAt(HeaderOf(*t), number), row, KindRecord);
    if (!good) ClearRowOutput(row);
}

// ---- keys ----

std::int32_t TableIndexFor(const TableDescriptor* t, const RecordDescriptor* key) {
    if (!IsTable(t)) return RefuseTable(ERR_TABLE_TYPE), 0;
    const TableHeader& header = HeaderOf(*t);
    KeyView view;
    if (!KeyOfRecord(key, view)) return 0;
    for (std::int32_t n = 1; n <= IndexesOf(header); ++n) {
        if (FitsIndex(header, n, view)) return n;
    }
    return 0;
}

void TableKeyFromRow(const TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* row,
                     RecordDescriptor* key) {
    if (!AcceptTable(t) || !AcceptTableRow(HeaderOf(*t), row)) return;
    const TableHeader& header = HeaderOf(*t);
    KeyView view;
    if (!AcceptIndexNumber(header, indexNumber)) return;
    if (key == nullptr || !(IsZeroRecord(*key) || IsWholeRecord(key))) return SetError(ERR_INDEX_VALUE);
    if (!KeyOfRow(*row, header.keyMaps[indexNumber - 1], view)) return SetError(ERR_COMPONENT_TYPE);
    RecordDescriptor made{0, TagRecord, 0, KeyKinds(view)};
    if (!AllocateData(made, KeyBytes(view))) return;
    if (!CopyKeyFields(view, At(made.data))) return FreeData(made);
    FreeValue(key, KindRecord);
    *key = made;
}

// ---- parts ----

std::int32_t TableCount(const TableDescriptor* t) {
    return AcceptTable(t) ? HeaderOf(*t).rows.count : 0;
}

std::int32_t TableIndexCount(const TableDescriptor* t) {
    return IsTable(t) ? IndexesOf(HeaderOf(*t)) : (RefuseTable(ERR_TABLE_TYPE), 0);
}

const ListDescriptor* TableRows(const TableDescriptor* t) {
    return IsTable(t) ? &HeaderOf(*t).rows : nullptr;
}

ListDescriptor* TableRows(TableDescriptor* t) {
    return const_cast<ListDescriptor*>(TableRows(static_cast<const TableDescriptor*>(t)));
}

const RecordDescriptor* TableRoot(const TableDescriptor* t, std::int32_t indexNumber) {
    const bool there = IsTable(t) && indexNumber >= 1 && indexNumber <= MaxIndexes;
    return there ? &HeaderOf(*t).roots[indexNumber - 1] : nullptr;
}

RecordDescriptor* TableRoot(TableDescriptor* t, std::int32_t indexNumber) {
    return const_cast<RecordDescriptor*>(TableRoot(static_cast<const TableDescriptor*>(t), indexNumber));
}

std::int32_t TableKeyMap(const TableDescriptor* t, std::int32_t indexNumber) {
    const bool there = IsTable(t) && indexNumber >= 1 && indexNumber <= MaxIndexes;
    return there ? HeaderOf(*t).keyMaps[indexNumber - 1] : 0;
}

const StringDescriptor* TableTypeInfo(const TableDescriptor* t) {
    return IsTable(t) ? &HeaderOf(*t).typeInfo : nullptr;
}

}  // namespace tarn
