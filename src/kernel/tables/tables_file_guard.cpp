// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/tables_file_guard.h"

#include "kernel/index/index_file.h"
#include "kernel/lists/rowfile_access.h"
#include "kernel/lists/rowfile_names.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/text/numbers.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/owned.h"
#include "os/text/bigendian.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tarn {

namespace {

using os::FileError;

constexpr std::string_view mark = "\xA7kept\r\n\x1A";
constexpr std::int64_t rowBytesAt = 8, coveredAt = 12, headerBytes = 16;
constexpr std::size_t checkBytes = 4;
constexpr std::int32_t nothing = std::numeric_limits<std::int32_t>::max();  // is covered
constexpr char guardedEntry = 'K', goneEntry = 'G';

void addEntry(std::string& entries, char what, std::string_view row) {
    const std::size_t at = entries.size();
    entries += what;
    entries += row;
    bigendian::append(entries, Crc32(entries.data() + at, row.size() + 1));
}

std::string pathBeside(const TableDescriptor& t) {
    return GuardFileName(RowFileName(HeaderOf(t).rows));
}

// An open file that is closed at the end.
struct OpenFile {
    os::Handle handle = -1;
    OpenFile() = default;
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        try {
            close();
        } catch (...) {  // the end of the process, in a test
        }
    }
    FileError close() { return handle < 0 ? FileError::None : os::files().close(std::exchange(handle, -1)); }
};

// ---- the file beside ----

class GuardFile {
public:
    explicit GuardFile(const TableDescriptor& t) : path_(pathBeside(t)) {}

    // False when it is not there or not of such rows.
    bool open(std::int32_t rowBytes);
    bool make(const std::string& rowFile, std::int32_t rowBytes);
    [[nodiscard]] std::int32_t covered() const { return covered_; }
    [[nodiscard]] std::int64_t size() const { return size_; }
    bool append(std::string_view entries) {
        const bool good = done(os::files().write(file_.handle, size_, entries));
        size_ += static_cast<std::int64_t>(entries.size());
        return good;
    }
    // What was appended is on the disk.
    bool cover(std::int32_t from) {
        covered_ = from;
        std::string word;
        bigendian::append(word, from);
        return done(os::files().sync(file_.handle)) &&
               (!made_ || done(os::files().syncFolder(FolderOfFile(path_)))) &&
               done(os::files().write(file_.handle, coveredAt, word));
    }
    bool cut(std::int64_t size) {
        return done(os::files().truncate(file_.handle, size)) && done(os::files().sync(file_.handle));
    }
    bool close() { return done(file_.close()); }

private:
    static bool done(FileError error) { return error == FileError::None; }

    std::string path_;
    OpenFile file_;
    std::int32_t covered_ = nothing;
    std::int64_t size_ = 0;
    bool made_ = false;
};

bool GuardFile::open(std::int32_t rowBytes) {
    char header[headerBytes];
    std::size_t got = 0;
    if (!done(os::files().open(path_, os::OpenMode::ReadWrite, 0, file_.handle)) ||
        !done(os::files().size(file_.handle, size_)) ||
        !done(os::readUpTo(file_.handle, 0, header, sizeof header, got)) || got != sizeof header)
        return false;
    covered_ = bigendian::at<std::int32_t>(header + coveredAt);
    size_ -= (size_ - headerBytes) % (rowBytes + 1 + std::int64_t{checkBytes});  // without a torn entry
    return std::string_view(header, mark.size()) == mark &&
           bigendian::at<std::int32_t>(header + rowBytesAt) == rowBytes;
}

bool GuardFile::make(const std::string& rowFile, std::int32_t rowBytes) {
    file_.close();
    made_ = true;
    std::string header(mark);
    bigendian::append(header, rowBytes);
    bigendian::append(header, nothing);
    covered_ = nothing;
    size_ = 0;
    return done(os::files().open(path_, os::OpenMode::CreateNew, NewFile::usualMode, file_.handle)) &&
           done(GiveRightsOf(rowFile, path_)) && append(header);
}

bool syncRows(const TableDescriptor& t) {
    OpenFile file;
    FileError error =
        os::files().open(std::string(RowFileName(HeaderOf(t).rows)), os::OpenMode::Read, 0, file.handle);
    if (error == FileError::None) error = os::files().sync(file.handle);
    return error == FileError::None || RefuseWrite(error);
}

}  // namespace

std::string GuardFileName(std::string_view tableFile) {
    return MarkedIndexName(IndexFileName(tableFile, 1), "~d");
}

bool HasGuardedRows(const TableDescriptor& t) {
    if (IndexesOf(HeaderOf(t)) == 0) return false;
    const os::FileInfo info = os::infoOf(pathBeside(t));
    return info.exists && !info.folder && !info.special;
}

// ---- guarding ----

bool RowGuard::guardAndNote(std::int32_t number, std::int32_t moved) {
    const ListDescriptor& rows = HeaderOf(table_).rows;
    BatchOfRows* const batch = BatchOfRows::of(rows);
    RowFile own;
    RowFile& file = batch != nullptr ? batch->file() : own;
    GuardFile beside(table_);
    std::string row, entries;
    const bool open = batch != nullptr ? batch->openToRead() : own.open(rows, os::OpenMode::Read);
    if (!open || !file.read(number, 1, row)) return false;
    rowBytes_ = file.rowBytes();
    const bool opened = beside.open(rowBytes_);
    if (!opened && (HasGuardedRows(table_) || !beside.make(std::string(RowFileName(rows)), rowBytes_)))
        return false;
    if (moved != 0 && moved < beside.covered()) {
        const auto perBlock = static_cast<std::int32_t>(RowBlockBytes / row.size());
        const std::int32_t first = std::max(moved - perBlock, 1);
        std::string block;
        if (!file.read(first, moved - first + 1, block)) return false;
        for (std::size_t at = 0; at < block.size(); at += row.size())
            addEntry(entries, guardedEntry, std::string_view(block).substr(at, row.size()));
        if (!beside.append(entries) || !beside.cover(first)) return false;
    }
    sizeBefore_ = beside.size();
    entries.clear();
    addEntry(entries, goneEntry, row);
    return beside.append(entries) && beside.close();
}

// What cannot be guarded is synced, and what was guarded then need not be any more.
bool RowGuard::begin(std::int32_t number, std::int32_t moved) {
    if (IsScratchFile(HeaderOf(table_).rows) || (moved == 0 && !HasGuardedRows(table_))) return true;
    const OwnErrors errors;
    if (BatchOfRows* const batch = BatchOfRows::of(HeaderOf(table_).rows))
        if (!batch->flush()) return false;
    guarded_ = WithMemory([&] { return guardAndNote(number, moved); });
    OwnErrors::forget();
    if (guarded_) return true;
    sizeBefore_ = -1;
    return EndGuard(table_);
}

bool RowGuard::beforeCut() {
    return guarded_ || syncRows(table_);
}

void RowGuard::takeBack() {
    if (sizeBefore_ < 0) return;
    const ErrorCellAside aside;
    GuardFile beside(table_);
    if (beside.open(rowBytes_)) beside.cut(sizeBefore_);
}

// A file that cannot be opened has never come to the disk as a whole; one that is empty guards nothing, and
// may stay where it cannot be removed.
bool EndGuard(const TableDescriptor& t) {
    if (!HasGuardedRows(t)) return true;
    if (!syncRows(t)) return false;
    const std::string path = pathBeside(t);
    OpenFile file;
    const bool opened = os::files().open(path, os::OpenMode::ReadWrite, 0, file.handle) == FileError::None;
    FileError error = opened ? os::files().truncate(file.handle, 0) : FileError::None;
    if (opened && error == FileError::None) error = os::files().sync(file.handle);
    const FileError closed = file.close();
    if (error == FileError::None) error = closed;
    if (error != FileError::None) return RefuseWrite(error);
    error = os::files().remove(path);
    return opened || error == FileError::None || RefuseWrite(error);
}

// ---- looking ----

namespace {

// The rows that entries guard, in their order.
std::vector<std::string> guardedIn(std::string_view entries, std::size_t rowBytes) {
    const std::size_t entryBytes = rowBytes + 1 + checkBytes;
    std::vector<std::string> order;
    std::unordered_set<std::string> guarded;
    for (; entries.size() >= entryBytes; entries.remove_prefix(entryBytes)) {
        const auto check = bigendian::at<std::uint32_t>(entries.data() + rowBytes + 1);
        if (check != Crc32(entries.data(), rowBytes + 1)) continue;
        std::string row(entries.substr(1, rowBytes));
        if (entries.front() == goneEntry)
            guarded.erase(row);
        else if (entries.front() == guardedEntry && guarded.insert(row).second)
            order.push_back(std::move(row));
    }
    std::erase_if(order, [&](const std::string& row) { return guarded.erase(row) == 0; });
    return order;
}

bool readGuarded(const TableDescriptor& t, RowFile& rows, std::vector<std::string>& guarded) {
    std::string all;
    if (!rows.open(HeaderOf(t).rows, os::OpenMode::Read)) return false;
    const bool read = os::readFile(pathBeside(t), all) == FileError::None &&
                      all.size() >= static_cast<std::size_t>(headerBytes) && all.starts_with(mark) &&
                      bigendian::at<std::int32_t>(all.data() + rowBytesAt) == rows.rowBytes();
    if (read)
        guarded =
            guardedIn(std::string_view(all).substr(headerBytes), static_cast<std::size_t>(rows.rowBytes()));
    return read;
}

bool unpackQuietly(const RowFile& rows, const std::string& bytes, RecordDescriptor* row) {
    const ErrorCellAside aside;
    return rows.unpack(bytes, row);
}

}  // namespace

bool EachGuardedRow(const TableDescriptor& t, const std::function<bool(const RecordDescriptor& row)>& see) {
    if (!HasGuardedRows(t)) return true;
    RowFile rows;
    RecordValue row;
    std::vector<std::string> guarded;
    {
        const ErrorCellAside aside;
        if (!InitValue(row.get(), &RowShape(HeaderOf(t)), KindRecord) || !readGuarded(t, rows, guarded))
            return true;
    }
    for (const std::string& bytes : guarded) {
        if (unpackQuietly(rows, bytes, row.get()) && !see(*row.get())) return false;
    }
    return true;
}

}  // namespace tarn
