// SPDX-License-Identifier: Apache-2.0
//
// The string, word and path families of the system library.
#include "library/system/system.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(Strings, FindCountsFromOneAndIgnoresCaseByDefault) {
    struct Case {
        const char *what, *text;
        int from;
        bool ignoreCase;
        int position;
    };
    const Case cases[] = {
        {"b", "aBc", 1, true, 2},         {"b", "aBc", 1, false, 0},   {"B", "aBc", 1, false, 2},
        {"", "abc", 1, true, 0},          {"a", "", 1, true, 0},       {"abc", "ab", 1, true, 0},
        {"ab", "xxab", 3, true, 3},       {"ab", "xxab", 4, true, 0},  {"a", "aaa", -5, true, 1},
        {"a", "aaa", 3, true, 3},         {"a", "aaa", 4, true, 0},    {"a", "aaa", 99, true, 0},
        {"aab", "aaaAB", 1, true, 3},     {"Z", "AAAAzz", 1, true, 5}, {"\xC4", "\xE4\xC4", 1, true, 2},
        {"//", "a / b // c", 1, true, 7},
    };
    for (const Case& c : cases)
        EXPECT_EQ(STRFIND(c.what, c.text, c.from, c.ignoreCase), c.position) << c.what << c.text;
}

TEST(Strings, ReplaceGoesOnBehindWhatItPutIn) {
    EXPECT_EQ(STRREPLACE("aAa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(STRREPLACE("aAa", "a", "b", false), "bAb");
    EXPECT_EQ(STRREPLACE("abcabc", "BC", ""), "aa");
    EXPECT_EQ(STRREPLACE("abc", "", "x"), "abc");
    EXPECT_EQ(STRREPLACE("", "a", "x"), "");
    EXPECT_EQ(STRREPLACE("aaaa", "aa", "b"), "bb");
    EXPECT_EQ(STRREPLACE("xyz", "q", "b"), "xyz");
    std::string text, wanted;
    for (int i = 0; i < 20000; ++i) text += "Zb", wanted += "Zc";  // many of one case, none of the other
    EXPECT_EQ(STRREPLACE(text, "B", "c"), wanted);
}

TEST(Strings, EndsAndMiddlesAreCutSafely) {
    EXPECT_EQ(STRLEFT("abc", 2), "ab");
    EXPECT_EQ(STRLEFT("abc", 9), "abc");
    EXPECT_EQ(STRLEFT("abc", 0), "");
    EXPECT_EQ(STRLEFT("abc", -1), "");
    EXPECT_EQ(STRRIGHT("abc", 2), "bc");
    EXPECT_EQ(STRRIGHT("abc", 9), "abc");
    EXPECT_EQ(STRRIGHT("abc", -1), "");
    EXPECT_EQ(STRTRIM(" \t\r\n a b \r\n"), "a b");
    EXPECT_EQ(STRLTRIM("  a "), "a ");
    EXPECT_EQ(STRRTRIM("  a "), "  a");
    EXPECT_EQ(STRRTRIMCRLF(" a \r\n\r\n"), " a ");
    EXPECT_EQ(STRTRIM(" \t"), "");
    EXPECT_EQ(STRMAKE(3, '*'), "***");
    EXPECT_EQ(STRMAKE(-3, '*'), "");
}

TEST(Strings, CaseAndEqualityAreThoseOfAscii) {
    EXPECT_EQ(STRUPPER("az\xE4_9"), "AZ\xE4_9");
    EXPECT_EQ(STRLOWER("AZ\xC4[@"), "az\xC4[@");
    EXPECT_TRUE(STREQUAL("aBc", "AbC"));
    EXPECT_FALSE(STREQUAL("abc", "ab"));
    EXPECT_FALSE(STREQUAL("[", "{"));
    EXPECT_FALSE(STREQUAL("\xE4", "\xC4"));
}

TEST(Strings, NameCaseRaisesTheLetterThatFollowsNoSymbol) {
    EXPECT_EQ(STRNAMECASE("push button1"), "Push Button1");
    EXPECT_EQ(STRNAMECASE("NEW"), "New");
    EXPECT_EQ(STRNAMECASE("a_b 1c-d.e"), "A_b 1c-D.E");
    EXPECT_EQ(STRNAMECASE(""), "");
}

TEST(Strings, LinesAreCountedByNewlines) {
    const std::string text = "one\r\ntwo\n\nfour";
    EXPECT_EQ(STRLINES(text), 3);
    const char* lines[] = {"", "one", "two", "", "four", ""};
    for (int n = 0; n <= 5; ++n) EXPECT_EQ(STRLINE(text, n), lines[n]) << n;
    EXPECT_EQ(STRLINE("a\r\r\n", 1), "a\r");
    EXPECT_EQ(STRNL2CRNL("a\nb\r\nc\n\n"), "a\r\nb\r\nc\r\n\r\n");
}

std::string numberedLines(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) text += STR(i) + "\n";
    return text;
}

TEST(Strings, MoreThanFortyLinesAreCutToThirtyNineAndAMark) {
    EXPECT_EQ(LIMITLINES(numberedLines(40)), numberedLines(40));
    EXPECT_EQ(LIMITLINES(numberedLines(41)), numberedLines(39) + "...(more)...\n");
    EXPECT_EQ(LIMITLINES(numberedLines(40) + "x"), numberedLines(39) + "...(more)...");
    EXPECT_EQ(LIMITLINES(numberedLines(21), 20), numberedLines(19) + "...(more)...\n");
    EXPECT_EQ(LIMITLINES(""), "");
}

TEST(Strings, QuotesAreAddedAndRemovedInPairs) {
    EXPECT_EQ(STRADDQUOTES("a b"), "\"a b\"");
    EXPECT_EQ(STRREMOVEQUOTES("\"a b\""), "a b");
    EXPECT_EQ(STRREMOVEQUOTES("\""), "\"");
    EXPECT_EQ(STRREMOVEQUOTES("\"\""), "");
    EXPECT_EQ(STRREMOVEQUOTES("\"a"), "\"a");
}

TEST(Strings, NumbersConvertBothWays) {
    EXPECT_EQ(HEXSTR(0x1F, 4), "001F");
    EXPECT_EQ(HEXSTR(0xABCDEF, 2), "ABCDEF");
    EXPECT_EQ(HEXSTR(0, 0), "0");
    EXPECT_EQ(HEXSTR(0xFFFFFFFF, 8), "FFFFFFFF");
    EXPECT_EQ(HEXVAL("1fG"), 0x1Fu);
    EXPECT_EQ(HEXVAL("0x1F"), 0u);  // "x" is no digit
    EXPECT_EQ(HEXVAL(""), 0u);
    EXPECT_EQ(STR(-2147483647 - 1), "-2147483648");
    EXPECT_TRUE(ISDIGITS("0123"));
    for (const char* text : {"", "1a", "-1", " 1", "\xB2"}) EXPECT_FALSE(ISDIGITS(text)) << text;
    struct Case {
        const char* text;
        int value;
        bool ok;
    };
    const Case cases[] = {{"12", 12, true},         {"-12", -12, true},
                          {"+12", 12, true},        {"", 0, false},
                          {"+", 0, false},          {"-+1", 0, false},
                          {"1 ", 0, false},         {" 1", 0, false},
                          {"1.0", 0, false},        {"2147483647", 2147483647, true},
                          {"2147483648", 0, false}, {"-2147483648", -2147483647 - 1, true},
                          {"-2147483649", 0, false}};
    for (const Case& c : cases) {
        bool ok = !c.ok;
        EXPECT_EQ(CVTI(c.text, ok), c.value) << c.text;
        EXPECT_EQ(ok, c.ok) << c.text;
    }
}

TEST(Strings, KeysHaveTheirNames) {
    struct Case {
        int code;
        const char* text;
    };
    const Case cases[] = {{0x26, "Up"},    {0x28, "Down"},     {0x25, "Left"},
                          {0x27, "Right"}, {0x1141, "Ctrl+A"}, {0x115A, "Ctrl+Z"},
                          {0x1140, ""},    {0x115B, ""},       {0x2E, "Del"},
                          {0x23, "End"},   {0x0D, "Enter"},    {0x1B, "Escape"},
                          {0x70, "F1"},    {0x79, "F10"},      {0x7B, "F12"},
                          {0x7C, ""},      {0x6F, ""},         {0x24, "Home"},
                          {0x22, "PgDn"},  {0x21, "PgUp"},     {0, ""},
                          {-1, ""},        {0x7FFFFFFF, ""}};
    for (const Case& c : cases) EXPECT_EQ(KEYSTR(c.code), c.text) << c.code;
}

// ---- words ----

constexpr const char* reserved[] = {
    "adt",     "and",    "array",   "asc",      "boolean", "by",      "call",   "callback", "case",
    "class",   "code",   "const",   "desc",     "div",     "downto",  "each",   "else",     "elseif",
    "end",     "enum",   "exit",    "external", "false",   "fixed",   "for",    "from",     "function",
    "if",      "in",     "index",   "inout",    "integer", "iterate", "list",   "loop",     "me",
    "mod",     "not",    "of",      "onerror",  "or",      "order",   "out",    "postcond", "precond",
    "private", "public", "real",    "record",   "return",  "run",     "select", "set",      "string",
    "table",   "then",   "through", "to",       "true",    "type",    "union",  "uses",     "var",
    "when",    "where",  "while",   "with"};

TEST(ReservedWords, AreKnownInAnyCaseAndInOneListOnly) {
    EXPECT_EQ(std::size(reserved), 67u);
    for (const std::string word : reserved) {
        EXPECT_TRUE(ISRESERVEDWORD(word)) << word;
        EXPECT_TRUE(ISRESERVEDWORD(STRUPPER(word))) << word;
        EXPECT_FALSE(ISFUTURERESERVEDWORD(word)) << word;
        EXPECT_FALSE(ISRESERVEDWORD(word + "x")) << word;
    }
    for (const char* word :
         {"xor", "Begin", "activate", "XML", "sysutils", "max", "unit", "isnull", "objpas"}) {
        EXPECT_TRUE(ISFUTURERESERVEDWORD(word)) << word;
        EXPECT_FALSE(ISRESERVEDWORD(word)) << word;
    }
    for (const char* word : {"", "zzz", "aaa", "end ", "en"}) {
        EXPECT_FALSE(ISRESERVEDWORD(word)) << word;
        EXPECT_FALSE(ISFUTURERESERVEDWORD(word)) << word;
    }
}

TEST(NextWordTest, ReadsTheShapesOfTheLanguageAndNothingElse) {
    struct Case {
        const char *text, *word;
        std::size_t position;  // afterwards
    };
    const Case cases[] = {
        {"  \"a\"\"b\" x", "\"a\"\"b\"", 9},
        {"<x", "", 1},
        {"  <x", "", 3},
        {"<>x", "<>", 3},
        {"[1:3,7] y", "[1:3,7]", 8},
        {"0x1FL;", "0x1FL", 6},
        {"1E+;", "", 1},
        {"", "", 1},
        {" \t\r\n", "", 5},
        {"abc_9-", "abc_9", 6},
        {"_a", "", 1},
        {"#12x y", "#12x", 5},
        {"$", "$", 2},
        {"#", "#", 2},
        {"12.5e-3x", "12.5e-3", 8},
        {"12.x", "12", 3},
        {"1..2", "1", 2},
        {"+5", "+5", 3},
        {"-x", "", 1},
        {"+", "", 1},
        {"1E5", "1E5", 4},
        {"1e+05 ", "1e+05", 6},
        {"1E;", "1", 2},
        {"1E-", "", 1},
        {"0x", "0", 2},
        {"0Xg", "0", 2},
        {"0xABL1", "0xABL", 6},
        {"-0x1f", "-0x1f", 6},
        {"[", "", 1},
        {"[1", "", 1},
        {"[1,]", "", 1},
        {"[]", "[]", 3},
        {"[ 1 .. 3 , 0x7 : 9 ]z", "[ 1 .. 3 , 0x7 : 9 ]", 21},
        {"[1..3]", "[1..3]", 7},
        {"[1..3]x", "[1..3]", 7},
        {"[1...3]", "", 1},
        {"[1\n,2]", "", 1},
        {"[1,\n2]", "", 1},
        {"[1\t,2]", "[1\t,2]", 7},
        {"[a]", "", 1},
        {"[1 2]", "", 1},
        {"[1:]", "", 1},
        {"(", "(", 2},
        {")", ")", 2},
        {",", ",", 2},
        {".", ".", 2},
        {"{", "{", 2},
        {"|", "|", 2},
        {"}", "}", 2},
        {"=x", "=", 2},
        {"=>x", "=>", 3},
        {"]", "", 1},
        {":", "", 1},
        {"'a'", "", 1},
        {"//c", "", 1},
        {"\"open", "", 1},
        {"\"a\tb\"", "", 1},
        {"\"a\nb\"", "", 1},
        {"\"\"", "\"\"", 3},
        {"\"\"\"\"x", "\"\"\"\"", 5},
        {"\"\"\"", "", 1},
        {"\"\xC3\xA4\"", "\"\xC3\xA4\"", 5},
        {"\xC3", "", 1},
        {"*", "", 1},
        {"a\xC3", "a", 2},
    };
    for (const Case& c : cases) {
        std::size_t position = 1;
        EXPECT_EQ(NextWord(c.text, position), c.word) << c.text;
        EXPECT_EQ(position, c.position) << c.text;
    }
}

TEST(NextWordTest, StaysInsideTheTextWhateverThePosition) {
    for (std::size_t start :
         {std::size_t{0}, std::size_t{4}, std::size_t{5}, std::size_t{1000}, ~std::size_t{0}}) {
        std::size_t position = start;
        EXPECT_EQ(NextWord("abc", position), start == 0 ? "abc" : "") << start;
        EXPECT_EQ(position, 4u) << start;
    }
    std::size_t position = 1;
    EXPECT_EQ(NextWord(std::string_view("\0a", 2), position), "");
    EXPECT_EQ(position, 1u);
}

// ---- paths ----

TEST(Paths, AreSplitIntoFourParts) {
    struct Case {
        const char *path, *drive, *directory, *name, *extension;
    };
    const Case cases[] = {{"C:\\a\\b.cls", "C:", "\\a\\", "b", ".cls"},
                          {"/home/u/x.tar.gz", "", "/home/u/", "x.tar", ".gz"},
                          {"x", "", "", "x", ""},
                          {".bashrc", "", "", "", ".bashrc"},
                          {"/a.b/c", "", "/a.b/", "c", ""},
                          {"a/", "", "a/", "", ""},
                          {"c:x", "c:", "", "x", ""},
                          {"foo:bar.cls", "foo:", "", "bar", ".cls"},
                          {"foo:\\a\\bar.cls", "foo:", "\\a\\", "bar", ".cls"},
                          {"/a:b/c:d", "", "/a:b/", "c:d", ""},
                          {"a\\b/c", "", "a\\b/", "c", ""},
                          {"", "", "", "", ""},
                          {"a.", "", "", "a", "."},
                          {"\xC3\xA4.\xC3\xB6", "", "", "\xC3\xA4", ".\xC3\xB6"}};
    for (const Case& c : cases) {
        const PathParts parts = SPLITPATH(c.path);
        EXPECT_EQ(parts.drive, c.drive) << c.path;
        EXPECT_EQ(parts.directory, c.directory) << c.path;
        EXPECT_EQ(parts.name, c.name) << c.path;
        EXPECT_EQ(parts.extension, c.extension) << c.path;
        EXPECT_EQ(FILEGETDIR(c.path) + FILEGETFNAME(c.path), c.path);
        EXPECT_EQ(FILECHANGEEXT(c.path, FILEGETEXT(c.path)), c.path);
        EXPECT_EQ(FILEBASENAME(c.path), c.name);
        EXPECT_EQ(FILEGETDRIVE(c.path), c.drive);
    }
    EXPECT_EQ(FILECHANGEEXT("/a.b/c.cls", ".rc"), "/a.b/c.rc");
    EXPECT_EQ(FILECHANGEEXT("/a.b/c", ".rc"), "/a.b/c.rc");
}

TEST(Paths, AreCheckedPartByPart) {
    struct Case {
        const char* path;
        bool dir, file;
    };
    const Case cases[] = {{"/", true, false},
                          {"/home/u/", true, false},
                          {"/home/u", true, true},
                          {"/home/u/x.cls", true, true},
                          {"C:\\a\\", true, false},
                          {"C:\\a\\b.c", true, true},
                          {"c:/a/b", true, true},
                          {"C:", false, false},
                          {"", false, false},
                          {"x", false, false},
                          {"a/b", false, false},
                          {"//a", false, false},
                          {"/a//b", false, false},
                          {"\\a\\b", false, false},
                          {"CC:\\a", false, false},
                          {"1:\\a", false, false},
                          {":\\a", false, false},
                          {"/a*b", false, false},
                          {"/a?b", false, false},
                          {"/a\"b", false, false},
                          {"/a:b", false, false},
                          {"/a<b", false, false},
                          {"/a|b", false, false},
                          {"/a\tb", false, false},
                          {"/\xC3\xA4/\xC3\xB6.x", true, true},
                          {"/a b/c d.e f", true, true},
                          {"/.x", true, true},
                          {"/a$#!'()+,-;=@[]^_`{}~%&/b", true, true},
                          {"/a\x7F", false, false}};
    for (const Case& c : cases) {
        EXPECT_EQ(DIRCHK(c.path), c.dir) << c.path;
        EXPECT_EQ(FILECHK(c.path), c.file) << c.path;
    }
    EXPECT_FALSE(FILECHK(std::string_view("/a\0b", 4)));
}

TEST(Paths, SmallHelpers) {
    EXPECT_TRUE(ISROOTED("/a"));
    EXPECT_TRUE(ISROOTED("\\a"));
    EXPECT_TRUE(ISROOTED("c:a"));
    EXPECT_FALSE(ISROOTED("a/b"));
    EXPECT_FALSE(ISROOTED(""));
    EXPECT_EQ(FILEADDSEPARATOR("/a"), "/a/");
    EXPECT_EQ(FILEADDSEPARATOR("/a/"), "/a/");
    EXPECT_EQ(FILEADDSEPARATOR("C:\\a\\"), "C:\\a\\");
    EXPECT_EQ(FILEADDSEPARATOR(""), "");
}

TEST(Paths, AMarkAndTheCharactersBehindItBecomeAQuotedName) {
    EXPECT_EQ(FILESUBSTITUTENAME("\"quarn\" /s3000 ^.cls", "^", "/a b/foo"),
              "\"quarn\" /s3000 \"/a b/foo.cls\"");
    EXPECT_EQ(FILESUBSTITUTENAME("^ ^_2.x-y ^^", "^", "b"), "\"b\" \"b_2.x\"-y \"b\"\"b\"");
    EXPECT_EQ(FILESUBSTITUTENAME("none", "^", "b"), "none");
    EXPECT_EQ(FILESUBSTITUTENAME("^", "", "b"), "^");
    EXPECT_EQ(FILESUBSTITUTENAME("^^x", "^^", "b"), "^^x");
    EXPECT_EQ(FILESUBSTITUTENAME("^", "^", "a^b"), "\"a^b\"");
}

TEST(Paths, ArgumentsAreSplitAtBlanksOutsideQuotes) {
    using Arguments = std::vector<std::string>;
    EXPECT_EQ(SPLITARGUMENTS(""), Arguments{});
    EXPECT_EQ(SPLITARGUMENTS("  a \t b\n"), (Arguments{"a", "b"}));
    EXPECT_EQ(SPLITARGUMENTS("/fs \"a b.cls\" -i\"p q;r\" -n"),
              (Arguments{"/fs", "a b.cls", "-ip q;r", "-n"}));
    EXPECT_EQ(SPLITARGUMENTS("\"\" x\"\""), (Arguments{"", "x"}));
    EXPECT_EQ(SPLITARGUMENTS("\"open end"), (Arguments{"open end"}));
    EXPECT_EQ(SPLITARGUMENTS("a\\ b\\\"c\""), (Arguments{"a\\", "b\\c"}));
}

}  // namespace
}  // namespace tarn
