// SPDX-License-Identifier: Apache-2.0
//
// Arrays as values: making, copying, comparing and checking them whole.
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/array_access_internal.h"

#include <algorithm>

namespace tarn {

namespace {

void freeElements(const ArrayDescriptor& a) {
    if (!IsAdtKind(a.tag)) return;
    const std::int64_t count = ElementsOf(ShapeOf(a));
    for (std::int64_t i = 0; i < count; ++i) FreeValue(ElementAt(a, i), ArrayElementKind(a));
}

// The elements of `to` become those of `from`, in storage order; both have as many.
bool copyElements(const ArrayDescriptor& from, const ArrayDescriptor& to) {
    if (!IsAdtKind(from.tag)) {
        std::memmove(At(to.data), At(from.data), static_cast<std::size_t>(from.size));
        return true;
    }
    const std::int64_t count = ElementsOf(ShapeOf(from));
    for (std::int64_t i = 0; i < count; ++i) {
        if (!CopyValue(ElementAt(from, i), ElementAt(to, i), ArrayElementKind(from))) return false;
    }
    return true;
}

// Exchanges the elements within the bounds of both, row by row along the last dimension.
void exchangeOverlap(const ArrayDescriptor& a, const ArrayDescriptor& b) {
    const ArrayShape shapeA = ShapeOf(a), shapeB = ShapeOf(b);
    const auto last = static_cast<std::size_t>(DimensionsOf(shapeA) - 1);
    Subscripts from{}, to{};
    for (std::size_t d = 0; d <= last; ++d) {
        from[d] = std::max<std::int32_t>(shapeA[d].lower, shapeB[d].lower);
        to[d] = std::min<std::int32_t>(shapeA[d].upper, shapeB[d].upper);
        if (from[d] > to[d]) return;
    }
    const std::int64_t rowBytes = std::int64_t{to[last] - from[last] + 1} * KindSize[a.tag];
    for (Subscripts at = from;;) {
        char *rowA = ElementAt(a, IndexOf(shapeA, at)), *rowB = ElementAt(b, IndexOf(shapeB, at));
        std::swap_ranges(rowA, rowA + rowBytes, rowB);
        std::size_t d = last;
        do {
            if (d == 0) return;
            at[d] = from[d];
            --d;
        } while (++at[d] > to[d]);
    }
}

}  // namespace

// ---- blocks of elements ----

bool MakeElements(ArrayDescriptor& a, const ArrayShape& shape) {
    const std::int64_t count = ElementsOf(shape), size = count * KindSize[a.tag];
    if (!AllocateData(a, static_cast<std::int32_t>(std::min<std::int64_t>(size, std::int64_t{MaxBlock} + 1))))
        return false;
    if (a.prototype == 0) std::memset(At(a.data), 0, static_cast<std::size_t>(size));
    for (std::int64_t i = 0; i < count && a.prototype != 0; ++i) {
        if (InitValue(ElementAt(a, i), At(a.prototype), ArrayElementKind(a))) continue;
        while (--i >= 0) FreeValue(ElementAt(a, i), ArrayElementKind(a));
        FreeData(a);
        return false;
    }
    std::copy(shape.begin(), shape.end(), a.bounds);
    return true;
}

bool MakeEmptyArray(ArrayDescriptor& a, Kind kind, std::int32_t maxlength, const void* like) {
    a = {0, kind, 0, maxlength, {NoDimension, NoDimension, NoDimension}, 0};
    bool ok = false;
    a.prototype = NewPrototype(like, kind, ok);
    if (!ok) a = {};
    return ok;
}

void FreeArray(void* value) {
    auto& a = *static_cast<ArrayDescriptor*>(value);
    freeElements(a);
    Offset prototype = a.prototype;
    FreePrototype(prototype, ArrayElementKind(a));
    a.prototype = 0;
    FreeData(a);
}

bool RedimArray(ArrayDescriptor& a, const ArrayShape& shape, bool preserve) {
    ArrayDescriptor made = a;
    made.data = 0;
    made.size = 0;
    if (!MakeElements(made, shape)) return false;
    if (preserve && HasShape(a)) exchangeOverlap(a, made);
    freeElements(a);
    FreeData(a);
    a = made;
    return true;
}

namespace {

// ---- as a kind of value ----

const ArrayDescriptor& arrayAt(const void* value) {
    return *static_cast<const ArrayDescriptor*>(value);
}

bool initArray(void* target, const void* like) {
    const ArrayDescriptor from = arrayAt(like);
    ArrayDescriptor made{};
    bool good = MakeEmptyArray(made, ArrayElementKind(from), from.maxlength, PrototypeOf(from));
    if (good && from.maxlength == 0) good = MakeElements(made, ShapeOf(from));
    if (!good) {
        FreeArray(&made);
        made = {};
    }
    std::memcpy(target, &made, sizeof made);
    return good;
}

// A copy of `from` with the prototype that the destination has or takes over.
bool assignDynamic(ArrayDescriptor& to, const ArrayDescriptor& from) {
    ArrayDescriptor made{};
    if (!MakeEmptyArray(made, ArrayElementKind(from), DYNAMIC_BOUNDS, PrototypeOf(to.tag != 0 ? to : from)))
        return false;
    if (!MakeElements(made, ShapeOf(from)) || !copyElements(from, made)) {
        FreeArray(&made);
        return false;
    }
    FreeArray(&to);
    to = made;
    return true;
}

bool assign(ArrayDescriptor& to, const ArrayDescriptor& from) {
    if (!HasShape(from)) return !HasShape(to) || Refuse(ERR_ARRAY_TYPE);
    if (to.tag != from.tag && (to.tag != 0 || HasShape(to))) return Refuse(ERR_ARRAY_TYPE);
    if (HasShape(to) && DimensionsOf(ShapeOf(to)) != DimensionsOf(ShapeOf(from)))
        return Refuse(ERR_ARRAY_DIMENSION);
    if (to.maxlength == DYNAMIC_BOUNDS) return assignDynamic(to, from);
    if (to.size != from.size) return Refuse(ERR_FIXED_ARRAY);
    return copyElements(from, to);
}

bool copyArray(const void* source, void* target) {
    return assign(*static_cast<ArrayDescriptor*>(target), arrayAt(source));
}

bool equalArrays(const void* a, const void* b) {
    const ArrayDescriptor &left = arrayAt(a), &right = arrayAt(b);
    if (!SameBounds(ShapeOf(left), ShapeOf(right))) return false;
    if (HasShape(left) && left.tag != right.tag) return false;
    const std::int64_t count = ElementsOf(ShapeOf(left));
    for (std::int64_t i = 0; i < count; ++i) {
        if (!EqualValues(ElementAt(left, i), ElementAt(right, i), ArrayElementKind(left))) return false;
    }
    return true;
}

bool sameArrayShape(const void* a, const void* b) {
    const ArrayDescriptor &left = arrayAt(a), &right = arrayAt(b);
    if (left.maxlength != right.maxlength) return false;
    // The kind that an untyped array has taken belongs to its content.
    if (left.maxlength == DYNAMIC_BOUNDS && (left.tag == 0 || right.tag == 0)) return true;
    if (left.tag != right.tag) return false;
    if (left.maxlength == 0 && !SameBounds(ShapeOf(left), ShapeOf(right))) return false;
    if (left.prototype == 0 || right.prototype == 0) return left.prototype == right.prototype;
    return SameShape(PrototypeOf(left), PrototypeOf(right), ArrayElementKind(left));
}

std::string checkArray(const void* value) {
    const ArrayDescriptor& a = arrayAt(value);
    const ArrayShape shape = ShapeOf(a);
    if (HasShape(a) && !IsLegalShape(shape)) return "array: bounds that cannot be";
    if (a.maxlength == 0 && !HasShape(a)) return "array: fixed without bounds";
    const std::int64_t count = ElementsOf(shape);
    if (a.size != count * KindSize[a.tag]) return "array: size is not that of its elements";
    if ((a.size == 0) != (a.data == 0)) return "array: size without data or data without size";
    if (IsAdtKind(a.tag) != (a.prototype != 0)) return "array: prototype missing or needless";
    std::string wrong = a.prototype != 0 ? CheckValue(PrototypeOf(a), ArrayElementKind(a)) : std::string();
    for (std::int64_t i = 0; i < count && wrong.empty(); ++i) {
        wrong = CheckValue(ElementAt(a, i), ArrayElementKind(a));
        if (!wrong.empty()) wrong = "element " + std::to_string(i) + ": " + wrong;
    }
    return wrong;
}

void emptyArray(void* value) {
    auto& a = *static_cast<ArrayDescriptor*>(value);
    if (a.maxlength == DYNAMIC_BOUNDS) {
        freeElements(a);
        FreeData(a);
        for (ArrayBounds& b : a.bounds) b = NoDimension;
        return;
    }
    const std::int64_t count = ElementsOf(ShapeOf(a));
    for (std::int64_t i = 0; i < count; ++i) EmptyValue(ElementAt(a, i), ArrayElementKind(a));
}

}  // namespace

const KindOperations ArrayOperations = {initArray,      copyArray,  FreeArray, equalArrays,
                                        sameArrayShape, checkArray, emptyArray};

}  // namespace tarn
