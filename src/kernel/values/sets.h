// SPDX-License-Identifier: Apache-2.0
//
// Sets of integers between two bounds of -32768..32767, a bit for each member (the layout is in values.h).
//
// Member i stands in byte ceil(i / 8) of the integer line; the first byte of a set is that of its lower
// bound. Its mask there is 128 >> ((i - 1) mod 8), the modulo never negative: 1 is the top bit of byte 1, 8
// its lowest. The byte depends on i alone, so sets of any bounds share one grid and are worked on by whole
// bytes. Bits outside the bounds are always 0.
//
// Only a dynamic set ever changes its bounds. 759 for null and for what is no set; nothing has changed then.
// When memory is short (802) a set is as it was. Any argument may be the destination itself.
//
// Cost: single members some nanoseconds; the rest linear in the bytes, eight at a time.
#pragma once

#include "kernel/values/strings.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// `s` need not hold anything valid. (UNBOUNDED, UNBOUNDED) makes a dynamic set with the bounds 1..1. Bounds
// outside -32768..32767 or reversed: 601 and a zeroed descriptor, which other errors leave too.
void SetInit(SetDescriptor* s, std::int32_t lower, std::int32_t upper);
void SetFree(SetDescriptor* s);
void SetClear(SetDescriptor* s);  // no members; the bounds stay

// 614 for a set that is not dynamic, 601 for bad bounds. Members outside the new bounds are lost, and all of
// them without `preserve`.
void SetRedim(SetDescriptor* s, std::int32_t lower, std::int32_t upper, bool preserve);

// A dynamic set first widens its bounds to hold the members. A member outside the bounds of a fixed set, or
// outside -32768..32767, and a reversed range: 601, with nothing changed. Excluding makes the same checks and
// widens nothing.
void SetInclude(std::int32_t i, SetDescriptor* s);
void SetIncludeRange(std::int32_t lo, std::int32_t hi, SetDescriptor* s);
void SetExclude(std::int32_t i, SetDescriptor* s);
void SetExcludeRange(std::int32_t lo, std::int32_t hi, SetDescriptor* s);

bool SetContains(std::int32_t i, const SetDescriptor* s);  // false outside the bounds, without an error
std::int32_t SetCount(const SetDescriptor* s);             // members
std::int32_t SetLowerBound(const SetDescriptor* s);        // 0 and 759 for no set
std::int32_t SetUpperBound(const SetDescriptor* s);

// The result has the lesser lower and the greater upper bound of the two and goes to `dest` as SetAssign.
void SetUnion(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest);
void SetIntersect(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest);
void SetDifference(const SetDescriptor* a, const SetDescriptor* b, SetDescriptor* dest);

// A dynamic `dest` takes the bounds of `src`. A fixed one keeps its own and takes the members that fit;
// `error` is then 616, and the error cell too, when any did not. Otherwise `error` is 0 or what was set.
void SetAssign(SetDescriptor* dest, const SetDescriptor* src, std::int32_t& error);

// `op` as for StringCompareOp. EQ: the same members, whatever the bounds. GT and LT read a set as a number in
// which a higher member weighs more: the highest member that only one of the two has decides. 759 and false
// for what is no set.
bool SetCompare(std::string_view op, const SetDescriptor* a, const SetDescriptor* b);

// "[1..3,7]", with ':' for ".." when `dots` is false; "[]" for none. `dest` as StringAssign.
void SetToText(const SetDescriptor* s, bool dots, StringDescriptor* dest);
// Reads a set from `position` (1-based) on: "[", then numbers and ranges ("..", or ":") with "," between,
// then "]"; blanks may stand between. `position` is left behind "]", and what follows does not matter.
// `error` is 1 for another character, with `position` at it, and for a range or number that no integer can
// hold; 601 or 616 (also in the error cell) for members that do not fit. `dest` changes only when `error` is
// 0 or 616.
void SetFromText(std::string_view text, std::int32_t& position, SetDescriptor* dest, std::int32_t& error);

}  // namespace tarn
