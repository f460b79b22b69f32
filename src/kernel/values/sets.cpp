// SPDX-License-Identifier: Apache-2.0
//
// Results are built on the stack, where any set has room, and stored when they are complete: so an operand
// may be the destination, and only a destination that needs another block can run out of memory.
#include "kernel/values/sets.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/relations.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/sets_bits.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>

namespace tarn {

namespace {

// ---- bytes ----

// to := operation(to, from), byte by byte.
template <class Operation>
void applyBytes(std::uint8_t* to, const std::uint8_t* from, std::ptrdiff_t count, Operation operation) {
    for (; count >= SetWordBytes; count -= SetWordBytes, to += SetWordBytes, from += SetWordBytes)
        WriteAt<SetWord>(to, operation(ReadAt<SetWord>(to), ReadAt<SetWord>(from)));
    for (; count > 0; --count, ++to, ++from) *to = static_cast<std::uint8_t>(operation(*to, *from));
}

// Some member lies from lo to hi.
bool anyMember(const Bits& bits, std::int32_t lo, std::int32_t hi) {
    return NextInBits(bits, lo, true) <= std::min(hi, bits.upper);
}

// ---- blocks ----

// Other bounds for a dynamic set; members within both stay. On failure it is as it was.
bool changeBounds(SetDescriptor& s, std::int32_t lower, std::int32_t upper) {
    const Bits old = BitsOf(s);
    const std::int32_t size = SetBytes(lower, upper), oldSize = s.size;
    if (ByteOf(lower) == old.first() && (size == oldSize || ResizeInPlace(s.data, oldSize, size))) {
        if (size > oldSize) std::memset(old.bytes + oldSize, 0, static_cast<std::size_t>(size - oldSize));
    } else {
        SetDescriptor made{};
        if (!MakeSet(made, DYNAMIC_BOUNDS, lower, upper)) return false;
        const Bits bits = BitsOf(made);
        CopyBits(bits, old, std::max(bits.first(), old.first()), std::min(bits.last(), old.last()));
        FreeData(s);
        s.data = made.data;
    }
    s.size = size;
    s.lower = lower;
    s.upper = upper;
    TrimBits(BitsOf(s));
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
    CopyBits(BitsOf(dest), from, from.first(), from.last());
    return true;
}

// The result is false when members were left out.
bool storeFixed(const SetDescriptor& dest, const Bits& from) {
    const Bits bits = BitsOf(dest);
    const bool fits =
        !anyMember(from, LowestBound, bits.lower - 1) && !anyMember(from, bits.upper + 1, HighestBound);
    ClearBits(bits);
    CopyBits(bits, from, std::max(bits.first(), from.first()), std::min(bits.last(), from.last()));
    TrimBits(bits);
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
    ClearBits(result);
    if (onlyCommon)
        CopyBits(result, left, std::max(left.first(), right.first()), std::min(left.last(), right.last()));
    else
        CopyBits(result, left, left.first(), left.last());
    applyBytes(result.at(right.first()), right.bytes, b->size, operation);
    StoreBits(*dest, result);
}

}  // namespace

// ---- for the modules of sets ----

bool MakeSet(SetDescriptor& s, std::int32_t maxlength, std::int32_t lower, std::int32_t upper) {
    s = {0, TagString, 0, maxlength, lower, upper, {NO_DIMENSION, NO_DIMENSION, NO_DIMENSION, NO_DIMENSION},
         0};
    if (!AllocateData(s, SetBytes(lower, upper))) {
        s = {};
        return false;
    }
    ClearBits(BitsOf(s));
    return true;
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
        MakeSet(*s, DYNAMIC_BOUNDS, 1, 1);
    else if (IsSetRange(lower, upper))
        MakeSet(*s, 0, lower, upper);
    else
        SetError(ERR_SET_BOUNDS);
}

void SetFree(SetDescriptor* s) {
    if (s != nullptr && IsZeroSet(*s)) return;
    if (s == nullptr || s->tag != TagString || !IsSetCapacity(s->maxlength)) return SetError(ERR_SET_TYPE);
    FreeData(*s);
    *s = {};
}

void SetClear(SetDescriptor* s) {
    if (AcceptSet(s)) ClearBits(BitsOf(*s));
}

void SetRedim(SetDescriptor* s, std::int32_t lower, std::int32_t upper, bool preserve) {
    if (!AcceptSet(s)) return;
    if (s->maxlength != DYNAMIC_BOUNDS) return SetError(ERR_SET_REDIM);
    if (!IsSetRange(lower, upper)) return SetError(ERR_SET_BOUNDS);
    if (changeBounds(*s, lower, upper) && !preserve) ClearBits(BitsOf(*s));
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
    for (; left >= SetWordBytes; left -= SetWordBytes, at += SetWordBytes)
        count += std::popcount(ReadAt<SetWord>(at));
    for (; left > 0; --left, ++at) count += std::popcount(*at);
    return count;
}

// ---- whole sets ----

void SetUnion(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest) {
    combine(a, b, dest, false, std::bit_or<SetWord>());
}

void SetIntersect(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest) {
    combine(a, b, dest, true, std::bit_and<SetWord>());
}

void SetDifference(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest) {
    combine(a, b, dest, false, [](SetWord left, SetWord right) { return left & ~right; });
}

void SetAssign(SetDescriptor* dest, const SetDescriptor* src, std::int32_t& error) {
    error = ERR_SET_TYPE;
    if (!AcceptSet(dest) || !AcceptSet(src)) return;
    error = dest == src ? std::int32_t{ERR_NONE} : StoreBits(*dest, BitsOf(*src));
}

bool SetCompare(std::string_view op, const SetDescriptor* a, const SetDescriptor* b) {
    if (!AcceptSet(a) || !AcceptSet(b)) return false;
    return RelationHolds(RelationOf(op), OrderBits(BitsOf(*a), BitsOf(*b)));
}

}  // namespace tarn
