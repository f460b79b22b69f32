// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/filevalues.h"

#include "kernel/lists/rowfile_access.h"
#include "kernel/run/fileerrors.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/tables/tables_file_hold.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/tables/tables_file_places.h"
#include "kernel/values/string_text.h"

namespace tarn {

namespace {

// The rows of a list or table; null for another value.
ListDescriptor* rowsOf(void* value, Kind kind) {
    if (value == nullptr) return nullptr;
    if (kind == KindList) {
        auto* const list = static_cast<ListDescriptor*>(value);
        return IsList(list) ? list : nullptr;
    }
    auto* const table = static_cast<TableDescriptor*>(value);
    return kind == KindTable && IsTable(table) ? &HeaderOf(*table).rows : nullptr;
}
const ListDescriptor* rowsOf(const void* value, Kind kind) {
    return rowsOf(const_cast<void*>(value), kind);
}

const ListDescriptor* fileRowsOf(const void* value, Kind kind) {
    const ListDescriptor* const rows = rowsOf(value, kind);
    if (rows != nullptr && IsHeldInFile(*rows)) return rows;
    Refuse(ERR_TYPE_NOT_STORABLE);
    return nullptr;
}

bool isOpen(const ListDescriptor* rows) {
    return rows != nullptr && !RowFileName(*rows).empty();
}

// ---- tables ----

std::string typeTextOf(const TableDescriptor& t) {
    return std::string(NarrowText(&HeaderOf(t).typeInfo).view());
}

// Rows that no file can hold are told before keys that none can.
bool acceptKeys(const TableDescriptor& t, std::string_view fileName) {
    const ListDescriptor& rows = HeaderOf(t).rows;
    const bool xbase = RowFormatOf(fileName, rows.maxlength) == RowsXbase;
    return (!xbase || AcceptXbaseRows(rows)) && AcceptIndexKeys(t);
}

// A table without rows needs no indexes to be read, so that it opens where nothing may be written.
bool openIndexes(TableDescriptor& t, bool created) {
    const std::string file(RowFileName(HeaderOf(t).rows));
    if (t.count == 0 && !created && !os::infoOf(file).writable) return true;
    if (!AcceptIndexPlaces(file, IndexesOf(HeaderOf(t)))) return false;
    if (created) RemoveIndexFiles(file);
    if (!(t.count > 0 ? AcceptTableIndexes(t) : StartTableIndexes(t))) return false;
    return HasAllGuardedRows(t) || Refuse(ERR_INDEX_FILE_SIZE);
}

// Where a link led to the name, the file was made where it leads.
void removeMade(const std::string& fileName) {
    std::string path;
    if (os::files().resolve(fileName, path) == os::FileError::None) RemoveRows(path);
}

bool openTable(TableDescriptor& t, std::string_view fileName) {
    ListDescriptor& rows = HeaderOf(t).rows;
    const std::string text = typeTextOf(t);
    bool created = false;
    if (!AcceptFileName(fileName) || !AcceptTypeText(t, text) || !acceptKeys(t, fileName) ||
        !AcceptRowPlace(fileName, IndexesOf(HeaderOf(t))) || !OpenRows(rows, fileName, text, created))
        return false;
    t.count = rows.count;
    if (openIndexes(t, created)) return true;
    if (created) removeMade(std::string(fileName));
    DropRows(rows);
    t.count = 0;
    return false;
}

bool closeTable(TableDescriptor& t) {
    const bool released = ReleaseTableFiles(t), synced = SyncTableIndexes(t), ended = EndGuard(t);
    return CloseRows(HeaderOf(t).rows) && released && synced && ended;
}

}  // namespace

void FileOpen(void* value, Kind kind, std::string_view fileName) {
    const ListDescriptor* const rows = fileRowsOf(value, kind);
    if (rows == nullptr) return;
    if (isOpen(rows)) return SetError(ERR_UNIDENTIFIABLE);
    const bool opened = WithMemory([&] {
        bool created = false;
        return kind == KindList ? OpenRows(*static_cast<ListDescriptor*>(value), fileName, {}, created)
                                : openTable(*static_cast<TableDescriptor*>(value), fileName);
    });
    if (!opened || CutEndMark(*rows)) return;
    DropRows(*rowsOf(value, kind));
    if (kind == KindTable) static_cast<TableDescriptor*>(value)->count = 0;
}

void FileClose(void* value, Kind kind) {
    ListDescriptor* const rows = rowsOf(value, kind);
    if (!isOpen(rows)) return;
    if (kind == KindList) {
        CloseRows(*rows);
    } else {
        auto& table = *static_cast<TableDescriptor*>(value);
        WithMemory([&] { return closeTable(table); });
        table.count = 0;
    }
}

bool FileExists(const void* value, Kind kind) {
    return isOpen(rowsOf(value, kind));
}

std::string FileNameOf(const void* value, Kind kind) {
    const ListDescriptor* const rows = rowsOf(value, kind);
    return isOpen(rows) ? std::string(RowFileName(*rows)) : std::string();
}

std::int32_t FileRecordLength(const void* value, Kind kind) {
    const ListDescriptor* const rows = fileRowsOf(value, kind);
    return rows != nullptr ? PackedRowBytes(*rows) : 0;
}

std::int32_t FileHeaderSize(const void* value, Kind kind) {
    const ListDescriptor* const rows = fileRowsOf(value, kind);
    if (rows == nullptr || PackedRowBytes(*rows) == 0) return 0;
    const RowFormat format = RowFormatOf(RowFileName(*rows), rows->maxlength);
    if (format != RowsXbase) return format == RowsFixed ? FixedHeaderBytes : 0;
    std::int32_t size = 0;
    WithMemory([&] {
        RowFile file;
        if (!file.open(*rows, os::OpenMode::Read)) return false;
        size = static_cast<std::int32_t>(file.offsetOf(1));
        return true;
    });
    return size;
}

std::int32_t FileFormat(const void* value, Kind kind) {
    const ListDescriptor* const rows = rowsOf(value, kind);
    if (isOpen(rows)) return RowFormatOf(RowFileName(*rows), rows->maxlength);
    return Refuse(ERR_FILE_NOT_OPEN), 0;
}

void FileKeepCount(std::string_view fileName, std::int32_t format, std::int32_t count) {
    if (format != RowsFixed && format != RowsXbase) return;
    if (count < 0) return SetError(ERR_FILE_SIZE);
    WithMemory([&] {
        os::Handle handle = -1;
        os::FileError error = os::files().open(std::string(fileName), os::OpenMode::ReadWrite, 0, handle);
        if (error != os::FileError::None) return RefuseWrite(error);
        const StoredCount stored = EncodeCount(static_cast<RowFormat>(format), count);
        error = os::files().write(handle, stored.offset, {stored.bytes, sizeof stored.bytes});
        const os::FileError closed = os::files().close(handle);
        if (error == os::FileError::None) error = closed;
        return error == os::FileError::None || RefuseWrite(error);
    });
}

}  // namespace tarn
