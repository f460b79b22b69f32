// SPDX-License-Identifier: Apache-2.0
//
// What the rows of a file do not show of it: signs that it was cut off, or was written by other rules.
//
// Cost: Xbase files by their header; delimited text is read once, in blocks.
#pragma once

#include "kernel/data/format.h"

#include <string>
#include <vector>

namespace tarn::detail {

// A sentence for each. `rows` are those that were read of the file. None when the user stops the look.
std::vector<std::string> remarksOnFile(const std::string& filename, DataFormat format, int rows);

}  // namespace tarn::detail
