// SPDX-License-Identifier: Apache-2.0
//
// The row header as the modules of tables see it, and the checks that they share.
#pragma once

#include "kernel/index/index_nodes.h"
#include "kernel/lists/list_access.h"
#include "kernel/tables/tables.h"

#include <cstddef>
#include <cstring>

namespace tarn {

// The data of the row header's record.
struct [[gnu::packed]] TableHeader {
    ListDescriptor rows;
    StringDescriptor typeInfo;
    RecordDescriptor roots[MaxIndexes];
    std::int32_t keyMaps[MaxIndexes];
};
static_assert(sizeof(TableHeader) == 248);

// The kinds of its fields: a list, a string, five records, five integers.
inline constexpr FieldKinds TableHeaderKinds = {{0xB6, 0x77, 0x77, 0x73, 0x33, 0x33}};

// The row header of a table that has a whole one; null.
inline TableHeader* WholeHeader(const TableDescriptor* t) {
    if (t == nullptr || t->tag != TagTable || t->data == 0) return nullptr;
    if (t->size != std::int32_t{sizeof(RecordDescriptor)}) return nullptr;
    const auto& record = *reinterpret_cast<const RecordDescriptor*>(At(t->data));
    if (record.tag != TagRecord || record.data == 0 || record.size != std::int32_t{sizeof(TableHeader)})
        return nullptr;
    if (std::memcmp(&record.kinds, &TableHeaderKinds, sizeof(FieldKinds)) != 0) return nullptr;
    // What IsList looks for, of a list of records.
    auto* const header = reinterpret_cast<TableHeader*>(At(record.data));
    const ListDescriptor& rows = header->rows;
    if (rows.size < 0 || rows.count < 0 || rows.prototype == 0) return nullptr;
    if (rows.maxlength != UNBOUNDED && rows.maxlength < 1) return nullptr;
    const bool whole =
        rows.tag == KindRecord + TagInFile ||
        (rows.tag == KindRecord && std::int64_t{rows.count} * KindSize[KindRecord] <= rows.size);
    return whole ? header : nullptr;
}
bool IsTable(const TableDescriptor* t);  // with a whole row header
inline TableHeader& HeaderOf(const TableDescriptor& t) {
    const auto record = ReadAt<RecordDescriptor>(At(t.data));
    return *reinterpret_cast<TableHeader*>(At(record.data));
}
inline std::int32_t IndexesOf(const TableHeader& header) {
    std::int32_t count = 0;
    while (count < MaxIndexes && header.keyMaps[count] != 0) ++count;
    return count;
}
// A row that shows the shape of all.
inline const RecordDescriptor& RowShape(const TableHeader& header) {
    return *reinterpret_cast<const RecordDescriptor*>(At(header.rows.prototype));
}
// Row `number`, from 1 to count, of a table in memory.
inline RecordDescriptor& RowAt(const TableHeader& header, std::int32_t number) {
    return reinterpret_cast<RecordDescriptor*>(At(header.rows.data))[number - 1];
}
inline bool HasRow(const TableHeader& header, std::int32_t number) {
    return number >= 1 && number <= header.rows.count;
}
// A name of fields that a row has and that can be a key.
bool IsKeyMap(const RecordDescriptor& row, std::int32_t keyMap);

// ---- the checks of arguments, in their order; false with the error set ----

// A record whose fields are there.
bool IsWholeRecord(const RecordDescriptor* record);
// A whole record of numbers alone that has the shape of another, which is whole: nothing but its bytes.
inline bool IsPlainRow(const RecordDescriptor* row, const RecordDescriptor& like) {
    return row != nullptr && row->tag == TagRecord && row->size == like.size && row->data != 0 &&
           std::memcmp(&row->kinds, &like.kinds, sizeof row->kinds) == 0 && HoldsNumbersOnly(like.kinds);
}
bool IsZeroRecord(const RecordDescriptor& record);
bool AcceptTable(const TableDescriptor* t);                                    // 762, 661
bool AcceptTableRow(const TableHeader& header, const RecordDescriptor* row);   // 610, 611
bool AcceptRowOutput(const TableHeader& header, const RecordDescriptor* row);  // a zero one will do
void ClearRowOutput(RecordDescriptor* row);                                    // unless it is malformed
bool AcceptIndexNumber(const TableHeader& header, std::int32_t indexNumber);   // 636
bool FitsIndex(const TableHeader& header, std::int32_t indexNumber, const KeyView& key);
bool AcceptTableKey(const TableHeader& header, std::int32_t indexNumber, const RecordDescriptor* key,
                    KeyView& view);  // 636

// ---- making and ending ----

// False when memory is short; `t` is zero then. `rows` moves into the table, or is freed. The type text is
// that of `typeInfo`, cut with 615.
bool MakeTable(TableDescriptor& t, ListDescriptor rows, const KeyMaps& keyMaps, std::string_view typeInfo);
void EmptyTable(TableDescriptor& t);  // a table in memory without its rows
// Frees all below.
void FreeTable(TableDescriptor& t);

}  // namespace tarn
