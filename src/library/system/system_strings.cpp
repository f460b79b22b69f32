// SPDX-License-Identifier: Apache-2.0
//
// The string family. These functions compute on their arguments alone, and so have no frames.
#include "library/system/strings.h"

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/values/strings.h"
#include "library/system/constants.h"
#include "os/text/arguments.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace tarn {
namespace {

constexpr std::size_t npos = std::string_view::npos;

// The first `c` at or behind `from`, in either case; npos if there is none. Both cases are looked for in one
// stretch after another, which grow: one case that never comes must not cost the whole text at each call.
std::size_t findLetter(std::string_view text, char c, std::size_t from) {
    const char small = ascii::lower(c), big = ascii::upper(c);
    if (small == big) return text.find(c, from);
    for (std::size_t size = 64; from < text.size(); size *= 2) {
        const std::string_view stretch = text.substr(from, size);
        const std::size_t first = std::min(stretch.find(small), stretch.find(big));
        if (first != npos) return from + first;
        from += stretch.size();
    }
    return npos;
}

// A search that never looks at a character of the text twice, for texts that would make the plain way slow:
// the ends of `what` that are also its beginnings tell how far it can be shifted.
class SteadyFinder {
public:
    explicit SteadyFinder(std::string_view what) : what_(what), border_(what.size()) {
        for (std::size_t i = 1, length = 0; i < what.size();) {
            if (same(what[i], what[length]))
                border_[i++] = ++length;
            else if (length > 0)
                length = border_[length - 1];
            else
                border_[i++] = 0;
        }
    }
    [[nodiscard]] std::size_t next(std::string_view text, std::size_t from) const {
        std::size_t matched = 0;
        for (std::size_t i = from; i < text.size(); ++i) {
            while (matched > 0 && !same(text[i], what_[matched])) matched = border_[matched - 1];
            if (same(text[i], what_[matched])) ++matched;
            if (matched == what_.size()) return i + 1 - matched;
        }
        return npos;
    }

private:
    static bool same(char a, char b) { return ascii::upper(a) == ascii::upper(b); }
    std::string_view what_;
    std::vector<std::size_t> border_;
};

// Finds one text in another from successive places.
class Finder {
public:
    Finder(std::string_view what, std::string_view text, bool ignoreCase)
        : what_(what), text_(text), ignoreCase_(ignoreCase) {}
    std::size_t next(std::size_t from) {
        if (what_.empty() || from > text_.size()) return npos;
        if (!ignoreCase_) return exact(from);
        if (steady_) return steady_->next(text_, from);
        std::size_t spent = 0;  // characters compared in vain
        for (std::size_t at = findLetter(text_, what_[0], from); at != npos;
             at = findLetter(text_, what_[0], at + 1)) {
            if (what_.size() > text_.size() - at) return npos;
            const std::size_t matched = matchAt(at);
            if (matched == what_.size()) return at;
            spent += matched;
            if (spent > Patience + 4 * (at - from)) return (steady_.emplace(what_)).next(text_, at + 1);
        }
        return npos;
    }

private:
    static constexpr std::size_t Patience = 4096;
    [[nodiscard]] std::size_t exact(std::size_t from) const {
        if (what_.empty() || text_.size() - from < what_.size()) return what_.empty() ? from : npos;
        const void* const found =
            ::memmem(text_.data() + from, text_.size() - from, what_.data(), what_.size());
        return found == nullptr ? npos
                                : static_cast<std::size_t>(static_cast<const char*>(found) - text_.data());
    }
    [[nodiscard]] std::size_t matchAt(std::size_t at) const {
        std::size_t n = 0;
        while (n < what_.size() && ascii::upper(text_[at + n]) == ascii::upper(what_[n])) ++n;
        return n;
    }
    std::string_view what_, text_;
    bool ignoreCase_;
    std::optional<SteadyFinder> steady_;
};

std::string_view trimmed(std::string_view text, bool left, bool right) {
    while (left && !text.empty() && ascii::isSpace(text.front())) text.remove_prefix(1);
    while (right && !text.empty() && ascii::isSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::size_t clamped(int count, std::string_view text) {
    return count <= 0 ? 0 : std::min(text.size(), static_cast<std::size_t>(count));
}

std::size_t startOf(int position) {
    return position <= 1 ? 0 : static_cast<std::size_t>(position) - 1;
}

// Calls `put` with each part until it gives false.
template <class Put>
void eachPart(std::string_view text, std::string_view separator, int most, Put put) {
    if (text.empty()) return;
    Finder finder(separator, text, false);
    std::size_t done = 0;
    for (int part = 1; part != most; ++part) {
        const std::size_t at = finder.next(done);
        if (at == npos) break;
        if (!put(text.substr(done, at - done))) return;
        done = at + separator.size();
    }
    put(text.substr(done));
}

}  // namespace

int STRFIND(std::string_view what, std::string_view text, int from, bool ignoreCase) {
    const std::size_t at = Finder(what, text, ignoreCase).next(startOf(from));
    return at == npos ? 0 : static_cast<int>(at) + 1;
}

std::string STRLEFT(std::string_view text, int count) {
    return std::string(text.substr(0, clamped(count, text)));
}

std::string STRRIGHT(std::string_view text, int count) {
    return std::string(text.substr(text.size() - clamped(count, text)));
}

std::string STRTRIM(std::string_view text) {
    return std::string(trimmed(text, true, true));
}
std::string STRLTRIM(std::string_view text) {
    return std::string(trimmed(text, true, false));
}
std::string STRRTRIM(std::string_view text) {
    return std::string(trimmed(text, false, true));
}
std::string STRLTRIMCRLF(std::string_view text) {
    return std::string(text.substr(std::min(text.find_first_not_of("\r\n"), text.size())));
}
std::string STRRTRIMCRLF(std::string_view text) {
    return std::string(ascii::withoutLineEnd(text));
}
std::string STRLOWER(std::string_view text) {
    return ascii::lowered(text);
}
std::string STRUPPER(std::string_view text) {
    return ascii::uppered(text);
}
bool STREQUAL(std::string_view a, std::string_view b) {
    return ascii::equal(a, b);
}

int STRLINES(std::string_view text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

std::string STRLINE(std::string_view text, int n) {
    if (n < 1) return {};
    std::string_view line;
    for (; n > 0; --n) {
        if (text.empty()) return {};
        line = ascii::takeLine(text);
    }
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return std::string(line);
}

std::string STRNL2CRNL(std::string_view text) {
    std::string out;
    out.reserve(text.size() + static_cast<std::size_t>(STRLINES(text)));
    char before = '\0';
    for (const char c : text) {
        if (c == '\n' && before != '\r') out += '\r';
        out += c;
        before = c;
    }
    return out;
}

std::string STRADDQUOTES(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string STRREMOVEQUOTES(std::string_view text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
    return std::string(text);
}

std::string STRREPLACE(std::string_view text, std::string_view what, std::string_view with, bool ignoreCase,
                       int from, int most) {
    Finder finder(what, text, ignoreCase);
    std::string out;
    std::size_t done = 0;
    int count = 0;
    for (std::size_t at = finder.next(startOf(from)); at != npos; at = finder.next(done)) {
        if (out.empty()) out.reserve(text.size());
        out.append(text.substr(done, at - done)).append(with);
        done = at + what.size();
        if (++count == most) break;
    }
    out.append(text.substr(done));
    return out;
}

std::string STRMAKE(int count, int character) {
    return count <= 0 ? std::string()
                      : std::string(static_cast<std::size_t>(count), static_cast<char>(character));
}

std::string STRNAMECASE(std::string_view text) {
    std::string out = STRLOWER(text);
    bool inside = false;  // behind a letter, a digit or "_"
    for (char& c : out) {
        if (!inside) c = ascii::upper(c);
        inside = ascii::isSymbol(c);
    }
    return out;
}

std::string LIMITLINES(std::string_view text, int most) {
    const bool ended = text.empty() || text.back() == '\n';
    if (STRLINES(text) + (ended ? 0 : 1) <= most) return std::string(text);
    std::string_view rest = text;
    for (int n = 1; n < most; ++n) ascii::takeLine(rest);
    std::string out(text.substr(0, text.size() - rest.size()));
    out += "...(more)...";
    if (ended) out += '\n';
    return out;
}

bool ISDIGITS(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), ascii::isDigit);
}

StringPair STRSPLIT(std::string_view text) {
    constexpr std::string_view Blanks = " \t";
    const std::size_t start = std::min(text.find_first_not_of(Blanks), text.size());
    text = text.substr(start, text.find_last_not_of(Blanks) + 1 - start);
    const std::size_t end = std::min(text.find_first_of(Blanks), text.size());
    const std::size_t next = std::min(text.find_first_not_of(Blanks, end), text.size());
    return {std::string(text.substr(0, end)), std::string(text.substr(next))};
}

StringPair STRSPLIT(std::string_view text, std::string_view separator) {
    const std::size_t at = Finder(separator, text, false).next(0);
    if (at == npos) return {std::string(text), {}};
    return {std::string(text.substr(0, at)), std::string(text.substr(at + separator.size()))};
}

std::vector<std::string> STRSPLIT(std::string_view text, std::string_view separator, int most) {
    std::vector<std::string> parts;
    eachPart(text, separator, most, [&](std::string_view part) {
        parts.emplace_back(part);
        return true;
    });
    return parts;
}

void STRSPLIT(std::string_view text, std::string_view separator, int most, ListDescriptor* parts) {
    if (KindOf(parts) != KindList) return SetError(ERR_LIST_TYPE);
    const Kind kind = ListElementKind(parts);
    if (kind != KindString && kind != KindNone) return SetError(ERR_LIST_TYPE);
    const std::string kept(text);  // the text may be a string of the list
    ListClear(parts);
    eachPart(kept, separator, most, [&](std::string_view part) {
        const std::int32_t before = ListCount(parts);
        ListAppend(String(part).get(), KindString, parts);
        return ListCount(parts) > before;
    });
}

std::vector<std::string> SPLITARGUMENTS(std::string_view line) {
    return os::splitArguments(line);
}
std::string QUOTEARGUMENT(std::string_view argument) {
    return os::quotedArgument(argument);
}

std::string KEYSTR(int keyCode) {
    struct Name {
        int code;
        const char* text;
    };
    static constexpr Name names[] = {{KEY_UP, "Up"},         {KEY_DOWN, "Down"},     {KEY_LEFT, "Left"},
                                     {KEY_RIGHT, "Right"},   {KEY_DELETE, "Del"},    {KEY_END, "End"},
                                     {KEY_RETURN, "Enter"},  {KEY_ESCAPE, "Escape"}, {KEY_HOME, "Home"},
                                     {KEY_PAGEDOWN, "PgDn"}, {KEY_PAGEUP, "PgUp"}};
    if (keyCode >= KEY_CTRL_A && keyCode <= KEY_CTRL_Z)
        return std::string("Ctrl+") + static_cast<char>('A' + (keyCode - KEY_CTRL_A));
    if (keyCode >= KEY_F1 && keyCode <= KEY_F12)
        return std::string("F").append(std::to_string(keyCode - KEY_F1 + 1));
    for (const Name& name : names)
        if (name.code == keyCode) return name.text;
    return {};
}

}  // namespace tarn
