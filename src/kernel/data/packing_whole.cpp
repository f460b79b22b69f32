// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/packing_whole.h"

#include "kernel/data/elements.h"
#include "kernel/lists/lists.h"
#include "kernel/lists/packing_parts.h"
#include "kernel/run/errors.h"
#include "kernel/run/progress.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <cstring>

namespace tarn {

using namespace packing;

namespace {

// What went wrong with bytes that could not be unpacked.
std::int32_t damage() {
    return ErrorCell() != 0 ? ErrorCell() : std::int32_t{ERR_FILE_READ};
}

bool isPackedLength(std::int64_t length) {
    return length > 0 && length <= MostPackedBytes;
}

// The number of the last field when it is an unbounded string; otherwise 0.
std::int32_t openField(const RecordDescriptor& record) {
    const std::int32_t count = FieldCountOf(record.kinds);
    if (FieldKindAt(record.kinds, count) != KindString) return 0;
    const char* last = At(record.data) + record.size - KindSize[KindString];
    return ReadAt<StringDescriptor>(last).maxlength == UNBOUNDED ? count : 0;
}

StringDescriptor& lastString(const RecordDescriptor& record) {
    return *reinterpret_cast<StringDescriptor*>(At(record.data) + record.size - KindSize[KindString]);
}

// The length of the fields before an open one; -1 when they have none.
std::int64_t lengthBeforeOpen(const RecordDescriptor& record, std::int32_t open) {
    RecordDescriptor before = record;
    SetFieldKindAt(before.kinds, open, KindNone);
    const std::int64_t length = lengthOfFields(before);
    return length == 0 && open > 1 ? -1 : length;
}

bool isOpenRecord(const void* value, Kind kind) {
    return (kind == KindRecord || kind == KindUnion) && openField(ReadAt<RecordDescriptor>(value)) != 0;
}

std::int32_t packOpenRecord(const RecordDescriptor& record, std::string& bytes) {
    const std::int32_t open = openField(record);
    const std::int64_t before = lengthBeforeOpen(record, open);
    const std::string_view last = StringView(&lastString(record));
    if (before < 0 || !isPackedLength(before + static_cast<std::int64_t>(last.size())))
        return ERR_TYPE_NOT_STORABLE;
    packFields(record, bytes, open - 1);
    bytes.append(last);
    return 0;
}

// As the bytes of a string, which are those of whole characters.
std::int32_t takeString(std::string_view bytes, StringDescriptor& s) {
    const auto width = static_cast<std::size_t>(CharacterWidth);
    if (bytes.size() % width != 0) return ERR_FILE_SIZE;
    const std::size_t room =
        s.maxlength == UNBOUNDED ? bytes.size() : static_cast<std::size_t>(s.maxlength) * width;
    if (bytes.size() > room) bytes = bytes.substr(0, room);
    if (s.maxlength == UNBOUNDED && !bytes.empty() &&
        !ResizeData(s, static_cast<std::int32_t>(std::min(bytes.size(), std::size_t{MaxBlock} + 1))))
        return ErrorCell();
    if (!bytes.empty()) std::memcpy(At(s.data), bytes.data(), bytes.size());
    s.length = static_cast<std::int32_t>(bytes.size() / width);
    return 0;
}

std::int32_t unpackOpenRecord(std::string_view bytes, RecordDescriptor& record) {
    const std::int32_t open = openField(record);
    const std::int64_t before = lengthBeforeOpen(record, open);
    if (before < 0) return ERR_TYPE_NOT_STORABLE;
    if (bytes.size() < static_cast<std::size_t>(before)) return ERR_FILE_SIZE;
    if (!unpackFields(bytes, record, open - 1)) return damage();
    return takeString(bytes, lastString(record));
}

// A list, or the rows of a table, as a whole value: wherever it stands. One element is never more than
// MostPackedBytes, so it is enough to tell between them how far it is.
std::int32_t packRows(const ListDescriptor& rows, std::string& bytes, bool* stopped) {
    ElementSource elements(&rows, KindList);
    if (IsFixedList(rows)) putNumber(rows.count, bytes);
    std::size_t told = bytes.size();
    for (std::int32_t i = 0; i < elements.count(); ++i) {
        const void* const element = elements.at(i);
        if (element == nullptr) return damage();
        Pack(element, elements.kind(), bytes);
        if (stopped == nullptr || bytes.size() - told < std::size_t{ProgressStep}) continue;
        told = bytes.size();
        const auto done = static_cast<std::int64_t>(told);
        *stopped = !Progress(done, done / (i + 1) * elements.count());
        if (*stopped) return 0;
    }
    if (IsFixedList(rows)) packEmpty(rows, bytes);
    return 0;
}

// Rows of a table are added one by one, so that its indexes know them.
std::int32_t unpackRow(std::string_view& bytes, RecordDescriptor& row, TableDescriptor& table) {
    if (!Unpack(bytes, &row, KindRecord)) return damage();
    TableAdd(&table, TableIndexCount(&table) > 0 ? 1 : 0, &row);
    return ErrorCell();
}

std::int32_t unpackTable(std::string_view bytes, std::int32_t count, TableDescriptor& table) {
    RecordValue row;
    AdtInit(row.get(), &RowShape(HeaderOf(table)), KindRecord);
    std::int32_t code = ErrorCell();
    for (std::int32_t i = 0; i < count && code == 0; ++i) code = unpackRow(bytes, *row.get(), table);
    return code;
}

std::int32_t unpackList(std::string_view bytes, std::int32_t count, ListDescriptor& list) {
    ElementSink elements(list);
    for (std::int32_t i = 0; i < count; ++i) {
        void* const element = elements.next();
        if (element == nullptr) return ErrorCell();
        if (!Unpack(bytes, element, ElementKindOf(list))) return damage();
        if (!elements.add()) return ErrorCell();
    }
    return 0;
}

// The count is that of the bytes, or stands ahead of the elements of a fixed capacity.
std::int32_t unpackRows(std::string_view bytes, void* value, Kind kind, const ListDescriptor& rows) {
    const Kind element = ElementKindOf(rows);
    const auto length = static_cast<std::size_t>(lengthInside(At(rows.prototype), element));
    const bool fixed = rows.maxlength != UNBOUNDED;
    std::int32_t count = 0;
    if (fixed && !takeNumber(bytes, count)) return ERR_FILE_SIZE;
    if (bytes.size() % length != 0) return ERR_FILE_SIZE;
    if (!fixed) count = static_cast<std::int32_t>(bytes.size() / length);
    if (fixed && count > rows.maxlength) return kind == KindTable ? ERR_FIXED_TABLE : ERR_FIXED_LIST;
    if (count < 0 || (fixed && bytes.size() / length != static_cast<std::size_t>(rows.maxlength)))
        return ERR_FILE_SIZE;
    if (kind == KindTable) return unpackTable(bytes, count, *static_cast<TableDescriptor*>(value));
    return unpackList(bytes, count, *static_cast<ListDescriptor*>(value));
}

}  // namespace

std::int32_t PackWholeError(const void* value, Kind kind) {
    if (!IsValueKind(kind) || value == nullptr) return ERR_UNIDENTIFIABLE;
    if (IsAdtKind(kind) && (!IsWellFormed(value) || KindOf(value) != kind)) return ERR_UNIDENTIFIABLE;
    const ListDescriptor* rows = ElementList(value, kind);
    if (kind == KindTable && rows == nullptr) return ERR_TABLE_TYPE;
    if (IsUnopenedFile(value, kind)) return ERR_FILE_NOT_OPEN;
    if (kind == KindString || isOpenRecord(value, kind)) return 0;
    std::int64_t length = 0;
    if (rows != nullptr)
        length = IsUntyped(*rows) ? 0 : lengthInside(At(rows->prototype), ElementKindOf(*rows));
    else
        length = PackedLength(value, kind);
    return isPackedLength(length) ? 0 : std::int32_t{ERR_TYPE_NOT_STORABLE};
}

std::int32_t PackWhole(const void* value, Kind kind, std::string& bytes, bool* stopped) {
    const std::int32_t code = PackWholeError(value, kind);
    if (code != 0) return code;
    if (kind == KindString) {
        bytes.append(StringView(static_cast<const StringDescriptor*>(value)));
    } else if (isOpenRecord(value, kind)) {
        return packOpenRecord(ReadAt<RecordDescriptor>(value), bytes);
    } else if (const ListDescriptor* rows = ElementList(value, kind); rows != nullptr) {
        return packRows(*rows, bytes, stopped);
    } else {
        Pack(value, kind, bytes);
    }
    return 0;
}

std::int64_t PackedRoom(const void* value, Kind kind) {
    constexpr std::int64_t mostText = MaxBlock;
    if (kind == KindString) {
        const std::int32_t capacity = ReadAt<StringDescriptor>(value).maxlength;
        return capacity == UNBOUNDED ? mostText + CharacterWidth : std::int64_t{capacity} * CharacterWidth;
    }
    if (isOpenRecord(value, kind)) return MostPackedBytes + mostText + CharacterWidth;
    const ListDescriptor* const rows = ElementList(value, kind);
    if (rows == nullptr) return PackedLength(value, kind) + 1;
    const Kind element = ElementKindOf(*rows);
    const std::int64_t length = lengthInside(At(rows->prototype), element);
    if (rows->maxlength == UNBOUNDED && rows->tag > TagInFile) return INT64_MAX;  // the disk holds them
    if (rows->maxlength == UNBOUNDED) return (MaxBlock / KindSize[element] + 1) * length;
    return countBytes + (rows->maxlength + 1) * length;
}

std::int32_t UnpackWhole(std::string_view bytes, void* value, Kind kind) {
    const std::int32_t code = PackWholeError(value, kind);
    if (code != 0) return code;
    if (kind == KindString) return takeString(bytes, *static_cast<StringDescriptor*>(value));
    if (isOpenRecord(value, kind)) return unpackOpenRecord(bytes, *static_cast<RecordDescriptor*>(value));
    const ListDescriptor* rows = ElementList(value, kind);
    if (rows != nullptr) return unpackRows(bytes, value, kind, *rows);
    if (static_cast<std::int64_t>(bytes.size()) != PackedLength(value, kind)) return ERR_FILE_SIZE;
    if (Unpack(bytes, value, kind)) return 0;
    return damage();
}

}  // namespace tarn
