// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/table_access.h"

#include "kernel/values/records.h"

#include <cstring>

namespace tarn {

bool IsWholeRecord(const RecordDescriptor* record) {
    return record != nullptr && record->tag == TagRecord && (record->size == 0) == (record->data == 0) &&
           record->size == FieldBytesOf(record->kinds);
}

bool IsZeroRecord(const RecordDescriptor& record) {
    constexpr RecordDescriptor zero{};
    return std::memcmp(&record, &zero, sizeof zero) == 0;
}

bool AcceptTable(const TableDescriptor* t) {
    if (!IsTable(t)) return Refuse(ERR_TABLE_TYPE);
    const ListDescriptor& rows = HeaderOf(*t).rows;
    return !IsHeldInFile(rows) || *At(rows.data) != 0 || Refuse(ERR_FILE_NOT_OPEN);
}

bool AcceptTableRow(const TableHeader& header, const RecordDescriptor* row) {
    if (IsPlainRow(row, RowShape(header))) return true;
    if (!IsWholeRecord(row)) return Refuse(ERR_COMPONENT_INVALID);
    return SameShape(row, &RowShape(header), KindRecord) || Refuse(ERR_COMPONENT_TYPE);
}

bool AcceptRowOutput(const TableHeader& header, const RecordDescriptor* row) {
    if (IsPlainRow(row, RowShape(header))) return true;
    return (row != nullptr && IsZeroRecord(*row)) || AcceptTableRow(header, row);
}

void ClearRowOutput(RecordDescriptor* row) {
    if (IsWholeRecord(row)) ClearOutput(row, KindRecord);
}

bool AcceptIndexNumber(const TableHeader& header, std::int32_t indexNumber) {
    return (indexNumber >= 1 && indexNumber <= IndexesOf(header)) || Refuse(ERR_INDEX_VALUE);
}

bool FitsIndex(const TableHeader& header, std::int32_t indexNumber, const KeyView& key) {
    // All that keys of one field without an array are asked for is their kind.
    const auto map = static_cast<std::uint32_t>(header.keyMaps[indexNumber - 1]);
    if (key.count == 1 && map << 8U == 0 && key.parts[0].kind != KindArray)
        return FieldKindAt(RowShape(header).kinds, static_cast<std::int32_t>(map >> 24U)) ==
               key.parts[0].kind;
    KeyView shape;
    return KeyOfRow(RowShape(header), header.keyMaps[indexNumber - 1], shape) && SameKeyShape(key, shape);
}

bool AcceptTableKey(const TableHeader& header, std::int32_t indexNumber, const RecordDescriptor* key,
                    KeyView& view) {
    if (!AcceptIndexNumber(header, indexNumber)) return false;
    return (KeyOfRecord(key, view) && FitsIndex(header, indexNumber, view)) || Refuse(ERR_INDEX_VALUE);
}

}  // namespace tarn
