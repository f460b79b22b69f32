// SPDX-License-Identifier: Apache-2.0
//
// A file is read into a fresh value of the target's shape, which takes the target's place when the reading
// came to its end. So a target is never half full, and two values are in memory at most. Elements of lists in
// memory are filled where they stand.
#include "kernel/adt.h"
#include "kernel/data/elements.h"
#include "kernel/data/fresh.h"
#include "kernel/data/tab_fields.h"
#include "kernel/data/tab_rows.h"
#include "kernel/errors.h"
#include "kernel/fileerrors.h"
#include "kernel/lists.h"
#include "kernel/runtime.h"
#include "kernel/strings.h"
#include "kernel/table_access.h"
#include "kernel/tables.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace tarn {

namespace {

bool isMemoryError(std::int32_t code) {
    return code == ERR_OUT_OF_MEMORY || code == ERR_BLOCK_TOO_LARGE;
}

std::int32_t takeError() {
    const std::int32_t code = tarn_error_cell;
    tarn_error_cell = 0;
    return code;
}

class Loading {
public:
    Loading(TabReader& rows, const TabTarget& target, std::int32_t mostRows)
        : rows_(rows), reader_(target.row, rows.separator()), mostRows_(mostRows) {}

    TabResult run(void* value, Kind kind) {
        switch (kind) {
        case KindString: readText(*static_cast<StringDescriptor*>(value)); break;
        case KindList: readList(*static_cast<ListDescriptor*>(value)); break;
        case KindTable: readTable(*static_cast<TableDescriptor*>(value)); break;
        default: readOne(value);
        }
        result_.stopped = rows_.stopped();
        if (rows_.code() != 0) failWhole(rows_.code());
        return result_;
    }
    // Nothing that was read counts.
    [[nodiscard]] bool failed() const { return failed_ || result_.stopped; }

private:
    bool next(std::string_view& row) {
        if (failed_ || (mostRows_ >= 0 && row_ == mostRows_) || !rows_.next(row)) return false;
        ++row_;
        return true;
    }
    void failWhole(std::int32_t code) {
        result_ = {code};
        failed_ = true;
    }
    void note(std::int32_t code) {
        if (isMemoryError(code)) return failWhole(code);
        if (code == 0 || result_.code != 0) return;
        result_.code = code;
        result_.row = row_;
    }
    void readRow(std::string_view row, void* value) {
        note(reader_.read(row, value));
        if (rows_.cut()) note(ERR_STRING_CONVERSION);
    }

    void readOne(void* value) {
        std::string_view row;
        if (!next(row)) return;
        readRow(row, value);
        result_.rows = row_;
    }

    void readList(ListDescriptor& list) {
        ElementSink elements(list);
        for (std::string_view row; next(row); result_.rows = list.count) {
            void* const element = elements.next();
            if (element == nullptr) return note(takeError());
            readRow(row, element);
            if (!failed_ && !elements.add()) return failWhole(takeError());
        }
    }

    void readTable(TableDescriptor& table) {
        RecordValue record;
        AdtInit(record.get(), &RowShape(HeaderOf(table)), KindRecord);
        note(takeError());
        const std::int32_t index = TableIndexCount(&table) > 0 ? 1 : 0;
        for (std::string_view row; next(row); result_.rows = table.count) {
            readRow(row, record.get());
            if (failed_) return;
            TableAdd(&table, index, record.get());
            const std::int32_t code = takeError();
            if (IsFileFailure(code)) return failWhole(code);
            note(code);
            if (code == ERR_FIXED_TABLE) return;
        }
    }

    // The data rows as they stand, as much of them as the string can hold.
    void readText(StringDescriptor& text) {
        const std::int64_t most =
            text.maxlength == UNBOUNDED ? std::int64_t{MaxBlock} / CharacterWidth + 1 : text.maxlength;
        const std::int64_t size = std::min(most, rows_.dataEnd() - rows_.dataBegin());
        std::string bytes(static_cast<std::size_t>(std::max<std::int64_t>(size, 0)), '\0');
        const std::int32_t code = rows_.read(rows_.dataBegin(), bytes.data(), bytes.size());
        if (code != 0) return failWhole(code);
        std::size_t end = 0;
        while (end < bytes.size() && (mostRows_ < 0 || row_ < mostRows_)) {
            end = std::min(bytes.find('\n', end), bytes.size() - 1) + 1;
            ++row_;
        }
        StringAssignView(&text, std::string_view(bytes).substr(0, end));
        note(takeError());
        result_.rows = row_;
    }

    TabReader& rows_;
    TabRowReader reader_;
    std::int32_t mostRows_, row_ = 0;
    bool failed_ = false;
    TabResult result_;
};

TabResult load(const std::string& filename, const TabOptions& options, void* value, Kind kind) {
    TabTarget target = MakeTabTarget(value, kind, options.separatorchar);
    if (target.code == 0 && kind < KindString) target.code = ERR_COMPONENT_UNREPRESENTABLE;
    if (target.code == 0 && kind == KindArray) target.code = ERR_COMPONENT_UNREPRESENTABLE;
    TabReader rows;
    if (target.code == 0) target.code = rows.open(filename, options);
    if (target.code != 0) return {target.code};
    FreshValue fresh(value, kind);
    const std::int32_t code = takeError();
    if (code != 0) return {code};
    Loading loading(rows, target, options.maxdatarows);
    const TabResult result = loading.run(fresh.get(), kind);
    if (!loading.failed() && !fresh.replaceTarget()) return {takeError()};
    return result;
}

}  // namespace

TabResult TabLoad(const std::string& filename, const TabOptions& options, void* value, Kind kind) {
    const CellApart cell;
    try {
        return load(filename, options, value, kind);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
