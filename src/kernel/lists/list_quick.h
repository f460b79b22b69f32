// SPDX-License-Identifier: Apache-2.0
//
// The shortest way to append to a list in memory: where its block has room for one more element, which needs no shape.
// Only lists and tables include this, for their own shortest ways.
#pragma once

#include "kernel/lists/lists.h"
#include "kernel/run/runtime.h"
#include "kernel/values/heap_quick.h"

#include <cstdint>

namespace tarn {

// Whether a list of elements of this kind has no limit, and a block that takes one more behind the last. False also for
// words that do not fit each other.
inline bool HasRoomBehind(const ListDescriptor& l, Kind kind) {
    const std::int32_t size = l.size, width = KindSize[kind];
    if (l.maxlength != UNBOUNDED || l.data == 0 || !HeapIsPlain) return false;
    if (size < 1 || size > MaxBlock - width || std::int64_t{l.count} * width != size) return false;
    return FitsInItsBlock(size, size + width);
}
// Then: where the element goes, whose bytes the caller sets. The list counts it already.
inline char* TakeRoomBehind(ListDescriptor& l, Kind kind) {
    const std::int32_t size = l.size;
    l.size += KindSize[kind];
    ++l.count;
    NoteNewSize(l.data, size, l.size);
    return At(l.data) + size;
}

}  // namespace tarn
