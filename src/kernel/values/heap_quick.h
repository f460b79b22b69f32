// SPDX-License-Identifier: Apache-2.0
//
// What the kernel's shortest ways know of the heap, so that they can do without a call: that all sizes of one class
// have the same block. Only they include this; everybody else calls heap.h.
#pragma once

#include "kernel/values/heap.h"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#define TARN_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARN_ASAN 1
#endif
#endif

namespace tarn {

// The classes of blocks: every 16 bytes up to 256, then four for each doubling.
inline constexpr std::int32_t HeapStep = 16, LastHeapStep = 256;
// Two sizes of 1 to MaxBlock.
constexpr bool InOneHeapClass(std::int32_t a, std::int32_t b) {
    const auto lastA = static_cast<std::uint32_t>(a) - 1, lastB = static_cast<std::uint32_t>(b) - 1;
    constexpr int stepBits = 4, quarterBits = 3;
    const int shift = lastA < static_cast<std::uint32_t>(LastHeapStep)
                          ? stepBits
                          : static_cast<int>(std::bit_width(lastA)) - quarterBits;
    return (lastA ^ lastB) >> shift == 0;
}

// No memory checking, and no request that a test makes fail: false from FailAllocation(n) to FailAllocation(-1).
[[gnu::visibility("hidden")]] extern bool HeapIsPlain;

// ResizeInPlace for a plain heap, a block that is there and sizes from 1 to MaxBlock.
inline bool GrowInPlace([[maybe_unused]] Offset block, std::int32_t oldSize, std::int32_t newSize) {
#ifdef TARN_ASAN  // which is told of each byte that may be touched
    return ResizeInPlace(block, oldSize, newSize);
#else
    return InOneHeapClass(oldSize, newSize);
#endif
}

// Few bytes, moved or compared without a call.
inline constexpr std::size_t FewBytes = 32;
template <class Word>
void MoveEnds(char* to, const char* from, std::size_t bytes) {
    Word first, last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + bytes - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + bytes - sizeof last, &last, sizeof last);
}
inline void MoveBytes(char* to, const char* from, std::size_t bytes) {
    struct Sixteen {
        std::uint64_t words[2];
    };
    if (bytes > FewBytes)
        std::memmove(to, from, bytes);
    else if (bytes >= sizeof(Sixteen))
        MoveEnds<Sixteen>(to, from, bytes);
    else if (bytes >= sizeof(std::uint64_t))
        MoveEnds<std::uint64_t>(to, from, bytes);
    else if (bytes >= sizeof(std::uint32_t))
        MoveEnds<std::uint32_t>(to, from, bytes);
    else if (bytes >= sizeof(std::uint16_t))
        MoveEnds<std::uint16_t>(to, from, bytes);
    else if (bytes != 0)
        *to = *from;
}
template <class Word>
bool SameEnds(const char* a, const char* b, std::size_t bytes) {
    Word words[4];
    std::memcpy(&words[0], a, sizeof(Word));
    std::memcpy(&words[1], b, sizeof(Word));
    std::memcpy(&words[2], a + bytes - sizeof(Word), sizeof(Word));
    std::memcpy(&words[3], b + bytes - sizeof(Word), sizeof(Word));
    return ((words[0] ^ words[1]) | (words[2] ^ words[3])) == 0;
}
inline bool SameBytes(const char* a, const char* b, std::size_t bytes) {
    constexpr std::size_t word = sizeof(std::uint64_t);
    if (bytes > 2 * word) return std::memcmp(a, b, bytes) == 0;
    if (bytes >= word) return SameEnds<std::uint64_t>(a, b, bytes);
    if (bytes >= word / 2) return SameEnds<std::uint32_t>(a, b, bytes);
    if (bytes >= word / 4) return SameEnds<std::uint16_t>(a, b, bytes);
    return bytes == 0 || *a == *b;
}

}  // namespace tarn
