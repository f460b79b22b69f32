// SPDX-License-Identifier: Apache-2.0
//
// What memory checking costs: a free looks at the newest blocks, and where the block is none of these at some others
// in turn, never at more than a bound, so that damage of a long list shows after some frees.
#pragma once

#include <cstdint>

namespace tarn {

// How many blocks a free may look at.
inline constexpr std::int32_t MostBlocksLookedAt = 600;
// How often memory checking has looked at a block so far.
std::int64_t LookedAtBlocks();

}  // namespace tarn
