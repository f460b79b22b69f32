// SPDX-License-Identifier: Apache-2.0
//
// Lists of files that are to be copied somewhere. A list is a text with a line for each file: its path, which ends at
// the first tab, and whatever else stands behind it. A file that is listed twice, be it by two paths that end in the same
// name, counts once, where it stands first. Functions that touch the disk leave no error in the cell: what
// they could not do is in their result.
#pragma once

#include "library/ship/packagesize.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct CopyFile {
    std::string Name;  // the full path
    std::int32_t Size =
        -1;  // in bytes, -1: it does not exist; what is larger than the number can be is the largest
    std::int32_t Rounded = 0;  // up to whole allocation units
    std::int32_t Disk = 0;     // on which it goes, from 1 on; 0: not placed
};

struct CopyList {
    int lowerBound = 1;  // -1: the files cannot be copied, and the list is empty
    std::vector<CopyFile> files;

    [[nodiscard]] bool canBeCopied() const { return lowerBound > 0; }
    [[nodiscard]] int disks() const { return files.empty() ? 0 : files.back().Disk; }
    [[nodiscard]] std::int64_t roundedSize(int disk) const;  // of the files on one disk
    [[nodiscard]] std::string paths(int disk) const;         // of the same, one a line
};

// ---- lines ----
std::string COPYPATH(std::string_view line);  // the path of a line
std::string STRSORT(std::string_view text);   // the lines in the order of their bytes, each with its line end
std::string STRPLURAL(int count);             // "s", nothing for 1
std::string FILELISTONCE(const std::string& files);  // the lines of a list, each file once; no empty ones
std::string GETEXTNFILELIST(const std::string& files,
                            std::string_view extension);  // any case; paths, one a line
// The paths of the files that have a name in common with another file, one a line, those of one name together.
std::string SAMENAMEDFILES(const std::string& files);
// Whether a short listing of a zip file has a line with that size and that name, extension included.
bool ISNAMEINLIST(const std::string& text, const std::string& name, std::int64_t size);

// ---- files ----

// Sizes the files and places them on disks: each on the current one if it fits there, otherwise on the next. One that
// does not exist, or fits on no disk, makes the whole list empty.
CopyList GETSEGMENTEDFILELIST(const std::string& files, std::int64_t diskSize, std::int64_t allocationUnit);
// The files of a folder whose names fit the pattern ("*.*": all): name, tab, size, one a line.
std::string GETDISKFILELIST(const std::string& folder, std::string_view pattern);
// The same lines for the files of a list, as they will stand in the folder that they are copied to.
std::string FILELISTLINES(const std::string& files);

// Whether to go on, asked ahead of each file.
using CopyProgress = bool (*)(void* context, std::int64_t done, std::int64_t total);
struct CopyFailure {
    std::string files;      // those that were not copied, one a line
    std::int32_t code = 0;  // the error of the first that could not be
};
// Copies the files into the folder; of several of one name only the first. When the work was stopped, all that had not been
// copied by then are in the result.
CopyFailure COPYFILES(const std::string& files, const std::string& folder, CopyProgress go = nullptr,
                      void* context = nullptr);
// The same, and of the result the files alone.
std::string FILECOPYLIST(const std::string& files, const std::string& folder, CopyProgress go = nullptr,
                         void* context = nullptr);
std::string
FILEDELETELIST(const std::string& files);  // those that are still there; none that was not there before

std::string GETCOMMANDPROCESSOR();  // of the variable COMSPEC; empty if it is not set

}  // namespace tarn
