// SPDX-License-Identifier: GPL-3.0-or-later
//
// The error window: what counts as success, where a message leads, and what it says when it leads nowhere.
#include "ide/build/build.h"
#include "ide/build/textview.h"
#include "ide/menus/viewmenu.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class ErrorWindow : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
    }
    // The window with these messages, the caret in line `line`.
    void show(const std::string& messages, int line = 1) {
        VIEWDIALOG("View Errors", write("sarn.err", messages), "", 0);
        ASSERT_TRUE(IsLoaded(ViewDlg)) << ErrorDetails();
        EDITWNDSELECTLINE(ViewDlg, line);
    }
    static bool key(int code) { return platform::userKey(*platform::findWindow(ViewDlg), nullptr, code); }
    static void doubleClick() { platform::userDoubleClick(*platform::findWindow(ViewDlg), 0, 0); }
    std::string put(const std::string& folder, const std::string& text) {
        std::filesystem::create_directories(dir + folder);
        return write(folder + "/a.cls", "Tarnwick Class a\n// " + text + "\nEnd class\n");
    }
};

TEST_F(ErrorWindow, ShowsBytesThatAreNoUtf8AsLatin1AndLeadsToTheirFile) {
    const std::string file = put("\xE9t\xE9", "there");
    const std::string message = file + "(2) : error 7 caf\xE9\n";
    write("sarn.err", "\xC3\xA9t\xC3\xA9\n" + message);
    ASSERT_FALSE(UPDATEERRORWINDOW(dir));
    EXPECT_EQ(GetText(ViewDlg),
              "\xC3\xA9t\xC3\xA9\n" + dir + "\xC3\xA9t\xC3\xA9/a.cls(2) : error 7 caf\xC3\xA9\n");
    SetSelection(ViewDlg, 12, 0);
    doubleClick();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file) << lastText();
}

TEST_F(ErrorWindow, SuccessIsNoTextOrTheMarkAnywhere) {
    struct Case {
        const char* text;
        bool ok;
    };
    const Case cases[] = {{"", true},
                          {"a.cls : 0 errors.\n", true},
                          {"first\nx: 0 errors. and more\nlast", true},
                          {": 0 errors.", true},
                          {": 0 ERRORS.", true},
                          {"a.cls : 1 errors.\n", false},
                          {"0 errors.\n", false},
                          {": 0 errors", false},
                          {"\n", false}};
    for (const Case& c : cases) {
        if (IsLoaded(ViewDlg)) Unload(ViewDlg);
        write("sarn.err", c.text);
        EXPECT_EQ(UPDATEERRORWINDOW(dir), c.ok) << c.text;
        EXPECT_EQ(IsLoaded(ViewDlg), !c.ok) << c.text;
        if (c.ok) continue;
        EXPECT_EQ(GetCaption(ViewDlg), "View Errors");
        EXPECT_EQ(GetText(ViewDlg), c.text);
    }
    std::filesystem::remove(dir + "sarn.err");
    EXPECT_TRUE(UPDATEERRORWINDOW(dir)) << "no file, no errors";
    EXPECT_EQ(GetText(ViewDlg), "") << "what was shown has gone";
}

TEST_F(ErrorWindow, HasTheFontOfTheCodeWindowAndCannotBeChanged) {
    SetFontName(SDIEdit, "Courier");
    SetFontSize(SDIEdit, 17);
    write("sarn.err", "a.cls(1): error 7\n");
    EXPECT_FALSE(UPDATEERRORWINDOW(dir));
    EXPECT_EQ(GetFontName(ViewDlg), "Courier");
    EXPECT_EQ(GetFontSize(ViewDlg), 17);
    EXPECT_TRUE(GetReadonly(ViewDlg));
    EXPECT_FALSE(IsModal(ViewDlg));
}

TEST_F(ErrorWindow, AMessageLeadsToItsLine) {
    const std::string file = put("p", "here");
    show("quarn\n" + file + "(2): Error 7: text\n> more\n", 3);
    doubleClick();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    EXPECT_EQ(GetSelText(SDIEdit), "// here");
    EXPECT_EQ(GetCaption(MAINCONTROL("codelabel")), file);
    EXPECT_TRUE(GetVisible(ViewDlg));
    EDITWNDCLOSE(SDIEdit, true);
    EXPECT_TRUE(key(KEY_RETURN));
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    EXPECT_TRUE(asked.empty());
}

TEST_F(ErrorWindow, TheFolderOfTheCodeWindowIsSearchedFirst) {
    const std::string inherited = put("lib", "inherited"), own = put("own", "own");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", dir + "none;" + dir + "lib");
    show("a.cls(2): error 7\n");
    doubleClick();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), inherited);
    EDITWNDOPEN(SDIEdit, own, false, 0);
    doubleClick();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), own);
    EDITWNDOPEN(SDIEdit, write("own/notes.txt", "no class"), false, 0);
    doubleClick();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), inherited) << "only a class's folder is searched";
}

TEST_F(ErrorWindow, WhatLeadsNowhereSaysSo) {
    const std::string nowhere =
        "Cannot jump to source code.\nThe file name and line number of the source file cannot be found.";
    const std::string noNumber = "Cannot get help for the error.\nThe error number cannot be found.";
    struct Case {
        const char* message;
        std::string jump;
        bool hasHelp;
    };
    const Case cases[] = {
        {"foo.cls : fatal 9", nowhere, true},
        {"foo.cls(0): error 9", nowhere, true},
        {"foo.cls(3): error 0 text", nowhere, false},
        {"plain words", nowhere, false},
        {"", nowhere, false},
        {"> continued from nothing", nowhere, false},
        {"foo.cls(3): error 9",
         "Cannot jump to source code. The following source file:\n\n\t'foo.cls'\n\ndoes not exist.", true},
    };
    const std::string noHelpFile = "Help file '" + GETHELPFILE() + "' was empty or not found.";
    for (const Case& c : cases) {
        show(c.message);
        doubleClick();
        EXPECT_EQ(lastText(), c.jump) << c.message;
        EXPECT_EQ(asked.back().title, "View Errors");
        EXPECT_TRUE(key(KEY_F1));
        EXPECT_EQ(lastText().substr(0, (c.hasHelp ? noHelpFile : noNumber).size()),
                  c.hasHelp ? noHelpFile : noNumber)
            << c.message;
        EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), "");
        EXPECT_EQ(asked.size(), 2U);
        asked.clear();
    }
}

TEST_F(ErrorWindow, HelpOnAMessageOfTheDefaultCompilerIsItsOwnPage) {
    write("Tarnwick.htm", "general");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit2", dir);
    std::filesystem::create_directories(dir + "messages");
    write("messages/1101.htm", "page");
    write("messages/1102.htm", "");
    struct Case {
        const char* message;
        std::string page;
    };
    const Case cases[] = {{"a.cls(3) : error 1101 'then' is expected", "messages/1101.htm"},
                          {"a.cls : fatal 1101 without a line", "messages/1101.htm"},
                          {"a.cls(3) : error 1102 an empty page", "Tarnwick.htm#1102"},
                          {"a.cls(3) : error 1103 no page", "Tarnwick.htm#1103"},
                          {"a.cls(3) : error 9 of another compiler", "Tarnwick.htm#9"}};
    const bool before = platform::setHeadlessBrowser(false);
    for (const Case& c : cases) {
        show(c.message);
        EXPECT_TRUE(key(KEY_F1));
        EXPECT_EQ(lastText(), "It is not possible to visit the following website: file://" + dir + c.page +
                                  "\nThe default browser cannot be found.")
            << c.message;
    }
    EXPECT_EQ(asked.size(), std::size(cases)) << "a page opens once";
    show("a.cls(3) : error 1101 'then' is expected\n> and more\n", 2);
    EXPECT_TRUE(key(KEY_F1));
    EXPECT_NE(lastText().find("messages/1101.htm"), std::string::npos) << "a line that continues it is its";
    platform::setHeadlessBrowser(before);
}

TEST_F(ErrorWindow, TheHelpFolderHoldsThePages) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit2", BINARY_DIR "/help/");
    PROFILESTRPUT(ini(), "GenOptionsDlg", "HelpFileTypes", "qch;htm");
    EXPECT_EQ(GETMESSAGEPAGE(1001), "") << "compiled help has it as a topic";
    PROFILESTRPUT(ini(), "GenOptionsDlg", "HelpFileTypes", "htm;qch");
    EXPECT_EQ(GETMESSAGEPAGE(1001), BINARY_DIR "/help/messages/1001.htm");
    EXPECT_EQ(GETMESSAGEPAGE(7), "");
    EXPECT_EQ(GETMESSAGEPAGE(0), "");
}

TEST_F(ErrorWindow, EscClosesItAndTheCommandShowsItAgain) {
    show("a.cls(2): error 7\n");
    SetPosition(ViewDlg, WINDOW_UNIT, Rect{30, 40, 500, 120});
    EXPECT_TRUE(key(KEY_ESCAPE));
    EXPECT_FALSE(IsLoaded(ViewDlg));
    EXPECT_EQ(PROFILESTRGET(ini(), "Viewdlg", "_Position"), "30 40 500 120");
    EXPECT_EQ(PROFILESTRGET(ini(), "Viewdlg", "_Fontname"), "");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir);
    DO_ERRORS();
    ASSERT_TRUE(IsLoaded(ViewDlg));
    EXPECT_EQ(GetText(ViewDlg), "a.cls(2): error 7\n");
    EXPECT_EQ(GetPosition(ViewDlg, WINDOW_UNIT), (Rect{30, 40, 500, 120}));
    write("sarn.err", "b.cls(1): error 8\n");
    Hide(ViewDlg);
    DO_ERRORS();
    EXPECT_TRUE(GetVisible(ViewDlg));
    EXPECT_EQ(GetText(ViewDlg), "a.cls(2): error 7\n") << "a window that is loaded is only shown";
}

}  // namespace
}  // namespace tarn
