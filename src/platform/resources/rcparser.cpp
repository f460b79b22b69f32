// SPDX-License-Identifier: Apache-2.0
//
// The text of a resource file read, a line at a time: run() tells statements apart; define, version, fileStatement and
// block read one each; bodyLine, propertyLine and headLine what stands in a block. A fault ends its statement, not the
// file.
#include "platform/resources/rctext.h"

#include "platform/resources/rctokens_internal.h"
#include "platform/text.h"

#include <algorithm>

namespace tarn::platform {

namespace {

constexpr int windowSyntax = 725, menuSyntax = 726;

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

class Parser {
public:
    explicit Parser(RcFile& file) : file_(file), text_(file.text) {}
    void run();

private:
    enum class Step { On, Ended, Missing };  // Missing: the block is over, but its END did not come

    bool nextLine();  // false at the end of the text
    void unreadLine();
    void statement();
    void define(const Tokens& tokens);
    void block(const Tokens& tokens, RcKind kind);
    void version(const Tokens& tokens);
    bool versionBody(RcStatement& statement, const Tokens& head);
    void unknownBlock();
    bool skipToEnd();
    bool fileStatement(const Tokens& tokens);
    Step bodyLine(RcStatement& statement, std::size_t& bodyEnd);
    Step foreignBlock(bool whole);
    std::string propertyLine(RcStatement& statement, std::size_t& bodyEnd);
    std::string headLine(RcStatement& statement, const Tokens& tokens, std::size_t& bodyEnd);
    [[nodiscard]] RcStatement begin(RcKind kind, const Token& name, std::string_view kindWord) const;
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

void Parser::unreadLine() {
    at_ = lineBegin_;
    --lineNumber_;
}

// The first fault of a statement counts.
void note(RcStatement& statement, int line, std::string text) {
    const int number = statement.kind == RcKind::Menu ? menuSyntax : windowSyntax;
    if (statement.fault.empty()) statement.fault = {line, number, std::move(text)};
}

void Parser::run() {
    const auto fail = [this](int line, std::string text) {
        file_.fault = {line, windowSyntax, std::move(text)};
    };
    if (text_.size() > largestResourceText) return fail(1, "The file is too large for a resource file.");
    if (const std::size_t zero = text_.find('\0'); zero != std::string_view::npos) {
        const auto before =
            std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(zero), '\n');
        return fail(static_cast<int>(before) + 1, "There is a zero byte, so this is no text.");
    }
    if (text_.starts_with(byteOrderMark)) at_ = byteOrderMark.size();
    while (nextLine()) statement();
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
    const bool named = isNamed(tokens);
    if (isBlockHead(tokens)) return block(tokens, tokens.word(1, "MENU") ? RcKind::Menu : RcKind::Window);
    if (isVersionHead(tokens)) return version(tokens);
    if (named && fileStatement(tokens)) return;
    RcStatement unknown = begin(RcKind::Unknown, list.empty() ? Token() : list[0], "");
    if (named && tokens.unterminated) note(unknown, lineNumber_, "The string does not end on its line.");
    end(std::move(unknown));
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

// Reads on to the END of a BEGIN that was read. False if it does not come before the next statement or the
// end of the text.
bool Parser::skipToEnd() {
    for (int depth = 1; depth > 0;) {
        if (!nextLine()) return false;
        const Tokens tokens = tokenize(line_, lineBegin_);
        if (opensStatement(tokens)) return unreadLine(), false;
        if (tokens.word(0, "BEGIN")) ++depth;
        if (tokens.word(0, "END")) --depth;
    }
    return true;
}

// Lines of no known statement that stand between BEGIN and END belong together.
void Parser::unknownBlock() {
    RcStatement result = begin(RcKind::Unknown, Token(), "");
    if (!skipToEnd()) note(result, result.lineNumber, "The END of this BEGIN is missing.");
    end(std::move(result));
}

// How deep a version block goes behind a line, and whether it has begun. `torn`: it had an END without a BEGIN.
struct Depth {
    int now = 0;
    bool begun = false, torn = false;
};
void deepen(const Tokens& tokens, Depth& depth) {
    for (const Token& token : tokens.list) {
        if (token.kind == TokenKind::String) continue;
        if (sameText(token.text, "BEGIN") || token.text == "{") ++depth.now, depth.begun = true;
        if (sameText(token.text, "END") || token.text == "}") --depth.now;
        depth.torn = depth.torn || depth.now < 0;
    }
}

// Reads on to the END of the block, whose head has gone that deep. False if it does not come.
bool Parser::versionBody(RcStatement& statement, const Tokens& head) {
    Depth depth;
    for (deepen(head, depth); !depth.torn && (!depth.begun || depth.now > 0);) {
        if (!nextLine()) return false;
        const Tokens tokens = tokenize(line_, lineBegin_);
        if (opensStatement(tokens)) return unreadLine(), false;
        deepen(tokens, depth);
    }
    if (depth.torn) note(statement, lineNumber_, "There is an END without a BEGIN.");
    return true;
}

void Parser::version(const Tokens& tokens) {
    RcStatement result = begin(RcKind::Version, tokens.list[0], tokens.list[1].text);
    if (!versionBody(result, tokens))
        note(result, result.lineNumber, "The END of the version block '" + result.name + "' is missing.");
    end(std::move(result));
}

// name [id] KIND [options] "path"
bool Parser::fileStatement(const Tokens& tokens) {
    const std::vector<Token>& list = tokens.list;
    const std::size_t words = tokens.unterminated ? list.size() : list.size() - 1;  // before the path
    if (words < 2 || (!tokens.unterminated && list.back().kind != TokenKind::String)) return false;
    for (std::size_t i = 1; i < words; ++i)
        if (list[i].kind != TokenKind::Word || !isNumberOrSymbol(list[i].text)) return false;
    const bool hasId = words > 2 && (wholeNumber(list[1].text) || !isMemoryOption(list[2].text));
    const std::size_t kind = hasId ? 2 : 1;
    if (!isIdentifier(list[kind].text)) return false;
    RcStatement result = begin(RcKind::File, list[0], list[kind].text);
    if (hasId) {
        result.id = list[1].text;
        result.idSpan = list[1].span;
    }
    for (std::size_t i = kind + 1; i < words; ++i) result.options.push_back(list[i].text);
    if (tokens.unterminated)
        note(result, lineNumber_, "The string does not end on its line.");
    else
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
    Step step = Step::On;
    while (step == Step::On) step = nextLine() ? bodyLine(result, bodyEnd) : Step::Missing;
    if (step == Step::Missing)
        note(result, result.lineNumber, "The END of '" + result.name + "' is missing.");
    if (!isIdentifier(result.name)) {
        result.fault = {};
        note(result, result.lineNumber,
             "'" + result.name + "' is a number; give the " + (kind == RcKind::Menu ? "menu" : "window") +
                 " a name that begins with a letter.");
    }
    end(std::move(result));
}

// A body between BEGIN and END is of another grammar. Where it is the whole body its END ends the block.
Parser::Step Parser::foreignBlock(bool whole) {
    if (!skipToEnd()) return Step::Missing;
    return whole ? Step::Ended : Step::On;
}

Parser::Step Parser::bodyLine(RcStatement& statement, std::size_t& bodyEnd) {
    const std::size_t first = skipBlanks(line_, 0);
    if (first >= line_.size() || atComment(line_, first)) return Step::On;
    const int line = lineNumber_;
    std::size_t wordEnd = first;
    while (wordEnd < line_.size() && isWordByte(line_[wordEnd])) ++wordEnd;
    const std::size_t next = skipBlanks(line_, wordEnd);
    if (next < line_.size() && line_[next] == '=') {
        if (std::string fault = propertyLine(statement, bodyEnd); !fault.empty())
            note(statement, line, std::move(fault));
        return Step::On;
    }
    const Tokens tokens = tokenize(line_, lineBegin_);
    const bool alone = tokens.list.size() == 1;
    if (alone && tokens.word(0, "END")) return Step::Ended;
    std::string fault = headLine(statement, tokens, bodyEnd);
    if (fault.empty()) return Step::On;
    if (opensStatement(tokens)) return unreadLine(), Step::Missing;
    const bool untouched =
        statement.self.properties.empty() && statement.objects.empty() && statement.fault.empty();
    note(statement, line, std::move(fault));
    return alone && tokens.word(0, "BEGIN") ? foreignBlock(untouched) : Step::On;
}

// Adds the property to the object above it. The result is what is wrong; empty if nothing is.
std::string Parser::propertyLine(RcStatement& statement, std::size_t& bodyEnd) {
    RcObject& object = statement.objects.empty() ? statement.self : statement.objects.back();
    const std::size_t equals = line_.find('=');
    RcProperty property;
    property.name = upper(trim(line_.substr(0, equals)));
    if (!isIdentifier(property.name)) return "There is no property name before the \"=\".";
    if (property.name == "NAME" || property.name == "TYPEOF")
        return property.name + " is told by the head of the block.";
    std::size_t at = skipBlanks(line_, equals + 1);
    const std::size_t valueBegin = at;
    if (at < line_.size() && line_[at] == '"') {
        if (!readString(line_, at, kindOf(object.type, property.name) == ValueKind::File, property.value))
            return "The string does not end on its line.";
        const std::size_t rest = skipBlanks(line_, at);
        if (rest < line_.size() && !atComment(line_, rest)) return "There is something behind the string.";
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
    return "";
}

// TYPE [name] [number]. The result is what is wrong; empty if nothing is.
std::string Parser::headLine(RcStatement& statement, const Tokens& tokens, std::size_t& bodyEnd) {
    const bool menu = statement.kind == RcKind::Menu;
    const std::vector<Token>& list = tokens.list;
    RcObject object;
    object.type = list.empty() || list[0].kind != TokenKind::Word ? Type::None : typeFromName(list[0].text);
    if (propertiesOf(object.type).empty() || isWindowType(object.type) ||
        (object.type == Type::Menuitem) != menu)
        return "A property, a " + std::string(menu ? "Menuitem" : "control") + " or END should stand here.";
    std::size_t at = 1;
    if (at < list.size() && list[at].kind == TokenKind::Word && isIdentifier(list[at].text)) {
        object.name = list[at].text;
        object.nameSpan = list[at++].span;
    }
    if (at < list.size() && list[at].kind == TokenKind::Word && isNumberOrSymbol(list[at].text)) {
        object.number = list[at].text;
        object.numberSpan = list[at++].span;
    }
    if (at < list.size() || tokens.unterminated)
        return "Behind the type stand a name and a number, and nothing else.";
    object.typeSpan = list[0].span;
    object.head = {lineBegin_, at_};
    object.span = {bodyEnd, at_};
    object.lineNumber = lineNumber_;
    bodyEnd = at_;
    statement.objects.push_back(std::move(object));
    return "";
}

}  // namespace

RcFile parseResourceText(std::string text) {
    RcFile file;
    file.text = std::move(text);
    Parser(file).run();
    return file;
}

}  // namespace tarn::platform
