// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/adt.h"

#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/relations.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn {

namespace {

constexpr std::size_t largestValue = KindSize[KindArray];

// ---- the table of kinds ----

const KindOperations* operationsOf(std::int32_t kind) {
    static constexpr const KindOperations* table[KindCount] = {
        nullptr,          nullptr,           nullptr,           nullptr,           nullptr,
        nullptr,          &StringOperations, &RecordOperations, &RecordOperations, &SetOperations,
        &ArrayOperations, &ListOperations,   &TableOperations};
    return IsAdtKind(kind) ? table[kind] : nullptr;
}

bool acceptKind(Kind kind) {
    return IsValueKind(kind) || Refuse(ERR_UNIDENTIFIABLE);
}

bool acceptDescriptor(const void* value, Kind kind) {
    return !IsAdtKind(kind) ? value != nullptr || Refuse(ERR_UNIDENTIFIABLE)
                            : IsOfKind(value, kind) || Refuse(AdtTypeError(kind));
}

// Kinds that may hold a value of any kind somewhere below.
bool canHoldOthers(std::int32_t kind) {
    return IsAdtKind(kind) && kind != KindString && kind != KindSet;
}

// A target that may own the very value that is copied into it, and is not one of those that build anew
// anyway.
bool mayOwnSource(const void* target, Kind kind) {
    if (kind == KindRecord || kind == KindUnion) {
        const auto record = ReadAt<RecordDescriptor>(target);
        if (HoldsNumbersOnly(record.kinds)) return false;
        for (std::int32_t n = 1; n <= MaxFields; ++n) {
            const Kind field = FieldKindAt(record.kinds, n);
            if (field == KindNone || canHoldOthers(field)) return field != KindNone;
        }
    }
    if (kind != KindArray) return false;
    const auto array = ReadAt<ArrayDescriptor>(target);
    return array.maxlength == 0 && canHoldOthers(array.tag);
}

// Whether some list in it, or its rows, are held in a file. Elements have what their prototype has.
bool holdsFiles(const void* value, Kind kind) {
    if (!canHoldOthers(kind) || value == nullptr || IsZeroValue(value, kind)) return false;
    const auto tag = ReadAt<DescriptorHead>(value).tag;
    if (kind == KindRecord || kind == KindUnion) {
        const auto record = ReadAt<RecordDescriptor>(value);
        const char* field = At(record.data);
        for (std::int32_t n = 1; field != nullptr && FieldKindAt(record.kinds, n) != KindNone; ++n) {
            const Kind fieldKind = FieldKindAt(record.kinds, n);
            if (holdsFiles(field, fieldKind)) return true;
            field += KindSize[fieldKind];
        }
        return false;
    }
    if (const auto rows = operationsOf(kind)->rows; rows != nullptr) return holdsFiles(rows(value), KindList);
    if (kind == KindList && tag > TagInFile) return true;
    const Offset prototype =
        kind == KindList ? ReadAt<ListDescriptor>(value).prototype : ReadAt<ArrayDescriptor>(value).prototype;
    return holdsFiles(At(prototype), static_cast<Kind>(tag));
}

// Counts how deep the walks over values are.
class Deeper {
public:
    Deeper() { ++depth; }
    ~Deeper() { --depth; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;
    [[nodiscard]] static bool accept() { return depth <= MaxNesting || Refuse(ERR_UNIDENTIFIABLE); }

private:
    static inline std::int32_t depth = 0;
};

// What cannot be compared somewhere below is neither equal nor different: that is an error.
struct Comparison {
    bool equal = false;
    std::int32_t error = 0;
};
Comparison compare(const void* a, const void* b, Kind kind) {
    const ErrorCellAside aside;
    const bool equal = EqualValues(a, b, kind);
    return {equal, ErrorCell()};
}

// A copy of the source in a new value of the target's shape.
bool makeCopy(const void* source, const void* target, Kind kind, char* made) {
    const KindOperations& operations = *operationsOf(kind);
    if (!operations.init(made, IsZeroValue(target, kind) ? source : target)) return false;
    if (operations.copy(source, made)) return true;
    operations.free(made);
    return false;
}

// Copies into a new value, which then takes the target's place.
bool replace(const void* source, void* target, Kind kind) {
    char made[largestValue];
    if (!makeCopy(source, target, kind, made)) return false;
    operationsOf(kind)->free(target);
    std::memcpy(target, made, static_cast<std::size_t>(KindSize[kind]));
    return true;
}

bool equalNumbers(const void* a, const void* b, Kind kind) {
    // What is no number equals itself, so that a copy equals its source; 0 equals -0.
    return std::memcmp(a, b, static_cast<std::size_t>(KindSize[kind])) == 0 ||
           (kind == KindReal && ReadAt<double>(a) == ReadAt<double>(b));
}

}  // namespace

// ---- for elements and fields ----

bool IsOfKind(const void* value, Kind kind) {
    if (!IsAdtKind(kind)) return value != nullptr;
    if (!IsWellFormed(value) || KindOf(value) != kind) return false;
    // The tag of a list in a file makes an array by its maxlength, but no array is held in a file.
    return kind != KindArray || ReadAt<DescriptorHead>(value).tag <= KindTable;
}

// The head is looked at first, so that a descriptor which is shorter than its alleged kind is not read behind
// its end.
bool IsZeroValue(const void* value, Kind kind) {
    static constexpr char zeros[largestValue] = {};
    constexpr std::size_t head = sizeof(DescriptorHead);
    if (std::memcmp(value, zeros, head) != 0) return false;
    return std::memcmp(static_cast<const char*>(value) + head, zeros,
                       static_cast<std::size_t>(KindSize[kind]) - head) == 0;
}

bool InitAdt(void* target, const void* like, Kind kind) {
    const Deeper level;
    const bool deep = !Deeper::accept();
    if (!deep && !IsZeroValue(like, kind)) return operationsOf(kind)->init(target, like);
    std::memset(target, 0, static_cast<std::size_t>(KindSize[kind]));
    return !deep;
}

bool CopyAdt(const void* source, void* target, Kind kind) {
    if (source == target) return true;
    const bool shapeless = IsZeroValue(target, kind);
    if (IsZeroValue(source, kind)) return shapeless || Refuse(AdtTypeError(kind));
    const Deeper level;
    if (!Deeper::accept()) return false;
    if (shapeless && kind != KindString) return replace(source, target, kind);
    // A value anew would have lost its files.
    if (mayOwnSource(target, kind) && !holdsFiles(target, kind)) return replace(source, target, kind);
    return operationsOf(kind)->copy(source, target);
}

void FreeAdt(void* value, Kind kind) {
    operationsOf(kind)->free(value);
}

bool EqualValues(const void* a, const void* b, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    if (operations == nullptr) return equalNumbers(a, b, kind);
    const bool zeroA = IsZeroValue(a, kind), zeroB = IsZeroValue(b, kind);
    return zeroA || zeroB ? zeroA == zeroB : operations->equal(a, b);
}

bool SameShape(const void* a, const void* b, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    if (operations == nullptr) return true;
    const bool zeroA = IsZeroValue(a, kind), zeroB = IsZeroValue(b, kind);
    return zeroA || zeroB ? zeroA == zeroB : operations->sameShape(a, b);
}

std::string CheckValue(const void* value, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    if (operations == nullptr || IsZeroValue(value, kind)) return {};
    if (!IsOfKind(value, kind)) return "not a descriptor of kind " + std::to_string(kind);
    return operations->check(value);
}

void EmptyValue(void* value, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    if (operations == nullptr)
        std::memset(value, 0, static_cast<std::size_t>(KindSize[kind]));
    else if (!IsZeroValue(value, kind))
        operations->empty(value);
}

Offset NewPrototype(const void* like, Kind kind, bool& ok) {
    ok = true;
    if (like == nullptr || !IsAdtKind(kind)) return 0;
    Offset block = 0;
    Allocate(block, KindSize[kind]);
    if (block != 0 && !InitValue(At(block), like, kind)) Free(block, KindSize[kind]);
    ok = block != 0;
    return block;
}

void FreePrototype(Offset& prototype, Kind kind) {
    if (prototype == 0) return;
    FreeValue(At(prototype), kind);
    Free(prototype, KindSize[kind]);
}

bool AcceptValue(const void* value, Kind kind) {
    const bool good = value != nullptr && IsValueKind(kind) && (!IsAdtKind(kind) || IsWellFormed(value));
    return good || Refuse(ERR_COMPONENT_INVALID);
}

bool AcceptContent(const void* value, Kind kind, Use use) {
    const bool shapeless = use == Use::Output && kind > KindString && IsZeroValue(value, kind);
    return shapeless || IsOfKind(value, kind) || Refuse(AdtTypeError(kind));
}

namespace {

// There is no second copy of what stands in files: the source tells what must come out. (A text that was cut
// has set its error before.)
bool copyAndCompareFiles(const void* source, void* target, Kind kind) {
    if (!CopyValue(source, target, kind)) return false;
    const Comparison result = compare(source, target, kind);
    if (!result.equal && result.error == 0) SetError(ERR_ADT_COPY);
    return true;
}

}  // namespace

bool CopyAndCompare(const void* source, void* target, Kind kind, std::int32_t flag) {
    if (source == target) return true;
    if (flag != 0 || !MemoryChecking() || !IsAdtKind(kind)) return CopyValue(source, target, kind);
    if (holdsFiles(target, kind)) return copyAndCompareFiles(source, target, kind);
    // A second copy tells what must come out: the first may be cut to the target's shape, and the source may
    // be a part of the target.
    char expected[largestValue];
    if (!makeCopy(source, target, kind, expected)) return false;
    const bool copied = CopyValue(source, target, kind);
    if (copied) {
        const Comparison result = compare(expected, target, kind);
        if (!result.equal && result.error == 0) SetError(ERR_ADT_COPY);
    }
    operationsOf(kind)->free(expected);
    return copied;
}

void CopyOut(const void* element, void* v, Kind kind) {
    if (!CopyAndCompare(element, v, kind, 0)) ClearOutput(v, kind);
}

void ClearOutput(void* value, Kind kind) {
    if (value == nullptr || !IsValueKind(kind)) return;
    if (IsOfKind(value, kind)) EmptyValue(value, kind);
}

// ---- generic operations ----

void AdtInit(void* target, const void* like, Kind kind) {
    if (target == nullptr || !acceptKind(kind)) return SetError(ERR_UNIDENTIFIABLE);
    if (IsAdtKind(kind) && !IsOfKind(like, kind)) {
        std::memset(target, 0, static_cast<std::size_t>(KindSize[kind]));
        return SetError(AdtTypeError(kind));
    }
    InitValue(target, like, kind);
}

void AdtCopy(const void* source, void* target, Kind kind, std::int32_t flag) {
    if (!acceptKind(kind) || !acceptDescriptor(source, kind)) return;
    const bool shapeless = target != nullptr && kind > KindString && IsZeroValue(target, kind);
    if (!shapeless && !acceptDescriptor(target, kind)) return;
    CopyAndCompare(source, target, kind, flag);
}

void AdtFree(void* value, Kind kind) {
    if (value == nullptr || (IsValueKind(kind) && !IsAdtKind(kind))) return;
    if (!acceptKind(kind) || IsZeroValue(value, kind)) return;
    if (!IsOfKind(value, kind)) return SetError(AdtTypeError(kind));
    FreeValue(value, kind);
    std::memset(value, 0, static_cast<std::size_t>(KindSize[kind]));
}

bool AdtCompare(std::string_view op, const void* a, const void* b, Kind kind) {
    if (!acceptKind(kind) || !acceptDescriptor(a, kind) || !acceptDescriptor(b, kind)) return false;
    const std::uint8_t relation = RelationOf(op);
    if (relation != RelationEqual && relation != RelationDifferent) return false;
    const Comparison result = compare(a, b, kind);
    if (result.error != 0) return Refuse(result.error);
    return result.equal == (relation == RelationEqual);
}

void AdtClear(void* value, Kind kind) {
    if (!acceptKind(kind) || !acceptDescriptor(value, kind)) return;
    EmptyValue(value, kind);
}

bool AdtSameShape(const void* a, const void* b, Kind kind) {
    return acceptKind(kind) && acceptDescriptor(a, kind) && acceptDescriptor(b, kind) &&
           SameShape(a, b, kind);
}

std::int32_t AdtTypeError(Kind kind) {
    return IsValueKind(kind) ? std::int32_t{ERR_BOOLEAN_TYPE} - 1 + kind : ERR_UNIDENTIFIABLE;
}

std::int32_t AdtConversionError(Kind kind) {
    return IsValueKind(kind) ? std::int32_t{ERR_BOOLEAN_CONVERSION} - 1 + kind : ERR_UNIDENTIFIABLE;
}

std::string AdtCheck(const void* value, Kind kind) {
    if (value == nullptr || !IsValueKind(kind)) return "no value";
    return CheckValue(value, kind);
}

}  // namespace tarn
