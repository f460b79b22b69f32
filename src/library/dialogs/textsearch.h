// SPDX-License-Identifier: Apache-2.0
//
// Ways of finding one text in another: as it stands, and whatever else a program adds (FINDDIALOG takes any). A search
// is made once and asked again and again. Places are 1-based byte positions; case is that of ASCII; a word character is a
// letter, a digit or "_". These classes neither fail nor call out, so they have no frames.
#pragma once

#include "kernel/windows/textedits.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct TextHit {
    int start = 0, length = 0;  // 0: there is none
};

class TextSearch {
public:
    virtual ~TextSearch() = default;
    // The first hit at `start` or behind it; what stands before 1 counts as 1. `before` is the character in front of
    // `start` where that is another than the one in the text: one that replaced it. A hit has at least one byte.
    virtual TextHit next(std::string_view text, int start, std::optional<char> before = {}) = 0;
    // To be called when another text comes than the one before, or the same changed.
    virtual void anew() {}
    // What comes in the place of the hit that `next` gave last, if the user wants `with`.
    [[nodiscard]] virtual std::string replacement(std::string_view text, const std::string& with) const {
        static_cast<void>(text);
        return with;
    }
    // Why `next` found nothing, for the user; empty when there is nothing.
    [[nodiscard]] virtual std::string problem() const { return {}; }
};

// Finds a text as it stands. Cost: linear in what is passed over, whatever stands in the texts, and each further call
// too. An empty text is never found.
class PlainSearch : public TextSearch {
public:
    PlainSearch(std::string_view text, bool matchWord, bool matchCase);
    TextHit next(std::string_view text, int start, std::optional<char> before = {}) override;

private:
    [[nodiscard]] int steadyWord(std::string_view text, std::size_t from, std::size_t start,
                                 std::optional<char> before);

    std::string what_;
    bool matchWord_, matchCase_;
    std::vector<std::size_t> borders_;  // made when first needed
};

// Whether no word goes on over the ends of the hit.
bool ISWORDHIT(std::string_view text, const TextHit& hit, std::optional<char> before = {});

// What replaces the hits from `from` on, each looked for behind the replacement of the one before: all of them, or the
// first. Nothing if the text would get longer than `most` bytes while it gets longer.
std::optional<std::vector<TextEdit>> REPLACEMENTS(std::string_view text, TextSearch& search,
                                                  const std::string& with, int from, bool all,
                                                  std::int64_t most);
// The text with these edits done, which come in the order of their places.
std::string APPLIED(std::string_view text, const std::vector<TextEdit>& edits);

}  // namespace tarn
