// SPDX-License-Identifier: Apache-2.0
//
// The heap of kernel values: one reserved address range of at most 4 GiB, committed as it grows. A block is
// named by its 32-bit offset into the range (0 is null), so that descriptors keep their exact sizes on a
// 64-bit machine and a bad reference cannot leave the range. Size-class free lists; a free is O(1). A block grows in place
// inside its class, and the last one of the range over classes, too, when no free block has the new size; with memory
// checking on, which gives every block 24 bytes of guards and links and lets a free walk their list, inside its class alone.
//
// Costs: Allocate and Free some nanoseconds beyond the clearing of the freed bytes; Resize the same, and a copy when the
// class changes and something stands behind the block (four classes for each doubling: growing by single bytes copies each
// about four times). Freed memory waits for blocks of its class; only the last block of the range, unless it is of 256
// bytes or fewer, gives its room to any. The pages of large ones go back to the system meanwhile.
#pragma once

#include <cstdint>

extern "C" {
extern char* tarn_heap_base;  // null before the first allocation
}

namespace tarn {

using Offset = std::uint32_t;  // into the heap; 0 is null

inline constexpr std::int32_t MaxBlock = 4096000;  // bytes, the most that one block may hold
inline constexpr std::int32_t GuardBytes = 24;     // what memory checking adds to a block

inline char* At(Offset offset) {
    return offset == 0 ? nullptr : tarn_heap_base + offset;
}
Offset OffsetOf(const void* address);  // 0 for null and for what lies outside the heap

// 821 for size 0, 804 for other sizes outside 1 to MaxBlock, 802 when memory is exhausted; `block` is then 0.
// The bytes of a new block are not set.
void Allocate(Offset& block, std::int32_t size);
// `size` is that of the allocation. The freed block is zeroed and `block` set to 0. With memory checking on a
// wrong call sets 822 to 825 and frees nothing. Without it, freeing 0 does nothing, and an offset or size
// that no block can have sets 823 or 824.
void Free(Offset& block, std::int32_t size);
// Makes `block` hold `newSize` bytes, the first of them kept; in place where that goes (above). A block of 0 is
// allocated. On error (as Allocate; with memory checking on also as Free) the block is as it was and the
// result is false. Shrinking never runs out of memory.
bool Resize(Offset& block, std::int32_t oldSize, std::int32_t newSize);
// True when the block of `oldSize` bytes now holds `newSize`, because both are of one class; false, with
// nothing changed, when it would have to move, when there is no block, for a size out of range, and with
// memory checking on.
bool ResizeInPlace(Offset block, std::int32_t oldSize, std::int32_t newSize);

// Has effect only while no block is allocated: the two kinds of block do not mix.
void SetMemoryChecking(bool on);
bool MemoryChecking();

struct Leaks {
    std::int32_t bytes = 0;  // as asked for, without guards; -1 when a guard or link is broken
    std::int32_t blocks = 0;
};
Leaks CountLeaks();  // memory checking on only; otherwise nothing is found

// Blocks that are allocated now, in either mode.
std::int64_t LiveBlocks();

// Tests make the n-th request from now fail with 802 (0: the next; -1: none). A request is an Allocate of a
// valid size, or a Resize to a valid size that grows.
void FailAllocation(std::int64_t n);

}  // namespace tarn
