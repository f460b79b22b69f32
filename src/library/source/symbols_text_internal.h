// SPDX-License-Identifier: Apache-2.0
//
// What the parts of the module symbols share: the text of a source in either mode, and the walk over its
// tokens.
#pragma once

#include <string>
#include <string_view>

namespace tarn::detail {

// The text of a source; empty if the file is missing or cannot be read, which is no error.
std::string loadSource(int mode, const std::string& source);
// Puts the changed text into the file (mode 1) or into `source`. The result is an error text, empty on
// success.
std::string storeSource(int mode, std::string& source, std::string text);

// Walks over a text token by token. Where no token stands it passes a comment or one character.
struct TokenWalk {
    explicit TokenWalk(std::string_view whole) : text(whole) {}
    // False at the end of the text. `word` is empty after a step over a comment or the character `stop`.
    bool next();

    std::string_view text;
    std::size_t position = 1;  // of what comes next, 1-based
    std::size_t start = 1;     // of `word`
    std::string word, upper;
    char stop = '\0';
};

}  // namespace tarn::detail
