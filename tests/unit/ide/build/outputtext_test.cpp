// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/outputtext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace tarn {
namespace {

std::string shown(const std::vector<std::string_view>& pieces) {
    OutputText text;
    for (const std::string_view piece : pieces) text.add(piece);
    text.end();
    return text.text();
}

TEST(OutputText, ShowsWhateverIsWritten) {
    using namespace std::string_view_literals;
    const struct {
        std::vector<std::string_view> pieces;
        std::string_view shown;
    } cases[] = {
        {{""}, ""},
        {{"a\n", "b"}, "a\nb"},
        {{"a\tb\n"}, "a\tb\n"},
        {{"a\r\nb\r", "\nc"}, "a\nb\nc"},
        {{"10 %\r20 %\r\r"}, "10 %\n20 %\n\n"},
        {{"\n\n"}, "\n\n"},
        {{"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"}, "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {{"\xC3", "\xA4 \xF0\x9F", "\x98\x80"}, "\xC3\xA4 \xF0\x9F\x98\x80"},
        {{"\xE4 und \xFF"}, "\\xE4 und \\xFF"},
        {{"\xC3"}, "\\xC3"},
        {{"\xE2\x82"}, "\\xE2\\x82"},
        {{"\xE2\x82", "a"}, "\\xE2\\x82a"},
        {{"\xC0\x80|\xED\xA0\x80|\xF4\x90\x80\x80|\xE0\x80\x80"},
         "\\xC0\\x80|\\xED\\xA0\\x80|\\xF4\\x90\\x80\\x80|\\xE0\\x80\\x80"},
        {{"\x1B[31mred\x7F\0|"sv}, "\\x1B[31mred\\x7F\\x00|"},
    };
    for (const auto& one : cases) EXPECT_EQ(shown(one.pieces), one.shown);
}

TEST(OutputText, ShowsTheSameHoweverItIsCutIntoPieces) {
    const std::string_view all = "a\r\n\xC3\xA4\xFF\xE2\x82\xAC\n\x01\xF0\x9F\x98\x80\r";
    const std::string whole = shown({all});
    for (std::size_t at = 1; at < all.size(); ++at)
        EXPECT_EQ(shown({all.substr(0, at), all.substr(at)}), whole) << at;
}

TEST(OutputText, KeepsTheLastLinesAndTellsHowManyWent) {
    OutputText text;
    for (std::size_t i = 0; i < OutputText::MostLines; ++i) text.add("x\n");
    EXPECT_EQ(text.cuts(), 0);
    EXPECT_EQ(text.text().size(), 2 * OutputText::MostLines);
    text.add("last\n");
    EXPECT_EQ(text.cuts(), 1);
    EXPECT_TRUE(text.text().starts_with("... " + std::to_string(text.dropped()) +
                                        " line(s) before these are not kept ...\n"));
    EXPECT_TRUE(text.text().ends_with("x\nlast\n"));
    EXPECT_EQ(static_cast<std::size_t>(text.dropped()),
              OutputText::MostLines + 1 - OutputText::MostLines * 3 / 4);
}

TEST(OutputText, StaysSmallWhateverComes) {
    OutputText lines, one;
    std::string piece;
    while (piece.size() < 65536) piece += "0123456789abcdef\n";
    for (int i = 0; i < 160; ++i) lines.add(piece);  // 10 MB
    EXPECT_LE(lines.text().size(), OutputText::MostBytes + 100);
    const std::string endless(65536, 'y');
    for (int i = 0; i < 160; ++i) one.add(endless);  // a line of 10 MB
    EXPECT_LE(one.text().size(), OutputText::MostBytes + OutputText::LongestLine + 100);
    std::size_t longest = 0, length = 0;
    for (const char c : one.text()) longest = std::max(longest, length = c == '\n' ? 0 : length + 1);
    EXPECT_EQ(longest, OutputText::LongestLine);
}

TEST(OutputText, SaysItsOwnOnLinesOfItsOwn) {
    OutputText text;
    text.add("half");
    text.addLine("[other]");
    text.add("more");
    EXPECT_EQ(text.text(), "half\n[other]\nmore");
    const std::int64_t cuts = text.cuts();
    text.clear();
    EXPECT_TRUE(text.empty());
    EXPECT_GT(text.cuts(), cuts) << "a window that shows it begins anew";
}

}  // namespace
}  // namespace tarn
