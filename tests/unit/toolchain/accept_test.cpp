// SPDX-License-Identifier: Apache-2.0
//
// What the compiler refuses, and where it says so. Each case is a class; `expected` lists the messages as
// "line number".
#include "toolchain/output/generator.h"
#include "unit/toolchain/checked_fixture.h"

#include <string>

namespace tarn::toolchain {
namespace {

struct Case {
    const char* name;
    std::string source;
    std::string expected;
};

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
}

class Acceptance : public CheckedClass {
protected:
    std::string check(const std::string& source) {
        return placesOf(messagesOf(source, [](const ClassTree& tree) { generateC(tree, {2, 2}); }));
    }
};

TEST_F(Acceptance, EachErrorIsToldWithItsLineAndNumber) {
    const Case cases[] = {
        {"an empty file", "", "1 1103"},
        {"no class", "hello world", "1 1103"},
        {"a byte order mark", "\xEF\xBB\xBFTarnwick Class a\nEnd class", ""},
        {"a byte order mark behind the beginning", "Tarnwick Class a\n\xEF\xBB\xBF\nEnd class", "2 1001"},
        {"a word with a foreign letter", inMain("i := caf\xC3\xA9z + 1\n\xE9t\xE9 := 2"), "6 1001, 7 1001"},
        {"a tab in a string", inMain("s := \"a\tb\"\ni := 1"), "6 1001"},
        {"a select without a case", inMain("select i\nj := x\nend select\ni := y"), "6 1101"},
        {"signs in front of the least integer",
         inMain("i := - -2147483648\nj := -+-2147483648\ni := +-2147483648"), ""},
        {"a sign that comes too late", inMain("i := -+2147483648"), "6 1003"},
        {"a text that no string holds", inMain("s := \"" + repeated("x", 4096001) + "\""), "6 1322"},
        {"the longest text", inMain("s := \"" + repeated("x", 4096000) + "\""), ""},
        {"constants that are too long together",
         "Tarnwick Class a\nconst B = \"" + repeated("x", 3000000) + "\"\nconst C = B + B\nEnd class",
         "3 1322"},
        {"a range without errors",
         "Tarnwick Class a\nfunction onerror(n : integer) from 9 to 8\nend function\nEnd class", "2 1323"},
        {"types of one another", "Tarnwick Class a\ntype b : c\ntype c : b\nEnd class", "2 1313"},
        {"cases that overlap",
         inMain("select i\ncase 5 to 9 =>\ncase 1 to 4, 10 =>\ncase 9 to 12 =>\ncase 0 to 20 =>\ncase 7 "
                "=>\ncase 11 =>\nend select"),
         "9 1312, 10 1312, 11 1312"},
        {"cases that are texts",
         inMain("select s\ncase \"a\", \"b\" =>\ncase \"\" =>\ncase \"b\" =>\nend select"), "9 1312"},
        {"a smallest class", "Tarnwick Class a\nEnd class", ""},
        {"any case", "TARNWICK CLASS a\nFUNCTION Main()\nEND FUNCTION\nend CLASS", ""},
        {"no end", "Tarnwick Class a\n", "1 1101"},
        {"text behind the end", "Tarnwick Class a\nEnd class\nfunction", "3 1104"},
        {"a comment behind the end", "Tarnwick Class a\nEnd class // done", ""},
        {"Windows line ends", "Tarnwick Class a\r\nfunction f()\r\nx\r\nend function\r\nEnd class\r\n",
         "3 1101"},
        {"an open string", inMain("s := \"abc\ni := 1"), "6 1002"},
        {"two quotes", inMain("s := \"a\"\"b\""), ""},
        {"a bad character", inMain("i := 1 @ 2"), "6 1001"},
        {"a number too large", inMain("i := 99999999999"), "6 1003"},
        {"the smallest number", inMain("i := -2147483648"), ""},
        {"one more than the largest", inMain("i := 2147483648"), "6 1003"},
        {"hexadecimal", inMain("i := 0xFFFFFFFF + 0x1FL"), ""},
        {"no number", inMain("i := 12ab"), "6 1004"},
        {"a long name", inMain("i := " + std::string(41, 'a')), "6 1005, 6 1201"},
        {"an unknown name, told once", inMain("i := x\ni := x\ni := y"), "6 1201, 8 1201"},
        {"two names", "Tarnwick Class a\nconst x = 1\nconst X = 2\nEnd class", "3 1202"},
        {"a missing class", "Tarnwick Class a\nUses b\nfunction f()\nu()\nend function\nEnd class", "2 1203"},
        {"the library's class", "Tarnwick Class a\nUses system\nEnd class", ""},
        {"a reserved word as name", "Tarnwick Class a\nconst while = 1\nEnd class", "2 1108"},
        {"a word of later as name", "Tarnwick Class a\nconst file = 1\nEnd class", "2 1108"},
        {"what is not accepted yet", inMain("call i"), "6 1105"},
        {"a line as a number", inMain("for each i in s loop\nend loop"), "6 1301"},
        {"a bare class variable", "Tarnwick Class a\nvar x : integer\nEnd class", "2 1106"},
        {"an integer as text", inMain("s := 1"), "6 1301"},
        {"text and number added", inMain("s := s + 1"), "6 1302"},
        {"a number as condition", inMain("if i then\nend if"), "6 1301"},
        {"booleans in order", inMain("b := b < true"), "6 1302"},
        {"comparisons in a row", inMain("b := 1 = 1 = 1"), "6 1101"},
        {"too few arguments", inMain("s := STRLEFT(s)"), "6 1303"},
        {"no such form", inMain("s := STR()"), "6 1319"},
        {"a value for an out argument", inMain("LOADFILE(s, \"x\")"), "6 1304"},
        {"a constant assigned",
         "Tarnwick Class a\nconst c = 1\nfunction f()\nc := 2\nend function\nEnd class", "4 1305"},
        {"an argument assigned", "Tarnwick Class a\nfunction f(x : integer)\nx := 2\nend function\nEnd class",
         "3 1305"},
        {"a result not used", inMain("STR(1)"), "6 1307"},
        {"no result", inMain("s := PRINT(s)"), "6 1306"},
        {"a variable in a constant", "Tarnwick Class a\nprivate var v : integer\nconst c = v\nEnd class",
         "3 1308"},
        {"constants in any order", "Tarnwick Class a\nconst a = b + 1\nconst b = 2\nEnd class", ""},
        {"what is known of constants",
         "Tarnwick Class a\nconst A = Ord(\"0\")\nconst B = LENGTH(\"abc\")\nconst C = \"xyz\"\nconst D = "
         "C[2] + C[9]\n"
         "type t : string[A + B + D]\nEnd class",
         ""},
        {"constants in a circle", "Tarnwick Class a\nconst a = b\nconst b = a\nEnd class", "2 1313"},
        {"division by zero", "Tarnwick Class a\nconst a = 1 div 0\nEnd class", "2 1318"},
        {"string of no length", "Tarnwick Class a\ntype t : string[0]\nEnd class", "2 1309"},
        {"a way without return",
         "Tarnwick Class a\nfunction f() return integer\nif true then\nreturn 1\nend if\nend function\nEnd "
         "class",
         "6 1310"},
        {"all ways return",
         "Tarnwick Class a\nfunction f() return integer\nif true then\nreturn 1\nelse\nreturn 2\nend if\nend "
         "function\nEnd class",
         ""},
        {"an endless loop returns",
         "Tarnwick Class a\nfunction f() return integer\nloop\nend loop\nend function\nEnd class", ""},
        {"exit outside", inMain("exit"), "6 1311"},
        {"a case twice", inMain("select i\ncase 1, 2 =>\ncase 2 =>\nend select"), "8 1312"},
        {"a case of another type", inMain("select i\ncase \"a\" =>\nend select"), "7 1301"},
        {"main with arguments", "Tarnwick Class a\nfunction main(x : integer)\nend function\nEnd class",
         "2 1314"},
        {"a head that differs",
         "Tarnwick Class a\nfunction f(x : integer)\nfunction f(x : string)\nend function\nEnd class",
         "3 1315"},
        {"a head ahead",
         "Tarnwick Class a\nfunction f(x : integer)\nfunction f(x : integer)\nend function\nEnd class", ""},
        {"no body", "Tarnwick Class a\nfunction f()\nEnd class", "2 1316"},
        {"a step of nothing", inMain("for i from 1 to 2 by 0 loop\nend loop"), "6 1317"},
        {"a loop closed as if", inMain("loop\ni := 1\nend if\ni := 2"), "8 1109"},
        {"an if that is not closed", inMain("if b then\ni := 1"), "8 1109"},
        {"several errors in one run", inMain("i := \n1 x\ns := 3\nj := := 2\nt := s"), "7 1101, 9 1101"},
        {"a bad head does not hide the body",
         "Tarnwick Class a\nfunction f(x)\nx := \nend function\nfunction g()\nf(1)\nend function\nEnd class",
         "2 1101, 3 1101"},
        {"onerror",
         "Tarnwick Class a\nfunction onerror(n : integer) from 901 to 909\nend function\nEnd class", ""},
        {"onerror without argument", "Tarnwick Class a\nfunction onerror()\nend function\nEnd class",
         "2 1320"},
        {"postcondition of the result",
         "Tarnwick Class a\nfunction f() return integer\npostcond f > 0\nreturn 1\nend function\nEnd class",
         ""},
        {"a limited result",
         "Tarnwick Class a\nfunction f() return string[5]\nreturn \"\"\nend function\nEnd class", "2 1321"},
        {"100 levels of parentheses", inMain("i := " + repeated("(", 99) + "1" + repeated(")", 99)), ""},
        {"too many parentheses", inMain("i := " + repeated("(", 100000) + "1"), "6 1102"},
        {"too many blocks", inMain(repeated("if b then\n", 100000)), "106 1102"},
        {"a long chain", inMain("i := 1" + repeated(" + i", 20000)), ""},
        {"a long text", inMain("s := \"\"" + repeated(" + s + \"x\"", 5000)), ""},
        {"many nots and signs",
         inMain("b := " + repeated("not ", 5000) + "b\ni := " + repeated("- ", 5001) + "i"), ""},
    };
    for (const Case& item : cases)
        EXPECT_EQ(check(item.source), item.expected) << item.name << "\n" << report;
}

TEST_F(Acceptance, ALongAlternativeNeedsNoDepth) {
    std::string text = "if i = 0 then\n";
    for (int n = 1; n < 3000; ++n) text += "elseif i = " + std::to_string(n) + " then\nj := 1\n";
    EXPECT_EQ(check(inMain(text + "end if")), "");
}

TEST_F(Acceptance, AtMostFiftyMessagesAreWritten) {
    std::string text;
    for (int n = 0; n < 200; ++n) text += "i := x" + std::to_string(n) + "\n";
    check(inMain(text));
    EXPECT_NE(report.find("has 200 errors."), std::string::npos);
    EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 51);
}

TEST_F(Acceptance, HostileBytesEndInMessages) {
    std::string bytes = "Tarnwick Class a\n";
    for (int n = 0; n < 5000; ++n) bytes += static_cast<char>((n * 7919) % 256);
    EXPECT_NE(check(bytes), "");
    EXPECT_NE(check(std::string("Tarnwick Class a\0b", 18)), "");
}

TEST_F(Acceptance, UsedClassesGiveTheirPublicItemsOnly) {
    write("other.cls",
          "Tarnwick Class Other\npublic const C = 1\nconst HIDDEN = 2\npublic function F(out x : integer)\n"
          "end function\nEnd class");
    EXPECT_EQ(
        check("Tarnwick Class a\nUses other\nfunction g()\nvar i : integer\ni := C\nF(i)\ni := other.c\n"
              "end function\nEnd class"),
        "");
    EXPECT_EQ(check("Tarnwick Class a\nUses other\nfunction g()\nvar i : integer\ni := HIDDEN\nend "
                    "function\nEnd class"),
              "5 1201");
    EXPECT_EQ(check("Tarnwick Class a\nUses other\nfunction g()\nvar i : integer\ni := elsewhere.C\nend "
                    "function\nEnd class"),
              "5 1201");
}

TEST_F(Acceptance, ANameOfTwoUsedClassesMustBeQualified) {
    write("b.cls", "Tarnwick Class b\npublic const C = 1\nEnd class");
    write("c.cls", "Tarnwick Class c\npublic const C = 1\nEnd class");
    EXPECT_EQ(check("Tarnwick Class a\nUses b c\nconst x = C\nEnd class"), "3 1205");
    EXPECT_EQ(check("Tarnwick Class a\nUses b c\nconst x = b.C + c.C\nEnd class"), "");
}

TEST_F(Acceptance, AFileThatHoldsAnotherClassIsToldOnTheUsesLine) {
    write("b.cls", "Tarnwick Class z\nEnd class");
    EXPECT_EQ(check("Tarnwick Class a\n\nUses b\nEnd class"), "3 1204");
}

TEST_F(Acceptance, ErrorsOfAUsedClassAreOneMessage) {
    write("b.cls", "Tarnwick Class b\npublic function f(\nEnd class");
    EXPECT_EQ(check("Tarnwick Class a\nUses b\nfunction g()\nf(1)\nk()\nend function\nEnd class"), "2 1206");
}

TEST_F(Acceptance, ConstantsThatClassesTakeFromEachOtherAreComputed) {
    write("b.cls", "Tarnwick Class b\nUses Main\npublic const B1 = A1 + 1\npublic const B2 = 5\nEnd class");
    EXPECT_EQ(check("Tarnwick Class Main\nUses b\npublic const A1 = B2 * 2\nconst A2 = B1\nEnd class"), "");
    EXPECT_NE(check("Tarnwick Class Main\nUses b\npublic const A1 = B1\nEnd class"), "");
}

}  // namespace
}  // namespace tarn::toolchain
