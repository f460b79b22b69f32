// SPDX-License-Identifier: Apache-2.0
//
// Compiler messages: one line, one position, a whole text.
#include "library/data/dbutil.h"
#include "library/system/system.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(ErrorLines, AreReadPartByPart) {
    struct Case {
        const char *text, *file;
        int line, number;
    };
    const Case cases[] = {
        {"foo.cls(12): Error 7: text", "foo.cls", 12, 7},
        {"C:\\a\\b.cls(12) : error 34 rest", "C:\\a\\b.cls", 12, 34},
        {"/home/my dir/b.cls ( 12 )\t:\tFATAL\t34", "/home/my dir/b.cls", 12, 34},
        {"foo.cls : fatal 9", "foo.cls", 0, 9},
        {"foo.cls: 9", "foo.cls", 0, 9},
        {"foo.cls(3) 9", "foo.cls", 3, 9},
        {"foo.cls(3)error9x", "foo.cls", 3, 9},
        {"  foo.cls(3) : error 12", "foo.cls", 3, 12},
        {"\xC3\xA4.cls(1): error 2", "\xC3\xA4.cls", 1, 2},
        {"foo.cls(12): Error 0: text", "", 0, 0},
        {"foo.cls(12): Error: text", "", 0, 0},
        {"foo.cls(12): warning 7", "", 0, 0},
        {"foo.cls(12): errors 7", "", 0, 0},
        {"foo.cls(12,5): error 7", "", 0, 0},
        {"foo.cls(99999999999): error 7", "foo.cls", 0, 7},
        {"foo.cls(1): error 99999999999", "", 0, 0},
        {"foo.cls: 0 errors.", "", 0, 0},
        {": 0 errors.", "", 0, 0},
        {"(12): error 7", "", 12, 7},
        {"12: error 7", "12", 0, 7},
        {"plain words", "", 0, 0},
        {"", "", 0, 0},
        {"> foo.cls(1): error 7", "", 0, 0},
        {"foo.cls(", "", 0, 0},
        {"foo.cls()", "", 0, 0},
        {"foo.cls(): error 7", "foo.cls", 0, 7},
    };
    for (const Case& c : cases) {
        std::size_t position = 1;
        const ErrorLine error = FILEGETERRORLINE(c.text, position);
        EXPECT_EQ(error.file, c.file) << c.text;
        EXPECT_EQ(error.line, c.line) << c.text;
        EXPECT_EQ(error.number, c.number) << c.text;
        EXPECT_EQ(position, std::string_view(c.text).size() + 1) << c.text;
    }
}

TEST(ErrorLines, LeaveThePositionAtTheNextLine) {
    const std::string text = "a(1): error 1\r\nb(2): error 2\nc(3): error 3";
    std::size_t position = 1;
    EXPECT_EQ(FILEGETERRORLINE(text, position).file, "a");
    EXPECT_EQ(position, 16u);
    EXPECT_EQ(FILEGETERRORLINE(text, position).file, "b");
    EXPECT_EQ(FILEGETERRORLINE(text, position).file, "c");
    EXPECT_EQ(position, text.size() + 1);
    EXPECT_EQ(FILEGETERRORLINE(text, position).file, "");
    position = 1000;
    EXPECT_EQ(FILEGETERRORLINE(text, position).file, "");
    EXPECT_EQ(position, text.size() + 1);
}

const std::string Messages = "quarn\n"                       // 1 to 6
                             "a.cls(1): error 5: first\r\n"  // 7 to 32
                             "  > more of it\r\n"            // 33 to 48
                             ">and more\n"                   // 49 to 58
                             "/x/b.cls : fatal 9";           // 59 to the end

TEST(ErrorAtAPosition, IsTheMessageOfItsLineOrOfTheOneAbove) {
    struct Case {
        int position;
        const char* result;
    };
    const char* const first = "\"a.cls\" 1 5\n";
    const char* const second = "\"/x/b.cls\" 0 9\n";
    for (const Case& c : {Case{1, "- 0 0"}, Case{6, "- 0 0"}, Case{7, first}, Case{20, first},
                          Case{32, first}, Case{33, first}, Case{40, first}, Case{49, first}, Case{58, first},
                          Case{59, second}, Case{76, second}, Case{77, second}, Case{100000, second}})
        EXPECT_EQ(FILEGETERROR(Messages, c.position, ""), c.result) << c.position;
    EXPECT_EQ(FILEGETERROR("> a(1): error 1\n>\n", 17, ""), "- 0 0");
    EXPECT_EQ(FILEGETERROR("", 1, ""), "- 0 0");
    EXPECT_EQ(FILEGETERROR("a(1): error 1\n", 15, ""), "- 0 0");
}

TEST(AllErrors, AreOneLineEach) {
    EXPECT_EQ(FILEGETERROR(Messages, 0, ""), "\"a.cls\" 1 5\n\"/x/b.cls\" 0 9\n");
    EXPECT_EQ(FILEGETERROR("quarn: 0 errors.\n", 0, ""), "- 0 0");
    EXPECT_EQ(FILEGETERROR("", -1, ""), "- 0 0");
}

TEST(ErrorFiles, WithoutAFolderAreLookedUp) {
    os::SteeredFiles files;
    os::Steered steered(files);
    files.put("/p/a.cls", "");
    EXPECT_EQ(FILEGETERROR(Messages, 0, "/none;/p"), "\"/p/a.cls\" 1 5\n\"/x/b.cls\" 0 9\n");
    EXPECT_EQ(FILEGETERROR(Messages, 7, "/none"), "\"a.cls\" 1 5\n");
    EXPECT_EQ(FILEGETERROR("/q/a.cls(1): error 1", 1, "/p"), "\"/q/a.cls\" 1 1\n");
}

}  // namespace
}  // namespace tarn
