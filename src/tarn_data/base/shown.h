// SPDX-License-Identifier: Apache-2.0
//
// Texts of files as messages show them: a terminal must not be told what to do by a name or by a cell.
// Control characters and bytes that are no UTF-8 stand as \x1B, everything else as it is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::datatool {

std::string shown(std::string_view text);
// "1 row", "2 rows"; with `many`, "1 index", "2 indexes".
std::string counted(std::int64_t n, std::string_view one, std::string_view many = {});
// The beginning of a long cell, and "..." behind it. No character is cut.
std::string shownCell(std::string_view text);

}  // namespace tarn::datatool
