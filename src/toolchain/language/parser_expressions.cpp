// SPDX-License-Identifier: Apache-2.0
//
// Expressions: by levels of operators, loosest first; items with what stands behind them; literals.
#include "os/text/ascii.h"
#include "toolchain/language/parser_internal.h"

#include <array>
#include <utility>

namespace tarn::toolchain {
namespace {

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
    {2, "in", Operator::In},
    {3, "+", Operator::Add},
    {3, "-", Operator::Subtract},
    {4, "*", Operator::Multiply},
    {4, "/", Operator::Divide},
    {4, "div", Operator::Div},
    {4, "mod", Operator::Mod},
});
constexpr int ComparisonLevel = 2;
constexpr int TightestLevel = 4;

}  // namespace

ExpressionPtr Parser::makeExpression(ExpressionKind kind, int line) {
    auto result = std::make_unique<Expression>();
    result->kind = kind;
    result->line = line;
    return result;
}

ExpressionPtr Parser::makeName(const std::string& text, int line) {
    auto result = makeExpression(ExpressionKind::Name, line);
    result->name = text;
    return result;
}

bool Parser::operatorAt(int level, Operator& op) const {
    if (here().kind != TokenKind::Symbol && here().kind != TokenKind::Word) return false;
    for (const LevelEntry& entry : Levels)
        if (entry.level == level && ascii::equal(entry.text, here().text)) {
            op = entry.op;
            return true;
        }
    return false;
}

// The lexer has told what breaks a value off on its line: nothing more is said of that value.
ExpressionPtr Parser::expression() {
    ExpressionPtr result = chain(0);
    if (here().kind == TokenKind::Bad && !here().firstOnLine) return literal(Kind::Unknown);
    return result;
}

// An assignment is no condition.
ExpressionPtr Parser::condition() {
    ExpressionPtr result = expression();
    if (panic_ || !isSymbol(":=")) return result;
    tell(Problem::Expected, {"'=' to compare", found()});
    advance();
    expression();
    return literal(Kind::Unknown);
}

ExpressionPtr Parser::chain(int level) {
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

ExpressionPtr Parser::negation() {
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

ExpressionPtr Parser::sign() {
    const int line = here().line;
    bool minus = false, any = false, last = false;
    while (isSymbol("-") || isSymbol("+")) {
        any = true;
        last = isSymbol("-");
        minus ^= last;
        advance();
    }
    // The sign right before a number belongs to it: the least integer has no positive twin.
    const bool signedNumber = last && isNumberToken(here());
    if (signedNumber && minus) return number(true);
    ExpressionPtr operand = signedNumber ? number(true) : primary();
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

ExpressionPtr Parser::literal(Kind kind) {
    ExpressionPtr result = makeExpression(ExpressionKind::Literal, here().line);
    result->value.kind = kind;
    return result;
}

ExpressionPtr Parser::number(bool minus) {
    const Token& token = here();
    const Kind kind = token.kind == TokenKind::Fixed  ? Kind::Fixed
                      : token.kind == TokenKind::Real ? Kind::Real
                                                      : Kind::Integer;
    ExpressionPtr result = literal(kind);
    result->value.number = minus ? -token.number : token.number;
    result->value.real = minus ? -token.real : token.real;
    if (kind == Kind::Integer && result->value.number > 0x7FFFFFFFLL) {
        reportAt(token.line, Problem::NumberTooLarge, {token.text, "an integer"});
        result->value.number = 0;
    }
    advance();
    return result;
}

ExpressionPtr Parser::primary() {
    if (isNumberToken(here())) return number(false);
    if (isName() || isWord(Word::Me)) return item();
    if (here().kind == TokenKind::String) {
        ExpressionPtr result = literal(Kind::String);
        result->value.text = stringValue(here().text);
        advance();
        return result;
    }
    if (isWord(Word::True) || isWord(Word::False)) {
        ExpressionPtr result = literal(Kind::Boolean);
        result->value.number = isWord(Word::True) ? 1 : 0;
        advance();
        return result;
    }
    if (isSymbol("(")) return parentheses();
    if (isSymbol("[")) return setLiteral();
    if (isSymbol("{")) return aggregate();
    if (const std::string_view here_ = valueInstead(); !here_.empty())
        report(Problem::Foreign, {here().text, here_});
    else
        reportExpected("a value");
    return literal(Kind::Unknown);
}

// What is written in place of a conversion by the name of a type, or of a choice inside of a value.
std::string_view Parser::valueInstead() const {
    if (isWord(Word::If)) return here().firstOnLine ? "" : "IIF(condition, a, b)";
    static constexpr std::pair<Word, std::string_view> Conversions[] = {{Word::Boolean, "CVTB(...)"},
                                                                        {Word::Integer, "CVTI(...)"},
                                                                        {Word::Fixed, "CVTF(...)"},
                                                                        {Word::Real, "CVTR(...)"},
                                                                        {Word::String, "STR(...)"}};
    for (const auto& [word, conversion] : Conversions)
        if (isWord(word)) return here().firstOnLine ? "" : conversion;
    return {};
}

ExpressionPtr Parser::parentheses() {
    if (!enter()) return literal(Kind::Unknown);
    advance();
    ExpressionPtr result = expression();
    if (!panic_) expect(")");
    leave();
    return result;
}

// `[1, 3:5, 7..9]`: a pair of operands for each member.
ExpressionPtr Parser::setLiteral() {
    ExpressionPtr result = makeExpression(ExpressionKind::Set, here().line);
    if (!enter()) return result;
    advance();
    if (!isSymbol("]")) {
        do {
            result->operands.push_back(expression());
            const bool isRange = !panic_ && (accept(":") || accept(".."));
            result->operands.push_back(isRange ? expression() : nullptr);
        } while (!panic_ && accept(","));
    }
    if (!panic_) expect("]");
    leave();
    return result;
}

ExpressionPtr Parser::aggregate() {
    ExpressionPtr result = makeExpression(ExpressionKind::Aggregate, here().line);
    list(*result, "}");
    return result;
}

// The opening character, values between commas, and the closing one.
void Parser::list(Expression& item, std::string_view close) {
    if (!enter()) return;
    advance();
    if (!isSymbol(close)) {
        do item.operands.push_back(expression());
        while (!panic_ && accept(","));
    }
    if (!panic_ && item.kind == ExpressionKind::Index && (isSymbol(":") || isSymbol("..")))
        report(Problem::Foreign, {here().text, "STRMID(text, place, count) for a part of a text"});
    if (!panic_) expect(close);
    leave();
}

// A name with fields, indexes and arguments behind it, in any order. A chain of them nests to the left.
ExpressionPtr Parser::item() {
    ExpressionPtr result = isWord(Word::Me) ? makeExpression(ExpressionKind::Me, here().line)
                                            : makeName(std::string(here().text), here().line);
    advance();
    for (int steps = 0; !panic_; ++steps) {
        if (steps == MaxNesting) {
            report(Problem::TooDeep);
            break;
        }
        if (isSymbol("(")) {
            result = call(std::move(result));
        } else if (isSymbol("[")) {
            auto next = makeExpression(ExpressionKind::Index, result->line);
            next->name = result->name;
            next->operands.push_back(std::move(result));
            result = std::move(next);
            if (peek(1).kind == TokenKind::Symbol && peek(1).text == "]")
                advance(), reportExpected("a value");
            if (!panic_) list(*result, "]");
        } else if (accept(".") || (isSymbol("->") && takeInstead("."))) {
            auto next = makeExpression(ExpressionKind::Field, result->line);
            next->operands.push_back(std::move(result));
            result = std::move(next);
            name(result->name, "a name");
        } else {
            break;
        }
    }
    return panic_ ? std::move(result) : foreignName(std::move(result));
}

// Arguments behind a function's name, or behind a class's name and a function's.
ExpressionPtr Parser::call(ExpressionPtr base) {
    const bool isField =
        base->kind == ExpressionKind::Field && base->operands[0]->kind == ExpressionKind::Name;
    if (base->kind != ExpressionKind::Name && !isField) {
        reportExpected("no arguments: only a function has them,");
        return base;
    }
    ExpressionPtr result = makeExpression(ExpressionKind::Call, base->line);
    result->name = base->name;
    if (isField) result->qualifier = base->operands[0]->name;
    list(*result, ")");
    return result;
}

}  // namespace tarn::toolchain
