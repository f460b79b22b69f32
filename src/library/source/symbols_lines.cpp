// SPDX-License-Identifier: Apache-2.0
//
// The lines of a class text, and the Uses clause. A text of more than 8000 lines is refused.
#include "library/source/symbols.h"

#include "library/source/symbols_text_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"
#include "os/tinylimits.h"

MODULE("symbols", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace detail {

bool LOADSTRINGLIST(std::string_view text, Lines& lines) {
    FRAME(LOADSTRINGLIST);
    lines.clear();
    while (!text.empty()) {
        if (lines.size() == MaxClassLines) {
            lines.clear();
            return false;
        }
        lines.emplace_back(ascii::withoutLineEnd(ascii::takeLine(text)));
    }
    return true;
}

std::string joinLines(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text.append(line).append("\r\n");
    return text;
}

std::string SAVESTRINGLIST(int mode, std::string& source, const Lines& lines) {
    FRAME(SAVESTRINGLIST);
    STAMP();
    return storeSource(mode, source, joinLines(lines));
}

}  // namespace detail

namespace {

using detail::Lines;

// Lines of the head of a class, from 1; 0 for what is not there.
struct Head {
    std::size_t classLine = 0, usesLine = 0, lastNameLine = 0;
    std::size_t usesColumn = 0;  // characters in front of the word
    std::size_t namesEnd = 0;    // characters up to the end of the last name, in its line
};

// The offset of `at` in its line.
std::size_t columnOf(std::string_view text, std::size_t at) {
    const std::size_t before = text.substr(0, at).rfind('\n');
    return before == std::string_view::npos ? at : at - before - 1;
}

Head findHead(std::string_view text) {
    Head head;
    bool collecting = false, names = false;
    std::size_t line = 1, counted = 0;  // `counted`: characters whose newlines are in `line`
    for (detail::TokenWalk walk(text); walk.next();) {
        if (walk.word.empty()) continue;
        for (; counted < walk.start - 1; ++counted)
            if (text[counted] == '\n') ++line;
        if (ISDECLARATIONSYMBOL(walk.upper)) break;
        if (walk.upper == "USES") {
            if (names) break;
            collecting = true;
            head.usesLine = head.lastNameLine = line;
            head.usesColumn = columnOf(text, walk.start - 1);
            head.namesEnd = columnOf(text, walk.position - 1);
        } else if (collecting) {
            names = true;
            head.lastNameLine = line;
            head.namesEnd = columnOf(text, walk.position - 1);
        } else if (walk.upper == "CLASS" && head.classLine == 0) {
            head.classLine = line;
        }
    }
    return head;
}

// False if nothing is to be changed.
bool changeUses(const Head& head, const std::string& names, Lines& lines) {
    const std::string clause = "Uses " + names;
    if (head.usesLine != 0) {
        const auto first = lines.begin() + static_cast<std::ptrdiff_t>(head.usesLine - 1);
        const auto behind = lines.begin() + static_cast<std::ptrdiff_t>(head.lastNameLine);
        // A class whose name stands on the same line keeps it.
        const std::string front =
            head.usesLine == head.classLine ? STRRTRIM(first->substr(0, head.usesColumn)) : "";
        // So does what stands behind the last name, a declaration or a comment.
        const std::string rest = STRTRIM((behind - 1)->substr(head.namesEnd));
        Lines wanted;
        if (!front.empty()) wanted.push_back(front);
        if (!names.empty()) wanted.push_back(clause);
        if (!rest.empty()) wanted.push_back(rest);
        const auto place = lines.erase(first, behind);
        lines.insert(place, wanted.begin(), wanted.end());
        return true;
    }
    if (head.classLine == 0 || names.empty()) return false;
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(head.classLine), clause);
    return true;
}

}  // namespace

std::string SYMSETUSES(const std::string& names, int mode, std::string& source) {
    FRAME(SYMSETUSES);
    const std::string text = detail::loadSource(mode, source);
    Lines lines;
    if (!detail::LOADSTRINGLIST(text, lines)) return detail::TooManyLines;
    if (!changeUses(findHead(text), STRTRIM(names), lines)) return {};
    STAMP();
    return detail::SAVESTRINGLIST(mode, source, lines);
}

}  // namespace tarn
