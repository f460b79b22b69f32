// SPDX-License-Identifier: Apache-2.0
//
// The words of the language and the token reader of the text-form parsers. These functions compute on their
// arguments alone, can neither fail nor set the error cell, and so have no frames. Cost: a token is read in
// one pass.
#include "library/system/words.h"

#include "os/text/ascii.h"

#include <algorithm>

namespace tarn {
namespace {

// Reads one token. `at` is 0-based; each function leaves it behind what it has read, or gives false.
class TokenReader {
public:
    TokenReader(std::string_view text, std::size_t at) : text_(text), at_(at) {}
    [[nodiscard]] std::size_t at() const { return at_; }

    bool token() {
        const char c = peek();
        if (c == '"') return string();
        if (ascii::isLetter(c)) return symbols();
        if (c == '#' || c == '$') return accept(c) && symbols();
        if (c == '+' || c == '-' || ascii::isDigit(c)) return number();
        if (c == '[') return set();
        if (c == '=') return equals();
        if (c == '<') return accept(c) && accept('>');
        return std::string_view("(),.{|}").find(c) != std::string_view::npos && accept(c);
    }

private:
    [[nodiscard]] char peek(std::size_t ahead = 0) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }
    bool accept(char c) {
        if (at_ >= text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }
    bool equals() {
        accept('=');
        accept('>');
        return true;
    }
    bool symbols() {
        while (ascii::isSymbol(peek())) ++at_;
        return true;
    }
    bool digits() {
        const std::size_t start = at_;
        while (ascii::isDigit(peek())) ++at_;
        return at_ > start;
    }
    void blanks() {
        while (ascii::isBlank(peek())) ++at_;
    }
    // Two quotes inside stand for one; a control character before the close spoils the token.
    bool string() {
        for (++at_; at_ < text_.size(); ++at_) {
            if (static_cast<unsigned char>(text_[at_]) < 32) return false;
            if (text_[at_] != '"') continue;
            ++at_;
            if (peek() != '"') return true;
        }
        return false;
    }
    bool number() {
        if (peek() == '+' || peek() == '-') ++at_;
        if (peek() == '0' && ascii::upper(peek(1)) == 'X' && ascii::hexDigit(peek(2)) >= 0) {
            at_ += 2;
            while (ascii::hexDigit(peek()) >= 0) ++at_;
            accept('L');
            return true;
        }
        if (!digits()) return false;
        if (peek() == '.' && ascii::isDigit(peek(1))) {
            ++at_;
            digits();
        }
        return exponent();
    }
    bool exponent() {
        if (ascii::upper(peek()) != 'E') return true;
        const bool sign = peek(1) == '+' || peek(1) == '-';
        if (!ascii::isDigit(peek(sign ? 2 : 1))) return !sign;  // a mark alone is the start of the next word
        at_ += sign ? 2 : 1;
        return digits();
    }
    bool set() {
        ++at_;
        blanks();
        if (accept(']')) return true;
        do {
            if (!range()) return false;
        } while (accept(','));
        return accept(']');
    }
    bool range() {
        blanks();
        if (!number()) return false;
        blanks();
        if (peek() == ':')
            ++at_;
        else if (peek() == '.' && peek(1) == '.')
            at_ += 2;
        else
            return true;
        blanks();
        if (!number()) return false;
        blanks();
        return true;
    }

    std::string_view text_;
    std::size_t at_;
};

}  // namespace

bool ISRESERVEDWORD(std::string_view word) {
    return IsReservedWord(word);
}
bool ISFUTURERESERVEDWORD(std::string_view word) {
    return IsFutureReservedWord(word);
}

std::string NextWord(std::string_view text, std::size_t& position) {
    std::size_t start = position == 0 ? 0 : std::min(position - 1, text.size());
    while (start < text.size() && ascii::isSpace(text[start])) ++start;
    position = start + 1;
    TokenReader reader(text, start);
    if (start >= text.size() || !reader.token()) return {};
    position = reader.at() + 1;
    return std::string(text.substr(start, reader.at() - start));
}

}  // namespace tarn
