// SPDX-License-Identifier: Apache-2.0
//
// Files as the layers above see them. `FileSystem` is the narrow set of calls that touch the disk; every one
// of them can be made to fail (see steerable.h), and everything else in this header is built from them. Code
// above this layer reaches the disk only through `files()` or the functions below.
//
// Paths are bytes. Both `/` and `\` separate on the way in (`native` turns `\` into `/`); results use `/`. A
// path that is empty or holds a zero byte is BadName. Cost: each call is one system call, unless said
// otherwise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::os {

enum class FileError {
    None,
    NotFound,     // the file, or a folder on its way, does not exist
    Exists,       // it exists and must not
    Denied,       // no permission, or a read-only file system
    IsFolder,     // a folder where a file is needed
    NotFolder,    // a file where a folder is needed
    DiskFull,     // no space, or a quota reached
    BadName,      // the name is too long, or not a name
    Vanished,     // it was there and has gone during the operation
    ReadFailed,   // any other fault while reading
    WriteFailed,  // any other fault while writing
    NoReader,     // a pipe that no program reads, or reads any longer
};

// A short text for the user ("The disk is full."); empty for None.
std::string_view describe(FileError error);

struct FileInfo {
    bool exists = false;
    bool folder = false;
    bool special = false;       // a device, a pipe or a socket
    bool writable = false;      // by this user; never a file without any write bit, whoever the user is
    std::int64_t size = 0;      // bytes
    std::int64_t modified = 0;  // nanoseconds since 1970-01-01 UTC
    // Likewise; nobody can set it: any change of contents, names or rights moves it.
    std::int64_t changed = 0;
    std::uint32_t mode = 0;               // permission bits
    std::uint64_t device = 0, inode = 0;  // equal for two names of one file
    std::uint32_t links = 1;              // names of this file (hard links)
    std::uint32_t owner = 0, group = 0;
};

enum class OpenMode {
    Read,       // must exist
    CreateNew,  // must not exist
    Truncate,   // made or emptied
    Append,     // made if absent
    ReadWrite,  // must exist, contents kept
    Write,      // the same, and nothing can be read: for devices and pipes
};

using Handle = int;  // negative: none

// The calls that touch the disk. Each gives FileError::None on success.
class FileSystem {
public:
    virtual ~FileSystem() = default;
    virtual FileError open(const std::string& path, OpenMode mode, std::uint32_t permissions,
                           Handle& handle) = 0;
    // Reads at most `count` bytes at `offset`; `got` 0 means the end.
    virtual FileError read(Handle handle, std::int64_t offset, char* into, std::size_t count,
                           std::size_t& got) = 0;
    // Writes all of `bytes` at `offset` (Append: at the end), or fails having written some of it. A pipe has
    // no offset; its reader is waited for, but not for long while it takes nothing.
    virtual FileError write(Handle handle, std::int64_t offset, std::string_view bytes) = 0;
    virtual FileError truncate(Handle handle, std::int64_t size) = 0;
    virtual FileError size(Handle handle, std::int64_t& bytes) = 0;
    virtual FileError sync(Handle handle) = 0;
    // Lets the disk begin with what a `sync` of this file will wait for, so that several files wait together. Only
    // a hint: promises nothing, and does not wait.
    virtual void startSync(Handle handle) = 0;
    virtual FileError close(Handle handle) = 0;
    virtual FileError rename(const std::string& from, const std::string& to) = 0;  // replaces `to`
    // The same, but never over something that stands under that name, a link to nowhere too: Exists.
    virtual FileError renameNew(const std::string& from, const std::string& to) = 0;
    virtual FileError remove(const std::string& path) = 0;
    virtual FileError makeFolder(const std::string& path) = 0;
    virtual FileError removeFolder(const std::string& path) = 0;
    virtual FileError syncFolder(const std::string& path) = 0;
    virtual FileError setMode(const std::string& path, std::uint32_t mode) = 0;
    virtual FileError setOwner(const std::string& path, std::uint32_t owner, std::uint32_t group) = 0;
    virtual FileError setModified(const std::string& path, std::int64_t nanoseconds) = 0;
    // The same of an open file, whatever its name leads to by now.
    virtual FileError setModifiedOpen(Handle handle, std::int64_t nanoseconds) = 0;
    virtual FileError link(const std::string& target, const std::string& path) = 0;  // a symbolic link
    // Follows symbolic links. A file that does not exist is no error: `exists` is false. Two system calls.
    virtual FileError info(const std::string& path, FileInfo& info) = 0;
    // The same of an open file, but for `writable`; `links` is 0 for one that has no name any more. One system call.
    virtual FileError infoOpen(Handle handle, FileInfo& info) = 0;
    // Names in a folder, sorted by bytes, without "." and "..". Cost: linear, and the sort.
    virtual FileError list(const std::string& path, std::vector<std::string>& names) = 0;
    // The path with all symbolic links followed; a last part that does not exist is kept. A link whose target
    // does not exist is followed too. A system call for each part of the path.
    virtual FileError resolve(const std::string& path, std::string& resolved) = 0;
    // Free bytes for this user on the disk that holds `path`.
    virtual FileError freeSpace(const std::string& path, std::int64_t& bytes) = 0;
    virtual std::string currentFolder() = 0;
    virtual FileError setCurrentFolder(const std::string& path) = 0;
};

// The file system in force; the real one unless a test has put another in its place.
FileSystem& files();
FileSystem& realFiles();
// Puts `system` in force and returns the one before it; null means the real one.
FileSystem* useFiles(FileSystem* system);

std::string native(std::string_view path);

FileInfo infoOf(const std::string& path);  // exists = false on any failure
// The size in bytes, -1 if there is no such file (or it is a folder).
std::int64_t sizeOf(const std::string& path);

// Up to `count` bytes from `offset` on: `got` of them, fewer only where the file ends.
FileError readUpTo(Handle handle, std::int64_t offset, char* into, std::size_t count, std::size_t& got);
// The whole of a file. On failure `bytes` is empty. Cost: linear; one allocation.
FileError readFile(const std::string& path, std::string& bytes);

enum class Durability {
    Synced,    // survives the death of the machine once the call has returned
    Unsynced,  // survives the death of the process (settings, results that can be made again)
};

// What became of a save.
struct SaveResult {
    FileError error = FileError::None;
    bool inPlace = false;    // the file could not be replaced, so it was written itself
    std::string rescueCopy;  // where the new bytes stand if the save failed half-way in place; else empty
    [[nodiscard]] bool ok() const { return error == FileError::None; }
};

// Replaces the contents of `path` by `bytes`, so that the old or the new contents are on disk at every
// moment. The way: a temporary beside the target, sync, rename, sync of the folder. Permissions and owner are
// kept and a symbolic link is written through.
//
// Where a new file cannot take the place of the old one (a folder that cannot be written, a file with several
// hard links, an owner that this user cannot give to a new file) a synced rescue copy in `rescueFolder()`
// comes first, then the file is written in place, and the copy goes when that worked. The copy's name begins
// with the file's.
//
// A file that this user may not write is Denied and stays as it is, also where the folder would let it be
// replaced. On failure the old contents are whole (or `rescueCopy` names the new ones) and no temporary is
// left. Devices and pipes are no files that could be replaced: they take the bytes as they come, and may have
// got some of them when it fails. One failure comes after the replacing, that of the folder's sync: then the
// new contents are whole in the file, but the death of the machine may bring back the old ones. Cost: about
// 10 system calls; synced, two waits for the disk.
[[nodiscard]] SaveResult saveFile(const std::string& path, std::string_view bytes,
                                  Durability durability = Durability::Synced);

// Makes a file of the bytes that must not exist yet: it is there whole, on the disk, or not at all. What stands under
// the name already, be it a link, is left alone: Exists. The way: a temporary beside it, sync, renameNew, sync of the
// folder; a failure of that last one leaves the file there, and is one all the same.
[[nodiscard]] FileError saveNewFile(const std::string& path, std::string_view bytes, std::uint32_t mode);

// Where rescue copies go: $XDG_STATE_HOME/tarnwick/rescue/, made when first needed. With "/" at the end.
std::string rescueFolder();
// The file beside a rescue copy that holds the full path of what was saved; missing if it could not be written.
std::string rescueNameFile(const std::string& copy);

// All folders of `path` that are missing. Existing ones are no error.
FileError makeFolders(const std::string& path, Durability durability = Durability::Unsynced);

}  // namespace tarn::os
