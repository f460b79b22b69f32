// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/valueelements_internal.h"

namespace tarn {

std::int32_t DimensionCount(const ArrayDescriptor& array) {
    std::int32_t count = 0;
    while (count < MaxDimensions && array.bounds[count].lower != NO_DIMENSION) ++count;
    return count;
}

bool IsCharacterArray(const void* value, Kind kind) {
    if (kind != KindArray) return false;
    const auto array = ReadAt<ArrayDescriptor>(value);
    return array.tag == KindEnum && DimensionCount(array) == 1;
}

ValueElements::ValueElements(const void* value, Kind kind)
    : isRecord_(kind == KindRecord || kind == KindUnion) {
    if (isRecord_) {
        record_ = ReadAt<RecordDescriptor>(value);
        if (record_.data != 0) count_ = FieldCountOf(record_.kinds);
        return;
    }
    if (ReadAt<DescriptorHead>(value).tag == 0) return;
    if (kind != KindArray && (!IsList(ElementList(value, kind)) || IsUnopenedFile(value, kind))) return;
    source_.emplace(value, kind);
    count_ = source_->count();
}

Kind ValueElements::kind(std::int32_t index) const {
    if (isRecord_) return FieldKindAt(record_.kinds, index + 1);
    return source_ ? source_->kind() : KindNone;
}

const void* ValueElements::at(std::int32_t index) {
    return isRecord_ ? field(index) : source_->at(index);
}

const void* ValueElements::field(std::int32_t index) {
    if (index < nextField_) nextField_ = nextOffset_ = 0;
    for (; nextField_ < index; ++nextField_)
        nextOffset_ += KindSize[FieldKindAt(record_.kinds, nextField_ + 1)];
    return At(record_.data) + nextOffset_;
}

}  // namespace tarn
