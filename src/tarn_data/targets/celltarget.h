// SPDX-License-Identifier: Apache-2.0
//
// Files that are written row by row, and take the place of the target when all of them are there. What a form
// cannot hold is a problem that names the row and the column, or, with --replace, becomes what it can hold.
// What a form holds in another shape is counted, and noted at the end.
//
// Cost: linear in the cells; a row and a block of the file in memory.
#pragma once

#include "tarn_data/sources/columns.h"
#include "tarn_data/targets/save_internal.h"

#include <memory>
#include <string>
#include <vector>

namespace tarn::datatool {

struct TargetColumns {
    std::vector<std::string> headings;  // as they stand in the source
    std::vector<std::string> names;     // that the language accepts
    bool named = false;                 // the source tells the headings
    RowsFacts facts;                    // where the form needs them
};

class CellTarget {
public:
    CellTarget() = default;
    virtual ~CellTarget() = default;
    CellTarget(const CellTarget&) = delete;
    CellTarget& operator=(const CellTarget&) = delete;

    virtual Problem begin() = 0;
    // Rows are numbered from 1.
    virtual Problem put(const CellRow& row, std::int64_t number) = 0;
    virtual Problem finish(std::int64_t rows) = 0;
};

// What is written for a source. Both outlive it.
std::unique_ptr<CellTarget> cellTargetOf(const Source& source, const Target& target,
                                         const TargetColumns& columns);
std::unique_ptr<CellTarget> textTarget(const Source& source, const Target& target,
                                       const TargetColumns& columns);
std::unique_ptr<CellTarget> xmlTarget(const Source& source, const Target& target,
                                      const TargetColumns& columns);
std::unique_ptr<CellTarget> xbaseTarget(const Target& target, const TargetColumns& columns);
std::unique_ptr<CellTarget> tableTarget(const Target& target, const TargetColumns& columns);

}  // namespace tarn::datatool
