// SPDX-License-Identifier: Apache-2.0
#include "library/source/classnames.h"

#include "kernel/text/words.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

struct Token {
    std::string_view text;  // as it stands; of a string its first quote
    std::size_t start = 0;
    int line = 1;
};

// The words and signs of a text, without comments.
class Tokens {
public:
    explicit Tokens(std::string_view text) : text_(text) {}
    bool next(Token& token) {
        for (; at_ < text_.size(); ++at_) {
            const char c = text_[at_];
            if (c == '\n') ++line_;
            if (c == '/' && text_.substr(at_, 2) == "//") {
                at_ = std::min(text_.find('\n', at_), text_.size());
                --at_;
                continue;
            }
            if (c != ' ' && c != '\t' && c != '\r' && c != '\n') break;
        }
        if (at_ >= text_.size()) return false;
        const std::size_t start = at_;
        at_ = endOf(start);
        token = {text_.substr(start, at_ - start), start, line_};
        return true;
    }

private:
    [[nodiscard]] std::size_t endOf(std::size_t at) const {
        if (text_[at] == '"') {
            const std::size_t end = text_.find_first_of("\"\n", at + 1);
            return end == std::string_view::npos ? text_.size() : end + (text_[end] == '"' ? 1 : 0);
        }
        if (text_.substr(at, 2) == ":=") return at + 2;
        if (!ascii::isSymbol(text_[at])) return at + 1;
        while (at < text_.size() && ascii::isSymbol(text_[at])) ++at;
        return at;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
};

// A stretch of the text on one line, blanks as one, without comments.
std::string squeezed(std::string_view text) {
    std::string out;
    Token token;
    std::size_t end = 0;
    for (Tokens tokens(text); tokens.next(token); end = token.start + token.text.size()) {
        if (!out.empty() && token.start > end) out += ' ';
        out += token.text;
    }
    return out;
}

class Scan {
public:
    explicit Scan(std::string_view text) : text_(text) {
        Token token;
        for (Tokens tokens(text); tokens.next(token);) tokens_.push_back(token);
    }
    std::vector<DeclaredName> run() {
        while (at_ < tokens_.size()) {
            if (is("end") && is("class", 1)) break;
            declaration();
        }
        return std::move(names_);
    }

private:
    [[nodiscard]] bool is(std::string_view word, std::size_t ahead = 0) const {
        return at_ + ahead < tokens_.size() && ascii::equal(tokens_[at_ + ahead].text, word);
    }
    [[nodiscard]] bool isName() const {
        return at_ < tokens_.size() && ascii::isLetter(tokens_[at_].text[0]) &&
               !IsReservedWord(ascii::lowered(tokens_[at_].text));
    }
    [[nodiscard]] int line() const { return at_ < tokens_.size() ? tokens_[at_].line : lastLine(); }
    [[nodiscard]] int lastLine() const { return tokens_.empty() ? 1 : tokens_.back().line; }
    [[nodiscard]] std::size_t startOf(std::size_t token) const {
        return token < tokens_.size() ? tokens_[token].start : text_.size();
    }

    void declaration() {
        const bool isPublic = is("public");
        if (isPublic || is("private")) ++at_;
        if (is("callback")) ++at_;
        if (is("function")) return function(isPublic);
        if (is("const")) return item(NameKind::Constant, isPublic);
        if (is("type")) return item(NameKind::Type, isPublic);
        if (is("var")) {
            ++at_;
            return variables(isPublic);
        }
        if (at_ < tokens_.size()) ++at_;
    }

    // A constant or a type, to the end of its line.
    void item(NameKind kind, bool isPublic) {
        ++at_;
        if (at_ >= tokens_.size() || !ascii::isLetter(tokens_[at_].text[0])) return;
        const std::size_t first = at_;
        const int row = line();
        while (at_ < tokens_.size() && line() == row && !is("record") && !is("union")) ++at_;
        const std::string head = squeezed(text_.substr(startOf(first), startOf(at_) - startOf(first)));
        names_.push_back({std::string(tokens_[first].text), kind, isPublic, head, row, 0, 0});
        if (is("record") || is("union")) skipFields();
        if (kind == NameKind::Type) enumerators(first, isPublic);
    }

    // Behind the "end record" that belongs to this "record".
    void skipFields() {
        int open = 0;
        for (; at_ < tokens_.size(); ++at_) {
            if (is("end")) {
                if (is("class", 1) || is("function", 1)) return;
                ++at_;
                if (--open == 0) return static_cast<void>(++at_);
            } else if (is("record") || is("union")) {
                ++open;
            }
        }
    }

    // The names of an enumeration, which are constants. Its list may go on for several lines.
    void enumerators(std::size_t first, bool isPublic) {
        if (first + 3 >= tokens_.size() || !ascii::equal(tokens_[first + 2].text, "enum") ||
            tokens_[first + 3].text != "(")
            return;
        for (at_ = first + 4; at_ < tokens_.size() && tokens_[at_].text != ")"; ++at_)
            if (isName())
                names_.push_back({std::string(tokens_[at_].text), NameKind::Constant, isPublic,
                                  std::string(tokens_[at_].text) + " : " + std::string(tokens_[first].text),
                                  line(), 0, 0});
    }

    void function(bool isPublic) {
        ++at_;
        if (at_ >= tokens_.size() || !ascii::isLetter(tokens_[at_].text[0])) return;
        const std::size_t first = at_++, index = names_.size();
        names_.push_back(
            {std::string(tokens_[first].text), NameKind::Function, isPublic, {}, tokens_[first].line, 0, 0});
        parameters();
        if (is("return")) {
            ++at_;
            const int row = line();
            while (at_ < tokens_.size() && line() == row && !is("external") && !is("from") &&
                   !is("precond") && !is("postcond") && !is("var"))
                ++at_;
        }
        names_[index].head = squeezed(text_.substr(startOf(first), startOf(at_) - startOf(first)));
        const bool hasBody = !is("external");
        if (hasBody) body();
        const int last = at_ > 0 ? tokens_[at_ - 1].line : names_[index].line;
        for (std::size_t i = index + 1; i < names_.size(); ++i)
            names_[i].first = names_[index].line, names_[i].last = last;
        if (!hasBody) names_.resize(index + 1);  // nobody stands where its parameters are known
    }

    void parameters() {
        if (at_ >= tokens_.size() || tokens_[at_].text != "(") return;
        int open = 0;
        for (; at_ < tokens_.size(); ++at_) {
            const std::string_view text = tokens_[at_].text;
            if (is("function") || is("var")) return;  // the head is not finished
            if (text == "(") ++open;
            if (text == ")" && --open == 0) return static_cast<void>(++at_);
            if (open == 1 && isName() && at_ + 1 < tokens_.size() && tokens_[at_ + 1].text == ":")
                variable(at_);
        }
    }

    void variable(std::size_t token) {
        const std::size_t from = startOf(token);
        const std::size_t to = std::min(text_.find_first_of("\r\n", from), text_.size());
        std::string head = squeezed(text_.substr(from, to - from));
        head = head.substr(0, head.find(":="));
        names_.push_back({std::string(tokens_[token].text), NameKind::Variable, false,
                          head.substr(0, head.find_first_of(",)")), tokens_[token].line, 0, 0});
    }

    // Up to the end of the function, or to what cannot stand in one.
    void body() {
        while (at_ < tokens_.size()) {
            if (is("end") && is("function", 1)) {
                at_ += 2;
                return;
            }
            if (is("function") || is("callback") || is("public") || is("private") || is("const") ||
                is("type") || (is("end") && is("class", 1)))
                return;
            if (!is("var")) {
                ++at_;
                continue;
            }
            ++at_;
            variables(false);
        }
    }

    void variables(bool isPublic) {
        while (isName()) {
            const std::size_t first = at_;
            std::size_t end = at_ + 1;
            while (end + 1 < tokens_.size() && tokens_[end].text == ",") end += 2;
            if (end >= tokens_.size() || tokens_[end].text != ":") return;
            const std::size_t index = names_.size();
            for (std::size_t i = first; i < end; i += 2) variable(i);
            at_ = end;
            const int row = tokens_[end].line;
            while (at_ < tokens_.size() && line() == row && !is("record") && !is("union")) ++at_;
            const std::string head = squeezed(text_.substr(startOf(end), startOf(at_) - startOf(end)));
            for (std::size_t i = index; i < names_.size(); ++i) {
                names_[i].head = names_[i].name + " " + head.substr(0, head.find(" :="));
                names_[i].isPublic = isPublic;
            }
            if (is("record") || is("union")) skipFields();
        }
    }

    std::string_view text_;
    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    std::vector<DeclaredName> names_;
};

}  // namespace

std::vector<DeclaredName> SYMGETNAMES(std::string_view text) {
    return Scan(text).run();
}

OpenCall SYMGETOPENCALL(std::string_view text) {
    std::vector<OpenCall> open;
    Token token, before, further;
    for (Tokens tokens(text); tokens.next(token); further = before, before = token) {
        if (token.text == "(") {
            const bool called = !before.text.empty() && ascii::isLetter(before.text[0]) &&
                                !IsReservedWord(ascii::lowered(before.text)) &&
                                !ascii::equal(further.text, "function");
            open.push_back(
                {called ? std::string(before.text) : std::string(), 0, static_cast<int>(token.start) + 1});
        } else if (token.text == ")") {
            if (!open.empty()) open.pop_back();
        } else if (token.text == "," && !open.empty()) {
            ++open.back().argument;
        } else if (ascii::equal(token.text, "end") || token.text == ":=") {
            open.clear();  // no call goes on behind these
        }
    }
    // Parentheses of an expression belong to the argument around them.
    while (!open.empty() && open.back().name.empty()) open.pop_back();
    return open.empty() ? OpenCall{} : open.back();
}

bool SYMENDSINTEXT(std::string_view line) {
    bool inString = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') inString = !inString;
        if (!inString && line.substr(i, 2) == "//") return true;
    }
    return inString;
}

HeadPart SYMGETARGUMENT(std::string_view head, int argument) {
    std::size_t start = head.find('(');
    if (start == std::string_view::npos) return {};
    ++start;
    int open = 0, n = 0;
    for (std::size_t at = start; at < head.size(); ++at) {
        const char c = head[at];
        if (c == '(' || c == '[') ++open;
        const bool ends = c == ')' && open == 0;
        if (ends || (c == ',' && open == 0)) {
            while (start < at && head[start] == ' ') ++start;
            if (n == argument && at > start)
                return {static_cast<int>(start) + 1, static_cast<int>(at - start)};
            if (ends) return {};
            ++n;
            start = at + 1;
        }
        if ((c == ')' || c == ']') && open > 0) --open;
    }
    return {};
}

}  // namespace tarn
