// SPDX-License-Identifier: Apache-2.0
#include "platform/resources/rctext.h"

#include "platform/text.h"

#include <algorithm>
#include <array>

namespace tarn::platform {

namespace {

constexpr int windowSyntax = 725, menuSyntax = 726;

constexpr std::pair<std::string_view, int> commonIds[] = {{"IDOK", 1},    {"IDCANCEL", 2}, {"IDABORT", 3},
                                                          {"IDRETRY", 4}, {"IDIGNORE", 5}, {"IDYES", 6},
                                                          {"IDNO", 7},    {"IDCLOSE", 8},  {"IDHELP", 9}};

constexpr std::string_view memoryOptions[] = {"PRELOAD", "LOADONCALL", "FIXED",  "MOVEABLE", "DISCARDABLE",
                                              "PURE",    "IMPURE",     "SHARED", "NONSHARED"};

// ---- tokens of one line ----

enum class TokenKind { Word, String, Other };

struct Token {
    TokenKind kind = TokenKind::Other;
    std::string text;  // a string's value
    Span span;
};

bool isWordByte(char c) {
    return (upper(c) >= 'A' && upper(c) <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '#' ||
           c == '-' || c == '+';
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char u = upper(c);
    return u >= 'A' && u <= 'F' ? u - 'A' + 10 : -1;
}

// One escape at `at`, which is the backslash; gives the bytes it takes, and adds what it stands for.
std::size_t readEscape(std::string_view text, std::size_t at, bool path, std::string& into) {
    const char c = at + 1 < text.size() ? text[at + 1] : '\0';
    if (c == '\\' || c == '"') return into += c, 2;
    if (!path && c == 'n') return into += '\n', 2;
    if (!path && c == 'r') return into += '\r', 2;
    if (!path && c == 't') return into += '\t', 2;
    if (!path && c == '0') return into += '\0', 2;
    if (!path && c == 'x' && at + 3 < text.size()) {
        const int high = hexDigit(text[at + 2]), low = hexDigit(text[at + 3]);
        if (high >= 0 && low >= 0) return into += static_cast<char>(high * 16 + low), 4;
    }
    return into += '\\', 1;
}

// A string that begins at `at`; its value goes to `into`. False if it does not end on this line.
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

struct Tokens {
    std::vector<Token> list;
    bool unterminated = false;
    [[nodiscard]] bool word(std::size_t i, std::string_view text) const {
        return i < list.size() && list[i].kind == TokenKind::Word && sameText(list[i].text, text);
    }
};

// Strings of a statement are paths, where only the doubled backslash and the quote are escapes.
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

// ---- the parser ----

class Parser {
public:
    explicit Parser(RcFile& file) : file_(file), text_(file.text) {}
    void run();

private:
    bool nextLine();  // false at the end of the text
    void fail(int line, int number, std::string text);
    void statement();
    void define(const Tokens& tokens);
    void block(const Tokens& tokens, RcKind kind);
    void version(const Tokens& tokens);
    void unknownBlock();
    bool fileStatement(const Tokens& tokens);
    bool bodyLine(RcStatement& statement, std::size_t& bodyEnd);
    bool propertyLine(RcStatement& statement, std::size_t& bodyEnd);
    bool headLine(RcStatement& statement, const Tokens& tokens, std::size_t& bodyEnd);
    RcStatement begin(RcKind kind, const Token& name, std::string_view kindWord) const;
    void end(RcStatement&& statement);

    RcFile& file_;
    std::string_view text_;
    std::size_t at_ = 0;  // where the next line begins
    std::size_t lineBegin_ = 0;
    std::string_view line_;  // without its line end
    int lineNumber_ = 0;
};

bool Parser::nextLine() {
    if (at_ >= text_.size()) return false;
    lineBegin_ = at_;
    const std::size_t end = std::min(text_.find('\n', at_), text_.size());
    line_ = text_.substr(at_, end - at_);
    if (line_.ends_with('\r')) line_.remove_suffix(1);
    at_ = std::min(end + 1, text_.size());
    ++lineNumber_;
    return true;
}

void Parser::fail(int line, int number, std::string text) {
    if (file_.fault.empty()) file_.fault = {line, number, std::move(text)};
}

void Parser::run() {
    if (text_.size() > largestResourceText)
        return fail(1, windowSyntax, "The file is too large for a resource file.");
    if (const std::size_t zero = text_.find('\0'); zero != std::string_view::npos) {
        const auto before =
            std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(zero), '\n');
        return fail(static_cast<int>(before) + 1, windowSyntax, "There is a zero byte, so this is no text.");
    }
    while (file_.fault.empty() && nextLine()) statement();
}

RcStatement Parser::begin(RcKind kind, const Token& name, std::string_view kindWord) const {
    RcStatement result;
    result.kind = kind;
    result.name = name.text;
    result.nameSpan = name.span;
    result.kindWord = upper(kindWord);
    result.span.begin = lineBegin_;
    result.lineNumber = lineNumber_;
    return result;
}

void Parser::end(RcStatement&& statement) {
    statement.span.end = at_;
    file_.statements.push_back(std::move(statement));
}

void Parser::statement() {
    const Tokens tokens = tokenize(line_, lineBegin_);
    const std::vector<Token>& list = tokens.list;
    if (list.empty() && !tokens.unterminated) return;  // blank, or a comment
    if (tokens.word(0, "#define")) return define(tokens);
    if (tokens.word(0, "BEGIN") && list.size() == 1) return unknownBlock();
    const bool named = list.size() >= 2 && list[0].kind == TokenKind::Word &&
                       list[1].kind == TokenKind::Word && isIdentifier(list[0].text);
    if (named && list.size() == 2 && isWindowKind(list[1].text)) return block(tokens, RcKind::Window);
    if (named && list.size() == 2 && tokens.word(1, "MENU")) return block(tokens, RcKind::Menu);
    if (named && list.size() == 2 && tokens.word(1, "VERSIONINFO")) return version(tokens);
    if (named && tokens.unterminated)
        return fail(lineNumber_, windowSyntax, "The string does not end on its line.");
    if (named && fileStatement(tokens)) return;
    end(begin(RcKind::Unknown, list.empty() ? Token() : list[0], ""));
}

void Parser::define(const Tokens& tokens) {
    const std::vector<Token>& list = tokens.list;
    const bool good = list.size() == 3 && isIdentifier(list[1].text) && wholeNumber(list[2].text);
    RcStatement result = begin(good ? RcKind::Define : RcKind::Unknown,
                               list[std::min<std::size_t>(1, list.size() - 1)], "#DEFINE");
    if (good) {
        result.id = list[2].text;
        file_.symbols.emplace(result.name, *wholeNumber(result.id));
    }
    end(std::move(result));
}

// Lines of no known statement that stand between BEGIN and END belong together.
void Parser::unknownBlock() {
    RcStatement result = begin(RcKind::Unknown, Token(), "");
    const int first = lineNumber_;
    for (int depth = 1; depth > 0;) {
        if (!nextLine()) return fail(first, windowSyntax, "The END of this BEGIN is missing.");
        const Tokens tokens = tokenize(line_, lineBegin_);
        if (tokens.word(0, "BEGIN")) ++depth;
        if (tokens.word(0, "END")) --depth;
    }
    end(std::move(result));
}

void Parser::version(const Tokens& tokens) {
    RcStatement result = begin(RcKind::Version, tokens.list[0], tokens.list[1].text);
    int depth = 0;
    do {
        if (!nextLine())
            return fail(result.lineNumber, windowSyntax,
                        "The END of the version block '" + result.name + "' is missing.");
        const Tokens line = tokenize(line_, lineBegin_);
        if (line.word(0, "BEGIN")) ++depth;
        if (line.word(0, "END") && --depth < 0)
            return fail(lineNumber_, windowSyntax, "There is an END without a BEGIN.");
        if (line.word(0, "END") && depth == 0) break;
    } while (true);
    end(std::move(result));
}

bool Parser::fileStatement(const Tokens& tokens) {
    const std::vector<Token>& list = tokens.list;
    if (list.size() < 3 || list.back().kind != TokenKind::String) return false;
    for (std::size_t i = 1; i + 1 < list.size(); ++i)
        if (list[i].kind != TokenKind::Word || !isNumberOrSymbol(list[i].text)) return false;
    // name [id] KIND [options] "path"
    const bool hasId = list.size() > 3 && (wholeNumber(list[1].text) || !isMemoryOption(list[2].text));
    const std::size_t kind = hasId ? 2 : 1;
    if (!isIdentifier(list[kind].text)) return false;
    RcStatement result = begin(RcKind::File, list[0], list[kind].text);
    if (hasId) result.id = list[1].text;
    for (std::size_t i = kind + 1; i + 1 < list.size(); ++i) result.options.push_back(list[i].text);
    result.path = list.back().text;
    end(std::move(result));
    return true;
}

void Parser::block(const Tokens& tokens, RcKind kind) {
    RcStatement result = begin(kind, tokens.list[0], tokens.list[1].text);
    result.self.type = kind == RcKind::Menu ? Type::Menuitem : typeFromName(result.kindWord);
    result.self.name = result.name;
    result.self.lineNumber = lineNumber_;
    result.self.head = {lineBegin_, at_};
    result.self.span = result.self.head;
    result.self.nameSpan = tokens.list[0].span;
    result.self.typeSpan = tokens.list[1].span;
    std::size_t bodyEnd = at_;
    while (nextLine())
        if (!bodyLine(result, bodyEnd)) {
            if (file_.fault.empty()) end(std::move(result));
            return;
        }
    fail(result.lineNumber, kind == RcKind::Menu ? menuSyntax : windowSyntax,
         "The END of '" + result.name + "' is missing.");
}

// False when the block has ended, well or with a fault.
bool Parser::bodyLine(RcStatement& statement, std::size_t& bodyEnd) {
    const std::size_t first = skipBlanks(line_, 0);
    if (first >= line_.size() || atComment(line_, first)) return true;
    std::size_t wordEnd = first;
    while (wordEnd < line_.size() && isWordByte(line_[wordEnd])) ++wordEnd;
    const std::size_t next = skipBlanks(line_, wordEnd);
    if (next < line_.size() && line_[next] == '=') return propertyLine(statement, bodyEnd);
    const Tokens tokens = tokenize(line_, lineBegin_);
    if (tokens.word(0, "END") && tokens.list.size() == 1) return false;
    return headLine(statement, tokens, bodyEnd);
}

bool Parser::propertyLine(RcStatement& statement, std::size_t& bodyEnd) {
    const int number = statement.kind == RcKind::Menu ? menuSyntax : windowSyntax;
    RcObject& object = statement.objects.empty() ? statement.self : statement.objects.back();
    const std::size_t equals = line_.find('=');
    RcProperty property;
    property.name = upper(trim(line_.substr(0, equals)));
    if (!isIdentifier(property.name))
        return fail(lineNumber_, number, "There is no property name before the \"=\"."), false;
    if (property.name == "NAME" || property.name == "TYPEOF")
        return fail(lineNumber_, number, property.name + " is told by the head of the block."), false;
    std::size_t at = skipBlanks(line_, equals + 1);
    const std::size_t valueBegin = at;
    if (at < line_.size() && line_[at] == '"') {
        if (!readString(line_, at, kindOf(object.type, property.name) == ValueKind::File, property.value))
            return fail(lineNumber_, number, "The string does not end on its line."), false;
        const std::size_t rest = skipBlanks(line_, at);
        if (rest < line_.size() && !atComment(line_, rest))
            return fail(lineNumber_, number, "There is something behind the string."), false;
    } else {
        const std::string_view value = trim(line_.substr(at, line_.find("//", at) - at));
        property.value = value;
        at += value.size();
    }
    property.valueSpan = {lineBegin_ + valueBegin, lineBegin_ + at};
    property.line = {lineBegin_, at_};
    property.lineNumber = lineNumber_;
    object.properties.push_back(std::move(property));
    object.span.end = bodyEnd = at_;
    return true;
}

// TYPE [name] [number]
bool Parser::headLine(RcStatement& statement, const Tokens& tokens, std::size_t& bodyEnd) {
    const bool menu = statement.kind == RcKind::Menu;
    const int number = menu ? menuSyntax : windowSyntax;
    const std::vector<Token>& list = tokens.list;
    RcObject object;
    object.type = list.empty() || list[0].kind != TokenKind::Word ? Type::None : typeFromName(list[0].text);
    if (propertiesOf(object.type).empty() || isWindowType(object.type) ||
        (object.type == Type::Menuitem) != menu)
        return fail(lineNumber_, number,
                    "A property, a " + std::string(menu ? "Menuitem" : "control") +
                        " or END should stand here."),
               false;
    std::size_t at = 1;
    if (at < list.size() && list[at].kind == TokenKind::Word && isIdentifier(list[at].text)) {
        object.name = list[at].text;
        object.nameSpan = list[at++].span;
    }
    if (at < list.size() && list[at].kind == TokenKind::Word && isNumberOrSymbol(list[at].text))
        object.number = list[at++].text;
    if (at < list.size() || tokens.unterminated)
        return fail(lineNumber_, number, "Behind the type stand a name and a number, and nothing else."),
               false;
    object.typeSpan = list[0].span;
    object.head = {lineBegin_, at_};
    object.span = {bodyEnd, at_};
    object.lineNumber = lineNumber_;
    bodyEnd = at_;
    statement.objects.push_back(std::move(object));
    return true;
}

bool needsQuotes(std::string_view value) {
    if (value.find("//") != std::string_view::npos || value != trim(value)) return true;
    return std::any_of(value.begin(), value.end(),
                       [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '"' || c == 0x7f; });
}

}  // namespace

Properties RcObject::values() const {
    Properties result;
    for (const RcProperty& property : properties) {
        const auto same = [&](const auto& seen) { return seen.first == property.name; };
        if (std::none_of(result.begin(), result.end(), same))
            result.emplace_back(property.name, property.value);
    }
    return result;
}

const RcStatement* RcFile::find(RcKind kind, std::string_view name) const {
    for (const RcStatement& statement : statements)
        if (statement.kind == kind && sameText(statement.name, name)) return &statement;
    return nullptr;
}

const RcStatement* RcFile::find(std::string_view name) const {
    for (const RcStatement& statement : statements)
        if (statement.kind != RcKind::Define && statement.kind != RcKind::Unknown &&
            sameText(statement.name, name))
            return &statement;
    return nullptr;
}

int RcFile::symbol(std::string_view name) const {
    const auto define = symbols.find(name);
    return define != symbols.end() ? define->second : commonId(name);
}

int RcFile::numberOf(const RcObject& object) const {
    if (object.number.empty()) return object.name.empty() ? 0 : symbol(object.name);
    const std::optional<int> number = wholeNumber(object.number);
    return number ? *number : symbol(object.number);
}

std::string_view RcFile::lineEnd() const {
    const std::size_t first = text.find('\n');
    return first != std::string::npos && first > 0 && text[first - 1] == '\r' ? "\r\n" : "\n";
}

RcFile parseResourceText(std::string text) {
    RcFile file;
    file.text = std::move(text);
    Parser(file).run();
    return file;
}

int commonId(std::string_view name) {
    for (const auto& [word, number] : commonIds)
        if (sameText(word, name)) return number;
    return 0;
}

bool isMemoryOption(std::string_view word) {
    return std::any_of(std::begin(memoryOptions), std::end(memoryOptions),
                       [&](std::string_view option) { return sameText(option, word); });
}

std::string quoted(std::string_view text) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            result += {'\\', c};
        else if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else if (c == '\t')
            result += "\\t";
        else if (c == '\0')
            result += "\\0";
        else if (byte < ' ' || byte == 0x7f)
            result += {'\\', 'x', digits[byte >> 4U], digits[byte & 15U]};
        else
            result += c;
    }
    return result + "\"";
}

std::string quotedPath(std::string_view path) {
    std::string result = "\"";
    for (const char c : path) {
        if (c == '"' || c == '\\') result += '\\';
        result += c == '\n' || c == '\r' || c == '\0' ? ' ' : c;
    }
    return result + "\"";
}

std::string valueText(Type type, std::string_view name, std::string_view value) {
    const ValueKind kind = kindOf(type, name);
    if (kind == ValueKind::File) return quotedPath(value);
    return kind == ValueKind::Text || needsQuotes(value) ? quoted(value) : std::string(value);
}

}  // namespace tarn::platform
