// SPDX-License-Identifier: Apache-2.0
//
// Which compiler the make tool calls, with what words, and several classes in one call.
#include "support/toolchain_folder.h"
#include "toolchain/build/command.h"
#include "toolchain/build/tcc.h"

#include <algorithm>
#include <filesystem>
#include <string>

namespace tarn::toolchain {
namespace {

class Command : public ToolchainTest {
protected:
    void SetUp() override {
        ToolchainTest::SetUp();
        write("main.cls",
              "Tarnwick Class Main\nUses b\nfunction main()\nPRINT(TEXT())\nend function\nEnd class\n");
        write("b.cls", "Tarnwick Class B\npublic function TEXT() return string\nreturn \"b\"\nend function\n"
                       "End class\n");
    }
    void installed(const std::string& line) {
        write("environment/ide.ini", "[ordo]\r\nCLS=" + line + "\r\n");
        write("config/tarnwick/registry.ini",
              "[SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe]\n=" + dir +
                  "environment/ide\n");
    }
    // A copy of the tools, with `files` of them.
    std::string copied(const std::vector<std::string>& files) {
        std::filesystem::create_directories(dir + "copy");
        for (const std::string& file : files)
            std::filesystem::copy_file(BINARY_DIR "/" + file, dir + "copy/" + file);
        return dir + "copy/ordo.exe";
    }
    // A compiler of somebody else, which leaves its words, each with a NUL behind it.
    void foreign(const std::string& file) {
        std::filesystem::remove(dir + file);
        write(file, "#!/bin/sh\nprintf '%s\\0' \"$@\" >>'" + dir +
                        "words'\necho 'x : 0 errors.' >\"$(dirname \"$0\")/sarn.err\"\n");
        std::filesystem::permissions(dir + file, std::filesystem::perms::owner_all);
    }
    std::vector<std::string> words() const {
        std::vector<std::string> list{""};
        for (const char c : read("words")) {
            if (c == '\0')
                list.emplace_back();
            else
                list.back() += c;
        }
        list.pop_back();
        return list;
    }
};

TEST_F(Command, ACopiedToolFolderWorksWithItsOwnCompiler) {
    installed("\"" + dir + "tools/quarn.exe\" /p2 /d2 /q ^.cls");
    const std::string tool = copied({"ordo.exe", "quarn.exe", "libtarnwick.so"});
    EXPECT_EQ(run(tool, {"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << output;
    EXPECT_NE(read("copy/sarn.err").find(": 0 errors."), std::string::npos);
    EXPECT_FALSE(exists("tools/sarn.err"));
    EXPECT_NE(read("main.sym").find("-d2 -p2 -q"), std::string::npos) << "the options of the settings count";
}

TEST_F(Command, ABareNameIsThatOfAToolBesideThisOne) {
    write("tools/ide.ini", "[ordo]\r\nCLS=quarn.exe /p2 /d1 /q ^.cls\r\n");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    EXPECT_EQ(run(dir + "main.exe", {}), 0);
    EXPECT_EQ(output, "b\n");
}

TEST_F(Command, AMessageIsPrintedOnce) {
    write("tools/ide.ini", "[ordo]\r\nCLS=quarn.exe /p2 /d1 ^.cls\r\n");
    write("main.cls", "Tarnwick Class Main\nfunction main()\nx := 1\nend function\nEnd class\n");
    EXPECT_NE(run(dir + "tools/ordo.exe", {"-fm", dir + "main.cls"}), 0);
    const std::size_t first = output.find("error 1201");
    ASSERT_NE(first, std::string::npos) << output;
    EXPECT_EQ(output.find("error 1201", first + 1), std::string::npos) << output;
}

TEST_F(Command, TheSettingsBesideTheToolComeFirst) {
    installed("\"" + dir + "tools/quarn.exe\" /p2 /d2 /q ^.cls");
    write("tools/ide.ini", "[ordo]\nCLS=\"" + dir + "tools/quarn.exe\" /p0 /d0 /q ^.cls\n");
    const Variable quick("TARNWICK_CC", tccIsThere() ? "tcc" : "gcc-O0");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    EXPECT_NE(read("main.sym").find("-d0 -p0 -q"), std::string::npos);
    // A file without a compiler, as it is installed, is passed over.
    write("tools/ide.ini", "[ordo]\nCLS=\n");
    EXPECT_EQ(ordo({"-fa", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    EXPECT_NE(read("main.sym").find("-d2 -p2 -q"), std::string::npos);
}

TEST_F(Command, TheInstalledCompilerCountsWhereNoneLiesBeside) {
    installed("\"" + dir + "tools/quarn.exe\" /p2 /d1 /q ^.cls");
    const std::string tool = copied({"ordo.exe", "libtarnwick.so"});
    EXPECT_EQ(run(tool, {"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << output;
    EXPECT_NE(errors().find(": 0 errors."), std::string::npos);
    EXPECT_FALSE(exists("copy/sarn.err"));
    EXPECT_NE(read("main.sym").find("-d1 -p2 -q"), std::string::npos);
}

TEST_F(Command, AnotherCompilerIsCalledClassByClassWithTheWordsOfItsLine) {
    foreign("tools/quarn.exe");
    installed("\"" + dir + "tools/quarn.exe\" /p1 \"/x y\" /om ^.cls");
    static_cast<void>(ordo({"-fm", dir + "main.cls", "-i" + dir + "a b;" + dir + "c", "-o" + dir + "o"}));
    const std::string path = "-i" + dir + ";" + dir + "a b;" + dir + "c";
    EXPECT_EQ(words(), (std::vector<std::string>{"/p1", "/x y", "/om", dir + "b.cls", path, "/p1", "/x y",
                                                 "/om", dir + "main.cls", path}));
}

TEST_F(Command, TheInheritedPathOfTheLineCountsWhereNoneIsGiven) {
    installed("\"" + dir + "tools/quarn.exe\" /d1 /i\"" + dir + "nowhere;" + dir + "lib rary\" ^.cls");
    write("lib rary/b.cls", read("b.cls"));
    std::filesystem::remove(dir + "b.cls");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    EXPECT_EQ(run(dir + "main.exe", {}), 0);
    EXPECT_EQ(output, "b\n");
    EXPECT_EQ(ordo({"-fq", "-n", dir + "main.cls", "-o" + dir + "o"}), 0);
    EXPECT_EQ(read("o"), "");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-i" + dir + "nowhere", "-o" + dir + "o"}), 1)
        << "a given one counts alone";
}

TEST_F(Command, OurOwnCompilerGetsAllClassesInOneCall) {
    CompilerLine line;
    line.words = {"/q", "^.cls"};
    line.isOwn = true;
    EXPECT_EQ(compilerArguments(line, {"/a;b/x.cls", "/a;b/y.cls"}, "/a;b/", {"/i"}),
              (std::vector<std::string>{"-m/a;b/", "/q", "/a;b/x.cls", "/a;b/y.cls", "-i/i"}));
    // The result file is taken away at each call: one that only the last one wrote would not name both.
    write("b.cls", "Tarnwick Class B\npublic const C = x\nEnd class\n");
    write("main.cls", "Tarnwick Class Main\nUses b\nconst D = y\nfunction main()\nend function\nEnd class\n");
    EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 1);
    EXPECT_EQ(read("o"),
              dir + "b.cls(2) : error 1201 'x' is not declared\n> " + dir + "b.cls has 1 error.\n" + dir +
                  "main.cls(3) : error 1201 'y' is not declared\n> " + dir + "main.cls has 1 error.\n");
    EXPECT_EQ(errors(), read("o"));
}

// What would be another word, another command or another line to a shell.
TEST_F(Command, NamesReachTheToolsAsTheyAre) {
    for (const char* backEnd : {"tcc", "gcc-O0"}) {
        if (backEnd == std::string("tcc") && !tccIsThere()) continue;
        const Variable chosen("TARNWICK_CC", backEnd);
        for (const char* name :
             {"a b",       "it's",  "q\"q", "\"q\"", "$HOME", "$(touch x)", "`touch x`", "a;touch x",
              "a&b|c>d<e", "a^b",   "-p9",  "(x)",   "#x",    "a\nb",       "*?[x]",     "~",
              "a,b",       "-Wl,x", "@x",   "%d%s",  "a=b",   "!x"}) {
            const std::string folder = "in " + std::string(name) + "/";
            const std::string file = folder + name + ".cls";
            write(file,
                  "Tarnwick Class Main\nUses b\nfunction main()\nPRINT(TEXT() + ARGUMENTS())\nend function\n"
                  "End class\n");
            write(folder + "b.cls", read("b.cls"));
            ASSERT_EQ(ordo({"-fm", dir + file, "-o" + dir + "o"}), 0) << name << "\n"
                                                                      << errors() << read("o");
            ASSERT_EQ(run(dir + folder + name + ".exe", {"$HOME;x"}), 0) << name << output;
            EXPECT_EQ(output, "b$HOME;x\n") << name;
            EXPECT_FALSE(exists("x")) << name;
        }
    }
}

TEST_F(Command, WordsOfALineThatOnlyLookLikeTheClassStay) {
    foreign("tools/quarn.exe");
    write("it's $HOME/m.cls", "Tarnwick Class M\nfunction main()\nend function\nEnd class\n");
    installed("\"" + dir + "tools/quarn.exe\" \"/x$(touch x);^.log\" ^.cls");
    static_cast<void>(ordo({"-fm", dir + "it's $HOME/m.cls", "-o" + dir + "o"}));
    EXPECT_EQ(words(), (std::vector<std::string>{"/x$(touch x);" + dir + "it's $HOME/m.log",
                                                 dir + "it's $HOME/m.cls", "-i" + dir + "it's $HOME/"}));
    EXPECT_FALSE(exists("x"));
}

// It is told by the note that it carries; this one carries it, and dies.
TEST_F(Command, ACompilerThatBreaksOverSeveralClassesIsCalledForEach) {
    const std::string tool = copied({"ordo.exe", "libtarnwick.so"});
    write("copy/quarn.exe",
          std::string("#!/bin/sh\nprintf '%s\\0' \"$@\" >>'" + dir + "words'\nkill -9 $$\n# Tarnwick") +
              std::string(4, '\0') + "quar\n");
    std::filesystem::permissions(dir + "copy/quarn.exe", std::filesystem::perms::owner_all);
    EXPECT_EQ(run(tool, {"-fm", dir + "main.cls", "-o" + dir + "o"}), 1);
    for (const char* name : {"b.cls", "main.cls"})
        EXPECT_NE(read("o").find(dir + name + " : error 1909 the compiler failed: it was ended by signal 9"),
                  std::string::npos)
            << read("o");
    const std::vector<std::string> all = words();
    EXPECT_EQ(std::count(all.begin(), all.end(), dir + "b.cls"), 2) << "in the call of both, and alone";
    EXPECT_EQ(all.size(), 22U);
}

// ---- several classes in a call ----

TEST_F(Command, QuarnCompilesSeveralClasses) {
    EXPECT_EQ(quarn({"/d1", dir + "b.cls", dir + "main.cls"}), 0) << errors();
    EXPECT_EQ(errors(), dir + "b.cls : 0 errors.\n" + dir + "main.cls : 0 errors.\n");
    EXPECT_EQ(output, errors());
    const std::string b = read("b.sym"), main = read("main.sym"), object = read(".tarnwick/main.o");
    // In the other order, and each by itself, they are what they were.
    EXPECT_EQ(quarn({"/d1", dir + "main.cls", dir + "b.cls"}), 0) << errors();
    EXPECT_EQ(read("b.sym"), b);
    EXPECT_EQ(read("main.sym"), main);
    EXPECT_EQ(quarn({"/d1", dir + "b.cls"}), 0);
    EXPECT_EQ(quarn({"/d1", dir + "main.cls"}), 0);
    EXPECT_EQ(read("b.sym"), b);
    EXPECT_EQ(read("main.sym"), main);
    EXPECT_EQ(read(".tarnwick/main.o"), object);
}

TEST_F(Command, MessagesOfSeveralClassesAreThoseOfEach) {
    write("a.cls", "Tarnwick Class A\nUses b c\nconst x = missing\nEnd class\n");
    write("c.cls", "Tarnwick Class C\nUses a nowhere\npublic const y = (1\nEnd class\n");
    const std::vector<std::string> names = {"a", "b", "c", "main", "none"};
    std::vector<std::string> alone;
    for (const std::string& name : names) {
        const int code = quarn({"/q", "/d1", dir + name + ".cls"});
        alone.push_back(code == 0 ? "" : errors());
    }
    EXPECT_NE(alone[0], "");
    EXPECT_EQ(alone[1], "");
    EXPECT_NE(alone[2], "");
    EXPECT_NE(alone[4], "");
    std::vector<std::size_t> order = {0, 1, 2, 3, 4};
    do {
        std::vector<std::string> arguments{"/q", "/d1"};
        std::string expected;
        for (const std::size_t i : order) {
            arguments.push_back(dir + names[i] + ".cls");
            expected += alone[i];
        }
        EXPECT_EQ(quarn(arguments), 1);
        ASSERT_EQ(errors(), expected);
        EXPECT_TRUE(exists(".tarnwick/b.o"));
        EXPECT_TRUE(exists(".tarnwick/main.o"));
        EXPECT_FALSE(exists(".tarnwick/a.o"));
    } while (std::next_permutation(order.begin(), order.begin() + 3));
}

TEST_F(Command, AClassThatIsNamedTwiceIsCompiledTwice) {
    EXPECT_EQ(quarn({"/q", "/d1", dir + "b.cls", dir + "b.cls"}), 0);
    EXPECT_EQ(errors(), dir + "b.cls : 0 errors.\n" + dir + "b.cls : 0 errors.\n");
}

TEST_F(Command, OneFileThatIsNoClassStopsTheCall) {
    EXPECT_EQ(quarn({"/q", dir + "b.cls", dir + "b.txt"}), 1);
    EXPECT_NE(errors().find("error 1905 '" + dir + "b.txt'"), std::string::npos) << errors();
    EXPECT_FALSE(exists(".tarnwick/b.o"));
}

}  // namespace
}  // namespace tarn::toolchain
