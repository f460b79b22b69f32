// SPDX-License-Identifier: Apache-2.0
//
// What memory checking puts around the bytes of a block, and the list of all such blocks. Only the heap includes this.
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
// The newest block heads the list. Guards and links may have been overwritten: they are looked at before they are
// followed, and no look leaves the used range, which ends at `top`. Cost: of `examine` and `count`, a step for each
// block that is newer.
#pragma once

#include "kernel/values/heap.h"

#include <cstdint>

namespace tarn {

inline constexpr std::uint64_t FirstBlock = 16;  // of the range: offset 0 is null
inline constexpr Offset GuardHeadBytes = 20;     // before the caller's bytes

// Blocks are named by their first byte for the caller.
class GuardedBlocks {
public:
    void enter(Offset block, std::int32_t size);  // as the newest
    void leave(Offset block);                     // of one that was examined
    static void resize(Offset block, std::int32_t newSize);
    // 0 when `block` is an undamaged block of `size` bytes, otherwise the error of freeing it: 822 to 825.
    [[nodiscard]] std::int32_t examine(Offset block, std::int32_t size, std::uint64_t top) const;
    [[nodiscard]] Leaks count(std::uint64_t top) const;

private:
    Offset newest_ = 0;
};

}  // namespace tarn
