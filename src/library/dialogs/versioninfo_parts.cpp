// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/versioninfo_internal.h"

#include "kernel/windows/resources.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

namespace tarn::detail {
namespace {

struct Token {
    enum class Kind { Word, String, Torn, Other };  // Torn: a string that does not end on its line
    Kind kind = Kind::Other;
    std::string_view text;
    VersionSpan span;
    int line = 0;
    [[nodiscard]] bool is(std::string_view word) const { return kind == Kind::Word && STREQUAL(text, word); }
    [[nodiscard]] bool is(char c) const { return kind == Kind::Other && text.front() == c; }
};
using Tokens = std::vector<Token>;

bool isWordByte(char c) {
    return ascii::isSymbol(c) || std::string_view("#-+").find(c) != std::string_view::npos;
}

// Behind a string that begins there; at the line's end, and torn, if it does not end.
std::size_t stringEnd(std::string_view text, std::size_t at, bool& torn) {
    for (++at; at < text.size() && text[at] != '\n'; ++at) {
        if (text[at] == '\\' && at + 1 < text.size() && (text[at + 1] == '\\' || text[at + 1] == '"')) {
            ++at;
        } else if (text[at] == '"') {
            if (at + 1 >= text.size() || text[at + 1] != '"') return at + 1;
            ++at;
        }
    }
    torn = true;
    return at;
}

std::size_t lineEnd(std::string_view text, std::size_t at) {
    return std::min(text.find('\n', at), text.size());
}

Token tokenAt(std::string_view text, std::size_t at, int line) {
    Token token{Token::Kind::Other, {}, {at, at + 1}, line};
    if (text[at] == '"') {
        bool torn = false;
        token.span.end = stringEnd(text, at, torn);
        token.kind = torn ? Token::Kind::Torn : Token::Kind::String;
    } else if (isWordByte(text[at])) {
        token.kind = Token::Kind::Word;
        while (token.span.end < text.size() && isWordByte(text[token.span.end])) ++token.span.end;
    }
    token.text = text.substr(at, token.span.end - at);
    return token;
}

Tokens tokensOf(std::string_view text) {
    Tokens tokens;
    int line = 1;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '\n') ++line;
        if (ascii::isBlank(text[at]) || text[at] == '\r' || text[at] == '\n') {
            ++at;
        } else if (text.substr(at, 2) == "//") {
            at = lineEnd(text, at);
        } else {
            tokens.push_back(tokenAt(text, at, line));
            at = tokens.back().span.end;
        }
    }
    return tokens;
}

bool begins(const Token& token) {
    return token.is("BEGIN") || token.is('{');
}
bool ends(const Token& token) {
    return token.is("END") || token.is('}');
}

// A word of the block, behind which the one before it is over.
bool isKeyword(const Token& token) {
    constexpr std::string_view words[] = {"VALUE",          "BLOCK",         "FILEVERSION",
                                          "PRODUCTVERSION", "FILEFLAGSMASK", "FILEFLAGS",
                                          "FILEOS",         "FILETYPE",      "FILESUBTYPE"};
    return begins(token) || ends(token) ||
           std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view word) { return token.is(word); });
}

// What a string says: backslashes ahead of a quote are halved; an odd one, or another quote, makes it part of the text.
std::string plain(std::string_view token) {
    if (!token.starts_with('"')) return std::string(token);
    token = token.substr(1, token.size() - 2);
    std::string text;
    for (std::size_t at = 0; at < token.size();) {
        const std::size_t run = std::min(token.find_first_not_of('\\', at), token.size());
        const bool quote = run == token.size() || token[run] == '"';
        text.append(quote ? (run - at) / 2 : run - at, '\\');
        if (run == token.size()) break;
        text += token[run];
        at = run + (token[run] == '"' && (run - at) % 2 == 0 ? 2 : 1);
    }
    return text;
}

class Reader {
public:
    explicit Reader(std::string_view block) : tokens_(tokensOf(block)) {}
    VersionParts read();

private:
    std::size_t head();
    void value(std::size_t i);
    void numbers(std::size_t i);
    [[nodiscard]] bool isText(std::size_t i) const {
        return i < tokens_.size() && tokens_[i].kind == Token::Kind::String;
    }
    [[nodiscard]] bool belongs(std::size_t i, bool first) const;

    Tokens tokens_;
    VersionParts parts_;
    std::size_t valueEnd_ = 0;  // behind the last value
};

// The place behind the name, the word and its options.
std::size_t Reader::head() {
    if (tokens_.size() < 2 || !tokens_[1].is("VERSIONINFO")) return 0;
    parts_.name = tokens_[0].text;
    std::size_t i = 2;
    while (i < tokens_.size() && ResourceMemoryOption(std::string(tokens_[i].text))) ++i;
    parts_.headEnd = tokens_[i - 1].span.end;
    parts_.body = i < tokens_.size() ? tokens_[i].span.begin : parts_.headEnd;
    return i;
}

VersionParts Reader::read() {
    int depth = 0;
    for (std::size_t i = head(); i < tokens_.size(); ++i) {
        const Token& token = tokens_[i];
        if (begins(token)) ++depth;
        if (token.is("VALUE")) value(i);
        if (token.is("FILEVERSION") || token.is("PRODUCTVERSION")) numbers(i);
        if (!ends(token) || --depth != 0) continue;
        parts_.closed = true;
        parts_.close = token.span.begin;
        break;
    }
    return std::move(parts_);
}

void Reader::value(std::size_t i) {
    if (!isText(i + 1) || i + 3 >= tokens_.size() || !tokens_[i + 2].is(',')) return;
    const Token& first = tokens_[i + 3];
    const bool word =
        first.kind == Token::Kind::Word && first.line == tokens_[i + 2].line && !isKeyword(first);
    if (!isText(i + 3) && !word) return;
    VersionValue value;
    value.key = plain(tokens_[i + 1].text);
    value.isString = !word;
    value.text = REMOVETRAILINGNULL(plain(first.text));
    value.spans.push_back(first.span);
    std::size_t end = i + 4;
    for (; value.isString && isText(end); ++end) value.spans.push_back(tokens_[end].span);
    const std::string_view last = tokens_[end - 1].text;
    value.null = value.isString && last.ends_with("\\0\"");
    while (end < tokens_.size() && !isKeyword(tokens_[end])) ++end;
    value.follows = valueEnd_ == i;
    valueEnd_ = end;
    value.whole = {tokens_[i].span.begin, tokens_[end - 1].span.end};
    parts_.values.push_back(std::move(value));
}

// Whether a token goes on with the numbers ahead of it: any sign does, and a word behind a sign.
bool Reader::belongs(std::size_t i, bool first) const {
    if (i >= tokens_.size() || isKeyword(tokens_[i])) return false;
    if (tokens_[i].kind == Token::Kind::Word) return first || tokens_[i - 1].kind == Token::Kind::Other;
    return tokens_[i].kind == Token::Kind::Other &&
           (tokens_[i].is(',') || tokens_[i].line == tokens_[i - 1].line);
}

void Reader::numbers(std::size_t i) {
    VersionNumbers numbers{std::string(tokens_[i].text), "", {}};
    bool parted = false;
    for (std::size_t next = i + 1; belongs(next, next == i + 1); ++next) {
        numbers.spans.push_back(tokens_[next].span);
        if (const bool comma = tokens_[next].is(','); comma || parted) {
            parted = comma;
            if (comma) continue;
            if (!numbers.text.empty()) numbers.text += ' ';
        }
        numbers.text += tokens_[next].text;
    }
    if (numbers.spans.empty()) numbers.spans.push_back({tokens_[i].span.end, tokens_[i].span.end});
    parts_.numbers.push_back(std::move(numbers));
}

}  // namespace

VersionParts versionPartsOf(std::string_view block) {
    return Reader(block).read();
}

std::string quotedVersionText(const std::string& text, bool null) {
    null = null || text.ends_with(NullMark);
    std::string value;
    std::size_t run = 0;  // backslashes ahead
    for (const char c : text) {
        if (c == '"') value += std::string(run, '\\') + c;
        value += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
        run = c == '\\' ? run + 1 : 0;
    }
    return "\"" + value + (null ? std::string(NullMark) : std::string(run, '\\')) + "\"";
}

}  // namespace tarn::detail
