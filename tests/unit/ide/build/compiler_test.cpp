// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/compiler.h"

#include "ide/build/build.h"
#include "support/ide_fixture.h"
#include "support/tempfolder.h"

#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace {

class CommandLine : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        std::filesystem::create_directory(dir + "tools");
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir + "tools");
    }
    std::string head() const { return "\"" + dir + "tools/quarn.exe\""; }
    // A file that carries a product version as a Windows program does.
    void tool(const std::string& name, const std::string& version) {
        std::string bytes = "MZ....";
        const auto wide = [&](const std::string& text) {
            for (const char c : text) bytes += {c, '\0'};
            bytes += std::string(2, '\0');
        };
        if (!version.empty()) {
            wide("ProductVersion");
            bytes += std::string(2, '\0');
            wide(version);
        }
        write("tools/" + name, bytes);
    }
};

TEST_F(CommandLine, HasEveryPieceInItsOrder) {
    CompilerOptions o;
    o.precond = 2;
    o.debug = 1;
    o.quiet = o.verification = o.manifest = o.shortcutFile = 1;
    o.symbols = 3000;
    o.extra = "  /x  ";
    o.inheritPaths = "/a;/b";
    o.resourcePaths = "/r";
    tool("ppc386.exe", "");
    EXPECT_EQ(SAVECOMMANDLINE(o, 3, false),
              head() + " /p2 /d1 /q /v /om /os /s3000 /x /i\"/a;/b\" /r\"/r\" /lw3 /gfpc ^.cls");
}

TEST_F(CommandLine, LeavesOutWhatIsEmptyAndEndsInTheClass) {
    EXPECT_EQ(SAVECOMMANDLINE(CompilerOptions{}, 12, false), head() + " /s0 ^.cls");
    EXPECT_EQ(SAVECOMMANDLINE(CompilerOptions{}, 0, false), head() + " /s0 /lw0 ^.cls");
}

TEST_F(CommandLine, ChoosesTheBackEndByVersionPrefix) {
    const struct {
        const char* version;
        const char* end;
    } rows[] = {{"4.0", "/gd32 ^.cls"},    {"4.05", "/gd32 ^.cls"}, {"10.0", "/gdv10 ^.cls"},
                {"10.01", "/gdv10 ^.cls"}, {"5.0", "/s0 ^.cls"},    {"", "/s0 ^.cls"}};
    for (const auto& row : rows) {
        tool("dcc32.exe", row.version);
        EXPECT_TRUE(SAVECOMMANDLINE(CompilerOptions{}, 12, false).ends_with(row.end)) << row.version;
    }
    tool("ppc386.exe", "");
    tool("dcc32.exe", "5.0");
    EXPECT_TRUE(SAVECOMMANDLINE(CompilerOptions{}, 12, false).ends_with(" /gfpc ^.cls"));
}

TEST_F(CommandLine, IsStoredWhereTheMakeToolReadsIt) {
    const std::string line = SAVECOMMANDLINE(CompilerOptions{}, 0, true);
    EXPECT_EQ(PROFILESTRGET(ini(), "ordo", "CLS"), line);
}

TEST_F(CommandLine, TakesTheLevelsFromTheSettings) {
    PROFILESTRPUT(ini(), "CompOptionsDlg", "Precond1", "0");
    PROFILESTRPUT(ini(), "CompOptionsDlg", "Precond2", "1");
    PROFILESTRPUT(ini(), "CompOptionsDlg", "Debug1", "1");
    PROFILESTRPUT(ini(), "CompOptionsDlg", "Debug2", "0");
    EXPECT_EQ(GETCOMPILEROPTIONS().precond, 2);
    EXPECT_EQ(GETCOMPILEROPTIONS().debug, 1);
}

using Compiler = IdeTest;

TEST_F(Compiler, ListRefusesWhatTheMakeToolCannotTake) {
    std::filesystem::create_directory(dir + "tools");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir + "tools");
    const std::string text = write("a.txt", "x"), cls = write("a.cls", "x");
    EXPECT_EQ(LOADDEPLIST("", "/fq", true).error, "No file has been specified.");
    EXPECT_EQ(LOADDEPLIST(text, "/fq", true).error,
              "'" + text + "' is not a class or resource file (*.cls, *.rc)");
    EXPECT_EQ(LOADDEPLIST(dir + "b.cls", "/fq", true).error, "The file '" + dir + "b.cls' was not found.");
    EXPECT_EQ(LOADDEPLIST(cls, "/fq", true).error, "The file '" + dir + "tools/ordo.exe' was not found.");
}

TEST_F(Compiler, CompileNamesWhatStandsInItsWay) {
    std::filesystem::create_directory(dir + "tools");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir + "tools");
    const std::string cls = write("a.cls", "no class");
    COMPILESINGLEFILE(cls, 1);
    EXPECT_EQ(lastText(),
              "Cannot compile '" + cls +
                  "'\n\nCannot find the compiler. It should be in the following file:\n\t'" + dir +
                  "tools/quarn.exe'\n\nUse Tools-Options-Paths to make sure it is in the directory "
                  "specified by the compiler file path.\n");
    write("tools/quarn.exe", "x");
    COMPILESINGLEFILE(write("a.txt", "x"), 1);
    EXPECT_EQ(lastText(), "Cannot compile '" + dir + "a.txt'\n\nCannot compile '" + dir +
                              "a.txt'\nThe file cannot be found, or it does not have the "
                              "correct extension (*.cls)\n");
    COMPILESINGLEFILE(cls, 1);
    EXPECT_EQ(lastText(), "Cannot compile '" + cls + "'\n\nCannot compile '" + cls +
                              "'\nThis file is not a valid class.\n");
}

TEST_F(Compiler, ThatMayNotBeRunIsToldWithTheNextStep) {
    std::filesystem::create_directory(dir + "tools");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir + "tools");
    write("tools/quarn.exe", "#!/bin/sh\n");
    ASSERT_EQ(::chmod((dir + "tools/quarn.exe").c_str(), 0644), 0);
    COMPILESINGLEFILE(write("a.cls", "Tarnwick Class A\nEnd class\n"), 1);
    EXPECT_EQ(lastText(), ErrorMessage(908) + " (error 908).\nCannot run external program.\nMake its file "
                                              "executable, or choose other tools in Tools-Options-Paths.");
}

// Tools in a folder where the user cannot write; beside them lies what somebody else's run left. They write where the
// real ones do.
class InstalledTools : public IdeTest {
protected:
    static constexpr unsigned Nobody = 65534;

    void SetUp() override {
        IdeTest::SetUp();
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir + "tools");
        std::filesystem::create_directory(dir + "tools");
        write("a.cls", "Tarnwick Class A\nfunction main()\nend function\nEnd class\n");
        tool("quarn.exe", "a.cls(2) : error 1201 of now");
        tool("ordo.exe", "a.cls(2) : error 1201 of now");
        write("tools/sarn.err", "a.cls : 0 errors.\n");
        write("tools/ordo.err", "/of/long/ago.cls\n");
    }
    void TearDown() override {
        if (root_) {
            ASSERT_EQ(::setresuid(0, 0, 0), 0);
        }
        ::chmod((dir + "tools").c_str(), 0755);
        IdeTest::TearDown();
    }
    // The make tool also answers, with the name of the class.
    void tool(const std::string& name, const std::string& message) {
        write("tools/" + name, "#!/bin/sh\numask 077; mkdir -p '" + dir + "tarnwick'\necho '" + message +
                                   "' >'" + dir +
                                   "tarnwick/sarn.err'\nfor word; do case $word in\n-o*) echo '" + dir +
                                   "a.cls' >\"${word#-o}\";; esac; done\n");
        ASSERT_EQ(::chmod((dir + "tools/" + name).c_str(), 0755), 0);
    }
    // From here on permissions count.
    void becomeUser() {
        ASSERT_EQ(::chmod((dir + "tools").c_str(), 0555), 0);
        if (!root_) return;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(dir))
            if (entry.path().string().find("/tools") == std::string::npos) {
                ASSERT_EQ(::lchown(entry.path().c_str(), Nobody, Nobody), 0);
            }
        ASSERT_EQ(::chown(dir.c_str(), Nobody, Nobody), 0);
        ASSERT_EQ(::setresuid(Nobody, Nobody, 0), 0);
    }

private:
    const bool root_ = ::geteuid() == 0;
};

TEST_F(InstalledTools, AreAskedAllTheSame) {
    const Variable runtime("XDG_RUNTIME_DIR", dir);
    becomeUser();
    const DependencyList list = LOADDEPLIST(dir + "a.cls", "/fa", true);
    EXPECT_EQ(list.files, dir + "a.cls\n");
    EXPECT_EQ(list.error, "");
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(InstalledTools, TellInTheErrorWindowWhatThisBuildSays) {
    const Variable runtime("XDG_RUNTIME_DIR", dir);
    loadWindows();
    becomeUser();
    std::string file = dir + "a.cls";
    bool ok = true;
    RUN_BUILD("Run-Quickbuild", "-fm", file, ok);
    EXPECT_FALSE(ok) << lastText();
    ASSERT_TRUE(IsLoaded(ViewDlg)) << lastText();
    EXPECT_EQ(GetText(ViewDlg), "a.cls(2) : error 1201 of now\n");
}

TEST_F(InstalledTools, CompileOneClass) {
    const Variable runtime("XDG_RUNTIME_DIR", dir);
    becomeUser();
    COMPILESINGLEFILE(dir + "a.cls", 1);
    EXPECT_EQ(lastText(), "Cannot compile '" + dir + "a.cls'\n\na.cls(2) : error 1201 of now\n");
    EXPECT_FALSE(std::filesystem::exists(dir + "tarnwick/sarn.err")) << "it is removed when it has been told";
    EXPECT_EQ(read(dir + "tools/sarn.err"), "a.cls : 0 errors.\n");
}

}  // namespace
}  // namespace tarn
