// SPDX-License-Identifier: Apache-2.0
//
// What each kind that is held through a descriptor gives to the generic operations: one row of a table each.
// Only the modules of the kinds and adt.cpp include this.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <cstring>
#include <string>

namespace tarn {

// Addresses need no alignment. Every function may be given null only where it says so.
struct KindOperations {
    // `target` is raw bytes. Gives it the empty shape of `like`. On failure an error is set, nothing stays
    // allocated, `target` is all zero and the result false.
    bool (*init)(void* target, const void* like);
    // As AdtCopy, for two distinct well-formed descriptors of this kind. False: failed, and the error is set.
    // (A text that was cut and members that did not fit set their error and give true: the value is complete
    // as far as it can be.)
    bool (*copy)(const void* source, void* target);
    // Frees all below; the descriptor's own bytes are left as they are. A zero descriptor: nothing.
    void (*free)(void* value);
    // True when the contents are equal. Sets no error for descriptors that are well-formed.
    bool (*equal)(const void* a, const void* b);
    bool (*sameShape)(const void* a, const void* b);
    // "" or what is wrong, as AdtCheck.
    std::string (*check)(const void* value);
    // Makes the value empty and keeps its shape. Needs no memory.
    void (*empty)(void* value);
    // The list in which the value keeps its rows, which may be held in a file; null for kinds without one.
    const ListDescriptor* (*rows)(const void* value) = nullptr;
};

extern const KindOperations StringOperations, RecordOperations, SetOperations, ArrayOperations,
    ListOperations, TableOperations;

// Copies a number from one place to another that is not a part of it.
inline void CopyNumber(const void* source, void* target, Kind kind) {
    switch (KindSize[kind]) {
    case 1: std::memcpy(target, source, 1); break;
    case 4: std::memcpy(target, source, 4); break;
    case 8: std::memcpy(target, source, 8); break;
    default: break;
    }
}

// True when all fields are numbers: such a record is nothing but its bytes.
inline bool HoldsNumbersOnly(const FieldKinds& kinds) {
    constexpr std::uint64_t ones = 0x1111111111111111;
    std::uint64_t words[sizeof kinds / sizeof(std::uint64_t)], adt = 0;
    std::memcpy(words, &kinds, sizeof kinds);
    // A nibble of 6 or more has its bit 3, or both bits 2 and 1.
    for (const std::uint64_t word : words) adt |= word >> 3U | (word >> 2U & word >> 1U);
    return (adt & ones) == 0;
}
static_assert(KindReal == 5 && KindString == 6 && KindTable < 16);

// How deep values may stand in each other. A deeper one is never made (764): all walks over values go down by
// calling themselves.
inline constexpr std::int32_t MaxNesting = 500;

bool InitAdt(void* target, const void* like, Kind kind);
bool CopyAdt(const void* source, void* target, Kind kind);
void FreeAdt(void* value, Kind kind);

// For elements and fields of any kind, 1 to 12. They act like the functions above; kinds 1 to 5 are bytes.
inline bool InitValue(void* target, const void* like, Kind kind) {
    if (IsAdtKind(kind)) return InitAdt(target, like, kind);
    std::memset(target, 0, static_cast<std::size_t>(KindSize[kind]));
    return true;
}
inline bool CopyValue(const void* source, void* target, Kind kind) {
    if (IsAdtKind(kind)) return CopyAdt(source, target, kind);
    CopyNumber(source, target, kind);
    return true;
}
inline void FreeValue(void* value, Kind kind) {  // does not zero
    if (IsAdtKind(kind)) FreeAdt(value, kind);
}
bool EqualValues(const void* a, const void* b, Kind kind);
bool SameShape(const void* a, const void* b, Kind kind);
std::string CheckValue(const void* value, Kind kind);
void EmptyValue(void* value, Kind kind);  // kinds 1 to 5 become 0, a zero descriptor stays

// A copy of the shape of `like` in a block of its own, for elements of kinds 6 to 12; 0 for other kinds and
// for null. `ok` is false when memory is short (the error is set).
Offset NewPrototype(const void* like, Kind kind, bool& ok);
void FreePrototype(Offset& prototype, Kind kind);

// A descriptor of the kind that it is said to be, or a number.
bool IsOfKind(const void* value, Kind kind);
bool IsZeroValue(const void* value, Kind kind);  // kinds 6 to 12
// AdtCopy; false when the value did not arrive.
bool CopyAndCompare(const void* source, void* target, Kind kind, std::int32_t flag);
// The end of a reading: AdtCopy, and what a failed reading leaves.
void CopyOut(const void* element, void* v, Kind kind);
// The end of the checks of element access: 611 for a descriptor that is of another kind than it is said to
// be. An output may also be all zero: it takes the shape of what is read.
enum class Use { Input, Output };
bool AcceptContent(const void* value, Kind kind, Use use);

// The common second check of element access: 610 for a null value, a kind outside 1 to 12 or a malformed
// descriptor; the result is false and the error set.
bool AcceptValue(const void* value, Kind kind);
// What a failed reading leaves in its output: 0 for kinds 1 to 5, an empty value of its own shape for others.
// Nothing for null and for what is not a value.
void ClearOutput(void* value, Kind kind);

}  // namespace tarn
