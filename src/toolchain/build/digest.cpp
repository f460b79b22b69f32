// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/digest.h"

#include "kernel/run/runtime.h"
#include "os/text/ascii.h"
#include "toolchain/language/lexer.h"
#include "toolchain/language/library.h"
#include "toolchain/output/interface.h"
#include "toolchain/output/symfile.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <set>

namespace tarn::toolchain {
namespace {

constexpr Digest Odd = 0x9E3779B97F4A7C15U, OtherOdd = 0xD6E8FEB86659FD93U;
constexpr std::size_t MostComment = 1000;

Digest mixed(Digest value) {
    value ^= value >> 32;
    value *= OtherOdd;
    value ^= value >> 29;
    value *= Odd;
    return value ^ (value >> 32);
}

// ---- the heads of a class ----

bool isWord(const Token& token, Word word) {
    return token.kind == TokenKind::Word && token.word == word;
}

// The tokens of a class, and what of them its users see.
class HeadsFinder {
public:
    explicit HeadsFinder(const std::vector<Token>& tokens) : tokens_(tokens) {}

    Heads run() {
        while (at_ < tokens_.size()) {
            const bool hidden = isWord(tokens_[at_], Word::Private) && beginsFunction(at_ + 1);
            const std::size_t function = at_ + (hidden ? 1 : 0);
            const std::size_t end = beginsFunction(function) ? bodyEnd(function) : 0;
            if (end == 0) {
                take();  // also what is declared ahead: its head stands among the other declarations
            } else {
                if (!hidden && isModified(function)) head();
                at_ = end;
            }
        }
        std::string text;
        for (const Token* token : kept_) text.append(token->text).append(1, '\n');
        return {digestOf(text), namesOthers()};
    }

private:
    bool beginsFunction(std::size_t at) const {
        return at < tokens_.size() && isWord(tokens_[at], Word::Function) &&
               (at == 0 || !isWord(tokens_[at - 1], Word::End));
    }
    // `public`, or a word that may stand between it and the function. What ends a declaration is none, and a word
    // that this does not know counts as one.
    bool isModified(std::size_t at) const {
        if (at == 0 || tokens_[at - 1].kind != TokenKind::Word) return false;
        constexpr Word Ends[] = {Word::Function, Word::Boolean, Word::Integer,
                                 Word::String,   Word::True,    Word::False};
        return std::find(std::begin(Ends), std::end(Ends), tokens_[at - 1].word) == std::end(Ends);
    }
    void take() { kept_.push_back(&tokens_[at_++]); }
    // Behind the `end function` of the function that begins here; 0 if another one begins before that.
    std::size_t bodyEnd(std::size_t function) const {
        for (std::size_t i = function + 1; i < tokens_.size(); ++i) {
            if (beginsFunction(i)) return 0;
            if (isWord(tokens_[i], Word::Function)) return i + 1;
        }
        return 0;
    }
    // The name, the parameters and the result. How long the result's type is only the grammar knows: it ends at a
    // line that can begin something else. What stands behind it on its line counts as well, which does no harm.
    void head() {
        int depth = 0;
        do {
            depth += tokens_[at_].text == "(" ? 1 : 0;
            depth -= tokens_[at_].text == ")" ? 1 : 0;
            take();
        } while (at_ < tokens_.size() && (depth > 0 || tokens_[at_ - 1].text != ")"));
        if (at_ >= tokens_.size() || !isWord(tokens_[at_], Word::Return)) return;
        take();
        while (at_ < tokens_.size() &&
               !(tokens_[at_].firstOnLine && endsType(tokens_[at_ - 1], tokens_[at_])))
            take();
    }
    static bool endsType(const Token& before, const Token& here) {
        static constexpr Word Types[] = {Word::Boolean, Word::Integer, Word::Fixed, Word::Real, Word::String,
                                         Word::Enum,    Word::Record,  Word::Union, Word::Set};
        const bool complete =
            before.kind == TokenKind::Name || before.text == "]" || before.text == ")" ||
            std::any_of(std::begin(Types), std::end(Types), [&](Word word) { return isWord(before, word); });
        return complete && here.kind != TokenKind::Symbol && !ascii::equal(here.text, "of");
    }

    static bool declares(const Token& before) {
        return isWord(before, Word::Const) || isWord(before, Word::Type) || isWord(before, Word::Function);
    }
    // Whether a name stands in the heads that is neither being declared nor declared in this class. Some that are, are
    // not known as such here, which does no harm.
    bool namesOthers() const {
        std::set<std::string> own;
        for (std::size_t i = 1; i < kept_.size(); ++i)
            if (declares(*kept_[i - 1])) own.insert(ascii::lowered(kept_[i]->text));
        // Behind "Class" and the names of the Uses line.
        std::size_t i = 0;
        while (i < kept_.size() && !isWord(*kept_[i], Word::Uses)) ++i;
        for (i = i == kept_.size() ? 0 : i + 1; i < kept_.size() && kept_[i]->kind == TokenKind::Name; ++i)
            continue;
        for (; i + 1 < kept_.size(); ++i) {
            if (kept_[i]->kind != TokenKind::Name || kept_[i + 1]->text == ":") continue;
            if (i > 0 && (declares(*kept_[i - 1]) || isWord(*kept_[i - 1], Word::Class))) continue;
            if (own.count(ascii::lowered(kept_[i]->text)) == 0) return true;
        }
        return false;
    }

    const std::vector<Token>& tokens_;
    std::size_t at_ = 0;
    std::vector<const Token*> kept_;
};

// ---- fields as text: `name=value` separated by blanks ----

std::string hexadecimal(Digest value) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
    return {digits, end};
}

std::string_view field(std::string_view text, std::string_view name) {
    for (std::size_t at = text.find(name); at != std::string_view::npos; at = text.find(name, at + 1)) {
        const bool whole = at == 0 || text[at - 1] == ' ' || text[at - 1] == '\n';
        if (!whole || text.substr(at + name.size(), 1) != "=") continue;
        text.remove_prefix(at + name.size() + 1);
        return text.substr(0, text.find_first_of(" \n\""));
    }
    return {};
}

bool number(std::string_view text, std::string_view name, Digest& value) {
    const std::string_view digits = field(text, name);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return !digits.empty() && error == std::errc() && end == digits.data() + digits.size();
}

std::vector<std::string> listed(std::string_view text) {
    std::vector<std::string> names;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        names.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return names;
}

}  // namespace

// Four chains side by side, since one would wait for its own multiplications.
Digest digestOf(std::string_view bytes) {
    constexpr std::size_t Lanes = 4;
    Digest lanes[Lanes] = {bytes.size() * Odd, Odd, OtherOdd, Odd ^ OtherOdd};
    Digest words[Lanes];
    const auto take = [&] {
        for (std::size_t i = 0; i < Lanes; ++i) {
            lanes[i] = (lanes[i] ^ words[i]) * OtherOdd;
            lanes[i] ^= lanes[i] >> 31;
        }
    };
    for (; bytes.size() >= sizeof words; bytes.remove_prefix(sizeof words)) {
        std::memcpy(words, bytes.data(), sizeof words);
        take();
    }
    std::fill(std::begin(words), std::end(words), 0);
    if (!bytes.empty()) std::memcpy(words, bytes.data(), bytes.size());
    take();
    return digestOf(digestOf(lanes[0], lanes[1]), digestOf(lanes[2], lanes[3]));
}

Digest digestOf(Digest first, Digest second) {
    return mixed(first * Odd + mixed(second));
}

Digest sourceDigest(const std::string& path, std::string_view text, std::string_view windows) {
    static const Digest tools =
        digestOf(digestOf(CoreText), digestOf(digestOf(systemText()), digestOf(ProductVersion)));
    return digestOf(digestOf(tools, digestOf(windows)), digestOf(digestOf(path), digestOf(text)));
}

Outline outlineOf(std::string_view text, std::string_view windows) {
    Messages silent;
    const std::vector<Token> tokens = scan(text, {}, silent);
    Outline outline;
    outline.heads = HeadsFinder(tokens).run();
    if (!windows.empty()) outline.heads.digest = digestOf(outline.heads.digest, digestOf(windows));
    std::size_t at = 0;
    while (at < tokens.size() && !isWord(tokens[at], Word::Class)) ++at;
    if (at + 1 < tokens.size()) outline.name = tokens[at + 1].text;
    if (at + 2 < tokens.size() && isWord(tokens[at + 2], Word::Uses))
        for (std::size_t i = at + 3;
             i < tokens.size() && (tokens[i].kind == TokenKind::Name || tokens[i].text == ","); ++i)
            if (tokens[i].text != ",") outline.uses.emplace_back(tokens[i].text);
    for (std::size_t i = at + 1; i + 1 < tokens.size() && !outline.isMain; ++i)
        outline.isMain = isWord(tokens[i], Word::Function) && !isWord(tokens[i - 1], Word::End) &&
                         ascii::equal(tokens[i + 1].text, "main");
    return outline;
}

Digest reachedDigest(const std::string& path, Digest heads) {
    return digestOf(digestOf(path), heads);
}

std::string recordLine(const CompileRecord& record) {
    std::string text;
    const auto put = [&text](const char* name, const std::string& value) {
        text.append(text.empty() ? "" : " ").append(name).append("=").append(value);
    };
    put("source", hexadecimal(record.source));
    put("heads", hexadecimal(record.heads.digest));
    put("open", record.heads.open ? "1" : "0");
    put("reach", hexadecimal(record.reach));
    put("object", hexadecimal(record.object));
    put("by", record.quick ? "tcc" : "cc");
    put("main", record.isMain ? "1" : "0");
    put("class", record.name);
    std::string uses;
    for (const std::string& name : record.uses.value_or(std::vector<std::string>()))
        uses.append(uses.empty() ? "" : ",").append(name);
    if (record.uses && text.size() + uses.size() + 6 <= MostComment) put("uses", uses);
    return "\"digest\",2,\"\",\"digest\",0,0,0," + quotedCell(record.name) + ",0,0,0,0,0,0,\"\",\"\",1,0," +
           quotedCell(text) + "\n";
}

std::optional<CompileRecord> findRecord(std::string_view symbolFile) {
    if (symbolFile.empty() || symbolFile.back() != '\n') return std::nullopt;
    symbolFile.remove_suffix(1);
    const std::size_t begin = symbolFile.rfind('\n');
    std::string_view line = symbolFile.substr(begin == std::string_view::npos ? 0 : begin + 1);
    if (!line.starts_with("\"digest\",") || !line.ends_with("\"")) return std::nullopt;
    line.remove_prefix(std::min(line.find("\"source="), line.size() - 1) + 1);
    CompileRecord record;
    if (!number(line, "source", record.source) || !number(line, "heads", record.heads.digest) ||
        !number(line, "reach", record.reach) || !number(line, "object", record.object))
        return std::nullopt;
    record.heads.open = field(line, "open") != "0";
    record.quick = field(line, "by") == "tcc";
    record.isMain = field(line, "main") == "1";
    record.name = field(line, "class");
    if (line.find(" uses=") != std::string_view::npos) record.uses = listed(field(line, "uses"));
    return record;
}

std::string noteText(const MakeNote& note) {
    return "inputs=" + hexadecimal(note.inputs) + "\nresult=" + hexadecimal(note.result) + "\n";
}

std::optional<MakeNote> readNote(std::string_view text) {
    MakeNote note;
    if (text.empty() || text.back() != '\n' || !number(text, "inputs", note.inputs) ||
        !number(text, "result", note.result))
        return std::nullopt;
    return note;
}

}  // namespace tarn::toolchain
