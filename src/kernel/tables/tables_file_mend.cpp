// SPDX-License-Identifier: Apache-2.0
//
// Mending the files of a list or table after a death: a noted row, a torn tail, the count, then the indexes.
#include "kernel/tables/tables_file_mend.h"

#include "kernel/lists/rowfile_access.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_fill.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/tables/tables_file_note.h"
#include "kernel/tables/tables_file_places.h"
#include "kernel/tables/tables_ops_internal.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/owned.h"
#include "kernel/values/string_text.h"

#include <algorithm>
#include <limits>

namespace tarn {

namespace {

// ---- rows ----

// The count in the header; below 0 for none that a list can have.
bool readStoredCount(const std::string& path, RowFormat format, std::int64_t& count) {
    StoredCount stored = EncodeCount(format, 0);
    os::Handle handle = -1;
    os::FileError error = os::files().open(path, os::OpenMode::Read, 0, handle);
    if (error != os::FileError::None) return RefuseRead(error);
    std::size_t got = 0;
    error = os::files().read(handle, stored.offset, stored.bytes, sizeof stored.bytes, got);
    os::files().close(handle);
    count = got == sizeof stored.bytes ? DecodeCount(format, stored.bytes) : -1;
    return error == os::FileError::None || RefuseRead(error);
}

// The last row that is not empty, of those up to `last`.
bool lastUsedRow(RowFile& file, std::int32_t last, std::int32_t& count) {
    for (count = last; count > 0; --count) {
        std::string row;
        if (!file.read(count, 1, row)) return false;
        if (row.find_first_not_of('\0') != std::string::npos) return true;
    }
    return true;
}

// One file of rows while it is mended. The list has its name.
class RowMending {
public:
    RowMending(ListDescriptor& l, std::int32_t xbaseRows, MendedRows& result)
        : list_(l), path_(RowFileName(l)), xbaseRows_(xbaseRows), result_(result) {}
    bool run() {
        return file_.open(list_, os::OpenMode::ReadWrite) && look() && settleCount() && writeNote() &&
               cutAndCount();
    }

private:
    bool look();
    bool settleCount();
    bool writeNote();
    bool cutAndCount();
    bool endOfFile(std::int64_t& end);
    [[nodiscard]] std::int64_t header() const { return file_.offsetOf(1); }
    [[nodiscard]] bool isXbase() const { return file_.format() == RowsXbase; }

    ListDescriptor& list_;
    std::string path_;
    std::int32_t xbaseRows_;
    MendedRows& result_;
    RowFile file_;
    RowNote note_;
    std::int64_t size_ = 0, end_ = 0;  // of the file; of the rows, with what is torn
    std::int32_t rowsInFile_ = 0, count_ = 0, rowsTaken_ = 0;
};

bool RowMending::look() {
    const os::FileError error = file_.size(size_);
    if (error != os::FileError::None) return RefuseRead(error);
    if (!FindRowNote(path_, header(), file_.rowBytes(), note_)) return false;
    end_ = std::max(note_.offset >= 0 ? note_.offset : size_, header());
    const std::int64_t rows = (end_ - header()) / file_.rowBytes();
    if (rows > std::numeric_limits<std::int32_t>::max()) return Refuse(ERR_FILE_SIZE);
    rowsInFile_ = static_cast<std::int32_t>(rows);
    if (isXbase() && xbaseRows_ >= 0) rowsInFile_ = std::min(rowsInFile_, xbaseRows_);
    return true;
}

// Rows that a smaller capacity has no room for stay.
bool RowMending::settleCount() {
    std::int64_t stored = -1;
    count_ = rowsInFile_;
    if (!StoresCount(file_.format())) return true;
    if (!readStoredCount(path_, file_.format(), stored)) return false;
    const bool good = stored >= 0 && stored <= rowsInFile_;
    if (good && xbaseRows_ >= 0 && isXbase())
        rowsTaken_ = rowsInFile_ - static_cast<std::int32_t>(stored);
    else if (good)
        count_ = static_cast<std::int32_t>(stored);
    if (!good && file_.format() == RowsFixed && !lastUsedRow(file_, rowsInFile_, count_)) return false;
    if (IsFixedList(list_) && count_ > list_.maxlength) return Refuse(ERR_FIXED_TABLE);
    result_.countSet = !good;
    return true;
}

// The row is on the disk before the note is cut off.
bool RowMending::writeNote() {
    if (note_.position < 1 || note_.position > count_) return true;
    os::FileError error = file_.write(note_.position, note_.row);
    if (error == os::FileError::None) error = file_.sync();
    result_.rowWritten = note_.position;
    return error == os::FileError::None || RefuseWrite(error);
}

// Behind the last row; the mark of the end of an Xbase file stays.
bool RowMending::endOfFile(std::int64_t& end) {
    end = file_.offsetOf(std::int64_t{rowsInFile_} + 1);
    if (!isXbase() || size_ <= end) return true;
    bool marked = false;
    const os::FileError error = file_.readEndMark(end + 1, marked);
    if (marked) ++end;
    return error == os::FileError::None || RefuseRead(error);
}

bool RowMending::cutAndCount() {
    std::int64_t whole = 0;
    if (!endOfFile(whole)) return false;
    os::FileError error = os::FileError::None;
    if (result_.countSet || rowsTaken_ > 0 || size_ < header()) error = file_.writeCount(count_);
    if (error == os::FileError::None) result_.rowsTaken = rowsTaken_;
    if (error == os::FileError::None && size_ > whole) {
        error = file_.cutTo(whole);
        if (error == os::FileError::None) result_.bytesCut = size_ - whole;
    }
    if (error == os::FileError::None) error = file_.sync();
    const os::FileError closed = file_.close();
    if (error == os::FileError::None) error = closed;
    result_.rows = count_;
    return error == os::FileError::None || RefuseWrite(error);
}

bool acceptFile(std::string_view fileName) {
    if (!AcceptFileName(fileName)) return false;
    os::FileInfo info;
    const os::FileError error = os::files().info(std::string(fileName), info);
    if (error != os::FileError::None) return RefuseRead(error);
    if (info.folder || info.special) return Refuse(ERR_FILE_NAME);
    return info.exists || Refuse(ERR_FILE_VANISHED);
}

bool acceptMending(const ListDescriptor& l, std::string_view fileName) {
    if (!IsList(&l) || !IsHeldInFile(l)) return Refuse(ERR_TYPE_NOT_STORABLE);
    if (!RowFileName(l).empty()) return Refuse(ERR_UNIDENTIFIABLE);
    return acceptFile(fileName);
}

bool mendRows(ListDescriptor& l, std::string_view fileName, std::int32_t xbaseRows, MendedRows& result) {
    const bool xbase = RowFormatOf(fileName, l.maxlength) == RowsXbase;
    if (xbase && !AcceptXbaseRows(l)) return false;
    SetRowFileName(l, fileName);
    const bool good = RowMending(l, xbaseRows, result).run();
    SetRowFileName(l, {});
    return good;
}

}  // namespace

MendedRows MendRows(ListDescriptor& l, std::string_view fileName) {
    const ErrorCellAside aside;
    MendedRows result;
    if (!WithMemory([&] { return acceptMending(l, fileName) && mendRows(l, fileName, -1, result); }))
        result.error = ErrorCell();
    return result;
}

// ---- tables ----

namespace {

// The new indexes of a table whose rows are open.
class IndexRebuilding {
public:
    IndexRebuilding(TableDescriptor& t, RebuiltTable& result)
        : table_(t), header_(HeaderOf(t)), result_(result), progress_(header_, IndexesOf(header_)) {}
    bool run();

private:
    bool fillAll();
    bool fill(std::int32_t index);
    bool findTorn(std::vector<std::int32_t>& torn);
    bool dropTorn();
    bool restoreGuarded();

    TableDescriptor& table_;
    TableHeader& header_;
    RebuiltTable& result_;
    RowProgress progress_;
};

bool IndexRebuilding::run() {
    IndexExchange exchange(table_);
    if (!dropTorn() || !exchange.setAside() || !MakeTableIndexes(table_) || !fillAll() || !restoreGuarded() ||
        !SyncTableIndexes(table_) || !EndGuard(table_))
        return false;
    exchange.drop();
    exchange.dropNew();
    return result_.duplicates.empty() || Refuse(ERR_UNIQUE_INDEX);
}

bool IndexRebuilding::fillAll() {
    for (std::int32_t i = 0; i < IndexesOf(header_); ++i) {
        if (!fill(i)) return false;
    }
    return true;
}

bool IndexRebuilding::fill(std::int32_t index) {
    IndexFill fill(header_, index);
    ListReader rows(header_.rows);
    if (!fill.open(IndexFileName(RowFileName(header_.rows), index + 1))) return false;
    for (std::int32_t done = 0; done < header_.rows.count;) {
        const Filled filled = fill.run(rows, done + 1, header_.rows.count, &progress_);
        if (filled == Filled::Whole) break;
        if (filled == Filled::Failed) result_.badRow = fill.badRow();
        result_.stopped = filled == Filled::Stopped;
        if (filled != Filled::Duplicate) return false;
        const DuplicateKey& found = fill.duplicate();
        done = found.row;
        if (result_.rowDropped == 0 && IsLastRowAgain(header_, found)) {
            if (!RemoveLastRow(header_.rows)) return false;
            result_.rowDropped = found.row;
            result_.sameAs = found.first;
        } else if (result_.duplicates.size() < RebuiltTable::MostDuplicates) {
            result_.duplicates.push_back(found);
        }
    }
    return fill.close();
}

// Where rows are guarded the machine may have died: what was left of a note, and bytes that never came, can be
// as long as rows.
bool IndexRebuilding::findTorn(std::vector<std::int32_t>& torn) {
    ListReader reader(header_.rows);
    for (std::int32_t i = 0; i < header_.rows.count; ++i) {
        const OwnErrors errors;
        if (reader.at(i) != nullptr) continue;
        if (OwnErrors::code() != ERR_FILE_READ) return false;
        OwnErrors::forget();
        torn.push_back(i + 1);
    }
    return true;
}

// The last row, which can be read, takes the place of one that cannot.
bool IndexRebuilding::dropTorn() {
    ListDescriptor& rows = header_.rows;
    std::vector<std::int32_t> torn;
    if (!HasGuardedRows(table_)) return true;
    if (!findTorn(torn)) return false;
    for (; !torn.empty(); torn.pop_back(), ++result_.rowsTorn) {
        RecordValue row;
        const std::int32_t number = torn.back();
        const bool moves = number != rows.count;
        if (moves && !(InitValue(row.get(), &RowShape(header_), KindRecord) &&
                       ReadRow(rows, rows.count, row.get()) && WriteRow(rows, number, row.get())))
            return false;
        if (!RemoveLastRow(rows)) return false;
    }
    return true;
}

// Rows that deletions had moved, and that are nowhere now. Others are there still, by one of their keys at
// least.
bool IndexRebuilding::restoreGuarded() {
    table_.count = header_.rows.count;
    return EachGuardedRow(table_, [&](const RecordDescriptor& row) {
        const OwnErrors errors;
        if (FileTableAdd(table_, row)) return ++result_.rowsRestored, true;
        const std::int32_t code = OwnErrors::code();
        if (code != ERR_DUPLICATE_FIELDS && code != ERR_FIXED_LIST) return false;
        OwnErrors::forget();
        return true;
    });
}

// Nothing is mended for a table that cannot have its indexes. What mending the rows refuses is left to that.
bool acceptIndexes(const TableDescriptor& t, std::string_view fileName) {
    const ListDescriptor& rows = HeaderOf(t).rows;
    if (!IsHeldInFile(rows) || !RowFileName(rows).empty()) return true;
    return acceptFile(fileName) && AcceptIndexKeys(t) && AcceptIndexPlaces(fileName, IndexesOf(HeaderOf(t)));
}

bool rebuild(TableDescriptor& t, std::string_view fileName, std::int32_t xbaseRows, RebuiltTable& result) {
    if (!IsTable(&t)) return Refuse(ERR_TABLE_TYPE);
    ListDescriptor& rows = HeaderOf(t).rows;
    const std::string text(NarrowText(&HeaderOf(t).typeInfo).view());
    if (!acceptIndexes(t, fileName) || !acceptMending(rows, fileName) || !AcceptTypeText(t, text) ||
        !mendRows(rows, fileName, xbaseRows, result.mended))
        return false;
    bool created = false;
    if (!OpenRows(rows, fileName, text, created)) return false;
    t.count = rows.count;
    const bool good = IndexRebuilding(t, result).run();
    result.rows = rows.count;
    const bool closed = CloseRows(rows);
    t.count = 0;
    return good && closed;
}

}  // namespace

RebuiltTable RebuildTableFile(TableDescriptor& t, std::string_view fileName, std::int32_t xbaseRows) {
    const ErrorCellAside aside;
    RebuiltTable result;
    if (!WithMemory([&] { return rebuild(t, fileName, xbaseRows, result); }) && !result.stopped)
        result.error = ErrorCell();
    return result;
}

}  // namespace tarn
