// SPDX-License-Identifier: GPL-3.0-or-later
//
// The build commands against make tools and compilers that are shell scripts of the test.
#include "ide/build/build.h"
#include "ide/build/start.h"
#include "ide/menus/runmenu.h"

#include "ide/build/textview.h"
#include "support/ide_fixture.h"

#include <fstream>

namespace tarn {
namespace {

class Build : public IdeTest {
protected:
    std::string tools, main;

    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        tools = dir + "tools/";
        std::filesystem::create_directory(tools);
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", "");
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", tools);
        main = write("prog.cls", "Tarnwick Class prog\nfunction main()\nend function\nEnd class\n");
    }
    // A tool that notes its arguments in `<name>.log`, one a line, and then does `body`.
    void tool(const std::string& name, const std::string& body) {
        write("tools/" + name, "#!/bin/sh\ncd \"$(dirname \"$0\")\"\nprintf '%s\\n' \"$@\" > " + name +
                                   ".log\n" + body + "\n");
        std::filesystem::permissions(tools + name, std::filesystem::perms(0755));
    }
    std::string log(const std::string& name) { return read(tools + name + ".log"); }
    bool build(std::string file, const std::string& options = "-fm") {
        bool ok = true;
        RUN_BUILD("Run-Quickbuild", options, file, ok);
        return ok;
    }
    void open(const std::string& file) { EDITWNDOPEN(SDIEdit, file, false, 0); }
    void change() { type("// changed\n"); }
};

TEST_F(Build, NeedsTheMakeTool) {
    EXPECT_FALSE(build(main));
    EXPECT_EQ(lastText(),
              "Cannot find the ORDO program. It should be in the following file:\n\t'" + tools +
                  "ordo.exe'\n\nUse Tools-Options-Paths to make sure the Compiler File Path folder\n"
                  "contains the ORDO.EXE program file.");
}

TEST_F(Build, RefusesWhatIsNoClass) {
    tool("ordo.exe", "");
    EXPECT_FALSE(build(""));
    EXPECT_EQ(lastText(),
              "It is not possible to use the 'Run-Quickbuild' command.\nThere is no file to build or run.");
    EXPECT_FALSE(build(dir + "a.txt"));
    EXPECT_EQ(lastText(), "It is not possible to use the 'Run-Quickbuild' command.\n'" + dir +
                              "a.txt' is not a class, it does not have the correct extension (*.cls).");
}

TEST_F(Build, RefusesAnEmptyClassAndOneThatIsNotMain) {
    tool("ordo.exe", "");
    const std::string absent = dir + "absent.cls";
    EXPECT_FALSE(build(absent));
    EXPECT_EQ(lastText(),
              "It is not possible to use the 'Run-Quickbuild' command.\nThe following file:\n\n\t'" + absent +
                  "'\n\nis empty or does not exist.");
    const std::string part = write("part.cls", "Tarnwick Class part\nEnd class\n");
    EXPECT_FALSE(build(part));
    EXPECT_EQ(lastText(), "File '" + part +
                              "' is not a main class.\n'Run-Quickbuild' only works with main "
                              "classes.\n\nInstead, compile this class using the 'Run-Compile' command.");
}

TEST_F(Build, TellsThatTheOpenClassHasGone) {
    tool("ordo.exe", "");
    open(main);
    std::filesystem::remove(main);
    EXPECT_FALSE(build(main));
    EXPECT_EQ(asked.back().title, "Run-Quickbuild");
    EXPECT_EQ(lastText(),
              "It is not possible to use the 'Run-Quickbuild' command.\nThe following file:\n\n\t'" + main +
                  "'\n\nis empty or does not exist.");
}

TEST_F(Build, CallsTheMakeToolAndIsCleanWithoutMessages) {
    tool("ordo.exe", "");
    EXPECT_TRUE(build(main));
    EXPECT_EQ(log("ordo.exe"), "-fm\n" + main + "\n-i\n-o" + tools + "ordo.err\n");
    EXPECT_TRUE(asked.empty()) << lastText();
}

TEST_F(Build, ShowsTheMessagesOfAFailure) {
    tool("ordo.exe", "echo 'prog.cls(2) : error 1005 text' > sarn.err; exit 1");
    EXPECT_FALSE(build(main));
    ASSERT_TRUE(IsLoaded(ViewDlg));
    EXPECT_TRUE(GetVisible(ViewDlg));
    EXPECT_EQ(GetCaption(ViewDlg), "View Errors");
    EXPECT_EQ(GetText(ViewDlg), "prog.cls(2) : error 1005 text\n");
    tool("ordo.exe", "echo 'prog.cls : 0 errors.' > sarn.err");
    EXPECT_TRUE(build(main));
    EXPECT_EQ(GetText(ViewDlg), "");
}

TEST_F(Build, ToolThatDiesCountsAsFailedAndSaysSo) {
    tool("ordo.exe", "echo 'prog.cls : 0 errors.' > sarn.err; kill -SEGV $$");
    EXPECT_FALSE(build(main));
    EXPECT_NE(GetText(ViewDlg).find("'ordo.exe' ended by signal 11."), std::string::npos) << GetText(ViewDlg);
    tool("ordo.exe", "exit 3");
    EXPECT_FALSE(build(main));
    EXPECT_NE(GetText(ViewDlg).find("failed with exit code 3"), std::string::npos) << GetText(ViewDlg);
}

TEST_F(Build, StaleMessagesAreRemovedBeforeARun) {
    write("tools/sarn.err", "prog.cls(1) : error 9 old");
    tool("ordo.exe", "");
    EXPECT_TRUE(build(main));
}

TEST_F(Build, SavesTheCodeWindowFirst) {
    tool("ordo.exe", "");
    open(main);
    change();
    EXPECT_TRUE(build(main));
    EXPECT_TRUE(read(main).ends_with("// changed\n"));
}

TEST_F(Build, DoesNotGoOnWhenTheSaveWasCancelled) {
    tool("ordo.exe", "");
    EDITWNDNEW(SDIEdit, "Tarnwick Class x\nEnd class\n");
    EXPECT_FALSE(build("<untitled>"));
    EXPECT_EQ(log("ordo.exe"), "");
    EXPECT_EQ(lastText(),
              "It is not possible to use the 'Run-Quickbuild' command.\n'<untitled>' is not a class, it "
              "does not have the correct extension (*.cls).");
}

TEST_F(Build, ToolThatFailsWithTheMarkOfSuccessHasFailed) {
    tool("ordo.exe", "echo 'prog.cls : 0 errors.' > sarn.err; exit 3");
    EXPECT_FALSE(build(main));
    EXPECT_NE(GetText(ViewDlg).find("failed with exit code 3"), std::string::npos) << GetText(ViewDlg);
}

TEST_F(Build, ToolThatOnlyLeftItsOwnReportIsShownByIt) {
    tool("ordo.exe", "echo 'ordo : error 1906 the option is not known' > ordo.err; exit 1");
    EXPECT_FALSE(build(main));
    EXPECT_EQ(GetText(ViewDlg), "ordo : error 1906 the option is not known\n");
}

TEST_F(Build, NamesReachTheMakeToolUnchanged) {
    tool("ordo.exe", "");
    for (const std::string name :
         {"a b", "two  blanks ", "\"quoted\"", "one\"", "$HOME", "`id`", "a;b", "line\nend", "\xC3\xA4\xFF",
          "a'b", "*?", "(x)", "> y", "< y", "a\tb", "~", "%d", "&"}) {
        const std::string folder = dir + "in " + name + "/";
        std::filesystem::create_directory(folder);
        const std::string file = folder + name + ".cls";
        std::ofstream(file) << "Tarnwick Class prog\nfunction main()\nend function\nEnd class\n";
        EXPECT_TRUE(build(file)) << name << lastText();
        EXPECT_EQ(log("ordo.exe"), "-fm\n" + file + "\n-i\n-o" + tools + "ordo.err\n") << name;
        EXPECT_TRUE(ISUPTODATE(file)) << name;
        EXPECT_EQ(log("ordo.exe"), "/fq\n" + file + "\n-i\n-n\n-o" + tools + "ordo.err\n") << name;
    }
}

TEST_F(Build, NamesReachTheCompilerUnchanged) {
    tool("quarn.exe", ": > sarn.err");
    for (const std::string name : {"a b", "\"quoted\"", "$HOME", "a;b", "line\nend", "\xC3\xA4\xFF", "> y"}) {
        const std::string folder = dir + "in " + name + "/";
        std::filesystem::create_directory(folder);
        const std::string file = folder + name + ".cls";
        std::ofstream(file) << "Tarnwick Class prog\nfunction main()\nend function\nEnd class\n";
        open(file);
        RUN_COMPILE(SDIEdit);
        EXPECT_EQ(lastText(), "Successfully compiled '" + file + "'");
        EXPECT_TRUE(log("quarn.exe").ends_with("\n" + file + "\n")) << log("quarn.exe");
    }
}

TEST_F(Build, AFolderOfToolsMayHaveAnyName) {
    for (const std::string name : {"t \"x\" y", "$t;u", "\xE4"}) {
        tools = dir + name + "/";
        std::filesystem::create_directory(tools);
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", "\"" + STRREPLACE(tools, "\"", "\"\"") + "\"");
        if (GETCOMPILERDIR() != tools) PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", tools);
        ASSERT_EQ(GETCOMPILERDIR(), tools);
        for (const std::string program : {"ordo.exe", "quarn.exe"}) {
            std::ofstream(tools + program) << "#!/bin/sh\ncd \"$(dirname \"$0\")\"\nprintf '%s\\n' \"$@\" > "
                                           << program << ".log\n: > sarn.err\n";
            std::filesystem::permissions(tools + program, std::filesystem::perms(0755));
        }
        EXPECT_TRUE(build(main)) << name << lastText();
        EXPECT_EQ(log("ordo.exe"), "-fm\n" + main + "\n-i\n-o" + tools + "ordo.err\n") << name;
        open(main);
        RUN_COMPILE(SDIEdit);
        EXPECT_EQ(lastText(), "Successfully compiled '" + main + "'") << name;
    }
}

using Start = Build;

TEST_F(Start, RebuildsAMissingProgramWithoutAQuestionAndStartsIt) {
    tool("ordo.exe",
         "case \" $* \" in *\" -n \"*) echo prog.exe > ordo.err; exit;; esac; printf '#!/bin/sh\\ntouch "
         "\"%s\"\\n' \"" +
             dir + "ran\" > ../prog.exe; chmod +x ../prog.exe");
    RUN_START("Run-Start", false, main);
    for (int i = 0; i < 100 && !std::filesystem::exists(dir + "ran"); i++) DoEvents(), usleep(20000);
    EXPECT_TRUE(std::filesystem::exists(dir + "ran"));
    EXPECT_EQ(log("ordo.exe").substr(0, 4), "-fq\n");
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "SingleStep"), "0");
}

TEST_F(Start, AsksTheMakeToolWhetherTheProgramIsCurrent) {
    tool("ordo.exe", "case \" $* \" in *\" -n \"*) : > ordo.err;; *) touch built;; esac");
    write("prog.exe", "#!/bin/sh\n");
    std::filesystem::permissions(dir + "prog.exe", std::filesystem::perms(0755));
    EXPECT_TRUE(ISUPTODATE(main));
    EXPECT_EQ(log("ordo.exe"), "/fq\n" + main + "\n-i\n-n\n-o" + tools + "ordo.err\n");
    RUN_START("Run-Start", false, main);
    EXPECT_FALSE(std::filesystem::exists(tools + "built"));
    tool("ordo.exe", "case \" $* \" in *\" -n \"*) echo prog.exe > ordo.err;; *) touch built;; esac");
    EXPECT_FALSE(ISUPTODATE(main));
    RUN_START("Run-Start", false, main);
    EXPECT_TRUE(std::filesystem::exists(tools + "built"));
}

TEST_F(Start, IsNotCurrentWhileTheTextIsChanged) {
    tool("ordo.exe", "");
    EXPECT_FALSE(ISUPTODATE(""));
    EXPECT_FALSE(ISUPTODATE("<untitled>"));
    EXPECT_TRUE(ISUPTODATE(main));
    open(main);
    change();
    EXPECT_FALSE(ISUPTODATE(main));
}

TEST_F(Start, ANewClassIsNamedFirstAndThenBuilt) {
    tool("ordo.exe", "");
    EDITWNDNEW(SDIEdit, "Tarnwick Class fresh\nfunction main()\nend function\nEnd class\n");
    answers = {dir + "fresh.cls"};
    RUN_START("Run-Start", false, "<untitled>");
    EXPECT_TRUE(log("ordo.exe").starts_with("-fq\n" + dir + "fresh.cls\n")) << log("ordo.exe");
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "fresh.cls");
}

TEST_F(Start, ANewClassWithoutANameIsNotBuilt) {
    tool("ordo.exe", "");
    EDITWNDNEW(SDIEdit, "Tarnwick Class fresh\nfunction main()\nend function\nEnd class\n");
    RUN_START("Run-Start", false, "<untitled>");
    EXPECT_EQ(log("ordo.exe"), "");
    EXPECT_EQ(lastText(),
              "It is not possible to use the 'Run-Start' command.\n'<untitled>' is not a class, it does "
              "not have the correct extension (*.cls).");
}

TEST_F(Start, RefusesANewTextThatIsNoClass) {
    EDITWNDNEW(SDIEdit, "text");
    RUN_START("Run-Start", false, "<untitled>");
    EXPECT_EQ(lastText(),
              "It is not possible to use the 'Run-Start' command.\n'<untitled>' is not a class, it does "
              "not have the correct extension (*.cls).");
}

TEST_F(Start, RefusesWhatCannotBeStarted) {
    RUN_START("Run-Start", false, "");
    EXPECT_EQ(lastText(),
              "It is not possible to use the 'Run-Start' command.\nThere is no file to build or run.");
    RUN_START("Run-Start", false, dir + "a.txt");
    EXPECT_EQ(lastText(), "It is not possible to use the 'Run-Start' command.\n'" + dir +
                              "a.txt' is not a class, it does not have the correct extension (*.cls).");
}

using Compile = Build;

TEST_F(Compile, SaysWhyAWindowCannotBeCompiled) {
    RUN_COMPILE(SDIEdit);
    EXPECT_EQ(lastText(), "There is no file to compile.\nUse File-Open to open a file first.");
    open(write("a.txt", "text"));
    RUN_COMPILE(SDIEdit);
    EXPECT_EQ(lastText(),
              "This file cannot be compiled because it is not a class.\nOpen a class then try again.");
    open(write("b.txt", "Tarnwick Class b\nEnd class\n"));
    RUN_COMPILE(SDIEdit);
    EXPECT_EQ(lastText(),
              "The following class:\n\n\t'" + dir +
                  "b.txt'\n\ncannot be compiled because it does not have the correct extension (*.cls)\n"
                  "Save the class with the extension '.cls' then recompile it.");
}

TEST_F(Compile, TellsSuccessForAnEmptyMessageFile) {
    tool("quarn.exe", ": > sarn.err");
    open(main);
    RUN_COMPILE(SDIEdit);
    EXPECT_EQ(lastText(), "Successfully compiled '" + main + "'");
    EXPECT_TRUE(log("quarn.exe").ends_with(main + "\n")) << log("quarn.exe");
    EXPECT_FALSE(std::filesystem::exists(tools + "sarn.err"));
}

TEST_F(Compile, ShowsFortyLinesWholeAndCutsFortyOne) {
    open(main);
    const auto lines = [](int n) {
        return "i=1; while [ $i -le " + STR(n) + " ]; do echo m$i; i=$((i+1)); done > sarn.err";
    };
    tool("quarn.exe", lines(40));
    RUN_COMPILE(SDIEdit);
    EXPECT_NE(lastText().find("m40"), std::string::npos);
    tool("quarn.exe", lines(41));
    RUN_COMPILE(SDIEdit);
    EXPECT_TRUE(lastText().starts_with("Cannot compile '" + main + "'\n\nm1\n"));
    EXPECT_NE(lastText().find("m39\n...(more)..."), std::string::npos) << lastText();
    EXPECT_EQ(lastText().find("m40"), std::string::npos);
}

TEST_F(Compile, CompilerThatCrashesIsAFailure) {
    tool("quarn.exe", "kill -ABRT $$");
    open(main);
    RUN_COMPILE(SDIEdit);
    EXPECT_TRUE(lastText().starts_with("Cannot compile '" + main + "'")) << lastText();
    EXPECT_NE(lastText().find("ended by signal 6"), std::string::npos) << lastText();
}

}  // namespace
}  // namespace tarn
