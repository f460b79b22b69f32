// SPDX-License-Identifier: GPL-3.0-or-later
//
// Commands that change several files of a program leave it whole: all of the files are changed, or none is, whatever
// happens between (os/changes.h tells how). A command gathers the new texts of all files it means to change, and writes
// them by one call:
//
//     const std::string error = CHANGEFILES({{classFile, classText, os::FileChange::Kind::Create},
//                                            {mainFile, mainText}});
//
// Nothing may be shown or asked between reading a file and that call, as somebody could change the file meanwhile. A file
// that stands in the Code window or the dialog editor is changed there instead.
//
// Cost: that of os/changes.h.
#pragma once

#include "os/changes.h"

#include <string>
#include <vector>

namespace tarn {

// An error text, which names the file, the cause and what has become of the others; empty on success.
[[nodiscard]] std::string CHANGEFILES(const std::vector<os::FileChange>& changes);

// At start: finishes what a process that died has begun, and tells it in a box. True if there was anything.
bool FINISHCHANGES();

}  // namespace tarn
