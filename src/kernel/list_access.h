// SPDX-License-Identifier: Apache-2.0
//
// The checks that all modules of lists share, and the addresses of elements. Only those modules include this.
#pragma once

#include "kernel/errors.h"
#include "kernel/lists.h"
#include "kernel/runtime.h"

namespace tarn {

inline bool IsHeldInFile(const ListDescriptor& l) {
    return l.tag > TagInFile;
}
inline Kind ElementKindOf(const ListDescriptor& l) {
    return static_cast<Kind>(IsHeldInFile(l) ? l.tag - TagInFile : l.tag);
}
// A list that has not got its element kind yet.
inline bool IsUntyped(const ListDescriptor& l) {
    return l.tag == 0;
}
inline bool IsFixedList(const ListDescriptor& l) {
    return l.maxlength != UNBOUNDED;
}
inline std::int32_t ElementSize(const ListDescriptor& l) {
    return KindSize[ElementKindOf(l)];
}
// `index` from 0; a list in memory that has a block.
inline char* SlotAt(const ListDescriptor& l, std::int32_t index) {
    return At(l.data) + std::int64_t{index} * ElementSize(l);
}

inline bool RefuseList(std::int32_t code) {
    SetError(code);
    return false;
}

// A list whose words fit each other.
bool IsList(const ListDescriptor* l);

// True when the elements of the list can be reached; 761 and 661. This is the one place that knows what a
// list that is held in a file can do.
bool AcceptList(const ListDescriptor* l);
// The same for a list of strings in memory (761). The untyped list counts as one that is empty.
bool AcceptStringList(const ListDescriptor* l);
// 610 and 611 for a value that shall go into the list.
bool AcceptElement(const ListDescriptor& l, const void* v, Kind kind);

}  // namespace tarn
