// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/fresh.h"

#include "kernel/index/index_file.h"
#include "kernel/lists/rowformat.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/tables/tables_file_places.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/arrays.h"
#include "kernel/values/sets.h"

#include <cstring>

namespace tarn {

namespace {

// The rows of an open list or table that is held in a file; null for every other value.
ListDescriptor* fileRows(void* value, Kind kind) {
    if (!FileExists(value, kind)) return nullptr;
    return kind == KindList ? static_cast<ListDescriptor*>(value)
                            : &HeaderOf(*static_cast<TableDescriptor*>(value)).rows;
}

bool rebuilt(TableDescriptor& t) {
    const OwnErrors errors;
    TableRebuild(&t);
    return OwnErrors::code() == 0;
}

// While rows are new and indexes are not, the files of the indexes are away: opening then tells (656). New
// ones that cannot be moved are made again.
bool replaceTable(const TableDescriptor& fresh, TableDescriptor& target, const std::string& scratch) {
    ListDescriptor& rows = HeaderOf(target).rows;
    const std::int32_t count = HeaderOf(fresh).rows.count, indexes = IndexesOf(HeaderOf(target));
    const std::string file(RowFileName(rows));
    IndexExchange exchange(target);
    if ((rows.count > 0 && !SyncTableIndexes(fresh)) || !EndGuard(target) || !exchange.setAside())
        return false;
    if (!PutRowsInPlace(scratch, rows, count)) {
        exchange.putBack();
        return false;
    }
    target.count = count;
    bool moved = true;
    for (std::int32_t i = 1; i <= indexes && moved; ++i)
        moved = RenameIndexFile(IndexFileName(scratch, i), IndexFileName(file, i), file);
    exchange.drop();
    return moved || rebuilt(target);
}

}  // namespace

// The destructor runs from the end of the first constructor on, whatever stops the second.
FreshValue::FreshValue(void* target, Kind kind, Shaped) : target_(target), kind_(kind) {
    AdtInit(bytes_, target, kind);
}

FreshValue::FreshValue(void* target, Kind kind) : FreshValue(target, kind, Shaped()) {
    const ListDescriptor* const rows = fileRows(target, kind);
    if (rows == nullptr || IsZeroValue(bytes_, kind) || !MakeRowsBeside(*rows, scratch_)) return;
    FileOpen(bytes_, kind, scratch_);
    WithMemory([&] {
        if (ListDescriptor* const own = fileRows(bytes_, kind)) batch_ = std::make_unique<RowBatch>(*own);
        return true;
    });
}

// What did not take the target's place goes: a fresh value's files with it.
FreshValue::~FreshValue() {
    try {
        if (ListDescriptor* const rows = fileRows(bytes_, kind_)) DropRows(*rows);
        if (!scratch_.empty()) {
            RemoveRows(scratch_);
            if (kind_ == KindTable) RemoveIndexFiles(scratch_);
        }
    } catch (...) {  // the end of the process, in a test
    }
    AdtFree(bytes_, kind_);
}

void FreshValue::takeBounds() {
    if (IsZeroValue(bytes_, kind_) ||
        ReadAt<DescriptorHead>(bytes_).size == ReadAt<DescriptorHead>(target_).size)
        return;
    if (kind_ == KindArray) {
        const auto array = ReadAt<ArrayDescriptor>(target_);
        const ArrayBounds one = array.bounds[0], two = array.bounds[1], three = array.bounds[2];
        ArrayRedim(reinterpret_cast<ArrayDescriptor*>(bytes_), one.lower, one.upper, two.lower, two.upper,
                   three.lower, three.upper, false);
    } else if (kind_ == KindSet) {
        const auto set = ReadAt<SetDescriptor>(target_);
        SetRedim(reinterpret_cast<SetDescriptor*>(bytes_), set.lower, set.upper, false);
    }
}

bool FreshValue::replaceTarget() {
    if (ListDescriptor* const rows = fileRows(target_, kind_))
        return WithMemory([&] { return replaceFiles(*rows); });
    const auto size = static_cast<std::size_t>(KindSize[kind_]);
    char old[sizeof bytes_];
    std::memcpy(old, target_, size);
    std::memcpy(target_, bytes_, size);
    std::memcpy(bytes_, old, size);
    return true;
}

bool FreshValue::replaceFiles(ListDescriptor& rows) {
    if (batch_ == nullptr || !batch_->finish()) return false;
    const ListDescriptor& fresh = *fileRows(bytes_, kind_);
    return kind_ == KindTable ? replaceTable(*reinterpret_cast<TableDescriptor*>(bytes_),
                                             *static_cast<TableDescriptor*>(target_), scratch_)
                              : PutRowsInPlace(scratch_, rows, fresh.count);
}

}  // namespace tarn
