// SPDX-License-Identifier: Apache-2.0
//
// The owning types of the modules: descriptors that are zero at first and freed when they leave their scope.
// The raw operations shape and use them through get(). That of sets has another name than its like, as
// SetValue is an operation of windows.
#pragma once

#include "kernel/values/values.h"

namespace tarn {

void AdtFree(void* value, Kind kind);  // adt.h

template <class Descriptor, Kind kind>
class Owned {
public:
    Owned() = default;
    ~Owned() { AdtFree(&descriptor_, kind); }
    Owned(Owned&& other) noexcept : descriptor_(other.descriptor_) { other.descriptor_ = {}; }
    Owned& operator=(Owned&& other) noexcept {
        if (this == &other) return *this;
        AdtFree(&descriptor_, kind);
        descriptor_ = other.descriptor_;
        other.descriptor_ = {};
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    [[nodiscard]] Descriptor* get() { return &descriptor_; }
    [[nodiscard]] const Descriptor* get() const { return &descriptor_; }

private:
    Descriptor descriptor_{};
};
using RecordValue = Owned<RecordDescriptor, KindRecord>;
using UnionValue = Owned<RecordDescriptor, KindUnion>;
using OwnedSet = Owned<SetDescriptor, KindSet>;
using ArrayValue = Owned<ArrayDescriptor, KindArray>;
using ListValue = Owned<ListDescriptor, KindList>;
using TableValue = Owned<TableDescriptor, KindTable>;

}  // namespace tarn
