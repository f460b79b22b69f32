// SPDX-License-Identifier: GPL-3.0-or-later
//
// Searching by regular expressions in the syntax of PCRE2, the only place of its header. "^" and "$" stand for the ends
// of lines, be they LF or CR LF, "." for any character but those two. A text that is sound UTF-8 is searched by
// characters, any other by bytes. A hit has at least one byte.
//
// What comes in the place of a hit may hold "$0" for the hit, "$1" to "$9" and "${10}" for what its groups matched, "$$"
// for "$", "\n" for a line end of the text's own kind, "\t" and "\\"; a group that does not exist, or has matched
// nothing, is empty.
//
// Cost: a pattern may need any time, so a search has a limit of it for all its calls on one text together. When that is over it
// finds nothing more, and `problem` says so.
#pragma once

#include "library/dialogs/textsearch.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int64_t UsualPatience = 3'000'000'000;  // nanoseconds for one search

class RegexSearch : public TextSearch {
public:
    RegexSearch(std::string_view pattern, bool matchWord, bool matchCase,
                std::int64_t patience = UsualPatience);
    ~RegexSearch() override;
    RegexSearch(const RegexSearch&) = delete;
    RegexSearch& operator=(const RegexSearch&) = delete;

    // A pattern that is not valid finds nothing; `problem` tells why, and where.
    TextHit next(std::string_view text, int start, std::optional<char> before = {}) override;
    [[nodiscard]] std::string replacement(std::string_view text, const std::string& with) const override;
    [[nodiscard]] std::string problem() const override { return problem_; }
    void anew() override;  // its time begins anew too

private:
    [[nodiscard]] std::string lineEndOf(std::string_view text) const;

    struct Engine;  // the compiled pattern and what it matched last
    std::unique_ptr<Engine> engine_;
    bool matchWord_;
    std::int64_t patience_;
    std::string problem_;
};

}  // namespace tarn
