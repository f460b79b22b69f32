// SPDX-License-Identifier: Apache-2.0
//
// The lines of a class text, and the Uses clause. A text of more than 8000 lines is refused.
#include "library/source/symbols.h"

#include "library/source/symbols_text_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <utility>
#include <vector>

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

// The names of the Uses clause in one line, and how many characters of it they end behind.
struct NamesInLine {
    std::size_t line = 0, end = 0;
    std::vector<std::string> names;
};

// Lines of the head of a class, from 1; 0 for what is not there.
struct Head {
    std::size_t classLine = 0, usesLine = 0;
    std::size_t usesColumn = 0;       // characters in front of the word
    std::vector<NamesInLine> clause;  // the line of the word, then each other one that has names
    [[nodiscard]] std::size_t lastLine() const { return clause.back().line; }
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
            head.usesLine = line;
            head.usesColumn = columnOf(text, walk.start - 1);
            head.clause = {{line, columnOf(text, walk.position - 1), {}}};
        } else if (collecting) {
            names = true;
            if (head.lastLine() != line) head.clause.push_back({line, 0, {}});
            head.clause.back().end = columnOf(text, walk.position - 1);
            head.clause.back().names.push_back(walk.word);
        } else if (walk.upper == "CLASS" && head.classLine == 0) {
            head.classLine = line;
        }
    }
    return head;
}

bool holdsName(const std::string& names, const std::string& name) {
    return STRFIND(" " + name + " ", " " + names + " ") > 0;
}

// What stands behind the names of a line of the clause and stays: a declaration, and a comment, unless it speaks of no
// other names than those of its own line and they all go.
std::string restOf(const Head& head, const NamesInLine& part, const std::string& names, const Lines& lines) {
    std::string rest = STRTRIM(lines[part.line - 1].substr(part.end));
    const bool isOfNames = head.clause.size() > 1 && !part.names.empty() && rest.starts_with("//");
    const bool stays = std::any_of(part.names.begin(), part.names.end(),
                                   [&](const std::string& name) { return holdsName(names, name); });
    return isOfNames && !stays ? std::string() : rest;
}

// What the lines of the clause hold beside names, each a line: the user's own words are not lost with them.
Lines keptLines(const Head& head, const std::string& names, const Lines& lines) {
    Lines kept;
    auto part = head.clause.begin();
    for (std::size_t line = head.usesLine; line <= head.lastLine(); ++line) {
        const bool hasNames = part->line == line;
        std::string rest = hasNames ? restOf(head, *part, names, lines) : STRTRIM(lines[line - 1]);
        if (!rest.empty()) kept.push_back(std::move(rest));
        if (hasNames) ++part;
    }
    return kept;
}

// False if nothing is to be changed.
bool changeUses(const Head& head, const std::string& names, Lines& lines) {
    const std::string clause = "Uses " + names;
    if (head.usesLine != 0) {
        const auto first = lines.begin() + static_cast<std::ptrdiff_t>(head.usesLine - 1);
        const auto behind = lines.begin() + static_cast<std::ptrdiff_t>(head.lastLine());
        // A class whose name stands on the same line keeps it.
        const std::string front =
            head.usesLine == head.classLine ? STRRTRIM(first->substr(0, head.usesColumn)) : "";
        Lines wanted = keptLines(head, names, lines);
        if (!names.empty()) wanted.insert(wanted.begin(), clause);
        if (!front.empty()) wanted.insert(wanted.begin(), front);
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
