// SPDX-License-Identifier: Apache-2.0
//
// How the parser moves over its tokens, and what it says and does when one of them does not fit.
#include "library/system/system.h"
#include "os/text/ascii.h"
#include "toolchain/language/parser_internal.h"

namespace tarn::toolchain {

bool beginsDeclaration(Word word) {
    return word == Word::Public || word == Word::Private || word == Word::Const || word == Word::Type ||
           word == Word::Function || word == Word::Callback;
}

bool endsBlock(Word word) {
    return word == Word::End || word == Word::Else || word == Word::Elseif || word == Word::Case ||
           beginsDeclaration(word);
}

bool beginsStatement(Word word) {
    return word == Word::If || word == Word::While || word == Word::Loop || word == Word::For ||
           word == Word::Exit || word == Word::Iterate || word == Word::Select || word == Word::Return ||
           word == Word::Var;
}

const Token& Parser::peek(std::size_t ahead) const {
    const std::size_t last = tokens_.size() - 1;
    return tokens_[position_ + ahead < last ? position_ + ahead : last];
}

bool Parser::accept(Word word) {
    if (!isWord(word)) return false;
    advance();
    return true;
}

bool Parser::accept(std::string_view symbol) {
    if (!isSymbol(symbol)) return false;
    advance();
    return true;
}

std::string Parser::found() const {
    if (atEnd()) return "the end of the file";
    const std::string text(here().text.substr(0, 40));
    return here().kind == TokenKind::String ? text : "'" + text + "'";
}

void Parser::report(Problem problem, std::initializer_list<std::string_view> values) {
    if (!panic_) errorLine_ = here().line;
    reportAt(here().line, problem, values);
    panic_ = true;
}

void Parser::reportAt(int line, Problem problem, std::initializer_list<std::string_view> values) {
    if (!panic_ && here().kind != TokenKind::Bad && line != toldLine_)
        messages_.add(path_, line, problem, values);
    tree_->complete = false;
}

void Parser::tell(Problem problem, std::initializer_list<std::string_view> values) {
    reportAt(here().line, problem, values);
    toldLine_ = here().line;
}

// What is missing is missing at the end of the line before, if a new line has begun.
void Parser::reportExpected(std::string_view what) {
    if (isWord(Word::Later) && !here().firstOnLine) return report(Problem::NotAccepted, {here().text});
    const int line = here().firstOnLine && position_ > 0 ? tokens_[position_ - 1].line : here().line;
    if (!panic_) errorLine_ = line;
    reportAt(line, Problem::Expected, {what, found()});
    panic_ = true;
}

bool Parser::expect(Word word) {
    if (accept(word) || takeInstead(spelling(word))) return true;
    reportExpected("'" + std::string(spelling(word)) + "'");
    return false;
}

bool Parser::expect(std::string_view symbol) {
    if (accept(symbol) || takeInstead(symbol)) return true;
    reportExpected("'" + std::string(symbol) + "'");
    return false;
}

// Goes on behind an error: at the first token of a later line that can begin a statement, a declaration or
// the end of a block. A block that is opened and closed on the faulty line is left as a whole.
void Parser::synchronise() {
    int opened = 0;
    while (!atEnd()) {
        const Token& token = here();
        const bool begins = token.kind == TokenKind::Name || endsBlock(token.word) ||
                            beginsStatement(token.word) ||
                            (braces_ > 0 && token.kind == TokenKind::Symbol && token.text == "}");
        if (token.firstOnLine && token.line > errorLine_ && begins) break;
        if (token.firstOnLine && endsBlock(token.word) && position_ != lastSynchronised_) break;
        const Word word = token.word;
        const bool closes = word == Word::End && !token.firstOnLine;
        if (closes && opened == 0 && token.line == errorLine_) break;
        if (closes) {
            --opened;
            advance();
        }
        if (!closes && (word == Word::If || word == Word::Loop || word == Word::Select)) ++opened;
        advance();
    }
    lastSynchronised_ = position_;
    panic_ = false;
}

bool Parser::name(std::string& text, std::string_view what) {
    if (!isName()) {
        if (here().kind == TokenKind::Word && !here().text.empty() && !isWord(Word::Later))
            report(Problem::NameReserved, {here().text, "reserved"});
        else
            reportExpected(what);
        return false;
    }
    text = std::string(here().text);
    advance();
    return true;
}

// A name that is being declared.
bool Parser::newName(std::string& text) {
    if (isName() && ISFUTURERESERVEDWORD(here().text)) {
        tell(Problem::NameReserved, {here().text, "kept for later"});
    }
    if (isWord(Word::Later)) {
        report(Problem::NameReserved, {here().text, "reserved"});
        return false;
    }
    return name(text, "a name");
}

bool Parser::enter() {
    if (++depth_ <= MaxNesting) return true;
    report(Problem::TooDeep);
    --depth_;
    return false;
}

}  // namespace tarn::toolchain
