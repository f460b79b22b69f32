// SPDX-License-Identifier: Apache-2.0
//
// Reading options texts: their parts, the lines to choose from, and the step through them. These functions
// compute on their arguments alone, can neither fail nor set the error cell, and so have no frames.
#include "library/designer/propedit_options_internal.h"

#include "library/designer/propedit.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <limits>

namespace tarn {
namespace detail {

Options::Options(std::string_view from) : text(from) {
    word = STRUPPER(NextWord(text, behind));
    if (!ISALPHASTR(word)) word.clear();
    std::size_t at = behind;
    while (at <= text.size() && ascii::isBlank(text[at - 1])) ++at;
    const char next = at <= text.size() ? text[at - 1] : '\0';
    if (next == '(' || next == '{' || next == '[') opener = next;
    inside = opener != '\0' ? at + 1 : behind;
}

bool Options::isBasicColour() const {
    if (!isColour()) return false;
    std::string packed(tail());
    std::erase_if(packed, ascii::isBlank);
    return packed.starts_with("(0:15)");
}

int Range::low() const {
    return lower.value_or(std::numeric_limits<int>::min());
}
int Range::high() const {
    return upper.value_or(std::numeric_limits<int>::max());
}

Range rangeOf(const Options& options) {
    if (options.opener == '\0') return {};
    Range range;
    std::size_t at = options.inside;
    range.lower = decimalOf(NextWord(options.text, at));
    while (at <= options.text.size() && ascii::isBlank(options.text[at - 1])) ++at;
    if (at > options.text.size() || options.text[at - 1] != ':') return {};
    range.upper = decimalOf(NextWord(options.text, ++at));
    return range;
}

std::optional<int> decimalOf(std::string_view text) {
    bool ok = false;
    const int number = ISDIGITSTR(text) ? CVTI(text, ok) : 0;
    return ok ? std::optional(number) : std::nullopt;
}

std::optional<int> numberOf(std::string_view text) {
    constexpr std::size_t most = 10;  // "0x" and eight digits
    if (!ascii::equal(text.substr(0, 2), "0x")) return decimalOf(text);
    if (!ISHEXSTR(text) || text.size() > most) return std::nullopt;
    return static_cast<int>(HEXVAL(text.substr(2)));
}

std::optional<int> leadingNumberOf(std::string_view text) {
    std::size_t at = 1;
    return numberOf(NextWord(text, at));
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        std::string_view line = ascii::takeLine(text);
        if (line.ends_with('\n')) line.remove_suffix(1);
        lines.push_back(line);
    }
    return lines;
}

int lineOfValue(const Options& options, const std::vector<std::string_view>& lines, std::string_view value) {
    if (value.empty()) return 1;
    const std::optional<int> number = leadingNumberOf(value);
    const auto selects = [&](std::string_view line) {
        if (number) return leadingNumberOf(line) == number;
        return !options.is("INTEGER") && ascii::equal(line.substr(0, value.size()), value);
    };
    // The line that is the value comes before those that only begin with it or its number.
    const auto same = [&](std::string_view line) { return ascii::equal(STRTRIM(line), value); };
    auto found = std::find_if(lines.begin(), lines.end(), same);
    if (found == lines.end()) found = std::find_if(lines.begin(), lines.end(), selects);
    return found == lines.end() ? 0 : static_cast<int>(found - lines.begin()) + 1;
}

}  // namespace detail

namespace {

using detail::Options;

// Reads the items behind the opener, parted by commas, up to the first that `read` refuses.
template <class Read>
std::string listOf(const Options& options, Read read) {
    std::string lines;
    std::size_t at = options.inside;
    while (read(at, lines) && NextWord(options.text, at) == ",") {}
    return lines;
}

std::string enumLines(const Options& options) {
    int place = 0;
    return listOf(options, [&](std::size_t& at, std::string& lines) {
        const std::string symbol = NextWord(options.text, at);
        if (!ISSYMBOLSTR(symbol)) return false;
        lines += STR(place++) + "-" + symbol + "\n";
        return true;
    });
}

std::string unquoted(const std::string& word) {
    const bool quoted = word.size() >= 2 && word.front() == '"' && word.back() == '"';
    return quoted ? word.substr(1, word.size() - 2) : word;
}

// The label of a number, behind its "-". Nothing is read of a part that has none.
std::string readLabel(std::string_view text, std::size_t& at) {
    std::size_t next = at;
    while (next <= text.size() && ascii::isBlank(text[next - 1])) ++next;
    if (next <= text.size() && text[next - 1] == '-') at = next + 1;
    next = at;
    const std::string word = NextWord(text, next);
    if (word.empty() || word == "," || word == ")" || word == "}") return {};
    at = next;
    return unquoted(word);
}

std::string numberLines(const Options& options) {
    const std::string_view text = options.text;
    bool range = false;
    const std::string lines = listOf(options, [&](std::size_t& at, std::string& out) {
        const std::string number = NextWord(text, at);
        if (!detail::numberOf(number)) return false;
        range = range || (at <= text.size() && text[at - 1] == ':');
        const std::string label = readLabel(text, at);
        if (!label.empty()) out += number + "-" + label + "\n";
        return !range;
    });
    return range ? std::string() : lines;
}

std::string stringLines(const Options& options) {
    if (!STRUPPER(options.text).starts_with("STRING(\"")) return {};
    return listOf(options, [&](std::size_t& at, std::string& lines) {
        const std::string string = NextWord(options.text, at);
        if (!string.starts_with('"')) return false;
        lines += unquoted(string) + "\n";
        return true;
    });
}

struct ListForm {
    std::string_view word;
    char opener;
    std::string (*lines)(const Options&);
};
constexpr ListForm listForms[] = {
    {"ENUM", '(', enumLines},
    {"INTEGER", '(', numberLines},
    {"INTEGER", '{', numberLines},
    {"STRING", '(', stringLines},
};

}  // namespace

std::string MAKEOPTIONSSTRING(std::string_view text) {
    const Options options(text);
    for (const ListForm& form : listForms)
        if (options.is(form.word, form.opener)) return form.lines(options);
    return {};
}

std::string GETNEXTVALUE(std::string_view text, std::string_view value, int step) {
    const Options options(text);
    const std::string string = options.opener == '(' ? MAKEOPTIONSSTRING(text) : std::string();
    const std::vector<std::string_view> lines = detail::linesOf(string);
    const int found = lines.empty() ? 0 : detail::lineOfValue(options, lines, value);
    if (found == 0) return std::string(value);
    const int count = static_cast<int>(lines.size());
    int line = found + std::clamp(step, -1, 1);
    if (line < 1) line = count;
    if (line > count) line = 1;
    return STRTRIM(lines[static_cast<std::size_t>(line - 1)]);
}

LengthLimits GETMINMAX(std::string_view text) {
    const Options options(text);
    const detail::Range range = options.is("NAME", '(') ? detail::rangeOf(options) : detail::Range{};
    if (!range.both()) return {};
    return {*range.lower, *range.upper, true};
}

std::string COLORSTOHEX() {
    std::string text;
    for (std::size_t i = 0; i < BasicColours.size(); ++i) {
        if (i > 0) text += i == BasicColours.size() / 2 ? ",\n" : ",";
        text += "0x" + STRLOWER(HEXSTR(BasicColours[i], 6));
    }
    return text;
}

std::string GETFILEDESCRIPTION(std::string_view extension) {
    if (extension.starts_with('.')) extension.remove_prefix(1);
    const std::string upper = STRUPPER(extension);
    constexpr struct {
        std::string_view extension, description;
    } known[] = {{"TXT", "Text Files"}, {"BMP", "Bitmap Files"}, {"ICO", "Icon Files"}};
    for (const auto& file : known)
        if (upper == file.extension) return std::string(file.description);
    return upper + " Files";
}

}  // namespace tarn
