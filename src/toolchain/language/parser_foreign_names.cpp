// SPDX-License-Identifier: Apache-2.0
//
// Declarations, heads, types and names as newcomers write them, and declarations that stand in the wrong place: they are
// told and read, so that what they declare is known.
#include "toolchain/language/parser_foreign_internal.h"

#include <algorithm>
#include <array>

namespace tarn::toolchain {
namespace {

// Words in the place of `function`.
constexpr auto FunctionWords =
    std::to_array<std::string_view>({"def", "func", "fn", "fun", "sub", "proc", "procedure", "method", "void",
                                     "int", "bool", "float", "double"});

struct ForeignTexts {
    std::string_view word, here;
};
constexpr auto ForeignDeclarations = std::to_array<ForeignTexts>({
    {"import", "'Uses' and names of classes behind the name of the class"},
    {"include", "'Uses' and names of classes behind the name of the class"},
    {"using", "'Uses' and names of classes behind the name of the class"},
    {"from", "'Uses' and names of classes behind the name of the class"},
    {"require", "'Uses' and names of classes behind the name of the class"},
    {"struct", "'type', a name, ':' and 'record'"},
    {"typedef", "'type', a name, ':' and a type"},
    {"let", "'private var', a name, ':' and a type"},
    {"dim", "'private var', a name, ':' and a type"},
    {"static", "'private'"},
});

constexpr auto ForeignNames = std::to_array<ForeignTexts>({
    {"null", "a value of the type, such as \"\", 0 or false"},
    {"nil", "a value of the type, such as \"\", 0 or false"},
    {"none", "a value of the type, such as \"\", 0 or false"},
    {"this", "'me'"},
    {"self", "'me'"},
    {"len", "LENGTH(...)"},
    {"strlen", "LENGTH(...)"},
    {"println", "PRINT(...)"},
    {"printf", "PRINT(...)"},
    {"writeln", "PRINT(...)"},
    {"write", "PRINT(...)"},
    {"substr", "STRMID(text, place, count)"},
    {"substring", "STRMID(text, place, count)"},
    {"tostring", "STR(...)"},
    {"toupper", "STRUPPER(...)"},
    {"tolower", "STRLOWER(...)"},
    {"trim", "STRTRIM(...)"},
    {"atoi", "CVTI(...)"},
    {"parseint", "CVTI(...)"},
});

struct ForeignTypeEntry {
    std::string_view name, here;
    Kind kind;
};
constexpr auto ForeignTypes = std::to_array<ForeignTypeEntry>({
    {"int", "'integer'", Kind::Integer},
    {"long", "'integer'", Kind::Integer},
    {"float", "'real'", Kind::Real},
    {"double", "'real'", Kind::Real},
    {"bool", "'boolean'", Kind::Boolean},
    {"char", "'string'", Kind::String},
    {"str", "'string'", Kind::String},
    {"text", "'string'", Kind::String},
});

// Begins a value and no statement, whatever stands behind it.
bool beginsValue(const Token& token) {
    return isNumberToken(token) || token.kind == TokenKind::String || isSymbolToken(token, "(") ||
           isSymbolToken(token, "-") || isSymbolToken(token, "[") || token.word == Word::True ||
           token.word == Word::False || token.word == Word::Not;
}

}  // namespace

bool isFunctionWord(std::string_view text) {
    return std::any_of(FunctionWords.begin(), FunctionWords.end(),
                       [&](std::string_view word) { return ascii::equal(word, text); });
}

// ---- declarations of the class ----

bool Parser::foreignDeclaration() {
    const bool product = isName() && peek(1).word == Word::Class;
    if (isWord(Word::Class) || product) {
        if (product) advance();
        tell(Problem::Misplaced, {here().text, "a file holds one class"});
        advance();
        if (isName()) advance();
        ++nested_;
        return true;
    }
    const ForeignTexts* entry = entryOf(ForeignDeclarations, &ForeignTexts::word, here().text);
    if (isWord(Word::Uses))
        report(Problem::Misplaced, {here().text, "it follows the name of the class"});
    else if (entry != nullptr)
        report(Problem::Foreign, {here().text, entry->here});
    else if ((isWord(Word::Enum) || isWord(Word::Record)) && peek(1).kind == TokenKind::Name)
        report(Problem::Expected, {"'type', a name and ':'", found()});
    else if (atVariableList() || (isTypeWord(here().word) && peek(1).kind == TokenKind::Name))
        report(Problem::BareClassVariable);
    else
        return false;
    return true;
}

// ---- declarations among statements ----

bool Parser::atVariableList() const {
    std::size_t ahead = 0;
    while (ahead < Reach && peek(ahead).kind == TokenKind::Name && isSymbolToken(peek(ahead + 1), ","))
        ahead += 2;
    return peek(ahead).kind == TokenKind::Name && isSymbolToken(peek(ahead + 1), ":") &&
           !peek(ahead + 2).firstOnLine;
}

// Declarations among the statements: told and read, so that their names are known.
bool Parser::misplaced() {
    if (foreignEnd() != nullptr) return false;
    if (isWord(Word::Var)) {
        tell(Problem::Misplaced,
             {here().text, "the variables of a function stand between its head and its first statement"});
        advance();
        variables(*functionItem_->function);
        return true;
    }
    if ((isWord(Word::Const) || isWord(Word::Type)) && functionEndAhead()) {
        tell(Problem::Misplaced,
             {here().text, "constants and types are declared in the class, outside of functions"});
        isWord(Word::Const) ? constant(false, position_) : type(false, position_);
        if (panic_) synchronise();
        return true;
    }
    if (isTypeWord(here().word) && typeInFront("var ")) {
        synchronise();
        return true;
    }
    if (!atVariableList()) return false;
    tell(Problem::Expected, {"'var'", found()});
    variables(*functionItem_->function);
    return true;
}

// ---- heads and results ----

bool Parser::atForeignFunction() const {
    if (!isName() || !isFunctionWord(here().text) || peek(1).kind != TokenKind::Name || peek(1).firstOnLine)
        return false;
    return isSymbolToken(peek(2), "(") || here().text.size() > 5 || ascii::equal(here().text, "sub");
}

// `integer x`.
bool Parser::typeInFront(std::string_view lead) {
    const bool type = isName() || isTypeWord(here().word);
    if (!type || peek(1).kind != TokenKind::Name || peek(1).firstOnLine) return false;
    const ForeignTypeEntry* entry = entryOf(ForeignTypes, &ForeignTypeEntry::name, here().text);
    const std::string name(peek(1).text), written(here().text);
    if (ascii::equal(name, "as") || ascii::equal(name, "is")) return false;
    const std::string type_ = entry == nullptr ? written + "'" : std::string(entry->here.substr(1));
    const std::string right = "'" + std::string(lead) + name + " : " + type_;
    report(Problem::Foreign, {written + " " + name, right});
    return true;
}

// A type behind the parentheses without `return`.
bool Parser::resultInstead(Function& head) {
    const bool word = isName() && (ascii::equal(here().text, "as") || ascii::equal(here().text, "is"));
    if (here().firstOnLine || (isSymbol(":") && peek(1).firstOnLine)) return isSymbol(":") && takeInstead("");
    if (!isSymbol(":") && !isSymbol("->") && !isSymbol("=>") && !word) return false;
    takeInstead("return");
    head.resultNode = typeReference();
    return true;
}

// A `return` with a value behind a head without a type: line ends mean nothing, but no type looks so.
bool Parser::valueWithoutType() const {
    if (!isWord(Word::Return) || !here().firstOnLine) return false;
    if (beginsValue(peek(1))) return true;
    static constexpr std::string_view operators = "+-*/=<>(";
    const Token& behind = peek(2);
    return peek(1).kind == TokenKind::Name &&
           (behind.word == Word::End ||
            (behind.kind == TokenKind::Symbol && operators.find(behind.text[0]) != std::string_view::npos));
}

bool Parser::returnsValue() const {
    if (here().firstOnLine || atEnd()) return false;
    return beginsValue(here()) || (isName() && !goesOn(peek(1)));
}

// ---- names ----

// Whether the class declares a name anywhere, before or behind this place.
bool Parser::isDeclared(std::string_view text) {
    const auto [place, isNew] = declared_.emplace(ascii::lowered(text), false);
    if (isNew) place->second = isDeclaredSomewhere(text);
    return place->second;
}

bool Parser::isDeclaredSomewhere(std::string_view text) const {
    for (std::size_t i = 1; i + 1 < tokens_.size(); ++i) {
        if (tokens_[i].kind != TokenKind::Name || !ascii::equal(tokens_[i].text, text)) continue;
        const Word before = tokens_[i - 1].word;
        if (before == Word::Const || before == Word::Type || before == Word::Function) return true;
        std::size_t end = i, begin = i;
        while (end + 2 < tokens_.size() && end < i + Reach && isSymbolToken(tokens_[end + 1], ",")) end += 2;
        while (begin > 2 && begin + Reach > i && isSymbolToken(tokens_[begin - 1], ",")) begin -= 2;
        if (isSymbolToken(tokens_[end + 1], ":")) return true;
        if (begin > 1 && isSymbolToken(tokens_[begin - 1], "(") && tokens_[begin - 2].word == Word::Enum)
            return true;
    }
    return false;
}

// A used class may declare any name, so nothing is told then.
ExpressionPtr Parser::foreignName(ExpressionPtr item) {
    const Expression* root = item.get();
    while ((root->kind == ExpressionKind::Field || root->kind == ExpressionKind::Index) &&
           !root->operands.empty())
        root = root->operands[0].get();
    const bool plain =
        (root->kind == ExpressionKind::Name || root->kind == ExpressionKind::Call) && root->qualifier.empty();
    const ForeignTexts* entry = plain ? entryOf(ForeignNames, &ForeignTexts::word, root->name) : nullptr;
    if (entry == nullptr || !tree_->uses.empty() || isDeclared(root->name)) return item;
    reportAt(item->line, Problem::Foreign, {root->name, entry->here});
    toldLine_ = item->line;
    return literal(Kind::Unknown);
}

bool Parser::foreignType(TypeNode& node) {
    const ForeignTypeEntry* entry = entryOf(ForeignTypes, &ForeignTypeEntry::name, here().text);
    if (entry == nullptr || isSymbolToken(peek(1), ".") || !tree_->uses.empty() || isDeclared(here().text))
        return false;
    tell(Problem::Foreign, {here().text, entry->here});
    node.kind = entry->kind;
    advance();
    return true;
}

}  // namespace tarn::toolchain
