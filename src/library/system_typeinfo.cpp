// SPDX-License-Identifier: Apache-2.0
//
// Names from elsewhere made into identifiers: of columns of foreign data, in type information text, before
// they reach generated code.
#include "library/system.h"

#include "kernel/data/typeinfo.h"
#include "kernel/errors.h"
#include "kernel/lists.h"
#include "kernel/string_text.h"
#include "library/ascii.h"

#include <algorithm>
#include <iterator>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view separator = " : ";

// ---- one line ----

struct NamedLine {
    std::string_view name, rest;  // behind the closing mark of the name
};

bool splitMarked(std::string_view line, char open, char close, NamedLine& split) {
    const std::size_t end = line.empty() || line.front() != open ? npos : line.find(close, 1);
    if (end == npos) return false;
    split = {line.substr(1, end - 1), line.substr(end + 1)};
    return true;
}

// `line` has no indent. A ':' that parts a name from its type without blanks ends the name.
NamedLine splitName(std::string_view line) {
    NamedLine split;
    if (splitMarked(line, '"', '"', split) || splitMarked(line, '[', ']', split)) return split;
    std::size_t end = line.find(separator);
    if (end == npos) {
        end = std::min(line.find_first_of(" \t"), line.size());
        const std::size_t name = TypeInfoName(line, 1).size();
        if (name < end && line[name] == ':') end = name;
    }
    return {line.substr(0, end), line.substr(end)};
}

// A line that begins so belongs to its block: "end" is no name there.
bool beginsAsClosing(std::string_view line) {
    constexpr std::string_view closings[] = {"end record", "end list", "end table", "end union"};
    return std::any_of(std::begin(closings), std::end(closings),
                       [&](std::string_view closing) { return line.substr(0, closing.size()) == closing; });
}

bool isDeleteFlag(std::string_view line) {
    return line == "delete_flag : Tchar" || line == "delete_flag\tTchar";
}

// `line` has no indent and no line end.
std::string repaired(std::string_view line, int maxLength) {
    const bool closing = beginsAsClosing(line);
    if (line == "end" || (closing && line.find(separator) == npos)) return std::string(line);
    const NamedLine split = splitName(line);
    std::string result = STRTOIDENTIFIER(split.name, maxLength, "_");
    if (!closing && (ISRESERVEDWORD(result) || ISFUTURERESERVEDWORD(result))) result += "_1";
    return result.append(split.rest);
}

std::string repairedText(std::string_view rest, int maxLength, bool dropDeleteFlag) {
    std::string result;
    while (!rest.empty()) {
        const std::string_view line = ascii::takeLine(rest), body = ascii::withoutLineEnd(line);
        const std::size_t indent = std::min(body.find_first_not_of(" \t"), body.size());
        const std::string_view shown = body.substr(indent);
        if (dropDeleteFlag && isDeleteFlag(shown)) continue;
        result.append(line.substr(0, indent)).append(repaired(shown, maxLength));
        result.append(line.substr(body.size()));
    }
    return result;
}

// ---- values of the language ----

std::string joined(const ListDescriptor* lines) {
    std::string text;
    String line;
    for (std::int32_t n = 1; n <= ListCount(lines); ++n) {
        const void* element = ListIsInFile(lines) ? nullptr : ListRef(lines, n);
        if (element == nullptr) ListGet(lines, n, line.get(), KindString);
        if (element == nullptr) element = line.get();
        text.append(NarrowText(static_cast<const StringDescriptor*>(element)).view()) += '\n';
    }
    return text;
}

// Stops when memory is short; a line that is cut (615) is no reason to leave the others as they were.
void putLines(std::string_view rest, ListDescriptor* lines) {
    const std::int32_t before = ListCount(lines);
    std::int32_t count = 0;
    while (!rest.empty()) {
        std::string_view body = ascii::takeLine(rest);
        if (body.back() == '\n') body.remove_suffix(1);
        const String line(body);
        if (line.view().size() < body.size() || ErrorCell() == ERR_OUT_OF_MEMORY) return;
        if (++count <= before)
            ListPut(line.get(), KindString, count, lines);
        else
            ListAppend(line.get(), KindString, lines);
    }
    for (std::int32_t n = before; n > count; --n) ListRemoveLast(lines);
}

}  // namespace

std::string STRTOIDENTIFIER(std::string_view text, int maxLength, std::string_view replacement) {
    return TypeInfoIdentifier(text, maxLength, replacement);
}

std::string STRTOIDENTIFIER(std::string_view text, std::string_view firstSet, std::string_view replacement) {
    const std::string_view put = replacement.substr(0, 1);
    std::string word;
    if (!text.empty() && !ascii::isLetter(text[0]) && firstSet.find(text[0]) == npos) word += put;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (ascii::isSymbol(text[i]) || (i == 0 && firstSet.find(text[0]) != npos))
            word += text[i];
        else
            word += put;
    }
    return word;
}

std::string TYPEINFOFIXIDENTIFIERS(std::string_view text, int maxLength, bool dropDeleteFlag) {
    return repairedText(text, maxLength, dropDeleteFlag);
}

void TYPEINFOFIXIDENTIFIERS(StringDescriptor* text, int maxLength, bool dropDeleteFlag) {
    FRAME(TYPEINFOFIXIDENTIFIERS);
    STAMP();
    if (KindOf(text) != KindString) return SetError(ERR_STRING_TYPE);
    StringAssignView(text, repairedText(NarrowText(text).view(), maxLength, dropDeleteFlag));
}

void TYPEINFOFIXIDENTIFIERS(ListDescriptor* lines, int maxLength, bool dropDeleteFlag) {
    FRAME(TYPEINFOFIXIDENTIFIERS);
    STAMP();
    if (KindOf(lines) != KindList) return SetError(ERR_LIST_TYPE);
    const Kind kind = ListElementKind(lines);
    if (kind != KindString && kind != KindNone) return SetError(ERR_LIST_TYPE);
    const std::string text = joined(lines);
    // What could not be read must not be written back.
    if (ErrorCell() == 0) putLines(repairedText(text, maxLength, dropDeleteFlag), lines);
}

}  // namespace tarn
