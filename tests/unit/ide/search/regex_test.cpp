// SPDX-License-Identifier: GPL-3.0-or-later
//
// Regular expressions: what they find in any bytes, what their groups put in, and that no pattern takes longer than it
// may.
#include "ide/search/regex.h"

#include "ide/search/searchdialogs.h"
#include "library/dialogs/finddlgs.h"

#include <gtest/gtest.h>

#include <chrono>

namespace tarn {
namespace {

std::string hits(const char* pattern, std::string_view text, bool word = false, bool matchCase = true) {
    RegexSearch search(pattern, word, matchCase);
    std::string places;
    for (TextHit hit = search.next(text, 1); hit.start != 0; hit = search.next(text, hit.start + hit.length))
        places += std::to_string(hit.start) + "+" + std::to_string(hit.length) + " ";
    return places + search.problem();
}

TEST(Regex, FindsInAnyBytes) {
    struct Case {
        const char *pattern, *text;
        const char* hits;
    };
    for (const Case& c : {Case{"o+", "foo bo", "2+2 6+1 "},
                          {"^b", "a\nb\nb", "3+1 5+1 "},
                          {"a$", "a\nba\n", "1+1 4+1 "},
                          {"a.b", "a\nb", ""},
                          {"x*", "axx", "2+2 "},  // a hit has at least one byte
                          {"^", "abc", ""},
                          {"\\bfoo\\b", "foofoo foo", "8+3 "},
                          {".", "\xC3\xA4x", "1+2 3+1 "},         // characters of UTF-8
                          {".", "\xE4\xC3\xA4", "1+1 2+1 3+1 "},  // else bytes
                          {"\\xE4", "\xE4", "1+1 "},
                          {"[\xC3\xA4\xC3\xB6]", "o\xC3\xB6", "2+2 "},
                          {"(*UTF)x", "\xFFx", ""},
                          {"(a)|b", "ba", "1+1 2+1 "},
                          {"(?=b)", "ab", ""},
                          {"a\\Kb", "ab", "2+1 "},
                          {"a$", "a\r\nba\r\n", "1+1 5+1 "},  // both kinds of line ends
                          {"^.+$", "ab\r\ncd\nef\r\n", "1+2 5+2 8+2 "},
                          {"^b", "a\r\nb", "4+1 "},
                          {"a\r\nb", "a\r\nb", "1+4 "},
                          {"b\\n", "b\r\nb\n", "4+2 "}})
        EXPECT_EQ(hits(c.pattern, c.text), c.hits) << c.pattern;
    EXPECT_EQ(hits("A", "aA", false, false), "1+1 2+1 ");
    EXPECT_EQ(hits("\xC3\x84", "\xC3\xA4", false, false), "1+2 ");
    EXPECT_EQ(hits("fo+", "foo _foo foo1 foo", true), "1+3 15+3 ");
    EXPECT_EQ(hits("a\\x00b", std::string_view("a\0b", 3)), "1+3 ");
}

TEST(Regex, BeginsAtACharacter) {
    RegexSearch search(".", false, true);
    EXPECT_EQ(search.next("\xC3\xA4x", 2).start, 3);
    EXPECT_EQ(search.next("\xC3\xA4x", 9).start, 0);
}

TEST(Regex, LooksAgainAtATextThatChangedInPlace) {
    RegexSearch search("x", false, true);
    std::string text = "\xC3\xA4 x";
    EXPECT_EQ(search.next(text, 1).start, 4);
    text[1] = 'x';
    search.anew();
    EXPECT_EQ(search.next(text, 1).start, 2);
}

TEST(Regex, TellsWhatIsWrongAndWhere) {
    struct Case {
        const char *pattern, *problem;
    };
    for (const Case& c :
         {Case{"(", "The pattern is not valid at character 1:\nmissing closing parenthesis."},
          {"ab[", "The pattern is not valid at character 3:\nmissing terminating ] for character class."},
          {"*", "The pattern is not valid at character 0:\nquantifier does not follow a repeatable item."}}) {
        RegexSearch search(c.pattern, false, true);
        EXPECT_EQ(search.problem(), c.problem);
        EXPECT_EQ(search.next("aaa", 1).start, 0);
    }
    EXPECT_EQ(RegexSearch(std::string(20'000, 'a'), false, true).problem(), "The pattern is too long.");
    EXPECT_NE(RegexSearch("\\C", false, true).problem(), "");
    EXPECT_NE(RegexSearch(std::string(2000, '(') + std::string(2000, ')'), false, true).problem(), "");
    EXPECT_NE(RegexSearch("(((a{1000}){1000}){1000}){1000}", false, true).problem(), "");
}

TEST(Regex, PutsGroupsIn) {
    struct Case {
        const char *pattern, *text, *with, *result;
    };
    for (const Case& c : {Case{"(\\w+)=(\\w+)", "a=b, cc=dd", "$2=$1", "b=a, dd=cc"},
                          {"x", "axb", "[$0]", "a[x]b"},
                          {"x", "axb", "$$1$", "a$1$b"},
                          {"x", "axb", "\\n\\t\\\\\\x", "a\n\t\\\\xb"},
                          {"x", "axb\r\n", "\\n", "a\r\nb\r\n"},  // the line ends of the text
                          {"x", "axb\nc\r\n", "\\n", "a\nb\nc\r\n"},
                          {"(a)|(b)", "ab", "<$1$2>", "<a><b>"},
                          {"(a)", "a", "$2${1}${10}${}${x}", "a${}${x}"},
                          {"^", "abc", "x", "abc"},
                          {"^a", "aaa", "", "aa"},
                          {"\\s+$", "a  \nb \n", "", "a\nb"}}) {
        RegexSearch search(c.pattern, false, true);
        EXPECT_EQ(APPLIED(c.text, *REPLACEMENTS(c.text, search, c.with, 1, true, 1000)), c.result)
            << c.pattern;
    }
}

// ---- time ----

constexpr std::int64_t Patience = 200'000'000;  // nanoseconds

double secondsFor(RegexSearch& search, const std::string& text) {
    const auto began = std::chrono::steady_clock::now();
    EXPECT_EQ(search.next(text, 1).start, 0);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

// Each of them would need more time than there is: by steps back, or by walking over the same text again and again
// without one.
TEST(RegexTime, HostilePatternsEndWithAMessage) {
    const std::string run = std::string(4'000'000, 'a') + "!";
    for (const char* pattern :
         {"(a+)+$", "(a+)+[bc]", "(a|a)*[bc]", "(a|aa)+[bc]", "(.*)*[xy]", "(?:a*)*[bc]", "a*+[bc]",
          "(?>a*)[bc]", "(?:(?=a*+[bc])|a)*[cd]", "a*a*a*a*[bc]", "(?:a++)++[bc]", "(a?){25}a{25}[bc]",
          "(a*)*\\1[bc]", "((a+)|(b+))*+[cd]", "(?R)?a*+[bc]", "(?:.(?=.*+[bc]))*[cd]",
          "(?:(?!a*+[bc])a)*+[cd]", "(a+)+b"}) {
        RegexSearch search(pattern, false, true, Patience);
        ASSERT_EQ(search.problem(), "") << pattern;
        EXPECT_LT(secondsFor(search, run), 5) << pattern;  // the limit, and what the machine does beside it
        if (!search.problem().empty()) {
            EXPECT_EQ(search.problem(), "The pattern needs too much time.") << pattern;
        }
        EXPECT_EQ(search.next(run, 1).start, 0);  // at once
    }
    RegexSearch search("(a+)+$", false, true, Patience);
    secondsFor(search, run);
    EXPECT_EQ(search.problem(), "The pattern needs too much time.");
    search.anew();
    EXPECT_EQ(search.problem(), "");
}

TEST(RegexTime, OrdinaryPatternsFindTheirWayThroughLargeTexts) {
    std::string text;
    while (text.size() < 4'000'000)
        text += "    if count > 0 then result := result + STR(count) // the sum of all\r\n";
    text += "the_end = 1\n";
    for (const char* pattern : {"the_end\\s*=", "^[a-z_]+ = \\d$", "(\\w+) = 1", "[Tt]he_\\w+"}) {
        RegexSearch search(pattern, false, true);
        EXPECT_GT(search.next(text, 1).start, 4'000'000) << pattern << " " << search.problem();
    }
}

// ---- counting ----

TEST(CountedHits, AreToldInWords) {
    const auto count = [](const char* what, const std::string& text, bool regex = false) {
        return COUNTHITS(text, *MAKESEARCH(what, false, true, regex));
    };
    EXPECT_EQ(count("x", "abc"), "No hits");
    EXPECT_EQ(count("a", "abc"), "1 hit");
    EXPECT_EQ(count("a", "aaa"), "3 hits");
    EXPECT_EQ(count("a.", "abaa", true), "2 hits");
    EXPECT_EQ(count("a", std::string(1234, 'a')), "1,234 hits");
    EXPECT_EQ(count("(", "aaa", true), "Not a valid pattern");
    const auto began = std::chrono::steady_clock::now();
    const std::string many = count("a", std::string(4'000'000, 'a'));
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(2));
    EXPECT_TRUE(many.starts_with("More than ") || many == "4,000,000 hits") << many;
    RegexSearch slow("(a+)+$", false, true, Patience);
    EXPECT_EQ(COUNTHITS(std::string(100'000, 'a') + "!", slow), "Too slow to count");
}

}  // namespace
}  // namespace tarn
