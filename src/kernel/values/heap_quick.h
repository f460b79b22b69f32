// SPDX-License-Identifier: Apache-2.0
//
// What the kernel's shortest ways know of the heap, so that they can do without a call: that all sizes of one class
// have the same block. Only they include this; everybody else calls heap.h.
#pragma once

#include "kernel/values/asan.h"
#include "kernel/values/heap.h"

#include <bit>
#include <cstdint>

namespace tarn {

// The classes of blocks: every 16 bytes up to 256, then four for each doubling.
inline constexpr std::int32_t HeapStep = 16, LastHeapStep = 256;
// Whether a block of the one size is one of the other, too: it then grows or shrinks without a word to the heap, if that
// is plain. Two sizes from 1 to MaxBlock.
constexpr bool FitsInItsBlock(std::int32_t a, std::int32_t b) {
    const auto lastA = static_cast<std::uint32_t>(a) - 1, lastB = static_cast<std::uint32_t>(b) - 1;
    constexpr int stepBits = 4, quarterBits = 3;
    const int shift = lastA < static_cast<std::uint32_t>(LastHeapStep)
                          ? stepBits
                          : static_cast<int>(std::bit_width(lastA)) - quarterBits;
    return (lastA ^ lastB) >> shift == 0;
}

// No memory checking, and no request that a test makes fail: false from FailAllocation(n) to FailAllocation(-1).
[[gnu::visibility("hidden")]] extern bool HeapIsPlain;

// The end of the used range, behind which no block reaches. At most 4 GiB.
[[gnu::visibility("hidden")]] extern std::uint64_t HeapTop;

// Such a block now has another size. Only the address sanitizer hears of it, which knows each byte that may be touched.
inline void NoteNewSize([[maybe_unused]] Offset block, [[maybe_unused]] std::int32_t oldSize,
                        [[maybe_unused]] std::int32_t newSize) {
#ifdef TARN_ASAN
    ResizeInPlace(block, oldSize, newSize);
#endif
}

}  // namespace tarn
