// SPDX-License-Identifier: Apache-2.0
//
// Compiling patterns. The matcher is in propedit_match.cpp.
#include "library/designer/propedit_patterns.h"

#include "kernel/run/runtime.h"
#include "library/designer/propedit.h"
#include "library/designer/propedit_items_internal.h"
#include "os/text/ascii.h"

#include <optional>

MODULE("propedit", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace detail;

namespace {

constexpr char escapeMark = '\\';
constexpr std::size_t mostInSet = 255;

// The character at a 1-based position; NUL outside the text.
char at(std::string_view text, std::size_t position) {
    return position >= 1 && position <= text.size() ? text[position - 1] : '\0';
}

// "-" at the position parts two letters or digits.
bool isRange(std::string_view pattern, std::size_t position) {
    return ISALNUM(at(pattern, position - 1)) && ISALNUM(at(pattern, position + 1));
}

// A set, from "[" to "]"; false if it is not closed, empty or too large.
bool addSet(char negator, std::string_view pattern, std::size_t& position, std::string& compiled) {
    const std::size_t count = COMPILECHARCLASS(negator, pattern, position, compiled);
    return at(pattern, position) == ']' && count >= 1 && count <= mostInSet;
}

bool addLetter(std::string_view pattern, std::size_t& position, std::string& compiled) {
    const char c = COMPILEESCAPECHAR(escapeMark, pattern, position);
    compiled += LITCHAR;
    compiled += c;
    return position <= pattern.size();
}

// The item at `last` can be repeated, once.
bool repeats(std::string_view compiled, std::size_t last) {
    const char code = at(compiled, last);
    return last > 0 && code != BOL && code != EOL && code != CLOSURE && code != OPTIONAL;
}

bool isClosure(char c) {
    return c == '*' || c == '+' || c == '?';
}

// One item of a regular expression. `last` is where the item before it starts, and then this one.
bool addRegexItem(std::string_view pattern, std::size_t& position, std::string& compiled, std::size_t& last) {
    const char c = pattern[position - 1];
    if (isClosure(c)) {
        if (!repeats(compiled, last)) return false;
        COMPILECLOSURE(c, compiled, last);
        return true;
    }
    last = compiled.size() + 1;
    if (c == '[') return addSet('^', pattern, position, compiled);
    if (c == '.')
        compiled += ANY;
    else if (c == '^' && position == 1)
        compiled += BOL;
    else if (c == '$' && position == pattern.size())
        compiled += EOL;
    else
        return addLetter(pattern, position, compiled);
    return true;
}

bool addLikeItem(std::string_view pattern, std::size_t& position, std::string& compiled) {
    switch (pattern[position - 1]) {
    case '?': compiled += ANY; return true;
    case '*': compiled.append({CLOSURE, ANY}); return true;
    case '#': compiled.append({CCL, char{10}}).append("0123456789"); return true;
    case '[': return addSet('!', pattern, position, compiled);
    default: return addLetter(pattern, position, compiled);
    }
}

}  // namespace

char COMPILEESCAPECHAR(char escape, std::string_view pattern, std::size_t& position) {
    if (at(pattern, position) != escape || position > pattern.size()) return at(pattern, position);
    const char c = at(pattern, ++position);
    return c == 'n' ? '\n' : c == 't' ? '\t' : c;
}

void COMPILERANGE(char end, std::string_view pattern, std::size_t& position, std::string& set) {
    const std::size_t before = set.size();
    bool downward = false;
    for (; position <= pattern.size() && pattern[position - 1] != end; ++position) {
        if (pattern[position - 1] == escapeMark) {
            const char c = COMPILEESCAPECHAR(escapeMark, pattern, position);
            if (position <= pattern.size()) set += c;
        } else if (pattern[position - 1] != '-' || !isRange(pattern, position)) {
            set += pattern[position - 1];
        } else {
            const char from = at(pattern, position - 1), to = at(pattern, ++position);
            downward = downward || from > to;
            for (char c = from; c < to;) set += ++c;
        }
    }
    if (downward) set.resize(before);
}

std::size_t COMPILECHARCLASS(char negator, std::string_view pattern, std::size_t& position,
                             std::string& compiled) {
    const bool negated = at(pattern, ++position) == negator;
    if (negated) ++position;
    compiled += negated ? NCCL : CCL;
    const std::size_t count = compiled.size();  // 0-based place of the count
    compiled += '\0';
    COMPILERANGE(']', pattern, position, compiled);
    const std::size_t size = compiled.size() - count - 1;
    compiled[count] = static_cast<char>(static_cast<unsigned char>(size));
    return size;
}

void COMPILECLOSURE(char character, std::string& compiled, std::size_t last) {
    if (last < 1 || last > compiled.size()) return;
    if (character == '+') {
        const std::string item = compiled.substr(last - 1, PATTERNSIZE(compiled, last));
        compiled += CLOSURE;
        compiled += item;
    } else {
        compiled.insert(last - 1, 1, character == '*' ? CLOSURE : OPTIONAL);
    }
}

CompiledPattern COMPILEREGEXPATTERN(std::string_view pattern) {
    FRAME(COMPILEREGEXPATTERN);
    STAMP();
    std::string compiled;
    std::size_t last = 0;
    for (std::size_t position = 1; position <= pattern.size(); ++position)
        if (!addRegexItem(pattern, position, compiled, last)) return {"", true};
    return {std::move(compiled), false};
}

CompiledPattern COMPILELIKEPATTERN(std::string_view pattern) {
    FRAME(COMPILELIKEPATTERN);
    STAMP();
    std::string compiled(1, BOL);
    for (std::size_t position = 1; position <= pattern.size(); ++position)
        if (!addLikeItem(pattern, position, compiled)) return {"", true};
    compiled += EOL;
    return {std::move(compiled), false};
}

// ---- from source pattern to answer ----

bool ISMATCH(std::string_view text, std::string_view pattern) {
    FRAME(ISMATCH);
    STAMP();
    return GETMATCHPOS(text, pattern).end > 0;
}

MatchPlace GETMATCHPOS(std::string_view text, std::string_view pattern) {
    FRAME(GETMATCHPOS);
    STAMP();
    const CompiledPattern compiled = COMPILEREGEXPATTERN(pattern);
    STAMP();
    Assert(!compiled.failed, "Regular expression is invalid");
    if (compiled.failed) return {};
    STAMP();
    return REGEXMATCH(text, compiled.items);
}

bool ISLIKE(std::string_view text, std::string_view pattern) {
    FRAME(ISLIKE);
    STAMP();
    const CompiledPattern compiled = COMPILELIKEPATTERN(pattern);
    STAMP();
    Assert(!compiled.failed, "LIKE expression is invalid");
    if (compiled.failed) return false;
    STAMP();
    return REGEXMATCH(text, compiled.items).end > 0;
}

}  // namespace tarn
