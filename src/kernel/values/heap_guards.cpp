// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/heap_guards_internal.h"

#include "kernel/run/errors.h"
#include "kernel/values/heap_look.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tarn {

namespace {

using Guard = std::array<char, 4>;
constexpr std::int32_t tailBytes = sizeof(Guard);
constexpr Guard headGuard{'L', 'M', 'L', 'M'}, edgeGuard{'<', '>', '<', '>'};

struct Head {
    Guard guard;
    Offset older, newer;
    std::int32_t size;
    Guard second;
};
static_assert(sizeof(Head) == GuardHeadBytes && sizeof(Head) + tailBytes == GuardBytes);

Head& headOf(Offset block) {
    return *reinterpret_cast<Head*>(tarn_heap_base + block - GuardHeadBytes);
}
char* tailOf(Offset block, std::int32_t size) {
    return tarn_heap_base + block + size;
}

// Links that were overwritten lead anywhere in the range.
Head headAt(Offset block) {
    return LookAt<Head>(block - GuardHeadBytes);
}
bool tailHolds(Offset block, std::int32_t size) {
    return LookAt<Guard>(block + static_cast<Offset>(size)) == edgeGuard;
}

// Can a guarded block start here? Guards against links and pointers that were overwritten.
bool mayBeGuarded(Offset block, std::uint64_t top) {
    return block % 4 == 0 && block >= FirstBlock + GuardHeadBytes && block + std::uint64_t{tailBytes} < top;
}

bool sizeInRange(Offset block, std::int32_t size, std::uint64_t top) {
    return size >= 1 && size <= MaxBlock && block + static_cast<std::uint64_t>(size) + tailBytes <= top;
}

}  // namespace

void GuardedBlocks::enter(Offset block, std::int32_t size) {
    headOf(block) = {headGuard, newest_, 0, size, edgeGuard};
    std::memcpy(tailOf(block, size), edgeGuard.data(), tailBytes);
    if (newest_ != 0) headOf(newest_).newer = block;
    newest_ = block;
}

void GuardedBlocks::leave(Offset block) {
    const Head& head = headOf(block);
    if (head.newer != 0)
        headOf(head.newer).older = head.older;
    else
        newest_ = head.older;
    if (head.older != 0) headOf(head.older).newer = head.newer;
}

void GuardedBlocks::resize(Offset block, std::int32_t newSize) {
    headOf(block).size = newSize;
    std::memcpy(tailOf(block, newSize), edgeGuard.data(), tailBytes);
}

namespace {

// A step of the walk from the newest block: false when what stands at `block` is no intact member of the
// list. The back link is part of that, so a damaged list cannot lead the walk round in a circle.
bool intact(Offset block, Offset newer, std::uint64_t top) {
    if (!mayBeGuarded(block, top)) return false;
    const Head head = headAt(block);
    return head.guard == headGuard && head.newer == newer;
}

}  // namespace

std::int32_t GuardedBlocks::examine(Offset block, std::int32_t size, std::uint64_t top) const {
    Offset newer = 0;
    for (Offset at = newest_; at != 0; newer = at, at = headAt(at).older) {
        if (!intact(at, newer, top)) return ERR_BLOCK_LIST_CORRUPT;
        if (at != block) continue;
        const Head head = headAt(at);
        if (head.size != size) return ERR_WRONG_BLOCK_SIZE;
        if (!sizeInRange(at, size, top) || head.second != edgeGuard || !tailHolds(at, size))
            return ERR_BLOCK_OVERWRITTEN;
        // Taking the block out of the list will write to its older neighbour, so that must be there.
        const bool linked =
            head.older == 0 || (mayBeGuarded(head.older, top) && headAt(head.older).newer == at);
        return linked ? ERR_NONE : ERR_BLOCK_LIST_CORRUPT;
    }
    return ERR_NO_SUCH_BLOCK;
}

Leaks GuardedBlocks::count(std::uint64_t top) const {
    Leaks leaks;
    Offset newer = 0;
    for (Offset at = newest_; at != 0; newer = at, at = headAt(at).older) {
        const bool whole = intact(at, newer, top);
        const std::int32_t size = whole ? headAt(at).size : 0;
        if (!whole || !sizeInRange(at, size, top) || !tailHolds(at, size)) {
            leaks.bytes = -1;
            return leaks;
        }
        leaks.bytes =
            static_cast<std::int32_t>(std::min<std::int64_t>(INT32_MAX, std::int64_t{leaks.bytes} + size));
        ++leaks.blocks;
    }
    return leaks;
}

}  // namespace tarn
