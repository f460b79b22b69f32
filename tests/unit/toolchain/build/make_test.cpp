// SPDX-License-Identifier: Apache-2.0
//
// The make tool: what belongs to a program, what of it is out of date, and tools that fail.
#include "support/tempfolder.h"
#include "support/toolchain_folder.h"
#include "toolchain/build/make.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/classes.h"

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::toolchain {
namespace {

constexpr std::int64_t Second = 1'000'000'000, Start = 1'000'000'000 * Second;

class Make : public ToolchainTest {
protected:
    void SetUp() override {
        ToolchainTest::SetUp();
        write("main.cls",
              "Tarnwick Class Main\nUses b\nfunction main()\nPRINT(TEXT())\nend function\nEnd class\n");
        write("b.cls",
              "Tarnwick Class B\nUses c\npublic function TEXT() return string\nreturn LETTER\nend function\n"
              "End class\n");
        write("c.cls", "Tarnwick Class C\npublic const LETTER = \"c\"\nEnd class\n");
    }

    std::string query(const std::string& mode) {
        EXPECT_EQ(ordo({mode, dir + "main.cls", "-n", "-o" + dir + "ordo.err"}), 0) << output;
        std::string answer = read("ordo.err");
        for (std::size_t at = 0; (at = answer.find(dir, at)) != std::string::npos;)
            answer.erase(at, dir.size());
        for (char& c : answer)
            if (c == '\n') c = ' ';
        return answer;
    }
    // Gives a file a time; `seconds` count from an arbitrary start.
    void stamp(const std::string& name, int seconds) {
        EXPECT_EQ(os::files().setModified(dir + name, Start + seconds * Second), os::FileError::None) << name;
    }
    void pretendBuilt() {
        for (const char* name : {"main", "b", "c"}) {
            stamp(std::string(name) + ".cls", 1);
            write(std::string(".tarnwick/") + name + ".o", "object");
            stamp(std::string(".tarnwick/") + name + ".o", 2);
            write(std::string(name) + ".sym", "symbols");
            stamp(std::string(name) + ".sym", 2);
        }
        write("main.exe", "program");
        stamp("main.exe", 3);
    }
};

TEST_F(Make, QueriesNameTheFilesOfTheProgramUsedClassesFirst) {
    EXPECT_EQ(query("/fa"), "c.cls b.cls main.cls ");
    EXPECT_EQ(query("/fs"), "c.cls b.cls main.cls ");
    write("tools/libtarnwick.so", "library");
    EXPECT_EQ(query("/ft"), "main.exe tools/libtarnwick.so ");
    EXPECT_EQ(query("-fq"), "c.cls b.cls main.cls ");
    write("b.rc", "");
    EXPECT_EQ(query("/fs"), "c.cls b.cls b.rc main.cls ");
    EXPECT_EQ(query("/ft"), "main.exe main.rcx tools/libtarnwick.so ");
}

TEST_F(Make, TheRunTimeLibraryIsAmongTheTargetsAndTheEditWindowsWhereThereIsOne) {
    for (const char* file : {"libtarnwick.so", "libtarnwick-qt.so", "libtarnwick-edit.so", "tarnwick-fatal"})
        write(std::string("tools/") + file, "library");
    write("b.rc", "Main DIALOG\nEND\n");
    EXPECT_EQ(query("/ft"),
              "main.exe main.rcx tools/libtarnwick.so tools/libtarnwick-qt.so tools/tarnwick-fatal ");
    write("c.rc", "Other EditWindow\nEND\n");
    EXPECT_EQ(query("/ft"), "main.exe main.rcx tools/libtarnwick.so tools/libtarnwick-qt.so "
                            "tools/libtarnwick-edit.so tools/tarnwick-fatal ");
}

TEST_F(Make, FilesThatTheResourcesNameAreAmongTheTargetsEachOnce) {
    write("tools/libtarnwick.so", "library");
    write("b.rc", "note INCFILE \"note.txt\"\nagain INCFILE \"note.txt\"\nface BITMAP \"face.bmp\"\n"
                  "gone INCFILE \"sub\\\\gone.wav\"\ndb DBFILE PRELOAD \"data.dbf\"\nother DBFILE PRELOAD "
                  "\"other.dbf\"\n");
    write("c.rc", "same INCFILE \"" + dir + "note.txt\"\nmark ICON \"mark.ico\"\n");
    write("note.txt", "note");
    write("data.dbf", "");
    EXPECT_EQ(query("/ft"), "main.exe main.rcx tools/libtarnwick.so mark.ico note.txt sub/gone.wav data.dbf ")
        << "one that is not there is named as well; a table only where it is, and a picture is in the "
           "companion";
}

TEST_F(Make, PlaceholdersInTheResourcesStandForTheFoldersOfTheSettings) {
    write("tools/libtarnwick.so", "library");
    write("res/x.wav", "wave");
    write("tools/y.xml", "<y/>");
    write("tools/ide.ini", "[ordo]\nCLS=quarn.exe\n[PathsOptionsDlg]\nEdit5=" + dir + "res/\n");
    write("b.rc", "x INCFILE \"<RESOURCEDIR>\\\\x.wav\"\ny INCFILE \"{COMPILERDIR}\\\\y.xml\"\n");
    EXPECT_EQ(query("/ft"), "main.exe main.rcx tools/libtarnwick.so res/x.wav tools/y.xml ");
}

// As a device such as /dev/null would be.
TEST_F(Make, APipeThatIsNamedForTheAnswerIsNotReplaced) {
    const std::string pipe = dir + "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(ordo({"/fa", dir + "main.cls", "-n", "-o" + pipe}), 2) << "nobody reads it";
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(ordo({"/fa", dir + "main.cls", "-n", "-o" + pipe}), 0) << output;
    char answer[1000] = {};
    EXPECT_GT(::read(reader, answer, sizeof answer - 1), 0);
    EXPECT_NE(std::string(answer).find("main.cls"), std::string::npos) << answer;
    ::close(reader);
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_F(Make, TimeStampsDecideWhatIsOutOfDate) {
    pretendBuilt();
    EXPECT_EQ(query("/fq"), "");
    stamp("c.cls", 9);
    EXPECT_EQ(query("/fq"), "c.cls b.cls main.cls ");
    pretendBuilt();
    stamp("b.cls", 9);
    EXPECT_EQ(query("/fq"), "b.cls main.cls ");
    pretendBuilt();
    stamp("main.cls", 9);
    EXPECT_EQ(query("/fq"), "main.cls ");
    pretendBuilt();
    std::filesystem::remove(dir + "b.sym");
    EXPECT_EQ(query("/fq"), "b.cls ");
    pretendBuilt();
    std::filesystem::remove(dir + "main.exe");
    EXPECT_EQ(query("/fq"), "main.exe ");
    pretendBuilt();
    write("c.rc", "");
    EXPECT_EQ(query("/fq"), "c.rc ");
}

TEST_F(Make, AClassThatWentAwayMakesItsUserOutOfDate) {
    pretendBuilt();
    std::filesystem::remove(dir + "c.cls");
    EXPECT_EQ(query("/fq"), "b.cls ");
    EXPECT_EQ(query("/fa"), "b.cls main.cls ");
}

TEST_F(Make, ClassesThatUseEachOtherAreNamedOnce) {
    write("c.cls", "Tarnwick Class C\nUses main b c\nEnd class\n");
    EXPECT_EQ(query("/fa"), "c.cls b.cls main.cls ");
}

TEST_F(Make, ClassesComeFromTheFolderTheMainFolderAndTheInheritedPath) {
    std::filesystem::rename(dir + "c.cls", (write("library/x", ""), dir + "library/C.cls"));
    EXPECT_EQ(
        ordo({"/fa", dir + "main.cls", "-i" + dir + "nowhere;" + dir + "library", "-n", "-o" + dir + "o"}),
        0);
    EXPECT_EQ(read("o"), dir + "library/C.cls\n" + dir + "b.cls\n" + dir + "main.cls\n");
}

TEST_F(Make, TheFileMayStandRightBehindTheOption) {
    EXPECT_EQ(ordo({"/fa" + dir + "main.cls", "-n", "-o" + dir + "o"}), 0);
    EXPECT_EQ(read("o"), dir + "c.cls\n" + dir + "b.cls\n" + dir + "main.cls\n");
}

TEST_F(Make, ABadCommandLineIsAnErrorWithAText) {
    EXPECT_EQ(ordo({"-fm", dir + "none.cls", "-o" + dir + "o"}), 1);
    EXPECT_NE(read("o").find("error 1901"), std::string::npos) << read("o");
    EXPECT_EQ(ordo({"-fm", dir + "main.txt", "-o" + dir + "o"}), 1);
    EXPECT_NE(read("o").find("error 1905"), std::string::npos) << read("o");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-zz", "-o" + dir + "o"}), 1);
    EXPECT_NE(read("o").find("error 1906"), std::string::npos) << read("o");
}

TEST_F(Make, ABuildBringsAllUpToDateAndTheNextOneDoesNothing) {
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    EXPECT_EQ(query("/fq"), "");
    EXPECT_NE(errors().find(": 0 errors."), std::string::npos);
    EXPECT_EQ(run(dir + "main.exe", {}), 0);
    EXPECT_EQ(output, "c\n");
    const auto before = os::infoOf(dir + "main.exe");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0);
    EXPECT_EQ(os::infoOf(dir + "main.exe").inode, before.inode);
    EXPECT_EQ(ordo({"-fa", dir + "main.cls", "-o" + dir + "o"}), 0);
    EXPECT_NE(os::infoOf(dir + "main.exe").inode, before.inode);
}

TEST_F(Make, MessagesOfAllFailedCompilesAreCollected) {
    write("b.cls", "Tarnwick Class B\nUses c\npublic function TEXT() return string\nreturn 1\nend "
                   "function\nEnd class\n");
    write("c.cls", "Tarnwick Class C\npublic const LETTER = 1\nconst x = y\nEnd class\n");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 1);
    EXPECT_NE(errors().find(dir + "b.cls(4) : error 1301"), std::string::npos) << errors();
    EXPECT_NE(errors().find(dir + "c.cls(3) : error 1201"), std::string::npos) << errors();
    EXPECT_EQ(errors().find(": 0 errors."), std::string::npos) << errors();
    EXPECT_FALSE(exists("main.exe"));
}

TEST_F(Make, AMissingClassIsAnErrorWithItsLine) {
    std::filesystem::remove(dir + "c.cls");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 1);
    EXPECT_NE(errors().find(dir + "b.cls(2) : error 1203"), std::string::npos) << errors();
}

TEST_F(Make, AClassWithoutMainIsNoProgram) {
    EXPECT_EQ(ordo({"-fm", dir + "c.cls", "-o" + dir + "o"}), 1);
    EXPECT_NE(errors().find("error 1911"), std::string::npos) << errors();
}

class BrokenCompiler : public Make {
protected:
    void compiler(const std::string& script) {
        std::filesystem::remove(dir + "tools/quarn.exe");
        write("tools/quarn.exe", "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(dir + "tools/quarn.exe", std::filesystem::perms::owner_all);
    }
    std::string failure() {
        write("tools/sarn.err", "stale : 0 errors.\n");
        EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 1);
        EXPECT_EQ(errors().find(": 0 errors."), std::string::npos);
        return errors();
    }
};

TEST_F(BrokenCompiler, DeathBySignalIsAFailureThatSaysSo) {
    compiler("kill -9 $$");
    EXPECT_NE(failure().find("error 1909 the compiler failed: it was ended by signal 9"), std::string::npos)
        << errors();
}

TEST_F(BrokenCompiler, SilenceIsAFailure) {
    compiler("exit 0");
    EXPECT_NE(failure().find("it left no message"), std::string::npos) << errors();
}

TEST_F(BrokenCompiler, ACodeWithoutAMessageIsAFailure) {
    compiler("exit 7");
    EXPECT_NE(failure().find("it ended with code 7"), std::string::npos) << errors();
}

TEST_F(BrokenCompiler, ASuccessMarkDoesNotHideACode) {
    compiler("echo 'x : 0 errors.' > " + dir + "tools/sarn.err; exit 3");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 1);
    EXPECT_NE(errors().find("it ended with code 3"), std::string::npos) << errors();
}

TEST_F(BrokenCompiler, AMissingCompilerIsAFailure) {
    std::filesystem::remove(dir + "tools/quarn.exe");
    EXPECT_NE(failure().find("the program is not found"), std::string::npos) << errors();
}

TEST_F(BrokenCompiler, ACompilerThatMayNotBeRunIsToldWithTheNextStep) {
    compiler("exit 0");
    std::filesystem::permissions(dir + "tools/quarn.exe", std::filesystem::perms(0644));
    EXPECT_NE(failure().find(
                  "error 1909 the compiler failed: its file may not be run: make it executable (chmod +x '" +
                  dir + "tools/quarn.exe')"),
              std::string::npos)
        << errors();
}

TEST_F(BrokenCompiler, AFailingCCompilerIsToldWithItsText) {
    const Variable backEnd("TARNWICK_CC", "gcc-O0");
    write("bin/cc", "#!/bin/sh\necho out of luck\nexit 1\n");
    std::filesystem::permissions(dir + "bin/cc", std::filesystem::perms::owner_all);
    const Variable path("PATH", dir + "bin:/usr/bin:/bin");
    EXPECT_NE(failure().find("error 1904 the C compiler failed: it ended with code 1\n> out of luck"),
              std::string::npos)
        << errors();
    EXPECT_FALSE(exists(".tarnwick/main.o"));
}

TEST_F(BrokenCompiler, NoCCompilerIsTold) {
    const Variable path("PATH", dir + "empty"), backEnd("TARNWICK_CC", "gcc-O2");
    EXPECT_NE(failure().find("error 1903"), std::string::npos) << errors();
}

TEST_F(Make, TheLineOfTheSettingsIsUsed) {
    write("environment/ide.ini", "[ordo]\r\nCLS=\"" + dir + "tools/quarn.exe\" /p2 /d2 /q /s3000 /i\"" + dir +
                                     "library\" /lw1 ^.cls\r\n");
    write("config/tarnwick/registry.ini",
          "[SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe]\n=" + dir +
              "environment/ide\n");
    std::filesystem::rename(dir + "c.cls", (write("library/x", ""), dir + "library/c.cls"));
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-i" + dir + "library", "-o" + dir + "o"}), 0) << errors();
    EXPECT_NE(read("main.sym").find("-d2 -p2 -q -s3000 -lw1"), std::string::npos) << read("main.sym");
}

TEST_F(Make, NamesWithBlanksAndOtherBytesWork) {
    std::filesystem::remove_all(dir);
    useFolder("tool chain \xC3\xA4\xFF XXXXXX");
    write("my main.cls",
          "Tarnwick Class Main\nUses b\nfunction main()\nPRINT(TEXT())\nend function\nEnd class\n");
    write("b.cls", "Tarnwick Class B\npublic function TEXT() return string\nreturn \"\xC3\xA4\xFF\"\nend "
                   "function\nEnd class\n");
    EXPECT_EQ(ordo({"-fm", dir + "my main.cls", "-o" + dir + "o"}), 0) << errors();
    EXPECT_EQ(run(dir + "my main.exe", {}), 0);
    EXPECT_EQ(output, "\xC3\xA4\xFF\n");
}

TEST_F(Make, ResourceTwinsBecomeOneCompanionOfTheProgram) {
    write("b.rc", "First DIALOG\n    POSITION=20 20 240 160\nEND\n");
    write("main.rc", "Main DIALOG\n    POSITION=20 20 240 160\nEND\n");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    EXPECT_TRUE(exists("main.rcx"));
    EXPECT_FALSE(exists("b.rcx"));
    EXPECT_EQ(query("/fq"), "");
    EXPECT_EQ(ordo({"-fm", dir + "b.rc", "-o" + dir + "o"}), 0) << errors();
    EXPECT_TRUE(exists("b.rcx"));
    write("b.rc", "First DIALOG\n    POSITION=20 20 240 160\nEND\nwhat is this\n");
    EXPECT_EQ(query("/fq"), "b.rc ");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 1);
    EXPECT_NE(errors().find(dir + "b.rc(4) : error "), std::string::npos) << errors();
}

TEST_F(Make, ASourceThatIsSavedWhileItIsCompiledIsOutOfDateThen) {
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    const std::int64_t began = os::infoOf(dir + "c.cls").modified;
    // A compile takes longer than this; what it makes must not look newer than a source of that moment.
    write("c.cls", "Tarnwick Class C\npublic const LETTER = \"d\"\nEnd class\n");
    const std::int64_t saved = os::infoOf(dir + "c.cls").modified;
    EXPECT_EQ(quarn({"-q", dir + "c.cls"}), 0) << errors();
    const std::int64_t object = os::infoOf(dir + ".tarnwick/c.o").modified;
    EXPECT_GE(object, saved);
    EXPECT_GT(saved, began);
    EXPECT_LT(object, os::infoOf(dir + ".tarnwick/c.c").modified);
    EXPECT_EQ(os::infoOf(dir + "c.sym").modified, object);
}

TEST_F(Make, ASourceFromTheFutureIsCompiledOnce) {
    write("main.rc", "Main DIALOG\n    POSITION=20 20 240 160\nEND\n");
    for (const char* name : {"c.cls", "main.rc"})
        os::files().setModified(dir + name, os::infoOf(dir + name).modified + 3600 * Second);
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    EXPECT_EQ(query("-fq"), "");
    os::files().setModified(dir + "c.cls", os::infoOf(dir + "c.cls").modified + 1);
    EXPECT_EQ(query("-fq"), "c.cls ") << "its users see that it has not changed";
}

TEST_F(Make, BuildsAtTheSameTimeWaitForEachOther) {
    os::StartError error = os::StartError::None;
    std::vector<std::unique_ptr<os::Child>> builds;
    for (const char* answer : {"1", "2", "3", "4"})
        builds.push_back(os::processes().start(
            {dir + "tools/ordo.exe", {"-fa", dir + "main.cls", "-o" + dir + answer}, dir, dir + "output"},
            error));
    for (const auto& build : builds) {
        ASSERT_NE(build, nullptr);
        EXPECT_EQ(build->wait(60000).code, 0);
    }
    for (const char* answer : {"1", "2", "3", "4"})
        EXPECT_EQ(read(answer),
                  dir + "c.cls : 0 errors.\n" + dir + "b.cls : 0 errors.\n" + dir + "main.cls : 0 errors.\n");
    EXPECT_EQ(run(dir + "main.exe", {}), 0);
    EXPECT_EQ(output, "c\n");
}

TEST_F(Make, AWorkFolderThatCannotBeMadeIsAnError) {
    write(".tarnwick", "in the way");
    EXPECT_EQ(quarn({"-q", dir + "c.cls"}), 1);
    EXPECT_NE(errors().find("error 1902 the file '" + dir + ".tarnwick/' cannot be written"),
              std::string::npos)
        << errors();
}

}  // namespace
}  // namespace tarn::toolchain
