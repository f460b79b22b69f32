// SPDX-License-Identifier: Apache-2.0
//
// The steps that saves are made of, for the modules of saves and for what replaces several files together.
#pragma once

#include "os/files.h"

#include <cstdint>
#include <string>

namespace tarn::os {

inline constexpr std::uint32_t PrivateFileMode = 0600;
inline constexpr std::uint32_t UsualFileMode = 0666;  // the user's mask takes its part away

struct SaveTarget {
    std::string path;  // links followed
    FileInfo info;
};
FileError findSaveTarget(const std::string& path, SaveTarget& target);

// A file that did not exist before, open for writing.
struct NewFile {
    std::string path;
    Handle handle = -1;
};
// Makes a file of a name that nobody has: `start`, the process and a count.
FileError makeUniqueFile(const std::string& start, const std::string& end, std::uint32_t mode, NewFile& made);
// Gives the new file the owner and the permissions of the one it replaces. Denied if this user cannot.
FileError takeOver(const FileInfo& old, const std::string& path);
// Brings the bytes to the disk, if that is wanted, and closes.
FileError finishFile(Handle handle, Durability durability);
// What the new file of a target's folder is called at its beginning and its end.
std::string temporaryStart(const SaveTarget& target);
inline constexpr const char* TemporaryEnd = ".tmp";

// ---- files that are written in place ----

// The new bytes stand in a copy in the rescue folder first. Makes one, open for writing, with the note of its file.
FileError beginRescueCopy(const SaveTarget& target, Durability durability, NewFile& made);
void removeRescueCopy(const std::string& copy);
// Writes what the copy holds, which is closed and on the disk, over the file. It goes, unless the file may be torn.
SaveResult saveFromRescueCopy(const SaveTarget& target, const std::string& copy, std::int64_t size,
                              Durability durability);

}  // namespace tarn::os
