// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which lines of a class have code, as the compiler has told in its symbol file. What it told of an older text counts no
// more. Cost: the symbol file is read.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// The bitmap of the class's lines, of 1000 bytes; empty if it is not known.
std::string CODELINES(const std::string& classFile);
bool HASCODE(std::string_view bitmap, int line);
int NEXTWITHCODE(std::string_view bitmap, int line);  // the first line behind that one that has; 0: none

}  // namespace tarn
