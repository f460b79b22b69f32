// SPDX-License-Identifier: Apache-2.0
#include "library/system/shortname.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace tarn {
namespace {

TEST(FileShortenName, KeepsDriveNameAndExtensionAsLongAsItCan) {
    const struct {
        const char* name;
        int width;
        const char* result;
    } cases[] = {
        {"", 0, ""},
        {"", 5, ""},
        {"a.txt", 5, "a.txt"},                                   // it fits
        {"/home/user/docs/a.txt", 21, "/home/user/docs/a.txt"},  // just
        {"/home/user/docs/a.txt", 20, "/home/.../docs/a.txt"},
        {"/home/user/docs/a.txt", 19, "/home.../work/a.txt"},
        {"/home/user/docs/a.txt", 8, "...a.txt"},   // no room for any of the folder
        {"/home/user/docs/a.txt", 9, ".../a.txt"},  // the odd byte goes to its right
        {"/home/user/docs/a.txt", 10, "/.../a.txt"},
        {"/home/user/docs/a.txt", 7, "....txt"},  // the end alone
        {"/home/user/docs/a.txt", 4, "...t"},
        {"/home/user/docs/a.txt", 3, "..."},
        {"/home/user/docs/a.txt", 2, ".."},
        {"/home/user/docs/a.txt", 1, "."},
        {"/home/user/docs/a.txt", 0, ""},
        {"/home/user/docs/a.txt", -1, ""},
        {"averylongnamewithoutafolder", 10, "...afolder"},
        {"/a/folder/that/ends/", 12, "/a/f...ends/"},
        {"/\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4/n", 8, "/.../n"},  // no character is cut in two
        {"/\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4/n", 9, "/...\xC3\xA4/n"},
    };
    for (const auto& one : cases) {
        const std::string got = FILESHORTENNAME(one.name, one.width);
        EXPECT_EQ(got, one.result) << one.name << " " << one.width;
        EXPECT_LE(static_cast<int>(got.size()), std::max(one.width, 0)) << one.name;
    }
}

TEST(FileShortenName, SharesTheRoomBetweenHeadAndTailOfTheFolder) {
    // Drive 2, "..." 3, name and extension 8: of 20 bytes 7 are left, 3 for the head and 4 for the tail.
    EXPECT_EQ(FILESHORTENNAME("C:\\folder\\sub\\name.ext", 20), "C:\\fo...sub\\name.ext");
    EXPECT_EQ(FILESHORTENNAME("C:\\folder\\sub\\name.ext", 13), "C:...name.ext");
    EXPECT_EQ(FILESHORTENNAME("C:\\folder\\sub\\name.ext", 12), "...\\name.ext");
}

TEST(FirstBytes, EndBehindAWholeCharacter) {
    EXPECT_EQ(FIRSTBYTES("abc", 2), "ab");
    EXPECT_EQ(FIRSTBYTES("abc", 3), "abc");
    EXPECT_EQ(FIRSTBYTES("abc", 9), "abc");
    EXPECT_EQ(FIRSTBYTES("a\xC3\xA4", 2), "a");
    EXPECT_EQ(FIRSTBYTES("abc", 0), "");
    EXPECT_EQ(FIRSTBYTES("abc", -5), "");
}

}  // namespace
}  // namespace tarn
