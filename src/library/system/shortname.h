// SPDX-License-Identifier: Apache-2.0
//
// Names of files that have to fit into a line.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// The name, in at most `width` bytes: of one that is longer the middle of the folder goes first and leaves "...", so that
// drive, file name and extension stay; then all but the end of the name; where not even that has room, as much of "..." as
// fits. No character is cut in two: the result is then a byte or more shorter.
std::string FILESHORTENNAME(std::string_view name, int width);
// The first `width` bytes, without a part of a character at the end.
std::string FIRSTBYTES(std::string_view text, int width);

}  // namespace tarn
