// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_filelayout.h"

#include "kernel/lists/packing.h"

#include <algorithm>
#include <limits>

namespace tarn {

namespace {

// The value of a number field in this machine's order, at `value`, which has room for 8 bytes.
void decodeNumber(Kind kind, const char* bytes, char* value) {
    switch (kind) {
    case KindInteger: WriteAt(value, WordAt(bytes)); break;
    case KindFixed: WriteAt(value, bigendian::at<std::uint64_t>(bytes)); break;
    case KindReal: std::memcpy(value, bytes, sizeof(double)); break;
    default: *value = *bytes;
    }
}

void appendNumber(Kind kind, const char* value, std::string& bytes) {
    char packed[8];
    decodeNumber(kind, value, packed);  // turning the order of bytes twice gives the first again
    bytes.append(packed, static_cast<std::size_t>(KindSize[kind]));
}

bool appendString(const IndexKeyField& field, const KeyPart& part, std::string& bytes) {
    if (part.bytes > field.bytes) return false;
    char length[WordBytes];
    PutWord(length, part.bytes / CharacterWidth);
    bytes.append(length, sizeof length);
    if (part.bytes != 0) bytes.append(part.at, static_cast<std::size_t>(part.bytes));
    bytes.append(static_cast<std::size_t>(field.bytes - part.bytes), '\0');
    return true;
}

std::int32_t capacityOf(const KeyPart& part) {
    if (part.kind != KindString) return part.bytes;
    const auto maxlength = ReadAt<StringDescriptor>(part.field).maxlength;
    const std::int64_t bytes = std::int64_t{maxlength} * CharacterWidth;
    return maxlength >= 1 && bytes <= MostPackedBytes ? static_cast<std::int32_t>(bytes) : 0;
}

}  // namespace

std::int32_t IndexRecordsOf(std::int64_t fileSize, std::int32_t recordSize) {
    const std::int64_t behind = fileSize - IndexHeaderBytes;
    if (behind < 0 || recordSize <= IndexNodeHeadBytes || behind % recordSize != 0) return -1;
    const std::int64_t records = behind / recordSize;
    return records < std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(records) : -1;
}

bool LayoutOfKey(const KeyView& key, KeyLayout& layout) {
    std::int64_t size = IndexNodeHeadBytes;
    layout.count = key.count;
    for (std::int32_t i = 0; i < key.count; ++i) {
        layout.fields[i] = {key.parts[i].kind, capacityOf(key.parts[i])};
        if (layout.fields[i].bytes == 0) return false;
        size += PackedFieldBytes(layout.fields[i]);
    }
    layout.recordSize = static_cast<std::int32_t>(std::min<std::int64_t>(size, MostPackedBytes));
    return key.count != 0 && size <= MostPackedBytes;
}

KeyLayout LayoutOfBlock(const IndexBlock& block) {
    KeyLayout layout;
    layout.recordSize = block.recordSize;
    for (const IndexKeyField& field : block.fields) {
        if (field.kind == KindNone) break;
        layout.fields[layout.count++] = field;
    }
    return layout;
}

bool SameKeyLayout(const KeyLayout& a, const KeyLayout& b) {
    return std::equal(a.fields, a.fields + a.count, b.fields, b.fields + b.count,
                      [](const IndexKeyField& x, const IndexKeyField& y) {
                          return x.kind == y.kind && x.bytes == y.bytes;
                      });
}

bool HasFittingStrings(const KeyLayout& layout, const char* key, std::int32_t bytes) {
    std::int32_t at = 0;
    for (std::int32_t i = 0; i < layout.count && at + WordBytes <= bytes; ++i) {
        const IndexKeyField& field = layout.fields[i];
        if (field.kind == KindString && !FitsField(field, WordAt(key + at))) return false;
        at += PackedFieldBytes(field);
    }
    return true;
}

bool PackKey(const KeyLayout& layout, const KeyView& key, std::string& bytes) {
    if (key.count != layout.count) return false;
    for (std::int32_t i = 0; i < key.count; ++i) {
        const KeyPart& part = key.parts[i];
        const IndexKeyField& field = layout.fields[i];
        if (part.kind != field.kind) return false;
        if (part.kind == KindString) {
            if (!appendString(field, part, bytes)) return false;
        } else if (part.bytes != field.bytes) {
            return false;
        } else if (part.kind == KindArray) {
            bytes.append(part.at, static_cast<std::size_t>(part.bytes));
        } else {
            appendNumber(part.kind, part.at, bytes);
        }
    }
    return true;
}

void DecodeKey(const KeyLayout& layout, const char* bytes, DecodedKey& key) {
    key.view.count = layout.count;
    for (std::int32_t i = 0; i < layout.count; ++i) {
        const IndexKeyField& field = layout.fields[i];
        KeyPart& part = key.view.parts[i];
        part = {field.kind, field.bytes, bytes, nullptr};
        if (field.kind == KindString) {
            part.at = bytes + WordBytes;
            part.bytes = WordAt(bytes) * CharacterWidth;
        } else if (field.kind != KindArray) {
            decodeNumber(field.kind, bytes, key.numbers[i]);
            part.at = key.numbers[i];
        }
        bytes += PackedFieldBytes(field);
    }
}

int CompareStretch(Kind kind, const char* a, std::int32_t aBytes, const char* b, std::int32_t bBytes) {
    if (kind == KindString) return CompareCharacters(a, aBytes, b, bBytes);
    const std::int32_t common = std::min(aBytes, bBytes);
    const int order = common == 0 ? 0 : std::memcmp(a, b, static_cast<std::size_t>(common));
    return order != 0 ? order : (aBytes > bBytes) - (aBytes < bBytes);
}

int ComparePacked(const KeyPart& part, const IndexKeyField& field, const char* bytes) {
    if (field.kind == KindString)
        return CompareCharacters(part.at, part.bytes, bytes + WordBytes, WordAt(bytes) * CharacterWidth);
    if (field.kind == KindArray) return CompareStretch(field.kind, part.at, part.bytes, bytes, field.bytes);
    char number[8];
    decodeNumber(field.kind, bytes, number);
    return CompareParts(part, number);
}

}  // namespace tarn
