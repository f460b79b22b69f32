// SPDX-License-Identifier: GPL-3.0-or-later
//
// The files of a class: the two that lie beside each other, and which of them the Code window shows. Names that differ by
// case are those of two files. Cost: a look at the folder's entries of these names.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// The class or the resource file of the same folder and stem, by its extension. One with the extension in upper case
// counts where there is none in lower case; where there is neither, the name in lower case. A file of that extension is
// its own twin, and no file has none.
std::string TWINFILE(const std::string& file, std::string_view extension);

// Whether the file stands in the Code window, by this name or by another one that it has.
bool ISINEDITOR(const std::string& file);
// Whether it is the file of the Code window by its name, whatever the case: two that are both there, and differ, are two.
bool HASNAMEINEDITOR(const std::string& file);

}  // namespace tarn
