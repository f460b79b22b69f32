// SPDX-License-Identifier: Apache-2.0
//
// The windows of data files: the settings of a delimited text file with a preview, and the rows of a table.
// Both are windows of the application's resources: TabbedFileSetupDlg with the controls datasource,
// numheaderrows, numfooterrows, separatorchar, maxdatarows, actualdatarows, btnpreview, iconlist1, idok and
// idcancel, and TableViewDlg with lblrows, iconlist1, idok and idcancel.
#pragma once

#include "kernel/data/datafile.h"
#include "kernel/values/owned.h"
#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

inline const Object TabbedFileSetupDlg("TabbedFileSetupDlg");
inline const Object TableViewDlg("TableViewDlg");

// Empty if the text of `control` is an integer from `low` to `high`; otherwise what to tell the user, in
// which `name` names the control.
std::string DLGCHECKINTFIELD(const Object& control, std::string_view name, int low, int high);

// ---- a data file as a table ----

struct DataTable {
    enum class Step { Done, Stopped, Columns, Rows } step = Step::Done;  // what it came to, or failed at
    std::string message;                                                 // of a failure
    std::string remark;  // what was read, though not all of it as it stands; else empty
    TableValue table;    // without an index, so the rows are those of the file in their order
    int columns = 0;
};
// Finds the columns of a file, whose names are made identifiers, and reads its rows, which the user may stop.
// `options` for delimited text, null for any other; `format` is the code to read it by.
DataTable LOADDATATABLE(const std::string& filename, const DataOptions* options, DataFormat format);

// ---- settings of delimited text ----

// Shows the settings that the file's first lines suggest, for the user to change. On OK `options` becomes the
// options record, and the result is the code of the format: FormatComma for a comma as separator, FormatTab
// for anything else. FormatUnknown when the user cancelled. `owner` is the window that asks.
DataFormat TABBEDFILESETUPDIALOG(const Object& owner, const std::string& filename, RecordDescriptor* options);
bool TABBEDFILESETUPDLG(const Object& window, int event, const Object& control, int parameter);
// Shows the columns and rows that the settings give. Tells what is wrong in a box.
void TABBEDFILESETUPDLG_PREVIEW(const Object& window);

// ---- rows of a table ----

struct TableViewChoice {
    bool selected = false;
    int rowNumber = 0;   // as the rows are shown, from 1
    std::string result;  // the row, its cells separated by tabs
};
// Shows the rows. `columnTitle` is the title line (empty: the names of the fields, joined by tabs).
// `columnWidths` are the least widths of the columns in characters, separated by blanks, tabs or commas;
// columns are at least as wide as their content. The user picks a row by OK or a double click; cancelling
// gives none. With a `caption` the window only shows, and nothing can be picked.
TableViewChoice TABLEVIEWDIALOG(const Object& owner, const std::string& columnTitle,
                                std::string_view columnWidths, const TableDescriptor* table,
                                const std::string& caption = {});
bool TABLEVIEWDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
