// SPDX-License-Identifier: GPL-3.0-or-later
//
// The names that a place of a class text knows: those of its function, of the class, of the classes that it uses, and
// of the library. A used class is read from its source, or from its symbol file where there is no source; it lies
// beside the class, beside the main class, or on the inherited path. What was read is kept until time or size of the
// file change. Cost: one pass over the text of the open class; a look at each used file.
#pragma once

#include "library/source/classnames.h"

#include <functional>
#include <string>
#include <string_view>

namespace tarn {

// Where names are looked for: the text of a class, its file, a line of it, and the word in front of a "." at the place,
// which leaves only the names of that class or window; empty: no such word.
struct NamePlace {
    std::string_view text;
    std::string file;
    int line = 1;
    std::string qualifier;
};
// Calls `found` with each name and its file: empty for the library. Those that are nearer come first; `found` gives
// false to end it.
using NameFound = std::function<bool(const DeclaredName& name, const std::string& file)>;
void EACHNAME(const NamePlace& place, const NameFound& found);

// The source of a used class, else its symbol file; empty if neither is there.
std::string FINDCLASS(const std::string& name, const std::string& fromFile);
std::string GETLIBRARYCLASS();  // the file with the library's own class

}  // namespace tarn
