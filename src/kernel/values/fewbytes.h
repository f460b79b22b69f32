// SPDX-License-Identifier: Apache-2.0
//
// Bytes moved or compared without a call when they are few: what most strings and rows are. Many go to the C library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tarn {

inline constexpr std::size_t FewBytes = 32;
template <class Word>
void MoveEnds(char* to, const char* from, std::size_t bytes) {
    Word first, last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + bytes - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + bytes - sizeof last, &last, sizeof last);
}
// The two may overlap.
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
