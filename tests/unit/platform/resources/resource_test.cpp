// SPDX-License-Identifier: Apache-2.0
#include "platform/resources/properties.h"
#include "platform/resources/rctext.h"
#include "platform/resources/rcx.h"
#include "platform/text.h"

#include "unit/platform/resource_fixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <regex>

namespace tarn::platform {
namespace {

// ---- reading ----

TEST_F(ResourceTest, ReadGivesNameTypePositionThenTheTypesOrderThenWhatIsUnknown) {
    const ObjectArray array = objects("main");
    ASSERT_EQ(count(array), 5u);
    EXPECT_EQ(array[0],
              "NAME=Main\nTYPEOF=Dialog\nPOSITION=0 0 320 14\nCAPTION=\"Tarnwick\"\nMENU=MainMenu\n"
              "BORDERSTYLE=1\nCLOSEBOX=1\nMAXBUTTON=0\nMINBUTTON=0\nFONTNAME=\"\"\nFONTSIZE=0\nFONTBOLD=0\n"
              "FONTITALIC=0\nOWNER=0\n");
    EXPECT_EQ(array[1], "NAME=btnfile_open\nTYPEOF=Bitmapbutton\nPOSITION=2 1 16 12\nCAPTION=\"\"\n"
                        "PICTURE=\"C:\\new\\open.bmp\"\nENABLED=1\nVISIBLE=1\nTABSTOP=0\nARRAY=\n"
                        "HINT=\"Open\\na \"file\"\"\n");
    EXPECT_TRUE(array[2].ends_with("WEIGHT=12\n")) << array[2];
    EXPECT_NE(array[4].find("CAPTION=\"A\t\\0end\""), std::string::npos) << array[4];
}

TEST_F(ResourceTest, ReadOfAMenuGivesLevels) {
    const ObjectArray array = objects("MAINMENU");
    ASSERT_EQ(count(array), 4u);
    EXPECT_TRUE(array[0].starts_with("NAME=MainMenu\nTYPEOF=Menuitem\nPOSITION=0\n")) << array[0];
    EXPECT_TRUE(array[1].starts_with(
        "NAME=\nTYPEOF=Menuitem\nPOSITION=1\nCAPTION=\"&File\"\nCHECKED=0\nENABLED=1\n"));
    EXPECT_TRUE(array[2].starts_with("NAME=file_open\nTYPEOF=Menuitem\nPOSITION=2\n"));
}

TEST_F(ResourceTest, ReadOfWhatIsNotThereGivesATextAndAnEmptyArray) {
    ObjectArray array;
    array.fill("old");
    EXPECT_EQ(ResourceRead(rc, "absent", array), "'absent' was not found in '" + rc + "'.");
    EXPECT_EQ(count(array), 0u);
    array.fill("old");
    EXPECT_NE(ResourceRead((folder / "absent.rc"), "Main", array), "");
    EXPECT_EQ(count(array), 0u);
    EXPECT_NE(ResourceRead(rc, "logo", array), "") << "a picture is no window";
}

TEST_F(ResourceTest, StringsOfTheElementsCapacitySurviveARoundTrip) {
    for (const std::size_t size : {1000u, 1024u, 5000u}) {
        ObjectArray array = objects("Main");
        const std::string caption(size, 'x');
        array[0] = replaced(array[0], "\"Tarnwick\"", "\"" + caption + "\"");
        EXPECT_EQ(ResourceWrite(array, {}, rc), "");
        EXPECT_EQ(objects("Main"), array);
        write(rc, example);
    }
}

// ---- writing ----

TEST_F(ResourceTest, WritingUnchangedChangesNoByte) {
    for (const std::string& text : {example, replaced(example, "// the end", ""), example + "\n\n\n"}) {
        write(rc, text);
        EXPECT_EQ(ResourceWrite(objects("Main"), objects("MainMenu"), rc), "");
        EXPECT_EQ(read(rc), text);
    }
}

TEST_F(ResourceTest, WritingUnchangedKeepsCarriageReturns) {
    std::string text;
    for (const char c : example) text += c == '\n' ? "\r\n" : std::string(1, c);
    write(rc, text);
    ObjectArray array = objects("Main");
    EXPECT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(read(rc), text);
    array[3] = replaced(array[3], "VISIBLE=0", "VISIBLE=1");
    array[3] = replaced(array[3], "ENABLED=1", "ENABLED=0");
    EXPECT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(read(rc), replaced(text, "VISIBLE=0\r\n", "VISIBLE=1\r\n    ENABLED=0\r\n"));
}

struct Edit {
    const char* what;
    std::size_t element;
    const char *from, *to;          // in the property list
    const char *fileFrom, *fileTo;  // in the file
};

TEST_F(ResourceTest, AChangedPropertyChangesItsLineOnly) {
    const Edit edits[] = {
        {"a number", 0, "POSITION=0 0 320 14", "POSITION=1 2 3 4", "POSITION=0 0 320 14", "POSITION=1 2 3 4"},
        {"a text before a comment", 0, "\"Tarnwick\"", "\"A \\ B\"", "\"Tarnwick\" ", "\"A \\\\ B\" "},
        {"a text without quotes", 0, "\"Tarnwick\"", "Plain", "\"Tarnwick\"", "\"Plain\""},
        {"a path", 1, "C:\\new\\open.bmp", "<RESOURCEDIR>\\r.bmp", "C:\\\\new\\\\open.bmp",
         "<RESOURCEDIR>\\\\r.bmp"},
        {"an unknown one", 2, "WEIGHT=12", "WEIGHT=13", "WEIGHT=12", "WEIGHT=13"},
        {"one that was not mentioned", 2, "DEFAULT=0", "DEFAULT=1", "WEIGHT=12\n",
         "WEIGHT=12\n    DEFAULT=1\n"},
        {"a choice with its label", 3, "VISIBLE=0", "VISIBLE=1-Yes", "VISIBLE=0", "VISIBLE=1"},
        {"the name", 1, "NAME=btnfile_open", "NAME=other", "Bitmapbutton btnfile_open 1201",
         "Bitmapbutton other 1201"},
        {"a line feed", 0, "\"Tarnwick\"", "\"a\\nb\"", "\"Tarnwick\"", "\"a\\nb\""},
    };
    for (const Edit& edit : edits) {
        SCOPED_TRACE(edit.what);
        write(rc, example);
        ObjectArray array = objects("Main");
        array[edit.element] = replaced(array[edit.element], edit.from, edit.to);
        EXPECT_EQ(ResourceWrite(array, {}, rc), "");
        EXPECT_EQ(read(rc), replaced(example, edit.fileFrom, edit.fileTo));
    }
}

TEST_F(ResourceTest, WhatIsWrittenIsReadBackPropertyForProperty) {
    ObjectArray array{}, menu{};
    array[0] = "NAME=New\nTYPEOF=Dialog\nPOSITION=1 2 3 4\nCAPTION=\"a \"b\" "
               "\\\\srv\\new\\0\"\nMENU=NewMenu\nOWNER=1\n";
    array[1] =
        "NAME=edit1\nTYPEOF=Edit\nPOSITION=1 1 1 1\nTEXT=\"// no comment\"\nODD= // two \nMULTILINE=1\n";
    array[2] = "NAME=edit1\nTYPEOF=Label\nPOSITION=1 1 1 1\nCAPTION=\xff\xfe\x01 plain\n";
    menu[0] = "NAME=NewMenu\nTYPEOF=Menuitem\nPOSITION=0\n";
    menu[1] = "NAME=\nTYPEOF=Menuitem\nPOSITION=1\nCAPTION=&One\n";
    menu[2] = "NAME=two\nTYPEOF=Menuitem\nPOSITION=2\nCAPTION=\"Two\"\nCHECKED=1\nENABLED=0\n";
    const std::string fresh = (folder / "fresh.rc");
    ASSERT_EQ(ResourceWrite(array, menu, fresh), "");
    rc = fresh;
    const ObjectArray first = objects("New"), firstMenu = objects("NewMenu");
    for (const char* line : {"CAPTION=\"a \"b\" \\\\srv\\new\\0\"\n", "OWNER=1\n", "MENU=NewMenu\n"})
        EXPECT_NE(first[0].find(line), std::string::npos) << first[0];
    EXPECT_NE(first[1].find("TEXT=\"// no comment\"\n"), std::string::npos) << first[1];
    EXPECT_NE(first[1].find("ODD= // two \n"), std::string::npos) << first[1];
    EXPECT_NE(first[2].find("CAPTION=\"\xff\xfe\x01 plain\"\n"), std::string::npos) << first[2];
    const std::string text = read(fresh);
    ASSERT_EQ(ResourceWrite(first, firstMenu, fresh), "");
    EXPECT_EQ(read(fresh), text);
    EXPECT_EQ(objects("New"), first);
    EXPECT_EQ(objects("NewMenu"), firstMenu);
}

TEST_F(ResourceTest, WritingUnchangedKeepsWhatNobodyWouldWriteThatWay) {
    const std::string text =
        "D DIALOG\nODD=\"a\\n\\0b \"\nPOSITION=\"1 2\\r3 4\"\nLabel a\nENABLED=1-Yes\nALIGNMENT=Centre\n"
        "CAPTION=unquoted // text\nCAPTION=\"again\"\nODD=\"\\\"q\\\"\"\nEND";
    write(rc, text);
    const ObjectArray array = objects("D");
    EXPECT_NE(array[0].find("ODD=\"a\\n\\0b \"\n"), std::string::npos) << array[0];
    EXPECT_NE(array[1].find("ENABLED=1\n"), std::string::npos) << array[1];
    EXPECT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(read(rc), text);
}

TEST_F(ResourceTest, EveryByteSurvivesInATextOfAList) {
    std::string all;
    for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
    const char* const texts[] = {"\\n", "\\\\n", "\\\\\\0", "\\",      "\\\\",
                                 "n",   "\"",    "\"\"",    "x\\\r\n", "\\\n\\n\\\\n"};
    std::vector<std::string> values = {all, "", std::string("\0\0", 2)};
    values.insert(values.end(), std::begin(texts), std::end(texts));
    for (const std::string& value : values) {
        const std::string list = toListValue(ValueKind::Text, value);
        EXPECT_EQ(list.find('\n'), std::string::npos);
        EXPECT_EQ(fromListValue(ValueKind::Text, list), value);
        const RcFile parsed = parseResourceText("D DIALOG\nCAPTION=" + platform::quoted(value) + "\nEND\n");
        ASSERT_TRUE(parsed.fault.empty()) << parsed.fault.text;
        EXPECT_EQ(parsed.statements.at(0).self.properties.at(0).value, value);
    }
}

TEST_F(ResourceTest, ALineOfAListReadsBackAsItWasWhateverBackslashesItHolds) {
    const char alphabet[] = {'\\', 'n', '0', 'r', 'x'};
    for (int code = 0; code < 5 * 5 * 5 * 5 * 5 * 5; ++code) {
        std::string line;
        for (int rest = code, i = 0; i < 6; ++i, rest /= 5) line += alphabet[rest % 5];
        ASSERT_EQ(toListValue(ValueKind::Text, fromListValue(ValueKind::Text, line)), "\"" + line + "\"");
    }
}

TEST_F(ResourceTest, ControlsKeepTheirCommentsAndNumbersWhenTheyMove) {
    ObjectArray array = objects("Main");
    std::swap(array[1], array[2]);
    array[5] = "NAME=added\nTYPEOF=Label\nPOSITION=9 9 9 9\nCAPTION=\"new\"\n";
    ASSERT_EQ(ResourceWrite(array, {}, rc), "");
    const std::string text = read(rc);
    EXPECT_LT(text.find("IDOK"), text.find("// The first button.\n  Bitmapbutton btnfile_open 1201\n"))
        << text;
    EXPECT_NE(
        text.find("  Label added 1202\n    POSITION=9 9 9 9\n    CAPTION=\"new\"\n  // last words\nEND\n"),
        std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with(example.substr(example.find("\nMainMenu MENU")))) << "the rest stays";
}

TEST_F(ResourceTest, RemovedControlsGo) {
    ObjectArray array = objects("Main");
    for (std::size_t i = 1; i < 255; ++i) array[i] = array[i + 1];
    ASSERT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(read(rc).find("btnfile_open"), std::string::npos);
    EXPECT_NE(read(rc).find("IDOK"), std::string::npos);
}

TEST_F(ResourceTest, AFullDialogOf255ControlsSurvivesAndMoreAreRefused) {
    ObjectArray array{};
    array[0] = "NAME=Full\nTYPEOF=Dialog\nPOSITION=0 0 9 9\n";
    for (std::size_t i = 1; i < array.size(); ++i)
        array[i] = "NAME=label" + std::to_string(i) + "\nTYPEOF=Label\nPOSITION=0 0 1 1\n";
    ASSERT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(count(objects("Full")), 256u);
    write(rc, replaced(read(rc), "Full DIALOG\n", "Full DIALOG\nLabel one\n"));
    EXPECT_EQ(ResourceRead(rc, "Full", array), "'Full' has more than 255 objects.");
}

TEST_F(ResourceTest, TheTypeOfAWindowChanges) {
    ObjectArray array = objects("Main");
    array[0] = replaced(array[0], "TYPEOF=Dialog", "TYPEOF=Richeditwindow");
    ASSERT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_NE(read(rc).find("\nMain RICHEDITWINDOW\n"), std::string::npos);
    EXPECT_TRUE(objects("Main")[0].starts_with("NAME=Main\nTYPEOF=Richeditwindow\n"));
}

TEST_F(ResourceTest, WhatCannotBeWrittenIsRefusedAndChangesNothing) {
    const auto refused = [&](const std::string& dialog, const std::string& control, const std::string& item) {
        ObjectArray array{}, menu{};
        array[0] = dialog;
        array[1] = control;
        if (!item.empty()) menu[0] = "NAME=M\nTYPEOF=Menuitem\n", menu[1] = item;
        const std::string error = ResourceWrite(array, menu, rc);
        EXPECT_EQ(read(rc), example);
        return error;
    };
    EXPECT_EQ(refused("", "", ""), "There is no dialog to write.");
    EXPECT_NE(refused("NAME=\nTYPEOF=Dialog\n", "", ""), "");
    EXPECT_NE(refused("NAME=a b\nTYPEOF=Dialog\n", "", ""), "");
    EXPECT_NE(refused("NAME=ab\nTYPEOF=Label\n", "", ""), "");
    EXPECT_NE(refused("NAME=ab\nTYPEOF=Dialog\n", "NAME=x\nTYPEOF=Dialog\n", ""), "");
    EXPECT_NE(refused("NAME=ab\nTYPEOF=Dialog\n", "NAME=x\nTYPEOF=Nothing\n", ""), "");
    EXPECT_NE(refused("NAME=ab\nTYPEOF=Dialog\n", "NAME=x y\nTYPEOF=Label\n", ""), "");
    EXPECT_NE(refused("NAME=ab\nTYPEOF=Dialog\n", "NAME=x\nTYPEOF=Label\nA B=1\n", ""), "");
    EXPECT_NE(refused("NAME=ab\nTYPEOF=Dialog\n", "", "NAME=x\nTYPEOF=Label\n"), "");
    EXPECT_EQ(refused("NAME=ab\nTYPEOF=Dialog\nA B=1\n", "", ""), "'A B' is no name of a property.");
    EXPECT_EQ(refused("NAME=logo\nTYPEOF=Dialog\n", "", ""), "'logo' is the name of another resource.");
}

// ---- lists ----

TEST_F(ResourceTest, InfoListsInEveryForm) {
    EXPECT_EQ(info("*", "*"), "logo\nreadme\npeople\nMain\nMainMenu\nVS_VERSION_INFO\n");
    EXPECT_EQ(info("DIALOG", "*"), "Main DIALOG\n");
    EXPECT_EQ(info("MENU", "*"), "MainMenu MENU\n");
    EXPECT_EQ(info("VERSIONINFO", "*"), "VS_VERSION_INFO VERSIONINFO\n");
    EXPECT_EQ(info("BITMAP", "*"), "logo logo BITMAP \"logo.bmp\"\n");
    EXPECT_EQ(info("INCFILE", "readme"),
              "readme readme INCFILE FIXED \"<RESOURCEDIR>\\\\doc\\\\readme.txt\"\n");
    EXPECT_EQ(info("DBFILE", "PEOPLE"), "people people DBFILE PRELOAD \"people.dbf\"\n");
    EXPECT_EQ(info("DIALOG", "main"), "Main DIALOG\n");
    EXPECT_EQ(info("DIALOG", "absent"), "");
    EXPECT_EQ(info("MENU", "Main"), "");
    EXPECT_EQ(info("*", "MainMenu"), "MainMenu MENU\n");
    EXPECT_EQ(info("NOSUCHKIND", "*"), "");
    EXPECT_EQ(info("*", "absent"), "");
    EXPECT_EQ(info("bitmap", "LOGO"), "logo logo BITMAP \"logo.bmp\"\n") << "words in any case";
    EXPECT_EQ(info("CONTROLS", "*"), "");
}

TEST_F(ResourceTest, InfoOfControlsGivesNamesAndNumbersInAnyCaseOfTheWord) {
    for (const char* word : {"CONTROLS", "Controls", "controls"})
        EXPECT_EQ(info(word, "Main"), "btnfile_open 1201\nIDOK 1\nsecond 777\nfile_open 1101\n");
    EXPECT_EQ(info("CONTROLS", "absent"), "");
    write(rc, "A DIALOG\nLabel plain\nLabel 17\nEND\n");
    EXPECT_EQ(info("CONTROLS", "A"), "plain 0\n17 17\n");
}

TEST_F(ResourceTest, InfoOfOneVersionBlockGivesItsWholeText) {
    const std::string text = info("VERSIONINFO", "vs_version_info");
    const std::size_t begin = example.find("VS_VERSION_INFO"), end = example.find("// the end");
    EXPECT_EQ(text, example.substr(begin, end - begin));
}

TEST_F(ResourceTest, InfoOfAFileThatDoesNotExistIsEmptyWithoutAnError) {
    for (const char* kind : {"*", "DIALOG", "CONTROLS"}) {
        const ResourceText result = ResourceInfo((folder / "absent.rc"), kind, "*");
        EXPECT_EQ(result.text + result.error, "");
    }
    EXPECT_NE(ResourceInfo((folder / ""), "*", "*").error, "") << "a folder is no file";
}

TEST_F(ResourceTest, IdsOfFilesAreNumbersOrSymbols) {
    write(rc, "#define a 7\na BITMAP \"x\"\nb 12 BITMAP \"x\"\nc IDC BITMAP PRELOAD \"x\"\nd BITMAP PRELOAD "
              "\"x\"\n");
    EXPECT_EQ(info("BITMAP", "*"),
              "a 7 BITMAP \"x\"\nb 12 BITMAP \"x\"\nc IDC BITMAP PRELOAD \"x\"\nd d BITMAP PRELOAD \"x\"\n");
}

TEST_F(ResourceTest, ALineOfInfoIsAStatementAgain) {
    const std::string line = info("INCFILE", "readme");
    ASSERT_EQ(ResourceWriteText((folder / "b.rc"), line), "");
    EXPECT_EQ(ResourceInfo((folder / "b.rc"), "INCFILE", "readme").text, line);
}

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

// ---- types ----

TEST_F(ResourceTest, TypelistBeginsWithNameTypeAndPositionForEveryType) {
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Menuitem); ++i) {
        const std::string text = ResourceTypelist(std::string(typeName(static_cast<Type>(i))));
        EXPECT_TRUE(text.starts_with("NAME NAME(")) << text;
        EXPECT_NE(text.find("\nTYPEOF CONST\nPOSITION INTEGER"), std::string::npos) << text;
        EXPECT_TRUE(text.ends_with('\n'));
        EXPECT_LT(text.size(), 65535u);
    }
    EXPECT_EQ(ResourceTypelist("label"), ResourceTypelist("LABEL"));
    for (const char* type : {"", "Screen", "nothing"}) EXPECT_EQ(ResourceTypelist(type), "");
}

TEST_F(ResourceTest, TypelistHoldsThePropertiesThatTheDesignersRead) {
    const std::pair<const char*, std::vector<const char*>> wanted[] = {
        {"Dialog",
         {"CAPTION", "MENU", "FONTNAME", "FONTSIZE", "OWNER", "BORDERSTYLE", "CLOSEBOX", "MAXBUTTON",
          "MINBUTTON"}},
        {"Bitmapbutton", {"PICTURE"}},
        {"Checkbox", {"ALIGNMENT", "CAPTION"}},
        {"Combobox", {"COMBOSTYLE"}},
        {"Edit", {"ALIGNMENT", "BORDERSTYLE", "READONLY", "SCROLLBARS", "MULTILINE"}},
        {"Groupbox", {"CAPTION"}},
        {"Icon", {"PICTURE"}},
        {"Iconlist", {"BORDERSTYLE", "SCROLLBARS", "USETABSTOPS"}},
        {"Image", {"BORDERSTYLE", "PICTURE"}},
        {"Label", {"ALIGNMENT", "BORDERSTYLE", "CAPTION"}},
        {"Listbox", {"BORDERSTYLE", "SCROLLBARS"}},
        {"Progressbar", {"ALIGNMENT", "BORDERSTYLE", "BACKCOLOUR", "FORECOLOUR"}},
        {"Pushbutton", {"CAPTION", "DEFAULT"}},
        {"Radiobutton", {"ALIGNMENT", "CAPTION"}},
        {"Scrollbar", {"ALIGNMENT"}},
        {"Shape", {"BORDERSTYLE", "BACKCOLOUR", "FORECOLOUR", "SHAPE"}},
        {"Menuitem", {"CAPTION", "CHECKED", "ENABLED"}},
    };
    for (const auto& [type, names] : wanted)
        for (const char* name : names)
            EXPECT_NE(ResourceTypelist(type).find("\n" + std::string(name) + " "), std::string::npos)
                << type << " " << name;
}

TEST_F(ResourceTest, TypelistSpeaksTheLanguageOfOptionsTexts) {
    const std::regex forms[] = {
        std::regex("CONST|COLOUR|INTEGER|STRING|STRING\\([0-9]+\\)"),
        std::regex("NAME\\([0-9]+:[0-9]+\\)"),
        std::regex("FILENAME\\([a-z]+(,[a-z]+)*\\)"),
        std::regex("ENUM\\([A-Za-z]+(,[A-Za-z]+)*\\)"),
        std::regex("INTEGER\\(-?[0-9]*:-?[0-9]*\\)|INTEGER\\[1:4\\]"),
        std::regex("INTEGER\\([0-9]+-\"[^\"]+\"(,[0-9]+-\"[^\"]+\")*\\)"),
        std::regex("INTEGER\\{[0-9]+-\"[^\"]+\"(,[0-9]+-\"[^\"]+\")*\\}"),
    };
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Menuitem); ++i)
        for (const PropertyRow& row : propertiesOf(static_cast<Type>(i))) {
            const std::string options(row.options);
            EXPECT_EQ(std::count_if(std::begin(forms), std::end(forms),
                                    [&](const std::regex& form) { return std::regex_match(options, form); }),
                      1)
                << row.name << " " << options;
        }
}

// What an empty value becomes in a new object by its options alone.
std::string firstValue(std::string_view options) {
    if (options == "INTEGER[1:4]") return "0 0 0 0";
    if (options.starts_with("NAME")) return "Name";
    if (options.starts_with("COLOUR")) return "-1";  // told by the property's own rule
    if (options.starts_with("ENUM") || options.starts_with("INTEGER{") || options == "INTEGER") return "0";
    if (!options.starts_with("INTEGER(")) return "";
    return std::to_string(std::max(0, leadingNumber(options.substr(8))));
}

TEST_F(ResourceTest, ANewObjectIsAsOneThatTheFileTellsNothingOf) {
    std::string others;
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Menuitem); ++i)
        for (const PropertyRow& row : propertiesOf(static_cast<Type>(i)))
            if (row.name != "NAME" && row.name != "TYPEOF" && firstValue(row.options) != row.missing)
                others += std::string(typeName(static_cast<Type>(i))) + " " + std::string(row.name) + "=" +
                          firstValue(row.options) + "\n";
    // A window that is drawn can be sized, and a range from 0 to 0 is the usual one.
    EXPECT_EQ(others, "Dialog BORDERSTYLE=2\nScrollbar MAXIMUM=0\nProgressbar MAXIMUM=0\n");
}

TEST_F(ResourceTest, MissingValuesFitTheirOptions) {
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Menuitem); ++i)
        for (const PropertyRow& row : propertiesOf(static_cast<Type>(i))) {
            const bool number = row.options.starts_with("ENUM") || row.options.starts_with("COLOUR") ||
                                (row.options.starts_with("INTEGER") && !row.options.starts_with("INTEGER["));
            EXPECT_TRUE(!number || wholeNumber(row.missing)) << row.name;
            const bool reference =
                row.name == "ARRAY" || row.name == "MENU";  // a name, and no new object has it
            EXPECT_EQ(row.options.starts_with("STRING") && !reference, row.kind == ValueKind::Text)
                << row.name;
            EXPECT_EQ(row.options.starts_with("FILENAME"), row.kind == ValueKind::File) << row.name;
        }
}

TEST_F(ResourceTest, CommonIdentifiersAreKnown) {
    for (const char* name : {"IDOK", "idcancel", "IDRETRY", "IDHELP"})
        EXPECT_TRUE(ResourceCommonId(name)) << name;
    for (const char* name : {"", "IDNOTHING", "pushbutton1"}) EXPECT_FALSE(ResourceCommonId(name)) << name;
}

// ---- damaged and hostile files ----

TEST_F(ResourceTest, DeepAndHugeFilesEndInTime) {
    std::string deep = "A VERSIONINFO\n";
    for (int i = 0; i < 200'000; ++i) deep += "BEGIN\n";
    write(rc, deep);
    EXPECT_NE(ResourceInfo(rc, "*", "A").error, "");
    std::string wide = "A DIALOG\n";
    for (int i = 0; i < 200'000; ++i) wide += "Label a\n";
    write(rc, wide + "END\n");
    ObjectArray array;
    EXPECT_NE(ResourceRead(rc, "A", array), "");
    write(rc, std::string(4'000'000, '"'));
    EXPECT_EQ(ResourceInfo(rc, "*", "*").text, "");
}

TEST_F(ResourceTest, ACutAtAnyByteNeverHarms) {
    for (std::size_t size = 0; size <= example.size(); ++size) {
        const RcFile parsed = parseResourceText(example.substr(0, size));
        for (const RcStatement& statement : parsed.statements) {
            ASSERT_LE(statement.span.begin, statement.span.end);
            ASSERT_LE(statement.span.end, size);
            WindowTemplate made;
            if (statement.kind == RcKind::Window)
                static_cast<void>(makeTemplate(parsed, statement.name, made));
        }
    }
}

TEST_F(ResourceTest, AByteChangedAnywhereNeverHarms) {
    for (const char c : {'"', '\n', '=', '\\', 'E', '\0', '\xff'})
        for (std::size_t at = 0; at < example.size(); ++at) {
            std::string text = example;
            text[at] = c;
            const RcFile parsed = parseResourceText(text);
            WindowTemplate made;
            static_cast<void>(makeTemplate(parsed, "Main", made));
            if (parsed.fault.empty() && at % 16 == 0) {
                write(rc, text);
                ObjectArray array;
                if (ResourceRead(rc, "Main", array).empty()) {
                    EXPECT_EQ(ResourceWrite(array, {}, rc), "") << at;
                    EXPECT_EQ(read(rc), text) << at;
                }
            }
        }
}

}  // namespace
}  // namespace tarn::platform
