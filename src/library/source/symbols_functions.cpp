// SPDX-License-Identifier: Apache-2.0
//
// The functions of a class text: found, added, deleted and renamed. A function stands in the text once or twice: the
// first entry of two is its declaration, the last its body. Every change is made on the text in memory and stored at
// once, so that a failure leaves the source as it was.
#include "library/source/symbols.h"

#include "library/source/symbols_text_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <optional>
#include <utility>

MODULE("symbols", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

using detail::Item;
using detail::ItemKind;
using detail::Lines;

// ---- find ----

struct Entries {
    std::optional<Item> declaration, body;
    [[nodiscard]] bool found() const { return body.has_value(); }
};

// The first two items of that name; what stands there once counts as the body.
Entries findEntries(std::string_view name, std::string_view text) {
    Entries found;
    for (Item& item : detail::scanItems(text)) {
        if (item.kind == ItemKind::Handler || !STREQUAL(item.name, name)) continue;
        if (found.body) {
            found.declaration = std::exchange(found.body, std::move(item));
            break;
        }
        found.body = std::move(item);
    }
    return found;
}

// ---- delete ----

// The offset at which line `line` begins; the end of the text if there is no such line.
std::size_t offsetOfLine(std::string_view text, int line) {
    std::size_t at = 0;
    for (int n = 1; n < line && at < text.size(); ++n)
        at = std::min(text.find('\n', at), text.size() - 1) + 1;
    return at;
}

// Of a text the span of these lines is cut, and nothing else changes; a file is written anew from its lines.
void DELETELINES(const Item& item, int mode, std::string& text, Lines& lines) {
    FRAME(DELETELINES);
    if (mode == 1) {
        lines.erase(lines.begin() + (item.first - 1), lines.begin() + item.last);
        return;
    }
    const std::size_t begin = offsetOfLine(text, item.first);
    text.erase(begin, offsetOfLine(text, item.last + 1) - begin);
}

// ---- rename ----

// The line of the first ")" from `start` on, as a token; `start` itself if there is none up to `end`.
int lastHeaderLine(const Lines& lines, int start, int end) {
    for (int line = start; line <= end; ++line) {
        detail::TokenWalk walk(lines[static_cast<std::size_t>(line - 1)]);
        while (walk.next())
            if (walk.word == ")") return line;
    }
    return start;
}

// Moves a line to the right, or to the left if there are blanks enough in front of it.
void shiftLine(std::string& line, std::ptrdiff_t by) {
    if (by >= 0) {
        line.insert(0, static_cast<std::size_t>(by), ' ');
        return;
    }
    const auto blanks = static_cast<std::size_t>(-by);
    if (line.size() >= blanks && line.find_first_not_of(' ') >= blanks) line.erase(0, blanks);
}

void SYMCHANGENAME(const Item& item, const std::string& newName, Lines& lines) {
    FRAME(SYMCHANGENAME);
    std::string& start = lines[static_cast<std::size_t>(item.first - 1)];
    start.replace(item.column, item.name.size(), newName);
    if (item.kind != ItemKind::Function) return;
    const auto by =
        static_cast<std::ptrdiff_t>(newName.size()) - static_cast<std::ptrdiff_t>(item.name.size());
    const int last = lastHeaderLine(lines, item.first, item.last);
    for (int line = item.first + 1; line <= last; ++line)
        shiftLine(lines[static_cast<std::size_t>(line - 1)], by);
}

// ---- add ----

struct ClassLines {
    std::size_t first = 0, end = 0;  // of "Class" and of "End class", from 1; 0: there is none
};

// The line of the first word "class" outside of comments and texts, and the line below it that begins with "End class".
ClassLines findClassLines(std::string_view text, const Lines& lines) {
    ClassLines found;
    detail::TokenWalk walk(text);
    while (walk.next())
        if (walk.upper == "CLASS") break;
    if (walk.upper != "CLASS") return found;
    const std::string_view before = text.substr(0, walk.start);
    found.first = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    for (std::size_t line = found.first + 1; line <= lines.size() && found.end == 0; ++line)
        if (detail::endsClass(lines[line - 1])) found.end = line;
    return found;
}

bool isBlank(std::string_view line) {
    return STRTRIM(line).empty();
}

// The lines of a function with an empty one behind them, and one in front if that is wanted.
bool functionLines(const std::string& text, bool emptyInFront, Lines& lines) {
    const std::string body = STRRTRIMCRLF(text);
    if (!detail::LOADSTRINGLIST(body.empty() ? body : body + "\n\n", lines)) return false;
    if (emptyInFront) lines.insert(lines.begin(), std::string());
    return true;
}

}  // namespace

FunctionLines SYMFINDFUNCTION(const std::string& name, int mode, const std::string& source) {
    FRAME(SYMFINDFUNCTION);
    FunctionLines lines;
    const Entries found = findEntries(name, detail::loadSource(mode, source));
    if (found.declaration) {
        lines.declStart = found.declaration->first;
        lines.declEnd = found.declaration->last;
    }
    if (found.body) {
        lines.bodyStart = found.body->first;
        lines.bodyEnd = found.body->last;
    }
    return lines;
}

bool SYMFINDFUNCTION(const std::string& name, int mode, const std::string& source, std::string& kind) {
    FRAME(SYMFINDFUNCTION);
    kind.clear();
    const std::string text = detail::loadSource(mode, source);
    const Entries found = findEntries(name, text);
    if (!found.found()) return false;
    const std::size_t begin = offsetOfLine(text, found.body->first);
    std::string_view header = std::string_view(text).substr(begin, found.body->column);
    std::size_t position = 1;
    for (std::string word = NextWord(header, position); !word.empty(); word = NextWord(header, position)) {
        const std::string upper = STRUPPER(word);
        if (upper != "PUBLIC" && upper != "PRIVATE" && upper != "CALLBACK") break;
        kind += (kind.empty() ? "" : " ") + word;
    }
    return true;
}

std::string SYMADDFUNCTION(const std::string& text, int mode, std::string& source) {
    FRAME(SYMADDFUNCTION);
    const std::string old = detail::loadSource(mode, source);
    if (text.empty() || old.empty()) return "The text being modified does not contain a class.";
    Lines lines, added;
    if (!detail::LOADSTRINGLIST(old, lines)) return detail::TooManyLines;
    const ClassLines place = findClassLines(old, lines);
    if (place.end <= place.first) return "Class syntax is wrong, cannot find 'Class' or 'End class'.";
    const auto end = lines.begin() + static_cast<std::ptrdiff_t>(place.end - 1);
    if (!functionLines(text, !isBlank(*(end - 1)), added)) return detail::TooManyLines;
    lines.insert(end, std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
    STAMP();
    return detail::SAVESTRINGLIST(mode, source, lines);
}

bool SYMDELETEFUNCTION(const std::string& name, int mode, std::string& source) {
    FRAME(SYMDELETEFUNCTION);
    std::string text = detail::loadSource(mode, source);
    Lines lines;
    if (!detail::LOADSTRINGLIST(text, lines)) return false;
    const Entries found = findEntries(name, text);
    if (!found.found()) return false;
    // The later one first, so that the lines of the earlier one still count.
    DELETELINES(*found.body, mode, text, lines);
    if (found.declaration) DELETELINES(*found.declaration, mode, text, lines);
    STAMP();
    if (mode == 1) return SAVEFILE(source, detail::joinLines(lines));
    source = std::move(text);
    return true;
}

std::string SYMRENAMEFUNCTION(const std::string& oldName, const std::string& newName, int mode,
                              std::string& source) {
    FRAME(SYMRENAMEFUNCTION);
    const std::string text = detail::loadSource(mode, source);
    if (oldName.empty() || newName.empty() || text.empty())
        return "The function names are missing, or there are no functions to rename.";
    Lines lines;
    if (!detail::LOADSTRINGLIST(text, lines)) return detail::TooManyLines;
    const Entries old = findEntries(oldName, text);
    if (!old.found()) return "Cannot rename, the text being modified does not contain '" + oldName + "'";
    if (findEntries(newName, text).found())
        return "Cannot rename, the text being modified already contains '" + newName + "'";
    if (old.declaration) SYMCHANGENAME(*old.declaration, newName, lines);
    SYMCHANGENAME(*old.body, newName, lines);
    STAMP();
    return detail::SAVESTRINGLIST(mode, source, lines);
}

}  // namespace tarn
