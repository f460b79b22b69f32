// SPDX-License-Identifier: Apache-2.0
//
// Sets as values: making, copying, comparing and checking them whole.
#include "kernel/run/errors.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/sets.h"
#include "kernel/values/sets_bits.h"

#include <cstring>

namespace tarn {

namespace {

bool makeLike(SetDescriptor& s, const SetDescriptor& like) {
    return like.maxlength == 0 ? MakeSet(s, 0, like.lower, like.upper) : MakeSet(s, DYNAMIC_BOUNDS, 1, 1);
}

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
    if (IsZeroSet(to)) {
        if (!MakeSet(to, from.maxlength, from.lower, from.upper)) return false;
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
    if (!IsSetCapacity(s.maxlength)) return "set: neither fixed nor dynamic";
    if (!IsSetRange(s.lower, s.upper)) return "set: bounds that cannot be";
    if (s.size != SetBytes(s.lower, s.upper)) return "set: size is not that of its bounds";
    if (s.data == 0) return "set: size without data";
    decltype(s.unused) unused;  // a copy, since the set may stand at any address
    std::memcpy(unused, &s.unused, sizeof unused);
    for (const std::int32_t word : unused) {
        if (word != NO_DIMENSION) return "set: more than one dimension";
    }
    if (s.reserved != 0) return "set: reserved word in use";
    const Bits bits = BitsOf(s);
    const std::uint8_t below = *bits.at(bits.first()) & static_cast<std::uint8_t>(~MaskFrom(s.lower));
    const std::uint8_t above = *bits.at(bits.last()) & static_cast<std::uint8_t>(~MaskUpTo(s.upper));
    return below != 0 || above != 0 ? "set: members outside its bounds" : "";
}

void emptySet(void* value) {
    auto& s = *static_cast<SetDescriptor*>(value);
    if (!AcceptSet(&s)) return;
    ClearBits(BitsOf(s));
    if (s.maxlength == 0 || !ResizeData(s, 1)) return;
    s.lower = 1;
    s.upper = 1;
}

}  // namespace

const KindOperations SetOperations = {initSet, copySet, freeSet, equalSets, sameSetShape, checkSet, emptySet};

}  // namespace tarn
