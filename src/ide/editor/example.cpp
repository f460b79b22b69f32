// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/example.h"

#include "ide/shell/windows.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("editmenu")

namespace tarn {
namespace {

// Takes the first line off the text, with its line end.
std::string_view takeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n') + 1);  // all of it if there is none
    const std::string_view taken = line.empty() ? text : line;
    text.remove_prefix(taken.size());
    return taken;
}

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t");
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

// The name in a heading, as a piece of the line.
std::string_view nameIn(std::string_view line) {
    line = withoutBlanks(line);
    if (!line.starts_with("//")) return {};
    line = withoutBlanks(line.substr(2));
    line = line.substr(0, line.find_last_not_of(" \t\r\n") + 1);
    const std::size_t dot = line.find('.');
    if (dot == 0 || dot == std::string_view::npos) return {};
    const std::string_view name = line.substr(0, dot), extension = line.substr(dot);
    if (!STREQUAL(extension, ClassExtension) && !STREQUAL(extension, ResourceExtension)) return {};
    const auto isPlain = [](char c) { return ascii::isLetter(c) || ascii::isDigit(c); };
    return std::all_of(name.begin(), name.end(), isPlain) ? line : std::string_view();
}

std::string_view lineEndOf(std::string_view text) {
    const std::size_t end = text.find('\n');
    return end != std::string_view::npos && end > 0 && text[end - 1] == '\r' ? "\r\n" : "\n";
}

}  // namespace

std::string GETEXAMPLEFILENAME(std::string_view line) {
    FRAME(GETEXAMPLEFILENAME);
    return std::string(nameIn(line));
}

std::string GETEXAMPLEFILENAMES(std::string_view text) {
    FRAME(GETEXAMPLEFILENAMES);
    std::string names;
    while (!text.empty()) {
        const std::string_view name = nameIn(takeLine(text));
        if (!name.empty()) names.append(name).append("\n");
    }
    return names;
}

std::string GETEXAMPLETEXT(std::string_view text, std::string_view name) {
    FRAME(GETEXAMPLETEXT);
    const std::string_view lineEnd = lineEndOf(text);
    std::string body;
    while (!text.empty()) {
        const std::string_view line = takeLine(text), heading = nameIn(line);
        if (!body.empty() && !heading.empty()) break;
        if (!body.empty() || (!heading.empty() && STREQUAL(heading, name))) body += line;
    }
    if (!body.empty() && body.back() != '\n') body += lineEnd;
    return body;
}

bool ISEXAMPLE(std::string_view text) {
    FRAME(ISEXAMPLE);
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (line.find_first_not_of(" \t\r\n") != std::string_view::npos) return !nameIn(line).empty();
    }
    return false;
}

}  // namespace tarn
