// SPDX-License-Identifier: Apache-2.0
//
// Words, symbols and statements of other languages: what is written here instead, and how the parser goes on.
#include "toolchain/language/parser_foreign_internal.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarn::toolchain {
namespace {

// What stands in place of a word or symbol of this language. "" is nothing at all.
constexpr std::string_view TheValue = "the value";  // that `select` goes by
struct Instead {
    std::string_view expected, foreign;
};
constexpr auto Insteads = std::to_array<Instead>({
    {"then", ":"},    {"then", "do"},   {"then", "loop"},   {"loop", ":"},    {"loop", "do"},
    {"loop", "then"}, {"from", ":="},   {"from", "="},      {"to", ".."},     {"to", ":"},
    {"by", "step"},   {"when", "if"},   {"=", ":="},        {":=", "="},      {":", "as"},
    {":", "is"},      {":", "="},       {":", ".."},        {"=>", ":"},      {"=>", "then"},
    {"=>", "->"},     {"=>", "do"},     {"", ":"},          {"", "then"},     {".", "->"},
    {",", ";"},       {"(", "{"},       {"inout", "var"},   {"in", "const"},  {"return", ":"},
    {"return", "->"}, {"return", "as"}, {"return", "=>"},   {"return", "is"}, {"case", "of"},
    {"case", ":"},    {"case", "do"},   {TheValue, "case"}, {"else", "case"},
});

// How the parser goes on behind a word that begins statements of other languages.
enum class Reading : unsigned char { Line, Nothing, Try, Loop, Select, If, While, ForEach };

struct ForeignWord {
    std::string_view word, here;
    Reading reading = Reading::Line;
};
constexpr auto ForeignWords = std::to_array<ForeignWord>({
    {"break", "'exit'", Reading::Nothing},
    {"continue", "'iterate'", Reading::Nothing},
    {"pass", "nothing: a block may be empty", Reading::Nothing},
    {"begin", "nothing: a block begins behind 'then' or 'loop'", Reading::Nothing},
    {"do", "'loop', 'exit when' and 'end loop'", Reading::Loop},
    {"repeat", "'loop', 'exit when' and 'end loop'", Reading::Loop},
    {"try", "a function 'onerror', which gets the errors of its class", Reading::Try},
    {"catch", "a function 'onerror', which gets the errors of its class", Reading::Try},
    {"except", "a function 'onerror', which gets the errors of its class", Reading::Try},
    {"finally", "a function 'onerror', which gets the errors of its class", Reading::Try},
    {"xor", "'<>' between two booleans"},
    {"shl", "'*' and a power of two"},
    {"shr", "'div' and a power of two"},
    {"switch", "'select'", Reading::Select},
    {"match", "'select'", Reading::Select},
    {"unless", "'if not'", Reading::If},
    {"until", "'while not'", Reading::While},
    {"foreach", "'for each'", Reading::ForEach},
    {"dim", "'var', between the head of the function and its statements"},
    {"let", "the variable and ':='"},
    {"auto", "'var', a name, ':' and a type"},
    {"local", "'var', a name, ':' and a type"},
    {"int", "'var', a name, ':' and 'integer'"},
    {"float", "'var', a name, ':' and 'real'"},
    {"double", "'var', a name, ':' and 'real'"},
    {"bool", "'var', a name, ':' and 'boolean'"},
    {"char", "'var', a name, ':' and 'string'"},
    {"def", "'function'"},
    {"func", "'function'"},
    {"void", "'function'"},
    {"print", "PRINT(...)"},
    {"echo", "PRINT(...)"},
    {"puts", "PRINT(...)"},
    {"assert", "ASSERT(...)"},
    {"rem", "'//' in front of a comment"},
    {"goto", "'loop', 'exit' and 'iterate'"},
    {"throw", "ASSERT(...), or a result that tells of the failure"},
    {"raise", "ASSERT(...), or a result that tells of the failure"},
    {"import", "'Uses' and names of classes behind the name of the class"},
});

}  // namespace

// ---- one token in place of another ----

bool Parser::takeInstead(std::string_view expected) {
    if (here().kind == TokenKind::Bad || atEnd()) return false;
    for (const Instead& entry : Insteads) {
        if (entry.expected != expected || !ascii::equal(entry.foreign, here().text)) continue;
        if (expected.empty())
            tell(Problem::StatementExpected, {found()});
        else
            tell(Problem::Expected,
                 {expected == TheValue ? std::string(expected) : "'" + std::string(expected) + "'", found()});
        advance();
        return true;
    }
    return false;
}

// Whether `word` stands behind on this line.
bool Parser::isOnLine(Word word) const {
    for (std::size_t ahead = 1;
         ahead < Reach && peek(ahead).kind != TokenKind::End && !peek(ahead).firstOnLine; ++ahead)
        if (peek(ahead).word == word) return true;
    return false;
}

// The place behind the parenthesis that closes the one at `ahead`, on the same line; 0 if there is none.
std::size_t Parser::behindParentheses(std::size_t ahead) const {
    int open = 0;
    for (std::size_t i = ahead;
         i < Reach && peek(i).kind != TokenKind::End && (i == ahead || !peek(i).firstOnLine); ++i) {
        if (isSymbolToken(peek(i), "(")) ++open;
        if (isSymbolToken(peek(i), ")") && --open == 0) return i + 1;
    }
    return 0;
}

// ---- statements ----

StatementPtr Parser::foreignStatement(bool& taken) {
    const int line = here().line;
    taken = true;
    if (isSymbol("{")) return foreignBlock();
    const bool twice = (isSymbol("+") || isSymbol("-")) && isSymbolToken(peek(1), here().text) &&
                       peek(2).kind == TokenKind::Name;
    if (twice) {
        const std::string sign(here().text), text(peek(2).text);
        report(Problem::Foreign, {sign + sign + text, "'" + text + " := " + text + " " + sign + " 1'"});
        return nullptr;
    }
    const ForeignWord* entry = isName() ? entryOf(ForeignWords, &ForeignWord::word, here().text) : nullptr;
    const std::size_t behind = isSymbol("(") ? 0 : isSymbolToken(peek(1), "(") ? behindParentheses(1) : 0;
    const bool headed = behind != 0 && (isSymbolToken(peek(behind), "{") || !peek(behind).firstOnLine);
    taken = entry != nullptr &&
            (headed || !goesOn(peek(1)) || (peek(1).firstOnLine && !isSymbolToken(peek(1), ":=")));
    if (!taken) return nullptr;
    if (entry->reading == Reading::Line) {
        report(Problem::Foreign, {here().text, entry->here});
        return nullptr;
    }
    if (entry->reading == Reading::Try) return foreignTry(entry->here);
    const bool lastOfCase = ascii::equal(here().text, "break") && selects_ > 0 && loops_ == 0;
    tell(Problem::Foreign,
         {here().text, lastOfCase ? "nothing: a case ends where the next one begins" : entry->here});
    switch (entry->reading) {
    case Reading::Loop: return foreignLoop(line);
    case Reading::Select: return selectStatement(line);
    case Reading::If: return ifStatement(line);
    case Reading::While: return whileStatement(line);
    case Reading::ForEach: return forEachStatement(line);
    default: return foreignWord();
    }
}

// `x++`, `x += 2` behind the item `x`.
bool Parser::foreignChange(const Expression& target) {
    const bool signs = isSymbol("+") || isSymbol("-") || isSymbol("*") || isSymbol("/");
    const bool twice = peek(1).text == here().text && (isSymbol("+") || isSymbol("-"));
    if (!signs || here().firstOnLine || (!twice && peek(1).text != "=")) return false;
    const std::string sign(here().text), name = target.name.empty() ? "x" : target.name;
    const std::string value = twice ? "1" : "...";
    report(Problem::Foreign,
           {sign + std::string(peek(1).text), "'" + name + " := " + name + " " + sign + " " + value + "'"});
    return true;
}

// The parts of a `try` are told once; what stands in them is read.
StatementPtr Parser::foreignTry(std::string_view right) {
    if (!std::exchange(tryTold_, true)) tell(Problem::Foreign, {here().text, right});
    tree_->complete = false;
    do advance();
    while (!atEnd() && !here().firstOnLine);
    return nullptr;
}

// A word that is a statement by itself, with a condition or without.
StatementPtr Parser::foreignWord() {
    advance();
    if (!here().firstOnLine && (isWord(Word::When) || (isWord(Word::If) && !isOnLine(Word::Then)))) {
        advance();
        condition();
    }
    return nullptr;
}

// A block or a comment in braces.
StatementPtr Parser::foreignBlock() {
    takeBrace("'//' in front of a comment; a block ends with 'end'");
    const auto begin = tokens_.begin() + static_cast<std::ptrdiff_t>(position_);
    const auto close = std::find_if(begin, tokens_.end(), [](const Token& token) {
        return token.firstOnLine || isSymbolToken(token, "}");
    });
    if (close != tokens_.end() && isSymbolToken(*close, "}"))
        position_ = static_cast<std::size_t>(close - tokens_.begin());
    Block lost;
    if (!isSymbol("}")) block(lost);
    closeBrace(true);
    return nullptr;
}

// `do ... while`, `repeat ... until`.
StatementPtr Parser::foreignLoop(int line) {
    advance();
    auto result = make(StatementKind::Loop, line);
    const bool brace = isSymbol("{") && takeBrace("nothing: the end is 'end loop'");
    ++loops_;
    const bool outer = std::exchange(doLoop_, true);
    block(result->body);
    const bool closed = closeBrace(brace);
    doLoop_ = outer;
    const bool until = foreignEnd() != nullptr && foreignEnd()->word == "until";
    if (isWord(Word::Loop)) advance();
    if (isWord(Word::While) || until || ascii::equal(here().text, "until")) {
        advance();
        condition();
    } else if (!closed) {
        closeBlock(Word::Loop, line);
    }
    --loops_;
    return result;
}

// `for (i = 0; i < n; i++)`: nothing of it can be kept.
StatementPtr Parser::foreignFor(int line) {
    tell(Problem::Foreign, {"for (", "'for i from 1 to 10 loop'"});
    const std::size_t behind = behindParentheses(0);
    position_ += behind;
    if (behind == 0) synchronise();
    braceTold_ = true;
    Block lost;
    ++loops_;
    if (isSymbol("{")) {
        takeBrace("");
        block(lost);
        if (!closeBrace(true)) closeBlock(Word::Loop, line);
    } else if (accept(Word::Loop)) {
        block(lost);
        closeBlock(Word::Loop, line);
    }
    --loops_;
    return nullptr;
}

}  // namespace tarn::toolchain
