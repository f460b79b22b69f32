// SPDX-License-Identifier: Apache-2.0
//
// One recursive descent over the tokens of a class, a member function a rule of the grammar
// (docs/language.md). The parts of Parser stand in this order:
//
//     tokens        looking at the next one, taking it, telling what was expected instead, finding the way on
//     the class     its head, what it uses, constants, types and variables
//     functions     heads, parameters, conditions, bodies
//     statements    a function for each; blocks end where a word ends them
//     expressions   by levels of operators, loosest first; calls and literals
//
#include "toolchain/language/parser.h"

#include "kernel/run/runtime.h"
#include "library/system/system.h"
#include "os/text/ascii.h"
#include "toolchain/language/lexer.h"

#include <array>
#include <utility>

namespace tarn::toolchain {
namespace {

bool beginsDeclaration(Word word) {
    return word == Word::Public || word == Word::Private || word == Word::Const || word == Word::Type ||
           word == Word::Function;
}

bool endsBlock(Word word) {
    return word == Word::End || word == Word::Else || word == Word::Elseif || word == Word::Case ||
           beginsDeclaration(word);
}

struct LevelEntry {
    int level;
    std::string_view text;
    Operator op;
};

// Levels from loose to tight; `not` stands between 1 and 2, the minus sign behind 4.
constexpr auto Levels = std::to_array<LevelEntry>({
    {0, "or", Operator::Or},
    {1, "and", Operator::And},
    {2, "=", Operator::Eq},
    {2, "<>", Operator::Ne},
    {2, "<", Operator::Lt},
    {2, "<=", Operator::Le},
    {2, ">", Operator::Gt},
    {2, ">=", Operator::Ge},
    {3, "+", Operator::Add},
    {3, "-", Operator::Subtract},
    {4, "*", Operator::Multiply},
    {4, "div", Operator::Div},
    {4, "mod", Operator::Mod},
});
constexpr int ComparisonLevel = 2;
constexpr int TightestLevel = 4;

class Parser {
public:
    Parser(std::string_view source, const std::string& path, Messages& messages)
        : path_(path), messages_(messages), tokens_(scan(source, path, messages)) {}

    void parse(ClassTree& tree) {
        tree_ = &tree;
        if (!header()) return;
        uses();
        while (!atEnd() && !(isWord(Word::End) && peek(1).word == Word::Class)) declaration();
        tree.endLine = here().line;
        const bool closed = expect(Word::End) && expect(Word::Class);
        if (closed && !atEnd()) report(Problem::TextBehindClass);
    }

private:
    // ---- tokens ----

    const Token& here() const { return tokens_[position_]; }
    const Token& peek(std::size_t ahead) const {
        const std::size_t last = tokens_.size() - 1;
        return tokens_[position_ + ahead < last ? position_ + ahead : last];
    }
    bool atEnd() const { return here().kind == TokenKind::End; }
    bool isWord(Word word) const { return here().word == word; }
    bool isSymbol(std::string_view text) const {
        return here().kind == TokenKind::Symbol && here().text == text;
    }
    void advance() {
        if (!atEnd()) ++position_;
    }
    bool accept(Word word) {
        if (!isWord(word)) return false;
        advance();
        return true;
    }
    bool accept(std::string_view symbol) {
        if (!isSymbol(symbol)) return false;
        advance();
        return true;
    }

    std::string found() const {
        if (atEnd()) return "the end of the file";
        const std::string text(here().text.substr(0, 40));
        return here().kind == TokenKind::String ? text : "'" + text + "'";
    }

    void report(Problem problem, std::initializer_list<std::string_view> values = {}) {
        if (!panic_) errorLine_ = here().line;
        reportAt(here().line, problem, values);
        panic_ = true;
    }
    void reportAt(int line, Problem problem, std::initializer_list<std::string_view> values = {}) {
        if (!panic_ && here().kind != TokenKind::Bad) messages_.add(path_, line, problem, values);
        tree_->complete = false;
    }
    // What is missing is missing at the end of the line before, if a new line has begun.
    void reportExpected(std::string_view what) {
        if (isWord(Word::Later) && !here().firstOnLine) return report(Problem::NotAccepted, {here().text});
        const int line = here().firstOnLine && position_ > 0 ? tokens_[position_ - 1].line : here().line;
        if (!panic_) errorLine_ = line;
        reportAt(line, Problem::Expected, {what, found()});
        panic_ = true;
    }
    bool expect(Word word) {
        if (accept(word)) return true;
        reportExpected("'" + std::string(spelling(word)) + "'");
        return false;
    }
    bool expect(std::string_view symbol) {
        if (accept(symbol)) return true;
        reportExpected("'" + std::string(symbol) + "'");
        return false;
    }

    // Goes on behind an error: at the first token of a later line that can begin a statement, a declaration
    // or the end of a block.
    void synchronise() {
        while (!atEnd()) {
            const Token& token = here();
            const bool begins =
                token.kind == TokenKind::Name || endsBlock(token.word) || isStatementWord(token.word);
            if (token.firstOnLine && token.line > errorLine_ && begins) break;
            if (token.firstOnLine && endsBlock(token.word) && position_ != lastSynchronised_) break;
            advance();
        }
        lastSynchronised_ = position_;
        panic_ = false;
    }
    static bool isStatementWord(Word word) {
        return word == Word::If || word == Word::While || word == Word::Loop || word == Word::For ||
               word == Word::Exit || word == Word::Iterate || word == Word::Select || word == Word::Return ||
               word == Word::Var;
    }

    bool name(std::string& text, std::string_view what) {
        if (here().kind != TokenKind::Name) {
            if (here().kind == TokenKind::Word && !here().text.empty() && !isWord(Word::Later))
                report(Problem::NameReserved, {here().text});
            else
                reportExpected(what);
            return false;
        }
        text = std::string(here().text);
        advance();
        return true;
    }
    // A name that is being declared.
    bool newName(std::string& text) {
        if (here().kind == TokenKind::Name && ISFUTURERESERVEDWORD(here().text)) {
            messages_.add(path_, here().line, Problem::NameReserved, {here().text});
            tree_->complete = false;
        }
        return name(text, "a name");
    }

    // ---- the class ----

    bool header() {
        const bool product = here().kind == TokenKind::Name && ascii::equal(here().text, ProductWord);
        if (!product || peek(1).word != Word::Class) {
            report(Problem::NoClass, {ProductWord});
            return false;
        }
        advance();
        advance();
        tree_->line = here().line;
        return name(tree_->name, "the name of the class");
    }

    void uses() {
        if (!accept(Word::Uses)) return;
        while (here().kind == TokenKind::Name) {
            tree_->uses.push_back({std::string(here().text), here().line, nullptr});
            advance();
        }
    }

    void declaration() {
        const std::size_t begin = position_;
        const bool isPublic = isWord(Word::Public);
        const bool hasScope = isPublic || isWord(Word::Private);
        if (hasScope) advance();
        if (isWord(Word::Const))
            constant(isPublic, begin);
        else if (isWord(Word::Type))
            type(isPublic, begin);
        else if (isWord(Word::Function))
            function(isPublic, begin);
        else if (isWord(Word::Var) && hasScope)
            classVariables(isPublic, begin);
        else if (isWord(Word::Var))
            report(Problem::BareClassVariable);
        else
            report(Problem::Expected, {"a declaration or 'end class'", found()});
        if (panic_) synchroniseDeclaration(begin);
    }

    void synchroniseDeclaration(std::size_t begin) {
        if (position_ == begin) advance();
        while (!atEnd() && !(here().firstOnLine && beginsDeclaration(here().word)) &&
               !(isWord(Word::End) && peek(1).word == Word::Class))
            advance();
        panic_ = false;
    }

    std::string textBetween(std::size_t begin, std::size_t end) const {
        std::string text;
        for (std::size_t i = begin; i < end && text.size() < 657; ++i) {
            const bool tight = i == begin || tokens_[i].text == "(" || tokens_[i].text == ")" ||
                               tokens_[i].text == "," || tokens_[i].text == "[" || tokens_[i].text == "]" ||
                               tokens_[i - 1].text == "(" || tokens_[i - 1].text == "[";
            if (!tight) text += ' ';
            text += tokens_[i].text;
        }
        return text.substr(0, 657);
    }

    std::unique_ptr<Declaration> declare(DeclarationKind kind, const std::string& text, int line,
                                         bool isPublic) {
        auto result = std::make_unique<Declaration>();
        result->kind = kind;
        result->name = text;
        result->line = line;
        result->isPublic = isPublic;
        result->owner = tree_;
        return result;
    }

    void addToClass(std::unique_ptr<Declaration> item) {
        const auto [place, isNew] = tree_->names.emplace(ascii::lowered(item->name), item.get());
        if (!isNew) {
            const std::string line = std::to_string(place->second->line);
            messages_.add(path_, item->line, Problem::DeclaredTwice, {item->name, line});
            tree_->complete = false;
        }
        tree_->declarations.push_back(std::move(item));
    }

    void constant(bool isPublic, std::size_t begin) {
        advance();
        const int line = here().line;
        std::string text;
        if (!newName(text)) return;
        auto item = declare(DeclarationKind::Constant, text, line, isPublic);
        if (accept(":")) item->type = typeReference();
        if (!panic_ && expect("=")) item->initial = expression();
        item->signature = textBetween(begin, position_);
        if (panic_) forget(*item);
        addToClass(std::move(item));
    }

    // The name is known and no more: uses of it give no further message.
    static void forget(Declaration& item) {
        item.type = {};
        item.type.type = Type::Unknown;
        item.initial.reset();
        item.evaluation = Declaration::Evaluation::Done;
    }

    void type(bool isPublic, std::size_t begin) {
        advance();
        const int line = here().line;
        std::string text;
        if (!newName(text)) return;
        auto item = declare(DeclarationKind::Type, text, line, isPublic);
        if (expect(":")) item->type = typeReference();
        item->signature = textBetween(begin, position_);
        if (panic_) forget(*item);
        addToClass(std::move(item));
    }

    // One `name, name : type [:= value]`.
    bool variableLine(DeclarationKind kind, bool isPublic, std::size_t begin,
                      std::vector<std::unique_ptr<Declaration>>& items) {
        std::vector<std::pair<std::string, int>> names;
        do {
            const int line = here().line;
            std::string text;
            if (!newName(text)) return false;
            names.emplace_back(text, line);
        } while (accept(","));
        const TypeRef reference = expect(":") ? typeReference() : TypeRef{};
        const std::size_t end = position_;
        for (const auto& [text, line] : names) {
            items.push_back(declare(kind, text, line, isPublic));
            items.back()->type = reference;
            items.back()->signature = textBetween(begin, end);
            if (panic_) forget(*items.back());
        }
        if (panic_ || !accept(":=")) return !panic_;
        if (names.size() > 1) {
            --position_;
            reportExpected("the end of the declaration");
            return false;
        }
        items.back()->initial = expression();
        return !panic_;
    }

    bool atVariableLine() const {
        return here().kind == TokenKind::Name && peek(1).kind == TokenKind::Symbol &&
               (peek(1).text == ":" || peek(1).text == ",");
    }

    void classVariables(bool isPublic, std::size_t begin) {
        advance();
        std::vector<std::unique_ptr<Declaration>> items;
        while (variableLine(DeclarationKind::ClassVariable, isPublic, begin, items) && atVariableLine())
            begin = position_;
        for (auto& item : items) addToClass(std::move(item));
    }

    TypeRef typeReference() {
        TypeRef reference;
        reference.line = here().line;
        if (accept(Word::Boolean)) {
            reference.type = Type::Boolean;
        } else if (accept(Word::Integer)) {
            reference.type = Type::Integer;
        } else if (accept(Word::String)) {
            reference.type = Type::String;
            if (accept("[")) stringLength(reference);
        } else if (here().kind == TokenKind::Name) {
            reference.name = std::string(here().text);
            advance();
        } else {
            reportExpected("a type");
        }
        return reference;
    }

    void stringLength(TypeRef& reference) {
        const std::int64_t length = here().number;
        if (here().kind != TokenKind::Integer || length < 1 || length > MaxStringLength) {
            report(Problem::StringLength);
            return;
        }
        reference.maxLength = static_cast<std::int32_t>(length);
        advance();
        expect("]");
    }

    // ---- functions ----

    void function(bool isPublic, std::size_t begin) {
        advance();
        const int line = here().line;
        auto item = declare(DeclarationKind::Function, std::string(here().text), line, isPublic);
        item->function = std::make_unique<Function>();
        Function& head = *item->function;
        head.isOnerror = accept(Word::Onerror);
        if (!head.isOnerror && !newName(item->name)) return;
        functionHead(*item);
        item->signature = textBetween(begin, position_);
        const std::size_t before = messages_.count();
        if (panic_) {
            // The body is read all the same, so that its own errors come in the same run.
            head.headHasErrors = true;
            synchronise();
        }
        if (!atForwardEnd()) body(*item);
        head.hasErrors = head.headHasErrors || messages_.count() != before;
        addFunction(std::move(item));
    }

    void functionHead(Declaration& item) {
        Function& head = *item.function;
        parameters(item);
        if (!panic_ && accept(Word::Return)) head.result = typeReference();
        if (!panic_ && head.isOnerror && accept(Word::From)) errorRange(head);
    }

    bool atForwardEnd() const {
        return atEnd() || beginsDeclaration(here().word) ||
               (isWord(Word::End) && peek(1).word == Word::Class);
    }

    void errorRange(Function& head) {
        head.hasRange = true;
        for (std::int32_t* code : {&head.firstCode, &head.lastCode}) {
            if (here().kind != TokenKind::Integer) return reportExpected("an error number");
            *code = static_cast<std::int32_t>(here().number);
            advance();
            if (code == &head.firstCode && !expect(Word::To)) return;
        }
    }

    void parameters(Declaration& item) {
        if (!expect("(")) return;
        if (accept(")")) return;
        do {
            Mode mode = Mode::In;
            if (accept(Word::Out))
                mode = Mode::Out;
            else if (accept(Word::Inout))
                mode = Mode::Inout;
            else
                accept(Word::In);
            const int line = here().line;
            std::string text;
            if (!newName(text) || !expect(":")) return;
            auto parameter = declare(DeclarationKind::Parameter, text, line, false);
            parameter->mode = mode;
            parameter->type = typeReference();
            if (panic_) return;
            item.function->parameters.push_back(std::move(parameter));
        } while (accept(","));
        expect(")");
    }

    void body(Declaration& item) {
        Function& head = *item.function;
        head.bodyLine = item.line;
        result_ = head.result.type != Type::None || !head.result.name.empty();
        headKnown_ = !head.headHasErrors;
        for (;;) {
            const int line = here().line;
            if (accept(Word::Precond))
                head.preconditions.push_back({line, expression()});
            else if (accept(Word::Postcond))
                head.postconditions.push_back({line, expression()});
            else
                break;
            if (panic_) synchronise();
        }
        while (accept(Word::Var)) variables(head);
        block(head.body);
        head.endLine = here().line;
        closeBlock(Word::Function, item.line);
    }

    void variables(Function& head) {
        std::vector<std::unique_ptr<Declaration>> items;
        do {
            const std::size_t begin = position_;
            if (variableLine(DeclarationKind::Variable, false, begin, items)) continue;
            synchronise();
        } while (atVariableLine());
        for (auto& item : items) {
            if (item->initial) head.body.push_back(initialisation(*item));
            head.variables.push_back(std::move(item));
        }
    }

    StatementPtr initialisation(Declaration& item) {
        auto statement = make(StatementKind::Assign, item.line);
        statement->target = makeName(item.name, item.line);
        statement->value = std::move(item.initial);
        return statement;
    }

    // A function may be declared ahead of its body, once; the checker compares the two heads.
    void addFunction(std::unique_ptr<Declaration> item) {
        Declaration* earlier = findDeclaration(*tree_, ascii::lowered(item->name));
        const bool completes = earlier != nullptr && earlier->kind == DeclarationKind::Function &&
                               earlier->function->bodyLine == 0 && item->function->bodyLine != 0 &&
                               !item->function->headHasErrors;
        if (!completes) return addToClass(std::move(item));
        if (!ascii::equal(headOf(*earlier), headOf(*item))) {
            const std::string line = std::to_string(earlier->line);
            messages_.add(path_, item->line, Problem::ForwardDiffers, {item->name, line});
            tree_->complete = false;
        }
        earlier->function = std::move(item->function);
        for (auto& parameter : earlier->function->parameters) parameter->owner = tree_;
    }
    static std::string headOf(const Declaration& item) {
        const std::string folded = ascii::lowered(item.signature);
        const std::size_t begin = folded.find("function ");
        return folded.substr(begin == std::string::npos ? 0 : begin);
    }

    // ---- statements ----

    StatementPtr make(StatementKind kind, int line) {
        auto result = std::make_unique<Statement>();
        result->kind = kind;
        result->line = line;
        return result;
    }
    ExpressionPtr makeExpression(ExpressionKind kind, int line) {
        auto result = std::make_unique<Expression>();
        result->kind = kind;
        result->line = line;
        return result;
    }
    ExpressionPtr makeName(const std::string& text, int line) {
        auto result = makeExpression(ExpressionKind::Name, line);
        result->name = text;
        return result;
    }

    void block(Block& statements) {
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
    void closeBlock(Word word, int line) {
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
        const std::string other =
            isWord(Word::End) ? "'end " + std::string(peek(1).text.substr(0, 40)) + "'" : found();
        reportAt(here().line, Problem::NotClosed, {what, std::to_string(line), "end " + what, other});
        if (isWord(Word::End) && !outer) {
            advance();
            advance();
        } else if (outer && word == Word::Function) {
            panic_ = false;
        }
    }

    StatementPtr statement() {
        const int line = here().line;
        switch (here().word) {
        case Word::If: return ifStatement(line);
        case Word::While: return whileStatement(line);
        case Word::Loop: return loopStatement(line);
        case Word::For: return forStatement(line);
        case Word::Select: return selectStatement(line);
        case Word::Exit: return leaveStatement(StatementKind::Exit, line);
        case Word::Iterate: return leaveStatement(StatementKind::Iterate, line);
        case Word::Return: return returnStatement(line);
        default: break;
        }
        if (here().kind == TokenKind::Name) return assignmentOrCall(line);
        if (isWord(Word::Later))
            report(Problem::NotAccepted, {here().text});
        else
            report(Problem::StatementExpected, {found()});
        return nullptr;
    }

    StatementPtr assignmentOrCall(int line) {
        ExpressionPtr target = nameOrCall();
        if (panic_) return nullptr;
        if (target->kind == ExpressionKind::Call) {
            auto result = make(StatementKind::Call, line);
            result->value = std::move(target);
            return result;
        }
        auto result = make(StatementKind::Assign, line);
        result->target = std::move(target);
        if (!expect(":=")) return nullptr;
        result->value = expression();
        return result;
    }

    StatementPtr ifStatement(int line) {
        auto result = make(StatementKind::If, line);
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
        return result;
    }

    void elseBranch(Statement& statement) {
        if (!isWord(Word::Else)) return;
        Branch branch;
        branch.line = here().line;
        advance();
        accept("=>");
        block(branch.body);
        statement.branches.push_back(std::move(branch));
        statement.hasElse = true;
    }

    StatementPtr whileStatement(int line) {
        advance();
        auto result = make(StatementKind::While, line);
        result->value = expression();
        loopBody(*result);
        return result;
    }

    StatementPtr loopStatement(int line) {
        auto result = make(StatementKind::Loop, line);
        loopBody(*result);
        return result;
    }

    StatementPtr forStatement(int line) {
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

    void forBounds(Statement& statement) {
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

    void loopBody(Statement& statement) {
        if (!panic_) expect(Word::Loop);
        if (panic_) synchronise();
        block(statement.body);
        closeBlock(Word::Loop, statement.line);
    }

    StatementPtr leaveStatement(StatementKind kind, int line) {
        advance();
        auto result = make(kind, line);
        if (accept(Word::When)) result->value = expression();
        return result;
    }

    StatementPtr returnStatement(int line) {
        advance();
        auto result = make(StatementKind::Return, line);
        const bool guess = !headKnown_ && here().line == line && !atEnd();
        if (headKnown_ ? result_ : guess) result->value = expression();
        return result;
    }

    StatementPtr selectStatement(int line) {
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
    void withoutCase() {
        reportExpected("'case'");
        panic_ = false;
        Block lost;
        block(lost);
    }

    void caseLabels(Branch& branch) {
        do {
            CaseLabel label;
            label.line = here().line;
            label.from = expression();
            if (!panic_ && accept(Word::To)) label.to = expression();
            branch.labels.push_back(std::move(label));
        } while (!panic_ && accept(","));
        if (!panic_) expect("=>");
    }

    // ---- expressions ----

    // Never null, also after an error.
    ExpressionPtr expression() { return chain(0); }

    bool operatorAt(int level, Operator& op) const {
        if (here().kind != TokenKind::Symbol && here().kind != TokenKind::Word) return false;
        for (const LevelEntry& entry : Levels)
            if (entry.level == level && ascii::equal(entry.text, here().text)) {
                op = entry.op;
                return true;
            }
        return false;
    }

    ExpressionPtr chain(int level) {
        if (level > TightestLevel) return sign();
        if (level == ComparisonLevel && isWord(Word::Not)) return negation();
        ExpressionPtr first = chain(level + 1);
        Operator op{};
        if (panic_ || !operatorAt(level, op)) return first;
        ExpressionPtr result = makeExpression(ExpressionKind::Chain, first->line);
        result->operands.push_back(std::move(first));
        while (!panic_ && operatorAt(level, op)) {
            if (level == ComparisonLevel && !result->operators.empty()) {
                reportExpected("the end of the comparison");
                break;
            }
            advance();
            result->operators.push_back(op);
            result->operands.push_back(chain(level + 1));
        }
        return result;
    }

    ExpressionPtr negation() {
        bool odd = false;
        const int line = here().line;
        while (accept(Word::Not)) odd = !odd;
        ExpressionPtr operand = chain(ComparisonLevel);
        ExpressionPtr result = makeExpression(ExpressionKind::Not, line);
        if (!odd) {  // twice: the value itself, still checked to be a boolean
            auto inner = makeExpression(ExpressionKind::Not, line);
            inner->operands.push_back(std::move(operand));
            operand = std::move(inner);
        }
        result->operands.push_back(std::move(operand));
        return result;
    }

    ExpressionPtr sign() {
        const int line = here().line;
        bool minus = false, any = false, last = false;
        while (isSymbol("-") || isSymbol("+")) {
            any = true;
            last = isSymbol("-");
            minus ^= last;
            advance();
        }
        // The sign right before a number belongs to it: the least integer has no positive twin.
        const bool signedNumber = last && here().kind == TokenKind::Integer;
        if (signedNumber && minus) return integer(true);
        ExpressionPtr operand = signedNumber ? integer(true) : primary();
        if (!any) return operand;
        minus ^= signedNumber;
        ExpressionPtr result = makeExpression(ExpressionKind::Negate, line);
        if (!minus) {
            auto inner = makeExpression(ExpressionKind::Negate, line);
            inner->operands.push_back(std::move(operand));
            operand = std::move(inner);
        }
        result->operands.push_back(std::move(operand));
        return result;
    }

    ExpressionPtr literal(Type type) {
        ExpressionPtr result = makeExpression(ExpressionKind::Literal, here().line);
        result->value.type = type;
        return result;
    }

    ExpressionPtr integer(bool minus) {
        ExpressionPtr result = literal(Type::Integer);
        const std::int64_t number = minus ? -here().number : here().number;
        if (number > 0x7FFFFFFFLL) {
            reportAt(here().line, Problem::NumberTooLarge, {here().text});
        } else {
            result->value.number = static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
        }
        advance();
        return result;
    }

    ExpressionPtr primary() {
        if (here().kind == TokenKind::Integer) return integer(false);
        if (here().kind == TokenKind::Name) return nameOrCall();
        if (here().kind == TokenKind::String) {
            ExpressionPtr result = literal(Type::String);
            result->value.text = stringValue(here().text);
            advance();
            return result;
        }
        if (isWord(Word::True) || isWord(Word::False)) {
            ExpressionPtr result = literal(Type::Boolean);
            result->value.number = isWord(Word::True) ? 1 : 0;
            advance();
            return result;
        }
        if (isSymbol("(")) return parentheses();
        reportExpected("a value");
        return literal(Type::Unknown);
    }

    ExpressionPtr parentheses() {
        if (++depth_ > MaxNesting) {
            report(Problem::TooDeep);
            --depth_;
            return literal(Type::Unknown);
        }
        advance();
        ExpressionPtr result = expression();
        if (!panic_) expect(")");
        --depth_;
        return result;
    }

    ExpressionPtr nameOrCall() {
        ExpressionPtr result = makeName(std::string(here().text), here().line);
        advance();
        if (accept(".")) {
            result->qualifier = std::move(result->name);
            result->name.clear();
            if (!name(result->name, "a name")) return result;
        }
        if (isSymbol("("))
            arguments(*result, ")", ExpressionKind::Call);
        else if (isSymbol("["))
            arguments(*result, "]", ExpressionKind::Element);
        return result;
    }

    void arguments(Expression& item, std::string_view close, ExpressionKind kind) {
        item.kind = kind;
        if (++depth_ > MaxNesting) {
            report(Problem::TooDeep);
            --depth_;
            return;
        }
        advance();
        if (kind == ExpressionKind::Element || !isSymbol(close)) {
            do item.operands.push_back(expression());
            while (!panic_ && kind == ExpressionKind::Call && accept(","));
        }
        if (!panic_) expect(close);
        --depth_;
    }

    const std::string path_;
    Messages& messages_;
    std::vector<Token> tokens_;
    std::size_t position_ = 0, lastSynchronised_ = 0, lastUnclosed_ = 0;
    ClassTree* tree_ = nullptr;
    int depth_ = 0;
    int errorLine_ = 0;  // of the last message
    bool panic_ = false;
    bool result_ = false;    // the function being read has one
    bool headKnown_ = true;  // its head could be read
};

}  // namespace

std::unique_ptr<ClassTree> parseClass(std::string_view source, const std::string& path, Messages& messages) {
    auto tree = std::make_unique<ClassTree>();
    tree->path = path;
    const std::size_t before = messages.count();
    Parser(source, path, messages).parse(*tree);
    if (messages.count() != before) tree->complete = false;
    return tree;
}

}  // namespace tarn::toolchain
