// SPDX-License-Identifier: Apache-2.0
#include "os/text/utf8.h"

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

TEST(Utf8, LinesThatAreNoneAreShownAsLatin1) {
    EXPECT_EQ(shown("a\n\xC3\xA9\n"), "a\n\xC3\xA9\n");
    EXPECT_EQ(shown("\xC3\xA9\n\xE9\xFF\nz"), "\xC3\xA9\n\xC3\xA9\xC3\xBF\nz");
    EXPECT_EQ(shown("\xC3\xA9\xE9"), "\xC3\x83\xC2\xA9\xC3\xA9") << "a line is of one kind";
}

}  // namespace
}  // namespace tarn::utf8
