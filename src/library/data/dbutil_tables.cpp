// SPDX-License-Identifier: Apache-2.0
//
// Data files of any form as tables that are held in files: those of foreign forms through a scratch file of
// table rows beside them.
#include "library/data/dbutil.h"

#include "kernel/data/datafile.h"
#include "kernel/index/index_file.h"
#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/tables/tables_file_places.h"
#include "library/data/dbutil_footers_internal.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

MODULE("dbutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr int CommaCode = 44;

// The form in which a table is saved to a file of this name; FormatUnknown when its extension has none.
DataFormat savedFormat(const std::string& filename, const RecordDescriptor* options) {
    const DataFormat format = DataFormatOf(filename);
    if (!IsDelimited(format)) return format;
    return DataOptionsOf(options, format).separatorchar == CommaCode ? FormatComma : FormatTab;
}

// The rows of such a file cannot be worked on where they stand.
bool isForeign(DataFormat format) {
    return FactsOf(format).rows != RowForm::Records;
}

// "orders.csv": "orders.~sv".
std::string scratchName(const std::string& filename) {
    constexpr std::size_t kept = 2;
    return filename.substr(0, filename.size() - kept - 1) + "~" + filename.substr(filename.size() - kept);
}

// Only such a file is ever deleted: any other may be somebody's only copy.
bool isScratch(std::string_view file) {
    return paths::extension(file).starts_with(".~");
}

void deleteScratch(const std::string& scratch) {
    if (!isScratch(scratch)) return;
    os::files().remove(os::native(scratch));
    for (std::int32_t n = 1; n <= MaxIndexes; ++n) os::files().remove(os::native(IndexFileName(scratch, n)));
}

// Two names of one file.
bool isSameFile(const std::string& a, const std::string& b) {
    if (ascii::equal(a, b)) return true;
    const os::FileInfo one = os::infoOf(os::native(a)), other = os::infoOf(os::native(b));
    return one.exists && other.exists && one.device == other.device && one.inode == other.inode;
}

// ---- scratch files that are in use ----

struct OpenScratch {
    std::string path;
    const TableDescriptor* table = nullptr;
    bool whole = false;  // all rows of the file that it stands for were read into it
};
std::vector<OpenScratch>& openScratches() {
    static std::vector<OpenScratch> scratches;
    return scratches;
}

std::string fullPath(const std::string& name) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(os::native(name), error);
    return error ? name : path.lexically_normal().string();
}

// A table that has ended took its scratch file with it.
bool isInUse(const std::string& scratch, const TableDescriptor* by) {
    if (!os::infoOf(os::native(scratch)).exists) return false;
    const std::string path = fullPath(scratch);
    return std::any_of(openScratches().begin(), openScratches().end(),
                       [&](const OpenScratch& open) { return open.path == path && open.table != by; });
}

void noteScratch(const std::string& scratch, const TableDescriptor* table, bool isOpen) {
    std::vector<OpenScratch>& all = openScratches();
    const std::string path = fullPath(scratch);
    const auto isOld = [&](const OpenScratch& open) { return open.path == path || open.table == table; };
    all.erase(std::remove_if(all.begin(), all.end(), isOld), all.end());
    if (isOpen) all.push_back({path, table});
}

void noteWhole(const TableDescriptor* table) {
    for (OpenScratch& open : openScratches())
        if (open.table == table) open.whole = true;
}

// A file would be saved over with a part of its rows.
bool lacksRows(const std::string& scratch, const TableDescriptor* table) {
    const std::string path = fullPath(scratch);
    const std::vector<OpenScratch>& all = openScratches();
    return std::any_of(all.begin(), all.end(), [&](const OpenScratch& open) {
        return open.path == path && open.table == table && !open.whole;
    });
}

// ---- opening ----

// In its first block: text has none there, unless it is UTF-16 and says so.
bool holdsZeroByte(const std::string& filename) {
    constexpr std::size_t blockBytes = std::size_t{64} * 1024;
    os::Handle handle = -1;
    if (os::files().open(os::native(filename), os::OpenMode::Read, 0, handle) != os::FileError::None)
        return false;
    std::string bytes(blockBytes, ' ');
    std::size_t done = 0, got = 1;
    os::FileError error = os::FileError::None;
    while (error == os::FileError::None && done < blockBytes && got != 0) {
        error = os::files().read(handle, static_cast<std::int64_t>(done), bytes.data() + done,
                                 blockBytes - done, got);
        done += got;
    }
    os::files().close(handle);
    bytes.resize(done);
    const bool wideText = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
    return !wideText && bytes.find('\0') != std::string::npos;
}

bool isOfWholeRows(const std::string& filename, const TableDescriptor* table) {
    constexpr std::int64_t countBytes = 4;
    const std::int64_t rowBytes = FileRecordLength(table, KindTable);
    const std::int64_t size =
        os::sizeOf(os::native(filename)) - (TableRows(table)->maxlength == UNBOUNDED ? 0 : countBytes);
    return rowBytes > 0 && size > 0 && size % rowBytes == 0;
}

// Whether the first index is that of this file: it names the file, or another that is not beside it, as after
// both were renamed together. Such an index may have been left over by a file that is gone.
bool hasIndex(const std::string& filename, const TableDescriptor* table) {
    if (TableIndexCount(table) == 0) return false;
    const std::string path = os::native(filename), index = IndexFileName(path, 1);
    const std::string named = IndexTableName(index);
    if (named == paths::fileName(path).substr(0, MaxIndexTableName)) return true;
    return !named.empty() && !NamesOtherTable(index, path) && isOfWholeRows(filename, table);
}

// Whether a file with the extension of a foreign form is one of table rows. Taking rows for text would lose
// them all when the text is saved, so a byte 0 is enough, whatever the size and the indexes: opening the
// table tells what is wrong with them. Rows may hold no such byte; then the index tells.
bool isTableFile(const std::string& filename, const TableDescriptor* table) {
    return holdsZeroByte(filename) || hasIndex(filename, table);
}

// All rows, however many the options ask for: a table that lacks some would be saved without them.
bool loadRows(const std::string& filename, DataFormat format, const RecordDescriptor* record,
              TableDescriptor* table) {
    DataOptions options;
    std::int32_t code = ReadDataOptions(record, format, options);
    options.maxdatarows = -1;
    bool stopped = false;
    if (code == 0) {
        std::string message;
        const DataResult result = LoadValue(filename, format, options, table, KindTable, message);
        code = result.code;
        stopped = result.stopped;
    }
    SetError(code);
    return code == 0 && !stopped;
}

void openScratch(const std::string& filename, DataFormat format, const RecordDescriptor* options,
                 TableDescriptor* table) {
    const std::string scratch = scratchName(filename);
    deleteScratch(scratch);
    FileOpen(table, KindTable, scratch);
    if (!FileExists(table, KindTable)) return;
    noteScratch(scratch, table, true);
    if (loadRows(filename, format, options, table)) return noteWhole(table);
    FileClose(table, KindTable);
    if (FileExists(table, KindTable)) return;  // memory was too short even for that
    noteScratch(scratch, table, false);
    deleteScratch(scratch);
}

// ---- closing ----

// Footer lines that say more than the number of rows stay as they are. The rows go to a scratch file first,
// so that the file is whole at any time.
std::int32_t saveWithFooters(const std::string& filename, DataFormat format, DataOptions options,
                             const std::string& footers, const TableDescriptor* table) {
    const std::string side = scratchName(filename) + "~";
    options.numfooterrows = 0;
    const DataResult result = SaveValue(side, format, options, 0, table, KindTable);
    if (result.code != 0 || result.stopped) return result.code;
    std::string bytes;
    const os::FileError error = os::readFile(os::native(side), bytes);
    os::files().remove(os::native(side));
    if (error != os::FileError::None) return ERR_FILE_READ;
    return FileWriteCode(os::saveFile(os::native(filename), bytes + footers).error);
}

bool saveTable(const std::string& filename, DataFormat format, const RecordDescriptor* record,
               const TableDescriptor* table) {
    DataOptions options;
    const bool delimited = IsDelimited(format);
    std::string footers;
    if (delimited && ReadDataOptions(record, format, options) == 0 && options.numfooterrows > 0 &&
        os::infoOf(os::native(filename)).exists && !ReadFooters(filename, options.numfooterrows, footers)) {
        SetError(ERR_FILE_READ);
        return false;
    }
    if (footers.empty()) {
        const DataResult result = SAVEFILE(filename, format, record, table, KindTable);
        return result.code == 0 && !result.stopped;
    }
    const std::int32_t code = saveWithFooters(filename, format, options, footers, table);
    SetError(code);
    return code == 0;
}

}  // namespace

void TABOPEN(const std::string& filename, const RecordDescriptor* options, TableDescriptor* table) {
    FRAME(TABOPEN);
    STAMP();
    const DataFormat format = savedFormat(filename, options);
    const ListDescriptor* const rows = TableRows(table);
    const bool direct = !isForeign(format) || rows == nullptr || !ListIsInFile(rows) ||
                        os::sizeOf(os::native(filename)) < 0 || isTableFile(filename, table);
    STAMP();
    if (!direct && isInUse(scratchName(filename), table)) return SetError(ERR_FILE_WRITE);
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
    if (isSameFile(scratch, filename)) return FileClose(table, KindTable);
    STAMP();
    if (save && lacksRows(scratch, table)) return SetError(ERR_FILE_WRITE);
    if (save && !saveTable(filename, savedFormat(filename, options), options, table)) return;
    FileClose(table, KindTable);
    noteScratch(scratch, table, false);
    deleteScratch(scratch);
}

}  // namespace tarn
