// SPDX-License-Identifier: Apache-2.0
//
// List controls as grids: the columns of a row are separated by tabs, and the control's caption is its title
// line, the names of the columns in the same form. Rows count from 1. Names compare without regard to case
// and to blanks around them.
//
// Cost: a column is found by walking the title line, a cell by walking its row.
#pragma once

#include "kernel/tables/tables.h"
#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// The names of a table's fields, one for each: those of its description, "FIELD" and the number where that
// has none.
std::vector<std::string> TABLEFIELDNAMES(const TableDescriptor* table);

// Replaces the rows of a list control by those of a table: in the order of its first index, or of the rows
// when it has none. Fields before `startColumn` (from 1) are left out, with `hideFirst` the first one too.
// `titles` becomes the title line; when it is empty, the names of the fields that are shown. Control
// characters in a cell are shown as blanks. Events are handled meanwhile; false when the user stopped it: the
// rows until then are there.
bool FILLLISTBOX(const Object& control, bool hideFirst, int startColumn, std::string_view titles,
                 const TableDescriptor* table);

// The columns of a title line, in order; a tab at its beginning and at its end is dropped.
std::vector<std::string> GETCOLUMNPOSITIONS(const Object& control);
int GETCOLUMNPOSITION(const Object& control, std::string_view column);  // from 1; 0: there is none

// Empty for a row that is -1 or not there, for an empty name and for a column that is not there.
std::string GETLISTCOLUMNVALUE(const Object& control, int row, std::string_view column);
// Of every row, in order; none for an empty name and for a column that is not there.
std::vector<std::string> GETLISTCOLUMNVALUES(const Object& control, std::string_view column);
// Changes one cell, and adds cells to a row that is too short. Nothing where the above is empty.
void SETLISTCOLUMNVALUE(const Object& control, int row, std::string_view column, std::string_view value);

}  // namespace tarn
