// SPDX-License-Identifier: Apache-2.0
//
// The language of options texts: checks, defaults, steps and lists; new objects; classes of characters.
#include "library/designer/propedit.h"

#include "kernel/run/runtime.h"
#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

class Propedit : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
};

// ---- checks and defaults ----

struct KindCase {
    std::string options;
    std::string message;   // of a value that is wrong
    std::string fallback;  // of an empty value
    std::vector<std::string> good, bad;
};

const std::string basicColours = "0x000000,0x800000,0x008000,0x808000,0x000080,0x800080,0x008080,0x808080,\n"
                                 "0xc0c0c0,0xff0000,0x00ff00,0xffff00,0x0000ff,0xff00ff,0x00ffff,0xffffff";

const std::string numberMessage = "A number should be used.\n(must consist of digits)\n";
const std::string colourMessage =
    "A color value should be used.\n(0xBBGGRR where BB=blue, GG=green, RR=red byte)\n";

const KindCase kindCases[] = {
    {"BOOLEAN",
     "A True/False value should be used.\n(True, False, Yes, No, T, F, Y, N)\n",
     "False",
     {"True", "False", "Yes", "No", "T", "F", "Y", "N", "true", "YES", "f", "n"},
     {"", "1", "0", "Tr", "True ", "Maybe"}},
    {"CHAR(\"abC\")",
     "One of the following letters should be used, with lower or upper case as shown.\n(abC)\n",
     "a",
     {"a", "b", "C"},
     {"", "c", "A", "ab", "x"}},
    {"CHAR()",
     "One of the following letters should be used, with lower or upper case as shown.\n()\n",
     "",
     {},
     {"", "a"}},
    {"COLOUR(0:15)",
     "One of the following color values should be used.\n(" + basicColours + ")\n",
     "0x000000",
     {"0x000000", "0", "0xFFFFFF", "0xffffff", "16777215", "0x808080", "0XC0C0C0", " 255 "},
     {"", "red", "1", "0x010101", "0x000000 x", "0x"}},
    {"COLOR ( 0:15 )",
     "One of the following color values should be used.\n(" + basicColours + ")\n",
     "0x000000",
     {"0x00FF00"},
     {"0x00FE00"}},
    {"COLOUR",
     colourMessage,
     "0x000000",
     {"0", "0x123456", "-1", "255"},
     {"", "red", "0x", "0x12345G", "#123456"}},
    {"COLOR", colourMessage, "0x000000", {"0xFFFFFFFF"}, {"0x1FFFFFFFF", "99999999999"}},
    {"CONST", "", "", {"", "anything", "\xFF\n"}, {}},
    {"ENUM(Left,Right,Centre)",
     "One of the following options should be used.\n(0-Left 1-Right 2-Centre)\n",
     "0",
     {"0", "1", "2", "2-Centre", "1-anything", "0x2"},
     {"", "3", "-1", "Left", "99999999999"}},
    {"ENUM(One)", "One of the following options should be used.\n(0-One)\n", "0", {"0"}, {"1"}},
    {"ENUM()", "One of the following options should be used.\n()\n", "0", {}, {"0", ""}},
    {"FILENAME(bmp,png)", "", "", {"", "x.bmp", "no such file"}, {}},
    {"FILENAME", "", "", {"x"}, {}},
    {"INTEGER(1-\"Yes\",0-\"No\")",
     "One of the following options should be used.\n(1-\"Yes\",0-\"No\")\n",
     "1-Yes",
     {"1", "0", "1-Yes", "0-whatever", "0x1"},
     {"", "2", "Yes", "10"}},
    {"INTEGER{1-\"a\",2-\"b\",0x10-\"c\"}",
     "Any number of the following options should be used.\n(1-\"a\",2-\"b\",0x10-\"c\")\n",
     "0",
     {"0", "1", "2", "3", "16", "19", "0x13"},
     {"", "4", "7", "32", "-1", "x", "1 2"}},
    {"INTEGER[1:4]",
     "A list of numbers should be used.\n(4 numbers total)\n",
     "0 0 0 0",
     {"1 2 3 4", "-1 +2 3  4 ", " 0 0 0 0"},
     {"", "1 2 3", "1 2 3 4 5", "1 2 3 x", "1,2,3,4", "1 2 3 4 x", "1 2 3 4.5", "0x1 2 3 4", "1-2-3-4",
      "1 2 3+4", "1 2 3 99999999999", "-99999999999 2 3 4", "1 2 3 4-", "1e1 2 3 4"}},
    {"INTEGER[1:3]", "A list of numbers should be used.\n(3 numbers total)\n", "0 0 0", {"1 2 3"}, {"1"}},
    {"INTEGER[0:0]", "A list of numbers should be used.\n(1 numbers total)\n", "0", {"7"}, {"7 8"}},
    {"INTEGER[2:1]", "A list of numbers should be used.\n(0 numbers total)\n", "", {"", " "}, {"1"}},
    {"INTEGER(0:100)",
     "A number should be used.\n(between 0 and 100)\n",
     "0",
     {"0", "100", "+5", " 7 "},
     {"", "-1", "101", "x", "1.5", "0x10", "5 6", "99999999999"}},
    {"INTEGER(5:9)", "A number should be used.\n(between 5 and 9)\n", "5", {"5", "9"}, {"4", "10", "0"}},
    {"INTEGER(-9:-5)", "A number should be used.\n(between -9 and -5)\n", "0", {"-9", "-5"}, {"0", "-10"}},
    {"INTEGER(3:)", numberMessage, "3", {"3", "2147483647"}, {"2", "-1", "2147483648"}},
    {"INTEGER(:3)", numberMessage, "0", {"3", "-2147483648"}, {"4", "-2147483649"}},
    {"INTEGER(:)", numberMessage, "0", {"3", "-4"}, {"x"}},
    {"INTEGER()", numberMessage, "0", {"3"}, {""}},
    {"INTEGER", numberMessage, "0", {"0", "-7", "2147483647"}, {"", "seven", "1e3", "2147483648"}},
    {"NAME",
     "A name should be used.\n(consisting of letters, numbers, or '_' with a max length of 2147483647)\n",
     "Name",
     {"", "a", "Ok_1", "Z9"},
     {"1a", "_a", "a b", "a-b", "a.", "\xC3\xA4"}},
    {"NAME(1:5)",
     "A name should be used.\n(consisting of letters, numbers, or '_' with length of 1 to 5)\n",
     "Name",
     {"a", "abcde"},
     {"", "abcdef", "a b", "1"}},
    {"NAME(0:5)",
     "A name should be used.\n(consisting of letters, numbers, or '_' with length of 0 to 5)\n",
     "Name",
     {"", "abcde"},
     {"abcdef"}},
    {"NAME(2:)",
     "A name should be used.\n(consisting of letters, numbers, or '_' with length of 2 to 2147483647)\n",
     "Name",
     {"ab"},
     {"a", ""}},
    {"STRING(\"Dialog\",\"Edit window\")",
     "One of the following options should be used.\n(\"Dialog\",\"Edit window\")\n",
     "Dialog",
     {"Dialog", "dialog", "EDIT WINDOW"},
     {"", "Dia", "Window", "Dialog "}},
    {"STRING(5)",
     "A string should be used.\n(consisting of any characters with a max length of 5)\n",
     "",
     {"", "12345", "a b\t"},
     {"123456"}},
    {"STRING", "", "", {"", "any\xFF", std::string(5000, 'x')}, {}},
    {"HIDDEN", "", "", {"", "anything"}, {}},
    {"NOSUCHKIND(1:2)", "", "", {"", "anything"}, {}},
    {"", "", "", {"", "anything"}, {}},
    {"(1:2)", "", "", {"x"}, {}},
};

// The kind word in any case; what stands behind it stays.
std::string withKind(const std::string& options, char (*change)(char)) {
    std::string text = options;
    for (char& c : text) {
        if (!ISALPHA(c)) break;
        c = change(c);
    }
    return text;
}

TEST_F(Propedit, EveryKindAcceptsAndRefuses) {
    for (const KindCase& c : kindCases) {
        for (const std::string& value : c.good)
            EXPECT_EQ(CHECKVALUE(c.options, value).message, "") << c.options << "|" << value;
        for (const std::string& value : c.bad)
            EXPECT_EQ(CHECKVALUE(c.options, value).message, c.message) << c.options << "|" << value;
    }
}

TEST_F(Propedit, EveryKindHasADefault) {
    for (const KindCase& c : kindCases)
        EXPECT_EQ(CHECKVALUE(c.options, "").fallback, c.fallback) << c.options;
    for (const std::string kind : {"CONST", "FILENAME(bmp)", "HIDDEN", "", "OTHER"})
        EXPECT_EQ(CHECKVALUE(kind, "the value").fallback, "the value") << kind;
    for (const std::string kind : {"INTEGER(5:9)", "NAME", "ENUM(a)", "BOOLEAN", "STRING"})
        EXPECT_EQ(CHECKVALUE(kind, "7").fallback, CHECKVALUE(kind, "").fallback) << kind;
}

TEST_F(Propedit, TheKindWordMayBeInAnyCase) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    for (const KindCase& c : kindCases) {
        const std::string small = withKind(c.options, lower);
        for (const std::string& value : c.good)
            EXPECT_EQ(CHECKVALUE(small, value).message, "") << small << "|" << value;
        for (const std::string& value : c.bad)
            EXPECT_FALSE(CHECKVALUE(small, value).message.empty()) << small << "|" << value;
        EXPECT_EQ(CHECKVALUE(small, "").fallback, c.fallback) << small;
        EXPECT_EQ(MAKEOPTIONSSTRING(small), MAKEOPTIONSSTRING(c.options)) << small;
    }
}

TEST_F(Propedit, AFolderHasToExist) {
    const std::string message =
        "A folder name should be used\n(must be a drive letter and a full directory path "
        "starting from the root directory)\n";
    const TempFolder folder;
    const std::string path = folder / "";
    for (const std::string& good :
         {path, path.substr(0, path.size() - 1), std::string("/"), STRREPLACE(path, "/", "\\")}) {
        EXPECT_EQ(CHECKVALUE("FOLDER", good).message, "") << good;
        EXPECT_EQ(CHECKVALUE("FOLDER", good).fallback, good);
    }
    for (const std::string& bad : {path + "none", std::string(), std::string("C:\\no such drive")}) {
        EXPECT_EQ(CHECKVALUE("FOLDER", bad).message, message) << bad;
        EXPECT_EQ(CHECKVALUE("FOLDER", bad).fallback, GETCURDIR());
    }
}

TEST_F(Propedit, AHostileRangeMakesNoHugeList) {
    EXPECT_LT(CHECKVALUE("INTEGER[1:2000000000]", "").fallback.size(), 3000u);
    EXPECT_LT(CHECKVALUE("INTEGER[-2147483648:2147483647]", "").fallback.size(), 3000u);
    EXPECT_EQ(CHECKVALUE("INTEGER[:4]", "").fallback, "");
}

// ---- lists ----

TEST_F(Propedit, OptionsStrings) {
    const std::pair<std::string, std::string> cases[] = {
        {"ENUM(Left,Right,Centre)", "0-Left\n1-Right\n2-Centre\n"},
        {"enum( Left , Right )", "0-Left\n1-Right\n"},
        {"ENUM(Left", "0-Left\n"},
        {"ENUM()", ""},
        {"ENUM", ""},
        {"ENUM(a,,b)", "0-a\n"},
        {"INTEGER(1-\"Yes\",0-\"No\")", "1-Yes\n0-No\n"},
        {"INTEGER(1 \"Yes\", 0 No)", "1-Yes\n0-No\n"},
        {"INTEGER(1 - Yes)", "1-Yes\n"},
        {"INTEGER(0x10-\"Hex\",-1-\"None\")", "0x10-Hex\n-1-None\n"},
        {"INTEGER(1-\"Yes\",2-,3,4-\"No\")", "1-Yes\n4-No\n"},
        {"INTEGER(1-\"Yes\",x-\"No\",3-\"c\")", "1-Yes\n"},
        {"INTEGER(1-\"\")", ""},
        {"INTEGER(0:100)", ""},
        {"INTEGER(:100)", ""},
        {"INTEGER(0:)", ""},
        {"INTEGER(1-\"a\",5:9)", ""},
        {"INTEGER", ""},
        {"INTEGER{1-\"One\",2-\"Two\"}", "1-One\n2-Two\n"},
        {"INTEGER[1:4]", ""},
        {"STRING(\"a\",\"b c\")", "a\nb c\n"},
        {"string(\"a\")", "a\n"},
        {"STRING (\"a\")", ""},
        {"STRING(5)", ""},
        {"STRING", ""},
        {"STRING(\"\",\"a\")", "\na\n"},
        {"STRING(\"a\"\"b\")", "a\"\"b\n"},
        {"STRING(\"open", ""},
        {"BOOLEAN", ""},
        {"COLOUR(0:15)", ""},
        {"NAME(1:5)", ""},
        {"FILENAME(bmp,png)", ""},
        {"", ""},
    };
    for (const auto& [options, lines] : cases) EXPECT_EQ(MAKEOPTIONSSTRING(options), lines) << options;
}

TEST_F(Propedit, StepsGoAroundTheList) {
    struct Case {
        std::string options, value;
        int step;
        std::string next;
    };
    const std::string sides = "ENUM(Left,Right,Centre)", yes = "INTEGER(1-\"Yes\",0-\"No\")",
                      kinds = "STRING(\"Dialog\",\"Editwindow\",\"Richeditwindow\")";
    const Case cases[] = {
        {sides, "0", 0, "0-Left"},
        {sides, "0", 1, "1-Right"},
        {sides, "0-Left", -1, "2-Centre"},
        {sides, "2", 1, "0-Left"},
        {sides, "", 0, "0-Left"},
        {sides, "", 1, "1-Right"},
        {sides, "7", 1, "7"},
        {sides, "Left", 1, "Left"},
        {sides, "0x1", 0, "1-Right"},
        {yes, "0", 0, "0-No"},
        {yes, "0", 1, "1-Yes"},
        {yes, "1", -1, "0-No"},
        {yes, "", 0, "1-Yes"},
        {yes, "Yes", 0, "Yes"},
        {yes, "1-", 0, "1-Yes"},
        {kinds, "Dialog", 1, "Editwindow"},
        {kinds, "ed", 0, "Editwindow"},
        {kinds, "DIALOG", -1, "Richeditwindow"},
        {kinds, "none", 1, "none"},
        {kinds, "", -1, "Richeditwindow"},
        {"STRING(\" a \",\"b\")", "b", 1, "a"},
        {"STRING(\"8\",\"10\")", "10", 1, "8"},
        {"STRING(\"abc\",\"ab\")", "ab", 0, "ab"},  // the line that it is, before those that begin with it
        {"STRING(\"abc\",\"ab\")", "AB", 1, "abc"},
        {"STRING(\"abc\",\"ab\")", "a", 0, "abc"},
        {"STRING(\"1 px\",\"1 pt\")", "1 pt", 0, "1 pt"},
        {"STRING(\"1 px\",\"1 pt\")", "1", 0, "1 px"},
        {"STRING(\"ab\",\" a \")", "a", 0, "a"},
        {"INTEGER(0:9)", "5", 1, "5"},
        {"INTEGER{1-\"a\",2-\"b\"}", "1", 1, "1"},
        {"BOOLEAN", "True", 1, "True"},
        {"ENUM()", "", 1, ""},
        {"", "x", 1, "x"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(GETNEXTVALUE(c.options, c.value, c.step), c.next)
            << c.options << "|" << c.value << "|" << c.step;
    std::string value = "1";
    for (int i = 0; i < 3; ++i) value = GETNEXTVALUE(sides, value, 1);
    EXPECT_EQ(value, "1-Right");
}

TEST_F(Propedit, LengthsOfNames) {
    struct Case {
        std::string options;
        int minimum, maximum;
        bool found;
    };
    const Case cases[] = {
        {"NAME(1:40)", 1, 40, true}, {"name( 0 : 8 )", 0, 8, true},       {"NAME", 0, 0, false},
        {"NAME(:40)", 0, 0, false},  {"NAME(1:)", 0, 0, false},           {"NAME(40)", 0, 0, false},
        {"NAME(a:b)", 0, 0, false},  {"INTEGER(1:40)", 0, 0, false},      {"STRING(5)", 0, 0, false},
        {"", 0, 0, false},           {"NAME(1:99999999999)", 0, 0, false}};
    for (const Case& c : cases) {
        const LengthLimits limits = GETMINMAX(c.options);
        EXPECT_EQ(limits.minimum, c.minimum) << c.options;
        EXPECT_EQ(limits.maximum, c.maximum) << c.options;
        EXPECT_EQ(limits.found, c.found) << c.options;
    }
}

TEST_F(Propedit, ColoursAndFileKinds) {
    EXPECT_EQ(COLORSTOHEX(), basicColours);
    const std::pair<const char*, const char*> cases[] = {
        {"TXT", "Text Files"}, {".txt", "Text Files"}, {"Bmp", "Bitmap Files"}, {"ico", "Icon Files"},
        {"png", "PNG Files"},  {".svg", "SVG Files"},  {"", " Files"},          {"..x", ".X Files"}};
    for (const auto& [extension, text] : cases) EXPECT_EQ(GETFILEDESCRIPTION(extension), text) << extension;
}

TEST_F(Propedit, AnyTextIsReadToItsEnd) {
    const std::string pieces[] = {"ENUM", "INTEGER", "STRING", "CHAR", "NAME",        "COLOUR", "(", ")",
                                  "{",    "}",       "[",      "]",    "\"",          ":",      "-", ",",
                                  "1",    "0x",      " ",      "a",    "99999999999", "\n"};
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        std::string options, value;
        for (std::size_t n = random() % 9; n > 0; --n) options += pieces[random() % std::size(pieces)];
        for (std::size_t n = random() % 4; n > 0; --n) value += pieces[random() % std::size(pieces)];
        const ValueCheck check = CHECKVALUE(options, value);
        if (check.message.empty()) continue;
        EXPECT_TRUE(check.message.ends_with('\n')) << options;
        static_cast<void>(GETNEXTVALUE(options, value, 1));
    }
}

// ---- new objects ----

TEST_F(Propedit, ANewObjectHasAllPropertiesOfItsType) {
    EXPECT_EQ(GETOBJECTDEFAULTS("pushbutton"), "NAME=Name\n"
                                               "TYPEOF=Pushbutton\n"
                                               "POSITION=0 0 0 0\n"
                                               "CAPTION=\n"
                                               "DEFAULT=0\n"
                                               "CANCEL=0\n"
                                               "ENABLED=1-Yes\n"
                                               "VISIBLE=1-Yes\n"
                                               "TABSTOP=1-Yes\n"
                                               "ARRAY=\n"
                                               "HINT=\n");
    const std::string shape = GETOBJECTDEFAULTS("Shape");
    EXPECT_EQ(GETPROPVALUE(shape, "FORECOLOUR"), "0x000000");
    EXPECT_EQ(GETPROPVALUE(shape, "BACKCOLOUR"), "0xFFFFFF");
    EXPECT_EQ(GETOBJECTDEFAULTS("Nothing"), "");
    EXPECT_EQ(GETOBJECTDEFAULTS(""), "");
    EXPECT_EQ(GETOBJECTTYPELIST("Nothing"), "");
}

constexpr const char* Types[] = {"Dialog",   "Editwindow",  "Richeditwindow", "Label",      "Edit",
                                 "Combobox", "Listbox",     "Iconlist",       "Pushbutton", "Bitmapbutton",
                                 "Checkbox", "Radiobutton", "Groupbox",       "Scrollbar",  "Progressbar",
                                 "Shape",    "Icon",        "Image",          "Menuitem"};

TEST_F(Propedit, WhatANewObjectHasIsAllowed) {
    for (const std::string type : Types) {
        const std::string list = GETOBJECTDEFAULTS(type), description = GETOBJECTTYPELIST(type);
        ASSERT_EQ(STRLINES(list), STRLINES(description)) << type;
        EXPECT_EQ(GETPROPVALUE(list, "TYPEOF"), STRNAMECASE(type));
        for (int i = 1; i <= STRLINES(list); ++i) {
            const std::string line = STRLINE(description, i), name = STRLINE(GETPROPNAMES(list), i);
            ASSERT_TRUE(line.starts_with(name + " ")) << type << " " << line;
            EXPECT_EQ(CHECKVALUE(line.substr(name.size() + 1), GETPROPVALUE(list, name)).message, "")
                << type << " " << line;
        }
    }
}

TEST_F(Propedit, ANewControlBelongsToNoArrayAndHasNoMenu) {
    for (const std::string type : Types) {
        EXPECT_EQ(GETPROPVALUE(GETOBJECTDEFAULTS(type), "ARRAY"), "") << type;
        EXPECT_EQ(GETPROPVALUE(GETOBJECTDEFAULTS(type), "MENU"), "") << type;
    }
}

TEST_F(Propedit, NextNames) {
    struct Case {
        std::string names, base, name;
    };
    const Case cases[] = {
        {"", "Label", "Label1"},
        {"Label1\nLabel7\nlabel3\n", "Label", "Label8"},
        {"Label1\nLabel7\nlabel3", "LABEL", "LABEL8"},
        {"Label\n", "Label", "Label1"},
        {"Label0\n", "Label", "Label1"},
        {"Labels9\nMyLabel9\nLabel_9\n", "Label", "Label1"},
        {"Label2x\n", "Label", "Label3"},
        {"Label007\n", "Label", "Label8"},
        {"Label99999999999\nLabel2\n", "Label", "Label3"},
        {"Label2147483647\n", "Label", "Label2147483648"},
        {"\n\nDialog4\r\n", "Dialog", "Dialog5"},
        {"A1b2\n", "A1b", "A1b1"},
        {"5\n", "", "6"},
    };
    for (const Case& c : cases) EXPECT_EQ(GETNEXTNAME(c.names, c.base), c.name) << c.names << "|" << c.base;
}

// ---- characters ----

TEST_F(Propedit, ClassesOfCharacters) {
    for (int code = 0; code < 256; ++code) {
        const char c = static_cast<char>(code);
        const bool letter = (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z'),
                   digit = code >= '0' && code <= '9';
        EXPECT_EQ(ISALPHA(c), letter) << code;
        EXPECT_EQ(ISDIGIT(c), digit) << code;
        EXPECT_EQ(ISALNUM(c), letter || digit) << code;
        EXPECT_EQ(ISSYMBOL(c), letter || digit || code == '_') << code;
        EXPECT_EQ(ISSPACE(c), code == ' ' || code == '\t' || code == '\r' || code == '\n') << code;
        const bool mark = code != 0 && std::string(" !#$%&'()+,-.;=@[]^_`{}~").find(c) != std::string::npos;
        EXPECT_EQ(ISFILENAME(c), letter || digit || mark || code >= 128) << code;
    }
}

TEST_F(Propedit, ClassesOfTexts) {
    struct Case {
        const char* name;
        bool (*is)(std::string_view);
        std::vector<std::string> yes, no;
    };
    const Case cases[] = {
        {"alpha", ISALPHASTR, {"a", "Zz"}, {"", "a1", "a b", "\xC3"}},
        {"alnum", ISALNUMSTR, {"a", "1", "a1"}, {"", "a_", " a"}},
        {"symbol", ISSYMBOLSTR, {"a", "a_1", "Z9"}, {"", "_a", "1a", "a-b"}},
        {"digits", ISDIGITSTR, {"1", "-1", "+007"}, {"", "-", "+", "1.5", "1 ", "--1"}},
        {"hex", ISHEXSTR, {"0x1", "0XFf", "AB", "10"}, {"", "F", "0", "0x", "0xG", "xx", "-10"}},
        {"file name",
         ISFILENAMESTR,
         {"a.txt", "a b", "~x(1)"},
         {"", "a/b", "a\\b", "a:b", "a*", "a?", "a\"", "<", "|"}},
        {"web site",
         ISWEBSITESTR,
         {"http://www.a.b", "HTTP://WWW"},
         {"", "http://a.b", "www.a.b", "https://www.a"}},
        {"mail", ISMAILTOSTR, {"mailto:a@b", "MAILTO:@"}, {"", "mailto:a", "a@b", " mailto:a@b"}},
    };
    for (const Case& c : cases) {
        for (const std::string& text : c.yes) EXPECT_TRUE(c.is(text)) << c.name << " " << text;
        for (const std::string& text : c.no) EXPECT_FALSE(c.is(text)) << c.name << " " << text;
    }
}

}  // namespace
}  // namespace tarn
