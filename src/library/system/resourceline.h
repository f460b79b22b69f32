// SPDX-License-Identifier: Apache-2.0
//
// The lines of ResourceInfo that stand for a file: name, id, kind word, options and path. Whoever has such a line needs
// not read the resource file again. Cost: linear in the line.
#pragma once

#include <string>

namespace tarn {

// The path that the line tells, without its quotes and with single backslashes; empty if there is none.
std::string RESOURCELINEFILENAME(const std::string& line);

}  // namespace tarn
