// SPDX-License-Identifier: Apache-2.0
//
// Where blocks begin and end as newcomers write them: in braces, behind another word than `then` or `loop`, with one
// word as `endif`, with an `end` alone or one too many.
#include "toolchain/language/parser_foreign_internal.h"

#include <array>

namespace tarn::toolchain {

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

}  // namespace tarn::toolchain
