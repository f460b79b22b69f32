// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/sets_bits.h"

#include <algorithm>
#include <bit>

namespace tarn {

namespace {

bool anyBit(const std::uint8_t* bytes, std::ptrdiff_t count) {
    for (; count >= SetWordBytes; count -= SetWordBytes, bytes += SetWordBytes) {
        if (ReadAt<SetWord>(bytes) != 0) return true;
    }
    return std::any_of(bytes, bytes + std::max<std::ptrdiff_t>(count, 0),
                       [](std::uint8_t byte) { return byte != 0; });
}

// Bytes of which both sets have as many: the highest member that differs decides, and that is the lowest bit
// of the last byte that differs.
std::int32_t orderBytes(const std::uint8_t* a, const std::uint8_t* b, std::ptrdiff_t count) {
    while (count >= SetWordBytes &&
           ReadAt<SetWord>(a + count - SetWordBytes) == ReadAt<SetWord>(b + count - SetWordBytes))
        count -= SetWordBytes;
    while (count > 0 && a[count - 1] == b[count - 1]) --count;
    if (count <= 0) return 0;
    const unsigned left = a[count - 1], differing = left ^ b[count - 1];
    return (left >> std::countr_zero(differing) & 1U) != 0 ? 1 : -1;
}

bool anyAbove(const Bits& bits, std::int32_t byte) {
    const std::int32_t first = std::max(bits.first(), byte + 1);
    return first <= bits.last() && anyBit(bits.at(first), bits.last() - first + 1);
}

bool anyBelow(const Bits& bits, std::int32_t byte) {
    return anyBit(bits.bytes, std::min(bits.last() + 1, byte) - bits.first());
}

}  // namespace

void ClearBits(const Bits& bits) {
    std::memset(bits.bytes, 0, static_cast<std::size_t>(SetBytes(bits.lower, bits.upper)));
}

void CopyBits(const Bits& to, const Bits& from, std::int32_t first, std::int32_t last) {
    if (first > last) return;
    std::memcpy(to.at(first), from.at(first), static_cast<std::size_t>(last - first + 1));
}

void TrimBits(const Bits& bits) {
    *bits.at(bits.first()) &= MaskFrom(bits.lower);
    *bits.at(bits.last()) &= MaskUpTo(bits.upper);
}

void FillBits(const Bits& bits, std::int32_t lo, std::int32_t hi, bool in) {
    const auto put = [in](std::uint8_t& byte, std::uint8_t mask) {
        byte = static_cast<std::uint8_t>(in ? byte | mask : byte & ~mask);
    };
    std::uint8_t *first = bits.at(ByteOf(lo)), *last = bits.at(ByteOf(hi));
    if (first == last) return put(*first, MaskFrom(lo) & MaskUpTo(hi));
    put(*first, MaskFrom(lo));
    std::memset(first + 1, in ? 0xFF : 0, static_cast<std::size_t>(last - first - 1));
    put(*last, MaskUpTo(hi));
}

std::int32_t NextInBits(const Bits& bits, std::int32_t from, bool member) {
    from = std::max(from, bits.lower);
    if (from > bits.upper) return bits.upper + 1;
    const std::uint8_t skipped = member ? 0 : 0xFF;
    const SetWord skippedWord = member ? 0 : ~SetWord{0};
    const std::uint8_t *at = bits.at(ByteOf(from)), *end = bits.at(bits.last()) + 1;
    unsigned found = (*at ^ skipped) & MaskFrom(from);
    if (found == 0) {
        ++at;
        while (end - at >= SetWordBytes && ReadAt<SetWord>(at) == skippedWord) at += SetWordBytes;
        while (at < end && *at == skipped) ++at;
        if (at == end) return bits.upper + 1;
        found = *at ^ skipped;
    }
    const auto byte = bits.first() + static_cast<std::int32_t>(at - bits.bytes);
    const std::int32_t firstOfByte = byte * 8 - 7;
    return std::min(firstOfByte + std::countl_zero(static_cast<std::uint8_t>(found)), bits.upper + 1);
}

// Above the bytes that both have, only one of them has any; below them too. Without common bytes each has all
// of its own in one of the two places.
std::int32_t OrderBits(const Bits& a, const Bits& b) {
    const std::int32_t first = std::max(a.first(), b.first()), last = std::min(a.last(), b.last());
    if (anyAbove(a, last)) return 1;
    if (anyAbove(b, last)) return -1;
    const std::int32_t common = first <= last ? orderBytes(a.at(first), b.at(first), last - first + 1) : 0;
    if (common != 0) return common;
    return anyBelow(a, first) ? 1 : anyBelow(b, first) ? -1 : 0;
}

}  // namespace tarn
