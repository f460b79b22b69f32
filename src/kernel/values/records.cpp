// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/records.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/record_access_internal.h"

#include <array>
#include <cstring>

namespace tarn {

namespace {

// Kinds of values without a gap, and nothing behind the last.
bool areFieldKinds(const FieldKinds& kinds) {
    const std::int32_t count = FieldCountOf(kinds);
    for (std::int32_t n = 1; n <= MaxFields; ++n) {
        const Kind kind = FieldKindAt(kinds, n);
        if (kind > KindTable || (n > count && kind != KindNone)) return false;
    }
    return true;
}

bool isRecord(const RecordDescriptor* r) {
    return r != nullptr && (r->tag == TagRecord || r->tag == TagUnion) && r->size >= 0;
}

bool acceptRecord(const RecordDescriptor* r) {
    if (isRecord(r)) return true;
    SetError(ERR_UNIDENTIFIABLE);
    return false;
}

std::int32_t fieldError(const RecordDescriptor& r) {
    return r.tag == TagUnion ? ERR_UNION_TYPE : ERR_RECORD_TYPE;
}

// The address of field n when it may be exchanged with a value of this kind; otherwise null, and the error is
// set.
char* exchangeableField(const RecordDescriptor* r, std::int32_t n, const void* v, Kind kind, Use use) {
    if (!acceptRecord(r) || !AcceptValue(v, kind)) return nullptr;
    const Kind fieldKind = FieldKindAt(r->kinds, n);
    if (fieldKind == KindNone) {
        SetError(fieldError(*r));
        return nullptr;
    }
    if (fieldKind != kind) {
        SetError(ERR_COMPONENT_TYPE);
        return nullptr;
    }
    if (!AcceptContent(v, kind, use)) return nullptr;
    return static_cast<char*>(RecordFieldAddress(const_cast<RecordDescriptor*>(r), n));
}

// The bytes of two fields, by their kinds; a kind that is none ends the record.
constexpr std::array<std::uint8_t, 256> makePairBytes() {
    std::array<std::uint8_t, 256> bytes{};
    const auto sizeOf = [](std::size_t kind) { return kind < KindCount ? KindSize[kind] : 0; };
    for (std::size_t pair = 16; pair < bytes.size(); ++pair)
        bytes[pair] = static_cast<std::uint8_t>(sizeOf(pair >> 4U) + sizeOf(pair & 15U));
    return bytes;
}
constexpr std::array<std::uint8_t, 256> pairBytes = makePairBytes();

}  // namespace

// ---- field kinds ----

FieldKinds MakeFieldKinds(std::initializer_list<Kind> kinds) {
    FieldKinds made{};
    std::int32_t n = 0;
    for (const Kind kind : kinds) SetFieldKindAt(made, ++n, kind);
    return made;
}

void SetFieldKindAt(FieldKinds& kinds, std::int32_t n, Kind kind) {
    if (n < 1 || n > MaxFields) return;
    std::uint8_t& pair = kinds.nibbles[(n - 1) / 2];
    const auto nibble = static_cast<std::uint32_t>(kind) & 15U;
    pair = static_cast<std::uint8_t>(n % 2 != 0 ? (pair & 15U) | nibble << 4U : (pair & 0xF0U) | nibble);
}

std::int32_t FieldCountOf(const FieldKinds& kinds) {
    std::int32_t count = 0;
    while (FieldKindAt(kinds, count + 1) != KindNone) ++count;
    return count;
}

std::int32_t FieldBytesOf(const FieldKinds& kinds) {
    std::int32_t bytes = 0;
    for (const std::uint8_t pair : kinds.nibbles) {
        bytes += pairBytes[pair];
        if (pair < 16 || (pair & 15U) == 0) break;
    }
    return bytes;
}

// ---- life ----

void RecordInit(RecordDescriptor* r, std::int32_t tag, const FieldKinds& kinds) {
    if (r == nullptr || (tag != TagRecord && tag != TagUnion)) {
        if (r != nullptr) *r = {};
        SetError(ERR_UNIDENTIFIABLE);
        return;
    }
    *r = {0, tag, 0, kinds};
    const bool good = areFieldKinds(kinds);
    const std::int32_t size = good ? FieldBytesOf(kinds) : 0;
    if (!good) SetError(fieldError(*r));
    if (!good || (size != 0 && !AllocateData(*r, size)))
        *r = {};
    else if (size != 0)
        std::memset(At(r->data), 0, static_cast<std::size_t>(size));
}

void RecordCopy(const RecordDescriptor* source, RecordDescriptor* target) {
    AdtCopy(source, target, source != nullptr && source->tag == TagUnion ? KindUnion : KindRecord);
}

void RecordFree(RecordDescriptor* r) {
    AdtFree(r, r != nullptr && r->tag == TagUnion ? KindUnion : KindRecord);
}

// ---- fields ----

std::int32_t RecordFieldCount(const RecordDescriptor* r) {
    return acceptRecord(r) ? FieldCountOf(r->kinds) : 0;
}

Kind RecordFieldKind(const RecordDescriptor* r, std::int32_t n) {
    return acceptRecord(r) ? FieldKindAt(r->kinds, n) : KindNone;
}

const void* RecordFieldAddress(const RecordDescriptor* r, std::int32_t n) {
    if (!acceptRecord(r)) return nullptr;
    const char* at = nullptr;
    EachField(r->kinds, [&](const RecordField& field) {
        if (field.number == n) at = At(r->data) + field.offset;
        return field.number != n;
    });
    return at;
}

void* RecordFieldAddress(RecordDescriptor* r, std::int32_t n) {
    return const_cast<void*>(RecordFieldAddress(const_cast<const RecordDescriptor*>(r), n));
}

void RecordPut(RecordDescriptor* r, std::int32_t n, const void* v, Kind kind) {
    char* field = exchangeableField(r, n, v, kind, Use::Input);
    if (field != nullptr) CopyAndCompare(v, field, kind, 0);
}

void RecordGet(const RecordDescriptor* r, std::int32_t n, void* v, Kind kind) {
    const char* field = exchangeableField(r, n, v, kind, Use::Output);
    if (field != nullptr)
        CopyOut(field, v, kind);
    else
        ClearOutput(v, kind);
}

void RecordAppend(RecordDescriptor* r, const void* v, Kind kind) {
    if (!acceptRecord(r) || !AcceptValue(v, kind)) return;
    const std::int32_t count = FieldCountOf(r->kinds), size = KindSize[kind];
    if (count == MaxFields) return SetError(fieldError(*r));
    if (!AcceptContent(v, kind, Use::Input)) return;
    // The value may stand in the record, whose block moves: the copy is complete before it grows.
    char made[sizeof(ArrayDescriptor)] = {};
    if (!InitValue(made, v, kind)) return;
    if (!CopyValue(v, made, kind) || !ResizeData(*r, r->size + size)) {
        FreeValue(made, kind);
        return;
    }
    std::memcpy(At(r->data) + r->size - size, made, static_cast<std::size_t>(size));
    SetFieldKindAt(r->kinds, count + 1, kind);
}

}  // namespace tarn
