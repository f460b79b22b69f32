// SPDX-License-Identifier: Apache-2.0
//
// Statements: a function for each. Blocks end where a word ends them.
#include "os/text/ascii.h"
#include "toolchain/language/parser_internal.h"

#include <array>
#include <utility>

namespace tarn::toolchain {
namespace {

struct ForeignWord {
    std::string_view word, here;
};

// Statements of other languages, and what is written here.
constexpr auto ForeignWords = std::to_array<ForeignWord>({
    {"break", "'exit'"},
    {"continue", "'iterate'"},
    {"elif", "'elseif'"},
    {"elsif", "'elseif'"},
    {"endif", "'end if'"},
    {"wend", "'end loop'"},
    {"next", "'end loop'"},
    {"switch", "'select'"},
    {"do", "'loop'"},
    {"repeat", "'loop' and 'exit when'"},
    {"dim", "'var', between the head of the function and its statements"},
    {"let", "the variable and ':='"},
    {"begin", "nothing: a block begins behind 'then' or 'loop'"},
    {"def", "'function'"},
    {"func", "'function'"},
    {"void", "'function'"},
    {"int", "'var', a name, ':' and 'integer'"},
    {"print", "PRINT(...)"},
});

bool isCall(const Expression& item) {
    return item.kind == ExpressionKind::Call;
}

}  // namespace

StatementPtr Parser::make(StatementKind kind, int line) {
    auto result = std::make_unique<Statement>();
    result->kind = kind;
    result->line = line;
    return result;
}

void Parser::block(Block& statements) {
    if (++depth_ > MaxNesting) {
        report(Problem::TooDeep);
        while (!atEnd() && !atForwardEnd() && !(isWord(Word::End) && peek(1).word == Word::Function))
            advance();
        lastUnclosed_ = position_;
    }
    while (!atEnd() && !endsBlock(here().word)) {
        const std::size_t begin = position_;
        StatementPtr item = statement();
        if (item) statements.push_back(std::move(item));
        if (!panic_) continue;
        if (position_ == begin) advance();
        synchronise();
    }
    --depth_;
}

// `end` and `word`. The end of an outer construct is left for it.
void Parser::closeBlock(Word word, int line) {
    const Word behind = peek(1).word;
    const bool outer = isWord(Word::End) && (behind == Word::Function || behind == Word::Class);
    if (isWord(Word::End) && (behind == word || !outer)) {
        advance();
        if (accept(word)) return;
        --position_;
    }
    // Several blocks that end at one place are told once, by the innermost.
    if (panic_ || std::exchange(lastUnclosed_, position_) == position_) return;
    const std::string what(spelling(word));
    const bool elseIf = word == Word::If && elseIfLine_ >= line;
    const std::string other =
        isWord(Word::End) ? "'end " + std::string(peek(1).text.substr(0, 40)) + "'" : found();
    if (elseIf)
        reportAt(elseIfLine_, Problem::ElseIf, {std::to_string(line)});
    else
        reportAt(here().line, Problem::NotClosed, {what, std::to_string(line), "end " + what, other});
    if (isWord(Word::End) && !outer) {
        const bool alone = peek(1).firstOnLine;  // nothing stands behind this end
        advance();
        if (!alone) advance();
    } else if (outer && word == Word::Function) {
        panic_ = false;
    }
}

StatementPtr Parser::statement() {
    const int line = here().line;
    switch (here().word) {
    case Word::If: return ifStatement(line);
    case Word::While: return whileStatement(line);
    case Word::Loop: return loopStatement(line);
    case Word::For: return peek(1).word == Word::Each ? forEachStatement(line) : forStatement(line);
    case Word::Select: return selectStatement(line);
    case Word::Exit: return leaveStatement(StatementKind::Exit, line);
    case Word::Iterate: return leaveStatement(StatementKind::Iterate, line);
    case Word::Return: return returnStatement(line);
    default: break;
    }
    if (isName() && foreignStatement()) return nullptr;
    if (isName() || isWord(Word::Me)) return itemStatement(line);
    if (isWord(Word::Later))
        report(Problem::NotAccepted, {here().text});
    else
        report(Problem::StatementExpected, {found()});
    return nullptr;
}

// A word that begins statements elsewhere and is followed by what no statement of this language has.
bool Parser::foreignStatement() {
    const Token& next = peek(1);
    const bool plain = next.kind == TokenKind::Symbol && !next.firstOnLine &&
                       (next.text == ":=" || next.text == "." || next.text == "[" || next.text == "(");
    if (plain) return false;
    for (const ForeignWord& entry : ForeignWords)
        if (ascii::equal(entry.word, here().text)) {
            report(Problem::Foreign, {here().text, entry.here});
            return true;
        }
    return false;
}

StatementPtr Parser::itemStatement(int line) {
    ExpressionPtr target = item();
    if (panic_) return nullptr;
    if (isCall(*target)) {
        auto result = make(StatementKind::Call, line);
        result->value = std::move(target);
        return result;
    }
    const bool counts = (isSymbol("+") || isSymbol("-")) && !here().firstOnLine;
    if (counts && (peek(1).text == here().text || peek(1).text == "=")) {
        const std::string sign(here().text), name = target->name.empty() ? "x" : target->name;
        report(Problem::Foreign,
               {sign + std::string(peek(1).text), "'" + name + " := " + name + " " + sign + " 1'"});
        return nullptr;
    }
    auto result = make(StatementKind::Assign, line);
    result->target = std::move(target);
    if (isSymbol("=")) {
        report(Problem::Foreign, {"=", "':=' to assign"});
        return nullptr;
    }
    if (!expect(":=")) return nullptr;
    result->value = expression();
    return result;
}

StatementPtr Parser::ifStatement(int line) {
    auto result = make(StatementKind::If, line);
    const bool behindElse = position_ > 0 && tokens_[position_ - 1].word == Word::Else && !here().firstOnLine;
    while (isWord(Word::If) || isWord(Word::Elseif)) {
        Branch branch;
        branch.line = here().line;
        advance();
        branch.condition = expression();
        if (!panic_) expect(Word::Then);
        if (panic_) synchronise();
        block(branch.body);
        result->branches.push_back(std::move(branch));
        if (!isWord(Word::Elseif)) break;
    }
    elseBranch(*result);
    closeBlock(Word::If, line);
    if (behindElse) elseIfLine_ = line;
    return result;
}

void Parser::elseBranch(Statement& statement) {
    if (!isWord(Word::Else)) return;
    Branch branch;
    branch.line = here().line;
    advance();
    accept("=>");
    block(branch.body);
    statement.branches.push_back(std::move(branch));
    statement.hasElse = true;
}

StatementPtr Parser::whileStatement(int line) {
    advance();
    auto result = make(StatementKind::While, line);
    result->value = expression();
    loopBody(*result);
    return result;
}

StatementPtr Parser::loopStatement(int line) {
    auto result = make(StatementKind::Loop, line);
    loopBody(*result);
    return result;
}

StatementPtr Parser::forStatement(int line) {
    advance();
    auto result = make(StatementKind::For, line);
    std::string text;
    if (name(text, "the name of a variable")) {
        result->target = makeName(text, line);
        forBounds(*result);
    }
    loopBody(*result);
    return result->target && result->value && result->limit ? std::move(result) : nullptr;
}

void Parser::forBounds(Statement& statement) {
    if (!expect(Word::From)) return;
    statement.value = expression();
    if (panic_) return;
    statement.down = isWord(Word::Downto);
    if (statement.down)
        advance();
    else if (!expect(Word::To))
        return;
    statement.limit = expression();
    if (!panic_ && accept(Word::By)) statement.step = expression();
}

StatementPtr Parser::forEachStatement(int line) {
    advance();
    advance();
    auto result = make(StatementKind::ForEach, line);
    std::string text;
    if (name(text, "the name of a variable") && expect(Word::In)) {
        result->target = makeName(text, line);
        result->value = expression();
        if (!panic_ && accept(Word::Through)) name(result->through, "the name of an index");
        result->down = !panic_ && accept(Word::Desc);
        if (!panic_ && accept(Word::Where)) result->where = expression();
    }
    loopBody(*result);
    return result->target && result->value ? std::move(result) : nullptr;
}

void Parser::loopBody(Statement& statement) {
    if (!panic_) expect(Word::Loop);
    if (panic_) synchronise();
    block(statement.body);
    closeBlock(Word::Loop, statement.line);
}

StatementPtr Parser::leaveStatement(StatementKind kind, int line) {
    advance();
    auto result = make(kind, line);
    if (accept(Word::When)) result->value = expression();
    return result;
}

StatementPtr Parser::returnStatement(int line) {
    advance();
    auto result = make(StatementKind::Return, line);
    const bool guess = !headKnown_ && here().line == line && !atEnd();
    if (headKnown_ ? result_ : guess) result->value = expression();
    return result;
}

StatementPtr Parser::selectStatement(int line) {
    advance();
    auto result = make(StatementKind::Select, line);
    result->value = expression();
    if (panic_) synchronise();
    if (!isWord(Word::Case)) withoutCase();
    while (isWord(Word::Case)) {
        Branch branch;
        branch.line = here().line;
        advance();
        caseLabels(branch);
        if (panic_) synchronise();
        block(branch.body);
        result->branches.push_back(std::move(branch));
    }
    elseBranch(*result);
    closeBlock(Word::Select, line);
    return result;
}

// What stands in front of the first case is read for its own errors and its ends.
void Parser::withoutCase() {
    reportExpected("'case'");
    panic_ = false;
    Block lost;
    block(lost);
}

void Parser::caseLabels(Branch& branch) {
    do {
        CaseLabel label;
        label.line = here().line;
        label.from = expression();
        if (!panic_ && accept(Word::To)) label.to = expression();
        branch.labels.push_back(std::move(label));
    } while (!panic_ && accept(","));
    if (!panic_) expect("=>");
}

}  // namespace tarn::toolchain
