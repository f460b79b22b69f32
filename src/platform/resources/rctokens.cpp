// SPDX-License-Identifier: Apache-2.0
#include "platform/resources/rctokens_internal.h"

#include <algorithm>
#include <iterator>

namespace tarn::platform {

bool isWordByte(char c) {
    return (upper(c) >= 'A' && upper(c) <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '#' ||
           c == '-' || c == '+';
}

namespace {

// One escape at `at`, which is the backslash; gives the bytes it takes, and adds what it stands for.
std::size_t readEscape(std::string_view text, std::size_t at, bool path, std::string& into) {
    const char c = at + 1 < text.size() ? text[at + 1] : '\0';
    if (c == '\\' || c == '"') return into += c, 2;
    if (!path && c == 'n') return into += '\n', 2;
    if (!path && c == 'r') return into += '\r', 2;
    if (!path && c == 't') return into += '\t', 2;
    if (!path && c == '0') return into += '\0', 2;
    if (!path && c == 'x' && at + 3 < text.size()) {
        const int high = ascii::hexDigit(text[at + 2]), low = ascii::hexDigit(text[at + 3]);
        if (high >= 0 && low >= 0) return into += static_cast<char>(high * 16 + low), 4;
    }
    return into += '\\', 1;
}

}  // namespace

bool readString(std::string_view line, std::size_t& at, bool path, std::string& into) {
    into.clear();
    for (++at; at < line.size();) {
        if (line[at] == '"') return ++at, true;
        if (line[at] == '\\')
            at += readEscape(line, at, path, into);
        else
            into += line[at++];
    }
    return false;
}

std::size_t skipBlanks(std::string_view line, std::size_t at) {
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == '\r')) ++at;
    return at;
}

bool atComment(std::string_view line, std::size_t at) {
    return line.substr(at, 2) == "//";
}

Tokens tokenize(std::string_view line, std::size_t lineBegin) {
    Tokens tokens;
    for (std::size_t at = skipBlanks(line, 0); at < line.size() && !atComment(line, at);
         at = skipBlanks(line, at)) {
        Token token;
        const std::size_t begin = at;
        if (line[at] == '"') {
            token.kind = TokenKind::String;
            if (!readString(line, at, true, token.text)) return tokens.unterminated = true, tokens;
        } else if (isWordByte(line[at])) {
            token.kind = TokenKind::Word;
            while (at < line.size() && isWordByte(line[at])) ++at;
            token.text = line.substr(begin, at - begin);
        } else {
            token.text = line[at++];
        }
        token.span = {lineBegin + begin, lineBegin + at};
        tokens.list.push_back(std::move(token));
    }
    return tokens;
}

bool isWindowKind(std::string_view word) {
    return isWindowType(typeFromName(word));
}

bool isNumberOrSymbol(std::string_view word) {
    return isIdentifier(word) || wholeNumber(word).has_value();
}

bool isNamed(const Tokens& tokens) {
    const std::vector<Token>& list = tokens.list;
    return list.size() >= 2 && list[0].kind == TokenKind::Word && list[1].kind == TokenKind::Word &&
           isIdentifier(list[0].text);
}

bool isBlockHead(const Tokens& tokens) {
    const std::vector<Token>& list = tokens.list;
    return list.size() == 2 && !tokens.unterminated && list[0].kind == TokenKind::Word &&
           list[1].kind == TokenKind::Word && isNumberOrSymbol(list[0].text) &&
           (isWindowKind(list[1].text) || tokens.word(1, "MENU"));
}

namespace {

// Whether a word may stand behind VERSIONINFO: an option, the first of the block's numbers, or its begin.
bool followsVersion(std::string_view word) {
    constexpr std::string_view words[] = {"FILEVERSION", "PRODUCTVERSION", "FILEFLAGSMASK",
                                          "FILEFLAGS",   "FILEOS",         "FILETYPE",
                                          "FILESUBTYPE", "BEGIN",          "{"};
    return isMemoryOption(word) || std::any_of(std::begin(words), std::end(words),
                                               [&](std::string_view one) { return sameText(one, word); });
}

}  // namespace

bool isVersionHead(const Tokens& tokens) {
    const std::vector<Token>& list = tokens.list;
    if (!tokens.word(1, "VERSIONINFO") || tokens.unterminated) return false;
    return list[0].kind == TokenKind::Word && isNumberOrSymbol(list[0].text) &&
           (list.size() == 2 || followsVersion(list[2].text));
}

bool opensStatement(const Tokens& tokens) {
    const std::vector<Token>& list = tokens.list;
    if (tokens.word(0, "#define")) return list.size() == 3 && isIdentifier(list[1].text);
    if (isVersionHead(tokens) || isBlockHead(tokens)) return true;
    if (!isNamed(tokens) || tokens.unterminated || list.size() == 2) return false;
    constexpr std::string_view kinds[] = {"BITMAP", "ICON", "INCFILE", "DBFILE"};
    return list.back().kind == TokenKind::String &&
           std::any_of(std::begin(kinds), std::end(kinds),
                       [&](std::string_view kind) { return tokens.word(1, kind) || tokens.word(2, kind); });
}

}  // namespace tarn::platform
