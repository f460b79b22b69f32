// SPDX-License-Identifier: Apache-2.0
#include "library/net/postrun.h"

#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <array>
#include <utility>

MODULE("netutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// ---- writing ----

constexpr std::pair<char, char> escapes[] = {{'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}, {'"', '"'}, {'\\', '\\'}};

std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        const auto* const pair =
            std::find_if(std::begin(escapes), std::end(escapes), [c](const auto& e) { return e.first == c; });
        if (pair != std::end(escapes))
            out.append(1, '\\').append(1, pair->second);
        else if (c < ' ' || c > '~')
            out.append("\\x").append(HEXSTR(static_cast<std::uint8_t>(c), 2));
        else
            out += c;
    }
    return out;
}

std::string quoted(std::string_view text) {
    return STRADDQUOTES(STRREPLACE(text, "\"", "\"\""));
}

std::string withoutNul(std::string text) {
    std::erase(text, '\0');
    return text;
}

std::string addressWord(const std::string& address) {
    return address.find_first_of(" \t\r\n\"") == std::string::npos ? address : quoted(address);
}

// ---- reading ----

class LineReader {
public:
    explicit LineReader(std::string_view line) : rest_(line) {}

    bool atEnd() {
        skipBlanks();
        return rest_.empty();
    }
    std::string word() {
        skipBlanks();
        const std::string_view taken = rest_.substr(0, rest_.find_first_of(" \t\r\n"));
        rest_.remove_prefix(taken.size());
        return std::string(taken);
    }
    // A text in quotes, or a word. False if a quote is not closed, or something stands right behind it.
    bool text(std::string& out) {
        skipBlanks();
        if (!rest_.starts_with('"')) {
            out = word();
            return !out.empty() && out.find('"') == std::string::npos;
        }
        for (out.clear(), take(); !rest_.empty(); out += take()) {
            if (rest_[0] != '"') continue;
            take();
            if (!rest_.starts_with('"')) return atBreak();
        }
        return false;
    }
    bool escapedText(std::string& out) {
        skipBlanks();
        if (!rest_.starts_with('"')) return false;
        for (out.clear(), take(); !rest_.empty();) {
            const char c = take();
            if (c == '"') return atBreak();
            if (c != '\\')
                out += c;
            else if (!escape(out))
                return false;
        }
        return false;
    }

private:
    void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size())); }
    [[nodiscard]] bool atBreak() const { return rest_.empty() || ascii::isSpace(rest_[0]); }
    char take() {
        const char c = rest_[0];
        rest_.remove_prefix(1);
        return c;
    }
    bool escape(std::string& out) {
        if (rest_.empty()) return false;
        const char c = take();
        for (const auto& [character, letter] : escapes) {
            if (letter != c) continue;
            out += character;
            return true;
        }
        if (c != 'x' || rest_.size() < 2) return false;
        const int high = ascii::hexDigit(rest_[0]), low = ascii::hexDigit(rest_[1]);
        if (high < 0 || low < 0) return false;
        rest_.remove_prefix(2);
        out += static_cast<char>(high * 16 + low);
        return true;
    }

    std::string_view rest_;
};

bool readFlags(LineReader& line, PostrunMail& mail) {
    bool ok = false;
    const std::string word = line.word();
    mail.flags = CVTI(word, ok);
    return ok && !word.empty();
}

struct Option {
    std::string_view name;
    bool (*read)(LineReader& line, PostrunMail& mail);
};
constexpr std::array<Option, 6> options = {
    {{"-provider", [](LineReader& line, PostrunMail& mail) { return line.text(mail.provider); }},
     {"-flags", readFlags},
     {"-mailto", [](LineReader& line, PostrunMail& mail) { return line.text(mail.address); }},
     {"-body", [](LineReader& line, PostrunMail& mail) { return line.escapedText(mail.body); }},
     {"-subject", [](LineReader& line, PostrunMail& mail) { return line.text(mail.subject); }},
     {"-attach", [](LineReader& line, PostrunMail& mail) { return line.text(mail.attachment); }}}};

// ---- for xdg-email ----

bool isPlainInAddress(char c) {
    return ascii::isLetter(c) || ascii::isDigit(c) ||
           std::string_view("@.-_+,~").find(c) != std::string_view::npos;
}

std::string addressUrl(std::string_view address) {
    std::string url = "mailto:";
    for (const char c : address) {
        if (isPlainInAddress(c))
            url += c;
        else
            url.append("%").append(HEXSTR(static_cast<std::uint8_t>(c), 2));
    }
    return url;
}

}  // namespace

std::string POSTRUNLINE(const PostrunMail& mail) {
    FRAME(POSTRUNLINE);
    std::string line = "-provider " + quoted(mail.provider) + " -flags " + STR(mail.flags) + " -mailto " +
                       addressWord(mail.address) + " ";
    if (!mail.body.empty()) line += "-body \"" + escaped(mail.body) + "\" ";
    if (!mail.subject.empty()) line += "-subject " + quoted(mail.subject) + " ";
    if (!mail.attachment.empty()) line += "-attach " + quoted(mail.attachment) + " ";
    return withoutNul(line);
}

std::string PARSEPOSTRUNLINE(std::string_view text, PostrunMail& mail) {
    FRAME(PARSEPOSTRUNLINE);
    mail = {};
    LineReader line(text);
    std::array<bool, options.size()> seen{};
    while (!line.atEnd()) {
        const std::string name = line.word();
        std::size_t n = 0;
        while (n < options.size() && options[n].name != name) n++;
        if (n == options.size()) return "'" + name + "' is no option.";
        if (std::exchange(seen[n], true)) return "The option '" + name + "' stands there twice.";
        if (!options[n].read(line, mail)) return "What stands behind '" + name + "' cannot be read.";
    }
    return mail.address.empty() ? "An address is needed: -mailto and the address." : std::string();
}

std::vector<std::string> XDGEMAILARGUMENTS(const PostrunMail& mail) {
    FRAME(XDGEMAILARGUMENTS);
    std::vector<std::string> arguments = {"--utf8"};
    const auto add = [&](const char* option, std::string text) {
        text = withoutNul(std::move(text));
        if (text.empty()) return;
        arguments.emplace_back(option);
        arguments.push_back(std::move(text));
    };
    std::string subject = mail.subject;
    std::replace_if(
        subject.begin(), subject.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    add("--subject", subject);
    add("--body", mail.body);
    add("--attach", mail.attachment);
    arguments.push_back(addressUrl(mail.address));
    return arguments;
}

}  // namespace tarn
