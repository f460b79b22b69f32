// SPDX-License-Identifier: Apache-2.0
//
// The lines behind the rows of a delimited file that a table was read from.
#pragma once

#include <cstdint>
#include <string>

namespace tarn {

// The last `count` lines of a file, to be written behind other rows; "" when they tell the number of rows and
// no more, as those of a saved file do, which are made anew. False when the file cannot be read.
bool ReadFooters(const std::string& filename, std::int32_t count, std::string& footers);

}  // namespace tarn
