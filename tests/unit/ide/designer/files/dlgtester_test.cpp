// SPDX-License-Identifier: GPL-3.0-or-later
//
// The test window, the tests of resource files, and the choice of a dialog, on the object model alone.
#include "ide/designer/files/dlgtest.h"

#include "ide/designer/files/openresource.h"
#include "ide/designer/files/rcfiletest.h"
#include "ide/menus/toolmenu.h"
#include "ide/program/projedit.h"
#include "ide/shell/commands.h"
#include "kernel/windows/resources.h"
#include "support/doings_fixture.h"

#include <filesystem>

namespace tarn {
namespace {

const Object OpenResourceDlg("OpenResourceDlg");

class TestWindow : public DoingsTest {
protected:
    std::string rc;

    void SetUp() override {
        DoingsTest::SetUp();
        std::filesystem::create_directory(dir + "rc");
        rc = dir + "rc/a.rc";
        loadWindows();
    }
    void TearDown() override {
        for (const Object& window : {TestDlg, RcFileTestDlg, OpenResourceDlg}) EXPECT_FALSE(IsLoaded(window));
        DoingsTest::TearDown();
    }
    void make(const std::string& text) { write("rc/a.rc", text); }
    bool scratchIsThere() {
        for (const auto& entry : std::filesystem::directory_iterator(dir + "rc"))
            if (entry.path().extension() == ".tmp") return true;
        return false;
    }
    static Object in(const Object& window, std::string_view name) { return FINDCONTROL(window, name); }
    static void press(const Object& control) { platform::userCommand(*platform::findControl(control)); }
    static bool key(const Object& window, int code) {
        return platform::userKey(*platform::findWindow(window), nullptr, code);
    }
    static void escape() { key(TestDlg, KEY_ESCAPE); }
    // Shows D of the file, does one thing, and closes the window.
    void show(const std::function<void()>& doing) {
        doings = {[this, doing] {
                      EXPECT_TRUE(IsModal(TestDlg));
                      EXPECT_FALSE(scratchIsThere());
                      doing();
                  },
                  escape};
        EXPECT_EQ(WINDOWTESTERDIALOG("Title", rc, "D"), "");
    }
};

// ---- the test window ----

TEST_F(TestWindow, ShowsTheDialogAsItIs) {
    make(
        "D DIALOG\n  CAPTION=\"Mine\"\n  MENU=M\n  FONTNAME=\"Sans\"\n  FONTSIZE=14\n  OWNER=1\n"
        "  Edit edit1 5\n    TEXT=\"a\\nb\"\nEND\nM MENU\n  Menuitem\n    POSITION=1\n    CAPTION=\"&File\"\n"
        "  Menuitem open 6\n    POSITION=2\n    CAPTION=\"&Open\"\nEND\n");
    const std::string before = read(rc);
    show([] {
        EXPECT_EQ(GetCaption(TestDlg), "Mine");
        EXPECT_EQ(GetFontName(TestDlg), "Sans");
        EXPECT_EQ(GetFontSize(TestDlg), 14);
        EXPECT_EQ(GetText(in(TestDlg, "edit1")), "a\nb");
        EXPECT_EQ(GetCaption(in(TestDlg, "open")), "&Open");
    });
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(read(rc), before);
}

TEST_F(TestWindow, EscapeAndReturnCloseArrowsPassAndAllElseBeeps) {
    make("D DIALOG\n  Pushbutton idok 1\n    DEFAULT=1\nEND\n");
    for (const int closing : {KEY_ESCAPE, KEY_RETURN}) {
        doings = {[&] {
            for (const int arrow : {KEY_LEFT, KEY_UP, KEY_RIGHT, KEY_DOWN}) {
                const int beeps = platform::headlessBeeps();
                EXPECT_FALSE(key(TestDlg, arrow)) << arrow;
                EXPECT_EQ(platform::headlessBeeps(), beeps);
            }
            for (const int other : {static_cast<int>('A'), static_cast<int>(KEY_F1), 46, 113, 9}) {
                const int beeps = platform::headlessBeeps();
                EXPECT_TRUE(key(TestDlg, other)) << other;
                EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
            }
            EXPECT_TRUE(IsLoaded(TestDlg));
            key(TestDlg, closing);
            EXPECT_FALSE(IsLoaded(TestDlg));
        }};
        WINDOWTESTERDIALOG("Title", rc, "D");
    }
}

TEST_F(TestWindow, ItsButtonsAndItsMenuSayThatItIsATest) {
    make("D DIALOG\n  MENU=M\n  Pushbutton a 1\n  Bitmapbutton b 12\n  Checkbox c 13\n  Radiobutton d "
         "14\nEND\n"
         "M MENU\n  Menuitem e 15\n    POSITION=1\n    CAPTION=\"&E\"\nEND\n");
    const struct {
        const char* control;
        bool tells;
    } cases[] = {{"a", true}, {"b", true}, {"c", false}, {"d", false}, {"e", true}};
    for (const auto& one : cases) {
        asked.clear();
        show([&] { press(in(TestDlg, one.control)); });
        EXPECT_EQ(lastText(), one.tells ? "This is a test window. Press Escape to close it." : "")
            << one.control;
    }
}

TEST_F(TestWindow, TheFirstRadioButtonOfAGroupWithoutAChoiceIsSet) {
    make("D DIALOG\n  Radiobutton a1 11\n    ARRAY=a\n  Radiobutton a2 12\n    ARRAY=a\n  Radiobutton b1 "
         "13\n    ARRAY=b\n"
         "  Radiobutton b2 14\n    ARRAY=b\n    VALUE=1\n  Label x 15\n  Radiobutton c1 16\n  Radiobutton c2 "
         "17\n  Label y 18\n"
         "  Radiobutton d1 19\n  Radiobutton d2 20\n    VALUE=1\n  Radiobutton a3 21\n    ARRAY=a\n  "
         "Radiobutton e1 22\nEND\n");
    show([] {
        std::string set;
        for (const char* one : {"a1", "a2", "a3", "b1", "b2", "c1", "c2", "d1", "d2", "e1"})
            if (GetValue(in(TestDlg, one)) != 0) set += std::string(one) + " ";
        EXPECT_EQ(set, "a1 b2 c1 d2 e1 ");
    });
}

TEST_F(TestWindow, PicturesAreThoseOfTheProgram) {
    write("rc/one.bmp", "BM");
    write("rc/two.bmp", "BM");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", "");
    make("logo BITMAP \"one.bmp\"\nD DIALOG\n  Image a 1\n    PICTURE=\"LOGO\"\n  Image b 2\n    "
         "PICTURE=\"two.bmp\"\n"
         "  Image c 3\n    PICTURE=\"missing.bmp\"\n  Image d 4\n    PICTURE=\"" +
         rc + "\"\nEND\n");
    show([this] {
        EXPECT_EQ(GetPicture(in(TestDlg, "a")), dir + "rc/one.bmp");
        EXPECT_EQ(GetPicture(in(TestDlg, "b")), dir + "rc/two.bmp");
        EXPECT_EQ(GetPicture(in(TestDlg, "c")), "missing.bmp");
        EXPECT_EQ(GetPicture(in(TestDlg, "d")), rc);
    });
}

TEST_F(TestWindow, AnErrorIsToldAndNoFileStays) {
    make("D DIALOG\n  MENU=M\nEND\nE DIALOG\n  Label a 5\n    ODD=1\nEND\n");
    EXPECT_EQ(WINDOWTESTERDIALOG("Title", rc, "D"), "");
    EXPECT_EQ(lastText(), "'M' was not found in '" + rc + "'.");
    EXPECT_EQ(asked.back().title, "Title");
    EXPECT_EQ(WINDOWTESTERDIALOG("Title", rc, "E"), "");
    EXPECT_EQ(asked.size(), 2U);
    EXPECT_FALSE(scratchIsThere());
}

TEST_F(TestWindow, ADialogWithTheNameOfTestsIsShownAndTheFileIsKeptOnDemand) {
    make("testdlg DIALOG\n  CAPTION=\"x\"\nEND\n");
    doings = {escape};
    const std::string kept = WINDOWTESTERDIALOG("Title", rc, "testdlg", true);
    EXPECT_EQ(kept, dir + "rc/~dlgtest1.tmp");
    EXPECT_TRUE(read(kept).starts_with("testdlg DIALOG"));
}

TEST_F(TestWindow, AWindowOffTheScreenComesBack) {
    make("D DIALOG\n  POSITION=5000 5000 100 80\nEND\n");
    show([] { EXPECT_LT(GetPosition(TestDlg, WINDOW_UNIT).x, ScreenSize().w); });
    EXPECT_TRUE(
        lastText().starts_with("The window is off the edge of the screen (Position = 5000 5000 100 80)\n"));
}

// It blocks all other windows, so nobody could close it.
TEST_F(TestWindow, AWindowThatCouldNotBeSeenIsBroughtIntoSight) {
    for (const char* position : {"", "  POSITION=0 0 0 0\n", "  POSITION=-5000 10 100 80\n",
                                 "  POSITION=10 -5000 100 80\n", "  POSITION=-90 -70 90 70\n"}) {
        make("D DIALOG\n" + std::string(position) + "END\n");
        show([position] {
            const Rect at = GetPosition(TestDlg, WINDOW_UNIT), client = GetPosition(TestDlg, CLIENT_UNIT);
            EXPECT_GE(at.x + at.w, ScreenSize().x + 40) << position;
            EXPECT_GE(at.y + at.h, ScreenSize().y + 40) << position;
            EXPECT_GE(client.w, 40) << position;
            EXPECT_GE(client.h, 40) << position;
        });
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(TestWindow, AWindowPartlyOffTheScreenStaysThere) {
    make("D DIALOG\n  POSITION=-20 -10 100 80\nEND\n");
    show([] {
        EXPECT_LT(GetPosition(TestDlg, WINDOW_UNIT).x, 0);
        EXPECT_LT(GetPosition(TestDlg, WINDOW_UNIT).y, 0);
    });
}

// ---- whole files ----

class FileTests : public TestWindow {
protected:
    std::string bad, none;
    void SetUp() override {
        TestWindow::SetUp();
        make("D DIALOG\nEND\nE DIALOG\n  Label x 3\nEND\n");
        bad = write("rc/bad.rc", "F DIALOG\nEND\nG DIALOG\n  Label 17\nEND\n");
        none = write("rc/no<ne.rc", "// nothing\n");
    }
    static Object list() { return in(RcFileTestDlg, "iconlist1"); }
    static std::string status() { return GetText(in(RcFileTestDlg, "lblstatus")); }
    static std::string row(int n) { return GetList(list(), n); }
    static std::string picture(int n) {
        return platform::findControl(list())->rows[static_cast<std::size_t>(n - 1)].picture;
    }
    void open(const std::vector<std::string>& files) {
        std::string text;
        for (const std::string& file : files) text += file + "\n";
        answers.push_back(text);
        press(in(RcFileTestDlg, "pushbutton1"));
    }
    static void run() { press(in(RcFileTestDlg, "pushbutton2")); }
    // Shows the window, does one thing, and leaves it by Escape.
    void with(const std::function<void()>& doing) {
        doings = {doing, [] { key(RcFileTestDlg, KEY_ESCAPE); }};
        DO_TEST_RCFILE();
    }
};

TEST_F(FileTests, MarkEachFileWithItsResult) {
    with([&] {
        EXPECT_TRUE(IsModal(RcFileTestDlg));
        open({rc, none});
        EXPECT_EQ(asked.back().filter, "Resource files (*.rc)|*.rc|");
        EXPECT_TRUE(asked.back().several);
        EXPECT_EQ(row(1) + "|" + picture(1), rc + "|rcuntested");
        run();
        EXPECT_EQ(row(1) + "|" + picture(1), rc + " <2 window(s)>|rcpassed");
        EXPECT_EQ(row(2) + "|" + picture(2), none + " <0 window(s)>|rcpassed");
        EXPECT_EQ(status(), "File: " + none + "\nNo Windows\nResult: OK\n");
        EXPECT_EQ(GetListIndex(list()), 2);
    });
}

TEST_F(FileTests, AWindowThatPassesIsTheStatus) {
    with([&] {
        open({rc});
        run();
        EXPECT_EQ(status(), "File: " + rc + "\nWindow: E\nResult: OK\n");
    });
}

TEST_F(FileTests, StopAtTheFirstThatFails) {
    with([&] {
        open({rc, bad, none});
        const int beeps = platform::headlessBeeps();
        run();
        EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
        EXPECT_EQ(status(), "File: " + bad +
                                "\nWindow: G\nResult: The following controls were defined using integer "
                                "values:\n17\n\n\n");
        EXPECT_EQ(picture(1) + picture(2) + picture(3), "rcpassedrcfailedrcuntested");
        EXPECT_EQ(row(2), bad + " <2 window(s)>");
        EXPECT_EQ(row(3), none);
    });
}

TEST_F(FileTests, ASecondRunCountsAnew) {
    with([&] {
        open({rc, none, bad});
        run();
        run();
        EXPECT_EQ(row(1), rc + " <2 window(s)>");
        EXPECT_EQ(row(2), none + " <0 window(s)>");
        write("rc/bad.rc", "F DIALOG\nEND\n");
        run();
        EXPECT_EQ(row(3) + "|" + picture(3), bad + " <1 window(s)>|rcpassed");
    });
}

TEST_F(FileTests, AFileThatCannotBeReadFails) {
    with([&] {
        open({write("rc/zero.rc", std::string_view("a\0b", 3)), rc});
        run();
        EXPECT_EQ(picture(1), "rcfailed");
        EXPECT_TRUE(status().starts_with("File: " + dir + "rc/zero.rc\nWindow: \nResult: ")) << status();
        open({rc});
        std::filesystem::remove(rc);
        run();
        EXPECT_EQ(status(), "File: " + rc + "\nWindow: \nResult: The file does not exist.\n");
    });
}

TEST_F(FileTests, AnotherChoiceClearsTheStatusAndCancelKeepsTheRows) {
    with([&] {
        open({rc});
        run();
        open({});
        EXPECT_EQ(row(1), rc + " <2 window(s)>");
        EXPECT_NE(status(), "");
        open({bad, none});
        EXPECT_EQ(GetListCount(list()), 2);
        EXPECT_EQ(row(1), bad);
        EXPECT_EQ(status(), "");
    });
}

TEST_F(FileTests, AnEmptyListRunsAndCancelCloses) {
    with([&] {
        run();
        EXPECT_EQ(status(), "");
    });
    doings = {[] { press(in(RcFileTestDlg, "pushbutton3")); }};
    DO_TEST_RCFILE();
    EXPECT_FALSE(IsLoaded(RcFileTestDlg));
}

// ---- the choice of a dialog ----

class ResourceChoices : public FileTests {
protected:
    static Object edit() { return in(OpenResourceDlg, "edit1"); }
    static Object names() { return in(OpenResourceDlg, "listbox1"); }
    static void ok() { press(in(OpenResourceDlg, "pushbutton1")); }
    static void typed(const std::string& text) {
        SetText(edit(), text);
        platform::userChange(*platform::findControl(edit()));
    }
};

TEST_F(ResourceChoices, BeginWithTheCurrentDialog) {
    doings = {[&] {
        EXPECT_EQ(GetCaption(OpenResourceDlg), "Title");
        EXPECT_EQ(GetCaption(in(OpenResourceDlg, "label2")), "Choose a &dialog:");
        EXPECT_EQ(GetText(edit()), rc);
        EXPECT_EQ(GetListCount(names()), 2);
        EXPECT_EQ(GetListIndex(names()), 2);
        ok();
    }};
    const ResourceChoice choice = OPENRESOURCEDIALOG("Title", "dialog", rc, "e");
    EXPECT_EQ(choice.file + "|" + choice.name, rc + "|E");
}

TEST_F(ResourceChoices, AnotherFileShowsItsDialogs) {
    doings = {[&] {
        EXPECT_EQ(GetListCount(names()), 0);
        answers = {bad};
        press(in(OpenResourceDlg, "pushbutton4"));
        EXPECT_EQ(GetListCount(names()), 2);
        typed(rc);
        EXPECT_EQ(GetList(names(), 1), "D");
        EXPECT_EQ(GetListIndex(names()), 1);
        ok();
    }};
    const ResourceChoice choice = OPENRESOURCEDIALOG("Title", "dialog", "", "");
    EXPECT_EQ(choice.file + "|" + choice.name, rc + "|D");
}

TEST_F(ResourceChoices, WhatCannotBeChosenIsTold) {
    doings = {[&] {
        const struct {
            std::string file, text;
        } cases[] = {{"", "Choose a resource file first."},
                     {dir + "x.rc", "'" + dir + "x.rc' does not exist."},
                     {none, "'" + none + "' has no dialog."}};
        for (const auto& one : cases) {
            typed(one.file);
            ok();
            EXPECT_EQ(lastText(), one.text);
            EXPECT_TRUE(IsLoaded(OpenResourceDlg));
        }
        typed(rc);
        SetListIndex(names(), 0);
        ok();
        EXPECT_EQ(lastText(), "Choose a dialog first.");
        press(in(OpenResourceDlg, "pushbutton2"));
    }};
    const ResourceChoice choice = OPENRESOURCEDIALOG("Title", "dialog", "", "");
    EXPECT_EQ(choice.file + choice.name, "");
}

// ---- the menu ----

class ResourceTools : public FileTests {
protected:
    void SetUp() override {
        FileTests::SetUp();
        // A make tool that knows of the resource file alone.
        const std::string tool =
            write("ordo.exe", "#!/bin/sh\nprintf '%s\\n' '" + rc + "' >\"" + dir + "ordo.err\"\n");
        std::filesystem::permissions(tool, std::filesystem::perms(0755));
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir);
        start();
    }
};

TEST_F(ResourceTools, TestsTheDialogThatIsChosen) {
    answers = {rc};
    doings = {[&] { press(in(OpenResourceDlg, "pushbutton4")); },
              [&] { press(in(OpenResourceDlg, "pushbutton1")); },
              [] {
                  EXPECT_TRUE(IsModal(TestDlg));
                  escape();
              }};
    pick("tools_test_dialog");
}

TEST_F(ResourceTools, ExploreAResourceFileInTheProgramWindow) {
    answers = {rc};
    pick("tools_explore_rcfile");
    EXPECT_EQ(asked.front().title, "Tools-Explore Resource File");
    EXPECT_EQ(PROJECTGETMAINFILE(), rc);
    EXPECT_EQ(GetCaption(ProjectEditorDlg).substr(0, 14), "Program Window");
    EXPECT_EQ(GetCaption(MAINCONTROL("programlabel")), rc);
    const std::size_t before = asked.size();
    CREATERCFILEDIALOG("Tools-Create Resource File");
    ASSERT_EQ(asked.size(), before + 1);
    EXPECT_EQ(lastText(), "Cannot create a new RC file.\nThe program window must be closed first.\n");
}

TEST_F(ResourceTools, ExploringNothingLeavesAllAsItIs) {
    pick("tools_explore_rcfile");
    EXPECT_EQ(PROJECTGETMAINFILE(), "");
}

TEST_F(ResourceTools, ANewResourceFileNeedsTheCodeWindowClosed) {
    EDITWNDOPEN(SDIEdit, write("a.cls", "x\n"), false, 0);
    CREATERCFILEDIALOG("Tools-Create Resource File");
    EXPECT_EQ(lastText(), "Cannot create a new RC file.\nThe code editor must be closed first.\n");
}

}  // namespace
}  // namespace tarn
