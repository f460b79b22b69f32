// SPDX-License-Identifier: Apache-2.0
//
// Names from elsewhere made into identifiers of the language. A line is taken apart as its reader does when
// it reads as a name and a type and nothing else; other lines have names with blanks in them, as headings of
// columns do, and are parted at " : ".
#include "kernel/data/typeinfo/typeinfo_text_internal.h"

#include "kernel/text/words.h"

#include <iterator>

namespace tarn {

using namespace typeinfo;

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view separator = " : ";
constexpr std::string_view nameless = "n";  // what a name that is empty becomes

struct NamedLine {
    std::string_view name, rest;  // behind the closing mark of the name
};

bool splitMarked(std::string_view line, char open, char close, NamedLine& split) {
    const std::size_t end = line.empty() || line.front() != open ? npos : line.find(close, 1);
    if (end == npos) return false;
    split = {line.substr(1, end - 1), line.substr(end + 1)};
    return true;
}

// Where the name of a line ends that is not in quotes or brackets.
std::size_t nameEndOf(std::string_view line) {
    const Line read = readLine(line);
    if (read.whole) return read.nameEnd;
    std::size_t end = line.find(separator);
    if (end != npos) return end;
    end = std::min(line.find_first_of(" \t"), line.size());
    const bool parted = read.nameEnd < end && line[read.nameEnd] == ':';
    return parted ? read.nameEnd : end;
}

NamedLine splitName(std::string_view line) {
    NamedLine split;
    if (splitMarked(line, '"', '"', split) || splitMarked(line, '[', ']', split)) return split;
    const std::size_t end = nameEndOf(line);
    return {line.substr(0, end), line.substr(end)};
}

bool beginsAsClosing(std::string_view line) {
    constexpr std::string_view closings[] = {"end record", "end list", "end table", "end union"};
    return std::any_of(std::begin(closings), std::end(closings), [&](std::string_view closing) {
        return ascii::equal(line.substr(0, closing.size()), closing);
    });
}

bool isClosing(std::string_view line) {
    return closesBlock(readLine(line)) || (beginsAsClosing(line) && line.find(separator) == npos);
}

bool isDeleteFlag(std::string_view line) {
    return line == "delete_flag : Tchar" || line == "delete_flag\tTchar";
}

// Lines have no indent and no line end here.

std::string repaired(std::string_view line, std::int32_t maxLength) {
    if (line.empty() || isClosing(line)) return std::string(line);
    const NamedLine split = splitName(line);
    std::string name = TypeInfoIdentifier(split.name.empty() ? nameless : split.name, maxLength, "_");
    const bool reserved = IsReservedWord(name) || IsFutureReservedWord(name);
    if (reserved && !beginsAsClosing(line)) name += "_1";
    return name.append(split.rest);
}

// Only lines with a " : " behind the name are changed.
std::string repaired(std::string_view line, std::string_view replacement) {
    if (isClosing(line) || isDeleteFlag(line)) return std::string(line);
    const NamedLine split = splitName(line);
    if (split.rest.substr(0, separator.size()) != separator) return std::string(line);
    std::string name = TypeInfoIdentifier(split.name, std::string_view(), replacement);
    if (name.empty()) name = nameless;
    if (IsReservedWord(name)) name += "_1";
    return name.append(split.rest);
}

// A line is without its CR then.
template <class Repair>
std::string repairedText(std::string_view rest, bool dropDeleteFlag, Repair repair) {
    std::string result;
    while (!rest.empty()) {
        const std::string_view line = ascii::takeLine(rest), body = ascii::withoutLineEnd(line);
        const std::size_t indent = std::min(body.find_first_not_of(" \t"), body.size());
        const std::string_view shown = body.substr(indent);
        if (dropDeleteFlag && isDeleteFlag(shown)) continue;
        result.append(line.substr(0, indent)).append(repair(shown));
        if (line.back() == '\n') result += '\n';
    }
    return result;
}

}  // namespace

std::string TypeInfoIdentifier(std::string_view text, std::int32_t maxLength, std::string_view replacement) {
    const auto most = static_cast<std::size_t>(std::max(maxLength, 0));
    const bool startsWord = !replacement.empty() && ascii::isLetter(replacement.front());
    std::string word;
    for (std::size_t i = 0; i < text.size() && word.size() < most; ++i) {
        const char c = text[i];
        if (ascii::isLetter(c) || (i > 0 && ascii::isDigit(c)))
            word += c;
        else if (i > 0 || startsWord)
            word += replacement;
        else
            word += 'n';
    }
    if (word.size() > most) word.resize(most);
    return word;
}

std::string TypeInfoIdentifier(std::string_view text, std::string_view firstSet,
                               std::string_view replacement) {
    const std::string_view put = replacement.substr(0, 1);
    const bool first = !text.empty() && firstSet.find(text[0]) != npos;
    std::string word;
    if (!text.empty() && !ascii::isLetter(text[0]) && !first) word += put;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (ascii::isSymbol(text[i]) || (i == 0 && first))
            word += text[i];
        else
            word += put;
    }
    return word;
}

std::string TypeInfoFixNames(std::string_view text, std::int32_t maxLength, bool dropDeleteFlag) {
    return repairedText(text, dropDeleteFlag,
                        [=](std::string_view line) { return repaired(line, maxLength); });
}

std::string TypeInfoFixNames(std::string_view text, std::string_view replacement) {
    return repairedText(text, false, [=](std::string_view line) { return repaired(line, replacement); });
}

}  // namespace tarn
