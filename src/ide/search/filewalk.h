// SPDX-License-Identifier: GPL-3.0-or-later
//
// The files below some folders whose names fit, and their texts. Links are followed; a file or a folder that is reached
// twice, by a link that leads round too, counts once. Devices and pipes are passed over. Cost: two system calls for each
// name; events are handled meanwhile, and the user can stop it.
#pragma once

#include "library/system/longwork.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct FoundFiles {
    std::vector<std::string> files;  // each folder's by name, then those of its folders
    int unreadableFolders = 0;
};

// Folders end with a separator or not; `patterns` are separated by ";" or blanks and fit any case: `*` stands for any
// characters, `?` for one; no pattern fits all.
FoundFiles FILESIN(const std::vector<std::string>& folders, std::string_view patterns, bool subfolders,
                   LongWork& work);
bool FITSPATTERNS(std::string_view name, std::string_view patterns);

// Why files were passed over.
struct SkippedFiles {
    int binary = 0;      // hold a NUL byte
    int tooLarge = 0;    // are larger than the Code window takes
    int unreadable = 0;  // and folders
    // A line for each of these that there are: "3 files were passed over because ...".
    [[nodiscard]] std::string lines() const;
};

// Reads a file that can be searched; false, and counted, for any other.
bool READTEXTFILE(const std::string& file, std::string& text, SkippedFiles& skipped);

}  // namespace tarn
