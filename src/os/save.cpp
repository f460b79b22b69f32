// SPDX-License-Identifier: Apache-2.0
//
// Whole-file saves. Every step is a call of `FileSystem`; nothing here relies on a destructor to clean up on
// the disk, so that the death of the process between two calls is what it is in life: the end of all calls.
//
//     replace    temporary beside the target, write, owner, mode, sync, close, rename, sync of the folder
//     new        the same without owner and mode, and with a rename that goes over nothing
//     in place   rescue copy (the same steps, in the rescue folder), then the file itself: first what it
//                grows by, so that a full disk shows before an old byte is touched
#include "os/save_parts.h"

#include "os/paths.h"
#include "os/process.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <unistd.h>

namespace tarn::os {

FileError findSaveTarget(const std::string& path, SaveTarget& target) {
    if (const FileError error = files().resolve(path, target.path); error != FileError::None) return error;
    if (const FileError error = files().info(target.path, target.info); error != FileError::None)
        return error;
    if (target.info.folder) return FileError::IsFolder;
    return target.info.exists && !target.info.writable ? FileError::Denied : FileError::None;
}

FileError makeUniqueFile(const std::string& start, const std::string& end, std::uint32_t mode,
                         NewFile& made) {
    static unsigned count = 0;
    constexpr int attempts = 100;  // names left by dead processes that had this number
    FileError error = FileError::Exists;
    for (int i = 0; i < attempts && error == FileError::Exists; ++i) {
        made.path = start + std::to_string(::getpid()) + "-" + std::to_string(++count) + end;
        error = files().open(made.path, OpenMode::CreateNew, mode, made.handle);
    }
    return error;
}

FileError takeOver(const FileInfo& old, const std::string& path) {
    FileInfo info;
    if (const FileError error = files().info(path, info); error != FileError::None) return error;
    if (info.owner != old.owner || info.group != old.group) {
        const FileError error = files().setOwner(path, old.owner, old.group);
        if (error != FileError::None) return error;
    }
    // Where all files have the mode that the disk was mounted with, setting it would be an error.
    return info.mode != old.mode ? files().setMode(path, old.mode) : FileError::None;
}

FileError finishFile(Handle handle, Durability durability) {
    const FileError synced = durability == Durability::Synced ? files().sync(handle) : FileError::None;
    const FileError closed = files().close(handle);
    return synced != FileError::None ? synced : closed;
}

std::string temporaryStart(const SaveTarget& target) {
    return joined(folderOf(target.path), ".tarnwick-");
}

namespace {

struct Replacement {
    FileError error = FileError::None;
    bool impossible = false;  // the file cannot be replaced; writing it in place may work
};

// Writes, syncs and closes the new file, and removes it if anything of that fails.
FileError fill(const NewFile& made, std::string_view bytes, const FileInfo* old, Durability durability) {
    FileError error = files().write(made.handle, 0, bytes);
    if (error == FileError::None && old != nullptr) error = takeOver(*old, made.path);
    if (error == FileError::None) {
        error = finishFile(made.handle, durability);
    } else {
        files().close(made.handle);
    }
    if (error != FileError::None) files().remove(made.path);
    return error;
}

Replacement replace(const SaveTarget& target, std::string_view bytes, Durability durability) {
    const std::string folder = folderOf(target.path);
    const FileInfo* const old = target.info.exists ? &target.info : nullptr;
    const auto result = [&](FileError error) {
        return Replacement{error, error == FileError::Denied && old != nullptr};
    };
    NewFile made;
    FileError error = makeUniqueFile(temporaryStart(target), TemporaryEnd,
                                     old != nullptr ? PrivateFileMode : UsualFileMode, made);
    if (error != FileError::None) return result(error);
    error = fill(made, bytes, old, durability);
    if (error != FileError::None) return result(error);
    error = files().rename(made.path, target.path);
    if (error != FileError::None) {
        files().remove(made.path);
        return result(error == FileError::NotFound ? FileError::Vanished : error);
    }
    return {durability == Durability::Synced ? files().syncFolder(folder) : FileError::None, false};
}

// Beside the copy stands the path of its file, so that the text can be given back to it.
FileError writeRescueName(const std::string& copy, const std::string& path) {
    const std::string file = rescueNameFile(copy);
    Handle handle = -1;
    if (const FileError error = files().open(file, OpenMode::CreateNew, PrivateFileMode, handle);
        error != FileError::None)
        return error;
    const FileError written = files().write(handle, 0, path);
    const FileError closed = files().close(handle);
    return written != FileError::None ? written : closed;
}

FileError writeRescueCopy(const SaveTarget& target, std::string_view bytes, Durability durability,
                          std::string& copy) {
    NewFile made;
    FileError error = beginRescueCopy(target, durability, made);
    if (error != FileError::None) return error;
    error = fill(made, bytes, nullptr, durability);
    if (error == FileError::None && durability == Durability::Synced)
        error = files().syncFolder(rescueFolder());
    if (error != FileError::None) removeRescueCopy(made.path);
    copy = made.path;
    return error;
}

// What is written over a file: bytes in memory, all at once, or those of another file, piece by piece.
class NewBytes {
public:
    explicit NewBytes(std::string_view bytes)
        : bytes_(bytes), size_(static_cast<std::int64_t>(bytes.size())) {}
    NewBytes(Handle from, std::int64_t size) : from_(from), size_(size) {}

    [[nodiscard]] std::int64_t size() const { return size_; }
    // From one place up to another, to the same place of the file.
    FileError write(Handle handle, std::int64_t begin, std::int64_t end) {
        if (from_ < 0) return files().write(handle, begin, part(begin, end));
        FileError error = FileError::None;
        for (std::int64_t at = begin; at < end && error == FileError::None;) {
            std::size_t got = 0;
            piece_.resize(static_cast<std::size_t>(std::min(end - at, mostBytes)));
            error = readUpTo(from_, at, piece_.data(), piece_.size(), got);
            if (error == FileError::None && got != piece_.size()) error = FileError::ReadFailed;
            if (error == FileError::None) error = files().write(handle, at, piece_);
            at += static_cast<std::int64_t>(got);
        }
        return error;
    }

private:
    static constexpr auto mostBytes = static_cast<std::int64_t>(limits::SaveStreamBytes);

    [[nodiscard]] std::string_view part(std::int64_t begin, std::int64_t end) const {
        return bytes_.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
    }

    std::string_view bytes_;
    Handle from_ = -1;
    std::int64_t size_;
    std::string piece_;
};

// Writes over the open file. `touched` tells whether an old byte may have changed.
FileError overwrite(Handle handle, std::int64_t oldSize, NewBytes& bytes, bool& touched) {
    const std::int64_t size = bytes.size();
    if (size > oldSize) {
        const FileError error = bytes.write(handle, oldSize, size);
        if (error != FileError::None) {
            touched = files().truncate(handle, oldSize) != FileError::None;
            return error;
        }
    }
    touched = true;
    const FileError error = bytes.write(handle, 0, std::min(size, oldSize));
    if (error != FileError::None) return error;
    return size < oldSize ? files().truncate(handle, size) : FileError::None;
}

FileError writeTarget(const SaveTarget& target, NewBytes& bytes, Durability durability, bool& touched) {
    Handle handle = -1;
    if (const FileError error = files().open(target.path, OpenMode::ReadWrite, 0, handle);
        error != FileError::None) {
        return error == FileError::NotFound ? FileError::Vanished : error;
    }
    const FileError error = overwrite(handle, target.info.size, bytes, touched);
    if (error == FileError::None) return finishFile(handle, durability);
    files().close(handle);
    return error;
}

SaveResult writeBehindCopy(const SaveTarget& target, const std::string& copy, NewBytes& bytes,
                           Durability durability) {
    SaveResult result;
    result.inPlace = true;
    bool touched = false;
    result.error = writeTarget(target, bytes, durability, touched);
    if (result.ok() || !touched) {
        removeRescueCopy(copy);
    } else {
        result.rescueCopy = copy;
    }
    return result;
}

SaveResult saveInPlace(const SaveTarget& target, std::string_view bytes, Durability durability) {
    std::string copy;
    const FileError error = writeRescueCopy(target, bytes, durability, copy);
    if (error != FileError::None) return {error, true, {}};
    NewBytes all(bytes);
    return writeBehindCopy(target, copy, all, durability);
}

// A device or a pipe takes the bytes as they come; it has no old contents.
SaveResult saveToDevice(const SaveTarget& target, std::string_view bytes) {
    SaveResult result;
    result.inPlace = true;
    Handle handle = -1;
    result.error = files().open(target.path, OpenMode::Write, 0, handle);
    if (!result.ok()) return result;
    const FileError written = files().write(handle, 0, bytes);
    const FileError closed = files().close(handle);
    result.error = written != FileError::None ? written : closed;
    return result;
}

}  // namespace

void removeRescueCopy(const std::string& copy) {
    files().remove(copy);
    files().remove(rescueNameFile(copy));
}

FileError beginRescueCopy(const SaveTarget& target, Durability durability, NewFile& made) {
    constexpr std::size_t longestStart = 200;  // leaves room for the rest in a name of 255 bytes
    const std::string folder = rescueFolder();
    if (const FileError error = makeFolders(folder, durability); error != FileError::None) return error;
    const std::string start = folder + nameOf(target.path).substr(0, longestStart) + ".";
    FileError error = makeUniqueFile(start, "", PrivateFileMode, made);
    if (error != FileError::None) return error;
    error = writeRescueName(made.path, target.path);
    if (error == FileError::None) return error;
    files().close(made.handle);
    removeRescueCopy(made.path);
    return error;
}

SaveResult saveFromRescueCopy(const SaveTarget& target, const std::string& copy, std::int64_t size,
                              Durability durability) {
    Handle from = -1;
    if (const FileError error = files().open(copy, OpenMode::Read, 0, from); error != FileError::None) {
        removeRescueCopy(copy);
        return {error, true, {}};
    }
    NewBytes bytes(from, size);
    SaveResult result = writeBehindCopy(target, copy, bytes, durability);
    files().close(from);
    return result;
}

SaveResult saveFile(const std::string& path, std::string_view bytes, Durability durability) {
    SaveTarget target;
    if (const FileError error = findSaveTarget(path, target); error != FileError::None)
        return {error, false, {}};
    if (target.info.special) return saveToDevice(target, bytes);
    if (target.info.links > 1) return saveInPlace(target, bytes, durability);
    const Replacement result = replace(target, bytes, durability);
    if (result.impossible) return saveInPlace(target, bytes, durability);
    return {result.error, false, {}};
}

FileError saveNewFile(const std::string& path, std::string_view bytes, std::uint32_t mode) {
    const std::string target = native(path);
    NewFile made;
    FileError error = makeUniqueFile(temporaryStart({target, {}}), TemporaryEnd, mode, made);
    if (error != FileError::None) return error;
    error = fill(made, bytes, nullptr, Durability::Synced);
    if (error != FileError::None) return error;
    error = files().renameNew(made.path, target);
    if (error != FileError::None) {
        files().remove(made.path);
        return error == FileError::NotFound ? FileError::Vanished : error;
    }
    return files().syncFolder(folderOf(target));
}

std::string rescueNameFile(const std::string& copy) {
    return joined(folderOf(copy), "." + nameOf(copy) + ".name");
}

std::string rescueFolder() {
    return stateFolder() + "rescue/";
}

}  // namespace tarn::os
