// SPDX-License-Identifier: GPL-3.0-or-later
//
// A file that the program brings along is added to a resource file: pictures as BITMAP, all others as INCFILE, under a name
// made of the file's. Paths in the resource and compiler folders are written with placeholders. What cannot be added is
// told. Cost: reads and writes the resource file.
#pragma once

#include <string>

namespace tarn {

void PROJECTADDFILE(const std::string& title);

// Whether a resource of the file stands for that file, under whatever path.
bool ISFILENAMEINRESOURCEFILE(const std::string& resourceFile, const std::string& file);

}  // namespace tarn
