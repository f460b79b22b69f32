// SPDX-License-Identifier: Apache-2.0
//
// The bytes of index files: big-endian words, where the fields of the header stand, and keys as node records
// hold them (index_file.h tells the layout). Only the modules of index files include this.
#pragma once

#include "kernel/index/index_file.h"
#include "os/text/bigendian.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// ---- words ----

inline constexpr std::int32_t WordBytes = 4;

inline std::int32_t WordAt(const char* at) {
    return bigendian::at<std::int32_t>(at);
}
inline void PutWord(char* at, std::int32_t value) {
    bigendian::put(at, value);
}

// ---- the header ----

inline constexpr std::int32_t IndexUnusedAt = 1074, IndexControlAt = 1080;
// Words of the control record, and of the head of a node.
inline constexpr std::int32_t IndexControlWords = 6, ControlRoot = 2, ControlFree = 3;
inline constexpr std::int32_t IndexNodeWords = 6, WordRow = 0, WordBalance = 1, WordLeft = 4, WordRight = 5;
static_assert(IndexNodeWords * WordBytes == IndexNodeHeadBytes);
static_assert(IndexTableNameAt + MaxIndexTableName + 1 == IndexTextAt);
static_assert(IndexTextAt + MaxIndexText + 1 == IndexUnusedAt);
static_assert(IndexControlAt + IndexControlWords * WordBytes == IndexHeaderBytes);

// The control record with this root and first free record.
inline void PutControl(char* at, std::int32_t root, std::int32_t firstFree) {
    for (std::int32_t i = 0; i < IndexControlWords; ++i) PutWord(at + i * WordBytes, 0);
    PutWord(at + ControlRoot * WordBytes, root);
    PutWord(at + ControlFree * WordBytes, firstFree);
}

// What a control record says.
struct IndexControl {
    std::int32_t root, firstFree;
};
inline IndexControl ControlAt(const char* at) {
    return {WordAt(at + ControlRoot * WordBytes), WordAt(at + ControlFree * WordBytes)};
}

// How many records a file of this size has; -1 when it is not that of a header and whole records.
std::int32_t IndexRecordsOf(std::int64_t fileSize, std::int32_t recordSize);
inline std::int64_t IndexRecordAt(std::int32_t number, std::int32_t recordSize) {
    return IndexHeaderBytes + (std::int64_t{number} - 1) * recordSize;
}

// ---- keys ----

// The fields of a key. An index that is only counted or measured needs no more than the record size.
struct KeyLayout {
    std::int32_t count = 0, recordSize = 0;
    IndexKeyField fields[MaxKeyFields];
};

// False for a key that cannot stand in a file: one without a field, with a string without a capacity, or
// with more bytes than a record may have.
bool LayoutOfKey(const KeyView& key, KeyLayout& layout);
KeyLayout LayoutOfBlock(const IndexBlock& block);
// Whether the fields have the same kinds and capacities.
bool SameKeyLayout(const KeyLayout& a, const KeyLayout& b);

// The bytes of a field in a record: those of the value, and the length ahead of a string.
inline std::int32_t PackedFieldBytes(const IndexKeyField& field) {
    return field.bytes + (field.kind == KindString ? WordBytes : 0);
}
// Whether a string of that many characters fits.
inline bool FitsField(const IndexKeyField& field, std::int32_t length) {
    return length >= 0 && length <= field.bytes / CharacterWidth;
}

// Whether the strings that begin in the first bytes of a key have lengths that fit.
bool HasFittingStrings(const KeyLayout& layout, const char* key, std::int32_t bytes);

// Appends the bytes of a key. False for one that does not fit: of other kinds, with a longer string or an
// array of another size.
bool PackKey(const KeyLayout& layout, const KeyView& key, std::string& bytes);

// A key in a file as a view. Numbers are decoded into `numbers`, characters stay where they are. Strings must
// fit. The parts have no `field`.
struct DecodedKey {
    KeyView view;
    char numbers[MaxKeyFields][8];
};
void DecodeKey(const KeyLayout& layout, const char* bytes, DecodedKey& key);

// Less than 0, 0 or more, as a part of a key comes before, is or comes behind the field at `bytes`.
int ComparePacked(const KeyPart& part, const IndexKeyField& field, const char* bytes);
// The same for characters alone: as many on both sides, or the rest when one has ended.
int CompareStretch(Kind kind, const char* a, std::int32_t aBytes, const char* b, std::int32_t bBytes);

}  // namespace tarn
