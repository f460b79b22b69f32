// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an edit window saw of its file on the disk when it read or wrote it last, so that a save does not take away
// what another program has written since.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// The file is on the disk as the window shows it.
void NOTEFILESEEN(const Object& window, const std::string& file);
// The window has the name of the file alone, and was never read from it or written to it.
void NOTEFILEUNSEEN(const Object& window, const std::string& file);
bool ISFILEUNSEEN(const Object& window, const std::string& file);
// The disk holds another text than the window has seen there: false for a file that is gone, and for one that nothing was
// noted of.
bool CHANGEDOUTSIDE(const Object& window, const std::string& file);

// What has happened to the file since it was seen, or since the user was asked about it last.
enum class OutsideChange { None, Changed, Gone };
OutsideChange NEWCHANGEOUTSIDE(const Object& window, const std::string& file);
// The user is being asked about what stands on the disk now.
void NOTECHANGEASKED(const Object& window, const std::string& file);

// Lives while a window gets or gives up its file, or asks about it: its boxes bring windows forward, and nobody else must
// ask about the file then.
class FileWork {
public:
    FileWork() { ++depth_; }
    ~FileWork() { --depth_; }
    FileWork(const FileWork&) = delete;
    FileWork& operator=(const FileWork&) = delete;
    [[nodiscard]] static bool goesOn() { return depth_ > 0; }

private:
    static inline int depth_ = 0;
};

}  // namespace tarn
