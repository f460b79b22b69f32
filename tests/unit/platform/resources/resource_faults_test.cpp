// SPDX-License-Identifier: Apache-2.0
//
// A statement that is not understood hides no other one: what stands before and behind it is listed, read and
// written, its own bytes stay, and its fault is told, with its line, to whoever asks for it and to the
// compiler.
#include "unit/platform/resource_fixture.h"

#include "platform/resources/rctext.h"
#include "platform/resources/rcx.h"

namespace tarn::platform {
namespace {

const std::string before = "logo INCFILE \"a.bmp\"\nFirst DIALOG\n  CAPTION=\"1\"\nEND\n",
                  behind = "note INCFILE \"b.txt\"\nLast DIALOG\n  // kept\n  Label x 5\nEND\n"
                           "LastMenu MENU\n  Menuitem y 6\nEND\n";
constexpr int linesBefore = 4;

struct Broken {
    const char* kind;
    const char* text;  // of the statement A
    int line;
    const char* fault;
};

constexpr const char* body = "A property, a control or END should stand here.";
constexpr Broken brokenStatements[] = {
    {"DIALOG", "A DIALOG\n", 1, "The END of 'A' is missing."},
    {"DIALOG", "A DIALOG\n  CAPTION=\"x\"\n  // no end\n", 1, "The END of 'A' is missing."},
    {"DIALOG", "A DIALOG\nCAPTION=\"x\nEND\n", 2, "The string does not end on its line."},
    {"DIALOG", "A DIALOG\nCAPTION=\"x\" y\nEND\n", 2, "There is something behind the string."},
    {"DIALOG", "A DIALOG\n\nNonsense\nEND\n", 3, body},
    {"DIALOG", "A DIALOG\nNonsense\nmore\nLabel b 1\nLabel \"\nEND\n", 2, body},
    {"DIALOG", "A DIALOG\nMenuitem\nEND\n", 2, body},
    {"DIALOG", "A DIALOG\nDialog b\nEND\n", 2, body},
    {"DIALOG", "A DIALOG\nButton ok \"OK\"\nPOSITION=1 1 1 1\nEND\n", 2, body},
    {"DIALOG", "A DIALOG\nLabel b 1 2\nEND\n", 2,
     "Behind the type stand a name and a number, and nothing else."},
    {"DIALOG", "A DIALOG\nNAME=x\nEND\n", 2, "NAME is told by the head of the block."},
    {"DIALOG", "A DIALOG\nTYPEOF=x\nEND\n", 2, "TYPEOF is told by the head of the block."},
    {"DIALOG", "A DIALOG\n=x\nEND\n", 2, "There is no property name before the \"=\"."},
    {"DIALOG", "A DIALOG\nBEGIN\n  LTEXT \"x\", 1\n  BEGIN\n  END\nEND\n", 2, body},
    {"DIALOG", "A EDITWINDOW\nA B=1\nEND\n", 2, body},
    {"MENU", "A MENU\nLabel b\nEND\n", 2, "A property, a Menuitem or END should stand here."},
    {"MENU", "A MENU\nMenuitem b\n", 1, "The END of 'A' is missing."},
    {"VERSIONINFO", "\nA VERSIONINFO\nBEGIN\nBEGIN\nEND\n", 2,
     "The END of the version block 'A' is missing."},
    {"VERSIONINFO", "A VERSIONINFO\nEND\n", 2, "There is an END without a BEGIN."},
    {"VERSIONINFO", "A VERSIONINFO\n", 1, "The END of the version block 'A' is missing."},
    {"BITMAP", "A BITMAP \"abc\n", 1, "The string does not end on its line."},
    {"INCFILE", "A 7 INCFILE FIXED \"abc\\\"\n", 1, "The string does not end on its line."},
};

class ResourceFaultsTest : public ResourceTest {
protected:
    std::string place(int line) const { return "'" + rc + "', line " + std::to_string(line) + ": "; }
    std::string compiled() { return CompileResources({rc}, folder / "out.rcx"); }
    // That A alone cannot be read and cannot be written, and that nothing of it changes.
    void expectToldWhenAsked(const Broken& broken, const std::string& fault) {
        const std::string text = read(rc);
        ObjectArray array{};
        if (broken.kind != std::string("BITMAP") && broken.kind != std::string("INCFILE") &&
            broken.kind != std::string("VERSIONINFO")) {
            EXPECT_EQ(ResourceRead(rc, "a", array), fault);
            EXPECT_EQ(count(array), 0u);
        }
        for (const char* kind : {broken.kind, "*"}) {
            const ResourceText one = ResourceInfo(rc, kind, "A");
            EXPECT_EQ(one.error, fault);
            EXPECT_EQ(one.text, "");
        }
        if (broken.kind == std::string("DIALOG")) {
            EXPECT_EQ(ResourceInfo(rc, "CONTROLS", "A").error, fault);
            array[0] = "NAME=A\nTYPEOF=Dialog\n";
            EXPECT_EQ(ResourceWrite(array, {}, rc), fault);
        }
        EXPECT_EQ(ResourceDelete(rc, "A"), fault);
        EXPECT_EQ(ResourceRename(rc, "A", "B"), fault);
        if (broken.kind == std::string("INCFILE")) {
            EXPECT_EQ(ResourceWriteText(rc, "A INCFILE \"x\"\n"), fault);
        }
        EXPECT_EQ(read(rc), text);
        const std::string line = std::to_string(linesBefore + broken.line);
        EXPECT_NE(compiled().find(rc + "(" + line + ") : error "), std::string::npos) << compiled();
    }
};

TEST_F(ResourceFaultsTest, OneHidesNoOtherStatement) {
    for (const Broken& broken : brokenStatements) {
        SCOPED_TRACE(broken.text);
        write(rc, before + broken.text + behind);
        EXPECT_EQ(info("*", "*"), "logo\nFirst\nA\nnote\nLast\nLastMenu\n");
        EXPECT_EQ(info("INCFILE", "*"), "logo logo INCFILE \"a.bmp\"\nnote note INCFILE \"b.txt\"\n");
        EXPECT_EQ(info("CONTROLS", "Last"), "x 5\n");
        EXPECT_NE(objects("First")[0].find("CAPTION=\"1\""), std::string::npos);
        EXPECT_TRUE(objects("Last")[1].starts_with("NAME=x\n"));
        EXPECT_TRUE(objects("LastMenu")[1].starts_with("NAME=y\n"));
        expectToldWhenAsked(broken, place(linesBefore + broken.line) + broken.fault);
    }
}

TEST_F(ResourceFaultsTest, AListOfItsKindNamesItWhereItsLineIsKnown) {
    for (const Broken& broken : brokenStatements) {
        SCOPED_TRACE(broken.text);
        write(rc, broken.text);
        const std::string list = info(broken.kind, "*");
        const bool file = std::string(broken.kind) == "BITMAP" || std::string(broken.kind) == "INCFILE";
        EXPECT_EQ(list.substr(0, 2), file ? "" : "A ") << "a file without its path is none";
    }
}

TEST_F(ResourceFaultsTest, WritingAnotherResourceKeepsEveryByteOfIt) {
    for (const Broken& broken : brokenStatements) {
        SCOPED_TRACE(broken.text);
        const std::string text = before + broken.text + behind;
        write(rc, text);
        ObjectArray first = objects("First"), last = objects("Last");
        EXPECT_EQ(ResourceWrite(first, {}, rc), "");
        EXPECT_EQ(ResourceWrite(last, objects("LastMenu"), rc), "");
        EXPECT_EQ(read(rc), text);
        first[0] = replaced(first[0], "\"1\"", "\"2\"");
        EXPECT_EQ(ResourceWrite(first, {}, rc), "");
        EXPECT_EQ(read(rc), replaced(text, "\"1\"", "\"2\""));
        EXPECT_EQ(ResourceRename(rc, "Last", "Final"), "");
        EXPECT_EQ(ResourceDelete(rc, "logo"), "");
        EXPECT_EQ(ResourceDelete(rc, "First"), "");
        EXPECT_EQ(ResourceWriteText(rc, "new BITMAP \"n\"\n"), "");
        EXPECT_EQ(read(rc),
                  broken.text + replaced(behind, "Last DIALOG", "Final DIALOG") + "new BITMAP \"n\"\n");
    }
}

TEST_F(ResourceFaultsTest, WhatIsAppendedBehindItIsFound) {
    for (const Broken& broken : brokenStatements) {
        SCOPED_TRACE(broken.text);
        write(rc, before + broken.text);
        ObjectArray array{}, menu{};
        array[0] = "NAME=New\nTYPEOF=Dialog\n";
        menu[0] = "NAME=NewMenu\nTYPEOF=Menuitem\n";
        EXPECT_EQ(ResourceWrite(array, menu, rc), "");
        EXPECT_EQ(ResourceWriteText(rc, "pic BITMAP \"p\"\n"), "");
        EXPECT_EQ(read(rc),
                  before + broken.text + "\nNew DIALOG\nEND\n\nNewMenu MENU\nEND\npic BITMAP \"p\"\n");
        EXPECT_EQ(info("*", "*"), "logo\nFirst\nA\nNew\nNewMenu\npic\n");
    }
}

TEST_F(ResourceFaultsTest, WhatWouldNotBeFoundBehindItIsNotAppended) {
    const std::string text = "A DIALOG\n  CAPTION=\"x\"\n";
    write(rc, text);
    EXPECT_EQ(ResourceWriteText(rc, "p RCDATA \"x\"\n"), place(1) + "The END of 'A' is missing.");
    EXPECT_EQ(read(rc), text);
}

TEST_F(ResourceFaultsTest, WhatHoldsItBackFromOthersIsNotDeleted) {
    const std::string text = "A DIALOG\nB DIALOG\nEND\np RCDATA \"x\"\n";
    write(rc, text);
    EXPECT_EQ(ResourceDelete(rc, "B"), place(1) + "The END of 'A' is missing.");
    EXPECT_EQ(read(rc), text);
    EXPECT_EQ(ResourceDelete(rc, "p"), "");
    EXPECT_EQ(ResourceDelete(rc, "B"), "");
    EXPECT_EQ(read(rc), "A DIALOG\n");
}

TEST_F(ResourceFaultsTest, ANameThatAFaultyOneHasTooIsNotChanged) {
    const std::string text = "M MENU\nEND\nm MENU\nwhat\nEND\n";
    write(rc, text);
    const std::string fault = place(4) + "A property, a Menuitem or END should stand here.";
    EXPECT_EQ(ResourceDelete(rc, "M"), fault);
    EXPECT_EQ(ResourceRename(rc, "M", "N"), fault);
    EXPECT_EQ(read(rc), text);
}

TEST_F(ResourceFaultsTest, ThoseWithoutANameAreToldByTheCompiler) {
    for (const char* text : {"BEGIN\nBEGIN\nEND\n", "BEGIN\n"}) {
        write(rc, before + text + behind);
        EXPECT_EQ(info("*", "*"), "logo\nFirst\nnote\nLast\nLastMenu\n");
        EXPECT_EQ(compiled(), rc + "(5) : error 725 The END of this BEGIN is missing.\n");
        EXPECT_EQ(ResourceDelete(rc, "Last"), "");
        EXPECT_EQ(info("*", "*"), "logo\nFirst\nnote\nLastMenu\n");
        EXPECT_NE(read(rc).find(text), std::string::npos);
    }
}

TEST_F(ResourceFaultsTest, EveryOneIsToldByTheCompiler) {
    write(rc, "A DIALOG\nwhat\nwhere\nEND\nB MENU\nLabel x\nEND\nC BITMAP \"x\nD DIALOG\n");
    EXPECT_EQ(compiled(), rc + "(2) : error 725 " + body + "\n" + rc +
                              "(6) : error 726 A property, a Menuitem or END should stand here.\n" + rc +
                              "(8) : error 725 The string does not end on its line.\n" + rc +
                              "(9) : error 725 The END of 'D' is missing.\n");
}

TEST_F(ResourceFaultsTest, AMenuThatIsFaultyIsToldForItsWindow) {
    const std::string text = "D DIALOG\nMENU=M\nEND\nM MENU\nLabel x\nEND\n";
    const RcFile parsed = parseResourceText(text);
    WindowTemplate made;
    const RcFault fault = makeTemplate(parsed, "D", made);
    EXPECT_EQ(fault.line, 5);
    EXPECT_EQ(fault.number, 726);
    write(rc, text);
    EXPECT_TRUE(objects("D")[0].starts_with("NAME=D\n")) << "the window itself is well";
}

TEST_F(ResourceFaultsTest, ABlockWithoutItsEndEndsBeforeWhatCanOnlyBeAStatement) {
    for (const char* line :
         {"B DIALOG\nEND\n", "B EDITWINDOW\nEND\n", "B MENU\nEND\n", "B VERSIONINFO\nBEGIN\nEND\n",
          "B BITMAP \"x\"\n", "B ICON FIXED \"x\"\n", "B 5 INCFILE \"x\"\n", "b IDS DBFILE \"x\"\n"})
        for (const char* block :
             {"A DIALOG\n", "A MENU\n", "A VERSIONINFO\nBEGIN\n", "BEGIN\n", "A DIALOG\nBEGIN\n"}) {
            write(rc, std::string(block) + line);
            const RcFile parsed = parseResourceText(std::string(block) + line);
            ASSERT_EQ(parsed.statements.size(), 2u) << block << line;
            EXPECT_FALSE(parsed.statements[0].fault.empty());
            EXPECT_TRUE(parsed.statements[1].fault.empty());
        }
}

TEST_F(ResourceFaultsTest, SymbolsBehindOneCount) {
    write(rc, "A DIALOG\n#define x 9\nB DIALOG\nLabel x\nEND\n");
    EXPECT_EQ(info("CONTROLS", "B"), "x 9\n");
}

TEST_F(ResourceFaultsTest, AVersionBlockWithoutItsEndSwallowsNoWindow) {
    write(rc, "V VERSIONINFO\nBEGIN\n  BLOCK \"x\"\n  BEGIN\nEND\nMain DIALOG\nEND\n");
    EXPECT_EQ(info("DIALOG", "*"), "Main DIALOG\n");
    EXPECT_EQ(ResourceInfo(rc, "VERSIONINFO", "V").error,
              place(1) + "The END of the version block 'V' is missing.");
}

// As other resource files have them: they are seen, not passed over, and cannot be changed.
TEST_F(ResourceFaultsTest, ANumberInThePlaceOfANameIsTold) {
    for (const std::string name : {"7", "-1", "0x10", "+3"})
        for (const auto& [kind, word] : {std::pair<const char*, const char*>{"DIALOG", "window"},
                                         {"EDITWINDOW", "window"},
                                         {"MENU", "menu"}}) {
            for (const char* inside : {"  CAPTION=\"x\"\n", "", "BEGIN\n  LTEXT \"x\", 1\n"}) {
                write(rc, before + name + " " + kind + "\n" + inside + "END\n" + behind);
                const std::string text = read(rc), fault = place(linesBefore + 1) + "'" + name +
                                                           "' is a number; give the " + word +
                                                           " a name that begins with a letter.";
                EXPECT_EQ(ResourceInfo(rc, "*", name).error, fault) << kind << inside;
                EXPECT_EQ(info("*", "*"), "logo\nFirst\n" + name + "\nnote\nLast\nLastMenu\n");
                ObjectArray array{};
                EXPECT_EQ(ResourceRead(rc, name, array), fault);
                EXPECT_EQ(ResourceRename(rc, name, "B"), fault);
                EXPECT_NE(compiled().find("(" + std::to_string(linesBefore + 1) + ") : error 72"),
                          std::string::npos);
                EXPECT_EQ(read(rc), text);
            }
        }
}

TEST_F(ResourceFaultsTest, AFileWithAZeroByteIsNoTextAtAll) {
    for (const std::size_t at : {std::size_t{0}, example.find("CAPTION"), example.find("END")}) {
        std::string text = example;
        text[at] = '\0';
        write(rc, text);
        const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n') + 1;
        const std::string fault = place(static_cast<int>(line)) + "There is a zero byte, so this is no text.";
        EXPECT_EQ(ResourceInfo(rc, "*", "*").error, fault);
        ObjectArray array{};
        EXPECT_EQ(ResourceRead(rc, "Main", array), fault);
        array[0] = "NAME=B\nTYPEOF=Dialog\n";
        EXPECT_EQ(ResourceWrite(array, {}, rc), fault);
        EXPECT_EQ(ResourceDelete(rc, "Main"), fault);
        EXPECT_EQ(ResourceRename(rc, "Main", "B"), fault);
        EXPECT_EQ(ResourceWriteText(rc, "p BITMAP \"x\""), fault);
        EXPECT_EQ(read(rc), text);
    }
}

}  // namespace
}  // namespace tarn::platform
