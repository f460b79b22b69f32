// SPDX-License-Identifier: Apache-2.0
//
// What every row of the table of formats must have, and the lists that are made of the rows.
#include "kernel/data/formats.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tarn {
namespace {

TEST(Formats, EachHasANumberAWordExtensionsOfItsOwnAndAllOperations) {
    std::set<std::string_view> extensions;
    std::set<std::int32_t> numbers;
    for (const DataFormat format : DataFormats()) {
        const FormatRow* const row = RowOf(format);
        ASSERT_NE(row, nullptr) << format;
        EXPECT_NE(format, FormatUnknown);
        EXPECT_TRUE(numbers.insert(format).second) << format;
        EXPECT_EQ(&FactsOf(format), &row->facts);
        EXPECT_EQ(row->facts.format, format);
        EXPECT_FALSE(row->facts.word.empty()) << format;
        EXPECT_FALSE(row->facts.extensions[0].empty()) << format;
        for (const std::string_view extension : row->facts.extensions) {
            if (extension.empty()) continue;
            EXPECT_TRUE(extensions.insert(extension).second) << extension;
            EXPECT_EQ(DataFormatOf("a" + std::string(extension)), format);
        }
        EXPECT_NE(row->describe, nullptr) << format;
        EXPECT_NE(row->load, nullptr) << format;
        EXPECT_NE(row->save, nullptr) << format;
        EXPECT_EQ(row->misfit == nullptr, row->facts.declared) << format;
    }
}

TEST(Formats, NoOtherNumberIsOne) {
    for (const std::int32_t number : {-1, 0, 4, 8, 1000}) {
        EXPECT_EQ(RowOf(static_cast<DataFormat>(number)), nullptr) << number;
        EXPECT_EQ(FactsOf(number).format, FormatUnknown) << number;
    }
    EXPECT_EQ(FactsOf(FormatUnknown).rows, RowForm::Records) << "files of unknown extensions are table files";
}

TEST(Formats, ListsNameThemAll) {
    EXPECT_EQ(DataFormatNames("or"), "xml, dbf, csv, tab, txt or bin");
    EXPECT_EQ(DataFilePatterns(), "*.xml;*.dbf;*.xbf;*.csv;*.tab;*.txt")
        << "without those that need a declaration";
}

TEST(TextFit, TellsTheFirstByteThatDoesNotFit) {
    using Way = TextMisfit::Way;
    constexpr std::size_t none = std::string_view::npos;
    const std::string zero("a\0b", 3);
    const DataOptions commas = DefaultDataOptions(FormatComma);
    const struct {
        DataFormat format;
        std::string text;
        std::size_t from, at;
        std::string_view why;
        Way way;
    } cases[] = {
        {FormatComma, "", 0, none, "", Way::OtherFormat},
        {FormatComma, "plain \xC3\xA4 text", 0, none, "", Way::OtherFormat},
        {FormatComma, "a,b", 0, 1, "holds the separator", Way::OtherSeparator},
        {FormatComma, "\"a\"", 0, 0, "begins with a quote", Way::OtherFormat},
        {FormatComma, "\"a\"", 1, none, "", Way::OtherFormat},
        {FormatComma, "a\"b", 0, none, "", Way::OtherFormat},
        {FormatComma, "a\r\nb", 0, 1, "holds a line end", Way::OtherFormat},
        {FormatComma, "a\r\nb", 2, 2, "holds a line end", Way::OtherFormat},
        {FormatComma, zero, 0, 1, "holds a zero byte", Way::OtherFormat},
        {FormatText, "a,\"b\"", 0, none, "", Way::OtherFormat},
        {FormatText, "a\nb", 0, 1, "holds a line end", Way::OtherFormat},
        {FormatText, zero, 0, 1, "holds a zero byte", Way::OtherFormat},
        {FormatXml, "a<,&\t\n\xC3\xA4\xF0\x9F\x98\x80", 0, none, "", Way::OtherFormat},
        {FormatXml, "a\rb", 0, 1, "holds a control character, which XML cannot hold", Way::OtherFormat},
        {FormatXml, zero, 0, 1, "holds a control character, which XML cannot hold", Way::OtherFormat},
        {FormatXml, "ab\xE4", 0, 2, "holds a byte that XML cannot hold (it is no UTF-8)", Way::OtherEncoding},
        {FormatXml, "\xC0\x80", 0, 0, "holds a byte that XML cannot hold (it is no UTF-8)",
         Way::OtherEncoding},
        {FormatXml, "\xED\xA0\x80", 0, 0, "holds a byte that XML cannot hold (it is no UTF-8)",
         Way::OtherEncoding},
        {FormatXml, "\xEF\xBF\xBF", 0, 0, "holds a byte that XML cannot hold (it is no UTF-8)",
         Way::OtherEncoding},
        {FormatXbase, "a,\"\n\x01", 0, none, "", Way::OtherFormat},
        {FormatXbase, zero, 0, 1, "holds a zero byte", Way::OtherFormat},
        {FormatXbase, std::string(255, 'x'), 0, none, "", Way::OtherFormat},
        {FormatXbase, std::string(256, 'x'), 0, 255, "has more than 255 characters", Way::OtherFormat},
        {FormatBinary, zero + "\n\"", 0, none, "", Way::OtherFormat},
        {FormatUnknown, zero, 0, none, "", Way::OtherFormat},
    };
    for (const auto& c : cases) {
        const TextMisfit found = FindMisfit(c.format, commas, c.text, c.from);
        EXPECT_EQ(found.any(), c.at != none) << c.format << " " << c.text;
        EXPECT_EQ(found.at, c.at) << c.format << " " << c.text;
        EXPECT_EQ(found.why, c.why) << c.format << " " << c.text;
        EXPECT_EQ(found.way, c.way) << c.format << " " << c.text;
    }
}

TEST(TextFit, TheSeparatorIsThatOfTheOptions) {
    DataOptions options = DefaultDataOptions(FormatTab);
    EXPECT_FALSE(FindMisfit(FormatTab, options, "a,b", 0).any());
    EXPECT_EQ(FindMisfit(FormatTab, options, "a\tb", 0).at, 1u);
    options.separatorchar = ';';
    EXPECT_FALSE(FindMisfit(FormatTab, options, "a\tb", 0).any());
    EXPECT_EQ(FindMisfit(FormatTab, options, "ab;", 0).at, 2u);
}

}  // namespace
}  // namespace tarn
