// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/example.h"

#include "ide/editor/lineends.h"
#include "library/system/system.h"

#include <gtest/gtest.h>

#include <ctime>

namespace tarn {
namespace {

TEST(Example, AHeadingIsACommentWithTheNameOfAClassOrResourceFile) {
    const std::pair<const char*, const char*> lines[] = {
        {"// hello.cls", "hello.cls"},
        {"//hello.cls", "hello.cls"},
        {" \t//\t hello.cls \t", "hello.cls"},
        {"// hello.cls\r\n", "hello.cls"},
        {"// HELLO.CLS", "HELLO.CLS"},
        {"// window1.Rc", "window1.Rc"},
        {"// 1.rc", "1.rc"},
        {"// hello world", ""},
        {"// hello.cls world", ""},
        {"// a-b.cls", ""},
        {"// a_b.cls", ""},
        {"// a b.cls", ""},
        {"// .cls", ""},
        {"// hello.txt", ""},
        {"// hello.clsx", ""},
        {"// hello.cl", ""},
        {"// hello", ""},
        {"// a.b.cls", ""},
        {"// ../a.cls", ""},
        {"// /etc/a.cls", ""},
        {"// caf\xC3\xA9.cls", ""},
        {"/ / hello.cls", ""},
        {"/// hello.cls", ""},
        {"hello.cls", ""},
        {"x // hello.cls", ""},
        {"//", ""},
        {"", ""},
    };
    for (const auto& [line, name] : lines) EXPECT_EQ(GETEXAMPLEFILENAME(line), name) << line;
}

TEST(Example, IsATextWhoseFirstLineThatIsNotBlankIsAHeading) {
    EXPECT_TRUE(ISEXAMPLE("// hello.cls\nTarnwick Class hello\n"));
    EXPECT_TRUE(ISEXAMPLE("\n \t\r\n\n// hello.cls"));
    EXPECT_FALSE(ISEXAMPLE("// hello world\n// hello.cls\n"));
    EXPECT_FALSE(ISEXAMPLE("x\n// hello.cls\n"));
    EXPECT_FALSE(ISEXAMPLE("// a-b.cls\n"));
    EXPECT_FALSE(ISEXAMPLE(""));
    EXPECT_FALSE(ISEXAMPLE(" \n\t\n"));
}

TEST(Example, NamesStandInTheOrderOfTheirHeadings) {
    EXPECT_EQ(GETEXAMPLEFILENAMES("// b.cls\nx\n  // a.rc\r\n// no name\ny // c.cls\n//c.cls"),
              "b.cls\na.rc\nc.cls\n");
    EXPECT_EQ(GETEXAMPLEFILENAMES("x\ny\n"), "");
    EXPECT_EQ(GETEXAMPLEFILENAMES(""), "");
}

TEST(Example, AFileReachesFromItsHeadingToTheNext) {
    const std::string text = "\n// a.cls\none\n\ntwo\n// b.cls\n// c.rc\nlast";
    EXPECT_EQ(GETEXAMPLETEXT(text, "a.cls"), "// a.cls\none\n\ntwo\n");
    EXPECT_EQ(GETEXAMPLETEXT(text, "A.CLS"), "// a.cls\none\n\ntwo\n");
    EXPECT_EQ(GETEXAMPLETEXT(text, "b.cls"), "// b.cls\n");
    EXPECT_EQ(GETEXAMPLETEXT(text, "c.rc"), "// c.rc\nlast\n");
    EXPECT_EQ(GETEXAMPLETEXT(text, "d.cls"), "");
    EXPECT_EQ(GETEXAMPLETEXT("", "a.cls"), "");
}

TEST(Example, TheLastLineEndsAsTheFirstDoes) {
    EXPECT_EQ(GETEXAMPLETEXT("// a.cls\r\nlast", "a.cls"), "// a.cls\r\nlast\r\n");
    EXPECT_EQ(GETEXAMPLETEXT("// a.cls\nx\r\nlast", "a.cls"), "// a.cls\nx\r\nlast\n");
    EXPECT_EQ(GETEXAMPLETEXT("// a.cls", "a.cls"), "// a.cls\n");
    EXPECT_EQ(GETEXAMPLETEXT("// a.cls\r\nlast\r\n", "a.cls"), "// a.cls\r\nlast\r\n");
}

TEST(Example, OfTwoFilesWithOneNameTheFirstCounts) {
    EXPECT_EQ(GETEXAMPLETEXT("// a.cls\none\n// A.cls\ntwo\n", "A.cls"), "// a.cls\none\n");
}

TEST(Example, BytesOfAnyKindStayAsTheyAre) {
    const std::string body = "// a.cls\n\xFF\xC3" + std::string(1, '\0') + "\rx\n";
    EXPECT_EQ(GETEXAMPLETEXT(body + "// b.cls\n", "a.cls"), body);
}

TEST(Example, TheLargestTextIsLookedThroughInNoTime) {
    std::string text = "// a.cls\n";
    while (text.size() < 4000000) text += "// \t \n";
    const std::clock_t start = std::clock();
    EXPECT_TRUE(ISEXAMPLE(text));
    EXPECT_EQ(GETEXAMPLEFILENAMES(text), "a.cls\n");
    EXPECT_EQ(GETEXAMPLETEXT(text, "a.cls").size(), text.size());
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
}

TEST(LineEnds, AreThoseOfTheTextAroundIfTheyAreAlike) {
    EXPECT_EQ(ADOPTLINEENDS("a\r\nb\n", "x\ny\n"), "a\nb\n");
    EXPECT_EQ(ADOPTLINEENDS("a\r\nb\n", "x\r\n"), "a\r\nb\r\n");
    EXPECT_EQ(ADOPTLINEENDS("a\r\nb\n", "x\r\ny\n"), "a\r\nb\n");
    EXPECT_EQ(ADOPTLINEENDS("a\r\nb\n", "x"), "a\r\nb\n");
    EXPECT_EQ(ADOPTLINEENDS("a\r\nb\n", ""), "a\r\nb\n");
    EXPECT_EQ(ADOPTLINEENDS("a\rb\r\r\n", "\n"), "a\rb\r\n");
}

}  // namespace
}  // namespace tarn
