// SPDX-License-Identifier: Apache-2.0
//
// Arguments are checked here, in their order; then the operation goes to where the rows stand, in memory or
// in a file.
#include "kernel/tables/tables.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/tables/table_mirrors.h"
#include "kernel/tables/tables_file_hold.h"
#include "kernel/tables/tables_ops_internal.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/records.h"

#include <cstring>

namespace tarn {

namespace {

struct TableOperationsOn {
    bool (*find)(const TableDescriptor& t, std::int32_t indexNumber, const TreeSeek& seek, const KeyView& key,
                 RecordDescriptor* row, bool& found);
    bool (*add)(TableDescriptor& t, const RecordDescriptor& row);
    bool (*update)(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key,
                   const RecordDescriptor& row);
    bool (*remove)(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key);
    bool (*rebuild)(TableDescriptor& t);
};
constexpr TableOperationsOn inMemory = {MemoryTableFind, MemoryTableAdd, MemoryTableUpdate, MemoryTableDelete,
                                        MemoryTableRebuild},
                            inFile = {FileTableFind, FileTableAdd, FileTableUpdate, FileTableDelete,
                                      FileTableRebuild};

const TableOperationsOn& operations(const TableHeader& header) {
    return IsHeldInFile(header.rows) ? inFile : inMemory;
}

// ---- finding ----

bool isNext(std::string_view op) {
    constexpr std::uint32_t next = 0x5458454E, bitsOfSmall = 0x20202020;  // the letters, the first one lowest
    std::uint32_t word = 0;
    if (op.size() != sizeof word) return false;
    std::memcpy(&word, op.data(), sizeof word);
    return (word & ~bitsOfSmall) == next;
}

bool find(std::string_view op, const TableDescriptor* t, std::int32_t indexNumber,
          const RecordDescriptor* key, RecordDescriptor* row) {
    TreeSeek seek;
    KeyView view;
    bool found = false;
    if (!AcceptTable(t) || !AcceptRowOutput(HeaderOf(*t), row)) return false;
    const TableHeader& header = HeaderOf(*t);
    if (!AcceptIndexNumber(header, indexNumber)) return false;
    if (!ReadOperator(op, seek)) return Refuse(ERR_INDEX_VALUE);
    if (seek.end == 0 && !AcceptTableKey(header, indexNumber, key, view)) return false;
    return operations(header).find(*t, indexNumber, seek, view, row, found) && found;
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
    if (TableHeader* const whole = WholeHeader(t);
        whole != nullptr && AddQuickly(*t, *whole, indexNumber, row))
        return;
    if (!AcceptTable(t) || !AcceptTableRow(HeaderOf(*t), row)) return;
    const TableHeader& header = HeaderOf(*t);
    if (t->maxlength != UNBOUNDED && header.rows.count >= t->maxlength) return SetError(ERR_FIXED_TABLE);
    if ((indexNumber != 0 || header.keyMaps[0] != 0) && !AcceptIndexNumber(header, indexNumber)) return;
    operations(header).add(*t, *row);
}

void TableRead(const TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* key,
               RecordDescriptor* row) {
    if (TableHeader* const whole = WholeHeader(t);
        whole != nullptr && ReadQuickly(*whole, indexNumber, key, row))
        return;
    KeyView view;
    bool found = false;
    bool good = AcceptTable(t);
    if (good) {
        const TableHeader& header = HeaderOf(*t);
        good = AcceptRowOutput(header, row) && AcceptTableKey(header, indexNumber, key, view) &&
               operations(header).find(*t, indexNumber, {}, view, row, found);
    }
    if (good && !found) SetError(ERR_TABLE_NOT_FOUND);
    if (!found) ClearRowOutput(row);
}

void TableFind(std::string_view op, const TableDescriptor* t, std::int32_t indexNumber,
               const RecordDescriptor* key, RecordDescriptor* row, bool& found) {
    TableHeader* const whole = isNext(op) ? WholeHeader(t) : nullptr;
    found = whole != nullptr && ReadNextQuickly(*whole, indexNumber, key, row);
    if (found) return;
    found = find(op, t, indexNumber, key, row);
    if (!found) ClearRowOutput(row);
}

void TableUpdate(const RecordDescriptor* row, std::int32_t indexNumber, const RecordDescriptor* key,
                 TableDescriptor* t) {
    KeyView view;
    if (!AcceptTable(t) || !AcceptTableRow(HeaderOf(*t), row)) return;
    const TableHeader& header = HeaderOf(*t);
    if (AcceptTableKey(header, indexNumber, key, view))
        operations(header).update(*t, indexNumber, view, *row);
}

void TableDelete(TableDescriptor* t, std::int32_t indexNumber, const RecordDescriptor* key) {
    KeyView view;
    if (!AcceptTable(t)) return;
    const TableHeader& header = HeaderOf(*t);
    if (AcceptTableKey(header, indexNumber, key, view)) operations(header).remove(*t, indexNumber, view);
}

void TableClear(TableDescriptor* t) {
    if (!AcceptTable(t)) return;
    if (IsHeldInFile(HeaderOf(*t).rows))
        FileTableClear(*t);
    else
        EmptyTable(*t);
}

void TableRebuild(TableDescriptor* t) {
    if (AcceptTable(t)) operations(HeaderOf(*t)).rebuild(*t);
}

void TableHold(TableDescriptor* t) {
    if (AcceptTable(t)) HoldTableFiles(*t);
}

void TableRelease(TableDescriptor* t) {
    if (AcceptTable(t)) ReleaseTableFiles(*t);
}

void TableRow(const TableDescriptor* t, std::int32_t number, RecordDescriptor* row) {
    const bool good = AcceptTable(t) && AcceptRowOutput(HeaderOf(*t), row);
    if (good) ListGet(&HeaderOf(*t).rows, number, row, KindRecord);
    if (!good) ClearRowOutput(row);
}

// ---- keys ----

std::int32_t TableIndexFor(const TableDescriptor* t, const RecordDescriptor* key) {
    if (!IsTable(t)) return Refuse(ERR_TABLE_TYPE), 0;
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
    return IsTable(t) ? IndexesOf(HeaderOf(*t)) : (Refuse(ERR_TABLE_TYPE), 0);
}

const ListDescriptor* TableRows(const TableDescriptor* t) {
    return IsTable(t) ? &HeaderOf(*t).rows : nullptr;
}

ListDescriptor* TableRows(TableDescriptor* t) {
    return const_cast<ListDescriptor*>(TableRows(static_cast<const TableDescriptor*>(t)));
}

const RecordDescriptor* TableRoot(const TableDescriptor* t, std::int32_t indexNumber) {
    const bool there = IsTable(t) && indexNumber >= 1 && indexNumber <= MaxIndexes;
    return there && ShowTableTree(HeaderOf(*t), indexNumber - 1) ? &HeaderOf(*t).roots[indexNumber - 1]
                                                                 : nullptr;
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
