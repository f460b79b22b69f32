// SPDX-License-Identifier: Apache-2.0
//
// Classes of characters and of whole texts. These functions compute on their arguments alone, can neither
// fail nor set the error cell, and so have no frames.
#include "library/designer/propedit.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

namespace tarn {
namespace {

bool allOf(std::string_view text, bool (*isOne)(char)) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isOne);
}

bool beginsWith(std::string_view text, std::string_view with) {
    return ascii::equal(text.substr(0, with.size()), with);
}

}  // namespace

bool ISALPHA(char c) {
    return ascii::isLetter(c);
}
bool ISALNUM(char c) {
    return ascii::isLetter(c) || ascii::isDigit(c);
}
bool ISSYMBOL(char c) {
    return ascii::isSymbol(c);
}
bool ISDIGIT(char c) {
    return ascii::isDigit(c);
}
bool ISFILENAME(char c) {
    return FILENAMECHAR(c);
}
bool ISSPACE(char c) {
    return ascii::isSpace(c);
}

bool ISALPHASTR(std::string_view text) {
    return allOf(text, ISALPHA);
}
bool ISALNUMSTR(std::string_view text) {
    return allOf(text, ISALNUM);
}
bool ISSYMBOLSTR(std::string_view text) {
    return allOf(text, ISSYMBOL) && ISALPHA(text[0]);
}
bool ISDIGITSTR(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    return allOf(text, ISDIGIT);
}
bool ISHEXSTR(std::string_view text) {
    if (text.size() < 2) return false;
    if (beginsWith(text, "0x")) text.remove_prefix(2);
    return allOf(text, [](char c) { return ascii::hexDigit(c) >= 0; });
}
bool ISFILENAMESTR(std::string_view text) {
    return allOf(text, ISFILENAME);
}
bool ISWEBSITESTR(std::string_view text) {
    return beginsWith(text, "http://www");
}
bool ISMAILTOSTR(std::string_view text) {
    return beginsWith(text, "mailto:") && text.find('@') != std::string_view::npos;
}

}  // namespace tarn
