// SPDX-License-Identifier: Apache-2.0
#include "kernel/lists/packing_parts.h"

#include "kernel/lists/list_access.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/sets_bits.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace tarn {

using namespace packing;

namespace {

constexpr std::int32_t deepest = 64, inside = deepest - 1;  // values within values

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

void packElements(Offset data, std::int32_t count, Kind kind, std::string& bytes) {
    const char* element = At(data);
    for (std::int32_t i = 0; i < count; ++i, element += KindSize[kind]) Pack(element, kind, bytes);
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

}  // namespace

// ---- parts ----

std::int64_t packing::lengthInside(const void* like, Kind kind) {
    return lengthOf(like, kind, inside);
}

std::int64_t packing::lengthOfFields(const RecordDescriptor& record) {
    return tarn::lengthOfFields(record, inside);
}

void packing::packFields(const RecordDescriptor& record, std::string& bytes, std::int32_t count) {
    const char* field = At(record.data);
    for (std::int32_t n = 1; n <= count; ++n) {
        const Kind kind = FieldKindAt(record.kinds, n);
        Pack(field, kind, bytes);
        field += KindSize[kind];
    }
}

bool packing::unpackFields(std::string_view& bytes, const RecordDescriptor& record, std::int32_t count) {
    char* field = At(record.data);
    for (std::int32_t n = 1; n <= count; ++n) {
        const Kind kind = FieldKindAt(record.kinds, n);
        if (!Unpack(bytes, field, kind)) return false;
        field += KindSize[kind];
    }
    return true;
}

// Elements behind the count of a fixed capacity are empty: what a slot still holds of an element that was
// deleted is nobody's.
void packing::packEmpty(const ListDescriptor& list, std::string& bytes) {
    const std::int64_t element = lengthInside(At(list.prototype), ElementKindOf(list));
    bytes.append(static_cast<std::size_t>((list.maxlength - list.count) * element), '\0');
}

// ---- values ----

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

}  // namespace tarn
