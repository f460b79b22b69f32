// SPDX-License-Identifier: Apache-2.0
//
// What the modules of records share: the walk over the fields.
#pragma once

#include "kernel/values/records.h"

#include <cstdint>

namespace tarn {

// One field on a walk over a record.
struct RecordField {
    std::int32_t number = 0;
    Kind kind = KindNone;
    std::int32_t offset = 0;  // bytes from the first field
};

// Calls `visit` for each field in order, until it gives false; tells whether all were visited.
template <class Visit>
bool EachField(const FieldKinds& kinds, Visit visit) {
    RecordField field;
    for (field.number = 1; field.number <= MaxFields; ++field.number) {
        field.kind = FieldKindAt(kinds, field.number);
        if (field.kind == KindNone) return true;
        if (!visit(field)) return false;
        field.offset += KindSize[field.kind];
    }
    return true;
}

}  // namespace tarn
