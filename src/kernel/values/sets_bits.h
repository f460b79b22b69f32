// SPDX-License-Identifier: Apache-2.0
//
// Sets as runs of bytes on the integer line, for the modules of sets only. A Bits does not own its bytes:
// they stand in the heap (and move when the set does) or in a BitsBuffer on the stack.
#pragma once

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/values.h"

#include <cstddef>
#include <cstdint>

namespace tarn {

// The number of the byte of member i: ceil(i / 8).
constexpr std::int32_t ByteOf(std::int32_t i) {
    return (i + 7) >> 3;
}
// In the byte of member i: the bits of i and of all higher members, and of i and of all lower ones.
constexpr std::uint8_t MaskFrom(std::int32_t i) {
    return static_cast<std::uint8_t>(0xFFU >> (static_cast<unsigned>(i - 1) & 7U));
}
constexpr std::uint8_t MaskUpTo(std::int32_t i) {
    return static_cast<std::uint8_t>(0xFF00U >> ((static_cast<unsigned>(i - 1) & 7U) + 1U));
}

constexpr bool IsSetRange(std::int32_t lower, std::int32_t upper) {
    return lower >= LowestBound && upper <= HighestBound && lower <= upper;
}
constexpr std::int32_t SetBytes(std::int32_t lower, std::int32_t upper) {
    return ByteOf(upper) - ByteOf(lower) + 1;
}
inline constexpr std::int32_t MostSetBytes = SetBytes(LowestBound, HighestBound);

struct Bits {
    std::uint8_t* bytes;  // from that of the lower bound to that of the upper
    std::int32_t lower, upper;

    [[nodiscard]] std::int32_t first() const { return ByteOf(lower); }
    [[nodiscard]] std::int32_t last() const { return ByteOf(upper); }
    [[nodiscard]] std::uint8_t* at(std::int32_t byte) const { return bytes + (byte - first()); }
};

// Room for the bytes of any set; not set to anything.
using BitsBuffer = std::uint8_t[MostSetBytes];

// Bytes are worked on in words of this type where there are enough of them.
using SetWord = std::uint64_t;
inline constexpr std::ptrdiff_t SetWordBytes = sizeof(SetWord);

void ClearBits(const Bits& bits);
// Clears what boundary bytes hold of members outside the bounds.
void TrimBits(const Bits& bits);
// Copies the bytes `first` to `last` of the line, which both have; none when `first` is greater.
void CopyBits(const Bits& to, const Bits& from, std::int32_t first, std::int32_t last);
// Puts the members lo to hi, which lie within the bounds, in or out.
void FillBits(const Bits& bits, std::int32_t lo, std::int32_t hi, bool in);
// The first i from `from` on, within the bounds, that is a member (or is none); the upper bound + 1 when
// there is not any.
std::int32_t NextInBits(const Bits& bits, std::int32_t from, bool member);
// 1 when `a` is the greater, -1 when `b` is, 0 when they have the same members.
std::int32_t OrderBits(const Bits& a, const Bits& b);

constexpr bool IsSetCapacity(std::int32_t maxlength) {
    return maxlength == 0 || maxlength == DYNAMIC_BOUNDS;
}
// Never used, or freed. What is no set may be shorter than one, so the words that all descriptors have tell.
inline bool IsZeroSet(const SetDescriptor& s) {
    return s.tag == 0 && s.size == 0 && s.data == 0 && s.maxlength == 0;
}
// True for a set whose size is that of its bounds; otherwise the result is false and 759 set.
inline bool AcceptSet(const SetDescriptor* s) {
    const bool good = s != nullptr && s->tag == TagString && IsSetCapacity(s->maxlength) && s->data != 0 &&
                      IsSetRange(s->lower, s->upper) && s->size == SetBytes(s->lower, s->upper);
    return good || Refuse(ERR_SET_TYPE);
}
// Of an accepted set.
inline Bits BitsOf(const SetDescriptor& s) {
    return {reinterpret_cast<std::uint8_t*>(At(s.data)), s.lower, s.upper};
}
// A fixed or dynamic set without members; zero, and the error set, when there is no memory.
bool MakeSet(SetDescriptor& s, std::int32_t maxlength, std::int32_t lower, std::int32_t upper);
// As SetAssign, for an accepted `dest` whose block does not hold these bytes. The result is its `error`.
std::int32_t StoreBits(SetDescriptor& dest, const Bits& from);

}  // namespace tarn
