// SPDX-License-Identifier: Apache-2.0
//
// Arrays of one to three dimensions (the layout is in values.h). Elements stand in row-major order without
// gaps, the last subscript varying fastest. `maxlength` 0: bounds fixed when it was made; DYNAMIC_BOUNDS: set
// and changed by ArrayRedim. Bounds lie in -32768..32767, and an array takes at most MaxBlock bytes.
//
// Every access is checked, in this order: 760 null or no array; 613 another number of dimensions; 610 a null
// value, a kind outside 1 to 12 or a malformed descriptor; 602 a subscript outside its bounds; 611 a value of
// another kind than the elements. The first that is wrong is reported; nothing is written then, and a reading
// clears its output.
//
// Cost: element access by number some nanoseconds; elements of kinds 6 to 12 that of AdtCopy.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>

namespace tarn {

// ---- life ----

// `a` need not hold anything valid. Unused dimensions are NO_DIMENSION twice. `prototype` shows the shape of
// elements of kinds 6 to 12 and is copied; null for kinds 1 to 5. 760 for bounds, kinds or prototypes that
// cannot be, 804 and 802 as Allocate; the descriptor is then zero.
void ArrayInit(ArrayDescriptor* a, Kind kind, std::int32_t lb1, std::int32_t ub1, std::int32_t lb2,
               std::int32_t ub2, std::int32_t lb3, std::int32_t ub3, const void* prototype);
inline void ArrayInit(ArrayDescriptor* a, Kind kind, std::int32_t lb1, std::int32_t ub1,
                      const void* prototype = nullptr) {
    ArrayInit(a, kind, lb1, ub1, NO_DIMENSION, NO_DIMENSION, NO_DIMENSION, NO_DIMENSION, prototype);
}
// No elements yet. `kind` KindNone makes the untyped array that a literal fills.
void ArrayInitDynamic(ArrayDescriptor* a, Kind kind, const void* prototype);

// Dynamic arrays only, with as many dimensions as before: else 612. Bad bounds, and an array without an
// element kind, are 760; 804 and 802 as Allocate. With `preserve` the
// elements within both the old and the new bounds keep their values, all others are as the prototype. When
// memory is short the array is as it was.
void ArrayRedim(ArrayDescriptor* a, std::int32_t lb1, std::int32_t ub1, std::int32_t lb2, std::int32_t ub2,
                std::int32_t lb3, std::int32_t ub3, bool preserve);
inline void ArrayRedim(ArrayDescriptor* a, std::int32_t lb1, std::int32_t ub1, bool preserve) {
    ArrayRedim(a, lb1, ub1, NO_DIMENSION, NO_DIMENSION, NO_DIMENSION, NO_DIMENSION, preserve);
}

// ---- elements ----

void ArrayGet(const ArrayDescriptor* a, std::int32_t i, void* v, Kind kind);
void ArrayGet2(const ArrayDescriptor* a, std::int32_t i, std::int32_t j, void* v, Kind kind);
void ArrayGet3(const ArrayDescriptor* a, std::int32_t i, std::int32_t j, std::int32_t k, void* v, Kind kind);
void ArrayPut(ArrayDescriptor* a, std::int32_t i, const void* v, Kind kind);
void ArrayPut2(ArrayDescriptor* a, std::int32_t i, std::int32_t j, const void* v, Kind kind);
void ArrayPut3(ArrayDescriptor* a, std::int32_t i, std::int32_t j, std::int32_t k, const void* v, Kind kind);

// The address of an element, for compiled code: null and 602 for a subscript outside the bounds, 760 and 613
// as above. Valid until the array changes its bounds or is freed.
void* ArrayRef(ArrayDescriptor* a, std::int32_t i);
void* ArrayRef2(ArrayDescriptor* a, std::int32_t i, std::int32_t j);
void* ArrayRef3(ArrayDescriptor* a, std::int32_t i, std::int32_t j, std::int32_t k);

// ---- shape ----

// Dimension 1 to 3; one that does not exist gives 0 and 613.
std::int32_t ArrayLowerBound(const ArrayDescriptor* a, std::int32_t dimension);
std::int32_t ArrayUpperBound(const ArrayDescriptor* a, std::int32_t dimension);
std::int32_t ArrayDimensions(const ArrayDescriptor* a);    // 0 to 3
std::int32_t ArrayElementCount(const ArrayDescriptor* a);  // of all dimensions; 0 without a shape
// One dimension of enums from 1 on: what holds plain characters in rows of tables.
bool ArrayIsCharacters(const ArrayDescriptor* a);

// ---- whole arrays ----

// Tags must be equal (760), dimensions too (613). A dynamic `dest` takes the bounds of `src`; a fixed one
// must have as many elements (617) and takes them in storage order, whatever its bounds. A `src` without a
// shape goes only to a `dest` without one (760). Otherwise as AdtCopy.
void ArrayAssign(ArrayDescriptor* dest, const ArrayDescriptor* src);

// Builds a literal. The untyped array takes kind and shape from its first value, and a dynamic array without
// bounds gets i..i. A dynamic array of one dimension is widened to hold subscript i; its elements are kept
// with `append` and made empty without. A fixed one never changes its bounds (602). Other checks as ArrayPut;
// a value of another kind than the elements is 611. On failure the array is as it was.
void ArrayAutoAssign(ArrayDescriptor* a, bool append, std::int32_t i, const void* v, Kind kind);

}  // namespace tarn
