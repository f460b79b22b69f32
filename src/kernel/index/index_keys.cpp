// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_keys.h"

#include "kernel/values/arrays.h"
#include "kernel/values/records.h"

#include <algorithm>
#include <cmath>

namespace tarn {

namespace {

constexpr std::int32_t nodeHeadFields = 6;

std::int32_t kindAt(const FieldKinds& kinds, std::int32_t index) {
    const std::uint32_t pair = kinds.nibbles[index / 2];
    return static_cast<std::int32_t>(index % 2 == 0 ? pair >> 4U : pair & 15U);
}

bool stringPart(const char* field, KeyPart& part) {
    const auto s = ReadAt<StringDescriptor>(field);
    const std::int64_t bytes = std::int64_t{s.length} * CharacterWidth;
    part = {KindString, static_cast<std::int32_t>(bytes), At(s.data), field};
    return s.tag == TagString && (s.maxlength >= 1 || s.maxlength == UNBOUNDED) && s.length >= 0 &&
           bytes <= s.size;
}

bool arrayPart(const char* field, KeyPart& part) {
    const auto a = ReadAt<ArrayDescriptor>(field);
    part = {KindArray, a.size, At(a.data), field};
    return a.tag == KindEnum && a.data != 0 && a.size > 0 && ArrayIsCharacters(&a);
}

bool addPart(KeyView& view, std::int32_t kind, const char* field) {
    if (view.count == MaxKeyFields || !IsKeyKind(kind)) return false;
    KeyPart& part = view.parts[view.count++];
    if (kind == KindString) return stringPart(field, part);
    if (kind == KindArray) return arrayPart(field, part);
    part = {static_cast<Kind>(kind), KindSize[kind], field, field};
    return true;
}

template <class Number>
int compareNumbers(const char* a, const char* b) {
    const auto left = ReadAt<Number>(a), right = ReadAt<Number>(b);
    return (left > right) - (left < right);
}

int compareReals(const char* a, const char* b) {
    const auto left = ReadAt<double>(a), right = ReadAt<double>(b);
    const bool leftNaN = std::isnan(left), rightNaN = std::isnan(right);
    if (leftNaN || rightNaN) return static_cast<int>(leftNaN) - static_cast<int>(rightNaN);
    return (left > right) - (left < right);
}

int compareBytes(const char* a, std::int32_t aBytes, const char* b, std::int32_t bBytes) {
    const std::int32_t common = std::min(aBytes, bBytes);
    const int order = common == 0 ? 0 : std::memcmp(a, b, static_cast<std::size_t>(common));
    return order != 0 ? order : (aBytes > bBytes) - (aBytes < bBytes);
}

// A string of the capacity of another; its text too, unless it is to be empty.
bool copyString(const KeyPart& part, char* into, bool empty) {
    auto s = ReadAt<StringDescriptor>(part.field);
    const std::int32_t length = empty ? 0 : s.length, used = length * CharacterWidth;
    const std::int32_t room = s.maxlength == UNBOUNDED ? used : s.maxlength * CharacterWidth;
    s = {0, TagString, 0, s.maxlength, length, 0};
    if (room != 0 && !AllocateData(s, room)) return false;
    if (used != 0) std::memcpy(At(s.data), part.at, static_cast<std::size_t>(used));
    if (room != used) std::memset(At(s.data) + used, 0, static_cast<std::size_t>(room - used));
    WriteAt(into, s);
    return true;
}

bool copyArray(const KeyPart& part, char* into, bool empty) {
    auto a = ReadAt<ArrayDescriptor>(part.field);
    if (!AllocateData(a, part.bytes)) return false;
    if (empty)
        std::memset(At(a.data), 0, static_cast<std::size_t>(part.bytes));
    else
        std::memcpy(At(a.data), part.at, static_cast<std::size_t>(part.bytes));
    WriteAt(into, a);
    return true;
}

bool copyPart(const KeyPart& part, char* into, bool empty) {
    if (part.kind == KindString) return copyString(part, into, empty);
    if (part.kind == KindArray) return copyArray(part, into, empty);
    if (empty)
        std::memset(into, 0, static_cast<std::size_t>(part.bytes));
    else
        std::memcpy(into, part.at, static_cast<std::size_t>(part.bytes));
    return true;
}

}  // namespace

// ---- views ----

bool KeyOfRecord(const RecordDescriptor* key, KeyView& view) {
    view.count = 0;
    if (key == nullptr || key->tag != TagRecord || key->size <= 0 || key->data == 0) return false;
    const char* fields = At(key->data);
    std::int32_t offset = 0;
    for (std::int32_t index = 0; index < MaxFields; ++index) {
        const std::int32_t kind = kindAt(key->kinds, index);
        if (kind == KindNone) break;
        if (!IsKeyKind(kind) || offset + KindSize[kind] > key->size) return false;
        if (!addPart(view, kind, fields + offset)) return false;
        offset += KindSize[kind];
    }
    return view.count != 0 && offset == key->size;
}

bool KeyOfRow(const RecordDescriptor& row, std::int32_t keyMap, KeyView& view) {
    view.count = 0;
    const char* fields = At(row.data);
    for (auto left = static_cast<std::uint32_t>(keyMap); left != 0; left <<= 8U) {
        const auto number = static_cast<std::int32_t>(left >> 24U);
        if (number < 1 || number > MaxFields) return false;
        std::int32_t offset = 0;
        for (std::int32_t index = 0; index < number - 1; ++index) {
            const std::int32_t kind = kindAt(row.kinds, index);
            if (!IsValueKind(kind)) return false;
            offset += KindSize[kind];
        }
        if (!addPart(view, kindAt(row.kinds, number - 1), fields + offset)) return false;
    }
    return view.count != 0;
}

KeyView KeyOfNode(const char* fields, const FieldKinds& kinds) {
    KeyView view;
    for (std::int32_t index = nodeHeadFields; index < nodeHeadFields + MaxKeyFields; ++index) {
        const std::int32_t kind = kindAt(kinds, index);
        if (!IsKeyKind(kind)) break;
        addPart(view, kind, fields);
        fields += KindSize[kind];
    }
    return view;
}

FieldKinds KeyKinds(const KeyView& key) {
    FieldKinds kinds{};
    for (std::int32_t i = 0; i < key.count; ++i) SetFieldKindAt(kinds, i + 1, key.parts[i].kind);
    return kinds;
}

FieldKinds NodeKinds(const KeyView& key) {
    FieldKinds kinds =
        MakeFieldKinds({KindInteger, KindInteger, KindInteger, KindInteger, KindRecord, KindRecord});
    for (std::int32_t i = 0; i < key.count; ++i)
        SetFieldKindAt(kinds, nodeHeadFields + i + 1, key.parts[i].kind);
    return kinds;
}

std::int32_t KeyBytes(const KeyView& key) {
    std::int32_t bytes = 0;
    for (std::int32_t i = 0; i < key.count; ++i) bytes += KindSize[key.parts[i].kind];
    return bytes;
}

bool SameKeyKinds(const KeyView& a, const KeyView& b) {
    return std::equal(a.parts, a.parts + a.count, b.parts, b.parts + b.count,
                      [](const KeyPart& x, const KeyPart& y) { return x.kind == y.kind; });
}

bool SameKeyShape(const KeyView& a, const KeyView& b) {
    return std::equal(a.parts, a.parts + a.count, b.parts, b.parts + b.count,
                      [](const KeyPart& x, const KeyPart& y) {
                          return x.kind == y.kind && (x.kind != KindArray || x.bytes == y.bytes);
                      });
}

// ---- fields ----

bool CopyKeyFields(const KeyView& key, char* fields, bool empty) {
    char* into = fields;
    for (std::int32_t i = 0; i < key.count; ++i) {
        if (!copyPart(key.parts[i], into, empty)) {
            KeyView made = key;
            made.count = i;
            FreeKeyFields(KeyKinds(made), 1, fields);
            return false;
        }
        into += KindSize[key.parts[i].kind];
    }
    return true;
}

void FreeKeyFields(const FieldKinds& kinds, std::int32_t firstField, char* fields) {
    for (std::int32_t index = firstField - 1; index < MaxFields; ++index) {
        const std::int32_t kind = kindAt(kinds, index);
        if (!IsKeyKind(kind)) return;
        if (kind == KindString || kind == KindArray) FreeData(*reinterpret_cast<DescriptorHead*>(fields));
        fields += KindSize[kind];
    }
}

// ---- order ----

int CompareWideCharacters(const char* a, std::int32_t aBytes, const char* b, std::int32_t bBytes) {
    constexpr std::int32_t width = sizeof(std::uint16_t);
    for (std::int32_t i = 0; i + width <= std::min(aBytes, bBytes); i += width) {
        const int order = compareNumbers<std::uint16_t>(a + i, b + i);
        if (order != 0) return order;
    }
    return (aBytes > bBytes) - (aBytes < bBytes);
}

int CompareParts(const KeyPart& part, const char* field) {
    switch (part.kind) {
    case KindInteger: return compareNumbers<std::int32_t>(part.at, field);
    case KindFixed: return compareNumbers<std::int64_t>(part.at, field);
    case KindReal: return compareReals(part.at, field);
    case KindString: {
        const auto s = ReadAt<StringDescriptor>(field);
        return CompareCharacters(part.at, part.bytes, At(s.data), s.length * CharacterWidth);
    }
    case KindArray: {
        const auto a = ReadAt<DescriptorHead>(field);
        return compareBytes(part.at, part.bytes, At(a.data), a.size);
    }
    default: return compareNumbers<std::uint8_t>(part.at, field);
    }
}

int CompareKeys(const KeyView& a, const KeyView& b) {
    const std::int32_t count = std::min(a.count, b.count);
    for (std::int32_t i = 0; i < count; ++i) {
        const int order = CompareParts(a.parts[i], b.parts[i].field);
        if (order != 0) return order;
    }
    return (a.count > b.count) - (a.count < b.count);
}

}  // namespace tarn
