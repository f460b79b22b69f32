// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/sources/load.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/progress.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "kernel/values/strings.h"
#include "tarn_data/base/files.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace tarn::datatool {

Problem makeRows(std::string_view columns, bool exact, Rows& rows) {
    const std::string fields = exact ? std::string(columns) : withoutLengths(columns);
    RecordValue row;
    if (makeRow(fields, row)) {
        rows.table = TableValue();
        TableInit(rows.table.get(), UNBOUNDED, row.get(), {}, fields, false);
    }
    const std::int32_t code = ErrorCell();
    ClearError();
    if (code == 0 && rows.table.get()->tag != 0) return {};
    return {"The columns cannot be made: " + ErrorMessage(code != 0 ? code : std::int32_t{ERR_RECORD_TYPE}) +
                ".",
            "--text takes every column as text."};
}

// A field takes its value, and a block for its text that is rounded up.
bool fitsMemory(const Source& source, std::string_view columns) {
    constexpr std::int64_t mostBytes = std::int64_t{16} << 20, fieldBytes = 48;
    const std::int64_t rows = source.rowsSeen, inFile = os::sizeOf(os::native(source.file)),
                       fields = std::count(columns.begin(), columns.end(), '\n');
    if (rows < 0 || rows > MaxBlock / KindSize[KindRecord]) return false;
    return rows * (KindSize[KindRecord] + fields * fieldBytes) + inFile <= mostBytes;
}

Problem makeFileRows(std::string_view columns, Rows& rows) {
    RowType type;
    type.columns = columns;
    rows.folder = std::make_unique<WorkFolder>();
    const std::string name = rows.folder->path() + "/rows.~bin";
    std::string why(os::describe(rows.folder->error()));
    if (why.empty() && makeRow(columns, type.row) && makeFileTable(type, {}, rows.table))
        FileOpen(rows.table.get(), KindTable, name);
    if (why.empty() && ErrorCell() != 0) why = ErrorMessage(ErrorCell()) + ".";
    ClearError();
    if (why.empty()) return {};
    return {"The rows cannot be kept in '" + name + "': " + why,
            "There are more than memory holds; choose a folder with more room with TMPDIR."};
}

namespace {

std::string rowOf(const Source& source, std::int32_t row) {
    return fileWord(source.file) + "row " + std::to_string(row) + " ";
}
std::string placeOf(const Source& source, const DataResult& result) {
    if (result.line > 0) return fileWord(source.file) + "line " + std::to_string(result.line) + " ";
    return result.row > 0 ? rowOf(source, result.row) : fileWord(source.file);
}

}  // namespace

Problem loadProblem(const Source& source, const DataResult& result, const std::string& message) {
    const std::string what = placeOf(source, result) +
                             "cannot be read: " + (message.empty() ? ErrorMessage(result.code) : message) +
                             ".";
    switch (result.code) {
    case ERR_BLOCK_TOO_LARGE:
    case ERR_OUT_OF_MEMORY:
        return {what,
                "The file has more rows than a value in memory holds; split it, or take the first ones with "
                "--max-rows."};
    case ERR_STRING_CONVERSION:
        return {what, "The row is longer than " + std::to_string(MaxTabLine) +
                          " characters, or a text in it longer than its column is declared."};
    case ERR_FILE_READ:
    case ERR_FILE_VANISHED: return {what, "Look whether you may read it and whether it is still there."};
    default: return {what, "Correct the file, or take every column as text with --text."};
    }
}

Problem loadRows(const Source& source, std::string_view columns, Rows& rows) {
    if (source.format == FormatBinary) return loadTable(source, columns, rows);
    Problem problem =
        fitsMemory(source, columns) ? makeRows(columns, true, rows) : makeFileRows(columns, rows);
    if (problem.any()) return problem;
    return loadXbase(source, rows);
}

}  // namespace tarn::datatool
