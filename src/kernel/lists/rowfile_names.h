// SPDX-License-Identifier: Apache-2.0
//
// Files beside a file of rows or an index. Only the modules of rowfile.h and index_file.h include this.
#pragma once

#include "os/files.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// A file that did not exist before, open for writing. It is gone again at the end unless its path was
// cleared.
struct NewFile {
    static constexpr std::uint32_t usualMode = 0666;  // the user's mask takes its part away

    NewFile() = default;
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    os::FileError close();

    std::string path;
    os::Handle handle = -1;
};

// Makes one in the folder of `path`, with its extension, under a name that nobody has.
os::FileError MakeFileBeside(const std::string& path, NewFile& made);
// Gives a file the permissions of the table file, if there is one, so that it tells nobody more than the rows
// do; and its owner and group where this user can.
os::FileError GiveRightsOf(std::string_view tableFile, const std::string& path);
// "." for a name without a folder.
std::string FolderOfFile(const std::string& path);

}  // namespace tarn
