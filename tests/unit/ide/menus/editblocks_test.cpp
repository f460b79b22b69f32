// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/editblocks.h"

#include "ide/program/projwindow.h"
#include "support/ide_fixture.h"

#include <ctime>

namespace tarn {
namespace {

class EditBlocks : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
        label = MAINCONTROL("programlabel");
        std::filesystem::current_path(dir);
    }
    void open(std::string_view text) {
        INITFILE(SDIEdit);
        EDITWNDOPEN(SDIEdit, write("a.txt", text), false, 0);
        ASSERT_EQ(GetText(SDIEdit), text);
    }
    static std::string copied() { return GetText(clipboard); }
    static std::string text() { return GetText(SDIEdit); }
    static void paste(const std::string& clip) {
        SetText(clipboard, clip);
        pick("edit_paste");
    }
    static void expectSelection(int start, int length) {
        EXPECT_EQ(GetSelection(SDIEdit).start, start);
        EXPECT_EQ(GetSelection(SDIEdit).length, length);
    }
    Object label;
};

// ---- selection and clipboard ----

TEST_F(EditBlocks, AreCommandsOfTheMenu) {
    for (const char* name :
         {"cut", "copy", "paste", "delete", "select_all", "comment_block", "uncomment_block", "insert_file"})
        EXPECT_TRUE(isEnabled("edit_" + std::string(name))) << name;
}

TEST_F(EditBlocks, CutTakesTheSelectionToTheClipboard) {
    open("one two");
    SetSelection(SDIEdit, 1, 4);
    pick("edit_cut");
    EXPECT_EQ(copied(), "one ");
    EXPECT_EQ(text(), "two");
    EXPECT_EQ(GetCaption(SDIEdit), dir + "a.txt *");
}

TEST_F(EditBlocks, CopyLeavesTheText) {
    open("one two");
    SetSelection(SDIEdit, 5, 3);
    pick("edit_copy");
    EXPECT_EQ(copied(), "two");
    EXPECT_EQ(text(), "one two");
    EXPECT_FALSE(GetModify(SDIEdit));
    expectSelection(5, 3);
}

TEST_F(EditBlocks, DeleteLeavesTheClipboard) {
    open("one two");
    SetText(clipboard, "kept");
    SetSelection(SDIEdit, 4, 4);
    pick("edit_delete");
    EXPECT_EQ(text(), "one");
    EXPECT_EQ(copied(), "kept");
}

TEST_F(EditBlocks, WithoutSelectionNothingIsCutCopiedOrDeleted) {
    open("one");
    SetText(clipboard, "kept");
    for (const char* name : {"edit_cut", "edit_copy", "edit_delete"}) pick(name);
    EXPECT_EQ(text(), "one");
    EXPECT_EQ(copied(), "kept");
    EXPECT_FALSE(GetModify(SDIEdit));
}

TEST_F(EditBlocks, CopiedLinesEndWithCrLf) {
    open("a\nb\r\nc\n");
    pick("edit_select_all");
    pick("edit_copy");
    EXPECT_EQ(copied(), "a\r\nb\r\nc\r\n");
}

TEST_F(EditBlocks, SelectAllTakesTheWholeText) {
    open("one\ntwo\n");
    pick("edit_select_all");
    expectSelection(1, 8);
    open("");
    pick("edit_select_all");
    expectSelection(1, 0);
}

TEST_F(EditBlocks, WithoutAFileNothingHappens) {
    SetText(clipboard, "kept");
    for (const char* name : {"edit_cut", "edit_copy", "edit_delete", "edit_select_all", "edit_comment_block",
                             "edit_uncomment_block", "edit_insert_file"})
        pick(name);
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(copied(), "kept");
    EXPECT_EQ(GetCaption(SDIEdit), "");
    EXPECT_FALSE(GetVisible(SDIEdit));
}

// ---- paste ----

TEST_F(EditBlocks, PasteTakesThePlaceOfTheSelection) {
    open("one two");
    SetSelection(SDIEdit, 5, 3);
    paste("2");
    EXPECT_EQ(text(), "one 2");
    expectSelection(6, 0);
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(EditBlocks, PasteWithoutAFileBeginsANewText) {
    paste("one");
    EXPECT_EQ(text(), "one");
    EXPECT_EQ(GetCaption(SDIEdit), "<untitled> *");
    EXPECT_TRUE(GetVisible(SDIEdit));
}

TEST_F(EditBlocks, AnEmptyClipboardTakesNothingAway) {
    open("one");
    SetSelection(SDIEdit, 1, 3);
    paste("");
    EXPECT_EQ(text(), "one");
    EXPECT_FALSE(GetModify(SDIEdit));
}

TEST_F(EditBlocks, APastedTextIsCutToWhatTheWindowTakes) {
    EDITWNDNEW(SDIEdit, "");
    paste(std::string(4000000, 'x') + "y");
    EXPECT_EQ(text(), std::string(4000000, 'x'));
    EXPECT_TRUE(asked.empty());
}

TEST_F(EditBlocks, AHundredMillionBytesArePastedInASecond) {
    EDITWNDNEW(SDIEdit, "");
    SetText(clipboard, std::string(100000000, '\n'));
    const std::clock_t start = std::clock();
    DO_PASTE(label);
    EXPECT_LT(std::clock() - start, 1 * CLOCKS_PER_SEC);
    EXPECT_EQ(GetTextLength(SDIEdit), 4000000);
}

TEST_F(EditBlocks, WhatWasCopiedPastesWithTheLineEndsOfTheText) {
    const std::string body = "a\nb\xFF\n" + std::string(1, '\0') + "c\n";
    open(body);
    pick("edit_select_all");
    pick("edit_copy");
    pick("edit_paste");
    EXPECT_EQ(text(), body);
    SetText(SDIEdit, "x\r\n");
    SetSelection(SDIEdit, 4, 0);
    paste("y\nz");
    EXPECT_EQ(text(), "x\r\ny\r\nz");
}

TEST_F(EditBlocks, WhatWasCutComesBackAsItWas) {
    for (const std::string body : {"a\nb\n", "a\r\nb\r\n", "a\nb\r\n\r"}) {
        open(body);
        pick("edit_select_all");
        pick("edit_cut");
        EXPECT_EQ(text(), "");
        EXPECT_EQ(copied(), STRNL2CRNL(body));
        pick("edit_paste");
        EXPECT_EQ(text(), body);
        SetModify(SDIEdit, false);
    }
}

struct Ended {};

TEST_F(EditBlocks, PasteNeedsALabel) {
    open("one");
    SetText(clipboard, "x");
    const os::EndHook before = os::useEndHook([](int) { throw Ended(); });
    EXPECT_THROW(DO_PASTE(SDIEdit), Ended);
    os::useEndHook(before);
    EXPECT_FALSE(asked.empty());
    ClearError();
}

TEST_F(EditBlocks, TheClipboardIsReadByItsObject) {
    SetText(clipboard, "copied");
    EXPECT_EQ(GETCLIPBOARDTEXT(clipboard), "copied");
}

// ---- example code ----

const std::string example = "// hello.cls\nTarnwick Class hello\nfunction main()\nend function\nEnd class\n"
                            "// more.rc\n// nothing yet\n";

TEST_F(EditBlocks, ExampleCodeIsAskedAbout) {
    answers = {"Cancel"};
    paste(example);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Edit-Paste");
    EXPECT_EQ(asked[0].text, "The clipboard contains example code:\n\t\"hello.cls\"\n\t\"more.rc\"\n"
                             "Do you want to save the example as a new program?\n"
                             "Or do you want to paste it as normal text?");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"New Program", "Normal Text", "Cancel"}));
    EXPECT_EQ(GetCaption(SDIEdit), "");
}

TEST_F(EditBlocks, ALineThatIsNoHeadingIsPastedWithoutAQuestion) {
    for (const std::string line : {"// hello world", "// a-b.cls"}) {
        EDITWNDNEW(SDIEdit, "");
        paste(line);
        EXPECT_EQ(text(), line);
        SetModify(SDIEdit, false);
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(EditBlocks, ExampleCodeCanBeNormalText) {
    open("a\n");
    answers = {"Normal Text"};
    paste(example);
    EXPECT_EQ(text(), example + "a\n");
    EXPECT_EQ(asked.size(), 1U);
}

TEST_F(EditBlocks, ExampleCodeBecomesFilesAndTheMainClassIsOpened) {
    open("old\n");
    const std::string tool =
        write("ordo.exe", "#!/bin/sh\necho \"" + dir + "second.cls\" >\"" + dir + "ordo.err\"\n");
    std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    answers = {"New Program", dir + "first.rc", dir + "second.cls", dir + "third.cls"};
    paste("// a.rc\n// empty\n// b.cls\nTarnwick Class second\nfunction main()\nend function\nEnd class\n"
          "// c.cls\nTarnwick Class third\nEnd class");
    ASSERT_EQ(asked.size(), 4U);
    for (std::size_t i = 1; i < 4; i++) {
        EXPECT_EQ(asked[i].title, "Save File");
        EXPECT_EQ(asked[i].value, std::vector<std::string>({"", "a.rc", "b.cls", "c.cls"})[i]);
    }
    EXPECT_EQ(read(dir + "first.rc"), "// a.rc\n// empty\n");
    EXPECT_EQ(read(dir + "third.cls"), "// c.cls\nTarnwick Class third\nEnd class\n");
    EXPECT_EQ(GetCaption(SDIEdit), dir + "second.cls");
    EXPECT_FALSE(GetModify(SDIEdit));
    EXPECT_EQ(PROJECTGETMAINFILE(), dir + "second.cls");
}

TEST_F(EditBlocks, WithoutAMainClassTheFirstFileIsOpened) {
    answers = {"New Program", dir + "first.cls", dir + "second.cls"};
    paste("// first.cls\nTarnwick Class first\nEnd class\n// second.cls\nTarnwick Class second\nEnd class\n");
    EXPECT_EQ(GetCaption(SDIEdit), dir + "first.cls");
}

TEST_F(EditBlocks, CancelAtTheSecondFileKeepsTheFirstAndOpensNothing) {
    answers = {"New Program", dir + "hello.cls", ""};
    paste(example);
    EXPECT_EQ(asked.size(), 3U);
    EXPECT_TRUE(std::filesystem::exists(dir + "hello.cls"));
    EXPECT_FALSE(std::filesystem::exists(dir + "more.rc"));
    EXPECT_EQ(GetCaption(SDIEdit), "");
    EXPECT_FALSE(GetVisible(SDIEdit));
}

TEST_F(EditBlocks, AChangedTextIsAskedAboutBeforeTheExampleTakesItsPlace) {
    open("old\n");
    type("x");
    answers = {"New Program", "&Cancel"};
    paste(example);
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[1].title, "Save Changes?");
    EXPECT_EQ(text(), "old\nx");
    EXPECT_FALSE(std::filesystem::exists(dir + "hello.cls"));
}

TEST_F(EditBlocks, AFileThatCannotBeWrittenEndsTheExample) {
    answers = {"New Program", dir + "none/hello.cls"};
    paste(example);
    ASSERT_EQ(asked.size(), 3U);
    EXPECT_EQ(asked[2].title, "Error");
    EXPECT_EQ(GetCaption(SDIEdit), "");
}

TEST_F(EditBlocks, ALongListOfFilesIsCut) {
    std::string text;
    for (int i = 1; i <= 100; i++) text += "// f" + STR(i) + ".cls\n";
    answers = {"Cancel"};
    paste(text);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(STRLINES(asked[0].text), 42);
    EXPECT_NE(asked[0].text.find("...(more)..."), std::string::npos);
}

// ---- blocks of lines ----

struct Block {
    const char* before;
    int start, length;
    const char *commented, *uncommented;
};

TEST_F(EditBlocks, CommentAndUncommentTakeWholeLines) {
    const Block blocks[] = {
        {"a\nb\nc\n", 1, 1, "//a\nb\nc\n", "a\nb\nc\n"},
        {"a\nb\nc\n", 2, 2, "//a\n//b\nc\n", "a\nb\nc\n"},
        {"a\nb\nc\n", 1, 2, "//a\nb\nc\n", "a\nb\nc\n"},
        {"a\n  b\n\tc", 1, 7, "//a\n//  b\n//\tc", "a\n  b\n\tc"},
        {"a\r\n\r\nb\r\n", 1, 8, "//a\r\n//\r\n//b\r\n", "a\r\n\r\nb\r\n"},
        {"//a\n  //b\n \t// c\nd // e\n/ /f\n////g\n", 1, 36,
         "////a\n//  //b\n// \t// c\n//d // e\n/// /f\n//////g\n", "a\n  b\n \t c\nd // e\n/ /f\n//g\n"},
    };
    for (const Block& block : blocks) {
        open(block.before);
        SetSelection(SDIEdit, block.start, block.length);
        pick("edit_comment_block");
        EXPECT_EQ(text(), block.commented);
        pick("edit_uncomment_block");  // the lines are still selected
        EXPECT_EQ(text(), block.before);
        pick("edit_uncomment_block");
        EXPECT_EQ(text(), block.uncommented);
        SetModify(SDIEdit, false);
    }
}

TEST_F(EditBlocks, TheNewLinesStaySelected) {
    open("a\nb\nc\n");
    SetSelection(SDIEdit, 3, 1);
    pick("edit_comment_block");
    expectSelection(3, 4);
    pick("edit_comment_block");
    EXPECT_EQ(text(), "a\n////b\nc\n");
    expectSelection(3, 6);
    pick("edit_uncomment_block");
    expectSelection(3, 4);
}

TEST_F(EditBlocks, WithoutSelectionNoLineIsACommentedOne) {
    open("a\n//b\n");
    for (const char* name : {"edit_comment_block", "edit_uncomment_block"}) {
        SetSelection(SDIEdit, 3, 0);
        pick(name);
        EXPECT_EQ(text(), "a\n//b\n");
        EXPECT_FALSE(GetModify(SDIEdit));
    }
}

TEST_F(EditBlocks, LinesWithoutACommentAreNoChange) {
    open("a\nb\n");
    SetSelection(SDIEdit, 1, 4);
    pick("edit_uncomment_block");
    EXPECT_FALSE(GetModify(SDIEdit));
    expectSelection(1, 4);
}

TEST_F(EditBlocks, ABlockMayBeTheLargestText) {
    std::string body;
    while (body.size() < 4000000) body += "12345678\n";
    open(body.substr(0, 3999996));
    pick("edit_select_all");
    const std::clock_t start = std::clock();
    pick("edit_comment_block");
    pick("edit_uncomment_block");
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
    EXPECT_EQ(text(), body.substr(0, 3999996));
}

// ---- a file in the text ----

TEST_F(EditBlocks, AFileIsPutInAtTheCaret) {
    const std::string bytes = "in\r\n\xFF" + std::string(1, '\0');
    const std::string file = write("in.txt", bytes);
    open("onetwo");
    SetSelection(SDIEdit, 4, 0);
    answers = {file};
    pick("edit_insert_file");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Edit-Insert File");
    EXPECT_EQ(asked[0].value, "*.txt");
    EXPECT_EQ(asked[0].filter, "Text files (*.txt)|*.txt|Source files (*.cls)|*.cls|");
    EXPECT_EQ(text(), "one" + bytes + "two");
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(EditBlocks, NoFileChosenPutsNothingIn) {
    open("one");
    pick("edit_insert_file");
    EXPECT_EQ(text(), "one");
    EXPECT_EQ(asked.size(), 1U);
}

TEST_F(EditBlocks, AFileThatIsTooLargeOrGoneIsToldAndNotPutIn) {
    open("one");
    const std::string large = write("large.txt", std::string(4000001, 'x'));
    answers = {large};
    pick("edit_insert_file");
    EXPECT_EQ(lastText(), "The following file is too big to be loaded:\n\n\t" + large +
                              "\n\nThe maximum size is 4000000 bytes.");
    answers = {dir + "none.txt"};
    pick("edit_insert_file");
    EXPECT_EQ(asked.back().title, "Error");
    EXPECT_EQ(text(), "one");
    EXPECT_FALSE(GetModify(SDIEdit));
}

}  // namespace
}  // namespace tarn
