// SPDX-License-Identifier: Apache-2.0
//
// Splitting, replacing in part, and texts of four million bytes.
#include "library/system/system.h"

#include "kernel/lists/lists.h"
#include "kernel/values/owned.h"
#include "kernel/values/strings.h"
#include "support/errorcell.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

namespace tarn {
namespace {

using Parts = std::vector<std::string>;

TEST(Splitting, TheFirstWordAndTheRest) {
    struct Case {
        const char *text, *left, *right;
    };
    for (const Case& c :
         {Case{"one two three", "one", "two three"}, Case{"  one\t two ", "one", "two"},
          Case{"one", "one", ""}, Case{"", "", ""}, Case{" \t", "", ""}, Case{"a\nb c", "a\nb", "c"}}) {
        const StringPair pair = STRSPLIT(c.text);
        EXPECT_EQ(pair.left, c.left) << c.text;
        EXPECT_EQ(pair.right, c.right) << c.text;
    }
}

TEST(Splitting, AtTheFirstSeparator) {
    struct Case {
        const char *text, *separator, *left, *right;
    };
    for (const Case& c : {Case{"a=b=c", "=", "a", "b=c"}, Case{"a : b", " : ", "a", "b"},
                          Case{"=b", "=", "", "b"}, Case{"a=", "=", "a", ""}, Case{"none", "=", "none", ""},
                          Case{"a", "", "a", ""}, Case{"", "=", "", ""}, Case{"aXbxc", "x", "aXb", "c"}}) {
        const StringPair pair = STRSPLIT(c.text, c.separator);
        EXPECT_EQ(pair.left, c.left) << c.text;
        EXPECT_EQ(pair.right, c.right) << c.text;
    }
}

TEST(Splitting, IntoAllPartsOrTheFirstOfThem) {
    struct Case {
        const char *text, *separator;
        int most;
        Parts parts;
    };
    const Case cases[] = {{"a,b,c", ",", 0, {"a", "b", "c"}},
                          {"a,b,c", ",", 2, {"a", "b,c"}},
                          {"a,b,c", ",", 1, {"a,b,c"}},
                          {"a,b,c", ",", 9, {"a", "b", "c"}},
                          {"a,b,c", ",", -1, {"a", "b", "c"}},
                          {",,", ",", 0, {"", "", ""}},
                          {"a", ",", 0, {"a"}},
                          {"", ",", 0, {}},
                          {"aaa", "aa", 0, {"", "a"}},
                          {"abc", "", 0, {"abc"}}};
    for (const Case& c : cases) EXPECT_EQ(STRSPLIT(c.text, c.separator, c.most), c.parts) << c.text;
}

class SplitLists : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { EXPECT_EQ(takeError(), 0); }
    static ListValue list(std::int32_t capacity = UNBOUNDED) {
        ListValue made;
        const String shape;
        ListInit(made.get(), capacity, shape.get(), KindString, false);
        return made;
    }
    static Parts textsOf(const ListValue& value) {
        Parts texts;
        for (std::int32_t n = 1; n <= ListCount(value.get()); ++n)
            texts.emplace_back(StringView(static_cast<const StringDescriptor*>(ListRef(value.get(), n))));
        return texts;
    }
};

TEST_F(SplitLists, TheStringsOfAListAreReplacedByTheParts) {
    ListValue parts = list();
    STRSPLIT("a;b", ";", 0, parts.get());
    EXPECT_EQ(textsOf(parts), (Parts{"a", "b"}));
    STRSPLIT(StringView(static_cast<const StringDescriptor*>(ListRef(parts.get(), 2))), "x", 0, parts.get());
    EXPECT_EQ(textsOf(parts), (Parts{"b"})) << "the text was one of the list";
    STRSPLIT("", ";", 0, parts.get());
    EXPECT_EQ(textsOf(parts), Parts{});
    ListValue untyped;
    ListInit(untyped.get(), UNBOUNDED, nullptr, KindNone, false);
    STRSPLIT("a;b;c", ";", 2, untyped.get());
    EXPECT_EQ(textsOf(untyped), (Parts{"a", "b;c"}));
}

TEST_F(SplitLists, AListWithoutRoomHasThePartsThatFit) {
    ListValue parts = list(2);
    STRSPLIT("a;b;c;d", ";", 0, parts.get());
    EXPECT_EQ(takeError(), 618);
    EXPECT_EQ(textsOf(parts), (Parts{"a", "b"}));
}

TEST_F(SplitLists, OtherListsAreRefused) {
    ListValue numbers;
    ListInit(numbers.get(), UNBOUNDED, nullptr, KindInteger, false);
    STRSPLIT("a;b", ";", 0, numbers.get());
    EXPECT_EQ(takeError(), 761);
    STRSPLIT("a;b", ";", 0, static_cast<ListDescriptor*>(nullptr));
    EXPECT_EQ(takeError(), 761);
}

TEST(Replacing, BeginsAndEndsWhereItIsTold) {
    EXPECT_EQ(STRREPLACE("aAaA", "a", "x"), "xxxx");
    EXPECT_EQ(STRREPLACE("aAaA", "a", "x", false), "xAxA");
    EXPECT_EQ(STRREPLACE("aAaA", "a", "x", true, 3), "aAxx");
    EXPECT_EQ(STRREPLACE("aAaA", "a", "x", true, 2, 1), "axaA");
    EXPECT_EQ(STRREPLACE("aAaA", "a", "x", true, -5, 3), "xxxA");
    EXPECT_EQ(STRREPLACE("aAaA", "a", "x", true, 99), "aAaA");
    EXPECT_EQ(STRREPLACE("aaa", "aa", "a"), "aa") << "it goes on behind what it put in";
    EXPECT_EQ(STRREPLACE("aaa", "", "x"), "aaa");
}

TEST(Trimming, OfLineEndsAloneLeavesBlanks) {
    EXPECT_EQ(STRLTRIMCRLF("\r\n\n a\r\n"), " a\r\n");
    EXPECT_EQ(STRLTRIMCRLF(" \n"), " \n");
    EXPECT_EQ(STRLTRIMCRLF("\r\n"), "");
    EXPECT_EQ(STRLTRIMCRLF(""), "");
    EXPECT_EQ(STRRTRIMCRLF("a \r\n"), "a ");
}

// Every way of searching finds what the plainest one finds.
TEST(Searching, AgreesWithThePlainestWay) {
    std::mt19937 random(3);
    for (int round = 0; round < 4000; ++round) {
        std::string text(random() % 60 + (round % 50 == 0 ? 20'000 : 0), 'a'), what(random() % 5 + 1, 'a');
        for (char& c : text) c = "abAB"[random() % 4 & (round % 3 == 0 ? 0 : 3)];
        if (round % 50 == 0) what.assign(3000, 'a'), what.back() = 'b', text += what;
        for (char& c : what)
            if (what.size() < 10) c = "abAB"[random() % 4];
        const std::string lowText = STRLOWER(text), lowWhat = STRLOWER(what);
        for (std::size_t from = 0, n = 0; n < 4; ++n) {
            const std::size_t exact = text.find(what, from), loose = lowText.find(lowWhat, from);
            EXPECT_EQ(STRFIND(what, text, static_cast<int>(from) + 1, false), static_cast<int>(exact + 1))
                << round;
            EXPECT_EQ(STRFIND(what, text, static_cast<int>(from) + 1, true), static_cast<int>(loose + 1))
                << round;
            from = loose == std::string::npos ? 0 : loose + 1;
        }
    }
}

// ---- four million bytes: what is not linear does not end within the time ----

constexpr std::size_t Large = 4'000'000;

class LargeTexts : public ::testing::Test {
protected:
    static void quick(const char* what, const std::function<void()>& work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        EXPECT_LT(seconds.count(), 5) << what;
    }
    static std::string repeated(std::string_view piece) {
        std::string text;
        while (text.size() < Large) text += piece;
        return text;
    }
    static int words(std::string_view text) {
        int count = 0;
        for (std::size_t position = 1; position <= text.size();) {
            if (NextWord(text, position).empty())
                ++position;
            else
                ++count;
        }
        return count;
    }
};

TEST_F(LargeTexts, AreReadWordByWord) {
    const std::string code = repeated("count := count + 1  // a comment with words, and 0x1F numbers\n");
    quick("NextWord over class text", [&] { EXPECT_GT(words(code), 500'000); });
    for (const char* hostile :
         {"\"", "\"\"\"", "[1,", "[1:2 ", "+", "1E+", "0x", "#", "=", "<", "a", "\x01\"", "[[ "})
        quick((std::string("NextWord over ") + hostile).c_str(), [text = repeated(hostile)] { words(text); });
    quick("NextWord over an open set", [text = "[" + repeated("1,")] { words(text); });
    quick("NextWord over an open string", [text = "\"" + repeated("a ")] { words(text); });
}

TEST_F(LargeTexts, AreSearchedWhateverStandsInThem) {
    const std::string text = repeated("a"), half = std::string(Large / 2, 'a') + 'b';
    for (const bool ignoreCase : {false, true}) {
        quick(ignoreCase ? "STRFIND of a half, any case" : "STRFIND of a half",
              [&] { EXPECT_EQ(STRFIND(half, text, 1, ignoreCase), 0); });
        quick("STRREPLACE of each character",
              [&] { EXPECT_EQ(STRREPLACE(text, "A", "bb", ignoreCase).size() > Large, ignoreCase); });
        quick("STRREPLACE of what ends late", [&] {
            EXPECT_EQ(STRREPLACE(text, std::string(1000, 'a') + "b", "", ignoreCase).size(), Large);
        });
    }
    quick("STRFIND from hit to hit", [&] {
        int hits = 0;
        for (int at = 0; (at = STRFIND("aaaa", text, at + 1)) != 0; at += 3) ++hits;
        EXPECT_EQ(hits, 1'000'000);
    });
}

TEST_F(LargeTexts, AreChangedAndTakenApart) {
    const std::string lines = repeated("a line of text\n");
    quick("STRNL2CRNL", [&] { EXPECT_GT(STRNL2CRNL(lines).size(), Large); });
    quick("STRSPLIT", [&] { EXPECT_GT(STRSPLIT(lines, "\n", 0).size(), 260'000U); });
    quick("STRLINES", [&] { EXPECT_GT(STRLINES(lines), 260'000); });
    quick("HEXSTR", [&] { EXPECT_EQ(HEXSTR(lines).size(), lines.size() * 2); });
    quick("STRTRIM", [] { EXPECT_EQ(STRTRIM(std::string(Large, ' ')), ""); });
    quick("STRTOIDENTIFIER", [&] { EXPECT_EQ(STRTOIDENTIFIER(lines, "", "_").size(), lines.size()); });
    quick("SPLITARGUMENTS", [&] { EXPECT_GT(SPLITARGUMENTS(lines).size(), 1'000'000U); });
    quick("TYPEINFOFIXIDENTIFIERS", [text = repeated("order no : string[10]\n")] {
        EXPECT_EQ(TYPEINFOFIXIDENTIFIERS(text, "_").size(), text.size());
    });
}

// ---- names of columns ----

TEST(ColumnNames, AreMadeIdentifiersLineByLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"order no : string[10]\n", "order_no : string[10]\n"},
        {"end : integer\n", "end_1 : integer\n"},
        {"delete_flag : Tchar\n", "delete_flag : Tchar\n"},
        {"end record\nend list\nend table\n", "end record\nend list\nend table\n"},
        {"no split here\n", "no split here\n"},
    };
    for (const auto& [text, repaired] : cases) EXPECT_EQ(TYPEINFOFIXIDENTIFIERS(text, "_"), repaired) << text;
}

TEST(ColumnNames, AReplacementOfSeveralCharactersCountsByItsFirst) {
    EXPECT_EQ(STRTOIDENTIFIER("1 a-b", "", "xyz"), "x1xaxb");
    EXPECT_EQ(STRTOIDENTIFIER("1 a-b", "", ""), "1ab");
    EXPECT_EQ(STRTOIDENTIFIER("", "", "_"), "");
    EXPECT_EQ(STRTOIDENTIFIER("end", "", "_"), "end") << "reserved words are the caller's part";
}

}  // namespace
}  // namespace tarn
