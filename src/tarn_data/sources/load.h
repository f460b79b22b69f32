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
// What a reader of XML has found wrong, with its place, and what can be done about it.
Problem xmlProblem(const std::string& path, const std::string& shownFile, const ErrorRecord& error);
inline constexpr const char* AdviceForXmlNames = "Names of elements and attributes have the letters A to Z, "
                                                 "digits, '_', '-', '.' and ':' only: give those with "
                                                 "other letters such names first.";
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
// Why a row of a table file, from 1, could not be read: the field whose bytes are no value of it, or the code.
Problem badRow(const Source& source, std::int32_t number, std::int32_t code);
// What the characters of a field mean, by the word that declares it.
enum class Characters { None, One, Text, Number, Logical, Date };
// For each line of a declaration.
std::vector<Characters> characterColumns(std::string_view columns);
// The text that a value is read back from, as cells have it: characters of numbers, dates and truth values as those of
// an Xbase file. `scratch` holds it where the value itself does not.
std::string_view valueText(const void* field, Kind kind, Characters characters, std::string& scratch);
Problem loadXbase(const Source& source, Rows& rows);
Problem loadTable(const Source& source, std::string_view columns, Rows& rows);

}  // namespace tarn::datatool
