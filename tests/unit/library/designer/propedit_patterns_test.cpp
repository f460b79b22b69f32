// SPDX-License-Identifier: Apache-2.0
//
// Patterns: the compiled form item by item, the matcher against a plain recursive one, and patterns made to
// take long.
#include "library/designer/propedit_patterns.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <random>
#include <string>

namespace tarn {
namespace {

using namespace std::string_literals;

class Patterns : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    static void expectAssertion(const std::string& text) {
        EXPECT_EQ(ErrorCell(), ERR_ASSERT);
        EXPECT_EQ(AssertText(), text);
        ClearError();
    }
};

std::string regex(const std::string& pattern) {
    const CompiledPattern compiled = COMPILEREGEXPATTERN(pattern);
    return compiled.failed ? "invalid" : compiled.items;
}
std::string like(const std::string& pattern) {
    const CompiledPattern compiled = COMPILELIKEPATTERN(pattern);
    return compiled.failed ? "invalid" : compiled.items;
}

// ---- the compiled form ----

struct Compiled {
    std::string pattern, items;
};

TEST_F(Patterns, RegularExpressionsBecomeItems) {
    const Compiled cases[] = {
        {"", ""},
        {"a", "La"},
        {"ab", "LaLb"},
        {"a.c", "La.Lc"},
        {"^a$", "^La$"},
        {"^", "^"},
        {"$", "$"},
        {"a^$b", "LaL^L$Lb"},
        {"^^", "^L^"},
        {"$$", "L$$"},
        {"a*", "*La"},
        {"a?", "?La"},
        {"a+", "La*La"},
        {"ba*c", "Lb*LaLc"},
        {".*", "*."},
        {"[abc]", "[\x03"s
                  "abc"},
        {"[^abc]", "!\x03"s
                   "abc"},
        {"[a^]", "[\x02"s
                 "a^"},
        {"[ab]+", "[\x02"s
                  "ab*[\x02"s
                  "ab"},
        {"[ab]?", "?[\x02"s
                  "ab"},
        {"\\n\\t\\q\\\\\\*", "L\nL\tLqL\\L*"},
        {"\\**", "*L*"},
        {"[\\n\\]]", "[\x02\n]"s},
        {"]", "L]"},
        {"a-b", "LaL-Lb"},
        // What "+" leaves begins with its item, which can be repeated again.
        {"a+*", "*La*La"},
        {"a+?", "?La*La"},
        {"a++", "La*La*La"},
        {"\x80\xFF", "L\x80L\xFF"},
        {"a\0b"s, "LaL\0Lb"s},
    };
    for (const Compiled& c : cases) EXPECT_EQ(regex(c.pattern), c.items) << c.pattern;
}

TEST_F(Patterns, SetsHoldTheirCharactersAndRanges) {
    const Compiled cases[] = {
        {"[a-]", "[\x02"s
                 "a-"},
        {"[-a]", "[\x02-a"s},
        {"[^-a]", "!\x02-a"s},
        {"[a-e]", "[\x05"s
                  "abcde"},
        {"[a-c0-2_]", "[\x07"s
                      "abc012_"},
        {"[a-a]", "[\x01"s
                  "a"},
        {"[X-b]", "[\x0BXYZ[\\]^_`ab"s},
        {"[a-c-e]", "[\x05"s
                    "abcde"},
        {"[+--]", "[\x03+--"s},
        {"[a-_]", "[\x03"s
                  "a-_"},
    };
    for (const Compiled& c : cases) EXPECT_EQ(regex(c.pattern), c.items) << c.pattern;
}

TEST_F(Patterns, TheseRegularExpressionsAreInvalid) {
    const std::string cases[] = {"*",     "+",      "?",      "*a", "a**", "a*+", "a*?",  "a?*",  "a??",
                                 "^*",    "^+",     "^?",     "[",  "[a",  "[^",  "[]",   "[^]",  "[]a]",
                                 "[z-a]", "[az-a]", "[^9-0]", "\\", "a\\", "[\\", "[a\\", "[a\\]"};
    for (const std::string& pattern : cases) {
        const CompiledPattern compiled = COMPILEREGEXPATTERN(pattern);
        EXPECT_TRUE(compiled.failed) << pattern;
        EXPECT_EQ(compiled.items, "") << pattern;
    }
    EXPECT_EQ(regex("[" + std::string(256, 'a') + "]"), "invalid");
    EXPECT_EQ(regex("[" + std::string(255, 'a') + "]").size(), 257u);
    EXPECT_EQ(regex("[" + std::string(512 + 3, 'a') + "]"), "invalid") << "the count is not its low byte";
}

TEST_F(Patterns, LikePatternsCoverTheWholeText) {
    const Compiled cases[] = {
        {"", "^$"},
        {"a?c", "^La.Lc$"},
        {"*", "^*.$"},
        {"**", "^*.*.$"},
        {"a#", "^La[\x0A"s
               "0123456789$"},
        {"[ab]", "^[\x02"s
                 "ab$"},
        {"[!a-c]", "^!\x03"s
                   "abc$"},
        {"[^a]", "^[\x02^a$"s},
        {"^$.+", "^L^L$L.L+$"},
        {"\\*\\#\\n", "^L*L#L\n$"},
    };
    for (const Compiled& c : cases) EXPECT_EQ(like(c.pattern), c.items) << c.pattern;
    for (const std::string pattern : {"[", "[a", "[]", "[!]", "[z-a]", "\\", "a\\"})
        EXPECT_EQ(like(pattern), "invalid") << pattern;
    EXPECT_EQ(like("[" + std::string(256, 'a') + "]"), "invalid");
}

TEST_F(Patterns, EachStepCanBeUsedByItself) {
    std::size_t position = 1;
    EXPECT_EQ(COMPILEESCAPECHAR('\\', "a", position), 'a');
    EXPECT_EQ(position, 1u);
    EXPECT_EQ(COMPILEESCAPECHAR('\\', "\\n", position), '\n');
    EXPECT_EQ(position, 2u);
    position = 1;
    EXPECT_EQ(COMPILEESCAPECHAR('%', "%t", position), '\t');
    position = 1;
    EXPECT_EQ(COMPILEESCAPECHAR('%', "\\t", position), '\\');

    std::string set = "x";
    position = 1;
    COMPILERANGE('|', "a-cq|rest", position, set);
    EXPECT_EQ(set, "xabcq");
    EXPECT_EQ(position, 5u);
    position = 1;
    COMPILERANGE('|', "qz-a", position, set);
    EXPECT_EQ(set, "xabcq") << "a range downward takes back what this call added";
    EXPECT_EQ(position, 5u) << "behind the end of the pattern";

    std::string compiled = "La";
    position = 2;
    EXPECT_EQ(COMPILECHARCLASS('^', "x[^ab]y", position, compiled), 2u);
    EXPECT_EQ(compiled, "La!\x02"s
                        "ab");
    EXPECT_EQ(position, 6u);
    COMPILECLOSURE('*', compiled, 3);
    EXPECT_EQ(compiled, "La*!\x02"s
                        "ab");
    COMPILECLOSURE('+', compiled, 1);
    EXPECT_EQ(compiled, "La*!\x02"s
                        "ab*La");
    EXPECT_TRUE(LOCATE('b', compiled, 5));
    EXPECT_FALSE(LOCATE('L', compiled, 5));
    EXPECT_FALSE(LOCATE('x', compiled, 99));
}

TEST_F(Patterns, SizesOfItems) {
    const std::pair<std::string, std::size_t> cases[] = {{"Lx", 2},
                                                         {".", 1},
                                                         {"^", 1},
                                                         {"$", 1},
                                                         {"*", 1},
                                                         {"?", 1},
                                                         {"[\x03"s
                                                          "abc",
                                                          5},
                                                         {"!\x01"s
                                                          "a",
                                                          3}};
    for (const auto& [items, size] : cases) EXPECT_EQ(PATTERNSIZE(items, 1), size) << items;
    for (const std::string bad : {"x", "", "L", "[", "[\x02"})
        for (const std::size_t p : {0U, 1U, 2U}) {
            EXPECT_EQ(PATTERNSIZE(bad, p), 0u);
            expectAssertion("PatternSize:Invalid logical character pattern");
        }
}

TEST_F(Patterns, WhatAnItemEats) {
    struct Case {
        std::string text;
        std::size_t i;
        std::string item;
        int eats;
    };
    const Case cases[] = {
        {"ab", 2, "Lb", 1},
        {"ab", 1, "Lb", -1},
        {"ab", 3, "Lb", -1},
        {"ab", 2, ".", 1},
        {"ab", 3, ".", -1},
        {"ab", 1, "^", 0},
        {"ab", 2, "^", -1},
        {"ab", 3, "$", 0},
        {"ab", 2, "$", -1},
        {"", 1, "^", 0},
        {"", 1, "$", 0},
        {"ab", 1,
         "[\x01"s
         "a",
         1},
        {"ab", 2,
         "[\x01"s
         "a",
         -1},
        {"ab", 3,
         "[\x01"s
         "a",
         -1},
        {"ab", 2,
         "!\x01"s
         "a",
         1},
        {"ab", 1,
         "!\x01"s
         "a",
         -1},
        {"ab", 3,
         "!\x01"s
         "a",
         -1},
        {"ab", 2, "*", 1},
        {"ab", 3, "*", -1},
        {"ab", 2, "?", 1},
        {"ab", 3, "?", -1},
        {"\xFF", 1, "[\x01\xFF"s, 1},
        {"a\0"s, 2, "L\0"s, 1},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CHARMATCH(c.text, c.i, c.item, 1), c.eats) << c.text << " " << c.item;
    EXPECT_EQ(CHARMATCH("a", 1, "x", 1), -1);
    expectAssertion("CharMatch:Invalid symbol in pattern");
}

// ---- matching ----

TEST_F(Patterns, WhereRegularExpressionsMatch) {
    struct Case {
        std::string text, pattern;
        MatchPlace place;
    };
    const Case cases[] = {
        {"xyz", "a*", {1, 1}},
        {"", "a*", {1, 1}},
        {"anything", "^", {1, 1}},
        {"aaa", "a+", {1, 4}},
        {"baaa", "a+", {2, 5}},
        {"abc", "b", {2, 3}},
        {"abc", "$", {4, 4}},
        {"", "$", {1, 1}},
        {"abc", "", {1, 1}},
        {"abc", "x", {0, 0}},
        {"aab", "a*ab", {1, 4}},
        {"ab", "a?b", {1, 3}},
        {"b", "a?b", {1, 2}},
        {"aXb", "a.b", {1, 4}},
        {"ab", "a.b", {0, 0}},
        {"x1=22;", "[0-9]+;", {4, 7}},
        {"a\nb", "\\n", {2, 3}},
        {"aqb", "\\q", {2, 3}},
        {"a^b", "a^b", {1, 4}},
        {"a$b", "a$b", {1, 4}},
        {"say \"x\"", "\"[^\"]*\"", {5, 8}},
        {"abab", "^ab$", {0, 0}},
        {"ab", "^ab$", {1, 3}},
        {"aaa", "a?a?a?$", {1, 4}},
        {"", "a", {0, 0}},
        {"aaab", "a*a+b", {1, 5}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(GETMATCHPOS(c.text, c.pattern), c.place) << c.text << " " << c.pattern;
        EXPECT_EQ(ISMATCH(c.text, c.pattern), c.place.end > 0) << c.text << " " << c.pattern;
        EXPECT_EQ(REGEXMATCH(c.text, regex(c.pattern)), c.place) << c.text << " " << c.pattern;
    }
}

TEST_F(Patterns, WhatIsLikeWhat) {
    struct Case {
        std::string text, pattern;
        bool like;
    };
    const Case cases[] = {
        {"abc", "a?c", true},
        {"abcd", "a?c", false},
        {"a1", "a#", true},
        {"ab", "a#", false},
        {"", "*", true},
        {"anything", "*", true},
        {"", "", true},
        {"a", "", false},
        {"report.txt", "*.txt", true},
        {"report.text", "*.txt", false},
        {"b", "[a-c]", true},
        {"d", "[a-c]", false},
        {"d", "[!a-c]", true},
        {"a*c", "a\\*c", true},
        {"abc", "a\\*c", false},
        {"ABC", "abc", false},
        {"a^b$", "a^b$", true},
        {"xay", "*a*", true},
    };
    for (const Case& c : cases) EXPECT_EQ(ISLIKE(c.text, c.pattern), c.like) << c.text << " " << c.pattern;
}

TEST_F(Patterns, AnInvalidPatternIsAMistakeOfTheProgram) {
    EXPECT_FALSE(ISMATCH("a", "a**"));
    expectAssertion("Regular expression is invalid");
    EXPECT_EQ(GETMATCHPOS("a", "+"), MatchPlace{});
    expectAssertion("Regular expression is invalid");
    EXPECT_FALSE(ISLIKE("a", "[z-a]"));
    expectAssertion("LIKE expression is invalid");
}

TEST_F(Patterns, ACompiledTextThatIsNoneIsAMistakeOfTheProgram) {
    const std::string cases[] = {"x",
                                 "La#",
                                 "*",
                                 "*#",
                                 "L",
                                 "[\x05"s
                                 "ab",
                                 "?["};
    for (const std::string& bad : cases) {
        EXPECT_EQ(REGEXMATCH("aaaa", bad), MatchPlace{}) << bad;
        expectAssertion("CharMatch:Invalid symbol in pattern");
    }
    EXPECT_EQ(REGEXMATCH("ab", "***Lb"), MatchPlace({1, 3}))
        << "the mark of a closure as an item is any character";
    EXPECT_EQ(REGEXMATCH("ab", "*^La"), MatchPlace({1, 2}))
        << "an item that eats nothing is not repeated for ever";
}

// A plain matcher of its own, which calls itself for the rest behind each closure and notes nothing. Its patterns are
// made by the compiler, so its items are whole.
std::size_t modelSize(const std::string& items, std::size_t p) {
    const char code = items[p - 1];
    if (code == '[' || code == '!') return static_cast<unsigned char>(items[p]) + std::size_t{2};
    return code == 'L' ? 2 : 1;
}

int modelEats(const std::string& text, std::size_t i, const std::string& items, std::size_t p) {
    const char code = items[p - 1];
    if (code == '^') return i == 1 ? 0 : -1;
    if (code == '$') return i == text.size() + 1 ? 0 : -1;
    if (i > text.size()) return -1;
    const std::string set = items.substr(p, modelSize(items, p) - 1);
    const bool inside = set.find(text[i - 1], code == 'L' ? 0 : 1) != std::string::npos;
    return code == '.' || inside != (code == '!') ? 1 : -1;
}

std::size_t modelTry(const std::string& text, std::size_t i, const std::string& items, std::size_t p) {
    while (p <= items.size()) {
        const char code = items[p - 1];
        if (code != '*' && code != '?') {
            const int eats = modelEats(text, i, items, p);
            if (eats < 0) return 0;
            i += static_cast<std::size_t>(eats);
            p += modelSize(items, p);
            continue;
        }
        std::size_t k = i;
        ++p;
        while (k <= text.size() && modelEats(text, k, items, p) > 0) {
            ++k;
            if (code == '?') break;
        }
        for (;; --k) {
            const std::size_t end = modelTry(text, k, items, p + modelSize(items, p));
            if (end > 0 || k == i) return end;
        }
    }
    return i;
}

MatchPlace modelMatch(const std::string& text, const std::string& items) {
    for (std::size_t start = 1; start <= text.size() + 1; ++start)
        if (const std::size_t end = modelTry(text, start, items, 1); end > 0) return {start, end};
    return {};
}

std::string randomText(std::mt19937& random, std::size_t most, std::string_view letters) {
    std::string text;
    for (std::size_t n = random() % (most + 1); n > 0; --n) text += letters[random() % letters.size()];
    return text;
}

TEST_F(Patterns, MatchesAsPlainRecursionDoes) {
    constexpr std::string_view pieces[] = {"a",    "b",    "c",     ".",     "^",     "$",    "a*",
                                           "b*",   ".*",   "a?",    "b?",    ".?",    "a+",   ".+",
                                           "[ab]", "[^a]", "[ab]*", "[^b]*", "[ab]?", "[bc]+"};
    std::mt19937 random(20261122);
    int matches = 0, compared = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string pattern;
        for (std::size_t n = random() % 7; n > 0; --n) pattern += pieces[random() % std::size(pieces)];
        const CompiledPattern compiled = COMPILEREGEXPATTERN(pattern);
        if (compiled.failed) continue;
        const std::string text = randomText(random, 12, "aabbc");
        const MatchPlace place = modelMatch(text, compiled.items);
        ASSERT_EQ(REGEXMATCH(text, compiled.items), place) << "'" << text << "' '" << pattern << "'";
        const std::size_t i = random() % (text.size() + 1) + 1;
        ASSERT_EQ(TRYMATCH(text, i, compiled.items, 1), modelTry(text, i, compiled.items, 1))
            << i << " '" << text << "' '" << pattern << "'";
        matches += place.end > 0 ? 1 : 0;
        ++compared;
    }
    EXPECT_GT(compared, 10000);
    EXPECT_GT(matches, compared / 10);
    EXPECT_GT(compared - matches, compared / 10);
}

// Of the plain marks alone: what stands at the head of both, then the rest.
bool modelLike(std::string_view text, std::string_view pattern) {
    if (pattern.empty()) return text.empty();
    if (pattern[0] == '*')
        return modelLike(text, pattern.substr(1)) || (!text.empty() && modelLike(text.substr(1), pattern));
    if (text.empty()) return false;
    const bool digit = text[0] >= '0' && text[0] <= '9';
    const bool fits = pattern[0] == '?' || (pattern[0] == '#' ? digit : pattern[0] == text[0]);
    return fits && modelLike(text.substr(1), pattern.substr(1));
}

TEST_F(Patterns, IsLikeAsAPlainModelSays) {
    std::mt19937 random(8);
    int likes = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::string text = randomText(random, 8, "ab1"), pattern = randomText(random, 6, "ab1?*#*");
        const bool expected = modelLike(text, pattern);
        ASSERT_EQ(ISLIKE(text, pattern), expected) << "'" << text << "' '" << pattern << "'";
        likes += expected ? 1 : 0;
    }
    EXPECT_GT(likes, 500);
}

// ---- patterns made to take long ----

double secondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST_F(Patterns, ManyClosuresInARowEndSoon) {
    const std::string text(10000, 'a');
    std::string stars, marks, any;
    for (int i = 0; i < 10; ++i) stars += "a*";
    for (int i = 0; i < 200; ++i) marks += "a?";
    for (int i = 0; i < 10; ++i) any += ".*";
    for (const std::string& pattern : {stars + "b", marks + "b", any + "b", stars + any + marks + "b$"})
        EXPECT_LT(secondsOf([&] { EXPECT_EQ(GETMATCHPOS(text, pattern), MatchPlace{}); }), 1.0) << pattern;
    EXPECT_LT(secondsOf([&] { EXPECT_FALSE(ISLIKE(text, "*a*a*a*a*a*a*a*a*b")); }), 1.0);
    EXPECT_EQ(GETMATCHPOS(text + "b", stars + "b"), MatchPlace({1, 10002}));
    EXPECT_EQ(GETMATCHPOS(text, marks + "$"), MatchPlace({9801, 10001}));
}

TEST_F(Patterns, AsManyClosuresAsThereAreCharactersNeedNoStack) {
    std::string pattern;
    for (int i = 0; i < 50000; ++i) pattern += "a?";
    EXPECT_EQ(GETMATCHPOS(std::string(100, 'a'), pattern + "b"), MatchPlace{});
    EXPECT_EQ(GETMATCHPOS(std::string(100, 'a'), pattern), MatchPlace({1, 101}));
}

TEST_F(Patterns, WorkBeyondTheLimitIsGivenUpWithAnError) {
    const std::string text(100000, 'a');
    const std::string pattern = std::string(50000, 'a') + "b";
    EXPECT_LT(secondsOf([&] { EXPECT_EQ(GETMATCHPOS(text, pattern), MatchPlace{}); }), 10.0);
    EXPECT_EQ(ErrorCell(), ERR_OUT_OF_STACK);
    ClearError();
    EXPECT_FALSE(ISMATCH(text, pattern));
    EXPECT_EQ(ErrorCell(), ERR_OUT_OF_STACK);
    ClearError();
}

TEST_F(Patterns, ALongTextIsSearchedWhole) {
    std::string text(4000000, 'x');
    EXPECT_EQ(GETMATCHPOS(text, "a*b"), MatchPlace{});
    text += "aab";
    EXPECT_EQ(GETMATCHPOS(text, "a*b"), MatchPlace({4000001, 4000004}));
    EXPECT_TRUE(ISLIKE(text, "x*aab"));
}

}  // namespace
}  // namespace tarn
