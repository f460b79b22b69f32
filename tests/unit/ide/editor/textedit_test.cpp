// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/dialogs/finddlgs.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class CodeWindow : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
    }
    std::string caption() { return GetCaption(SDIEdit); }
};

TEST_F(CodeWindow, BeginsEmptyAndHidden) {
    EXPECT_EQ(caption(), "");
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), "");
    EXPECT_FALSE(GetVisible(SDIEdit));
}

TEST_F(CodeWindow, ShowsAFileUnderItsName) {
    const std::string file = write("a.txt", "one\ntwo\n");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    EXPECT_EQ(caption(), file);
    EXPECT_EQ(GetText(SDIEdit), "one\ntwo\n");
    EXPECT_TRUE(GetVisible(SDIEdit));
    EXPECT_FALSE(GetModify(SDIEdit));
}

TEST_F(CodeWindow, ColoursAClassByTheSettings) {
    EDITWNDOPEN(SDIEdit, write("a.cls", "Tarnwick Class a\nEnd class\n"), false, 0);
    EXPECT_NE(GetTokens(SDIEdit).find("class - 0x"), std::string::npos) << GetTokens(SDIEdit).substr(0, 200);
    EXPECT_NE(GetFlags(SDIEdit) & HILITE, 0);
    EDITWNDOPEN(SDIEdit, write("a.txt", "class\n"), false, 0);
    EXPECT_EQ(GetTokens(SDIEdit), "");
}

TEST_F(CodeWindow, MarksAndUnmarksAChange) {
    const std::string file = write("a.txt", "one\n");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    type("x");
    EXPECT_EQ(caption(), file + " *");
    EXPECT_TRUE(GETMODIFYPRIVATE(SDIEdit));
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(caption(), file);
    EXPECT_FALSE(GETMODIFYPRIVATE(SDIEdit));
    EXPECT_EQ(read(file), "one\nx");
}

TEST_F(CodeWindow, OpeningTheSameCleanFileOnlyBringsItForward) {
    const std::string file = write("a.txt", "one\n");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    write("a.txt", "two\n");
    EDITWNDOPEN(SDIEdit, dir + "A.TXT", false, 0);
    EXPECT_EQ(GetText(SDIEdit), "one\n");
    EXPECT_TRUE(asked.empty());
}

TEST_F(CodeWindow, CancelKeepsTheOldFileOpen) {
    const std::string a = write("a.txt", "one\n"), b = write("b.txt", "two\n");
    EDITWNDOPEN(SDIEdit, a, false, 0);
    type("x");
    answers = {"&Cancel"};
    EDITWNDOPEN(SDIEdit, b, false, 0);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "Save Changes?");
    EXPECT_EQ(asked[0].text, a + "\nThis file has been changed. Do you want to save the changes?");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Yes", "&No", "&Cancel"}));
    EXPECT_EQ(caption(), a + " *");
    EXPECT_EQ(read(a), "one\n");
}

TEST_F(CodeWindow, NoThrowsTheChangeAwayAndYesSavesIt) {
    const std::string a = write("a.txt", "one\n"), b = write("b.txt", "two\n");
    EDITWNDOPEN(SDIEdit, a, false, 0);
    type("x");
    answers = {"&No", "&Yes"};
    EDITWNDOPEN(SDIEdit, b, false, 0);
    EXPECT_EQ(caption(), b);
    EXPECT_EQ(read(a), "one\n");
    type("y");
    EDITWNDOPEN(SDIEdit, a, false, 0);
    EXPECT_EQ(caption(), a);
    EXPECT_EQ(read(b), "two\ny");
}

TEST_F(CodeWindow, LoadsTheLargestFileAndRefusesOneByteMore) {
    const std::string fits = write("fits.txt", std::string(4000000, 'a'));
    const std::string large = write("large.txt", std::string(4000001, 'a'));
    EDITWNDOPEN(SDIEdit, fits, false, 0);
    EXPECT_EQ(GetTextLength(SDIEdit), 4000000);
    EDITWNDOPEN(SDIEdit, large, false, 0);
    EXPECT_EQ(lastText(), "The following file is too big to be loaded:\n\n\t" + large +
                              "\n\nThe maximum size is 4000000 bytes.");
    EXPECT_EQ(caption(), fits);
}

TEST_F(CodeWindow, LeavesEverythingForAFileThatDoesNotExist) {
    EDITWNDOPEN(SDIEdit, dir + "absent.txt", false, 0);
    EXPECT_EQ(caption(), "");
    EXPECT_TRUE(asked.empty());
}

TEST_F(CodeWindow, SelectsTheLineAskedForAndCountsThemOtherwise) {
    const std::string file = write("a.txt", "one\ntwo\nthree");
    EDITWNDOPEN(SDIEdit, file, false, 3);
    EXPECT_EQ(GetSelection(SDIEdit).start, 9);
    EXPECT_EQ(GetSelection(SDIEdit).length, 5);
    EDITWNDOPEN(SDIEdit, file, false, 4);
    EXPECT_EQ(lastText(), "File: " + file + "\nCannot hilight line 4.\nThere are 3 line(s) in the file.");
}

TEST_F(CodeWindow, NewTextIsMarkedOnlyWhenItHoldsSomething) {
    EDITWNDNEW(SDIEdit, "");
    EXPECT_EQ(caption(), "<untitled>");
    EDITWNDNEW(SDIEdit, "text");
    EXPECT_EQ(caption(), "<untitled> *");
}

TEST_F(CodeWindow, AnUntitledClassIsProposedUnderItsName) {
    std::filesystem::current_path(dir);
    EDITWNDNEW(SDIEdit, "Tarnwick Class Abc\nEnd class\n");
    answers = {dir + "abc.cls"};
    EDITWNDSAVE(SDIEdit, false);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "Save File");
    EXPECT_EQ(asked[0].value, dir + "Abc.cls");
    EXPECT_EQ(read(dir + "abc.cls"), "Tarnwick Class Abc\nEnd class\n");
    EXPECT_EQ(caption(), dir + "abc.cls");
}

TEST_F(CodeWindow, AnUntitledTextIsProposedUnderAFreeName) {
    std::filesystem::current_path(dir);
    EDITWNDNEW(SDIEdit, "text");
    EDITWNDSAVE(SDIEdit, false);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_TRUE(asked[0].value.starts_with(dir + "New")) << asked[0].value;
    EXPECT_TRUE(asked[0].value.ends_with(".txt")) << asked[0].value;
    EXPECT_EQ(caption(), "<untitled> *");
}

TEST_F(CodeWindow, OffersToMatchTheClassNameToTheFile) {
    EDITWNDNEW(SDIEdit, "Tarnwick Class Abc\nEnd class\n");
    answers = {dir + "other.cls", "&Yes"};
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(lastText(),
              "The classname 'Abc' does not match the file being saved (other.cls).\nDo you want the "
              "classname to be changed to match?");
    EXPECT_EQ(read(dir + "other.cls"), "Tarnwick Class other\nEnd class\n");
}

TEST_F(CodeWindow, OffersNoClassNameThatIsNone) {
    const std::string text = "Tarnwick Class Abc\nEnd class\n";
    for (const std::string base : {"two words", "\xC3\xA9t\xC3\xA9", "loop", "View", "1st", "a-b", "x.y",
                                   "aaaaaaaaaabbbbbbbbbbccccccccccddddddddddE"}) {
        EDITWNDNEW(SDIEdit, text);
        answers = {dir + base + ".cls", "&Save"};
        EDITWNDSAVE(SDIEdit, false);
        EXPECT_EQ(lastText(), "The classname 'Abc' does not match the file being saved (" + base +
                                  ".cls).\nIt cannot be changed to match, because '" + base +
                                  "' is no name of a class.");
        EXPECT_EQ(read(dir + base + ".cls"), text);
    }
    EDITWNDNEW(SDIEdit, text);
    answers = {dir + "my class.cls", "&Cancel"};
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_FALSE(std::filesystem::exists(dir + "my class.cls"));
}

TEST_F(CodeWindow, CancelAtTheClassNameSavesNothing) {
    EDITWNDNEW(SDIEdit, "Tarnwick Class Abc\nEnd class\n");
    answers = {dir + "other.cls", "&Cancel"};
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_FALSE(std::filesystem::exists(dir + "other.cls"));
    EXPECT_TRUE(GetModify(SDIEdit));
    EXPECT_EQ(caption(), dir + "other.cls *");
}

TEST_F(CodeWindow, SaysThatThereIsNothingToSave) {
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(lastText(), "There is no file to save.");
}

TEST_F(CodeWindow, KeepsTheTextWhenTheSaveFails) {
    const std::string file = write("a.txt", "one\n");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    std::filesystem::permissions(file, std::filesystem::perms(0444));
    type("x");
    EDITWNDSAVE(SDIEdit, false);
    Stamp(0, ReportErrors, DefaultErrorHandler);
    EXPECT_EQ(GetText(SDIEdit), "one\nx");
    EXPECT_EQ(caption(), file + " *");
    EXPECT_EQ(read(file), "one\n");
    ASSERT_FALSE(asked.empty());
    EXPECT_EQ(asked.back().title, "Error");
    EXPECT_NE(lastText().find("Cannot write to file (error 652)."), std::string::npos) << lastText();
}

TEST_F(CodeWindow, KeepsEveryByteOfAFile) {
    std::string bytes;
    for (int i = 0; i < 256; i++) bytes += static_cast<char>(i);
    for (const std::string& text :
         {bytes, std::string("a\r\nb\nc\rd"), std::string("\xff\xfe\xc3"), std::string()}) {
        const std::string file = write("bytes.bin", text);
        EDITWNDOPEN(SDIEdit, file, true, 0);
        EDITWNDSAVE(SDIEdit, false);
        EXPECT_EQ(read(file), text);
        EDITWNDCLOSE(SDIEdit, false);
    }
}

TEST_F(CodeWindow, CloseHidesAndRemembersItsPlace) {
    const std::string file = write("a.txt", "one\n");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    Unload(SDIEdit);
    EXPECT_TRUE(IsLoaded(SDIEdit));
    EXPECT_FALSE(GetVisible(SDIEdit));
    EXPECT_EQ(caption(), "");
    EXPECT_NE(PROFILESTRGET(ini(), "Sdiedit", "_Position"), "");
}

TEST(Flags, AreNamedInTheirOrder) {
    EXPECT_EQ(FLAGSTOSTR(0), "");
    EXPECT_EQ(
        FLAGSTOSTR(16 + 32 + 64 + 128 + 256 + 512 + 1024 + 2048 + 4096),
        "allowoverwrite autoindent hilite readonly selectall statusbar tabshift private_modify numberbar");
    EXPECT_EQ(FLAGSTOSTR(4096 + 32), "autoindent numberbar");
}

TEST_F(CodeWindow, WidensASelectionToWholeLines) {
    SetText(SDIEdit, "one\ntwo\nthree");
    SetSelection(SDIEdit, 6, 1);
    EDITWNDSELECTLINES(SDIEdit);
    EXPECT_EQ(GetSelection(SDIEdit).start, 5);
    EXPECT_EQ(GetSelection(SDIEdit).length, 4);
    SetSelection(SDIEdit, 10, 2);
    EDITWNDSELECTLINES(SDIEdit);
    EXPECT_EQ(GetSelection(SDIEdit).start, 9);
    EXPECT_EQ(GetSelection(SDIEdit).length, 5);
}

TEST_F(CodeWindow, FindsTheWordUnderTheCaret) {
    SetText(SDIEdit, "end if  ");
    SetSelection(SDIEdit, 5, 0);
    EXPECT_EQ(GETWORDATCURSOR(SDIEdit), "if");
    SetSelection(SDIEdit, 8, 0);
    EXPECT_EQ(GETWORDATCURSOR(SDIEdit), "");
}

}  // namespace
}  // namespace tarn
