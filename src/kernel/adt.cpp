// SPDX-License-Identifier: Apache-2.0
#include "kernel/adt.h"

#include "kernel/adt_kinds.h"
#include "kernel/errors.h"
#include "kernel/records.h"
#include "kernel/runtime.h"
#include "kernel/strings.h"

#include <cstring>

namespace tarn {

namespace {

constexpr std::size_t largestValue = KindSize[KindArray];

// ---- strings as values ----

const StringDescriptor& stringAt(const void* value) {
    return *static_cast<const StringDescriptor*>(value);
}

bool initString(void* target, const void* like) {
    auto* s = static_cast<StringDescriptor*>(target);
    const std::int32_t maxlength = stringAt(like).maxlength;
    StringInit(s, maxlength);
    if (maxlength == UNBOUNDED || s->data != 0) return true;
    *s = {};
    return false;
}

// What an assignment can fail with shows in its result: the cell may hold an older error.
bool copyString(const void* source, void* target) {
    const StringDescriptor& from = stringAt(source);
    auto* to = static_cast<StringDescriptor*>(target);
    StringAssign(to, &from);
    return KindOf(to) == KindString && (to->length == from.length || to->maxlength != UNBOUNDED);
}

void freeString(void* value) {
    FreeData(*static_cast<StringDescriptor*>(value));
}

bool equalStrings(const void* a, const void* b) {
    return StringCompareOp("EQ", &stringAt(a), &stringAt(b)) != 0;
}

bool sameStringShape(const void* a, const void* b) {
    return stringAt(a).maxlength == stringAt(b).maxlength;
}

std::string checkString(const void* value) {
    const auto s = ReadAt<StringDescriptor>(value);
    const std::int64_t capacity = s.maxlength == UNBOUNDED ? s.length : s.maxlength;
    if (s.length < 0 || s.length > capacity) return "string: length out of range";
    if (s.size != capacity * CharacterWidth && !(s.length == 0 && s.maxlength == UNBOUNDED))
        return "string: size is not that of its characters";
    if ((s.size == 0) != (s.data == 0)) return "string: size without data or data without size";
    return {};
}

// ---- the table of kinds ----

const KindOperations* operationsOf(std::int32_t kind) {
    static constexpr const KindOperations* table[KindCount] = {
        nullptr,          nullptr,           nullptr,           nullptr,           nullptr,
        nullptr,          &StringOperations, &RecordOperations, &RecordOperations, &SetOperations,
        &ArrayOperations, &ListOperations,   &TableOperations};
    return IsAdtKind(kind) ? table[kind] : nullptr;
}

// The head is looked at first, so that a descriptor which is shorter than its alleged kind is not read behind
// its end.
bool isZero(const void* value, Kind kind) {
    static constexpr char zeros[largestValue] = {};
    constexpr std::size_t head = sizeof(DescriptorHead);
    if (std::memcmp(value, zeros, head) != 0) return false;
    return std::memcmp(static_cast<const char*>(value) + head, zeros,
                       static_cast<std::size_t>(KindSize[kind]) - head) == 0;
}

bool fail(std::int32_t code) {
    SetError(code);
    return false;
}

// A descriptor of the kind it is said to be.
bool isOf(const void* value, Kind kind) {
    return IsWellFormed(value) && KindOf(value) == kind;
}

bool acceptKind(Kind kind) {
    return IsValueKind(kind) || fail(ERR_UNIDENTIFIABLE);
}

bool acceptDescriptor(const void* value, Kind kind) {
    return !IsAdtKind(kind) ? value != nullptr || fail(ERR_UNIDENTIFIABLE)
                            : isOf(value, kind) || fail(AdtTypeError(kind));
}

bool isOperator(std::string_view op, char first, char second) {
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    return op.size() >= 2 && upper(op[0]) == first && upper(op[1]) == second;
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
        for (std::int32_t n = 1; n <= MaxFields; ++n) {
            const Kind field = FieldKindAt(record.kinds, n);
            if (field == KindNone || canHoldOthers(field)) return field != KindNone;
        }
    }
    if (kind != KindArray) return false;
    const auto array = ReadAt<ArrayDescriptor>(target);
    return array.maxlength == 0 && canHoldOthers(array.tag);
}

// Copies into a new value of the target's shape, which takes the target's place.
bool replace(const void* source, void* target, Kind kind) {
    const KindOperations& operations = *operationsOf(kind);
    char made[largestValue];
    if (!operations.init(made, target)) return false;
    if (!operations.copy(source, made)) {
        operations.free(made);
        return false;
    }
    operations.free(target);
    std::memcpy(target, made, static_cast<std::size_t>(KindSize[kind]));
    return true;
}

// A copy whose result is compared with what the source was: the source may be lost by the copying.
void copyAndCompare(const void* source, void* target, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    char before[largestValue] = {};
    if (canHoldOthers(kind) && !operations->copy(source, before)) return;
    const void* expected = canHoldOthers(kind) ? before : source;
    if (CopyValue(source, target, kind) && !EqualValues(expected, target, kind)) SetError(ERR_ADT_COPY);
    if (canHoldOthers(kind)) operations->free(before);
}

bool equalNumbers(const void* a, const void* b, Kind kind) {
    if (kind == KindReal) return ReadAt<double>(a) == ReadAt<double>(b);
    return std::memcmp(a, b, static_cast<std::size_t>(KindSize[kind])) == 0;
}

// A list that is held in a file and has not been opened.
bool isUnopened(const void* value, Kind kind) {
    if (kind != KindList) return false;
    const auto list = ReadAt<ListDescriptor>(value);
    return IsValueKind(list.tag - TagInFile) && (list.data == 0 || *At(list.data) == 0);
}

}  // namespace

const KindOperations StringOperations = {initString,   copyString,      freeString,
                                         equalStrings, sameStringShape, checkString};

// ---- for elements and fields ----

bool InitValue(void* target, const void* like, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    const auto size = static_cast<std::size_t>(KindSize[kind]);
    if (operations != nullptr && !isZero(like, kind)) return operations->init(target, like);
    std::memset(target, 0, size);
    return true;
}

bool CopyValue(const void* source, void* target, Kind kind) {
    if (source == target) return true;
    const KindOperations* operations = operationsOf(kind);
    if (operations != nullptr && isZero(source, kind) && isZero(target, kind)) return true;
    if (operations != nullptr && mayOwnSource(target, kind)) return replace(source, target, kind);
    if (operations != nullptr) return operations->copy(source, target);
    std::memmove(target, source, static_cast<std::size_t>(KindSize[kind]));
    return true;
}

void FreeValue(void* value, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    if (operations != nullptr) operations->free(value);
}

bool EqualValues(const void* a, const void* b, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    if (operations == nullptr) return equalNumbers(a, b, kind);
    const bool zeroA = isZero(a, kind), zeroB = isZero(b, kind);
    return zeroA || zeroB ? zeroA == zeroB : operations->equal(a, b);
}

bool SameShape(const void* a, const void* b, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    if (operations == nullptr) return true;
    const bool zeroA = isZero(a, kind), zeroB = isZero(b, kind);
    return zeroA || zeroB ? zeroA == zeroB : operations->sameShape(a, b);
}

std::string CheckValue(const void* value, Kind kind) {
    const KindOperations* operations = operationsOf(kind);
    if (operations == nullptr || isZero(value, kind)) return {};
    if (!isOf(value, kind)) return "not a descriptor of kind " + std::to_string(kind);
    return operations->check(value);
}

bool ClearValue(void* value, Kind kind) {
    char empty[largestValue];
    if (!InitValue(empty, value, kind)) return false;
    FreeValue(value, kind);
    std::memcpy(value, empty, static_cast<std::size_t>(KindSize[kind]));
    return true;
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
    return good || fail(ERR_COMPONENT_INVALID);
}

void ClearOutput(void* value, Kind kind) {
    if (value == nullptr || !IsValueKind(kind)) return;
    if (!IsAdtKind(kind))
        std::memset(value, 0, static_cast<std::size_t>(KindSize[kind]));
    else if (isOf(value, kind))
        ClearValue(value, kind);
}

// ---- generic operations ----

void AdtInit(void* target, const void* like, Kind kind) {
    if (target == nullptr || !acceptKind(kind)) return SetError(ERR_UNIDENTIFIABLE);
    if (IsAdtKind(kind) && !isOf(like, kind)) {
        std::memset(target, 0, static_cast<std::size_t>(KindSize[kind]));
        return SetError(AdtTypeError(kind));
    }
    InitValue(target, like, kind);
}

void AdtCopy(const void* source, void* target, Kind kind, std::int32_t flag) {
    if (!acceptKind(kind) || !acceptDescriptor(source, kind)) return;
    const bool shapeless = target != nullptr && kind > KindString && isZero(target, kind);
    if (!shapeless && !acceptDescriptor(target, kind)) return;
    if (source == target) return;
    if (flag == 0 && MemoryChecking())
        copyAndCompare(source, target, kind);
    else
        CopyValue(source, target, kind);
}

void AdtFree(void* value, Kind kind) {
    if (value == nullptr || (IsValueKind(kind) && !IsAdtKind(kind))) return;
    if (!acceptKind(kind) || isZero(value, kind)) return;
    if (!isOf(value, kind)) return SetError(AdtTypeError(kind));
    FreeValue(value, kind);
    std::memset(value, 0, static_cast<std::size_t>(KindSize[kind]));
}

bool AdtCompare(std::string_view op, const void* a, const void* b, Kind kind) {
    if (!acceptKind(kind) || !acceptDescriptor(a, kind) || !acceptDescriptor(b, kind)) return false;
    if (isUnopened(a, kind) || isUnopened(b, kind)) return fail(ERR_FILE_NOT_OPEN);
    const bool equals = isOperator(op, 'E', 'Q'), differs = isOperator(op, 'N', 'E');
    return (equals || differs) && EqualValues(a, b, kind) == equals;
}

void AdtClear(void* value, Kind kind) {
    if (!acceptKind(kind) || !acceptDescriptor(value, kind)) return;
    ClearValue(value, kind);
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
