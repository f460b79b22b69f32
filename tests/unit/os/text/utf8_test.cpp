// SPDX-License-Identifier: Apache-2.0
#include "os/text/utf8.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace tarn::utf8 {
namespace {

TEST(Utf8, IsWhatHoldsWholeCharactersInTheirShortestForms) {
    const struct {
        const char* bytes;
        bool valid;
    } cases[] = {{"", true},
                 {"abc", true},
                 {"\xC3\xA9", true},
                 {"\xE2\x82\xAC", true},
                 {"\xF0\x9F\x99\x82", true},
                 {"\xF4\x8F\xBF\xBF", true},
                 {"\xED\x9F\xBF", true},
                 {"\xE9", false},              // Latin-1
                 {"\x80", false},              // a later byte alone
                 {"\xC0\x80", false},          // longer than needed
                 {"\xC1\xBF", false},          // the same
                 {"\xE0\x9F\xBF", false},      // the same
                 {"\xF0\x8F\xBF\xBF", false},  // the same
                 {"\xED\xA0\x80", false},      // a surrogate
                 {"\xF4\x90\x80\x80", false},  // above the last character
                 {"\xF5\x80\x80\x80", false},  // the same
                 {"\xC3", false},              // cut
                 {"\xE2\x82", false},          // the same
                 {"\xF0\x9F\x99", false},      // the same
                 {"\xC3z", false}};
    for (const auto& c : cases) EXPECT_EQ(isValid(c.bytes), c.valid) << c.bytes;
}

TEST(Utf8, EveryNumberOfACharacterComesBack) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        std::string text;
        append(text, code);
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        ASSERT_EQ(lengthOfFirst(text), surrogate ? 0 : text.size()) << std::uint32_t{code};
        ASSERT_EQ(codeOf(text), code);
    }
}

TEST(Utf8, BytesThatAreNoneEndWhereAnotherCharacterMayBegin) {
    using Kind = First::Kind;
    const struct {
        const char* bytes;
        Kind kind;
        std::size_t length;
    } cases[] = {{"", Kind::Cut, 0},
                 {"ab", Kind::Character, 1},
                 {"\xC3\xA9z", Kind::Character, 2},
                 {"\xF0\x9F\x99\x82z", Kind::Character, 4},
                 {"\x80z", Kind::Broken, 1},
                 {"\xC3z", Kind::Broken, 1},
                 {"\xED\xA0\x80", Kind::Broken, 1},
                 {"\xE2\x82z", Kind::Broken, 2},
                 {"\xF0\x9F\x99z", Kind::Broken, 3},
                 {"\xC3", Kind::Cut, 1},
                 {"\xF0\x9F\x99", Kind::Cut, 3}};
    for (const auto& c : cases) {
        EXPECT_EQ(first(c.bytes).kind, c.kind) << c.bytes;
        EXPECT_EQ(first(c.bytes).bytes, c.length) << c.bytes;
    }
}

TEST(Utf8, PlacesInsideOfACharacterAreTold) {
    const std::string_view text = "a\xC3\xA9\xE2\x82\xAC";
    std::string inside;
    for (std::size_t at = 0; at <= text.size(); ++at) inside += isInside(text, at) ? '1' : '0';
    EXPECT_EQ(inside, "0010110");
}

TEST(Utf8, LinesThatAreNoneAreShownAsLatin1) {
    EXPECT_EQ(shown("a\n\xC3\xA9\n"), "a\n\xC3\xA9\n");
    EXPECT_EQ(shown("\xC3\xA9\n\xE9\xFF\nz"), "\xC3\xA9\n\xC3\xA9\xC3\xBF\nz");
    EXPECT_EQ(shown("\xC3\xA9\xE9"), "\xC3\x83\xC2\xA9\xC3\xA9") << "a line is of one kind";
}

}  // namespace
}  // namespace tarn::utf8
