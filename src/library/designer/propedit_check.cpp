// SPDX-License-Identifier: Apache-2.0
//
// The check and the default of a value, one row of a table for each kind. Apart from FOLDER, which asks the
// disk, these functions compute on their arguments alone; none sets the error cell, and so they have no
// frames.
#include "library/designer/propedit.h"
#include "library/designer/propedit_options_internal.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <limits>

namespace tarn {
namespace {

using detail::Options;

struct KindRow {
    bool (*is)(const Options&);
    bool (*fits)(const Options&, std::string_view value);  // null: any value does
    std::string (*message)(const Options&);
    std::string (*fallback)(const Options&, std::string_view value);
};

// ---- parts that kinds share ----

constexpr std::string_view black = "0x000000";

std::string parenthesised(std::string_view text) {
    return "(" + std::string(text) + ")\n";
}

std::string oneOf(const Options& options) {
    return "One of the following options should be used.\n" + std::string(options.tail()) + "\n";
}

std::string firstLine(const Options& options) {
    return STRLINE(MAKEOPTIONSSTRING(options.text), 1);
}

std::optional<int> wholeNumber(std::string_view value) {
    return detail::numberOf(STRTRIM(value));
}

std::string same(const Options&, std::string_view value) {
    return std::string(value);
}
std::string nothing(const Options&, std::string_view) {
    return {};
}
std::string zero(const Options&, std::string_view) {
    return "0";
}
std::string blackText(const Options&, std::string_view) {
    return std::string(black);
}
std::string firstLineText(const Options& options, std::string_view) {
    return firstLine(options);
}

bool hasLines(const Options& options) {
    return !MAKEOPTIONSSTRING(options.text).empty();
}

// ---- single kinds ----

bool isBooleanWord(const Options&, std::string_view value) {
    constexpr std::string_view words[] = {"True", "False", "Yes", "No", "T", "F", "Y", "N"};
    return std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view word) { return ascii::equal(word, value); });
}

std::string lettersOf(const Options& options) {
    std::size_t at = options.inside;
    const std::string word = options.opener == '(' ? NextWord(options.text, at) : std::string();
    return word.size() >= 2 && word[0] == '"' ? word.substr(1, word.size() - 2) : std::string();
}

bool isBasicColour(const Options&, std::string_view value) {
    const std::optional<int> number = wholeNumber(value);
    return number && std::find(BasicColours.begin(), BasicColours.end(),
                               static_cast<std::uint32_t>(*number)) != BasicColours.end();
}

bool selectsEnum(const Options& options, std::string_view value) {
    const std::optional<int> number = detail::leadingNumberOf(value);
    return number && *number >= 0 && *number < STRLINES(MAKEOPTIONSSTRING(options.text));
}

std::string enumMessage(const Options& options) {
    std::string list;
    const std::string lines = MAKEOPTIONSSTRING(options.text);
    for (const std::string_view line : detail::linesOf(lines))
        list.append(list.empty() ? "" : " ").append(line);
    return "One of the following options should be used.\n" + parenthesised(list);
}

bool folderExists(const Options&, std::string_view value) {
    return !value.empty() && os::infoOf(STRREPLACE(value, "\\", "/")).folder;
}

std::string folderFallback(const Options& options, std::string_view value) {
    return folderExists(options, value) ? std::string(value) : GETCURDIR();
}

bool selectsNumber(const Options& options, std::string_view value) {
    const std::optional<int> number = detail::leadingNumberOf(value);
    const std::string lines = MAKEOPTIONSSTRING(options.text);
    const auto is = [&](std::string_view line) { return detail::leadingNumberOf(line) == number; };
    const std::vector<std::string_view> all = detail::linesOf(lines);
    return number && std::any_of(all.begin(), all.end(), is);
}

bool isUnionOfBits(const Options& options, std::string_view value) {
    const std::optional<int> number = wholeNumber(value);
    int bits = 0;
    const std::string lines = MAKEOPTIONSSTRING(options.text);
    for (const std::string_view line : detail::linesOf(lines))
        bits |= detail::leadingNumberOf(line).value_or(0);
    return number && (*number & ~bits) == 0;
}

std::string bitsMessage(const Options& options) {
    const std::string_view inside = options.text.substr(options.inside - 1);
    return "Any number of the following options should be used.\n" +
           parenthesised(inside.substr(0, inside.rfind('}')));
}

int countOfNumbers(const Options& options) {
    constexpr std::int64_t most = 1000;
    const detail::Range range = detail::rangeOf(options);
    if (!range.both()) return 0;
    const std::int64_t count = std::int64_t{*range.upper} - *range.lower + 1;
    return static_cast<int>(std::clamp<std::int64_t>(count, 0, most));
}

// What has no blank between is one word, such as "1-2" and a number with its sign behind another.
bool isListOfNumbers(const Options& options, std::string_view value) {
    std::size_t at = 1;
    for (int left = countOfNumbers(options); left > 0; --left) {
        if (!detail::decimalOf(NextWord(value, at))) return false;
        if (at <= value.size() && !ISSPACE(value[at - 1])) return false;
    }
    return STRTRIM(value.substr(std::min(at - 1, value.size()))).empty();
}

std::string zeros(const Options& options, std::string_view) {
    std::string text;
    for (int left = countOfNumbers(options); left > 0; --left) text += text.empty() ? "0" : " 0";
    return text;
}

bool isInRange(const Options& options, std::string_view value) {
    const std::optional<int> number = detail::decimalOf(STRTRIM(value));
    const detail::Range range = detail::rangeOf(options);
    return number && *number >= range.low() && *number <= range.high();
}

std::string rangeMessage(const Options& options) {
    const detail::Range range = detail::rangeOf(options);
    const std::string bounds = "between " + STR(range.low()) + " and " + STR(range.high());
    return "A number should be used.\n" + parenthesised(range.both() ? bounds : "must consist of digits");
}

std::string lowest(const Options& options, std::string_view) {
    const int low = detail::rangeOf(options).low();
    return low > 0 ? STR(low) : "0";
}

bool isName(const Options& options, std::string_view value) {
    const detail::Range range = detail::rangeOf(options);
    const auto length = static_cast<std::int64_t>(value.size());
    return (value.empty() || ISSYMBOLSTR(value)) && length >= range.low() && length <= range.high();
}

std::string nameMessage(const Options& options) {
    const detail::Range range = detail::rangeOf(options);
    const std::string limits = range.any()
                                   ? " with length of " + STR(range.low()) + " to " + STR(range.high())
                                   : " with a max length of " + STR(std::numeric_limits<int>::max());
    return "A name should be used.\n" + parenthesised("consisting of letters, numbers, or '_'" + limits);
}

bool isListedString(const Options& options, std::string_view value) {
    return STRFIND("\"" + std::string(value) + "\"", options.text) > 0;
}

std::optional<int> longest(const Options& options) {
    std::size_t at = options.inside;
    return options.opener == '(' ? detail::decimalOf(NextWord(options.text, at)) : std::nullopt;
}

bool isShortEnough(const Options& options, std::string_view value) {
    const std::optional<int> most = longest(options);
    return !most || static_cast<std::int64_t>(value.size()) <= *most;
}

std::string stringMessage(const Options& options) {
    const std::optional<int> most = longest(options);
    return "A string should be used.\n" +
           parenthesised("consisting of any characters" +
                         (most ? " with a max length of " + STR(*most) : std::string()));
}

// The first row that recognises an options text holds; a text that none does allows anything.
const KindRow kinds[] = {
    {[](const Options& o) { return o.is("BOOLEAN"); }, isBooleanWord,
     [](const Options&) {
         return std::string("A True/False value should be used.\n(True, False, Yes, No, T, F, Y, N)\n");
     },
     [](const Options&, std::string_view) { return std::string("False"); }},
    {[](const Options& o) { return o.is("CHAR"); },
     [](const Options& o, std::string_view value) {
         return value.size() == 1 && lettersOf(o).find(value) != std::string::npos;
     },
     [](const Options& o) {
         return "One of the following letters should be used, with lower or upper case as shown.\n" +
                parenthesised(lettersOf(o));
     },
     [](const Options& o, std::string_view) { return lettersOf(o).substr(0, 1); }},
    {[](const Options& o) { return o.isBasicColour(); }, isBasicColour,
     [](const Options&) {
         return "One of the following color values should be used.\n" + parenthesised(COLORSTOHEX());
     },
     blackText},
    {[](const Options& o) { return o.isColour(); },
     [](const Options&, std::string_view value) { return wholeNumber(value).has_value(); },
     [](const Options&) {
         return std::string("A color value should be used.\n"
                            "(0xBBGGRR where BB=blue, GG=green, RR=red byte)\n");
     },
     blackText},
    {[](const Options& o) { return o.is("CONST"); }, nullptr, nullptr, same},
    {[](const Options& o) { return o.is("ENUM", '('); }, selectsEnum, enumMessage, zero},
    {[](const Options& o) { return o.is("FILENAME"); }, nullptr, nullptr, same},
    {[](const Options& o) { return o.is("FOLDER"); }, folderExists,
     [](const Options&) {
         return std::string("A folder name should be used\n(must be a drive letter and a full directory "
                            "path starting from the root directory)\n");
     },
     folderFallback},
    {[](const Options& o) { return o.is("INTEGER", '(') && hasLines(o); }, selectsNumber, oneOf,
     firstLineText},
    {[](const Options& o) { return o.is("INTEGER", '{'); }, isUnionOfBits, bitsMessage, zero},
    {[](const Options& o) { return o.is("INTEGER", '['); }, isListOfNumbers,
     [](const Options& o) {
         return "A list of numbers should be used.\n" +
                parenthesised(STR(countOfNumbers(o)) + " numbers total");
     },
     zeros},
    {[](const Options& o) { return o.is("INTEGER"); }, isInRange, rangeMessage, lowest},
    {[](const Options& o) { return o.is("NAME"); }, isName, nameMessage,
     [](const Options&, std::string_view) { return std::string("Name"); }},
    {[](const Options& o) { return o.is("STRING") && hasLines(o); }, isListedString, oneOf, firstLineText},
    {[](const Options& o) { return o.is("STRING"); }, isShortEnough, stringMessage, nothing},
};

}  // namespace

ValueCheck CHECKVALUE(std::string_view text, std::string_view value) {
    const Options options(text);
    for (const KindRow& kind : kinds) {
        if (!kind.is(options)) continue;
        const bool fine = kind.fits == nullptr || kind.fits(options, value);
        return {fine ? std::string() : kind.message(options), kind.fallback(options, value)};
    }
    return {"", std::string(value)};
}

namespace {

std::string booleanWord(const Options&, std::string_view value) {
    constexpr std::string_view yes[] = {"Y", "YES", "T", "TRUE"}, no[] = {"N", "NO", "F", "FALSE"};
    const auto is = [&](std::string_view word) { return ascii::equal(word, value); };
    if (std::any_of(std::begin(yes), std::end(yes), is)) return "True";
    if (std::any_of(std::begin(no), std::end(no), is)) return "False";
    return std::string(value);
}

std::string withoutLabel(const Options&, std::string_view value) {
    std::size_t at = 1;
    const std::string number = NextWord(value, at);
    const bool labelled = at <= value.size() && value[at - 1] == '-' && detail::numberOf(number);
    return labelled ? number : std::string(value);
}

// With the kind of separator that the path itself has.
std::string folderName(const Options&, std::string_view value) {
    const bool closed = value.ends_with('/') || value.ends_with('\\');
    const bool backslashes =
        value.find('\\') != std::string_view::npos && value.find('/') == std::string_view::npos;
    if (closed || value.empty()) return std::string(value);
    return std::string(value) + (backslashes ? "\\" : "/");
}

constexpr struct {
    std::string_view word;
    std::string (*normal)(const Options&, std::string_view value);
} normalForms[] = {
    {"BOOLEAN", booleanWord}, {"ENUM", withoutLabel}, {"INTEGER", withoutLabel}, {"FOLDER", folderName}};

}  // namespace

std::string detail::normalValue(std::string_view text, std::string_view value) {
    const Options options(text);
    for (const auto& form : normalForms)
        if (options.is(form.word)) return form.normal(options, value);
    return std::string(value);
}

}  // namespace tarn
