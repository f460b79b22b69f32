// SPDX-License-Identifier: Apache-2.0
//
// What each kind that is held through a descriptor gives to the generic operations: one row of a table each.
// Only the modules of the kinds and adt.cpp include this.
#pragma once

#include "kernel/values.h"

#include <string>

namespace tarn {

// Addresses need no alignment. Every function may be given null only where it says so.
struct KindOperations {
    // `target` is raw bytes. Gives it the empty shape of `like`. On failure an error is set, nothing stays
    // allocated, `target` is all zero and the result false.
    bool (*init)(void* target, const void* like);
    // As AdtCopy, for two distinct well-formed descriptors of this kind, or a zero target. False: failed, and
    // the error is set. (A text that was cut and members that did not fit set their error and give true: the
    // value is complete as far as it can be.)
    bool (*copy)(const void* source, void* target);
    // Frees all below; the descriptor's own bytes are left as they are. A zero descriptor: nothing.
    void (*free)(void* value);
    // True when the contents are equal. Sets no error for descriptors that are well-formed.
    bool (*equal)(const void* a, const void* b);
    bool (*sameShape)(const void* a, const void* b);
    // "" or what is wrong, as AdtCheck.
    std::string (*check)(const void* value);
};

extern const KindOperations StringOperations, RecordOperations, SetOperations, ArrayOperations,
    ListOperations, TableOperations;

// For elements and fields of any kind, 1 to 12. They act like the functions above; kinds 1 to 5 are bytes.
bool InitValue(void* target, const void* like, Kind kind);
bool CopyValue(const void* source, void* target, Kind kind);
void FreeValue(void* value, Kind kind);  // does not zero
bool EqualValues(const void* a, const void* b, Kind kind);
bool SameShape(const void* a, const void* b, Kind kind);
std::string CheckValue(const void* value, Kind kind);
// Frees and makes it empty again, keeping its shape; on failure it is as it was.
bool ClearValue(void* value, Kind kind);

// A copy of the shape of `like` in a block of its own, for elements of kinds 6 to 12; 0 for other kinds and
// for null. `ok` is false when memory is short (the error is set).
Offset NewPrototype(const void* like, Kind kind, bool& ok);
void FreePrototype(Offset& prototype, Kind kind);

// The common second check of element access: 610 for a null value, a kind outside 1 to 12 or a malformed
// descriptor; the result is false and the error set.
bool AcceptValue(const void* value, Kind kind);
// What a failed reading leaves in its output: 0 for kinds 1 to 5, an empty value of its own shape for others.
// Nothing for null and for what is not a value.
void ClearOutput(void* value, Kind kind);

}  // namespace tarn
