// SPDX-License-Identifier: Apache-2.0
//
// The head of a key: its first bytes as one number, in the order of the keys. Most comparisons of keys end
// there. Of two keys with one head nothing is known, unless the head is whole: then they are equal. Keys of one
// index are all whole or all not.
//
// A head holds, from its top bit on, the fields one after another: numbers as unsigned ones in their order,
// arrays of characters, and of the first string what fits, filled up with zeros. Behind a string comes nothing,
// because the shorter string comes first whatever stands behind it.
#pragma once

#include "kernel/index/index_keys.h"

#include <cstdint>

namespace tarn {

struct KeyHead {
    std::uint64_t bits = 0;
    bool whole = false;
};

// Of a key that is one integer: all that there is of it.
constexpr std::uint64_t HeadOfInteger(std::int32_t value) {
    return std::uint64_t{static_cast<std::uint32_t>(value) ^ 0x80000000U} << 32U;
}
KeyHead HeadOfFields(const KeyView& key);
inline KeyHead HeadOfKey(const KeyView& key) {
    if (key.count != 1 || key.parts[0].kind != KindInteger) return HeadOfFields(key);
    return {HeadOfInteger(ReadAt<std::int32_t>(key.parts[0].at)), true};
}

// The same for equal keys, in all its bits.
std::uint32_t HashOfFields(const KeyView& key);
inline std::uint64_t MixHash(std::uint64_t hash, std::uint64_t bits) {
    hash = (hash ^ bits) * 0x9E3779B97F4A7C15U;
    return hash ^ hash >> 32U;
}
inline std::uint32_t HashOfWhole(std::uint64_t head) {
    return static_cast<std::uint32_t>(MixHash(MixHash(0, head), 0));
}
inline std::uint32_t HashOfKey(const KeyView& key, const KeyHead& head) {
    return head.whole ? HashOfWhole(head.bits) : HashOfFields(key);
}

// Whether keys of these kinds can be made of their heads again: whole numbers, booleans and enums alone.
bool HeadTellsKey(const KeyView& key);
// Writes the fields of such a key, whose kinds `shape` has, one behind another to `fields` (at most 8 bytes), and makes
// `shape` a view of them.
void FieldsOfHead(std::uint64_t head, KeyView& shape, char* fields);

}  // namespace tarn
