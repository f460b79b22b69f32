// SPDX-License-Identifier: GPL-3.0-or-later
//
// The start, the main window's commands and the stop, on the object model.
#include "ide/menus/filemenu.h"
#include "ide/shell/undomenu.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class MainWindow : public IdeTest {
protected:
    void setting(const char* section, const char* key, const std::string& value) {
        PROFILESTRPUT(ini(), section, key, value);
    }
    std::string setting(const char* section, const char* key) { return PROFILESTRGET(ini(), section, key); }
};

TEST_F(MainWindow, StartsWithNothingOpen) {
    start();
    EXPECT_TRUE(GetVisible(Main));
    EXPECT_TRUE(IsLoaded(SDIEdit));
    EXPECT_FALSE(GetVisible(SDIEdit));
    EXPECT_EQ(GetCaption(Main), GETMAINCAPTIONSTR());
    EXPECT_TRUE(asked.empty()) << lastText();
}

TEST_F(MainWindow, HonoursAPositionThatCanBeReached) {
    const struct {
        const char* text;
        int x;
        bool honoured;
    } rows[] = {{"-20 -20 1000 100", -20, true}, {"-21 0 1000 100", 0, false},  {"0 -21 1000 100", 0, false},
                {"50 50 0 100", 0, false},       {"50 50 1000 0", 0, false},    {"50 50 1000", 0, false},
                {"1900 0 1000 100", 1900, true}, {"1901 0 1000 100", 0, false}, {"a b c d", 0, false}};
    for (const auto& row : rows) {
        setting("Main", "_Position", row.text);
        start();
        EXPECT_EQ(GetPosition(Main, WINDOW_UNIT).x, row.x) << row.text;
        if (!row.honoured) {
            EXPECT_GE(GetPosition(Main, WINDOW_UNIT).w, ScreenSize().w - 16) << row.text;
        }
        platform::DestroyAllWindows();
    }
}

TEST_F(MainWindow, ShowsTheToolbarAsSet) {
    setting("Main", "VIEW_STD_TOOLBAR", "1");
    start();
    EXPECT_TRUE(GetChecked(MAINCONTROL("view_std_toolbar")));
    const int with = GetPosition(Main, CLIENT_UNIT).h;
    pick("view_std_toolbar");
    EXPECT_FALSE(GetChecked(MAINCONTROL("view_std_toolbar")));
    EXPECT_EQ(setting("Main", "VIEW_STD_TOOLBAR"), "0");
    EXPECT_LT(GetPosition(Main, CLIENT_UNIT).h, with);
}

TEST_F(MainWindow, FirstOpeningActionWins) {
    setting("GenOptionsDlg", "rbStartup1", "1");
    setting("GenOptionsDlg", "rbStartup3", "1");
    start();
    EXPECT_EQ(GetCaption(SDIEdit), "<untitled>");
    EXPECT_FALSE(IsLoaded(StartupDlg));
}

TEST_F(MainWindow, FileOfTheCommandLineBeatsTheOpeningAction) {
    setting("GenOptionsDlg", "rbStartup1", "1");
    const std::string file = write("a.txt", "one\n");
    start({file});
    EXPECT_EQ(GetCaption(SDIEdit), file);
    EXPECT_EQ(setting("MRU", "1"), file);
}

TEST_F(MainWindow, GoesToTheLastFolderIfItIsStillThere) {
    setting("GenOptionsDlg", "SavePath", "1");
    setting("Main", "LastPath", "\"" + dir + "gone\"");
    start();
    EXPECT_TRUE(asked.empty()) << lastText();
    platform::DestroyAllWindows();
    std::filesystem::create_directory(dir + "there");
    setting("Main", "LastPath", "\"" + dir + "there\"");
    start();
    EXPECT_EQ(GETCURDIR(), dir + "there");
}

TEST_F(MainWindow, EnablesTheRunCommandsForAClassOnly) {
    start({write("a.txt", "x")});
    for (const char* item : {"run_quickbuild", "run_rebuild", "run_compile", "run_start", "run_debug"})
        EXPECT_FALSE(isEnabled(item));
    EXPECT_TRUE(isEnabled("window_code"));
    EXPECT_FALSE(isEnabled("window_error"));
    DO_OPEN(write("a.cls", "Tarnwick Class a\nEnd class\n"), MAINCONTROL("programlabel"));
    UPDATEMAINWINDOW();
    for (const char* item : {"run_quickbuild", "run_rebuild", "run_compile", "run_start", "run_debug"})
        EXPECT_TRUE(isEnabled(item));
}

TEST_F(MainWindow, DisablesWhatHasNoCommandYet) {
    start();
    for (const char* item : {"program_add_database"})
        EXPECT_FALSE(isEnabled(item)) << item;
}

TEST_F(MainWindow, ShowsOneDisabledItemWithoutBackups) {
    start();
    const Object undo = MAINCONTROL("edit_undo_01");
    EXPECT_EQ(ControlLbound(undo), 1);
    EXPECT_EQ(ControlUbound(undo), 1);
    EXPECT_EQ(GetCaption(undo), " ------ No backups ------ ");
    EXPECT_FALSE(GetEnabled(undo));
    POPULATEMENUITEMS(undo, "*  ------ 2026-01-02 (Friday) ------ \n/a (x).bak\n/b (x).bak\n");
    EXPECT_EQ(ControlUbound(undo), 3);
    EXPECT_FALSE(GetEnabled(undo));
    EXPECT_EQ(GetCaption(ControlElement(undo, 2)), "/a (x).bak");
    EXPECT_TRUE(GetEnabled(ControlElement(undo, 3)));
    POPULATEMENUITEMS(undo, "");
    EXPECT_EQ(ControlUbound(undo), 1);
    std::string many;
    for (int i = 1; i <= 60; i++) many += STR(i) + "\n";
    POPULATEMENUITEMS(undo, many);
    EXPECT_EQ(ControlUbound(undo), 50);
    EXPECT_EQ(GetCaption(ControlElement(undo, 50)), "50");
}

TEST_F(MainWindow, ListsRecentFilesAndDropsOneThatHasGone) {
    const std::string a = write("a.txt", "a"), b = write("b.txt", "b");
    start({a});
    DO_OPEN(b, MAINCONTROL("programlabel"));
    UPDATEMAINWINDOW();
    EXPECT_EQ(GetCaption(MAINCONTROL("file_mru_1")), "&1 " + b);
    EXPECT_EQ(GetCaption(MAINCONTROL("file_mru_2")), "&2 " + a);
    EXPECT_EQ(GetCaption(MAINCONTROL("file_mru_3")), "&3 ");
    std::filesystem::remove(a);
    pick("file_mru_2");
    EXPECT_EQ(lastText(), "File '" + a + "' was not found.");
    EXPECT_EQ(PROFILESTRGET(ini(), "MRU", ""), b + "\n");
    EXPECT_EQ(GetCaption(MAINCONTROL("file_mru_2")), "&2 ");
}

TEST_F(MainWindow, OpenAsksAndACommandWithAPathDoesNot) {
    start();
    const std::string a = write("a.txt", "a"), b = write("b.txt", "b");
    answers = {a};
    pick("file_open");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "File-Open");
    EXPECT_EQ(GetCaption(SDIEdit), a);
    Command(GetHandle(Main), MAINCONTROL("file_open").number(), b);
    EXPECT_EQ(asked.size(), 1u);
    EXPECT_EQ(GetCaption(SDIEdit), b);
}

TEST_F(MainWindow, CancelAtTheOpenDialogChangesNothing) {
    start();
    pick("file_open");
    EXPECT_EQ(GetCaption(SDIEdit), "");
    EXPECT_EQ(PROFILESTRGET(ini(), "MRU", ""), "");
}

TEST_F(MainWindow, CancelAtASaveQuestionKeepsTheRecentFiles) {
    const std::string a = write("a.txt", "a"), b = write("b.txt", "b");
    start({a});
    type("x");
    answers = {"&Cancel"};
    DO_OPEN(b, MAINCONTROL("programlabel"));
    EXPECT_EQ(GetCaption(SDIEdit), a + " *");
    EXPECT_EQ(setting("MRU", "1"), a);
}

TEST_F(MainWindow, CloseOfAnotherWindowThanTheCodeWindowOnlyBeeps) {
    start({write("a.txt", "a")});
    SetCaption(MAINCONTROL("lbllastactive"), "ViewDlg");
    DO_CLOSE("ViewDlg");
    EXPECT_TRUE(GetVisible(SDIEdit));
    DO_CLOSE("sdiedit");
    EXPECT_FALSE(GetVisible(SDIEdit));
}

TEST_F(MainWindow, ClosingAsksAndACancelVetoes) {
    const std::string a = write("a.txt", "a");
    start({a});
    type("x");
    answers = {"&Cancel"};
    EXPECT_TRUE(MAIN(Main, CLOSE_EVENT, Main, 0));
    EXPECT_EQ(GetCaption(SDIEdit), a + " *");
    answers = {"&No"};
    EXPECT_FALSE(MAIN(Main, CLOSE_EVENT, Main, 0));
    EXPECT_EQ(read(a), "a");
    EXPECT_EQ(setting("Main", "LastPath"), GETCURDIR());
    const Rect place = GetPosition(Main, WINDOW_UNIT);
    EXPECT_EQ(setting("Main", "_Position"),
              STR(place.x) + " " + STR(place.y) + " " + STR(place.w) + " " + STR(place.h));
}

TEST_F(MainWindow, ExitAsksOnceWithNoAsTheDefault) {
    start();
    pick("file_exit");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].text, "Exit now? Any unsaved changes will be lost.");
    EXPECT_EQ(asked[0].defaultButton, 2);
    EXPECT_TRUE(IsLoaded(Main));
}

TEST_F(MainWindow, IsBroughtUpToDateOnlyWhileItIsLoaded) {
    UPDATEMAINWINDOW();
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(MainWindow, ReadOnlySettingsAreToldAndTheStartGoesOn) {
    std::filesystem::permissions(ini(), std::filesystem::perms(0444));
    start();
    EXPECT_TRUE(GetVisible(Main));
    std::filesystem::permissions(ini(), std::filesystem::perms(0644));
}

}  // namespace
}  // namespace tarn
