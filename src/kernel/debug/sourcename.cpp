// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/sourcename.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tarn {

namespace {

enum class Sort { Name, Other, Sign };

struct Token {
    Sort sort;
    std::string_view text;
};

// Bytes from 128 up belong to no name: a word that has one is none.
bool isWordPart(char c) {
    return ascii::isSymbol(c) || static_cast<signed char>(c) < 0;
}

std::size_t wordLength(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isWordPart);
    return static_cast<std::size_t>(end - text.begin());
}

// A quote within stands twice, which reads as two texts. One without an end goes on to the end of the line.
std::size_t textLength(std::string_view text) {
    const std::size_t quote = text.find('"', 1);
    return quote == std::string_view::npos ? text.size() : quote + 1;
}

std::size_t numberLength(std::string_view text) {
    const std::size_t whole = wordLength(text);
    const bool hasDecimals = whole + 1 < text.size() && text[whole] == '.' && ascii::isDigit(text[whole + 1]);
    return hasDecimals ? whole + 1 + wordLength(text.substr(whole + 1)) : whole;
}

Token nextToken(std::string_view text) {
    const char c = text.front();
    if (text.starts_with("//")) return {Sort::Other, text};
    if (c == '"') return {Sort::Other, text.substr(0, textLength(text))};
    if (ascii::isDigit(c)) return {Sort::Other, text.substr(0, numberLength(text))};
    if (isWordPart(c)) {
        const std::string_view word = text.substr(0, wordLength(text));
        return {std::all_of(word.begin(), word.end(), ascii::isSymbol) ? Sort::Name : Sort::Other, word};
    }
    constexpr std::string_view range = "..";
    return {Sort::Sign, text.substr(0, text.starts_with(range) ? range.size() : 1)};
}

std::vector<Token> tokensOf(std::string_view text) {
    std::vector<Token> tokens;
    while (!text.empty()) {
        if (ascii::isSpace(text.front())) {
            text.remove_prefix(1);
            continue;
        }
        tokens.push_back(nextToken(text));
        text.remove_prefix(tokens.back().text.size());
    }
    return tokens;
}

constexpr std::size_t None = static_cast<std::size_t>(-1);

// Where the brackets begin that end at `at`; None: in another line.
std::size_t bracketBefore(const std::vector<Token>& tokens, std::size_t at) {
    int open = 0;
    for (;; --at) {
        if (tokens[at].sort == Sort::Sign && tokens[at].text == "]") ++open;
        if (tokens[at].sort == Sort::Sign && tokens[at].text == "[" && --open == 0) return at;
        if (at == 0) return None;
    }
}

// The name, with its subscripts, that ends at `at`; None: it is no name.
std::size_t ownerBefore(const std::vector<Token>& tokens, std::size_t at) {
    while (tokens[at].sort == Sort::Sign && tokens[at].text == "]") {
        at = bracketBefore(tokens, at);
        if (at == None || at == 0) return None;
        --at;
    }
    return tokens[at].sort == Sort::Name ? at : None;
}

// Where the name at `at` begins, with what it is a field of.
std::size_t chainBefore(const std::vector<Token>& tokens, std::size_t at) {
    while (at != None && at > 0 && tokens[at - 1].sort == Sort::Sign && tokens[at - 1].text == ".")
        at = at > 1 ? ownerBefore(tokens, at - 2) : None;
    return at;
}

}  // namespace

std::string_view SourceNameAtEnd(std::string_view text) {
    const std::vector<Token> tokens = tokensOf(text);
    if (tokens.empty() || tokens.back().sort != Sort::Name || ascii::isSpace(text.back())) return {};
    const std::size_t first = chainBefore(tokens, tokens.size() - 1);
    if (first == None) return {};
    return text.substr(static_cast<std::size_t>(tokens[first].text.data() - text.data()));
}

}  // namespace tarn
