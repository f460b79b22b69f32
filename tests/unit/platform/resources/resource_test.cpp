// SPDX-License-Identifier: Apache-2.0
//
// Resource files: what is read is written back byte for byte, what they list, and what damage does to them.
#include "platform/resources/properties.h"
#include "platform/resources/rctext.h"
#include "platform/resources/rcx.h"
#include "unit/platform/resource_fixture.h"

#include <gtest/gtest.h>

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
