// SPDX-License-Identifier: Apache-2.0
//
// Data files of any form as tables that are held in files: those of foreign forms through a scratch file of
// table rows beside them.
#include "library/dbutil.h"

#include "kernel/ascii.h"
#include "kernel/data/datafile.h"
#include "kernel/filevalues.h"
#include "kernel/index_file.h"
#include "kernel/lists.h"
#include "kernel/tables.h"
#include "library/system.h"
#include "os/files.h"

#include <string_view>

MODULE("dbutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr int CommaCode = 44;

// The form of a file whose rows cannot be worked on where they stand; FormatUnknown for others.
DataFormat foreignFormat(const std::string& filename, const RecordDescriptor* options) {
    const DataFormat format = DataFormatOf(filename);
    switch (format) {
    case FormatText:
    case FormatXml: return format;
    case FormatComma:
    case FormatTab: return TabOptionsOf(options, format).separatorchar == CommaCode ? FormatComma : FormatTab;
    default: return FormatUnknown;
    }
}

// "orders.csv": "orders.~sv".
std::string scratchName(const std::string& filename) {
    constexpr std::size_t kept = 2;
    return filename.substr(0, filename.size() - kept - 1) + "~" + filename.substr(filename.size() - kept);
}

// Only such a file is ever deleted: any other may be somebody's only copy.
bool isScratch(std::string_view file) {
    const std::size_t dot = file.rfind('.');
    return dot != std::string_view::npos && file.substr(dot + 1).starts_with('~');
}

void deleteScratch(const std::string& scratch) {
    if (!isScratch(scratch)) return;
    os::files().remove(os::native(scratch));
    for (std::int32_t n = 1; n <= MaxIndexes; ++n) os::files().remove(os::native(IndexFileName(scratch, n)));
}

void openScratch(const std::string& filename, DataFormat format, const RecordDescriptor* options,
                 TableDescriptor* table) {
    const std::string scratch = scratchName(filename);
    deleteScratch(scratch);
    FileOpen(table, KindTable, scratch);
    if (!FileExists(table, KindTable)) return;
    const TabResult result = LOADFILE(filename, format, options, table, KindTable);
    if (result.code == 0 && !result.stopped) return;
    FileClose(table, KindTable);
    deleteScratch(scratch);
}

}  // namespace

void TABOPEN(const std::string& filename, const RecordDescriptor* options, TableDescriptor* table) {
    FRAME(TABOPEN);
    STAMP();
    const DataFormat format = foreignFormat(filename, options);
    const ListDescriptor* const rows = TableRows(table);
    const bool direct = format == FormatUnknown || rows == nullptr || !ListIsInFile(rows) ||
                        os::sizeOf(os::native(filename)) < 0;
    STAMP();
    if (!direct && FileExists(table, KindTable)) FileClose(table, KindTable);
    STAMP();
    if (direct)
        FileOpen(table, KindTable, filename);
    else
        openScratch(filename, format, options, table);
}

void TABCLOSE(const std::string& filename, const RecordDescriptor* options, bool save,
              TableDescriptor* table) {
    FRAME(TABCLOSE);
    STAMP();
    const std::string scratch = FileNameOf(table, KindTable);
    if (scratch.empty()) return;
    if (ascii::equal(scratch, filename)) return FileClose(table, KindTable);
    STAMP();
    TabResult result;
    if (save) result = SAVEFILE(filename, foreignFormat(filename, options), options, table, KindTable);
    if (result.code != 0 || result.stopped) return;
    FileClose(table, KindTable);
    deleteScratch(scratch);
}

}  // namespace tarn
