// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/rows.h"

#include "kernel/lists/lists.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "tarn_data/base/files.h"

namespace tarn::datatool {

Rows::Rows() = default;
Rows::~Rows() = default;

ListDescriptor* Rows::list() {
    return TableRows(table.get());
}

std::int32_t Rows::count() const {
    const ListDescriptor* const rows = TableRows(table.get());
    return rows != nullptr ? rows->count : 0;
}

const RecordDescriptor* Rows::shape() const {
    return static_cast<const RecordDescriptor*>(
        static_cast<const void*>(At(TableRows(table.get())->prototype)));
}

RecordDescriptor* Rows::at(std::int32_t number) {
    if (!ListIsInFile(list())) return static_cast<RecordDescriptor*>(ListRef(list(), number));
    if (row_.get()->tag == 0) AdtInit(row_.get(), shape(), KindRecord);
    number_ = number;
    return ErrorCell() == 0 && ReadRow(*list(), number, row_.get()) ? row_.get() : nullptr;
}

bool Rows::keep() {
    return !ListIsInFile(list()) || ReplaceRow(*list(), number_, row_.get());
}

bool Rows::add(const RecordDescriptor* row) {
    if (ListIsInFile(list())) {
        const bool added = AppendRow(*list(), row);
        table.get()->count = list()->count;
        return added;
    }
    TableAdd(table.get(), 0, row);
    return ErrorCell() == 0;
}

bool Rows::beginBatch() {
    if (batch_ != nullptr || !ListIsInFile(list())) return true;
    batch_ = std::make_unique<RowBatch>(*list());
    return ErrorCell() == 0;
}

bool Rows::endBatch() {
    const bool good = batch_ == nullptr || batch_->finish();
    batch_.reset();
    table.get()->count = count();
    return good;
}

}  // namespace tarn::datatool
