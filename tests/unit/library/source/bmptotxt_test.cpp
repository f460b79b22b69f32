// SPDX-License-Identifier: Apache-2.0
#include "library/source/bmptotxt.h"

#include "library/designer/propedit.h"
#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/bitmap.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <random>

namespace tarn {
namespace {

std::string allBytes() {
    std::string bytes;
    for (int i = 0; i < 256; i++) bytes += static_cast<char>(i);
    return bytes;
}

// ---- bytes as text ----

TEST(Literal, BytesThatCannotStandInATextAreCodes) {
    const std::pair<std::string, const char*> texts[] = {
        {"", ""},
        {"a", "\"a\""},
        {"BM ~", "\"BM ~\""},
        {"\n", "Chr(10)"},
        {"\"", "Chr(34)"},
        {"a\"b", "\"a\"+Chr(34)+\"b\""},
        {std::string("\0\0", 2), "Chr(0)+Chr(0)"},
        {"\x1F !\x7F\xFF", "Chr(31)+\" !\"+Chr(127)+Chr(255)"},
        {"BM6\x01", "\"BM6\"+Chr(1)"},
    };
    for (const auto& [bytes, text] : texts) EXPECT_EQ(BYTESTRINGTOLITERAL(bytes), text);
}

TEST(Literal, AlineEndsBehindTheByteThatMakesItLongerThan80) {
    // The quote counts: it and 80 letters are 81.
    EXPECT_EQ(BYTESTRINGTOLITERAL(std::string(79, 'a')), "\"" + std::string(79, 'a') + "\"");
    EXPECT_EQ(BYTESTRINGTOLITERAL(std::string(80, 'a')), "\"" + std::string(80, 'a') + "\"");
    EXPECT_EQ(BYTESTRINGTOLITERAL(std::string(81, 'a')), "\"" + std::string(80, 'a') + "\"+\n\"a\"");
    const std::string codes = BYTESTRINGTOLITERAL(std::string(30, '\1'));
    EXPECT_EQ(STRLINES(codes), 2);
    EXPECT_EQ(STRLINE(codes, 1), "Chr(1)+Chr(1)+Chr(1)+Chr(1)+Chr(1)+Chr(1)+Chr(1)+Chr(1)+Chr(1)+Chr(1)+"
                                 "Chr(1)+Chr(1)+");
    EXPECT_EQ(codes.substr(0, 7), "Chr(1)+");
    EXPECT_EQ(BYTESTRINGTOLITERAL(std::string(12, '\1')).back(), ')');  // no "+" behind the last byte
}

TEST(Literal, OfABitmapWithoutPrintableBytesHasCodesAlone) {
    const std::string text = BYTESTRINGTOLITERAL(std::string("\x01\x02\xFE", 3));
    EXPECT_EQ(text, "Chr(1)+Chr(2)+Chr(254)");
}

TEST(Literal, GivesItsBytesBack) {
    std::mt19937 random(7);
    std::vector<std::string> samples = {
        "",      allBytes(), bitmap(20, 20, 0x4D0022), std::string(500, '"'), "+-/*()Chr(1)", "//", "1 2 3",
        "[1,2]", "a\"\"b"};
    for (int round = 0; round < 200; round++) {
        std::string bytes;
        const bool printable = round % 2 == 0;
        for (auto n = random() % 400; n > 0; n--)
            bytes += static_cast<char>(printable ? 32 + random() % 95 : random());
        samples.push_back(bytes);
    }
    for (const std::string& bytes : samples)
        EXPECT_EQ(LITERALTOBYTESTRING(BYTESTRINGTOLITERAL(bytes)), bytes);
}

TEST(Literal, ItsLinesHaveNoOtherCharactersThanPrintableOnes) {
    const std::string text = BYTESTRINGTOLITERAL(allBytes() + allBytes());
    for (const char c : text) EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~'));
    for (int n = 1; n <= STRLINES(text); n++) EXPECT_LE(STRLINE(text, n).size(), 94U);
}

TEST(Literal, NumbersStringsAndNothingElseAreRead) {
    const std::pair<const char*, std::string> texts[] = {
        {"66, 77, 0", std::string("BM\0", 3)},
        {"Chr(66)+Chr(77)", "BM"},
        {"chr ( 66 ) + \"M\"", "BM"},
        {"\"B\" + \"M\"", "BM"},
        {"\"B\"\r\n\"M\"", "BM"},
        {"0x42 0x4DL", "BM"},
        {"+66 +77", "BM"},
        {"-1", "\xFF"},
        {"-190 322", "BB"},
        {"256 511", std::string("\0\xFF", 2)},
        {"99999999999999999999", std::string(1, static_cast<char>(255))},
        {"66.9", "B"},
        {"\"say \"\"B\"\"\"", "say \"B\""},
        {"\"\"", ""},
        {"\"open", ""},
        {"{66|77}", "BM"},
        {"[66,77]", ""},
        {"+ - * / ? \\ const A = ;", ""},
        {"\xFF\xC3 66", "B"},
        {"", ""},
    };
    for (const auto& [text, bytes] : texts) EXPECT_EQ(LITERALTOBYTESTRING(text), bytes) << text;
}

TEST(Literal, HostileTextsAreReadInNoTime) {
    const std::clock_t start = std::clock();
    for (const std::string piece : {"\"", "+", "[", "\"\n", "[1:", "1E+", "\"\"", "0x"}) {
        std::string text;
        while (text.size() < 200000) text += piece;
        EXPECT_LE(LITERALTOBYTESTRING(text).size(), text.size());
    }
    EXPECT_LT(std::clock() - start, 4 * CLOCKS_PER_SEC);
}

// ---- a file into a control ----

class BitmapText : public ::testing::Test {
protected:
    void SetUp() override {
        before = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question.text);
            return std::string("OK");
        }));
        put("w.rc", "Win DIALOG\n POSITION=0 0 90 90\n EDIT edit1 101\n  MULTILINE=1\n EDIT short 102\n"
                    "  MULTILINE=1\n  MAXLENGTH=20\nEND\n");
        Load(Object("Win"), folder / "w.rc", "Win");
        ASSERT_TRUE(IsLoaded(Object("Win"))) << ErrorDetails();
        edit = FINDCONTROL(Object("Win"), "edit1");
        SetText(edit, "before");
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before));
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    std::string put(const std::string& name, const std::string& bytes) {
        EXPECT_TRUE(os::saveFile(folder / name, bytes, os::Durability::Unsynced).ok());
        return folder / name;
    }
    TempFolder folder;
    Object edit;
    std::vector<std::string> asked;
    std::unique_ptr<platform::View> before;
};

TEST_F(BitmapText, IsWhatStandsInTheFile) {
    const std::string bytes = bitmap(8, 8, 0x123456);
    EXPECT_TRUE(BMPFILETOTEXT(put("a.bmp", bytes), edit));
    EXPECT_EQ(GetText(edit), BYTESTRINGTOLITERAL(bytes));
    EXPECT_EQ(GetText(edit).substr(0, 9), "\"BM\"+Chr(");
    EXPECT_TRUE(asked.empty());
}

TEST_F(BitmapText, AFileHas7500BytesAtMost) {
    EXPECT_TRUE(BMPFILETOTEXT(put("a.bmp", std::string(7500, '\0')), edit));
    EXPECT_EQ(LITERALTOBYTESTRING(GetText(edit)), std::string(7500, '\0'));
    SetText(edit, "before");
    EXPECT_FALSE(BMPFILETOTEXT(put("b.bmp", std::string(7501, '\0')), edit));
    EXPECT_EQ(asked, (std::vector<std::string>{"Bitmap file is too large to be converted."}));
    EXPECT_EQ(GetText(edit), "before");
}

TEST_F(BitmapText, AnEmptyOrMissingFileIsTold) {
    for (const std::string& file : {put("a.bmp", ""), folder / "none.bmp"}) {
        asked.clear();
        EXPECT_FALSE(BMPFILETOTEXT(file, edit));
        EXPECT_EQ(asked, (std::vector<std::string>{"The following bitmap file:\t" + file +
                                                   "\n\nis empty or does not exist."}));
        EXPECT_EQ(GetText(edit), "before");
    }
}

TEST_F(BitmapText, AControlThatIsTooSmallStaysAsItWas) {
    const Object shortEdit = FINDCONTROL(Object("Win"), "short");
    EXPECT_TRUE(BMPFILETOTEXT(put("a.bmp", "123456789012345678"), shortEdit));  // and two quotes
    EXPECT_EQ(GetText(shortEdit).size(), 20U);
    EXPECT_FALSE(BMPFILETOTEXT(put("a.bmp", "1234567890123456789"), shortEdit));
    EXPECT_EQ(asked, (std::vector<std::string>{"The bitmap file is too large to be converted."}));
    EXPECT_EQ(GetText(shortEdit), "\"123456789012345678\"");
}

// ---- colours ----

TEST(StandardColours, HaveNumbersValuesAndNames) {
    const std::tuple<int, const char*, const char*> colours[] = {
        {0x000000, "Black", "000000"},        {0x800000, "Dark blue", "000080"},
        {0x008000, "Dark green", "008000"},   {0x808000, "Dark cyan", "008080"},
        {0x000080, "Dark red", "800000"},     {0x800080, "Dark magenta", "800080"},
        {0x008080, "Dark yellow", "808000"},  {0x808080, "Dark grey", "808080"},
        {0xC0C0C0, "Light grey", "C0C0C0"},   {0xFF0000, "Light blue", "0000FF"},
        {0x00FF00, "Light green", "00FF00"},  {0xFFFF00, "Light cyan", "00FFFF"},
        {0x0000FF, "Light red", "FF0000"},    {0xFF00FF, "Light magenta", "FF00FF"},
        {0x00FFFF, "Light yellow", "FFFF00"}, {0xFFFFFF, "White", "FFFFFF"}};
    int expected = 0;
    for (const auto& [colour, name, hex] : colours) {
        int value = -1, number = -1;
        CLRNUMTORGB(expected, value);
        RGBTOCLRNUM(colour, number);
        EXPECT_EQ(value, colour) << name;
        EXPECT_EQ(number, expected) << name;
        EXPECT_EQ(RGBTOSTR(colour), name);
        EXPECT_EQ(RGBTOHEXSTR(colour), hex);
        EXPECT_EQ(BasicColours[static_cast<std::size_t>(expected)], static_cast<std::uint32_t>(colour));
        expected++;
    }
}

TEST(StandardColours, WhatIsNoneOfThemLeavesTheResult) {
    int value = 42, number = 43;
    for (const int n : {-1, 16, 2147483647, -2147483647 - 1}) CLRNUMTORGB(n, value);
    for (const int v : {1, 0x7FFFFF, 0x1000000, -1}) RGBTOCLRNUM(v, number);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(number, 43);
    EXPECT_EQ(RGBTOSTR(1), "");
    EXPECT_EQ(RGBTOHEXSTR(0x123456), "563412");
}

}  // namespace
}  // namespace tarn
