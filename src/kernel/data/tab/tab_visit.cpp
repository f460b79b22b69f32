// SPDX-License-Identifier: Apache-2.0
//
// The cells of a file one by one, for those who look at all of them and keep none.
#include "kernel/data/tab/tab_rows.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"

#include <new>

namespace tarn {

namespace {

DataResult visitCells(const std::string& filename, const DataOptions& options, const TabVisitor& visit) {
    DataResult result;
    TabReader rows;
    std::string scratch;
    std::string_view row;
    result.code = rows.open(filename, options);
    while (result.code == 0 && (options.maxdatarows < 0 || result.rows < options.maxdatarows) &&
           rows.next(row)) {
        ++result.rows;
        TabCells cells(row, rows.separator());
        for (std::int32_t column = 1; cells.more() && column <= MaxTabColumns; ++column) {
            const std::string_view cell = cells.next();
            visit(result.rows, column,
                  cells.quoted() ? UnquotedText(cell, scratch)
                                 : cell.substr(0, cell.find_last_not_of(' ') + 1));
        }
    }
    if (result.code == 0) result.code = rows.code();
    result.stopped = rows.stopped();
    return result;
}

}  // namespace

DataResult TabVisitCells(const std::string& filename, const DataOptions& options, const TabVisitor& visit) {
    const ErrorCellAside aside;
    try {
        return visitCells(filename, options, visit);
    } catch (const std::bad_alloc&) {
        return {ERR_OUT_OF_MEMORY};
    }
}

}  // namespace tarn
