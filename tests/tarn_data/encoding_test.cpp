// SPDX-License-Identifier: Apache-2.0
//
// Which encoding the bytes of a file are in, and where the first byte stands that is no UTF-8.
#include "tarn_data/base/encoding.h"
#include "tarn_data/base/shown.h"
#include "tarn_data/fixture.h"

namespace tarn::datatool {
namespace {

using namespace std::string_literals;

class Encodings : public TarnData {
protected:
    EncodingFacts factsOf(const std::string& bytes) {
        EncodingFacts facts;
        write("f", bytes);
        EXPECT_FALSE(findEncoding(dir / "f", facts).any());
        return facts;
    }
};

TEST_F(Encodings, AreToldByMarksAndBytes) {
    const struct {
        std::string bytes;
        Encoding encoding;
        std::size_t mark;
        std::int64_t bad, line;
    } cases[] = {
        {"", Encoding::Utf8, 0, -1, 0},
        {"plain\n", Encoding::Utf8, 0, -1, 0},
        {"\xEF\xBB\xBF"
         "a",
         Encoding::Utf8, 3, -1, 0},
        {"h\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", Encoding::Utf8, 0, -1, 0},
        {"a\nb\n\xE9t", Encoding::Latin1, 0, 4, 3},
        {"a\x80", Encoding::Windows1252, 0, 1, 1},
        {"\xE9 and \x93quotes\x94", Encoding::Windows1252, 0, 0, 1},
        {"cut \xE2\x82", Encoding::Windows1252, 0, 4, 1},
        {"long \xC0\x80", Encoding::Windows1252, 0, 5, 1},
        {"surrogate \xED\xA0\x80", Encoding::Windows1252, 0, 10, 1},
        {"\xEF\xBB\xBF"
         "a\xE9",
         Encoding::Latin1, 3, 4, 1},
        {"\xFF\xFE"
         "a\0"s,
         Encoding::Utf16Little, 2, -1, 0},
        {"\xFE\xFF"
         "\0a"s,
         Encoding::Utf16Big, 2, -1, 0},
        {"a\0,\0b\0\n\0"s, Encoding::Utf16Little, 0, -1, 0},
        {"\0a\0,\0b\0\n"s, Encoding::Utf16Big, 0, -1, 0},
        {"a,b\nx\0y\n"s, Encoding::Utf8, 0, -1, 0},
    };
    for (const auto& c : cases) {
        const EncodingFacts facts = factsOf(c.bytes);
        EXPECT_EQ(facts.encoding, c.encoding) << c.bytes;
        EXPECT_EQ(facts.markBytes, c.mark) << c.bytes;
        EXPECT_EQ(facts.firstBad, c.bad) << c.bytes;
        EXPECT_EQ(facts.firstBadLine, c.line) << c.bytes;
    }
}

TEST_F(Encodings, CharactersAcrossBlocksAreWhole) {
    for (const std::size_t ahead : {262141U, 262142U, 262143U, 262144U}) {
        const std::string text = std::string(ahead, 'x') + "\xF0\x9F\x98\x80" + std::string(10, 'y');
        EXPECT_EQ(factsOf(text).firstBad, -1) << ahead;
        EXPECT_EQ(factsOf(text + "\xE9").firstBad, static_cast<std::int64_t>(text.size())) << ahead;
    }
}

TEST_F(Encodings, ProblemsAreToldAndNamesQuoted) {
    EncodingFacts facts;
    EXPECT_TRUE(findEncoding(dir / "none", facts).any());
    EXPECT_EQ(iconvCommand("d/it's.csv", Encoding::Utf16Little),
              "iconv -f UTF-16LE -t UTF-8 'd/it'\\''s.csv' >'it'\\''s-utf8.csv'");
    EXPECT_EQ(iconvCommand("a", Encoding::Windows1252), "iconv -f WINDOWS-1252 -t UTF-8 'a' >'a-utf8'");
}

TEST_F(Encodings, TextsAreShownWithoutControlsAndHalves) {
    EXPECT_EQ(shown("a\x1B[0m\n\x7F\xC2\x9B\xE9h\xC3\xA4"), "a\\x1B[0m\\x0A\\x7F\\xC2\\x9B\\xE9h\xC3\xA4");
    EXPECT_EQ(shownCell(std::string(60, 'x')), std::string(60, 'x'));
    EXPECT_EQ(shownCell(std::string(61, 'x')), std::string(60, 'x') + "...");
    EXPECT_EQ(shownCell(std::string(59, 'x') + "\xC3\xA4"), std::string(59, 'x') + "...");
    EXPECT_EQ(shownCell(std::string(59, 'x') + "\xE9\xE9"), std::string(59, 'x') + "\\xE9...");
}

}  // namespace
}  // namespace tarn::datatool
