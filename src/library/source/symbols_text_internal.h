// SPDX-License-Identifier: Apache-2.0
//
// What the parts of the module symbols share: the text of a source in either mode, its lines, the walk over its
// tokens, and the items that the source scan finds.
#pragma once

#include "os/tinylimits.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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

// ---- lines ----

using limits::MaxClassLines;
inline constexpr const char* TooManyLines = MaxClassLines == 8000
                                                ? "Class has too many lines, maximum is 8000."
                                                : "Class has too many lines, maximum is 80.";

using Lines = std::vector<std::string>;  // each without its line end

// The lines of a text; false, and no lines, if there are more than MaxClassLines.
bool LOADSTRINGLIST(std::string_view text, Lines& lines);
std::string joinLines(const Lines& lines);  // with CR LF behind each
// Stores them so; see storeSource.
std::string SAVESTRINGLIST(int mode, std::string& source, const Lines& lines);

// ---- items ----

enum class ItemKind { Function, Declaration, Handler };

// A function, a constant or type, or an event handler of a callback. Lines count from 1; `last` is the one before the
// next item.
struct Item {
    ItemKind kind = ItemKind::Function;
    std::string name;
    int first = 0, last = 0;
    std::size_t column = 0;  // characters in front of the name in the first line
    std::string event;       // of a handler: the word behind "case"
};
std::vector<Item> scanItems(std::string_view text);
// Whether the words of a line begin with "end class".
bool endsClass(std::string_view line);

}  // namespace tarn::detail
