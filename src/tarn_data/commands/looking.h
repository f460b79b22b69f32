// SPDX-License-Identifier: Apache-2.0
//
// What info and convert find in the cells of a source, and tell of it.
#pragma once

#include "tarn_data/sources/columns.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::datatool {

// Names of the columns as they stand in the source, as far as it tells them without a look at its rows.
std::vector<std::string> namesInSource(const Source& source);
// Reads all rows, and lets columns be text that the arguments or the source say are.
Problem lookAtSource(const Arguments& arguments, const Source& source, CellSource& cells, RowsFacts& facts);
// Names that the language accepts, each once.
std::vector<std::string> namesOfLanguage(const std::vector<std::string>& headings);
Problem tooManyColumns(const Source& source, std::size_t columns);

void noteTextColumns(const Source& source, const RowsFacts& facts);
void noteRenamed(const std::vector<std::string>& from, const std::vector<std::string>& to);
// Rows of other widths than the first line, and stray quotes.
void noteOddRows(const Source& source, const RowsFacts& facts);

}  // namespace tarn::datatool
