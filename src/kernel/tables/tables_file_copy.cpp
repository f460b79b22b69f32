// SPDX-License-Identifier: Apache-2.0
//
// Copies of tables of which one stands in a file: made beside the target, which they replace by renaming.
#include "kernel/lists/rowfile.h"
#include "kernel/run/errors.h"
#include "kernel/tables/tables_file_fill.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/tables/tables_ops_internal.h"

namespace tarn {

namespace {

bool fillNew(const TableDescriptor& t, const ListDescriptor& rows, std::int32_t index,
             const std::string& path) {
    const TableHeader& header = HeaderOf(t);
    const std::string file(RowFileName(header.rows));
    if (!CreateIndexFile(path, file, IndexKeyText(t, index))) return false;
    IndexFill fill(header, index);
    ListReader reader(rows);
    if (!fill.open(path)) return false;
    const Filled result = fill.run(reader, 1, rows.count, nullptr);
    if (!fill.close()) return false;
    return result == Filled::Whole || (result == Filled::Duplicate && Refuse(ERR_UNIQUE_INDEX));
}

bool copyRows(const ListDescriptor& from, ListDescriptor& to) {
    ListReader reader(from);
    for (std::int32_t i = 0; i < from.count; ++i) {
        const void* row = reader.at(i);
        if (row == nullptr || !AppendRow(to, row)) return false;
    }
    return true;
}

// New indexes that could not be moved into their places are made there anew.
bool installIndexes(IndexExchange& exchange, TableDescriptor& t) {
    const TableHeader& header = HeaderOf(t);
    const std::string file(RowFileName(header.rows));
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (exchange.install(i)) continue;
        if (!fillNew(t, header.rows, i, IndexFileName(file, i + 1))) return false;
    }
    return true;
}

bool replaceRows(const TableDescriptor& from, TableDescriptor& to, IndexExchange& exchange) {
    TableHeader& header = HeaderOf(to);
    const ListDescriptor& source = HeaderOf(from).rows;
    RowsBeside beside(header.rows);
    if (!beside.make() || !copyRows(source, beside.rows())) return false;
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (!fillNew(to, source, i, exchange.newName(i))) return false;
    }
    if (!EndGuard(to) || !exchange.setAside()) return false;
    if (beside.takePlace()) return true;
    exchange.putBack();
    return false;
}

}  // namespace

// While rows are new and indexes are not, the files of the indexes are away: opening then tells (656).
bool CopyIntoFileTable(const TableDescriptor& from, TableDescriptor& to) {
    TableHeader& header = HeaderOf(to);
    const ListDescriptor& source = HeaderOf(from).rows;
    if (IsHeldInFile(source) && IsSameFile(source, header.rows)) {
        const bool taken = TakeRowCount(source, header.rows);
        to.count = header.rows.count;
        return taken;
    }
    if (IsHeldInFile(source) && !AcceptRows(source)) return false;
    IndexExchange exchange(to);
    const bool replaced = replaceRows(from, to, exchange);
    const bool good = replaced && installIndexes(exchange, to);
    exchange.drop();
    exchange.dropNew();
    to.count = header.rows.count;
    return good;
}

}  // namespace tarn
