// SPDX-License-Identifier: Apache-2.0
//
// What was in the way of files that could not be copied or made, and what the user can do.
#include "kernel/run/errors.h"
#include "library/settings/profstr.h"
#include "library/ship/copyutil_internal.h"
#include "os/files.h"

#include <algorithm>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn::ship {

using os::FileError;

namespace {

struct Advice {
    FileError error;
    const char* text;
};
constexpr Advice advices[] = {
    {FileError::NotFound, "Choose a folder that is there, and try again."},
    {FileError::NotFolder, "Choose a folder that is there, and try again."},
    {FileError::Vanished, "Choose a folder that is there, and try again."},
    {FileError::Denied, "Choose a folder that you may write, and try again."},
    {FileError::DiskFull, "Make room on its disk, or choose a folder on another one, and try again."},
    {FileError::IsFolder, "Choose another name, and try again."},
    {FileError::BadName, "Choose a shorter name, and try again."},
};

const char* adviceFor(FileError error) {
    const auto* row = std::find_if(std::begin(advices), std::end(advices),
                                   [error](const Advice& one) { return one.error == error; });
    return row == std::end(advices) ? "Choose another folder, or try again." : row->text;
}

bool canBeRead(const std::string& file) {
    os::Handle handle = -1;
    if (os::infoOf(file).special || os::files().open(file, os::OpenMode::Read, 0, handle) != FileError::None)
        return false;
    os::files().close(handle);
    return true;
}

// The failure of a copy: what its code says, else what is wrong with the folder.
FileError errorOf(std::int32_t code, const std::string& folder, std::int64_t bytes) {
    if (code == ERR_DISK_FULL) return FileError::DiskFull;
    if (code == ERR_FILE_NAME) return FileError::BadName;
    return whyNoneIn(folder, bytes);
}

}  // namespace

std::string unwritten(const std::string& target, FileError error) {
    const std::string why(os::describe(error));
    return "'" + target + "' could not be written" + (why.empty() ? "." : ": " + why) + "\n" +
           adviceFor(error);
}

FileError whyNoneIn(const std::string& folder, std::int64_t bytes) {
    const std::string place = folder.empty() ? "." : os::native(folder);
    const os::FileInfo info = os::infoOf(place);
    if (!info.exists) return FileError::NotFound;
    if (!info.folder) return FileError::NotFolder;
    std::int64_t free = 0;
    if (os::files().freeSpace(place, free) == FileError::None && free < bytes) return FileError::DiskFull;
    const ScratchFile made(folder, ".tarnwick-", ".tmp");
    os::Handle handle = -1;
    const FileError error = os::files().open(made.path(), os::OpenMode::CreateNew, 0600, handle);
    if (error == FileError::None) os::files().close(handle);
    return error;
}

std::string obstacle(const std::string& failed, const std::string& target, FileError error) {
    bool anyRead = false;
    for (int i = 1; i <= STRLINES(failed) && !anyRead; ++i)
        anyRead = canBeRead(os::native(STRLINE(failed, i)));
    return "\nThe file(s) could not be found, or the destination...\n" +
           (anyRead ? unwritten(target, error)
                    : "The file(s) could not be read.\nCheck that you may read them, and try again.");
}

std::string obstacle(const CopyFailure& failure, const std::string& folder, std::int64_t bytes) {
    return obstacle(failure.files, folder, errorOf(failure.code, folder, bytes));
}

}  // namespace tarn::ship
