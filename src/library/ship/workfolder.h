// SPDX-License-Identifier: Apache-2.0
//
// A folder for what stands only while something is made: `.NAME-1.work` or higher, beside the file that is being made, so
// that this one can be renamed into its place. It goes with all that is in it at the end of the work.
//
// A process that was killed leaves its folder. The next one that works in the same place removes it: a file in the folder,
// `tarnwick-packager`, is held by the process it belongs to (os/heldfile.h), and only a folder that has this file, and whose
// process is dead, goes. Where a disk has no locks such folders stay.
//
// Nothing here leaves an error in the cell. Cost: reads the folder.
#pragma once

#include "os/files.h"
#include "os/heldfile.h"

#include <string>

namespace tarn::ship {

class WorkFolder {
public:
    explicit WorkFolder(const std::string& file);
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    // With "/" at its end; empty: it could not be made, and why.
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] os::FileError error() const { return error_; }

private:
    bool make(const std::string& folder);
    bool hold(const std::string& folder);

    std::string path_;
    os::FileError error_ = os::FileError::None;
    os::HeldFile held_;
};

// Removes what dead processes have left in a folder (empty: the current one).
void REMOVEDEADWORK(const std::string& folder);

}  // namespace tarn::ship
