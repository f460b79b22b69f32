// SPDX-License-Identifier: Apache-2.0
//
// The columns of an XML file: every name that a cell of a row has, in the order in which they stand there. Rows
// need not have all of them, nor in one order; what is missing is an empty cell. A row that has two cells of one
// name fits no table, and a file with more than 1000 names is none of rows.
//
// Cost: one pass over the file to find the columns, one for each reading of the rows; in memory a row.
#pragma once

#include "tarn_data/sources/cells.h"
#include "tarn_data/sources/xmlrows.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

struct XmlColumns {
    std::vector<std::string> names;
    std::vector<bool> texts;  // that are declared as text in the file
    std::int64_t rows = 0;
    // Data that is in no row, and so in no column; a line for each kind.
    std::vector<std::string> leftOut;
};
// Which elements are the rows is told by `source.xmlRows`.
Problem findXmlColumns(const Source& source, XmlColumns& columns);

// The rows of a source whose columns were found, with their names in `source.headings`.
std::unique_ptr<CellSource> xmlCells(const Source& source);

}  // namespace tarn::datatool
