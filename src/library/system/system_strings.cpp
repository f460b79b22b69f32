// SPDX-License-Identifier: Apache-2.0
//
// The string family of the system library. These functions compute on their arguments alone, can neither fail
// nor set the error cell, and so have no frames. Letter case is that of ASCII; other bytes are compared as
// they are.
#include "library/system/system.h"

#include "kernel/text/numbers.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cstring>

namespace tarn {
namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view HexDigits = "0123456789ABCDEF";

// The first `c` at or behind `from`, in either case; npos if there is none. Remembers where the next of each
// case stands, so that a text with many of one and few of the other is not searched again and again.
class CaseFinder {
public:
    CaseFinder(std::string_view text, char c) : text_(text), small_(ascii::lower(c)), big_(ascii::upper(c)) {}
    std::size_t next(std::size_t from) {
        advance(nextSmall_, small_, from);
        if (big_ == small_) return nextSmall_;
        advance(nextBig_, big_, from);
        return std::min(nextSmall_, nextBig_);
    }

private:
    void advance(std::size_t& at, char c, std::size_t from) const {
        if (at == unknown || at < from) at = text_.find(c, from);
    }
    static constexpr std::size_t unknown = npos - 1;
    std::string_view text_;
    char small_, big_;
    std::size_t nextSmall_ = unknown, nextBig_ = unknown;
};

// Finds one text in another from successive places.
class Finder {
public:
    Finder(std::string_view what, std::string_view text, bool ignoreCase)
        : what_(what), text_(text), ignoreCase_(ignoreCase), first_(text, what.empty() ? '\0' : what[0]) {}
    std::size_t next(std::size_t from) {
        if (what_.empty() || from > text_.size()) return npos;
        if (!ignoreCase_) return text_.find(what_, from);
        for (std::size_t at = first_.next(from); at != npos; at = first_.next(at + 1)) {
            if (what_.size() > text_.size() - at) return npos;
            if (ascii::equal(text_.substr(at, what_.size()), what_)) return at;
        }
        return npos;
    }

private:
    std::string_view what_, text_;
    bool ignoreCase_;
    CaseFinder first_;
};

std::string_view trimmed(std::string_view text, bool left, bool right) {
    while (left && !text.empty() && ascii::isSpace(text.front())) text.remove_prefix(1);
    while (right && !text.empty() && ascii::isSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::size_t clamped(int count, std::string_view text) {
    return count <= 0 ? 0 : std::min(text.size(), static_cast<std::size_t>(count));
}

}  // namespace

int STRFIND(std::string_view what, std::string_view text, int from, bool ignoreCase) {
    const std::size_t start = from <= 1 ? 0 : static_cast<std::size_t>(from) - 1;
    const std::size_t at = Finder(what, text, ignoreCase).next(start);
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

std::string STRREPLACE(std::string_view text, std::string_view what, std::string_view with, bool ignoreCase) {
    Finder finder(what, text, ignoreCase);
    std::string out;
    std::size_t done = 0;
    for (std::size_t at = finder.next(0); at != npos; at = finder.next(done)) {
        if (out.empty()) out.reserve(text.size());
        out.append(text.substr(done, at - done)).append(with);
        done = at + what.size();
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

std::string STR(int value) {
    return std::to_string(value);
}

std::string HEXSTR(std::uint32_t value, int width) {
    std::string digits;
    for (; value != 0; value >>= 4) digits.insert(digits.begin(), HexDigits[value & 15]);
    const std::size_t wanted = static_cast<std::size_t>(std::clamp(width, 1, 255));
    if (digits.size() < wanted) digits.insert(0, wanted - digits.size(), '0');
    return digits;
}

std::uint32_t HEXVAL(std::string_view text) {
    std::uint32_t value = 0;
    for (const char c : text) {
        const int digit = ascii::hexDigit(c);
        if (digit < 0) break;
        value = value << 4 | static_cast<std::uint32_t>(digit);
    }
    return value;
}

bool ISDIGITS(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), ascii::isDigit);
}

int CVTI(std::string_view text, bool& ok) {
    std::int32_t value = 0;
    std::size_t end = 0;
    IntegerFromText(text, value, end);
    ok = end != 0 && end == text.size();
    return ok ? value : 0;
}

std::string KEYSTR(int keyCode) {
    struct Name {
        int code;
        const char* text;
    };
    static constexpr Name names[] = {{0x26, "Up"},   {0x28, "Down"}, {0x25, "Left"},  {0x27, "Right"},
                                     {0x2E, "Del"},  {0x23, "End"},  {0x0D, "Enter"}, {0x1B, "Escape"},
                                     {0x24, "Home"}, {0x22, "PgDn"}, {0x21, "PgUp"}};
    if (keyCode >= 0x1141 && keyCode <= 0x115A)
        return std::string("Ctrl+") + static_cast<char>('A' + (keyCode - 0x1141));
    if (keyCode >= 0x70 && keyCode <= 0x7B) return std::string("F").append(STR(keyCode - 0x70 + 1));
    for (const Name& name : names)
        if (name.code == keyCode) return name.text;
    return {};
}

}  // namespace tarn
