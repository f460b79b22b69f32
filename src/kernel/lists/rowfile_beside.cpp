// SPDX-License-Identifier: Apache-2.0
//
// Rows that take the place of others: they are written into a file beside, which is then renamed. So the old
// rows are whole until the new ones are.
#include "kernel/lists/rowfile_access.h"
#include "kernel/lists/rowfile_names.h"
#include "kernel/run/fileerrors.h"
#include "os/clock.h"
#include "os/paths.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace tarn {

namespace {

constexpr os::FileError noError = os::FileError::None;

// What a link stands for; any other path as it is.
os::FileError followLink(const std::string& path, std::string& target) {
    std::string folder;
    os::FileError error = os::files().resolve(path, target);
    if (error == noError) error = os::files().resolve(FolderOfFile(path), folder);
    if (error != noError) return error;
    if (folder.back() != '/') folder += '/';
    if (target == folder + std::string(paths::fileName(path))) target = path;
    return noError;
}

// The owner and the permissions of the old file. Where this user cannot give them, the rows stay as they are:
// a file that changed hands might be one that its owner cannot open any more.
os::FileError takeOver(const os::FileInfo& old, const std::string& path) {
    const os::FileInfo info = os::infoOf(path);
    os::FileError error = noError;
    if (info.owner != old.owner || info.group != old.group)
        error = os::files().setOwner(path, old.owner, old.group);
    if (error == noError && info.mode != old.mode) error = os::files().setMode(path, old.mode);
    return error;
}

os::FileError fillBeside(const std::string& target, const std::string& header, std::string& name) {
    const os::FileInfo old = os::infoOf(target);
    if (!old.exists) return os::FileError::Vanished;
    if (!old.writable) return os::FileError::Denied;
    if (old.links > 1) return os::FileError::Denied;  // the other names would keep the old rows
    NewFile made;
    os::FileError error = MakeFileBeside(target, made);
    if (error == noError && !header.empty()) error = os::files().write(made.handle, 0, header);
    const os::FileError closed = made.close();
    if (error == noError) error = closed;
    if (error == noError) error = takeOver(old, made.path);
    if (error == noError) name.swap(made.path);
    return error;
}

os::FileError syncRows(const std::string& name) {
    os::Handle handle = -1;
    os::FileError error = os::files().open(name, os::OpenMode::Read, 0, handle);
    if (error != noError) return error;
    error = os::files().sync(handle);
    os::files().close(handle);
    return error;
}

}  // namespace

std::string FolderOfFile(const std::string& path) {
    std::string folder(paths::folder(path));
    return folder.empty() ? "." : folder;
}

NewFile::~NewFile() {
    try {
        close();
        if (!path.empty()) os::files().remove(path);
    } catch (...) {  // the end of the process, in a test
    }
}

os::FileError NewFile::close() {
    if (handle < 0) return noError;
    const os::Handle open = handle;
    handle = -1;
    return os::files().close(open);
}

os::FileError MakeFileBeside(const std::string& path, NewFile& made) {
    static std::uint32_t count = 0;
    constexpr int attempts = 100, base = 36;
    constexpr std::int64_t names = base * base * base * base;  // short ones, as the folder may be long
    os::FileError error = os::FileError::Exists;
    for (int i = 0; i < attempts && error == os::FileError::Exists; ++i) {
        char digits[32];
        const std::int64_t number = (os::clock().now() / names + ++count) % names;
        const char* const end = std::to_chars(digits, digits + sizeof digits, number, base).ptr;
        std::string name = std::string(paths::folder(path)) + ".tarnwick-";
        name.append(digits, static_cast<std::size_t>(end - digits)).append(paths::extension(path));
        error = os::files().open(name, os::OpenMode::CreateNew, NewFile::usualMode, made.handle);
        if (error == noError) made.path = std::move(name);
    }
    return error;
}

bool MakeRowsBeside(const ListDescriptor& l, std::string& name) {
    return WithMemory([&] {
        RowFile file;
        std::string header, target;
        if (!file.open(l, os::OpenMode::Read) || !file.readHeader(header)) return false;
        file.close();
        os::FileError error = followLink(std::string(RowFileName(l)), target);
        if (error == noError) error = fillBeside(target, header, name);
        return error == noError || RefuseWrite(error);
    });
}

// Rows that were on the disk give way only to rows that are.
bool PutRowsInPlace(const std::string& name, ListDescriptor& l, std::int32_t count) {
    return WithMemory([&] {
        if (!BatchOfRows::finishAll(l)) return false;
        std::string target;
        os::FileError error = l.count > 0 ? syncRows(name) : noError;
        if (error == noError) error = followLink(std::string(RowFileName(l)), target);
        if (error == noError) error = os::files().rename(name, target);
        if (error != noError) return RefuseWrite(error);
        l.count = count;
        return true;
    });
}

void RemoveRows(const std::string& name) {
    (void)os::files().remove(name);
}

// ---- a list beside ----

bool RowsBeside::make() {
    bool created = false;
    if (!InitValue(&rows_, &target_, KindList) || !MakeRowsBeside(target_, name_)) return false;
    if (!OpenRows(rows_, name_, {}, created)) return false;
    return WithMemory([&] {
        batch_ = std::make_unique<RowBatch>(rows_);
        return true;
    });
}

RowsBeside::~RowsBeside() {
    try {
        DropRows(rows_);
        if (!name_.empty()) RemoveRows(name_);
    } catch (...) {  // the end of the process, in a test
    }
    FreeValue(&rows_, KindList);
}

bool RowsBeside::takePlace() {
    if (!batch_->finish() || !PutRowsInPlace(name_, target_, rows_.count)) return false;
    name_.clear();
    return true;
}

}  // namespace tarn
