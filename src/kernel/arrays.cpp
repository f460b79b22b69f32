// SPDX-License-Identifier: Apache-2.0
#include "kernel/arrays.h"

#include "kernel/adt.h"
#include "kernel/adt_kinds.h"
#include "kernel/errors.h"
#include "kernel/runtime.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tarn {

namespace {

constexpr ArrayBounds noDimension{NO_DIMENSION, NO_DIMENSION};
using Shape = std::array<ArrayBounds, MaxDimensions>;
using Subscripts = std::array<std::int32_t, MaxDimensions>;

bool fail(std::int32_t code) {
    SetError(code);
    return false;
}

// ---- shapes ----

bool exists(const ArrayBounds& b) {
    return b.lower != NO_DIMENSION || b.upper != NO_DIMENSION;
}

std::int32_t extent(const ArrayBounds& b) {
    return exists(b) ? b.upper - b.lower + 1 : 1;
}

Shape shapeOf(const ArrayDescriptor& a) {
    return {a.bounds[0], a.bounds[1], a.bounds[2]};
}

std::int32_t dimensionsOf(const Shape& shape) {
    std::int32_t count = 0;
    while (count < MaxDimensions && exists(shape[static_cast<std::size_t>(count)])) ++count;
    return count;
}

bool isLegal(const Shape& shape) {
    const std::int32_t dimensions = dimensionsOf(shape);
    for (std::int32_t d = 0; d < MaxDimensions; ++d) {
        const ArrayBounds& b = shape[static_cast<std::size_t>(d)];
        if (d >= dimensions && exists(b)) return false;
        if (d < dimensions && (b.lower < LowestBound || b.upper > HighestBound || b.lower > b.upper))
            return false;
    }
    return dimensions > 0;
}

// 0 for no shape.
std::int64_t elementsOf(const Shape& shape) {
    if (dimensionsOf(shape) == 0) return 0;
    std::int64_t count = 1;
    for (const ArrayBounds& b : shape) count *= extent(b);
    return count;
}

bool sameBounds(const Shape& a, const Shape& b) {
    return std::memcmp(a.data(), b.data(), sizeof a) == 0;
}

bool hasShape(const ArrayDescriptor& a) {
    return exists(a.bounds[0]);
}

std::int64_t indexOf(const Shape& shape, const Subscripts& at) {
    std::int64_t index = 0;
    for (std::size_t d = 0; d < shape.size(); ++d) {
        if (exists(shape[d])) index = index * extent(shape[d]) + (at[d] - shape[d].lower);
    }
    return index;
}

Kind elementKind(const ArrayDescriptor& a) {
    return static_cast<Kind>(a.tag);
}

char* elementAt(const ArrayDescriptor& a, std::int64_t index) {
    return At(a.data) + index * KindSize[a.tag];
}

// ---- blocks of elements ----

void freeElements(const ArrayDescriptor& a) {
    if (!IsAdtKind(a.tag)) return;
    const std::int64_t count = elementsOf(shapeOf(a));
    for (std::int64_t i = 0; i < count; ++i) FreeValue(elementAt(a, i), elementKind(a));
}

// Gives an array that has kind and prototype, but no data, these bounds and empty elements. On failure it is
// as it was.
bool makeElements(ArrayDescriptor& a, const Shape& shape) {
    const std::int64_t count = elementsOf(shape), size = count * KindSize[a.tag];
    if (!AllocateData(a, static_cast<std::int32_t>(std::min<std::int64_t>(size, std::int64_t{MaxBlock} + 1))))
        return false;
    if (a.prototype == 0) std::memset(At(a.data), 0, static_cast<std::size_t>(size));
    for (std::int64_t i = 0; i < count && a.prototype != 0; ++i) {
        if (InitValue(elementAt(a, i), At(a.prototype), elementKind(a))) continue;
        while (--i >= 0) FreeValue(elementAt(a, i), elementKind(a));
        FreeData(a);
        return false;
    }
    std::copy(shape.begin(), shape.end(), a.bounds);
    return true;
}

// An array of this kind without elements; its prototype is a copy of the shape of `like`.
bool makeEmpty(ArrayDescriptor& a, Kind kind, std::int32_t maxlength, const void* like) {
    a = {0, kind, 0, maxlength, {noDimension, noDimension, noDimension}, 0};
    bool ok = false;
    a.prototype = NewPrototype(like, kind, ok);
    if (!ok) a = {};
    return ok;
}

void freeArray(void* value) {
    auto& a = *static_cast<ArrayDescriptor*>(value);
    freeElements(a);
    Offset prototype = a.prototype;
    FreePrototype(prototype, elementKind(a));
    a.prototype = 0;
    FreeData(a);
}

const void* prototypeOf(const ArrayDescriptor& a) {
    return At(a.prototype);
}

// The elements of `to` become those of `from`, in storage order; both have as many.
bool copyElements(const ArrayDescriptor& from, const ArrayDescriptor& to) {
    if (!IsAdtKind(from.tag)) {
        std::memmove(At(to.data), At(from.data), static_cast<std::size_t>(from.size));
        return true;
    }
    const std::int64_t count = elementsOf(shapeOf(from));
    for (std::int64_t i = 0; i < count; ++i) {
        if (!CopyValue(elementAt(from, i), elementAt(to, i), elementKind(from))) return false;
    }
    return true;
}

// Exchanges the elements within the bounds of both, row by row along the last dimension.
void exchangeOverlap(const ArrayDescriptor& a, const ArrayDescriptor& b) {
    const Shape shapeA = shapeOf(a), shapeB = shapeOf(b);
    const auto last = static_cast<std::size_t>(dimensionsOf(shapeA) - 1);
    Subscripts from{}, to{};
    for (std::size_t d = 0; d <= last; ++d) {
        from[d] = std::max<std::int32_t>(shapeA[d].lower, shapeB[d].lower);
        to[d] = std::min<std::int32_t>(shapeA[d].upper, shapeB[d].upper);
        if (from[d] > to[d]) return;
    }
    const std::int64_t rowBytes = std::int64_t{to[last] - from[last] + 1} * KindSize[a.tag];
    for (Subscripts at = from;;) {
        char *rowA = elementAt(a, indexOf(shapeA, at)), *rowB = elementAt(b, indexOf(shapeB, at));
        std::swap_ranges(rowA, rowA + rowBytes, rowB);
        std::size_t d = last;
        do {
            if (d == 0) return;
            at[d] = from[d];
            --d;
        } while (++at[d] > to[d]);
    }
}

// New bounds for a dynamic array that has a kind. On failure it is as it was.
bool redim(ArrayDescriptor& a, const Shape& shape, bool preserve) {
    ArrayDescriptor made = a;
    made.data = 0;
    made.size = 0;
    if (!makeElements(made, shape)) return false;
    if (preserve && hasShape(a)) exchangeOverlap(a, made);
    freeElements(a);
    FreeData(a);
    a = made;
    return true;
}

// ---- checks ----

// Made to be filled by a literal.
bool isUntyped(const ArrayDescriptor& a) {
    return a.tag == 0 && a.size == 0 && a.data == 0 && a.maxlength == DYNAMIC_BOUNDS;
}

bool acceptArray(const ArrayDescriptor* a) {
    const bool good = a != nullptr && (a->maxlength == 0 || a->maxlength == DYNAMIC_BOUNDS) && a->tag >= 0 &&
                      a->tag < KindCount && a->size >= 0 && (a->tag != 0 || isUntyped(*a));
    return good || fail(ERR_ARRAY_TYPE);
}

bool acceptDimensions(const ArrayDescriptor& a, std::int32_t dimensions) {
    return dimensionsOf(shapeOf(a)) == dimensions || fail(ERR_ARRAY_DIMENSION);
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
    return elementAt(a, index);
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
    if (dimension >= 1 && dimension <= dimensionsOf(shapeOf(*a))) return a->bounds[dimension - 1];
    SetError(ERR_ARRAY_DIMENSION);
    return {};
}

// ---- as a kind of value ----

const ArrayDescriptor& arrayAt(const void* value) {
    return *static_cast<const ArrayDescriptor*>(value);
}

bool initArray(void* target, const void* like) {
    const ArrayDescriptor from = arrayAt(like);
    ArrayDescriptor made{};
    bool good = makeEmpty(made, elementKind(from), from.maxlength, prototypeOf(from));
    if (good && from.maxlength == 0) good = makeElements(made, shapeOf(from));
    if (!good) {
        freeArray(&made);
        made = {};
    }
    std::memcpy(target, &made, sizeof made);
    return good;
}

// A copy of `from` with the prototype that the destination has or takes over.
bool assignDynamic(ArrayDescriptor& to, const ArrayDescriptor& from) {
    ArrayDescriptor made{};
    if (!makeEmpty(made, elementKind(from), DYNAMIC_BOUNDS, prototypeOf(to.tag != 0 ? to : from)))
        return false;
    if (!makeElements(made, shapeOf(from)) || !copyElements(from, made)) {
        freeArray(&made);
        return false;
    }
    freeArray(&to);
    to = made;
    return true;
}

bool assign(ArrayDescriptor& to, const ArrayDescriptor& from) {
    if (!hasShape(from)) return !hasShape(to) || fail(ERR_ARRAY_TYPE);
    if (to.tag != from.tag && (to.tag != 0 || hasShape(to))) return fail(ERR_ARRAY_TYPE);
    if (hasShape(to) && !acceptDimensions(to, dimensionsOf(shapeOf(from)))) return false;
    if (to.maxlength == DYNAMIC_BOUNDS) return assignDynamic(to, from);
    if (to.size != from.size) return fail(ERR_FIXED_ARRAY);
    return copyElements(from, to);
}

bool copyArray(const void* source, void* target) {
    return assign(*static_cast<ArrayDescriptor*>(target), arrayAt(source));
}

bool equalArrays(const void* a, const void* b) {
    const ArrayDescriptor &left = arrayAt(a), &right = arrayAt(b);
    if (!sameBounds(shapeOf(left), shapeOf(right))) return false;
    if (hasShape(left) && left.tag != right.tag) return false;
    const std::int64_t count = elementsOf(shapeOf(left));
    for (std::int64_t i = 0; i < count; ++i) {
        if (!EqualValues(elementAt(left, i), elementAt(right, i), elementKind(left))) return false;
    }
    return true;
}

bool sameArrayShape(const void* a, const void* b) {
    const ArrayDescriptor &left = arrayAt(a), &right = arrayAt(b);
    if (left.tag != right.tag || left.maxlength != right.maxlength) return false;
    if (left.maxlength == 0 && !sameBounds(shapeOf(left), shapeOf(right))) return false;
    if (left.prototype == 0 || right.prototype == 0) return left.prototype == right.prototype;
    return SameShape(prototypeOf(left), prototypeOf(right), elementKind(left));
}

std::string checkArray(const void* value) {
    const ArrayDescriptor& a = arrayAt(value);
    const Shape shape = shapeOf(a);
    if (hasShape(a) && !isLegal(shape)) return "array: bounds that cannot be";
    if (a.maxlength == 0 && !hasShape(a)) return "array: fixed without bounds";
    const std::int64_t count = elementsOf(shape);
    if (a.size != count * KindSize[a.tag]) return "array: size is not that of its elements";
    if ((a.size == 0) != (a.data == 0)) return "array: size without data or data without size";
    if (IsAdtKind(a.tag) != (a.prototype != 0)) return "array: prototype missing or needless";
    std::string wrong = a.prototype != 0 ? CheckValue(prototypeOf(a), elementKind(a)) : std::string();
    for (std::int64_t i = 0; i < count && wrong.empty(); ++i) {
        wrong = CheckValue(elementAt(a, i), elementKind(a));
        if (!wrong.empty()) wrong = "element " + std::to_string(i) + ": " + wrong;
    }
    return wrong;
}

// Widens a dynamic array and puts a value at a new subscript. The value may stand in the array, whose block
// moves: its copy is complete before. On failure the array is as it was.
void widenWith(ArrayDescriptor& a, bool append, const ArrayBounds& wide, std::int32_t i, const void* v,
               Kind kind) {
    ArrayDescriptor typed = a;
    const bool untyped = a.tag == KindNone;
    if (untyped && !makeEmpty(typed, kind, DYNAMIC_BOUNDS, v)) return;
    char element[sizeof(ArrayDescriptor)] = {};
    bool good = InitValue(element, IsAdtKind(kind) ? prototypeOf(typed) : v, kind);
    good = good && CopyValue(v, element, kind) && redim(typed, {wide, noDimension, noDimension}, append);
    if (!good) {
        FreeValue(element, kind);
        if (untyped) freeArray(&typed);
        return;
    }
    char* slot = elementAt(typed, i - wide.lower);
    FreeValue(slot, kind);
    std::memcpy(slot, element, static_cast<std::size_t>(KindSize[kind]));
    a = typed;
}

bool isElementPrototype(const void* prototype, Kind kind) {
    return !IsAdtKind(kind) || (IsWellFormed(prototype) && KindOf(prototype) == kind);
}

}  // namespace

const KindOperations ArrayOperations = {initArray,   copyArray,      freeArray,
                                        equalArrays, sameArrayShape, checkArray};

// ---- life ----

void ArrayInit(ArrayDescriptor* a, Kind kind, std::int32_t lb1, std::int32_t ub1, std::int32_t lb2,
               std::int32_t ub2, std::int32_t lb3, std::int32_t ub3, const void* prototype) {
    if (a == nullptr) return SetError(ERR_ARRAY_TYPE);
    const Shape shape{{{lb1, ub1}, {lb2, ub2}, {lb3, ub3}}};
    ArrayDescriptor made{};
    if (!IsValueKind(kind) || !isLegal(shape) || !isElementPrototype(prototype, kind)) {
        SetError(ERR_ARRAY_TYPE);
    } else if (makeEmpty(made, kind, 0, prototype) && !makeElements(made, shape)) {
        freeArray(&made);
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
        makeEmpty(made, kind, DYNAMIC_BOUNDS, prototype);
    *a = made;
}

void ArrayRedim(ArrayDescriptor* a, std::int32_t lb1, std::int32_t ub1, std::int32_t lb2, std::int32_t ub2,
                std::int32_t lb3, std::int32_t ub3, bool preserve) {
    if (!acceptArray(a)) return;
    if (a->maxlength != DYNAMIC_BOUNDS) return SetError(ERR_ARRAY_REDIM);
    const Shape shape{{{lb1, ub1}, {lb2, ub2}, {lb3, ub3}}};
    if (hasShape(*a) && dimensionsOf(shapeOf(*a)) != dimensionsOf(shape)) return SetError(ERR_ARRAY_REDIM);
    if (!isLegal(shape) || a->tag == KindNone) return SetError(ERR_ARRAY_TYPE);
    redim(*a, shape, preserve);
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
    return acceptArray(a) ? dimensionsOf(shapeOf(*a)) : 0;
}
std::int32_t ArrayElementCount(const ArrayDescriptor* a) {
    return acceptArray(a) ? static_cast<std::int32_t>(elementsOf(shapeOf(*a))) : 0;
}
bool ArrayIsCharacters(const ArrayDescriptor* a) {
    return KindOf(a) == KindArray && a->tag == KindEnum && dimensionsOf(shapeOf(*a)) == 1 &&
           a->bounds[0].lower == 1;
}

// ---- whole arrays ----

void ArrayAssign(ArrayDescriptor* dest, const ArrayDescriptor* src) {
    if (acceptArray(dest) && acceptArray(src)) CopyAndCompare(src, dest, KindArray, 0);
}

void ArrayAutoAssign(ArrayDescriptor* a, bool append, std::int32_t i, const void* v, Kind kind) {
    if (!acceptArray(a) || (hasShape(*a) && !acceptDimensions(*a, 1)) || !AcceptValue(v, kind)) return;
    const ArrayBounds old = hasShape(*a) ? ArrayBounds(a->bounds[0]) : ArrayBounds{i, i};
    const bool outside = !hasShape(*a) || i < old.lower || i > old.upper;
    const bool legal = i >= LowestBound && i <= HighestBound;
    if (outside && (a->maxlength != DYNAMIC_BOUNDS || !legal)) return SetError(ERR_ARRAY_BOUNDS);
    if (a->tag != KindNone && a->tag != kind) return SetError(ERR_COMPONENT_TYPE);
    if (!AcceptContent(v, kind, Use::Input)) return;
    if (!outside) {
        CopyAndCompare(v, elementAt(*a, i - old.lower), kind, 0);
        return;
    }
    widenWith(*a, append, {std::min<std::int32_t>(old.lower, i), std::max<std::int32_t>(old.upper, i)}, i, v,
              kind);
}

}  // namespace tarn
