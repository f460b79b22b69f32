// SPDX-License-Identifier: GPL-3.0-or-later
//
// A save from the Code window while the disk fails or the process dies at each call in turn: the old or the
// new text is on the disk, the text is in the window, and the user is told.
#include "ide/shell/rescue.h"
#include "support/ide_fixture.h"
#include "support/steerable.h"

namespace tarn {
namespace {

constexpr const char* File = "/home/user/note.txt";
const std::string Old = "old text\n", New = "old text\nand a new line\n";

class Save : public IdeTest {
protected:
    os::SteeredFiles disk;

    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        disk.put(ini(), read(ini()));
        disk.putFolder(dir + "state");
        os::useFiles(&disk);
    }
    void TearDown() override {
        os::useFiles(nullptr);
        IdeTest::TearDown();
    }
    void openAndChange() {
        asked.clear();
        answers.clear();
        SetModify(SDIEdit, false);
        EDITWNDCLOSE(SDIEdit, false);
        disk.put(File, Old);
        EDITWNDOPEN(SDIEdit, File, false, 0);
        type("and a new line\n");
        disk.clearLog();
    }
    void save() {
        EDITWNDSAVE(SDIEdit, false);
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
};

TEST_F(Save, ThatFailsAtAnyCallKeepsTheTextAndTellsTheUser) {
    for (const os::FileError error :
         {os::FileError::DiskFull, os::FileError::Denied, os::FileError::WriteFailed}) {
        int failures = 0;
        for (int n = 1; n < 60; n++) {
            openAndChange();
            disk.failAt(n, error);
            save();
            const std::string onDisk = disk.contents(File);
            EXPECT_TRUE(onDisk == Old || onDisk == New) << "call " << n << ": " << onDisk;
            EXPECT_EQ(GetText(SDIEdit), New) << "call " << n;
            if (!GetModify(SDIEdit)) {
                EXPECT_EQ(onDisk, New) << "call " << n;
                if (disk.calls() < n) break;
                continue;
            }
            failures++;
            ASSERT_EQ(asked.size(), 1u) << "call " << n;
            EXPECT_EQ(asked[0].title, "Error");
            EXPECT_EQ(GetCaption(SDIEdit), std::string(File) + " *");
        }
        EXPECT_GT(failures, 0);
        disk.stopFailing();
    }
}

TEST_F(Save, OnAFullDiskCanBeDoneAgainWhenThereIsRoom) {
    openAndChange();
    disk.setFreeBytes(4);
    save();
    EXPECT_TRUE(GetModify(SDIEdit));
    EXPECT_EQ(disk.contents(File), Old);
    EXPECT_NE(lastText().find("Disk drive full up (error 654)."), std::string::npos) << lastText();
    disk.setFreeBytes(1000000);
    save();
    EXPECT_FALSE(GetModify(SDIEdit));
    EXPECT_EQ(disk.contents(File), New);
}

TEST_F(Save, KilledAtAnyCallLeavesTheOldOrTheNewText) {
    int deaths = 0;
    for (int n = 1; n < 60; n++) {
        openAndChange();
        disk.dieAt(n);
        bool died = false;
        try {
            save();
        } catch (const os::ProcessDeath&) {
            died = true;
        }
        disk.revive();
        ClearError();
        const std::string onDisk = disk.contents(File);
        EXPECT_TRUE(onDisk == Old || onDisk == New) << "call " << n << ": " << onDisk;
        if (!died) break;
        deaths++;
    }
    EXPECT_GT(deaths, 2);
}

TEST_F(Save, IsNotOfferedForAFileThatCouldNotBeRead) {
    disk.put(File, Old);
    disk.failAlways(os::FileCall::OpenRead, os::FileError::Denied);
    EDITWNDOPEN(SDIEdit, File, false, 0);
    Stamp(0, ReportErrors, DefaultErrorHandler);
    disk.failAlways(os::FileCall::OpenRead, os::FileError::None);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_TRUE(asked[0].text.starts_with("Cannot read from file (error 651).\n")) << asked[0].text;
    EXPECT_EQ(GetCaption(SDIEdit), "");
    EXPECT_FALSE(GetVisible(SDIEdit));
    EXPECT_EQ(disk.contents(File), Old);
}

TEST_F(Save, IsNotOfferedForAFolder) {
    disk.putFolder("/home/user/folder.txt");
    EDITWNDOPEN(SDIEdit, "/home/user/folder.txt", false, 0);
    EXPECT_EQ(GetCaption(SDIEdit), "");
    EXPECT_TRUE(asked.empty());
}

using Rescue = IdeTest;

TEST_F(Rescue, KeepsAChangedTextAndOffersItAsAChange) {
    loadWindows();
    const std::string file = write("a.txt", "one\n");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    type(std::string("two\0three", 9));
    RESCUETEXT();
    SetModify(SDIEdit, false);
    EDITWNDCLOSE(SDIEdit, true);
    answers = {"&Restore"};
    EXPECT_TRUE(OFFERRESCUEDTEXT());
    EXPECT_EQ(asked.back().title, "Rescued Text");
    EXPECT_EQ(GetCaption(SDIEdit), file + " *");
    EXPECT_EQ(GetText(SDIEdit), std::string("one\ntwo\0three", 13));
    EXPECT_EQ(read(file), "one\n");
}

TEST_F(Rescue, OffersAgainWhatWasNotSaved) {
    loadWindows();
    const std::string file = write("a.txt", "one\n");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    type("two");
    RESCUETEXT();
    answers = {"&Later"};
    EXPECT_FALSE(OFFERRESCUEDTEXT());
    answers = {"&Yes", "&Restore"};
    asked.clear();
    SetModify(SDIEdit, false);
    answers = {"&Restore"};
    EXPECT_TRUE(OFFERRESCUEDTEXT());
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(read(file), "one\ntwo");
    asked.clear();
    EXPECT_FALSE(OFFERRESCUEDTEXT());
    EXPECT_TRUE(asked.empty());
}

TEST_F(Rescue, KeepsNothingWithoutAChange) {
    loadWindows();
    EDITWNDOPEN(SDIEdit, write("a.txt", "one\n"), false, 0);
    RESCUETEXT();
    EXPECT_FALSE(OFFERRESCUEDTEXT());
    EXPECT_TRUE(asked.empty());
}

TEST_F(Rescue, AsksNoSecondTimeAboutATextThatWasDeleted) {
    loadWindows();
    EDITWNDOPEN(SDIEdit, write("a.txt", "one\n"), false, 0);
    type("two");
    RESCUETEXT();
    SetModify(SDIEdit, false);
    EDITWNDCLOSE(SDIEdit, true);
    answers = {"&Delete", "&Open"};
    EXPECT_FALSE(OFFERRESCUEDTEXT());
    EXPECT_EQ(asked.size(), 1u) << lastText();
}

TEST_F(Rescue, AsksNoSecondTimeAboutACopyThatWasDeleted) {
    loadWindows();
    os::makeFolders(os::rescueFolder());
    const std::string copy = os::rescueFolder() + "b.txt.123-1";
    ASSERT_TRUE(os::saveFile(copy, "whole text\n").ok());
    ASSERT_TRUE(os::saveFile(os::rescueNameFile(copy), dir + "b.txt").ok());
    answers = {"&Delete", "&Open"};
    EXPECT_FALSE(OFFERRESCUEDTEXT());
    EXPECT_EQ(asked.size(), 1u) << lastText();
    EXPECT_EQ(os::sizeOf(copy), -1);
    EXPECT_EQ(os::sizeOf(os::rescueNameFile(copy)), -1);
}

TEST_F(Rescue, HasShownNothingWhenACopyCannotBeOpened) {
    loadWindows();
    os::makeFolders(os::rescueFolder());
    ASSERT_TRUE(os::saveFile(os::rescueFolder() + "a.txt.123-1", std::string(4000001, 'a')).ok());
    ASSERT_TRUE(os::saveFile(os::rescueFolder() + "b.txt.123-2", "small\n").ok());
    answers = {"&Open", "", "&Open"};
    EXPECT_TRUE(OFFERRESCUEDTEXT()) << "the next one is offered";
    EXPECT_EQ(GetText(SDIEdit), "small\n");
    EXPECT_TRUE(GetVisible(SDIEdit));
    EDITWNDCLOSE(SDIEdit, true);
    std::filesystem::remove(os::rescueFolder() + "b.txt.123-2");
    answers = {"&Open"};
    EXPECT_FALSE(OFFERRESCUEDTEXT()) << "so that the opening action is chosen";
}

TEST_F(Rescue, OffersTheCopyOfAnInterruptedSave) {
    loadWindows();
    os::makeFolders(os::rescueFolder());
    ASSERT_TRUE(os::saveFile(os::rescueFolder() + "b.txt.123-1", "whole text\n").ok());
    answers = {"&Open"};
    EXPECT_TRUE(OFFERRESCUEDTEXT());
    EXPECT_EQ(GetText(SDIEdit), "whole text\n");
}

}  // namespace
}  // namespace tarn
