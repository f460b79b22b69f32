// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the commands on a program's members have in common: the one form in which they say what is wrong with a file (a
// headline, the file on a line of its own, the reason), and what may be the name of a class or of a function.
#pragma once

#include "library/system/product.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <string>

namespace tarn {

inline constexpr const char* UsualHeadline = "The following file:";

// Why no class beside the library's own may be called like one of its core.
inline constexpr const char* CoreName = "its name is that of a core run time library class.\nMake a copy of "
                                        "the file with another name and try again.\n";

inline std::string FILEMESSAGE(const std::string& path, const std::string& reason,
                               const std::string& headline = UsualHeadline) {
    return headline + "\n\n\t'" + path + "'\n\n" + reason;
}

// A letter, then letters, digits and "_"; no word of the language.
inline bool ISNAME(const std::string& word) {
    std::size_t position = 1;
    return !word.empty() && word.size() <= MaxIdentifier && ascii::isLetter(word[0]) &&
           NextWord(word, position) == word && !ISRESERVEDWORD(word);
}

}  // namespace tarn
