// SPDX-License-Identifier: Apache-2.0
//
// The elements of any composite, one after another: fields of a record, elements of an array in storage order, of a
// list, rows of a table, wherever they stand.
#pragma once

#include "kernel/data/elements.h"
#include "kernel/values/records.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <optional>

namespace tarn {

constexpr bool IsComposite(Kind kind) {
    return kind == KindRecord || kind == KindUnion || (kind >= KindArray && kind <= KindTable);
}
// Composites that are made of elements of one kind: what can be expanded.
constexpr bool IsExpandable(Kind kind) {
    return kind >= KindArray && kind <= KindTable;
}

// An array of enums with one dimension.
bool IsCharacterArray(const void* value, Kind kind);
std::int32_t DimensionCount(const ArrayDescriptor& array);  // 0 for one without bounds

// `value` is a composite of this kind. It stays where it is and does not change meanwhile.
class ValueElements {
public:
    ValueElements(const void* value, Kind kind);
    [[nodiscard]] std::int32_t count() const { return count_; }
    // Of element `index`, from 0.
    [[nodiscard]] Kind kind(std::int32_t index) const;
    // Null, with the error set, for one that cannot be read. One that stands in a file is valid until the next.
    const void* at(std::int32_t index);

private:
    const void* field(std::int32_t index);

    RecordDescriptor record_{};
    bool isRecord_;
    std::int32_t count_ = 0;
    std::int32_t nextField_ = 0, nextOffset_ = 0;  // fields are mostly asked for in order
    std::optional<ElementSource> source_;
};

}  // namespace tarn
