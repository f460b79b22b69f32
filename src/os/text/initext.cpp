// SPDX-License-Identifier: Apache-2.0
//
// See initext.h. A section is sought by its "[" alone, which is rare in such files, and only the lines of the
// section found are looked at one by one. None of these functions can fail or calls out, so they have no
// frames.
#include "os/text/initext.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <iterator>

namespace tarn::ini {
namespace {

constexpr std::size_t npos = std::string_view::npos;

bool isSectionChar(char c) {
    return ascii::isSymbol(c) || c == ' ' || c == '.';
}

// What may stand behind the first character of a key.
bool isKeyChar(char c) {
    return c > ' ' && c <= '~' && c != '=';
}

// The name in a header line; empty if the line is no header.
std::string_view headerName(std::string_view line) {
    line = ascii::withoutLineEnd(line);
    if (line.size() < 3 || line.front() != '[' || line.back() != ']') return {};
    const std::string_view name = line.substr(1, line.size() - 2);
    for (const char c : name)
        if (!isSectionChar(c)) return {};
    return name;
}

// The offset behind the line that starts at `start`.
std::size_t lineEnd(std::string_view text, std::size_t start) {
    const std::size_t end = text.find('\n', start);
    return end == npos ? text.size() : end + 1;
}

// The offset of the first "[" in column 1 from `from` (the start of a line) on; the text's size if there is
// none.
std::size_t nextBracket(std::string_view text, std::size_t from) {
    for (std::size_t at = text.find('[', from); at != npos; at = text.find('[', at + 1))
        if (at == 0 || text[at - 1] == '\n') return at;
    return text.size();
}

struct Section {
    std::size_t header = npos;  // offset of the header line; npos: there is no such section
    std::size_t body = 0;       // behind the header line
    [[nodiscard]] bool found() const { return header != npos; }
};

Section findSection(std::string_view text, std::string_view name) {
    if (name.empty()) return {};
    for (std::size_t at = nextBracket(text, 0); at < text.size();) {
        const std::size_t end = lineEnd(text, at);
        if (ascii::equal(headerName(text.substr(at, end - at)), name)) return {at, end};
        at = nextBracket(text, end);
    }
    return {};
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

// Whether `line` is the entry of `key`; looks at no more characters than that takes.
bool isEntryOf(std::string_view line, std::string_view key) {
    if (line.size() <= key.size() || line[key.size()] != '=') return false;
    for (std::size_t i = 0; i < key.size(); ++i)
        if (ascii::upper(line[i]) != ascii::upper(key[i]) || !isKeyChar(line[i])) return false;
    return true;
}

struct Line {
    std::size_t start = npos, end = 0;  // `end` is behind its line end
    [[nodiscard]] bool found() const { return start != npos; }
};

Line findEntry(std::string_view text, const Section& section, std::string_view key) {
    if (!section.found() || !isKey(key)) return {};
    for (std::size_t at = section.body; at < text.size() && text[at] != '[';) {
        const std::size_t end = lineEnd(text, at);
        if (isEntryOf(text.substr(at, end - at), key)) return {at, end};
        at = end;
    }
    return {};
}

std::string_view withoutQuotes(std::string_view value) {
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
        return value.substr(1, value.size() - 2);
    return value;
}

// The offset behind the lines from `at` on that start with a key character or ";".
std::size_t skipEntries(std::string_view text, std::size_t at) {
    while (at < text.size() && (ascii::isSymbol(text[at]) || text[at] == ';')) at = lineEnd(text, at);
    return at;
}

void appendOneLine(std::string& out, std::string_view text) {
    const std::size_t start = out.size();
    out.append(text);
    for (std::size_t i = start; i < out.size(); ++i)
        if (out[i] == '\r' || out[i] == '\n') out[i] = ' ';
}

std::string entryLine(std::string_view key, std::string_view value) {
    std::string line;
    line.reserve(key.size() + value.size() + 3);
    appendOneLine(line, key);
    line += '=';
    appendOneLine(line, ascii::withoutLineEnd(value));
    line += "\r\n";
    return line;
}

// Ends the part of the text in front of an insertion, which may be a last line without a line end.
void endLine(std::string& insertion, std::string_view text, std::size_t at) {
    if (at > 0 && text[at - 1] != '\n') insertion.insert(0, "\r\n");
}

void appendHeader(std::string& text, std::string_view section) {
    text += "\r\n[";
    appendOneLine(text, section);
    text += "]\r\n";
}

}  // namespace

std::string_view get(std::string_view text, std::string_view section, std::string_view key) {
    const Line line = findEntry(text, findSection(text, section), key);
    if (!line.found()) return {};
    const std::size_t start = line.start + key.size() + 1;
    return withoutQuotes(ascii::withoutLineEnd(text.substr(start, line.end - start)));
}

std::string values(std::string_view text, std::string_view section) {
    std::string out;
    const Section at = findSection(text, section);
    if (!at.found()) return out;
    std::string_view rest = text.substr(at.body);
    while (!rest.empty()) {
        const std::string_view line = ascii::withoutLineEnd(ascii::takeLine(rest));
        if (line.empty() || line.front() == '[') break;
        const std::size_t equals = line.find('=');
        if (line.front() == ';' || equals == npos) continue;
        out.append(withoutQuotes(line.substr(equals + 1)));
        out += '\n';
    }
    return out;
}

std::string keys(std::string_view text, std::string_view section) {
    std::string out;
    const Section at = findSection(text, section);
    if (!at.found()) return out;
    std::string_view rest = text.substr(at.body);
    while (!rest.empty() && rest.front() != '[') {
        const std::string_view line = ascii::takeLine(rest);
        const std::size_t equals = line.find('=');
        if (line.front() == ';' || equals == npos) continue;
        out.append(trimmed(line.substr(0, equals)));
        out += '\n';
    }
    return out;
}

std::string sections(std::string_view text) {
    std::string out;
    for (std::size_t at = nextBracket(text, 0); at < text.size();) {
        const std::size_t end = lineEnd(text, at);
        const std::string_view name = headerName(text.substr(at, end - at));
        if (!name.empty()) {
            out.append(name);
            out += '\n';
        }
        at = nextBracket(text, end);
    }
    return out;
}

bool isKey(std::string_view key) {
    return !key.empty() && ascii::isSymbol(key.front()) && std::all_of(key.begin(), key.end(), isKeyChar);
}

void put(std::string& text, std::string_view section, std::string_view key, std::string_view value) {
    if (!isKey(key)) return;
    std::string line = entryLine(key, value);
    const Section at = findSection(text, section);
    if (!at.found()) {
        appendHeader(text, section);
        text += line;
        return;
    }
    const Line old = findEntry(text, at, key);
    if (old.found()) {
        text.replace(old.start, old.end - old.start, line);
        return;
    }
    const std::size_t place = skipEntries(text, at.body);
    endLine(line, text, place);
    text.insert(place, line);
}

void putList(std::string& text, std::string_view section, std::string_view value) {
    std::string lines;
    std::string_view rest = value;
    for (int number = 1; !rest.empty(); ++number)
        lines += entryLine(std::to_string(number), ascii::takeLine(rest));
    const Section at = findSection(text, section);
    if (!at.found()) {
        appendHeader(text, section);
        text += lines;
        return;
    }
    endLine(lines, text, at.body);
    text.replace(at.body, skipEntries(text, at.body) - at.body, lines);
}

bool remove(std::string& text, std::string_view section, std::string_view key) {
    const Section at = findSection(text, section);
    if (!at.found()) return false;
    if (key.empty()) {
        text.erase(at.header, nextBracket(text, at.body) - at.header);
        return true;
    }
    const Line line = findEntry(text, at, key);
    if (line.found()) text.erase(line.start, line.end - line.start);
    return line.found();
}

}  // namespace tarn::ini
