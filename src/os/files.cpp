// SPDX-License-Identifier: Apache-2.0
//
// What is built from the calls of `FileSystem`, whichever is in force.
#include "os/files.h"

#include "os/paths.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace tarn::os {

namespace {

FileSystem* inForce = nullptr;  // null: the real one

struct Description {
    FileError error;
    std::string_view text;
};

constexpr Description descriptions[] = {
    {FileError::NotFound, "The file or its folder does not exist."},
    {FileError::Exists, "The file or folder exists already."},
    {FileError::Denied, "There is no permission to do this, or the file is read-only."},
    {FileError::IsFolder, "There is a folder of that name."},
    {FileError::NotFolder, "There is a file where a folder is needed."},
    {FileError::DiskFull, "The disk is full."},
    {FileError::BadName, "The name is too long or not a valid name."},
    {FileError::Vanished, "The file or its folder has gone in the meantime."},
    {FileError::ReadFailed, "The disk cannot be read."},
    {FileError::WriteFailed, "The disk cannot be written."},
    {FileError::NoReader, "No program reads from the pipe."},
};

// Reads to the end of the file. The buffer is one byte larger than the file, so that the usual file needs no
// growth to find its end.
FileError readAll(Handle handle, std::int64_t expected, std::string& bytes) {
    constexpr std::size_t smallest = 4096;  // files that give no size, such as those of /proc
    std::size_t used = 0;
    bytes.resize(std::max(static_cast<std::size_t>(std::max<std::int64_t>(expected, 0)) + 1, smallest));
    for (;;) {
        std::size_t got = 0;
        const auto at = static_cast<std::int64_t>(used);
        const FileError error = files().read(handle, at, bytes.data() + used, bytes.size() - used, got);
        if (error != FileError::None) return error;
        if (got == 0) break;
        used += got;
        if (used == bytes.size()) bytes.resize(bytes.size() * 2);
    }
    bytes.resize(used);
    return FileError::None;
}

}  // namespace

FileError readUpTo(Handle handle, std::int64_t offset, char* into, std::size_t count, std::size_t& got) {
    FileError error = FileError::None;
    std::size_t step = 1;
    for (got = 0; got < count && step != 0 && error == FileError::None; got += step) {
        step = 0;
        error = files().read(handle, offset + static_cast<std::int64_t>(got), into + got, count - got, step);
    }
    return error;
}

std::string_view describe(FileError error) {
    for (const Description& one : descriptions) {
        if (one.error == error) return one.text;
    }
    return {};
}

FileSystem& files() {
    return inForce != nullptr ? *inForce : realFiles();
}

FileSystem* useFiles(FileSystem* system) {
    FileSystem* const before = inForce;
    inForce = system;
    return before;
}

std::string native(std::string_view path) {
    std::string result(path);
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

FileInfo infoOf(const std::string& path) {
    FileInfo info;
    if (files().info(path, info) != FileError::None) return {};
    return info;
}

std::int64_t sizeOf(const std::string& path) {
    const FileInfo info = infoOf(path);
    return info.exists && !info.folder ? info.size : -1;
}

FileError readFile(const std::string& path, std::string& bytes) {
    bytes.clear();
    FileInfo info;
    if (const FileError error = files().info(path, info); error != FileError::None) return error;
    Handle handle = -1;
    FileError error = files().open(path, OpenMode::Read, 0, handle);
    if (error != FileError::None)
        return error == FileError::NotFound && info.exists ? FileError::Vanished : error;
    try {
        error = readAll(handle, info.size, bytes);
    } catch (const std::bad_alloc&) {
        error = FileError::ReadFailed;
    } catch (const std::length_error&) {
        error = FileError::ReadFailed;
    }
    files().close(handle);
    if (error != FileError::None) bytes.clear();
    return error;
}

FileError makeFolders(const std::string& path, Durability durability) {
    std::string folder = native(path);
    stripTrailingSlashes(folder);
    FileInfo info;
    if (const FileError error = files().info(folder, info); error != FileError::None) return error;
    if (info.exists) return info.folder ? FileError::None : FileError::NotFolder;
    const std::string parent = folderOf(folder);
    if (!parent.empty()) {
        if (const FileError error = makeFolders(parent, durability); error != FileError::None) return error;
    }
    const FileError error = files().makeFolder(folder);
    // Another process may have made it at the same moment.
    if (error == FileError::Exists) return infoOf(folder).folder ? FileError::None : FileError::NotFolder;
    if (error != FileError::None || durability == Durability::Unsynced) return error;
    return files().syncFolder(parent.empty() ? "." : parent);
}

}  // namespace tarn::os
