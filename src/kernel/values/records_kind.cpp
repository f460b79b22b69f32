// SPDX-License-Identifier: Apache-2.0
//
// Records and unions as values: making, copying, comparing and checking them whole.
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/record_access_internal.h"
#include "kernel/values/records.h"

#include <cstring>
#include <string>

namespace tarn {

namespace {

bool sameKinds(const RecordDescriptor& a, const RecordDescriptor& b) {
    return std::memcmp(&a.kinds, &b.kinds, sizeof a.kinds) == 0;
}

const RecordDescriptor& recordAt(const void* value) {
    return *static_cast<const RecordDescriptor*>(value);
}

void freeRecord(void* value) {
    auto& r = *static_cast<RecordDescriptor*>(value);
    char* data = At(r.data);
    if (data == nullptr) return;
    if (HoldsNumbersOnly(r.kinds)) return FreeData(r);
    EachField(r.kinds, [&](const RecordField& field) {
        FreeValue(data + field.offset, field.kind);
        return true;
    });
    FreeData(r);
}

bool initRecord(void* target, const void* like) {
    const RecordDescriptor& from = recordAt(like);
    RecordDescriptor made{0, from.tag, 0, from.kinds};
    bool good = from.size == 0 || AllocateData(made, from.size);
    if (good && from.size != 0) {
        char* data = At(made.data);
        const char* shapes = At(from.data);
        std::memset(data, 0, static_cast<std::size_t>(made.size));
        good = HoldsNumbersOnly(made.kinds) || EachField(made.kinds, [&](const RecordField& field) {
                   return !IsAdtKind(field.kind) ||
                          InitValue(data + field.offset, shapes + field.offset, field.kind);
               });
        if (!good) freeRecord(&made);
    }
    if (!good) made = {};
    std::memcpy(target, &made, sizeof made);
    return good;
}

bool copyRecord(const void* source, void* target) {
    const RecordDescriptor& from = recordAt(source);
    auto& to = *static_cast<RecordDescriptor*>(target);
    if (!sameKinds(from, to)) {
        SetError(ERR_COMPONENT_TYPE);
        return false;
    }
    const char* fromData = At(from.data);
    char* toData = At(to.data);
    if (to.size == 0) return true;
    if (HoldsNumbersOnly(to.kinds) && from.size == to.size) {
        std::memcpy(toData, fromData, static_cast<std::size_t>(to.size));
        return true;
    }
    return EachField(to.kinds, [&](const RecordField& field) {
        return CopyValue(fromData + field.offset, toData + field.offset, field.kind);
    });
}

bool equalRecords(const void* a, const void* b) {
    const RecordDescriptor &left = recordAt(a), &right = recordAt(b);
    if (!sameKinds(left, right)) return false;
    const char *leftData = At(left.data), *rightData = At(right.data);
    return EachField(left.kinds, [&](const RecordField& field) {
        return EqualValues(leftData + field.offset, rightData + field.offset, field.kind);
    });
}

bool sameRecordShape(const void* a, const void* b) {
    const RecordDescriptor &left = recordAt(a), &right = recordAt(b);
    if (left.tag != right.tag || !sameKinds(left, right)) return false;
    if (HoldsNumbersOnly(left.kinds)) return true;
    const char *leftData = At(left.data), *rightData = At(right.data);
    return EachField(left.kinds, [&](const RecordField& field) {
        return SameShape(leftData + field.offset, rightData + field.offset, field.kind);
    });
}

std::string checkRecord(const void* value) {
    const RecordDescriptor& r = recordAt(value);
    const std::int32_t count = FieldCountOf(r.kinds);
    for (std::int32_t n = count + 1; n <= MaxFields; ++n) {
        if (FieldKindAt(r.kinds, n) != KindNone) return "record: a field stands behind the last";
    }
    if (r.size != FieldBytesOf(r.kinds)) return "record: size is not that of its fields";
    if ((r.size == 0) != (r.data == 0)) return "record: size without data or data without size";
    std::string wrong;
    const char* data = At(r.data);
    EachField(r.kinds, [&](const RecordField& field) {
        wrong = CheckValue(data + field.offset, field.kind);
        if (!wrong.empty()) wrong = "field " + std::to_string(field.number) + ": " + wrong;
        return wrong.empty();
    });
    return wrong;
}

void emptyRecord(void* value) {
    const RecordDescriptor& r = recordAt(value);
    if (r.size == 0 || r.size != FieldBytesOf(r.kinds)) return;
    char* data = At(r.data);
    EachField(r.kinds, [&](const RecordField& field) {
        EmptyValue(data + field.offset, field.kind);
        return true;
    });
}

}  // namespace

const KindOperations RecordOperations = {initRecord,      copyRecord,  freeRecord, equalRecords,
                                         sameRecordShape, checkRecord, emptyRecord};

}  // namespace tarn
