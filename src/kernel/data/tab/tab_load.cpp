// SPDX-License-Identifier: Apache-2.0
//
// Delimited text into values, row by row.
#include "kernel/data/rowloading.h"
#include "kernel/data/tab/tab_fields.h"
#include "kernel/data/tab/tab_rows.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

class Loading : public RowLoading {
public:
    Loading(TabReader& rows, const TabTarget& target, std::int32_t mostRows)
        : RowLoading(mostRows), rows_(rows), reader_(target.row, rows.separator()) {}

private:
    bool nextInFile(std::string_view& row) override { return rows_.next(row); }
    [[nodiscard]] std::int32_t fileCode() const override { return rows_.code(); }
    [[nodiscard]] bool stopped() const override { return rows_.stopped(); }

    std::int32_t fill(std::string_view row, void* value, Kind) override {
        const std::int32_t code = reader_.read(row, value);
        return code == 0 && rows_.cut() ? std::int32_t{ERR_STRING_CONVERSION} : code;
    }

    // The data rows as they stand, as much of them as the string can hold.
    void readText(StringDescriptor& text) override {
        const std::int64_t most =
            text.maxlength == UNBOUNDED ? std::int64_t{MaxBlock} / CharacterWidth + 1 : text.maxlength;
        const std::int64_t size = std::min(most, rows_.dataEnd() - rows_.dataBegin());
        std::string bytes(static_cast<std::size_t>(std::max<std::int64_t>(size, 0)), '\0');
        const std::int32_t code = rows_.read(rows_.dataBegin(), bytes.data(), bytes.size());
        if (code != 0) return failWhole(code);
        std::size_t end = 0;
        for (; end < bytes.size() && goesOn(); ++row_)
            end = std::min(bytes.find('\n', end), bytes.size() - 1) + 1;
        StringAssignView(&text, std::string_view(bytes).substr(0, end));
        result_.rows = row_;
        note(TakeError());
    }

    TabReader& rows_;
    TabRowReader reader_;
};

DataResult load(const std::string& filename, const DataOptions& options, void* value, Kind kind) {
    TabTarget target = MakeTabTarget(value, kind, options.separatorchar);
    if (target.code == 0 && (kind < KindString || kind == KindArray))
        target.code = ERR_COMPONENT_UNREPRESENTABLE;
    TabReader rows;
    if (target.code == 0) target.code = rows.open(filename, options);
    if (target.code != 0) return {target.code};
    return Loading(rows, target, options.maxdatarows).into(value, kind);
}

}  // namespace

DataResult TabLoad(const std::string& filename, const DataOptions& options, void* value, Kind kind) {
    const ErrorCellAside aside;
    try {
        return load(filename, options, value, kind);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
