// SPDX-License-Identifier: Apache-2.0
//
// What the modules of arrays share: shapes, places of elements, and whole blocks of elements. Only those
// modules include this.
#pragma once

#include "kernel/values/arrays.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace tarn {

inline constexpr ArrayBounds NoDimension{NO_DIMENSION, NO_DIMENSION};
using ArrayShape = std::array<ArrayBounds, MaxDimensions>;
using Subscripts = std::array<std::int32_t, MaxDimensions>;

// ---- shapes ----

inline bool Exists(const ArrayBounds& b) {
    return b.lower != NO_DIMENSION || b.upper != NO_DIMENSION;
}

inline std::int32_t ExtentOf(const ArrayBounds& b) {
    return Exists(b) ? b.upper - b.lower + 1 : 1;
}

inline ArrayShape ShapeOf(const ArrayDescriptor& a) {
    return {a.bounds[0], a.bounds[1], a.bounds[2]};
}

inline std::int32_t DimensionsOf(const ArrayShape& shape) {
    std::int32_t count = 0;
    while (count < MaxDimensions && Exists(shape[static_cast<std::size_t>(count)])) ++count;
    return count;
}

inline bool IsLegalShape(const ArrayShape& shape) {
    const std::int32_t dimensions = DimensionsOf(shape);
    for (std::int32_t d = 0; d < MaxDimensions; ++d) {
        const ArrayBounds& b = shape[static_cast<std::size_t>(d)];
        if (d >= dimensions && Exists(b)) return false;
        if (d < dimensions && (b.lower < LowestBound || b.upper > HighestBound || b.lower > b.upper))
            return false;
    }
    return dimensions > 0;
}

// 0 for no shape.
inline std::int64_t ElementsOf(const ArrayShape& shape) {
    if (DimensionsOf(shape) == 0) return 0;
    std::int64_t count = 1;
    for (const ArrayBounds& b : shape) count *= ExtentOf(b);
    return count;
}

inline bool SameBounds(const ArrayShape& a, const ArrayShape& b) {
    return std::memcmp(a.data(), b.data(), sizeof a) == 0;
}

inline bool HasShape(const ArrayDescriptor& a) {
    return Exists(a.bounds[0]);
}

inline std::int64_t IndexOf(const ArrayShape& shape, const Subscripts& at) {
    std::int64_t index = 0;
    for (std::size_t d = 0; d < shape.size(); ++d) {
        if (Exists(shape[d])) index = index * ExtentOf(shape[d]) + (at[d] - shape[d].lower);
    }
    return index;
}

inline Kind ArrayElementKind(const ArrayDescriptor& a) {
    return static_cast<Kind>(a.tag);
}

inline char* ElementAt(const ArrayDescriptor& a, std::int64_t index) {
    return At(a.data) + index * KindSize[a.tag];
}

inline const void* PrototypeOf(const ArrayDescriptor& a) {
    return At(a.prototype);
}
// Made to be filled by a literal.
inline bool IsUntypedArray(const ArrayDescriptor& a) {
    return a.tag == 0 && a.size == 0 && a.data == 0 && a.maxlength == DYNAMIC_BOUNDS;
}

// ---- blocks of elements (arrays_kind.cpp) ----

// Gives an array that has kind and prototype, but no data, these bounds and empty elements. On failure it is
// as it was.
bool MakeElements(ArrayDescriptor& a, const ArrayShape& shape);
// An array of this kind without elements; its prototype is a copy of the shape of `like`. On failure it is
// zero.
bool MakeEmptyArray(ArrayDescriptor& a, Kind kind, std::int32_t maxlength, const void* like);
void FreeArray(void* value);  // all below an array
// New bounds for a dynamic array that has a kind. On failure it is as it was.
bool RedimArray(ArrayDescriptor& a, const ArrayShape& shape, bool preserve);

}  // namespace tarn
