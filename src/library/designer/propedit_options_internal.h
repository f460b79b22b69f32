// SPDX-License-Identifier: Apache-2.0
//
// The parts of an options text, for the operations of propedit. Cost: linear in the text.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::detail {

// The kind word with what opens its list or range. It refers to the text it was made of.
struct Options {
    explicit Options(std::string_view text);
    std::string_view text;
    std::string word;        // in upper case; empty if the text begins with none
    char opener = '\0';      // "(", "{" or "[" behind the word, else NUL
    std::size_t behind = 1;  // 1-based position behind the word
    std::size_t inside = 1;  // and behind the opener
    [[nodiscard]] bool is(std::string_view kind, char with = '\0') const {
        return word == kind && (with == '\0' || opener == with);
    }
    [[nodiscard]] bool isColour() const { return word == "COLOUR" || word == "COLOR"; }
    [[nodiscard]] bool isBasicColour() const;  // COLOUR(0:15)
    // All behind the word, as it stands.
    [[nodiscard]] std::string_view tail() const { return text.substr(behind - 1); }
};

// The bounds of "a:b" behind the opener; neither where no ":" stands there.
struct Range {
    std::optional<int> lower, upper;
    [[nodiscard]] bool any() const { return lower || upper; }
    [[nodiscard]] bool both() const { return lower && upper; }
    [[nodiscard]] int low() const;  // the least integer if it is missing
    [[nodiscard]] int high() const;
};
Range rangeOf(const Options& options);

// A whole text that is an integer: decimal with an optional sign, or "0x" and up to eight hexadecimal digits.
std::optional<int> numberOf(std::string_view text);
std::optional<int> decimalOf(std::string_view text);
std::optional<int> leadingNumberOf(std::string_view text);  // of the first token

// The lines of a text, without their LF.
std::vector<std::string_view> linesOf(std::string_view text);
// The line that a value selects, from 1; 0 for none.
int lineOfValue(const Options& options, const std::vector<std::string_view>& lines, std::string_view value);

// A value of the sheet as it is stored: True or False for the words of a BOOLEAN, the number of a choice
// without its label, a FOLDER with a separator at its end.
std::string normalValue(std::string_view options, std::string_view value);

}  // namespace tarn::detail
