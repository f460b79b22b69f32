// SPDX-License-Identifier: Apache-2.0
//
// The kinds of value, the descriptors that hold them, and what tells one from another. This is the one place
// for layouts: every module, the debugger and compiled programs agree on them.
//
// All descriptors begin with the same four words; `data` and `prototype` are heap offsets, 0 for none:
//
//   offset size  every descriptor
//        0    4  size: bytes allocated at data
//        4    4  tag
//        8    4  data
//       12    4  maxlength (record and union: the first field kinds)
//
//   string (24)  16 length in characters, 20 reserved: in a table the place of its mirrors (tables.h)
//   list (24)    16 count, 20 prototype
//   table (24)   16 count, 20 reserved; data is the row header (tables.h)
//   record,      12 field kinds: 48 nibbles, the first field in the high nibble of the first byte, 0 behind
//   union (36)      the last; the fields stand in data one behind another, without gaps
//   set (44)     16 lower bound, 20 upper bound, 24 four words NO_DIMENSION, 40 reserved
//   array (44)   16 three pairs of bounds, NO_DIMENSION where there is no dimension, 40 prototype
//
// Since fields have no gaps, a value may stand at any address: descriptors are packed, and numbers in records
// are read and written through memcpy (ReadAt and WriteAt below).
//
// A descriptor owns its data, its prototype and all that is below them; assignment is a deep copy. It is all
// zero (never used, or freed), empty, or holds data.
#pragma once

#include "kernel/values/heap.h"

#include <cstdint>
#include <cstring>

namespace tarn {

// In maxlength; compared for equality only.
inline constexpr std::int32_t UNBOUNDED = -1000000;       // a string, list or table grows as needed
inline constexpr std::int32_t DYNAMIC_BOUNDS = -1000001;  // an array or set whose bounds are set at run time
// In a bound: there is no such dimension.
inline constexpr std::int32_t NO_DIMENSION = -999999;

// The numbers stand in records, in the debugger's tables and in data files.
enum Kind : std::int32_t {
    KindNone,
    KindBoolean,
    KindEnum,
    KindInteger,
    KindFixed,
    KindReal,
    KindString,
    KindRecord,
    KindUnion,
    KindSet,
    KindArray,
    KindList,
    KindTable,
};
inline constexpr std::int32_t KindCount = 13;
// The bytes of a value in a record, an array or a list.
inline constexpr std::int32_t KindSize[KindCount] = {0, 1, 1, 4, 8, 8, 24, 36, 36, 44, 44, 24, 24};

constexpr bool IsValueKind(std::int32_t kind) {
    return kind >= KindBoolean && kind <= KindTable;
}
// Held through a descriptor: strings to tables.
constexpr bool IsAdtKind(std::int32_t kind) {
    return kind >= KindString && kind <= KindTable;
}

// 0: not bound to a type yet; 1 to 12: array or list in memory, of elements of that kind.
inline constexpr std::int32_t TagRecord = 14, TagUnion = 15, TagTable = 16;
inline constexpr std::int32_t TagInFile = 16;  // added to the element kind of a list that is held in a file
inline constexpr std::int32_t TagString = 29;  // a string or, by its maxlength, a set

inline constexpr std::int32_t MaxFields = 48, MaxDimensions = 3;
inline constexpr std::int32_t LowestBound = -32768, HighestBound = 32767;

struct [[gnu::packed]] DescriptorHead {
    std::int32_t size, tag;
    Offset data;
    std::int32_t maxlength;
};

struct [[gnu::packed]] StringDescriptor {
    std::int32_t size, tag;
    Offset data;
    std::int32_t maxlength, length, reserved;
};

struct FieldKinds {
    std::uint8_t nibbles[MaxFields / 2];
};

// Also a union: that is told by the tag.
struct [[gnu::packed]] RecordDescriptor {
    std::int32_t size, tag;
    Offset data;
    FieldKinds kinds;
};

struct [[gnu::packed]] SetDescriptor {
    std::int32_t size, tag;
    Offset data;
    std::int32_t maxlength, lower, upper, unused[4], reserved;
};

struct [[gnu::packed]] ArrayBounds {
    std::int32_t lower, upper;
};

struct [[gnu::packed]] ArrayDescriptor {
    std::int32_t size, tag;
    Offset data;
    std::int32_t maxlength;
    ArrayBounds bounds[MaxDimensions];
    Offset prototype;
};

struct [[gnu::packed]] ListDescriptor {
    std::int32_t size, tag;
    Offset data;
    std::int32_t maxlength, count;
    Offset prototype;
};

struct [[gnu::packed]] TableDescriptor {
    std::int32_t size, tag;
    Offset data;
    std::int32_t maxlength, count, reserved;
};

static_assert(sizeof(DescriptorHead) == 16);
static_assert(sizeof(StringDescriptor) == 24 && KindSize[KindString] == 24);
static_assert(sizeof(RecordDescriptor) == 36 && KindSize[KindRecord] == 36 && KindSize[KindUnion] == 36);
static_assert(sizeof(SetDescriptor) == 44 && KindSize[KindSet] == 44);
static_assert(sizeof(ArrayDescriptor) == 44 && KindSize[KindArray] == 44);
static_assert(sizeof(ListDescriptor) == 24 && KindSize[KindList] == 24);
static_assert(sizeof(TableDescriptor) == 24 && KindSize[KindTable] == 24);

// ---- telling kinds ----

// A tag from 0 to 29 and a size that is not negative. False for null.
bool IsWellFormed(const void* descriptor);
// The kind of a descriptor; KindNone for null and for what cannot be told.
Kind KindOf(const void* descriptor);
// The same for a block of which only the number of bytes is known: it must hold the whole descriptor.
Kind KindOf(const void* block, std::int32_t bytes);

// ---- values at any address ----

template <class Number>
Number ReadAt(const void* at) {
    Number value;
    std::memcpy(&value, at, sizeof value);
    return value;
}
template <class Number>
void WriteAt(void* at, Number value) {
    std::memcpy(at, &value, sizeof value);
}

// ---- the data of a descriptor ----

// `data` and `size` belong together: these change both. On failure (as Allocate) both are 0 and the result is
// false. The bytes are not set.
template <class Descriptor>
bool AllocateData(Descriptor& d, std::int32_t size) {
    Offset block = 0;
    Allocate(block, size);
    d.data = block;
    d.size = block != 0 ? size : 0;
    return block != 0;
}
template <class Descriptor>
void FreeData(Descriptor& d) {
    Offset block = d.data;
    if (d.size != 0) Free(block, d.size);
    d.data = 0;
    d.size = 0;
}
// Keeps the first bytes; on failure nothing has changed and the result is false. Size 0 frees.
template <class Descriptor>
bool ResizeData(Descriptor& d, std::int32_t size) {
    if (size == 0) {
        FreeData(d);
        return true;
    }
    Offset block = d.data;
    if (d.size == 0) {
        block = 0;
        Allocate(block, size);
    } else if (!Resize(block, d.size, size))
        return false;
    if (block == 0) return false;
    d.data = block;
    d.size = size;
    return true;
}

}  // namespace tarn
