// SPDX-License-Identifier: Apache-2.0
//
// Class texts: head, Uses line, function scan, and the token strings that colour them.
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/tinylimits.h"
#include "support/places.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <set>

namespace tarn {
namespace {

class Symbols : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    os::SteeredFiles files;
    os::Steered steered{files};
};

TEST_F(Symbols, UsesNamesAreCollectedUpToADeclaration) {
    struct Case {
        const char *text, *names;
    };
    const Case cases[] = {
        {"Tarnwick Class A\nUses B c_1\n  D\nPublic function f()", "B c_1 D"},
        {"Class A\nuses B // Not this\n D\nend class", "B D"},
        {"Class A\n// uses X\nUSES Y type t", "Y"},
        {"Class A\nfunction f()\nuses Y\nend", "Y"},  // nothing was collected before, so the walk goes on
        {"Class A\nUses\nconst c = 1\nUses Z\nend", "Z"},
        {"Class A\nUses B", "B"},
        {"Class A\nfunction f", ""},
        {"", ""},
        {"Uses A\nEnd\nUses B", "A"},
    };
    for (const Case& c : cases) EXPECT_EQ(SYMGETUSES(0, c.text), c.names) << c.text;
    files.put("/a/x.cls", "Class X\r\nUses A B\r\nEnd class\r\n");
    EXPECT_EQ(SYMGETUSES(1, "/a/x.cls"), "A B");
    EXPECT_EQ(SYMGETUSES(1, "/a/none.cls"), "");
}

TEST_F(Symbols, AClassHasBothWordsBeforeItsFirstDeclaration) {
    struct Case {
        const char* text;
        bool is;
    };
    const Case cases[] = {{"Tarnwick Class A", true},     {"// c\n tarnwick\tCLASS", true},
                          {"Class A Tarnwick", true},     {"Tarnwick function f() class", false},
                          {"Tarnwick // Class\n", false}, {"Class A", false},
                          {"\"Tarnwick Class\"", false},  {"Tarnwicks Class", false},
                          {"??? Tarnwick ' Class", true}, {"", false}};
    for (const Case& c : cases) EXPECT_EQ(SYMISCLASS(0, c.text, "Tarnwick", "CLASS"), c.is) << c.text;
    files.put("/a/x.cls", "Tarnwick Class X");
    EXPECT_TRUE(SYMISCLASS(1, "/a/x.cls", "Tarnwick", "CLASS"));
    EXPECT_FALSE(SYMISCLASS(1, "/a/none.cls", "Tarnwick", "CLASS"));
}

struct NameCase {
    const char *text, *name;
};
const NameCase names[] = {
    {"Tarnwick Class Foo\n", "Foo"},
    {"// a class Bar\nTARNWICK class Foo", "Foo"},
    {"Class Foo Tarnwick", "Foo"},
    {"Class Foo", ""},
    {"Tarnwick Class function", ""},
    {"Tarnwick Class", ""},
    {"Tarnwick function Class Foo", ""},
    {"Tarnwick ' Class Foo", ""},
    {"Tarnwick ? Class Foo", "Foo"},
    {"Tarnwick Class // c\n Foo", ""},
    {"", ""},
};

TEST_F(Symbols, TheClassNameStandsBehindTheWordClass) {
    for (const NameCase& c : names) EXPECT_EQ(SYMGETCLASSNAME(0, c.text, "Tarnwick"), c.name) << c.text;
    EXPECT_EQ(SYMGETCLASSNAME(0, "Class Foo", ""), "Foo");
}

TEST_F(Symbols, TheClassNameIsReplacedInPlace) {
    for (const NameCase& c : names) {
        std::string text = c.text;
        const std::string error = SYMSETCLASSNAME("Longer", 0, "Tarnwick", text);
        if (*c.name != '\0') {
            EXPECT_EQ(error, "");
            EXPECT_EQ(text, STRREPLACE(c.text, c.name, "Longer", false)) << c.text;
        } else {
            EXPECT_EQ(error, *c.text == '\0'
                                 ? "The class name is missing, or the source text does not contain a class."
                                 : "The class name could not be found.");
            EXPECT_EQ(text, c.text);
        }
    }
    std::string text = "Tarnwick Class A";
    EXPECT_EQ(SYMSETCLASSNAME("", 0, "Tarnwick", text),
              "The class name is missing, or the source text does not contain a class.");
    files.put("/a/x.cls", "Tarnwick Class X\r\nEnd class\r\n");
    std::string file = "/a/x.cls";
    EXPECT_EQ(SYMSETCLASSNAME("Y", 1, "Tarnwick", file), "");
    EXPECT_EQ(file, "/a/x.cls");
    EXPECT_EQ(files.contents(file), "Tarnwick Class Y\r\nEnd class\r\n");
}

TEST_F(Symbols, AFailedWriteIsToldAndLeavesTheFile) {
    files.put("/a/x.cls", "Tarnwick Class X\nEnd class\n");
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
    std::string file = "/a/x.cls";
    EXPECT_NE(SYMSETCLASSNAME("Y", 1, "Tarnwick", file), "");
    EXPECT_NE(SYMSETUSES("A", 1, file), "");
    EXPECT_EQ(files.contents(file), "Tarnwick Class X\nEnd class\n");
}

TEST_F(Symbols, TheUsesLineIsReplacedAddedAndRemoved) {
    struct Case {
        const char *what, *names, *before, *after;
    };
    const Case cases[] = {
        {"two lines become one", "X Y", "Class A\nUses B C\n  D\n\ntype t\nend class",
         "Class A\r\nUses X Y\r\n\r\ntype t\r\nend class\r\n"},
        {"removed with all its lines", "", "Class A\r\nUses B\r\n C\r\nend class\r\n",
         "Class A\r\nend class\r\n"},
        {"added below the class", "X", "// c\nTarnwick Class A\nend class\n",
         "// c\r\nTarnwick Class A\r\nUses X\r\nend class\r\n"},
        {"nothing to remove", "", "Class A\nend class", "Class A\nend class"},
        {"no class", "X", "hello\n", "hello\n"},
        {"empty text", "X", "", ""},
        {"in a comment", "X", "Class A\n// Uses B\nend class\n",
         "Class A\r\nUses X\r\n// Uses B\r\nend class\r\n"},
        {"behind a declaration", "X", "Class A\nfunction f\nUses B\n",
         "Class A\r\nUses X\r\nfunction f\r\nUses B\r\n"},
        {"on the line of the class", "X", "Class A uses B\nend class\n",
         "Class A\r\nUses X\r\nend class\r\n"},
        {"without names", "X", "Class A\nUses\nend class\n", "Class A\r\nUses X\r\nend class\r\n"},
        {"a declaration behind the names stays", "X", "Class A\nUses B const c = 1\nend class\n",
         "Class A\r\nUses X\r\nconst c = 1\r\nend class\r\n"},
        {"also when the names go", "", "Class A\nUses B\n  C const c = 1\nend class\n",
         "Class A\r\nconst c = 1\r\nend class\r\n"},
        {"also without names", "X", "Class A\nUses const c = 1\n", "Class A\r\nUses X\r\nconst c = 1\r\n"},
        {"a comment behind the names stays", "X Y", "Class A\n\tUses B // why\nend class\n",
         "Class A\r\nUses X Y\r\n// why\r\nend class\r\n"},
        {"comments of classes that stay are kept in their order", "B C D",
         "Class A\nUses B  // draws\n     C // counts\nend class\n",
         "Class A\r\nUses B C D\r\n// draws\r\n// counts\r\nend class\r\n"},
        {"that of a class that goes goes with it", "b",
         "Class A\nUses B  // draws\n     C // counts\nend class\n",
         "Class A\r\nUses b\r\n// draws\r\nend class\r\n"},
        {"whichever it is", "C", "Class A\nUses B  // draws\n     C // counts\nend class\n",
         "Class A\r\nUses C\r\n// counts\r\nend class\r\n"},
        {"one of several classes in its line keeps it", "B D",
         "Class A\nUses B C // both\n  D // one\nend class\n",
         "Class A\r\nUses B D\r\n// both\r\n// one\r\nend class\r\n"},
        {"a name that is a part of another one keeps nothing", "Bs",
         "Class A\nUses B // b\n Bs // bs\nend class\n", "Class A\r\nUses Bs\r\n// bs\r\nend class\r\n"},
        {"comments of no class stay", "D",
         "Class A\nUses // these\n\n  // and\n  B // b\n // or\n  D\nend class\n",
         "Class A\r\nUses D\r\n// these\r\n// and\r\n// or\r\nend class\r\n"},
        {"the comment of the only line stays when its names go", "", "Class A\nUses B // b\nend class\n",
         "Class A\r\n// b\r\nend class\r\n"},
        {"all on one line", "X", "Class A uses B function f\n", "Class A\r\nUses X\r\nfunction f\r\n"},
        {"at the end", "X", "Class A\nUses B", "Class A\r\nUses X\r\n"},
    };
    for (const Case& c : cases) {
        std::string text = c.before;
        EXPECT_EQ(SYMSETUSES(c.names, 0, text), "") << c.what;
        EXPECT_EQ(text, c.after) << c.what;
    }
    files.put("/a/x.cls", "Class A\nend class\n");
    std::string file = "/a/x.cls";
    EXPECT_EQ(SYMSETUSES("B", 1, file), "");
    EXPECT_EQ(files.contents(file), "Class A\r\nUses B\r\nend class\r\n");
}

TEST_F(Symbols, MoreThan8000LinesAreRefusedUntouched) {
    const int lines = limits::Tiny ? 80 : 8000;
    std::string text = "Class A\n";
    for (int i = 2; i <= lines; ++i) text += "\n";
    const std::string error = "Class has too many lines, maximum is " + std::to_string(lines) + ".";
    std::string most = text, more = text + "x";
    EXPECT_EQ(SYMSETCLASSNAME("B", 0, "", most), "");
    EXPECT_EQ(SYMSETUSES("B", 0, most), "");
    EXPECT_EQ(SYMGETUSES(0, most), "B");
    EXPECT_EQ(SYMSETUSES("B", 0, more), error);
    EXPECT_EQ(SYMSETCLASSNAME("B", 0, "", more), error);
    EXPECT_EQ(more, text + "x");
}

TEST_F(Symbols, DeclarationSymbolsAreWordsInUpperCase) {
    for (const char* word : {"PUBLIC", "PRIVATE", "CONST", "TYPE", "CALLBACK", "FUNCTION", "END"})
        EXPECT_TRUE(ISDECLARATIONSYMBOL(word)) << word;
    for (const char* word : {"", "end", "USES", "CLASS", "VAR"})
        EXPECT_FALSE(ISDECLARATIONSYMBOL(word)) << word;
}

// ---- the function scan ----

const char* const Source = "Tarnwick Class Demo\n"                           // 1
                           "Uses Other\n"                                    // 2
                           "public const max = 3\n"                          // 3
                           "const\n"                                         // 4
                           "private type Trow : record\n"                    // 5
                           "  x : integer\n"                                 // 6
                           "// function commented()\n"                       // 7
                           "Function Early()\n"                              // 8
                           "PRIVATE callback function DLG(in w : Dialog,\n"  // 9
                           "  out r : boolean)\n"                            // 10
                           "  select e\n"                                    // 11
                           "  case load_event =>\n"                          // 12
                           "    x := 1\n"                                    // 13
                           "  case close_event=>\n"                          // 14
                           "  case other =>\n"                               // 15
                           "  end select\n"                                  // 16
                           "end function\n"                                  // 17
                           "public function Early()\n"                       // 18
                           "  case load_event =>\n"                          // 19
                           "end function\n"                                  // 20
                           "callback type no\n"                              // 21
                           "  private  function\tmain ( )\n"                 // 22
                           "END  CLASS\n"                                    // 23
                           "function behind()\n";

TEST_F(Symbols, TheScanListsFunctionsByTheFirstWordsOfTheirLines) {
    EXPECT_EQ(SYMSCANSOURCE(Source, 0), "Early\nDLG\nEarly\nmain\n");
    EXPECT_EQ(SYMSCANSOURCE(Source, 1024), "Early()\nDLG()\nEarly()\nmain()\n");
    EXPECT_EQ(SYMSCANSOURCE(Source, 2048), "Early 8 8\nDLG 9 17\nEarly 18 21\nmain 22 22\n");
    EXPECT_EQ(
        SYMSCANSOURCE(Source, 1024 + 2048 + 8192 + 16384),
        "   max() 3 3\n   Trow() 5 7\n   Early() 8 8\n   DLG() 9 17\n   Early() 18 21\n   main() 22 22\n");
    EXPECT_EQ(SYMSCANSOURCE(Source, 4096), "Early\nDLG\nDLG.load_event\nDLG.close_event\nEarly\nmain\n");
    EXPECT_EQ(SYMSCANSOURCE(Source, 1024 + 2048 + 4096),
              "Early() 8 8\nDLG() 9 17\nDLG().load_event 12 13\nDLG().close_event 14 17\nEarly() 18 "
              "21\nmain() 22 22\n");
}

TEST_F(Symbols, AnItemEndsBeforeTheEndOfItsClass) {
    EXPECT_EQ(SYMSCANSOURCE("Class A\nfunction f\nend function\n\nEnd class\n", 2048), "f 2 4\n");
    EXPECT_EQ(SYMSCANSOURCE("callback function d\ncase x_event =>\nend class", 2048 + 4096),
              "d 1 2\nd.x_event 2 2\n");
    EXPECT_EQ(SYMSCANSOURCE("const a = 1\nend class\n", 2048 + 8192), "a 1 1\n");
}

TEST_F(Symbols, TheScanReadsAnyTextToItsEnd) {
    EXPECT_EQ(SYMSCANSOURCE("", 2048), "");
    EXPECT_EQ(SYMSCANSOURCE("function", 2048), "");
    EXPECT_EQ(SYMSCANSOURCE("function f", 2048), "f 1 1\n");
    EXPECT_EQ(SYMSCANSOURCE("function f\r\n\r\n\r\n", 2048), "f 1 3\n");
    EXPECT_EQ(SYMSCANSOURCE("function 9f\nfunction \"x\"\n", 2048), "");
    EXPECT_EQ(SYMSCANSOURCE(std::string("function f\0\n", 12), 0), "f\n");
    EXPECT_EQ(SYMSCANSOURCE("case load_event =>\nend class", 4096), "");
    EXPECT_EQ(SYMSCANSOURCE("/none.cls", 1), "");
    files.put("/a/x.cls", "function f()\n");
    EXPECT_EQ(SYMSCANSOURCE("/a/x.cls", 1), "f\n");
}

TEST_F(Symbols, AMainClassIsAClassFileWithAFunctionMain) {
    files.put("/a/x.cls", Source);
    files.put("/a/y.CLS", "public function MAIN()\n");
    files.put("/a/z.cls", "function mainly()\n");
    files.put("/a/x.txt", Source);
    EXPECT_TRUE(ISMAINCLASS("/a/x.cls"));
    EXPECT_TRUE(ISMAINCLASS("/a/y.CLS"));
    EXPECT_FALSE(ISMAINCLASS("/a/z.cls"));
    EXPECT_FALSE(ISMAINCLASS("/a/x.txt"));
    EXPECT_FALSE(ISMAINCLASS("/a/none.cls"));
    EXPECT_FALSE(ISMAINCLASS(""));
}

// ---- token strings ----

TEST_F(Symbols, TokensComeFromTheSectionOfTheExtension) {
    files.put("/i",
              "[Hilite.cls]\r\nKeywords=0x800000 BOLD\r\nKeywordsList=if  end \r\nFutureKeywords=0x1\r\n"
              "FutureKeywordsList=xor\r\nStrings=0x2\r\nStringsList=\"\r\nComments=0x3 ITALIC\r\n"
              "CommentsList=// ;\r\n[Hilite.txt]\r\n;only a comment\r\n[Hilite.c]\r\nKeywordsList=a ? b\r\n");
    const std::string tokens =
        "if - 0x800000 BOLD\nend - 0x800000 BOLD\nxor - 0x1\n\" - 0x2\n// ##EOL 0x3 ITALIC\n"
        "; ##EOL 0x3 ITALIC\n";
    EXPECT_EQ(MAKETOKENSTR("/i", ".cls"), tokens);
    EXPECT_EQ(MAKETOKENSTR("/i", "CLS"), tokens);
    EXPECT_EQ(MAKETOKENSTR("/i", ".txt"), "");
    EXPECT_EQ(MAKETOKENSTR("/i", ".none"), "");
    EXPECT_EQ(MAKETOKENSTR("/i", "."), "");
    EXPECT_EQ(MAKETOKENSTR("/i", ""), "");
    EXPECT_EQ(MAKETOKENSTR("/none", ".cls"), "");
    EXPECT_EQ(MAKETOKENSTR("/i", "c"), "a - \n - \n");  // the words end where no token stands
}

TEST_F(Symbols, TheEndOfTheSettingsKeyChoosesTheRule) {
    files.put("/i", "[S]\nMYSTRINGS=0x1\nl=\"\"'\"\"\nblockComments=0x2\nc=-- rem\nx=0x3\n");
    EXPECT_EQ(GETHILITELIST("/i", "S", "myStrings", "l"), "' - 0x1\n");
    files.put("/q", "[S]\nStrings=0x1\nl=\"\nm=\"\"\n");
    EXPECT_EQ(GETHILITELIST("/q", "S", "Strings", "l"), "\" - 0x1\n");
    EXPECT_EQ(GETHILITELIST("/q", "S", "Strings", "m"), " - 0x1\n");
    EXPECT_EQ(GETHILITELIST("/i", "S", "BLOCKCOMMENTS", "c"), "-- ##EOL 0x2\nrem ##EOL 0x2\n");
    EXPECT_EQ(GETHILITELIST("/i", "S", "x", "none"), "");
    EXPECT_EQ(GETHILITELIST("/i", "S", "Strings", "none"), " - \n");
}

// ---- the shipped settings file ----

class ShippedSettings : public ::testing::Test {
protected:
    const std::string ini = SOURCE_DIR "/src/ide/ide.ini";
};

TEST_F(ShippedSettings, HaveDosLineEndsAndUniqueSections) {
    std::string text;
    ASSERT_TRUE(LOADFILE(ini, text));
    EXPECT_EQ(STRNL2CRNL(text), text);
    EXPECT_EQ(STRREPLACE(text, "\r\n", "").find('\r'), std::string::npos);
    std::set<std::string> seen;
    const std::string all = PROFILESTRSECTIONS(ini);
    for (int n = 1; n <= STRLINES(all); ++n) EXPECT_TRUE(seen.insert(STRLOWER(STRLINE(all, n))).second) << n;
    int brackets = 0;
    for (int n = 1; n <= STRLINES(text); ++n) brackets += STRLINE(text, n).starts_with("[");
    EXPECT_EQ(brackets, STRLINES(all));  // no header that cannot be read
}

TEST_F(ShippedSettings, ColourEveryReservedWord) {
    const std::string words = PROFILESTRGET(ini, "Hilite.cls", "KeywordsList");
    EXPECT_EQ(STRWORDCOUNT(words), 67);
    for (int n = 1; n <= STRWORDCOUNT(words); ++n) EXPECT_TRUE(ISRESERVEDWORD(STRWORD(words, n))) << n;
    const std::string future = PROFILESTRGET(ini, "Hilite.cls", "FutureKeywordsList");
    for (int n = 1; n <= STRWORDCOUNT(future); ++n)
        EXPECT_TRUE(ISFUTURERESERVEDWORD(STRWORD(future, n))) << n;
    EXPECT_EQ(STRWORDCOUNT(future), 131);
    const std::string tokens = MAKETOKENSTR(ini, ".cls");
    EXPECT_NE(tokens.find("\n\" - 0x"), std::string::npos);
    EXPECT_NE(tokens.find("\n// ##EOL 0x"), std::string::npos);
}

TEST_F(ShippedSettings, TemplatesReadWholeAndBalanced) {
    const std::string all = PROFILESTRSECTIONS(ini);
    int templates = 0;
    for (int n = 1; n <= STRLINES(all); ++n) {
        const std::string name = STRLINE(all, n);
        if (!STREQUAL(STRLEFT(name, 9), "template.")) continue;
        ++templates;
        const std::string text = PROFILESTRGET(ini, name, "");
        EXPECT_EQ(STRLINES(text), STRLINES(PROFILESTRKEYS(ini, name)))
            << name;  // no blank line, no lost line
        int depth = 0, dollars = 0;
        for (int line = 1; line <= STRLINES(text); ++line) {
            const std::string start = STRUPPER(STRTRIM(STRLINE(text, line)));
            depth += start.starts_with("#IF") || start.starts_with("#FOR");
            depth -= start.starts_with("#END") || start.starts_with("#NEXT");
            for (const char c : start) dollars += c == '$';
        }
        EXPECT_EQ(depth, 0) << name;
        EXPECT_EQ(dollars % 2, 0) << name;
    }
    EXPECT_EQ(templates, 10);
}

TEST_F(ShippedSettings, AMainClassTemplateIsAMainClass) {
    std::string text = PROFILESTRGET(ini, "Template.NewMainClass.cls", "");
    text = STRREPLACE(text, "$Name$", "App1");
    EXPECT_TRUE(SYMISCLASS(0, text, "Tarnwick", "CLASS"));
    EXPECT_EQ(SYMGETCLASSNAME(0, text, "Tarnwick"), "App1");
    EXPECT_NE(SYMSCANSOURCE(text, 1024).find("main()"), std::string::npos);
    EXPECT_EQ(PROFILESTRGETINT(ini, "CompOptionsDlg", "Symbols"), 3000);
    EXPECT_EQ(PROFILESTRGET(ini, "GenOptionsDlg", "rbStartup0"), "1");
}

}  // namespace
}  // namespace tarn
