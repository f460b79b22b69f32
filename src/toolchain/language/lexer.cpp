// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/lexer.h"

#include "os/text/ascii.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tarn::toolchain {
namespace {

bool isForeign(char c) {
    return static_cast<unsigned char>(c) >= 128;
}

// Longest first.
constexpr auto Symbols =
    std::to_array<std::string_view>({":=", "<>", "<=", ">=", "=>", "->", "..", "(", ")", "[", "]", "{",
                                     "}",  ",",  ".",  ":",  "=",  "<",  ">",  "+", "-", "*", "/"});

// Spellings of other languages, what is written here, and the token that each is read as. Longest first.
struct Foreign {
    std::string_view text, here, readAs;
    Word word;
};
constexpr auto ForeignSymbols = std::to_array<Foreign>({
    {"===", "'='", "=", Word::None},
    {"!==", "'<>'", "<>", Word::None},
    {"!=", "'<>'", "<>", Word::None},
    {"==", "'='", "=", Word::None},
    {"=<", "'<='", "<=", Word::None},
    {"><", "'<>'", "<>", Word::None},
    {"~=", "'<>'", "<>", Word::None},
    {"&&", "'and'", "and", Word::And},
    {"||", "'or'", "or", Word::Or},
    {"**", "PWR(base, exponent)", "*", Word::None},
    {"<<", "'*' and a power of two", "*", Word::None},
    {">>", "'div' and a power of two", "div", Word::Div},
    {"%", "'mod'", "mod", Word::Mod},
    {"!", "'not'", "not", Word::Not},
    {"|", "'or'", "or", Word::Or},
    {"^", "PWR(base, exponent)", "*", Word::None},
    {"\\", "'div'", "div", Word::Div},
});
constexpr std::string_view AssignHere = "':=' to assign, '=' to compare";
constexpr std::string_view CommentHere = "'//' in front of a comment, on each of its lines";
constexpr int FixedDecimals = 4;

// Some editors put it in front of UTF-8; it is no part of the text.
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

class Scanner {
public:
    Scanner(std::string_view source, const std::string& file, Messages& messages)
        : source_(source), file_(file), messages_(messages) {}

    std::vector<Token> run() {
        std::vector<Token> tokens;
        if (source_.substr(0, ByteOrderMark.size()) == ByteOrderMark) position_ = ByteOrderMark.size();
        for (skip(); position_ < source_.size(); skip()) {
            tokens.push_back(next());
            followItem(tokens.back());
        }
        tokens.push_back(token(TokenKind::End, position_));
        return tokens;
    }

private:
    // Whether what stands on the line so far can be an item that is assigned to: a name, its fields and elements.
    void followItem(const Token& token) {
        const bool name = token.kind == TokenKind::Name || token.word == Word::Me;
        if (token.firstOnLine) {
            item_ = name;
            brackets_ = 0;
            return;
        }
        if (!item_) return;
        const bool symbol = token.kind == TokenKind::Symbol;
        if (symbol && (token.text == "(" || token.text == "["))
            ++brackets_;
        else if (symbol && (token.text == ")" || token.text == "]"))
            --brackets_;
        else if (brackets_ <= 0)
            item_ = name || (symbol && token.text == ".");
    }

    void skip() {
        while (position_ < source_.size()) {
            const char c = source_[position_];
            if (c == '\n') {
                ++line_;
                first_ = true;
                parentheses_ = 0;
            } else if (source_.substr(position_, 2) == "//") {
                restOfLine();
                continue;
            } else if (foreignComment()) {
                continue;
            } else if (c == ';' && parentheses_ == 0) {
                semicolon();
            } else if (c != ' ' && c != '\t' && c != '\r') {
                return;
            }
            ++position_;
        }
    }

    void restOfLine() {
        while (position_ < source_.size() && source_[position_] != '\n') ++position_;
    }

    // Who ends statements so does it on every line: it is told once.
    void semicolon() {
        if (!semicolonTold_)
            messages_.add(file_, line_, Problem::Foreign, {";", "nothing: a line or a blank is enough"});
        semicolonTold_ = true;
    }

    // Comments of other languages are told and left out as a whole: what stands in them has no faults.
    bool foreignComment() {
        if (source_.substr(position_, 2) == "/*") return blockComment("/*", "*/");
        if (source_.substr(position_, 2) == "(*") return blockComment("(*", "*)");
        if (at(position_) == '#') {
            const bool character = ascii::isDigit(at(position_ + 1));
            return !character && lineComment("#");
        }
        if (source_.substr(position_, 2) == "--") return isProse(position_ + 2) && lineComment("--");
        return at(position_) == '\'' && first_ && !isTextOfLine() && lineComment("'");
    }
    bool lineComment(std::string_view mark) {
        const bool include = source_.substr(position_, 8) == "#include";
        if (include)
            messages_.add(file_, line_, Problem::Foreign,
                          {"#include", "'Uses' and names of classes behind the name of the class"});
        else
            messages_.add(file_, line_, Problem::Foreign, {mark, CommentHere});
        restOfLine();
        return true;
    }
    // One that is not closed ends with its line, so that the class behind it is still read.
    bool blockComment(std::string_view open, std::string_view close) {
        messages_.add(file_, line_, Problem::Foreign, {open, CommentHere});
        const std::size_t end = source_.find(close, position_ + open.size());
        if (end == std::string_view::npos) {
            restOfLine();
            return true;
        }
        for (; position_ < end + 2; ++position_)
            if (source_[position_] == '\n') {
                ++line_;
                first_ = true;
            }
        return true;
    }

    // Two words in a row, the second of which begins no statement: no expression goes on so behind two signs.
    bool isProse(std::size_t place) const {
        const std::size_t begin = source_.find_first_not_of(" \t", place);
        if (begin == place || begin >= source_.size() || !ascii::isLetter(source_[begin])) return false;
        std::size_t end = begin;
        while (ascii::isSymbol(at(end))) ++end;
        const Word word = wordOf(source_.substr(begin, end - begin));
        if (word != Word::None) return word != Word::Me && word != Word::True && word != Word::False;
        if (at(end) == '\'') return true;
        std::size_t next = source_.find_first_not_of(" \t", end);
        if (next == end || !ascii::isLetter(at(next))) return false;
        const std::size_t second = next;
        while (ascii::isSymbol(at(next))) ++next;
        if (wordOf(source_.substr(second, next - second)) != Word::None) return false;
        next = source_.find_first_not_of(" \t", next);
        return std::string_view(":.[(").find(at(next)) == std::string_view::npos;
    }

    // A text in single quotes at the beginning of a line is the argument of a call; else a comment begins.
    bool isTextOfLine() const {
        if (!closesOnLine('\'')) return false;
        const std::size_t behind = source_.find_first_not_of(" \t\r", source_.find('\'', position_ + 1) + 1);
        return std::string_view("\n,)+;").find(at(behind)) != std::string_view::npos;
    }

    Token token(TokenKind kind, std::size_t begin) {
        Token result;
        result.kind = kind;
        result.line = line_;
        result.firstOnLine = first_;
        result.text = source_.substr(begin, position_ - begin);
        first_ = false;
        return result;
    }

    Token next() {
        const char c = source_[position_];
        if (ascii::isLetter(c)) return name();
        if (ascii::isDigit(c)) return number();
        if (c == '"') return string();
        if (joinsTexts()) return foreignRest("||", "'+' to join texts");
        for (const Foreign& foreign : ForeignSymbols)
            if (source_.substr(position_, foreign.text.size()) == foreign.text) return foreignSymbol(foreign);
        if (c == '\'')
            return closesOnLine('\'')
                       ? foreignString()
                       : foreignRest("'", "double quotes around a text, '//' in front of a comment");
        if (c == '#') return foreignRest("#", "CHR(...)");
        if (c == '&') return foreignRest("&", "'and', or '+' to join texts");
        if (c == ';') return semicolonToken();
        parentheses_ += c == '(' ? 1 : c == ')' && parentheses_ > 0 ? -1 : 0;
        for (const std::string_view symbol : Symbols) {
            if (source_.substr(position_, symbol.size()) != symbol) continue;
            const std::size_t begin = position_;
            position_ += symbol.size();
            return token(TokenKind::Symbol, begin);
        }
        return bad();
    }

    Token name() {
        const std::size_t begin = position_;
        while (position_ < source_.size() && ascii::isSymbol(source_[position_])) ++position_;
        if (atForeignLetter()) return foreignWord(begin);
        Token result = token(TokenKind::Name, begin);
        result.word = wordOf(result.text);
        if (result.word != Word::None) result.kind = TokenKind::Word;
        if (result.text.size() > MaxNameLength)
            messages_.add(file_, line_, Problem::NameTooLong, {result.text});
        return result;
    }

    Token foreignSymbol(const Foreign& foreign) {
        const std::size_t begin = position_;
        position_ += foreign.text.size();
        const bool assigns = foreign.readAs == "=" && item_ && brackets_ == 0 && !first_;
        messages_.add(file_, line_, Problem::Foreign, {foreign.text, assigns ? AssignHere : foreign.here});
        Token result = token(foreign.word == Word::None ? TokenKind::Symbol : TokenKind::Word, begin);
        result.told = true;
        result.word = foreign.word;
        result.text = foreign.readAs;
        return result;
    }

    // `||` with a text on one side.
    bool joinsTexts() const {
        if (source_.substr(position_, 2) != "||") return false;
        const std::size_t left = source_.find_last_not_of(" \t", position_ - 1);
        const std::size_t right = source_.find_first_not_of(" \t", position_ + 2);
        return (position_ > 0 && left != std::string_view::npos && at(left) == '"') || at(right) == '"';
    }

    // Told, and nothing more is said of its line.
    Token foreignRest(std::string_view mark, std::string_view right) {
        const std::size_t begin = position_;
        messages_.add(file_, line_, Problem::Foreign, {mark, right});
        restOfLine();
        return token(TokenKind::Bad, begin);
    }

    // Between parentheses it ends no statement; what belongs there the parser knows.
    Token semicolonToken() {
        const std::size_t begin = position_++;
        return token(TokenKind::Symbol, begin);
    }

    bool closesOnLine(char quote) const {
        const std::size_t end = source_.find_first_of(std::string{quote, '\n'}, position_ + 1);
        return end != std::string_view::npos && source_[end] == quote;
    }
    Token foreignString() {
        const std::size_t begin = position_;
        position_ = source_.find('\'', begin + 1) + 1;
        messages_.add(file_, line_, Problem::Foreign, {"'", "double quotes around a text"});
        return token(TokenKind::String, begin);
    }

    void digits() {
        while (position_ < source_.size() && ascii::isDigit(source_[position_])) ++position_;
    }
    char at(std::size_t place) const { return place < source_.size() ? source_[place] : '\0'; }

    // A point with digits behind it, or an exponent.
    bool isFraction() const { return at(position_) == '.' && ascii::isDigit(at(position_ + 1)); }
    bool isExponent() const {
        if (at(position_) != 'E' && at(position_) != 'e') return false;
        const std::size_t sign = at(position_ + 1) == '+' || at(position_ + 1) == '-' ? 1 : 0;
        return ascii::isDigit(at(position_ + 1 + sign));
    }

    Token number() {
        const std::size_t begin = position_;
        digits();
        const std::size_t point = position_;
        if (isFraction()) {
            ++position_;
            digits();
        }
        if (isExponent()) return real(begin);
        if (position_ > point && !ascii::isSymbol(at(position_))) return fixed(begin, point);
        return integer(begin);
    }

    Token real(std::size_t begin) {
        position_ += 2;
        digits();
        Token result = token(TokenKind::Real, begin);
        result.real = std::strtod(std::string(result.text).c_str(), nullptr);
        if (ascii::isSymbol(at(position_))) return badNumber(begin);
        if (std::isinf(result.real))
            messages_.add(file_, line_, Problem::NumberTooLarge, {result.text, "a real number"});
        return result;
    }

    Token fixed(std::size_t begin, std::size_t point) {
        Token result = token(TokenKind::Fixed, begin);
        const std::string_view decimals = result.text.substr(point - begin + 1);
        if (decimals.size() > FixedDecimals) {
            messages_.add(file_, line_, Problem::FixedDecimals, {result.text});
            return result;
        }
        std::int64_t number = 0;
        std::string all(result.text.substr(0, point - begin));
        all.append(decimals).append(FixedDecimals - decimals.size(), '0');
        for (const char c : all) {
            if (number > (INT64_MAX - (c - '0')) / 10) {
                messages_.add(file_, line_, Problem::NumberTooLarge, {result.text, "a fixed number"});
                return result;
            }
            number = number * 10 + (c - '0');
        }
        result.number = number;
        return result;
    }

    Token badNumber(std::size_t begin) {
        while (ascii::isSymbol(at(position_))) ++position_;
        messages_.add(file_, line_, Problem::BadNumber, {source_.substr(begin, position_ - begin)});
        return token(TokenKind::Integer, begin);
    }

    Token integer(std::size_t begin) {
        position_ = begin;
        while (position_ < source_.size() && ascii::isSymbol(source_[position_])) ++position_;
        Token result = token(TokenKind::Integer, begin);
        std::string_view digits = result.text;
        const bool hex = digits.size() > 2 && (digits[1] == 'x' || digits[1] == 'X') && digits[0] == '0';
        if (hex) digits.remove_prefix(2);
        if (hex && digits.size() > 1 && (digits.back() == 'L' || digits.back() == 'l'))
            digits.remove_suffix(1);
        readDigits(digits, hex, result);
        return result;
    }

    // A decimal number may be 2^31, which only the minus sign before it makes an integer; the parser sees to
    // that.
    void readDigits(std::string_view digits, bool hex, Token& result) {
        const std::int64_t most = hex ? 0xFFFFFFFFLL : 0x80000000LL;
        bool large = false;
        for (const char c : digits) {
            const int digit = ascii::hexDigit(c);
            if (digit < 0 || (!hex && digit > 9)) {
                messages_.add(file_, line_, Problem::BadNumber, {result.text});
                return;
            }
            result.number = result.number * (hex ? 16 : 10) + digit;
            large = large || result.number > most;
            if (large) result.number = 0;
        }
        if (large) messages_.add(file_, line_, Problem::NumberTooLarge, {result.text, "an integer"});
        if (hex && result.number > 0x7FFFFFFFLL) result.number -= 0x100000000LL;
    }

    Token string() {
        const std::size_t begin = position_++;
        std::size_t control = 0;  // where the first character stands that a string cannot hold
        while (position_ < source_.size()) {
            const char c = source_[position_];
            if (c == '"') {
                ++position_;
                if (position_ < source_.size() && source_[position_] == '"') {
                    ++position_;
                    continue;
                }
                if (control == 0) return token(TokenKind::String, begin);
                badCharacter(source_[control]);
                return token(TokenKind::Bad, begin);
            }
            if (c == '\n' || c == '\r') break;
            if (static_cast<unsigned char>(c) < 32 && control == 0) control = position_;
            ++position_;
        }
        restOfLine();
        const std::size_t lineEnd = source_.rfind('\n', begin);
        const std::size_t lineBegin = lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
        if (source_.substr(lineBegin, begin - lineBegin).find("\\\"") != std::string_view::npos)
            messages_.add(file_, line_, Problem::Foreign, {"\\\"", "'\"\"' for a quote in a text"});
        else
            messages_.add(file_, line_, Problem::OpenString);
        return token(TokenKind::Bad, begin);
    }

    Token bad() {
        if (atForeignLetter()) return foreignWord(position_);
        if (source_[position_] == '?')
            messages_.add(file_, line_, Problem::Foreign, {"?", "IIF(condition, a, b)"});
        else
            badCharacter(source_[position_]);
        const std::size_t begin = position_++;
        return token(TokenKind::Bad, begin);
    }

    // A word with letters that no name has is one fault, however many bytes they are.
    bool atForeignLetter() const { return position_ < source_.size() && isForeign(source_[position_]); }
    Token foreignWord(std::size_t begin) {
        badCharacter(source_[position_]);
        while (position_ < source_.size() &&
               (ascii::isSymbol(source_[position_]) || isForeign(source_[position_])))
            ++position_;
        return token(TokenKind::Bad, begin);
    }

    void badCharacter(char c) {
        const auto code = static_cast<unsigned char>(c);
        char text[16];
        if (code > 32 && code < 127)
            std::snprintf(text, sizeof text, "'%c'", code);
        else
            std::snprintf(text, sizeof text, "0x%02X", code);
        messages_.add(file_, line_, Problem::BadCharacter, {text});
    }

    std::string_view source_;
    const std::string& file_;
    Messages& messages_;
    std::size_t position_ = 0;
    int line_ = 1, parentheses_ = 0;  // those that are open on this line
    int brackets_ = 0;                // those of the item
    bool first_ = true, semicolonTold_ = false, item_ = false;
};

}  // namespace

std::vector<Token> scan(std::string_view source, const std::string& file, Messages& messages) {
    return Scanner(source, file, messages).run();
}

std::string stringValue(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        result += text[i];
        if (text[i] == '"') ++i;
    }
    return result;
}

}  // namespace tarn::toolchain
