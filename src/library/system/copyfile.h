// SPDX-License-Identifier: Apache-2.0
//
// FILECOPY without its rules for names: any name that a file has on this machine, and a destination that is a file's name.
// For lists of files that were found on the disk; FILECOPY itself takes what may stand in a class.
#pragma once

#include <string>

namespace tarn {

// Results, failures and cost as of FILECOPY without `confirm`.
bool COPYANYFILE(const std::string& source, const std::string& dest);

}  // namespace tarn
