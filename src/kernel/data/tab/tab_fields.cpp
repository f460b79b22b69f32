// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/tab/tab_fields.h"

#include "kernel/data/elements.h"
#include "kernel/data/tab/tab_rows.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"

namespace tarn {

namespace {

constexpr std::int32_t deepest = 64;  // records within records

bool makeField(const void* value, Kind kind, TabField& field, std::int32_t depth) {
    field.kind = kind;
    if (kind >= KindBoolean && kind <= KindReal) return true;
    if (!IsWellFormed(value) || KindOf(value) != kind) return false;
    if (kind == KindString || kind == KindSet) return true;
    if (kind == KindArray) return ArrayIsCharacters(static_cast<const ArrayDescriptor*>(value));
    if ((kind != KindRecord && kind != KindUnion) || depth == deepest) return false;
    const auto record = ReadAt<RecordDescriptor>(value);
    const std::int32_t count = FieldCountOf(record.kinds);
    field.fields.resize(static_cast<std::size_t>(count));
    std::int32_t offset = 0;
    for (std::int32_t n = 1; n <= count; ++n) {
        TabField& inner = field.fields[static_cast<std::size_t>(n - 1)];
        const Kind fieldKind = FieldKindAt(record.kinds, n);
        if (!makeField(At(record.data) + offset, fieldKind, inner, depth + 1)) return false;
        inner.offset = offset;
        offset += KindSize[fieldKind];
    }
    return count > 0;
}

// The shape of the elements of a list or an array, or of the rows of a table.
const void* elementOf(const void* value, Kind kind, Kind& element) {
    if (kind == KindTable) {
        element = KindRecord;
        return &RowShape(HeaderOf(*static_cast<const TableDescriptor*>(value)));
    }
    if (kind == KindList) {
        const auto list = ReadAt<ListDescriptor>(value);
        element = ElementKindOf(list);
        return At(list.prototype);
    }
    const auto array = ReadAt<ArrayDescriptor>(value);
    element = static_cast<Kind>(array.tag);
    return At(array.prototype);
}

std::int32_t valueError(const void* value, Kind kind) {
    if (value == nullptr || !IsValueKind(kind)) return ERR_UNIDENTIFIABLE;
    if (!IsAdtKind(kind)) return 0;
    if (!IsWellFormed(value) || KindOf(value) != kind) return AdtTypeError(kind);
    if (kind == KindTable && !IsTable(static_cast<const TableDescriptor*>(value))) return ERR_TABLE_TYPE;
    return IsUnopenedFile(value, kind) ? std::int32_t{ERR_FILE_NOT_OPEN} : 0;
}

}  // namespace

bool MakeTabField(const void* value, Kind kind, TabField& row) {
    return makeField(value, kind, row, 0);
}

std::int32_t CountTabCells(const TabField& field) {
    std::int32_t count = field.fields.empty() ? 1 : 0;
    for (const TabField& inner : field.fields) count += CountTabCells(inner);
    return count;
}

TabTarget MakeTabTarget(const void* value, Kind kind, std::int32_t separator) {
    TabTarget target;
    target.code = valueError(value, kind);
    if (target.code == 0 && separator != NoTabSeparator && !IsTabSeparator(separator))
        target.code = ERR_RECORD_TYPE;
    if (target.code != 0) return target;
    const bool rows = kind == KindArray || kind == KindList || kind == KindTable;
    Kind element = kind;
    const void* const shape = rows ? elementOf(value, kind, element) : value;
    const bool cells = IsValueKind(element) && MakeTabField(shape, element, target.row);
    if (!cells || (separator == NoTabSeparator && CountTabCells(target.row) != 1))
        target.code = ERR_COMPONENT_UNREPRESENTABLE;
    return target;
}

}  // namespace tarn
