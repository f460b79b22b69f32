// SPDX-License-Identifier: Apache-2.0
//
// A block without memory checking is nothing but its bytes: the caller's size says its class. With memory
// checking:
//
//   offset size  guarded block (offsets from the block's start; the caller's bytes begin at 20)
//        0    4  head guard "LMLM"
//        4    4  link to the older block: offset of its first byte for the caller, 0 for none
//        8    4  link to the newer block, likewise
//       12    4  size that was asked for
//       16    4  second guard "<><>"
//       20    n  the caller's bytes
//     20+n    4  tail guard "<><>"
//
// The newest block heads the list. A free block holds the offset of the next free one of its class in its
// first word.
#include "kernel/values/heap.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/heap_quick.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <array>
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

namespace {

constexpr std::uint64_t largestReserve = limits::LargestReserve;
constexpr std::uint64_t smallestReserve = std::uint64_t{16} << 20;
// The range grows in small steps while it is small, and then by whole huge pages, which spare the walks of
// large tables most of their address translations.
constexpr std::uint64_t commitStep = std::uint64_t{1} << 20;
constexpr std::uint64_t hugePage = std::uint64_t{2} << 20;
constexpr std::uint64_t firstBlock = 16;  // offset 0 is null
constexpr std::int32_t pageBytes = 4096;
constexpr std::int32_t releaseFrom = 1 << 20;  // pages of freed blocks of this size on go back to the system

constexpr std::int32_t headBytes = 20, tailBytes = 4;
static_assert(headBytes + tailBytes == GuardBytes);

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
static_assert(classOf(1) == 0 && classOf(16) == 0 && classOf(17) == 1 && classOf(256) == 15 &&
              classOf(257) == 16);
static_assert(classBytes(16) == 320 && classOf(320) == 16 && classOf(321) == 17);
static_assert(classOf(MaxBlock + GuardBytes) < classCount &&
              classBytes(classCount - 1) >= MaxBlock + GuardBytes);

static_assert(InOneHeapClass(1, 16) && !InOneHeapClass(16, 17) && !InOneHeapClass(256, 257));
static_assert(InOneHeapClass(257, 320) && !InOneHeapClass(320, 321) && !InOneHeapClass(512, 513));

struct Heap {
    std::uint64_t reserved = 0;   // bytes of the range
    std::uint64_t committed = 0;  // of them usable
    std::uint64_t top = firstBlock;
    Offset free[classCount] = {};
    Offset newest = 0;  // head of the list of guarded blocks
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
    const std::uint64_t end = heap.top + static_cast<std::uint64_t>(bytes);
    if (end > heap.reserved || (end > heap.committed && !commit(end, bytes < releaseFrom))) return 0;
    const auto block = static_cast<Offset>(heap.top);
    heap.top = end;
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
    return block + static_cast<std::uint64_t>(classBytes(index)) == heap.top;
}

void giveRaw(Offset block, std::int32_t bytes) {
    const int index = classOf(bytes);
    wipe(tarn_heap_base + block, bytes);
    if (index < smallClasses || !isLast(block, index)) return pushFree(block, index);
    allow(block, index, 0);
    heap.top = block;
}

// Lets the last block of the range grow where it is, from one class to another, when no free block waits for
// its content: a list that nothing is allocated behind is not copied while it grows.
bool growLast(Offset block, int index, int larger) {
    if (heap.free[larger] != 0 || !isLast(block, index)) return false;
    const std::uint64_t end = block + static_cast<std::uint64_t>(classBytes(larger));
    if (end > heap.reserved || (end > heap.committed && !commit(end, classBytes(larger) < releaseFrom)))
        return false;
    heap.top = end;
    return true;
}

// ---- guarded blocks ----

using Guard = std::array<char, 4>;
constexpr Guard headGuard{'L', 'M', 'L', 'M'}, edgeGuard{'<', '>', '<', '>'};

struct Head {
    Guard guard;
    Offset older, newer;
    std::int32_t size;
    Guard second;
};
static_assert(sizeof(Head) == headBytes);

Head& headOf(Offset block) {
    return *reinterpret_cast<Head*>(tarn_heap_base + block - headBytes);
}
char* tailOf(Offset block, std::int32_t size) {
    return tarn_heap_base + block + size;
}

// Reads what stands at an offset, be it a block or not: links that were overwritten lead anywhere in the
// range.
#ifdef TARN_ASAN
template <class Value>
__attribute__((no_sanitize_address)) Value look(Offset at) {
    Value copy;
    const volatile char* from = tarn_heap_base + at;
    for (std::size_t i = 0; i < sizeof copy; ++i) reinterpret_cast<char*>(&copy)[i] = from[i];
    return copy;
}
#else
template <class Value>
Value look(Offset at) {
    Value value;
    std::memcpy(&value, tarn_heap_base + at, sizeof value);
    return value;
}
#endif
Head headAt(Offset block) {
    return look<Head>(block - headBytes);
}
bool tailHolds(Offset block, std::int32_t size) {
    return look<Guard>(block + static_cast<Offset>(size)) == edgeGuard;
}

// Can a guarded block start here? Guards against links and pointers that were overwritten.
bool mayBeGuarded(Offset block) {
    return block % 4 == 0 && block >= firstBlock + headBytes && block + std::uint64_t{tailBytes} < heap.top;
}

bool sizeInRange(Offset block, std::int32_t size) {
    return size >= 1 && size <= MaxBlock && block + static_cast<std::uint64_t>(size) + tailBytes <= heap.top;
}

void link(Offset block, std::int32_t size) {
    headOf(block) = {headGuard, heap.newest, 0, size, edgeGuard};
    std::memcpy(tailOf(block, size), edgeGuard.data(), tailBytes);
    if (heap.newest != 0) headOf(heap.newest).newer = block;
    heap.newest = block;
}

void unlink(Offset block) {
    const Head& head = headOf(block);
    if (head.newer != 0)
        headOf(head.newer).older = head.older;
    else
        heap.newest = head.older;
    if (head.older != 0) headOf(head.older).newer = head.newer;
}

// A step of the walk from the newest block: false when what stands at `block` is no intact member of the
// list. The back link is part of that, so a damaged list cannot lead the walk round in a circle.
bool intact(Offset block, Offset newer) {
    if (!mayBeGuarded(block)) return false;
    const Head head = headAt(block);
    return head.guard == headGuard && head.newer == newer;
}

// 0 when `block` is an undamaged block of `size` bytes, otherwise the error of freeing it.
std::int32_t examine(Offset block, std::int32_t size) {
    Offset newer = 0;
    for (Offset at = heap.newest; at != 0; newer = at, at = headAt(at).older) {
        if (!intact(at, newer)) return ERR_BLOCK_LIST_CORRUPT;
        if (at != block) continue;
        const Head head = headAt(at);
        if (head.size != size) return ERR_WRONG_BLOCK_SIZE;
        if (!sizeInRange(at, size) || head.second != edgeGuard || !tailHolds(at, size))
            return ERR_BLOCK_OVERWRITTEN;
        // Taking the block out of the list will write to its older neighbour, so that must be there.
        const bool linked = head.older == 0 || (mayBeGuarded(head.older) && headAt(head.older).newer == at);
        return linked ? ERR_NONE : ERR_BLOCK_LIST_CORRUPT;
    }
    return ERR_NO_SUCH_BLOCK;
}

// Without memory checking: what can be told from the numbers alone.
std::int32_t plausible(Offset block, std::int32_t size) {
    if (block < firstBlock || block % 16 != 0 || block >= heap.top) return ERR_NO_SUCH_BLOCK;
    if (size < 1 || size > MaxBlock || block + static_cast<std::uint64_t>(size) > heap.top)
        return ERR_WRONG_BLOCK_SIZE;
    return ERR_NONE;
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
        block += headBytes;
        link(block, size);
    }
    ++heap.live;
    return block;
}

void release(Offset block, std::int32_t size) {
    --heap.live;
    if (heap.checking) {
        unlink(block);
        giveRaw(block - headBytes, size + GuardBytes);
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
    allow(block - headBytes, index, newSize + GuardBytes);
    headOf(block).size = newSize;
    std::memcpy(tailOf(block, newSize), edgeGuard.data(), tailBytes);
}

// Leaves a block where it is and frees what it no longer needs: the way to shrink that takes no memory.
void shrinkInPlace(Offset block, std::int32_t oldSize, std::int32_t newSize) {
    const std::int32_t extra = heap.checking ? GuardBytes : 0;
    const Offset raw = heap.checking ? block - Offset{headBytes} : block;
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
    if (byte < tarn_heap_base || byte >= tarn_heap_base + heap.top) return 0;
    return static_cast<Offset>(byte - tarn_heap_base);
}

namespace {

// The short ways of most requests: a small block out of the free ones, and back. False: not one of them.
bool allocateQuickly(Offset& block, std::int32_t size) {
    const auto last = static_cast<std::uint32_t>(size) - 1;
    if (last >= smallLimit || !HeapIsPlain) return false;
    const int index = static_cast<int>(last) / smallStep;
    if (heap.free[index] == 0) return false;
    block = popFree(index);
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
    const std::int32_t error = heap.checking ? examine(block, size) : plausible(block, size);
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
    const std::int32_t error = heap.checking ? examine(block, oldSize) : plausible(block, oldSize);
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
    Leaks leaks;
    Offset newer = 0;
    for (Offset at = heap.newest; at != 0; newer = at, at = headAt(at).older) {
        const bool whole = intact(at, newer);
        const std::int32_t size = whole ? headAt(at).size : 0;
        if (!whole || !sizeInRange(at, size) || !tailHolds(at, size)) {
            leaks.bytes = -1;
            return leaks;
        }
        leaks.bytes =
            static_cast<std::int32_t>(std::min<std::int64_t>(INT32_MAX, std::int64_t{leaks.bytes} + size));
        ++leaks.blocks;
    }
    return leaks;
}

std::int64_t LiveBlocks() {
    return heap.live;
}

void FailAllocation(std::int64_t n) {
    heap.failAfter = n < 0 ? -1 : n;
    HeapIsPlain = !heap.checking && heap.failAfter < 0;
}

}  // namespace tarn
