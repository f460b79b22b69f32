// SPDX-License-Identifier: Apache-2.0
//
// Results are built on the stack, where any set has room, and stored when they are complete: so an operand
// may be the destination, and only a destination that needs another block can run out of memory.
#include "kernel/sets.h"

#include "kernel/adt_kinds.h"
#include "kernel/errors.h"
#include "kernel/runtime.h"
#include "kernel/sets_bits.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>

namespace tarn {

namespace {

using Word = std::uint64_t;
constexpr std::ptrdiff_t wordBytes = sizeof(Word);

bool fail(std::int32_t code) {
    SetError(code);
    return false;
}

bool isSetCapacity(std::int32_t maxlength) {
    return maxlength == 0 || maxlength == DYNAMIC_BOUNDS;
}

bool isZero(const SetDescriptor& s) {
    constexpr SetDescriptor zero{};
    return std::memcmp(&s, &zero, sizeof s) == 0;
}

bool isSet(const SetDescriptor* s) {
    return s != nullptr && s->tag == TagString && isSetCapacity(s->maxlength) && s->data != 0 &&
           IsSetRange(s->lower, s->upper) && s->size == SetBytes(s->lower, s->upper);
}

// ---- bytes ----

// to := operation(to, from), byte by byte.
template <class Operation>
void applyBytes(std::uint8_t* to, const std::uint8_t* from, std::ptrdiff_t count, Operation operation) {
    for (; count >= wordBytes; count -= wordBytes, to += wordBytes, from += wordBytes)
        WriteAt<Word>(to, operation(ReadAt<Word>(to), ReadAt<Word>(from)));
    for (; count > 0; --count, ++to, ++from) *to = static_cast<std::uint8_t>(operation(*to, *from));
}

bool anyBit(const std::uint8_t* bytes, std::ptrdiff_t count) {
    for (; count >= wordBytes; count -= wordBytes, bytes += wordBytes) {
        if (ReadAt<Word>(bytes) != 0) return true;
    }
    return std::any_of(bytes, bytes + std::max<std::ptrdiff_t>(count, 0),
                       [](std::uint8_t byte) { return byte != 0; });
}

void clear(const Bits& bits) {
    std::memset(bits.bytes, 0, static_cast<std::size_t>(SetBytes(bits.lower, bits.upper)));
}

// Copies the bytes `first` to `last` of the line, which both have.
void copyBytes(const Bits& to, const Bits& from, std::int32_t first, std::int32_t last) {
    if (first > last) return;
    std::memcpy(to.at(first), from.at(first), static_cast<std::size_t>(last - first + 1));
}

// Clears what boundary bytes hold of members outside the bounds.
void trim(const Bits& bits) {
    *bits.at(bits.first()) &= MaskFrom(bits.lower);
    *bits.at(bits.last()) &= MaskUpTo(bits.upper);
}

// Some member lies from lo to hi.
bool anyMember(const Bits& bits, std::int32_t lo, std::int32_t hi) {
    return NextInBits(bits, lo, true) <= std::min(hi, bits.upper);
}

// ---- blocks ----

// A fixed or dynamic set without members; zero, and the error set, when there is no memory.
bool make(SetDescriptor& s, std::int32_t maxlength, std::int32_t lower, std::int32_t upper) {
    s = {0, TagString, 0, maxlength, lower, upper, {NO_DIMENSION, NO_DIMENSION, NO_DIMENSION, NO_DIMENSION},
         0};
    if (!AllocateData(s, SetBytes(lower, upper))) {
        s = {};
        return false;
    }
    clear(BitsOf(s));
    return true;
}

bool makeLike(SetDescriptor& s, const SetDescriptor& like) {
    return like.maxlength == 0 ? make(s, 0, like.lower, like.upper) : make(s, DYNAMIC_BOUNDS, 1, 1);
}

// Other bounds for a dynamic set; members within both stay. On failure it is as it was.
bool changeBounds(SetDescriptor& s, std::int32_t lower, std::int32_t upper) {
    const Bits old = BitsOf(s);
    const std::int32_t size = SetBytes(lower, upper), oldSize = s.size;
    if (ByteOf(lower) == old.first() && (size == oldSize || ResizeInPlace(s.data, oldSize, size))) {
        if (size > oldSize) std::memset(old.bytes + oldSize, 0, static_cast<std::size_t>(size - oldSize));
    } else {
        SetDescriptor made{};
        if (!make(made, DYNAMIC_BOUNDS, lower, upper)) return false;
        const Bits bits = BitsOf(made);
        copyBytes(bits, old, std::max(bits.first(), old.first()), std::min(bits.last(), old.last()));
        FreeData(s);
        s.data = made.data;
    }
    s.size = size;
    s.lower = lower;
    s.upper = upper;
    trim(BitsOf(s));
    return true;
}

// A block of this size, whatever it holds, for a dynamic set that is written as a whole.
bool makeRoom(SetDescriptor& s, std::int32_t size) {
    if (size == s.size) return true;
    if (!ResizeInPlace(s.data, s.size, size)) {
        Offset block = 0;
        Allocate(block, size);
        if (block == 0) return false;
        FreeData(s);
        s.data = block;
    }
    s.size = size;
    return true;
}

bool storeDynamic(SetDescriptor& dest, const Bits& from) {
    if (!makeRoom(dest, SetBytes(from.lower, from.upper))) return false;
    dest.lower = from.lower;
    dest.upper = from.upper;
    copyBytes(BitsOf(dest), from, from.first(), from.last());
    return true;
}

// The result is false when members were left out.
bool storeFixed(const SetDescriptor& dest, const Bits& from) {
    const Bits bits = BitsOf(dest);
    const bool fits =
        !anyMember(from, LowestBound, bits.lower - 1) && !anyMember(from, bits.upper + 1, HighestBound);
    clear(bits);
    copyBytes(bits, from, std::max(bits.first(), from.first()), std::min(bits.last(), from.last()));
    trim(bits);
    return fits;
}

// ---- single members and ranges ----

void include(std::int32_t lo, std::int32_t hi, SetDescriptor* s) {
    if (!AcceptSet(s)) return;
    const std::int32_t lower = std::min<std::int32_t>(lo, s->lower),
                       upper = std::max<std::int32_t>(hi, s->upper);
    const bool within = lower == s->lower && upper == s->upper;
    if (!IsSetRange(lo, hi) || (!within && s->maxlength == 0)) return SetError(ERR_SET_BOUNDS);
    if (within || changeBounds(*s, lower, upper)) FillBits(BitsOf(*s), lo, hi, true);
}

void exclude(std::int32_t lo, std::int32_t hi, SetDescriptor* s) {
    if (!AcceptSet(s)) return;
    const std::int32_t from = std::max<std::int32_t>(lo, s->lower), to = std::min<std::int32_t>(hi, s->upper);
    const bool within = from == lo && to == hi;
    if (!IsSetRange(lo, hi) || (!within && s->maxlength == 0)) return SetError(ERR_SET_BOUNDS);
    if (from <= to) FillBits(BitsOf(*s), from, to, false);
}

// ---- algebra ----

// dest := operation(a, b). Where b has no bytes the result is a, or nothing with `onlyCommon`.
template <class Operation>
void combine(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest, bool onlyCommon,
             Operation operation) {
    if (!AcceptSet(a) || !AcceptSet(b) || !AcceptSet(dest)) return;
    const Bits left = BitsOf(*a), right = BitsOf(*b);
    BitsBuffer buffer;
    const Bits result{buffer, std::min(left.lower, right.lower), std::max(left.upper, right.upper)};
    clear(result);
    if (onlyCommon)
        copyBytes(result, left, std::max(left.first(), right.first()), std::min(left.last(), right.last()));
    else
        copyBytes(result, left, left.first(), left.last());
    applyBytes(result.at(right.first()), right.bytes, b->size, operation);
    StoreBits(*dest, result);
}

// ---- comparing ----

// Bytes of which both sets have as many: the highest member that differs decides, and that is the lowest bit
// of the last byte that differs.
std::int32_t orderBytes(const std::uint8_t* a, const std::uint8_t* b, std::ptrdiff_t count) {
    while (count >= wordBytes && ReadAt<Word>(a + count - wordBytes) == ReadAt<Word>(b + count - wordBytes))
        count -= wordBytes;
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

// 1 when a is the greater, -1 when b is, 0 when they have the same members. Above and below the bytes that
// both have only one of them has any, or each has all of its bytes in one of the two places.
std::int32_t order(const Bits& a, const Bits& b) {
    const std::int32_t first = std::max(a.first(), b.first()), last = std::min(a.last(), b.last());
    if (anyAbove(a, last)) return 1;
    if (anyAbove(b, last)) return -1;
    const std::int32_t common = first <= last ? orderBytes(a.at(first), b.at(first), last - first + 1) : 0;
    if (common != 0) return common;
    return anyBelow(a, first) ? 1 : anyBelow(b, first) ? -1 : 0;
}

// ---- as a kind of value ----

const SetDescriptor& setAt(const void* value) {
    return *static_cast<const SetDescriptor*>(value);
}

bool initSet(void* target, const void* like) {
    auto& s = *static_cast<SetDescriptor*>(target);
    if (AcceptSet(&setAt(like))) return makeLike(s, setAt(like));
    s = {};
    return false;
}

bool copySet(const void* source, void* target) {
    auto& to = *static_cast<SetDescriptor*>(target);
    const SetDescriptor& from = setAt(source);
    if (!AcceptSet(&from)) return false;
    if (isZero(to)) {
        if (!make(to, from.maxlength, from.lower, from.upper)) return false;
    } else if (!AcceptSet(&to)) {
        return false;
    }
    const std::int32_t error = StoreBits(to, BitsOf(from));
    return error == 0 || error == ERR_FIXED_SET;
}

void freeSet(void* value) {
    FreeData(*static_cast<SetDescriptor*>(value));
}

bool equalSets(const void* a, const void* b) {
    return SetCompare("EQ", &setAt(a), &setAt(b));
}

bool sameSetShape(const void* a, const void* b) {
    const SetDescriptor &left = setAt(a), &right = setAt(b);
    if (left.maxlength != right.maxlength) return false;
    return left.maxlength == DYNAMIC_BOUNDS || (left.lower == right.lower && left.upper == right.upper);
}

std::string checkSet(const void* value) {
    const SetDescriptor& s = setAt(value);
    if (!isSetCapacity(s.maxlength)) return "set: neither fixed nor dynamic";
    if (!IsSetRange(s.lower, s.upper)) return "set: bounds that cannot be";
    if (s.size != SetBytes(s.lower, s.upper)) return "set: size is not that of its bounds";
    if (s.data == 0) return "set: size without data";
    for (const std::int32_t word : s.unused) {
        if (word != NO_DIMENSION) return "set: more than one dimension";
    }
    if (s.reserved != 0) return "set: reserved word in use";
    const Bits bits = BitsOf(s);
    const std::uint8_t below = *bits.at(bits.first()) & static_cast<std::uint8_t>(~MaskFrom(s.lower));
    const std::uint8_t above = *bits.at(bits.last()) & static_cast<std::uint8_t>(~MaskUpTo(s.upper));
    return below != 0 || above != 0 ? "set: members outside its bounds" : "";
}

}  // namespace

const KindOperations SetOperations = {initSet, copySet, freeSet, equalSets, sameSetShape, checkSet};

// ---- bits ----

bool AcceptSet(const SetDescriptor* s) {
    return isSet(s) || fail(ERR_SET_TYPE);
}

Bits BitsOf(const SetDescriptor& s) {
    return {reinterpret_cast<std::uint8_t*>(At(s.data)), s.lower, s.upper};
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
    const Word skippedWord = member ? 0 : ~Word{0};
    const std::uint8_t *at = bits.at(ByteOf(from)), *end = bits.at(bits.last()) + 1;
    unsigned found = (*at ^ skipped) & MaskFrom(from);
    if (found == 0) {
        ++at;
        while (end - at >= wordBytes && ReadAt<Word>(at) == skippedWord) at += wordBytes;
        while (at < end && *at == skipped) ++at;
        if (at == end) return bits.upper + 1;
        found = *at ^ skipped;
    }
    const auto byte = bits.first() + static_cast<std::int32_t>(at - bits.bytes);
    const std::int32_t firstOfByte = byte * 8 - 7;
    return std::min(firstOfByte + std::countl_zero(static_cast<std::uint8_t>(found)), bits.upper + 1);
}

std::int32_t StoreBits(SetDescriptor& dest, const Bits& from) {
    if (dest.maxlength == DYNAMIC_BOUNDS)
        return storeDynamic(dest, from) ? std::int32_t{ERR_NONE} : ERR_OUT_OF_MEMORY;
    if (storeFixed(dest, from)) return ERR_NONE;
    SetError(ERR_FIXED_SET);
    return ERR_FIXED_SET;
}

// ---- life and bounds ----

void SetInit(SetDescriptor* s, std::int32_t lower, std::int32_t upper) {
    if (s == nullptr) return SetError(ERR_SET_TYPE);
    *s = {};
    if (lower == UNBOUNDED && upper == UNBOUNDED)
        make(*s, DYNAMIC_BOUNDS, 1, 1);
    else if (IsSetRange(lower, upper))
        make(*s, 0, lower, upper);
    else
        SetError(ERR_SET_BOUNDS);
}

void SetFree(SetDescriptor* s) {
    if (s != nullptr && isZero(*s)) return;
    if (s == nullptr || s->tag != TagString || !isSetCapacity(s->maxlength)) return SetError(ERR_SET_TYPE);
    FreeData(*s);
    *s = {};
}

void SetClear(SetDescriptor* s) {
    if (AcceptSet(s)) clear(BitsOf(*s));
}

void SetRedim(SetDescriptor* s, std::int32_t lower, std::int32_t upper, bool preserve) {
    if (!AcceptSet(s)) return;
    if (s->maxlength != DYNAMIC_BOUNDS) return SetError(ERR_SET_REDIM);
    if (!IsSetRange(lower, upper)) return SetError(ERR_SET_BOUNDS);
    if (changeBounds(*s, lower, upper) && !preserve) clear(BitsOf(*s));
}

std::int32_t SetLowerBound(const SetDescriptor* s) {
    return AcceptSet(s) ? s->lower : 0;
}

std::int32_t SetUpperBound(const SetDescriptor* s) {
    return AcceptSet(s) ? s->upper : 0;
}

// ---- members ----

void SetInclude(std::int32_t i, SetDescriptor* s) {
    include(i, i, s);
}

void SetIncludeRange(std::int32_t lo, std::int32_t hi, SetDescriptor* s) {
    include(lo, hi, s);
}

void SetExclude(std::int32_t i, SetDescriptor* s) {
    exclude(i, i, s);
}

void SetExcludeRange(std::int32_t lo, std::int32_t hi, SetDescriptor* s) {
    exclude(lo, hi, s);
}

bool SetContains(std::int32_t i, const SetDescriptor* s) {
    if (!AcceptSet(s) || i < s->lower || i > s->upper) return false;
    return (*BitsOf(*s).at(ByteOf(i)) & MaskFrom(i) & MaskUpTo(i)) != 0;
}

std::int32_t SetCount(const SetDescriptor* s) {
    if (!AcceptSet(s)) return 0;
    const std::uint8_t* at = BitsOf(*s).bytes;
    std::ptrdiff_t left = s->size;
    std::int32_t count = 0;
    for (; left >= wordBytes; left -= wordBytes, at += wordBytes) count += std::popcount(ReadAt<Word>(at));
    for (; left > 0; --left, ++at) count += std::popcount(*at);
    return count;
}

// ---- whole sets ----

void SetUnion(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest) {
    combine(a, b, dest, false, std::bit_or<Word>());
}

void SetIntersect(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest) {
    combine(a, b, dest, true, std::bit_and<Word>());
}

void SetDifference(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest) {
    combine(a, b, dest, false, [](Word left, Word right) { return left & ~right; });
}

void SetAssign(SetDescriptor* dest, const SetDescriptor* src, std::int32_t& error) {
    error = ERR_SET_TYPE;
    if (!AcceptSet(dest) || !AcceptSet(src)) return;
    error = dest == src ? std::int32_t{ERR_NONE} : StoreBits(*dest, BitsOf(*src));
}

bool SetCompare(std::string_view op, const SetDescriptor* a, const SetDescriptor* b) {
    if (!AcceptSet(a) || !AcceptSet(b)) return false;
    // Letters stand for the sets, so that operators are read in one place.
    const std::int32_t greater = order(BitsOf(*a), BitsOf(*b));
    const std::string_view letter = greater > 0 ? "c" : greater < 0 ? "a" : "b";
    return StringCompareOp(op, letter, "b") != 0;
}

}  // namespace tarn
