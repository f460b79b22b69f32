// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/arrays.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/array_access_internal.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

// ---- checks ----

bool acceptArray(const ArrayDescriptor* a) {
    const bool good = a != nullptr && (a->maxlength == 0 || a->maxlength == DYNAMIC_BOUNDS) && a->tag >= 0 &&
                      a->tag < KindCount && a->size >= 0 && (a->tag != 0 || IsUntypedArray(*a));
    return good || Refuse(ERR_ARRAY_TYPE);
}

bool acceptDimensions(const ArrayDescriptor& a, std::int32_t dimensions) {
    return DimensionsOf(ShapeOf(a)) == dimensions || Refuse(ERR_ARRAY_DIMENSION);
}

// The address of an element, or null and 602.
char* locate(const ArrayDescriptor& a, const Subscripts& at, std::int32_t dimensions) {
    std::int64_t index = 0;
    for (std::int32_t d = 0; d < dimensions; ++d) {
        const std::int32_t lower = a.bounds[d].lower, upper = a.bounds[d].upper;
        const std::int32_t subscript = at[static_cast<std::size_t>(d)];
        if (subscript < lower || subscript > upper) [[unlikely]] {
            SetError(ERR_ARRAY_BOUNDS);
            return nullptr;
        }
        index = index * (upper - lower + 1) + (subscript - lower);
    }
    return ElementAt(a, index);
}

// The checks of element access in their order; null when one failed.
char* access(const ArrayDescriptor* a, const Subscripts& at, std::int32_t dimensions, const void* v,
             Kind kind, Use use) {
    if (!acceptArray(a) || !acceptDimensions(*a, dimensions) || !AcceptValue(v, kind)) return nullptr;
    char* element = locate(*a, at, dimensions);
    if (element == nullptr) return nullptr;
    if (a->tag != kind) {
        SetError(ERR_COMPONENT_TYPE);
        return nullptr;
    }
    return !IsAdtKind(kind) || AcceptContent(v, kind, use) ? element : nullptr;
}

void get(const ArrayDescriptor* a, const Subscripts& at, std::int32_t dimensions, void* v, Kind kind) {
    const char* element = access(a, at, dimensions, v, kind, Use::Output);
    if (element == nullptr)
        ClearOutput(v, kind);
    else if (IsAdtKind(kind))
        CopyOut(element, v, kind);
    else
        CopyNumber(element, v, kind);
}

void put(ArrayDescriptor* a, const Subscripts& at, std::int32_t dimensions, const void* v, Kind kind) {
    char* element = access(a, at, dimensions, v, kind, Use::Input);
    if (element == nullptr) return;
    if (IsAdtKind(kind))
        CopyAndCompare(v, element, kind, 0);
    else
        CopyNumber(v, element, kind);
}

void* reference(ArrayDescriptor* a, const Subscripts& at, std::int32_t dimensions) {
    if (!acceptArray(a) || !acceptDimensions(*a, dimensions)) return nullptr;
    return locate(*a, at, dimensions);
}

// The bounds of an existing dimension; otherwise an error and both 0.
ArrayBounds boundsOf(const ArrayDescriptor* a, std::int32_t dimension) {
    if (!acceptArray(a)) return {};
    if (dimension >= 1 && dimension <= DimensionsOf(ShapeOf(*a))) return a->bounds[dimension - 1];
    SetError(ERR_ARRAY_DIMENSION);
    return {};
}

// Widens a dynamic array and puts a value at a new subscript. The value may stand in the array, whose block
// moves: its copy is complete before. On failure the array is as it was.
void widenWith(ArrayDescriptor& a, bool append, const ArrayBounds& wide, std::int32_t i, const void* v,
               Kind kind) {
    ArrayDescriptor typed = a;
    const bool untyped = a.tag == KindNone;
    if (untyped && !MakeEmptyArray(typed, kind, DYNAMIC_BOUNDS, v)) return;
    char element[sizeof(ArrayDescriptor)] = {};
    bool good = InitValue(element, IsAdtKind(kind) ? PrototypeOf(typed) : v, kind);
    good = good && CopyValue(v, element, kind) && RedimArray(typed, {wide, NoDimension, NoDimension}, append);
    if (!good) {
        FreeValue(element, kind);
        if (untyped) FreeArray(&typed);
        return;
    }
    char* slot = ElementAt(typed, i - wide.lower);
    FreeValue(slot, kind);
    std::memcpy(slot, element, static_cast<std::size_t>(KindSize[kind]));
    a = typed;
}

bool isElementPrototype(const void* prototype, Kind kind) {
    return !IsAdtKind(kind) || (IsWellFormed(prototype) && KindOf(prototype) == kind);
}

}  // namespace

// ---- life ----

void ArrayInit(ArrayDescriptor* a, Kind kind, std::int32_t lb1, std::int32_t ub1, std::int32_t lb2,
               std::int32_t ub2, std::int32_t lb3, std::int32_t ub3, const void* prototype) {
    if (a == nullptr) return SetError(ERR_ARRAY_TYPE);
    const ArrayShape shape{{{lb1, ub1}, {lb2, ub2}, {lb3, ub3}}};
    ArrayDescriptor made{};
    if (!IsValueKind(kind) || !IsLegalShape(shape) || !isElementPrototype(prototype, kind)) {
        SetError(ERR_ARRAY_TYPE);
    } else if (MakeEmptyArray(made, kind, 0, prototype) && !MakeElements(made, shape)) {
        FreeArray(&made);
        made = {};
    }
    *a = made;
}

void ArrayInitDynamic(ArrayDescriptor* a, Kind kind, const void* prototype) {
    if (a == nullptr) return SetError(ERR_ARRAY_TYPE);
    ArrayDescriptor made{};
    if ((kind != KindNone && !IsValueKind(kind)) || !isElementPrototype(prototype, kind))
        SetError(ERR_ARRAY_TYPE);
    else
        MakeEmptyArray(made, kind, DYNAMIC_BOUNDS, prototype);
    *a = made;
}

void ArrayRedim(ArrayDescriptor* a, std::int32_t lb1, std::int32_t ub1, std::int32_t lb2, std::int32_t ub2,
                std::int32_t lb3, std::int32_t ub3, bool preserve) {
    if (!acceptArray(a)) return;
    if (a->maxlength != DYNAMIC_BOUNDS) return SetError(ERR_ARRAY_REDIM);
    const ArrayShape shape{{{lb1, ub1}, {lb2, ub2}, {lb3, ub3}}};
    if (HasShape(*a) && DimensionsOf(ShapeOf(*a)) != DimensionsOf(shape)) return SetError(ERR_ARRAY_REDIM);
    if (!IsLegalShape(shape) || a->tag == KindNone) return SetError(ERR_ARRAY_TYPE);
    RedimArray(*a, shape, preserve);
}

// ---- elements ----

void ArrayGet(const ArrayDescriptor* a, std::int32_t i, void* v, Kind kind) {
    get(a, {i}, 1, v, kind);
}
void ArrayGet2(const ArrayDescriptor* a, std::int32_t i, std::int32_t j, void* v, Kind kind) {
    get(a, {i, j}, 2, v, kind);
}
void ArrayGet3(const ArrayDescriptor* a, std::int32_t i, std::int32_t j, std::int32_t k, void* v, Kind kind) {
    get(a, {i, j, k}, 3, v, kind);
}
void ArrayPut(ArrayDescriptor* a, std::int32_t i, const void* v, Kind kind) {
    put(a, {i}, 1, v, kind);
}
void ArrayPut2(ArrayDescriptor* a, std::int32_t i, std::int32_t j, const void* v, Kind kind) {
    put(a, {i, j}, 2, v, kind);
}
void ArrayPut3(ArrayDescriptor* a, std::int32_t i, std::int32_t j, std::int32_t k, const void* v, Kind kind) {
    put(a, {i, j, k}, 3, v, kind);
}
void* ArrayRef(ArrayDescriptor* a, std::int32_t i) {
    return reference(a, {i}, 1);
}
void* ArrayRef2(ArrayDescriptor* a, std::int32_t i, std::int32_t j) {
    return reference(a, {i, j}, 2);
}
void* ArrayRef3(ArrayDescriptor* a, std::int32_t i, std::int32_t j, std::int32_t k) {
    return reference(a, {i, j, k}, 3);
}

// ---- shape ----

std::int32_t ArrayLowerBound(const ArrayDescriptor* a, std::int32_t dimension) {
    return boundsOf(a, dimension).lower;
}
std::int32_t ArrayUpperBound(const ArrayDescriptor* a, std::int32_t dimension) {
    return boundsOf(a, dimension).upper;
}
std::int32_t ArrayDimensions(const ArrayDescriptor* a) {
    return acceptArray(a) ? DimensionsOf(ShapeOf(*a)) : 0;
}
std::int32_t ArrayElementCount(const ArrayDescriptor* a) {
    return acceptArray(a) ? static_cast<std::int32_t>(ElementsOf(ShapeOf(*a))) : 0;
}
bool ArrayIsCharacters(const ArrayDescriptor* a) {
    return KindOf(a) == KindArray && a->tag == KindEnum && DimensionsOf(ShapeOf(*a)) == 1 &&
           a->bounds[0].lower == 1;
}

// ---- whole arrays ----

void ArrayAssign(ArrayDescriptor* dest, const ArrayDescriptor* src) {
    if (acceptArray(dest) && acceptArray(src)) CopyAndCompare(src, dest, KindArray, 0);
}

void ArrayAutoAssign(ArrayDescriptor* a, bool append, std::int32_t i, const void* v, Kind kind) {
    if (!acceptArray(a) || (HasShape(*a) && !acceptDimensions(*a, 1)) || !AcceptValue(v, kind)) return;
    const ArrayBounds old = HasShape(*a) ? ArrayBounds(a->bounds[0]) : ArrayBounds{i, i};
    const bool outside = !HasShape(*a) || i < old.lower || i > old.upper;
    const bool legal = i >= LowestBound && i <= HighestBound;
    if (outside && (a->maxlength != DYNAMIC_BOUNDS || !legal)) return SetError(ERR_ARRAY_BOUNDS);
    if (a->tag != KindNone && a->tag != kind) return SetError(ERR_COMPONENT_TYPE);
    if (!AcceptContent(v, kind, Use::Input)) return;
    if (!outside) {
        CopyAndCompare(v, ElementAt(*a, i - old.lower), kind, 0);
        return;
    }
    widenWith(*a, append, {std::min<std::int32_t>(old.lower, i), std::max<std::int32_t>(old.upper, i)}, i, v,
              kind);
}

}  // namespace tarn
