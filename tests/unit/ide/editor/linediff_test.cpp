// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/linediff.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <vector>

namespace tarn {
namespace {

TEST(LineDifference, ShowsChangedLinesWithTheirNeighbours) {
    const struct {
        const char *first, *second, *difference;
    } rows[] = {
        {"", "", ""},
        {"a\n", "a\n", ""},
        {"", "a\n", "Line 1:\n+ a\n"},
        {"a\n", "", "Line 1:\n- a\n"},
        {"a\nb\nc\n", "a\nB\nc\n", "Line 1:\n  a\n- b\n+ B\n  c\n"},
        {"1\n2\n3\n4\n5\n", "1\n2\n3\nx\n4\n5\n", "Line 2:\n  2\n  3\n+ x\n  4\n  5\n"},
        {"a", "a\n", "Line 1:\n- a  (no line end)\n+ a\n"},
        {"a\r\n", "a\n", "Line 1:\n- a  (CR LF)\n+ a\n"},
        {"\xff\n", "\xfe\n", "Line 1:\n- \xff\n+ \xfe\n"},
        {"x\n1\n2\n3\n4\n5\n6\ny\n", "X\n1\n2\n3\n4\n5\n6\nY\n",
         "Line 1:\n- x\n+ X\n  1\n  2\nLine 6:\n  5\n  6\n- y\n+ Y\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(LINEDIFFERENCE(row.first, row.second, 100), row.difference)
            << row.first << "|" << row.second;
}

TEST(LineDifference, IsCutBehindTheMostLines) {
    EXPECT_EQ(LINEDIFFERENCE("", "1\n2\n3\n", 2), "Line 1:\n+ 1\n+ 2\n...(more)...\n");
}

// Applies what the difference of short lines says.
std::string applied(const std::string& first, const std::string& difference, bool& fits) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < first.size();) {
        const std::size_t end = first.find('\n', at) + 1;
        lines.push_back(first.substr(at, end - at));
        at = end;
    }
    std::string out;
    std::size_t next = 0;
    for (std::size_t at = 0; at < difference.size();) {
        const std::size_t end = difference.find('\n', at) + 1;
        const std::string row = difference.substr(at, end - at);
        at = end;
        if (row.starts_with("Line ")) {
            const auto number = static_cast<std::size_t>(std::stoi(row.substr(5)));
            while (next + 1 < number && next < lines.size()) out += lines[next++];
            continue;
        }
        if (row[0] == '+') {
            out += row.substr(2);
            continue;
        }
        fits = fits && next < lines.size() && lines[next] == row.substr(2);
        if (row[0] == ' ') out += row.substr(2);
        next++;
    }
    while (next < lines.size()) out += lines[next++];
    return out;
}

TEST(LineDifference, LeadsFromTheFirstTextToTheSecond) {
    std::mt19937 random(1);
    for (int round = 0; round < 500; round++) {
        std::string texts[2];
        for (std::string& text : texts)
            for (auto n = random() % 30; n > 0; n--) {
                text += "abcd"[random() % 4];
                text += '\n';
            }
        bool fits = true;
        EXPECT_EQ(applied(texts[0], LINEDIFFERENCE(texts[0], texts[1], 1000), fits), texts[1]);
        EXPECT_TRUE(fits);
    }
}

TEST(LineDifference, OfLargeTextsIsFoundSoon) {
    std::string a, b;
    for (int i = 0; i < 200'000; i++) {
        a += "first " + std::to_string(i) + "\n";
        b += "second " + std::to_string(i) + "\n";
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(LINEDIFFERENCE(a, b, 2000), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(LinesChanged, CountALineThatIsAnotherOnce) {
    struct Row {
        const char *first, *second;
        int changed;
    };
    const Row rows[] = {
        {"", "", 0},
        {"a\nb\n", "a\nb\n", 0},
        {"a\nb\n", "a\nx\n", 1},
        {"a\nb\n", "a\n", 1},
        {"a\n", "a\nb\n", 1},
        {"", "a\nb\nc\n", 3},
        {"a\nb\nc\n", "", 3},
        {"a\nb\nc\n", "x\nb\ny\n", 2},
        {"a\nb\nc\n", "a\nx\ny\nz\nc\n", 3},
        {"a\nb\n", "a\r\nb\n", 1},
        {"a\nb", "a\nb\n", 1},
    };
    for (const auto& [first, second, changed] : rows)
        EXPECT_EQ(LINESCHANGED(first, second), changed) << first << "---\n" << second;
}

}  // namespace
}  // namespace tarn
