// SPDX-License-Identifier: Apache-2.0
//
// Opening, making and closing the file of a list. A plain file is made in one step; one that begins with a
// header is made under another name and then renamed, so that it is never seen half made.
#include "kernel/lists/rowfile_access.h"
#include "kernel/lists/rowfile_names.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/fileerrors.h"
#include "os/clock.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

constexpr os::FileError noError = os::FileError::None;

// Changes nothing: the whole value may yet be refused.
bool openExisting(ListDescriptor& l) {
    RowFile file;
    std::int32_t count = 0;
    std::int64_t size = 0;
    bool endMark = false;
    if (!file.open(l, os::OpenMode::Read)) return false;
    const std::int32_t most = IsFixedList(l) ? l.maxlength : INT32_MAX;
    if (!file.measure(count, size, &endMark, most)) return false;
    if (file.format() == RowsXbase && !file.xbase()->accept(l)) return false;
    l.count = count;
    return true;
}

// ---- new files ----

// Rows up to the capacity, in blocks.
os::FileError writeEmptyRows(os::Handle handle, const ListDescriptor& l, std::size_t header) {
    const std::string_view name = RowFileName(l);
    const auto rowBytes = static_cast<std::size_t>(PackedRowBytes(l));
    const auto perBlock = static_cast<std::int32_t>(std::max<std::size_t>(RowBlockBytes / rowBytes, 1));
    const std::int32_t rows = IsFixedList(l) ? l.maxlength : 0;
    std::string block;
    AddEmptyRows(name, rowBytes, std::min(rows, perBlock), block);
    os::FileError error = noError;
    for (std::int32_t n = 0; n < rows && error == noError; n += std::min(perBlock, rows - n)) {
        const std::size_t step = static_cast<std::size_t>(std::min(perBlock, rows - n)) * rowBytes;
        const std::size_t at = header + static_cast<std::size_t>(n) * rowBytes;
        error =
            os::files().write(handle, static_cast<std::int64_t>(at), std::string_view(block).substr(0, step));
    }
    return error;
}

os::FileError makeWithHeader(const ListDescriptor& l, const std::string& path, const std::string& header) {
    NewFile made;
    os::FileError error = MakeFileBeside(path, made);
    if (error == noError) error = os::files().write(made.handle, 0, header);
    if (error == noError) error = writeEmptyRows(made.handle, l, header.size());
    const os::FileError closed = made.close();
    if (error == noError) error = closed;
    if (error == noError) error = os::files().rename(made.path, path);
    if (error == noError) made.path.clear();
    return error;
}

os::FileError makePlain(const std::string& path) {
    os::Handle handle = -1;
    os::FileError error = os::files().open(path, os::OpenMode::CreateNew, NewFile::usualMode, handle);
    if (error != noError) return error;
    error = os::files().close(handle);
    if (error != noError) os::files().remove(path);
    return error;
}

bool makeFile(ListDescriptor& l, std::string_view typeText) {
    const RowFormat format = RowFormatOf(RowFileName(l), l.maxlength);
    std::string header(format == RowsFixed ? std::size_t{FixedHeaderBytes} : 0, '\0');
    if (format == RowsXbase && !MakeXbaseHeader(l, typeText, header)) return false;
    std::string path;
    os::FileError error = os::files().resolve(std::string(RowFileName(l)), path);
    if (error == noError) error = format == RowsPlain ? makePlain(path) : makeWithHeader(l, path, header);
    l.count = 0;
    return error == noError || Refuse(FileWriteCode(error));
}

bool openOrMake(ListDescriptor& l, std::string_view typeText, bool& created) {
    const bool xbase = RowFormatOf(RowFileName(l), l.maxlength) == RowsXbase;
    if ((xbase && !AcceptXbaseRows(l)) || PackedRowBytes(l) == 0) return false;
    os::FileInfo info;
    const os::FileError error = os::files().info(std::string(RowFileName(l)), info);
    if (error != noError) return RefuseRead(error);
    if (info.folder || info.special) return Refuse(ERR_FILE_NAME);
    if (info.exists) return openExisting(l);
    created = makeFile(l, typeText);
    return created;
}

void blank(ListDescriptor& l) {
    SetRowFileName(l, {});
    l.count = 0;
}

// The names in a folder that this program has synced are on the disk as long as none of them has changed, which
// moves the folder's time. A change so shortly before the sync that another could have the same time does not
// count as synced.
struct SyncedFolder {
    const os::FileSystem* system = nullptr;
    std::uint64_t device = 0, inode = 0;
    std::int64_t changed = 0;
    bool operator==(const SyncedFolder&) const = default;
};

os::FileError syncFolder(const std::string& path) {
    constexpr std::int64_t leastAge = 100'000'000;  // nanoseconds; clocks of files tick each 10 ms at least
    static SyncedFolder last;
    const os::FileInfo info = os::infoOf(path);
    const SyncedFolder now{&os::files(), info.device, info.inode, info.changed};
    if (info.exists && now == last) return noError;
    const bool aged = info.exists && os::clock().now() - info.changed >= leastAge;
    const os::FileError error = os::files().syncFolder(path);
    last = error == noError && aged ? now : SyncedFolder();
    return error;
}

bool syncFile(const std::string& path) {
    os::Handle handle = -1;
    os::FileError error = os::files().open(path, os::OpenMode::Read, 0, handle);
    if (error != noError) return RefuseRead(error);
    error = os::files().sync(handle);
    os::files().close(handle);
    if (error == noError) error = syncFolder(FolderOfFile(path));
    return error == noError || RefuseWrite(error);
}

}  // namespace

bool OpenRows(ListDescriptor& l, std::string_view fileName, std::string_view typeText, bool& created) {
    created = false;
    if (!AcceptFileName(fileName)) return false;
    SetRowFileName(l, fileName);
    if (WithMemory([&] { return openOrMake(l, typeText, created); })) return true;
    blank(l);
    return false;
}

bool CutEndMark(const ListDescriptor& l) {
    if (RowFormatOf(RowFileName(l), l.maxlength) != RowsXbase) return true;
    return WithMemory([&] {
        RowFile file;
        std::int32_t count = 0;
        std::int64_t size = 0;
        bool endMark = false;
        if (!file.open(l, os::OpenMode::Read) || !file.measure(count, size, &endMark)) return false;
        file.close();
        if (!endMark) return true;
        os::Handle handle = -1;
        const std::string path(RowFileName(l));
        os::FileError error = os::files().open(path, os::OpenMode::ReadWrite, 0, handle);
        if (error == os::FileError::Denied) return true;
        if (error != noError) return RefuseWrite(error);
        error = os::files().truncate(handle, size);
        const os::FileError closed = os::files().close(handle);
        return (error == noError && closed == noError) || RefuseWrite(error != noError ? error : closed);
    });
}

void StartRowSync(const ListDescriptor& l) {
    os::Handle handle = -1;
    if (os::files().open(std::string(RowFileName(l)), os::OpenMode::Read, 0, handle) != noError) return;
    os::files().startSync(handle);
    os::files().close(handle);
}

bool CloseRows(ListDescriptor& l) {
    if (RowFileName(l).empty()) return true;
    const bool good = WithMemory([&] {
        const bool finished = BatchOfRows::finishAll(l);
        BatchOfRows::forgetAll(l);
        return syncFile(std::string(RowFileName(l))) && finished;
    });
    blank(l);
    return good;
}

void DropRows(ListDescriptor& l) {
    if (RowFileName(l).empty()) return;
    BatchOfRows::forgetAll(l);
    blank(l);
    BatchOfRows::closeForgotten();
}

bool IsScratchFile(const ListDescriptor& l) {
    return IsScratchName(RowFileName(l));
}

void ReleaseRows(ListDescriptor& l) {
    if (RowFileName(l).empty()) return;
    WithMemory([&] {
        const std::string name(RowFileName(l));
        const bool scratch = IsScratchFile(l);
        if (!scratch && os::infoOf(name).exists) return CloseRows(l);
        DropRows(l);
        if (scratch) RemoveRows(name);
        return true;
    });
    DropRows(l);
}

// ---- checking ----

namespace {

bool readAllRows(const ListDescriptor& l) {
    const Kind kind = ElementKindOf(l);
    const RowBatch batch(l);
    ElementBeside element(At(l.prototype), kind);
    bool good = element.good();
    for (std::int32_t n = 0; n < l.count && good; ++n) good = ReadRow(l, n + 1, element.at());
    return good;
}

}  // namespace

std::string CheckRows(const ListDescriptor& l) {
    const ErrorCellAside aside;
    std::int32_t count = l.count;
    const bool good = WithMemory([&] {
        if (BatchOfRows* const batch = BatchOfRows::of(l))
            if (!batch->flush()) return false;
        RowFile file;
        std::int64_t size = 0;
        bool endMark = false;
        return file.open(l, os::OpenMode::Read) && file.measure(count, size, &endMark) &&
               (file.xbase() == nullptr || file.xbase()->accept(l)) && count == l.count && readAllRows(l);
    });
    if (good) return {};
    if (ErrorCell() == 0) return "list: the file holds " + std::to_string(count) + " rows";
    return std::string("list: ") + ErrorText(ErrorCell());
}

bool AcceptRows(const ListDescriptor& l) {
    return WithMemory([&] {
        if (BatchOfRows* const batch = BatchOfRows::of(l))
            if (!batch->flush()) return false;
        RowFile file;
        std::int32_t count = 0;
        std::int64_t size = 0;
        bool endMark = false;
        if (!file.open(l, os::OpenMode::Read) || !file.measure(count, size, &endMark)) return false;
        return count == l.count || Refuse(ERR_FILE_SIZE);
    });
}

bool TakeRowCount(const ListDescriptor& from, ListDescriptor& to) {
    if (!AcceptRows(from)) return false;
    const std::int32_t before = to.count;
    to.count = from.count;
    if (&from == &to || AcceptRows(to)) return true;
    to.count = before;
    return false;
}

bool IsSameFile(const ListDescriptor& a, const ListDescriptor& b) {
    if (RowFileName(a) == RowFileName(b)) return true;
    os::FileInfo left, right;
    WithMemory([&] {
        left = os::infoOf(std::string(RowFileName(a)));
        right = os::infoOf(std::string(RowFileName(b)));
        return true;
    });
    return left.exists && right.exists && left.device == right.device && left.inode == right.inode;
}

}  // namespace tarn
