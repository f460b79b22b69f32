// SPDX-License-Identifier: GPL-3.0-or-later
//
// Start in Debugger, against a make tool that is a shell script of the test, and symbol files that tell the levels.
#include "ide/build/start.h"
#include "ide/menus/runmenu.h"
#include "kernel/run/trace.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

constexpr const char* Title = "Run-Start in Debugger";

class DebugMenu : public IdeTest {
protected:
    std::string tools, main, part;

    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        tools = dir + "tools/";
        std::filesystem::create_directory(tools);
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", "");
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", tools);
        main =
            write("prog.cls", "Tarnwick Class prog\nUses part\nfunction main()\nend function\nEnd class\n");
        part = write("part.cls", "Tarnwick Class part\nEnd class\n");
        // Queries answer from the files fa and fq; what is built is noted.
        program("tools/ordo.exe",
                "case \"$1\" in /fa) cat fa > ordo.err;; /fq) cat fq > ordo.err;; "
                "*) echo \"$1\" >> built; test ! -e broken || { echo 'x.cls(1) : error 1 y' > "
                "sarn.err; exit 1; };; esac");
        program("prog.exe", "touch ran");
        write("tools/fa", main + "\n" + part + "\n");
        stale({});
        useOption(2);
    }
    void program(const std::string& name, const std::string& body) {
        write(name, "#!/bin/sh\ncd \"$(dirname \"$0\")\"\n" + body + "\n");
        std::filesystem::permissions(dir + name, std::filesystem::perms(0755));
    }
    void stale(const std::vector<std::string>& files) {
        std::string text;
        for (const std::string& file : files) text += file + "\n";
        write("tools/fq", text);
    }
    // -1: never compiled.
    void levels(int ofMain, int ofPart) {
        for (const auto& [file, level] : {std::pair{"prog.sym", ofMain}, {"part.sym", ofPart}}) {
            std::filesystem::remove(dir + file);
            if (level >= 0)
                write(file, "\"program\",2,\"\",\"program\",0,0,0,\"x\",0,0,0,0,0,0,\"\",\"\",0,0,\"-p1 -d" +
                                std::to_string(level) + "\"\n");
        }
    }
    void useOption(int level) {
        for (int i = 0; i <= 2; i++)
            PROFILESTRPUT(ini(), "CompOptionsDlg", "Debug" + std::to_string(i), i == level ? "1" : "0");
    }
    std::string built() { return read(tools + "built"); }
    bool ran() {
        for (int i = 0; i < 100 && !std::filesystem::exists(dir + "ran"); i++) DoEvents(), usleep(20000);
        return std::filesystem::exists(dir + "ran");
    }
    std::string question() const {
        return "The following program:\n\t'" + main +
               "'\nmust be compiled with 'Full debugging' information before using the debugger.\nDo you "
               "want "
               "to compile with 'Full debugging' information and debug it?";
    }
};

TEST_F(DebugMenu, AProgramThatIsCurrentAndWholeStartsAtOnce) {
    levels(2, 2);
    PROFILESTRPUT(ini(), "DebugOptionsDlg", "Traceprogram", "1");
    RUN_START(Title, true, main);
    EXPECT_TRUE(ran());
    EXPECT_EQ(built(), "");
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "SingleStep"), "1");
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "TraceProgram"), "1");
}

TEST_F(DebugMenu, TheOptionIsRaisedForGood) {
    useOption(1);
    levels(2, 2);
    RUN_START(Title, true, main);
    EXPECT_TRUE(ran());
    EXPECT_EQ(PROFILESTRGET(ini(), "CompOptionsDlg", "Debug2"), "1");
    EXPECT_EQ(PROFILESTRGET(ini(), "CompOptionsDlg", "Debug1"), "0");
    EXPECT_NE(PROFILESTRGET(ini(), "ordo", "CLS").find(" /d2 "), std::string::npos);
    EXPECT_FALSE(IsLoaded(CompOptionsDlg)) << "nothing was shown";
}

TEST_F(DebugMenu, ChangedFilesAloneAreMadeQuickly) {
    levels(0, 2);
    stale({main});
    RUN_START(Title, true, main);
    EXPECT_TRUE(ran());
    EXPECT_EQ(built(), "-fm\n");
    EXPECT_TRUE(asked.empty());
}

TEST_F(DebugMenu, AMissingProgramOfWholeClassesIsMadeQuickly) {
    levels(2, 2);
    std::filesystem::remove(dir + "prog.exe");
    RUN_START(Title, true, main);
    EXPECT_EQ(built(), "-fm\n");
    EXPECT_TRUE(lastText().find("must be compiled") == std::string::npos);
}

TEST_F(DebugMenu, OlderClassesThatLackTheInformationAreAskedAbout) {
    struct Case {
        int main, part;
        std::vector<std::string> stale;
    };
    for (const Case& c : {Case{2, 1, {}}, {2, 0, {main}}, {-1, -1, {}}, {2, -1, {}}, {2, 2, {main, part}}}) {
        levels(c.main, c.part);
        stale(c.stale);
        asked.clear();
        answers = {"&Cancel"};
        const int beeps = platform::headlessBeeps();
        RUN_START(Title, true, main);
        ASSERT_EQ(asked.size(), 1U) << c.main << c.part;
        EXPECT_EQ(asked[0].title, Title);
        EXPECT_EQ(asked[0].text, question());
        EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&OK", "&Cancel"}));
        EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
        EXPECT_EQ(built(), "");
        EXPECT_FALSE(std::filesystem::exists(dir + "ran"));
    }
}

TEST_F(DebugMenu, AreAllCompiledIfTheUserWantsThat) {
    useOption(0);
    levels(2, 0);
    answers = {"&OK"};
    RUN_START(Title, true, main);
    EXPECT_TRUE(ran());
    EXPECT_EQ(built(), "-fa\n");
    EXPECT_EQ(PROFILESTRGET(ini(), "CompOptionsDlg", "Debug2"), "1");
}

TEST_F(DebugMenu, ACancelledQuestionLeavesTheOption) {
    useOption(1);
    levels(1, 1);
    answers = {"&Cancel"};
    RUN_START(Title, true, main);
    EXPECT_EQ(PROFILESTRGET(ini(), "CompOptionsDlg", "Debug1"), "1");
}

TEST_F(DebugMenu, AFailedBuildStartsNothing) {
    write("tools/broken", "x");
    levels(2, 0);
    answers = {"&OK"};
    RUN_START(Title, true, main);
    EXPECT_EQ(built(), "-fa\n");
    EXPECT_FALSE(std::filesystem::exists(dir + "ran"));
    EXPECT_TRUE(IsLoaded(ViewDlg));
}

TEST_F(DebugMenu, TheLibrarysClassNeedsNoInformation) {
    levels(2, 2);
    write("tools/fa", main + "\n" + part + "\n" + dir + "system.cls\n");
    RUN_START(Title, true, main);
    EXPECT_TRUE(ran());
    EXPECT_TRUE(asked.empty());
}

TEST_F(DebugMenu, RefusesWhatIsNoClass) {
    RUN_START(Title, true, "");
    EXPECT_EQ(
        lastText(),
        "It is not possible to use the 'Run-Start in Debugger' command.\nThere is no file to build or run.");
    RUN_START(Title, true, dir + "a.txt");
    EXPECT_EQ(lastText(), "It is not possible to use the 'Run-Start in Debugger' command.\n'" + dir +
                              "a.txt' is not a class, it does not have the correct extension (*.cls).");
    EDITWNDNEW(SDIEdit, "text");
    RUN_START(Title, true, "<untitled>");
    EXPECT_EQ(lastText(),
              "It is not possible to use the 'Run-Start in Debugger' command.\n'<untitled>' is not a "
              "class, it does not have the correct extension (*.cls).");
}

TEST_F(DebugMenu, AStartByItselfStepsNotAndAsksForNoLevels) {
    levels(0, 0);
    RUN_START("Run-Start", false, main);
    EXPECT_TRUE(ran());
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "SingleStep"), "0");
    EXPECT_TRUE(asked.empty());
}

TEST_F(DebugMenu, RunToCursorTellsTheProgramWhereToStop) {
    levels(2, 2);
    RUN_TO_LINE("Run-Run to Cursor", main, "prog", 3);
    EXPECT_TRUE(ran());
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "RunTo"), "prog 3");
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "SingleStep"), "0");
    std::filesystem::remove(dir + "ran");
    RUN_START(Title, true, main);
    EXPECT_TRUE(ran());
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "RunTo"), "") << "it was for one program";
}

TEST_F(DebugMenu, TheTraceTellsWhatTheStartKnew) {
    levels(2, 0);
    stale({main});
    answers = {"&Cancel"};
    SetTraceMode(2);
    RUN_START(Title, true, main);
    SetTraceMode(0);
    const std::string trace = read(TraceFile());
    std::size_t at = 0;
    for (const std::string& line :
         {"StartFile = " + main, std::string("SingleStep = 1"), std::string("fUpToDate = 0"),
          std::string("fAllCompiledWithD2 = 0"), std::string("fCompOptionsHasD2 = 1"),
          std::string("fCompiledFilesHaveD2 = 0")}) {
        at = trace.find("\n" + line + "\n", at);
        EXPECT_NE(at, std::string::npos) << line;
    }
}

}  // namespace
}  // namespace tarn
