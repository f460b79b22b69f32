// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/elements.h"

#include "kernel/lists/rowfile.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt_kinds.h"

namespace tarn {

const ListDescriptor* ElementList(const void* value, Kind kind) {
    if (kind == KindTable) return TableRows(static_cast<const TableDescriptor*>(value));
    return kind == KindList ? static_cast<const ListDescriptor*>(value) : nullptr;
}

bool IsUnopenedFile(const void* value, Kind kind) {
    const ListDescriptor* const list = ElementList(value, kind);
    return list != nullptr && IsHeldInFile(*list) && RowFileName(*list).empty();
}

ElementSource::ElementSource(const void* value, Kind kind)
    : first_(static_cast<const char*>(value)), kind_(kind) {
    if (const ListDescriptor* const list = ElementList(value, kind)) {
        kind_ = ElementKindOf(*list);
        count_ = list->count;
        first_ = At(list->data);
        if (IsHeldInFile(*list)) reader_.emplace(*list);
    } else if (kind == KindArray) {
        const auto array = ReadAt<ArrayDescriptor>(value);
        kind_ = static_cast<Kind>(array.tag);
        count_ = array.size / KindSize[kind_];
        first_ = At(array.data);
    }
}

const void* ElementSource::at(std::int32_t index) {
    return reader_ ? reader_->at(index) : first_ + std::int64_t{index} * KindSize[kind_];
}

ElementSink::ElementSink(ListDescriptor& list) : list_(list) {
    if (IsHeldInFile(list)) element_.emplace(At(list.prototype), ElementKindOf(list));
}

void* ElementSink::next() {
    if (!element_) return ListAppendEmpty(&list_);
    if (!AcceptList(&list_) || !element_->good()) return nullptr;
    if (IsFixedList(list_) && list_.count >= list_.maxlength) return Refuse(ERR_FIXED_LIST), nullptr;
    EmptyValue(element_->at(), ElementKindOf(list_));
    return element_->at();
}

bool ElementSink::add() {
    return !element_ || AppendRow(list_, element_->at());
}

}  // namespace tarn
