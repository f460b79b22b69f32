// SPDX-License-Identifier: GPL-3.0-or-later
//
// The menu of the restore points and the steps of the text.
#include "ide/shell/undomenu.h"

#include "ide/editor/backup.h"
#include "ide/menus/editmenu.h"
#include "ide/menus/filemenu.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

TEST(DateHeadings, StandAboveTheFilesOfADay) {
    const std::string a = "/d/a.txt (2015-03-01 10-15-00).bak", b = "/d/a.txt (2015-03-01 09-00-00).bak",
                      c = "/d/a.txt (2014-12-24 18-30-59).bak";
    EXPECT_EQ(APPENDDATEHEADINGS(a + "\n" + b + "\n" + c + "\n"),
              "* ------ 2015-03-01 (Sunday) ------ \n" + a + "\n" + b +
                  "\n* ------ 2014-12-24 (Wednesday) ------ \n" + c + "\n");
    EXPECT_EQ(APPENDDATEHEADINGS(""), "");
    EXPECT_EQ(APPENDDATEHEADINGS("/d/a.txt.bak\n/d/a.txt ().bak\n"), "") << "no date";
    EXPECT_EQ(APPENDDATEHEADINGS(
                  "/d (x)/a.txt (2015-03-01 10-15-00).bak\n/d (x)/a.txt (2015-02-01 10-15-00).bak\n"),
              "/d (x)/a.txt (2015-03-01 10-15-00).bak\n/d (x)/a.txt (2015-02-01 10-15-00).bak\n")
        << "a folder that hides it";
    const std::string other = "/d/a.txt (hello).bak";
    EXPECT_EQ(APPENDDATEHEADINGS(a + "\n" + other + "\n" + b + "\n"),
              "* ------ 2015-03-01 (Sunday) ------ \n" + a + "\n" + other +
                  "\n* ------ 2015-03-01 (Sunday) ------ \n" + b + "\n")
        << "what is no date is no heading, and ends the day above it";
    EXPECT_EQ(APPENDDATEHEADINGS("/d/a (2015-02).bak\n"),
              "* ------ 2015-02-01 (Sunday) ------ \n/d/a (2015-02).bak\n")
        << "a date in part is completed";
    EXPECT_EQ(APPENDDATEHEADINGS("/d/\xff (2015-02-01 00-00-00).bak"),
              "* ------ 2015-02-01 (Sunday) ------ \n/d/\xff (2015-02-01 00-00-00).bak\n");
}

class UndoMenu : public IdeTest {
protected:
    static Object item(int i) { return ControlElement(MAINCONTROL("edit_undo_01"), i); }
    static int items() { return ControlUbound(MAINCONTROL("edit_undo_01")); }
    void backup(const std::string& file, const std::string& stamp) {
        std::filesystem::path path(file + " (" + stamp + ").bak");
        EXPECT_TRUE(os::saveFile(path.string(), stamp, os::Durability::Unsynced).ok());
    }
};

TEST_F(UndoMenu, ShowsTheRestorePointsOfTheFileInTheWindow) {
    const std::string file = write("a.txt", "now\n");
    backup(file, "2015-03-01 10-15-00");
    backup(file, "2014-12-24 18-30-59");
    start({file});
    ASSERT_EQ(items(), 4);
    EXPECT_EQ(GetCaption(item(1)), "------ 2015-03-01 (Sunday) ------");
    EXPECT_FALSE(GetEnabled(item(1)));
    EXPECT_EQ(GetCaption(item(2)), file + " (2015-03-01 10-15-00).bak");
    EXPECT_TRUE(GetEnabled(item(2)));
    EXPECT_EQ(GetCaption(item(3)), "------ 2014-12-24 (Wednesday) ------");
    EXPECT_EQ(GetCaption(item(4)), file + " (2014-12-24 18-30-59).bak");
    backup(file, "2015-03-02 00-00-00");
    UPDATEMAINWINDOW();
    EXPECT_EQ(items(), 6);
    EXPECT_EQ(GetCaption(item(2)), file + " (2015-03-02 00-00-00).bak");
    EDITWNDCLOSE(SDIEdit, true);
    UPDATEMAINWINDOW();
    ASSERT_EQ(items(), 1);
    EXPECT_EQ(GetCaption(item(1)), " ------ No backups ------ ");
    EXPECT_FALSE(GetEnabled(item(1)));
}

TEST_F(UndoMenu, ShowsFiftyLinesAtMost) {
    const std::string file = write("a.txt", "now\n");
    for (int i = 10; i < 80; i++)
        backup(file, "2015-03-01 10-" + STR(i % 60 / 10) + STR(i % 10) + "-" + STR(i));
    start({file});
    EXPECT_EQ(items(), 50);
    EXPECT_FALSE(GetEnabled(item(1)));
    for (int i = 2; i <= 50; i++) EXPECT_TRUE(GetEnabled(item(i))) << i;
    EXPECT_TRUE(isEnabled("edit_cut")) << "the items behind are as they were";
    EXPECT_EQ(GetCaption(MAINCONTROL("edit_cut")), "Cu&t");
}

TEST_F(UndoMenu, ItemIsTheFileThatIsRestored) {
    const std::string file = write("a.txt", "now\n");
    backup(file, "2014-12-24 18-30-59");
    start({file});
    asked.clear();
    platform::view().setIdle([&] {
        if (!ISSHOWN(UndoDlg)) return;
        EXPECT_EQ(GetCaption(UndoDlg), "Edit-Undo (restore from backup)");
        platform::userCommand(*platform::findControl(FINDCONTROL(UndoDlg, "pushbutton1")));
    });
    platform::userCommand(*platform::findControl(item(2)));
    platform::view().setIdle(nullptr);
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(read(file), "2014-12-24 18-30-59");
    EXPECT_EQ(GetText(SDIEdit), "2014-12-24 18-30-59");
    EXPECT_EQ(STRLINES(EDITWNDGETBACKUPLIST(file)), 2);
    EXPECT_EQ(items(), 4) << "what it was is a restore point";
}

TEST_F(UndoMenu, ShowsThoseBehindAFolderWithParenthesesWithoutTheirDates) {
    std::filesystem::create_directory(dir + "x (1)");
    const std::string file = write("x (1)/a.txt", "now\n");
    backup(file, "2014-12-24 18-30-59");
    start({file});
    ASSERT_EQ(items(), 2);
    EXPECT_EQ(GetCaption(item(1)), "------ 1000-01-01 (Wednesday) ------");
    EXPECT_EQ(GetCaption(item(2)), file + " (2014-12-24 18-30-59).bak");
    EXPECT_TRUE(GetEnabled(item(2)));
}

TEST_F(UndoMenu, IsMadeAnewOnlyWhenItWouldDiffer) {
    const std::string file = write("a.txt", "now\n");
    for (int i = 10; i < 60; i++) backup(file, "2015-03-01 10-15-" + STR(i));
    start({file});
    const int second = GetHandle(item(2));
    UPDATEMAINWINDOW();
    EXPECT_EQ(GetHandle(item(2)), second);
}

// ---- the steps of the text ----

TEST_F(UndoMenu, StepsOfTheTextAreEnabledWhenThereAreAny) {
    start({write("a.txt", "one\n")});
    EXPECT_FALSE(isEnabled("edit_undo_typing"));
    EXPECT_FALSE(isEnabled("edit_redo_typing"));
    type("two\n");
    EXPECT_TRUE(isEnabled("edit_undo_typing"));
    EXPECT_FALSE(isEnabled("edit_redo_typing"));
    pick("edit_undo_typing");
    EXPECT_EQ(GetText(SDIEdit), "one\n");
    EXPECT_FALSE(GetModify(SDIEdit));
    EXPECT_EQ(GetCaption(SDIEdit), dir + "a.txt");
    EXPECT_FALSE(isEnabled("edit_undo_typing"));
    EXPECT_TRUE(isEnabled("edit_redo_typing"));
    pick("edit_redo_typing");
    EXPECT_EQ(GetText(SDIEdit), "one\ntwo\n");
    EXPECT_EQ(GetCaption(SDIEdit), dir + "a.txt *");
    EXPECT_FALSE(isEnabled("edit_redo_typing"));
}

TEST_F(UndoMenu, StepsEndWithTheFile) {
    const std::string a = write("a.txt", "one\n"), b = write("b.txt", "two\n");
    start({a});
    type("x");
    EDITWNDSAVE(SDIEdit, false);
    DO_OPEN(b, MAINCONTROL("programlabel"));
    UPDATEMAINWINDOW();
    EXPECT_FALSE(isEnabled("edit_undo_typing"));
    DO_UNDO_TYPING();
    EXPECT_EQ(GetText(SDIEdit), "two\n");
}

TEST_F(UndoMenu, StepsAreThoseOfTheWindowWhereTheUserWorks) {
    start({write("a.txt", "one\n")});
    type("x");
    EXPECT_TRUE(CANUNDOTYPING());
    platform::userActivate(*platform::findWindow(Main));
    EXPECT_TRUE(CANUNDOTYPING());
    SetCaption(MAINCONTROL("lbllastactive"), "");
    EXPECT_TRUE(CANUNDOTYPING()) << "behind the list of windows none is noted";
    SetCaption(MAINCONTROL("lbllastactive"), "ViewDlg");
    UPDATEUNDOTYPINGITEMS();
    EXPECT_FALSE(isEnabled("edit_undo_typing"));
    DO_UNDO_TYPING();
    EXPECT_EQ(GetText(SDIEdit), "one\nx");
}

TEST_F(UndoMenu, ClassNameChangedAtASaveIsOneStepAndKeepsTheCaret) {
    const std::string text = "// head\nTarnwick Class Abc\nEnd class\n";
    start({write("other.cls", text)});
    type("// x\n");
    const int caret = static_cast<int>(text.find("End")) + 1;
    SetSelection(SDIEdit, caret, 3);
    answers = {"&Yes"};
    EDITWNDSAVE(SDIEdit, false);
    EXPECT_EQ(read(dir + "other.cls"), "// head\nTarnwick Class other\nEnd class\n// x\n");
    EXPECT_EQ(GetSelection(SDIEdit).start, caret + 2);
    EXPECT_EQ(GetSelection(SDIEdit).length, 3);
    EXPECT_FALSE(GetModify(SDIEdit));
    UPDATEMAINWINDOW();
    pick("edit_undo_typing");
    EXPECT_EQ(GetText(SDIEdit), text + "// x\n");
    EXPECT_TRUE(GetModify(SDIEdit));
    pick("edit_undo_typing");
    EXPECT_EQ(GetText(SDIEdit), text);
}

TEST_F(UndoMenu, SaveAsEntersTheRecentFiles) {
    const std::string a = write("a.txt", "one\n");
    start({a});
    answers = {dir + "b.txt"};
    pick("file_save_as");
    EXPECT_EQ(read(dir + "b.txt"), "one\n");
    EXPECT_EQ(GetCaption(MAINCONTROL("file_mru_1")), "&1 " + dir + "b.txt");
    EXPECT_EQ(GetCaption(MAINCONTROL("file_mru_2")), "&2 " + a);
    answers = {};
    pick("file_save_as");
    EXPECT_EQ(PROFILESTRGET(ini(), "MRU", "1"), dir + "b.txt");
}

TEST_F(UndoMenu, ReadOnlyFileSaysSoInTheStatusBarUntilItIsSavedElsewhere) {
    const std::string a = write("a.txt", "one\n");
    std::filesystem::permissions(a, std::filesystem::perms(0444));
    start({a});
    EXPECT_EQ(GetStatus(SDIEdit), "Read-only file");
    answers = {dir + "b.txt"};
    pick("file_save_as");
    EXPECT_EQ(GetStatus(SDIEdit), "");
    EDITWNDOPEN(SDIEdit, a, false, 0);
    EXPECT_EQ(GetStatus(SDIEdit), "Read-only file");
    EDITWNDCLOSE(SDIEdit, true);
    EXPECT_EQ(GetStatus(SDIEdit), "");
}

TEST_F(UndoMenu, TextMayNotGrowBeyondTheLargestFile) {
    start();
    EXPECT_EQ(GetMaxLength(SDIEdit), 4'000'000);
}

TEST_F(UndoMenu, CommandsAskForRoomAndARefusalIsShownUntilTheNextChange) {
    start({write("a.txt", std::string(3'999'990, 'a'))});
    EXPECT_TRUE(EDITWNDHASROOM(SDIEdit, 10));
    EXPECT_TRUE(EDITWNDHASROOM(SDIEdit, -5));
    EXPECT_EQ(GetStatus(SDIEdit, StatusKind::Passes), "");
    EXPECT_FALSE(EDITWNDHASROOM(SDIEdit, 11));
    EXPECT_FALSE(EDITWNDHASROOM(SDIEdit, 4'000'000'000));
    EXPECT_EQ(GetStatus(SDIEdit, StatusKind::Passes), "No room: a text has at most 4000000 bytes");
    EXPECT_EQ(GetStatus(SDIEdit), "") << "what stays is another part";
    type("x");
    EXPECT_EQ(GetStatus(SDIEdit, StatusKind::Passes), "");
}

TEST_F(UndoMenu, FileDialogsOfferAllFiles) {
    start();
    pick("file_open");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_TRUE(asked[0].filter.ends_with("All files (*)|*|")) << asked[0].filter;
    EDITWNDNEW(SDIEdit, "x");
    pick("file_save_as");
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_TRUE(asked[1].filter.ends_with("All files (*)|*|")) << asked[1].filter;
    pick("tools_explore_db");
    ASSERT_EQ(asked.size(), 3u);
    EXPECT_TRUE(asked[2].filter.ends_with("All files (*)|*|")) << asked[2].filter;
}

}  // namespace
}  // namespace tarn
