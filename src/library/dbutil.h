// SPDX-License-Identifier: Apache-2.0
//
// The compiler's messages: lines of the form  file ( line ) : [error|fatal] number rest.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// `position` at least 1: the message at that character; below 1: all messages, a line each. A message reads
// as "file" line number; "- 0 0" if there is none. A file without drive and folder is looked up in
// `searchPaths`.
std::string FILEGETERROR(std::string_view text, int position, std::string_view searchPaths);

struct ErrorLine {
    std::string file;
    int line = 0, number = 0;
};
// One line from `position` (1-based), which ends at the start of the next line.
ErrorLine FILEGETERRORLINE(std::string_view text, std::size_t& position);

}  // namespace tarn
