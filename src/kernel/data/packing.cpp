// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/packing.h"

#include "kernel/adt.h"
#include "kernel/data/elements.h"
#include "kernel/errors.h"
#include "kernel/lists.h"
#include "kernel/records.h"
#include "kernel/runtime.h"
#include "kernel/sets_bits.h"
#include "kernel/strings.h"
#include "kernel/table_access.h"
#include "kernel/tables.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace tarn {

namespace {

constexpr std::int64_t countBytes = 4;
constexpr std::int32_t deepest = 64, inside = deepest - 1;  // values within values

// What went wrong with bytes that could not be unpacked.
std::int32_t damage() {
    return ErrorCell() != 0 ? ErrorCell() : std::int32_t{ERR_FILE_READ};
}

// ---- numbers ----

template <class Number>
void putNumber(Number value, std::string& bytes) {
    char big[sizeof(Number)];
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        big[i] = static_cast<char>(
            static_cast<std::make_unsigned_t<Number>>(value) >> (8 * (sizeof(Number) - 1 - i)) & 255U);
    bytes.append(big, sizeof big);
}

template <class Number>
bool takeNumber(std::string_view& bytes, Number& value) {
    if (bytes.size() < sizeof(Number)) return false;
    std::make_unsigned_t<Number> read = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        read = static_cast<std::make_unsigned_t<Number>>(read << 8U | static_cast<unsigned char>(bytes[i]));
    bytes.remove_prefix(sizeof(Number));
    value = static_cast<Number>(read);
    return true;
}

bool takeBytes(std::string_view& bytes, void* into, std::size_t count) {
    if (bytes.size() < count) return false;
    std::memcpy(into, bytes.data(), count);
    bytes.remove_prefix(count);
    return true;
}

// ---- lengths ----

std::int64_t lengthOf(const void* like, Kind kind, std::int32_t depth);

std::int64_t lengthOfFields(const RecordDescriptor& record, std::int32_t depth) {
    std::int64_t length = 0;
    const char* field = At(record.data);
    for (std::int32_t n = 1; n <= MaxFields && FieldKindAt(record.kinds, n) != KindNone; ++n) {
        const Kind kind = FieldKindAt(record.kinds, n);
        const std::int64_t ofField = lengthOf(field, kind, depth);
        if (ofField == 0) return 0;
        length += ofField;
        field += KindSize[kind];
    }
    return length;
}

std::int64_t lengthOf(const void* like, Kind kind, std::int32_t depth) {
    constexpr std::int64_t ofNumbers[] = {0, 1, 1, 4, 8, 8};
    if (kind >= KindNone && kind <= KindReal) return ofNumbers[kind];
    if (depth == 0 || !IsWellFormed(like) || KindOf(like) != kind) return 0;
    // Elements and fields with bounds of their own would differ in length.
    if (depth != deepest && ReadAt<DescriptorHead>(like).maxlength == DYNAMIC_BOUNDS) return 0;
    switch (kind) {
    case KindString: {
        const auto maxlength = ReadAt<DescriptorHead>(like).maxlength;
        return maxlength == UNBOUNDED ? 0 : countBytes + std::int64_t{maxlength} * CharacterWidth;
    }
    case KindRecord:
    case KindUnion: return lengthOfFields(ReadAt<RecordDescriptor>(like), depth - 1);
    case KindSet: return ReadAt<DescriptorHead>(like).size;
    case KindArray: {
        const auto array = ReadAt<ArrayDescriptor>(like);
        const auto element = static_cast<Kind>(array.tag);
        if (!IsValueKind(element)) return 0;
        return array.size / KindSize[element] * lengthOf(At(array.prototype), element, depth - 1);
    }
    case KindList: {
        const auto list = ReadAt<ListDescriptor>(like);
        const auto element = static_cast<Kind>(list.tag);
        if (!IsValueKind(element) || list.maxlength == UNBOUNDED) return 0;
        const std::int64_t ofElement = lengthOf(At(list.prototype), element, depth - 1);
        return ofElement == 0 ? 0 : countBytes + list.maxlength * ofElement;
    }
    default: return 0;
    }
}

// ---- packing ----

void packFields(const RecordDescriptor& record, std::string& bytes, std::int32_t count) {
    const char* field = At(record.data);
    for (std::int32_t n = 1; n <= count; ++n) {
        const Kind kind = FieldKindAt(record.kinds, n);
        Pack(field, kind, bytes);
        field += KindSize[kind];
    }
}

void packElements(Offset data, std::int32_t count, Kind kind, std::string& bytes) {
    const char* element = At(data);
    for (std::int32_t i = 0; i < count; ++i, element += KindSize[kind]) Pack(element, kind, bytes);
}

// Elements behind the count of a fixed capacity are empty: what a slot still holds of an element that was
// deleted is nobody's.
void packEmpty(const ListDescriptor& list, std::string& bytes) {
    const std::int64_t element = lengthOf(At(list.prototype), ElementKindOf(list), inside);
    bytes.append(static_cast<std::size_t>((list.maxlength - list.count) * element), '\0');
}

void packString(const StringDescriptor& s, std::string& bytes) {
    const std::string_view characters = StringView(&s);
    const auto capacity = static_cast<std::size_t>(s.maxlength) * static_cast<std::size_t>(CharacterWidth);
    putNumber(s.length, bytes);
    bytes.append(characters).append(capacity - characters.size(), '\0');
}

void packFixedList(const ListDescriptor& list, std::string& bytes) {
    putNumber(list.count, bytes);
    packElements(list.data, list.count, static_cast<Kind>(list.tag), bytes);
    packEmpty(list, bytes);
}

// ---- unpacking ----

bool unpackFields(std::string_view& bytes, const RecordDescriptor& record, std::int32_t count) {
    char* field = At(record.data);
    for (std::int32_t n = 1; n <= count; ++n) {
        const Kind kind = FieldKindAt(record.kinds, n);
        if (!Unpack(bytes, field, kind)) return false;
        field += KindSize[kind];
    }
    return true;
}

bool unpackElements(std::string_view& bytes, Offset data, std::int32_t count, Kind kind) {
    char* element = At(data);
    for (std::int32_t i = 0; i < count; ++i, element += KindSize[kind]) {
        if (!Unpack(bytes, element, kind)) return false;
    }
    return true;
}

bool unpackBoolean(std::string_view& bytes, void* value) {
    std::uint8_t byte = 0;
    if (!takeNumber(bytes, byte)) return false;
    WriteAt<std::uint8_t>(value, byte != 0 ? 1 : 0);
    return true;
}

template <class Number>
bool unpackNumber(std::string_view& bytes, void* value) {
    Number number = 0;
    if (!takeNumber(bytes, number)) return false;
    WriteAt(value, number);
    return true;
}

bool unpackString(std::string_view& bytes, StringDescriptor& s) {
    std::int32_t length = 0;
    const auto capacity = static_cast<std::size_t>(s.maxlength) * static_cast<std::size_t>(CharacterWidth);
    if (!takeNumber(bytes, length) || bytes.size() < capacity) return false;
    const bool good = length >= 0 && length <= s.maxlength;
    if (good) {
        std::memcpy(At(s.data), bytes.data(), capacity);
        s.length = length;
    }
    bytes.remove_prefix(capacity);
    return good;
}

bool unpackSet(std::string_view& bytes, const SetDescriptor& set) {
    if (!takeBytes(bytes, At(set.data), static_cast<std::size_t>(set.size))) return false;
    TrimBits(BitsOf(set));
    return true;
}

bool unpackFixedList(std::string_view& bytes, ListDescriptor& list) {
    const auto kind = static_cast<Kind>(list.tag);
    const std::int64_t element = lengthOf(At(list.prototype), kind, inside);
    std::int32_t count = 0;
    if (!takeNumber(bytes, count) || count < 0 || count > list.maxlength) return false;
    const std::int64_t behind = (list.maxlength - count) * element;
    list.count = 0;
    if (!unpackElements(bytes, list.data, count, kind)) return false;
    if (bytes.size() < static_cast<std::size_t>(behind)) return false;
    bytes.remove_prefix(static_cast<std::size_t>(behind));
    list.count = count;
    return true;
}

// ---- whole values ----

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
    const std::int64_t length = lengthOfFields(before, inside);
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

// A list, or the rows of a table, as a whole value: wherever it stands.
std::int32_t packRows(const ListDescriptor& rows, std::string& bytes) {
    ElementSource elements(&rows, KindList);
    if (IsFixedList(rows)) putNumber(rows.count, bytes);
    for (std::int32_t i = 0; i < elements.count(); ++i) {
        const void* const element = elements.at(i);
        if (element == nullptr) return damage();
        Pack(element, elements.kind(), bytes);
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
    const auto length = static_cast<std::size_t>(lengthOf(At(rows.prototype), element, inside));
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

std::int64_t PackedLength(const void* like, Kind kind) {
    return lengthOf(like, kind, deepest);
}

void Pack(const void* value, Kind kind, std::string& bytes) {
    switch (kind) {
    case KindBoolean: bytes += ReadAt<std::uint8_t>(value) != 0 ? '\1' : '\0'; return;
    case KindEnum: bytes += ReadAt<char>(value); return;
    case KindInteger: return putNumber(ReadAt<std::int32_t>(value), bytes);
    case KindFixed: return putNumber(ReadAt<std::int64_t>(value), bytes);
    case KindReal: bytes.append(static_cast<const char*>(value), sizeof(double)); return;
    case KindString: return packString(ReadAt<StringDescriptor>(value), bytes);
    case KindRecord:
    case KindUnion: {
        const auto record = ReadAt<RecordDescriptor>(value);
        return packFields(record, bytes, FieldCountOf(record.kinds));
    }
    case KindSet: {
        const auto set = ReadAt<SetDescriptor>(value);
        bytes.append(At(set.data), static_cast<std::size_t>(set.size));
        return;
    }
    case KindArray: {
        const auto array = ReadAt<ArrayDescriptor>(value);
        const auto element = static_cast<Kind>(array.tag);
        return packElements(array.data, array.size / KindSize[element], element, bytes);
    }
    default: return packFixedList(ReadAt<ListDescriptor>(value), bytes);
    }
}

bool Unpack(std::string_view& bytes, void* value, Kind kind) {
    switch (kind) {
    case KindBoolean: return unpackBoolean(bytes, value);
    case KindEnum: return takeBytes(bytes, value, 1);
    case KindInteger: return unpackNumber<std::int32_t>(bytes, value);
    case KindFixed: return unpackNumber<std::int64_t>(bytes, value);
    case KindReal: return takeBytes(bytes, value, sizeof(double));
    case KindString: return unpackString(bytes, *static_cast<StringDescriptor*>(value));
    case KindRecord:
    case KindUnion: {
        const auto record = ReadAt<RecordDescriptor>(value);
        return unpackFields(bytes, record, FieldCountOf(record.kinds));
    }
    case KindSet: return unpackSet(bytes, ReadAt<SetDescriptor>(value));
    case KindArray: {
        const auto array = ReadAt<ArrayDescriptor>(value);
        const auto element = static_cast<Kind>(array.tag);
        return unpackElements(bytes, array.data, array.size / KindSize[element], element);
    }
    default: return unpackFixedList(bytes, *static_cast<ListDescriptor*>(value));
    }
}

std::int32_t PackWholeError(const void* value, Kind kind) {
    if (!IsValueKind(kind) || value == nullptr) return ERR_UNIDENTIFIABLE;
    if (IsAdtKind(kind) && (!IsWellFormed(value) || KindOf(value) != kind)) return ERR_UNIDENTIFIABLE;
    const ListDescriptor* rows = ElementList(value, kind);
    if (kind == KindTable && rows == nullptr) return ERR_TABLE_TYPE;
    if (IsUnopenedFile(value, kind)) return ERR_FILE_NOT_OPEN;
    if (kind == KindString || isOpenRecord(value, kind)) return 0;
    std::int64_t length = 0;
    if (rows != nullptr)
        length = IsUntyped(*rows) ? 0 : lengthOf(At(rows->prototype), ElementKindOf(*rows), inside);
    else
        length = lengthOf(value, kind, deepest);
    return isPackedLength(length) ? 0 : std::int32_t{ERR_TYPE_NOT_STORABLE};
}

std::int32_t PackWhole(const void* value, Kind kind, std::string& bytes) {
    const std::int32_t code = PackWholeError(value, kind);
    if (code != 0) return code;
    if (kind == KindString) {
        bytes.append(StringView(static_cast<const StringDescriptor*>(value)));
    } else if (isOpenRecord(value, kind)) {
        return packOpenRecord(ReadAt<RecordDescriptor>(value), bytes);
    } else if (const ListDescriptor* rows = ElementList(value, kind); rows != nullptr) {
        return packRows(*rows, bytes);
    } else {
        Pack(value, kind, bytes);
    }
    return 0;
}

std::int32_t UnpackWhole(std::string_view bytes, void* value, Kind kind) {
    const std::int32_t code = PackWholeError(value, kind);
    if (code != 0) return code;
    if (kind == KindString) return takeString(bytes, *static_cast<StringDescriptor*>(value));
    if (isOpenRecord(value, kind)) return unpackOpenRecord(bytes, *static_cast<RecordDescriptor*>(value));
    const ListDescriptor* rows = ElementList(value, kind);
    if (rows != nullptr) return unpackRows(bytes, value, kind, *rows);
    if (static_cast<std::int64_t>(bytes.size()) != lengthOf(value, kind, deepest)) return ERR_FILE_SIZE;
    if (Unpack(bytes, value, kind)) return 0;
    return damage();
}

}  // namespace tarn
