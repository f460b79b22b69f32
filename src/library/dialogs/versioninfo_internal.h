// SPDX-License-Identifier: Apache-2.0
//
// The text of a version block taken apart, for its reader and writer (versioninfo.cpp) and its editor
// (versioninfo_edit.cpp). Words and strings are those of resource files: a word is of letters, digits and "_#-+", a
// string ends on its line, and a quote in it stands twice or behind a backslash. A backslash stands for itself, and
// only ahead of a quote for the next character, so that paths are what they seem. Cost: linear in the texts.
#pragma once

#include "library/dialogs/versioninfo.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::detail {

inline constexpr std::string_view NullMark = "\\0";

struct VersionKey {
    std::string_view name;
    std::string VersionFields::*field;
};
inline constexpr VersionKey versionKeys[] = {
    {"Comments", &VersionFields::comments},        {"CompanyName", &VersionFields::company},
    {"LegalCopyright", &VersionFields::copyright}, {"LegalTrademarks", &VersionFields::trademarks},
    {"ProductName", &VersionFields::product},      {"FileDescription", &VersionFields::description},
};

// Bytes of the block, from 0.
struct VersionSpan {
    std::size_t begin = 0, end = 0;
};

// VALUE "key", text: the strings that are joined to the first one may stand on lines of their own.
struct VersionValue {
    std::string key, text;           // the text of the first of them, without the mark of its end
    bool isString = false;           // otherwise a word or a number
    bool null = false;               // the text has the mark of its end
    std::vector<VersionSpan> spans;  // of the text
    VersionSpan whole;               // all up to the next word of the block
    bool follows = false;            // right behind the value ahead of it
};

// FILEVERSION or PRODUCTVERSION and what is behind it, up to the first word that no comma joins to it.
struct VersionNumbers {
    std::string word, text;          // `text`: parted by blanks
    std::vector<VersionSpan> spans;  // where there are none, an empty one behind the word
};

struct VersionParts {
    std::string name;
    std::vector<VersionValue> values;
    std::vector<VersionNumbers> numbers;
    std::size_t headEnd = 0;  // behind VERSIONINFO and its options
    std::size_t body = 0;     // where the first word behind that begins
    std::size_t close = 0;    // where the END of the block begins
    bool closed = false;      // there is one
};
VersionParts versionPartsOf(std::string_view block);

// A text in quotes, with the mark of its end where `null` is set or the text itself ends in one.
std::string quotedVersionText(const std::string& text, bool null);
// Four numbers; those that are missing are 0.
std::string versionNumbers(const std::string& version, std::string_view separator);
std::string versionValueLine(std::string_view key, const std::string& text);  // with its line end

}  // namespace tarn::detail
