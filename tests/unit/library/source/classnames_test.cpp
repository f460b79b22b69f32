// SPDX-License-Identifier: Apache-2.0
#include "library/source/classnames.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarn {
namespace {

// "kind line name head", local names with their lines behind.
std::string told(const std::vector<DeclaredName>& names) {
    static constexpr const char* kinds[] = {"function", "const", "type", "var", "window", "class", "word"};
    std::string text;
    for (const DeclaredName& name : names) {
        text += std::string(kinds[static_cast<int>(name.kind)]) + (name.isPublic ? "+ " : " ") +
                std::to_string(name.line) + " " + name.name + " | " + name.head;
        if (name.first != 0) text += " | " + std::to_string(name.first) + "-" + std::to_string(name.last);
        text += "\n";
    }
    return text;
}

TEST(ClassNames, AreAllThatAClassDeclares) {
    EXPECT_EQ(told(SYMGETNAMES("Tarnwick Class a\n"
                               "Uses b c\n"
                               "public const LIMIT = 10  // most\n"
                               "type TPair : record\n"
                               "   x, y : integer\n"
                               "end record\n"
                               "type TColour : enum (red,\n"
                               "  green)\n"
                               "private var n, m : integer\n"
                               "            all : TPair\n"
                               "public function ADD(a : integer,\n"
                               "                    out b : string) return integer\n"
                               "   var i : integer\n"
                               "       t : string[10] := \"function x()\"\n"
                               "   if a = 1 then\n"
                               "      i := a\n"
                               "   end if\n"
                               "end function\n"
                               "callback function Main(anEvent : integer)\n"
                               "end function\n"
                               "End class\n"
                               "function AFTER()\n")),
              "const+ 3 LIMIT | LIMIT = 10\n"
              "type 4 TPair | TPair :\n"
              "type 7 TColour | TColour : enum (red,\n"
              "const 7 red | red : TColour\n"
              "const 8 green | green : TColour\n"
              "var 9 n | n : integer\n"
              "var 9 m | m : integer\n"
              "var 10 all | all : TPair\n"
              "function+ 11 ADD | ADD(a : integer, out b : string) return integer\n"
              "var 11 a | a : integer | 11-18\n"
              "var 12 b | b : string | 11-18\n"
              "var 13 i | i : integer | 11-18\n"
              "var 14 t | t : string[10] | 11-18\n"
              "function 19 Main | Main(anEvent : integer)\n"
              "var 19 anEvent | anEvent : integer | 19-20\n");
}

TEST(ClassNames, OfTheLibraryHaveNoBodies) {
    EXPECT_EQ(told(SYMGETNAMES("public function CHR(number : integer) return string external \"x\"\n"
                               "public function ORD(text : string) return integer external \"y\"\n")),
              "function+ 1 CHR | CHR(number : integer) return string\n"
              "function+ 2 ORD | ORD(text : string) return integer\n");
}

TEST(ClassNames, AreFoundInWhatDoesNotCompile) {
    const std::string texts[] = {"",
                                 "function",
                                 "function F(",
                                 "type T : record x : integer",
                                 "var",
                                 "private var a,",
                                 "function F(a : integer, var",
                                 "const",
                                 "\"never closed",
                                 "type T : enum (",
                                 std::string("a\0b\n", 4),
                                 "\xFF\xFE function \xC3(",
                                 "function A()\nfunction B()\nend function"};
    for (const std::string& text : texts) SYMGETNAMES(text);
    const auto names = SYMGETNAMES(texts[12]);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[1].name, "B");
}

TEST(ClassNames, StandInDeepNestsAndLongClasses) {
    std::string text = "function F()\n";
    for (int i = 0; i < 255; ++i) text += "if a then\n";
    for (int i = 0; i < 255; ++i) text += "end if\n";
    text += "end function\n";
    while (std::count(text.begin(), text.end(), '\n') < 8000) text += "// more\n";
    text += "function LAST()\nend function\n";
    const auto names = SYMGETNAMES(text);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[1].line, 8001);
}

TEST(OpenCalls, AreTheInnermostWithTheirArgument) {
    struct Case {
        const char* text;
        const char* name;
        int argument, parenthesis;
    };
    const Case cases[] = {
        {"", "", 0, 0},
        {"F(", "F", 0, 2},
        {"x := F(a, ", "F", 1, 7},
        {"F(a, G(b), ", "F", 2, 2},
        {"F(a, G(b, c", "G", 1, 7},
        {"F(a, (b + ", "F", 1, 2},
        {"F(a, \"x, (\", ", "F", 2, 2},
        {"F(a, // not, this (\n  ", "F", 1, 2},
        {"F(a)", "", 0, 0},
        {"function F(a : integer, ", "", 0, 0},
        {"if (a = 1", "", 0, 0},
        {"F(\nend function\n", "", 0, 0},
        {"))F(", "F", 0, 4},
    };
    for (const Case& one : cases) {
        const OpenCall call = SYMGETOPENCALL(one.text);
        EXPECT_EQ(call.name, one.name) << one.text;
        EXPECT_EQ(call.argument, one.argument) << one.text;
        EXPECT_EQ(call.parenthesis, one.parenthesis) << one.text;
    }
}

TEST(OpenCalls, HaveTheirArgumentsInTheHead) {
    const std::string head = "F(a : integer, b : array [1:2, 3] of string, c : TX) return x";
    const auto part = [&](int n) {
        const HeadPart at = SYMGETARGUMENT(head, n);
        return at.length == 0
                   ? ""
                   : head.substr(static_cast<std::size_t>(at.start - 1), static_cast<std::size_t>(at.length));
    };
    EXPECT_EQ(part(0), "a : integer");
    EXPECT_EQ(part(1), "b : array [1:2, 3] of string");
    EXPECT_EQ(part(2), "c : TX");
    EXPECT_EQ(part(3), "");
    EXPECT_EQ(SYMGETARGUMENT("F()", 0).length, 0);
    EXPECT_EQ(SYMGETARGUMENT("LIMIT = 10", 0).length, 0);
}

TEST(Lines, EndInTextsAndCommentsOrInNeither) {
    EXPECT_FALSE(SYMENDSINTEXT("a := b"));
    EXPECT_TRUE(SYMENDSINTEXT("a := \"b"));
    EXPECT_FALSE(SYMENDSINTEXT("a := \"b\" + c"));
    EXPECT_TRUE(SYMENDSINTEXT("a // b"));
    EXPECT_FALSE(SYMENDSINTEXT("a := \"http://\" + b"));
}

}  // namespace
}  // namespace tarn
