// SPDX-License-Identifier: GPL-3.0-or-later
//
// The packager's window and the command that opens it, over a make tool that is a shell script of the test.
#include "ide/ship/packager.h"

#include "library/ship/copyutil.h"
#include "support/doings_fixture.h"

namespace tarn {
namespace {

constexpr const char* Title = "Program-Copy EXE File";
constexpr const char* MainClass = "Tarnwick Class Prog\nfunction main()\nend function\nEnd class\n";

class PackagerTest : public DoingsTest {
protected:
    void SetUp() override {
        DoingsTest::SetUp();
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir);
        start();
    }
    // The answers to its queries: what it writes, and whether it fails.
    void makeTool(const std::string& targets, const std::string& stale, int code = 0) {
        write("targets", targets), write("stale", stale);
        write("ordo.exe",
              "#!/bin/sh\nfor a; do case $a in -o*) out=${a#-o};; /ft) from=targets;; /fq) from=stale;; "
              "-fm) cp '" +
                  dir + "wrong' '" + dir + "sarn.err'; exit 1;; esac; done\ncat '" + dir +
                  "'$from > \"$out\"\nexit " + STR(code) + "\n");
        std::filesystem::permissions(dir + "ordo.exe", std::filesystem::perms(0755));
    }
    void copyExe(const std::string& file) {
        COPYEXE(Title, file);
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    static Object part(const char* name) { return FINDCONTROL(PackagerDlg, name); }
    static void press(const char* name) { platform::userCommand(*platform::findControl(part(name))); }
    static std::string rows() {
        std::string text;
        for (int i = 1; i <= GetListCount(part("iconlist1")); ++i)
            text += GetList(part("iconlist1"), i) + "\n";
        return text;
    }
};

// ---- what may be copied, in its order ----

TEST_F(PackagerTest, TheMakeToolsErrorComesFirst) {
    makeTool("no such class\n", "", 1);
    const std::string file = write("other.cls", "Tarnwick Class Other\nEnd class\n");
    copyExe(file);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, Title);
    EXPECT_EQ(asked[0].text, "It is not possible to copy the EXE file.\nno such class");
    copyExe("");
    EXPECT_EQ(lastText(), "It is not possible to copy the EXE file.\nNo file has been specified.");
    copyExe(dir + "none.cls");
    EXPECT_EQ(lastText(),
              "It is not possible to copy the EXE file.\nThe file '" + dir + "none.cls' was not found.");
}

TEST_F(PackagerTest, OnlyTheOutputOfAMainClassIsCopiedWhateverIsOutOfDate) {
    makeTool("", "other.cls\n");
    const std::string file = write("other.cls", "Tarnwick Class Other\nEnd class\n");
    copyExe(file);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].text, "File '" + file +
                                 "' is not a main class.\nIt is only possible to copy the EXE file after "
                                 "compiling a main class.");
}

TEST_F(PackagerTest, AQuickbuildThatFailsEndsTheCommand) {
    makeTool(dir + "prog.exe\n", "prog.cls\n", 0);
    const std::string file = write("prog.cls", MainClass);
    write("wrong", "prog.cls(1) : error 1 : wrong\nprog.cls : 1 errors.\n");
    answers = {"Yes"};
    copyExe(file);
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"Yes", "No", "Cancel"}));
    EXPECT_FALSE(IsLoaded(PackagerDlg));
    EXPECT_TRUE(ISSHOWN(ViewDlg)) << "with the errors";
}

// ---- the window ----

TEST_F(PackagerTest, TheWindowListsTheFilesWithTheRunTimeLibrary) {
    const std::string file = write("prog.cls", MainClass);
    write("prog.exe", "program"), write("libtarnwick.so", "own"), write("libtarnwick-qt.so", "view");
    const std::string files = dir + "prog.exe\n" + dir + "elsewhere/libtarnwick-qt.so\n";
    doings = {[this] {
        EXPECT_EQ(rows(), "prog.exe\t7 byte(s)\nlibtarnwick-qt.so\t(missing)\nlibtarnwick.so\t3 byte(s)\n");
        EXPECT_EQ(GetCaption(part("label2")), "&Files (3):");
        EXPECT_EQ(GetCaption(PackagerDlg), Title);
        EXPECT_EQ(GetCaption(part("label1")), "What they are");
        press("bitmapbutton6");
    }};
    PACKAGERDIALOG(Main, file, files + GETLIBRARYFILES(files), "What they are");
    EXPECT_FALSE(IsLoaded(PackagerDlg));
    EXPECT_TRUE(asked.empty()) << lastText();
}

TEST_F(PackagerTest, AFileThatTheMakeToolNamesTwiceHasOneRow) {
    const std::string file = write("prog.cls", MainClass), exe = write("prog.exe", "program");
    doings = {[this] {
        EXPECT_EQ(rows(), "prog.exe\t7 byte(s)\n");
        EXPECT_EQ(GetCaption(part("label2")), "&Files (1):");
        press("bitmapbutton6");
    }};
    PACKAGERDIALOG(Main, file, exe + "\n" + exe + "\n" + dir + "./prog.exe\n", "What they are");
}

TEST_F(PackagerTest, RowsHaveATickOrACrossAndEndAtTheTab) {
    Load(PackagerDlg);
    const std::string file = write("a b.txt", "123");
    LISTBOXADDFILES(part("iconlist1"), file + "\tmore\n\n" + dir + "none\n");
    EXPECT_EQ(rows(), "a b.txt\t3 byte(s)\nnone\t(missing)\n");
    EXPECT_EQ(LISTBOXCOUNTFILES(part("iconlist1")), 2);
    const auto& list = platform::findControl(part("iconlist1"))->rows;
    EXPECT_EQ(list[0].picture, "tick");
    EXPECT_EQ(list[1].picture, "cross");
    LISTBOXADDFILES(part("iconlist1"), "");
    EXPECT_EQ(LISTBOXCOUNTFILES(part("iconlist1")), 0);
    Unload(PackagerDlg);
}

TEST_F(PackagerTest, EachWayShowsWhatItIsWaitingFor) {
    Load(PackagerDlg);
    write("prog.exe", "program");
    std::filesystem::create_directory(dir + "to");
    EXPECT_TRUE(COPYTOFOLDER(PackagerDlg, dir + "prog.exe\n", dir + "to"));
    EXPECT_EQ(asked.back().title, Title);
    EXPECT_EQ(GetCaption(part("lblwait")), "") << "behind the work";
    Unload(PackagerDlg);
}

TEST_F(PackagerTest, WhatACommandHasMetIsSeenBehindIt) {
    const std::string file = write("prog.cls", MainClass), exe = write("prog.exe", "program");
    doings = {[&] {
        EXPECT_EQ(rows(), "prog.exe\t7 byte(s)\n");
        std::filesystem::remove(exe);
        press("bitmapbutton2");
        EXPECT_EQ(rows(), "prog.exe\t(missing)\n");
        EXPECT_EQ(platform::findControl(part("iconlist1"))->rows[0].picture, "cross");
        write("prog.exe", "longer");
        press("bitmapbutton2");
        EXPECT_EQ(rows(), "prog.exe\t6 byte(s)\n");
        press("bitmapbutton6");
    }};
    answers = {dir, "OK", ""};
    PACKAGERDIALOG(Main, file, exe + "\n", "What they are");
    EXPECT_TRUE(answers.empty());
}

// ---- a Debian package ----

TEST_F(PackagerTest, WhatAPackageTellsIsProposedByThePropertiesAndKeptBesideTheProgram) {
    const std::string file = write("Prog.cls", MainClass), kept = dir + "Prog-deb.ini";
    const Object deb("DebDlg");
    const auto set = [&](const char* control, const std::string& text) {
        SetText(FINDCONTROL(deb, control), text);
    };
    const auto get = [&](const char* control) { return GetText(FINDCONTROL(deb, control)); };
    const auto pressIn = [&](const char* control) {
        platform::userCommand(*platform::findControl(FINDCONTROL(deb, control)));
    };
    doings = {[&] {
                  press("bitmapbutton7");
                  press("bitmapbutton7");
                  press("bitmapbutton6");
              },
              [&] {
                  EXPECT_EQ(get("edit1"), "prog");
                  set("edit1", "Wrong Name");
                  pressIn("pushbutton1");
                  EXPECT_TRUE(lastText().starts_with("The name of the package")) << lastText();
                  EXPECT_FALSE(std::filesystem::exists(kept));
                  set("edit1", "prog"), set("edit2", "1.2"), set("edit3", "Ann <a@b>"),
                      set("edit4", "greets");
                  set("edit5", "\"one\nand\\two\"");
                  pressIn("pushbutton1");
              },
              [&] {
                  EXPECT_EQ(get("edit2"), "1.2");
                  EXPECT_EQ(get("edit4"), "greets");
                  EXPECT_EQ(get("edit5"), "\"one\nand\\two\"");
                  pressIn("pushbutton2");
              }};
    answers = {"OK", "OK"};  // the name is told, and that a file is missing
    PACKAGERDIALOG(Main, file, dir + "none\n", "What they are");
    EXPECT_EQ(PROFILESTRGET(kept, "Package", "Maintainer"), "Ann <a@b>");
    EXPECT_EQ(PROFILESTRGET(ini(), "DebDlg", "Maintainer"), "Ann <a@b>") << "for the next program";
}

TEST_F(PackagerTest, WhatCannotBeKeptIsToldWhenItIsReadAndWhenItIsLost) {
    const std::string file = write("Prog.cls", MainClass), kept = dir + "Prog-deb.ini";
    std::filesystem::create_directory(kept);
    const Object deb("DebDlg");
    doings = {[&] {
                  press("bitmapbutton7");
                  press("bitmapbutton6");
              },
              [&] {
                  SetText(FINDCONTROL(deb, "edit3"), "Ann <a@b>");
                  platform::userCommand(*platform::findControl(FINDCONTROL(deb, "pushbutton1")));
              }};
    answers = {"OK", "OK", "OK"};
    PACKAGERDIALOG(Main, file, dir + "none\n", "What they are");
    ASSERT_EQ(asked.size(), 3U) << lastText();
    for (const std::size_t i : {0U, 1U}) EXPECT_EQ(asked[i].title, Title);
    EXPECT_TRUE(asked[0].text.starts_with("What was entered for an earlier package could not be read from '" +
                                          kept + "': "))
        << asked[0].text;
    EXPECT_TRUE(asked[1].text.starts_with("What was entered could not be kept in '" + kept + "': "))
        << asked[1].text;
    EXPECT_NE(asked[1].text.find("\nThe package is made all the same, but the next time it must be entered "
                                 "again. To have it kept, copy the program to a folder that you may write"),
              std::string::npos)
        << asked[1].text;
    EXPECT_TRUE(asked[2].text.starts_with("Cannot copy files.")) << "the package is made all the same";
    EXPECT_EQ(PROFILESTRGET(ini(), "DebDlg", "Maintainer"), "Ann <a@b>");
}

TEST_F(PackagerTest, OnlyFilesOfTheLibraryThatAreMissingInTheListAreAdded) {
    write("libtarnwick.so", "x");
    EXPECT_EQ(GETLIBRARYFILES(""), dir + "libtarnwick.so\n");
    EXPECT_EQ(GETLIBRARYFILES("/else/libtarnwick.so\n"), "");
}

// ---- the script of an installer ----

TEST_F(PackagerTest, TheScriptIsShownAndCopiedByADoubleClick) {
    const Object script("ScriptDlg");
    SetText(Sysclipboard, "before");
    doings = {[&] {
        EXPECT_EQ(GetCaption(script), "(Double click to copy to clipboard)");
        EXPECT_EQ(GetText(script), "[Setup]\nAppName=prog\n");
        EXPECT_EQ(GetText(Sysclipboard), "before");
        platform::userDoubleClick(*platform::findControl(script), 1, 1);
        EXPECT_EQ(GetText(Sysclipboard), GetText(script));
        SetText(Sysclipboard, "before");
        platform::userKey(*platform::findWindow(script), nullptr, KEY_RETURN);
        EXPECT_EQ(GetText(Sysclipboard), GetText(script));
        platform::userKey(*platform::findWindow(script), nullptr, KEY_ESCAPE);
    }};
    SHOWSCRIPT("[Setup]\nAppName=prog\n");
    EXPECT_FALSE(IsLoaded(script));
}

}  // namespace
}  // namespace tarn
