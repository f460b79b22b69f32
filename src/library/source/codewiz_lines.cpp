// SPDX-License-Identifier: Apache-2.0
//
// What is done with the lines of a template when its parameters have their values: function forms, conditions, and lines
// that go on.
#include "library/source/codewiz_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("codewiz", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// ---- function forms ----

std::string escaped(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF", letters = "tnr\"\\", meant = "\t\n\r\"\\";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (const std::size_t place = meant.find(c); place != std::string_view::npos)
            result.append({'\\', letters[place]});
        else if (byte >= 32 && byte <= 126)
            result += c;
        else
            result.append({'\\', 'x', digits[byte >> 4U], digits[byte & 15U]});
    }
    return result;
}

// In the order in which they are applied.
constexpr struct {
    std::string_view head;
    std::string (*apply)(std::string_view text);
} forms[] = {{"#UCASE(", STRUPPER},
             {"#LCASE(", STRLOWER},
             {"#FILEGETFNAME(", FILEGETFNAME},
             {"#FILEGETEXT(", FILEGETEXT},
             {"#STRESCAPE(", escaped}};

// The place of `head` from `at` on, in any case.
std::size_t findHead(std::string_view text, std::string_view head, std::size_t at) {
    while ((at = text.find('#', at)) != std::string_view::npos && !detail::startsWith(text.substr(at), head))
        ++at;
    return at;
}

std::string applyForm(std::string_view text, std::string_view head, std::string (*apply)(std::string_view)) {
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = 0; (at = findHead(text, head, done)) != std::string_view::npos;) {
        const std::size_t from = at + head.size(), end = std::min(text.find(')', from), text.size());
        result.append(text, done, at - done).append(apply(text.substr(from, end - from)));
        done = std::min(end + 1, text.size());
    }
    return result.append(text, done);
}

// ---- conditions ----

// A run of other characters than blanks, or what stands between two quotes of one kind, without them.
std::string_view takeToken(std::string_view line, std::size_t& position) {
    std::size_t at = std::min(position - 1, line.size());
    while (at < line.size() && ascii::isSpace(line[at])) ++at;
    const bool quote = at < line.size() && (line[at] == '"' || line[at] == '\'');
    const std::size_t close = quote ? line.find(line[at], at + 1) : std::string_view::npos;
    if (close != std::string_view::npos) {
        position = close + 2;
        return line.substr(at + 1, close - at - 1);
    }
    std::size_t end = at;
    while (end < line.size() && !ascii::isSpace(line[end])) ++end;
    position = end + 1;
    return line.substr(at, end - at);
}

constexpr std::string_view IfCommand = "#IF", ElseCommand = "#ELSE", EndCommand = "#END", Comment = "#//";

// Relations one behind the other, from left to right.
bool isTrue(std::string_view line) {
    std::size_t position = IfCommand.size() + 1;
    bool result = PARSERELEXP(line, position);
    while (true) {
        const std::string_view word = takeToken(line, position);
        const bool both = ascii::equal(word, "#AND");
        if (!both && !ascii::equal(word, "#OR")) return result;
        const bool next = PARSERELEXP(line, position);
        result = both ? result && next : result || next;
    }
}

// Which lines are kept. `skip` is the depth of the block whose lines are left out; 0: none are.
class Blocks {
public:
    // True for a line that is text and stays.
    bool keeps(std::string_view line) {
        const std::string_view command = detail::trimmed(line);
        if (detail::startsWith(command, Comment)) return false;
        if (detail::startsWith(command, IfCommand)) return begin(command);
        if (detail::startsWith(command, ElseCommand)) return flip();
        if (detail::startsWith(command, EndCommand)) return end();
        return skip_ == 0;
    }

private:
    bool begin(std::string_view command) {
        ++depth_;
        if (skip_ == 0 && !isTrue(command)) skip_ = depth_;
        return false;
    }
    bool flip() {
        if (skip_ == 0)
            skip_ = depth_;
        else if (skip_ == depth_)
            skip_ = 0;
        return false;
    }
    bool end() {
        if (skip_ == depth_) skip_ = 0;
        --depth_;
        return false;
    }

    int depth_ = 0, skip_ = 0;
};

}  // namespace

bool PARSERELEXP(std::string_view line, std::size_t& position) {
    FRAME(PARSERELEXP);
    const std::string_view left = takeToken(line, position), relation = takeToken(line, position),
                           right = takeToken(line, position);
    if (relation == "=") return left == right;
    if (relation == "<>") return left != right;
    if (!ascii::equal(relation, "IN") || left.empty()) return false;
    return ("," + std::string(right) + ",").find(left) != std::string::npos;
}

std::string detail::applyForms(std::string text) {
    for (const auto& form : forms) text = applyForm(text, form.head, form.apply);
    return text;
}

std::string detail::applyLineCommands(std::string_view text) {
    Blocks blocks;
    std::string result;
    while (!text.empty()) {
        const std::string_view line = ascii::takeLine(text);
        if (blocks.keeps(line)) result += line;
    }
    return result;
}

std::string detail::joinContinuedLines(std::string_view text, bool crlf) {
    std::string result;
    while (!text.empty()) {
        const std::string_view whole = ascii::takeLine(text), line = ascii::withoutLineEnd(whole);
        if (line.ends_with('\\')) {
            result += line.substr(0, line.size() - 1);
            continue;
        }
        result += line;
        if (crlf)
            result += "\r\n";
        else if (whole.ends_with('\n'))
            result += '\n';
    }
    return result;
}

}  // namespace tarn
