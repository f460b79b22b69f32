// SPDX-License-Identifier: Apache-2.0
// Patterns: the first line is a pattern, the rest the text. What compiles matches as plain recursion does, and bytes that
// were never compiled are told as no pattern; nothing hangs or reads beside its items.
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "library/designer/propedit_patterns.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace tarn;

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

// Gives up, with `left` below 0, where plain recursion would take long.
std::size_t plainTry(const std::string& text, std::size_t i, const std::string& items, std::size_t p,
                     int& left) {
    while (p <= items.size() && --left >= 0) {
        const char code = items[p - 1];
        const bool closure = code == '*' || code == '?';
        if (closure) ++p;
        int eats = CHARMATCH(text, i, items, p);
        const std::size_t rest = p + PATTERNSIZE(items, p);
        if (!closure) {
            if (eats < 0) return 0;
            i += static_cast<std::size_t>(eats);
            p = rest;
            continue;
        }
        std::size_t k = i;
        for (; eats > 0; eats = code == '*' ? CHARMATCH(text, k, items, p) : 0) ++k;
        for (;; --k)
            if (const std::size_t end = plainTry(text, k, items, rest, left); end > 0 || k == i || left < 0)
                return end;
    }
    return i;
}

void compare(const std::string& text, const CompiledPattern& compiled) {
    require(!compiled.failed || compiled.items.empty());
    if (compiled.failed) return;
    const MatchPlace place = REGEXMATCH(text, compiled.items);
    if (ErrorCell() == ERR_OUT_OF_STACK) return ClearError();
    require(ErrorCell() == 0);
    require(place.start == 0 ? place.end == 0 : place.start <= place.end && place.end <= text.size() + 1);
    int left = 2000;
    for (std::size_t start = 1; start <= text.size() + 1; ++start) {
        const std::size_t end = plainTry(text, start, compiled.items, 1, left);
        if (left < 0) return;
        require(end == (start == place.start ? place.end : 0));
        if (end > 0) return;
    }
    require(place.start == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t line = std::min(input.find('\n'), input.size());
    const std::string pattern = input.substr(0, line), text = input.substr(std::min(line + 1, input.size()));
    ClearError();
    compare(text, COMPILEREGEXPATTERN(pattern));
    compare(text, COMPILELIKEPATTERN(pattern));
    const MatchPlace place = REGEXMATCH(text, pattern);
    require(place.end <= text.size() + 1);
    require(ErrorCell() == 0 || ErrorCell() == ERR_ASSERT || ErrorCell() == ERR_OUT_OF_STACK);
    ClearError();
    return 0;
}
