// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/rowloading.h"

#include "kernel/data/elements.h"
#include "kernel/data/fresh.h"
#include "kernel/data/tab/tab_rows.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"

namespace tarn {

DataResult RowLoading::into(void* target, Kind kind) {
    FreshValue fresh(target, kind);
    const std::int32_t code = TakeError();
    if (code != 0) return {code};
    read(fresh.get(), kind);
    if (fileCode() != 0) failWhole(fileCode());
    if (stopped() || failed_) return {result_.code, 0, 0, stopped()};
    return fresh.replaceTarget() ? result_ : DataResult{TakeError()};
}

bool RowLoading::next(std::string_view& row) {
    if (!goesOn() || !nextInFile(row)) return false;
    ++row_;
    return true;
}

void RowLoading::note(std::int32_t code) {
    if (IsMemoryError(code)) return failWhole(code);
    if (code == 0 || result_.code != 0) return;
    result_.code = code;
    result_.row = row_;
}

void RowLoading::failWhole(std::int32_t code) {
    result_ = {code};
    failed_ = true;
}

void RowLoading::read(void* value, Kind kind) {
    switch (kind) {
    case KindString: return readText(*static_cast<StringDescriptor*>(value));
    case KindSet: return readSet(*static_cast<SetDescriptor*>(value));
    case KindList: return readList(*static_cast<ListDescriptor*>(value));
    case KindTable: return readTable(*static_cast<TableDescriptor*>(value));
    default: return readOne(value, kind);
    }
}

void RowLoading::readOne(void* value, Kind kind) {
    std::string_view row;
    if (!next(row)) return;
    note(fill(row, value, kind));
    result_.rows = row_;
}

void RowLoading::readSet(SetDescriptor& set) {
    readOne(&set, KindSet);
}

void RowLoading::readList(ListDescriptor& list) {
    ElementSink elements(list);
    for (std::string_view row; next(row); result_.rows = list.count) {
        void* const element = elements.next();
        if (element == nullptr) return note(TakeError());
        note(fill(row, element, ElementKindOf(list)));
        if (!failed_ && !elements.add()) return failWhole(TakeError());
    }
}

void RowLoading::readTable(TableDescriptor& table) {
    RecordValue record;
    AdtInit(record.get(), &RowShape(HeaderOf(table)), KindRecord);
    note(TakeError());
    const std::int32_t index = TableIndexCount(&table) > 0 ? 1 : 0;
    for (std::string_view row; next(row); result_.rows = table.count) {
        note(fill(row, record.get(), KindRecord));
        if (failed_) return;
        TableAdd(&table, index, record.get());
        const std::int32_t code = TakeError();
        if (IsFileFailure(code)) return failWhole(code);
        note(code);
        if (code == ERR_FIXED_TABLE) return;
    }
}

}  // namespace tarn
