// SPDX-License-Identifier: GPL-3.0-or-later
//
// Colouring rules and the scanner that follows them. The rules come as one text, a rule on each line:
//   word - setting              a word, in any case
//   delimiters - setting        each character begins and ends a string, which ends with its line at the
//   latest starter ##EOL setting       from here to the end of the line
// A setting is "0xBBGGRR" and the words BOLD and ITALIC. A line that is no rule is passed over.
// Every line is coloured by itself, so a change needs its own line only. Cost: linear in the text, one hash a
// word.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarn::platform::qt {

struct TokenStyle {
    int colour = 0;  // 0xBBGGRR
    bool bold = false, italic = false;
    friend bool operator==(const TokenStyle&, const TokenStyle&) = default;
};

class TokenRules {
public:
    TokenRules() = default;
    explicit TokenRules(std::string_view text);
    [[nodiscard]] bool empty() const { return styles_.empty(); }
    // Style number n of `colour` is styles()[n - 1]; 0 is plain text. At most MaxStyles are kept apart.
    [[nodiscard]] const std::vector<TokenStyle>& styles() const { return styles_; }
    // Fills one style number for each byte of `text`, which begins at the start of a line.
    void colour(std::string_view text, std::string& styles) const;

    static constexpr int MaxStyles = 31;

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view word) const;
    };
    struct Same {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };
    void addRule(std::string_view line);
    char styleOf(std::string_view setting);
    [[nodiscard]] std::size_t commentAt(std::string_view text, std::size_t at, char& style) const;

    std::vector<TokenStyle> styles_;
    std::unordered_map<std::string, char, Hash, Same> words_;
    std::vector<std::pair<std::string, char>> comments_;
    char strings_[256] = {};  // style of the string that a character begins, 0 if it begins none
    bool starts_[256] = {};   // a comment may begin with this character
};

}  // namespace tarn::platform::qt
