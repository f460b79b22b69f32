// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/edit/tokens.h"

#include <algorithm>
#include <charconv>

namespace tarn::platform::qt {

namespace {

unsigned char byteOf(char c) {
    return static_cast<unsigned char>(c);
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool isWord(char c) {
    const unsigned char b = byteOf(c);
    return (b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') || (b >= '0' && b <= '9') || b == '_' || b >= 128;
}

bool same(std::string_view a, std::string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string_view trim(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

std::string_view nextWord(std::string_view& text) {
    text = trim(text);
    const std::string_view word = text.substr(0, text.find_first_of(" \t"));
    text.remove_prefix(word.size());
    return word;
}

TokenStyle parseSetting(std::string_view text) {
    TokenStyle style;
    for (auto word = nextWord(text); !word.empty(); word = nextWord(text)) {
        if (same(word, "BOLD"))
            style.bold = true;
        else if (same(word, "ITALIC"))
            style.italic = true;
        else if (word.size() > 2 && same(word.substr(0, 2), "0x"))
            std::from_chars(word.data() + 2, word.data() + word.size(), style.colour, 16);
    }
    return style;
}

bool endsLine(char c) {
    return c == '\n' || c == '\r';
}

}  // namespace

std::size_t TokenRules::Hash::operator()(std::string_view word) const {
    std::size_t hash = 1469598103934665603ULL;
    for (const char c : word) hash = (hash ^ byteOf(lower(c))) * 1099511628211ULL;
    return hash;
}

bool TokenRules::Same::operator()(std::string_view a, std::string_view b) const {
    return same(a, b);
}

TokenRules::TokenRules(std::string_view text) {
    while (!text.empty()) {
        const auto end = text.find('\n');
        addRule(text.substr(0, end));
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
}

void TokenRules::addRule(std::string_view line) {
    static constexpr std::string_view toEnd = " ##EOL ";
    if (const auto at = line.find(toEnd); at != std::string_view::npos) {
        const std::string_view starter = trim(line.substr(0, at));
        if (starter.empty()) return;
        comments_.emplace_back(starter, styleOf(line.substr(at + toEnd.size())));
        starts_[byteOf(starter[0])] = starts_[byteOf(lower(starter[0]))] = true;
        if (const char c = lower(starter[0]); c >= 'a' && c <= 'z')
            starts_[byteOf(static_cast<char>(c - 32))] = true;
        return;
    }
    const auto dash = line.rfind(" - ");
    if (dash == std::string_view::npos) return;
    const std::string_view what = trim(line.substr(0, dash)), setting = line.substr(dash + 3);
    if (what.empty()) return;
    if (std::any_of(what.begin(), what.end(), isWord)) {
        words_.emplace(what, styleOf(setting));  // the first rule of a word holds
        return;
    }
    const char style = styleOf(setting);
    for (const char c : what)
        if (c != ' ' && c != '\t') strings_[byteOf(c)] = style;
}

char TokenRules::styleOf(std::string_view setting) {
    const TokenStyle style = parseSetting(setting);
    auto found = std::find(styles_.begin(), styles_.end(), style);
    if (found == styles_.end()) {
        if (static_cast<int>(styles_.size()) == MaxStyles) return static_cast<char>(MaxStyles);
        found = styles_.insert(styles_.end(), style);
    }
    return static_cast<char>(found - styles_.begin() + 1);
}

// The length of the comment starter that stands at `at`, 0 if none does. A starter that ends in a letter is a
// word.
std::size_t TokenRules::commentAt(std::string_view text, std::size_t at, char& style) const {
    for (const auto& [starter, number] : comments_) {
        if (!same(text.substr(at, starter.size()), starter)) continue;
        const std::size_t end = at + starter.size();
        if (isWord(starter.back()) && end < text.size() && isWord(text[end])) continue;
        style = number;
        return starter.size();
    }
    return 0;
}

void TokenRules::colour(std::string_view text, std::string& styles) const {
    styles.assign(text.size(), 0);
    const auto fill = [&](std::size_t from, std::size_t to, char style) {
        std::fill(styles.begin() + static_cast<std::ptrdiff_t>(from),
                  styles.begin() + static_cast<std::ptrdiff_t>(to), style);
    };
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t start = i;
        const unsigned char byte = byteOf(text[i]);
        char style = 0;
        if (starts_[byte] && commentAt(text, i, style) > 0) {
            while (i < text.size() && !endsLine(text[i])) ++i;
            fill(start, i, style);
        } else if (strings_[byte] != 0) {
            ++i;
            while (i < text.size() && text[i] != text[start] && !endsLine(text[i])) ++i;
            if (i < text.size() && text[i] == text[start]) ++i;
            fill(start, i, strings_[byte]);
        } else if (isWord(text[i])) {
            while (i < text.size() && isWord(text[i])) ++i;
            const auto found = words_.find(text.substr(start, i - start));
            if (found != words_.end()) fill(start, i, found->second);
        } else {
            ++i;
        }
    }
}

}  // namespace tarn::platform::qt
