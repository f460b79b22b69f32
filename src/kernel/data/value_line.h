// SPDX-License-Identifier: Apache-2.0
//
// What discovery declares of one value that stands as text in a data file, whatever its format.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// As TypeInfoValueLine (typeinfo.h), but a number with more decimals than fixed keeps is real.
std::string DataValueLine(std::string_view value, std::string_view name, std::string_view nullWord,
                          std::string_view defaultLine);

}  // namespace tarn
