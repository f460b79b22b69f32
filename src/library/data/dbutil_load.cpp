// SPDX-License-Identifier: Apache-2.0
//
// A data file as a table in memory, for the windows that show it.
#include "library/data/dbutil_windows.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_order.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/tables/tables.h"
#include "library/data/dbutil_grid.h"
#include "library/data/dbutil_remarks_internal.h"
#include "library/system/longwork.h"
#include "library/system/system.h"

#include <algorithm>
#include <vector>

MODULE("dbutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr int LongestColumnName = 40;
// The records of a table's rows stand in one block.
constexpr int MostRows = MaxBlock / KindSize[KindRecord];

// A table of the columns, which `table` becomes. It has no index: a file may hold rows that are alike, and
// its order means something.
void buildTable(const std::string& columns, TableDescriptor* table) {
    std::string lines = columns;
    TypeInfoChangeIndent(2, lines, MaxTypeInfo);
    const String text("T : table\n\tT : record\n" + lines + "\tend record\nend table\n");
    TableValue indexed;
    TypeInfoToTable(text.get(), indexed.get());
    const ListDescriptor* const rows = TableRows(indexed.get());
    if (rows == nullptr) return;
    TableInit(table, UNBOUNDED, reinterpret_cast<const RecordDescriptor*>(At(rows->prototype)), KeyMaps{},
              StringView(TableTypeInfo(indexed.get())), false);
}

std::string failureText(std::int32_t code) {
    return std::string(ErrorText(code)) + " (error " + STR(code) + ").";
}

bool isWholeFailure(std::int32_t code) {
    const bool file = code >= ERR_FILE_READ && code <= ERR_COMPONENT_UNREPRESENTABLE;
    return file || code == ERR_XML_DATA || code == ERR_OUT_OF_MEMORY || code == ERR_BLOCK_TOO_LARGE;
}

// What went wrong, and where.
std::string failureText(const DataResult& result, const std::string& message) {
    const std::string text = message.empty() ? failureText(result.code) : message;
    if (result.line > 0) return "Line " + STR(result.line) + ": " + text;
    return result.row < 1 ? text : "Row " + STR(result.row) + ": " + text;
}

void addRemark(DataTable& data, const std::string& remark) {
    if (!data.remark.empty()) data.remark += '\n';
    data.remark += remark;
}

// Of a file that has more rows than a table can hold, the first ones are read where that can be asked for.
DataResult load(const std::string& filename, DataOptions options, DataFormat format, XmlRows::Form form,
                DataTable& data, std::string& message, bool& firstOnly) {
    DataResult result = LoadRows(filename, format, options, form, data.table.get(), message);
    if (result.code != ERR_BLOCK_TOO_LARGE || FactsOf(format).rows == RowForm::Marked) return result;
    options.maxdatarows = MostRows;
    result = LoadValue(filename, format, options, data.table.get(), KindTable, message);
    firstOnly = true;
    addRemark(data, "Only the first " + STR(MostRows) + " rows are shown, a table in memory holds no more.");
    return result;
}

void readRows(const std::string& filename, const DataOptions& options, DataFormat format, XmlRows::Form form,
              DataTable& data) {
    LongWork work("Reading '" + FILEGETFNAME(filename) + "'");
    std::string message;
    bool firstOnly = false;
    const DataResult result = load(filename, options, format, form, data, message, firstOnly);
    data.step = DataTable::Step::Done;
    if (work.stopped()) {
        data.step = DataTable::Step::Stopped;
    } else if (isWholeFailure(result.code)) {
        data.step = DataTable::Step::Rows;
        data.message = failureText(result, message);
    } else if (result.code != 0 && !firstOnly) {
        addRemark(data,
                  failureText(result, message) + "\nValues that could not be read are shown as 0, or cut.");
    }
}

void lookForRemarks(const std::string& filename, DataFormat format, DataTable& data) {
    const int rows = TableCount(data.table.get());
    if (format == FormatXbase && rows == MostRows) return;  // there are more
    LongWork work("Looking through '" + FILEGETFNAME(filename) + "'");
    for (const std::string& remark : detail::remarksOnFile(filename, format, rows)) addRemark(data, remark);
}

// Rows of XML whose fields do not stand in the places of the columns would be shown under wrong names; those
// that only end early are shown.
void checkOrder(const std::string& filename, const DataFileInfo& info, DataTable& data) {
    LongWork work("Looking through '" + FILEGETFNAME(filename) + "'");
    std::vector<std::string> names;
    const auto columns = std::count(info.typeText.begin(), info.typeText.end(), '\n');
    for (std::int32_t n = 1; n <= columns; ++n) names.push_back(TypeInfoName(info.typeText, n));
    const XmlOrder order = XmlCheckOrder(filename, names, info.xmlRows);
    if (order.stopped) {
        data.step = DataTable::Step::Stopped;
    } else if (!order.message.empty()) {
        data.step = DataTable::Step::Rows;
        data.message = order.message + "\n" + order.advice;
    } else if (!order.missing.empty()) {
        addRemark(data, order.missing + "\nFields that are missing are shown as 0, or empty.");
    }
}

// Which row it is whose cells are of other types than those above it: the last that was seen.
std::string misfitHint(const DataFileInfo& info) {
    const bool delimited = info.rowsSeen > 0 && info.message.starts_with("The type of element '");
    return delimited
               ? "\nIt changed in data row " + STR(info.rowsSeen) +
                     ". Look whether that cell is right, and whether the header rows and the separator are."
               : std::string();
}

// The columns; a message in `data` if there are none. Of delimited text the rows tell them that can be shown: a large
// file need not be read to its end.
DataFileInfo findColumns(const std::string& filename, const DataOptions* options, DataTable& data) {
    LongWork work("Finding the columns of '" + FILEGETFNAME(filename) + "'");
    DataOptions shown = options != nullptr ? *options : DataOptions();
    if (shown.maxdatarows < 0) shown.maxdatarows = MostRows;
    DataFileInfo info = GetDataFileInfo(filename, options != nullptr ? &shown : nullptr);
    data.step = DataTable::Step::Done;
    if (info.stopped || work.stopped()) {
        data.step = DataTable::Step::Stopped;
    } else if (!info.message.empty()) {
        data.step = DataTable::Step::Columns;
        data.message = info.message + misfitHint(info);
    }
    return info;
}

}  // namespace

DataTable LOADDATATABLE(const std::string& filename, const DataOptions* options, DataFormat format) {
    FRAME(LOADDATATABLE);
    DataTable data;
    DataOptions shown = options != nullptr ? *options : DataOptions{};
    shown.skipMark = true;
    STAMP();
    const DataFileInfo info = findColumns(filename, options != nullptr ? &shown : nullptr, data);
    if (data.step == DataTable::Step::Done && format == FormatXml) checkOrder(filename, info, data);
    if (data.step != DataTable::Step::Done) return data;
    const std::string columns = TYPEINFOFIXIDENTIFIERS(info.typeText, LongestColumnName);
    STAMP();
    buildTable(columns, data.table.get());
    const std::int32_t code = TakeError();
    if (code != 0) {
        data.step = DataTable::Step::Columns;
        data.message = failureText(code);
        return data;
    }
    data.columns = static_cast<int>(TABLEFIELDNAMES(data.table.get()).size());
    if (info.columnsSeen > data.columns)
        addRemark(data, "Only the first " + STR(data.columns) + " of " + STR(info.columnsSeen) +
                            " columns are shown.");
    readRows(filename, shown, format, info.xmlRows.form, data);
    if (data.step == DataTable::Step::Done) lookForRemarks(filename, format, data);
    return data;
}

}  // namespace tarn
