// SPDX-License-Identifier: GPL-3.0-or-later
//
// The lines in which two texts differ, for the user to read: "- " in front of those that only the first has, "+ " of those
// that only the second has, and two common lines around them. Each stretch begins with the number of its line in the
// first text. Common ends are found at once; between them cost grows with lines times differing lines, up to a bound
// beyond which all lines there count as different.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// Empty for equal texts. Cut behind `most` lines.
std::string LINEDIFFERENCE(std::string_view first, std::string_view second, int most);

// How many lines the second text has other than the first: one that is written anew counts once, and so does one that has
// come or gone.
int LINESCHANGED(std::string_view first, std::string_view second);

}  // namespace tarn
