// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/textsearch.h"

#include "library/system/strings.h"
#include "os/text/ascii.h"

#include <algorithm>

namespace tarn {
namespace {

// Characters that rejected hits may cost before the search goes over to one that looks at each only once.
#ifdef TARNWICK_TINY
constexpr std::size_t Patience = 8;
#else
constexpr std::size_t Patience = 4096;
#endif

}  // namespace

bool ISWORDHIT(std::string_view text, const TextHit& hit, std::optional<char> before) {
    const auto start = static_cast<std::size_t>(hit.start - 1),
               end = start + static_cast<std::size_t>(hit.length);
    if (before ? ascii::isSymbol(*before) : start > 0 && ascii::isSymbol(text[start - 1])) return false;
    return end >= text.size() || !ascii::isSymbol(text[end]);
}

PlainSearch::PlainSearch(std::string_view text, bool matchWord, bool matchCase)
    : what_(text), matchWord_(matchWord), matchCase_(matchCase) {}

TextHit PlainSearch::next(std::string_view text, int start, std::optional<char> before) {
    start = std::max(start, 1);
    const int length = static_cast<int>(what_.size());
    std::size_t spent = 0;
    for (int from = start;;) {
        const TextHit hit{STRFIND(what_, text, from, !matchCase_), length};
        if (hit.start == 0) return {};
        if (!matchWord_ || ISWORDHIT(text, hit, hit.start == start ? before : std::nullopt)) return hit;
        spent += what_.size();
        from = hit.start + 1;
        if (spent <= Patience + 4 * static_cast<std::size_t>(from - start)) continue;
        const int found = steadyWord(text, static_cast<std::size_t>(hit.start),
                                     static_cast<std::size_t>(start - 1), before);
        return found == 0 ? TextHit{} : TextHit{found, length};
    }
}

// All places from the offset `from` on, also those that overlap: the ends of the text sought that are also its beginnings
// tell how much of the next hit is known already.
int PlainSearch::steadyWord(std::string_view text, std::size_t from, std::size_t start,
                            std::optional<char> before) {
    const auto same = [this](char a, char b) {
        return matchCase_ ? a == b : ascii::upper(a) == ascii::upper(b);
    };
    if (borders_.empty()) {
        borders_.resize(what_.size());
        for (std::size_t i = 1, size = 0; i < what_.size(); ++i) {
            while (size > 0 && !same(what_[i], what_[size])) size = borders_[size - 1];
            if (same(what_[i], what_[size])) ++size;
            borders_[i] = size;
        }
    }
    std::size_t matched = 0;
    for (std::size_t i = from; i < text.size(); ++i) {
        while (matched > 0 && (matched == what_.size() || !same(text[i], what_[matched])))
            matched = borders_[matched - 1];
        if (matched < what_.size() && same(text[i], what_[matched])) ++matched;
        if (matched < what_.size()) continue;
        const std::size_t at = i + 1 - matched;
        const TextHit hit{static_cast<int>(at) + 1, static_cast<int>(matched)};
        if (ISWORDHIT(text, hit, at == start ? before : std::nullopt)) return hit.start;
    }
    return 0;
}

// ---- replacing ----

namespace {

// The character in front of the place behind a replacement: the last of what has come, or what stood in front of it.
std::optional<char> lastCharacter(std::string_view text, const TextHit& hit, const std::string& comes,
                                  std::optional<char> before) {
    if (!comes.empty()) return comes.back();
    if (before) return before;
    return hit.start > 1 ? text[static_cast<std::size_t>(hit.start) - 2] : '\0';
}

}  // namespace

std::optional<std::vector<TextEdit>> REPLACEMENTS(std::string_view text, TextSearch& search,
                                                  const std::string& with, int from, bool all,
                                                  std::int64_t most) {
    std::vector<TextEdit> edits;
    std::optional<char> before;
    auto size = static_cast<std::int64_t>(text.size());
    most = std::max(most, size);
    do {
        const TextHit hit = search.next(text, from, before);
        if (hit.start == 0) break;
        edits.push_back({hit.start, hit.length, search.replacement(text, with)});
        const std::string& comes = edits.back().text;
        size += static_cast<std::int64_t>(comes.size()) - hit.length;
        if (size > most) return {};
        before = lastCharacter(text, hit, comes, hit.start == from ? before : std::nullopt);
        from = hit.start + hit.length;
    } while (all);
    return edits;
}

std::string APPLIED(std::string_view text, const std::vector<TextEdit>& edits) {
    std::string out;
    std::size_t at = 0;
    for (const TextEdit& edit : edits) {
        const auto start = static_cast<std::size_t>(edit.start) - 1;
        out.append(text.substr(at, start - at)).append(edit.text);
        at = start + static_cast<std::size_t>(edit.length);
    }
    return out.append(text.substr(at));
}

}  // namespace tarn
