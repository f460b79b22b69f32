// SPDX-License-Identifier: Apache-2.0
//
// The matcher. What the items from a closure on can do at a place depends on nothing that came before, so a
// place where they failed is noted (one bit) and never tried again, also not from another start.
#include "library/designer/propedit_patterns.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "library/designer/propedit_items_internal.h"

#include <cstring>
#include <vector>

MODULE("propedit", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

using namespace detail;

namespace {

constexpr int noMatch = -1;

// The number of characters of the item at p; 0 if none stands there whole.
std::size_t itemSize(std::string_view compiled, std::size_t p) {
    if (p < 1 || p > compiled.size()) return 0;
    std::size_t size = 0;
    switch (compiled[p - 1]) {
    case LITCHAR: size = 2; break;
    case ANY:
    case BOL:
    case EOL:
    case CLOSURE:
    case OPTIONAL: return 1;
    case CCL:
    case NCCL:
        size = p < compiled.size() ? std::size_t{static_cast<unsigned char>(compiled[p])} + 2 : 2;
        break;
    default: return 0;
    }
    return size <= compiled.size() - (p - 1) ? size : 0;
}

bool holds(std::string_view compiled, std::size_t count, char c) {
    const auto size = static_cast<unsigned char>(compiled[count - 1]);
    return std::memchr(compiled.data() + count, static_cast<unsigned char>(c), size) != nullptr;
}

// Of a whole item.
int eaten(std::string_view text, std::size_t i, std::string_view compiled, std::size_t p) {
    const char code = compiled[p - 1];
    if (code == BOL) return i == 1 ? 0 : noMatch;
    if (code == EOL) return i == text.size() + 1 ? 0 : noMatch;
    if (i > text.size()) return noMatch;
    bool match = true;
    if (code == LITCHAR) match = text[i - 1] == compiled[p];
    if (code == CCL) match = holds(compiled, p + 1, text[i - 1]);
    if (code == NCCL) match = !holds(compiled, p + 1, text[i - 1]);
    return match ? 1 : noMatch;
}

// Where the items from a closure on have failed: one bit for each position of the text.
class Notes {
public:
    bool has(std::size_t i) const { return i / 64 < words_.size() && (words_[i / 64] >> (i % 64) & 1) != 0; }
    // The number of words that it had to make.
    std::size_t add(std::size_t i, std::size_t positions) {
        const std::size_t made = words_.empty() ? positions / 64 + 1 : 0;
        if (made > 0) words_.resize(made);
        words_[i / 64] |= std::uint64_t{1} << (i % 64);
        return made;
    }

private:
    std::vector<std::uint64_t> words_;
};

class Matcher {
public:
    Matcher(std::string_view text, std::string_view compiled) : text_(text), compiled_(compiled) {}

    // The position behind the match of the items from p on at i; 0 for no match, and after a failure.
    std::size_t match(std::size_t i, std::size_t p) {
        ways_.clear();
        for (;;) {
            const std::size_t end = forward(i, p);
            if (end > 0 || failed_) return end;
            if (!back(i, p)) return 0;
        }
    }
    [[nodiscard]] bool failed() const { return failed_; }

private:
    // A closure that was entered at `low` and has its item up to `now`; less may do.
    struct Way {
        std::size_t closure, low, now;
    };

    // Takes the items as they come, each closure as far as it goes. 0 where one does not match.
    std::size_t forward(std::size_t i, std::size_t p) {
        while (p <= compiled_.size()) {
            const char code = compiled_[p - 1];
            const bool closure = code == CLOSURE || code == OPTIONAL;
            if (closure && (noted(p, i) || !enter(i, p))) return 0;
            if (!closure && !step(i, p)) return 0;
        }
        return i;
    }

    // One item at i; both move on if it matches.
    bool step(std::size_t& i, std::size_t& p) {
        const std::size_t size = sizeAt(p);
        const int eats = size > 0 ? eatenAt(i, p) : noMatch;
        if (eats < 0) return false;
        i += static_cast<std::size_t>(eats);
        p += size;
        return true;
    }

    bool enter(std::size_t& i, std::size_t& p) {
        const std::size_t closure = p, low = i, size = sizeAt(p + 1);
        if (size == 0) return false;
        const bool many = compiled_[p - 1] == CLOSURE;
        for (int eats = 1; eats > 0;) {
            eats = eatenAt(i, closure + 1);
            if (eats <= 0 || (many && noted(closure, i + 1))) break;
            i += static_cast<std::size_t>(eats);
            if (!many) break;
        }
        ways_.push_back({closure, low, i});
        p = closure + 1 + size;
        return !failed_;
    }

    // To the last closure that can do with less; false if none is left.
    bool back(std::size_t& i, std::size_t& p) {
        while (!ways_.empty()) {
            Way& way = ways_.back();
            const bool many = compiled_[way.closure - 1] == CLOSURE;
            if (many || way.now == way.low) note(way.closure, way.now);
            if (way.now > way.low) {
                i = --way.now;
                p = way.closure + 1 + itemSize(compiled_, way.closure + 1);
                return !failed_;
            }
            ways_.pop_back();
        }
        return false;
    }

    // Asserts that an item stands there whole.
    std::size_t sizeAt(std::size_t p) {
        const std::size_t size = itemSize(compiled_, p);
        if (size == 0) {
            Assert(false, "CharMatch:Invalid symbol in pattern");
            failed_ = true;
        }
        return size;
    }
    int eatenAt(std::size_t i, std::size_t p) {
        spend(1);
        return failed_ ? noMatch : eaten(text_, i, compiled_, p);
    }
    bool noted(std::size_t closure, std::size_t i) const {
        return closure < notes_.size() && notes_[closure].has(i);
    }
    void note(std::size_t closure, std::size_t i) {
        if (notes_.empty()) notes_.resize(compiled_.size() + 1);
        constexpr std::size_t stepsOfWord = 16;  // bounds the memory too
        spend(notes_[closure].add(i, text_.size() + 2) * stepsOfWord);
    }
    void spend(std::size_t steps) {
        left_ -= static_cast<std::int64_t>(steps);
        if (left_ >= 0 || failed_) return;
        SetError(ERR_OUT_OF_STACK);
        failed_ = true;
    }

    std::string_view text_, compiled_;
    std::vector<Way> ways_;
    std::vector<Notes> notes_;  // by the position of the closure
    std::int64_t left_ = PatternSteps + 100 * static_cast<std::int64_t>(text_.size());
    bool failed_ = false;
};

}  // namespace

bool LOCATE(char character, std::string_view compiled, std::size_t position) {
    if (position < 1 || position > compiled.size()) return false;
    const auto count = static_cast<unsigned char>(compiled[position - 1]);
    return count <= compiled.size() - position && holds(compiled, position, character);
}

int CHARMATCH(std::string_view text, std::size_t i, std::string_view compiled, std::size_t p) {
    FRAME(CHARMATCH);
    STAMP();
    const bool whole = itemSize(compiled, p) > 0;
    Assert(whole, "CharMatch:Invalid symbol in pattern");
    return whole && i > 0 ? eaten(text, i, compiled, p) : noMatch;
}

std::size_t PATTERNSIZE(std::string_view compiled, std::size_t p) {
    FRAME(PATTERNSIZE);
    STAMP();
    const std::size_t size = itemSize(compiled, p);
    Assert(size > 0, "PatternSize:Invalid logical character pattern");
    return size;
}

std::size_t TRYMATCH(std::string_view text, std::size_t i, std::string_view compiled, std::size_t p) {
    FRAME(TRYMATCH);
    STAMP();
    return i > 0 && p > 0 ? Matcher(text, compiled).match(i, p) : 0;
}

MatchPlace REGEXMATCH(std::string_view text, std::string_view compiled) {
    FRAME(REGEXMATCH);
    STAMP();
    Matcher matcher(text, compiled);
    const std::size_t last = compiled.starts_with(BOL) ? 1 : text.size() + 1;
    for (std::size_t start = 1; start <= last && !matcher.failed(); ++start) {
        const std::size_t end = matcher.match(start, 1);
        if (end > 0) return {start, end};
    }
    return {};
}

}  // namespace tarn
