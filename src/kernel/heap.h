// SPDX-License-Identifier: Apache-2.0
//
// The heap of kernel values: one reserved address range of at most 4 GiB, committed as it grows. A block is named
// by its 32-bit offset into the range (0 is null), so that descriptors keep their exact sizes on a 64-bit machine
// and a bad reference cannot leave the range. Size-class free lists; a free is O(1); a block grows in place inside
// its class. With memory checking on every block carries 24 bytes of guards and links, and a free walks the list.
#pragma once

#include <cstdint>

extern "C" {
extern char* tarn_heap_base;  // null before the first allocation
}

namespace tarn {

using Offset = std::uint32_t;  // into the heap; 0 is null

inline constexpr std::int32_t MaxBlock = 4096000;  // bytes, the most that one block may hold

inline char* At(Offset offset) { return offset == 0 ? nullptr : tarn_heap_base + offset; }
Offset OffsetOf(const void* address);  // 0 for null

// 821 for size 0, 804 for other sizes outside 1 to MaxBlock, 802 when memory is exhausted; `block` is then 0.
// The bytes of a new block are not set.
void Allocate(Offset& block, std::int32_t size);
// `size` is that of the allocation. The freed block is zeroed and `block` set to 0. With memory checking on a
// wrong call sets 822 to 825 and frees nothing.
void Free(Offset& block, std::int32_t size);
// Makes `block` hold `newSize` bytes, the first of them kept; in place when its class allows.
// On error (as Allocate) the block is as it was.
void Resize(Offset& block, std::int32_t oldSize, std::int32_t newSize);

void SetMemoryChecking(bool on);  // before the first allocation
bool MemoryChecking();

struct Leaks {
    std::int32_t bytes = 0;  // -1 when a guard or link is broken
    std::int32_t blocks = 0;
};
Leaks CountLeaks();  // memory checking on only

// Tests make the n-th request from now fail with 802 (0: the next; -1: none).
void FailAllocation(std::int64_t n);

}  // namespace tarn
