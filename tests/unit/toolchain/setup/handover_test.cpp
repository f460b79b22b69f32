// SPDX-License-Identifier: Apache-2.0
//
// A program that is built, handed over in each way, and run where it has come to, without anything of the build.
#include "library/ship/copyutil.h"
#include "library/system/system.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/toolchain_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace tarn::toolchain {
namespace {

class Handover : public ToolchainTest {
protected:
    std::string files;  // the output files, one a line
    std::string home;

    // `/home/o'brien & "x"`: a folder that has to be quoted everywhere.
    void SetUp() override {
        ToolchainTest::SetUp();
        home = dir + "o'brien & \"x\"";
        std::filesystem::create_directories(home + "/Desktop");
        std::filesystem::copy(SOURCE_DIR "/examples/wordcount", dir + "wordcount");
        ASSERT_EQ(ordo({"-fm", dir + "wordcount/wordcount.cls", "-o" + dir + "ordo.err"}), 0)
            << read("ordo.err");
        ASSERT_EQ(ordo({"-ft", dir + "wordcount/wordcount.cls", "-n", "-o" + dir + "ordo.err"}), 0);
        files = withoutDebugInformation(read("ordo.err"));
        ASSERT_EQ(runAt(dir + "wordcount"), 0) << output;
        expected = output;
        ASSERT_NE(expected, "");
    }

    std::string expected;  // what the program writes where it was built

    // The same files, but with libraries of the size that is handed over: packing those of a build for development takes
    // half a minute.
    std::string withoutDebugInformation(const std::string& list) {
        std::string lines;
        std::filesystem::create_directories(dir + "libraries");
        for (int i = 1; i <= STRLINES(list); ++i) {
            const std::string file = STRLINE(list, i), small = dir + "libraries/" + FILEGETFNAME(file);
            const bool library = FILEGETEXT(file) == ".so";
            if (library) {
                EXPECT_EQ(run("/usr/bin/strip", {"-g", "-o", small, file}), 0) << output;
            }
            lines += (library ? small : file) + "\n";
        }
        return lines;
    }

    // The program in a folder, with an empty environment.
    int runAt(const std::string& folder) {
        return run("/usr/bin/env", {"-i", folder + "/wordcount.exe", dir + "wordcount/sample.txt"});
    }
    // It runs there, with the libraries that lie beside it.
    void expectRunsAt(const std::string& folder) {
        EXPECT_EQ(runAt(folder), 0) << output;
        EXPECT_EQ(output, expected);
        EXPECT_EQ(run("/usr/bin/env", {"-i", "LD_TRACE_LOADED_OBJECTS=1", folder + "/wordcount.exe"}), 0);
        EXPECT_NE(output.find("libtarnwick.so => " + folder + "/libtarnwick.so"), std::string::npos)
            << output;
        EXPECT_EQ(output.find(BINARY_DIR), std::string::npos) << output;
        EXPECT_EQ(output.find("not found"), std::string::npos) << output;
    }
    // Gives the same answer to each box.
    template <class Command>
    bool answering(const std::string& answer, const Command& command) {
        auto before = platform::useView(platform::makeHeadlessView([&](const platform::Question& question) {
            told = question.text;
            return answer;
        }));
        ClearError();
        const bool ok = command();
        platform::useView(std::move(before));
        return ok;
    }
    void makeInstaller() {
        const std::string main = dir + "wordcount/wordcount.exe";
        write("wordcount-install.iss",
              CREATEISSSCRIPT("Ann", "(c)", "Words", "Counts words", "1.0", "1 0 0 0", files, main, ""));
        ASSERT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "wordcount-install.iss",
                                               "/O" + dir.substr(0, dir.size() - 1), "/Fwordcount-install"}),
                  0)
            << output;
        installer = dir + "wordcount-install.exe";
    }
    int withHome(const std::string& program, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-i", "HOME=" + home, "XDG_RUNTIME_DIR=" + dir, program});
        return run("/usr/bin/env", arguments);
    }
    std::string allIn(const std::string& folder) {
        std::string names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            names += entry.path().string().substr(folder.size()) + "\n";
        return STRSORT(names);
    }

    std::string told, installer;
};

TEST_F(Handover, AFolderOfTheOutputFilesRuns) {
    std::filesystem::create_directories(dir + "to");
    EXPECT_TRUE(answering("OK", [&] { return COPYTOFOLDER(Object(), files, dir + "to"); })) << told;
    expectRunsAt(dir + "to");
}

TEST_F(Handover, AZipFileOfTheOutputFilesRuns) {
    const std::string zip = dir + "words.zip";
    EXPECT_TRUE(answering(zip, [&] { return COPYTOZIP(Object(), files, ""); })) << told;
    std::filesystem::create_directories(dir + "to");
    ASSERT_EQ(run("/usr/bin/unzip", {"-q", zip, "-d", dir + "to"}), 0) << output;
    expectRunsAt(dir + "to");
}

TEST_F(Handover, AnInstallerInstallsQuietlyAndItsUninstallerLeavesNothing) {
    makeInstaller();
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    EXPECT_EQ(output, "");
    const std::string app = home + "/.local/opt/wordcount";
    expectRunsAt(app);
    EXPECT_TRUE(os::sizeOf(home + "/.local/share/applications/wordcount.desktop") > 0);
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(Handover, AnInstallerTakesAFolderOfTheUsersChoice) {
    makeInstaller();
    const std::string app = dir + "my \"own\" place";
    ASSERT_EQ(withHome(installer, {"--quiet", "--folder", app}), 0) << output;
    expectRunsAt(app);
    ASSERT_EQ(withHome(installer, {"--quiet", "--folder", app}), 0) << "again, over itself: " << output;
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_FALSE(std::filesystem::exists(app));
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(Handover, ADamagedInstallerInstallsNothing) {
    makeInstaller();
    EXPECT_EQ(withHome(installer, {"--check"}), 0) << output;
    std::string bytes = read("wordcount-install.exe");
    const std::size_t size = bytes.size();
    bytes[size - 1000] = static_cast<char>(bytes[size - 1000] ^ 1);
    const auto refuses = [&](const std::string& name, const std::string& damaged) {
        write(name, damaged);
        ::chmod((dir + name).c_str(), 0755);
        EXPECT_EQ(withHome(dir + name, {"--quiet"}), 1) << name;
        EXPECT_EQ(output, "This installer is damaged or incomplete. Get it again.\n");
    };
    refuses("flipped.exe", bytes);
    bytes[size - 1000] = static_cast<char>(bytes[size - 1000] ^ 1);
    refuses("cut.exe", bytes.substr(0, size - 1));
    refuses("half.exe", bytes.substr(0, size - size / 4));
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(Handover, QuestionsWithoutAnybodyToAskAreToldAndUnknownOptionsRefused) {
    makeInstaller();
    EXPECT_EQ(withHome(installer, {}), 2);
    EXPECT_EQ(output,
              "There is no screen and no terminal to ask on. Use --home, --system, or --folder FOLDER.\n");
    EXPECT_EQ(withHome(installer, {"--quite"}), 2);
    EXPECT_EQ(withHome(installer, {"--folder"}), 2);
    EXPECT_EQ(run("/usr/bin/env", {"-i", installer, "--quiet"}), 1);
    EXPECT_NE(output.find("There is no home folder"), std::string::npos) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(Handover, AnInstallationThatIsKilledAnywhereIsMadeGoodByTheNext) {
    makeInstaller();
    for (int milliseconds = 1; milliseconds < 200; milliseconds += 17) {
        os::StartError error = os::StartError::None;
        const auto child = os::processes().start(
            {"/usr/bin/env", {"-i", "HOME=" + home, "XDG_RUNTIME_DIR=" + dir, installer, "--quiet"}, dir, ""},
            error);
        ASSERT_NE(child, nullptr);
        child->wait(milliseconds);
        child->stop(0);
        ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
        EXPECT_EQ(allIn(home + "/.local/opt").find(".setup"), std::string::npos) << allIn(home);
    }
    expectRunsAt(home + "/.local/opt/wordcount");
    ASSERT_EQ(withHome(home + "/.local/opt/wordcount/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(Handover, TwoInstallationsAtOnceGoOneAfterTheOther) {
    makeInstaller();
    std::vector<std::unique_ptr<os::Child>> children;
    for (int i = 0; i < 2; ++i) {
        os::StartError error = os::StartError::None;
        children.push_back(os::processes().start(
            {"/usr/bin/env", {"-i", "HOME=" + home, "XDG_RUNTIME_DIR=" + dir, installer, "--quiet"}, dir, ""},
            error));
    }
    for (const auto& child : children) {
        const os::ExitState state = child->wait(60000);
        EXPECT_TRUE(state.ended && state.code == 0) << state.code;
    }
    expectRunsAt(home + "/.local/opt/wordcount");
}

TEST_F(Handover, OnATerminalItAsksThere) {
    makeInstaller();
    write("start", "exec env -i HOME=\"$HOME\" XDG_RUNTIME_DIR=\"$XDG_RUNTIME_DIR\" \"$PROGRAM\"\n");
    // What is typed, each line when there was time to ask.
    const auto typing = [this](const std::string& lines, const std::string& program) {
        write("type", "for word in " + lines + "; do sleep 0.5; echo \"$word\"; done; sleep 20\n");
        return run("/usr/bin/env",
                   {"HOME=" + home, "XDG_RUNTIME_DIR=" + dir, "PROGRAM=" + program, "sh", "-c",
                    "sh type | { script -qec 'sh start' /dev/null; echo \"code $?\"; kill 0; }"});
    };
    typing("c", installer);
    EXPECT_NE(output.find("Where shall 'Counts words' be installed?"), std::string::npos) << output;
    EXPECT_NE(output.find("code 3"), std::string::npos) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
    typing("x m", installer);
    EXPECT_NE(output.find("wordcount was installed in '" + home + "/.local/opt/wordcount'."),
              std::string::npos)
        << output;
    typing("r", home + "/.local/opt/wordcount/uninstall");
    EXPECT_NE(output.find("code 0"), std::string::npos) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(Handover, AWrongScriptIsToldWithItsLineAndNothingIsMade) {
    write("bad.iss", "[Setup]\nAppName=x\nOther=1\n");
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "bad.iss"}), 1);
    EXPECT_EQ(output.substr(0, output.find('\n')),
              dir + "bad.iss(3) : error : the key 'Other' is not known in [Setup]");
    EXPECT_FALSE(exists("bad.exe"));
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {}), 2);
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "bad.iss", "/X"}), 2);
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "bad.iss", "/F../x"}), 2);
    EXPECT_EQ(run(BINARY_DIR "/iscc.exe", {dir + "none.iss"}), 1);
}

}  // namespace
}  // namespace tarn::toolchain
