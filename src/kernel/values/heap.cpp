// SPDX-License-Identifier: Apache-2.0
//
// A block without memory checking is nothing but its bytes: the caller's size says its class. With memory checking it
// has more around them (heap_guards_internal.h), which count for its class. From FirstBlock to HeapTop the range is blocks
// without a gap, taken or free; a free one holds the offset of the next of its class in its first word. Behind it
// there is nothing, in pages that are committed already or not: a block that is given back there is no free one.
#include "kernel/values/heap.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/heap_guards_internal.h"
#include "kernel/values/heap_quick.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <sys/mman.h>

#ifdef TARN_ASAN
#include <sanitizer/asan_interface.h>
#endif

extern "C" {
char* tarn_heap_base = nullptr;
}

namespace tarn {

bool HeapIsPlain = true;
std::uint64_t HeapTop = FirstBlock;

namespace {

constexpr std::uint64_t largestReserve = limits::LargestReserve;
constexpr std::uint64_t smallestReserve = std::uint64_t{16} << 20;
// The range grows in small steps while it is small, and then by whole huge pages, which spare the walks of
// large tables most of their address translations.
constexpr std::uint64_t commitStep = std::uint64_t{1} << 20;
constexpr std::uint64_t hugePage = std::uint64_t{2} << 20;
constexpr std::int32_t pageBytes = 4096;
constexpr std::int32_t releaseFrom = 1 << 20;  // pages of freed blocks of this size on go back to the system

// Classes: every 16 bytes up to 256, then four for each doubling.
constexpr int smallClasses = 16, smallStep = HeapStep, smallLimit = LastHeapStep;
constexpr int classCount = smallClasses + 14 * 4;

constexpr int classOf(std::int32_t bytes) {
    const auto last = static_cast<std::uint32_t>(bytes) - 1;
    if (bytes <= smallLimit) return static_cast<int>(last) / smallStep;
    const int doubling = static_cast<int>(std::bit_width(last)) - 1;
    return smallClasses + (doubling - 8) * 4 + static_cast<int>((last >> (doubling - 2)) & 3);
}
constexpr std::int32_t classBytes(int index) {
    if (index < smallClasses) return (index + 1) * smallStep;
    const int doubling = (index - smallClasses) / 4 + 8, quarter = (index - smallClasses) % 4;
    return (5 + quarter) << (doubling - 2);
}
// From the first size of each class to the last one, and between it and the next.
constexpr bool classesAreRight() {
    std::int32_t least = 1;
    for (int index = 0; index < classCount; ++index) {
        const std::int32_t most = classBytes(index);
        if (classOf(least) != index || classOf(most) != index || !FitsInItsBlock(least, most)) return false;
        if (classOf(most + 1) != index + 1 || FitsInItsBlock(most, most + 1)) return false;
        least = most + 1;
    }
    return least > MaxBlock + GuardBytes;
}
static_assert(classesAreRight());

struct Heap {
    std::uint64_t reserved = 0;   // bytes of the range
    std::uint64_t committed = 0;  // of them usable
    Offset free[classCount] = {};
    GuardedBlocks guarded;
    std::int64_t live = 0;
    std::int64_t failAfter = -1;
    bool checking = false;
};
Heap heap;

// ---- the range ----

bool reserve() {
    for (std::uint64_t bytes = largestReserve; bytes >= smallestReserve; bytes /= 2) {
        void* range =
            mmap(nullptr, bytes + hugePage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (range == MAP_FAILED) continue;
        const std::uint64_t start = reinterpret_cast<std::uintptr_t>(range);
        tarn_heap_base = static_cast<char*>(range) + ((start + hugePage - 1) / hugePage * hugePage - start);
        heap.reserved = bytes;
        return true;
    }
    return false;
}

bool commit(std::uint64_t upTo, bool smallBlocks) {
    const std::uint64_t step = upTo <= hugePage ? commitStep : hugePage;
    const std::uint64_t goal = std::min((upTo + step - 1) / step * step, heap.reserved);
    if (mprotect(tarn_heap_base + heap.committed, goal - heap.committed, PROT_READ | PROT_WRITE) != 0)
        return false;
    // A wish, on which nothing depends. Large blocks are left out, and guarded ones: a touch at their ends
    // would take a huge page, and what is freed of one does not go back to the system.
    if (smallBlocks && !heap.checking && step == hugePage)
        madvise(tarn_heap_base + heap.committed, goal - heap.committed, MADV_HUGEPAGE);
    heap.committed = goal;
    return true;
}

Offset extend(std::int32_t bytes) {
    if (tarn_heap_base == nullptr && !reserve()) return 0;
    const std::uint64_t end = HeapTop + static_cast<std::uint64_t>(bytes);
    if (end > heap.reserved || (end > heap.committed && !commit(end, bytes < releaseFrom))) return 0;
    const auto block = static_cast<Offset>(HeapTop);
    HeapTop = end;
    return block;
}

// ---- raw blocks ----

// Tells the address sanitizer which bytes of a block of class `index` may be touched.
void allow([[maybe_unused]] Offset block, [[maybe_unused]] int index, [[maybe_unused]] std::int32_t bytes) {
#ifdef TARN_ASAN
    ASAN_POISON_MEMORY_REGION(tarn_heap_base + block, static_cast<std::size_t>(classBytes(index)));
    ASAN_UNPOISON_MEMORY_REGION(tarn_heap_base + block, static_cast<std::size_t>(bytes));
#endif
}

Offset popFree(int index) {
    const Offset block = heap.free[index];
    std::memcpy(&heap.free[index], tarn_heap_base + block, sizeof(Offset));
    __builtin_prefetch(tarn_heap_base + heap.free[index]);  // the next one to be taken
    return block;
}

void pushFree(Offset block, int index) {
    allow(block, index, sizeof(Offset));
    std::memcpy(tarn_heap_base + block, &heap.free[index], sizeof(Offset));
    heap.free[index] = block;
}

// Makes `left` bytes from `rest` on, a part of a block of class `larger`, free blocks as large as they can
// be.
void freePieces(Offset rest, std::int32_t left, int larger) {
    for (int piece = larger - 1; left > 0; --piece) {
        while (left >= classBytes(piece)) {
            pushFree(rest, piece);
            rest += static_cast<Offset>(classBytes(piece));
            left -= classBytes(piece);
        }
    }
}

// When the range is used up: a block of class `index` out of a free one of a larger class; the rest of it
// becomes free blocks. 0 if no larger one is free.
Offset splitLarger(int index) {
    int larger = index + 1;
    while (larger < classCount && heap.free[larger] == 0) ++larger;
    if (larger == classCount) return 0;
    const Offset block = popFree(larger);
    freePieces(block + static_cast<Offset>(classBytes(index)), classBytes(larger) - classBytes(index),
               larger);
    return block;
}

Offset takeRaw(std::int32_t bytes) {
    const int index = classOf(bytes);
    Offset block = 0;
    if (heap.free[index] != 0)
        block = popFree(index);
    else
        block = extend(classBytes(index));
    if (block == 0) block = splitLarger(index);
    if (block != 0) allow(block, index, bytes);
    return block;
}

// At most 64 bytes, from the start of a block: whole steps of it, without a call.
[[maybe_unused]] void wipeShort(char* bytes, std::int32_t count) {
    constexpr std::size_t one = smallStep, two = 2 * one;
    if (count <= smallStep) {
        std::memset(bytes, 0, one);
        return;
    }
    const int steps = (count + smallStep - 1) / smallStep;
    std::memset(bytes, 0, two);
    std::memset(bytes + (steps - 2) * smallStep, 0, two);
}

void wipe(char* bytes, std::int32_t count) {
#if !defined(TARNWICK_TINY) && !defined(TARN_ASAN)
    if (count <= 4 * smallStep) return wipeShort(bytes, count);
#endif
#ifdef TARNWICK_TINY
    std::memset(bytes, 0xDD, static_cast<std::size_t>(count));  // so that a use after the free shows
#else
    if (count < releaseFrom) {
        std::memset(bytes, 0, static_cast<std::size_t>(count));
        return;
    }
    // Whole pages given back read as zero, and cost nothing until they are used again.
    const std::uintptr_t begin = reinterpret_cast<std::uintptr_t>(bytes);
    const std::uintptr_t firstPage = (begin + pageBytes - 1) / pageBytes * pageBytes;
    const std::uintptr_t end = begin + static_cast<std::uintptr_t>(count),
                         lastPage = end / pageBytes * pageBytes;
    std::memset(bytes, 0, firstPage - begin);
    if (madvise(bytes + (firstPage - begin), lastPage - firstPage, MADV_DONTNEED) != 0)
        std::memset(bytes + (firstPage - begin), 0, lastPage - firstPage);
    std::memset(bytes + (lastPage - begin), 0, end - lastPage);
#endif
}

// Whether a block of class `index` is the last one of the used range. Small ones do not ask for that.
bool isLast(Offset block, int index) {
    return block + static_cast<std::uint64_t>(classBytes(index)) == HeapTop;
}

void giveRaw(Offset block, std::int32_t bytes) {
    const int index = classOf(bytes);
    wipe(tarn_heap_base + block, bytes);
    if (index < smallClasses || !isLast(block, index)) return pushFree(block, index);
    allow(block, index, 0);
    HeapTop = block;
}

// Lets the last block of the range grow where it is, from one class to another, when no free block waits for
// its content: a list that nothing is allocated behind is not copied while it grows.
bool growLast(Offset block, int index, int larger) {
    if (heap.free[larger] != 0 || !isLast(block, index)) return false;
    const std::uint64_t end = block + static_cast<std::uint64_t>(classBytes(larger));
    if (end > heap.reserved || (end > heap.committed && !commit(end, classBytes(larger) < releaseFrom)))
        return false;
    HeapTop = end;
    return true;
}

// Without memory checking: what can be told from the numbers alone.
std::int32_t plausible(Offset block, std::int32_t size) {
    if (block < FirstBlock || block % 16 != 0 || block >= HeapTop) return ERR_NO_SUCH_BLOCK;
    if (size < 1 || size > MaxBlock || block + static_cast<std::uint64_t>(size) > HeapTop)
        return ERR_WRONG_BLOCK_SIZE;
    return ERR_NONE;
}

// 0 for a block of `size` bytes, as far as it can be told, otherwise the error of freeing it.
std::int32_t examine(Offset block, std::int32_t size) {
    return heap.checking ? heap.guarded.examine(block, size, HeapTop) : plausible(block, size);
}

// ---- requests ----

bool sizeAllowed(std::int32_t size) {
    if (size >= 1 && size <= MaxBlock) [[likely]]
        return true;
    SetError(size == 0 ? ERR_EMPTY_BLOCK : ERR_BLOCK_TOO_LARGE);
    return false;
}

bool refused() {
    if (heap.failAfter < 0) [[likely]]
        return false;
    return heap.failAfter-- == 0;
}

Offset obtain(std::int32_t size) {
    Offset block = takeRaw(heap.checking ? size + GuardBytes : size);
    if (block == 0) return 0;
    if (heap.checking) {
        block += GuardHeadBytes;
        heap.guarded.enter(block, size);
    }
    ++heap.live;
    return block;
}

void release(Offset block, std::int32_t size) {
    --heap.live;
    if (heap.checking) {
        heap.guarded.leave(block);
        giveRaw(block - GuardHeadBytes, size + GuardBytes);
    } else {
        giveRaw(block, size);
    }
}

void resizeInPlace(Offset block, std::int32_t newSize) {
    const int index = classOf(heap.checking ? newSize + GuardBytes : newSize);
    if (!heap.checking) {
        allow(block, index, newSize);
        return;
    }
    allow(block - GuardHeadBytes, index, newSize + GuardBytes);
    GuardedBlocks::resize(block, newSize);
}

// Leaves a block where it is and frees what it no longer needs: the way to shrink that takes no memory.
void shrinkInPlace(Offset block, std::int32_t oldSize, std::int32_t newSize) {
    const std::int32_t extra = heap.checking ? GuardBytes : 0;
    const Offset raw = heap.checking ? block - GuardHeadBytes : block;
    const int larger = classOf(oldSize + extra), smaller = classOf(newSize + extra);
    const std::int32_t kept = classBytes(smaller), left = classBytes(larger) - kept;
    allow(raw, larger, classBytes(larger));
    wipe(tarn_heap_base + raw + kept, left);
    freePieces(raw + static_cast<Offset>(kept), left, larger);
    resizeInPlace(block, newSize);
}

}  // namespace

Offset OffsetOf(const void* address) {
    const auto* byte = static_cast<const char*>(address);
    if (byte == nullptr || tarn_heap_base == nullptr) return 0;
    if (byte < tarn_heap_base || byte >= tarn_heap_base + HeapTop) return 0;
    return static_cast<Offset>(byte - tarn_heap_base);
}

namespace {

// The short ways of most requests: a small block out of the free ones, and back. False: not one of them.
bool allocateQuickly(Offset& block, std::int32_t size) {
    const auto last = static_cast<std::uint32_t>(size) - 1;
    if (last >= smallLimit || !HeapIsPlain) return false;
    const int index = static_cast<int>(last) / smallStep;
    const std::uint64_t end = HeapTop + static_cast<std::uint64_t>(classBytes(index));
    if (heap.free[index] != 0) {
        block = popFree(index);
    } else if (end <= heap.committed) {
        block = static_cast<Offset>(HeapTop);
        HeapTop = end;
    } else {
        return false;
    }
    allow(block, index, size);
    ++heap.live;
    return true;
}

bool freeQuickly(Offset& block, std::int32_t size) {
    const auto last = static_cast<std::uint32_t>(size) - 1;
    if (last >= smallLimit || heap.checking || plausible(block, size) != ERR_NONE) return false;
    --heap.live;
    wipe(tarn_heap_base + block, size);
    pushFree(block, static_cast<int>(last) / smallStep);
    block = 0;
    return true;
}

}  // namespace

void Allocate(Offset& block, std::int32_t size) {
    block = 0;
    if (allocateQuickly(block, size) || !sizeAllowed(size)) return;
    if (!refused()) block = obtain(size);
    if (block == 0) SetError(ERR_OUT_OF_MEMORY);
}

void Free(Offset& block, std::int32_t size) {
    if (freeQuickly(block, size) || (block == 0 && !heap.checking)) return;
    const std::int32_t error = examine(block, size);
    if (error != ERR_NONE) [[unlikely]] {
        SetError(error);
        return;
    }
    release(block, size);
    block = 0;
}

bool Resize(Offset& block, std::int32_t oldSize, std::int32_t newSize) {
    if (block == 0) {
        Allocate(block, newSize);
        return block != 0;
    }
    if (!sizeAllowed(newSize)) return false;
    const std::int32_t error = examine(block, oldSize);
    if (error != ERR_NONE) [[unlikely]] {
        SetError(error);
        return false;
    }
    const bool denied = newSize > oldSize && refused();
    const int extra = heap.checking ? GuardBytes : 0;
    const int oldClass = classOf(oldSize + extra), newClass = classOf(newSize + extra);
    if (!denied && (oldClass == newClass ||
                    (oldClass < newClass && !heap.checking && growLast(block, oldClass, newClass)))) {
        resizeInPlace(block, newSize);
        return true;
    }
    const Offset moved = denied ? 0 : obtain(newSize);
    if (moved == 0 && newSize < oldSize) {
        shrinkInPlace(block, oldSize, newSize);
        return true;
    }
    if (moved == 0) {
        SetError(ERR_OUT_OF_MEMORY);
        return false;
    }
    std::memcpy(At(moved), At(block), static_cast<std::size_t>(std::min(oldSize, newSize)));
    release(block, oldSize);
    block = moved;
    return true;
}

bool ResizeInPlace(Offset block, std::int32_t oldSize, std::int32_t newSize) {
    if (block == 0 || heap.checking || newSize < 1 || newSize > MaxBlock) return false;
    if (plausible(block, oldSize) != ERR_NONE || classOf(oldSize) != classOf(newSize)) return false;
    resizeInPlace(block, newSize);
    return true;
}

void SetMemoryChecking(bool on) {
    if (heap.live == 0) heap.checking = on;
    HeapIsPlain = !heap.checking && heap.failAfter < 0;
}

bool MemoryChecking() {
    return heap.checking;
}

Leaks CountLeaks() {
    return heap.guarded.count(HeapTop);
}

std::int64_t LiveBlocks() {
    return heap.live;
}

void FailAllocation(std::int64_t n) {
    heap.failAfter = n < 0 ? -1 : n;
    HeapIsPlain = !heap.checking && heap.failAfter < 0;
}

}  // namespace tarn
