// SPDX-License-Identifier: Apache-2.0
//
// How long the texts of each column are, without loading them.
#include "kernel/data/tab/tab_rows.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

class Measuring {
public:
    explicit Measuring(TabReader& rows) : rows_(rows) {}

    TabExtent run(std::int32_t mostRows) {
        std::string_view row;
        for (std::int32_t number = 1; (mostRows < 0 || number <= mostRows) && rows_.next(row); ++number) {
            if (rows_.cut() && extent_.code == 0) {
                extent_.code = ERR_STRING_CONVERSION;
                extent_.row = number;
            }
            if (take(row)) extent_.rows = number;
        }
        extent_.stopped = rows_.stopped();
        if (rows_.code() != 0) return {rows_.code()};
        return extent_;
    }

private:
    // Whether the row holds a text.
    bool take(std::string_view row) {
        bool any = false;
        TabCells cells(row, rows_.separator());
        std::vector<std::int32_t>& longest = extent_.longest;
        for (std::size_t n = 0; n < std::size_t{MaxTabColumns} && cells.more(); ++n) {
            const auto length = static_cast<std::int32_t>(cells.text(scratch_).size());
            if (length == 0) continue;
            any = true;
            if (longest.size() <= n) longest.resize(n + 1);
            longest[n] = std::max(longest[n], length);
        }
        return any;
    }

    TabReader& rows_;
    TabExtent extent_;
    std::string scratch_;
};

}  // namespace

TabExtent TabMeasure(const std::string& filename, const DataOptions& options) {
    const ErrorCellAside aside;
    try {
        TabReader rows;
        const std::int32_t code = rows.open(filename, options);
        return code != 0 ? TabExtent{code} : Measuring(rows).run(options.maxdatarows);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
