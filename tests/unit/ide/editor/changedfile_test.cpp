// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user is asked when another program has changed or deleted the open file.
#include "ide/editor/changedfile.h"

#include "ide/editor/seenfile.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class ChangedFile : public IdeTest {
protected:
    std::string file;

    void SetUp() override {
        IdeTest::SetUp();
        file = write("a.txt", "one\ntwo\n");
        start({file});
        asked.clear();
    }
    void comeBack(const Object& window = SDIEdit) {
        platform::userReturn(*platform::findWindow(window));
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
};

TEST_F(ChangedFile, IsAskedAboutOnceWhenTheWindowBecomesActive) {
    comeBack();
    EXPECT_TRUE(asked.empty());
    write("a.txt", "from outside\n");
    answers = {"&Keep"};
    comeBack();
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "File Changed");
    EXPECT_TRUE(asked[0].text.starts_with("The following file was changed by another program:\n\n\t" + file +
                                          "\n\n"));
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Reload", "&Keep", "&Show difference"}));
    comeBack();
    comeBack(Main);
    EXPECT_EQ(asked.size(), 1u) << "once for a change";
    write("a.txt", "once more from outside\n");
    comeBack(Main);
    EXPECT_EQ(asked.size(), 2u);
}

TEST_F(ChangedFile, KeptIsAChangeAndASaveStillAsks) {
    write("a.txt", "from outside\n");
    answers = {"&Keep"};
    comeBack();
    EXPECT_EQ(GetText(SDIEdit), "one\ntwo\n");
    EXPECT_EQ(GetCaption(SDIEdit), file + " *");
    answers = {"&Cancel"};
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(asked.back().title, "File-Save");
    EXPECT_EQ(read(file), "from outside\n");
    comeBack();
    EXPECT_EQ(asked.size(), 2u) << "the save has asked about it";
}

TEST_F(ChangedFile, ClosedBoxCountsAsKeep) {
    write("a.txt", "from outside\n");
    comeBack();
    EXPECT_EQ(asked.size(), 1u);
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(ChangedFile, ReloadedIsOneStepThatCanBeUndone) {
    type("mine\n");
    write("a.txt", "one\nfrom outside\n");
    answers = {"&Reload"};
    comeBack();
    EXPECT_NE(asked[0].text.find("changes that are not saved"), std::string::npos) << asked[0].text;
    EXPECT_EQ(GetText(SDIEdit), "one\nfrom outside\n");
    EXPECT_EQ(GetCaption(SDIEdit), file);
    EXPECT_FALSE(GETMODIFYPRIVATE(SDIEdit));
    pick("edit_undo_typing");
    EXPECT_EQ(GetText(SDIEdit), "one\ntwo\nmine\n");
    EXPECT_EQ(GetCaption(SDIEdit), file + " *");
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(asked.size(), 1u) << "it is known what stands on the disk";
    EXPECT_EQ(read(file), "one\ntwo\nmine\n");
}

TEST_F(ChangedFile, ReloadKeepsTheCaretInItsLine) {
    SetSelection(SDIEdit, 5, 3);  // "two"
    write("a.txt", "zero\none\ntwo\n");
    answers = {"&Reload"};
    comeBack();
    EXPECT_EQ(GetSelection(SDIEdit).start, 10);
    EXPECT_EQ(GetSelection(SDIEdit).length, 3);
}

TEST_F(ChangedFile, WithTheSameTextIsNotAskedAbout) {
    std::filesystem::last_write_time(file,
                                     std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    comeBack();
    EXPECT_TRUE(asked.empty()) << lastText();
    type("x");
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_TRUE(asked.empty()) << lastText();
}

TEST_F(ChangedFile, ThatGrewTooLargeIsKept) {
    write("a.txt", std::string(4'000'001, 'a'));
    answers = {"&Reload"};
    comeBack();
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_TRUE(asked[1].text.starts_with("The following file is too big to be loaded:")) << asked[1].text;
    EXPECT_EQ(GetText(SDIEdit), "one\ntwo\n");
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(ChangedFile, ShowsTheDifferenceAndAsksAgain) {
    type("mine\n");
    write("a.txt", "one\ntheirs\n");
    std::string shown, label;
    platform::view().setIdle([&] {
        if (!ISSHOWN(DifferenceDlg)) return;
        shown = GetText(FINDCONTROL(DifferenceDlg, "edit1"));
        label = GetCaption(FINDCONTROL(DifferenceDlg, "label1"));
        EXPECT_TRUE(GetReadonly(FINDCONTROL(DifferenceDlg, "edit1")));
        platform::userCommand(*platform::findControl(FINDCONTROL(DifferenceDlg, "pushbutton1")));
    });
    answers = {"&Show difference", "&Show difference", "&Keep"};
    comeBack();
    platform::view().setIdle(nullptr);
    EXPECT_EQ(shown, "Line 1:\n  one\n- two\n- mine\n+ theirs\n");
    EXPECT_EQ(label, file);
    EXPECT_EQ(asked.size(), 3u);
    EXPECT_FALSE(IsLoaded(DifferenceDlg));
    EXPECT_EQ(GetText(SDIEdit), "one\ntwo\nmine\n");
}

TEST_F(ChangedFile, DeletedIsKeptAsAChangeOrClosed) {
    std::filesystem::remove(file);
    answers = {"&Keep"};
    comeBack();
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "File Deleted");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Keep", "&Close"}));
    EXPECT_EQ(GetCaption(SDIEdit), file + " *");
    comeBack();
    EXPECT_EQ(asked.size(), 1u);
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(read(file), "one\ntwo\n");
    std::filesystem::remove(file);
    answers = {"&Close"};
    comeBack();
    EXPECT_EQ(asked.size(), 2u);
    EXPECT_EQ(GetCaption(SDIEdit), "");
    EXPECT_FALSE(GetVisible(SDIEdit));
}

TEST_F(ChangedFile, DeletedWithChangesIsNotClosedWithoutAQuestion) {
    type("mine\n");
    std::filesystem::remove(file);
    answers = {"&Close", "&Cancel"};
    comeBack();
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[1].title, "Save Changes?");
    EXPECT_EQ(GetText(SDIEdit), "one\ntwo\nmine\n");
}

TEST_F(ChangedFile, ThatComesBackIsAskedAboutAgain) {
    std::filesystem::remove(file);
    answers = {"&Keep", "&Keep"};
    comeBack();
    write("a.txt", "back\n");
    comeBack();
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[1].title, "File Changed");
}

TEST_F(ChangedFile, IsNotAskedAboutInsideAnotherQuestion) {
    write("a.txt", "from outside\n");
    {
        const FileWork work;
        comeBack();
        EXPECT_TRUE(asked.empty());
    }
    comeBack();
    EXPECT_EQ(asked.size(), 1u);
}

TEST_F(ChangedFile, IsNotAskedAboutWhileADialogIsOpen) {
    write("a.txt", "from outside\n");
    bool looked = false;
    platform::view().setIdle([&] {
        looked = true;
        comeBack();
        Unload(FileInfoDlg);
    });
    Load(FileInfoDlg);
    Show(FileInfoDlg, true);
    platform::view().setIdle(nullptr);
    EXPECT_TRUE(looked);
    // The dialog has gone and the window is active again.
    EXPECT_LE(asked.size(), 1u);
}

}  // namespace
}  // namespace tarn
