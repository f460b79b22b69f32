// SPDX-License-Identifier: Apache-2.0
//
// Keys of indexes without copies: a view of up to four key fields that stand in a key record, in a node or in
// a row. A view holds addresses: it is valid until that record changes. A key record is made of a view by
// copying.
//
// Cost: no allocation; comparing stops at the first field that differs.
#pragma once

#include "kernel/index/indexes.h"
#include "kernel/values/strings.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <cstring>

namespace tarn {

struct KeyPart {
    Kind kind;
    std::int32_t bytes;  // of the value: a number, the characters of a string or of an array
    const char* at;
    const char* field;  // where the value or its descriptor stands
};

struct KeyView {
    std::int32_t count = 0;
    KeyPart parts[MaxKeyFields];
};

// Kinds 1 to 6, and arrays, which must hold characters besides.
constexpr bool IsKeyKind(std::int32_t kind) {
    return (kind >= KindBoolean && kind <= KindString) || kind == KindArray;
}

// False, without an error, for what is not a key: no record, no field or more than four, a field of another
// kind or a malformed one.
bool KeyOfRecord(const RecordDescriptor* key, KeyView& view);
// The fields of a row that a key map names (tables.h). False for a map that does not fit the row.
bool KeyOfRow(const RecordDescriptor& row, std::int32_t keyMap, KeyView& view);
// `fields` is where the first key field of a node stands, `kinds` those of the node.
KeyView KeyOfNode(const char* fields, const FieldKinds& kinds);

FieldKinds KeyKinds(const KeyView& key);    // of a key record
FieldKinds NodeKinds(const KeyView& key);   // of a node
std::int32_t KeyBytes(const KeyView& key);  // the sum of the fields' sizes
bool SameKeyKinds(const KeyView& a, const KeyView& b);
// Besides the kinds, the sizes of arrays of characters.
bool SameKeyShape(const KeyView& a, const KeyView& b);

// Writes copies of the key's fields to `fields`, which has room for KeyBytes(key) and whose bytes mean
// nothing: strings of the capacity of those that are copied, or empty ones when `empty`. False when memory is
// short; nothing stays allocated then.
bool CopyKeyFields(const KeyView& key, char* fields, bool empty = false);
void FreeKeyFields(const FieldKinds& kinds, std::int32_t firstField, char* fields);

// Less than 0, 0 or more, as the first comes before, is or comes behind the second.
int CompareKeys(const KeyView& a, const KeyView& b);
int CompareParts(const KeyPart& part, const char* field);  // `field` is of the same kind

int CompareWideCharacters(const char* a, std::int32_t aBytes, const char* b, std::int32_t bBytes);
inline int CompareCharacters(const char* a, std::int32_t aBytes, const char* b, std::int32_t bBytes) {
    if (CharacterWidth != 1) [[unlikely]]
        return CompareWideCharacters(a, aBytes, b, bBytes);
    const std::int32_t common = aBytes < bBytes ? aBytes : bBytes;
    const int order = common == 0 ? 0 : std::memcmp(a, b, static_cast<std::size_t>(common));
    return order != 0 ? order : (aBytes > bBytes) - (aBytes < bBytes);
}

// What a walk down a tree compares with: one of these, by the key's fields. Each is called with the address
// of a node's key fields.
struct IntegerKey {
    std::int32_t value;
    explicit IntegerKey(const KeyView& key) : value(ReadAt<std::int32_t>(key.parts[0].at)) {}
    int operator()(const char* fields) const {
        const auto other = ReadAt<std::int32_t>(fields);
        return (value > other) - (value < other);
    }
};
struct TextKey {
    const char* text;
    std::int32_t bytes;
    explicit TextKey(const KeyView& key) : text(key.parts[0].at), bytes(key.parts[0].bytes) {}
    int operator()(const char* fields) const {
        const auto other = ReadAt<StringDescriptor>(fields);
        return CompareCharacters(text, bytes, At(other.data), other.length * CharacterWidth);
    }
};
struct AnyKey {
    const KeyView& key;
    explicit AnyKey(const KeyView& view) : key(view) {}
    int operator()(const char* fields) const {
        if (key.count == 1 && key.parts[0].kind == KindInteger) return IntegerKey(key)(fields);
        for (std::int32_t i = 0; i < key.count; ++i) {
            const int order = CompareParts(key.parts[i], fields);
            if (order != 0) return order;
            fields += KindSize[key.parts[i].kind];
        }
        return 0;
    }
};

// Calls `body` with the fastest of the three.
template <class Body>
auto WithKey(const KeyView& key, Body body) {
    if (key.count == 1 && key.parts[0].kind == KindInteger) return body(IntegerKey(key));
    if (key.count == 1 && key.parts[0].kind == KindString) return body(TextKey(key));
    return body(AnyKey(key));
}

}  // namespace tarn
