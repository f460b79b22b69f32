// SPDX-License-Identifier: Apache-2.0
//
// Finding and replacing in texts, beside a model that does it step by step as one would by hand.
#include "library/dialogs/textsearch.h"

#include "library/dialogs/finddlgs.h"
#include "os/text/ascii.h"
#include "support/rounds.h"

#include <gtest/gtest.h>

#include <random>

namespace tarn {
namespace {

TEST(FindInText, Places) {
    struct Case {
        const char *text, *search;
        int start;
        bool word, matchCase;
        int place;
    };
    const Case cases[] = {
        {"one two", "two", 1, false, true, 5},
        {"one two", "TWO", 1, false, false, 5},
        {"one two", "TWO", 1, false, true, 0},
        {"aXa", "a", 2, false, true, 3},
        {"aXa", "a", -5, false, true, 1},
        {"aXa", "a", 4, false, true, 0},
        {"aXa", "a", 400, false, true, 0},
        {"", "a", 1, false, true, 0},
        {"a", "", 1, false, true, 0},
        {"", "", 1, true, true, 0},
        {"ab", "abc", 1, false, true, 0},
        {"aab", "ab", 1, false, true, 2},
        // whole words
        {"foobar", "foo", 1, true, true, 0},
        {"_foo", "foo", 1, true, true, 0},
        {"foo1", "foo", 1, true, true, 0},
        {"foo.", "foo", 1, true, true, 1},
        {"a foo", "foo", 1, true, true, 3},
        {"foobar foo", "foo", 1, true, true, 8},
        {"foofoo foo", "FOO", 1, true, false, 8},
        {"foo", "foo", 1, true, true, 1},
        {"x-foo-y", "foo", 1, true, true, 3},
        {"xfoo", "foo", 2, true, true, 0},  // what stands in front of the start counts too
        {"a+b", "+", 1, true, true, 0},     // word characters beside any text end a hit
        {"a + b", "+", 1, true, true, 3},
        {"a b c", "a b", 1, true, true, 1},
        {"foo\xC3\xA4", "foo", 1, true, true, 1},  // other letters than those of ASCII are no word characters
        {"\xC3\xA4", "\xC3\x84", 1, false, false, 0},
        {"f\nfoo\n", "foo", 1, true, true, 3},
    };
    for (const Case& c : cases)
        EXPECT_EQ(STRFINDEX(c.text, c.search, c.start, c.word, c.matchCase), c.place)
            << "'" << c.search << "' in '" << c.text << "' from " << c.start;
}

TEST(FindInText, TakesNulBytesAsAnyOther) {
    using namespace std::string_view_literals;
    EXPECT_EQ(STRFINDEX("a\0b\0c"sv, "b\0c"sv, 1, false, true), 3);
    EXPECT_EQ(STRFINDEX("a\0b"sv, "\0"sv, 1, false, false), 2);
}

TEST(FindInText, CountsLinesInFrontOfAPlace) {
    struct Case {
        const char* text;
        int place, line;
    };
    for (const Case& c : {Case{"", 1, 1},
                          {"a\nb", 1, 1},
                          {"a\nb", 2, 1},
                          {"a\nb", 3, 2},
                          {"a\n", 3, 2},
                          {"\n\n\n", 3, 3},
                          {"a\nb", 100, 2},
                          {"a\nb", 0, 1},
                          {"a\nb", -7, 1}})
        EXPECT_EQ(GETLINENUMBER(c.text, c.place), c.line) << c.place;
}

// ---- beside the model ----

bool same(char a, char b, bool matchCase) {
    return matchCase ? a == b : ascii::upper(a) == ascii::upper(b);
}

int modelFind(std::string_view text, std::string_view search, int start, bool word, bool matchCase) {
    if (search.empty()) return 0;
    for (auto at = static_cast<std::size_t>(std::max(start, 1) - 1); at + search.size() <= text.size();
         ++at) {
        bool equal = true;
        for (std::size_t i = 0; i < search.size(); ++i)
            equal = equal && same(text[at + i], search[i], matchCase);
        const std::size_t end = at + search.size();
        const bool inWord =
            (at > 0 && ascii::isSymbol(text[at - 1])) || (end < text.size() && ascii::isSymbol(text[end]));
        if (equal && !(word && inWord)) return static_cast<int>(at) + 1;
    }
    return 0;
}

// Finds, cuts, inserts, and goes on behind what it has put in.
std::string modelReplace(std::string text, const std::string& old, const std::string& with, int start,
                         bool word, bool matchCase, bool all) {
    for (int at = modelFind(text, old, start, word, matchCase); at != 0;
         at = all ? modelFind(text, old, at + static_cast<int>(with.size()), word, matchCase) : 0)
        text.replace(static_cast<std::size_t>(at) - 1, old.size(), with);
    return text;
}

class Texts {
public:
    explicit Texts(unsigned seed) : random_(seed) {}
    std::size_t below(std::size_t bound) { return random_() % bound; }
    // Few letters, so that hits overlap and nearly come about.
    std::string text(std::size_t most) {
        static constexpr std::string_view letters[] = {"aA", "ab", "aB ", "a-", "a-_ b", "xX.\n", "a\xE4 1"};
        const std::string_view own = letters[below(std::size(letters))];
        std::string text(below(most + 1), ' ');
        for (char& c : text) c = own[below(own.size())];
        return text;
    }
    bool coin() { return below(2) == 0; }

private:
    std::mt19937 random_;
};

TEST(FindSoak, AgreesWithTheModel) {
    Texts texts(1);
    for (int round = 0; round < rounds(100'000); ++round) {
        const std::string text = texts.text(60);
        std::string search = texts.text(5);
        if (texts.coin() && !text.empty()) search = text.substr(texts.below(text.size()), 1 + texts.below(4));
        const int start = static_cast<int>(texts.below(64)) - 1;
        const bool word = texts.coin(), matchCase = texts.coin();
        ASSERT_EQ(STRFINDEX(text, search, start, word, matchCase),
                  modelFind(text, search, start, word, matchCase))
            << "round " << round << ": '" << search << "' in '" << text << "' from " << start;
    }
}

TEST(FindSoak, ReplacingAgreesWithTheModel) {
    Texts texts(2);
    for (int round = 0; round < rounds(100'000); ++round) {
        const std::string text = texts.text(40), with = texts.text(3);
        std::string old = texts.text(3);
        if (texts.coin() && !text.empty()) old = text.substr(texts.below(text.size()), 1 + texts.below(2));
        if (old.empty()) continue;
        const int start = static_cast<int>(texts.below(42));
        const bool word = texts.coin(), matchCase = texts.coin(), all = texts.coin();
        PlainSearch search(old, word, matchCase);
        const auto edits = REPLACEMENTS(text, search, with, start, all, 1'000'000);
        ASSERT_TRUE(edits);
        ASSERT_EQ(APPLIED(text, *edits), modelReplace(text, old, with, start, word, matchCase, all))
            << "round " << round << ": '" << old << "' by '" << with << "' in '" << text << "' from "
            << start;
    }
}

// ---- cost ----

std::string repeated(std::string_view unit, std::size_t size) {
    std::string text;
    while (text.size() < size) text += unit;
    return text;
}

// What would be looked at again at each place makes a search of 4,000,000 bytes take hours.
TEST(FindCost, IsLinearWhateverStandsInTheTexts) {
    struct Case {
        const char* unit;
        std::size_t length;  // of the text that is sought
        bool word, matchCase;
        const char* end;  // behind it
    };
    for (const Case& c : {Case{"a", 20000, false, true, "b"},
                          {"a", 20000, false, false, "b"},
                          {"a", 20000, true, true, ""},
                          {"aA", 20001, true, false, ""},
                          {"-a", 20001, true, true, ""},
                          {"-a", 20001, true, false, ""},
                          {"a-", 20001, true, false, "x"}}) {
        const std::string text = repeated(c.unit, 4'000'000);
        const std::string search = repeated(c.unit, c.length).substr(0, c.length) + c.end;
        const int place = STRFINDEX("." + text, search, 1, c.word, c.matchCase);
        EXPECT_TRUE(place == 0 || place <= 3) << c.unit << " " << place;
    }
}

TEST(FindCost, AHitBehindManyRejectedOnesIsFound) {
    // Each hit in the run stands in a word, as its next character belongs to one, but for the last.
    const std::string run = repeated("-a", 200'000), search = repeated("-a", 4000) + "-";
    for (const bool matchCase : {true, false})
        EXPECT_EQ(STRFINDEX(run + "- ", search, 1, true, matchCase), 0)
            << matchCase;  // "a" stands in front of it
    const std::string text = run + "b." + search + ".";
    for (const bool matchCase : {true, false})
        EXPECT_EQ(STRFINDEX(text, search, 1, true, matchCase), static_cast<int>(run.size()) + 3) << matchCase;
}

// ---- replacing ----

TEST(ReplaceInText, GoesOnBehindWhatItPutIn) {
    PlainSearch search("a", false, true);
    EXPECT_EQ(APPLIED("aXa", *REPLACEMENTS("aXa", search, "aa", 1, true, 100)), "aaXaa");
    EXPECT_EQ(APPLIED("aXa", *REPLACEMENTS("aXa", search, "", 1, true, 100)), "X");
    EXPECT_EQ(APPLIED("aXa", *REPLACEMENTS("aXa", search, "b", 1, false, 100)), "bXa");
    EXPECT_EQ(APPLIED("aXa", *REPLACEMENTS("aXa", search, "b", 2, true, 100)), "aXb");
    EXPECT_TRUE(REPLACEMENTS("xyz", search, "b", 1, true, 100)->empty());
}

TEST(ReplaceInText, IsRefusedWhereTheTextWouldGetTooLong) {
    PlainSearch search("a", false, true);
    EXPECT_FALSE(REPLACEMENTS("aaaa", search, "bb", 1, true, 7));
    EXPECT_TRUE(REPLACEMENTS("aaaa", search, "bb", 1, true, 8));
    EXPECT_TRUE(REPLACEMENTS("aaaa", search, "b", 1, true, 2));  // no longer than it is
    EXPECT_FALSE(
        REPLACEMENTS(std::string(1'000'000, 'a'), search, std::string(100'000, 'b'), 1, true, 4'000'000));
}

}  // namespace
}  // namespace tarn
