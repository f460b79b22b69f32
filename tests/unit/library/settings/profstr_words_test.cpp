// SPDX-License-Identifier: Apache-2.0
//
// Words and tokens of a text, and the sample text that is made of them.
#include "library/settings/profstr.h"
#include "os/text/ascii.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

// ---- words and sample text ----

TEST(Words, AreRunsOfTheCharacters33To126) {
    const std::string text = " one\ttwo\xC3\xA4three \r\n ~!\x7F\"four five\" ";
    EXPECT_EQ(STRWORDCOUNT(text), 6);
    const char* words[] = {"", "one", "two", "three", "~!", "\"four", "five\"", ""};
    const int positions[] = {0, 2, 6, 11, 20, 23, 29, 0};
    for (int n = 0; n <= 7; ++n) {
        EXPECT_EQ(STRWORD(text, n), words[n]) << n;
        EXPECT_EQ(STRWORDPOS(text, n), positions[n]) << n;
    }
    EXPECT_EQ(STRWORDCOUNT(""), 0);
    EXPECT_EQ(STRWORD("", 1), "");
    EXPECT_EQ(STRWORDPOS("x", -1), 0);
}

TEST(Words, TokensMayHoldBlanksBetweenQuotes) {
    const std::string text = "  \"a b\" 12 x\"y z\" \"open end ";
    EXPECT_EQ(STRTOKENCOUNT(text), 5);
    const char* tokens[] = {"\"a b\"", "12", "x\"y", "z\"", "\"open end "};
    for (int n = 1; n <= 5; ++n) EXPECT_EQ(STRTOKEN(text, n), tokens[n - 1]) << n;
    EXPECT_EQ(STRTOKENPOS(text, 1), 3);
    EXPECT_EQ(STRTOKENPOS(text, 2), 9);
    EXPECT_EQ(STRTOKENPOS(text, 6), 0);
    EXPECT_EQ(STRTOKEN("\"a\"b", 1), "\"a\"");
    EXPECT_EQ(STRTOKEN("\"a\"b", 2), "b");
    EXPECT_EQ(STRTOKEN("\"", 1), "\"");
}

TEST(Words, AddwordSeparatesUnlessALineHasEnded) {
    std::string text;
    ADDWORD("a", ", ", text);
    ADDWORD("b", ", ", text);
    text += "\n";
    ADDWORD("c", ", ", text);
    EXPECT_EQ(text, "a, b\nc");
}

TEST(Words, CaseOfOneCharacterChangesForAsciiLettersOnly) {
    for (int c = -1; c < 300; ++c) {
        EXPECT_EQ(TOUPPER(c), c >= 'a' && c <= 'z' ? c - 32 : c);
        EXPECT_EQ(TOLOWER(c), c >= 'A' && c <= 'Z' ? c + 32 : c);
    }
}

class SampleText : public ::testing::Test {
protected:
    void TearDown() override { useRandomSource(nullptr); }
};

TEST_F(SampleText, ASentenceIsDrawnFromTheListsInOrder) {
    useRandomSource([](unsigned) { return 0u; });
    EXPECT_EQ(CREATEAUTOSENTENCE(), "The aardvark ate the alien artifact.");  // 0 leaves the adjective out
    useRandomSource([](unsigned bound) { return bound - 1; });
    EXPECT_EQ(CREATEAUTOSENTENCE(), "A zealous zebra zealously searched a zoological specimen.");
    useRandomSource([](unsigned bound) { return bound == 2 || bound == 3 ? 1u : 0u; });
    EXPECT_EQ(CREATEAUTOSENTENCE(), "An avaricious aardvark ate an alien artifact.");
}

TEST_F(SampleText, TheListsHaveAllTheirWords) {
    static std::vector<unsigned> bounds;
    bounds.clear();
    useRandomSource([](unsigned bound) {
        bounds.push_back(bound);
        return 1u;
    });
    EXPECT_EQ(CREATEAUTOSENTENCE(), "A bedraggled bandicoot broke a banana.");
    EXPECT_EQ(bounds, (std::vector<unsigned>{2, 3, 29, 26, 29, 2, 30}));
}

TEST_F(SampleText, TheArticleFollowsTheNextWord) {
    EXPECT_EQ(FIXINDEFINITEPART("a emu saw an zebra and a  apple"), "an emu saw a zebra and an  apple");
    EXPECT_EQ(FIXINDEFINITEPART("A eel, AN yak, a"), "An eel, A yak, a");
    EXPECT_EQ(FIXINDEFINITEPART(""), "");
    EXPECT_EQ(FIXINDEFINITEPART(" a Orange\n"), " an Orange\n");
}

TEST_F(SampleText, ATextEndsWithAWholeSentenceOnceItIsLongEnough) {
    useRandomSource([](unsigned) { return 0u; });
    const std::string sentence = "The-aardvark-ate-the-alien-artifact.";
    EXPECT_EQ(CREATEAUTOTEXT(0, "-"), "");
    EXPECT_EQ(CREATEAUTOTEXT(-5, "-"), "");
    EXPECT_EQ(CREATEAUTOTEXT(1, "-"), sentence);
    EXPECT_EQ(CREATEAUTOTEXT(static_cast<int>(sentence.size()), "-"), sentence);
    EXPECT_EQ(CREATEAUTOTEXT(static_cast<int>(sentence.size()) + 1, "-"), sentence + "-" + sentence);
}

TEST_F(SampleText, TheSystemsSourceGivesSentences) {
    for (int i = 0; i < 50; ++i) {
        const std::string sentence = CREATEAUTOSENTENCE();
        EXPECT_TRUE(ascii::isUpper(sentence.front()) && sentence.back() == '.') << sentence;
    }
}

}  // namespace
}  // namespace tarn
