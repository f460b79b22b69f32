// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/tables_file_hold.h"

#include "kernel/index/index_file.h"
#include "kernel/index/index_filehold.h"
#include "kernel/lists/rowfile_access.h"
#include "kernel/run/errors.h"
#include "kernel/tables/table_access.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

namespace {

// Told by the name of its file, which stays at its address.
struct HeldTable {
    explicit HeldTable(TableDescriptor& t)
        : name(HeaderOf(t).rows.data), rows(HeaderOf(t).rows, RowBatch::Use::Hold) {
        const std::string file(RowFileName(HeaderOf(t).rows));
        for (std::int32_t n = 1; n <= IndexesOf(HeaderOf(t)); ++n)
            indexes.push_back(std::make_unique<HeldIndex>(IndexFileName(file, n)));
    }
    bool close() {
        std::int32_t first = 0;
        for (const auto& index : indexes) {
            const std::int32_t code = index->close();
            if (first == 0) first = code;
        }
        return rows.finish() && (first == 0 || Refuse(first));
    }
    Offset name;
    RowBatch rows;
    std::vector<std::unique_ptr<HeldIndex>> indexes;
};

using HeldTables = std::vector<std::unique_ptr<HeldTable>>;

// Never destroyed, as tables that end with the program are released then.
HeldTables& heldTables() {
    static HeldTables& tables = *new HeldTables;
    return tables;
}

HeldTables::iterator heldAt(const TableDescriptor& t) {
    return std::find_if(heldTables().begin(), heldTables().end(),
                        [&](const auto& held) { return held->name == HeaderOf(t).rows.data; });
}

}  // namespace

bool HoldTableFiles(TableDescriptor& t) {
    if (!IsHeldInFile(HeaderOf(t).rows) || heldAt(t) != heldTables().end()) return true;
    return WithMemory([&] { return heldTables().push_back(std::make_unique<HeldTable>(t)), true; });
}

bool ReleaseTableFiles(const TableDescriptor& t) {
    const auto at = heldAt(t);
    if (at == heldTables().end()) return true;
    const std::unique_ptr<HeldTable> held = std::move(*at);
    heldTables().erase(at);
    return held->close();
}

}  // namespace tarn
