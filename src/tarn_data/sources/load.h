// SPDX-License-Identifier: Apache-2.0
//
// What the modules share that look at a source and load its rows.
#pragma once

#include "tarn_data/commands/commands.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

Problem identifyXbase(const Arguments& arguments, Source& source);
Problem identifyTable(const Arguments& arguments, Source& source);
// The columns whose type only the cells tell have this word for one.
inline constexpr std::string_view UnknownType = "undeclared";
Problem identifyXml(const Arguments& arguments, Source& source);
// Columns of text without an upper length; all others as they are.
std::string withoutLengths(std::string_view columns);
// An empty table without an index, so that every row is taken as it comes. `exact`: strings have the lengths
// that are given.
Problem makeRows(std::string_view columns, bool exact, Rows& rows);
// The same in a file of a folder for the work, where all strings need a length.
Problem makeFileRows(std::string_view columns, Rows& rows);
// Whether the rows of a source stand in memory on their way: as many as a value has, and in few enough bytes.
bool fitsMemory(const Source& source, std::string_view columns);
Problem loadProblem(const Source& source, const DataResult& result, const std::string& message);
// The rows of a table file where they stand.
Problem openTableRows(const Source& source, Rows& rows);
// Which columns of a declaration are single characters.
std::vector<bool> characterColumns(std::string_view columns);
Problem loadXbase(const Source& source, Rows& rows);
Problem loadTable(const Source& source, std::string_view columns, Rows& rows);

}  // namespace tarn::datatool
