// SPDX-License-Identifier: Apache-2.0
//
// Resources that are deleted, renamed or appended: only their own lines change, and what refers to them.
#include "unit/platform/resource_fixture.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

// ---- deleting, renaming, appending ----

TEST_F(ResourceTest, DeleteRemovesItsLinesOnly) {
    EXPECT_EQ(ResourceDelete(rc, "MAIN"), "");
    const std::size_t begin = example.find("Main DIALOG"), end = example.find("\nMainMenu MENU");
    EXPECT_EQ(read(rc), example.substr(0, begin) + example.substr(end));
    EXPECT_EQ(info("DIALOG", "Main"), "");
    EXPECT_EQ(ResourceDelete(rc, "Main"), "'Main' was not found in '" + rc + "'.");
    for (const char* name : {"logo", "readme", "people", "MainMenu", "VS_VERSION_INFO"}) {
        EXPECT_EQ(ResourceDelete(rc, name), "");
        EXPECT_EQ(info("*", name), "");
    }
    EXPECT_EQ(info("*", "*"), "");
    EXPECT_NE(read(rc).find("strange words"), std::string::npos);
}

TEST_F(ResourceTest, RenameChangesTheReferencesToo) {
    EXPECT_EQ(ResourceRename(rc, "mainmenu", "Other"), "");
    EXPECT_EQ(read(rc),
              replaced(replaced(example, "MENU=MainMenu", "MENU=Other"), "\nMainMenu MENU", "\nOther MENU"));
    write(rc, "a BITMAP \"x\"\nD DIALOG\nImage i\nPICTURE=\"A\"\nImage j\nPICTURE=\"a.bmp\"\nEND\n");
    EXPECT_EQ(ResourceRename(rc, "a", "b"), "");
    EXPECT_EQ(read(rc),
              "b BITMAP \"x\"\nD DIALOG\nImage i\nPICTURE=\"b\"\nImage j\nPICTURE=\"a.bmp\"\nEND\n");
}

TEST_F(ResourceTest, RenameChangesItsSymbolWhereverThatStands) {
    const std::string text = "#define logo 500\nlogo BITMAP \"x\"\nother logo BITMAP \"y\"\nD DIALOG\n"
                             "Label a logo // logo\nLabel b\nEND\n";
    write(rc, text);
    EXPECT_EQ(ResourceRename(rc, "LOGO", "sign"), "");
    EXPECT_EQ(read(rc), "#define sign 500\nsign BITMAP \"x\"\nother sign BITMAP \"y\"\nD DIALOG\n"
                        "Label a sign // logo\nLabel b\nEND\n");
    write(rc, "#define sign 501\n" + text);
    EXPECT_EQ(ResourceRename(rc, "logo", "sign"), "");
    EXPECT_EQ(read(rc), "#define sign 501\n" + replaced(text, "\nlogo BITMAP", "\nsign BITMAP"))
        << "what is a symbol already stays one";
    const std::string used = replaced(text, "Label b", "Label logo");
    write(rc, used);
    EXPECT_EQ(ResourceRename(rc, "logo", "sign"), "");
    EXPECT_EQ(read(rc), replaced(used, "\nlogo BITMAP", "\nsign BITMAP")) << "a control keeps its number";
}

TEST_F(ResourceTest, RenameAndDeleteKeepAVersionBlockAsItIs) {
    const std::size_t begin = example.find("VS_VERSION_INFO"), end = example.find("// the end");
    const std::string block = example.substr(begin, end - begin);
    EXPECT_EQ(ResourceRename(rc, "VS_VERSION_INFO", "Other"), "");
    EXPECT_EQ(info("VERSIONINFO", "Other"), replaced(block, "VS_VERSION_INFO", "Other"));
    EXPECT_EQ(info("VERSIONINFO", "*"), "Other VERSIONINFO\n");
    EXPECT_EQ(ResourceRename(rc, "Other", "VS_VERSION_INFO"), "");
    EXPECT_EQ(read(rc), example);
    EXPECT_EQ(ResourceDelete(rc, "VS_VERSION_INFO"), "");
    EXPECT_EQ(read(rc), example.substr(0, begin) + example.substr(end));
}

TEST_F(ResourceTest, RenameRefusesWhatIsTakenOrNoName) {
    EXPECT_EQ(ResourceRename(rc, "absent", "x"), "'absent' was not found in '" + rc + "'.");
    EXPECT_EQ(ResourceRename(rc, "Main", "logo"), "'logo' is already a name in '" + rc + "'.");
    EXPECT_EQ(ResourceRename(rc, "Main", "a b"), "'a b' is not a valid name.");
    EXPECT_EQ(read(rc), example);
    EXPECT_EQ(ResourceRename(rc, "Main", "MAIN"), "") << "the case alone may change";
    EXPECT_EQ(read(rc), replaced(example, "\nMain DIALOG", "\nMAIN DIALOG"));
}

TEST_F(ResourceTest, WriteTextAppendsAtTheEnd) {
    EXPECT_EQ(ResourceWriteText(rc, "pic BITMAP \"a\\\\b.bmp\"\n"), "");
    EXPECT_EQ(read(rc), example + "\npic BITMAP \"a\\\\b.bmp\"\n");
    EXPECT_EQ(ResourceWriteText((folder / "n.rc"), "pic BITMAP \"a\""), "");
    EXPECT_EQ(read((folder / "n.rc")), "pic BITMAP \"a\"\n");
}

TEST_F(ResourceTest, WriteTextReplacesTheResourceOfItsNameAndKind) {
    const std::string block = "VS_VERSION_INFO VERSIONINFO\n    FILEVERSION 2,0,0,0\nBEGIN\nEND\n";
    EXPECT_EQ(ResourceWriteText(rc, block), "");
    EXPECT_EQ(info("VERSIONINFO", "VS_VERSION_INFO"), block);
    EXPECT_EQ(info("VERSIONINFO", "*"), "VS_VERSION_INFO VERSIONINFO\n");
    EXPECT_EQ(ResourceWriteText(rc, "Main BITMAP \"x\""), "'Main' is already a name in '" + rc + "'.");
}

TEST_F(ResourceTest, WriteTextNeverTakesThePlaceOfAFileOfAnotherKind) {
    const std::string picture = "a BITMAP \"1.bmp\"\n";
    write(rc, picture);
    for (const char* line : {"A INCFILE \"z\"\n", "a DBFILE \"z\"\n", "a SOUND \"z\"\n"})
        EXPECT_EQ(ResourceWriteText(rc, line),
                  "'" + std::string(line, 1) + "' is already a name in '" + rc + "'.");
    EXPECT_EQ(read(rc), picture);
    write(rc, picture + "a INCFILE \"2\"\nb INCFILE \"3\"\n");
    EXPECT_EQ(ResourceWriteText(rc, "A incfile \"4\"\n"), "") << "where both have come in by hand";
    EXPECT_EQ(read(rc), picture + "A incfile \"4\"\nb INCFILE \"3\"\n");
    EXPECT_EQ(ResourceWriteText(rc, "a bitmap \"5\"\n"), "");
    EXPECT_EQ(read(rc), "a bitmap \"5\"\nA incfile \"4\"\nb INCFILE \"3\"\n");
}

TEST_F(ResourceTest, AVersionBlockOfTheUsualShapeIsKeptListedRenamedAndDeleted) {
    std::string block = "VS_VERSION_INFO VERSIONINFO\n    FILEVERSION 1,2,3,4\n    PRODUCTVERSION 1,2,3,4\n"
                        "    FILEFLAGSMASK 0x3f\n    FILEFLAGS 0x0\n    FILEOS 0x10004\n    FILETYPE 0x1\n"
                        "    FILESUBTYPE 0x0\nBEGIN\n    BLOCK \"StringFileInfo\"\n    BEGIN\n"
                        "        BLOCK \"080904b0\"\n        BEGIN\n";
    for (const char* value :
         {"Comments\", \"END\\0", "CompanyName\", \"BEGIN\\0", "FileDescription\", \"// none\\0",
          "FileVersion\", \"1.2.3.4\\0", "InternalName\", \"a.b\\0", "LegalCopyright\", \"(c) \"x\"\\0",
          "LegalTrademarks\", \"\\0", "OriginalFilename\", \"Main DIALOG\\0",
          "ProductName\", \"\xc3\xa4\xff\\0", "ProductVersion\", \"1.2.3.4\\0"})
        block += "            VALUE \"" + std::string(value) + "\"\n";
    block += "        END\n    END\n    BLOCK \"VarFileInfo\"\n    BEGIN\n"
             "        VALUE \"Translation\", 0x809, 1200\n    END\nEND\n";
    const std::string given = block;
    for (const std::string& eol : {std::string("\n"), std::string("\r\n")}) {
        const auto ended = [&eol](const std::string& lines) {
            std::string text;
            for (const char c : lines) text += c == '\n' ? eol : std::string(1, c);
            return text;
        };
        const std::string before = ended("logo BITMAP \"x\"\n"), after = ended("D DIALOG\nLabel a 1\nEND\n");
        block = ended(given);
        write(rc, before);
        ASSERT_EQ(ResourceWriteText(rc, given), "");
        EXPECT_EQ(read(rc), before + block);
        write(rc, before + block + after);
        EXPECT_EQ(info("VERSIONINFO", "*"), "VS_VERSION_INFO VERSIONINFO\n");
        EXPECT_EQ(info("*", "*"), "logo\nVS_VERSION_INFO\nD\n");
        EXPECT_EQ(info("VERSIONINFO", "vs_version_info"), given);
        EXPECT_EQ(ResourceWrite(objects("D"), {}, rc), "");
        EXPECT_EQ(read(rc), before + block + after);
        EXPECT_EQ(ResourceWriteText(rc, replaced(given, "1,2,3,4", "5,6,7,8")), "");
        EXPECT_EQ(read(rc), before + replaced(block, "1,2,3,4", "5,6,7,8") + after);
        EXPECT_EQ(ResourceRename(rc, "VS_VERSION_INFO", "V2"), "");
        EXPECT_EQ(info("VERSIONINFO", "*"), "V2 VERSIONINFO\n");
        EXPECT_EQ(ResourceDelete(rc, "V2"), "");
        EXPECT_EQ(read(rc), before + after);
    }
}

TEST_F(ResourceTest, AVersionBlockIsKnownByItsWordWhateverItsNameIs) {
    const struct {
        const char *head, *name;
    } cases[] = {{"1 VERSIONINFO\n", "1"},
                 {"1 versioninfo\n", "1"},
                 {"0x10 VersionInfo\n", "0x10"},
                 {"_v VERSIONINFO\n", "_v"},
                 {"VS_VERSION_INFO VERSIONINFO // of the program\n", "VS_VERSION_INFO"},
                 {"  1\tVERSIONINFO\t\n", "1"},
                 {"1 VERSIONINFO LOADONCALL MOVEABLE\n", "1"},
                 {"1 VERSIONINFO FILEVERSION 1,0,0,0\n", "1"}};
    for (const std::string body :
         {"BEGIN\n  BLOCK \"x\"\n  BEGIN\n  END\nEND\n", "{\n  BLOCK \"x\" {\n  }\n}\n",
          "FILEVERSION 1,0,0,0\nBEGIN\n  VALUE \"END\", \"}\"\nEND\n"})
        for (const auto& c : cases) {
            SCOPED_TRACE(c.head + body);
            const std::string block = c.head + body, before = "Main DIALOG\nEND\n",
                              after = "logo BITMAP \"x\"\n";
            write(rc, before + block + after);
            EXPECT_EQ(info("*", "*"), "Main\n" + std::string(c.name) + "\nlogo\n");
            EXPECT_EQ(info("VERSIONINFO", "*"), std::string(c.name) + " VERSIONINFO\n");
            EXPECT_EQ(info("VERSIONINFO", c.name), block);
            EXPECT_EQ(ResourceWriteText(rc, std::string(c.name) + " VERSIONINFO\nBEGIN\nEND\n"), "");
            EXPECT_EQ(read(rc), before + c.name + " VERSIONINFO\nBEGIN\nEND\n" + after);
            EXPECT_EQ(ResourceDelete(rc, c.name), "");
            EXPECT_EQ(read(rc), before + after);
        }
}

TEST_F(ResourceTest, AVersionBlockMayBeginAndEndOnOneLine) {
    for (const std::string block :
         {"1 VERSIONINFO BEGIN END\n", "1 VERSIONINFO { }\n", "1 VERSIONINFO\nBEGIN END\n",
          "1 VERSIONINFO\n{ }\n",
          "1 VERSIONINFO FILEVERSION 1,0,0,0 BEGIN BLOCK \"x\" { VALUE \"a\", \"b\" } END // all\n",
          "1 VERSIONINFO BEGIN\n BLOCK \"x\" BEGIN END END\n"}) {
        SCOPED_TRACE(block);
        const std::string before = "Main DIALOG\nEND\n",
                          after = "2 VERSIONINFO { }\nlogo BITMAP \"x\"\n// end\nword\n";
        write(rc, before + block + after);
        EXPECT_EQ(info("*", "*"), "Main\n1\n2\nlogo\n");
        EXPECT_EQ(info("VERSIONINFO", "1"), block);
        EXPECT_EQ(ResourceDelete(rc, "1"), "");
        EXPECT_EQ(read(rc), before + after);
    }
}

TEST_F(ResourceTest, AnEndTooManyOfAVersionBlockIsAFaultWhereverItStands) {
    for (const char* const block :
         {"1 VERSIONINFO BEGIN END END\n", "1 VERSIONINFO\nBEGIN\nEND }\n", "1 VERSIONINFO FIXED } {\n"}) {
        write(rc, block + std::string("Main DIALOG\nEND\n"));
        EXPECT_NE(
            platform::ResourceInfo(rc, "VERSIONINFO", "1").error.find("There is an END without a BEGIN."),
            std::string::npos)
            << block;
        EXPECT_EQ(info("*", "*"), "1\nMain\n") << block;
    }
}

TEST_F(ResourceTest, AVersionBlockEndsTheBlockAboveItThatHasNoEnd) {
    write(rc, "Main DIALOG\n  CAPTION=\"a\"\n1 VERSIONINFO\nBEGIN\nEND\n");
    EXPECT_EQ(info("VERSIONINFO", "*"), "1 VERSIONINFO\n");
}

TEST_F(ResourceTest, ALineThatOnlyNamesAVersionBlockIsNone) {
    for (const char* line : {"The VERSIONINFO of this program\n", "1 VERSIONINFO \"a.txt\"\n",
                             "VERSIONINFO\n", "-- VERSIONINFO\n", "\"1\" VERSIONINFO\n"}) {
        write(rc, line + std::string("Main DIALOG\nEND\n"));
        EXPECT_EQ(info("VERSIONINFO", "*"), "") << line;
        EXPECT_EQ(info("*", "*"), "Main\n") << line;
    }
}

TEST_F(ResourceTest, WriteTextWritesExactlyTheLine) {
    const struct {
        const char *before, *line, *after;
    } cases[] = {
        {"", "n BITMAP \"C:\\\\a b\\\\c.bmp\"\n", "n BITMAP \"C:\\\\a b\\\\c.bmp\"\n"},
        {"x BITMAP \"y\"", "n BITMAP \"z\"\n", "x BITMAP \"y\"\nn BITMAP \"z\"\n"},
        {"x BITMAP \"y\"\n", "n INCFILE \"z\"\n", "x BITMAP \"y\"\nn INCFILE \"z\"\n"},
        {"x BITMAP \"y\"\r\n", "n INCFILE \"z\"", "x BITMAP \"y\"\r\nn INCFILE \"z\"\r\n"},
        {"// a\n\n", "n INCFILE \"<RESOURCEDIR>\\\\r.ico\"\n",
         "// a\n\nn INCFILE \"<RESOURCEDIR>\\\\r.ico\"\n"},
        {"x BITMAP \"y\"\n", "n INCFILE \"z\"\r\n", "x BITMAP \"y\"\nn INCFILE \"z\"\n"},
        {"x BITMAP \"y\"\r\n", "// c\nn INCFILE \"z\"\n", "x BITMAP \"y\"\r\n// c\r\nn INCFILE \"z\"\r\n"},
        {"n BITMAP \"old\" // c\nx BITMAP \"y\"\n", "n BITMAP \"z\"\n", "n BITMAP \"z\"\nx BITMAP \"y\"\n"},
    };
    for (const auto& [before, line, after] : cases) {
        write(rc, before);
        EXPECT_EQ(ResourceWriteText(rc, line), "");
        EXPECT_EQ(read(rc), after);
    }
}

TEST_F(ResourceTest, WriteTextRefusesWhatIsNotOneStatement) {
    for (const char* line :
         {"", "\n", "what is this", "a BITMAP \"x\"\nb BITMAP \"y\"\n", "a BITMAP \"x", "A DIALOG\n"})
        EXPECT_NE(ResourceWriteText(rc, line), "") << line;
    EXPECT_EQ(read(rc), example);
}

}  // namespace
}  // namespace tarn::platform
