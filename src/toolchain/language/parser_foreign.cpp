// SPDX-License-Identifier: Apache-2.0
//
// What newcomers bring from other languages. Each habit is told once, where it stands, with what is written here;
// then the parser goes on as if that stood there, so that one cause gives one message.
//
// Words of these tables are free as names: they are told only where no statement of this language could stand.
#include "os/text/ascii.h"
#include "toolchain/language/parser_internal.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarn::toolchain {
namespace {

// So many tokens are looked at ahead: a hostile text costs no more than its length.
constexpr std::size_t Reach = 200;

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

// Words in the place of `function`.
constexpr auto FunctionWords =
    std::to_array<std::string_view>({"def", "func", "fn", "fun", "sub", "proc", "procedure", "method", "void",
                                     "int", "bool", "float", "double"});

constexpr auto ForeignDeclarations = std::to_array<ForeignWord>({
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

struct ForeignNameEntry {
    std::string_view name, here;
};
constexpr auto ForeignNames = std::to_array<ForeignNameEntry>({
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

// The entry of a word, or null.
template <class Table, class Key>
auto entryOf(const Table& table, Key key, std::string_view text) -> decltype(&table[0]) {
    for (const auto& entry : table)
        if (ascii::equal(entry.*key, text)) return &entry;
    return nullptr;
}

bool isFunctionWord(std::string_view text) {
    return std::any_of(FunctionWords.begin(), FunctionWords.end(),
                       [&](std::string_view word) { return ascii::equal(word, text); });
}

bool isSymbolToken(const Token& token, std::string_view text) {
    return token.kind == TokenKind::Symbol && token.text == text;
}

// A statement of this language goes on so behind a name.
bool goesOn(const Token& token) {
    return isSymbolToken(token, ":=") || isSymbolToken(token, ".") || isSymbolToken(token, "[") ||
           isSymbolToken(token, "(");
}

bool isTypeWord(Word word) {
    return word == Word::Integer || word == Word::Boolean || word == Word::Fixed || word == Word::Real ||
           word == Word::String;
}

bool isNumber(const Token& token) {
    return token.kind == TokenKind::Integer || token.kind == TokenKind::Fixed ||
           token.kind == TokenKind::Real;
}

// Begins a value and no statement, whatever stands behind it.
bool beginsValue(const Token& token) {
    return isNumber(token) || token.kind == TokenKind::String || isSymbolToken(token, "(") ||
           isSymbolToken(token, "-") || isSymbolToken(token, "[") || token.word == Word::True ||
           token.word == Word::False || token.word == Word::Not;
}

}  // namespace

// Words that end a block elsewhere, or one of its parts.
struct ForeignEnd {
    std::string_view word;
    Word closes;
};

namespace {

constexpr auto ForeignEnds = std::to_array<ForeignEnd>({
    {"endif", Word::If},         {"fi", Word::If},
    {"endwhile", Word::Loop},    {"endfor", Word::Loop},
    {"endloop", Word::Loop},     {"enddo", Word::Loop},
    {"wend", Word::Loop},        {"next", Word::Loop},
    {"until", Word::Loop},       {"done", Word::Loop},
    {"od", Word::Loop},          {"endselect", Word::Select},
    {"endswitch", Word::Select}, {"endcase", Word::Select},
    {"esac", Word::Select},      {"endfunction", Word::Function},
    {"endfunc", Word::Function}, {"endsub", Word::Function},
    {"elif", Word::Elseif},      {"elsif", Word::Elseif},
    {"default", Word::Else},     {"otherwise", Word::Else},
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

// ---- blocks ----

// Who writes blocks in braces writes all of them so: it is told once.
bool Parser::takeBrace(std::string_view right) {
    if (!braceTold_) tell(Problem::Foreign, {"{", right});
    tree_->complete = false;
    braceTold_ = true;
    ++braces_;
    advance();
    return true;
}

bool Parser::closeBrace(bool opened) {
    if (!opened) return false;
    --braces_;
    return accept("}");
}

// `then` or `loop`; behind an error the one of the same line.
bool Parser::openBlock(Word word) {
    const std::string text(spelling(word));
    if (!panic_ && accept(word)) return false;
    if (!panic_ && isSymbol("{"))
        return takeBrace("'" + text + "', and 'end " + (word == Word::Then ? "if" : text) +
                         "' behind the block");
    if (!panic_ && takeInstead(text)) return false;
    if (!panic_) reportExpected("'" + text + "'");
    if (skipTo(word))
        panic_ = false;
    else
        synchronise();
    return false;
}

bool Parser::skipTo(Word word) {
    if (here().firstOnLine && here().line != errorLine_) return false;
    for (std::size_t ahead = 0; ahead < Reach && (ahead == 0 || !peek(ahead).firstOnLine); ++ahead) {
        const Token& token = peek(ahead);
        if (token.word == word) {
            position_ += ahead + 1;
            return true;
        }
        if (token.kind == TokenKind::End || beginsStatement(token.word) || endsBlock(token.word)) break;
    }
    return false;
}

// The word of another language that ends the block here, or null.
const ForeignEnd* Parser::foreignEnd() const {
    if (!isName()) return nullptr;
    const ForeignEnd* entry = entryOf(ForeignEnds, &ForeignEnd::word, here().text);
    if (entry == nullptr) return nullptr;
    const Token& next = peek(1);
    const std::size_t behind = isSymbolToken(next, "(") ? behindParentheses(1) : 0;
    const bool condition = behind != 0 ? !peek(behind).firstOnLine : !goesOn(next) && !next.firstOnLine;
    bool fits = !goesOn(next) && (next.firstOnLine || next.kind == TokenKind::End);
    if (entry->closes == Word::Elseif)
        fits = ifs_ > 0 && condition;
    else if (entry->closes == Word::Else)
        fits = selects_ > 0 &&
               (fits || isSymbolToken(next, ":") || isSymbolToken(next, "=>") || isSymbolToken(next, "->"));
    else if (entry->word == "until")
        fits = loops_ > 0 && (condition || behind != 0) && !isOnLine(Word::Loop);
    else if (entry->closes == Word::If || entry->closes == Word::Loop || entry->closes == Word::Select)
        fits = ifs_ + loops_ + selects_ > 0 &&
               (fits || (entry->word == "next" && next.kind == TokenKind::Name && peek(2).firstOnLine));
    return fits ? entry : nullptr;
}

bool Parser::atForeignElseif() const {
    const ForeignEnd* entry = foreignEnd();
    return entry != nullptr && entry->closes == Word::Elseif;
}

// Takes such a word where a block of `word` ends.
bool Parser::takeForeignEnd(Word word) {
    if (word == Word::Function && isWord(Word::End) && foreignHead_ && isFunctionWord(peek(1).text)) {
        advance();
        advance();
        return true;
    }
    const ForeignEnd* entry = foreignEnd();
    if (entry == nullptr) return false;
    const bool isPart = word == Word::Elseif || word == Word::Else;
    const bool partHere = entry->closes == Word::Elseif || entry->closes == Word::Else;
    if (isPart ? entry->closes != word : partHere) return false;
    const std::string right = "'" + std::string(isPart ? "" : "end ") + std::string(spelling(word)) + "'";
    tell(Problem::Foreign, {here().text, entry->word == "until" ? "'exit when' and 'end loop'" : right});
    advance();
    if (entry->word == "until") {
        condition();
        if (loops_ == 1 && isWord(Word::End) && peek(1).word == Word::Loop) advance(), advance();
    }
    if (entry->word == "next" && isName() && !here().firstOnLine) advance();
    return true;
}

bool Parser::atBlockEnd() const {
    const bool doWhile = doLoop_ && ((isWord(Word::While) && !isOnLine(Word::Loop)) ||
                                     (isWord(Word::Loop) && !peek(1).firstOnLine &&
                                      (peek(1).word == Word::While || ascii::equal(peek(1).text, "until"))));
    return endsBlock(here().word) || (braces_ > 0 && isSymbol("}")) || doWhile || foreignEnd() != nullptr;
}

// An `end` without its word: what begins on the next line is no part of it. Line ends mean nothing, so what can
// be read as one end is.
bool Parser::endIsAlone() const {
    if (!isWord(Word::End) || !peek(1).firstOnLine) return false;
    switch (peek(1).word) {
    case Word::Class: return false;
    case Word::Function: return peek(2).kind == TokenKind::Name && isSymbolToken(peek(3), "(");
    case Word::If:
    case Word::Loop:
    case Word::Select: return peek(2).kind != TokenKind::End && !peek(2).firstOnLine;
    default: return true;
    }
}

// Whether `end function` comes before another function begins. What decides is looked for once.
bool Parser::functionEndAhead() {
    if (position_ < decidedAt_) return endDecided_;
    for (std::size_t i = position_ + 1; i < tokens_.size(); ++i) {
        const Word word = tokens_[i].word;
        const bool behindEnd = tokens_[i - 1].word == Word::End;
        if (word != Word::Function && word != Word::Callback && !(word == Word::Class && behindEnd) &&
            tokens_[i].kind != TokenKind::End)
            continue;
        decidedAt_ = i;
        endDecided_ = word == Word::Function && behindEnd &&
                      !(tokens_[i].firstOnLine && i + 2 < tokens_.size() &&
                        tokens_[i + 1].kind == TokenKind::Name && isSymbolToken(tokens_[i + 2], "("));
        return endDecided_;
    }
    return false;
}

// An end of which nothing is open.
bool Parser::strayEnd() {
    if (!isWord(Word::End)) return false;
    const Token& behind = peek(1);
    const bool later =
        !behind.firstOnLine && (behind.word == Word::Later || (tryTold_ && ascii::equal(behind.text, "try")));
    const bool open = ifs_ + loops_ + selects_ > 0 || behind.word == Word::Function ||
                      behind.word == Word::Class || isFunctionWord(behind.text) || !functionEndAhead();
    if (!later && open && !(endIsAlone() && ifs_ + loops_ + selects_ == 0 && functionEndAhead()))
        return false;
    const bool alone = behind.firstOnLine;
    // The statement that it closes has had its message.
    if (!later || tree_->complete)
        tell(Problem::NotOpen, {alone ? "end" : "end " + std::string(behind.text.substr(0, 40))});
    advance();
    if (!alone) advance();
    return true;
}

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
    const ForeignWord* entry = entryOf(ForeignDeclarations, &ForeignWord::word, here().text);
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
    const ForeignNameEntry* entry =
        plain ? entryOf(ForeignNames, &ForeignNameEntry::name, root->name) : nullptr;
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
