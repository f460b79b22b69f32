// SPDX-License-Identifier: Apache-2.0
//
// Changing a version block that another tool or a person wrote: only the values that differ, each in its place.
#include "library/dialogs/versioninfo_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <set>
#include <vector>

MODULE("dlgutil")

namespace tarn {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) lines.emplace_back(ascii::withoutLineEnd(ascii::takeLine(text)));
    return lines;
}

// A token and where it stands, from 0. Behind the last one, and before a comment, it is empty.
struct Token {
    std::string text;
    std::size_t begin = 0, end = 0;
};
Token tokenAt(std::string_view line, std::size_t from) {
    std::size_t position = from + 1;
    Token token{NextWord(line, position), 0, 0};
    token.end = std::min(position - 1, line.size());
    token.begin = token.end - token.text.size();
    return token;
}

bool isQuoted(const std::string& text) {
    return text.starts_with('"');
}

// VALUE "key", text: the parts of such a line.
struct Value {
    bool is = false;
    std::string key;
    std::size_t begin = 0, end = 0;  // of the text, with all that is joined to it
    Token first;
};
Value valueIn(std::string_view line) {
    const Token word = tokenAt(line, 0), key = tokenAt(line, word.end), comma = tokenAt(line, key.end);
    if (!STREQUAL(word.text, "VALUE") || !isQuoted(key.text) || comma.text != ",") return {};
    Value value{true, STRREMOVEQUOTES(key.text), 0, 0, tokenAt(line, comma.end)};
    value.begin = value.first.begin;
    value.end = value.first.end;
    for (Token next = tokenAt(line, value.end); isQuoted(next.text); next = tokenAt(line, value.end))
        value.end = next.end;
    return value;
}

// The numbers behind a word, which begins the line or stands in the head of the block.
struct Numbers {
    bool is = false;
    std::size_t begin = 0, end = 0;
};
Numbers numbersBehind(std::string_view word, std::string_view line, bool head) {
    Token token = tokenAt(line, 0);
    while (head && !token.text.empty() && !STREQUAL(token.text, word)) token = tokenAt(line, token.end);
    if (!STREQUAL(token.text, word)) return {};
    Token next = tokenAt(line, token.end);
    Numbers numbers{true, next.begin, token.end};
    for (; !next.text.empty(); next = tokenAt(line, next.end)) numbers.end = next.end;
    numbers.begin = std::min(numbers.begin, numbers.end);
    return numbers;
}

// ---- whether there is more in it than this program writes ----

// What a line is, without what it says.
std::string shapeOf(const std::string& line) {
    if (const Value value = valueIn(line); value.is && value.end == line.size() && isQuoted(value.first.text))
        return line.substr(0, value.begin);
    for (const char* word : {"FILEVERSION", "PRODUCTVERSION"})
        if (const Numbers numbers = numbersBehind(word, line, false);
            numbers.is && numbers.end == line.size())
            return line.substr(0, numbers.begin);
    return line;
}

bool holdsMore(const Lines& lines) {
    std::set<std::string> shapes;
    for (const std::string& line : linesOf(FIELDSTOVERSIONINFO("V", {}, ""))) shapes.insert(shapeOf(line));
    const std::string head = lines.empty() ? "" : lines.front();
    return !STREQUAL(head, tokenAt(head, 0).text + " VERSIONINFO") ||
           std::any_of(lines.begin() + 1, lines.end(),
                       [&](const std::string& line) { return !shapes.contains(shapeOf(line)); });
}

// ---- changes in their places ----

// Puts the text where that key says the old one. False if no line has it so.
bool putText(Lines& lines, std::string_view key, const std::string& before, const std::string& after) {
    bool found = false;
    for (std::string& line : lines) {
        const Value value = valueIn(line);
        if (!value.is || !STREQUAL(value.key, key) || detail::versionText(value.first.text) != before)
            continue;
        const bool null = STRREMOVEQUOTES(value.first.text).ends_with(detail::NullMark);
        line.replace(value.begin, value.end - value.begin, detail::quotedVersionText(after, null));
        found = true;
    }
    return found;
}

bool isText(const std::string& line) {
    const Value value = valueIn(line);
    return value.is && isQuoted(value.first.text);
}

// Behind the first run of texts, as they are written there; where there is none, in a table before the block's last END.
void addText(Lines& lines, std::string_view key, const std::string& text) {
    const auto first = std::find_if(lines.begin(), lines.end(), isText);
    const std::string line(ascii::withoutLineEnd(detail::versionValueLine(key, text)));
    if (first != lines.end()) {
        const std::string indent = first->substr(0, first->find_first_not_of(" \t"));
        lines.insert(std::find_if_not(first, lines.end(), isText), indent + STRLTRIM(line));
        return;
    }
    const Lines table = {"    BLOCK \"StringFileInfo\"",
                         "    BEGIN",
                         "        BLOCK \"080904b0\"",
                         "        BEGIN",
                         line,
                         "        END",
                         "    END"};
    lines.insert(lines.end() - 1, table.begin(), table.end());
}

// False if there is no such line.
bool putNumbers(Lines& lines, std::string_view word, const std::string& numbers) {
    bool found = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const Numbers old = numbersBehind(word, lines[i], i == 0);
        if (!old.is) continue;
        const std::string blank = old.begin > 0 && lines[i][old.begin - 1] > ' ' ? " " : "";
        lines[i].replace(old.begin, old.end - old.begin, blank + numbers);
        found = true;
    }
    return found;
}

void putVersion(Lines& lines, const std::string& version) {
    const std::string numbers = detail::versionNumbers(version, ","),
                      text = detail::versionNumbers(version, ".");
    if (!putNumbers(lines, "FILEVERSION", numbers))
        lines.insert(lines.begin() + 1, "    FILEVERSION " + numbers);
    putNumbers(lines, "PRODUCTVERSION", numbers);
    for (const char* key : {"FileVersion", "ProductVersion"})
        for (const std::string& line : Lines(lines))
            if (const Value value = valueIn(line); value.is && STREQUAL(value.key, key))
                putText(lines, key, detail::versionText(value.first.text), text);
}

}  // namespace

std::string CHANGEVERSIONINFO(const std::string& block, const std::string& name, const VersionFields& fields,
                              const std::string& fileStem) {
    FRAME(CHANGEVERSIONINFO);
    STAMP();
    Lines lines = linesOf(block);
    if (lines.empty() || !holdsMore(lines)) return FIELDSTOVERSIONINFO(name, fields, fileStem);
    const VersionFields before = VERSIONINFOTOFIELDS(block);
    for (const detail::VersionKey& key : detail::versionKeys) {
        const std::string &old = before.*key.field, &text = fields.*key.field;
        if (text != old && !putText(lines, key.name, old, text)) addText(lines, key.name, text);
    }
    STAMP();
    if (fields.version != before.version) putVersion(lines, fields.version);
    std::string changed;
    for (const std::string& line : lines) changed += line + "\n";
    return changed;
}

}  // namespace tarn
