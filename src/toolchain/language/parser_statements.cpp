// SPDX-License-Identifier: Apache-2.0
//
// Statements: a function for each. Blocks end where a word ends them.
#include "os/text/ascii.h"
#include "toolchain/language/parser_internal.h"

#include <array>
#include <utility>

namespace tarn::toolchain {
namespace {

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
    while (!atEnd()) {
        if (strayEnd() || misplaced()) continue;
        if (atBlockEnd()) break;
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
    if (!panic_ && takeForeignEnd(word)) return;
    const bool alone = endIsAlone();
    const Word behind = alone ? Word::None : peek(1).word;
    const bool outer = isWord(Word::End) && (behind == Word::Function || behind == Word::Class);
    if (isWord(Word::End) && (behind == word || !outer)) {
        advance();
        if (!alone && accept(word)) return;
        --position_;
    }
    // Several blocks that end at one place are told once, by the innermost.
    if (panic_ || std::exchange(lastUnclosed_, position_) == position_) return;
    const std::string what(spelling(word));
    const bool elseIf = word == Word::If && elseIfLine_ >= line;
    const std::string other = alone               ? "'end' alone"
                              : isWord(Word::End) ? "'end " + std::string(peek(1).text.substr(0, 40)) + "'"
                                                  : found();
    if (elseIf)
        reportAt(elseIfLine_, Problem::ElseIf, {std::to_string(line)});
    else
        reportAt(here().line, Problem::NotClosed, {what, std::to_string(line), "end " + what, other});
    if (isWord(Word::End) && !outer) {
        advance();
        if (!alone && !here().firstOnLine) advance();
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
    bool taken = false;
    if (isName() || isSymbol("{") || isSymbol("+") || isSymbol("-")) {
        StatementPtr foreign = foreignStatement(taken);
        if (taken) return foreign;
    }
    if (isName() || isWord(Word::Me)) return itemStatement(line);
    if (isWord(Word::Later))
        report(Problem::NotAccepted, {here().text});
    else
        report(Problem::StatementExpected, {found()});
    return nullptr;
}

StatementPtr Parser::itemStatement(int line) {
    ExpressionPtr target = item();
    if (panic_) return nullptr;
    if (target->kind == ExpressionKind::Literal) {  // told
        errorLine_ = line;
        panic_ = true;
        return nullptr;
    }
    if (isCall(*target) && isSymbol(":=")) {
        report(Problem::Foreign, {"( )", "'[' and ']' around the place of an element"});
        return nullptr;
    }
    if (isCall(*target)) {
        auto result = make(StatementKind::Call, line);
        result->value = std::move(target);
        return result;
    }
    if (foreignChange(*target)) return nullptr;
    auto result = make(StatementKind::Assign, line);
    result->target = std::move(target);
    if (here().told && !here().firstOnLine) {  // one message is enough
        errorLine_ = line;
        panic_ = true;
        tree_->complete = false;
        return nullptr;
    }
    if (isSymbol("=")) {
        reportExpected("':=' to assign");
        return nullptr;
    }
    if (!expect(":=")) return nullptr;
    result->value = expression();
    takeValueOfNextLine(line);
    return result;
}

// A value that is missing at the end of a line takes the name that the next assignment begins with.
void Parser::takeValueOfNextLine(int line) {
    if (panic_ || !isSymbol(":=")) return;
    std::size_t first = position_;
    while (first > 1 && !tokens_[first].firstOnLine) --first;
    if (tokens_[first].line <= line) return;
    reportAt(tokens_[first - 1].line, Problem::Expected,
             {"a value", "'" + std::string(tokens_[first].text) + "'"});
    advance();
    expression();
}

StatementPtr Parser::ifStatement(int line) {
    auto result = make(StatementKind::If, line);
    const bool behindElse = position_ > 0 && tokens_[position_ - 1].word == Word::Else && !here().firstOnLine;
    bool brace = false, more = true;
    ++ifs_;
    while (more) {
        Branch branch;
        branch.line = here().line;
        if (!takeForeignEnd(Word::Elseif)) advance();
        branch.condition = condition();
        brace = openBlock(Word::Then);
        block(branch.body);
        brace = closeBrace(brace);
        result->branches.push_back(std::move(branch));
        // Behind a block in braces `else if` goes on with the same `if`.
        if (brace && isWord(Word::Else) && peek(1).word == Word::If) advance();
        more = isWord(Word::Elseif) ||
               (brace && isWord(Word::If) && tokens_[position_ - 1].word == Word::Else) || atForeignElseif();
    }
    elseBranch(*result, brace);
    if (!brace) closeBlock(Word::If, line);
    --ifs_;
    if (behindElse) elseIfLine_ = line;
    return result;
}

void Parser::elseBranch(Statement& statement, bool& brace) {
    const bool foreign = takeForeignEnd(Word::Else);
    if (!foreign && !isWord(Word::Else)) return;
    Branch branch;
    branch.line = here().line;
    if (!foreign) advance();
    if (!accept("=>") && !here().firstOnLine) takeInstead("");
    const bool opened = isSymbol("{") && takeBrace("nothing: a block begins behind 'else'");
    block(branch.body);
    if (opened) brace = closeBrace(opened);
    statement.branches.push_back(std::move(branch));
    statement.hasElse = true;
}

StatementPtr Parser::whileStatement(int line) {
    advance();
    auto result = make(StatementKind::While, line);
    result->value = condition();
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
    if (isSymbol("(")) return foreignFor(line);
    std::string text;
    if (name(text, "the name of a variable")) {
        result->target = makeName(text, line);
        forBounds(*result);
    }
    loopBody(*result);
    return result->target && result->value && result->limit ? std::move(result) : nullptr;
}

void Parser::forBounds(Statement& statement) {
    if (isWord(Word::In) || isSymbol(",")) {
        reportExpected(isWord(Word::In) ? "'from', or 'each' behind 'for'" : "'from'");
        return;
    }
    if (!expect(Word::From)) return;
    statement.value = expression();
    if (panic_) return;
    statement.down = isWord(Word::Downto);
    if (statement.down)
        advance();
    else if (!expect(Word::To))
        return;
    statement.limit = expression();
    const bool step = !panic_ && isName() && ascii::equal(here().text, "step") && takeInstead("by");
    if (!panic_ && (step || accept(Word::By))) statement.step = expression();
}

StatementPtr Parser::forEachStatement(int line) {
    advance();
    accept(Word::Each);
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
    const bool brace = openBlock(Word::Loop);
    ++loops_;
    const bool outer = std::exchange(doLoop_, false);
    block(statement.body);
    doLoop_ = outer;
    if (!closeBrace(brace)) closeBlock(Word::Loop, statement.line);
    --loops_;
}

StatementPtr Parser::leaveStatement(StatementKind kind, int line) {
    advance();
    auto result = make(kind, line);
    const bool same = !here().firstOnLine;
    if (same && isWord(Word::If) && !isOnLine(Word::Then)) {
        takeInstead("when");
        condition();
    } else if (same && (isWord(Word::For) || isWord(Word::Loop) || isWord(Word::While)) &&
               peek(1).firstOnLine) {
        report(Problem::Expected, {"'when' or the next statement", found()});
    } else if (accept(Word::When)) {
        result->value = condition();
    }
    return result;
}

StatementPtr Parser::returnStatement(int line) {
    advance();
    auto result = make(StatementKind::Return, line);
    if (headKnown_ && !result_ && returnsValue()) {
        tell(Problem::NoResultType, {functionItem_->name});
        expression();
        return result;
    }
    const bool guess = !headKnown_ && here().line == line && !atEnd();
    if (headKnown_ ? result_ : guess) result->value = expression();
    return result;
}

StatementPtr Parser::selectStatement(int line) {
    advance();
    auto result = make(StatementKind::Select, line);
    if (isWord(Word::Case) && !here().firstOnLine) takeInstead("the value");
    result->value = expression();
    if (panic_) synchronise();
    ++selects_;
    bool brace = isSymbol("{") && takeBrace("nothing: the end is 'end select'");
    if (!brace && !here().firstOnLine) takeInstead("case");
    if (!isWord(Word::Case)) withoutCase();
    while (isWord(Word::Case)) {
        Branch branch;
        branch.line = here().line;
        if (peek(1).word == Word::Else) break;
        advance();
        caseLabels(branch);
        if (panic_) synchronise();
        block(branch.body);
        result->branches.push_back(std::move(branch));
    }
    if (isWord(Word::Case)) takeInstead("else");
    elseBranch(*result, brace);
    if (!closeBrace(brace)) closeBlock(Word::Select, line);
    --selects_;
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
